// Pass mode: who is granted it, and what follows.
#include "Referee/PassMode.h"

#include <gtest/gtest.h>

#include "arena/Support/RefereeTest.h"

namespace arena {
namespace {

class PassModeTest : public RefereeTest {
 protected:
  PassModeTest() {
    start(PlayMode::OffsideLeft);
    run(4);
    start(PlayMode::PlayOn);
    world.setBallAt(2, 2);
    world.put(left2, 1.6, 2);
    step();
  }
  bool granted() {
    referee.requestPass(left2);
    return mode() == PlayMode::PassLeft;
  }
};

TEST_F(PassModeTest, IsGrantedToAPlayerAtARestingBall) {
  EXPECT_TRUE(granted());
}

TEST_F(PassModeTest, NeedsPlayOn) {
  start(PlayMode::OffsideRight);
  EXPECT_FALSE(granted());
}

TEST_F(PassModeTest, NeedsARestingBall) {
  world.ballView.velocity = {0.051, 0, 0};
  EXPECT_FALSE(granted());
  world.ballView.velocity = {0.049, 0, 0};
  EXPECT_TRUE(granted());
}

TEST_F(PassModeTest, NeedsTheAskingPlayerNearTheBall) {
  world.put(left2, 1.49, 2);
  EXPECT_FALSE(granted());
  world.put(left2, 1.51, 2);
  EXPECT_TRUE(granted());
}

TEST_F(PassModeTest, NeedsOpponentsAMetreAway) {
  world.put(right2, 2.99, 2);
  EXPECT_FALSE(granted());
  world.put(right2, 3.01, 2);
  EXPECT_TRUE(granted());
}

TEST_F(PassModeTest, NeedsNobodyOfTheTeamAtTheBall) {
  world.touchBall(left3);
  EXPECT_FALSE(granted());
  world.clearContacts();
  world.touchBall(right2);
  EXPECT_TRUE(granted());
}

TEST_F(PassModeTest, NeedsATeam) {
  const RobotHandle stranger = world.add(Side::None, 0, 1.7, 2);
  referee.requestPass(stranger);
  referee.requestPass(12345);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(PassModeTest, EndsAtTheFirstTouchOfAnybody) {
  for (const RobotHandle robot : {left3, right2}) {
    ASSERT_TRUE(granted());
    step(3);
    touch(robot);
    EXPECT_EQ(mode(), PlayMode::PlayOn);
    run(4);
  }
}

TEST_F(PassModeTest, EndsAfterFourSeconds) {
  ASSERT_TRUE(granted());
  run(3.9);
  EXPECT_EQ(mode(), PlayMode::PassLeft);
  run(0.2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(PassModeTest, ComesAgainOnlyThreeSecondsAfterTheLastOne) {
  ASSERT_TRUE(granted());
  touch(left2);
  run(2.9);
  EXPECT_FALSE(granted());
  run(0.2);
  EXPECT_TRUE(granted());
}

TEST_F(PassModeTest, TheOtherSideNeedNotWait) {
  ASSERT_TRUE(granted());
  touch(left2);
  world.put(left2, -5, 2);
  world.put(right2, 2.4, 2);
  referee.requestPass(right2);
  EXPECT_EQ(mode(), PlayMode::PassRight);
}

TEST_F(PassModeTest, OpponentsAreMovedAwayInEveryCycle) {
  ASSERT_TRUE(granted());
  for (int i = 0; i < 2; ++i) {
    world.put(right2, 2.5, 2);
    step();
    EXPECT_NEAR(world.place(right2).x(), 3.1, 1e-9);
  }
}

TEST_F(PassModeTest, GoalsAndOutsAreStillWhistled) {
  ASSERT_TRUE(granted());
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(PassModeTest, TheSideCannotScoreForTenSecondsAfterwards) {
  ASSERT_TRUE(granted());
  touch(left2);
  EXPECT_NEAR(referee.passScoreWait(Side::Left), 10, 1e-3);
  EXPECT_EQ(referee.passScoreWait(Side::Right), 0);
  run(9.5);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalKickRight);
}

TEST_F(PassModeTest, AfterTenSecondsTheSideMayScore) {
  ASSERT_TRUE(granted());
  touch(left2);
  run(10.1);
  EXPECT_EQ(referee.passScoreWait(Side::Left), 0);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(PassModeTest, TheOtherSideMayScore) {
  ASSERT_TRUE(granted());
  touch(left2);
  hitGoalOf(Side::Left);
  EXPECT_EQ(mode(), PlayMode::GoalRight);
}

TEST_F(PassModeTest, ARealPassLiftsTheLimit) {
  ASSERT_TRUE(granted());
  touch(left2);
  world.setBallAt(3.1, 2);
  run(0.5);
  touch(left3);
  EXPECT_EQ(referee.passScoreWait(Side::Left), 0);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(PassModeTest, AShortPassOrALonelyRunDoesNotLiftTheLimit) {
  ASSERT_TRUE(granted());
  touch(left2);
  world.setBallAt(2.9, 2);
  run(0.5);
  touch(left3);  // two players, but the ball was never a metre away
  EXPECT_GT(referee.passScoreWait(Side::Left), 0);
  run(4);
  world.setBallAt(2, 2);
  ASSERT_TRUE(granted());
  touch(left2);
  world.setBallAt(4, 2);
  run(0.5);
  touch(left2);  // far enough, but one player alone
  EXPECT_GT(referee.passScoreWait(Side::Left), 0);
}

TEST_F(PassModeTest, OpponentsPassModeAndSetPlaysLiftTheLimit) {
  ASSERT_TRUE(granted());
  touch(left2);
  world.put(left2, -5, 2);
  world.put(right2, 2.4, 2);
  referee.requestPass(right2);
  ASSERT_EQ(mode(), PlayMode::PassRight);
  EXPECT_EQ(referee.passScoreWait(Side::Left), 0);

  touch(right2);
  EXPECT_GT(referee.passScoreWait(Side::Right), 0);
  start(PlayMode::KickOffLeft);
  EXPECT_EQ(referee.passScoreWait(Side::Right), 0);
}

}  // namespace
}  // namespace arena
