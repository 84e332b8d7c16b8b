#include "Match/MatchWorld.h"
#include "Common/Units.h"

#include <algorithm>
#include <cassert>

namespace arena {
namespace {

// Half the edges of the smallest box around a shape, in its frame.
Eigen::Vector3d halfSizeOf(const BodySpec& spec) {
  const auto& size = spec.size;
  switch (spec.shape) {
    case ShapeKind::Box:
      return {size[0] / 2, size[1] / 2, size[2] / 2};
    case ShapeKind::Sphere:
      return {size[0], size[0], size[0]};
    case ShapeKind::Capsule:
      break;
  }
  return {size[0], size[0], size[1] / 2 + size[0]};
}

}  // namespace

void MatchWorld::addRobot(RobotHandle robot, int type) {
  physics_.addRobot(robot, type).setNewcomer(true);
  views_.push_back({.handle = robot, .type = type});
  forgetPlaces();
}

void MatchWorld::enlist(RobotHandle robot, Side side, int number) {
  const auto found = std::find_if(views_.begin(), views_.end(),
                                  [robot](const auto& view) { return view.handle == robot; });
  assert(found != views_.end());
  found->side = side;
  found->number = number;
  std::rotate(found, found + 1, views_.end());
  physics_.renewRobot(robot);
  forgetPlaces();
}

void MatchWorld::forgetPlaces() {
  viewsCurrent_ = false;
  colliders_.clear();
}

void MatchWorld::snapshot(double time, Scene& scene) const {
  scene.time = time;
  scene.ball.linear() = physics_.ballRotation();
  scene.ball.translation() = physics_.ballPosition();
  scene.robots.resize(physics_.robots().size());
  for (std::size_t i = 0; i < scene.robots.size(); ++i) {
    const RobotBody& body = *physics_.robots()[i];
    const RobotView& view = views_[i];
    SceneRobot& robot = scene.robots[i];
    robot.handle = view.handle;
    robot.side = view.side;
    robot.number = view.number;
    robot.type = view.type;
    const auto& bodies = body.model().bodies;
    for (std::size_t b = 0; b < bodies.size(); ++b) {
      robot.pose(bodies[b].body) = body.pose(static_cast<int>(b));
    }
    for (std::size_t j = 0; j < body.model().joints.size(); ++j) {
      robot.joints[j] =
          static_cast<float>(body.jointAngle(static_cast<int>(j)) / kRadiansPerDegree);
    }
  }
}

std::span<const RobotView> MatchWorld::robots() const {
  if (!viewsCurrent_) {
    for (std::size_t i = 0; i < views_.size(); ++i) {
      const RobotBody& body = *physics_.robots()[i];
      assert(body.handle() == views_[i].handle);
      views_[i].torso = body.torsoPose();
      views_[i].velocity = body.torsoVelocity();
    }
    viewsCurrent_ = true;
  }
  return views_;
}

std::span<const ColliderView> MatchWorld::colliders(RobotHandle robot) const {
  const RobotBody* body = physics_.robot(robot);
  if (body == nullptr) return {};
  std::vector<ColliderView>& result = colliders_[robot];
  if (result.empty()) {
    const auto& specs = body->model().bodies;
    for (std::size_t i = 0; i < specs.size(); ++i) {
      if (!specs[i].collider) continue;
      result.push_back({specs[i].body, specs[i].shape == ShapeKind::Box,
                        body->pose(static_cast<int>(i)), halfSizeOf(specs[i])});
    }
  }
  return result;
}

BallView MatchWorld::ball() const {
  return {physics_.ballPosition(), physics_.ballVelocity()};
}

void MatchWorld::moveRobot(RobotHandle robot, const Eigen::Vector3d& place) {
  RobotBody* body = physics_.robot(robot);
  if (body == nullptr) return;
  body->moveTo(place);
  forgetPlaces();
}

void MatchWorld::placeUpright(RobotHandle robot, const Eigen::Vector3d& place, double yawDegrees) {
  RobotBody* body = physics_.robot(robot);
  if (body == nullptr) return;
  body->placeUpright(place, yawDegrees * kRadiansPerDegree);
  forgetPlaces();
}

void MatchWorld::changeSides() {
  for (RobotView& view : views_) view.side = opponent(view.side);
}

void MatchWorld::removeRobot(RobotHandle robot) {
  physics_.removeRobot(robot);
  std::erase_if(views_, [robot](const RobotView& view) { return view.handle == robot; });
  forgetPlaces();
}

void MatchWorld::setBall(std::optional<Eigen::Vector3d> position,
                         std::optional<Eigen::Vector3d> velocity) {
  if (position) physics_.setBallPosition(*position);
  if (velocity) physics_.setBallVelocity(*velocity);
}

void MatchWorld::setFrozen(RobotHandle robot, Limb limb, bool frozen) {
  RobotBody* body = physics_.robot(robot);
  if (body != nullptr) body->setFrozen(limb, frozen);
}

}  // namespace arena
