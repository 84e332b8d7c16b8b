#include "Utilities/Converter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kShortPi = 3.1415926;

TEST(ConverterTest, UsesTheShortPi) {
  EXPECT_EQ(Converter::sinDeg(180), std::sin(kShortPi));
  EXPECT_GT(Converter::sinDeg(180), 5e-8);
  EXPECT_EQ(Converter::cosDeg(90), std::cos(90 * kShortPi / 180.0));
  EXPECT_EQ(Converter::atan2Deg(1, 0), std::atan2(1.0, 0.0) * 180.0 / kShortPi);
  EXPECT_GT(Converter::atan2Deg(1, 0), 90.000001);
}

TEST(ConverterTest, TakesAndGivesDegrees) {
  EXPECT_NEAR(Converter::sinDeg(30), 0.5, 1e-7);
  EXPECT_NEAR(Converter::cosDeg(60), 0.5, 1e-7);
  EXPECT_NEAR(Converter::sinDeg(-90), -1, 1e-7);
  EXPECT_NEAR(Converter::atan2Deg(1, 1), 45, 1e-5);
  EXPECT_NEAR(Converter::atan2Deg(-1, -1), -135, 1e-5);
}

struct NamedMode {
  PlayMode mode;
  const char* name;
};

constexpr NamedMode kNamedModes[] = {
    {PM_BEFORE_KICK_OFF, "BeforeKickOff"},
    {PM_KICK_OFF_LEFT, "KickOff_Left"},
    {PM_KICK_OFF_RIGHT, "KickOff_Right"},
    {PM_PLAY_ON, "PlayOn"},
    {PM_KICK_IN_LEFT, "KickIn_Left"},
    {PM_KICK_IN_RIGHT, "KickIn_Right"},
    {PM_CORNER_KICK_LEFT, "corner_kick_left"},
    {PM_CORNER_KICK_RIGHT, "corner_kick_right"},
    {PM_GOAL_KICK_LEFT, "goal_kick_left"},
    {PM_GOAL_KICK_RIGHT, "goal_kick_right"},
    {PM_OFFSIDE_LEFT, "offside_left"},
    {PM_OFFSIDE_RIGHT, "offside_right"},
    {PM_QUIT, "quit"},
    {PM_GOAL_LEFT, "Goal_Left"},
    {PM_GOAL_RIGHT, "Goal_Right"},
    {PM_FREE_KICK_LEFT, "free_kick_left"},
    {PM_FREE_KICK_RIGHT, "free_kick_right"},
};

TEST(ConverterPlayModeNamesTest, EveryModeHasItsName) {
  for (const NamedMode& named : kNamedModes) {
    EXPECT_STREQ(getPlayModeStr(named.mode), named.name);
    EXPECT_STREQ(PlayModeNames[named.mode], named.name);
    EXPECT_EQ(getPlayModeFormStr(named.name), named.mode) << named.name;
  }
  EXPECT_STREQ(getPlayModeStr(PM_ILLEGAL), "illegal");
}

TEST(ConverterPlayModeNamesTest, TextNeedOnlyStartWithTheName) {
  EXPECT_EQ(getPlayModeFormStr("PlayOnward"), PM_PLAY_ON);
  EXPECT_EQ(getPlayModeFormStr("quit)"), PM_QUIT);
  EXPECT_EQ(getPlayModeFormStr("KickOff_Left)(x"), PM_KICK_OFF_LEFT);
}

TEST(ConverterPlayModeNamesTest, OtherTextsAreIllegal) {
  EXPECT_EQ(getPlayModeFormStr(""), PM_ILLEGAL);
  EXPECT_EQ(getPlayModeFormStr("PlayO"), PM_ILLEGAL);
  EXPECT_EQ(getPlayModeFormStr("playon"), PM_ILLEGAL);
  EXPECT_EQ(getPlayModeFormStr(" PlayOn"), PM_ILLEGAL);
  EXPECT_EQ(getPlayModeFormStr("GameOver"), PM_ILLEGAL);
  EXPECT_EQ(getPlayModeFormStr("illegal"), PM_ILLEGAL);
}

TEST(ConverterSideNamesTest, TableIsShiftedByOne) {
  EXPECT_STREQ(getSideStr(SIDE_LEFT), "our");
  EXPECT_STREQ(getSideStr(SIDE_RIGHT), "left");
  EXPECT_STREQ(getSideStr(SIDE_ILLEGAL), "right");
  EXPECT_STREQ(SideNames[3], "illegal");
}

TEST(ConverterSideNamesTest, SideIsReadFromTheFirstLetter) {
  EXPECT_EQ(getSideFromStr("left"), SIDE_LEFT);
  EXPECT_EQ(getSideFromStr("l"), SIDE_LEFT);
  EXPECT_EQ(getSideFromStr("right"), SIDE_RIGHT);
  EXPECT_EQ(getSideFromStr("rl"), SIDE_RIGHT);
  EXPECT_EQ(getSideFromStr("Left"), SIDE_ILLEGAL);
  EXPECT_EQ(getSideFromStr("our"), SIDE_ILLEGAL);
  EXPECT_EQ(getSideFromStr(""), SIDE_ILLEGAL);
}

TEST(ConverterTest, TheIntegerPartIsCutTowardsZero) {
  EXPECT_EQ(integerPart(47.999), 47);
  EXPECT_EQ(integerPart(-47.999), -47);
  EXPECT_EQ(integerPart(0.9), 0);
  EXPECT_EQ(integerPart(2147483647.5), 2147483647);
  EXPECT_EQ(integerPart(-2147483648.0), std::numeric_limits<int>::min());
}

TEST(ConverterTest, AValueThatNoIntHoldsGivesTheLowestInt) {
  const int lowest = std::numeric_limits<int>::min();
  EXPECT_EQ(integerPart(2147483648.0), lowest);
  EXPECT_EQ(integerPart(-1e300), lowest);
  EXPECT_EQ(integerPart(std::numeric_limits<double>::infinity()), lowest);
  EXPECT_EQ(integerPart(std::numeric_limits<double>::quiet_NaN()), lowest);
}

}  // namespace
