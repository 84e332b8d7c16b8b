#include "Percepts/GamePercept.h"

#include <gtest/gtest.h>

namespace arena {
namespace {

TEST(GamePerceptTest, TimeHasTwoDecimals) {
  std::string text;
  writeTime(12.5f, text);
  EXPECT_EQ(text, "(time (now 12.50))");
}

TEST(GamePerceptTest, GameStateTellsScoreTimeAndMode) {
  GameState game;
  game.score = {2, 1};
  game.time = 3.25f;
  game.mode = PlayMode::KickInRight;
  std::string text;
  writeGameState(game, nullptr, text);
  EXPECT_EQ(text, "(GS (sl 2) (sr 1) (t 3.25) (pm KickIn_Right))");
}

TEST(GamePerceptTest, APlayerIsToldItsNumberAndSide) {
  const Shirt left{Side::Left, 7};
  const Shirt right{Side::Right, 11};
  std::string text;
  writeGameState({}, &left, text);
  EXPECT_EQ(text, "(GS (unum 7) (team left) (sl 0) (sr 0) (t 0.00) (pm BeforeKickOff))");
  text.clear();
  writeGameState({}, &right, text);
  EXPECT_EQ(text, "(GS (unum 11) (team right) (sl 0) (sr 0) (t 0.00) (pm BeforeKickOff))");
}

}  // namespace
}  // namespace arena
