#include "Utilities/FastIC.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "Mathematics/Degree.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

namespace {

// The run gives up when its cycle number goes above this.
constexpr int kLastCycle = 35;

// A sighting of a head that is older than this, in seconds, is of no use.
constexpr double kStale = 5;

// A head below this height, in metres, belongs to a player on the ground.
constexpr double kFallenHead = 0.5;

// Share of the facing direction that counts against the direction of the target. One half is part
// of the model.
constexpr double kFacingShare = 0.5;

// What a candidate loses and gains, by team.
struct Pace {
  double turnRate;  // degrees per step
  int fall;         // steps lost by a player on the ground
  double stride;    // metres per step; its own team's is the single-precision 0.9
};
constexpr Pace kOwnPace{60, 12, 0.9f};
constexpr Pace kOtherPace{50, 3, 1};

bool isOffThePitch(Vector p) {
  return p.getX() > 14.5 || p.getX() < -14 || p.getY() > 9.9 || p.getY() < -9.9;
}

bool isInOwnGoalMouth(Vector p) {
  return p.getX() < -14 && p.getY() < 1.2 && p.getY() > -1.2;
}

// Room for the longest list: a dribble adds all players again at each of its looks ahead.
constexpr std::size_t kRoom = std::size_t{8} * 22;

using Lists = std::array<std::vector<FastPlayer>, 4>;

Lists roomyLists() {
  Lists lists;
  for (std::vector<FastPlayer>& list : lists) list.reserve(kRoom);
  return lists;
}

// Lists for objects to come: a cycle makes a few, some of them at the same time, and takes no
// memory for them. No lock: the player has one thread.
Lists spareLists = roomyLists();

std::vector<FastPlayer> takeSpareList() {
  for (std::vector<FastPlayer>& spare : spareLists) {
    if (spare.capacity() > 0) return std::exchange(spare, {});
  }
  return {};
}

void leaveSpareList(std::vector<FastPlayer>& list) {
  list.clear();
  for (std::vector<FastPlayer>& spare : spareLists) {
    if (spare.capacity() == 0) return spare.swap(list);
  }
}

Vector stepTowards(Orientation facing) {
  switch (facing) {
    case NORTH:
      return Vector(3, 0, 0);
    case EAST:
      return Vector(0, 3, 0);
    case WEST:
      return Vector(-3, 0, 0);
    default:
      return Vector(0, -3, 0);
  }
}

}  // namespace

// What stays the same about a candidate during one run.
struct FastIC::Runner {
  bool counts = false;  // it is asked at all
  bool me = false;
  bool own = false;
  bool other = false;
  Vector pos;         // where it turns; it does not move with the run, unlike playerPos
  double facing = 0;  // direction in degrees, already scaled by kFacingShare
  Pace pace{};
  int fall = 0;
};

std::vector<FastIC::Runner> FastIC::runners = [] {
  std::vector<Runner> list;
  list.reserve(kRoom);
  return list;
}();

// Which of the three classes have a result.
struct FastIC::Found {
  bool me = false;
  bool teammate = false;
  bool opponent = false;

  bool all() const { return me && teammate && opponent; }
};

FastPlayer::FastPlayer(Player p)
    : human(p), playerPos(human.getCalculatedPosition()), playerVel(human.getVelocity()) {}

Orientation orientationFromBearing(double bearing) {
  if (bearing > -1 && bearing < 91) return NORTH;
  if (bearing >= 89 && bearing < 181) return WEST;
  if (bearing >= -91 && bearing < 1) return SOUTH;
  return EAST;
}

FastIC::FastIC(WorldModel* world)
    : WM(world), fastPlayers(takeSpareList()), ourSide(world->ourSide != SIDE_LEFT) {}

FastIC::~FastIC() {
  leaveSpareList(fastPlayers);
}

TeamSide FastIC::ownTeam() const {
  return ourSide ? SIDE_RIGHT : SIDE_LEFT;
}

TeamSide FastIC::otherTeam() const {
  return ourSide ? SIDE_LEFT : SIDE_RIGHT;
}

bool FastIC::isMe(const Player& player) const {
  return player.getPlayerNumber() == WM->mySelf->getAgentNum() && player.getTeamSide() == ownTeam();
}

void FastIC::setTarget(Vector pos, Vector vel, double decay) {
  fastBall.ballPos = pos;
  fastBall.ballVel = vel;
  fastBall.ballDecay = decay;
}

void FastIC::setPlayers() {
  fastPlayers.reserve(fastPlayers.size() + std::size_t{2} * kPlayers);
  for (const Player& player : WM->player[!ourSide]) fastPlayers.emplace_back(player);
  for (const Player& player : WM->player[ourSide]) {
    if (player.getPlayerNumber() == 1) continue;
    fastPlayers.emplace_back(player);
    if (player.getPlayerNumber() == WM->mySelf->getAgentNum()) {
      fastPlayers.back().playerPos = WM->mySelf->getGlobalPosition();
    }
  }
}

void FastIC::erasePlayer(int number) {
  for (std::size_t i = 0; i < fastPlayers.size(); ++i) {
    if (fastPlayers[i].human.getPlayerNumber() == number) {
      fastPlayers.erase(fastPlayers.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
}

void FastIC::refresh() {
  fastestOpponent = FastPlayer();
  fastestTeammate = FastPlayer();
  for (FastPlayer& candidate : fastPlayers) {
    candidate.playerPos = isMe(candidate.human) ? WM->mySelf->getGlobalPosition()
                                                : candidate.human.getCalculatedPosition();
    constexpr int kUnknown = FastPlayer::kUnknown;
    candidate.reachPoint = Vector(kUnknown, kUnknown, kUnknown);
    candidate.reachCycle = kUnknown;
    candidate.calculated = false;
  }
}

FastIC::Runner FastIC::prepare(const FastPlayer& candidate) const {
  const Player& human = candidate.human;
  const TeamSide side = human.getTeamSide();
  const int number = human.getPlayerNumber();

  Runner runner;
  runner.me = isMe(human);
  runner.own = side == ownTeam();
  runner.other = side == otherTeam();

  Orientation orient = UNKNOWN;
  if (runner.me) {
    orient = orientationFromBearing(
        Degree::normalizeAngle(static_cast<float>(WM->getAngleTo(kOtherGoal))));
  } else if ((runner.own || runner.other) && number >= 1 && number <= kPlayers) {
    orient = WM->player[side][number - 1].getBodyDirection(WM->gameTime);
  }

  runner.counts =
      runner.me || (orient != UNKNOWN && WM->gameTime - human.headLastTimeSeen < kStale);
  if (!runner.counts) return runner;

  runner.pos = runner.me ? WM->mySelf->getGlobalPosition() : human.getCalculatedPosition();
  const Vector front = runner.pos + stepTowards(orient);
  runner.facing = kFacingShare * (front - runner.pos).getDir();
  runner.pace = runner.own ? kOwnPace : kOtherPace;
  runner.fall = human.headPosition.getZ() < kFallenHead ? runner.pace.fall : 0;
  return runner;
}

void FastIC::ask(FastPlayer& candidate, const Runner& runner, Vector target, int cycle,
                 Found& found) {
  const double turn = std::fabs((target - runner.pos).getDir() - runner.facing);
  double reach = cycle - turn / runner.pace.turnRate - runner.fall;
  if (reach < 0) reach = 0;
  const double allowance = reach * runner.pace.stride;

  if (allowance >= candidate.playerPos.getDistanceTo(target)) {
    candidate.calculated = true;
    isAlive = true;

    FastPlayer* result = nullptr;
    if (!found.me && runner.me) {
      result = &mySelf;
      found.me = mySelfIsAlive = true;
    } else if (!found.teammate && runner.own && !runner.me) {
      result = &fastestTeammate;
      found.teammate = fastestTeammateIsAlive = true;
    } else if (!found.opponent && runner.other) {
      result = &fastestOpponent;
      found.opponent = fastestOpponentIsAlive = true;
    }
    if (result != nullptr) {
      *result = candidate;
      result->reachPoint = target;
      result->reachCycle = static_cast<int>(reach);
    }
  }
  candidate.playerPos += candidate.playerVel;
}

void FastIC::calculate() {
  Vector ballP = fastBall.ballPos;
  Vector ballV = fastBall.ballVel;
  const auto roll = [&] {
    ballP += ballV;
    ballV *= fastBall.ballDecay;
  };
  if (amIGoalie) roll();

  isOut = isAlive = isInGoal = fastestOpponentIsAlive = fastestTeammateIsAlive = false;
  Found found;

  runners.clear();
  for (const FastPlayer& candidate : fastPlayers) runners.push_back(prepare(candidate));

  for (int cycle = 0; cycle <= kLastCycle && !found.all(); ++cycle) {
    if (isOffThePitch(ballP)) {
      leavePitch(ballP, cycle, found);
      return;
    }
    for (std::size_t i = 0; i < fastPlayers.size(); ++i) {
      if (!runners[i].counts || fastPlayers[i].calculated) continue;
      ask(fastPlayers[i], runners[i], ballP, cycle, found);
    }
    roll();
  }
  settle();
}

void FastIC::settle() {
  if (fastestTeammateIsAlive && mySelfIsAlive) {
    if (mySelf.reachCycle + 1 < fastestTeammate.reachCycle) fastestTeammate = mySelf;
  } else if (mySelfIsAlive) {
    fastestTeammate = mySelf;
    fastestTeammateIsAlive = true;
  }
  if (!isAlive) return;
  // The opponent wins ties and near ties.
  crown(fastestOpponent.reachCycle - 1 <= fastestTeammate.reachCycle);
}

void FastIC::crown(bool opponentIsFirst) {
  if (fastestOpponentIsAlive && (opponentIsFirst || !fastestTeammateIsAlive)) {
    fastest = fastestOpponent;
  } else if (fastestTeammateIsAlive) {
    fastest = fastestTeammate;
  } else {
    fastest = FastPlayer();
  }
}

// The first entry of each row that lies nearer than FastPlayer::kUnknown is taken, not the nearest:
// the first hit ends the search. The game is tuned to that; a search for the nearest would change
// who is thought to have played the ball out.
void FastIC::leavePitch(Vector target, int cycle, Found& found) {
  const auto take = [&](FastPlayer& result, const Player& player, bool& first, bool& alive) {
    result = FastPlayer(player);
    result.reachPoint = target;
    result.reachCycle = cycle;
    first = alive = true;
  };
  isOut = true;
  for (int i = 0; i < kPlayers && !found.opponent; ++i) {
    const Player& player = WM->player[!ourSide][i];
    if (player.getCalculatedPosition().getDistanceTo(target) < FastPlayer::kUnknown) {
      take(fastestOpponent, player, found.opponent, fastestOpponentIsAlive);
    }
  }
  for (int i = 0; i < kPlayers && !found.teammate; ++i) {
    const Player& player = WM->player[ourSide][i];
    const Vector pos = i + 1 == WM->mySelf->getAgentNum() ? WM->mySelf->getGlobalPosition()
                                                          : player.getCalculatedPosition();
    if (pos.getDistanceTo(target) < FastPlayer::kUnknown) {
      take(fastestTeammate, player, found.teammate, fastestTeammateIsAlive);
    }
  }
  isAlive = true;

  crown(fastestTeammate.playerPos.getDistanceTo(target) >
        fastestOpponent.playerPos.getDistanceTo(target));
  isInGoal = isInOwnGoalMouth(target);
}
