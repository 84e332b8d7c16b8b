// Limbs that reach into each other, and how they are frozen.
#include "Referee/SelfCollision.h"

#include <gtest/gtest.h>

#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

ColliderView box(Body body, const Eigen::Isometry3d& pose, const Eigen::Vector3d& half) {
  return {body, true, pose, half};
}

TEST(SelfCollisionBoxesTest, ParallelBoxesNeverCount) {
  const auto a = box(Body::Torso, Eigen::Isometry3d::Identity(), {0.1, 0.1, 0.1});
  EXPECT_FALSE(boxesOverlap(a, a, 0.04));
}

TEST(SelfCollisionBoxesTest, SkewBoxesCountWhenTheyReachFarInto) {
  const auto a = box(Body::Torso, Eigen::Isometry3d::Identity(), {0.1, 0.1, 0.1});
  EXPECT_TRUE(boxesOverlap(a, box(Body::LeftFoot, skewPoseAt(0, 0, 0), {0.1, 0.1, 0.1}), 0.04));
  EXPECT_FALSE(boxesOverlap(a, box(Body::LeftFoot, skewPoseAt(0.5, 0, 0), {0.1, 0.1, 0.1}), 0.04));
}

// Against a cube, the reach of a turned box along x is known: the overlap on the face axis is
// linear in the distance and reaches the limit at a distance that is computed here on its own.
TEST(SelfCollisionBoxesTest, FaceAxisGivesTheLimit) {
  const Eigen::Vector3d half(0.1, 0.1, 0.1);
  const auto cube = box(Body::Torso, Eigen::Isometry3d::Identity(), half);
  const Eigen::Matrix3d r = skewPoseAt(0, 0, 0).linear();
  const double reach = (std::abs(r(0, 0)) + std::abs(r(0, 1)) + std::abs(r(0, 2))) * 0.1;
  const double limit = 0.1 + reach - 0.04;
  EXPECT_FALSE(boxesOverlap(cube, box(Body::LeftFoot, skewPoseAt(limit + 1e-6, 0, 0), half), 0.04));
  EXPECT_TRUE(boxesOverlap(cube, box(Body::LeftFoot, skewPoseAt(0.3 * limit, 0, 0), half), 0.04));
}

TEST(SelfCollisionBoxesTest, DoesNotDependOnTheOrder) {
  for (int i = 0; i < 50; ++i) {
    const double x = 0.004 * i;
    const auto a = box(Body::Torso, poseAt(0.01, 0.02, 0.03, 20), {0.05, 0.08, 0.1});
    const auto b = box(Body::LeftFoot, skewPoseAt(x, -0.3 * x, 0.05), {0.04, 0.08, 0.06});
    EXPECT_EQ(boxesOverlap(a, b, 0.04), boxesOverlap(b, a, 0.04)) << i;
  }
}

TEST(SelfCollisionPairsTest, LeavesOutTheNeighboursOfOneLeg) {
  EXPECT_FALSE(mayCollide(Body::Torso, Body::RightThigh));
  EXPECT_FALSE(mayCollide(Body::LeftThigh, Body::Torso));
  EXPECT_FALSE(mayCollide(Body::LeftThigh, Body::LeftShank));
  EXPECT_FALSE(mayCollide(Body::RightFoot, Body::RightShank));
  EXPECT_FALSE(mayCollide(Body::RightFoot, Body::RightToe));
  EXPECT_TRUE(mayCollide(Body::LeftThigh, Body::RightShank));
  EXPECT_TRUE(mayCollide(Body::Torso, Body::RightShank));
  EXPECT_TRUE(mayCollide(Body::Torso, Body::RightUpperArm));
  EXPECT_TRUE(mayCollide(Body::RightUpperArm, Body::RightLowerArm));
  EXPECT_TRUE(mayCollide(Body::RightFoot, Body::LeftFoot));
  EXPECT_TRUE(mayCollide(Body::RightThigh, Body::RightFoot));
}

TEST(SelfCollisionLimbsTest, NamesTheLimbsOfBothBoxesButNotTheTorso) {
  const Eigen::Vector3d half(0.1, 0.1, 0.1);
  const auto limbs = [](std::initializer_list<ColliderView> colliders) {
    return collidingLimbs(std::vector<ColliderView>(colliders));
  };
  const auto torso = box(Body::Torso, Eigen::Isometry3d::Identity(), half);
  const LimbSet arm = limbs({torso, box(Body::LeftLowerArm, skewPoseAt(0, 0, 0), half)});
  EXPECT_EQ(arm, (LimbSet{false, false, true, false, false}));
  const auto hand = box(Body::RightLowerArm, Eigen::Isometry3d::Identity(), half);
  const LimbSet both = limbs({hand, box(Body::RightThigh, skewPoseAt(0, 0, 0), half)});
  EXPECT_EQ(both, (LimbSet{false, true, false, true, false}));
  const auto head = ColliderView{Body::Head, false, skewPoseAt(0, 0, 0), half};
  EXPECT_EQ(limbs({torso, head}), LimbSet{});
  EXPECT_EQ(limbs({torso, box(Body::RightThigh, skewPoseAt(0, 0, 0), half)}), LimbSet{});
}

TEST(SelfCollisionFreezerTest, FreezesForOneSecondAndThenSparesForTwo) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[static_cast<std::size_t>(Limb::RightArm)] = true;
  EXPECT_TRUE(freezer.update(arm, 1.0f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::RightArm));
  EXPECT_FALSE(world.isFrozen(7, Limb::LeftArm));
  EXPECT_FALSE(freezer.update(arm, 1.98f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::RightArm));
  EXPECT_FALSE(freezer.update(arm, 2.0f, 7, world));
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_FALSE(freezer.update(arm, 3.98f, 7, world));
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_TRUE(freezer.update(arm, 4.0f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::RightArm));
}

TEST(SelfCollisionFreezerTest, LimbsAreFrozenOneByOne) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[1] = true;
  LimbSet armAndLeg = arm;
  armAndLeg[4] = true;
  EXPECT_TRUE(freezer.update(arm, 1.0f, 7, world));
  EXPECT_TRUE(freezer.update(armAndLeg, 1.5f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::LeftLeg));
  EXPECT_FALSE(freezer.update({}, 2.1f, 7, world));
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_TRUE(world.isFrozen(7, Limb::LeftLeg));
}

TEST(SelfCollisionFreezerTest, ReleaseFreesAndForgets) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[1] = true;
  freezer.update(arm, 1.0f, 7, world);
  freezer.release(7, world);
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_TRUE(freezer.update(arm, 1.1f, 7, world));
}

TEST(SelfCollisionFreezerTest, ClockSetBackReleases) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[1] = true;
  freezer.update(arm, 100.0f, 7, world);
  freezer.update({}, 0.02f, 7, world);
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
}

}  // namespace
}  // namespace arena
