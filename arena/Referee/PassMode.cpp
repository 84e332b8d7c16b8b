#include "Referee/PassMode.h"

#include <algorithm>

#include "Referee/Rules.h"

namespace arena {

bool PassMode::mayStart(const RefereeWorld& world, RobotHandle robot, float time) const {
  const RobotView* asking = world.find(robot);
  if (!asking || asking->side == Side::None) return false;
  if (time - sides_[index(asking->side)].lastIn < kPassModeInterval) return false;
  const BallView ball = world.ball();
  if (ball.velocity.norm() > kPassModeBallSpeed) return false;
  const auto distance = [&ball](const RobotView& player) {
    return (player.torso.translation() - ball.position).head<2>().norm();
  };
  if (distance(*asking) > kPassModePlayerDistance) return false;
  for (const BallContact& contact : world.ballContacts()) {
    const RobotView* toucher = world.find(contact.robot);
    if (toucher && toucher->side == asking->side) return false;
  }
  return std::none_of(world.robots().begin(), world.robots().end(), [&](const RobotView& other) {
    return other.side == opponent(asking->side) && distance(other) < kPassModeOpponentDistance;
  });
}

void PassMode::start(Side side, const Eigen::Vector3d& ball) {
  State& own = sides_[index(side)];
  const float lastIn = own.lastIn;
  own = State();
  own.lastIn = lastIn;
  own.watching = true;
  own.place = ball;
  State& other = sides_[index(opponent(side))];
  other.watching = other.limited = false;
}

void PassMode::end(Side side, float time) {
  State& own = sides_[index(side)];
  own.limited = own.watching;
  own.limitEnd = time + kPassModeScoreWait;
}

void PassMode::observe(std::span<const Touch> touches, const Eigen::Vector3d& ball, float time) {
  for (const Side side : kBothSides) {
    State& own = sides_[index(side)];
    if (!own.watching) continue;
    // The touches of this cycle come after the ball's way until now.
    for (const Touch& touch : touches) {
      if (touch.side != side) continue;
      if (own.firstToucher == kNoRobot) own.firstToucher = touch.robot;
      if (own.firstToucher != touch.robot) own.secondToucher = true;
      if (own.wentAway) own.touchedAway = true;
    }
    if ((ball - own.place).norm() >= kPassModeBallDistance) own.wentAway = true;
    const bool passed = own.secondToucher && own.touchedAway;
    if (passed || (own.limited && time >= own.limitEnd)) own.watching = own.limited = false;
  }
}

float PassMode::scoreWait(Side side, float time) const {
  const State& own = sides_[index(side)];
  return own.limited ? std::max(own.limitEnd - time, 0.0f) : 0.0f;
}

void PassMode::clear() {
  for (State& own : sides_) own.watching = own.limited = false;
}

}  // namespace arena
