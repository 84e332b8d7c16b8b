// The program match-picture, run on recordings.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "Recording/RecordingWriter.h"
#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

struct Outcome {
  int status = -1;
  std::string output;
};

Outcome run(const std::string& arguments) {
  const std::string command = QUOLNARIS_BIN_DIR "/match-picture " + arguments + " 2>&1";
  Outcome outcome;
  FILE* pipe = popen(command.c_str(), "r");
  std::array<char, 4096> part;
  while (const std::size_t size = fread(part.data(), 1, part.size(), pipe)) {
    outcome.output.append(part.data(), size);
  }
  outcome.status = WEXITSTATUS(pclose(pipe));
  return outcome;
}

int count(const std::string& text, const std::string& part) {
  int found = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++found;
  }
  return found;
}

class MatchPictureTest : public testing::Test {
 protected:
  MatchPictureTest()
      : path((std::filesystem::temp_directory_path() /
              ("quolnaris-match-picture-" + std::to_string(::getpid())))
                 .string()) {
    RecordingWriter writer(path);
    Scene scene;
    GameState game;
    game.teamNames = {"Al<pha", "Beta"};
    game.mode = PlayMode::PlayOn;
    for (const Side side : kBothSides) {
      SceneRobot robot;
      robot.handle = static_cast<int>(index(side));
      robot.side = side;
      robot.number = 7;
      for (auto& body : robot.bodies) body = poseAt(side == Side::Left ? -5 : 5, 0, 0.38);
      scene.robots.push_back(robot);
    }
    for (int i = 0; i < 500; ++i) {
      game.time = 0.02f * static_cast<float>(i);
      scene.ball = poseAt(0.03 * i, 0.3, 0.042);
      scene.robots[0].pose(Body::Torso).translation().x() += 0.01;
      std::vector<GoalEvent> goals;
      if (i == 499) {
        game.score = {1, 0};
        goals.push_back({Side::Left, game.time, Side::Left, 7});
      }
      writer.write(scene, game, goals, {});
    }
  }
  ~MatchPictureTest() override { std::filesystem::remove(path); }
  const std::string path;
};

TEST_F(MatchPictureTest, DrawsARecordingThatWasCutOffAndSaysSo) {
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
  const Outcome outcome = run(path);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.output.find("match-picture: the recording has no end"), std::string::npos);
  EXPECT_NE(outcome.output.find("the recording was cut off"), std::string::npos);
  EXPECT_NE(outcome.output.find("</svg>"), std::string::npos);
}

TEST_F(MatchPictureTest, DrawsPathsScoreAndGoals) {
  const Outcome outcome = run(path);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output.rfind("<svg", 0), 0u);
  EXPECT_NE(outcome.output.find("Al&lt;pha  1 : 0  Beta"), std::string::npos);
  EXPECT_NE(outcome.output.find("1 : 0 at 10.0 s, number 7"), std::string::npos);
  EXPECT_NE(outcome.output.find("2 players"), std::string::npos);
  EXPECT_EQ(count(outcome.output, "<path"), 4);  // two of the ball, one of each player
}

TEST_F(MatchPictureTest, CanBeLimitedInTimeAndToTheBall) {
  const Outcome outcome = run(path + " --from 2 --to 4 --no-players");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.output.find("2.0 s to 4.0 s"), std::string::npos);
  EXPECT_EQ(count(outcome.output, "<path"), 2);
  EXPECT_NE(outcome.output.find("0 : 0"), std::string::npos);
  EXPECT_NE(run(path + " --from 50").output.find("nothing recorded"), std::string::npos);
}

TEST_F(MatchPictureTest, TeamsThatChangeSidesKeepTheirNameAndTheirPath) {
  {
    RecordingWriter writer(path);
    Scene scene;
    SceneRobot robot;
    robot.handle = 1;
    robot.side = Side::Left;
    robot.number = 7;
    for (auto& body : robot.bodies) body = poseAt(-5, 0, 0.38);
    scene.robots.push_back(robot);
    GameState game;
    game.teamNames = {"Alpha", "Beta"};
    game.score = {2, 1};
    writer.write(scene, game, {}, {});
    scene.robots[0].side = Side::Right;
    game.teamNames = {"Beta", "Alpha"};
    game.score = {1, 3};
    game.time = 0.02f;
    const GoalEvent goal{Side::Right, game.time, Side::Right, 7};
    writer.write(scene, game, {&goal, 1}, {});
  }
  const Outcome outcome = run(path);
  EXPECT_NE(outcome.output.find("Alpha  3 : 1  Beta"), std::string::npos);
  EXPECT_NE(outcome.output.find("3 : 1 at 0.0 s, number 7"), std::string::npos);
  EXPECT_NE(outcome.output.find("1 players"), std::string::npos);
}

TEST_F(MatchPictureTest, WritesAFile) {
  const std::string picture = path + ".svg";
  EXPECT_EQ(run(path + " -o " + picture).status, 0);
  EXPECT_GT(std::filesystem::file_size(picture), 1000u);
  std::filesystem::remove(picture);
  EXPECT_NE(run(path + " -o /nonexistent/picture.svg").status, 0);
}

TEST_F(MatchPictureTest, ExplainsItselfAndRefusesOtherFiles) {
  EXPECT_EQ(run("--help").status, 0);
  EXPECT_NE(run("/nonexistent").status, 0);
  std::ofstream(path) << "no recording";
  const Outcome outcome = run(path);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find("is no match recording"), std::string::npos);
}

}  // namespace
}  // namespace arena
