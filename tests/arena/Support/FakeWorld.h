#ifndef QUOLNARIS_TESTS_ARENA_FAKEWORLD_H_
#define QUOLNARIS_TESTS_ARENA_FAKEWORLD_H_

#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <vector>

#include "Referee/Referee.h"
#include "Referee/RefereeWorld.h"

namespace arena {

inline Eigen::Isometry3d poseAt(double x, double y, double z, double yawDegrees = 0) {
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  pose.translation() = Eigen::Vector3d(x, y, z);
  pose.linear() = Eigen::AngleAxisd(yawDegrees * std::numbers::pi / 180, Eigen::Vector3d::UnitZ())
                      .toRotationMatrix();
  return pose;
}

// A pose whose axes are far from all those of the world.
inline Eigen::Isometry3d skewPoseAt(double x, double y, double z) {
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  pose.linear() = (Eigen::AngleAxisd(0.5, Eigen::Vector3d::UnitX()) *
                   Eigen::AngleAxisd(0.7, Eigen::Vector3d::UnitY()) *
                   Eigen::AngleAxisd(0.9, Eigen::Vector3d::UnitZ()))
                      .toRotationMatrix();
  pose.translation() = Eigen::Vector3d(x, y, z);
  return pose;
}

// A world of scripted robots: nothing moves but what the test or the referee moves.
class FakeWorld : public RefereeWorld {
 public:
  struct Move {
    RobotHandle robot;
    Eigen::Vector3d place;
  };

  // A standing robot that faces the opponents' goal. Its only collider is the torso.
  RobotHandle add(Side side, int number, double x, double y, double z = 0.38) {
    RobotView view;
    view.handle = nextHandle_++;
    view.side = side;
    view.number = number;
    view.torso = poseAt(x, y, z, side == Side::Right ? 90 : -90);
    views_.push_back(view);
    agents = std::max(agents, static_cast<int>(views_.size()));
    return view.handle;
  }
  // Adds a collider whose centre lies at this place of the torso frame.
  void addCollider(RobotHandle robot, Body body, const Eigen::Vector3d& offset,
                   const Eigen::Vector3d& halfSize,
                   const Eigen::Matrix3d& turn = Eigen::Matrix3d::Identity()) {
    extra_[robot].push_back({body, offset, halfSize, turn});
  }

  RobotView& view(RobotHandle robot) {
    for (RobotView& view : views_) {
      if (view.handle == robot) return view;
    }
    throw std::out_of_range("no such robot");
  }
  Eigen::Vector3d place(RobotHandle robot) { return view(robot).torso.translation(); }
  void put(RobotHandle robot, double x, double y, double z = 0.38) {
    view(robot).torso.translation() = Eigen::Vector3d(x, y, z);
  }
  void setBallAt(double x, double y, double z = 0.042) {
    ballView.position = Eigen::Vector3d(x, y, z);
    ballView.velocity.setZero();
  }

  void touchBall(RobotHandle robot) { touches.push_back({robot, ballView.position}); }
  void touch(RobotHandle first, RobotHandle second, Body firstBody = Body::Torso,
             Body secondBody = Body::Torso) {
    const Eigen::Vector3d middle = (place(first) + place(second)) / 2;
    contacts.push_back({first, second, firstBody, secondBody, middle});
  }
  // Contacts hold for one step.
  void clearContacts() {
    touches.clear();
    contacts.clear();
    sensor[0] = sensor[1] = false;
  }
  bool isFrozen(RobotHandle robot, Limb limb) const {
    const auto found = frozen.find({robot, limb});
    return found != frozen.end() && found->second;
  }

  int agentCount() const override { return agents; }
  std::span<const RobotView> robots() const override { return views_; }
  std::span<const ColliderView> colliders(RobotHandle robot) const override {
    colliders_.clear();
    for (const RobotView& view : views_) {
      if (view.handle != robot) continue;
      colliders_.push_back({Body::Torso, true, view.torso, {0.05, 0.05, 0.09}});
      const auto extra = extra_.find(robot);
      if (extra == extra_.end()) continue;
      for (const Extra& collider : extra->second) {
        Eigen::Isometry3d pose = view.torso;
        pose.translation() = view.torso * collider.offset;
        pose.linear() = view.torso.linear() * collider.turn;
        colliders_.push_back({collider.body, true, pose, collider.halfSize});
      }
    }
    return colliders_;
  }
  BallView ball() const override { return ballView; }
  std::span<const BallContact> ballContacts() const override { return touches; }
  std::span<const RobotContact> robotContacts() const override { return contacts; }
  bool goalSensorHit(Side side) const override { return sensor[index(side)]; }

  void moveRobot(RobotHandle robot, const Eigen::Vector3d& place) override {
    for (RobotView& view : views_) {
      if (view.handle != robot) continue;
      view.torso.translation() = place;
      view.velocity.setZero();
      moves.push_back({robot, place});
    }
  }
  void placeUpright(RobotHandle robot, const Eigen::Vector3d& place, double yaw) override {
    moveRobot(robot, place);
    for (RobotView& view : views_) {
      if (view.handle == robot) view.torso = poseAt(place.x(), place.y(), place.z(), yaw);
    }
  }
  void changeSides() override {
    for (RobotView& view : views_) view.side = opponent(view.side);
  }
  void removeRobot(RobotHandle robot) override {
    std::erase_if(views_, [robot](const RobotView& view) { return view.handle == robot; });
  }
  void setBall(std::optional<Eigen::Vector3d> position,
               std::optional<Eigen::Vector3d> velocity) override {
    if (position) ballView.position = *position;
    if (velocity) ballView.velocity = *velocity;
    ++ballSettings;
  }
  void setFrozen(RobotHandle robot, Limb limb, bool isFrozenNow) override {
    frozen[{robot, limb}] = isFrozenNow;
  }

  int agents = 0;
  BallView ballView{{0, 0, 0.042}, Eigen::Vector3d::Zero()};
  std::vector<BallContact> touches;
  std::vector<RobotContact> contacts;
  bool sensor[2] = {false, false};
  std::vector<Move> moves;
  int ballSettings = 0;
  std::map<std::pair<RobotHandle, Limb>, bool> frozen;

 private:
  struct Extra {
    Body body;
    Eigen::Vector3d offset;
    Eigen::Vector3d halfSize;
    Eigen::Matrix3d turn;
  };
  std::vector<RobotView> views_;
  std::map<RobotHandle, std::vector<Extra>> extra_;
  mutable std::vector<ColliderView> colliders_;
  RobotHandle nextHandle_ = 100;
};

// A referee over scripted robots, with three players far from everything so that the rules for
// many agents hold: left 2 and 3, right 2.
class RefereeFixture {
 public:
  explicit RefereeFixture(RefereeOptions options = {}) : referee(world, options) {}

  void addPlayers() {
    left2 = world.add(Side::Left, 2, -8, 6);
    left3 = world.add(Side::Left, 3, -8, -6);
    right2 = world.add(Side::Right, 2, 8, 6);
  }
  // Cycles in which nothing is touched.
  void step(int cycles = 1) {
    for (int i = 0; i < cycles; ++i) {
      referee.step();
      world.clearContacts();
    }
  }
  void run(double seconds) { step(static_cast<int>(std::lround(seconds * 50))); }
  // One cycle in which these robots touch the ball.
  template <class... Robots>
  void touch(Robots... robots) {
    (world.touchBall(robots), ...);
    step();
  }
  // A goal sensor reports in one cycle.
  void hitGoalOf(Side side) {
    world.setBallAt(ownGoalSign(side) * 15.01, 0);
    world.sensor[index(side)] = true;
    step();
  }
  void start(PlayMode mode) { referee.setMode(mode); }
  PlayMode mode() const { return referee.game().mode; }

  FakeWorld world;
  Referee referee;
  RobotHandle left2 = kNoRobot;
  RobotHandle left3 = kNoRobot;
  RobotHandle right2 = kNoRobot;
};

}  // namespace arena

#endif  // QUOLNARIS_TESTS_ARENA_FAKEWORLD_H_
