#include "BasicAction/OmniBackWalk.h"

#include <gtest/gtest.h>

#include <limits>

#include "BasicAction/Reset.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"
#include "support/PairOracle.h"

namespace {

using support::expectLikeOracle;
using support::expectLine;
using support::expectStep;
using support::GaitNumbers;
using support::GaitStep;
using support::PairOracle;
using support::pointAt;

// backWalk: Xtorso 0.5 x 60, Ytorso 0.25 x -10, Ztorso 0.25 x -70, Xankle x 90, Zankle x 50.
constexpr GaitNumbers kStraight = {.torso = {30, -2.5, -17.5},
                                   .stride = {22.5, 33.75, 22.5, 11.25},
                                   .lift = {12.5, 6.25, -6.25, -12.5},
                                   .yaw = {-3, -2, -1, -5}};

// omniBackWalk: Xankle x 90, Zankle x 50, RotZ as it stands.
constexpr GaitNumbers kOpening = {.torso = {30, -2.5, -17.5},
                                  .stride = {11.25, 22.5, 11.25, 22.5},
                                  .lift = {6.25, 12.5, -12.5, -6.25},
                                  .yaw = {-3, -2, -1, -5}};

// An unwinding step takes its first phase from omniBackWalk.
constexpr GaitNumbers kUnwinding = {.torso = {30, -2.5, -17.5},
                                    .stride = {11.25, 33.75, 22.5, 11.25},
                                    .lift = {6.25, 6.25, -6.25, -12.5},
                                    .yaw = {-3, -2, -1, -5}};

// 0.5 x 60 + 40.
constexpr float kSpeed = 70;

class OmniBackWalkTest : public support::GaitFixture<OmniBackWalk> {
 protected:
  OmniBackWalkTest() {
    body.stand(Vector(0, 0, 0), 0);
    gait.error = 10;
    aim(120);
  }
  void aim(double angle) { gait.v = pointAt(angle); }
  void expect(const GaitStep& step) {
    const GaitNumbers& numbers = step.sequence == 2                         ? kOpening
                                 : step.sequence == 4 || step.sequence == 6 ? kUnwinding
                                                                            : kStraight;
    expectStepOf(numbers, step);
  }
};

TEST_F(OmniBackWalkTest, StartsFromTheFixedStance) {
  expectStance(Reset::kFixedStance);
}

TEST_F(OmniBackWalkTest, ATargetToTheLeftRotatesTheRightLeg) {
  start();
  EXPECT_TRUE(gait.rotSide);
  EXPECT_TRUE(gait.side);
  EXPECT_FALSE(gait.rotOtherSide);
  EXPECT_FALSE(gait.otherside);
  expect({2, kLeft, kRight, 0, -0.5, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, -1, kSpeed, true, 6});
  expect({6, kLeft, kRight, 0, -1, kSpeed, false, 3});
  for (int pair = 0; pair < 40; ++pair) {
    expect({3, kRight, kRight, +1, -1, kSpeed, true, 6});
    EXPECT_EQ(gait.rotate, -11);
    expect({6, kLeft, kRight, -1, -1, kSpeed, false, 3});
    EXPECT_EQ(gait.rotate, 0);
  }
}

TEST_F(OmniBackWalkTest, AnyOtherTargetRotatesTheLeftLeg) {
  for (double angle : {-120.0, 0.0}) {
    gait.resetVars();
    gait.error = 10;
    feet = {};
    aim(angle);
    start();
    EXPECT_FALSE(gait.rotSide);
    EXPECT_FALSE(gait.side);
    EXPECT_TRUE(gait.rotOtherSide);
    EXPECT_TRUE(gait.otherside);
    expect({2, kRight, kLeft, 0, -0.5, kSpeed, false, 3});
    expect({3, kLeft, kLeft, 0, -1, kSpeed, true, 6});
    expect({6, kRight, kLeft, 0, -1, kSpeed, false, 3});
    expect({3, kLeft, kLeft, +1, -1, kSpeed, true, 6});
  }
}

TEST_F(OmniBackWalkTest, ATargetStraightBehindIsWalkedToStraight) {
  for (double angle : {180.0, 171.0, -171.0}) {
    gait.resetVars();
    gait.error = 10;
    feet = {};
    aim(angle);
    start();
    const bool rotating = gait.rotSide;
    expect({2, !rotating, rotating, 0, -0.5, kSpeed, false, 3});
    for (int pair = 0; pair < 20; ++pair) {
      expect({3, rotating, rotating, 0, -1, kSpeed, true, 6});
      expect({6, !rotating, rotating, 0, -1, kSpeed, false, 3});
    }
    EXPECT_EQ(gait.rotate, 0);
  }
}

TEST_F(OmniBackWalkTest, ATargetThatChangesSideChangesTheRotatingLeg) {
  start();
  expect({2, kLeft, kRight, 0, -0.5, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, -1, kSpeed, true, 6});
  expect({6, kLeft, kRight, 0, -1, kSpeed, false, 3});
  aim(-120);
  expect({3, kRight, kRight, +1, -1, kSpeed, true, 6});
  expect({6, kLeft, kRight, -1, -1, kSpeed, true, 4});
  EXPECT_FALSE(gait.rotSide);
  EXPECT_TRUE(gait.rotOtherSide);
  expect({4, kRight, kLeft, 0, -1, kSpeed, false, 5});
  expect({5, kLeft, kLeft, +1, -1, kSpeed, true, 4});
  aim(0);  // exactly 0: the rotating leg stays
  expect({4, kRight, kLeft, -1, -1, kSpeed, false, 5});
  EXPECT_FALSE(gait.rotSide);
}

TEST_F(OmniBackWalkTest, AnAngleThatIsNotANumberWalksStraight) {
  start();
  expect({2, kLeft, kRight, 0, -0.5, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, -1, kSpeed, true, 6});
  expect({6, kLeft, kRight, 0, -1, kSpeed, false, 3});
  expect({3, kRight, kRight, +1, -1, kSpeed, true, 6});
  gait.v = Vector(std::numeric_limits<float>::quiet_NaN(), 0, 0);
  expect({6, kLeft, kRight, -1, -1, kSpeed, false, 3});
  for (double yaw : gait.RotZ) EXPECT_EQ(yaw, 0);
}

TEST_F(OmniBackWalkTest, TheRampStartsAtFullSpeedAndMovesInFifths) {
  gait.speed = 0.75;
  start();
  expect({2, kLeft, kRight, 0, -0.5, 70, false, 3});
  expect({3, kRight, kRight, 0, -1, 70, true, 6});
  EXPECT_DOUBLE_EQ(gait.p, 0.75);
  expect({6, kLeft, kRight, 0, -1, 52, false, 3});
  gait.speed = 2;
  expect({3, kRight, kRight, +1, -1, 52, true, 6});
  EXPECT_DOUBLE_EQ(gait.p, 0.95);
  expect({6, kLeft, kRight, -1, -1, 66, false, 3});
}

// Which file the increments of a decision come from shows only between two cycles.
TEST_F(OmniBackWalkTest, TheIncrementsOfADecisionHaveNoEffect) {
  start();
  expect({2, kLeft, kRight, 0, -0.5, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, -1, kSpeed, true, 6});
  expect({6, kLeft, kRight, 0, -1, kSpeed, false, 3});
  EXPECT_EQ(gait.Xankle[0], 11.25) << "turning: omniBackWalk";
  EXPECT_EQ(gait.Zankle[3], -6.25);
  aim(180);
  expect({3, kRight, kRight, +1, -1, kSpeed, true, 6});
  expect({6, kLeft, kRight, -1, -1, kSpeed, false, 3});
  EXPECT_EQ(gait.Xankle[0], 22.5) << "straight: backWalk";
  EXPECT_EQ(gait.Zankle[3], -12.5);
  expect({3, kRight, kRight, 0, -1, kSpeed, true, 6});
}

// The phase count outlives a reset: the first phase of the next unwinding step is then not taken
// for the first, and keeps the increments of backWalk.
TEST_F(OmniBackWalkTest, AResetInMidStepSpoilsTheFirstPhaseOfTheNextUnwindingStep) {
  start();
  expect({2, kLeft, kRight, 0, -0.5, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, -1, kSpeed, true, 6});
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.a[1], 1);
  gait.resetVars();
  EXPECT_EQ(gait.a[1], 1);
  gait.error = 10;
  feet = {};
  start();
  expect({2, kLeft, kRight, 0, -0.5, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, -1, kSpeed, true, 6});
  expectStep(
      body, gait, gait.basicWalkState, [this] { return execute(); }, kStraight,
      {6, kLeft, kRight, 0, -1, kSpeed, false, 3}, feet);
  expect({3, kRight, kRight, +1, -1, kSpeed, true, 6});
  expect({6, kLeft, kRight, -1, -1, kSpeed, false, 3});
}

TEST_F(OmniBackWalkTest, LogsEachPhase) {
  start();
  EXPECT_EQ(body.takeLog(), "");
  body.nextCycle();
  gait.execute();
  const std::string log = body.takeLog();
  expectLine(log, "ankle : (vector: -5.625000, 0.000000, 6.250000 )");
  expectLine(log, "torso : (vector: 27.187500, -2.500000, -17.500000 )");
  expectLine(log, "rotate : 0.000000");
  expectLine(log, "sp : 70");
  expectLine(log, "setleg omnibackwalk");
}

TEST_F(OmniBackWalkTest, ResetGivesErrorSpeedAndRampAndKeepsYawAndPhaseCount) {
  const auto expectFresh = [](const OmniBackWalk& g) {
    EXPECT_EQ(g.basicWalkState, 1);
    EXPECT_EQ(g.state, 0);
    EXPECT_EQ(g.error, 2);
    EXPECT_EQ(g.speed, 1);
    EXPECT_EQ(g.p, 1);
    EXPECT_EQ(g.sp, 0);
    for (bool flag : {g.side, g.otherside, g.OWalk, g.rotSide, g.rotOtherSide, g._othersideOmni,
                      g._sideOmni, g.sideEnd}) {
      EXPECT_FALSE(flag);
    }
    for (double value : {g.rx, g.lx, g.rotate, g.Xtorso, g.Ytorso, g.Ztorso, g.t, g.sx, g.ox, g.z,
                         g.angle, g.endStepVal, g.dist}) {
      EXPECT_EQ(value, 0);
    }
  };
  expectFresh(OmniBackWalk());
  start();
  for (int cycle = 0; cycle < 15; ++cycle) {
    body.nextCycle();
    gait.execute();
  }
  gait.RotZ[1] = 5;
  gait.a[0] = 3;
  gait.p = gait.speed = 7;
  gait.resetVars();
  expectFresh(gait);
  EXPECT_EQ(gait.RotZ[1], 5);
  EXPECT_EQ(gait.a[0], 3);
  EXPECT_EQ(gait.v, pointAt(120));
}

TEST_F(OmniBackWalkTest, ItsFirstTenDoublesAreYawTorsoAndThreeStrides) {
  expectFirstTenDoubles();
}

TEST_F(OmniBackWalkTest, FollowsTheRulesForTargetsThatJumpAbout) {
  for (int hold : {1, 7, 40}) {
    body.setResponse(hold == 7 ? 0.6f : 1);  // obeying and lagging joints
    gait.resetVars();
    gait.error = 40;
    PairOracle oracle(PairOracle::kBack, kStraight, kOpening);
    const int ends = expectLikeOracle(
        body, gait, gait.basicWalkState, oracle, gait.error, 1200, hold, 23u + hold,
        [this](double angle) {
          aim(angle);
          return body.world->getAngleTo(gait.v);
        },
        [this] { return execute(); },
        [this](bool side) { return side == kLeft ? gait.lx : gait.rx; }, [] {});
    EXPECT_GT(ends, 80);
  }
}

}  // namespace
