#include "BasicAction/BackWalk.h"

#include <gtest/gtest.h>

#include "BasicAction/Reset.h"
#include "BasicAction/Walk.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"

namespace {

using support::expectNoLegCommand;
using support::FakeBody;
using support::GaitNumbers;
using support::GaitStep;
using support::takeStance;

// backWalk: Xtorso 0.5 x 60, Ytorso 0.25 x -10, Ztorso 0.25 x -70, Xankle x 90, Zankle x 50.
constexpr GaitNumbers kNumbers = {.torso = {30, -2.5, -17.5},
                                  .stride = {22.5, 33.75, 22.5, 11.25},
                                  .lift = {12.5, 6.25, -6.25, -12.5}};

// 0.5 x 60 + 40.
constexpr float kSpeed = 70;

class BackWalkTest : public support::GaitFixture<BackWalk> {
 protected:
  void expect(const GaitStep& step) { expectStepOf(kNumbers, step); }
};

TEST_F(BackWalkTest, StartsFromTheFixedStance) {
  expectStance(Reset::kFixedStance);
  EXPECT_EQ(body.agent.reset->heap, Vector(50, 0, -60));
  start();
  EXPECT_EQ(gait.basicWalkState, 1);
}

TEST_F(BackWalkTest, TheRightLegAlwaysOpens) {
  for (bool side : {kLeft, kRight}) {
    gait.resetVars();
    feet = {};
    gait.side = side;
    start();
    expect({1, kRight, kLeft, 0, 0.5, kSpeed, true, 2});
    for (int pair = 0; pair < 40; ++pair) {
      expect({2, kLeft, kLeft, 0, 1, kSpeed, true, 3});
      expect({3, kRight, kLeft, 0, 1, kSpeed, true, 2});
    }
    EXPECT_TRUE(gait.lastSide);
  }
}

TEST_F(BackWalkTest, BasicWalkIgnoresItsSide) {
  gait.basicWalkState = 2;
  gait.sp = 50;
  for (int i = 0; i < 4; ++i) gait.Xankle[i] = 1;
  body.nextCycle();
  gait.basicWalk(1, kLeft);
  EXPECT_EQ(gait.lx, 1);
  EXPECT_EQ(gait.rx, 0);
}

// The sign of the configured increments alone gives the direction.
TEST_F(BackWalkTest, RequestsWithOppositeGainsWalkTheSameWay) {
  double places[2];
  int run = 0;
  for (float gain : {-1.0f, 1.0f}) {
    body.agent.walk->_backWalk->resetVars();
    body.agent.walk->backWalk(gain, 1);
    takeStance(body, body.agent.walk->_backWalk->basicWalkState,
               [this] { return body.agent.walk->backWalk(); });
    for (int cycle = 0; cycle < 4; ++cycle) {
      body.nextCycle();
      body.agent.walk->backWalk();
    }
    places[run++] = body.agent.walk->_backWalk->rx;
  }
  EXPECT_EQ(places[0], 45);
  EXPECT_EQ(places[1], 45);
}

TEST_F(BackWalkTest, TheSpeedRampGrowsByATenthPerStepAndStopsAtItsEnd) {
  gait.speed = 1.25;
  start();
  expect({1, kRight, kLeft, 0, 0.5, 70, true, 2});
  EXPECT_DOUBLE_EQ(gait.p, 1.1);
  expect({2, kLeft, kLeft, 0, 1, 77, true, 3});
  EXPECT_DOUBLE_EQ(gait.p, 1.2);
  expect({3, kRight, kLeft, 0, 1, 84, true, 2});
  // 1.3 lies just past the end: one step runs at it, then the ramp falls to the end.
  EXPECT_DOUBLE_EQ(gait.p, 1.3);
  expect({2, kLeft, kLeft, 0, 1, 91, true, 3});
  EXPECT_DOUBLE_EQ(gait.p, 1.25);
  expect({3, kRight, kLeft, 0, 1, 87.5, true, 2});
  EXPECT_DOUBLE_EQ(gait.p, 1.25);
}

TEST_F(BackWalkTest, TheSpeedIsNotCutToAWholeNumber) {
  FakeBody::configure("backWalk", "backwalk", "speed", "0.3");
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.sp, 0.3f * 60.0f + 40.0f);
  FakeBody::configure("backWalk", "backwalk", "Xankle", "0.1 0.3 0.7 0.9");
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.Xankle[2], 0.7f * 90.0f);
}

TEST_F(BackWalkTest, LogsSideAndSpeed) {
  start();
  EXPECT_EQ(body.takeLog(), "");
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(body.takeLog(), "side : 1\nsp : 70.000000\n");
}

TEST_F(BackWalkTest, AStateThatItDoesNotKnowDoesNothing) {
  gait.basicWalkState = 4;
  body.nextCycle();
  body.markCommands();
  EXPECT_FALSE(gait.execute());
  expectNoLegCommand(body);
}

TEST_F(BackWalkTest, ResetGivesTheValuesOfConstruction) {
  const auto expectFresh = [](const BackWalk& g) {
    EXPECT_EQ(g.basicWalkState, 0);
    EXPECT_EQ(g.state, 0);
    EXPECT_EQ(g.sp, 60);
    for (double value : {g.rx, g.lx, g.sx, g.ox, g.z, g.RotZ, g.Xtorso, g.Ytorso, g.Ztorso}) {
      EXPECT_EQ(value, 0);
    }
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(g.Xankle[i], 0);
      EXPECT_EQ(g.Yankle[i], 0);
      EXPECT_EQ(g.Zankle[i], 0);
    }
    EXPECT_TRUE(g.lastSide);
    EXPECT_TRUE(g.sideEnd);
    EXPECT_TRUE(g.side);
    EXPECT_EQ(g.gain, 1);
    EXPECT_EQ(g.speed, 1);
    EXPECT_EQ(g.p, 1);
  };
  expectFresh(gait);
  start();
  for (int cycle = 0; cycle < 10; ++cycle) {
    body.nextCycle();
    gait.execute();
  }
  gait.p = gait.speed = gait.gain = 3;
  gait.Yankle[1] = 9;
  gait.side = false;
  gait.resetVars();
  expectFresh(gait);
}

}  // namespace
