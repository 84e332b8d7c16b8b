// Trainer commands for cycles that are known beforehand.
#include "Trainer/TrainerScript.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "Match/Match.h"

namespace arena {
namespace {

class TrainerScriptTest : public testing::Test {
 protected:
  TrainerScriptTest() : match_(MatchOptions{}) {}

  static TrainerScript parse(const std::string& text) {
    std::istringstream stream(text);
    return TrainerScript(stream);
  }
  // Plays so many cycles more.
  void play(TrainerScript& script, int cycles) {
    for (int i = 0; i < cycles; ++i) {
      script.beforeCycle(played_++, match_.trainer());
      match_.step();
    }
  }
  double ballX() const { return match_.scene().ball.translation().x(); }

  Match match_;
  long played_ = 0;
};

TEST_F(TrainerScriptTest, CommandsAreCarriedOutInTheirCycle) {
  TrainerScript script = parse(
      "# placed\n\n3 (playMode PlayOn)(ball (pos 2 1 0.042)(vel 0 0 0))\n5 (ball (pos -4 0 "
      "0.042))\n");
  play(script, 2);
  EXPECT_EQ(match_.game().mode, PlayMode::BeforeKickOff);
  play(script, 1);
  EXPECT_EQ(match_.game().mode, PlayMode::PlayOn);
  EXPECT_NEAR(ballX(), 2, 0.01);
  play(script, 1);
  EXPECT_NEAR(ballX(), 2, 0.01);
  play(script, 1);
  EXPECT_NEAR(ballX(), -4, 0.01);
}

TEST_F(TrainerScriptTest, AnEmptyScriptDoesNothing) {
  TrainerScript script = parse("");
  play(script, 3);
  EXPECT_EQ(match_.game().mode, PlayMode::BeforeKickOff);
}

TEST_F(TrainerScriptTest, LinesOfAnotherFormAreToldWithTheirNumber) {
  for (const char* text : {"(playMode PlayOn)", "0 (playMode PlayOn)", "3", "3 PlayOn",
                           "99999999999999999999 (dropBall)", "2 (dropBall)\n1 (dropBall)"}) {
    try {
      parse(text);
      ADD_FAILURE() << text;
    } catch (const std::runtime_error& error) {
      const bool second = std::string(text).find('\n') != std::string::npos;
      EXPECT_NE(std::string(error.what()).find(second ? "line 2" : "line 1"), std::string::npos);
    }
  }
}

}  // namespace
}  // namespace arena
