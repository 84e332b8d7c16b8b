#ifndef QUOLNARIS_REFEREE_BALLWATCH_H_
#define QUOLNARIS_REFEREE_BALLWATCH_H_

#include <Eigen/Core>
#include <span>
#include <vector>

#include "Common/Units.h"
#include "Referee/RefereeWorld.h"

namespace arena {

// A contact of a player with the ball. Kept with side and number, for the player may be gone when
// they are asked for.
struct Touch {
  RobotHandle robot = kNoRobot;
  Side side = Side::None;
  int number = 0;
  float time = kNever;  // game time of the cycle, s
};

// Remembers who touched the ball and where it was last inside the field.
// Reads: ball, ball contacts and robots of the world. Robots without a team are not players, and
// their contacts do not count.
class BallWatch {
 public:
  // REQUIRES: called once after each physics step, with the game time of the cycle.
  void update(const RefereeWorld& world, float time);
  // The teams change sides: what they have done before goes with them.
  void changeSides();

  // The players who touched the ball in this cycle, each once.
  std::span<const Touch> touches() const { return touches_; }
  // The last of all touches; of several in one cycle the last in order of the contacts.
  const Touch& lastTouch() const { return lastTouch_; }
  bool touchedAfter(float time) const { return lastTouch_.time > time; }

  // The last place of the ball's centre on or within the lines, and its game time.
  const Eigen::Vector2d& lastInField() const { return lastInField_; }
  float lastInFieldTime() const { return lastInFieldTime_; }

 private:
  std::vector<Touch> touches_;
  Touch lastTouch_;
  Eigen::Vector2d lastInField_ = Eigen::Vector2d::Zero();
  float lastInFieldTime_ = kNever;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_BALLWATCH_H_
