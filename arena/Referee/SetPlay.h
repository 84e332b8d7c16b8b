#ifndef QUOLNARIS_REFEREE_SETPLAY_H_
#define QUOLNARIS_REFEREE_SETPLAY_H_

#include <Eigen/Core>

#include "Common/PlayMode.h"
#include "Common/Side.h"

namespace arena {

// How the set plays differ.
struct SetPlayRule {
  ModeKind kind;
  bool indirect;           // a goal straight from the kick does not count
  bool clearsPenaltyArea;  // opponents leave the penalty area, instead of the circle of the ball
};

// The rule of the kind, or null if it is not a set play.
const SetPlayRule* setPlayRule(ModeKind kind);

// Places of the ball (m, world) in the set plays that the referee calls.
//
// Kick-in: x of the ball's last place in the field, on the side line over which it went (sign of
// y).
Eigen::Vector2d kickInPlace(const Eigen::Vector2d& lastInField, double ballY);
// Corner of the attacking side, on the half with the sign of y.
Eigen::Vector2d cornerPlace(Side attacking, double ballY);
Eigen::Vector2d goalKickPlace(Side defending);
// Free kick: the given place, or the outer corner of the penalty area it lies in.
Eigen::Vector2d freeKickPlace(const Eigen::Vector2d& ball);
// Drop ball: as for a free kick, but just within the side line if the ball is beyond it.
Eigen::Vector2d dropBallPlace(const Eigen::Vector2d& ball);

// A set play under way.
struct SetPlay {
  Eigen::Vector2d place = Eigen::Vector2d::Zero();
  // Whether the ball is put to its place in every cycle until it is taken. Otherwise it may roll,
  // and is put there when it is touched: that moves the kicking team off it as well.
  bool pinned = true;
  bool arranged = false;  // the kicking team has been moved off the ball
  bool played = false;    // goal kick: touched, but not yet out of the penalty area
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_SETPLAY_H_
