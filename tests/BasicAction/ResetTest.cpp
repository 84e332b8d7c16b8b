#include "BasicAction/Reset.h"

#include <gtest/gtest.h>

#include <string>

#include "Kinematics/InverseKinematic.h"
#include "support/FakeBody.h"
#include "support/FrameCheck.h"

namespace {

using support::bothHands;
using support::bothLegs;
using support::checkFrame;
using support::CommandList;
using support::FakeBody;
using support::handCommand;
using support::JointCommand;
using support::placeInside;
using support::placeOutside;

class ResetTest : public ::testing::Test {
 protected:
  // The commands of one cycle towards a stance, from the rule and not from the action.
  static CommandList stanceCommands(Vector hip, float speed, float sp) {
    double angles[7];
    InverseKinematic().legSolver(hip, Vector(0, 0, 0), angles);
    CommandList list =
        bothHands(1, -90, sp, 5) +
        CommandList{handCommand(3, kRight, 90, sp, 5), handCommand(3, kLeft, -90, sp, 5)} +
        bothHands(4, 0, sp, 5) + bothLegs(1, 0, speed, 3) + bothLegs(6, 0, speed, 3);
    for (int joint = 2; joint <= 5; ++joint) {
      list = list + bothLegs(joint, static_cast<float>(angles[joint]), sp, 3);
    }
    return list;
  }

  void checkStance(int state, Vector hip) {
    SCOPED_TRACE("state " + std::to_string(state));
    bool arrived = false;
    checkFrame(body, {[&] { reset.execute(state, 40, 20); }, [&] { arrived = reset.init(); },
                      [&] { return arrived; }, stanceCommands(hip, 40, 20)});
    EXPECT_FLOAT_EQ(reset.heap.x, hip.x);
    EXPECT_FLOAT_EQ(reset.heap.y, hip.y);
    EXPECT_FLOAT_EQ(reset.heap.z, hip.z);
    EXPECT_EQ(reset.ankle, Vector(0, 0, 0));
  }

  FakeBody body;
  Reset& reset = *body.agent.reset;
};

TEST_F(ResetTest, SetterStoresTheRequestAndMovesNothing) {
  body.markCommands();
  EXPECT_EQ(reset.execute(3, 10, 5), &reset);
  EXPECT_EQ(reset.State, 3);
  EXPECT_EQ(reset.Speed, 10);
  EXPECT_EQ(reset.SP, 5);
  EXPECT_EQ(reset.type, AT_RESET);
  EXPECT_EQ(BasicAction::inAction, AT_RESET);
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
}

// The stances with the tests' configuration: forWalk 0.25, 0.5, 0.5 and backWalk 0.5.
TEST_F(ResetTest, NeutralStance) {
  checkStance(1, Vector(20, -5, -35));
}
TEST_F(ResetTest, StanceOfTheBackGait) {
  checkStance(2, Vector(30, 0, -35));
}
TEST_F(ResetTest, StanceOfTheForwardGait) {
  checkStance(3, Vector(25, -5, -35));
}

TEST_F(ResetTest, EveryOtherStateTakesTheFixedStance) {
  for (int state : {0, 4, -1}) checkStance(state, Vector(50, 0, -60));
}

TEST_F(ResetTest, ReadsTheConfigurationOnEveryCall) {
  reset.execute(1, 10, 5);
  reset.init();
  FakeBody::configure("forWalk", "forwalk", "Xtorso", "0.5");
  reset.init();
  EXPECT_FLOAT_EQ(reset.heap.x, 40);
}

TEST_F(ResetTest, FactorsAreAppliedInSinglePrecision) {
  FakeBody::configure("forWalk", "forwalk", "Ztorso", "0.1");
  reset.execute(1, 10, 5);
  reset.init();
  EXPECT_EQ(reset.heap.z, 0.1f * -70);
}

TEST_F(ResetTest, ArrivalEndsTheMarkOfTheRunningAction) {
  const CommandList commands = stanceCommands(Vector(50, 0, -60), 10, 5);
  reset.execute(0, 10, 5);
  placeOutside(body, commands);
  EXPECT_FALSE(reset.init());
  EXPECT_EQ(BasicAction::inAction, AT_RESET);
  placeInside(body, commands);
  EXPECT_TRUE(reset.init());
  EXPECT_EQ(BasicAction::inAction, AT_NONE);
}

TEST_F(ResetTest, ReachesTheStanceFromStraightLegs) {
  reset.execute(0, 10, 5);
  int cycles = 0;
  while (!reset.init()) {
    body.nextCycle();
    ASSERT_LT(++cycles, 300);
  }
  double angles[7];
  InverseKinematic().legSolver(Vector(50, 0, -60), Vector(0, 0, 0), angles);
  for (bool side : {kLeft, kRight}) {
    for (int joint = 1; joint <= 6; ++joint) {
      const float sensed = body.angle({FakeBody::Limb::kLeg, side, joint});
      EXPECT_NEAR(sensed, joint == 1 || joint == 6 ? 0 : angles[joint], 3.5) << joint;
    }
  }
  // At 5 % a cycle, the arms have 90 degrees to go to within 5: they are the last to arrive.
  EXPECT_GT(cycles, 40);
  EXPECT_LT(cycles, 80);
}

TEST_F(ResetTest, AStuckJointHoldsTheStanceUntilItCountsAsStalled) {
  // A tenth of a degree outside the tolerance, and stuck: after 200 repeats of the same target the
  // joint layer takes it for arrived.
  const CommandList commands = stanceCommands(Vector(50, 0, -60), 10, 5);
  placeInside(body, commands);
  body.leg(kRight, 4).preValue = 0;
  const FakeBody::Hinge knee{FakeBody::Limb::kLeg, kRight, 4};
  for (const JointCommand& c : commands) {
    if (c.hinge == knee) body.place(knee, c.value - 3.1f);
  }
  body.setResponse(0);
  reset.execute(0, 10, 5);
  int cycles = 1;
  while (!reset.init()) {
    body.leg(kRight, 4).Angle = 0;  // nothing is under way: the joint does not answer
    body.nextCycle();
    ASSERT_LT(++cycles, 300);
  }
  EXPECT_EQ(cycles, 201);
}

TEST_F(ResetTest, LowCrouch) {
  double angles[7];
  InverseKinematic().legSolver(Vector(-10, 0, -20), Vector(0, 0, 0), angles);
  CommandList commands = bothHands(1, -90, 10, 2) + CommandList{handCommand(2, kLeft, 10, 5, 2)} +
                         bothHands(4, 0, 10, 5) + bothLegs(1, 0, 50, 0.5f) +
                         bothLegs(6, 0, 50, 0.5f);
  for (int joint = 2; joint <= 5; ++joint) {
    commands = commands + bothLegs(joint, static_cast<float>(angles[joint]), 5, 0.5f);
  }
  bool arrived = false;
  ::testing::internal::CaptureStdout();
  checkFrame(body,
             {[] {}, [&] { arrived = reset.prepareToReset(); }, [&] { return arrived; }, commands});
  ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(BasicAction::inAction, AT_NONE);
  EXPECT_EQ(reset.heap, Vector(-10, 0, -20));
}

TEST_F(ResetTest, LowCrouchPrintsTheSolvedAngles) {
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(reset.prepareToReset());
  EXPECT_EQ(BasicAction::inAction, AT_STANDUP_RESET);
  std::ostringstream expected;
  for (int i = 0; i < 7; ++i) expected << " i : " << i << " " << reset.angs[i] << "\n";
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), expected.str());
}

TEST_F(ResetTest, ResetVarsClearsTheCounterAlone) {
  reset.execute(3, 10, 5);
  reset.resetCounter = 4;
  reset.resetVars();
  EXPECT_EQ(reset.resetCounter, 0);
  EXPECT_EQ(reset.State, 3);
  EXPECT_EQ(reset.Speed, 10);
  EXPECT_EQ(reset.SP, 5);
}

}  // namespace
