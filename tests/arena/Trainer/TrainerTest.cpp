// Every command of the monitor port, on scripted robots.
#include "Trainer/Trainer.h"

#include <gtest/gtest.h>

#include <string>

#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

class TrainerTest : public testing::Test, public RefereeFixture {
 protected:
  TrainerTest() { addPlayers(); }
  void command(std::string_view text) {
    EXPECT_TRUE(trainer.receive(text));
    trainer.apply();
  }
  void expectPlace(RobotHandle robot, double x, double y, double z) {
    EXPECT_TRUE(world.place(robot).isApprox(Eigen::Vector3d(x, y, z), 1e-9))
        << world.place(robot).transpose();
  }
  Trainer trainer{world, referee};
};

TEST_F(TrainerTest, CommandsWaitForTheNextCycle) {
  trainer.receive("(playMode PlayOn)");
  EXPECT_EQ(mode(), PlayMode::BeforeKickOff);
  trainer.apply();
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(TrainerTest, CommandsApplyInOrderOfArrival) {
  trainer.receive("(playMode PlayOn)(playMode GameOver)");
  trainer.receive("(playMode KickIn_Left)");
  trainer.apply();
  EXPECT_EQ(mode(), PlayMode::KickInLeft);
}

TEST_F(TrainerTest, KickOff) {
  command("(kickOff Right)");
  EXPECT_EQ(mode(), PlayMode::KickOffRight);
  command("(kickOff Left)");
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
  command("(playMode BeforeKickOff)(kickOff None)");
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
  command("(playMode PlayOn)(kickOff left)(kickOff)");
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(TrainerTest, PlayModeKnowsAllNames) {
  for (const ModeEntry& entry : kPlayModes) {
    command("(playMode " + std::string(entry.name) + ")");
    EXPECT_EQ(nameOf(mode()), entry.name);
  }
  command("(playMode nonsense)(playMode)(playMode (PlayOn))");
  EXPECT_EQ(mode(), PlayMode::PassRight);
}

TEST_F(TrainerTest, DropBall) {
  command("(playMode KickIn_Left)");
  world.setBallAt(3, 4);
  world.put(left2, 2.5, 4);
  command("(dropBall)");
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  expectPlace(left2, 0.5, 4, 0.38);
}

TEST_F(TrainerTest, BallPositionAndVelocityAreOptional) {
  command("(ball (pos 1 2 0.3)(vel 4 5 6))");
  EXPECT_TRUE(world.ballView.position.isApprox(Eigen::Vector3d(1, 2, 0.3)));
  EXPECT_TRUE(world.ballView.velocity.isApprox(Eigen::Vector3d(4, 5, 6)));
  command("(ball (pos -1 0 0.042))");
  EXPECT_NEAR(world.ballView.position.x(), -1, 1e-12);
  EXPECT_TRUE(world.ballView.velocity.isApprox(Eigen::Vector3d(4, 5, 6)));
  command("(ball (vel 0 0 1))");
  EXPECT_NEAR(world.ballView.position.x(), -1, 1e-12);
  EXPECT_TRUE(world.ballView.velocity.isApprox(Eigen::Vector3d(0, 0, 1)));
  const int before = world.ballSettings;
  command("(ball)");
  EXPECT_EQ(world.ballSettings, before);
}

TEST_F(TrainerTest, UnusableNumbersAreIgnored) {
  const int before = world.ballSettings;
  command("(ball (pos nan 0 0))(ball (vel inf 0 0))(ball (pos 1e300 0 0))(ball (pos 1 2))");
  command("(agent (unum 2)(team Left)(pos 0 -inf 0))(agent (unum 2)(team Left)(move 0 0 0 nan))");
  command("(time nan)(time -1)(time 1e30)(time)");
  EXPECT_EQ(world.ballSettings, before);
  EXPECT_TRUE(world.moves.empty());
  EXPECT_EQ(referee.game().time, 0.0f);
}

TEST_F(TrainerTest, ListsInThePlaceOfNumbersAreIgnored) {
  command("(time 12)(score (left 2)(right 3))");
  command("(agent (unum 2)(team Left)(battery 50)(temperature 30))");
  command("(time (7))(time ())(score (left (7))(right))(score 4 5)(score)");
  command("(agent (unum 2)(team Left)(battery (7))(battery nan)(temperature))");
  EXPECT_EQ(referee.game().time, 12.0f);
  EXPECT_EQ(referee.game().score[0], 2);
  EXPECT_EQ(referee.game().score[1], 3);
  EXPECT_EQ(trainer.condition(left2).battery, 50);
  EXPECT_EQ(trainer.condition(left2).temperature, 30);
  const int before = world.ballSettings;
  command("(ball (pos (1) 2 3))(ball (pos))(ball pos 1 2 3)(ball (vel 1 2 (3)))");
  command("(agent (unum (2))(team Left)(pos 0 0 0))(agent (unum 2)(team (Left))(pos 0 0 0))");
  EXPECT_EQ(world.ballSettings, before);
  EXPECT_TRUE(world.moves.empty());
}

TEST_F(TrainerTest, AgentPosKeepsTheHeading) {
  const Eigen::Matrix3d before = world.view(right2).torso.linear();
  command("(agent (unum 2)(team Right)(pos 3 -4 0.5))");
  expectPlace(right2, 3, -4, 0.5);
  EXPECT_TRUE(world.view(right2).torso.linear().isApprox(before));
  command("(agent (team Left)(unum 2)(pos 1 1 0.4))");
  expectPlace(left2, 1, 1, 0.4);
}

TEST_F(TrainerTest, AgentMoveTurnsToTheWorldYaw) {
  command("(agent (unum 2)(team Left)(move 1 2 0.4 -90))");
  expectPlace(left2, 1, 2, 0.4);
  const Eigen::Vector3d front = world.view(left2).torso.linear().col(1);
  EXPECT_TRUE(front.isApprox(Eigen::Vector3d::UnitX(), 1e-9)) << front.transpose();
}

TEST_F(TrainerTest, UnknownPlayersAreIgnored) {
  command("(agent (unum 9)(team Left)(pos 0 0 0))(agent (unum 2)(team left)(pos 0 0 0))");
  command("(kill (unum 9)(team Right))(repos (unum 9)(team Right))(agent (unum 2)(pos 0 0 0))");
  EXPECT_TRUE(world.moves.empty());
  EXPECT_EQ(world.robots().size(), 3u);
}

TEST_F(TrainerTest, BatteryAndTemperatureAreKept) {
  command("(agent (unum 2)(team Left)(battery 55.5))(agent (unum 2)(team Left)(temperature 40))");
  EXPECT_EQ(trainer.condition(left2).battery, 55.5);
  EXPECT_EQ(trainer.condition(left2).temperature, 40);
  EXPECT_EQ(trainer.condition(left3).battery, 0);
}

TEST_F(TrainerTest, SelectNamesNextAndNone) {
  EXPECT_EQ(trainer.selected(), kNoRobot);
  command("(select (unum 3)(team Left))");
  EXPECT_EQ(trainer.selected(), left3);
  command("(select)");
  EXPECT_EQ(trainer.selected(), right2);
  command("(select)");
  EXPECT_EQ(trainer.selected(), left2);
  command("(select (unum -1))");
  EXPECT_EQ(trainer.selected(), kNoRobot);
  command("(select)");
  EXPECT_EQ(trainer.selected(), left2);
  command("(select (unum 9)(team Left))");
  EXPECT_EQ(trainer.selected(), kNoRobot);
}

TEST_F(TrainerTest, AgentWithoutNameMovesTheSelectedPlayerAway) {
  world.setBallAt(0, 0);
  command("(agent)");
  EXPECT_TRUE(world.moves.empty());
  command("(select (unum 2)(team Right))(agent)");
  expectPlace(right2, 10.5, 6, 0.38);
}

TEST_F(TrainerTest, KillRemovesTheNamedOrTheSelectedRobot) {
  command("(kill (unum 2)(team Left))");
  EXPECT_EQ(world.robots().size(), 2u);
  EXPECT_EQ(world.find(left2), nullptr);
  command("(kill)");
  EXPECT_EQ(world.robots().size(), 2u);
  command("(select (unum 2)(team Right))(kill)");
  EXPECT_EQ(world.find(right2), nullptr);
  EXPECT_EQ(trainer.selected(), kNoRobot);
  command("(kill)(repos)(agent)");
  EXPECT_EQ(world.robots().size(), 1u);
}

TEST_F(TrainerTest, ReposPutsBesideThePitch) {
  world.setBallAt(0, -2);
  command("(repos (unum 3)(team Left))");
  expectPlace(left3, -2.4, 10.5, 1.0);
  command("(select (unum 2)(team Right))(repos)");
  expectPlace(right2, 3.0, 10.5, 1.0);
}

TEST_F(TrainerTest, TimeAndScore) {
  command("(time 123.5)(score (left 2)(right 3))");
  EXPECT_EQ(referee.game().time, 123.5f);
  EXPECT_EQ(referee.game().score[0], 2);
  EXPECT_EQ(referee.game().score[1], 3);
  command("(score (right 4))(score (left -7))(time 0)");
  EXPECT_EQ(referee.game().score[0], 0);
  EXPECT_EQ(referee.game().score[1], 4);
  EXPECT_EQ(referee.game().time, 0.0f);
}

TEST_F(TrainerTest, FullStateIsAskedForOnce) {
  EXPECT_FALSE(trainer.takeFullStateRequest());
  command("(reqfullstate)");
  EXPECT_TRUE(trainer.takeFullStateRequest());
  EXPECT_FALSE(trainer.takeFullStateRequest());
}

TEST_F(TrainerTest, KillsimAsksForTheEnd) {
  trainer.receive("(init (killsim))(killsimulation)'(killsim)'");
  EXPECT_FALSE(trainer.stopReceived());
  trainer.receive("( killsim)");
  EXPECT_TRUE(trainer.stopReceived());
  EXPECT_FALSE(trainer.stopRequested());
  trainer.apply();
  EXPECT_TRUE(trainer.stopRequested());
}

TEST_F(TrainerTest, UnknownCommandsAndGarbageAreIgnored) {
  command("(init)(getAck)(nonsense 1 2 (3))()((playMode PlayOn))playMode PlayOn");
  command("(((((");
  command(std::string("\0\x01\xff", 3));
  EXPECT_EQ(mode(), PlayMode::BeforeKickOff);
  command("(playMode PlayOn");
  EXPECT_EQ(mode(), PlayMode::BeforeKickOff);
}

TEST_F(TrainerTest, WaitingFramesAreBounded) {
  std::size_t accepted = 0;
  while (accepted <= Trainer::kMaxFrames && trainer.receive("(init)")) ++accepted;
  EXPECT_EQ(accepted, Trainer::kMaxFrames);
  trainer.apply();
  const std::string large(Trainer::kMaxBytes, 'x');
  EXPECT_TRUE(trainer.receive(large));
  EXPECT_FALSE(trainer.receive("x"));
  trainer.apply();
  EXPECT_TRUE(trainer.receive("(init)"));
}

}  // namespace
}  // namespace arena
