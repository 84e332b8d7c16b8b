#include "Referee/OwnAreaWatch.h"

#include "Referee/Placement.h"
#include "Referee/Rules.h"

namespace arena {

namespace {

bool inOwnArea(const RobotView& player) {
  return penaltyArea(player.side).contains(Eigen::Vector2d(player.torso.translation().head<2>()));
}

}  // namespace

void OwnAreaWatch::update(std::span<const RobotView> players) {
  entered_.keep(players);
  for (const RobotView& player : players) {
    long& rank = entered_[player.handle];
    if (!inOwnArea(player)) {
      rank = 0;
    } else if (rank == 0) {
      rank = ++lastRank_;
    }
  }
}

RobotHandle OwnAreaWatch::offender(Side side, std::span<const RobotView> players) const {
  const Eigen::Vector2d goal(ownGoalSign(side) * kHalfLength, 0.0);
  int count = 0;
  long latestRank = -1;
  const RobotView* latest = nullptr;
  double farthestDistance = -1;
  const RobotView* farthest = nullptr;  // among the field players
  for (const RobotView& player : players) {
    if (player.side != side || !inOwnArea(player)) continue;
    ++count;
    if (entered_.get(player.handle) > latestRank) {
      latestRank = entered_.get(player.handle);
      latest = &player;
    }
    const double distance = (player.torso.translation().head<2>() - goal).norm();
    if (player.number != kGoalieNumber && distance > farthestDistance) {
      farthestDistance = distance;
      farthest = &player;
    }
  }
  if (count <= kMaxInOwnArea) return kNoRobot;
  return latest->number == kGoalieNumber ? farthest->handle : latest->handle;
}

Eigen::Vector2d outsideOwnArea(Side side, const Eigen::Vector2d& place) {
  const Eigen::AlignedBox2d area = penaltyArea(side);
  const double toEdge[] = {place.x() - area.min().x(), area.max().x() - place.x(),
                           place.y() - area.min().y(), area.max().y() - place.y()};
  const auto nearest = std::min_element(std::begin(toEdge), std::end(toEdge)) - std::begin(toEdge);
  switch (nearest) {
    case 0:
      return {area.min().x() - kAgentRadius, place.y()};
    case 1:
      return {area.max().x() + kAgentRadius, place.y()};
    case 2:
      return {place.x(), area.min().y() - kAgentRadius};
    default:
      return {place.x(), area.max().y() + kAgentRadius};
  }
}

}  // namespace arena
