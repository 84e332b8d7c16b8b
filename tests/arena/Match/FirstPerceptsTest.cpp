// What the arena's robot senses from its building on, against what the league's one sensed: the
// signs of its zeros too. They hang on the last bit of every place, mass, axis and force, on the
// order in which parts and joints are built, and on nothing that anybody could have tuned.

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "Match/Match.h"
#include "FrameRecording.h"

namespace arena {
namespace {

// The terms that begin so, in their order.
std::string termsOf(std::string_view percept, const std::vector<std::string_view>& beginnings) {
  std::string terms;
  for (std::size_t at = 0; at < percept.size(); ++at) {
    const std::string_view rest = percept.substr(at);
    for (const std::string_view beginning : beginnings) {
      if (rest.starts_with(beginning)) terms += rest.substr(0, rest.find("))") + 2);
    }
  }
  return terms;
}

std::string torsoTermsOf(std::string_view percept) {
  return termsOf(percept, {"(GYR ", "(ACC "});
}

std::string bodyTermsOf(std::string_view percept) {
  return termsOf(percept, {"(GYR ", "(ACC ", "(HJ "});
}

struct Fall {
  const char* recording;
  std::size_t percepts;  // before the robot is placed
};

class MatchFirstPerceptsTest : public testing::TestWithParam<Fall> {};

TEST_P(MatchFirstPerceptsTest, AreThoseOfTheLeaguesRobotToTheLastBit) {
  const std::vector<std::string> recorded = readRecording(
      std::string(QUOLNARIS_SOURCE_DIR "/tests/data/recordings/") + GetParam().recording);
  Match match(MatchOptions{.noise = false});
  const Match::AgentId agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  match.step();
  EXPECT_EQ(match.percept(agent), "");
  for (std::size_t i = 0; i < GetParam().percepts; ++i) {
    match.step();
    EXPECT_EQ(bodyTermsOf(match.percept(agent)), bodyTermsOf(recorded[i])) << "percept " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(League, MatchFirstPerceptsTest,
                         testing::Values(Fall{"solo-c-left-9.frames.gz", 3},
                                         Fall{"match-a-left-10.frames.gz", 2},
                                         Fall{"match-b-right-10.frames.gz", 3}),
                         [](const auto& fall) {
                           std::string name = fall.param.recording;
                           name = name.substr(0, name.find('.'));
                           for (char& c : name) c = c == '-' ? '_' : c;
                           return name;
                         });

// Then it is placed, with all its parts moved in single precision. What it feels of that is the
// league's robot's to the signs of zeros; of its hinge angles a few differ in deep zeros.
TEST(MatchFirstPerceptsOnThePitchTest, AreFeltLikeThoseOfTheLeaguesRobot) {
  const std::vector<std::string> recorded =
      readRecording(QUOLNARIS_SOURCE_DIR "/tests/data/recordings/match-a-left-10.frames.gz");
  Match match(MatchOptions{.noise = false});
  const Match::AgentId agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  for (int i = 0; i < 3; ++i) match.step();
  match.receive(agent, "(init (unum 10)(teamname Quolnaris))");
  for (std::size_t i = 2; i < 4; ++i) {
    match.step();
    EXPECT_EQ(torsoTermsOf(match.percept(agent)), torsoTermsOf(recorded[i])) << "percept " << i;
  }
}

}  // namespace
}  // namespace arena
