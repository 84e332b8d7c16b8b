#include "Match/AgentMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace arena {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AgentMessagesTest : public testing::Test {
 protected:
  const AgentMessage& read(std::string_view frame) { return messages.read(frame, &robotModel(0)); }
  const AgentMessage& readWithoutRobot(std::string_view frame) {
    return messages.read(frame, nullptr);
  }

  AgentMessages messages;
};

TEST_F(AgentMessagesTest, WithoutARobotOnlyASceneIsRead) {
  const AgentMessage& message = readWithoutRobot(
      "(he1 1)(say hello)(init (unum 1)(teamname A))(scene rsg/agent/nao/nao_hetero.rsg 3)(pass)");
  EXPECT_EQ(message.scene, 3);
  EXPECT_FALSE(message.init);
  EXPECT_FALSE(message.pass);
  EXPECT_THAT(message.says, IsEmpty());
  EXPECT_THAT(message.speeds, IsEmpty());
  EXPECT_THAT(message.complaints, IsEmpty());
}

TEST_F(AgentMessagesTest, SceneWithoutATypeIsTypeZero) {
  EXPECT_EQ(readWithoutRobot("(scene rsg/agent/nao/nao.rsg)").scene, 0);
}

TEST_F(AgentMessagesTest, UnknownScenesAndTypesAreNamed) {
  EXPECT_THAT(readWithoutRobot("(scene rsg/agent/nao/nao_hetero.rsg 5)").complaints,
              ElementsAre("scene with an unknown robot type"));
  EXPECT_THAT(readWithoutRobot("(scene rsg/other.rsg)").complaints,
              ElementsAre("unknown scene rsg/other.rsg"));
  EXPECT_FALSE(readWithoutRobot("(scene rsg/other.rsg)").scene);
}

TEST_F(AgentMessagesTest, SpeedsComeInOrderAndOnlyWithAnAtom) {
  const AgentMessage& message = read("(he1 1.5)(he2)(he2 (3))(he1 -2)");
  ASSERT_EQ(message.speeds.size(), 2u);
  const int he1 = robotModel(0).jointByEffector("he1");
  EXPECT_EQ(message.speeds[0].joint, he1);
  EXPECT_EQ(message.speeds[0].speed, 1.5);
  EXPECT_EQ(message.speeds[1].joint, he1);
  EXPECT_EQ(message.speeds[1].speed, -2);
}

TEST_F(AgentMessagesTest, ToesMoveOnlyTheTypeThatHasThemButAreNoError) {
  EXPECT_THAT(read("(lle7 1)").speeds, IsEmpty());
  EXPECT_THAT(read("(lle7 1)").complaints, IsEmpty());
  EXPECT_THAT(read("(lle9 1)").complaints, ElementsAre("unknown effector lle9"));
  EXPECT_EQ(messages.read("(lle7 1)", &robotModel(kTypeWithToes)).speeds.size(), 1u);
}

TEST_F(AgentMessagesTest, TheFirstAtomIsSaidWhateverFollows) {
  EXPECT_THAT(read("(say a b)").says, ElementsAre("a"));
  EXPECT_THAT(read("(say x(y)z)").says, ElementsAre("x"));
  EXPECT_THAT(read("(say (y))(say)(say this_is_longer_than_20_chars)").says, IsEmpty());
}

TEST_F(AgentMessagesTest, BeamNeedsThreeFiniteNumbers) {
  const AgentMessage& message = read("(beam -4 2 30)");
  ASSERT_TRUE(message.beam);
  EXPECT_EQ(message.beam->x, -4);
  EXPECT_EQ(message.beam->y, 2);
  EXPECT_EQ(message.beam->turn, 30);
  for (const char* frame : {"(beam)", "(beam -4)", "(beam -4 0)", "(beam -4 0 (1))"}) {
    EXPECT_FALSE(read(frame).beam) << frame;
    EXPECT_THAT(read(frame).complaints, IsEmpty()) << frame;
  }
  EXPECT_FALSE(read("(beam nan 0 0)").beam);
  EXPECT_THAT(read("(beam -4 inf 0)").complaints,
              ElementsAre("beam to a place that is not finite"));
}

TEST_F(AgentMessagesTest, OfSeveralTermsOfOneKindTheLastOneCounts) {
  const AgentMessage& message =
      read("(beam -4 2 30)(beam -5 1 0)(init (unum 2)(teamname A))(init (unum 3)(teamname B))");
  EXPECT_EQ(message.beam->x, -5);
  EXPECT_EQ(message.init->number, 3);
  EXPECT_EQ(message.init->team, "B");
}

TEST_F(AgentMessagesTest, TeamNamesThatPerceptsCannotRepeatAreRefused) {
  EXPECT_FALSE(read("(init (unum 2)(teamname \"a b\"))").init);
  EXPECT_EQ(messages.read("(init (unum 2)(teamname \"a b\"))", &robotModel(0)).complaints.size(),
            1u);
  EXPECT_FALSE(read("(init (unum 2))").init);
}

TEST_F(AgentMessagesTest, KeepsWhatStandsBeforeABrokenExpression) {
  const AgentMessage& message = read("(he1 1)(pass)(he2 ");
  EXPECT_EQ(message.speeds.size(), 1u);
  EXPECT_TRUE(message.pass);
  EXPECT_EQ(message.complaints.size(), 1u);
}

TEST_F(AgentMessagesTest, NothingIsLeftOfTheMessageBefore) {
  read("(he1 1)(say a)(pass)(beam 0 0 0)(nothing)");
  const AgentMessage& message = read("(syn)(scene rsg/agent/nao/nao.rsg)");
  EXPECT_THAT(message.speeds, IsEmpty());
  EXPECT_THAT(message.says, IsEmpty());
  EXPECT_THAT(message.complaints, IsEmpty());
  EXPECT_FALSE(message.pass || message.beam || message.scene);
}

}  // namespace
}  // namespace arena
