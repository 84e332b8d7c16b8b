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

// Half the edge of the square that stands for a robot's visible shape.
constexpr double kBodyHalfWidth = 0.2;
// A player put exactly to the edge of a margin is outside of it, whatever the rounding.
constexpr double kEdge = 1e-9;

Eigen::Vector3d on(const Eigen::Vector2d& place, double height) {
  return {place.x(), place.y(), height};
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
  extend(robot.torso, {kBodyHalfWidth, kBodyHalfWidth, 0.0});
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
  if (std::abs(place.x()) > kHalfLength && std::abs(place.y()) < kBehindGoalY) return false;
  if (awayFromBall &&
      (place - world_.ball().position).head<2>().norm() < kPlaceBallDistance - kEdge) {
    return false;
  }
  int inArea = 0;
  const bool team = robot.side != Side::None;
  const Eigen::AlignedBox2d area = penaltyArea(team ? robot.side : Side::Left);
  for (const RobotView& other : world_.robots()) {
    if (other.handle == robot.handle) continue;
    if (bounds(other).exteriorDistance(place) < kAgentRadius - kEdge) return false;
    if (team && other.side == robot.side && contains(area, other.torso.translation())) ++inArea;
  }
  if (inArea < kMaxInOwnArea) return true;
  const Eigen::Vector2d margin = Eigen::Vector2d::Constant(kAgentRadius - kEdge);
  return !contains(Eigen::AlignedBox2d(area.min() - margin, area.max() + margin), place);
}

void Placement::put(const RobotView& robot, const Eigen::Vector3d& place, bool awayFromBall,
                    float time) {
  const Eigen::Vector2d present = robot.torso.translation().head<2>();
  using Cell = std::pair<int, int>;
  struct Candidate {
    double distance;  // to the robot's present place
    int order;        // of discovery; decides among equal distances
    Cell cell;        // grid steps from `place`
    bool operator<(const Candidate& other) const {
      return std::tie(distance, order) < std::tie(other.distance, other.order);
    }
  };
  const auto at = [&place](const Cell& cell) {
    return Eigen::Vector3d(place.x() + cell.first * kPlaceStep,
                           place.y() + cell.second * kPlaceStep, place.z());
  };
  std::set<Candidate> open;
  std::set<Cell> seen;
  const auto discover = [&](const Cell& cell) {
    if (!seen.insert(cell).second) return;
    open.insert({(at(cell).head<2>() - present).norm(), static_cast<int>(seen.size()), cell});
  };

  Eigen::Vector3d found = place;
  discover({0, 0});
  for (int attempt = 0; attempt < kPlaceAttempts && !open.empty(); ++attempt) {
    const Cell cell = open.extract(open.begin()).value().cell;
    if (isSafe(robot, at(cell), awayFromBall)) {
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
