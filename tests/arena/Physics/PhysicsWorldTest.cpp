// Values that an independent simulation of the league's robot, ball and pitch gives.

#include "Physics/PhysicsWorld.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "Common/Pitch.h"
#include "Physics/Surface.h"

namespace arena {
namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
constexpr int kRobot = 7;

class PhysicsWorldTest : public testing::Test {
 protected:
  RobotBody& stand(int type, double z) {
    RobotBody& robot = world.addRobot(kRobot, type);
    robot.placeUpright({0.0, -3.0, z}, 0.0);
    return robot;
  }
  void step(int count = 1) {
    for (int i = 0; i < count; ++i) {
      world.sampleAccelerometers();
      world.step();
    }
  }
  static int joint(const RobotBody& robot, const char* effector) {
    return robot.model().jointByEffector(effector);
  }
  double degrees(const RobotBody& robot, const char* effector) {
    return robot.jointAngle(joint(robot, effector)) / kRadiansPerDegree;
  }

  PhysicsWorld world;
};

// ----------------------------------------------------------------------------------------- robot

TEST_F(PhysicsWorldTest, SettlesABeamedRobotOfTypeZeroStepByStep) {
  const RobotBody& robot = stand(0, 0.4);
  for (double z : {0.3961, 0.3882, 0.3765, 0.3793, 0.3812, 0.3823, 0.3829, 0.3833}) {
    step();
    EXPECT_NEAR(robot.torsoPose().translation().z(), z, 6e-5);
  }
  step(60);
  EXPECT_NEAR(robot.torsoPose().translation().z(), 0.3839, 6e-5);
}

TEST_F(PhysicsWorldTest, PushesRobotsWithLongLegsOutOfTheGround) {
  const RobotBody& robot = stand(1, 0.4);
  for (double z : {0.4082, 0.4131, 0.4161, 0.4179, 0.4190}) {
    step();
    EXPECT_NEAR(robot.torsoPose().translation().z(), z, 6e-5);
  }
  step(60);
  EXPECT_NEAR(robot.torsoPose().translation().z(), 0.4205, 6e-5);
}

TEST_F(PhysicsWorldTest, PushesRobotsWithTheLongestLegsOutOfTheGround) {
  const RobotBody& robot = stand(3, 0.4);
  for (double z : {0.4157, 0.4276, 0.4355, 0.4394, 0.4395}) {
    step();
    EXPECT_NEAR(robot.torsoPose().translation().z(), z, 6e-5);
  }
  step(60);
  EXPECT_NEAR(robot.torsoPose().translation().z(), 0.4396, 6e-5);
}

TEST_F(PhysicsWorldTest, LetsEveryTypeStandInTheZeroPose) {
  for (int type = 0; type < kRobotTypeCount; ++type) {
    PhysicsWorld own;
    RobotBody& robot = own.addRobot(kRobot, type);
    robot.placeUpright({0.0, -3.0, 0.44}, 0.0);
    for (int i = 0; i < 200; ++i) own.step();
    EXPECT_GT(robot.torsoPose().linear()(2, 2), 0.9999) << type;
    EXPECT_TRUE(robot.asleep()) << type;
  }
}

TEST_F(PhysicsWorldTest, FeelsTheWeightUnderTheFeet) {
  RobotBody& robot = stand(0, 0.4);
  step(10);
  for (Body body : {Body::RightFoot, Body::LeftFoot}) {
    const FootForce& foot = robot.footForce(robot.model().indexOf(body));
    ASSERT_TRUE(foot.contact);
    EXPECT_NEAR(foot.force.z(), 22.1, 0.06);
    EXPECT_NEAR(foot.point.y(), -0.0087, 6e-5);
    EXPECT_NEAR(foot.point.z(), -0.01, 2e-4);
  }
}

TEST_F(PhysicsWorldTest, SquatsWithTheControllerOfTheReference) {
  RobotBody& robot = stand(0, 0.4);
  step(10);
  const Eigen::Vector3d start = robot.torsoPose().translation();
  struct Target {
    const char* effector;
    double factor;  // of the squat; 0: the arms, which hang down
  };
  constexpr std::array<Target, 8> targets{{{"rle3", 1.0},
                                           {"lle3", 1.0},
                                           {"rle4", -2.0},
                                           {"lle4", -2.0},
                                           {"rle5", 1.0},
                                           {"lle5", 1.0},
                                           {"rae1", 0.0},
                                           {"lae1", 0.0}}};
  const std::array<double, 5> heights{0.3816, 0.3670, 0.3640, 0.3798, 0.3840};
  const std::array<double, 5> knees{-14.56, -42.98, -46.55, -20.34, -0.57};
  const std::array<double, 5> shifts{-0.0023, -0.0070, -0.0075, -0.0035, -0.0001};
  for (int i = 0; i < 50; ++i) {
    const double squat =
        12.5 * (1.0 - std::cos(2.0 * std::numbers::pi * (i + 1) * 0.02)) * kRadiansPerDegree;
    for (const Target& target : targets) {
      const int j = joint(robot, target.effector);
      const double wanted =
          target.factor == 0.0 ? -90.0 * kRadiansPerDegree : target.factor * squat;
      robot.setJointSpeed(j, 0.5 * (wanted - robot.jointAngle(j)) / 0.02);
    }
    step();
    if ((i + 1) % 10 != 0) continue;
    const int k = (i + 1) / 10 - 1;
    EXPECT_NEAR(robot.torsoPose().translation().z(), heights[k], 3e-4) << k;
    EXPECT_NEAR(degrees(robot, "rle4"), knees[k], 0.35) << k;
    EXPECT_NEAR(robot.torsoPose().translation().y() - start.y(), shifts[k], 4e-4) << k;
  }
}

TEST_F(PhysicsWorldTest, LagsWhenTheTorqueIsNotEnough) {
  RobotBody& robot = stand(0, 0.4);
  step(60);
  robot.setJointSpeed(joint(robot, "rle3"), 6.0);
  for (double angle : {0.76, 1.80, 3.25, 4.95, 7.19, 9.80}) {
    step();
    EXPECT_NEAR(degrees(robot, "rle3"), angle, 0.02);
  }
  step();
  EXPECT_NEAR(degrees(robot, "rle3"), 12.8, 0.06);
}

TEST_F(PhysicsWorldTest, MovesAnUnloadedJointWithTheAskedSpeedAtOnce) {
  RobotBody& robot = world.addRobot(kRobot, 0);
  robot.setJointSpeed(joint(robot, "he1"), 100.0);
  step();
  EXPECT_NEAR(degrees(robot, "he1"), 7.0354, 1e-2);
  robot.setJointSpeed(joint(robot, "he1"), 0.0);
  step();
  EXPECT_NEAR(degrees(robot, "he1"), 7.0354, 1e-2);
}

TEST_F(PhysicsWorldTest, KeepsASpeedUntilTheNextCommand) {
  RobotBody& robot = world.addRobot(kRobot, 0);
  robot.setJointSpeed(joint(robot, "he1"), 1.0);
  step(10);
  EXPECT_NEAR(robot.jointAngle(joint(robot, "he1")), 0.2, 1e-4);
}

TEST_F(PhysicsWorldTest, BouncesAJointThatIsHeldAgainstItsStop) {
  struct Case {
    const char* effector;
    double speed;
    double past;
    double before;
  };
  for (const Case& c : {Case{"he2", 6.14, 49.19, 42.16}, Case{"he2", 2.0, 45.83, 43.54},
                        Case{"rle4", 1.0, 1.146, 0.0}}) {
    PhysicsWorld own;
    RobotBody& robot = own.addRobot(kRobot, 0);
    own.setBallPosition({10.0, 5.0, kBallRadius});
    robot.placeUpright({0.0, -3.0, 40.0}, 0.0);
    const int j = joint(robot, c.effector);
    const double high = robot.model().joints[j].high;
    while (robot.jointAngle(j) < high) {
      robot.setJointSpeed(j, c.speed);
      own.step();
    }
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(robot.jointAngle(j) / kRadiansPerDegree, c.past, 0.03) << c.effector;
      robot.setJointSpeed(j, c.speed);
      own.step();
      EXPECT_NEAR(robot.jointAngle(j) / kRadiansPerDegree, c.before, 0.03) << c.effector;
      robot.setJointSpeed(j, c.speed);
      own.step();
    }
  }
}

TEST_F(PhysicsWorldTest, LosesACommandThatComesWhileTheJointIsPastItsStop) {
  RobotBody& robot = world.addRobot(kRobot, 0);
  const int knee = joint(robot, "rle4");
  robot.setJointSpeed(knee, 0.9);
  step();
  EXPECT_NEAR(degrees(robot, "rle4"), 1.03, 0.01);
  robot.setJointSpeed(knee, -2.0);  // lost: the knee turns round by the bounce alone
  step();
  EXPECT_NEAR(degrees(robot, "rle4"), 0.0, 0.01);
  robot.setJointSpeed(knee, -2.0);
  step();
  EXPECT_NEAR(degrees(robot, "rle4"), -2.29, 0.02);
}

TEST_F(PhysicsWorldTest, ReplacesCommandsToAFrozenLimbByZero) {
  RobotBody& robot = world.addRobot(kRobot, 0);
  const int elbow = joint(robot, "rae4");
  robot.setJointSpeed(elbow, 2.0);
  step();
  robot.setFrozen(Limb::RightArm, true);
  step();  // without a command the old speed holds
  EXPECT_NEAR(robot.jointAngle(elbow), 0.08, 1e-4);
  robot.setJointSpeed(elbow, 2.0);
  robot.setJointSpeed(joint(robot, "lae4"), -2.0);
  step();
  EXPECT_NEAR(robot.jointAngle(elbow), 0.08, 1e-4);
  EXPECT_NEAR(robot.jointAngle(joint(robot, "lae4")), -0.04, 1e-4);
  robot.setFrozen(Limb::RightArm, false);
  robot.setJointSpeed(elbow, 2.0);
  step();
  EXPECT_NEAR(robot.jointAngle(elbow), 0.12, 1e-4);
}

TEST_F(PhysicsWorldTest, TakesNotANumberForZeroAndInfinityForTheMaximum) {
  RobotBody& robot = world.addRobot(kRobot, 0);
  const int head = joint(robot, "he1");
  robot.setJointSpeed(head, std::nan(""));
  step();
  EXPECT_NEAR(robot.jointAngle(head), 0.0, 1e-6);
  robot.setJointSpeed(head, -std::numeric_limits<double>::infinity());
  step();
  EXPECT_NEAR(robot.jointAngle(head) / kRadiansPerDegree, -7.0354, 1e-2);
}

struct Turn {
  const char* effector;
  double sign;
  const char* foot;
  std::array<double, 3> moved;
};

class PhysicsWorldSignTest : public testing::TestWithParam<Turn> {};

// The tabled point lies 5 cm before the middle of the foot.
TEST_P(PhysicsWorldSignTest, MovesTheFootAsTabled) {
  PhysicsWorld world;
  RobotBody& robot = world.addRobot(kRobot, 0);
  const int foot =
      robot.model().indexOf(GetParam().foot[0] == 'r' ? Body::RightFoot : Body::LeftFoot);
  const auto place = [&]() -> Eigen::Vector3d {
    return robot.torsoPose().inverse() * robot.pose(foot) * Eigen::Vector3d(0.0, 0.05, 0.0);
  };
  const Eigen::Vector3d before = place();
  robot.setJointSpeed(robot.model().jointByEffector(GetParam().effector), GetParam().sign);
  for (int i = 0; i < 15; ++i) world.step();  // 0.3 rad, in free fall
  const Eigen::Vector3d moved = place() - before;
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(moved[i], GetParam().moved[i], 6e-4) << i;
}

INSTANTIATE_TEST_SUITE_P(Legs, PhysicsWorldSignTest,
                         testing::Values(Turn{"rle3", 1.0, "r", {0.0, 0.073, 0.036}},
                                         Turn{"rle4", -1.0, "r", {0.0, -0.045, -0.018}},
                                         Turn{"rle1", -1.0, "r", {0.023, 0.051, 0.023}},
                                         Turn{"lle1", -1.0, "l", {-0.023, 0.051, 0.023}},
                                         Turn{"rle2", 1.0, "r", {-0.077, 0.0, 0.011}}));

TEST_F(PhysicsWorldTest, PutsARobotToSleepAThirdOfASecondAfterABeam) {
  RobotBody& robot = stand(0, 0.4);
  int steps = 0;
  while (!robot.asleep() && steps < 100) {
    step();
    ++steps;
  }
  EXPECT_GE(steps, 15);
  EXPECT_LE(steps, 21);
  step();
  EXPECT_EQ(robot.gyro().norm(), 0.0);
  // The feet repeat their last reading.
  const FootForce& foot = robot.footForce(robot.model().indexOf(Body::LeftFoot));
  EXPECT_TRUE(foot.contact);
  EXPECT_NEAR(foot.force.z(), 22.6, 0.1);
}

TEST_F(PhysicsWorldTest, LeavesAMovedSleeperHangingUntilAJointMoves) {
  RobotBody& robot = stand(0, 0.4);
  step(60);
  ASSERT_TRUE(robot.asleep());
  robot.moveTo({0.0, -3.0, 1.0});
  step(20);
  EXPECT_DOUBLE_EQ(robot.torsoPose().translation().z(), 1.0);
  EXPECT_FALSE(robot.footForce(robot.model().indexOf(Body::LeftFoot)).contact);
  robot.setJointSpeed(joint(robot, "he1"), 0.0);
  step(5);
  EXPECT_DOUBLE_EQ(robot.torsoPose().translation().z(), 1.0);
  robot.setJointSpeed(joint(robot, "he1"), 0.5);
  step(5);
  EXPECT_LT(robot.torsoPose().translation().z(), 0.99);
}

TEST_F(PhysicsWorldTest, ReadsTheAccelerometerOneStepLate) {
  RobotBody& robot = world.addRobot(kRobot, 0);
  step(3);
  EXPECT_NEAR(robot.accelerometer().z(), 0.0, 0.05);  // free fall
  robot.placeUpright({0.0, -3.0, 0.4}, 0.0);
  step();
  // The speed of two steps of falling, as sampled last, was undone at once.
  EXPECT_NEAR(robot.accelerometer().z(), 9.81 + 2 * 9.81, 0.1);
}

TEST_F(PhysicsWorldTest, KeepsTheJointsOfARobotThatIsPlacedUpright) {
  RobotBody& robot = world.addRobot(kRobot, 0);
  robot.setJointSpeed(joint(robot, "rle4"), -3.0);
  step(10);
  const double knee = robot.jointAngle(joint(robot, "rle4"));
  robot.placeUpright({2.0, 1.0, 0.4}, 30.0 * kRadiansPerDegree);
  EXPECT_NEAR(robot.jointAngle(joint(robot, "rle4")), knee, 1e-6);
  EXPECT_EQ(robot.torsoVelocity().norm(), 0.0);
  const Eigen::Isometry3d pose = robot.torsoPose();
  EXPECT_NEAR((pose.translation() - Eigen::Vector3d(2.0, 1.0, 0.4)).norm(), 0.0, 1e-6);
  // Facing (-sin, cos) of the yaw.
  EXPECT_NEAR(pose.linear()(0, 1), -0.5, 1e-6);
  EXPECT_NEAR(pose.linear()(2, 2), 1.0, 1e-6);
}

TEST_F(PhysicsWorldTest, RenewsARobotInItsState) {
  RobotBody& old = world.addRobot(kRobot, 4);
  world.addRobot(kRobot + 1, 0).placeUpright({5.0, 5.0, 0.4}, 0.0);
  old.setJointSpeed(joint(old, "rle3"), 2.0);
  step(5);
  const Eigen::Isometry3d pose = old.torsoPose();
  const double angle = old.jointAngle(joint(old, "rle3"));
  RobotBody& renewed = world.renewRobot(kRobot);
  EXPECT_EQ(world.robots().back().get(), &renewed);
  EXPECT_TRUE(renewed.torsoPose().isApprox(pose, 1e-12));
  EXPECT_NEAR(renewed.jointAngle(joint(renewed, "rle3")), angle, 1e-9);
  step();
  EXPECT_NEAR(renewed.jointAngle(joint(renewed, "rle3")), angle + 0.04, 1e-3);
}

// ------------------------------------------------------------------------------------ two robots

TEST_F(PhysicsWorldTest, LetsNewcomersPassThroughEachOther) {
  world.addRobot(1, 0).setNewcomer(true);
  world.addRobot(2, 3).setNewcomer(true);
  step(5);
  EXPECT_TRUE(world.robotContacts().empty());
  world.robot(2)->setNewcomer(false);
  step();
  EXPECT_FALSE(world.robotContacts().empty());
}

TEST_F(PhysicsWorldTest, ReportsContactsBetweenRobotsAndTheirBodies) {
  world.addRobot(1, 0).placeUpright({0.0, 0.0, 0.39}, 0.0);
  world.addRobot(2, 0).placeUpright({0.19, 0.0, 0.39}, 0.0);
  step();
  ASSERT_FALSE(world.robotContacts().empty());
  for (const RobotContact& contact : world.robotContacts()) {
    EXPECT_NE(contact.first, contact.second);
    EXPECT_NEAR(contact.point.x(), 0.095, 0.1);
  }
  world.removeRobot(1);
  EXPECT_TRUE(world.robotContacts().empty());
  EXPECT_EQ(world.robot(1), nullptr);
}

TEST_F(PhysicsWorldTest, BuildsARobotAnewWhoseNumbersRanAway) {
  world.addRobot(1, 0).placeUpright({1e9, 0.0, 0.4}, 0.0);
  world.addRobot(2, 3).placeUpright({2.0, 0.0, 0.4}, 0.0);
  world.setBallVelocity({1e12, 0.0, 0.0});
  step(2);
  ASSERT_NE(world.robot(1), nullptr);
  EXPECT_LT(world.robot(1)->torsoPose().translation().norm(), 10.0);
  EXPECT_EQ(world.robots().front()->handle(), 1);
  EXPECT_NEAR(world.robot(2)->torsoPose().translation().x(), 2.0, 0.01);
  EXPECT_LT(world.ballPosition().norm(), 1.0);
}

// ------------------------------------------------------------------------------------------ ball

TEST_F(PhysicsWorldTest, RestsTheBallALittleInTheGround) {
  step(100);
  EXPECT_NEAR(world.ballPosition().z(), 0.0403, 5e-5);
}

TEST_F(PhysicsWorldTest, RollsTheBallInProportionToItsSpeed) {
  for (const auto& [speed, path] : {std::pair(1.0, 0.677), std::pair(2.0, 1.354),
                                    std::pair(4.0, 2.708), std::pair(8.0, 5.416)}) {
    PhysicsWorld own;
    for (int i = 0; i < 100; ++i) own.step();
    own.setBallVelocity({speed, 0.0, 0.0});
    for (int i = 0; i < 1000; ++i) own.step();
    EXPECT_NEAR(own.ballPosition().x(), path, 0.01 * path) << speed;
  }
}

TEST_F(PhysicsWorldTest, SlowsASlidingBallAsTabled) {
  step(100);
  world.setBallVelocity({4.0, 0.0, 0.0});
  struct Point {
    int step;
    double x;
    double v;
  };
  int done = 0;
  for (const Point& p :
       {Point{1, 0.059, 2.950}, Point{5, 0.275, 2.612}, Point{25, 1.117, 1.708},
        Point{50, 1.773, 1.004}, Point{100, 2.385, 0.347}, Point{200, 2.670, 0.042}}) {
    step(p.step - done);
    done = p.step;
    EXPECT_NEAR(world.ballPosition().x(), p.x, 0.002 + 0.003 * p.x) << p.step;
    EXPECT_NEAR(world.ballVelocity().x(), p.v, 0.002 + 0.003 * p.v) << p.step;
  }
}

// Highest points of the ball's centre after each bounce.
std::vector<double> peaks(double from, std::size_t count) {
  PhysicsWorld world;
  world.setBallPosition({0.0, 0.0, from});
  world.setBallVelocity(Eigen::Vector3d::Zero());
  std::vector<double> result;
  double last = from;
  bool rising = false;
  for (int i = 0; i < 500 && result.size() < count; ++i) {
    world.step();
    const double z = world.ballPosition().z();
    if (rising && z < last) result.push_back(last);
    rising = z > last;
    last = z;
  }
  return result;
}

TEST_F(PhysicsWorldTest, BouncesTheBallAsTabled) {
  const std::vector<std::pair<double, std::vector<double>>> cases{
      {0.5, {0.207, 0.112, 0.067}},
      {1.0, {0.390, 0.188, 0.102, 0.067}},
      {2.0, {0.728, 0.297, 0.153, 0.081}}};
  for (const auto& [from, expected] : cases) {
    const std::vector<double> reached = peaks(from, expected.size());
    ASSERT_EQ(reached.size(), expected.size()) << from;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(reached[i], expected[i], 0.002) << from << " m, bounce " << i;
    }
  }
}

TEST_F(PhysicsWorldTest, ThrowsTheBallAsTabled) {
  struct Throw {
    double speed;
    double angle;
    double landing;
    double seconds;
    double peak;
    double rest;
  };
  for (const Throw& t :
       {Throw{10, 45, 7.28, 1.32, 2.18, 11.5}, Throw{10, 30, 6.92, 0.96, 1.17, 12.3},
        Throw{6, 45, 2.97, 0.82, 0.88, 5.65}}) {
    PhysicsWorld own;
    own.setBallPosition({0.0, 0.0, 0.1});
    own.setBallVelocity({t.speed * std::cos(t.angle * kRadiansPerDegree), 0.0,
                         t.speed * std::sin(t.angle * kRadiansPerDegree)});
    double peak = 0.0;
    double time = 0.0;
    while (own.ballPosition().z() > kBallRadius) {
      own.step();
      time += 0.02;
      peak = std::max(peak, own.ballPosition().z());
    }
    EXPECT_NEAR(own.ballPosition().x(), t.landing, 0.16) << t.speed << ' ' << t.angle;
    EXPECT_NEAR(time, t.seconds, 0.021) << t.speed << ' ' << t.angle;
    EXPECT_NEAR(peak, t.peak, 0.01) << t.speed << ' ' << t.angle;
    for (int i = 0; i < 1500; ++i) own.step();
    EXPECT_NEAR(own.ballPosition().x(), t.rest, 0.012 * t.rest) << t.speed << ' ' << t.angle;
  }
}

TEST_F(PhysicsWorldTest, LosesSpeedInTheAirByDrag) {
  world.setBallPosition({0.0, 0.0, 50.0});
  world.setBallVelocity({10.0, 0.0, 0.0});
  step(50);
  EXPECT_NEAR(world.ballVelocity().x(), 10.0 * std::exp(-0.385), 0.02);
}

TEST_F(PhysicsWorldTest, RegistersTheBallInEitherGoal) {
  for (const Side side : kBothSides) {
    PhysicsWorld own;
    const double sign = side == Side::Left ? -1.0 : 1.0;
    own.setBallPosition({sign * 14.99, 0.3, kBallRadius});
    own.step();
    EXPECT_FALSE(own.goalSensorHit(side));
    own.setBallPosition({sign * 15.01, 0.3, kBallRadius});
    own.step();
    EXPECT_TRUE(own.goalSensorHit(side));
    EXPECT_FALSE(own.goalSensorHit(opponent(side)));
  }
}

TEST_F(PhysicsWorldTest, StopsTheBallAtTheBackOfTheGoal) {
  world.setBallPosition({15.2, 0.0, kBallRadius});
  world.setBallVelocity({6.0, 0.0, 0.0});
  step(100);
  EXPECT_LT(world.ballPosition().x(), 15.56);
}

TEST_F(PhysicsWorldTest, StopsTheBallAtTheOuterWalls) {
  world.setBallPosition({24.0, 5.0, kBallRadius});
  world.setBallVelocity({6.0, 0.0, 0.0});
  step(300);
  EXPECT_LT(world.ballPosition().x(), 24.49);
}

TEST_F(PhysicsWorldTest, DoesNotLetTheBallBeFeltByAFoot) {
  RobotBody& robot = stand(0, 0.385);
  step(60);
  ASSERT_TRUE(robot.asleep());
  robot.moveTo({0.0, -3.0, 1.0});  // hangs asleep, nothing under its feet
  step();
  const int foot = robot.model().indexOf(Body::RightFoot);
  world.setBallPosition(robot.pose(foot).translation() + Eigen::Vector3d(0.0, 0.12, 0.0));
  world.setBallVelocity({0.0, -4.0, 0.0});
  bool touched = false;
  for (int i = 0; i < 5; ++i) {
    step();
    touched = touched || !world.ballContacts().empty();
    EXPECT_FALSE(robot.footForce(foot).contact);
  }
  EXPECT_TRUE(touched);
}

}  // namespace
}  // namespace arena
