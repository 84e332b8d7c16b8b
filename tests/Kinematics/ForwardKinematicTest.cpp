#include "Kinematics/ForwardKinematic.h"

#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "Kinematics/BodyModel.h"
#include "Kinematics/Draws.h"
#include "Kinematics/RobotType.h"

namespace {

using body::kX;
using body::kY;
using body::kZ;
using body::Pose;
using body::shift;
using body::turn;
using Transform = Matrix<4, 4>;

constexpr int kCases = 10000;
constexpr double kRadian = 3.141592653589793 / 180;

// Products of Matrix are summed up in float: some thirty roundings of coordinates below 0.4 m, each
// below 3e-8, of which the worst add up.
constexpr double kMetres = 5e-7;
// The same for the elements of rotations, which are below 1.
constexpr double kRotation = 2e-6;

using Angles = std::vector<double>;

Eigen::Vector3d position(const Transform& t) {
  return {t(0, 3), t(1, 3), t(2, 3)};
}

struct Limb {
  const char* name;
  Transform ForwardKinematic::*field;
  Eigen::Vector3d expected;
};

// Every matrix of the class by name.
const std::vector<std::pair<const char*, Transform ForwardKinematic::*>> kFields = {
    {"leftHand", &ForwardKinematic::leftHand},
    {"leftLeg", &ForwardKinematic::leftLeg},
    {"rightHand", &ForwardKinematic::rightHand},
    {"rightLeg", &ForwardKinematic::rightLeg},
    {"head", &ForwardKinematic::head},
    {"rightthigh", &ForwardKinematic::rightthigh},
    {"rightankle", &ForwardKinematic::rightankle},
    {"leftthigh", &ForwardKinematic::leftthigh},
    {"leftankle", &ForwardKinematic::leftankle},
    {"rightKnee", &ForwardKinematic::rightKnee},
    {"leftKnee", &ForwardKinematic::leftKnee},
    {"rightUpLeg", &ForwardKinematic::rightUpLeg},
    {"leftUpLeg", &ForwardKinematic::leftUpLeg},
    {"rightLoLeg", &ForwardKinematic::rightLoLeg},
    {"leftLoLeg", &ForwardKinematic::leftLoLeg},
    {"rightFoot", &ForwardKinematic::rightFoot},
    {"leftFoot", &ForwardKinematic::leftFoot},
    {"leftUpArm", &ForwardKinematic::leftUpArm},
    {"leftLoArm", &ForwardKinematic::leftLoArm},
    {"rightLoArm", &ForwardKinematic::rightLoArm},
    {"rightUpArm", &ForwardKinematic::rightUpArm},
    {"headCenter", &ForwardKinematic::headCenter}};

void setLeg(ForwardKinematic& fwd, bool side, const Angles& a) {
  if (side) {
    fwd.setRightLeg(a[0], a[1], a[2], a[3], a[4], a[5]);
  } else {
    fwd.setLeftLeg(a[0], a[1], a[2], a[3], a[4], a[5]);
  }
}

void setArm(ForwardKinematic& fwd, bool side, const Angles& a) {
  if (side) {
    fwd.setRightHand(a[0], a[1], a[2], a[3]);
  } else {
    fwd.setLeftHand(a[0], a[1], a[2], a[3]);
  }
}

Angles drawnAngles(Draws& draws, int count) {
  Angles angles;
  for (int i = 0; i < count; ++i) angles.push_back(draws.between(-120, 120));
  return angles;
}

// The leg as a doll of pin joints in metres; pitch joints of the server turn forward-up. The hip of
// type 1 is drawn back, not down.
std::vector<Limb> expectedLeg(int type, bool side, const Angles& a, Pose* foot) {
  const double y = side ? -0.055 : 0.055;
  const Pose hip = shift(-0.01, y, -0.115) * turn(a[0] * kRadian, {0, 1, side ? 1.0 : -1.0}) *
                   shift(type == 1 ? -0.01832 : 0, 0, 0) * turn(a[1] * kRadian, kX);
  const Pose thigh = hip * turn(-a[2] * kRadian, kY);
  const Pose knee = thigh * (type == 1 ? shift(0, 0, -0.10168) : shift(0.005, 0, -0.12));
  const Pose shank = knee * turn(-a[3] * kRadian, kY);
  const Pose ankle =
      shank * (type == 1 ? shift(0, 0, -0.09996332228183746) : shift(0.005, 0, -0.1));
  *foot = ankle * turn(-a[4] * kRadian, kY) * turn(a[5] * kRadian, kX);
  using FK = ForwardKinematic;
  const auto pick = [side](Transform FK::*left, Transform FK::*right) {
    return side ? right : left;
  };
  const auto at = [](const Pose& pose) { return Eigen::Vector3d(pose.translation()); };
  return {
      {"thigh", pick(&FK::leftthigh, &FK::rightthigh), at(hip)},
      {"upLeg", pick(&FK::leftUpLeg, &FK::rightUpLeg), at(hip * shift(0.01, 0, -0.04))},
      {"knee", pick(&FK::leftKnee, &FK::rightKnee), at(knee)},
      {"loLeg", pick(&FK::leftLoLeg, &FK::rightLoLeg), at(knee * shift(0.01, 0, -0.045))},
      {"ankle", pick(&FK::leftankle, &FK::rightankle), at(ankle)},
      {"foot", pick(&FK::leftFoot, &FK::rightFoot), at(*foot * shift(0.03, 0, -0.04))},
      {"leg", pick(&FK::leftLeg, &FK::rightLeg), at(*foot)},
  };
}

std::vector<Limb> expectedArm(bool side, const Angles& a) {
  const double out = side ? -1 : 1;
  const Pose shoulder = shift(0, out * 0.098, 0.075) * turn(-a[0] * kRadian, kY);
  const Pose elbow = shoulder * shift(0, 0, 0.009) * turn(a[1] * kRadian, kZ) * shift(0.09, 0, 0);
  const Pose loArm = elbow * turn(out * a[2] * kRadian, kX) * turn(-a[3] * kRadian, kZ);
  using FK = ForwardKinematic;
  return {
      {"upArm", side ? &FK::rightUpArm : &FK::leftUpArm,
       (shoulder * shift(0.02, out * 0.01, 0)).translation()},
      {"loArm", side ? &FK::rightLoArm : &FK::leftLoArm,
       (loArm * shift(0.05, out * 0.01, 0)).translation()},
      {"hand", side ? &FK::rightHand : &FK::leftHand, elbow.translation()},
  };
}

// Position form: the block is the identity and the corner 1.
void expectPositionForm(const Transform& t, const char* name) {
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      if (j == 3 && i < 3) continue;
      ASSERT_NEAR(t(i, j), i == j ? 1 : 0, kRotation) << name << ' ' << i << ' ' << j;
    }
  }
}

Eigen::Matrix3d rotation(const Vector& rollPitchYaw) {
  return (turn(rollPitchYaw.z, kZ) * turn(rollPitchYaw.y, kY) * turn(rollPitchYaw.x, kX)).linear();
}

void expectNear(const Transform& t, double x, double y, double z) {
  EXPECT_NEAR(t(0, 3), x, kMetres);
  EXPECT_NEAR(t(1, 3), y, kMetres);
  EXPECT_NEAR(t(2, 3), z, kMetres);
}

void expectZero(const Vector& v) {
  EXPECT_TRUE(v == Vector(0, 0, 0));
}

// The elements of every matrix and both vectors.
std::vector<double> snapshot(const ForwardKinematic& fwd,
                             const std::vector<Transform ForwardKinematic::*>& fields) {
  std::vector<double> elements;
  for (const auto field : fields) {
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 4; ++j) elements.push_back((fwd.*field)(i, j));
    }
  }
  return elements;
}

TEST(ForwardKinematicTest, NewModelHoldsFreshMatricesAndZeroVectors) {
  const ForwardKinematic fwd;
  ASSERT_EQ(kFields.size(), 22u);
  for (const auto& [name, field] : kFields) {
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 4; ++j) {
        EXPECT_EQ((fwd.*field)(i, j), i == 3 && j == 3 ? 1 : 0) << name;
      }
    }
  }
  expectZero(fwd.rightLegRotation);
  expectZero(fwd.leftLegRotation);
}

TEST(ForwardKinematicTest, StandardRobotStandingStraight) {
  const RobotType standard(0);
  ForwardKinematic fwd;
  fwd.setLeftLeg(0, 0, 0, 0, 0, 0);
  expectNear(fwd.leftLeg, 0, 0.055, -0.335);
  expectNear(fwd.leftthigh, -0.01, 0.055, -0.115);
  fwd.setRightLeg(0, 0, 0, 0, 0, 0);
  expectNear(fwd.rightLeg, 0, -0.055, -0.335);
  expectNear(fwd.rightthigh, -0.01, -0.055, -0.115);
  expectNear(fwd.rightFoot, 0.03, -0.055, -0.375);
  for (const Vector& r : {fwd.leftLegRotation, fwd.rightLegRotation}) {
    EXPECT_NEAR(r.x, 0, 1e-7);
    EXPECT_NEAR(r.y, 0, 1e-7);
    EXPECT_NEAR(r.z, 0, 1e-7);
  }
  fwd.setHead(0, 0);
  expectNear(fwd.head, 0, 0, 0.15);
  expectNear(fwd.headCenter, 0, 0, 0.155);
}

TEST(ForwardKinematicTest, BentLegKeepsTheFootParallelToTheGround) {
  const RobotType standard(0);
  ForwardKinematic fwd;
  fwd.setRightLeg(0, 0, 20, -40, 20, 0);
  EXPECT_NEAR(fwd.rightLeg(0, 3), 0.0062, 5e-5);
  EXPECT_NEAR(fwd.rightLeg(1, 3), -0.055, 5e-5);
  EXPECT_NEAR(fwd.rightLeg(2, 3), -0.3217, 5e-5);
  EXPECT_NEAR(fwd.rightLegRotation.x, 0, 1e-7);
  EXPECT_NEAR(fwd.rightLegRotation.y, 0, 1e-7);
  EXPECT_NEAR(fwd.rightLegRotation.z, 0, 1e-7);
}

// Types 0 and 1 have links of their own, the others count as standard.
class ForwardKinematicLegsTest : public testing::TestWithParam<std::tuple<int, bool>> {};
INSTANTIATE_TEST_SUITE_P(TypesAndSides, ForwardKinematicLegsTest,
                         testing::Combine(testing::Values(0, 1, 2, 3, 4), testing::Bool()),
                         [](const auto& param) {
                           return "Type" + std::to_string(std::get<0>(param.param)) +
                                  (std::get<1>(param.param) ? "Right" : "Left");
                         });

TEST_P(ForwardKinematicLegsTest, AgreeWithTheDollOfPinJoints) {
  const auto [type, side] = GetParam();
  const RobotType configured(type);
  CaseCount positions("poses of a leg", kCases);
  CaseCount rotations("orientations of a foot", kCases / 2);
  Draws draws(41 + type);
  ForwardKinematic fwd;
  for (int n = 0; n < kCases; ++n) {
    const Angles angles = drawnAngles(draws, 6);
    setLeg(fwd, side, angles);
    Pose foot;
    for (const Limb& limb : expectedLeg(type, side, angles, &foot)) {
      ASSERT_LT((position(fwd.*limb.field) - limb.expected).norm(), kMetres) << limb.name;
      ASSERT_NO_FATAL_FAILURE(expectPositionForm(fwd.*limb.field, limb.name));
    }
    positions.count();

    // The angles are those of the torso as the foot sees it. Upright feet alone tell their roll
    // from their yaw.
    const Eigen::Matrix3d torso = foot.linear().transpose();
    if (std::fabs(torso(2, 0)) > 0.95) continue;
    const Vector& r = side ? fwd.rightLegRotation : fwd.leftLegRotation;
    ASSERT_LT((rotation(r) - torso).cwiseAbs().maxCoeff(), 1e-5);
    ASSERT_LT(std::fabs(r.y), 1.5708);
    rotations.count();
  }
}

TEST_P(ForwardKinematicLegsTest, TouchNothingElse) {
  const auto [type, side] = GetParam();
  const RobotType configured(type);
  Pose foot;
  const std::vector<Limb> own = expectedLeg(type, side, Angles(6, 0.0), &foot);
  std::vector<Transform ForwardKinematic::*> others;
  for (const auto& field : kFields) {
    if (std::none_of(own.begin(), own.end(),
                     [&](const Limb& limb) { return limb.field == field.second; })) {
      others.push_back(field.second);
    }
  }
  ASSERT_EQ(others.size(), 15u);

  ForwardKinematic fwd;
  fwd.setHead(10, 20);
  fwd.setLeftHand(10, 20, 30, 40);
  fwd.setRightHand(10, 20, 30, 40);
  setLeg(fwd, !side, {1, 2, 3, 4, 5, 6});
  const auto before = snapshot(fwd, others);
  const Vector otherFoot = side ? fwd.leftLegRotation : fwd.rightLegRotation;
  setLeg(fwd, side, {-6, 5, -4, 3, -2, 1});
  EXPECT_EQ(snapshot(fwd, others), before);
  EXPECT_TRUE((side ? fwd.leftLegRotation : fwd.rightLegRotation) == otherFoot);
  EXPECT_FALSE((side ? fwd.rightLegRotation : fwd.leftLegRotation) == Vector(0, 0, 0));
}

TEST_P(ForwardKinematicLegsTest, RollAndPitchOfTheFootAreReadSeparately) {
  const auto [type, side] = GetParam();
  const RobotType configured(type);
  ForwardKinematic fwd;
  const auto foot = [&](const Angles& angles) {
    setLeg(fwd, side, angles);
    return side ? fwd.rightLegRotation : fwd.leftLegRotation;
  };
  // A foot rolled one way sees the torso rolled the other way.
  EXPECT_NEAR(foot({0, 0, 0, 0, 0, 10}).x, -10 * kRadian, 1e-6);
  EXPECT_NEAR(foot({0, 0, 0, 0, 0, 10}).y, 0, 1e-6);
  EXPECT_NEAR(foot({0, 0, 0, 0, 10, 0}).y, 10 * kRadian, 1e-6);
  EXPECT_NEAR(foot({0, 0, 0, 0, 10, 0}).x, 0, 1e-6);
}

TEST(ForwardKinematicLegsTest, MirroredAnglesGiveMirroredPoints) {
  // Roll joints change sign between the legs; yaw-pitch and pitch joints do not.
  const RobotType standard(0);
  CaseCount cases("mirrored legs", kCases);
  Draws draws(51);
  ForwardKinematic fwd;
  const Eigen::Vector3d mirror(1, -1, 1);
  for (int n = 0; n < kCases; ++n) {
    const Angles a = drawnAngles(draws, 6);
    setLeg(fwd, false, a);
    setLeg(fwd, true, {a[0], -a[1], a[2], a[3], a[4], -a[5]});
    ASSERT_LT((position(fwd.rightFoot) - mirror.cwiseProduct(position(fwd.leftFoot))).norm(),
              2 * kMetres);
    cases.count();
  }
}

TEST(ForwardKinematicLegsTest, TypeIsLookedUpAtEachCall) {
  ForwardKinematic fwd;
  const RobotType one(1);
  fwd.setRightLeg(0, 0, 0, 0, 0, 0);
  expectNear(fwd.rightLeg, -0.02832, -0.055, -0.115 - 0.10168 - 0.09996332228183746);
  const RobotType three(3);
  fwd.setRightLeg(0, 0, 0, 0, 0, 0);
  expectNear(fwd.rightLeg, 0, -0.055, -0.335);
}

class ForwardKinematicArmsTest : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Sides, ForwardKinematicArmsTest, testing::Bool(),
                         [](const auto& side) { return side.param ? "Right" : "Left"; });

TEST_P(ForwardKinematicArmsTest, AgreeWithTheDollOfPinJoints) {
  CaseCount cases("poses of an arm", kCases);
  Draws draws(61);
  ForwardKinematic fwd;
  for (int n = 0; n < kCases; ++n) {
    const Angles angles = drawnAngles(draws, 4);
    setArm(fwd, GetParam(), angles);
    for (const Limb& limb : expectedArm(GetParam(), angles)) {
      ASSERT_LT((position(fwd.*limb.field) - limb.expected).norm(), kMetres) << limb.name;
      ASSERT_NO_FATAL_FAILURE(expectPositionForm(fwd.*limb.field, limb.name));
    }
    cases.count();
  }
}

TEST_P(ForwardKinematicArmsTest, TouchNoOtherMatrix) {
  const RobotType standard(0);
  std::vector<Transform ForwardKinematic::*> others;
  const std::vector<Limb> own = expectedArm(GetParam(), Angles(4, 0.0));
  for (const auto& field : kFields) {
    if (std::none_of(own.begin(), own.end(),
                     [&](const Limb& limb) { return limb.field == field.second; })) {
      others.push_back(field.second);
    }
  }
  ASSERT_EQ(others.size(), 19u);
  ForwardKinematic fwd;
  fwd.setHead(10, 20);
  setArm(fwd, !GetParam(), {10, 20, 30, 40});
  setLeg(fwd, false, {1, 2, 3, 4, 5, 6});
  setLeg(fwd, true, {1, 2, 3, 4, 5, 6});
  const auto before = snapshot(fwd, others);
  setArm(fwd, GetParam(), {-40, 30, -20, 10});
  EXPECT_EQ(snapshot(fwd, others), before);
}

TEST(ForwardKinematicArmsTest, RightArmAloneClearsTheOrientationOfTheFeet) {
  const RobotType standard(0);
  ForwardKinematic fwd;
  fwd.setRightLeg(1, 2, 3, 4, 5, 6);
  fwd.setLeftLeg(1, 2, 3, 4, 5, 6);
  fwd.setLeftHand(10, 20, 30, 40);
  fwd.setHead(10, 20);
  EXPECT_FALSE(fwd.rightLegRotation == Vector(0, 0, 0));
  EXPECT_FALSE(fwd.leftLegRotation == Vector(0, 0, 0));
  fwd.setRightHand(10, 20, 30, 40);
  expectZero(fwd.rightLegRotation);
  expectZero(fwd.leftLegRotation);
}

TEST(ForwardKinematicHeadTest, MassCentreStaysAboveTheNeckAtAnyAngle) {
  CaseCount cases("poses of the head", kCases);
  Draws draws(71);
  ForwardKinematic fwd;
  for (int n = 0; n < kCases; ++n) {
    fwd.setHead(draws.between(-120, 120), draws.between(-120, 120));
    ASSERT_LT((position(fwd.head) - Eigen::Vector3d(0, 0, 0.15)).norm(), kMetres);
    ASSERT_LT((position(fwd.headCenter) - Eigen::Vector3d(0, 0, 0.155)).norm(), kMetres);
    ASSERT_NO_FATAL_FAILURE(expectPositionForm(fwd.head, "head"));
    ASSERT_NO_FATAL_FAILURE(expectPositionForm(fwd.headCenter, "headCenter"));
    cases.count();
  }
}

TEST(ForwardKinematicHeadTest, TouchesNoOtherField) {
  const RobotType standard(0);
  std::vector<Transform ForwardKinematic::*> others;
  for (const auto& field : kFields) {
    if (field.second != &ForwardKinematic::head && field.second != &ForwardKinematic::headCenter) {
      others.push_back(field.second);
    }
  }
  ForwardKinematic fwd;
  fwd.setLeftLeg(1, 2, 3, 4, 5, 6);
  const auto before = snapshot(fwd, others);
  const Vector foot = fwd.leftLegRotation;
  fwd.setHead(10, 20);
  EXPECT_EQ(snapshot(fwd, others), before);
  EXPECT_TRUE(fwd.leftLegRotation == foot);
}

TEST(ForwardKinematicTest, NotANumberSpreadsThroughItsLimbAlone) {
  const RobotType standard(0);
  ForwardKinematic fwd;
  fwd.setLeftLeg(0, 0, 0, 0, 0, 0);
  fwd.setRightLeg(std::numeric_limits<double>::quiet_NaN(), 0, 0, 0, 0, 0);
  for (const auto field :
       {&ForwardKinematic::rightthigh, &ForwardKinematic::rightUpLeg, &ForwardKinematic::rightKnee,
        &ForwardKinematic::rightLoLeg, &ForwardKinematic::rightankle, &ForwardKinematic::rightFoot,
        &ForwardKinematic::rightLeg}) {
    EXPECT_TRUE(std::isnan((fwd.*field)(0, 3)));
  }
  EXPECT_TRUE(std::isnan(fwd.rightLegRotation.x));
  expectNear(fwd.leftLeg, 0, 0.055, -0.335);
}

}  // namespace
