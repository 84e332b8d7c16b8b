#include "Referee/Placement.h"

#include <gtest/gtest.h>

#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

class PlacementTest : public testing::Test {
 protected:
  FakeWorld world;
  Placement placement{world};

  void expectPlace(RobotHandle robot, double x, double y) {
    EXPECT_NEAR(world.place(robot).x(), x, 1e-5);
    EXPECT_NEAR(world.place(robot).y(), y, 1e-5);
  }
};

TEST_F(PlacementTest, BoundsOfAnUprightRobotAreTheTurnedSquare) {
  const RobotHandle robot = world.add(Side::Left, 2, 1, 2);
  EXPECT_NEAR(placement.bounds(world.view(robot)).min().x(), 0.8, 1e-9);
  EXPECT_NEAR(placement.bounds(world.view(robot)).max().y(), 2.2, 1e-9);
  world.view(robot).torso = poseAt(1, 2, 0.38, 45);
  EXPECT_NEAR(placement.bounds(world.view(robot)).max().x(), 1 + 0.2 * std::sqrt(2.0), 1e-9);
}

TEST_F(PlacementTest, BoundsHoldCollidersThatReachFarther) {
  const RobotHandle robot = world.add(Side::Left, 2, 0, 0);
  world.addCollider(robot, Body::RightLowerArm, {0.1, 0.3, 0}, {0.025, 0.055, 0.025});
  EXPECT_NEAR(placement.bounds(world.view(robot)).max().x(), 0.355, 1e-9);
  // The rectangle over the centres ends at the centre.
  EXPECT_NEAR(placement.centres(world.view(robot)).max().x(), 0.3, 1e-9);
}

// The league's server moved player 8 in the cycle after each of these poses and left him alone in
// the cycle before, with the ball at the middle.
TEST_F(PlacementTest, CircleTakesPlayersAsTheLeagueDoes) {
  struct Observed {
    double x, y, heading;
    bool moved;
  };
  const Observed cases[] = {{-1.2178, -2.0476, 58.21, false},
                            {-1.2120, -2.0366, 57.86, true},
                            {-1.8800, -1.4734, 33.04, false},
                            {-1.8680, -1.4658, 35.30, true}};
  for (const Observed& observed : cases) {
    FakeWorld alone;
    Placement placing(alone);
    const RobotHandle robot = alone.add(Side::Left, 8, observed.x, observed.y);
    alone.view(robot).torso = poseAt(observed.x, observed.y, 0.35, observed.heading - 90);
    alone.addCollider(robot, Body::RightFoot, {0.05, 0.02, -0.34}, {0.04, 0.08, 0.01});
    placing.keepOutOfCircle(Side::Left, {0, 0}, 2.0, 1.0f);
    EXPECT_EQ(!alone.moves.empty(), observed.moved) << observed.x;
    if (observed.moved) {
      EXPECT_NEAR(alone.place(robot).x(), -2.5, 1e-9);
      EXPECT_NEAR(alone.place(robot).y(), observed.y, 1e-9);
      EXPECT_NEAR(alone.place(robot).z(), 0.35, 1e-9);
    }
  }
}

TEST_F(PlacementTest, CircleSendsEachTeamTowardsItsOwnGoal) {
  world.setBallAt(3, 1);
  const RobotHandle left = world.add(Side::Left, 2, 4, 1.5);
  const RobotHandle right = world.add(Side::Right, 2, 2, 0.5);
  placement.keepOutOfCircle(Side::Left, {3, 1}, 2.0, 1.0f);
  expectPlace(left, 0.5, 1.5);
  expectPlace(right, 2, 0.5);
  placement.keepOutOfCircle(Side::Right, {3, 1}, 2.0, 1.0f);
  expectPlace(right, 5.5, 0.5);
}

TEST_F(PlacementTest, CircleMovesSidewaysWhereTheOwnGoalLineIsNear) {
  world.setBallAt(-14, 4);
  const RobotHandle left = world.add(Side::Left, 2, -13, 4.5);
  placement.keepOutOfCircle(Side::Left, {-14, 4}, 2.0, 1.0f);
  expectPlace(left, -13, 1.5);
  world.setBallAt(14, -4);
  const RobotHandle right = world.add(Side::Right, 2, 13, -4.5);
  placement.keepOutOfCircle(Side::Right, {14, -4}, 2.0, 1.0f);
  expectPlace(right, 13, -1.5);
}

TEST_F(PlacementTest, RectangleLooksAtCentresAndMovesBeyondItsEdge) {
  world.setBallAt(-5, 5);
  const RobotHandle left = world.add(Side::Left, 2, -0.2, 3);
  const RobotHandle right = world.add(Side::Right, 2, -14, 1);
  placement.keepOutOfRectangle(Side::Left, ownHalf(Side::Right), 1.0f);
  expectPlace(left, -0.2, 3);
  world.put(left, 0.0, 3);
  placement.keepOutOfRectangle(Side::Left, ownHalf(Side::Right), 1.0f);
  expectPlace(left, -2.5, 3);
  placement.keepOutOfRectangle(Side::Right, penaltyArea(Side::Left), 1.0f);
  expectPlace(right, -10.7, 1);
}

TEST_F(PlacementTest, HalvesReachTenMetresBeyondTheLines) {
  world.setBallAt(0, 0);
  const RobotHandle near = world.add(Side::Left, 2, 24, 19);
  const RobotHandle beyond = world.add(Side::Left, 3, 5, 20.5);
  placement.keepInOwnHalf(Side::Left, 0.0, 1.0f);
  expectPlace(near, -2.5, 19);
  expectPlace(beyond, 5, 20.5);
}

TEST_F(PlacementTest, KickingTeamMayStandWhollyInsideTheCircle) {
  world.setBallAt(0, 0);
  const RobotHandle inside = world.add(Side::Left, 2, 1.7, 0.18);
  const RobotHandle across = world.add(Side::Left, 3, 1.75, -0.9);
  placement.keepInOwnHalf(Side::Left, 2.0, 1.0f);
  expectPlace(inside, 1.7, 0.18);
  expectPlace(across, -2.5, -0.9);
}

TEST_F(PlacementTest, RepelMovesStraightAwayFromTheCentre) {
  world.setBallAt(1, 1);
  const RobotHandle robot = world.add(Side::Left, 2, 1.3, 1.4);
  const RobotHandle far = world.add(Side::Left, 3, 1, 2.01);
  placement.repel(Side::Left, {1, 1}, 1.0, 0.1, 1.0f);
  expectPlace(robot, 1 + 1.1 * 0.6, 1 + 1.1 * 0.8);
  expectPlace(far, 1, 2.01);
}

TEST_F(PlacementTest, RepelFromExactlyAboveGoesHomewards) {
  world.setBallAt(1, 1);
  const RobotHandle robot = world.add(Side::Right, 2, 1, 1);
  placement.repel(Side::Right, {1, 1}, 0.5, 0.0, 1.0f);
  expectPlace(robot, 1.5, 1);
}

TEST_F(PlacementTest, HeldRobotsAreLeftAlone) {
  const RobotHandle robot = world.add(Side::Right, 2, 1, 0);
  placement.hold(robot, true);
  placement.keepOutOfCircle(Side::Right, {0, 0}, 2.0, 1.0f);
  placement.keepInOwnHalf(Side::Right, 0, 1.0f);
  EXPECT_TRUE(world.moves.empty());
  placement.hold(robot, false);
  placement.keepOutOfCircle(Side::Right, {0, 0}, 2.0, 1.0f);
  EXPECT_EQ(world.moves.size(), 1u);
}

// As the league's server placed a player who was cleared from the circle while another stood near.
TEST_F(PlacementTest, PlayerMovedAlongThePitchIsShiftedAcross) {
  const RobotHandle robot = world.add(Side::Right, 3, 1.9, 1);
  world.add(Side::Right, 2, 2.5, 0.5);
  placement.put(world.view(robot), {2.5, 1, 0.38}, true, 1.0f);
  expectPlace(robot, 2.5, 1.4);
}

TEST_F(PlacementTest, PlayerMovedAcrossThePitchIsShiftedAlong) {
  world.setBallAt(-13.9, 6);
  const RobotHandle robot = world.add(Side::Left, 4, -13.9, 4.6);
  world.add(Side::Left, 3, -13.5, 3.5);
  placement.put(world.view(robot), {-13.9, 3.5, 0.38}, true, 1.0f);
  expectPlace(robot, -14.3, 3.5);
}

TEST_F(PlacementTest, OfTwoShiftsTheOneTowardsTheMiddleWins) {
  for (const double y : {5.0, -5.0}) {
    FakeWorld taken;
    Placement placing(taken);
    const RobotHandle robot = taken.add(Side::Left, 3, 3, y);
    taken.add(Side::Left, 2, -2.5, y);
    placing.put(taken.view(robot), {-2.5, y, 0.38}, true, 1.0f);
    EXPECT_NEAR(taken.place(robot).x(), -2.5, 1e-5);
    EXPECT_NEAR(taken.place(robot).y(), y * 0.84, 1e-5);
  }
}

TEST_F(PlacementTest, NobodyIsShiftedBackTowardsWhereHeStands) {
  const RobotHandle robot = world.add(Side::Left, 1, -14, 0);
  world.add(Side::Left, 2, -3.05, -10.5);
  placement.put(world.view(robot), {-3.6, -10.5, 0.38}, true, 1.0f);
  expectPlace(robot, -3.6, -10.9);
}

TEST_F(PlacementTest, NobodyIsShiftedAcrossAGoalLine) {
  world.setBallAt(-14.958, -5.483);
  const RobotHandle robot = world.add(Side::Left, 4, -14.5, -6.5);
  const RobotHandle other = world.add(Side::Left, 3, -14.3, -2.983);
  world.view(other).torso.rotate(Eigen::AngleAxisd(4e-5, Eigen::Vector3d::UnitX()));
  placement.put(world.view(robot), {-14.5, -2.983, 0.38}, true, 1.0f);
  expectPlace(robot, -13.3, -2.983);
}

// The league's server finds a place 0.4 m beside a robot that sleeps on its feet free, but not one
// as far before or behind it: its lean, hardly measurable, decides.
TEST_F(PlacementTest, LeanOfARobotDecidesAboutPlacesExactlyAtTheLimit) {
  const RobotHandle robot = world.add(Side::Left, 3, 3, 5);
  const RobotHandle other = world.add(Side::Left, 2, -2.5, 5.6);
  world.view(other).torso.rotate(Eigen::AngleAxisd(4e-5, Eigen::Vector3d::UnitX()));
  placement.put(world.view(robot), {-2.5, 5, 0.38}, true, 1.0f);
  expectPlace(robot, -2.5, 5);
  for (const double x : {-3.1, -1.9}) {
    world.put(robot, 3, 5);
    world.put(other, x, 5);
    placement.put(world.view(robot), {-2.5, 5, 0.38}, true, 1.0f);
    expectPlace(robot, -2.5, 4.6);
  }
}

TEST_F(PlacementTest, SafePlaceIsNotBehindTheGoal) {
  world.setBallAt(0, 0);
  const RobotHandle robot = world.add(Side::Left, 2, -14.9, 1.3);
  placement.put(world.view(robot), {-15.4, 1.3, 0.38}, true, 1.0f);
  // Beside the goal: half its width and the safety radius.
  const Eigen::Vector3d place = world.place(robot);
  EXPECT_TRUE(std::abs(place.x()) <= 15 || std::abs(place.y()) >= 1.45) << place.transpose();
  EXPECT_NEAR(std::remainder(place.x() + 15.4, 0.4), 0, 1e-5);
}

TEST_F(PlacementTest, SafePlaceKeepsAMetreFromTheBallUnlessRepelling) {
  world.setBallAt(0, 0);
  const RobotHandle robot = world.add(Side::Left, 2, -3, 0);
  placement.put(world.view(robot), {-0.9, 0, 0.38}, true, 1.0f);
  expectPlace(robot, -0.9, -0.8);
  world.put(robot, -3, 0);
  placement.put(world.view(robot), {-0.9, 0, 0.38}, false, 1.0f);
  expectPlace(robot, -0.9, 0);
}

TEST_F(PlacementTest, SafePlaceAvoidsAFullOwnPenaltyAreaWithItsMargin) {
  world.setBallAt(0, 0);
  for (int i = 0; i < 3; ++i) world.add(Side::Left, 2 + i, -14.5, -2.0 + 2 * i);
  const RobotHandle robot = world.add(Side::Left, 9, -10, 0);
  placement.put(world.view(robot), {-13.0, 0.5, 0.38}, true, 1.0f);
  EXPECT_GE(world.place(robot).x(), -12.8 - 1e-5);
  const RobotHandle other = world.add(Side::Right, 9, -10, 5);
  placement.put(world.view(other), {-13.3, 1.0, 0.38}, true, 1.0f);
  expectPlace(other, -13.3, 1.0);
}

TEST_F(PlacementTest, WithoutASafePlaceTheOriginalOneIsUsed) {
  world.setBallAt(10, 0);
  const RobotHandle robot = world.add(Side::Left, 2, 0, 3);
  const RobotHandle blocker = world.add(Side::Left, 3, 0, 3);
  world.addCollider(blocker, Body::Head, {0, 0, 0}, {9, 9, 9});
  placement.put(world.view(robot), {1, 3, 0.38}, true, 1.0f);
  expectPlace(robot, 1, 3);
}

TEST_F(PlacementTest, RobotOutOfAllBoundsIsPutLikeAnyOther) {
  const RobotHandle robot = world.add(Side::Left, 2, 0, 3);
  world.add(Side::Left, 3, -2.5, 3);
  for (const double where : {1e300, -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()}) {
    world.put(robot, where, 3);
    placement.put(world.view(robot), {-2.5, 3, 0.38}, true, 1.0f);
    EXPECT_LT((world.place(robot) - Eigen::Vector3d(-2.5, 3, 0.38)).norm(), 2.0) << where;
  }
}

TEST_F(PlacementTest, BesideThePitchEveryNumberHasItsPlaceAwayFromTheBall) {
  world.setBallAt(0, -1);
  EXPECT_TRUE(placement.besidePitch(Side::Left, 1, 0.4).isApprox(Eigen::Vector3d(-3.6, 10.5, 0.4)));
  EXPECT_TRUE(placement.besidePitch(Side::Left, 11, 0.4).isApprox(Eigen::Vector3d(2.4, 10.5, 0.4)));
  EXPECT_TRUE(placement.besidePitch(Side::Right, 2, 1.0).isApprox(Eigen::Vector3d(3, 10.5, 1.0)));
  world.setBallAt(0, 0);
  EXPECT_TRUE(placement.besidePitch(Side::Left, 7, 0.4).isApprox(Eigen::Vector3d(0, -10.5, 0.4)));
}

TEST_F(PlacementTest, RemembersWhoWasMovedWhen) {
  const RobotHandle robot = world.add(Side::Left, 2, 0, 3);
  EXPECT_EQ(placement.lastMove(robot), -std::numeric_limits<float>::infinity());
  placement.put(world.view(robot), {-2, 3, 0.38}, true, 12.5f);
  EXPECT_EQ(placement.lastMove(robot), 12.5f);
  placement.noteMove(robot, 13.0f);
  EXPECT_EQ(placement.lastMove(robot), 13.0f);
  world.removeRobot(robot);
  placement.forgetGone();
  EXPECT_EQ(placement.lastMove(robot), -std::numeric_limits<float>::infinity());
}

}  // namespace
}  // namespace arena
