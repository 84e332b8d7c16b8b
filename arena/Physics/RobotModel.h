#ifndef QUOLNARIS_PHYSICS_ROBOTMODEL_H_
#define QUOLNARIS_PHYSICS_ROBOTMODEL_H_

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "Common/Robots.h"

// The five robot types as data: rigid bodies, hinges and foot sensors.
//
// Units: metre, kilogram, radian, second. In the zero pose (all joints 0) every body frame is
// aligned with the torso frame: +x = the robot's right, +y = its front, +z = up. All body frames
// sit at the centre of mass, which is also the centre of the shape.
namespace arena {

using Triple = std::array<double, 3>;

enum class ShapeKind { Box, Sphere, Capsule };

struct BodySpec {
  Body body;
  int parent;       // index of the parent body; -1 for the torso
  Triple position;  // centre relative to the torso centre, zero pose
  ShapeKind shape;
  Triple size;  // box: edges; sphere: radius, 0, 0; capsule: radius, cylinder length, 0
  double mass;
  bool collider;       // whether the shape takes part in collisions
  std::string sensor;  // name of the foot force sensor ("rf", "lf1"), empty if none
};

struct JointSpec {
  std::string effector;   // "he1", "rle3", ...
  std::string perceptor;  // "hj1", "rlj3", ...
  Limb limb;              // what it is frozen with
  int child;              // index of the body that the hinge moves
  int parent;             // index of the body that it hangs on
  Triple anchor;          // relative to the torso centre, zero pose
  Triple axis;            // direction, zero pose; of any length
  double low;             // lower stop, radians
  double high;            // upper stop, radians
  double maxSpeed;        // radians per second
};

// One robot type. Bodies stand in the order torso, neck, head, right arm, left arm, right leg,
// left leg; joints in the order in which the robot is built, which is also the order of the
// percepts.
struct RobotModel {
  int type;
  std::vector<BodySpec> bodies;
  std::vector<JointSpec> joints;

  // Index of the joint with this effector name; -1 if this type has none.
  int jointByEffector(std::string_view effector) const;
  // Index of this body; -1 if this type has none.
  int indexOf(Body body) const;
};

// The model of a type. REQUIRES 0 <= type < kRobotTypeCount. The reference stays valid for ever.
const RobotModel& robotModel(int type);

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_ROBOTMODEL_H_
