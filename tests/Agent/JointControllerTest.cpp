#include "Agent/JointController.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Kinematics/Draws.h"

namespace {

// A controller as in the middle of a motion: sensed at 10 degrees with 2 degrees still under way.
JointController moving() {
  JointController c;
  c.currentAngle = 10;
  c.lastAngle = 2;
  return c;
}

TEST(JointControllerTest, StartsAtZero) {
  const JointController c;
  EXPECT_EQ(c.count, 0);
  EXPECT_EQ(c.preValue, 0);
  EXPECT_EQ(c.lastAngle, 0);
  EXPECT_EQ(c.currentAngle, 0);
  EXPECT_EQ(c.Angle, 0);
}

TEST(JointControllerTest, TakesAPercentageOfTheRemainingErrorOff) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  EXPECT_EQ(c.Angle, 4);  // half of 20 - 12
  EXPECT_EQ(c.preValue, 20);
}

TEST(JointControllerTest, ClipsTheValueToTheLimitInBothDirections) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(40, 100, 1, 6));
  EXPECT_EQ(c.Angle, 6);
  EXPECT_FALSE(c.setAngle(-40, 100, 1, 6));
  EXPECT_EQ(c.Angle, -6);
  EXPECT_FALSE(c.setAngle(18, 100, 1, 6));
  EXPECT_EQ(c.Angle, 6);  // exactly the limit passes
}

TEST(JointControllerTest, ArrivesStrictlyWithinTheTolerance) {
  JointController c = moving();
  EXPECT_TRUE(c.setAngle(12.5, 100, 1, 6));
  EXPECT_EQ(c.Angle, 0);
  EXPECT_FALSE(c.setAngle(13, 100, 1, 6));
  EXPECT_EQ(c.Angle, 1);
}

TEST(JointControllerTest, AnArrivedTargetIsNotRemembered) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  EXPECT_TRUE(c.setAngle(12.5, 50, 1, 6));
  EXPECT_EQ(c.preValue, 20);
  EXPECT_EQ(c.count, 0);
  EXPECT_FALSE(c.setAngle(20, 50, 1, 6));
  EXPECT_EQ(c.count, 1);
}

TEST(JointControllerTest, ToleranceZeroNeverArrives) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(12, 100, 0, 6));
  EXPECT_EQ(c.Angle, 0);
}

TEST(JointControllerTest, NotANumberStopsTheJointAndLeavesTheMemory) {
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
TEST(JointControllerTest, AStalledJointWithinSixDegreesArrivesAtTheTwoHundredthRepeat) {
  JointController c = moving();
  constexpr float kWanted = 17;  // 5 degrees ahead of 12
  EXPECT_FALSE(c.setAngle(kWanted, 50, 1, 6));
  for (int repeat = 1; repeat < 200; ++repeat) {
    ASSERT_FALSE(c.setAngle(kWanted, 50, 1, 6)) << repeat;
    ASSERT_EQ(c.count, repeat);
    ASSERT_EQ(c.Angle, 2.5F);
  }
  EXPECT_TRUE(c.setAngle(kWanted, 50, 1, 6));
  EXPECT_EQ(c.count, 200);
  EXPECT_EQ(c.Angle, 0);
  EXPECT_TRUE(c.setAngle(kWanted, 50, 1, 6));
  EXPECT_EQ(c.count, 201);
}

TEST(JointControllerTest, AStalledJointSixDegreesAwayIsDrivenWithoutEnd) {
  JointController c = moving();
  for (int call = 0; call < 400; ++call) ASSERT_FALSE(c.setAngle(18, 50, 1, 6)) << call;
  EXPECT_EQ(c.Angle, 3);
}

TEST(JointControllerTest, AnotherTargetStartsTheStallCountAgain) {
  JointController c = moving();
  for (int call = 0; call < 150; ++call) c.setAngle(17, 50, 1, 6);
  EXPECT_EQ(c.count, 149);
  c.setAngle(16, 50, 1, 6);
  EXPECT_EQ(c.count, 0);
}

// preValue starts at 0, so that a first target of 0 counts as repeated at once.
TEST(JointControllerTest, ZeroIsTheRememberedTargetAtStart) {
  JointController c = moving();
  EXPECT_FALSE(c.setAngle(0, 50, 1, 6));
  EXPECT_EQ(c.count, 1);
}

TEST(JointControllerTest, RotateSendsAnyValueAndOnlyReportsTheLimit) {
  JointController c = moving();
  EXPECT_FALSE(c.rotateAngle(9, 6));
  EXPECT_EQ(c.Angle, 9);
  EXPECT_TRUE(c.rotateAngle(-6, 6));
  EXPECT_EQ(c.Angle, -6);
}

TEST(JointControllerTest, FastSetDrivesTheWholeErrorAtOnce) {
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

TEST(JointControllerTest, ANewCycleTakesTheSensedAngleAndClearsTheCommand) {
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

// In single precision 2^24 + 1 is 2^24. The tolerance looks at (target - sensed) - under way, which
// is 1 here; the command at target - (under way + sensed), which is 0.
TEST(JointControllerTest, ToleranceAndCommandRoundInTheirOwnOrder) {
  JointController c;
  c.currentAngle = 16777216;
  c.lastAngle = 1;
  EXPECT_FALSE(c.setAngle(16777216, 100, 0.5, 6));
  EXPECT_EQ(c.Angle, 0);
  EXPECT_EQ(c.preValue, 16777216);
}

// The law once more, rule by rule, beside a controller that follows a joint through many motions:
// targets that jump, creep, last for seconds or are no numbers, on a joint that lags or is stuck.
TEST(JointControllerTest, FollowsTheLawOverLongSequencesOfSensedAngles) {
  constexpr int kCycles = 200000;
  constexpr float kLimit = 6;
  CaseCount arrivals("joints arrived", 10000);
  CaseCount stalls("joints that arrived by the stall rule alone", 1000);
  CaseCount clipped("values cut to the limit", 10000);
  CaseCount free("values below the limit", 10000);
  CaseCount notNumbers("targets that are no numbers", 100);
  Draws draws(7);
  const auto between = [&draws](double low, double high) {
    return static_cast<float>(draws.between(low, high));
  };

  Joint joint("rle4", 0);
  JointController c(&joint);
  float target = 0, gain = 0, error = 0, stiffness = 0;
  float sent = 0;
  double remembered = 0;
  int repeats = 0;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    if (draws.oneOf(300) == 0) {
      target = between(-120, 120);
      gain = between(1, 100);
      error = between(0, 5);
      stiffness = draws.oneOf(2) == 0 ? 0 : between(0, 1);  // 0: the joint is stuck
      if (stiffness == 0) target = joint.getAngle() + between(-8, 8);
    }
    const float moved = stiffness * sent + between(-0.01, 0.01) * stiffness;
    const float sensed = joint.getAngle() + moved;
    const float pending = sent;
    joint.setAngle(sensed);
    c.adjustAngles();
    ASSERT_EQ(c.currentAngle, sensed);
    ASSERT_EQ(c.lastAngle, pending);

    if (draws.oneOf(1000) == 0) {
      ASSERT_TRUE(c.setAngle(std::nanf(""), gain, error, kLimit));
      ASSERT_EQ(c.Angle, 0);
      ASSERT_EQ(c.count, repeats);
      ASSERT_EQ(c.preValue, remembered);
      sent = 0;
      notNumbers.count();
      continue;
    }
    const bool same = target == remembered;
    repeats = same ? repeats + 1 : 0;
    const float away = target - sensed;
    const float rest = std::fabs(away - pending);
    const bool stalled = same && repeats >= 200 && rest < 6;
    const bool arrived = rest < error || stalled;
    ASSERT_EQ(c.setAngle(target, gain, error, kLimit), arrived) << "cycle " << cycle;
    ASSERT_EQ(c.count, repeats);
    if (arrived) {
      ASSERT_EQ(c.Angle, 0);
      (rest < error ? arrivals : stalls).count();
    } else {
      const float expectedAngle = pending + sensed;
      const float part = gain / 100.0F;
      const float value = part * (target - expectedAngle);
      ASSERT_EQ(c.Angle, value > kLimit ? kLimit : value < -kLimit ? -kLimit : value);
      (std::fabs(value) > kLimit ? clipped : free).count();
      remembered = target;
    }
    ASSERT_EQ(c.preValue, remembered);
    sent = c.Angle;
  }
}

}  // namespace
