#include "Kinematics/InverseKinematic.h"

#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "Kinematics/BodyModel.h"
#include "Kinematics/Draws.h"
#include "Kinematics/ForwardKinematic.h"
#include "Kinematics/NAOKinematics.h"
#include "Kinematics/RobotType.h"

namespace {

using body::kX;
using body::kY;
using body::turn;
using Eigen::Vector3d;
using Theta = std::array<double, 8>;

constexpr int kCases = 10000;
constexpr double kPi = 3.141592653589793;
constexpr double kCoarsePi = 3.1415;
constexpr double kUntouched = 12345;
Theta untouched() {
  Theta theta;
  theta.fill(kUntouched);
  return theta;
}

Theta legSolver(Vector torso, Vector ankle) {
  Theta theta = untouched();
  InverseKinematic().legSolver(torso, ankle, theta.data());
  EXPECT_EQ(theta[7], kUntouched);
  return theta;
}

Theta legSolverWith1(Vector torso, Vector ankle, bool side, double eng1) {
  Theta theta = untouched();
  InverseKinematic().legSolverWith1(torso, ankle, theta.data(), side, eng1);
  EXPECT_EQ(theta[7], kUntouched);
  return theta;
}

// The closed forms once more, in double precision throughout, with the hip as one turn about its
// axis instead of a chain of matrices, and the foot's orientation from the joints.

struct Model {
  Vector3d roll, pitch;  // hip joints
  double upper, lower;   // leg
};

Model model(int type) {
  if (type == 1) {
    return {{-10, 55, -115}, {-10, 55, -133.32}, std::hypot(5, 101.68), 118.32};
  }
  if (type == 3) {
    return {{-10, 72.95413970947266, -115},
            {-10, 72.95413970947266, -142.86842346191406},
            std::hypot(5, 92.13157653808594),
            127.86842346191406};
  }
  return {{-10, 55, -115}, {-10, 55, -115}, std::hypot(5, 120), 100};
}

struct Expected {
  Theta theta;
  double kneeCosine;  // beyond -1 or 1: out of reach
  double hipHeight;   // of the roll joint above the ankle
};

Expected expected(int type, Vector torso, Vector ankle, const Eigen::Matrix3d& intoLeg) {
  const Vector3d t(torso.x, torso.y, torso.z);
  const Vector3d a = intoLeg * (Vector3d(ankle.x, ankle.y, ankle.z) + Vector3d(-5, 55, -335));
  const Model m = model(type);
  const Vector3d roll = intoLeg * (t + m.roll) - a;
  const Vector3d pitch = intoLeg * (t + m.pitch) - a;
  const double d = pitch.norm();

  Expected e = {untouched(),
                (m.lower * m.lower + m.upper * m.upper - d * d) / (2 * m.lower * m.upper),
                roll.z()};
  const double degrees = 180 / kCoarsePi;
  const double hipRoll = -std::atan(roll.y() / roll.z());
  const double knee = std::acos(e.kneeCosine) - kCoarsePi;
  const double hip =
      std::acos((d * d + m.upper * m.upper - m.lower * m.lower) / (2 * d * m.upper)) -
      std::asin(pitch.x() / d);
  e.theta[0] = 0;
  e.theta[1] = 0;
  e.theta[2] = hipRoll * degrees;
  e.theta[3] = hip * degrees + 0.217967;
  e.theta[4] = knee * degrees - 0.476474;
  e.theta[5] = -(knee + hip) * degrees + 0.258508;
  e.theta[6] = -hipRoll * degrees;
  return e;
}

Expected expectedLegSolver(int type, Vector torso, Vector ankle) {
  return expected(type, torso, ankle, Eigen::Matrix3d::Identity());
}

Expected expectedLegSolverWith1(int type, Vector torso, Vector ankle, bool side, double eng1) {
  const double radian = kPi / 180;
  const Eigen::Matrix3d hip = turn(eng1 * radian, {0, 1, side ? 1.0 : -1.0}).linear();
  Expected e = expected(type, torso, ankle, hip.transpose());
  e.theta[1] = eng1;
  // The torso as the foot sees it.
  const Eigen::Matrix3d foot = hip * turn(e.theta[2] * radian, kX).linear() *
                               turn(-(e.theta[3] + e.theta[4] + e.theta[5]) * radian, kY).linear() *
                               turn(e.theta[6] * radian, kX).linear();
  const Eigen::Matrix3d r = foot.transpose();
  e.theta[5] -= std::atan2(-r(2, 0), std::hypot(r(2, 1), r(2, 2))) * 180 / kCoarsePi;
  e.theta[6] -= std::atan2(r(2, 1), r(2, 2)) * 180 / kCoarsePi;
  return e;
}

// Points of 335 mm in single precision, turned and subtracted, are good to 1e-4 mm. A knee whose
// sine is at least 0.2 turns that into 220 * 1e-4 / (120 * 100 * 0.2) = 1e-5 radians.
constexpr double kDegrees = 1e-3;
bool wellBent(const Expected& e) {
  return std::fabs(e.kneeCosine) < 0.979;
}
bool outOfReach(const Expected& e) {
  return std::fabs(e.kneeCosine) > 1.0001;
}

void compare(const Theta& theta, const Expected& e) {
  ASSERT_EQ(theta[0], 0);
  ASSERT_EQ(theta[1], e.theta[1]);
  for (int i = 2; i <= 6; ++i) ASSERT_NEAR(theta[i], e.theta[i], kDegrees) << "joint " << i;
}

const std::vector<Vector>& torsos() {
  static const std::vector<Vector> points = [] {
    std::vector<Vector> list;
    for (const float x : {-20.f, 0.f, 15.5f}) {
      for (const float y : {-22.f, 0.f, 25.f}) {
        for (const float z : {-12.f, -30.f, -48.3f, -70.f}) list.push_back(Vector(x, y, z));
      }
    }
    return list;
  }();
  return points;
}

const std::vector<Vector>& ankles() {
  static const std::vector<Vector> points = [] {
    std::vector<Vector> list;
    for (const float x : {-40.f, 0.f, 45.25f}) {
      for (const float y : {-30.f, 0.f, 30.f}) {
        for (const float z : {0.f, 14.7f, 35.f}) list.push_back(Vector(x, y, z));
      }
    }
    return list;
  }();
  return points;
}

class InverseKinematicClosedFormsTest : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(InverseKinematic, InverseKinematicClosedFormsTest,
                         testing::Values(0, 1, 2, 3, 4),
                         [](const auto& type) { return "Type" + std::to_string(type.param); });

TEST_P(InverseKinematicClosedFormsTest, LegSolverOverAGridOfPoses) {
  const RobotType type(GetParam());
  CaseCount cases("poses of legSolver", 700);
  for (const Vector& torso : torsos()) {
    for (const Vector& ankle : ankles()) {
      const Expected e = expectedLegSolver(GetParam(), torso, ankle);
      if (!wellBent(e)) continue;
      ASSERT_NO_FATAL_FAILURE(compare(legSolver(torso, ankle), e)) << torso << ankle;
      cases.count();
    }
  }
}

TEST_P(InverseKinematicClosedFormsTest, LegSolverWith1OverAGridOfPosesSidesAndYawPitchAngles) {
  const RobotType type(GetParam());
  CaseCount cases("poses of legSolverWith1", 7000);
  for (const Vector& torso : torsos()) {
    for (const Vector& ankle : ankles()) {
      for (const bool side : {kLeft, kRight}) {
        for (const double eng1 : {-40.0, -12.5, 0.0, 3.0, 10.0, 25.0}) {
          const Expected e = expectedLegSolverWith1(GetParam(), torso, ankle, side, eng1);
          if (!wellBent(e) || e.hipHeight < 10) continue;
          ASSERT_NO_FATAL_FAILURE(compare(legSolverWith1(torso, ankle, side, eng1), e))
              << torso << ankle << side << ' ' << eng1;
          cases.count();
        }
      }
    }
  }
}

TEST_P(InverseKinematicClosedFormsTest, RandomPoses) {
  const RobotType type(GetParam());
  CaseCount solved("random poses within reach", kCases);
  CaseCount unsolved("random poses out of reach", 500);
  Draws draws(81 + GetParam());
  const auto between = [&draws](double low, double high) {
    return static_cast<float>(draws.between(low, high));
  };
  for (int n = 0; n < 4 * kCases; ++n) {
    const Vector torso(between(-30, 30), between(-40, 40), between(-90, 20));
    const Vector ankle(between(-60, 60), between(-40, 40), between(-20, 50));
    const bool side = draws.oneOf(2) == 1;
    const double eng1 = draws.between(-50, 40);
    const Expected e = expectedLegSolverWith1(GetParam(), torso, ankle, side, eng1);
    if (e.hipHeight < 10) continue;
    const Theta theta = legSolverWith1(torso, ankle, side, eng1);
    if (wellBent(e)) {
      ASSERT_NO_FATAL_FAILURE(compare(theta, e)) << torso << ankle << side << ' ' << eng1;
      ASSERT_NO_FATAL_FAILURE(
          compare(legSolver(torso, ankle), expectedLegSolver(GetParam(), torso, ankle)))
          << torso << ankle;
      solved.count();
    } else if (outOfReach(e)) {
      for (const int i : {3, 4, 5}) ASSERT_TRUE(std::isnan(theta[i]));
      unsolved.count();
    }
  }
}

TEST(InverseKinematicTest, StretchedLeg) {
  const RobotType standard(0);
  const Theta theta = legSolver(Vector(0, 0, 0), Vector(0, 0, 0));
  EXPECT_EQ(theta[0], 0);
  EXPECT_EQ(theta[1], 0);
  EXPECT_EQ(theta[2], 0);
  EXPECT_EQ(theta[6], 0);
  // Hip to ankle is (-5, 0, 220), thigh (5, 0, 120), shank 100: whole numbers, exact in float.
  const double d2 = 5 * 5 + 220 * 220, thigh2 = 5 * 5 + 120 * 120, shank2 = 100 * 100;
  const double knee = std::acos((shank2 + thigh2 - d2) / (2 * 100 * std::sqrt(thigh2))) - 3.1415;
  const double hip = std::acos((d2 + thigh2 - shank2) / (2 * std::sqrt(d2) * std::sqrt(thigh2))) -
                     std::asin(-5 / std::sqrt(d2));
  EXPECT_NEAR(theta[3], hip * 180 / 3.1415 + 0.217967, 1e-11);
  EXPECT_NEAR(theta[4], knee * 180 / 3.1415 - 0.476474, 1e-11);
  EXPECT_NEAR(theta[5], -(hip + knee) * 180 / 3.1415 + 0.258508, 1e-11);
}

TEST(InverseKinematicTest, LowerTorsoBendsTheKnee) {
  const RobotType standard(0);
  const Theta theta = legSolver(Vector(0, 0, -30), Vector(0, 0, 0));
  EXPECT_LT(theta[4], -10);
  EXPECT_GT(theta[3], 10);
  // Each carries its own offset, in degrees though their size suggests radians.
  EXPECT_NEAR(theta[5] - 0.258508, -(theta[4] + 0.476474) - (theta[3] - 0.217967), 1e-12);
  const Theta raised = legSolver(Vector(0, 0, 0), Vector(0, 0, 30));
  for (int i = 0; i <= 6; ++i) EXPECT_EQ(raised[i], theta[i]) << "a raised ankle does the same";
}

TEST(InverseKinematicTest, PiIsCoarse) {
  // The ankle 100 to the right of the hip and 100 below it: an eighth of a circle of hip roll.
  const RobotType standard(0);
  const Theta theta = legSolver(Vector(0, 100, -120), Vector(0, 0, 0));
  EXPECT_NEAR(theta[2], -(kPi / 4) * 180 / 3.1415, 1e-12);
  EXPECT_NE(theta[2], -45);
  EXPECT_EQ(theta[6], -theta[2]);
}

TEST(InverseKinematicTest, QuotientOfTheHipRollIsSinglePrecision) {
  const RobotType standard(0);
  int unlikeDouble = 0;
  for (int y = 1; y <= 40; ++y) {
    // Whole numbers: the hip is y to the left of the ankle and 220 above it.
    const Theta theta = legSolver(Vector(0, static_cast<float>(y), 0), Vector(0, 0, 0));
    const float quotient = static_cast<float>(y) / 220.0f;
    EXPECT_NEAR(theta[2], -std::atan(static_cast<double>(quotient)) * 180 / 3.1415, 1e-13) << y;
    if (std::fabs(theta[2] + std::atan(y / 220.0) * 180 / 3.1415) > 1e-10) ++unlikeDouble;
  }
  EXPECT_GT(unlikeDouble, 20);
}

TEST(InverseKinematicTest, HipAtTheHeightOfTheAnkleRollsByARightAngle) {
  const RobotType standard(0);
  const double right = (kPi / 2) * 180 / 3.1415;
  EXPECT_NEAR(legSolver(Vector(0, 10, -220), Vector(0, 0, 0))[2], -right, 1e-12);
  EXPECT_NEAR(legSolver(Vector(0, -10, -220), Vector(0, 0, 0))[2], right, 1e-12);
}

TEST(InverseKinematicTest, WithoutYawPitchBothFormsAgreeUpToTheCorrection) {
  CaseCount cases("poses without yaw-pitch", kCases);
  for (const int type : {0, 1, 2, 3, 4}) {
    const RobotType configured(type);
    for (const Vector& torso : torsos()) {
      for (const Vector& ankle : ankles()) {
        const Theta plain = legSolver(torso, ankle);
        if (!wellBent(expectedLegSolver(type, torso, ankle))) continue;
        for (const bool side : {kLeft, kRight}) {
          const Theta with = legSolverWith1(torso, ankle, side, 0);
          for (int i = 0; i <= 4; ++i) ASSERT_NEAR(with[i], plain[i], 1e-3);
          // The sole was parallel to the torso's plane already.
          for (int i = 5; i <= 6; ++i) ASSERT_NEAR(with[i], plain[i], 1e-3);
          cases.count();
          cases.count();
        }
      }
    }
  }
}

TEST(InverseKinematicTest, YawPitchGoesThroughUnchanged) {
  const RobotType standard(0);
  for (const double eng1 : {10.0, -37.123456789, 0.0}) {
    EXPECT_EQ(legSolverWith1(Vector(0, 0, -30), Vector(0, 0, 0), kLeft, eng1)[1], eng1);
    EXPECT_EQ(legSolverWith1(Vector(0, 0, -30), Vector(0, 0, 0), kRight, eng1)[1], eng1);
  }
}

TEST(InverseKinematicTest, CorrectionTakesThePitchAndRollOutOfTheFootInOneStep) {
  // One step leaves a rest, which must be far smaller than what was there.
  const RobotType standard(0);
  const double radian = kPi / 180;
  for (const bool side : {kLeft, kRight}) {
    const Theta theta = legSolverWith1(Vector(0, 0, -30), Vector(0, 0, 0), side, 20);
    const auto tilt = [&](double ankleRoll) {
      const Eigen::Matrix3d foot =
          (turn(20 * radian, {0, 1, side ? 1.0 : -1.0}) * turn(theta[2] * radian, kX) *
           turn(-(theta[3] + theta[4] + theta[5]) * radian, kY) * turn(ankleRoll * radian, kX))
              .linear();
      return std::acos(foot(2, 2)) / radian;
    };
    EXPECT_GT(tilt(-theta[2]), 0.5) << "without the correction";
    EXPECT_LT(tilt(theta[6]), 0.2);
  }
}

TEST(InverseKinematicTest, CorrectionIsFormedInSinglePrecisionAndWithTheCoarsePi) {
  const RobotType standard(0);
  int unlikeDouble = 0;
  CaseCount cases("corrections", 100);
  for (const bool side : {kLeft, kRight}) {
    for (int n = 1; n <= 60; ++n) {
      const double eng1 = -30 + n;
      const Theta theta =
          legSolverWith1(Vector(3, 2, -30), Vector(0, 0, static_cast<float>(n)), side, eng1);
      // The ankle before the correction, which follows from the joints above it.
      const double pitch = -(theta[4] + 0.476474) - (theta[3] - 0.217967) + 0.258508;
      const double roll = -theta[2];
      ForwardKinematic fwd;
      if (side) {
        fwd.setRightLeg(theta[1], theta[2], theta[3], theta[4], pitch, roll);
      } else {
        fwd.setLeftLeg(theta[1], theta[2], theta[3], theta[4], pitch, roll);
      }
      const Vector r = side ? fwd.rightLegRotation : fwd.leftLegRotation;
      const float ry180 = r.y * 180.0f, rx180 = r.x * 180.0f;
      ASSERT_NEAR(theta[5], pitch - ry180 / 3.1415, 1e-12) << eng1;
      ASSERT_NEAR(theta[6], roll - rx180 / 3.1415, 1e-12) << eng1;
      if (std::fabs(theta[5] - (pitch - static_cast<double>(r.y) * 180 / 3.1415)) > 1e-10) {
        ++unlikeDouble;
      }
      cases.count();
    }
  }
  EXPECT_GT(unlikeDouble, 20);
}

// Left and right joints for a pose and its mirror image.
std::pair<Theta, Theta> mirrorImages(Vector torso, Vector ankle, double eng1) {
  return {legSolverWith1(torso, ankle, kLeft, eng1),
          legSolverWith1(Vector(torso.x, -torso.y, torso.z), Vector(ankle.x, -ankle.y, ankle.z),
                         kRight, eng1)};
}

TEST(InverseKinematicTest, MirroredPointsGiveTheOtherLegMirroredJoints) {
  // Both legs have the hip on the left; its offset of 55 is in the ankle too and cancels. The
  // yaw-pitch joint has one sense for both legs, the rolls change sign.
  for (const int type : {0, 1}) {
    const RobotType configured(type);
    CaseCount cases("mirrored poses", kCases);
    Draws draws(99 + type);
    const auto between = [&draws](double low, double high) {
      return static_cast<float>(draws.between(low, high));
    };
    for (int n = 0; n < 2 * kCases; ++n) {
      const Vector torso(between(-30, 30), between(-40, 40), between(-90, -15));
      const Vector ankle(between(-60, 60), between(-40, 40), between(-20, 50));
      const double eng1 = draws.between(-50, 40);
      const Expected e = expectedLegSolverWith1(type, torso, ankle, kLeft, eng1);
      if (!wellBent(e) || e.hipHeight < 10) continue;
      const auto [left, right] = mirrorImages(torso, ankle, eng1);
      for (const int i : {1, 3, 4, 5}) ASSERT_NEAR(right[i], left[i], 2 * kDegrees) << i;
      for (const int i : {2, 6}) ASSERT_NEAR(right[i], -left[i], 2 * kDegrees) << i;
      cases.count();
    }
  }
}

TEST(InverseKinematicTest, HipOfTypeThreeIsWiderThanTheAnkleAndDoesNotMirror) {
  const RobotType three(3);
  const auto [left, right] = mirrorImages(Vector(0, 0, -30), Vector(0, 0, 0), 0);
  // 17.95 to the side, on the same side for both legs.
  EXPECT_LT(left[2], -4);
  EXPECT_NEAR(right[2], left[2], kDegrees);
}

TEST(InverseKinematicTest, AnkleBeyondReachGivesNoNumbers) {
  const RobotType standard(0);
  const Theta plain = legSolver(Vector(0, 0, 0), Vector(0, 20, -40));
  EXPECT_TRUE(std::isfinite(plain[2]));
  for (const int i : {3, 4, 5}) EXPECT_TRUE(std::isnan(plain[i])) << i;
  EXPECT_EQ(plain[6], -plain[2]);

  const Theta with = legSolverWith1(Vector(0, 0, 0), Vector(0, 20, -40), kRight, 10);
  EXPECT_EQ(with[1], 10);
  EXPECT_TRUE(std::isfinite(with[2]));
  for (const int i : {3, 4, 5}) EXPECT_TRUE(std::isnan(with[i])) << i;
  EXPECT_TRUE(std::isnan(with[6])) << "the correction comes from a forward pass without numbers";
}

TEST(InverseKinematicTest, HipNotAboveTheAnkleIsWarnedOfOncePerCall) {
  const RobotType standard(0);
  const std::string line = " " + std::string(64, '*') + "\n";
  const auto printed = [](double torsoZ, bool side) {
    testing::internal::CaptureStdout();
    legSolverWith1(Vector(0, 0, static_cast<float>(torsoZ)), Vector(0, 0, 0), side, 0);
    return testing::internal::GetCapturedStdout();
  };
  for (const bool side : {kLeft, kRight}) {
    EXPECT_EQ(printed(-400, side), line);
    EXPECT_EQ(printed(-220, side), line) << "level counts as below";
    EXPECT_EQ(printed(-219.95, side), line);
    EXPECT_EQ(printed(-219.8, side), "") << "more than 0.1 above";
    EXPECT_EQ(printed(-30, side), "");
  }
}

TEST(InverseKinematicTest, LegSolverNeverWarns) {
  const RobotType standard(0);
  testing::internal::CaptureStdout();
  legSolver(Vector(0, 0, -400), Vector(0, 0, 0));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

// The chain form.

const std::vector<double> kSensed(6, 0.1);

bool chainSolver(Vector torso, Vector ankle, Theta& theta, bool side, double xRot = 0,
                 double yRot = 0, double zRot = 0) {
  return InverseKinematic().legSolver(torso, ankle, theta.data(), side, kSensed, xRot, yRot, zRot);
}

// The joints of a solution in the chain's convention.
std::vector<double> chainJoints(const Theta& theta) {
  const double r = kPi / 180;
  return {theta[1] * r, theta[2] * r, -theta[3] * r, -theta[4] * r, -theta[5] * r, theta[6] * r};
}

TEST(InverseKinematicChainTest, PitchJointsChangeTheirSign) {
  // Joints of six different sizes, through the doll to a target and back.
  const std::vector<double> joints = {-0.2, 0.1, -0.6, 0.9, -0.35, -0.05};
  for (const bool side : {kLeft, kRight}) {
    const body::Pose sole = body::end(side ? "RightLeg" : "LeftLeg", joints);
    const Vector3d angles = sole.linear().eulerAngles(2, 1, 0);
    const Vector3d p = sole.translation() - Vector3d(0, side ? -55 : 55, -355);
    Theta theta = untouched();
    ASSERT_TRUE(chainSolver(Vector(0, 0, 0), Vector(p.x(), p.y(), p.z(), CARTESIAN), theta, side,
                            angles[2], angles[1], angles[0]));
    const double degrees = 180 / kPi;
    EXPECT_EQ(theta[0], kUntouched);
    EXPECT_NEAR(theta[1], -0.2 * degrees, 1e-4);
    EXPECT_NEAR(theta[2], 0.1 * degrees, 1e-4);
    EXPECT_NEAR(theta[3], 0.6 * degrees, 1e-4);
    EXPECT_NEAR(theta[4], -0.9 * degrees, 1e-4);
    EXPECT_NEAR(theta[5], 0.35 * degrees, 1e-4);
    EXPECT_NEAR(theta[6], -0.05 * degrees, 1e-4);
    EXPECT_EQ(theta[7], kUntouched);
  }
}

TEST(InverseKinematicChainTest, SoleReachesTheTarget) {
  CaseCount cases("targets of the chain form", kCases);
  Draws draws(91);
  for (int n = 0; n < kCases; ++n) {
    const bool side = draws.oneOf(2) == 1;
    const std::vector<double> joints = {draws.between(-1.1, 0.7),  draws.between(-0.37, 0.41),
                                        draws.between(-1.7, 0.48), draws.between(0.05, 2.2),
                                        draws.between(-1.19, 0.9), draws.between(-0.77, 0.39)};
    const body::Pose sole = body::end(side ? "RightLeg" : "LeftLeg", joints);
    const Vector3d angles = sole.linear().eulerAngles(2, 1, 0);
    const Vector torso(static_cast<float>(draws.between(-50, 50)),
                       static_cast<float>(draws.between(-50, 50)),
                       static_cast<float>(draws.between(-50, 50)));
    const Vector3d p = sole.translation() - Vector3d(0, side ? -55 : 55, -355);
    const Vector ankle(p.x() + torso.x, p.y() + torso.y, p.z() + torso.z, CARTESIAN);
    Theta theta = untouched();
    ASSERT_TRUE(chainSolver(torso, ankle, theta, side, angles[2], angles[1], angles[0]));
    const Vector3d reached =
        body::end(side ? "RightLeg" : "LeftLeg", chainJoints(theta)).translation();
    // The target is formed in single precision, from numbers below 400.
    ASSERT_LT((reached - sole.translation()).norm(), 2e-4);
    ASSERT_EQ(theta[0], kUntouched);
    ASSERT_EQ(theta[7], kUntouched);
    cases.count();
  }
}

TEST(InverseKinematicChainTest, IsTheFirstSolutionForATargetFormedInSinglePrecision) {
  const Vector torso(0.3f, -20.7f, -30.1f), ankle(11.1f, 0.7f, 15.3f);
  for (const bool side : {kLeft, kRight}) {
    const float x = (0 + ankle.x) - torso.x;
    const float y = (side ? ankle.y - 55 : ankle.y + 55) - torso.y;
    const float z = (ankle.z - 355) - torso.z;
    NAOKinematics nao;
    const auto solutions = side ? nao.inverseRightLeg(x, y, z, 0.05, -0.1, 0.15)
                                : nao.inverseLeftLeg(x, y, z, 0.05, -0.1, 0.15);
    ASSERT_FALSE(solutions.empty());
    Theta theta = untouched();
    ASSERT_TRUE(chainSolver(torso, ankle, theta, side, 0.05, -0.1, 0.15));
    const std::vector<double>& v = solutions.front();
    for (int i = 0; i < 6; ++i) {
      const double sign = i >= 2 && i <= 4 ? -1 : 1;
      EXPECT_EQ(theta[i + 1], sign * (v[i] * 57.29577951308232)) << i;
    }
  }
}

TEST(InverseKinematicChainTest, UnreachableTargetLeavesThetaAlone) {
  for (const bool side : {kLeft, kRight}) {
    Theta theta = untouched();
    EXPECT_FALSE(chainSolver(Vector(0, 0, 10), Vector(0, 0, 0), theta, side));
    EXPECT_EQ(theta, untouched());
  }
}

TEST(InverseKinematicChainTest, StretchedLegHasTwoSolutionsOfWhichTheFirstIsWritten) {
  for (const bool side : {kLeft, kRight}) {
    std::array<double, 14> theta;
    theta.fill(kUntouched);
    ASSERT_TRUE(InverseKinematic().legSolver(Vector(0, 0, 0), Vector(0, 0, 0), theta.data(), side,
                                             kSensed, 0, 0, 0));
    for (int i = 1; i <= 6; ++i) EXPECT_NEAR(theta[i], 0, 1e-10);
    for (const int i : {0, 7, 8, 9, 10, 11, 12, 13}) EXPECT_EQ(theta[i], kUntouched) << i;
  }
}

TEST(InverseKinematicChainTest, ShortFormHasNoRotations) {
  for (const bool side : {kLeft, kRight}) {
    Theta whole = untouched(), brief = untouched();
    ASSERT_TRUE(chainSolver(Vector(0, 0, -30), Vector(10, 5, 0), whole, side));
    ASSERT_TRUE(InverseKinematic().legSolver(Vector(0, 0, -30), Vector(10, 5, 0), brief.data(),
                                             side, kSensed));
    EXPECT_EQ(brief, whole);
    EXPECT_FALSE(InverseKinematic().legSolver(Vector(0, 0, 10), Vector(0, 0, 0), brief.data(), side,
                                              kSensed));
  }
}

TEST(InverseKinematicChainTest, SensedAnglesTakeNoPart) {
  Theta one = untouched(), other = untouched();
  ASSERT_TRUE(InverseKinematic().legSolver(Vector(0, 0, -30), Vector(0, 0, 0), one.data(), kLeft,
                                           std::vector<double>(6, 0.0), 0, 0, 0));
  ASSERT_TRUE(InverseKinematic().legSolver(Vector(0, 0, -30), Vector(0, 0, 0), other.data(), kLeft,
                                           {0.5, -0.4, 0.3, -0.2, 0.1, std::nan("")}, 0, 0, 0));
  EXPECT_EQ(one, other);
}

TEST(InverseKinematicChainTest, DoesNotDependOnTheRobotType) {
  const RobotType one(1);
  Theta first = untouched(), second = untouched();
  ASSERT_TRUE(chainSolver(Vector(0, 0, -30), Vector(0, 0, 0), first, kRight));
  const RobotType three(3);
  ASSERT_TRUE(chainSolver(Vector(0, 0, -30), Vector(0, 0, 0), second, kRight));
  EXPECT_EQ(first, second);
}

}  // namespace
