#ifndef QUOLNARIS_REFEREE_PASSMODE_H_
#define QUOLNARIS_REFEREE_PASSMODE_H_

#include <Eigen/Core>
#include <array>
#include <span>
#include <utility>

#include "Common/Side.h"
#include "Referee/BallWatch.h"
#include "Referee/RefereeWorld.h"

namespace arena {

// Pass mode: who may have it, and what it costs. A side that has had pass mode cannot score for
// 10 s after its end, unless the ball is really passed: two different players of the side have
// touched it since, and one of them did after the ball was 1 m away from where it lay.
class PassMode {
 public:
  // Whether the robot's request can be granted, with the contacts and places of the last step. The
  // play mode is for the caller to check.
  bool mayStart(const RefereeWorld& world, RobotHandle robot, float time) const;

  // Pass mode of the side begins with the ball at this place. Lifts the other side's limit.
  void start(Side side, const Eigen::Vector3d& ball);
  // REQUIRES: called in each cycle of the side's pass mode.
  void remain(Side side, float time) { sides_[index(side)].lastIn = time; }
  // Pass mode has ended: the side's limit begins.
  void end(Side side, float time);

  // REQUIRES: called in every cycle of open play, before goals are judged.
  void observe(std::span<const Touch> touches, const Eigen::Vector3d& ball, float time);
  // Seconds until the side may score again; 0 if it may.
  float scoreWait(Side side, float time) const;
  // Lifts both limits.
  void clear();
  // The teams change sides; limits and waiting times go with them.
  void changeSides() { std::swap(sides_[0], sides_[1]); }

 private:
  struct State {
    float lastIn = kNever;  // game time of the side's last cycle in pass mode
    bool watching = false;  // from the start of pass mode until its limit is lifted or over
    bool limited = false;
    float limitEnd = 0;
    Eigen::Vector3d place = Eigen::Vector3d::Zero();  // of the ball in pass mode
    bool wentAway = false;
    RobotHandle firstToucher = kNoRobot;
    bool secondToucher = false;
    bool touchedAway = false;
  };

  std::array<State, 2> sides_;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_PASSMODE_H_
