#include "Referee/Placement.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "Referee/Rules.h"

namespace arena {

namespace {

// Half the edges of the flat box that stands for a robot's visible shape, in the torso's frame, m.
const Eigen::Vector3d kBodyHalfSize{0.2, 0.2, 0.005};
// A player put exactly to the edge of a margin is outside of it, whatever the rounding.
constexpr double kEdge = 1e-9;

Eigen::Vector3d on(const Eigen::Vector2d& place, double height) {
  return {place.x(), place.y(), height};
}

bool isBehindGoalLine(const Eigen::Vector3d& place) {
  return std::abs(place.x()) > kHalfLength;
}

// Robots often stand at round places, and then the last digit decides about those exactly 0.4 m
// from another's box. To decide like the league's server, the search computes in single precision:
// beside a robot that sleeps on its feet such a place is free; before or behind it, where its lean
// of 4e-5 adds a hair to the box, it is not.

// The coordinate so many steps of the search away from `start`, which is itself left as it is.
double stepped(double start, long steps) {
  const float step = static_cast<float>(steps < 0 ? -kPlaceStep : kPlaceStep);
  for (; steps != 0; steps -= steps < 0 ? -1 : 1) start = static_cast<float>(start) + step;
  return start;
}

// So many steps is a way long, m. For a robot that was thrown out of all bounds any number will do
// whose square is one.
long wholeSteps(double way) {
  constexpr double kMost = 1e6;
  return std::lround(std::fmax(-kMost, std::fmin(kMost, way / kPlaceStep)));
}

// Whether the box is too near to the place for another robot.
bool crowds(const Eigen::AlignedBox3d& box, const Eigen::Vector3d& place) {
  const Eigen::Vector3f centre = place.cast<float>();
  return box.cast<float>().exteriorDistance(centre) < static_cast<float>(kAgentRadius);
}

bool contains(const Eigen::AlignedBox2d& area, const Eigen::Vector3d& place) {
  return area.contains(Eigen::Vector2d(place.head<2>()));
}

}  // namespace

Eigen::AlignedBox2d penaltyArea(Side side) {
  const double line = ownGoalSign(side) * kHalfLength;
  const double front = ownGoalSign(side) * (kHalfLength - kPenaltyLength);
  return {Eigen::Vector2d(std::min(line, front), -kPenaltyWidth / 2),
          Eigen::Vector2d(std::max(line, front), kPenaltyWidth / 2)};
}

Eigen::AlignedBox2d ownHalf(Side side) {
  const double end = ownGoalSign(side) * (kHalfLength + kHalfMargin);
  return {Eigen::Vector2d(std::min(end, 0.0), -kHalfWidth - kHalfMargin),
          Eigen::Vector2d(std::max(end, 0.0), kHalfWidth + kHalfMargin)};
}

Eigen::AlignedBox3d Placement::bounds(const RobotView& robot) const {
  Eigen::AlignedBox3d box(robot.torso.translation());
  const auto extend = [&box](const Eigen::Isometry3d& pose, const Eigen::Vector3d& half) {
    const Eigen::Vector3d reach = pose.linear().cwiseAbs() * half;
    box.extend(Eigen::Vector3d(pose.translation() - reach));
    box.extend(Eigen::Vector3d(pose.translation() + reach));
  };
  extend(robot.torso, kBodyHalfSize);
  for (const ColliderView& collider : world_.colliders(robot.handle)) {
    extend(collider.pose, collider.halfSize);
  }
  return box;
}

Eigen::AlignedBox2d Placement::centres(const RobotView& robot) const {
  Eigen::AlignedBox2d box(Eigen::Vector2d(robot.torso.translation().head<2>()));
  for (const ColliderView& collider : world_.colliders(robot.handle)) {
    box.extend(Eigen::Vector2d(collider.pose.translation().head<2>()));
  }
  return box;
}

template <class Action>
void Placement::forTeam(Side team, Action act) {
  const std::span<const RobotView> all = world_.robots();
  const std::vector<RobotView> robots(all.begin(), all.end());  // moving may renew the span
  for (const RobotView& robot : robots) {
    if (robot.side == team && !records_.get(robot.handle).held) act(robot);
  }
}

void Placement::keepOutOfCircle(Side team, const Eigen::Vector2d& centre, double radius,
                                float time) {
  const Eigen::Vector3d middle = on(centre, kBallRadius);
  const double sign = ownGoalSign(team);
  forTeam(team, [&](const RobotView& robot) {
    if (bounds(robot).exteriorDistance(middle) >= radius) return;
    Eigen::Vector3d place = robot.torso.translation();
    const double x = centre.x() + sign * kMoveDistance;
    if (sign * x > kHalfLength) {
      place.y() = centre.y() + (centre.y() < 0 ? kMoveDistance : -kMoveDistance);
    } else {
      place.x() = x;
    }
    put(robot, place, true, time);
  });
}

void Placement::keepOutOfRectangle(Side team, const Eigen::AlignedBox2d& area, float time) {
  forTeam(team, [&](const RobotView& robot) {
    if (!area.intersects(centres(robot))) return;
    Eigen::Vector3d place = robot.torso.translation();
    place.x() =
        team == Side::Left ? area.min().x() - kMoveDistance : area.max().x() + kMoveDistance;
    put(robot, place, true, time);
  });
}

void Placement::keepInOwnHalf(Side team, double insideCircle, float time) {
  const Eigen::AlignedBox2d forbidden = ownHalf(opponent(team));
  forTeam(team, [&](const RobotView& robot) {
    if (!forbidden.intersects(centres(robot))) return;
    const Eigen::AlignedBox3d box = bounds(robot);
    const Eigen::Vector2d farthest =
        box.min().head<2>().cwiseAbs().cwiseMax(box.max().head<2>().cwiseAbs());
    if (farthest.norm() <= insideCircle) return;
    Eigen::Vector3d place = robot.torso.translation();
    place.x() = ownGoalSign(team) * kMoveDistance;
    put(robot, place, true, time);
  });
}

void Placement::repel(Side team, const Eigen::Vector2d& centre, double radius, double pad,
                      float time) {
  forTeam(team, [&](const RobotView& robot) {
    const Eigen::Vector3d place = robot.torso.translation();
    const Eigen::Vector2d away = place.head<2>() - centre;
    if (away.norm() >= radius) return;
    // A torso exactly above the centre has no direction of its own; it goes homewards.
    const Eigen::Vector2d direction = away.norm() > 0 ? Eigen::Vector2d(away.normalized())
                                                      : Eigen::Vector2d(ownGoalSign(team), 0);
    put(robot, on(centre + direction * (radius + pad), place.z()), false, time);
  });
}

bool Placement::isSafe(const RobotView& robot, const Eigen::Vector3d& place,
                       bool awayFromBall) const {
  if (isBehindGoalLine(place) && std::abs(place.y()) < kBehindGoalY) return false;
  if (awayFromBall &&
      (place - world_.ball().position).head<2>().norm() < kPlaceBallDistance - kEdge) {
    return false;
  }
  int inArea = 0;
  const bool team = robot.side != Side::None;
  const Eigen::AlignedBox2d area = penaltyArea(team ? robot.side : Side::Left);
  for (const RobotView& other : world_.robots()) {
    if (other.handle == robot.handle) continue;
    if (crowds(bounds(other), place)) return false;
    if (team && other.side == robot.side && contains(area, other.torso.translation())) ++inArea;
  }
  if (inArea < kMaxInOwnArea) return true;
  const Eigen::Vector2d margin = Eigen::Vector2d::Constant(kAgentRadius - kEdge);
  return !contains(Eigen::AlignedBox2d(area.min() - margin, area.max() + margin), place);
}

void Placement::put(const RobotView& robot, const Eigen::Vector3d& place, bool awayFromBall,
                    float time) {
  using Cell = std::pair<long, long>;  // grid steps in x and y
  const auto at = [&place](const Cell& cell) {
    return Eigen::Vector3d(stepped(place.x(), cell.first), stepped(place.y(), cell.second),
                           place.z());
  };
  const Eigen::Vector3d way = place - robot.torso.translation();
  const Cell start{wholeSteps(way.x()), wholeSteps(way.y())};
  const auto distance = [&start](const Cell& cell) {
    const long x = start.first + cell.first;
    const long y = start.second + cell.second;
    return x * x + y * y;
  };

  // Distance, how far off the middle of the pitch, cell: the smallest is tried first.
  std::set<std::tuple<long, double, Cell>> open;
  std::set<Cell> seen;
  const auto discover = [&](const Cell& cell) {
    if (distance(cell) < distance({0, 0}) || !seen.insert(cell).second) return;
    open.insert({distance(cell), at(cell).head<2>().lpNorm<1>(), cell});
  };
  const auto isFree = [&](const Cell& cell) {
    const bool leaves = !isBehindGoalLine(place) && isBehindGoalLine(at(cell));
    return !leaves && isSafe(robot, at(cell), awayFromBall);
  };

  Eigen::Vector3d found = place;
  discover({0, 0});
  for (int attempt = 0; attempt < kPlaceAttempts && !open.empty(); ++attempt) {
    const Cell cell = std::get<Cell>(open.extract(open.begin()).value());
    if (isFree(cell)) {
      found = at(cell);
      break;
    }
    for (const Cell& step : {Cell{1, 0}, Cell{-1, 0}, Cell{0, 1}, Cell{0, -1}}) {
      discover({cell.first + step.first, cell.second + step.second});
    }
  }
  const RobotHandle handle = robot.handle;
  world_.moveRobot(handle, found);
  noteMove(handle, time);
}

Eigen::Vector3d Placement::besidePitch(Side side, int number, double height) const {
  const double x = ownGoalSign(side) * 0.6 * (7 - number);
  return {x, world_.ball().position.y() < 0 ? kHalfWidth + 0.5 : -kHalfWidth - 0.5, height};
}

}  // namespace arena
