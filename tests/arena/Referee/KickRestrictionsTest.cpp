// What the taker of a kick may not do.
#include "Referee/KickRestrictions.h"

#include <gtest/gtest.h>

#include "arena/Support/RefereeTest.h"

namespace arena {
namespace {

class KickRestrictionsTest : public RefereeTest {
 protected:
  // A kick-in for the left team, taken by left2.
  void takeKickIn() {
    start(PlayMode::PlayOn);
    kickTo(right2, 3, 10.1);
    run(2);
    touch(left2);
    ASSERT_EQ(mode(), PlayMode::PlayOn);
  }
  void takeByLeft2(PlayMode play) {
    start(PlayMode::OffsideLeft);
    world.setBallAt(0, 0);
    step();
    start(play);
    run(2);
    touch(left2);
    ASSERT_EQ(mode(), PlayMode::PlayOn);
  }
};

TEST_F(KickRestrictionsTest, ContactsWithinATenthOfASecondBelongToTheKick) {
  takeKickIn();
  for (int i = 0; i < 5; ++i) touch(left2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(KickRestrictionsTest, SecondTouchOfTheTakerGivesAFreeKick) {
  for (const PlayMode play :
       {PlayMode::KickInLeft, PlayMode::CornerKickLeft, PlayMode::GoalKickLeft,
        PlayMode::FreeKickLeft, PlayMode::DirectFreeKickLeft}) {
    takeByLeft2(play);
    world.setBallAt(4, 4);
    run(0.3);
    touch(left2);
    EXPECT_EQ(mode(), PlayMode::FreeKickRight) << nameOf(play);
    run(1.1);
    expectBall(4, 4);
  }
}

TEST_F(KickRestrictionsTest, TouchOfAnotherPlayerFreesTheTaker) {
  takeKickIn();
  run(0.3);
  touch(left3);
  run(0.3);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(KickRestrictionsTest, TwoPlayersAtOnceAreNoDoubleTouch) {
  takeKickIn();
  run(0.3);
  touch(left2, right2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(KickRestrictionsTest, IndirectKicksMustNotGoStraightIntoTheGoal) {
  for (const PlayMode play : {PlayMode::KickInLeft, PlayMode::FreeKickLeft}) {
    takeByLeft2(play);
    hitGoalOf(Side::Right);
    EXPECT_EQ(mode(), PlayMode::GoalKickRight) << nameOf(play);
  }
  EXPECT_EQ(referee.game().score[0], 0);
}

TEST_F(KickRestrictionsTest, DirectKicksMay) {
  for (const PlayMode play :
       {PlayMode::CornerKickLeft, PlayMode::GoalKickLeft, PlayMode::DirectFreeKickLeft}) {
    takeByLeft2(play);
    hitGoalOf(Side::Right);
    EXPECT_EQ(mode(), PlayMode::GoalLeft) << nameOf(play);
  }
}

TEST_F(KickRestrictionsTest, AfterAnotherTouchAnIndirectKickCounts) {
  takeByLeft2(PlayMode::KickInLeft);
  run(0.3);
  touch(right2);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(KickRestrictionsTest, OwnGoalStraightFromAnyOwnKickIsACorner) {
  for (const PlayMode play :
       {PlayMode::KickInLeft, PlayMode::CornerKickLeft, PlayMode::GoalKickLeft,
        PlayMode::FreeKickLeft, PlayMode::DirectFreeKickLeft}) {
    takeByLeft2(play);
    hitGoalOf(Side::Left);
    EXPECT_EQ(mode(), PlayMode::CornerKickRight) << nameOf(play);
    run(1.1);
    expectBall(-14.958, 5.483);
  }
  EXPECT_EQ(referee.game().score[1], 0);
}

TEST_F(KickRestrictionsTest, OwnGoalAfterAnotherTouchCounts) {
  takeByLeft2(PlayMode::KickInLeft);
  run(0.3);
  touch(left3);
  hitGoalOf(Side::Left);
  EXPECT_EQ(mode(), PlayMode::GoalRight);
}

TEST_F(KickRestrictionsTest, WithTwoAgentsKicksMayGoStraightIntoTheGoalButNotBePlayedTwice) {
  world.removeRobot(left3);
  world.agents = 2;
  takeByLeft2(PlayMode::KickInLeft);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
  takeByLeft2(PlayMode::KickInLeft);
  hitGoalOf(Side::Left);
  EXPECT_EQ(mode(), PlayMode::GoalRight);
  takeByLeft2(PlayMode::KickInLeft);
  run(0.3);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::FreeKickRight);
}

TEST_F(KickRestrictionsTest, ANewSetPlayOrADropBallLiftsTheRestriction) {
  takeByLeft2(PlayMode::KickInLeft);
  referee.dropBall();
  run(0.3);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  takeByLeft2(PlayMode::KickInLeft);
  start(PlayMode::CornerKickRight);
  run(1.1);
  start(PlayMode::PlayOn);
  run(0.3);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

}  // namespace
}  // namespace arena
