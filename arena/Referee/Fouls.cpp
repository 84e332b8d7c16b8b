#include "Referee/Fouls.h"

#include <algorithm>
#include <cmath>

#include "Common/Pitch.h"
#include "Referee/Charging.h"
#include "Referee/Rules.h"

namespace arena {

namespace {

// Its own penalty area with all that lies behind it: the goalie's reserve.
bool inGoaliesArea(const RobotView& robot) {
  const Eigen::Vector3d place = robot.torso.translation();
  return ownGoalSign(robot.side) * place.x() >= kHalfLength - kPenaltyLength &&
         std::abs(place.y()) <= kPenaltyWidth / 2;
}

}  // namespace

Fouls::Fouls(RefereeWorld& world, Placement& placement, Random& random)
    : world_(world), placement_(placement), random_(random) {}

void Fouls::beginCycle(std::span<const Touch> touches, float time) {
  events_.clear();
  players_.keep(world_.robots());
  for (const RobotView& robot : world_.robots()) {
    Player& player = players_[robot.handle];
    player.newest = (player.newest + 1) % player.velocities.size();
    player.velocities[player.newest] = robot.velocity.head<2>();
  }
  for (const Touch& touch : touches) players_[touch.robot].immuneTime = time;
}

// The members of both teams that are not being lifted, as they stand now.
std::vector<RobotView> Fouls::freePlayers() {
  std::vector<RobotView> players;
  for (const RobotView& robot : world_.robots()) {
    if (robot.side != Side::None && !players_[robot.handle].penalised) players.push_back(robot);
  }
  return players;
}

void Fouls::pause() {
  const std::span<const RobotView> all = world_.robots();
  for (const RobotView& robot : std::vector<RobotView>(all.begin(), all.end())) {
    Player& player = players_[robot.handle];
    player.limbs.release(robot.handle, world_);
    if (player.penalised) placement_.hold(robot.handle, false);
    player.penalised = false;
  }
  ownArea_.clear();
  touching_.clear();
  recent_.clear();
}

void Fouls::play(float time) {
  checkCharging(time);
  checkSelfCollision(time);
  checkPlayers(time);
  checkTouching(time);
}

void Fouls::checkCharging(float time) {
  struct Pair {
    const RobotView* left;
    const RobotView* right;
    Eigen::Vector2d sum;
    int count;
  };
  std::erase_if(recent_, [time](const RecentContact& contact) {
    return contact.time > time || time - contact.time > kChargingContactTime;
  });
  const std::vector<RobotView> players = freePlayers();
  const auto find = [&players](RobotHandle robot) -> const RobotView* {
    for (const RobotView& player : players) {
      if (player.handle == robot) return &player;
    }
    return nullptr;
  };
  std::vector<Pair> pairs;
  for (const RobotContact& contact : world_.robotContacts()) {
    const RobotView* left = find(contact.first);
    const RobotView* right = find(contact.second);
    if (!left || !right || left->side == right->side) continue;
    if (left->side == Side::Right) std::swap(left, right);
    const Eigen::Vector2d point = contact.point.head<2>();
    const auto known = std::find_if(pairs.begin(), pairs.end(), [&](const Pair& pair) {
      return pair.left == left && pair.right == right;
    });
    if (known == pairs.end()) {
      pairs.push_back({left, right, point, 1});
    } else {
      known->sum += point;
      ++known->count;
    }
  }
  for (const Pair& pair : pairs) {
    const bool lifted =
        players_[pair.left->handle].penalised || players_[pair.right->handle].penalised;
    if (lifted) continue;
    if (!chargingFoul(*pair.left, *pair.right, pair.sum / pair.count, time)) {
      noteContact(pair.left->handle, pair.right->handle, time);
    }
  }
}

// Judges one contact; returns whether it was a foul.
bool Fouls::chargingFoul(const RobotView& left, const RobotView& right,
                         const Eigen::Vector2d& contact, float time) {
  for (const RobotView* robot : {&left, &right}) {
    if (!players_[robot->handle].posture.standing()) return false;
    if (time - placement_.lastMove(robot->handle) < kChargingMovedTime) return false;
  }
  const auto moving = [this](const RobotView& robot) {
    return ChargingPlayer{robot.torso.translation().head<2>(),
                          players_[robot.handle].meanVelocity()};
  };
  const auto culprit =
      chargingCulprit(moving(left), moving(right), contact, world_.ball().position.head<2>());
  if (!culprit) return false;
  const RobotView& rammer = *culprit == 0 ? left : right;
  const RobotView& rammed = *culprit == 0 ? right : left;

  const bool goalie = rammer.number == kGoalieNumber && inGoaliesArea(rammer);
  const float immuneTime = goalie ? time : players_[rammer.handle].immuneTime;
  if (time - immuneTime <= kChargingImmunity) {
    // Who was pushed by somebody immune must not be blamed for where that sends him.
    float& passedOn = players_[rammed.handle].immuneTime;
    passedOn = std::max(passedOn, immuneTime);
    return false;
  }
  const bool old = std::any_of(recent_.begin(), recent_.end(), [&](const RecentContact& past) {
    return past.left == left.handle && past.right == right.handle;
  });
  if (old) return false;
  penalise(rammer, FoulType::Charging, time);
  return true;
}

// Remembers a contact that was no foul; the time of an earlier one of the two is renewed.
void Fouls::noteContact(RobotHandle left, RobotHandle right, float time) {
  for (RecentContact& contact : recent_) {
    if (contact.left != left || contact.right != right) continue;
    contact.time = time;
    return;
  }
  recent_.push_back({left, right, time});
}

void Fouls::checkSelfCollision(float time) {
  const std::span<const RobotView> all = world_.robots();
  for (const RobotView& robot : std::vector<RobotView>(all.begin(), all.end())) {
    if (robot.side == Side::None) continue;
    Player& player = players_[robot.handle];
    // Who is being lifted is not looked at, but what was frozen before thaws in time.
    const LimbSet colliding =
        player.penalised ? LimbSet{} : collidingLimbs(world_.colliders(robot.handle));
    if (player.limbs.update(colliding, time, robot.handle, world_)) {
      whistle(robot, FoulType::SelfCollision, true);
    }
  }
}

void Fouls::checkPlayers(float time) {
  std::vector<RobotView> order = freePlayers();
  random_.shuffle(order);
  ownArea_.update(order);
  std::vector<RobotView> present = order;
  for (const RobotView& robot : order) {
    players_[robot.handle].posture.update(robot.torso.translation().z(),
                                          robot.torso.translation().y());
    if (ownArea_.offender(robot.side, present) == robot.handle) {
      whistle(robot, FoulType::IllegalDefence, true);
      const Eigen::Vector3d place = robot.torso.translation();
      const Eigen::Vector2d outside = outsideOwnArea(robot.side, place.head<2>());
      placement_.put(robot, {outside.x(), outside.y(), place.z()}, true, time);
      present = freePlayers();
    }
    if (players_[robot.handle].posture.incapable(robot.number == kGoalieNumber)) {
      penalise(robot, FoulType::Incapable, time);
    }
  }
  std::vector<RobotHandle> lifted;
  for (const RobotView& robot : world_.robots()) {
    if (players_[robot.handle].penalised) lifted.push_back(robot.handle);
  }
  for (const RobotHandle robot : lifted) carryOut(robot, time);
}

void Fouls::checkTouching(float time) {
  const std::vector<RobotView> players = freePlayers();
  for (const auto& offence : touching_.update(players, world_.robotContacts(), random_)) {
    const RobotView* robot = world_.find(offence.robot);
    if (!robot) continue;
    whistle(*robot, FoulType::Touching, true);
    const Eigen::Vector3d place = robot->torso.translation();
    const Eigen::Vector2d away = place.head<2>() - offence.groupCentre;
    const Eigen::Vector2d direction = away.norm() > 0
                                          ? Eigen::Vector2d(away.normalized())
                                          : Eigen::Vector2d(ownGoalSign(robot->side), 0);
    const Eigen::Vector2d outside = place.head<2>() + direction * kAgentRadius;
    placement_.put(*robot, {outside.x(), outside.y(), place.z()}, true, time);
  }
}

void Fouls::penalise(const RobotView& robot, FoulType type, float time) {
  Player& player = players_[robot.handle];
  player.penalised = true;
  player.penalty = type;
  player.penaltyTime = time;
  player.penaltyCycles = 0;
  player.penaltyPlace = robot.torso.translation().head<2>();
  player.posture.reset();
  placement_.hold(robot.handle, true);
}

// One cycle of the standard penalty.
void Fouls::carryOut(RobotHandle handle, float time) {
  Player& player = players_[handle];
  const RobotView* robot = world_.find(handle);
  const bool over = time < player.penaltyTime || time - player.penaltyTime >= kFoulHoldTime;
  if (over) {
    player.penalised = false;
    placement_.hold(handle, false);
    placement_.put(*robot, placement_.besidePitch(robot->side, robot->number, kDropHeight), true,
                   time);
    return;
  }
  whistle(*robot, player.penalty, player.penaltyCycles == 0);
  const double height = kFoulHoldHeight + kFoulHoldRise * player.penaltyCycles++;
  world_.moveRobot(handle, {player.penaltyPlace.x(), player.penaltyPlace.y(), height});
  placement_.noteMove(handle, time);
}

void Fouls::whistle(const RobotView& robot, FoulType type, bool first) {
  events_.push_back({++lastIndex_, type, robot.side, robot.number, first});
}

}  // namespace arena
