#ifndef QUOLNARIS_WORLDMODEL_JOINT_H_
#define QUOLNARIS_WORLDMODEL_JOINT_H_

#include <string>

// The hinges of the head, of an arm and of a leg. The seventh of a leg, the toe, exists for every
// robot type; a server ignores it where the robot has none.
inline constexpr int kHeadJoints = 2;
inline constexpr int kHandJoints = 4;
inline constexpr int kLegJoints = 7;

// A hinge as the sensors report it: its effector name and its angle in degrees, in the server's
// sign convention.
class Joint {
 public:
  Joint() = default;
  Joint(const std::string& name, float angle) : JointAngle(angle), JointName(name) {}

  void setName(const std::string& name) { JointName = name; }
  void setAngle(float angle) { JointAngle = angle; }
  const std::string& getName() const { return JointName; }
  float getAngle() const { return JointAngle; }

  float JointAngle = 0.0f;
  std::string JointName;
};

#endif  // QUOLNARIS_WORLDMODEL_JOINT_H_
