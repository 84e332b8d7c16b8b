#include "BasicAction/StandUp.h"

#include <gtest/gtest.h>

#include "BasicAction/Reset.h"
#include "Kinematics/InverseKinematic.h"
#include "support/FakeBody.h"
#include "support/FrameCheck.h"

namespace {

using support::allOfBothHands;
using support::allOfBothLegs;
using support::bothHands;
using support::bothLegs;
using support::checkFrame;
using support::CommandList;
using support::FakeBody;
using support::handCommand;
using support::JointCommand;
using support::placeInside;
using support::placeOutside;
using support::wholeHead;

class StandUpTest : public ::testing::Test {
 protected:
  void checkFront(int state, int counter, const CommandList& commands, int next) {
    SCOPED_TRACE("front, state " + std::to_string(state));
    checkFrame(body, {[&, state, counter] {
                        standUp.standUpFState = state;
                        standUp.counter = counter;
                      },
                      [&] { EXPECT_FALSE(standUp.init_front()); },
                      [&, state] { return standUp.standUpFState != state; }, commands});
    EXPECT_EQ(standUp.standUpFState, next);
  }

  void checkBack(int state, const CommandList& commands) {
    SCOPED_TRACE("back, state " + std::to_string(state));
    checkFrame(body, {[&, state] { standUp.standUpBState = state; },
                      [&] { EXPECT_FALSE(standUp.init_back()); },
                      [&, state] { return standUp.standUpBState != state; }, commands});
    EXPECT_EQ(standUp.standUpBState, state + 1);
  }

  // Drives a sequence on an obeying body until it is true; the number of cycles.
  template <typename Step>
  int run(Step step) {
    int cycles = 1;
    while (!step()) {
      body.nextCycle();
      if (++cycles > 1000) {
        ADD_FAILURE() << "the sequence does not end";
        break;
      }
    }
    return cycles;
  }

  FakeBody body;
  StandUp& standUp = *body.agent.standUp;
};

TEST_F(StandUpTest, StartsAtRest) {
  EXPECT_EQ(standUp.standUpBState, 0);
  EXPECT_EQ(standUp.standUpFState, 0);
  EXPECT_EQ(standUp.flipState, 0);
  EXPECT_EQ(standUp.counter, 0);
  EXPECT_EQ(standUp.type, AT_NONE);
}

TEST_F(StandUpTest, SettersStoreTheRequest) {
  EXPECT_EQ(standUp.front(), &standUp);
  EXPECT_EQ(standUp.type, AT_STANDUP_FRONT);
  EXPECT_EQ(BasicAction::inAction, AT_STANDUP_FRONT);
  EXPECT_EQ(standUp.back(), &standUp);
  EXPECT_EQ(standUp.type, AT_STANDUP_BACK);
  EXPECT_EQ(BasicAction::inAction, AT_STANDUP_BACK);
  EXPECT_EQ(standUp.flip(), &standUp);
  EXPECT_EQ(standUp.type, AT_FLIP);
  EXPECT_EQ(BasicAction::inAction, AT_FLIP);
}

TEST_F(StandUpTest, FrontStraightensLegsAndArms) {
  checkFront(0, 0,
             allOfBothLegs(0, 50, 4) + bothHands(2, 0, 50, 4) + bothHands(3, 0, 50, 4) +
                 bothHands(4, 0, 50, 4),
             1);
}

TEST_F(StandUpTest, FrontRaisesTheArmsAndFoldsTheHips) {
  checkFront(1, 35, bothHands(1, 30, 30, 4) + bothLegs(3, 100, 90, 4), 2);
  EXPECT_EQ(standUp.counter, 0);
}

TEST_F(StandUpTest, FrontTiltsTheAnklesAlone) {
  checkFront(2, 35, bothLegs(5, -15, 60, 3), 3);
  EXPECT_EQ(standUp.counter, 0);
}

TEST_F(StandUpTest, FrontOpensTheHipsAlone) {
  checkFront(3, 0, bothLegs(3, 45, 10, 5), 4);
}

TEST_F(StandUpTest, FrontLeavesTheHipsAloneForFifteenCycles) {
  standUp.standUpFState = 1;
  const FakeBody::Hinge hip{FakeBody::Limb::kLeg, kRight, 3};
  for (int call = 1; call <= 20; ++call) {
    body.markCommands();
    standUp.init_front();
    EXPECT_EQ(standUp.counter, call);
    EXPECT_EQ(body.commanded(hip), call >= 16) << call;
  }
}

TEST_F(StandUpTest, FrontTimedStepsLastThirtySixCyclesEach) {
  for (int state : {1, 2}) {
    standUp.standUpFState = state;
    for (int call = 1; call <= 36; ++call) {
      placeInside(body,
                  bothHands(1, 30, 30, 4) + bothLegs(3, 100, 90, 4) + bothLegs(5, -15, 60, 3));
      EXPECT_EQ(standUp.standUpFState, state) << call;
      standUp.init_front();
    }
    EXPECT_EQ(standUp.standUpFState, state + 1);
    EXPECT_EQ(standUp.counter, 0);
  }
}

TEST_F(StandUpTest, FrontTimedStepsWaitForTheJointsToo) {
  standUp.standUpFState = 2;
  placeOutside(body, bothLegs(5, -15, 60, 3));
  for (int call = 1; call <= 60; ++call) standUp.init_front();
  EXPECT_EQ(standUp.standUpFState, 2);
  EXPECT_EQ(standUp.counter, 60);
}

TEST_F(StandUpTest, FrontEndsInTheFixedStance) {
  standUp.standUpFState = 4;
  EXPECT_FALSE(standUp.init_front());
  EXPECT_EQ(standUp.standUpFState, 4);
  EXPECT_EQ(body.agent.reset->State, 0);
  EXPECT_EQ(body.agent.reset->Speed, 10);
  EXPECT_EQ(body.agent.reset->SP, 5);
  run([&] { return standUp.init_front(); });
  EXPECT_EQ(standUp.standUpFState, 0);
}

TEST_F(StandUpTest, BackFollowsItsTable) {
  checkBack(0, allOfBothLegs(0, 20, 2) + allOfBothHands(0, 30, 6) + wholeHead(0, 100, 6));
  checkBack(1, bothHands(1, -120, 100, 6) + CommandList{handCommand(4, kRight, 65, 30, 6),
                                                        handCommand(4, kLeft, -65, 30, 6)});
  checkBack(2, bothLegs(3, 100, 100, 6));
  checkBack(3, allOfBothHands(0, 30, 6));
  checkBack(4, bothLegs(4, -100, 30, 6) + bothLegs(5, -30, 30, 6) + bothLegs(1, -90, 30, 6));
}

TEST_F(StandUpTest, BackEndsInTheFixedStanceSlowly) {
  standUp.back();
  standUp.standUpBState = 5;
  EXPECT_FALSE(standUp.init_back());
  EXPECT_EQ(body.agent.reset->State, 0);
  EXPECT_EQ(body.agent.reset->Speed, 4);
  EXPECT_EQ(body.agent.reset->SP, 4);
  run([&] { return standUp.init_back(); });
  EXPECT_EQ(standUp.standUpBState, 0);
  EXPECT_EQ(BasicAction::inAction, AT_NONE);
}

TEST_F(StandUpTest, FlipWaitsForEachCommandBeforeTheNext) {
  const CommandList order[] = {bothLegs(1, -90, 30, 2), bothLegs(4, -100, 30, 2),
                               bothLegs(5, -30, 30, 2)};
  standUp.flip();
  CommandList issued;
  for (const CommandList& next : order) {
    placeInside(body, issued);
    placeOutside(body, next);
    body.markCommands();
    EXPECT_FALSE(standUp.init_flip());
    EXPECT_EQ(standUp.flipState, 0);
    issued = issued + next;
    for (const FakeBody::Hinge& hinge : FakeBody::hinges()) {
      bool expected = false;
      for (const JointCommand& c : issued) expected |= c.hinge == hinge;
      EXPECT_EQ(body.commanded(hinge), expected) << FakeBody::name(hinge);
    }
    for (const JointCommand& c : next) {
      EXPECT_FLOAT_EQ(body.target(c.hinge), c.value);
      EXPECT_NEAR(body.controller(c.hinge).Angle, 0.3 * 2.5, 1e-4);
    }
  }
  placeInside(body, issued);
  EXPECT_FALSE(standUp.init_flip());
  EXPECT_EQ(standUp.flipState, 1);
}

TEST_F(StandUpTest, FlipHandsOverToTheBackSequence) {
  standUp.flip();
  standUp.flipState = 1;
  EXPECT_TRUE(standUp.init_flip());
  EXPECT_EQ(standUp.type, AT_STANDUP_BACK);
  EXPECT_EQ(standUp.flipState, 0);
  EXPECT_EQ(BasicAction::inAction, AT_NONE);
}

TEST_F(StandUpTest, SequencesEndOnAnObeyingBody) {
  // The timed steps alone take 72 cycles.
  EXPECT_GT(run([&] { return standUp.init_front(); }), 72);
  EXPECT_EQ(standUp.standUpFState, 0);
  body.placeAll(0);
  run([&] { return standUp.init_back(); });
  EXPECT_EQ(standUp.standUpBState, 0);
  body.placeAll(0);
  run([&] { return standUp.init_flip(); });
}

TEST_F(StandUpTest, AStuckJointHoldsTheSequence) {
  body.place({FakeBody::Limb::kLeg, kLeft, 3}, 60);
  body.setResponse({FakeBody::Limb::kLeg, kLeft, 3}, 0);
  for (int cycle = 0; cycle < 500; ++cycle) {
    standUp.init_back();
    body.nextCycle();
  }
  EXPECT_EQ(standUp.standUpBState, 0);
}

TEST_F(StandUpTest, ResetVarsByType) {
  const auto fill = [&] {
    standUp.standUpBState = 3;
    standUp.type0 = standUp.type1 = 5;
    standUp.flipState = 1;
    standUp.counter = 12;
    standUp.standUpFState = 2;
  };
  const auto expect = [&](int back, int front, int flip) {
    EXPECT_EQ(standUp.standUpBState, back);
    EXPECT_EQ(standUp.type0, front ? 5 : 0);
    EXPECT_EQ(standUp.type1, front ? 5 : 0);
    EXPECT_EQ(standUp.counter, front);
    EXPECT_EQ(standUp.flipState, flip);
    EXPECT_EQ(standUp.standUpFState, 2);  // never cleared: the front sequence resumes
  };
  fill();
  standUp.resetVars(AT_STANDUP_FRONT);
  expect(3, 0, 1);
  fill();
  standUp.resetVars(AT_STANDUP_BACK);
  expect(0, 12, 1);
  fill();
  standUp.resetVars(AT_FLIP);
  expect(0, 12, 0);
  fill();
  standUp.resetVars(AT_ALL);
  expect(0, 0, 0);
  fill();
  standUp.resetVars(AT_WALK);
  expect(3, 12, 1);
}

}  // namespace
