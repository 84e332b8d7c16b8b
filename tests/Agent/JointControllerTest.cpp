#include "Agent/JointController.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

// A controller as in the middle of a motion: sensed at 10 degrees with 2 degrees still under way.
JointController moving() {
  JointController c;
  c.currentAngle = 10;
  c.lastAngle = 2;
  return c;
}

TEST(JointController, StartsAtZero) {
  const JointController c;
  EXPECT_EQ(c.count, 0);
  EXPECT_EQ(c.preValue, 0);
  EXPECT_EQ(c.lastAngle, 0);
  EXPECT_EQ(c.currentAngle, 0);
  EXPECT_EQ(c.Angle, 0);
}

TEST(JointController, TakesAPercentageOfTheRemainingErrorOff) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  EXPECT_EQ(c.Angle, 4);  // half of 20 - 12
  EXPECT_EQ(c.preValue, 20);
}

TEST(JointController, ClipsTheValueToTheLimitInBothDirections) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(40, 100, 1, 6));
  EXPECT_EQ(c.Angle, 6);
  EXPECT_FALSE(c.setAngle(-40, 100, 1, 6));
  EXPECT_EQ(c.Angle, -6);
  EXPECT_FALSE(c.setAngle(18, 100, 1, 6));
  EXPECT_EQ(c.Angle, 6);  // exactly the limit passes
}

TEST(JointController, ArrivesStrictlyWithinTheTolerance) {
  JointController c = moving();
  EXPECT_TRUE(c.setAngle(12.5, 100, 1, 6));
  EXPECT_EQ(c.Angle, 0);
  EXPECT_FALSE(c.setAngle(13, 100, 1, 6));
  EXPECT_EQ(c.Angle, 1);
}

TEST(JointController, AnArrivedTargetIsNotRemembered) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  EXPECT_TRUE(c.setAngle(12.5, 50, 1, 6));
  EXPECT_EQ(c.preValue, 20);
  EXPECT_EQ(c.count, 0);
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  EXPECT_EQ(c.count, 1);
}

TEST(JointController, ToleranceZeroNeverArrives) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(12, 100, 0, 6));
  EXPECT_EQ(c.Angle, 0);
}

TEST(JointController, NotANumberStopsTheJointAndLeavesTheMemory) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  ASSERT_EQ(c.count, 1);
  EXPECT_TRUE(c.setAngle(std::numeric_limits<float>::quiet_NaN(), 50, 1, 6));
  EXPECT_EQ(c.Angle, 0);
  EXPECT_EQ(c.count, 1);
  EXPECT_EQ(c.preValue, 20);
}

// The call that remembers the target leaves count at 0; each repeat adds 1.
TEST(JointController, AStalledJointWithinSixDegreesArrivesAtTheTwoHundredthRepeat) {
  JointController c = moving();
  constexpr float kTarget = 17;  // 5 degrees ahead of 12
  EXPECT_FALSE(c.setAngle(kTarget, 50, 1, 6));
  for (int repeat = 1; repeat < 200; ++repeat) {
    ASSERT_FALSE(c.setAngle(kTarget, 50, 1, 6)) << repeat;
    ASSERT_EQ(c.count, repeat);
    ASSERT_EQ(c.Angle, 2.5F);
  }
  EXPECT_TRUE(c.setAngle(kTarget, 50, 1, 6));
  EXPECT_EQ(c.count, 200);
  EXPECT_EQ(c.Angle, 0);
  EXPECT_TRUE(c.setAngle(kTarget, 50, 1, 6));
  EXPECT_EQ(c.count, 201);
}

TEST(JointController, AStalledJointSixDegreesAwayIsDrivenWithoutEnd) {
  JointController c = moving();
  for (int call = 0; call < 400; ++call) ASSERT_FALSE(c.setAngle(18, 50, 1, 6)) << call;
  EXPECT_EQ(c.Angle, 3);
}

TEST(JointController, AnotherTargetStartsTheStallCountAgain) {
  JointController c = moving();
  for (int call = 0; call < 150; ++call) c.setAngle(17, 50, 1, 6);
  EXPECT_EQ(c.count, 149);
  c.setAngle(16, 50, 1, 6);
  EXPECT_EQ(c.count, 0);
}

// preValue starts at 0, so that a first target of 0 counts as repeated at once.
TEST(JointController, ZeroIsTheRememberedTargetAtStart) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(0, 50, 1, 6));
  EXPECT_EQ(c.count, 1);
}

TEST(JointController, RotateSendsAnyValueAndOnlyReportsTheLimit) {
  JointController c = moving();
  EXPECT_FALSE(c.rotateAngle(9, 6));
  EXPECT_EQ(c.Angle, 9);
  EXPECT_TRUE(c.rotateAngle(-6, 6));
  EXPECT_EQ(c.Angle, -6);
}

TEST(JointController, FastSetDrivesTheWholeErrorAtOnce) {
  JointController c = moving();
  EXPECT_TRUE(c.fastSetAngle(14.5, 6));
  EXPECT_EQ(c.Angle, 2.5F);
  EXPECT_TRUE(c.fastSetAngle(12, 6));
  EXPECT_EQ(c.Angle, 0);
  EXPECT_TRUE(c.fastSetAngle(100, 6));
  EXPECT_EQ(c.Angle, 6);
  EXPECT_TRUE(c.fastSetAngle(-100, 6));
  EXPECT_EQ(c.Angle, -6);
}

TEST(JointController, ANewCycleTakesTheSensedAngleAndClearsTheCommand) {
  Joint joint("lae1", -30);
  JointController c(&joint);
  c.rotateAngle(4, 6);
  c.adjustAngles();
  EXPECT_EQ(c.currentAngle, -30);
  EXPECT_EQ(c.lastAngle, 4);
  EXPECT_EQ(c.Angle, 0);
  c.adjustAngles();
  EXPECT_EQ(c.lastAngle, 0);
}

}  // namespace
