#ifndef QUOLNARIS_PHYSICS_GEOMTAG_H_
#define QUOLNARIS_PHYSICS_GEOMTAG_H_

namespace arena {

class RobotBody;

// What a collision shape belongs to; the engine's user data of every shape points to one.
struct GeomTag {
  enum class Kind { Ground, Ball, Robot, Wall, LeftGoalSensor, RightGoalSensor };

  Kind kind;
  RobotBody* robot = nullptr;  // of Kind::Robot alone
  int body = -1;               // index into its bodies
};

// Category bits: static shapes never meet each other, goal sensors meet the ball alone.
inline constexpr unsigned long kStaticBit = 1;
inline constexpr unsigned long kRobotBit = 2;
inline constexpr unsigned long kBallBit = 4;
inline constexpr unsigned long kSensorBit = 8;

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_GEOMTAG_H_
