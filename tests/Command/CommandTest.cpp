#include "Command/Command.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

#include "support/ConfigSandbox.h"

namespace {

std::string final(Command& command) {
  command.setFinal();
  return command.getFinal();
}

TEST(CommandTest, IsEmptyAtFirst) {
  Command command;
  EXPECT_EQ(command.getFinal(), "");
  EXPECT_EQ(final(command), "");
}

TEST(CommandTest, JointsFollowOneAnother) {
  Command command;
  command.addJoint("he1", -1.5f);
  command.addJoint("lle6", 0.00123f);
  command.addJoint("rae4", 0);
  EXPECT_EQ(final(command), "(he1 -1.5)(lle6 0.00123)(rae4 0)");
}

struct NumberCase {
  float value;
  const char* text;
};

TEST(CommandTest, NumbersHaveSixSignificantDigits) {
  constexpr NumberCase kCases[] = {
      {1e-05f, "1e-05"},
      {0.0001f, "0.0001"},
      {1234567.0f, "1.23457e+06"},
      {123456.0f, "123456"},
      {999999.5f, "1e+06"},
      {3.14159265f, "3.14159"},
      {-0.0f, "-0"},
      {100.0f, "100"},
      {0.1f, "0.1"},
      {1e10f, "1e+10"},
      {-2.5e-7f, "-2.5e-07"},
      {std::numeric_limits<float>::infinity(), "inf"},
  };
  for (const NumberCase& number : kCases) {
    Command command;
    command.addJoint("he1", number.value);
    EXPECT_EQ(final(command), std::string("(he1 ") + number.text + ")");
  }
}

TEST(CommandTest, NumbersReadAsAnOutputStreamWritesThem) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-12, 12);
  for (int i = 0; i < 10000; ++i) {
    const float value = mantissa(random) * std::pow(10.0f, static_cast<float>(exponent(random)));
    std::ostringstream expected;
    expected << "(he1 " << static_cast<double>(value) << ")";
    Command command;
    command.addJoint("he1", value);
    EXPECT_EQ(final(command), expected.str());
  }
}

TEST(CommandTest, InitHoldsABlankInFrontOfTheFirstParenthesis) {
  Command command;
  command.setInitial("Us", 7);
  EXPECT_EQ(final(command), "(init (unum 7 ) (teamname Us))");
}

TEST(CommandTest, InitTakesTheLastTeamAndNumber) {
  Command command;
  command.setInitial("Us", 7);
  command.setInitial("Them", 11);
  EXPECT_EQ(final(command), "(init (unum 11 ) (teamname Them))");
}

TEST(CommandTest, BeamHoldsThreeNumbers) {
  Command command;
  command.setBeam(Vector(-14.5f, 0, 1e-05f));
  EXPECT_EQ(final(command), "(beam -14.5 0 1e-05)");
}

TEST(CommandTest, SceneIsTheConfiguredTextAndTheType) {
  const support::ConfigSandbox sandbox{
      {"Agent", "[Public]\nType = 0x3\n[NAO]\nRsg = scene rsg/agent/nao/nao.rsg\n"}};
  Command command;
  command.setRSG();
  EXPECT_EQ(final(command), "(scene rsg/agent/nao/nao.rsg 3)");
}

TEST(CommandTest, SceneNeedsItsKeys) {
  const support::ConfigSandbox sandbox{{"Agent", "[Public]\nType = 0\n[NAO]\n"}};
  Command command;
  EXPECT_DEATH(command.setRSG(), "^Rsg.*it != values.end");
}

TEST(CommandTest, SayTermStandsOnlyIfSomethingIsSaid) {
  Command command;
  command.addJoint("he1", 1);
  EXPECT_EQ(final(command), "(he1 1)");
  command.clear();
  command.addSay("u07rc12");
  EXPECT_EQ(final(command), "(say u07rc12)");
}

TEST(CommandTest, TwoSaysMakeOneText) {
  Command command;
  command.addSay("ab");
  command.addSay("cd");
  EXPECT_EQ(final(command), "(say abcd)");
}

TEST(CommandTest, EmptySayMakesNoTerm) {
  Command command;
  command.addSay("");
  EXPECT_EQ(final(command), "");
}

TEST(CommandTest, SayTermIsBuiltFromAnEmptyTextToo) {
  Command command;
  EXPECT_EQ(command.getFinalSay(), "(say )");
  command.addSay("x");
  EXPECT_EQ(command.getFinalSay(), "(say x)");
  EXPECT_EQ(command.getFinal(), "");
}

TEST(CommandTest, PiecesStandInAFixedOrder) {
  const support::ConfigSandbox sandbox{{"Agent", "[Public]\nType = 0\n[NAO]\nRsg = scene x\n"}};
  Command command;
  command.setRSG();
  command.addSay("s");
  command.setBeam(Vector(1, 2, 3));
  command.setInitial("T", 1);
  command.addJoint("he1", 1);
  EXPECT_EQ(final(command), "(he1 1)(init (unum 1 ) (teamname T))(beam 1 2 3)(say s)(scene x 0)");
}

TEST(CommandTest, FinalTextGrowsUntilItIsCleared) {
  Command command;
  command.addJoint("he1", 1);
  command.setFinal();
  command.addJoint("he2", 2);
  EXPECT_EQ(final(command), "(he1 1)(he1 1)(he2 2)");
}

TEST(CommandTest, ClearEmptiesEverything) {
  const support::ConfigSandbox sandbox{{"Agent", "[Public]\nType = 0\n[NAO]\nRsg = scene x\n"}};
  Command command;
  command.addJoint("he1", 1);
  command.setInitial("T", 1);
  command.setBeam(Vector(1, 2, 3));
  command.addSay("s");
  command.setRSG();
  command.setFinal();
  command.clear();
  EXPECT_EQ(command.getFinal(), "");
  EXPECT_EQ(final(command), "");
  EXPECT_EQ(command.getFinalSay(), "(say )");
}

}  // namespace
