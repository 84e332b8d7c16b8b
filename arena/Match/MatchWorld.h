#ifndef QUOLNARIS_MATCH_MATCHWORLD_H_
#define QUOLNARIS_MATCH_MATCHWORLD_H_

#include <map>
#include <vector>

#include "Common/Scene.h"
#include "Physics/PhysicsWorld.h"
#include "Referee/RefereeWorld.h"

namespace arena {

// The physics as referee and trainer see it: robots with sides and numbers.
class MatchWorld : public RefereeWorld {
 public:
  // Workers as for PhysicsWorld.
  explicit MatchWorld(Workers* workers = nullptr) : physics_(workers) {}

  PhysicsWorld& physics() { return physics_; }
  const PhysicsWorld& physics() const { return physics_; }

  // Until it is enlisted the robot passes through others that are not: they all start, and the
  // refused all fall, at one place, where any number of them may be.
  void addRobot(RobotHandle robot, int type);
  // The robot has been given to a team; it now ranks last in the order of robots.
  void enlist(RobotHandle robot, Side side, int number);
  void setAgentCount(int count) { agentCount_ = count; }
  // To be called after every physics step.
  void refresh() { forgetPlaces(); }
  // Poses of everything, as they are now. `time`: simulation time, s.
  void snapshot(double time, Scene& scene) const;

  int agentCount() const override { return agentCount_; }
  std::span<const RobotView> robots() const override;
  std::span<const ColliderView> colliders(RobotHandle robot) const override;
  BallView ball() const override;
  std::span<const BallContact> ballContacts() const override { return physics_.ballContacts(); }
  std::span<const RobotContact> robotContacts() const override { return physics_.robotContacts(); }
  bool goalSensorHit(Side side) const override { return physics_.goalSensorHit(side); }
  void moveRobot(RobotHandle robot, const Eigen::Vector3d& place) override;
  void placeUpright(RobotHandle robot, const Eigen::Vector3d& place, double yawDegrees) override;
  void changeSides() override;
  void removeRobot(RobotHandle robot) override;
  void setBall(std::optional<Eigen::Vector3d> position,
               std::optional<Eigen::Vector3d> velocity) override;
  void setFrozen(RobotHandle robot, Limb limb, bool frozen) override;

 private:
  void forgetPlaces();

  PhysicsWorld physics_;
  int agentCount_ = 0;
  // In the order of physics_.robots(); the places in it are brought up to date on demand.
  mutable std::vector<RobotView> views_;
  mutable bool viewsCurrent_ = false;
  mutable std::map<RobotHandle, std::vector<ColliderView>> colliders_;
};

}  // namespace arena

#endif  // QUOLNARIS_MATCH_MATCHWORLD_H_
