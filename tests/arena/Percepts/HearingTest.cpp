#include "Percepts/Hearing.h"

#include <gtest/gtest.h>

#include <array>

namespace arena {
namespace {

const std::array<std::string, 2> kTeams{"Alpha", "Beta"};
constexpr int kSelf = 5;

Utterance said(int speaker, Side side, const std::string& text, const Eigen::Vector3d& place) {
  return {speaker, side, place, text};
}

class HearingTest : public testing::Test {
 protected:
  void hear(const Utterance& utterance) {
    hearing.hear(utterance, kSelf, side, Eigen::Vector3d(1.0, 2.0, 0.38));
  }
  std::string heard() {
    std::string text;
    hearing.write(kTeams, 12.34, text);
    return text;
  }

  Side side = Side::Left;
  Hearing hearing;
};

TEST_F(HearingTest, WritesOwnMateAndOpponentInThisOrder) {
  hear(said(9, Side::Right, "enemy", {1.0, 5.0, 0.38}));
  hear(said(6, Side::Left, "mate", {4.0, 2.0, 0.38}));
  hear(said(kSelf, Side::Left, "mine", {1.0, 2.0, 0.38}));
  EXPECT_EQ(hearing.heard(), 2);  // its own voice does not count
  EXPECT_EQ(
      heard(),
      "(hear Alpha 12.34 self mine)(hear Alpha 12.34 0.00 mate)(hear Beta 12.34 90.00 enemy)");
}

TEST_F(HearingTest, TurnsDirectionsForTheRightTeam) {
  side = Side::Right;
  hear(said(6, Side::Right, "mate", {4.0, 2.0, 0.38}));
  hear(said(9, Side::Left, "enemy", {1.0, 5.0, 0.38}));
  EXPECT_EQ(heard(), "(hear Beta 12.34 -180.00 mate)(hear Alpha 12.34 -90.00 enemy)");
}

TEST_F(HearingTest, TakesOneMessageOfEachTeamEverySecondCycle) {
  std::string counts;
  for (int cycle = 0; cycle < 6; ++cycle) {
    hearing.nextCycle();
    for (int i = 0; i < 3; ++i) hear(said(6 + i, Side::Left, "m" + std::to_string(i), {4, 2, 0}));
    const std::string text = heard();
    counts += text.find("m0") != std::string::npos ? '1' : '0';
    EXPECT_EQ(text.find("m1"), std::string::npos);
  }
  EXPECT_EQ(counts, "101010");
}

TEST_F(HearingTest, HearsTheOwnVoiceInEveryCycle) {
  for (int cycle = 0; cycle < 4; ++cycle) {
    hearing.nextCycle();
    hear(said(kSelf, Side::Left, "me", {1, 2, 0}));
    EXPECT_EQ(heard(), "(hear Alpha 12.34 self me)");
  }
}

TEST_F(HearingTest, ForgetsInTheNextCycle) {
  hear(said(6, Side::Left, "mate", {4.0, 2.0, 0.38}));
  hearing.nextCycle();
  EXPECT_EQ(heard(), "");
}

TEST_F(HearingTest, KeepsTheSpeakersTeamsWhenSidesChange) {
  hear(said(9, Side::Right, "enemy", {1.0, 5.0, 0.38}));
  hear(said(kSelf, Side::Left, "mine", {1.0, 2.0, 0.38}));
  hearing.changeSides();
  std::string text;
  hearing.write({kTeams[1], kTeams[0]}, 300.0, text);
  EXPECT_EQ(text, "(hear Alpha 300.00 self mine)(hear Beta 300.00 90.00 enemy)");
}

TEST_F(HearingTest, DoesNotReachFartherThanFiftyMetres) {
  hear(said(6, Side::Left, "far", {51.5, 2.0, 0.38}));
  EXPECT_EQ(heard(), "");
}

TEST_F(HearingTest, IsDeafWithoutATeam) {
  side = Side::None;
  hear(said(6, Side::Left, "mate", {4.0, 2.0, 0.38}));
  EXPECT_EQ(heard(), "");
}

TEST(HearingSpeechTest, AllowsUpToTwentyPlainCharacters) {
  EXPECT_TRUE(isSpeakable("a"));
  EXPECT_TRUE(isSpeakable("u09rc12~!*"));
  EXPECT_TRUE(isSpeakable(std::string(20, 'x')));
  EXPECT_FALSE(isSpeakable(std::string(21, 'x')));
  EXPECT_FALSE(isSpeakable(""));
  EXPECT_FALSE(isSpeakable("a b"));
  EXPECT_FALSE(isSpeakable("a(b"));
  EXPECT_FALSE(isSpeakable("a)b"));
  EXPECT_FALSE(isSpeakable("\x7f"));
  EXPECT_FALSE(isSpeakable("\xc3\xa4"));
}

}  // namespace
}  // namespace arena
