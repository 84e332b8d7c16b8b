#include "BasicAction/OmniSideWalk.h"

#include <gtest/gtest.h>

#include "BasicAction/Reset.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"
#include "support/PairOracle.h"

namespace {

using support::expectLikeOracle;
using support::expectLine;
using support::GaitNumbers;
using support::GaitStep;
using support::PairOracle;
using support::pointAt;

// sideWalk, as it stands.
constexpr GaitNumbers kStraight = {.torso = {28, 6, -66},
                                   .stride = {-10, 46, 41, -7},
                                   .lift = {14, 11, -11, -14},
                                   .yaw = {-1, -3, -3, 4},
                                   .sideways = true};

// An unwinding step takes its first phase from omniSideWalk.
constexpr GaitNumbers kUnwinding = {.torso = {28, 6, -66},
                                    .stride = {-9, 46, 41, -7},
                                    .lift = {13, 11, -11, -14},
                                    .yaw = {-1, -3, -3, 4},
                                    .sideways = true};

// 54.75, cut.
constexpr float kSpeed = 54;

class OmniSideWalkTest : public support::GaitFixture<OmniSideWalk> {
 protected:
  OmniSideWalkTest() {
    body.stand(Vector(0, 0, 0), 0);
    gait.error = 10;
    aim(60);
  }
  void aim(double angle) { gait.v = pointAt(angle); }
  void expect(const GaitStep& step) {
    const bool unwinding = step.sequence == 4 || step.sequence == 6;
    expectStepOf(unwinding ? kUnwinding : kStraight, step);
  }
};

TEST_F(OmniSideWalkTest, StartsFromTheFixedStance) {
  expectStance(Reset::kFixedStance);
}

TEST_F(OmniSideWalkTest, TheQuarterOfTheTargetPicksDirectionAndLegs) {
  struct Row {
    double angle;
    int gain;
    bool side, otherside, rotSide, rotOtherSide;
  };
  for (const Row& row : std::initializer_list<Row>{{-1, -1, false, true, true, false},
                                                   {-89.9, -1, false, true, true, false},
                                                   {-90, -1, false, true, false, true},
                                                   {-179, -1, false, true, false, true},
                                                   {1, 1, true, false, false, true},
                                                   {90, 1, true, false, false, true},
                                                   {90.1, 1, true, false, true, false},
                                                   {180, 1, true, false, true, false}}) {
    SCOPED_TRACE(row.angle);
    for (bool atStart : {true, false}) {
      OmniSideWalk fresh;
      fresh.basicWalkState = atStart ? 1 : 7;
      fresh.OWalk = !atStart;
      fresh.angle = row.angle;
      fresh.basicWalk(Vector(), 10);
      EXPECT_EQ(fresh.Gain, row.gain);
      EXPECT_EQ(fresh.side, row.side);
      EXPECT_EQ(fresh.otherside, row.otherside);
      EXPECT_EQ(fresh.rotSide, row.rotSide);
      EXPECT_EQ(fresh.rotOtherSide, row.rotOtherSide);
      EXPECT_EQ(fresh.angle, std::abs(row.angle));
      EXPECT_FALSE(fresh.OWalk);
    }
  }
}

TEST_F(OmniSideWalkTest, ExactlyAheadAndExactlyMinus180ChangeNothing) {
  for (double angle : {0.0, -180.0}) {
    OmniSideWalk fresh;
    fresh.Gain = -1;
    fresh.side = fresh.rotOtherSide = true;
    fresh.OWalk = true;
    fresh.angle = angle;
    fresh.basicWalk(Vector(), 10);
    EXPECT_EQ(fresh.Gain, -1);
    EXPECT_TRUE(fresh.side);
    EXPECT_FALSE(fresh.otherside);
    EXPECT_FALSE(fresh.rotSide);
    EXPECT_TRUE(fresh.rotOtherSide);
    EXPECT_FALSE(fresh.OWalk) << "cleared once used, even so";
  }
}

TEST_F(OmniSideWalkTest, BetweenTwoChoicesTheQuarterIsNotLookedAt) {
  OmniSideWalk fresh;
  fresh.basicWalkState = 7;
  fresh.angle = 120;
  fresh.basicWalk(Vector(), 10);
  EXPECT_FALSE(fresh.side);
  EXPECT_FALSE(fresh.rotSide);
}

// Left and ahead of abeam: side is the right leg, the rotating one the left.
TEST_F(OmniSideWalkTest, WalksLeftWithWholeStepsFromTheStart) {
  start();
  expect({2, kLeft, kLeft, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kLeft, 0, 1, kSpeed, false, 5});
  for (int pair = 0; pair < 40; ++pair) {
    expect({5, kLeft, kLeft, +1, 1, kSpeed, true, 4});
    EXPECT_EQ(gait.rotate, -3);
    expect({4, kRight, kLeft, -1, 1, kSpeed, false, 5});
    EXPECT_EQ(gait.rotate, 0);
  }
}

TEST_F(OmniSideWalkTest, WalksRightWithNegativeSteps) {
  aim(-60);
  start();
  expect({2, kRight, kRight, 0, -1, kSpeed, false, 3});
  expect({3, kLeft, kRight, 0, -1, kSpeed, false, 5});
  for (int pair = 0; pair < 40; ++pair) {
    expect({5, kRight, kRight, +1, -1, kSpeed, true, 4});
    expect({4, kLeft, kRight, -1, -1, kSpeed, false, 5});
  }
  EXPECT_LT(gait.ly, 0);
}

// Behind the abeam line the other leg rotates, and the chain is 3, 6.
TEST_F(OmniSideWalkTest, BehindAbeamTheLegOfTheSecondStepRotates) {
  aim(120);
  start();
  expect({2, kLeft, kRight, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, 1, kSpeed, true, 6});
  expect({6, kLeft, kRight, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kRight, +1, 1, kSpeed, true, 6});
  expect({6, kLeft, kRight, -1, 1, kSpeed, false, 3});
}

TEST_F(OmniSideWalkTest, ATargetAbeamIsWalkedToStraight) {
  aim(81);
  start();
  expect({2, kLeft, kLeft, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kLeft, 0, 1, kSpeed, false, 5});
  for (int pair = 0; pair < 20; ++pair) {
    expect({5, kLeft, kLeft, 0, 1, kSpeed, true, 4});
    expect({4, kRight, kLeft, 0, 1, kSpeed, false, 5});
  }
  EXPECT_EQ(gait.rotate, 0);
}

// The legs are chosen at the head of the cycle after the unwinding step: its own decision still
// goes by the old ones.
TEST_F(OmniSideWalkTest, ANewQuarterTakesEffectInTheCycleAfterAnUnwindingStep) {
  start();
  expect({2, kLeft, kLeft, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kLeft, 0, 1, kSpeed, false, 5});
  expect({5, kLeft, kLeft, +1, 1, kSpeed, true, 4});
  aim(-60);
  expect({4, kRight, kLeft, -1, 1, kSpeed, false, 5});
  EXPECT_EQ(gait.Gain, 1);
  EXPECT_FALSE(gait.rotSide);
  EXPECT_TRUE(gait.OWalk);
  expect({5, kRight, kRight, +1, -1, kSpeed, true, 4});
  EXPECT_EQ(gait.Gain, -1);
  EXPECT_TRUE(gait.otherside);
  expect({4, kLeft, kRight, -1, -1, kSpeed, false, 5});
}

TEST_F(OmniSideWalkTest, WithinAMetreOfItsTargetItWalksOnStraight) {
  gait.v = pointAt(30, 1.01);
  start();
  EXPECT_EQ(gait.error, 10);
  expect({2, kLeft, kLeft, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kLeft, 0, 1, kSpeed, false, 5});
  expect({5, kLeft, kLeft, +1, 1, kSpeed, true, 4});
  gait.v = pointAt(45, 0.99);  // 45 degrees off abeam
  expect({4, kRight, kLeft, -1, 1, kSpeed, false, 5});
  EXPECT_EQ(gait.error, 50);
  for (int pair = 0; pair < 30; ++pair) {
    expect({5, kLeft, kLeft, 0, 1, kSpeed, true, 4});
    expect({4, kRight, kLeft, 0, 1, kSpeed, false, 5});
  }
  gait.v = pointAt(45, 5);
  expect({5, kLeft, kLeft, 0, 1, kSpeed, true, 4});
  EXPECT_EQ(gait.error, 50) << "until the next request";
}

TEST_F(OmniSideWalkTest, TheIncrementsOfADecisionHaveNoEffect) {
  start();
  expect({2, kLeft, kLeft, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kLeft, 0, 1, kSpeed, false, 5});
  EXPECT_EQ(gait.Yankle[1], 45) << "turning: omniSideWalk";
  EXPECT_EQ(gait.Zankle[3], -13);
  aim(90);
  expect({5, kLeft, kLeft, +1, 1, kSpeed, true, 4});
  expect({4, kRight, kLeft, -1, 1, kSpeed, false, 5});
  EXPECT_EQ(gait.Yankle[1], 46) << "straight: sideWalk";
  EXPECT_EQ(gait.Zankle[3], -14);
}

TEST_F(OmniSideWalkTest, LogsEachCycle) {
  gait.execute();
  EXPECT_EQ(body.takeLog(), "heyy ~~~~~~~~\n rotSide : 0\n");
  start();
  body.takeLog();
  body.nextCycle();
  gait.execute();
  const std::string log = body.takeLog();
  expectLine(log, "heyy ~~~~~~~~");
  expectLine(log, " rotSide : 0");
  expectLine(log, "side : 0");
  expectLine(log, "   rotside : 0");
  expectLine(log, "theta[1] side : 0.000000");
  expectLine(log, "theta[1] otherside : 0.000000");
}

TEST_F(OmniSideWalkTest, ResetKeepsYawPhaseCountErrorAndDirection) {
  const auto expectFresh = [](const OmniSideWalk& g) {
    EXPECT_EQ(g.basicWalkState, 1);
    EXPECT_EQ(g.state, 0);
    EXPECT_EQ(g.sp, 0);
    EXPECT_EQ(g.endStepVal, 0.5);
    for (bool flag : {g.side, g.otherside, g.OWalk, g.rotSide, g.rotOtherSide, g._othersideOmni,
                      g._sideOmni, g.sideEnd}) {
      EXPECT_FALSE(flag);
    }
    for (double value : {g.ry, g.ly, g.rotate, g.Xtorso, g.Ytorso, g.Ztorso, g.t, g.sy, g.oy, g.z,
                         g.angle, g.dist}) {
      EXPECT_EQ(value, 0);
    }
  };
  expectFresh(OmniSideWalk());
  EXPECT_EQ(OmniSideWalk().Gain, 1);
  aim(-60);
  start();
  for (int cycle = 0; cycle < 15; ++cycle) {
    body.nextCycle();
    gait.execute();
  }
  gait.RotZ[1] = 5;
  gait.a[0] = 3;
  gait.endStepVal = 1;
  gait.error = 50;
  gait.resetVars();
  expectFresh(gait);
  EXPECT_EQ(gait.RotZ[1], 5);
  EXPECT_EQ(gait.a[0], 3);
  EXPECT_EQ(gait.error, 50);
  EXPECT_EQ(gait.Gain, -1);
}

TEST_F(OmniSideWalkTest, FollowsTheRulesForTargetsThatJumpAbout) {
  for (int hold : {1, 7, 40}) {
    body.setResponse(hold == 7 ? 0.6f : 1);  // obeying and lagging joints
    gait.resetVars();
    gait.error = 40;
    gait.Gain = 1;
    PairOracle oracle(PairOracle::kSide, kStraight, kUnwinding);
    const int ends = expectLikeOracle(
        body, gait, gait.basicWalkState, oracle, gait.error, 1200, hold, 37u + hold,
        [this](double angle) {
          aim(angle);
          return body.world->getAngleTo(gait.v);
        },
        [this] { return execute(); },
        [this](bool side) { return side == kLeft ? gait.ly : gait.ry; }, [] {});
    EXPECT_GT(ends, 80);
  }
}

}  // namespace
