#include "WorldModel/Self.h"

#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <string>

#include "WorldModelFixture.h"

namespace {

class SelfTest : public WorldModelFixture {
 protected:
  Self& self() { return *model->mySelf; }

  static Eigen::Matrix3d block(const Matrix<4, 4>& m) {
    Eigen::Matrix3d result;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) result(i, j) = m.get(i, j);
    }
    return result;
  }
  static Eigen::Matrix3d about(double degrees, const Eigen::Vector3d& axis) {
    return Eigen::AngleAxisd(degrees * 3.14159265358979323846 / 180, axis).toRotationMatrix();
  }
  static void expectRotation(const Matrix<4, 4>& actual, const Eigen::Matrix3d& expected,
                             double tolerance = 2e-6) {
    EXPECT_LT((block(actual) - expected).cwiseAbs().maxCoeff(), tolerance)
        << block(actual) << "\n\n"
        << expected;
  }

  const Eigen::Vector3d x = Eigen::Vector3d::UnitX();
  const Eigen::Vector3d y = Eigen::Vector3d::UnitY();
  const Eigen::Vector3d z = Eigen::Vector3d::UnitZ();
};

TEST_F(SelfTest, NamesItsJoints) {
  const char* sides[] = {"l", "r"};
  for (int side = 0; side < 2; ++side) {
    for (int no = 1; no <= 4; ++no) {
      EXPECT_EQ(self().getHandJoint(no, side)->getName(),
                sides[side] + ("ae" + std::to_string(no)));
    }
    for (int no = 1; no <= 7; ++no) {
      EXPECT_EQ(self().getLegJoint(no, side)->getName(), sides[side] + ("le" + std::to_string(no)));
    }
  }
  EXPECT_EQ(self().getHeadJoint(1)->getName(), "he1");
  EXPECT_EQ(self().getHeadJoint(2)->getName(), "he2");
}

TEST_F(SelfTest, StartsUprightFacingTheOpponent) {
  expectIdentity(self().getGyroRotation());
  expectIdentity(self().getVisionRotation());
  expectIdentity(self().getNeckRotation());
  expectIdentity(self().getBodyRotation());
  expectIdentity(self().getTorsoTurn());
  EXPECT_EQ(self().getHeadToNeck().get(2, 3), 0.065);
  EXPECT_EQ(self().getNeckToGyro().get(2, 3), 0.09);
  EXPECT_EQ(self().getAccellerator(), Vector(0, 0, 0));
}

TEST_F(SelfTest, TakesNumberAndRoleFromTheConfiguration) {
  sandbox.set("Agent", "AgentPost", "P", "0 1 2 3 4 -1 3 2 1 0 2");
  const Post expected[] = {ATTACK, HALF_BACK, DEFENCE,   GOALIE, ATTACK, ATTACK,
                           GOALIE, DEFENCE,   HALF_BACK, ATTACK, DEFENCE};
  for (int number = 1; number <= 11; ++number) {
    sandbox.set("Agent", "Public", "UniformNumber", std::to_string(number));
    const Self one;
    EXPECT_EQ(one.getAgentPost(), expected[number - 1]) << number;
    EXPECT_EQ(one.getAgentNum(), number);
    EXPECT_EQ(one.getPlayerPost(), number);
    EXPECT_EQ(one.getPlayerNumber(), 0);  // the server's word for it
  }
}

TEST_F(SelfTest, ANumberWithoutARoleIsRefused) {
  for (const char* number : {"0", "12", "-1"}) {
    sandbox.set("Agent", "Public", "UniformNumber", number);
    EXPECT_DEATH(Self(), "playerNumber <= posts.size\\(\\)") << number;
  }
}

TEST_F(SelfTest, CalculatePostHasADefaultOfItsOwn) {
  EXPECT_EQ(self().calculatePost(0), ATTACK);
  EXPECT_EQ(self().calculatePost(1), HALF_BACK);
  EXPECT_EQ(self().calculatePost(2), DEFENCE);
  EXPECT_EQ(self().calculatePost(3), GOALIE);
  EXPECT_EQ(self().calculatePost(4), DEFENCE);
  EXPECT_EQ(self().calculatePost(-1), DEFENCE);
}

TEST_F(SelfTest, SettersIgnoreJointsThatDoNotExist) {
  self().setHandJoint(0, 0, 5);
  self().setHandJoint(5, 1, 5);
  self().setHandJoint(1, 2, 5);
  self().setLegJoint(8, 0, 5);
  self().setLegJoint(-2147483647 - 1, 1, 5);
  self().setHeadJoint(3, 5);
  for (int side = 0; side < 2; ++side) {
    for (int no = 1; no <= 4; ++no) EXPECT_EQ(self().getHandJoint(no, side)->getAngle(), 0.0f);
    for (int no = 1; no <= 7; ++no) EXPECT_EQ(self().getLegJoint(no, side)->getAngle(), 0.0f);
  }
  EXPECT_DEATH(self().getHandJoint(5, 0), "isJoint");
  EXPECT_DEATH(self().getLegJoint(0, 0), "isJoint");
  EXPECT_DEATH(self().getHeadJoint(3), "isJoint");
}

TEST_F(SelfTest, TheGyrosAxesAreMappedToTheTorsos) {
  // Sensor x is right: nose up turns about torso -y. Sensor y is front: torso x. z is z.
  self().setGyrVector(Vector(10, 0, 0));
  self().calculateGyroRotation();
  expectRotation(self().getGyroRotation(), about(-10, y));
  self().reset();
  self().setGyrVector(Vector(0, 10, 0));
  self().calculateGyroRotation();
  expectRotation(self().getGyroRotation(), about(10, x));
  self().reset();
  self().setGyrVector(Vector(0, 0, 10));
  self().calculateGyroRotation();
  expectRotation(self().getGyroRotation(), about(10, z));
}

TEST_F(SelfTest, ACycleTurnsAboutXThenYThenZOnTheRight) {
  const Eigen::Matrix3d start = about(20, z) * about(-35, y);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) self().gyro(i, j) = start(i, j);
  }
  self().setGyrVector(Vector(3, -4, 5));
  EXPECT_TRUE(self().calculateGyroRotation());
  expectRotation(self().getGyroRotation(), start * about(-4, x) * about(-3, y) * about(5, z));
  EXPECT_EQ(self().gyrAngle, Vector(-4, -3, 5));
  self().calculateGyroRotation();
  EXPECT_EQ(self().gyrAngle, Vector(-8, -6, 10));
}

TEST_F(SelfTest, TheGyroIntegralIsGoodToSinglePrecisionOnly) {
  self().setGyrVector(Vector(0, 0, 10));
  self().calculateGyroRotation();
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const double element = self().getGyroRotation().get(i, j);
      EXPECT_EQ(element, static_cast<float>(element));
    }
  }
}

TEST_F(SelfTest, AFullTurnInSmallStepsComesBack) {
  self().setGyrVector(Vector(0, 0, 1));
  for (int cycle = 0; cycle < 360; ++cycle) self().calculateGyroRotation();
  expectRotation(self().getGyroRotation(), Eigen::Matrix3d::Identity(), 5e-5);
}

TEST_F(SelfTest, TheNeckPansAndThenTilts) {
  self().setHeadJoint(1, 30);
  self().setHeadJoint(2, -20);
  EXPECT_TRUE(self().calculateNeckRotation());
  expectRotation(self().getNeckRotation(), about(30, z) * about(20, y));
  // Looking down by 20 degrees: straight ahead of the camera is ahead, left and below.
  const Vector ahead = self().getNeckRotation() * Vector(1, 0, 0);
  EXPECT_GT(ahead.x, 0);
  EXPECT_GT(ahead.y, 0);
  EXPECT_LT(ahead.z, 0);
}

TEST_F(SelfTest, PreProcDoesBoth) {
  self().setGyrVector(Vector(0, 0, 10));
  self().setHeadJoint(1, 30);
  self().preProc();
  expectRotation(self().getGyroRotation(), about(10, z));
  expectRotation(self().getNeckRotation(), about(30, z));
}

TEST_F(SelfTest, WithoutLinesTheBodyOrientationStays) {
  self().setGyrVector(Vector(0, 0, 10));
  self().calculateGyroRotation();
  std::vector<FieldLine> none;
  EXPECT_FALSE(self().calculateBodyRotation(none));
  expectIdentity(self().getBodyRotation());
}

TEST_F(SelfTest, WithALineTheBodyOrientationFollowsTheGyro) {
  self().setGyrVector(Vector(0, 0, 10));
  self().calculateGyroRotation();
  std::vector<FieldLine> lines(1);
  lines[0].SecondPoint.setRelativePosition(Vector(0, 3, 0));
  EXPECT_FALSE(self().calculateBodyRotation(lines));
  expectRotation(self().getBodyRotation(), about(10, z));
  EXPECT_EQ(lines[0].lineSlope, LINE_VERTICAL);  // classified on the way
  // A copy of the elements: the body stays when the gyro goes on.
  self().calculateGyroRotation();
  expectRotation(self().getBodyRotation(), about(10, z));
}

TEST_F(SelfTest, SettersOfRotationsCopyTheElements) {
  Matrix<4, 4> rotation;
  rotation.rotationByZ(90);
  self().setGyroRotation(rotation);
  self().setBodyRotation(rotation);
  self().setNeckRotation(rotation);
  rotation(0, 1) = 77;
  EXPECT_NE(self().getGyroRotation().get(0, 1), 77);
  EXPECT_NE(self().getBodyRotation().get(0, 1), 77);
  EXPECT_NE(self().getNeckRotation().get(0, 1), 77);
}

TEST_F(SelfTest, ResetTouchesGyroAndVisionAlone) {
  Matrix<4, 4> rotation;
  rotation.rotationByZ(90);
  self().setGyroRotation(rotation);
  self().setVisionRotation(rotation);
  self().setBodyRotation(rotation);
  self().setNeckRotation(rotation);
  self().reset();
  expectIdentity(self().getGyroRotation());
  expectIdentity(self().getVisionRotation());
  EXPECT_EQ(self().getBodyRotation().get(0, 1), -1);
  EXPECT_EQ(self().getNeckRotation().get(0, 1), -1);
}

TEST_F(SelfTest, LocatesItselfByOneLandmark) {
  Matrix<4, 4> quarterTurn;
  quarterTurn.rotationByZ(90);
  self().setBodyRotation(quarterTurn);
  expectNear(self().localize(Vector(2, 0, 0), Vector(15, 10, 0)), 15, 8, 0);
}

TEST_F(SelfTest, TheStartHeadingMustBeThereAndReadable) {
  sandbox.set("Formation", "Beam", "p9", "-2 3 ahead");
  EXPECT_DEATH(self().calculateGyroRotation(), "end != value.c_str\\(\\)");
  sandbox.set("Formation", "Beam", "p9", "-2 3");
  EXPECT_DEATH(self().calculateGyroRotation(), "start.size\\(\\) > 2");
  // It plays no part in the orientation.
  sandbox.set("Formation", "Beam", "p9", "-2 3 90");
  self().calculateGyroRotation();
  expectIdentity(self().getGyroRotation());
}

}  // namespace
