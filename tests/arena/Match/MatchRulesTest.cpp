// The referee on the real physics: trainer commands in, rules and percepts out, cycle by cycle.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Match/Match.h"
#include "Monitor/MonitorStream.h"
#include "arena/Support/ViewerReader.h"

namespace arena {
namespace {

class MatchRulesTest : public testing::Test {
 protected:
  static MatchOptions exact() {
    MatchOptions options;
    options.noise = false;
    options.groundTruth = true;
    return options;
  }

  // A player who stands at its start place.
  Match::AgentId addPlayer(const std::string& team, int number, int type = 0) {
    const Match::AgentId agent = match.connect();
    match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")");
    match.step();
    match.step();
    match.receive(agent, "(init (unum " + std::to_string(number) + ")(teamname " + team + "))");
    match.step();
    return agent;
  }
  void command(const std::string& text) { match.trainer().receive(text); }
  void step(int cycles = 1) {
    for (int i = 0; i < cycles; ++i) match.step();
  }
  void run(double seconds) { step(static_cast<int>(seconds * 50 + 0.5)); }
  // Puts a player upright to a place, by trainer.
  void put(const std::string& team, int number, double x, double y, double z = 0.385) {
    command("(agent (unum " + std::to_string(number) + ")(team " + team + ")(move " +
            std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(z) +
            (team == "Left" ? " -90))" : " 90))"));
  }
  void putBall(double x, double y, double z = 0.042) {
    command("(ball (pos " + std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(z) +
            ")(vel 0 0 0))");
  }
  void shootBall(double x, double y, double z, double vx, double vy, double vz) {
    command("(ball (pos " + std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(z) +
            ")(vel " + std::to_string(vx) + " " + std::to_string(vy) + " " + std::to_string(vz) +
            "))");
  }
  // Lets the ball fall onto the player's head and waits until he is the last toucher.
  void bounceOff(const std::string& team, int number) {
    const Side side = team == "Left" ? Side::Left : Side::Right;
    const RobotView* robot = match.world().find(side, number);
    const Eigen::Vector3d place = robot->torso.translation();
    putBall(place.x() + 0.03, place.y(), place.z() + 0.35);
    for (int i = 0; i < 50; ++i) {
      match.step();
      const Touch& touch = match.referee().lastTouch();
      if (touch.robot == robot->handle && touch.time == match.game().time) return;
    }
    FAIL() << "the ball missed " << team << " " << number;
  }
  // Straight as a board the robot falls on its back.
  void tipOver(Match::AgentId agent) {
    for (int i = 0; i < 12; ++i) {
      match.receive(agent, "(rle5 -6)(lle5 -6)(rae1 -6)(lae1 -6)");
      step();
    }
    match.receive(agent, "(rle5 0)(lle5 0)(rae1 0)(lae1 0)");
  }
  PlayMode mode() const { return match.game().mode; }
  Eigen::Vector3d place(Side side, int number) {
    return match.world().find(side, number)->torso.translation();
  }
  Eigen::Vector3d ball() { return match.world().ball().position; }
  bool whistled(FoulType type, Side side, int number) {
    for (const FoulEvent& foul : match.referee().fouls()) {
      if (foul.type == type && foul.side == side && foul.number == number) return true;
    }
    return false;
  }

  Match match{exact()};
};

TEST_F(MatchRulesTest, EveryModeReachesTheGameStatePercept) {
  const Match::AgentId agent = addPlayer("Alpha", 5);
  step(3);
  for (const ModeEntry& entry : kPlayModes) {
    command("(time 0)(playMode " + std::string(entry.name) + ")");
    step();
    EXPECT_NE(match.percept(agent).find("(pm " + std::string(entry.name) + "))"), std::string::npos)
        << match.percept(agent).substr(0, 120);
  }
}

TEST_F(MatchRulesTest, BallLiesAtTheMiddleBeforeKickOff) {
  addPlayer("Alpha", 5);
  shootBall(3, 3, 1, 5, 0, 0);
  step();
  EXPECT_NEAR(ball().x(), 0, 1e-9);
  EXPECT_NEAR(ball().z(), 0.042, 1e-9);
}

// What the league's server shows in a recording: the ball, held at 0.042, has fallen for one step
// when it is shown, and sinks to its rest once it is no longer held.
TEST_F(MatchRulesTest, HeldBallIsShownAsTheLeagueShowsIt) {
  addPlayer("Alpha", 5);
  step(20);
  EXPECT_NEAR(match.scene().ball.translation().z(), 0.0418, 0.00006);
  command("(kickOff Left)");
  step();
  EXPECT_NEAR(match.scene().ball.translation().z(), 0.0418, 0.00006);
  step();
  EXPECT_NEAR(match.scene().ball.translation().z(), 0.0415, 0.00006);
  step(200);
  EXPECT_NEAR(match.scene().ball.translation().z(), 0.0403, 0.00006);
}

TEST_F(MatchRulesTest, WhatTheRefereeMovesIsShownOneCycleLater) {
  addPlayer("Alpha", 5);
  addPlayer("Beta", 6);
  command("(playMode PlayOn)");
  put("Right", 6, 0.5, 3);
  step(40);
  command("(kickOff Left)");
  put("Right", 6, 0.5, 1);
  step();  // placed by the trainer before the step, moved by the referee after it
  const auto shown = [this]() -> Eigen::Vector3d {
    for (const SceneRobot& robot : match.scene().robots) {
      if (robot.side == Side::Right) return robot.pose(Body::Torso).translation();
    }
    return Eigen::Vector3d::Zero();
  };
  EXPECT_NEAR(shown().x(), 0.5, 0.01);
  EXPECT_NEAR(place(Side::Right, 6).x(), 2.5, 0.01);
  step();
  EXPECT_NEAR(shown().x(), 2.5, 0.01);
}

TEST_F(MatchRulesTest, KickOffIsTakenByARealTouch) {
  for (const int number : {5, 6}) addPlayer("Alpha", number);
  addPlayer("Beta", 2);
  put("Left", 5, -0.5, -0.3);
  command("(playMode PlayOn)");
  step(20);
  command("(kickOff Left)");
  putBall(0, 0);
  step(3);
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
  bounceOff("Left", 5);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(MatchRulesTest, ShotAtTheGoalCountsAndIsFollowedByAKickOff) {
  const Match::AgentId agent = addPlayer("Alpha", 5);
  addPlayer("Beta", 2);
  command("(playMode PlayOn)");
  shootBall(13, 0.3, 0.2, 6, 0, 0);
  step();
  for (int i = 0; i < 100 && mode() == PlayMode::PlayOn; ++i) step();
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
  EXPECT_GT(ball().x(), 14.99);
  EXPECT_NE(match.percept(agent).find("(sl 1) (sr 0)"), std::string::npos);
  int cycles = 0;
  while (mode() == PlayMode::GoalLeft && cycles < 200) {
    step();
    ++cycles;
  }
  EXPECT_EQ(mode(), PlayMode::KickOffRight);
  EXPECT_NEAR(cycles, 150, 1);
  EXPECT_NEAR(ball().x(), 0, 1e-6);
}

TEST_F(MatchRulesTest, ShotsBesideThePostAreNoGoal) {
  addPlayer("Alpha", 5);
  addPlayer("Beta", 2);
  put("Left", 5, 5, 5);
  command("(playMode PlayOn)");
  step(40);
  bounceOff("Left", 5);
  shootBall(13, 1.3, 0.2, 8, 0, 0);
  step();
  for (int i = 0; i < 100 && mode() == PlayMode::PlayOn; ++i) step();
  EXPECT_EQ(mode(), PlayMode::GoalKickRight);
  EXPECT_EQ(match.game().score[0], 0);
  run(1.1);
  EXPECT_NEAR(ball().x(), 14, 1e-9);
}

TEST_F(MatchRulesTest, FastShotIsSeenAlthoughItPassesTheLineBetweenTwoSteps) {
  addPlayer("Alpha", 5);
  command("(playMode PlayOn)");
  shootBall(12, 0.2, 0.3, 25, 0, 0);
  step();
  for (int i = 0; i < 50 && mode() == PlayMode::PlayOn; ++i) step();
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(MatchRulesTest, KickInIsPlacedAndOpponentsKeptAway) {
  addPlayer("Alpha", 5);
  addPlayer("Beta", 2);
  addPlayer("Beta", 3);
  command("(playMode PlayOn)");
  put("Left", 5, 3, 8);
  put("Right", 2, 3.9, 9.4);
  step(40);
  bounceOff("Left", 5);
  shootBall(4, 9.5, 0.042, 0, 4, 0);
  step();
  for (int i = 0; i < 60 && mode() == PlayMode::PlayOn; ++i) step();
  ASSERT_EQ(mode(), PlayMode::KickInRight);
  const Eigen::Vector3d out = ball();
  EXPECT_GE(out.y(), 10.043);
  step(40);
  EXPECT_GT((ball() - out).norm(), 0.5);  // it rolls on
  step(15);
  EXPECT_NEAR(ball().y(), 9.958, 1e-9);
  EXPECT_NEAR(ball().x(), 4, 0.02);
  EXPECT_NEAR(place(Side::Left, 5).x(), ball().x() - 2.5, 0.01);
  const double distance = (place(Side::Right, 2) - ball()).head<2>().norm();
  EXPECT_GE(distance, 0.49);  // moved off the ball once
}

TEST_F(MatchRulesTest, UntakenSetPlayIsDropped) {
  addPlayer("Alpha", 5);
  addPlayer("Beta", 2);
  command("(playMode free_kick_left)");
  run(14.9);
  EXPECT_EQ(mode(), PlayMode::FreeKickLeft);
  run(0.3);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(MatchRulesTest, FallenPlayerIsTakenOffThePitch) {
  addPlayer("Alpha", 5);
  const Match::AgentId fallen = addPlayer("Beta", 2);
  command("(playMode PlayOn)");
  put("Right", 2, 3, 3);
  step(30);
  tipOver(fallen);
  int down = 0;
  while (!whistled(FoulType::Incapable, Side::Right, 2) && down < 1000) {
    step();
    ++down;
  }
  EXPECT_GT(down, 740);
  EXPECT_LT(down, 850);
  EXPECT_NEAR(place(Side::Right, 2).z(), 1.0, 1e-6);
  const double x = place(Side::Right, 2).x();
  step(10);
  EXPECT_NEAR(place(Side::Right, 2).z(), 1.10, 1e-6);
  EXPECT_NEAR(place(Side::Right, 2).x(), x, 1e-6);
  while (!match.referee().fouls().empty()) step();
  EXPECT_NEAR(place(Side::Right, 2).x(), 3.0, 1e-6);
  EXPECT_NEAR(place(Side::Right, 2).y(), -10.5, 1e-6);
  EXPECT_NEAR(place(Side::Right, 2).z(), 0.4, 1e-6);
}

TEST_F(MatchRulesTest, FourthDefenderLeavesHisArea) {
  for (const int number : {1, 2, 3, 4}) addPlayer("Alpha", number, number % 3);
  command("(playMode PlayOn)");
  put("Left", 1, -14.5, 0);
  put("Left", 2, -14, 2);
  put("Left", 3, -14, -2);
  step(40);
  EXPECT_TRUE(match.referee().fouls().empty());
  put("Left", 4, -13.6, 1);
  bool foul = false;
  for (int i = 0; i < 5 && !foul; ++i) {
    step();
    foul = whistled(FoulType::IllegalDefence, Side::Left, 4);
  }
  EXPECT_TRUE(foul);
  EXPECT_NEAR(place(Side::Left, 4).x(), -12.8, 1e-6);
}

TEST_F(MatchRulesTest, ThirdOfAGroupOfTouchingRobotsIsMovedAway) {
  addPlayer("Alpha", 2);
  addPlayer("Beta", 3);
  addPlayer("Alpha", 4);
  command("(playMode PlayOn)");
  put("Left", 2, -3, 3);
  put("Right", 3, -2.75, 3);
  step(3);
  put("Left", 4, -2.9, 3.2);
  bool foul = false;
  for (int i = 0; i < 20 && !foul; ++i) {
    step();
    foul = whistled(FoulType::Touching, Side::Left, 4);
  }
  EXPECT_TRUE(foul);
  EXPECT_GT((place(Side::Left, 4) - place(Side::Left, 2)).head<2>().norm(), 0.5);
}

TEST_F(MatchRulesTest, RobotThrownAtAnOpponentCharges) {
  addPlayer("Alpha", 2);
  addPlayer("Beta", 3);
  command("(playMode PlayOn)(ball (pos 8 -8 0.042))");
  put("Left", 2, -3.0, 3);
  put("Right", 3, -3.35, 3);
  step(80);
  // A robot tips backwards onto the other; its torso is fast while it still counts as upright.
  const RobotHandle rammer = match.world().find(Side::Left, 2)->handle;
  bool foul = false;
  for (int i = 0; i < 80 && !foul; ++i) {
    match.receive(rammer, i < 14   ? "(rae1 -6)(lae1 -6)"
                          : i < 26 ? "(rae1 0)(lae1 0)(rle5 -6)(lle5 -6)"
                                   : "(rle5 0)(lle5 0)");
    step();
    foul = whistled(FoulType::Charging, Side::Left, 2);
  }
  EXPECT_TRUE(foul);
}

TEST_F(MatchRulesTest, ArmInTheBodyIsFrozenForOneSecond) {
  const Match::AgentId agent = addPlayer("Alpha", 2);
  addPlayer("Beta", 3);
  command("(playMode PlayOn)");
  put("Left", 2, -3, 3);
  step(40);
  const RobotHandle robot = match.world().find(Side::Left, 2)->handle;
  // The thigh goes up into the hanging forearm that is bent in front of it.
  bool foul = false;
  for (int i = 0; i < 150 && !foul; ++i) {
    match.receive(agent, i < 14 ? "(rae1 -5)(rae4 1.5)(rae3 2)(rle1 -1)(rle3 0)"
                                : "(rae1 -0.5)(rae4 3)(rae3 1)(rle3 5)(rle2 1)(rle1 -1)");
    step();
    foul = whistled(FoulType::SelfCollision, Side::Left, 2);
  }
  ASSERT_TRUE(foul);
  const auto angles = [&] {
    for (const SceneRobot& shown : match.scene().robots) {
      if (shown.handle == robot) return shown.joints;
    }
    return std::array<float, kMaxJoints>{};
  };
  step(2);
  const auto before = angles();
  for (int i = 0; i < 30; ++i) {
    match.receive(agent, "(rae1 1)(rae2 -1)(rae3 -2)(rae4 -2)");
    step();
  }
  // Commands to the frozen arm are replaced by 0.
  for (const std::size_t joint : {2u, 4u}) EXPECT_NEAR(angles()[joint], before[joint], 3.0);
  for (int i = 0; i < 40; ++i) {
    match.receive(agent, "(rae1 1)(rae2 -1)(rae3 -2)(rae4 -2)");
    step();
  }
  EXPECT_GT(std::abs(angles()[4] - before[4]), 10.0);
}

TEST_F(MatchRulesTest, PassModeIsGrantedOnRequest) {
  const Match::AgentId agent = addPlayer("Alpha", 2);
  addPlayer("Beta", 3);
  command("(time 10)(playMode PlayOn)");
  put("Left", 2, -3, 3);
  putBall(-2.6, 3);
  step(60);
  match.receive(agent, "(pass)");
  step();
  EXPECT_EQ(mode(), PlayMode::PassLeft);
  run(4.1);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  EXPECT_GT(match.referee().passScoreWait(Side::Left), 9);
}

TEST_F(MatchRulesTest, BeamIsRefusedWhileTheGameRuns) {
  const Match::AgentId agent = addPlayer("Alpha", 2);
  step(10);
  match.receive(agent, "(beam -4 2 0)");
  step();
  EXPECT_NEAR(place(Side::Left, 2).x(), -4, 0.01);
  command("(playMode PlayOn)");
  match.receive(agent, "(beam -9 2 0)");
  step();
  EXPECT_NEAR(place(Side::Left, 2).x(), -4, 0.05);
}

TEST_F(MatchRulesTest, KilledRobotIsGoneAndItsNumberFree) {
  const Match::AgentId agent = addPlayer("Alpha", 2);
  step(5);
  command("(kill (unum 2)(team Left))");
  step(2);
  EXPECT_EQ(match.world().robots().size(), 0u);
  const std::string last = match.percept(agent);
  step(3);
  EXPECT_EQ(match.percept(agent), last);
  addPlayer("Alpha", 2);
  EXPECT_NE(match.world().find(Side::Left, 2), nullptr);
}

TEST_F(MatchRulesTest, TeamNamesThatWouldBreakPerceptsAreRefused) {
  const Match::AgentId agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao.rsg)");
  step(3);
  match.receive(agent, R"((init (unum 2)(teamname A\)B))(init (unum 2)(teamname "A B")))");
  step(2);
  EXPECT_EQ(match.world().find(Side::Left, 2), nullptr);
  match.receive(agent, "(init (unum 2)(teamname AB))");
  step(2);
  EXPECT_NE(match.world().find(Side::Left, 2), nullptr);
}

TEST_F(MatchRulesTest, MonitorShowsTheMatchToAViewer) {
  addPlayer("Alpha", 2, 4);
  addPlayer("Beta", 11, 3);
  command("(playMode PlayOn)");
  put("Left", 2, -3, 3);
  put("Right", 11, 4, -2);
  putBall(1, 2);
  step(30);
  MonitorStream stream;
  ViewerReader viewer;
  viewer.read(stream.next(match.scene(), match.game(), {0, 0}));
  EXPECT_EQ(viewer.playMode(), "PlayOn");
  EXPECT_EQ(viewer.term("team_left"), "Alpha");
  ASSERT_TRUE(viewer.robot(true, 2));
  EXPECT_NEAR(viewer.robot(true, 2)->pose(0, 3), -3, 0.05);
  EXPECT_NEAR(viewer.robot(true, 2)->pose(0, 2), 1, 0.05);  // faces the right goal
  EXPECT_NEAR(viewer.robot(false, 11)->pose(0, 2), -1, 0.05);
  for (int i = 0; i < 100; ++i) {
    if (i == 50) shootBall(-5, 0, 0.5, 3, 1, 3);
    step(2);
    viewer.read(stream.next(match.scene(), match.game(), {0, 0}));
    EXPECT_FALSE(viewer.lastWasFull());
    const Eigen::Vector3d shown = viewer.ball()->pose.topRightCorner<3, 1>();
    EXPECT_LT((shown - match.scene().ball.translation()).cwiseAbs().maxCoeff(), 0.0051);
  }
}

}  // namespace
}  // namespace arena
