// The report of a match.
#include "Recording/MatchReport.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "Common/Random.h"
#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

class MatchReportTest : public testing::Test {
 protected:
  MatchReportTest() {
    SceneRobot robot;
    robot.handle = 1;
    robot.side = Side::Left;
    robot.number = 2;
    for (auto& body : robot.bodies) body = poseAt(0, 0, 0.38);
    scene.robots = {robot};
    game.mode = PlayMode::PlayOn;
  }
  void observe(Side owner = Side::None) {
    Touch touch;
    touch.side = owner;
    report.observe(scene, game, {}, {}, touch);
  }
  void put(double x, double y) {
    scene.robots[0].pose(Body::Torso).translation().head<2>() = Eigen::Vector2d(x, y);
  }
  void lean(double degrees) {
    scene.robots[0].pose(Body::Torso).linear() =
        Eigen::AngleAxisd(degrees * std::numbers::pi / 180, Eigen::Vector3d::UnitX())
            .toRotationMatrix();
  }
  nlohmann::json player() { return nlohmann::json::parse(report.json())["players"][0]; }
  Scene scene;
  GameState game;
  MatchReport report;
};

TEST_F(MatchReportTest, WayIsMeasuredWithoutSwayAndJumps) {
  observe();
  for (int i = 1; i <= 500; ++i) {
    put(0.01 * i, i % 2 ? 0.02 : 0.0);
    observe();
  }
  EXPECT_NEAR(player()["distance"].get<double>(), 5.0, 0.03);
  put(-10, 0);  // beamed
  observe();
  EXPECT_NEAR(player()["distance"].get<double>(), 5.0, 0.03);
  for (int i = 1; i <= 10; ++i) {
    put(-10 + 0.01 * i, 0);
    observe();
  }
  EXPECT_NEAR(player()["distance"].get<double>(), 5.1, 0.03);
}

TEST_F(MatchReportTest, FallsAreCountedOncePerFall) {
  for (const double angle : {0.0, 50.0, 61.0, 90.0, 45.0, 70.0, 30.0, 10.0, 0.0, 80.0, 0.0}) {
    lean(angle);
    observe();
  }
  EXPECT_EQ(player()["falls"], 2);
}

TEST_F(MatchReportTest, PossessionIsTheShareOfPlayOn) {
  for (int i = 0; i < 30; ++i) observe(Side::Left);
  for (int i = 0; i < 10; ++i) observe(Side::Right);
  for (int i = 0; i < 50; ++i) observe(Side::None);
  game.mode = PlayMode::KickInLeft;
  for (int i = 0; i < 50; ++i) observe(Side::Right);
  const auto json = nlohmann::json::parse(report.json());
  EXPECT_EQ(json["teams"]["left"]["possession"], 0.75);
  EXPECT_EQ(json["teams"]["right"]["possession"], 0.25);
  EXPECT_EQ(json["cycles"], 140);
}

TEST_F(MatchReportTest, SidesAreThoseAtTheEnd) {
  game.teamNames = {"Alpha", "Beta"};
  game.score = {1, 0};
  const GoalEvent goal{Side::Left, 10.02f, Side::Left, 2};
  const FoulEvent foul{1, FoulType::Charging, Side::Left, 2, true};
  report.observe(scene, game, {&goal, 1}, {&foul, 1}, Touch{.side = Side::Left});
  observe(Side::Left);
  game.sidesChanged = true;
  game.teamNames = {"Beta", "Alpha"};
  game.score = {0, 1};
  for (SceneRobot& robot : scene.robots) robot.side = opponent(robot.side);
  observe(Side::Right);
  observe(Side::Left);
  const auto json = nlohmann::json::parse(report.json());
  EXPECT_EQ(json["teams"]["right"]["name"], "Alpha");
  EXPECT_EQ(json["teams"]["right"]["possession"], 0.75);
  EXPECT_EQ(json["goals"][0]["team"], "right");
  EXPECT_EQ(json["goals"][0]["scorer_team"], "right");
  ASSERT_EQ(json["players"].size(), scene.robots.size());
  EXPECT_EQ(player()["team"], "right");
  EXPECT_EQ(player()["fouls"]["charging"], 1);
}

TEST_F(MatchReportTest, GoalsFoulsAndLateAnswersAreListed) {
  game.teamNames = {"Alpha", "B\xff"};  // not a text in any encoding that JSON knows
  game.score = {1, 1};
  game.time = 31.5f;
  const GoalEvent goals[] = {{Side::Left, 10.02f, Side::Left, 2},
                             {Side::Right, 31.5f, Side::Left, 2}};
  const FoulEvent fouls[] = {{1, FoulType::Charging, Side::Left, 2, true},
                             {2, FoulType::Charging, Side::Left, 2, false},
                             {3, FoulType::SelfCollision, Side::Left, 2, true}};
  report.observe(scene, game, goals, fouls, Touch());
  report.noteLateAnswer(Side::Left, 2);
  report.noteLateAnswer(Side::Left, 2);
  report.noteCalls(Side::Left, 2, true, 0);
  report.noteCalls(Side::Left, 2, false, 2);
  report.noteCalls(Side::Left, 2, true, 1);
  const auto json = nlohmann::json::parse(report.json());
  EXPECT_EQ(json["teams"]["left"]["name"], "Alpha");
  EXPECT_EQ(json["teams"]["left"]["score"], 1);
  EXPECT_EQ(json["game_time"], 31.5);
  ASSERT_EQ(json["goals"].size(), 2u);
  EXPECT_EQ(json["goals"][0]["time"], 10.02);
  EXPECT_EQ(json["goals"][0]["own_goal"], false);
  EXPECT_EQ(json["goals"][1]["team"], "right");
  EXPECT_EQ(json["goals"][1]["scorer_team"], "left");
  EXPECT_EQ(json["goals"][1]["own_goal"], true);
  EXPECT_EQ(player()["fouls"]["charging"], 1);
  EXPECT_EQ(player()["fouls"]["self-collision"], 1);
  EXPECT_EQ(player()["late_answers"], 2);
  EXPECT_EQ(player()["said"], 2);
  EXPECT_EQ(player()["heard"], 3);
}

}  // namespace
}  // namespace arena
