#ifndef QUOLNARIS_COMMON_EVENTS_H_
#define QUOLNARIS_COMMON_EVENTS_H_

#include <Eigen/Core>

#include "Common/Robots.h"
#include "Common/Side.h"

namespace arena {

// What happens in one cycle: contacts in the physics step, and what the referee whistled, for
// monitors, recordings and reports. Places in metres, world frame.

// A robot collider touched the ball in the last step.
struct BallContact {
  RobotHandle robot = kNoRobot;
  Eigen::Vector3d point = Eigen::Vector3d::Zero();
};

// Colliders of two different robots touched in the last step; one entry per contact point.
struct RobotContact {
  RobotHandle first = kNoRobot;
  RobotHandle second = kNoRobot;
  Body firstBody = Body::Torso;
  Body secondBody = Body::Torso;
  Eigen::Vector3d point = Eigen::Vector3d::Zero();
};

// The values are the types in the monitor stream.
enum class FoulType {
  Crowding,
  Touching,
  IllegalDefence,
  IllegalAttack,
  Incapable,
  KickOff,
  Charging,
  SelfCollision,
};

struct FoulEvent {
  int index = 0;  // running number since the start of the game
  FoulType type = FoulType::Touching;
  Side side = Side::None;
  int number = 0;
  // False for the entries that follow the first one in each cycle in which a player is lifted.
  bool first = true;
};

struct GoalEvent {
  Side side = Side::None;        // who gets the goal
  float time = 0;                // game time, s
  Side scorerSide = Side::None;  // the last toucher; None if nobody had touched the ball
  int scorer = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_COMMON_EVENTS_H_
