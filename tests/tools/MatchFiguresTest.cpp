// What a recorded match tells about play.
#include "MatchFigures.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <numbers>

namespace arena {
namespace {

class MatchFiguresTest : public testing::Test {
 protected:
  MatchFiguresTest() {
    cycle.mode = PlayMode::PlayOn;
    cycle.robots.resize(2);
    cycle.robots[0].side = Side::Left;
    cycle.robots[0].number = 9;
    cycle.robots[1].side = Side::Right;
    cycle.robots[1].number = 2;
    cycle.robots[1].torso.translation() = Eigen::Vector3d(5, 0, 0.38);
  }
  void observe(int cycles = 1) {
    for (int i = 0; i < cycles; ++i) {
      cycle.time += 0.02f;
      figures.observe(cycle);
    }
  }
  void lean(double degrees) {
    cycle.robots[0].torso.linear() =
        Eigen::AngleAxisd(degrees * std::numbers::pi / 180, Eigen::Vector3d::UnitX())
            .toRotationMatrix();
  }
  const MatchFigures::Player& nine() const { return figures.players().at({Side::Left, 9}); }

  RecordedCycle cycle;
  MatchFigures figures{0.1};
};

TEST_F(MatchFiguresTest, AFallLastsHalfASecondAndSoDoesStandingUp) {
  observe();
  lean(80);
  observe(24);  // a stumble
  lean(0);
  observe(5);
  EXPECT_EQ(nine().falls, 0);
  lean(80);
  observe(60);
  EXPECT_EQ(nine().falls, 1);
  EXPECT_EQ(nine().standUps, 0);
  lean(40);  // neither
  observe(60);
  EXPECT_EQ(nine().standUps, 0);
  lean(0);
  observe(30);
  EXPECT_EQ(nine().standUps, 1);
  EXPECT_EQ(nine().falls, 1);
  EXPECT_NEAR(nine().down, 84 * 0.02, 1e-9);
}

TEST_F(MatchFiguresTest, AFallBelongsToTheModeInWhichItBegan) {
  cycle.mode = PlayMode::KickInLeft;
  lean(80);
  observe(10);
  cycle.mode = PlayMode::PlayOn;
  observe(20);
  EXPECT_EQ(nine().fallsByKind, (std::map<std::string, int>{{"set_play", 1}}));
}

TEST_F(MatchFiguresTest, TheFirstTouchIsWhenTheBallLeavesItsPlaceAndBelongsToTheNearest) {
  cycle.mode = PlayMode::BeforeKickOff;
  cycle.ball.translation() = Eigen::Vector3d(3, 0, 0);  // before the kick-off nothing counts
  observe();
  cycle.mode = PlayMode::KickOffLeft;
  cycle.ball.translation() = Eigen::Vector3d(4, 0, 0);
  observe();
  cycle.ball.translation().x() = 4.015;
  observe();
  EXPECT_FALSE(figures.firstTouch());
  cycle.ball.translation().x() = 4.025;
  observe();
  ASSERT_TRUE(figures.firstTouch());
  EXPECT_EQ(figures.firstTouch()->side, Side::Right);
  EXPECT_EQ(figures.firstTouch()->number, 2);
  EXPECT_NEAR(figures.firstTouch()->time, 0.08, 1e-6);
}

TEST_F(MatchFiguresTest, TheBallsWayCountsInPlayAndWithoutJumps) {
  observe();
  for (int i = 1; i <= 10; ++i) {
    cycle.ball.translation().x() = 0.1 * i;
    observe();
  }
  for (int i = 1; i <= 5; ++i) {
    cycle.ball.translation().x() = 1 - 0.1 * i;
    observe();
  }
  cycle.ball.translation().x() = -9;  // put there
  observe();
  cycle.mode = PlayMode::KickInLeft;
  cycle.ball.translation().x() = -8.8;
  observe();
  EXPECT_NEAR(figures.ballMetres(), 1.5, 1e-9);
  EXPECT_NEAR(figures.ballForward()[index(Side::Left)], 1.0, 1e-9);
  EXPECT_NEAR(figures.ballForward()[index(Side::Right)], 0.5, 1e-9);
}

TEST_F(MatchFiguresTest, TimeOutsideBeginsAMetreBehindTheLines) {
  for (const Eigen::Vector3d& place :
       {Eigen::Vector3d{15.9, 0, 0.38}, Eigen::Vector3d{0, -10.9, 0.38},
        Eigen::Vector3d{16.1, 0, 0.38}, Eigen::Vector3d{0, -11.1, 0.38}}) {
    cycle.robots[0].torso.translation() = place;
    observe(10);
  }
  EXPECT_NEAR(nine().outside, 20 * 0.02, 1e-9);
}

TEST_F(MatchFiguresTest, WayIsMeasuredWithoutSwayAndJumps) {
  observe();
  for (int i = 1; i <= 100; ++i) {
    cycle.robots[0].torso.translation() = Eigen::Vector3d(0.01 * i, i % 2 ? 0.03 : 0, 0.38);
    observe();
  }
  EXPECT_NEAR(nine().walked, 1, 0.02);
  cycle.robots[0].torso.translation().x() = -9;
  observe();
  EXPECT_NEAR(nine().walked, 1, 0.02);
}

TEST_F(MatchFiguresTest, TheCrowdIsWhoIsWithinAMetreOfTheBall) {
  observe(10);
  cycle.ball.translation().x() = 0.4;
  observe(10);
  cycle.ball.translation().x() = 4.5;
  observe(20);
  EXPECT_NEAR(figures.crowd(Side::Left), 0.5, 1e-9);
  EXPECT_NEAR(figures.crowd(Side::Right), 0.5, 1e-9);
}

TEST_F(MatchFiguresTest, TheJsonHoldsGoalsFoulsAndPlaces) {
  cycle.score = {1, 0};
  cycle.goals = {{Side::Left, 1.5f, Side::Left, 9}};
  cycle.fouls = {{FoulType::Charging, Side::Right, 2}};
  observe();
  cycle.goals.clear();
  cycle.fouls.clear();
  observe(9);
  const auto json = nlohmann::json::parse(figures.json({"Ours", "Theirs"}));
  EXPECT_EQ(json["cycles"], 10);
  EXPECT_EQ(json["teams"]["left"]["name"], "Ours");
  EXPECT_EQ(json["teams"]["left"]["score"], 1);
  EXPECT_EQ(json["goals"][0]["scorer"], 9);
  EXPECT_EQ(json["goals"][0]["time"], 1.5);
  EXPECT_TRUE(json["first_touch"].is_null());
  EXPECT_EQ(json["players"][1]["fouls"]["charging"], 1);
  EXPECT_EQ(json["players"][1]["places"].size(), 2U);
  EXPECT_EQ(json["players"][1]["places"][0][1], 5.0);
}

TEST(MatchFiguresFileTest, WhatIsNoRecordingIsTold) {
  std::array<std::string, 2> names;
  EXPECT_THROW(readMatchFigures("/nowhere.rec", 0, names), RecordingError);
}

}  // namespace
}  // namespace arena
