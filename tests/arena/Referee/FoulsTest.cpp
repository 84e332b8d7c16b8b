// Fouls and their consequences, on scripted robots.
#include <gtest/gtest.h>

#include <algorithm>

#include "Referee/OwnAreaWatch.h"
#include "Referee/SelfCollision.h"
#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

class FoulsTest : public testing::Test, public RefereeFixture {
 protected:
  FoulsTest() {
    addPlayers();
    start(PlayMode::OffsideLeft);  // a mode in which the referee does nothing but watch fouls
  }
  // Steps once and returns the events.
  std::vector<FoulEvent> events() {
    referee.step();
    world.clearContacts();
    return {referee.fouls().begin(), referee.fouls().end()};
  }
  // Lets a robot run with this velocity while it touches the other one in the last cycle.
  std::vector<FoulEvent> ram(RobotHandle rammer, const Eigen::Vector3d& velocity,
                             RobotHandle other) {
    for (int i = 0; i < 3; ++i) {
      world.view(rammer).velocity = velocity;
      step();
    }
    world.view(rammer).velocity = velocity;
    world.touch(rammer, other);
    return events();
  }
  void standFaceToFace() {
    world.setBallAt(10, -5);
    world.put(left2, 0, 0);
    world.put(right2, 0.4, 0);
    step(60);
  }
};

TEST_F(FoulsTest, LyingPlayerIsLiftedAndPutBesideThePitch) {
  world.setBallAt(0, 1);
  world.put(left2, -5, 2, 0.1);
  step(750);
  EXPECT_TRUE(world.moves.empty());
  for (int cycle = 0; cycle < 25; ++cycle) {
    const auto fouls = events();
    ASSERT_EQ(fouls.size(), 1u) << cycle;
    EXPECT_EQ(fouls[0].type, FoulType::Incapable);
    EXPECT_EQ(fouls[0].side, Side::Left);
    EXPECT_EQ(fouls[0].number, 2);
    EXPECT_EQ(fouls[0].index, cycle + 1);
    EXPECT_EQ(fouls[0].first, cycle == 0);
    EXPECT_NEAR(world.place(left2).x(), -5, 1e-9);
    EXPECT_NEAR(world.place(left2).z(), 1.0 + 0.01 * cycle, 1e-9);
  }
  const auto after = events();
  EXPECT_TRUE(after.empty());
  EXPECT_TRUE(world.place(left2).isApprox(Eigen::Vector3d(-3.0, -10.5, 0.4)));
}

TEST_F(FoulsTest, CountingStartsAnewAfterThePenalty) {
  world.put(left2, -5, 2, 0.1);
  step(776);
  world.put(left2, -5, 2, 0.1);
  world.moves.clear();
  step(750);
  EXPECT_TRUE(world.moves.empty());
  step();
  EXPECT_EQ(world.moves.size(), 1u);
}

TEST_F(FoulsTest, GoaliesMayLieLonger) {
  const RobotHandle goalie = world.add(Side::Left, 1, -14, 0, 0.1);
  step(1500);
  EXPECT_TRUE(world.moves.empty());
  step();
  EXPECT_NEAR(world.place(goalie).z(), 1.0, 1e-9);
}

TEST_F(FoulsTest, NothingIsAFoulWhileTheGameIsPaused) {
  for (const PlayMode mode : {PlayMode::BeforeKickOff, PlayMode::GoalRight}) {
    start(mode);
    world.put(left2, -5, 2, 0.1);
    for (int i = 0; i < 140; ++i) EXPECT_TRUE(events().empty());
  }
}

TEST_F(FoulsTest, FoulsAreWatchedAfterTheGame) {
  start(PlayMode::GameOver);
  world.put(left2, -5, 2, 0.1);
  step(751);
  EXPECT_NEAR(world.place(left2).z(), 1.0, 1e-9);
}

TEST_F(FoulsTest, PauseEndsALift) {
  world.put(left2, -5, 2, 0.1);
  step(755);
  start(PlayMode::GoalRight);
  world.moves.clear();
  step(30);
  EXPECT_TRUE(world.moves.empty());
}

// ---- illegal defence

TEST_F(FoulsTest, FourthFieldPlayerInTheOwnAreaIsMovedOut) {
  const RobotHandle goalie = world.add(Side::Left, 1, -14.5, 0);
  world.put(left2, -13.6, 2);
  world.put(left3, -14, -2);
  const RobotHandle fourth = world.add(Side::Left, 4, -12, 0);
  step();
  EXPECT_TRUE(world.moves.empty());
  world.put(fourth, -13.5, 0.5);
  const auto fouls = events();
  ASSERT_EQ(fouls.size(), 1u);
  EXPECT_EQ(fouls[0].type, FoulType::IllegalDefence);
  EXPECT_EQ(fouls[0].number, 4);
  EXPECT_NEAR(world.place(fourth).x(), -12.8, 1e-9);  // 0.4 m outside the nearest edge
  EXPECT_NEAR(world.place(fourth).y(), 0.5, 1e-9);
  EXPECT_NEAR(world.place(goalie).x(), -14.5, 1e-9);
  EXPECT_TRUE(events().empty());
}

TEST_F(FoulsTest, WhereTheGoalieComesLastTheFarthestFieldPlayerGoes) {
  const RobotHandle goalie = world.add(Side::Left, 1, -12, 0);
  world.put(left2, -14, 1);
  world.put(left3, -13.5, 2.5);
  world.add(Side::Left, 4, -14, -1);
  step();
  world.put(goalie, -14.5, 0);
  const auto fouls = events();
  ASSERT_EQ(fouls.size(), 1u);
  EXPECT_EQ(fouls[0].number, 3);
  EXPECT_NEAR(world.place(left3).x(), -12.8, 1e-9);
}

TEST_F(FoulsTest, OpponentsInTheAreaDoNotCount) {
  world.put(right2, -14, 0);
  world.put(left2, -13.6, 2);
  world.put(left3, -14, -2);
  world.add(Side::Left, 4, -14.5, 1);
  EXPECT_TRUE(events().empty());
}

TEST_F(FoulsTest, FiveInTheAreaMakeTwoFouls) {
  for (int i = 0; i < 5; ++i) world.add(Side::Right, 3 + i, 14, -2.4 + 1.2 * i);
  EXPECT_EQ(events().size() + events().size(), 2u);  // in one cycle or two
  int inside = 0;
  for (const RobotView& robot : world.robots()) {
    inside +=
        robot.side == Side::Right &&
        penaltyArea(Side::Right).contains(Eigen::Vector2d(robot.torso.translation().head<2>()));
  }
  EXPECT_EQ(inside, 3);
}

TEST_F(FoulsTest, PlayerMovedBehindTheGoalLineComesBesideTheGoal) {
  world.add(Side::Left, 1, -14.5, -2.5);
  world.put(left2, -13.6, 2);
  world.put(left3, -14, -1.5);
  step();
  const RobotHandle fourth = world.add(Side::Left, 4, -14.9, 0.8);
  step();
  const Eigen::Vector3d place = world.place(fourth);
  EXPECT_LT(place.x(), -15);
  EXPECT_GE(std::abs(place.y()), 1.45);
}

// ---- touching

TEST_F(FoulsTest, TwoTouchingRobotsAreNoFoul) {
  world.touch(left2, right2);
  EXPECT_TRUE(events().empty());
}

TEST_F(FoulsTest, LastToJoinAGroupOfThreeGoes) {
  world.put(left2, 0, 0);
  world.put(left3, 0.4, 0);
  world.put(right2, 0.2, 0.4);
  world.setBallAt(10, 0);
  world.touch(left2, right2);
  step();
  world.touch(left2, right2);
  world.touch(left2, left3);
  const auto fouls = events();
  ASSERT_EQ(fouls.size(), 1u);
  EXPECT_EQ(fouls[0].type, FoulType::Touching);
  EXPECT_EQ(fouls[0].side, Side::Left);
  EXPECT_EQ(fouls[0].number, 3);
  // The group's mean place is (0.2, 0.1333); 0.4 m straight away from it.
  EXPECT_NEAR(world.place(left3).x(), 0.7328, 1e-4);
  EXPECT_NEAR(world.place(left3).y(), -0.2219, 1e-4);
}

TEST_F(FoulsTest, WhereHisTeamIsFewerAnOpponentGoes) {
  world.touch(left2, left3);
  step();
  world.touch(left2, left3);
  world.touch(left2, right2);  // right2 joins last, but is alone against two
  const auto fouls = events();
  ASSERT_EQ(fouls.size(), 1u);
  EXPECT_EQ(fouls[0].side, Side::Left);
}

TEST_F(FoulsTest, GoaliesNeverGoForTouching) {
  const RobotHandle goalie = world.add(Side::Left, 1, 0, 0);
  world.touch(left2, right2);
  step();
  world.touch(left2, right2);
  world.touch(left2, goalie);
  const auto fouls = events();
  ASSERT_EQ(fouls.size(), 1u);
  EXPECT_EQ(fouls[0].side, Side::Left);
  EXPECT_EQ(fouls[0].number, 2);
}

TEST_F(FoulsTest, FeetAloneDoNotTouch) {
  world.touch(left2, right2);
  world.touch(left2, left3, Body::LeftFoot, Body::RightToe);
  EXPECT_TRUE(events().empty());
  world.touch(left2, right2);
  world.touch(left2, left3, Body::LeftFoot, Body::RightShank);
  EXPECT_EQ(events().size(), 1u);
}

TEST_F(FoulsTest, ChainsOfContactsMakeOneGroup) {
  const RobotHandle right3 = world.add(Side::Right, 3, 5, 5);
  world.touch(left2, right2);
  world.touch(left3, right3);
  EXPECT_TRUE(events().empty());
  world.touch(left2, right2);
  world.touch(left3, right3);
  world.touch(right2, left3);
  EXPECT_EQ(events().size(), 1u);
}

// ---- charging

TEST_F(FoulsTest, ChargingCostsTheStandardPenalty) {
  standFaceToFace();
  const auto fouls = ram(left2, {0.8, 0, 0}, right2);
  ASSERT_EQ(fouls.size(), 1u);
  EXPECT_EQ(fouls[0].type, FoulType::Charging);
  EXPECT_EQ(fouls[0].side, Side::Left);
  EXPECT_NEAR(world.place(left2).z(), 1.0, 1e-9);
  step(26);
  EXPECT_TRUE(world.place(left2).isApprox(Eigen::Vector3d(-3.0, 10.5, 0.4)));
}

TEST_F(FoulsTest, SpeedIsTheMeanOfThreeSteps) {
  standFaceToFace();
  world.view(left2).velocity = {1.1, 0, 0};
  step();
  world.view(left2).velocity = {0, 0, 0};
  step();
  world.touch(left2, right2);
  EXPECT_TRUE(events().empty());  // mean 0.37
}

TEST_F(FoulsTest, TeamMatesDoNotCharge) {
  standFaceToFace();
  world.put(left3, 0.4, 0.1);
  EXPECT_TRUE(ram(left2, {0.8, 0, 0}, left3).empty());
}

TEST_F(FoulsTest, NobodyIsBlamedWhoDoesNotStandOrHitsOneWhoDoesNot) {
  for (const bool self : {true, false}) {
    standFaceToFace();
    const RobotHandle fallen = self ? left2 : right2;
    world.view(fallen).torso.translation().z() = 0.2;
    step();
    world.view(fallen).torso.translation().z() = 0.38;
    EXPECT_TRUE(ram(left2, {0.8, 0, 0}, right2).empty());
  }
}

TEST_F(FoulsTest, NobodyIsBlamedWithinASecondOfBeingMoved) {
  for (const bool self : {true, false}) {
    standFaceToFace();
    referee.noteBeam(self ? left2 : right2);
    EXPECT_TRUE(ram(left2, {0.8, 0, 0}, right2).empty());
    run(1.1);
  }
}

TEST_F(FoulsTest, RecentTouchOfTheBallMakesImmuneAndIsPassedOn) {
  standFaceToFace();
  touch(left2);
  run(0.8);
  EXPECT_TRUE(ram(left2, {0.8, 0, 0}, right2).empty());
  // The rammed player now has the immunity of the touch, for what is left of its second.
  world.put(left3, 0.8, 0);
  world.view(right2).velocity = {0.8, 0, 0};
  world.touch(right2, left3);
  world.view(left2).velocity.setZero();
  EXPECT_TRUE(events().empty());
}

TEST_F(FoulsTest, ImmunityEndsAfterASecond) {
  standFaceToFace();
  touch(left2);
  run(1.1);
  EXPECT_EQ(ram(left2, {0.8, 0, 0}, right2).size(), 1u);
}

TEST_F(FoulsTest, GoaliesMayChargeInTheirAreaAndBehindIt) {
  const RobotHandle goalie = world.add(Side::Left, 1, -14, 0);
  world.setBallAt(5, 5);
  for (const double x : {-14.0, -15.3}) {
    world.put(goalie, x, 2);
    world.put(right2, x + 0.4, 2);
    step(60);
    EXPECT_TRUE(ram(goalie, {0.8, 0, 0}, right2).empty()) << x;
  }
  world.put(goalie, -13, 2);
  world.put(right2, -12.6, 2);
  step(60);
  EXPECT_EQ(ram(goalie, {0.8, 0, 0}, right2).size(), 1u);
}

TEST_F(FoulsTest, OngoingContactDoesNotBecomeAFoul) {
  standFaceToFace();
  for (int i = 0; i < 5; ++i) {
    world.touch(left2, right2);
    step();
  }
  EXPECT_TRUE(ram(left2, {0.8, 0, 0}, right2).empty());  // 0.08 s after the contact
  world.view(left2).velocity.setZero();
  run(0.3);
  EXPECT_EQ(ram(left2, {0.8, 0, 0}, right2).size(), 1u);
}

// ---- self-collision

TEST_F(FoulsTest, ForearmDeepInTheTorsoFreezesTheArm) {
  const Eigen::Matrix3d skew = skewPoseAt(0, 0, 0).linear();
  world.addCollider(left2, Body::RightLowerArm, {0.02, 0.02, 0.02}, {0.05, 0.11, 0.05}, skew);
  const auto fouls = events();
  ASSERT_EQ(fouls.size(), 1u);
  EXPECT_EQ(fouls[0].type, FoulType::SelfCollision);
  EXPECT_EQ(fouls[0].number, 2);
  EXPECT_TRUE(world.isFrozen(left2, Limb::RightArm));
  EXPECT_FALSE(world.isFrozen(left2, Limb::LeftArm));
  step(40);
  EXPECT_TRUE(world.isFrozen(left2, Limb::RightArm));
  start(PlayMode::GoalLeft);
  step();
  EXPECT_FALSE(world.isFrozen(left2, Limb::RightArm));
}

TEST_F(FoulsTest, FrozenLimbsThawInTimeWhileThePlayerIsLifted) {
  world.put(left2, -5, 2, 0.1);
  step(710);
  const Eigen::Matrix3d skew = skewPoseAt(0, 0, 0).linear();
  world.addCollider(left2, Body::RightLowerArm, {0.02, 0.02, 0.02}, {0.05, 0.11, 0.05}, skew);
  ASSERT_EQ(events().at(0).type, FoulType::SelfCollision);
  step(40);
  ASSERT_EQ(referee.fouls()[0].type, FoulType::Incapable);  // lifted until cycle 776
  ASSERT_TRUE(world.isFrozen(left2, Limb::RightArm));
  step(11);
  EXPECT_GT(world.place(left2).z(), 1.0);
  EXPECT_FALSE(world.isFrozen(left2, Limb::RightArm));
}

}  // namespace
}  // namespace arena
