#include "Referee/Referee.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace arena {

namespace {

const Eigen::Vector2d kMiddle = Eigen::Vector2d::Zero();

Eigen::Vector3d onGround(const Eigen::Vector2d& place) {
  return {place.x(), place.y(), kBallRadius};
}

}  // namespace

Referee::Referee(RefereeWorld& world, const RefereeOptions& options)
    : world_(world),
      options_(options),
      random_(options.seed, "referee"),
      placement_(world),
      fouls_(world, placement_, random_) {}

void Referee::step() {
  goals_.clear();
  if (!stopsClock(game_.mode)) game_.time += kCycle;
  ball_.update(world_, game_.time);
  fouls_.beginCycle(ball_.touches(), game_.time);
  placement_.forgetGone();
  checkHalf();
  stepMode();
  if (isPaused(game_.mode)) {
    fouls_.pause();
  } else {
    fouls_.play(game_.time);
  }
}

void Referee::checkHalf() {
  if (game_.half == 1 && game_.time >= options_.halfTime) {
    game_.half = 2;
    if (options_.changeSides) changeSides();
    setMode(PlayMode::BeforeKickOff);
  } else if (game_.half == 2 && game_.time >= 2 * options_.halfTime &&
             game_.mode != PlayMode::GameOver) {
    setMode(PlayMode::GameOver);
  }
}

void Referee::changeSides() {
  world_.changeSides();
  std::swap(game_.score[0], game_.score[1]);
  std::swap(game_.teamNames[0], game_.teamNames[1]);
  game_.sidesChanged = true;
  ball_.changeSides();
  pass_.changeSides();
  clearRestrictions();
}

void Referee::stepMode() {
  switch (kindOf(game_.mode)) {
    case ModeKind::BeforeKickOff:
      return stepBeforeKickOff();
    case ModeKind::KickOff:
      return stepKickOff();
    case ModeKind::PlayOn:
    case ModeKind::Pass:
      return stepPlayOn();
    case ModeKind::Goal:
      return stepGoal();
    case ModeKind::Offside:
    case ModeKind::GameOver:
      return;
    default:
      return stepSetPlay();
  }
}

void Referee::stepBeforeKickOff() {
  if (world_.agentCount() == 0) return;
  kickOffWait_ += kCycle;
  if (options_.autoKickOff && kickOffWait_ >= kKickOffWait) {
    kickOff(Side::None);
    return;
  }
  world_.setBall(onGround(kMiddle), Eigen::Vector3d::Zero());
  for (const Side side : kBothSides) placement_.keepInOwnHalf(side, 0.0, game_.time);
}

void Referee::stepKickOff() {
  const Side kicking = sideOf(game_.mode);
  if (ball_.touchedAfter(game_.modeStart)) {
    clearRestrictions();
    if (world_.agentCount() > kFewAgents) {
      kicks_.take(ball_.lastTouch(), true);
      kicks_.limitKickOff(kicking);
      kicks_.observe(ball_.touches(), world_.ball().position.head<2>());
    }
    setMode(PlayMode::PlayOn);
  } else if (game_.modeAge() >= kSetPlayTimeOut) {
    dropBall();
  } else {
    orderForKickOff(kicking);
  }
}

void Referee::orderForKickOff(Side kicking) {
  placement_.keepInOwnHalf(opponent(kicking), 0.0, game_.time);
  placement_.keepOutOfCircle(opponent(kicking), kMiddle, kFreeKickDistance, game_.time);
  placement_.keepInOwnHalf(kicking, kFreeKickDistance, game_.time);
}

void Referee::stepPlayOn() {
  const Eigen::Vector3d ball = world_.ball().position;
  if (kindOf(game_.mode) == ModeKind::Pass) {
    const Side side = sideOf(game_.mode);
    pass_.remain(side, game_.time);
    if (ball_.touchedAfter(game_.modeStart) || game_.modeAge() >= kPassModeDuration) {
      pass_.end(side, game_.time);
      setMode(PlayMode::PlayOn);
    } else {
      placement_.repel(opponent(side), ball.head<2>(), kPassModeOpponentDistance,
                       kPassModeOpponentPad, game_.time);
    }
  }
  pass_.observe(ball_.touches(), ball, game_.time);
  if (checkDoubleTouch() || checkGoal()) return;
  checkOut();
}

bool Referee::checkDoubleTouch() {
  const auto offender = kicks_.observe(ball_.touches(), world_.ball().position.head<2>());
  if (!offender) return false;
  enter(modeOf(ModeKind::FreeKick, opponent(*offender)), freeKickPlace(ball_.lastInField()));
  return true;
}

bool Referee::checkGoal() {
  const BallView ball = world_.ball();
  for (const Side defender : kBothSides) {
    const double sign = ownGoalSign(defender);
    bool inside = world_.goalSensorHit(defender);
    // A fast ball may pass the sensor between two steps: look back along its way to where all of
    // it was just across the line. Back to the line itself would be too far: the league's server
    // gives no goal for a ball that its post throws outwards there.
    const double beyond = sign * ball.position.x() - kHalfLength;
    const double speed = sign * ball.velocity.x();
    if (!inside && beyond > kBallRadius && speed > 0 &&
        game_.time - ball_.lastInFieldTime() < kGoalLookBack) {
      const double past = beyond - kBallRadius;
      const Eigen::Vector3d crossing = ball.position - ball.velocity * (past / speed);
      inside = std::abs(crossing.y()) < kGoalWidth / 2 && crossing.z() < kGoalHeight;
    }
    if (!inside) continue;
    scoreOrPunish(opponent(defender));
    return true;
  }
  return false;
}

void Referee::scoreOrPunish(Side scorer) {
  const Side defender = opponent(scorer);
  GoalVerdict verdict = kicks_.judge(scorer, world_.agentCount() <= kFewAgents);
  if (pass_.scoreWait(scorer, game_.time) > 0) verdict = GoalVerdict::GoalKickForDefenders;
  switch (verdict) {
    case GoalVerdict::Goal: {
      ++game_.score[index(scorer)];
      const Touch& last = ball_.lastTouch();
      goals_.push_back({scorer, game_.time, last.side, last.number});
      setMode(modeOf(ModeKind::Goal, scorer));
      return;
    }
    case GoalVerdict::GoalKickForDefenders:
      return enter(modeOf(ModeKind::GoalKick, defender), goalKickPlace(defender));
    case GoalVerdict::CornerForAttackers:
      return enter(modeOf(ModeKind::CornerKick, scorer),
                   cornerPlace(scorer, world_.ball().position.y()));
  }
}

void Referee::checkOut() {
  const Eigen::Vector3d ball = world_.ball().position;
  const double margin = kBallRadius + kOutMargin;
  if (std::abs(ball.x()) < kHalfLength + margin && std::abs(ball.y()) < kHalfWidth + margin) return;
  const Side toucher = ball_.lastTouch().side;
  if (toucher == Side::None) return;
  const Side other = opponent(toucher);
  if (std::abs(ball.x()) < kHalfLength) {
    enter(modeOf(ModeKind::KickIn, other), kickInPlace(ball_.lastInField(), ball.y()));
    return;
  }
  const bool ownLine = ball.x() * ownGoalSign(toucher) > 0;
  if (ownLine) {
    enter(modeOf(ModeKind::CornerKick, other), cornerPlace(other, ball.y()));
  } else {
    enter(modeOf(ModeKind::GoalKick, other), goalKickPlace(other));
  }
}

void Referee::stepGoal() {
  const Side kicking = opponent(sideOf(game_.mode));
  if (game_.modeAge() < kGoalPause) return orderForKickOff(kicking);
  world_.setBall(onGround(kMiddle), Eigen::Vector3d::Zero());
  setMode(modeOf(ModeKind::KickOff, kicking));
}

void Referee::stepSetPlay() {
  if (game_.modeAge() < kSetPlayPause) return;
  clearRestrictions();
  const Side kicking = sideOf(game_.mode);
  const SetPlayRule& rule = *setPlayRule(kindOf(game_.mode));

  if (ball_.touchedAfter(game_.modeStart + kSetPlayTouchAge)) {
    if (!setPlay_.pinned && !setPlay_.arranged) arrangeSetPlay();
    if (!rule.clearsPenaltyArea) return takeKick(rule.indirect);
    setPlay_.played = true;
    if (!penaltyArea(kicking).contains(Eigen::Vector2d(world_.ball().position.head<2>()))) {
      return takeKick(rule.indirect);
    }
  }
  if (game_.modeAge() >= kSetPlayTimeOut) return dropBall();

  if (rule.clearsPenaltyArea) {
    placement_.keepOutOfRectangle(opponent(kicking), penaltyArea(kicking), game_.time);
  } else {
    placement_.keepOutOfCircle(opponent(kicking), setPlay_.place, kFreeKickDistance, game_.time);
  }
  if (setPlay_.pinned && !setPlay_.played) arrangeSetPlay();
}

// Puts the ball to its place and, the first time, moves the kicking team off it.
void Referee::arrangeSetPlay() {
  if (!setPlay_.arranged) {
    placement_.repel(sideOf(game_.mode), setPlay_.place, kKickerDistance, 0.0, game_.time);
  }
  setPlay_.arranged = true;
  world_.setBall(onGround(setPlay_.place), Eigen::Vector3d::Zero());
}

void Referee::takeKick(bool indirect) {
  kicks_.take(ball_.lastTouch(), indirect);
  setMode(PlayMode::PlayOn);
}

void Referee::clearRestrictions() {
  kicks_.clear();
  pass_.clear();
}

void Referee::requestPass(RobotHandle robot) {
  if (game_.mode != PlayMode::PlayOn || !pass_.mayStart(world_, robot, game_.time)) return;
  setMode(modeOf(ModeKind::Pass, world_.find(robot)->side));
}

void Referee::setTeamName(Side side, std::string name) {
  game_.teamNames[index(side)] = std::move(name);
}

void Referee::setMode(PlayMode mode) {
  // A set play that somebody else than the referee calls is taken where the ball was last in the
  // field, whatever its kind: the league's server does so.
  const ModeKind kind = kindOf(mode);
  const bool freeKick = kind == ModeKind::FreeKick || kind == ModeKind::DirectFreeKick;
  enter(mode, freeKick ? freeKickPlace(ball_.lastInField()) : ball_.lastInField());
  // Nor does it hold the ball of such a corner or goal kick at its place.
  setPlay_.pinned = kind != ModeKind::CornerKick && kind != ModeKind::GoalKick;
}

// Enters a mode whose ball place, if it is a set play, is given.
void Referee::enter(PlayMode mode, const Eigen::Vector2d& place) {
  if (kindOf(mode) == ModeKind::Pass) pass_.start(sideOf(mode), world_.ball().position);
  if (kindOf(mode) == ModeKind::KickOff) clearRestrictions();
  if (kindOf(mode) == ModeKind::BeforeKickOff) kickOffWait_ = 0;
  game_.mode = mode;
  game_.modeStart = game_.time;
  setPlay_ = {.place = place};
}

void Referee::kickOff(Side side) {
  if (side == Side::None) {
    if (game_.half == 2 && firstKickOff_ != Side::None) {
      // The other team than in the first half, wherever it plays now.
      side = game_.sidesChanged ? firstKickOff_ : opponent(firstKickOff_);
    } else {
      side = options_.coinToss && random_.uniform() < 0.5 ? Side::Right : Side::Left;
      if (game_.half == 1) firstKickOff_ = side;
    }
  }
  setMode(modeOf(ModeKind::KickOff, side));
}

void Referee::dropBall() {
  const Eigen::Vector3d ball = world_.ball().position;
  const Eigen::Vector2d place = dropBallPlace(ball.head<2>());
  // At its own height: it really drops.
  world_.setBall(Eigen::Vector3d(place.x(), place.y(), ball.z()), Eigen::Vector3d::Zero());
  for (const Side side : kBothSides) {
    placement_.keepOutOfCircle(side, place, kFreeKickDistance, game_.time);
  }
  clearRestrictions();
  setMode(PlayMode::PlayOn);
}

void Referee::setTime(float time) {
  game_.time = time;
}

void Referee::setScore(int left, int right) {
  game_.score = {left, right};
}

void Referee::putBesidePitch(RobotHandle robot, double height) {
  const RobotView* view = world_.find(robot);
  if (!view || view->side == Side::None) return;
  placement_.put(*view, placement_.besidePitch(view->side, view->number, height), true, game_.time);
}

void Referee::moveAway(RobotHandle robot) {
  const RobotView* view = world_.find(robot);
  if (!view || view->side == Side::None) return;
  Eigen::Vector3d place = view->torso.translation();
  place.x() += ownGoalSign(view->side) * kMoveDistance;
  placement_.put(*view, place, true, game_.time);
}

}  // namespace arena
