#include "Common/PlayMode.h"

#include <gtest/gtest.h>

namespace arena {
namespace {

TEST(PlayModeTest, NamesStandAtTheirIndices) {
  const std::string_view names[] = {"BeforeKickOff",
                                    "KickOff_Left",
                                    "KickOff_Right",
                                    "PlayOn",
                                    "KickIn_Left",
                                    "KickIn_Right",
                                    "corner_kick_left",
                                    "corner_kick_right",
                                    "goal_kick_left",
                                    "goal_kick_right",
                                    "offside_left",
                                    "offside_right",
                                    "GameOver",
                                    "Goal_Left",
                                    "Goal_Right",
                                    "free_kick_left",
                                    "free_kick_right",
                                    "direct_free_kick_left",
                                    "direct_free_kick_right",
                                    "pass_left",
                                    "pass_right"};
  ASSERT_EQ(std::size(names), kPlayModeCount);
  for (std::size_t i = 0; i < kPlayModeCount; ++i) {
    EXPECT_EQ(nameOf(static_cast<PlayMode>(i)), names[i]);
    EXPECT_EQ(modeByName(names[i]), static_cast<PlayMode>(i));
  }
}

TEST(PlayModeTest, CaseMatters) {
  EXPECT_EQ(modeByName("playon"), std::nullopt);
  EXPECT_EQ(modeByName("Corner_kick_left"), std::nullopt);
  EXPECT_EQ(modeByName(""), std::nullopt);
}

TEST(PlayModeTest, KindAndSideTogetherGiveTheMode) {
  for (std::size_t i = 0; i < kPlayModeCount; ++i) {
    const auto mode = static_cast<PlayMode>(i);
    EXPECT_EQ(modeOf(kindOf(mode), sideOf(mode)), mode);
  }
  EXPECT_EQ(modeOf(ModeKind::Goal, Side::Right), PlayMode::GoalRight);
}

TEST(PlayModeTest, ThreeModesPauseTheGameAndTwoStopTheClock) {
  int paused = 0;
  int stopped = 0;
  for (std::size_t i = 0; i < kPlayModeCount; ++i) {
    paused += isPaused(static_cast<PlayMode>(i));
    stopped += stopsClock(static_cast<PlayMode>(i));
  }
  EXPECT_EQ(paused, 3);
  EXPECT_TRUE(isPaused(PlayMode::BeforeKickOff));
  EXPECT_TRUE(isPaused(PlayMode::GoalLeft));
  EXPECT_EQ(stopped, 2);
  EXPECT_TRUE(stopsClock(PlayMode::GameOver));
}

}  // namespace
}  // namespace arena
