#include "BasicAction/SideWalk.h"

#include <gtest/gtest.h>

#include "BasicAction/Reset.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"

namespace {

using support::expectLegs;
using support::expectLine;
using support::expectNoLegCommand;
using support::FakeBody;
using support::Feet;
using support::GaitNumbers;
using support::GaitStep;
using support::legTargets;

// sideWalk, as it stands.
constexpr GaitNumbers kNumbers = {.torso = {28, 6, -66},
                                  .stride = {-10, 46, 41, -7},
                                  .lift = {14, 11, -11, -14},
                                  .sideways = true};

// 54.75, cut.
constexpr float kSpeed = 54;

class SideWalkTest : public support::GaitFixture<SideWalk> {
 protected:
  // The height of SideWalk::step outlives every gait: a whole step clears what other tests left.
  SideWalkTest() {
    SideWalk other;
    while (!other.step(0, kLeft)) continue;
    body.takeLog();
  }
  void expect(const GaitStep& step) { expectStepOf(kNumbers, step); }
};

TEST_F(SideWalkTest, StartsFromTheFixedStance) {
  expectStance(Reset::kFixedStance);
}

TEST_F(SideWalkTest, APositiveGainOpensLeftAndMayBeLeftAfterTheRightStep) {
  start();
  for (int pair = 0; pair < 40; ++pair) {
    expect({1, kLeft, kLeft, 0, 1, kSpeed, false, 2});
    expect({2, kRight, kLeft, 0, 1, kSpeed, true, 1});
    EXPECT_EQ(gait.ly, gait.ry) << "the feet are together when the gait may be left";
  }
  EXPECT_EQ(gait.ly, 40 * 70) << "a positive sum of increments walks to the left";
}

TEST_F(SideWalkTest, ANegativeGainOpensRightAndMayBeLeftAfterTheLeftStep) {
  gait.gain = -1;
  start();
  for (int pair = 0; pair < 40; ++pair) {
    expect({2, kRight, kLeft, 0, -1, kSpeed, false, 1});
    expect({1, kLeft, kLeft, 0, -1, kSpeed, true, 2});
    EXPECT_EQ(gait.ly, gait.ry);
  }
  EXPECT_EQ(gait.ly, -40 * 70);
}

TEST_F(SideWalkTest, AGainOfZeroPassesTheStanceIntoTheRightStep) {
  gait.gain = 0;
  start();
  expect({2, kRight, kLeft, 0, 0, kSpeed, true, 1});
  expect({1, kLeft, kLeft, 0, 0, kSpeed, false, 2});
  EXPECT_EQ(gait.ly, 0);
}

TEST_F(SideWalkTest, ASignChangeWhileWalkingKeepsTheOrderOfSteps) {
  start();
  expect({1, kLeft, kLeft, 0, 1, kSpeed, false, 2});
  gait.gain = -1;
  expect({2, kRight, kLeft, 0, -1, kSpeed, false, 1});
  expect({1, kLeft, kLeft, 0, -1, kSpeed, true, 2});
}

// The height is a variable of the function that no reset reaches.
TEST_F(SideWalkTest, AStepCutOffByAResetLeavesItsHeightToTheNext) {
  start();
  for (int phase = 0; phase < 2; ++phase) {
    body.nextCycle();
    gait.execute();
  }
  gait.resetVars();
  start();
  body.nextCycle();
  gait.execute();
  Feet left;
  left.place[kLeft] = -10;
  expectLegs(body, legTargets(kNumbers, left, kLeft, kLeft, 14 + 11 + 14), kSpeed);
  for (int phase = 1; phase < 4; ++phase) {
    body.nextCycle();
    gait.execute();
  }
  feet.place[kLeft] = 70;
  expect({2, kRight, kLeft, 0, 1, kSpeed, true, 1});
}

TEST_F(SideWalkTest, ReadsTheConfigurationInEveryCycle) {
  FakeBody::configure("sideWalk", "sidewalk", "speed", "33.9");
  FakeBody::configure("sideWalk", "sidewalk", "Xtorso", "0.1");
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.sp, 33);
  EXPECT_EQ(gait.Xtorso, 0.1f);
}

TEST_F(SideWalkTest, LogsEachPhase) {
  start();
  EXPECT_EQ(body.takeLog(), "");
  body.nextCycle();
  gait.execute();
  const std::string log = body.takeLog();
  expectLine(log, "side : 0");
  expectLine(log, "ankle : (vector: 0.000000, -10.000000, 14.000000 )");
  expectLine(log, "torso :(vector: 28.000000, 1.000000, -66.000000 )");
  expectLine(log, "sp : 54");
  expectLine(log, "setleg sidewalk ");
}

TEST_F(SideWalkTest, AStateThatItDoesNotKnowDoesNothing) {
  gait.basicWalkState = 3;
  body.nextCycle();
  body.markCommands();
  EXPECT_FALSE(gait.execute());
  expectNoLegCommand(body);
}

TEST_F(SideWalkTest, ResetGivesTheValuesOfConstruction) {
  const auto expectFresh = [](const SideWalk& g) {
    EXPECT_EQ(g.basicWalkState, 0);
    EXPECT_EQ(g.state, 0);
    EXPECT_EQ(g.sp, 0);
    EXPECT_TRUE(g.side);
    EXPECT_FALSE(g.sideEnd);
    for (double value : {g.ry, g.ly, g.Xtorso, g.Ytorso, g.Ztorso}) EXPECT_EQ(value, 0);
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(g.Yankle[i], 0);
      EXPECT_EQ(g.Zankle[i], 0);
    }
    EXPECT_EQ(g.gain, 1);
    EXPECT_EQ(g.Gain, 1);
    EXPECT_EQ(g.preGain, 1);
  };
  expectFresh(gait);
  start();
  for (int cycle = 0; cycle < 8; ++cycle) {
    body.nextCycle();
    gait.execute();
  }
  gait.gain = gait.Gain = gait.preGain = -4;
  gait.side = false;
  gait.resetVars();
  expectFresh(gait);
}

}  // namespace
