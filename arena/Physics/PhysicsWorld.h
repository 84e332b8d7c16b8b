#ifndef QUOLNARIS_PHYSICS_PHYSICSWORLD_H_
#define QUOLNARIS_PHYSICS_PHYSICSWORLD_H_

#include <ode/ode.h>

#include <Eigen/Geometry>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "Common/Events.h"
#include "Common/Robots.h"
#include "Common/Side.h"
#include "Common/Workers.h"
#include "Physics/GeomTag.h"
#include "Physics/RobotBody.h"
#include "Physics/StepOrder.h"

namespace arena {

// The pitch in the physics engine: ground, walls, goals, ball and robots. One call of step() is one
// cycle of 20 ms. World frame as in Common/Pitch.h.
class PhysicsWorld {
 public:
  // Robots that do not touch are stepped side by side by the workers, who must outlive the world;
  // without workers by the caller. That changes nothing in what comes out.
  explicit PhysicsWorld(Workers* workers = nullptr);
  ~PhysicsWorld();
  PhysicsWorld(const PhysicsWorld&) = delete;
  PhysicsWorld& operator=(const PhysicsWorld&) = delete;

  // Builds a robot above the pitch; it starts to fall. The reference stays valid until its removal.
  // REQUIRES 0 <= type < kRobotTypeCount and a handle that no robot of this world has.
  RobotBody& addRobot(RobotHandle handle, int type);
  void removeRobot(RobotHandle handle);
  // Builds a robot anew in its present state, as if it had been added last. What follows then
  // depends on the order of these calls alone, not on the order in which the robots were added.
  // REQUIRES a known handle.
  RobotBody& renewRobot(RobotHandle handle);
  // Null for an unknown handle.
  RobotBody* robot(RobotHandle handle) const;
  // In order of their building.
  const std::vector<std::unique_ptr<RobotBody>>& robots() const { return robots_; }

  Eigen::Vector3d ballPosition() const;
  Eigen::Vector3d ballVelocity() const;
  Eigen::Vector3d ballSpin() const;  // rad/s
  Eigen::Matrix3d ballRotation() const;
  // Each wakes the ball. Setting the velocity also ends its spin.
  void setBallPosition(const Eigen::Vector3d& position);
  void setBallVelocity(const Eigen::Vector3d& velocity);

  // One cycle in two parts: first the accelerometers take their readings, then, after what else is
  // to be done to robots and ball in this cycle, the step itself.
  void sampleAccelerometers();
  void step();
  // Whether there are workers, and enough to do for them.
  bool worthWorkers() const;

  // What touched in the last step.
  std::span<const BallContact> ballContacts() const { return ballContacts_; }
  std::span<const RobotContact> robotContacts() const { return robotContacts_; }
  bool goalSensorHit(Side side) const { return goalHit_[index(side)]; }

 private:
  struct PendingFootForce {
    RobotBody* robot;
    int body;
    dVector3 point;
    dJointFeedback* feedback;
    dBodyID on;
    dJointID joint;
  };

  void buildStaticBox(dSpaceID space, const double* centre, const double* size, GeomTag* tag,
                      unsigned long category, unsigned long collide, bool turned);
  void buildGoal(Side side);
  void applyBallDrag();
  static void nearCallback(void* self, dGeomID first, dGeomID second);
  void collide(dGeomID first, dGeomID second);
  void recordContacts(const GeomTag& first, const GeomTag& second, const dContact* contacts,
                      int count);
  std::unique_ptr<RobotBody> buildRobot(RobotHandle handle, int type);
  void chooseWorkers();
  void readFootForces();
  void rescueTheLost();

  Workers* workers_;     // null: the caller steps
  bool shared_ = false;  // whether they step now
  dWorldID world_;
  dSpaceID space_;
  std::optional<StepOrder> order_;  // with workers alone
  dJointGroupID contactGroup_;
  dBodyID ball_;
  GeomTag groundTag_{GeomTag::Kind::Ground};
  GeomTag wallTag_{GeomTag::Kind::Wall};
  GeomTag ballTag_{GeomTag::Kind::Ball};
  GeomTag leftSensorTag_{GeomTag::Kind::LeftGoalSensor};
  GeomTag rightSensorTag_{GeomTag::Kind::RightGoalSensor};
  std::vector<std::unique_ptr<RobotBody>> robots_;

  std::vector<BallContact> ballContacts_;
  std::vector<RobotContact> robotContacts_;
  std::array<bool, 2> goalHit_{};
  std::vector<PendingFootForce> pending_;
  std::vector<std::unique_ptr<dJointFeedback>> feedbacks_;
};

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_PHYSICSWORLD_H_
