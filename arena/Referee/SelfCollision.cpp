#include "Referee/SelfCollision.h"

#include <cmath>
#include <utility>

#include "Referee/Rules.h"

namespace arena {

namespace {

// The four pairs of one leg that are joined so closely that their boxes always overlap.
constexpr std::pair<Body, Body> kNeighbours[] = {
    {Body::Torso, Body::RightThigh},      {Body::Torso, Body::LeftThigh},
    {Body::RightThigh, Body::RightShank}, {Body::LeftThigh, Body::LeftShank},
    {Body::RightShank, Body::RightFoot},  {Body::LeftShank, Body::LeftFoot},
    {Body::RightFoot, Body::RightToe},    {Body::LeftFoot, Body::LeftToe}};

// Whether a span of seconds since then is over; it is if the clock was set back.
bool isOver(float since, float time, float span) {
  return time < since || time - since >= span;
}

}  // namespace

bool mayCollide(Body first, Body second) {
  if (first > second) std::swap(first, second);
  for (const auto& [one, other] : kNeighbours) {
    if (first == one && second == other) return false;
  }
  return first != second;
}

bool boxesOverlap(const ColliderView& first, const ColliderView& second, double depth) {
  const Eigen::Vector3d& a = first.halfSize;
  const Eigen::Vector3d& b = second.halfSize;
  const Eigen::Vector3d apart = second.pose.translation() - first.pose.translation();
  if (apart.squaredNorm() > (a.norm() + b.norm()) * (a.norm() + b.norm())) return false;

  const Eigen::Vector3d t = first.pose.linear().transpose() * apart;
  const Eigen::Matrix3d r = first.pose.linear().transpose() * second.pose.linear();
  const Eigen::Matrix3d size = r.cwiseAbs();
  for (int i = 0; i < 3; ++i) {
    if (a[i] + size.row(i).dot(b) - std::abs(t[i]) <= depth) return false;
    if (size.col(i).dot(a) + b[i] - std::abs(r.col(i).dot(t)) <= depth) return false;
  }
  for (int i = 0; i < 3; ++i) {
    const int i1 = (i + 1) % 3;
    const int i2 = (i + 2) % 3;
    for (int j = 0; j < 3; ++j) {
      const int j1 = (j + 1) % 3;
      const int j2 = (j + 2) % 3;
      const double reach =
          a[i1] * size(i2, j) + a[i2] * size(i1, j) + b[j1] * size(i, j2) + b[j2] * size(i, j1);
      if (reach - std::abs(t[i2] * r(i1, j) - t[i1] * r(i2, j)) <= depth) return false;
    }
  }
  return true;
}

LimbSet collidingLimbs(std::span<const ColliderView> colliders) {
  LimbSet limbs{};
  for (std::size_t i = 0; i < colliders.size(); ++i) {
    if (!colliders[i].box) continue;
    for (std::size_t j = i + 1; j < colliders.size(); ++j) {
      if (!colliders[j].box || !mayCollide(colliders[i].body, colliders[j].body)) continue;
      if (!boxesOverlap(colliders[i], colliders[j], kSelfCollisionOverlap)) continue;
      for (const Body body : {colliders[i].body, colliders[j].body}) {
        if (const auto limb = limbOf(body)) limbs[static_cast<std::size_t>(*limb)] = true;
      }
    }
  }
  return limbs;
}

bool LimbFreezer::update(const LimbSet& colliding, float time, RobotHandle robot,
                         RefereeWorld& world) {
  bool any = false;
  for (std::size_t i = 0; i < kLimbCount; ++i) {
    State& limb = limbs_[i];
    if (limb.phase == Phase::Frozen && isOver(limb.since, time, kFreezeTime)) {
      world.setFrozen(robot, kAllLimbs[i], false);
      limb = {Phase::Immune, time};
    } else if (limb.phase == Phase::Immune && isOver(limb.since, time, kFreezeImmunity)) {
      limb.phase = Phase::Free;
    }
    if (limb.phase != Phase::Free || !colliding[i]) continue;
    world.setFrozen(robot, kAllLimbs[i], true);
    limb = {Phase::Frozen, time};
    any = true;
  }
  return any;
}

void LimbFreezer::release(RobotHandle robot, RefereeWorld& world) {
  for (std::size_t i = 0; i < kLimbCount; ++i) {
    if (limbs_[i].phase == Phase::Frozen) world.setFrozen(robot, kAllLimbs[i], false);
  }
  limbs_ = {};
}

}  // namespace arena
