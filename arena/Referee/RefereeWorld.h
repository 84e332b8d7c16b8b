#ifndef QUOLNARIS_REFEREE_REFEREEWORLD_H_
#define QUOLNARIS_REFEREE_REFEREEWORLD_H_

#include <Eigen/Geometry>
#include <optional>
#include <span>

#include "Common/Events.h"
#include "Common/Robots.h"
#include "Common/Side.h"

namespace arena {

// What the referee and the trainer know of the physics, and what they may do to it. The physics
// side implements it over the engine, tests over scripted robots.
//
// Frames and units: world frame (x along the pitch, left goal at negative x; y to the left seen
// from the left team; z up), metres, metres per second, radians unless a name says degrees.
// Spans stay valid until the next physics step or the next non-const call.

// One robot that has been built (its scene is loaded). Torso frame: x right, y front, z up.
struct RobotView {
  RobotHandle handle = kNoRobot;
  Side side = Side::None;  // None until its init has been accepted
  int number = 0;          // 1 to 11; 0 until its init has been accepted
  int type = 0;            // 0 to 4
  Eigen::Isometry3d torso = Eigen::Isometry3d::Identity();  // world from torso
  Eigen::Vector3d velocity = Eigen::Vector3d::Zero();       // of the torso, m/s
};

// A collision shape of a robot. Boxes have their half edges in halfSize; for other shapes
// halfSize holds half the edges of the smallest box in the collider's frame.
struct ColliderView {
  Body body = Body::Torso;
  bool box = true;
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();  // world from collider (its centre)
  Eigen::Vector3d halfSize = Eigen::Vector3d::Zero();      // m
};

struct BallView {
  Eigen::Vector3d position = Eigen::Vector3d::Zero();  // of the centre
  Eigen::Vector3d velocity = Eigen::Vector3d::Zero();
};

class RefereeWorld {
 public:
  virtual ~RefereeWorld() = default;

  // Number of agents connected, with or without a robot.
  virtual int agentCount() const = 0;
  // All robots in order of their connection. What was moved in this cycle is reported at its new
  // place, with zero velocity.
  virtual std::span<const RobotView> robots() const = 0;
  // The colliders of one robot, in the order of Body; empty for an unknown handle. Follows moves
  // made in this cycle.
  virtual std::span<const ColliderView> colliders(RobotHandle robot) const = 0;
  virtual BallView ball() const = 0;

  // The robot of this handle, or of this team and number; null if there is none.
  const RobotView* find(RobotHandle robot) const;
  const RobotView* find(Side side, int number) const;

  // Contacts of the last step, at the places where they happened.
  virtual std::span<const BallContact> ballContacts() const = 0;
  virtual std::span<const RobotContact> robotContacts() const = 0;
  // Whether the ball touched the sensor box of the goal that `side` defends, in the last step.
  virtual bool goalSensorHit(Side side) const = 0;

  // Puts the torso centre at `place`, keeping the pose (all joint angles, orientation). All
  // velocities of the robot become 0. Sleeping bodies are not woken. Unknown handles: no effect.
  virtual void moveRobot(RobotHandle robot, const Eigen::Vector3d& place) = 0;
  // As moveRobot, with the torso upright and turned to the world yaw (degrees; -90 faces +x).
  virtual void placeUpright(RobotHandle robot, const Eigen::Vector3d& place, double yawDegrees) = 0;
  // Every player now belongs to the other side, with the same number.
  virtual void changeSides() = 0;
  // Takes the robot out of the physics; its connection stays open. The handle is dead afterwards.
  virtual void removeRobot(RobotHandle robot) = 0;

  // Sets what is given and wakes the ball. A velocity also sets the spin to 0.
  virtual void setBall(std::optional<Eigen::Vector3d> position,
                       std::optional<Eigen::Vector3d> velocity) = 0;

  // While a limb is frozen every velocity commanded to one of its joints is replaced by 0.
  virtual void setFrozen(RobotHandle robot, Limb limb, bool frozen) = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_REFEREEWORLD_H_
