#include "BasicAction/Dive.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/FakeBody.h"
#include "support/FrameCheck.h"

namespace {

using support::allOfBothHands;
using support::allOfBothLegs;
using support::bothHands;
using support::bothLegs;
using support::checkFrame;
using support::CommandList;
using support::expectDriven;
using support::FakeBody;
using support::handCommand;
using support::legCommand;
using support::placeInside;
using support::placeOutside;
using support::solvedLeg;
using support::wholeHead;

class DiveTest : public ::testing::Test {
 protected:
  void checkState(int state, const CommandList& commands) {
    SCOPED_TRACE("state " + std::to_string(state));
    checkFrame(body, {[&, state] { dive.diveState = state; }, [&] { EXPECT_FALSE(dive.execute()); },
                      [&, state] { return dive.diveState == state + 1; }, commands});
  }

  // One cycle with its output kept off the terminal.
  bool quietly() {
    ::testing::internal::CaptureStdout();
    const bool done = dive.execute();
    printed = ::testing::internal::GetCapturedStdout();
    return done;
  }

  static CommandList spread(bool rotateSide) {
    // The leg that the mirror names always gets 45 times its sign.
    const float sign = rotateSide ? -1 : 1;
    return CommandList{legCommand(2, rotateSide, 45 * sign, 70, 5),
                       legCommand(2, !rotateSide, -45 * sign, 70, 5),
                       handCommand(2, kRight, -90, 70, 5), handCommand(2, kLeft, 90, 70, 5)} +
           bothLegs(3, 80, 70, 5) + bothLegs(1, -65, 70, 5);
  }

  FakeBody body;
  Dive& dive = *body.agent.dive;
  std::string printed;
};

TEST_F(DiveTest, SetterStoresAndCutsTheCycles) {
  EXPECT_EQ(dive.execute(-1, 7.9, true), &dive);
  EXPECT_EQ(dive.Side, -1);
  EXPECT_EQ(dive.fCycle, 7);
  EXPECT_TRUE(dive.RotateSide);
  EXPECT_EQ(dive.type, AT_DIVE);
  EXPECT_EQ(BasicAction::inAction, AT_DIVE);
}

TEST_F(DiveTest, ACountOfCyclesThatNoIntHoldsCountsAsNone) {
  for (double cycles : {1e12, -1e12}) {
    dive.execute(0, cycles, true);
    EXPECT_EQ(dive.fCycle, std::numeric_limits<int>::min());
    dive.diveState = 2;
    EXPECT_TRUE(dive.execute());
  }
}

TEST_F(DiveTest, EveryCycleMarksTheRunningAction) {
  dive.execute(0, 3, true);
  BasicAction::inAction = AT_NONE;
  dive.execute();
  EXPECT_EQ(BasicAction::inAction, AT_DIVE);
}

TEST_F(DiveTest, FrontDiveStraightensFirst) {
  dive.execute(0, 3, true);
  checkState(0, allOfBothLegs(0, 10, 5) + allOfBothHands(0, 10, 5) + wholeHead(0, 50, 5));
}

TEST_F(DiveTest, FrontDiveSpreadsLegsAndArmsInBothMirrors) {
  for (bool rotateSide : {true, false}) {
    dive.execute(0, 3, rotateSide);
    checkState(1, spread(rotateSide));
  }
  EXPECT_EQ(spread(true)[0].value, -45);  // right leg
  EXPECT_EQ(spread(false)[0].value, 45);  // left leg
}

TEST_F(DiveTest, FrontDiveLiesStillForItsCycles) {
  dive.execute(0, 3, true);
  dive.diveState = 2;
  body.markCommands();
  for (int cycle = 0; cycle < 3; ++cycle) {
    EXPECT_FALSE(dive.execute());
    EXPECT_EQ(Dive::freezeCycle, cycle + 1);
  }
  EXPECT_TRUE(dive.execute());
  EXPECT_EQ(dive.diveState, 0);
  EXPECT_EQ(Dive::freezeCycle, 3);  // only resetVars clears it
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
}

TEST_F(DiveTest, WithNoCyclesToLieTheDiveEndsAtOnce) {
  dive.execute(0, 0, true);
  dive.diveState = 2;
  EXPECT_TRUE(dive.execute());
}

TEST_F(DiveTest, TheCountOfCyclesIsSharedByAllObjects) {
  dive.execute(0, 5, true);
  dive.diveState = 2;
  dive.execute();
  EXPECT_EQ(Dive::freezeCycle, 1);
  Dive other;
  other.execute(0, 1, true);
  other.diveState = 2;
  EXPECT_TRUE(other.execute());
}

TEST_F(DiveTest, FrontDiveLogsItsWay) {
  dive.execute(0, 1, true);
  body.takeLog();

  body.placeAll(20);
  dive.execute();
  EXPECT_EQ(body.takeLog(), "return false\n");
  body.placeAll(0);
  dive.execute();
  EXPECT_EQ(body.takeLog(), "jeleH\nreturn false\n");
  placeInside(body, spread(true));
  dive.execute();
  EXPECT_EQ(body.takeLog(), "khafan!\nreturn false\n");
  dive.execute();
  EXPECT_EQ(body.takeLog(), "horaaaaaaaa!\nreturn false\n");
  EXPECT_TRUE(dive.execute());
  EXPECT_EQ(body.takeLog(), "horaaaaaaaa!\n");
}

TEST_F(DiveTest, SideDiveTakesItsPoseInOneCycle) {
  for (int side : {-1, 1}) {
    body.placeAll(0);
    dive.execute(side, 3, true);
    dive.diveState = 0;
    double left[7] = {};
    double right[7] = {};
    const Vector torso(1, 27 * side, -2);
    body.agent.solveIkLeg1(torso, Vector(0, 0, 0), left, kLeft, 0, 0, 0);
    body.agent.solveIkLeg1(torso, Vector(0, 0, 0), right, kRight, 0, 0, 0);
    const CommandList commands = solvedLeg(kLeft, left, 100, 5) + solvedLeg(kRight, right, 100, 5);
    placeOutside(body, commands);
    body.markCommands();
    EXPECT_FALSE(quietly());
    expectDriven(body, commands);
    EXPECT_EQ(dive.diveState, 1);  // whether or not the joints have arrived
  }
}

TEST_F(DiveTest, SideDivePrintsTheTimeInEveryCycle) {
  dive.execute(1, 0, true);
  body.world->gameTime = 2.5f;
  for (int state : {0, 1, 2}) {
    dive.diveState = state;
    quietly();
    EXPECT_EQ(printed, "gameTime=2.5\n");
  }
}

TEST_F(DiveTest, SideDiveRollsOnTheAnkle) {
  for (int side : {-1, 1}) {
    dive.execute(side, 3, true);
    dive.diveState = 1;
    const bool leg = side == 1;
    const float a = side == 1 ? -45 : 45;
    const CommandList commands =
        CommandList{legCommand(6, leg, a, 100, 10), legCommand(6, !leg, -a, 100, 10)} +
        bothHands(1, 90, 100, 10) + wholeHead(0, 100, 10);
    placeOutside(body, commands);
    body.markCommands();
    EXPECT_FALSE(quietly());
    expectDriven(body, commands);
  }
}

TEST_F(DiveTest, SideDiveEndsItsRollOnlyWithTheFall) {
  const CommandList arms = bothHands(1, 90, 100, 10) + wholeHead(0, 100, 10);
  const Vector upright(0, 0, 9.8f), lying(9, 0, 0);
  dive.execute(1, 3, true);

  dive.diveState = 1;
  placeInside(body, arms);
  body.world->mySelf->setAccellerator(upright);
  quietly();
  EXPECT_EQ(dive.diveState, 1);

  placeOutside(body, arms);
  body.world->mySelf->setAccellerator(lying);
  quietly();
  EXPECT_EQ(dive.diveState, 1);

  placeInside(body, arms);
  // The ankles play no part: they stand at 0.
  body.takeLog();
  EXPECT_FALSE(quietly());
  EXPECT_EQ(dive.diveState, 2);
  EXPECT_EQ(body.takeLog(), " lokaloka!\nreturn false\n");
}

TEST_F(DiveTest, SideDiveLiesStillLikeTheFrontDive) {
  dive.execute(-1, 1, true);
  dive.diveState = 2;
  EXPECT_FALSE(quietly());
  EXPECT_TRUE(quietly());
  EXPECT_EQ(dive.diveState, 0);
  EXPECT_EQ(body.takeLog(), "horaaaaaaaa!\nreturn false\nhoraaaaaaaa!\n");
}

TEST_F(DiveTest, ShortBlock) {
  dive.execute(2, 3, true);
  bool done = false;
  checkFrame(body,
             {[&] { dive.finish = false; }, [&] { done = dive.execute(); }, [&] { return done; },
              bothLegs(5, 90, 100, 5) + bothHands(1, 90, 100, 10) + wholeHead(0, 100, 10)});
  EXPECT_TRUE(dive.getFinish());
  EXPECT_EQ(dive.diveState, 0);
}

TEST_F(DiveTest, ShortBlockLogs) {
  dive.execute(5, 3, true);
  EXPECT_FALSE(dive.execute());
  EXPECT_EQ(body.takeLog(), "divefront\nreturn false\n");
  EXPECT_FALSE(dive.getFinish());
}

TEST_F(DiveTest, ShortBlockDoesNothingWithinAnotherDive) {
  dive.execute(2, 3, true);
  dive.diveState = 1;
  body.markCommands();
  EXPECT_FALSE(dive.execute());
  EXPECT_EQ(body.takeLog(), "return false\n");
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
}

TEST_F(DiveTest, ResetVars) {
  dive.execute(1, 4, true);
  dive.diveState = 2;
  dive.finish = true;
  Dive::freezeCycle = 5;
  dive.resetVars();
  EXPECT_EQ(dive.diveState, 0);
  EXPECT_EQ(Dive::freezeCycle, 0);
  EXPECT_FALSE(dive.getFinish());
  EXPECT_EQ(dive.Side, 1);
  EXPECT_EQ(dive.fCycle, 4);
}

}  // namespace
