#include "StreamReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "FrameRecording.h"
#include "Match/Match.h"
#include "Monitor/MonitorStream.h"

namespace viewer {
namespace {

using arena::Side;

const std::string kData = std::string(QUOLNARIS_SOURCE_DIR) + "/tests/data/monitor/three-a-side.";

// Messages are longer than the frames of players.
std::vector<std::string> leagueMessages() {
  const std::string bytes = readFile(kData + "monitor.gz");
  std::vector<std::string> messages;
  for (std::size_t at = 0; at + 4 <= bytes.size();) {
    std::uint32_t length = 0;
    for (int i = 0; i < 4; ++i) length = length << 8 | static_cast<unsigned char>(bytes[at++]);
    messages.push_back(bytes.substr(at, length));
    at += length;
  }
  return messages;
}

double headingOf(const Eigen::Isometry3d& torso) {
  return std::atan2(torso.linear()(1, 1), torso.linear()(0, 1)) * 180 / M_PI;
}

TEST(StreamReaderTest, ShowsTheLeaguesStreamWhereItsTruthIs) {
  const std::vector<std::string> messages = leagueMessages();
  const std::vector<TruthLine> truth = readTruth(kData + "truth.gz");
  StreamReader reader;
  std::size_t compared = 0;
  std::size_t line = 0;
  const std::size_t skipped = messages.size() - truth.size();
  ASSERT_LE(skipped, 2u);
  for (std::size_t i = 0; i < messages.size(); ++i) {
    reader.read(messages[i]);
    if (i < skipped) continue;
    const TruthLine& now = truth[line++];
    const arena::RecordedCycle& cycle = reader.cycle();
    ASSERT_NEAR(cycle.time, now.time, 0.006) << i;
    EXPECT_EQ(arena::nameOf(cycle.mode), now.mode) << i;
    EXPECT_EQ(std::to_string(cycle.score[0]) + ":" + std::to_string(cycle.score[1]), now.score);
    // A transform is sent again when a number of it has changed by more than 0.005.
    EXPECT_NEAR(cycle.ball.translation().x(), now.ballX, 0.006) << i;
    EXPECT_NEAR(cycle.ball.translation().y(), now.ballY, 0.006) << i;
    for (const arena::RecordedRobot& robot : cycle.robots) {
      const TrueRobot* const true_ = now.find(robot.side == Side::Left ? 'L' : 'R', robot.number);
      if (true_ == nullptr) continue;
      EXPECT_NEAR(robot.torso.translation().x(), true_->x, 0.006) << i;
      EXPECT_NEAR(robot.torso.translation().y(), true_->y, 0.006) << i;
      EXPECT_NEAR(robot.torso.translation().z(), true_->z, 0.006) << i;
      // Where the robot lies, a heading says nothing.
      if (true_->up > 0.7) {
        EXPECT_NEAR(std::remainder(headingOf(robot.torso) - true_->heading, 360), 0, 1.5) << i;
      }
      ++compared;
    }
  }
  EXPECT_GT(compared, 500u);
  EXPECT_EQ(reader.teams()[0], "Quolnaris");
}

TEST(StreamReaderTest, KnowsTheLeaguesRobotTypes) {
  StreamReader reader;
  std::vector<bool> seen(5);
  for (const std::string& message : leagueMessages()) {
    reader.read(message);
    for (const auto& robot : reader.cycle().robots)
      seen[static_cast<std::size_t>(robot.type)] = true;
  }
  EXPECT_EQ(seen, (std::vector<bool>{true, true, false, true, true}));  // the types that played
}

// A match of the arena whose robots move their hinges.
class ArenaStream : public testing::Test {
 protected:
  ArenaStream() : match(options()) {
    for (int type = 0; type < 5; ++type) {
      const auto agent = match.connect();
      match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")");
      steps(2);
      match.receive(agent, "(init (unum " + std::to_string(type + 1) + ")(teamname " +
                               (type < 3 ? "Alpha" : "Beta") + "))");
      steps(1);
      match.receive(agent,
                    "(beam -" + std::to_string(2 + type) + " " + std::to_string(type) + " 30)");
      match.receive(
          agent,
          "(he1 0.5)(he2 -0.4)(rae1 -1.5)(rae2 -0.3)(rae3 1.1)(rae4 0.7)(lae1 -1)(lae2 0.6)"
          "(rle1 -0.3)(rle2 -0.4)(rle3 0.9)(rle4 -1.3)(rle5 0.6)(rle6 0.2)(rle7 0.5)(lle3 1)"
          "(lle6 -0.3)(lle7 0.4)");
      steps(1);
    }
  }
  static arena::MatchOptions options() {
    arena::MatchOptions options;
    options.seed = 3;
    return options;
  }
  void steps(int count) {
    for (int i = 0; i < count; ++i) match.step();
  }
  std::string next() { return stream.next(match.scene(), match.game(), {0, 0}); }

  arena::Match match;
  arena::MonitorStream stream;
  StreamReader reader;
};

TEST_F(ArenaStream, HingesAreThoseOfTheRobots) {
  double largest = 0;
  for (int round = 0; round < 20; ++round) {
    steps(2);
    reader.read(next());
    ASSERT_EQ(reader.cycle().robots.size(), 5u);
    for (std::size_t r = 0; r < 5; ++r) {
      const arena::SceneRobot& robot = match.scene().robots[r];
      const arena::RecordedRobot& shown = reader.cycle().robots[r];
      ASSERT_EQ(shown.type, robot.type);
      EXPECT_EQ(shown.number, robot.number);
      for (std::size_t j = 0; j < arena::jointCount(robot.type); ++j) {
        // Two rotations, each up to 0.005 behind in every number.
        EXPECT_NEAR(shown.joints[j], robot.joints[j], 1.2) << "type " << r << " hinge " << j;
        largest = std::max(largest, std::fabs(static_cast<double>(robot.joints[j])));
      }
    }
  }
  EXPECT_GT(largest, 20);
}

TEST_F(ArenaStream, GoalsComeFromTheScore) {
  reader.read(next());
  match.trainer().receive("(score (left 1)(right 0))");
  match.trainer().apply();
  reader.read(next());
  ASSERT_EQ(reader.cycle().goals.size(), 1u);
  EXPECT_EQ(reader.cycle().goals[0].side, Side::Left);
  steps(2);
  reader.read(next());
  EXPECT_TRUE(reader.cycle().goals.empty());
}

TEST_F(ArenaStream, FoulToldInEveryCycleIsOne) {
  reader.read(next());
  std::size_t fouls = 0;
  for (int i = 0; i < 10; ++i) {
    const std::vector<arena::FoulEvent> foul = {
        {i, arena::FoulType::Charging, Side::Right, 4, i == 0}};
    stream.noteFouls(foul);
    reader.read(next());
    fouls += reader.cycle().fouls.size();
  }
  EXPECT_EQ(fouls, 1u);
}

TEST_F(ArenaStream, PartialMessageNeedsItsFullOne) {
  next();
  const std::string partial = next();
  EXPECT_THROW(reader.read(partial), StreamError);
  stream.requestFull();
  reader.read(next());
  reader.read(next());
  // After an error only a full message is understood.
  EXPECT_THROW(reader.read("(("), StreamError);
  EXPECT_THROW(reader.read(next()), StreamError);
  stream.requestFull();
  EXPECT_NO_THROW(reader.read(next()));
}

TEST_F(ArenaStream, RobotThatIsGoneIsNoLongerShown) {
  reader.read(next());
  match.trainer().receive("(kill (unum 1)(team Left))");
  match.trainer().apply();
  steps(2);
  reader.read(next());
  EXPECT_EQ(reader.cycle().robots.size(), 4u);
}

TEST(StreamReaderTest, NonsenseIsAnErrorAndNoHarm) {
  const char* const messages[] = {
      "",
      "()",
      "hello",
      "((time 1))",
      "((time 1))(XYZ 0 1)()",
      "(RSG 0 1)(RSG 0 1)",
      "((time nan)(play_mode 99)(play_modes)(score_left -5)(half 9)(foul)(FieldLength -3)"
      "(team_left))(RSG 0 1)((nd TRF (SLT 1 nan inf))(nd TRF (SLT)(nd StaticMesh (load "
      "models/naobody9.obj)(resetMaterials matNum3 matLeft))))",
      "((time 1e39))(RSG 0 1)((nd TRF (nd TRF (SLT 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0)(nd StaticMesh "
      "(load naobody4.obj)(resetMaterials matNum11 matRight)))))"};
  for (const char* const message : messages) {
    StreamReader reader;
    try {
      reader.read(message);
    } catch (const StreamError&) {
    }
    EXPECT_TRUE(std::isfinite(reader.cycle().time)) << message;
    for (const arena::RecordedRobot& robot : reader.cycle().robots) {
      EXPECT_TRUE(robot.torso.matrix().allFinite()) << message;
      EXPECT_TRUE(robot.number >= 1 && robot.number <= 11);
    }
  }
}

}  // namespace
}  // namespace viewer
