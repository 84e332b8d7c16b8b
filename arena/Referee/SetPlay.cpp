#include "Referee/SetPlay.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Referee/Placement.h"
#include "Referee/Rules.h"

namespace arena {

namespace {

constexpr std::array<SetPlayRule, 5> kSetPlayRules = {{
    {ModeKind::KickIn, true, false},
    {ModeKind::CornerKick, false, false},
    {ModeKind::GoalKick, false, true},
    {ModeKind::FreeKick, true, false},
    {ModeKind::DirectFreeKick, false, false},
}};

double withSignOf(double y, double size) {
  return y < 0 ? -size : size;
}

}  // namespace

const SetPlayRule* setPlayRule(ModeKind kind) {
  const auto found = std::find_if(kSetPlayRules.begin(), kSetPlayRules.end(),
                                  [kind](const SetPlayRule& rule) { return rule.kind == kind; });
  return found == kSetPlayRules.end() ? nullptr : found;
}

Eigen::Vector2d kickInPlace(const Eigen::Vector2d& lastInField, double ballY) {
  return {lastInField.x(), withSignOf(ballY, kHalfWidth - kBallRadius)};
}

Eigen::Vector2d cornerPlace(Side attacking, double ballY) {
  return {-ownGoalSign(attacking) * (kHalfLength - kBallRadius), withSignOf(ballY, kCornerKickY)};
}

Eigen::Vector2d goalKickPlace(Side defending) {
  return {ownGoalSign(defending) * (kHalfLength - kGoalKickDistance), 0.0};
}

Eigen::Vector2d freeKickPlace(const Eigen::Vector2d& ball) {
  for (const Side side : kBothSides) {
    if (penaltyArea(side).contains(ball)) {
      return {ownGoalSign(side) * (kHalfLength - kPenaltyLength),
              withSignOf(ball.y(), kPenaltyWidth / 2)};
    }
  }
  return ball;
}

Eigen::Vector2d dropBallPlace(const Eigen::Vector2d& ball) {
  Eigen::Vector2d place = freeKickPlace(ball);
  if (std::abs(place.y()) <= kHalfWidth) return place;
  return {place.x(), withSignOf(place.y(), kHalfWidth - kBallRadius)};
}

}  // namespace arena
