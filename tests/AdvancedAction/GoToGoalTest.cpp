#include "AdvancedAction/GoToGoal.h"

#include "AdvancedAction/Dribble.h"
#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/Reset.h"
#include "support/TestPlayer.h"

namespace {

using support::TestPlayer;

TEST(GoToGoalConstructionTest, ResetLeavesTheStep) {
  GoToGoal action;
  EXPECT_EQ(action.GTGstate, 1);
  EXPECT_EQ(action.state, 0);
  action.GTGstate = 5;
  action.state = 3;
  action.resetVars();
  EXPECT_EQ(action.GTGstate, 1);
  EXPECT_EQ(action.state, 3);
}

PLAYER_TEST(GoToGoalTest, ApproachesABallFarAway) {
  TestPlayer p(9);
  p.me(-5, 0);
  p.ball(0, 0);
  p.arm();
  p.player.goToGoal->state = 3;
  EXPECT_FALSE(p.player.goToGoal->execute());
  EXPECT_EQ(p.player.goToGoal->state, 0);
  EXPECT_EQ(p.player.walk->v, Vector(0, 0, 0));
  EXPECT_EQ(p.player.walk->Speed, 1);
}

PLAYER_TEST(GoToGoalTest, StandsThenDribbles) {
  TestPlayer p(9);
  p.me(-1.2, 0);  // 1.28 m with the height
  p.ball(0, 0);
  p.arm();
  p.player.goToGoal->state = 1;
  p.until([&] {
    EXPECT_FALSE(p.player.goToGoal->execute());
    return p.player.goToGoal->state == 3;
  });
  EXPECT_EQ(p.player.reset->State, 1);
  p.arm();
  p.player.goToGoal->state = 3;
  EXPECT_FALSE(p.player.goToGoal->execute());
  EXPECT_EQ(p.player.walk->v, Vector(0, 0, 0));
  EXPECT_EQ(p.player.walk->_omniWalk->actionType, 1);
  p.arm();
  p.player.goToGoal->state = 2;
  EXPECT_FALSE(p.player.goToGoal->execute());
  EXPECT_FALSE(p.askedToWalk());
}

PLAYER_TEST(GoToGoalTest, FinishesTheApproachBeforeTheReset) {
  TestPlayer p(9);
  p.me(-1, 0);  // 1.1 m: within 1.2
  p.ball(0, 0);
  p.arm();
  p.until([&] {
    EXPECT_FALSE(p.player.goToGoal->execute());
    return p.player.goToGoal->state == 1;
  });
}

// A ball unseen for more than 0.8 s lies at the feet: the approach is there at once, and turns.
PLAYER_TEST(GoToGoalTest, ALostBallLiesAtTheFeet) {
  TestPlayer p(9);
  p.me(-5, 0, 45);
  p.ball(0, 0);
  p.world.gameTime = 0.79f;
  p.arm();
  p.player.goToGoal->execute();
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 1);
  p.world.gameTime = 0.81f;
  p.arm();
  p.player.goToGoal->state = 3;
  p.player.goToGoal->execute();
  EXPECT_EQ(p.player.goToGoal->state, 0) << "the remembered ball is still far away";
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 3);
  EXPECT_EQ(p.player.turn->v, Vector(-5, 0, 0.45f));
}

// Its own height of 0.45 m is more than the 0.2 m that count as there.
PLAYER_TEST(GoToGoalTest, OnlyAPlayerWithoutHeightIsEverThere) {
  TestPlayer p(9);
  p.ball(14, 0);
  p.me(15, 0);
  EXPECT_FALSE(p.player.goToGoal->execute());
  p.world.mySelf->GlobalPosition = Vector(14.9f, 0, 0);
  EXPECT_TRUE(p.player.goToGoal->execute());
}

}  // namespace
