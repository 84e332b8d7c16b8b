#include "BasicAction/ForWalk.h"

#include <gtest/gtest.h>

#include <cmath>

#include "BasicAction/Reset.h"
#include "BasicAction/Walk.h"
#include "Utilities/Config.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"

namespace {

using support::expectNoLegCommand;
using support::expectStep;
using support::FakeBody;
using support::GaitNumbers;
using support::GaitStep;

// forWalk: Xtorso 0.25 x 60, Ytorso 0.5 x -10, Ztorso 0.5 x -70, Xankle x 80, Zankle x 50.
constexpr GaitNumbers kNumbers = {
    .torso = {15, -5, -35}, .stride = {10, 40, 60, 20}, .lift = {25, 12.5, -12.5, -25}};

// 0.25 x 70 + 30 = 47.5, cut.
constexpr float kSpeed = 47;

class ForWalkTest : public support::GaitFixture<ForWalk> {
 protected:
  void expect(const GaitStep& step) { expectStepOf(kNumbers, step); }
};

TEST_F(ForWalkTest, StartsWithTheWalkingStanceAndReportsNothingMeanwhile) {
  body.setResponse(0);
  body.placeAll(20);
  for (int cycle = 0; cycle < 300; ++cycle) {
    body.nextCycle();
    EXPECT_FALSE(gait.execute());
  }
  EXPECT_EQ(gait.basicWalkState, 0) << "stuck joints never reach the stance";
  const Reset& reset = *body.agent.reset;
  EXPECT_EQ(reset.State, 3);
  EXPECT_EQ(reset.Speed, 10);
  EXPECT_EQ(reset.SP, 5);
  EXPECT_EQ(reset.heap, Vector(25, -5, -35));
  EXPECT_EQ(gait.rx, 0);
  EXPECT_EQ(gait.lx, 0);
  EXPECT_EQ(gait.state, 0);

  body.setResponse(1);
  start();
  EXPECT_EQ(gait.basicWalkState, 1);
}

TEST_F(ForWalkTest, WalksAHalfStepAndThenWholeStepsOnAlternatingLegs) {
  for (bool first : {kLeft, kRight}) {
    SCOPED_TRACE(first ? "right first" : "left first");
    gait.resetVars();
    feet = {};
    gait.side = first;
    start();
    expect({1, first, kLeft, 0, 0.5, kSpeed, true, 2});
    for (int pair = 0; pair < 40; ++pair) {
      expect({2, !first, kLeft, 0, 1, kSpeed, true, 3});
      expect({3, first, kLeft, 0, 1, kSpeed, true, 2});
    }
    EXPECT_EQ(gait.lastSide, first);
    // 130 mm a step: 40 whole steps of the other leg, a half one and 40 of the first.
    EXPECT_NEAR(first ? gait.lx : gait.rx, 40 * 130, 1e-9);
    EXPECT_NEAR(first ? gait.rx : gait.lx, 40.5 * 130, 1e-9);
  }
}

TEST_F(ForWalkTest, StepsOnWhetherOrNotTheJointsArrive) {
  for (float response : {0.6f, 0.0f}) {
    body.setResponse(1);
    gait.resetVars();
    feet = {};
    start();
    body.setResponse(response);
    expect({1, kRight, kLeft, 0, 0.5, kSpeed, true, 2});
    for (int pair = 0; pair < 30; ++pair) {
      expect({2, kLeft, kLeft, 0, 1, kSpeed, true, 3});
      expect({3, kRight, kLeft, 0, 1, kSpeed, true, 2});
    }
  }
}

TEST_F(ForWalkTest, GainZeroLiftsTheFeetOnTheSpot) {
  gait.gain = 0;
  start();
  expect({1, kRight, kLeft, 0, 0, kSpeed, true, 2});
  expect({2, kLeft, kLeft, 0, 0, kSpeed, true, 3});
  expect({3, kRight, kLeft, 0, 0, kSpeed, true, 2});
  EXPECT_EQ(gait.rx, 0);
  EXPECT_EQ(gait.lx, 0);
}

TEST_F(ForWalkTest, NegativeGainWalksBackwardWithTheSameOrderOfLegs) {
  gait.gain = -1;
  start();
  expect({1, kRight, kLeft, 0, -0.5, kSpeed, true, 2});
  expect({2, kLeft, kLeft, 0, -1, kSpeed, true, 3});
  expect({3, kRight, kLeft, 0, -1, kSpeed, true, 2});
  EXPECT_LT(gait.rx, 0);
  EXPECT_LT(gait.lx, 0);
}

TEST_F(ForWalkTest, TheStanceDoesNotMoveTheStateIfTheGaitRestsBetweenTwoCalls) {
  start();
  body.nextCycle();
  gait.execute();
  const double place = gait.rx;
  for (int cycle = 0; cycle < 50; ++cycle) body.nextCycle();
  EXPECT_EQ(gait.state, 1);
  EXPECT_EQ(gait.rx, place);
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.state, 2);
  EXPECT_EQ(gait.rx, place + 0.5 * 40);
}

TEST_F(ForWalkTest, ANewGainTakesEffectInTheNextPhase) {
  start();
  expect({1, kRight, kLeft, 0, 0.5, kSpeed, true, 2});
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.lx, 10);
  gait.gain = 0.25;
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.lx, 10 + 0.25 * 40);
}

TEST_F(ForWalkTest, ANewSideTakesEffectInTheSequencersState) {
  start();
  expect({1, kRight, kLeft, 0, 0.5, kSpeed, true, 2});
  gait.side = kLeft;
  // State 2 steps with the other leg than the one named: the right one once more.
  expect({2, kRight, kLeft, 0, 1, kSpeed, true, 3});
  expect({3, kLeft, kLeft, 0, 1, kSpeed, true, 2});
}

TEST_F(ForWalkTest, ReadsTheConfigurationInEveryCycle) {
  start();
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.rx, 5);
  FakeBody::configure("forWalk", "forwalk", "Xankle", "0 1 0 0");
  FakeBody::configure("forWalk", "forwalk", "speed", "0.5");
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.rx, 5 + 0.5 * 80);
  EXPECT_EQ(gait.sp, 65);
}

TEST_F(ForWalkTest, CutsTheSpeedBeforeAndAfterItsMultiplier) {
  gait.speed = 0.5;
  start();
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.sp, 23) << "47.5 is cut to 47, and 23.5 to 23";
}

TEST_F(ForWalkTest, ScalesInSinglePrecision) {
  FakeBody::configure("forWalk", "forwalk", "Xtorso", "0.1");
  FakeBody::configure("forWalk", "forwalk", "Ytorso", "0.1");
  FakeBody::configure("forWalk", "forwalk", "Ztorso", "0.7");
  FakeBody::configure("forWalk", "forwalk", "Xankle", "0.1 0.3 0.7 0.9");
  FakeBody::configure("forWalk", "forwalk", "Zankle", "0.1 0.3 0.7 -1.1");
  // 0.39999998 x 70 + 30 is 57.999998 in double; in single precision it rounds to 58.
  FakeBody::configure("forWalk", "forwalk", "speed", "0.39999998");
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.Xtorso, 0.1f * 60.0f);
  EXPECT_EQ(gait.Ytorso, 0.1f * -10.0f);
  EXPECT_EQ(gait.Ztorso, 0.7f * -70.0f);
  EXPECT_EQ(gait.Xankle[1], 0.3f * 80.0f);
  EXPECT_EQ(gait.Zankle[3], -1.1f * 50.0f);
  EXPECT_EQ(gait.sp, 58);
}

TEST_F(ForWalkTest, StepUsesLoadedParametersAndNoSidewaysIncrement) {
  // As the kick-off pass drives it.
  gait.sp = 57;
  gait.Xtorso = 15;
  gait.Ytorso = -5;
  gait.Ztorso = -52.5;
  for (int i = 0; i < 4; ++i) {
    gait.Yankle[i] = 220;
    gait.Xankle[i] = kNumbers.stride[i];
    gait.Zankle[i] = kNumbers.lift[i];
  }
  GaitNumbers numbers = kNumbers;
  numbers.torso[2] = -52.5;
  expectStep(
      body, gait, gait.basicWalkState, [this] { return gait.step(1.0, kRight); }, numbers,
      {0, kRight, kLeft, 0, 1, 57, true, 0}, feet);
  body.nextCycle();
  gait.execute();
  for (double increment : gait.Yankle) EXPECT_EQ(increment, 0);
}

TEST_F(ForWalkTest, ClearsHeightAndPlacesAfterTheFourthPhaseOnly) {
  start();
  for (int phase = 0; phase < 3; ++phase) {
    body.nextCycle();
    EXPECT_FALSE(gait.execute());
    EXPECT_NE(gait.z, 0);
    EXPECT_EQ(gait.sx, gait.rx);
  }
  // A height that does not sum to 0 is cleared all the same.
  FakeBody::configure("forWalk", "forwalk", "Zankle", "0 0 0 1");
  body.nextCycle();
  EXPECT_TRUE(gait.execute());
  EXPECT_EQ(gait.z, 0);
  EXPECT_EQ(gait.sx, 0);
  EXPECT_EQ(gait.ox, 0);
  EXPECT_EQ(gait.sy, 0);
  EXPECT_EQ(gait.oy, 0);
}

TEST_F(ForWalkTest, APoseOutOfReachStopsTheJointsConcerned) {
  start();
  FakeBody::configure("forWalk", "forwalk", "Ztorso", "-2");
  body.nextCycle();
  gait.execute();
  for (bool side : {kLeft, kRight}) {
    for (int joint : {3, 4, 5}) EXPECT_EQ(body.leg(side, joint).Angle, 0);
  }
  EXPECT_EQ(gait.state, 1);
}

TEST_F(ForWalkTest, LogsItsSpeedInEveryPhase) {
  start();
  EXPECT_EQ(body.takeLog(), "") << "the stance logs nothing";
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(body.takeLog(), "sp ====== 47\n");
}

TEST_F(ForWalkTest, AStateThatItDoesNotKnowDoesNothing) {
  for (int state : {-1, 4, 30}) {
    gait.basicWalkState = state;
    body.nextCycle();
    body.markCommands();
    EXPECT_FALSE(gait.execute());
    expectNoLegCommand(body);
    EXPECT_EQ(gait.basicWalkState, state);
  }
}

TEST_F(ForWalkTest, ResetGivesTheValuesOfConstruction) {
  const auto expectFresh = [](const ForWalk& g) {
    EXPECT_EQ(g.basicWalkState, 0);
    EXPECT_EQ(g.state, 0);
    EXPECT_EQ(g.sp, 60);
    for (double value : {g.rx, g.lx, g.sx, g.ox, g.sy, g.oy, g.z, g.RotZ, g.Xtorso, g.Ytorso,
                         g.Ztorso, g.khargush, g.ry, g.ly}) {
      EXPECT_EQ(value, 0);
    }
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(g.Xankle[i], 0);
      EXPECT_EQ(g.Zankle[i], 0);
    }
    EXPECT_TRUE(g.lastSide);
    EXPECT_TRUE(g.sideEnd);
    EXPECT_TRUE(g.side);
    EXPECT_EQ(g.count, 0);
    EXPECT_EQ(g.gain, 1);
    EXPECT_EQ(g.speed, 1);
    EXPECT_EQ(g.Gain, 1);
    EXPECT_EQ(g.preSp, 60);
    EXPECT_EQ(g.type, AT_FORWALK);
  };
  expectFresh(gait);
  gait.side = kLeft;
  gait.gain = 0.3f;
  gait.speed = 2;
  start();
  for (int cycle = 0; cycle < 9; ++cycle) {
    body.nextCycle();
    gait.execute();
  }
  EXPECT_EQ(gait.state, 1);
  gait.khargush = gait.count = gait.preSp = gait.Gain = 7;
  gait.Yankle[2] = 220;
  gait.resetVars();
  expectFresh(gait);
  EXPECT_EQ(gait.Yankle[2], 220) << "the reset leaves these alone";
}

TEST(ForWalkDeathTest, AListOfFewerThanFourValuesIsAFaultOfTheConfiguration) {
  FakeBody body;
  ForWalk gait;
  FakeBody::configure("forWalk", "forwalk", "Zankle", "1 2 3");
  EXPECT_DEATH(gait.execute(), "kPhases");
}

}  // namespace
