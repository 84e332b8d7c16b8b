#ifndef QUOLNARIS_PHYSICS_ROBOTBODY_H_
#define QUOLNARIS_PHYSICS_ROBOTBODY_H_

#include <ode/ode.h>

#include <Eigen/Geometry>
#include <array>
#include <span>
#include <vector>

#include "Common/Robots.h"
#include "Physics/GeomTag.h"
#include "Physics/RobotModel.h"

namespace arena {

// Reading of the force sensor in a foot or toe, in that body's frame (x right, y front, z up).
struct FootForce {
  bool contact = false;                             // false: the term is left out of the percept
  Eigen::Vector3d point = Eigen::Vector3d::Zero();  // mean weighted by the forces, m
  Eigen::Vector3d force = Eigen::Vector3d::Zero();  // sum, N
};

// One robot in the physics engine: rigid bodies, hinges with motors, colliders, and the sensors
// that follow the simulation step by step.
//
// Frames: world as in Field.h; body frames as in RobotModel.h.
class RobotBody {
 public:
  // Builds the robot in the zero pose with its torso centre at `place` and zero yaw.
  // `world` and `space` must outlive it.
  RobotBody(dWorldID world, dSpaceID space, int handle, const RobotModel& model,
            const Eigen::Vector3d& place);
  ~RobotBody();
  RobotBody(const RobotBody&) = delete;
  RobotBody& operator=(const RobotBody&) = delete;

  // All that a robot carries from step to step, in the engine's own precision.
  struct State {
    struct BodyState {
      std::array<double, 3> position;
      std::array<double, 4> rotation;  // quaternion, the engine's order
      std::array<double, 3> velocity;
      std::array<double, 3> spin;
    };
    std::vector<BodyState> bodies;
    std::vector<double> motorSpeeds;
    Eigen::Vector3d lastVelocity;
    Eigen::Vector3d accelerometer;
  };
  State state() const;
  // REQUIRES a state of the same robot type. Sleeping bodies stay awake.
  void setState(const State& state);

  int handle() const { return handle_; }
  const RobotModel& model() const { return model_; }
  // Its entry in the world's collision space, and the engine's bodies in the order of
  // model().bodies.
  dGeomID part() const { return reinterpret_cast<dGeomID>(space_); }
  std::span<const dBodyID> bodies() const { return bodies_; }

  // Index into model().bodies and model().joints.
  Eigen::Isometry3d pose(int body) const;
  Eigen::Isometry3d torsoPose() const { return pose(0); }
  Eigen::Vector3d torsoVelocity() const;  // m/s, world frame
  double jointAngle(int joint) const;     // radians
  bool asleep() const;                    // whether the torso is

  // Asks for a joint velocity (rad/s), which holds until it is replaced. The value is limited to
  // the joint's maximum, replaced by 0 while the limb is frozen, and ignored while the joint is at
  // or beyond a stop. A value other than 0 wakes a sleeping robot. Not-a-number reads as 0.
  void setJointSpeed(int joint, double speed);
  // Newcomers pass through each other.
  bool newcomer() const { return newcomer_; }
  void setNewcomer(bool newcomer) { newcomer_ = newcomer; }
  void setFrozen(Limb limb, bool frozen) { frozen_[static_cast<int>(limb)] = frozen; }

  // Puts the torso centre at `place`, pose kept, all velocities 0; wakes nothing.
  void moveTo(const Eigen::Vector3d& place);
  // As moveTo, the torso upright with the world yaw (radians), all joint angles kept.
  void placeUpright(const Eigen::Vector3d& place, double yaw);

  // To be called at the start of each step, before forces are applied: follows the accelerometer.
  void sampleAccelerometer();
  void applyDrag();
  // Between the steps of collision and sensors: the contacts of foot `body` in this step.
  void clearFootContacts();
  void addFootContact(int body, const dReal* point, const dReal* force);
  void updateFootSensors();

  Eigen::Vector3d gyro() const;                                            // degrees/s, torso frame
  const Eigen::Vector3d& accelerometer() const { return accelerometer_; }  // m/s², torso frame
  // In the order of the bodies that have such a sensor.
  const FootForce& footForce(int body) const;

 private:
  struct FootContact {
    Eigen::Vector3d point;
    Eigen::Vector3d force;
  };
  struct FootSensor {
    int body;
    std::vector<FootContact> contacts;
    FootForce reading;
  };

  void buildBody(dWorldID world, const BodySpec& spec, const Eigen::Vector3d& place);
  void buildJoint(dWorldID world, const JointSpec& spec);
  void stopAll();

  int handle_;
  const RobotModel& model_;
  dSpaceID space_;
  std::vector<dBodyID> bodies_;
  std::vector<dJointID> joints_;
  std::vector<GeomTag> tags_;
  std::vector<FootSensor> feet_;
  std::array<bool, std::size(kAllLimbs)> frozen_{};
  bool newcomer_ = false;
  Eigen::Vector3d lastVelocity_ = Eigen::Vector3d::Zero();
  Eigen::Vector3d accelerometer_ = Eigen::Vector3d::Zero();
};

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_ROBOTBODY_H_
