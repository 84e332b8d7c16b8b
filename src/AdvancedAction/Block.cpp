#include "AdvancedAction/Block.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "AdvancedAction/GoToPoint.h"
#include "Agent/Agent.h"
#include "Mathematics/Degree.h"
#include "Utilities/Config.h"
#include "Utilities/FastIC.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

int Block::blockCountDown = -1;
int Block::doBlockCD = -1;

namespace {

constexpr float kNoBlock = 1000;
constexpr double kNoGoing = 1000;

// x differences, y differences and slope differences up to this count as none.
constexpr double kLevel = 0.1;

// The line of the own goal that a shot is expected to cross, metres.
constexpr double kOwnGoalX = -14.5;

struct Point {
  double x;
  double y;
};

bool isNoBlock(Vector v) {
  return std::fabs(v.getX() - kNoBlock) < 0.1 && std::fabs(v.getY() - kNoBlock) < 0.1;
}

bool isBetween(double v, double a, double b, double margin = 0) {
  return v >= std::min(a, b) - margin && v <= std::max(a, b) + margin;
}

double distance(Point a, Point b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

// Where the opponent that reaches the ball at `reach` is expected to play it: a wide one along the
// wing, a central one at a point of the goal mouth that shrinks with its distance.
Point aimOf(Point reach) {
  const bool far = reach.x > 0;
  const bool wide = far ? std::fabs(reach.y) >= 6 : std::fabs(reach.y) >= 7;
  if (wide && (far || reach.x > -11)) return {reach.x - 2.5, reach.y};

  // Near the goal the lateral offset counts whole, further away less one metre.
  double s = reach.y;
  const bool near = !far && (wide || reach.x <= -10);
  if (!near && reach.y < -1) s = reach.y + 1;
  if (!near && reach.y > 1) s = reach.y - 1;
  return {kOwnGoalX, s * 0.5 / (reach.x + kHalfLength)};
}

// The line along which the opponent plays.
struct Line {
  Point reach;
  Point target;
  double m;
  double b;

  bool isVertical() const { return std::fabs(reach.x - target.x) <= kLevel; }
};

// The point of the line that lies equally far from the player and from the reach point, so that the
// player gets there when the opponent does.
Point meetingPoint(const Line& line, Point self, Vector ball) {
  const Point& reach = line.reach;
  const Point& target = line.target;
  // The perpendicular bisector of the player and the reach point: its slope and offset.
  const double k = (self.x - reach.x) / (reach.y - self.y);
  const double c = ((self.y + reach.y) - k * (self.x + reach.x)) * 0.5;
  const bool level = std::fabs(reach.y - self.y) <= kLevel;
  Point result{};

  if (line.isVertical()) {
    const bool inLine = std::fabs(self.x - target.x) <= kLevel;
    result.x = target.x;
    if (level) {
      result.y = reach.y;
      if (inLine) result = {ball.getX(), ball.getY()};
    } else {
      // The x of the reach point as a y stands on purpose: it nearly always lies beyond the target
      // and so sends the player there.
      result.y = inLine ? reach.x : k * target.x + c;
    }
    return isBetween(result.y, reach.y, target.y) ? result : target;
  }

  if (level) {
    if (std::fabs(target.x - self.x) <= 2) {
      result = reach;
    } else {
      result.x = (self.x + reach.x) * 0.5;
      result.y = line.m * result.x + line.b;
    }
  } else if (reach.x > self.x &&
             std::fabs(self.y - line.m * self.x - line.b) / std::sqrt(line.m * line.m + 1) <= 0.5) {
    result = reach;
  } else if (std::fabs(line.m - k) < kLevel && reach.x >= target.x) {
    result = target;
  } else {
    result.x = (line.b - c) / (k - line.m);
    result.y = line.m * result.x + line.b;
  }
  const bool onLine =
      isBetween(result.y, reach.y, target.y) && isBetween(result.x, reach.x, target.x);
  return !onLine && reach.x >= target.x ? target : result;
}

// Where the player's own run meets the line.
Point runningPoint(const Line& line, Point self, Vector velocity) {
  constexpr Point kNone{kNoGoing, kNoGoing};
  // Radians. Comparisons with degrees would bound it, and never hold: only this branch can run.
  const double m = -std::atan(static_cast<double>(velocity.getY()) / velocity.getX());
  Point going{};
  if (std::fabs(line.reach.x - line.target.x) < kLevel) {
    going = {line.reach.x, self.y};
  } else {
    const double slope = std::tan(m);
    if (std::fabs(line.m - slope) < kLevel) return kNone;
    going.x = (self.y - slope * self.x - line.b) / (line.m - slope);
    going.y = line.m * going.x + line.b;
  }
  const bool counts = isBetween(going.x, line.reach.x, line.target.x, 0.2) &&
                      isBetween(going.y, line.reach.y, line.target.y, 0.2);
  return counts ? going : kNone;
}

// The nearest first, by exchange of neighbours: equal ones, and those whose distance is not a
// number, stay in place.
void sortByDistance(std::array<const Player*, kPlayers>& team, Vector point) {
  const auto distanceOf = [&](const Player* p) {
    return p->getCalculatedPosition().getDistanceTo(point);
  };
  for (std::size_t sweep = 0; sweep < team.size(); ++sweep) {
    for (std::size_t i = 0; i + 1 < team.size(); ++i) {
      if (distanceOf(team[i]) > distanceOf(team[i + 1])) std::swap(team[i], team[i + 1]);
    }
  }
}

}  // namespace

void Block::inIt() {
  ballPos = agent->WM->ball->getGlobalPosition();
  ballVel = agent->WM->ball->getVelocity();
  selfPos = agent->WM->mySelf->getGlobalPosition();
  selfX = selfPos.getX();
  selfY = selfPos.getY();
  unum = config["Agent"]["Public"]["UniformNumber"].asInt();
  cyclesAfter = 6;
  firstLimit = 8;
  secondLimit = 9;
  ourSide = agent->WM->ourSide != SIDE_LEFT;
}

Vector Block::getBlockPos() {
  FastIC fc(agent->WM);
  fc.setPlayers();
  fc.setTarget(ballPos, ballVel, 0.06);
  fc.calculate();
  if (!fc.fastestOpponentIsAlive) return Vector(kNoBlock, kNoBlock, kNoBlock);

  const Vector reachPoint = fc.fastestOpponent.reachPoint;
  const Point self{selfX, selfY};
  Line line{};
  line.reach = {reachPoint.getX(), reachPoint.getY()};
  line.target = aimOf(line.reach);
  line.m = (line.reach.y - line.target.y) / (line.reach.x - line.target.x);
  line.b = line.reach.y - line.m * line.reach.x;

  Point result = meetingPoint(line, self, ballPos);
  const Point going = runningPoint(line, self, agent->WM->mySelf->getVelocity());
  const double apart = distance(result, going);
  // A player that already runs along a good line stays on it.
  if ((apart < 2 && result.x >= going.x) || (apart < 1 && going.x >= result.x)) result = going;
  return Vector(static_cast<float>(result.x), static_cast<float>(result.y), 0);
}

// The signed angle is compared on purpose: a ball at -170 degrees counts as faced.
bool Block::holdOrGo(Vector blockPos) {
  const double angle = Degree::normalizeAngle(static_cast<float>(agent->WM->getAngleTo(ballPos)));
  if (selfPos.getDistanceTo(blockPos) < 0.5 && angle < 10) {
    blockCountDown = cyclesAfter;
    doBlockCD = 7;
  } else {
    agent->goToPoint->gtpDecide(blockPos, ballPos, 10, 0.5);
  }
  return true;
}

bool Block::realBlockExecute() {
  inIt();
  const Vector blockPos = getBlockPos();
  if (isNoBlock(blockPos)) return false;
  if (unum <= 6 && (doBlockCD > 5 || blockPos.getDistanceTo(selfPos) > secondLimit)) return false;
  return holdOrGo(blockPos);
}

bool Block::extraBlockExecute() {
  inIt();
  const Vector blockPos = getBlockPos();
  if (isNoBlock(blockPos)) return false;
  if (blockCountDown >= 0 && doBlockCD == 6) return holdOrGo(blockPos);

  FastIC fc(agent->WM);
  fc.setPlayers();
  fc.setTarget(ballPos, ballVel, 0.06);
  fc.calculate();
  const Vector point = fc.fastestOpponent.reachPoint;

  std::array<const Player*, kPlayers> team;
  for (std::size_t i = 0; i < team.size(); ++i) team[i] = &agent->WM->player[ourSide][i];
  sortByDistance(team, point);
  const auto extra = std::find_if(team.begin(), team.end(), [](const Player* p) {
    return p->getPlayerNumber() > 1 && p->getPlayerNumber() <= 6;
  });
  if (extra == team.end() || (*extra)->getPlayerNumber() != unum || ballPos.getX() > -9) {
    return false;
  }
  return holdOrGo(blockPos);
}
