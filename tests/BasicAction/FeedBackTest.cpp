#include "BasicAction/FeedBack.h"

#include <gtest/gtest.h>

#include "Decision/Actions.h"
#include "support/FakeBody.h"
#include "support/FrameCheck.h"

namespace {

using support::bothHands;
using support::bothLegs;
using support::checkFrame;
using support::CommandList;
using support::expectDriven;
using support::FakeBody;
using support::handCommand;
using support::placeOutside;

class FeedBackTest : public ::testing::Test {
 protected:
  IsNearFall verdict(float ax, float ay) {
    body.world->mySelf->setAccellerator(Vector(ax, ay, 9));
    return feedBack.isNearFall();
  }

  // The result of execute while tipping; the first call finds the joints outside.
  void checkReflex(float ax, float ay, const CommandList& commands) {
    body.world->mySelf->setAccellerator(Vector(ax, ay, 9));
    bool out = false;
    checkFrame(body, {[] {}, [&] { out = feedBack.execute(); }, [&] { return out; }, commands});
  }

  FakeBody body;
  FeedBack& feedBack = *body.agent.feedBack;
};

TEST_F(FeedBackTest, StartsWithTheFirstVariant) {
  EXPECT_EQ(feedBack.state, 1);
  EXPECT_EQ(feedBack.fstate, 1);
}

TEST_F(FeedBackTest, SidewaysBands) {
  EXPECT_EQ(verdict(-1.51f, 0), NEAR_FALL_RIGHT);
  EXPECT_EQ(verdict(-5.49f, 0), NEAR_FALL_RIGHT);
  EXPECT_EQ(verdict(-1.5f, 0), FeedBack::kQuiet);
  EXPECT_EQ(verdict(-5.5f, 0), FeedBack::kQuiet);
  EXPECT_EQ(verdict(-9, 0), FeedBack::kQuiet);
  EXPECT_EQ(verdict(1.51f, 0), NEAR_FALL_LEFT);
  EXPECT_EQ(verdict(30, 0), NEAR_FALL_LEFT);  // no outer limit to the left
  EXPECT_EQ(verdict(1.5f, 0), FeedBack::kQuiet);
}

TEST_F(FeedBackTest, ForwardBands) {
  EXPECT_EQ(verdict(0, 1.51f), NEAR_FALL_BACK);
  EXPECT_EQ(verdict(0, 5.49f), NEAR_FALL_BACK);
  EXPECT_EQ(verdict(0, 1.5f), FeedBack::kQuiet);
  EXPECT_EQ(verdict(0, 5.5f), FeedBack::kQuiet);
  EXPECT_EQ(verdict(0, 9), FeedBack::kQuiet);
  EXPECT_EQ(verdict(0, -1.51f), NEAR_FALL_FRONT);
  EXPECT_EQ(verdict(0, -30), NEAR_FALL_FRONT);  // no outer limit to the front
  EXPECT_EQ(verdict(0, -1.5f), FeedBack::kQuiet);
}

TEST_F(FeedBackTest, TheGreaterComponentDecidesAndATieGoesToTheForwardAxis) {
  EXPECT_EQ(verdict(-3, 2), NEAR_FALL_RIGHT);
  EXPECT_EQ(verdict(-2, 3), NEAR_FALL_BACK);
  EXPECT_EQ(verdict(2, -2), NEAR_FALL_FRONT);
  // Quiet on its own axis stays quiet, whatever the other one says.
  EXPECT_EQ(verdict(-6, -5), FeedBack::kQuiet);
}

TEST_F(FeedBackTest, QuietIsNoMemberOfTheEnumeration) {
  for (int value = 0; value <= 5; ++value) EXPECT_NE(static_cast<int>(FeedBack::kQuiet), value);
}

TEST_F(FeedBackTest, ForwardReflexThrowsTheArms) {
  checkReflex(0, -4.5f, bothHands(1, -90, 80, 2));
  checkReflex(0, -4, bothHands(1, -50, 80, 2));
  checkReflex(0, 4.5f, bothHands(1, 0, 100, 2));
  checkReflex(0, 4, bothHands(1, -20, 100, 2));
}

TEST_F(FeedBackTest, SidewaysReflexThrowsAnArm) {
  checkReflex(-3, 0, {handCommand(1, kLeft, 10, 90, 2)});
  ::testing::internal::CaptureStdout();
  checkReflex(3, 0, {handCommand(1, kLeft, 10, 90, 2), handCommand(2, kRight, -90, 90, 2)});
  // Written once: in the one call in which both arms had arrived.
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "TRUE\n");
}

TEST_F(FeedBackTest, QuietYieldsFalse) {
  body.world->mySelf->setAccellerator(Vector(0, 0, 9));
  body.markCommands();
  EXPECT_FALSE(feedBack.execute());
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
}

TEST_F(FeedBackTest, KeepsQuietDuringAReset) {
  body.world->mySelf->setAccellerator(Vector(-3, 0, 9));
  for (ActionType running : {AT_RESET, AT_STANDUP_RESET}) {
    body.agent.actions->NowAction.actionType = running;
    body.markCommands();
    EXPECT_TRUE(feedBack.execute());
    EXPECT_FALSE(body.commanded({FakeBody::Limb::kHand, kLeft, 1}));
  }
}

TEST_F(FeedBackTest, FallTiltsBothAnkles) {
  const CommandList ankles = bothLegs(5, 15, 30, 5);
  placeOutside(body, ankles);
  body.markCommands();
  EXPECT_TRUE(feedBack.fall());
  expectDriven(body, ankles);
  EXPECT_EQ(feedBack.fstate, 1);
  EXPECT_EQ(feedBack.a, body.agent.findCOM());
}

TEST_F(FeedBackTest, FallInItsOtherVariantsMovesNothing) {
  body.markCommands();
  feedBack.fstate = 2;
  EXPECT_TRUE(feedBack.fall());
  feedBack.fstate = 3;
  EXPECT_FALSE(feedBack.fall());
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
}

}  // namespace
