#include "Referee/BallWatch.h"

#include <algorithm>
#include <cmath>

#include "Referee/Rules.h"

namespace arena {

void BallWatch::update(const RefereeWorld& world, float time) {
  touches_.clear();
  for (const BallContact& contact : world.ballContacts()) {
    const RobotView* robot = world.find(contact.robot);
    if (!robot || robot->side == Side::None) continue;
    const bool known = std::any_of(touches_.begin(), touches_.end(), [&](const Touch& touch) {
      return touch.robot == robot->handle;
    });
    if (!known) touches_.push_back({robot->handle, robot->side, robot->number, time});
  }
  if (!touches_.empty()) lastTouch_ = touches_.back();

  const Eigen::Vector3d ball = world.ball().position;
  if (std::abs(ball.x()) <= kHalfLength && std::abs(ball.y()) <= kHalfWidth) {
    lastInField_ = ball.head<2>();
    lastInFieldTime_ = time;
  }
}

void BallWatch::changeSides() {
  for (Touch& touch : touches_) touch.side = opponent(touch.side);
  lastTouch_.side = opponent(lastTouch_.side);
}

}  // namespace arena
