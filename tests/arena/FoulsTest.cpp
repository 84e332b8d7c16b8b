// Fouls and their consequences, on scripted robots.
#include <gtest/gtest.h>

#include <algorithm>

#include "FakeWorld.h"
#include "Referee/Charging.h"
#include "Referee/OwnAreaWatch.h"
#include "Referee/Posture.h"
#include "Referee/SelfCollision.h"

namespace arena {
namespace {

// ------------------------------------------------------------------------------ posture

int cyclesUntilIncapable(double height, bool goalie, double y = 0) {
  Posture posture;
  for (int cycle = 1; cycle < 5000; ++cycle) {
    posture.update(height, y);
    if (posture.incapable(goalie)) return cycle;
  }
  return 0;
}

TEST(PostureTest, LyingAndNotStandingHaveTheirLimits) {
  EXPECT_EQ(cyclesUntilIncapable(0.149, false), 751);   // more than 15 s
  EXPECT_EQ(cyclesUntilIncapable(0.149, true), 1501);   // 30 s
  EXPECT_EQ(cyclesUntilIncapable(0.151, false), 1501);  // 30 s
  EXPECT_EQ(cyclesUntilIncapable(0.249, true), 3001);   // 60 s
  EXPECT_EQ(cyclesUntilIncapable(0.25, false), 0);
}

TEST(PostureTest, NobodyIsCountedBesideThePitch) {
  EXPECT_EQ(cyclesUntilIncapable(0.1, false, 10.1), 0);
  EXPECT_EQ(cyclesUntilIncapable(0.1, false, -10.2), 0);
  EXPECT_EQ(cyclesUntilIncapable(0.1, false, -10.09), 751);
}

TEST(PostureTest, OneUprightCycleClearsLyingButNotNotStanding) {
  Posture posture;
  for (int i = 0; i < 700; ++i) posture.update(0.1, 0);
  posture.update(0.26, 0);
  for (int i = 0; i < 750; ++i) posture.update(0.1, 0);
  EXPECT_FALSE(posture.incapable(false));
  EXPECT_FALSE(posture.standing());
  for (int i = 0; i < 51; ++i) posture.update(0.2, 0);
  EXPECT_TRUE(posture.incapable(false));  // 1501 cycles not standing
}

TEST(PostureTest, StandsAgainAfterMoreThanHalfASecondUpright) {
  Posture posture;
  posture.update(0.2, 0);
  for (int i = 0; i < 25; ++i) posture.update(0.3, 0);
  EXPECT_FALSE(posture.standing());
  posture.update(0.3, 0);
  EXPECT_TRUE(posture.standing());
}

// ------------------------------------------------------------------------------ charging geometry

struct ChargingCase {
  const char* what;
  ChargingPlayer first, second;
  Eigen::Vector2d contact, ball;
  std::optional<int> culprit;
};

TEST(ChargingCulpritTest, JudgesByBallOpponentAndSpeed) {
  const Eigen::Vector2d far(10, 10);
  const ChargingCase cases[] = {
      {"away from the ball the faster one",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       far,
       0},
      {"the second as well", {{0, 0}, {0, 0}}, {{0.4, 0}, {-0.6, 0}}, {0.2, 0}, far, 1},
      {"too slow", {{0, 0}, {0.39, 0}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, std::nullopt},
      {"both run", {{0, 0}, {0.6, 0}}, {{0.4, 0}, {-0.6, 0}}, {0.2, 0}, far, std::nullopt},
      {"passes by", {{0, 0}, {0, 0.6}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, std::nullopt},
      // Component towards the middle of opponent and contact: 0.7 cos 75 deg = 0.181 m/s.
      {"grazes", {{0, 0}, {0.1812, 0.6761}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, std::nullopt},
      // 0.7 cos 70 deg = 0.239 m/s.
      {"hits at a flat angle", {{0, 0}, {0.2394, 0.6578}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, 0},
      {"contact at the ball",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.2, 0.09},
       std::nullopt},
      {"contact just off the ball, who runs past it at 45 degrees",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.12, 0.12},
       0},
      // The ball lies equally far from both, 29 and 31 degrees off the rammer's way.
      {"ball 29 degrees off",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.2, 0.1109},
       std::nullopt},
      {"ball 31 degrees off", {{0, 0}, {0.6, 0}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, {0.2, 0.1202}, 0},
      // The way leads 30 degrees from the opponent and 26 degrees from the ball.
      {"goes for the ball",
       {{0, 0}, {0.5196, 0.3}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.2, 0.3},
       std::nullopt},
      // Nobody is suspect at first; the second is nearer to the ball and slow, the first is blamed.
      {"farther from the ball against a slow one",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0.1}},
       {0.2, 0},
       {0.9, 0},
       0},
      // The nearer one goes for the ball, 90 degrees from the opponent. The farther one, going 80
      // degrees from him, goes for it too; at 70 degrees he is taken to ram.
      {"both go for the ball",
       {{0, 0}, {0.1042, 0.5909}},
       {{0.4, 0}, {0, 0.6}},
       {0.2, 0},
       {0.4, 0.6},
       std::nullopt},
      {"one goes for the ball",
       {{0, 0}, {0.2052, 0.5638}},
       {{0.4, 0}, {0, 0.6}},
       {0.2, 0},
       {0.4, 0.6},
       0},
      {"runs away from the ball into the other",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {-0.6, 0}},
       {0.2, 0},
       {0.9, 0},
       1},
      // The nearer one runs away at 0.5 m/s (180 degrees off), the farther one rams (0 degrees).
      {"farther one rams the runner",
       {{0, 0}, {0.8, 0}},
       {{0.4, 0}, {0.5, 0}},
       {0.2, 0},
       {0.9, 0},
       0},
      {"equally far from the ball",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0.0},
       {0.22, 0.115},
       std::nullopt},
  };
  for (const ChargingCase& c : cases) {
    EXPECT_EQ(chargingCulprit(c.first, c.second, c.contact, c.ball), c.culprit) << c.what;
    // The order of the two does not matter.
    const auto swapped = chargingCulprit(c.second, c.first, c.contact, c.ball);
    EXPECT_EQ(swapped.has_value(), c.culprit.has_value()) << c.what;
    if (swapped && c.culprit) {
      EXPECT_EQ(*swapped, 1 - *c.culprit) << c.what;
    }
  }
}

// ------------------------------------------------------------------------------ boxes

ColliderView box(Body body, const Eigen::Isometry3d& pose, const Eigen::Vector3d& half) {
  return {body, true, pose, half};
}

Eigen::Isometry3d turned(double x, double y, double z) {
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  pose.linear() = (Eigen::AngleAxisd(0.5, Eigen::Vector3d::UnitX()) *
                   Eigen::AngleAxisd(0.7, Eigen::Vector3d::UnitY()) *
                   Eigen::AngleAxisd(0.9, Eigen::Vector3d::UnitZ()))
                      .toRotationMatrix();
  pose.translation() = Eigen::Vector3d(x, y, z);
  return pose;
}

TEST(BoxesOverlapTest, ParallelBoxesNeverCount) {
  const auto a = box(Body::Torso, Eigen::Isometry3d::Identity(), {0.1, 0.1, 0.1});
  EXPECT_FALSE(boxesOverlap(a, a, 0.04));
}

TEST(BoxesOverlapTest, SkewBoxesCountWhenTheyReachFarInto) {
  const auto a = box(Body::Torso, Eigen::Isometry3d::Identity(), {0.1, 0.1, 0.1});
  EXPECT_TRUE(boxesOverlap(a, box(Body::LeftFoot, turned(0, 0, 0), {0.1, 0.1, 0.1}), 0.04));
  EXPECT_FALSE(boxesOverlap(a, box(Body::LeftFoot, turned(0.5, 0, 0), {0.1, 0.1, 0.1}), 0.04));
}

// Against a cube, the reach of a turned box along x is known: the overlap on the face axis is
// linear in the distance and reaches the limit at a distance that is computed here on its own.
TEST(BoxesOverlapTest, FaceAxisGivesTheLimit) {
  const Eigen::Vector3d half(0.1, 0.1, 0.1);
  const auto cube = box(Body::Torso, Eigen::Isometry3d::Identity(), half);
  const Eigen::Matrix3d r = turned(0, 0, 0).linear();
  const double reach = (std::abs(r(0, 0)) + std::abs(r(0, 1)) + std::abs(r(0, 2))) * 0.1;
  const double limit = 0.1 + reach - 0.04;
  EXPECT_FALSE(boxesOverlap(cube, box(Body::LeftFoot, turned(limit + 1e-6, 0, 0), half), 0.04));
  EXPECT_TRUE(boxesOverlap(cube, box(Body::LeftFoot, turned(0.3 * limit, 0, 0), half), 0.04));
}

TEST(BoxesOverlapTest, DoesNotDependOnTheOrder) {
  for (int i = 0; i < 50; ++i) {
    const double x = 0.004 * i;
    const auto a = box(Body::Torso, poseAt(0.01, 0.02, 0.03, 20), {0.05, 0.08, 0.1});
    const auto b = box(Body::LeftFoot, turned(x, -0.3 * x, 0.05), {0.04, 0.08, 0.06});
    EXPECT_EQ(boxesOverlap(a, b, 0.04), boxesOverlap(b, a, 0.04)) << i;
  }
}

TEST(MayCollideTest, LeavesOutTheNeighboursOfOneLeg) {
  EXPECT_FALSE(mayCollide(Body::Torso, Body::RightThigh));
  EXPECT_FALSE(mayCollide(Body::LeftThigh, Body::Torso));
  EXPECT_FALSE(mayCollide(Body::LeftThigh, Body::LeftShank));
  EXPECT_FALSE(mayCollide(Body::RightFoot, Body::RightShank));
  EXPECT_FALSE(mayCollide(Body::RightFoot, Body::RightToe));
  EXPECT_TRUE(mayCollide(Body::LeftThigh, Body::RightShank));
  EXPECT_TRUE(mayCollide(Body::Torso, Body::RightShank));
  EXPECT_TRUE(mayCollide(Body::Torso, Body::RightUpperArm));
  EXPECT_TRUE(mayCollide(Body::RightUpperArm, Body::RightLowerArm));
  EXPECT_TRUE(mayCollide(Body::RightFoot, Body::LeftFoot));
  EXPECT_TRUE(mayCollide(Body::RightThigh, Body::RightFoot));
}

TEST(CollidingLimbsTest, NamesTheLimbsOfBothBoxesButNotTheTorso) {
  const Eigen::Vector3d half(0.1, 0.1, 0.1);
  const auto limbs = [](std::initializer_list<ColliderView> colliders) {
    return collidingLimbs(std::vector<ColliderView>(colliders));
  };
  const auto torso = box(Body::Torso, Eigen::Isometry3d::Identity(), half);
  const LimbSet arm = limbs({torso, box(Body::LeftLowerArm, turned(0, 0, 0), half)});
  EXPECT_EQ(arm, (LimbSet{false, false, true, false, false}));
  const auto hand = box(Body::RightLowerArm, Eigen::Isometry3d::Identity(), half);
  const LimbSet both = limbs({hand, box(Body::RightThigh, turned(0, 0, 0), half)});
  EXPECT_EQ(both, (LimbSet{false, true, false, true, false}));
  const auto head = ColliderView{Body::Head, false, turned(0, 0, 0), half};
  EXPECT_EQ(limbs({torso, head}), LimbSet{});
  EXPECT_EQ(limbs({torso, box(Body::RightThigh, turned(0, 0, 0), half)}), LimbSet{});
}

// ------------------------------------------------------------------------------ on the pitch

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
  for (const RobotView& robot : world.robots())
    inside +=
        robot.side == Side::Right &&
        penaltyArea(Side::Right).contains(Eigen::Vector2d(robot.torso.translation().head<2>()));
  EXPECT_EQ(inside, 3);
}

TEST(OwnAreaTest, NearestEdgeDecides) {
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-13.3, 0}).isApprox(Eigen::Vector2d(-12.8, 0)));
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-14, 2.8}).isApprox(Eigen::Vector2d(-14, 3.4)));
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-14, -2.8}).isApprox(Eigen::Vector2d(-14, -3.4)));
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-14.9, 2}).isApprox(Eigen::Vector2d(-15.4, 2)));
  EXPECT_TRUE(outsideOwnArea(Side::Right, {13.3, 0}).isApprox(Eigen::Vector2d(12.8, 0)));
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
  const Eigen::Matrix3d skew = turned(0, 0, 0).linear();
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
  const Eigen::Matrix3d skew = turned(0, 0, 0).linear();
  world.addCollider(left2, Body::RightLowerArm, {0.02, 0.02, 0.02}, {0.05, 0.11, 0.05}, skew);
  ASSERT_EQ(events().at(0).type, FoulType::SelfCollision);
  step(40);
  ASSERT_EQ(referee.fouls()[0].type, FoulType::Incapable);  // lifted until cycle 776
  ASSERT_TRUE(world.isFrozen(left2, Limb::RightArm));
  step(11);
  EXPECT_GT(world.place(left2).z(), 1.0);
  EXPECT_FALSE(world.isFrozen(left2, Limb::RightArm));
}

TEST(LimbFreezerTest, FreezesForOneSecondAndThenSparesForTwo) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[static_cast<std::size_t>(Limb::RightArm)] = true;
  EXPECT_TRUE(freezer.update(arm, 1.0f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::RightArm));
  EXPECT_FALSE(world.isFrozen(7, Limb::LeftArm));
  EXPECT_FALSE(freezer.update(arm, 1.98f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::RightArm));
  EXPECT_FALSE(freezer.update(arm, 2.0f, 7, world));
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_FALSE(freezer.update(arm, 3.98f, 7, world));
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_TRUE(freezer.update(arm, 4.0f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::RightArm));
}

TEST(LimbFreezerTest, LimbsAreFrozenOneByOne) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[1] = true;
  LimbSet armAndLeg = arm;
  armAndLeg[4] = true;
  EXPECT_TRUE(freezer.update(arm, 1.0f, 7, world));
  EXPECT_TRUE(freezer.update(armAndLeg, 1.5f, 7, world));
  EXPECT_TRUE(world.isFrozen(7, Limb::LeftLeg));
  EXPECT_FALSE(freezer.update({}, 2.1f, 7, world));
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_TRUE(world.isFrozen(7, Limb::LeftLeg));
}

TEST(LimbFreezerTest, ReleaseFreesAndForgets) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[1] = true;
  freezer.update(arm, 1.0f, 7, world);
  freezer.release(7, world);
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
  EXPECT_TRUE(freezer.update(arm, 1.1f, 7, world));
}

TEST(LimbFreezerTest, ClockSetBackReleases) {
  FakeWorld world;
  LimbFreezer freezer;
  LimbSet arm{};
  arm[1] = true;
  freezer.update(arm, 100.0f, 7, world);
  freezer.update({}, 0.02f, 7, world);
  EXPECT_FALSE(world.isFrozen(7, Limb::RightArm));
}

}  // namespace
}  // namespace arena
