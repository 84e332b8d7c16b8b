#include "Utilities/Types.h"

#include <gtest/gtest.h>

namespace {

// The values are indices of tables and numbers in configuration files. Where the enumerators count
// up without a gap, the last one stands for all.

template <std::size_t N>
void expectCounting(const int (&values)[N]) {
  for (std::size_t i = 0; i < N; ++i) EXPECT_EQ(values[i], static_cast<int>(i));
}

TEST(TypesTest, TeamSide) {
  expectCounting({SIDE_LEFT, SIDE_RIGHT, SIDE_ILLEGAL});
}

TEST(TypesTest, PlayMode) {
  expectCounting({PM_BEFORE_KICK_OFF, PM_KICK_OFF_LEFT, PM_KICK_OFF_RIGHT, PM_PLAY_ON,
                  PM_KICK_IN_LEFT, PM_KICK_IN_RIGHT, PM_CORNER_KICK_LEFT, PM_CORNER_KICK_RIGHT,
                  PM_GOAL_KICK_LEFT, PM_GOAL_KICK_RIGHT, PM_OFFSIDE_LEFT, PM_OFFSIDE_RIGHT, PM_QUIT,
                  PM_GOAL_LEFT, PM_GOAL_RIGHT, PM_FREE_KICK_LEFT, PM_FREE_KICK_RIGHT, PM_ILLEGAL});
}

TEST(TypesTest, ActionType) {
  expectCounting({AT_NONE,
                  AT_ALL,
                  AT_GO_TO_POINT,
                  AT_GO_TO_KICK,
                  AT_GO_TO_GOAL,
                  AT_DRIBBLE,
                  AT_GOAL,
                  AT_GO_BEHINDE_BALL,
                  AT_WALK,
                  AT_FORWALK,
                  AT_BACKWALK,
                  AT_SIDEWALK_RIGHT,
                  AT_SIDEWALK_LEFT,
                  AT_ENDSTEP,
                  AT_OMNIWALK,
                  AT_OMNIBACKWALK,
                  AT_OMNISIDEWALK,
                  AT_OMNITURN,
                  AT_TURN,
                  AT_BASIC_TURN,
                  AT_TURN_BALL,
                  AT_TURN_TO_POINT,
                  AT_STABLE_KICK,
                  AT_KICK,
                  AT_UNSTABLE_KICK,
                  AT_UNSTABLE1_KICK,
                  AT_SIDE_KICK,
                  AT_AIRKICK,
                  AT_TURN_AROUND_BALL,
                  AT_RESET,
                  AT_STANDUP_RESET,
                  AT_STANDUP_FRONT,
                  AT_STANDUP_BACK,
                  AT_FLIP,
                  AT_DIVE});
}

TEST(TypesTest, Roles) {
  expectCounting({ATTACK, HALF_BACK, DEFENCE, GOALIE});
}

TEST(TypesTest, FallOrientation) {
  expectCounting({FALL_FRONT, FALL_BACK, FALL_RIGHT, FALL_LEFT, FALL_NONE});
}

TEST(TypesTest, Orientation) {
  expectCounting({SOUTH, WEST, NORTH, EAST, UNKNOWN});
}

TEST(TypesTest, LineSlopeType) {
  expectCounting({LINE_HORIZONTAL, LINE_VERTICAL, LINE_NONE});
}

TEST(TypesTest, FootSensors) {
  expectCounting({FRP_LEFT_FOOT, FRP_RIGHT_FOOT, FRP_ILLEGAL});
}

TEST(TypesTest, CoordinateSystem) {
  expectCounting({CARTESIAN, SPHERICAL});
}

TEST(TypesTest, DirectionOfFalling) {
  expectCounting({NONE, FALL, FRONT, BACK, RIGHT, LEFT});
}

TEST(TypesTest, KickMood) {
  expectCounting({CLOSE_X, CLOSE_Y, MEDIUM_X, DISTANT_X, DISTANT_Y});
}

TEST(TypesTest, IsNearFall) {
  expectCounting({NONE2, FALL2, NEAR_FALL_RIGHT, NEAR_FALL_LEFT, NEAR_FALL_FRONT, NEAR_FALL_BACK});
}

}  // namespace
