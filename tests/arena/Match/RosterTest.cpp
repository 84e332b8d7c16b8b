#include "Match/Roster.h"

#include <gtest/gtest.h>

namespace arena {
namespace {

TEST(RosterTest, GivesTheFirstTeamTheLeftSideAndTheSecondTheRight) {
  Roster roster;
  EXPECT_EQ(roster.admit("Beta", 1, 0)->side, Side::Left);
  EXPECT_EQ(roster.admit("Alpha", 1, 0)->side, Side::Right);
  EXPECT_EQ(roster.admit("Beta", 2, 0)->side, Side::Left);
  EXPECT_FALSE(roster.admit("Gamma", 1, 0));
  EXPECT_EQ(roster.teamName(Side::Left), "Beta");
  EXPECT_EQ(roster.teamName(Side::Right), "Alpha");
}

TEST(RosterTest, GivesTheLowestFreeNumberForZero) {
  Roster roster;
  EXPECT_EQ(roster.admit("A", 1, 0)->number, 1);
  EXPECT_EQ(roster.admit("A", 3, 0)->number, 3);
  EXPECT_EQ(roster.admit("A", 0, 0)->number, 2);
  EXPECT_EQ(roster.admit("A", 0, 0)->number, 4);
}

TEST(RosterTest, RefusesNumbersInUseOrOutOfRange) {
  Roster roster;
  EXPECT_TRUE(roster.admit("A", 5, 0));
  EXPECT_FALSE(roster.admit("A", 5, 0));
  EXPECT_FALSE(roster.admit("A", -1, 0));
  EXPECT_FALSE(roster.admit("A", 12, 0));
  EXPECT_TRUE(roster.admit("B", 5, 0));
}

TEST(RosterTest, FreesNumberAndTypeOfAPlayerThatLeaves) {
  Roster roster;
  for (int i = 1; i <= 7; ++i) EXPECT_TRUE(roster.admit("A", i, 0)) << i;
  roster.release(Side::Left, 3, 0);
  EXPECT_TRUE(roster.admit("A", 3, 0));
}

TEST(RosterTest, RefusesAnEighthRobotOfOneTypeAndLeavesItsNumberTaken) {
  Roster roster;
  for (int i = 1; i <= 7; ++i) ASSERT_TRUE(roster.admit("A", i, 2));
  EXPECT_FALSE(roster.admit("A", 8, 2));
  EXPECT_FALSE(roster.admit("A", 8, 1));
  EXPECT_TRUE(roster.admit("A", 9, 1));
}

TEST(RosterTest, RefusesATenthRobotOfTwoTypes) {
  Roster roster;
  for (int i = 1; i <= 5; ++i) ASSERT_TRUE(roster.admit("A", i, 0));
  for (int i = 6; i <= 9; ++i) ASSERT_TRUE(roster.admit("A", i, 1));
  EXPECT_FALSE(roster.admit("A", 10, 0));
  EXPECT_TRUE(roster.admit("A", 11, 4));
}

TEST(RosterTest, KeepsPlacesForTypesThatAreMissing) {
  Roster roster;
  for (int i = 1; i <= 5; ++i) ASSERT_TRUE(roster.admit("A", i, 0));
  for (int i = 6; i <= 8; ++i) ASSERT_TRUE(roster.admit("A", i, 1));
  ASSERT_TRUE(roster.admit("A", 9, 1));
  // Nine in two types: the last two places are for others.
  EXPECT_FALSE(roster.admit("A", 10, 1));
  EXPECT_TRUE(roster.admit("A", 11, 3));
}

TEST(RosterTest, TakesElevenPlayersAndNoMore) {
  Roster roster;
  for (int i = 1; i <= 11; ++i) ASSERT_TRUE(roster.admit("A", i, i % 5)) << i;
  EXPECT_FALSE(roster.admit("A", 0, 0));
}

TEST(RosterTest, StartsPlayersInARowBesideTheirGoal) {
  Roster roster;
  for (int i = 0; i < 11; ++i) {
    const auto left = roster.admit("A", i + 1, i % 5);
    const auto right = roster.admit("B", i + 1, i % 5);
    EXPECT_NEAR(left->start.x(), -14.2, 1e-9);
    EXPECT_NEAR(left->start.y(), 9.2 - 1.2 * i, 1e-9);
    EXPECT_NEAR(right->start.x(), 14.2, 1e-9);
    EXPECT_NEAR(right->start.y(), 9.2 - 1.2 * i, 1e-9);
  }
}

TEST(RosterTest, BeginsANewRowBelowTheField) {
  Roster roster;
  std::optional<Roster::Player> player;
  for (int i = 0; i < 18; ++i) {
    player = roster.admit("A", 1, 0);
    ASSERT_TRUE(player);
    roster.release(Side::Left, 1, 0);
  }
  EXPECT_NEAR(player->start.x(), -13.4, 1e-9);
  EXPECT_GE(player->start.y(), 8.0 - 1e-9);
}

TEST(RosterTest, ChangedSidesKeepTeamsTogether) {
  Roster roster;
  ASSERT_TRUE(roster.admit("A", 1, 0));
  ASSERT_TRUE(roster.admit("B", 2, 0));
  roster.changeSides();
  EXPECT_EQ(roster.teamName(Side::Left), "B");
  EXPECT_EQ(roster.teamName(Side::Right), "A");
  EXPECT_FALSE(roster.admit("A", 1, 1));  // in use
  roster.release(Side::Right, 1, 0);
  const auto again = roster.admit("A", 1, 0);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->side, Side::Right);
  EXPECT_NEAR(again->start.x(), 14.2, 1e-9);
}

TEST(RosterTest, ATeamThatComesAfterTheChangeTakesTheFreeSide) {
  Roster roster;
  ASSERT_TRUE(roster.admit("A", 1, 0));
  roster.changeSides();
  const auto late = roster.admit("B", 1, 0);
  ASSERT_TRUE(late);
  EXPECT_EQ(late->side, Side::Left);
  EXPECT_NEAR(late->start.x(), -14.2, 1e-9);
}

TEST(RosterTest, RefusesNamesThatCannotBePrinted) {
  Roster roster;
  for (const char* name : {"", "a b", "a(b", "x)", "\"q\"", "new\nline", "a;b", "back\\slash"}) {
    EXPECT_FALSE(roster.admit(name, 1, 0)) << name;
  }
  EXPECT_FALSE(roster.admit(std::string(65, 'x'), 1, 0));
  EXPECT_TRUE(roster.admit("Team-7_x", 1, 0));
}

}  // namespace
}  // namespace arena
