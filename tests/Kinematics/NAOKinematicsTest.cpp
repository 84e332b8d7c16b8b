#include "Kinematics/NAOKinematics.h"

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "Kinematics/BodyModel.h"
#include "Kinematics/Draws.h"

namespace {

using body::difference;
using body::values;

constexpr double kPi = 3.141592653589793;
constexpr int kCases = 10000;

// Lengths of up to 700 mm behind up to ten products: a hundred roundings of 1e-13.
constexpr double kRounding = 1e-11;

const std::vector<std::string> kChains = {"CameraTop", "CameraBot", "LeftArm", "LeftHand",
                                          "RightArm",  "RightHand", "LeftLeg", "RightLeg"};

std::vector<double> drawnJoints(Draws& draws, int count) {
  std::vector<double> joints;
  for (int i = 0; i < count; ++i) joints.push_back(draws.between(-kPi, kPi));
  return joints;
}

Eigen::Matrix4d shift(double x, double y, double z) {
  return body::shift(x, y, z).matrix();
}

// Rx * Ry * Rz and Rz * Ry * Rx.
Eigen::Matrix4d xyz(double x, double y, double z) {
  return (body::turn(x, body::kX) * body::turn(y, body::kY) * body::turn(z, body::kZ)).matrix();
}
Eigen::Matrix4d zyx(double z, double y, double x) {
  return (body::turn(z, body::kZ) * body::turn(y, body::kY) * body::turn(x, body::kX)).matrix();
}

// Constants.

TEST(NAOKinematicsConstantsTest, EachHasItsValue) {
  const NAOKinematics nao;
  const struct {
    const char* name;
    const kmatTable& member;
    Eigen::Matrix4d value;
  } rows[] = {
      {"TBaseHead", nao.TBaseHead, shift(0, 0, 126.5)},
      {"TEndHead1", nao.TEndHead1, shift(48.8, 0, 23.81)},
      {"TEndHead2", nao.TEndHead2, shift(53.9, 0, 67.9)},
      {"RotHead", nao.RotHead, xyz(kPi / 2, kPi / 2, 0)},
      {"TBaseLArm", nao.TBaseLArm, shift(0, 113, 100)},
      {"TEndLArm", nao.TEndLArm, shift(55.95, 0, 0)},
      {"RotLArm", nao.RotLArm, xyz(kPi / 2, 0, kPi / 2)},
      {"TBaseRArm", nao.TBaseRArm, shift(0, -113, 100)},
      {"TEndRArm", nao.TEndRArm, shift(-55.95, 0, 0)},
      {"RotRArm", nao.RotRArm, xyz(kPi / 2, 0, kPi / 2)},
      {"RotRArmFix", nao.RotRArmFix, xyz(0, 0, -kPi)},
      {"RotRArmFixInv", nao.RotRArmFixInv, xyz(0, 0, kPi)},
      {"TBaseLLeg", nao.TBaseLLeg, shift(0, 55, -115)},
      {"TEndLLeg", nao.TEndLLeg, shift(0, 0, -20)},
      {"RotLLeg", nao.RotLLeg, zyx(kPi, -kPi / 2, 0)},
      {"RotFixLLeg", nao.RotFixLLeg, xyz(kPi / 4, 0, 0)},
      {"TBaseLLegInv", nao.TBaseLLegInv, shift(0, -55, 115)},
      {"TEndLLegInv", nao.TEndLLegInv, shift(0, 0, 20)},
      {"TBaseBRLeg", nao.TBaseBRLeg, shift(0, -55, -115)},
      {"TEndRLeg", nao.TEndRLeg, shift(0, 0, -20)},
      {"RotRLeg", nao.RotRLeg, zyx(kPi, -kPi / 2, 0)},
      {"RotFixRLeg", nao.RotFixRLeg, xyz(-kPi / 4, 0, 0)},
      {"TBaseRLegInv", nao.TBaseRLegInv, shift(0, 55, 115)},
      {"TEndRLegInv", nao.TEndRLegInv, shift(0, 0, 20)},
      {"TBaseLArmInv", nao.TBaseLArmInv, shift(0, -113, -100)},
      {"TBaseRArmInv", nao.TBaseRArmInv, shift(0, 113, -100)},
      {"TEndAndRotLArmInv", nao.TEndAndRotLArmInv,
       shift(-55.95, 0, 0) * xyz(kPi / 2, 0, kPi / 2).inverse()},
      {"TEndAndRotRArmInv", nao.TEndAndRotRArmInv,
       xyz(0, 0, kPi) * shift(55.95, 0, 0) * xyz(kPi / 2, 0, kPi / 2).inverse()},
      {"TLArmOldR", nao.TLArmOldR, xyz(0, 0, kPi / 2)},
      {"TRArmOldR", nao.TRArmOldR, xyz(0, 0, kPi / 2)},
      {"TLArmOldEnd", nao.TLArmOldEnd, shift(113.7, 0, 0)},
      {"TRArmOldEnd", nao.TRArmOldEnd, shift(-113.7, 0, 0)},
      {"RotLHshouldP", nao.RotLHshouldP, xyz(kPi / 2, 0, 0)},
      {"RotLHshoulR", nao.RotLHshoulR, xyz(0, 0, kPi / 2)},
      {"RotLHelbowY", nao.RotLHelbowY, xyz(kPi / 2, 0, kPi / 2)},
      {"RotLHelbowR", nao.RotLHelbowR, xyz(0, 0, kPi / 2)},
      {"RotRHshouldP", nao.RotRHshouldP, xyz(kPi / 2, 0, 0)},
      {"RotRHshoulR", nao.RotRHshoulR, xyz(0, 0, -kPi / 2)},
      {"RotRHelbowY", nao.RotRHelbowY, xyz(kPi / 2, 0, -kPi / 2)},
      {"RotRHelbowR", nao.RotRHelbowR, xyz(0, 0, -kPi / 2)},
      {"RotRHwristY", nao.RotRHwristY, xyz(kPi / 2, 0, -kPi / 2)},
      {"RotLLhipYP", nao.RotLLhipYP, xyz(0, 3 * kPi / 4, kPi / 2)},
      {"RotLLhipR", nao.RotLLhipR, xyz(0, kPi / 2, 0)},
      {"RotLLallPitchs", nao.RotLLallPitchs, xyz(0, kPi / 2, kPi / 2)},
      {"RotRLhipYP", nao.RotRLhipYP, xyz(0, kPi / 4, kPi / 2)},
      {"RotRLhipR", nao.RotRLhipR, xyz(0, kPi / 2, 0)},
      {"RotRLallPitchs", nao.RotRLallPitchs, xyz(0, kPi / 2, kPi / 2)},
  };
  for (const auto& row : rows) {
    EXPECT_LT(difference(values(row.member), row.value), 1e-13) << row.name;
  }
  EXPECT_EQ(NAOKinematics::PI, 3.141592653589793);
}

// Forward chains.

TEST(NAOKinematicsForwardTest, StraightRobotEndsWhereMeasured) {
  NAOKinematics nao;
  const struct {
    const char* chain;
    double x, y, z;
  } rows[] = {
      {"LeftLeg", 0, 55, -355},        {"RightLeg", 0, -55, -355},
      {"CameraTop", 53.9, 0, 194.4},   {"CameraBot", 48.8, 0, 150.31},
      {"LeftHand", 218.7, 113, 100},   {"LeftArm", 218.7, 113, 100},
      {"RightHand", 218.7, -113, 100}, {"RightArm", 218.7, -113, 100},
  };
  for (const auto& row : rows) {
    kmatTable end;
    nao.filterForward(end, row.chain, std::vector<double>(6, 0.0));
    EXPECT_LT(difference(values(end), shift(row.x, row.y, row.z)), kRounding) << row.chain;
  }
}

TEST(NAOKinematicsForwardTest, EveryChainAgreesWithTheDollOfPinJoints) {
  NAOKinematics nao;
  Draws draws(1);
  for (const std::string& chain : kChains) {
    CaseCount cases(chain, kCases);
    for (int n = 0; n < kCases; ++n) {
      const std::vector<double> joints = drawnJoints(draws, 6);
      kmatTable end;
      nao.filterForward(end, chain, joints);
      ASSERT_LT(difference(values(end), body::end(chain, joints).matrix()), kRounding) << chain;
      cases.count();
    }
  }
}

TEST(NAOKinematicsForwardTest, DirectOperationsEqualTheNamedChains) {
  NAOKinematics nao;
  const std::vector<double> q = {0.1, -0.2, 0.3, -0.4, 0.5, -0.6};
  kmatTable direct, named;
  const auto expectEqual = [&](const char* chain) {
    nao.filterForward(named, chain, q);
    EXPECT_EQ(values(direct), values(named)) << chain;
  };
  nao.forwardLeftHand(direct, q[0], q[1], q[2], q[3], q[4]);
  expectEqual("LeftHand");
  expectEqual("LeftArm");
  nao.forwardRightHand(direct, q[0], q[1], q[2], q[3], q[4]);
  expectEqual("RightHand");
  expectEqual("RightArm");
  nao.forwardLeftLeg(direct, q[0], q[1], q[2], q[3], q[4], q[5]);
  expectEqual("LeftLeg");
  nao.forwardRightLeg(direct, q[0], q[1], q[2], q[3], q[4], q[5]);
  expectEqual("RightLeg");
  nao.forwardCamera(direct, q[0], q[1], true);
  expectEqual("CameraTop");
  nao.forwardCamera(direct, q[0], q[1], false);
  expectEqual("CameraBot");
}

TEST(NAOKinematicsForwardTest, UnknownNameClearsTheMatrix) {
  NAOKinematics nao;
  for (const char* name : {"", "Torso", "leftleg", "LeftLeg ", "Head"}) {
    kmatTable t;
    nao.filterForward(t, "LeftLeg", std::vector<double>(6, 0.3));
    nao.filterForward(t, name, {});
    EXPECT_EQ(values(t).topRows(3), Eigen::MatrixXd::Zero(3, 4)) << name;
    EXPECT_TRUE(t.AisZero);
    EXPECT_FALSE(t.AisIdentity);
    EXPECT_TRUE(t.BisZero);
  }
}

TEST(NAOKinematicsForwardTest, FlagsAreRecomputedFromTheResult) {
  NAOKinematics nao;
  kmatTable t;
  nao.filterForward(t, "CameraTop", {0.4, 0.2});
  EXPECT_FALSE(t.AisZero);
  EXPECT_FALSE(t.AisIdentity);
  EXPECT_FALSE(t.BisZero);
  nao.filterForward(t, "LeftLeg", std::vector<double>(6, 0.0));
  EXPECT_TRUE(t.AisIdentity) << "the diagonal is all 1";
}

TEST(NAOKinematicsForwardTest, TooFewJointsAreAFaultOfTheCaller) {
  NAOKinematics nao;
  kmatTable t;
  EXPECT_DEATH(nao.filterForward(t, "LeftLeg", {0, 0, 0, 0, 0}), "");
  EXPECT_DEATH(nao.filterForward(t, "CameraTop", {}), "");
}

TEST(NAOKinematicsForwardTest, MirroredJointsOfALegGiveTheMirroredFoot) {
  NAOKinematics nao;
  CaseCount cases("mirrored legs", kCases);
  Draws draws(2);
  const Eigen::Matrix4d mirror = Eigen::Vector4d(1, -1, 1, 1).asDiagonal();
  for (int n = 0; n < kCases; ++n) {
    const std::vector<double> q = drawnJoints(draws, 6);
    kmatTable left, right;
    nao.filterForward(left, "LeftLeg", q);
    nao.filterForward(right, "RightLeg", {q[0], -q[1], q[2], q[3], q[4], -q[5]});
    ASSERT_LT(difference(values(right), mirror * values(left) * mirror), kRounding);
    cases.count();
  }
}

TEST(NAOKinematicsForwardTest, MirroredJointsOfAnArmGiveTheMirroredHand) {
  NAOKinematics nao;
  CaseCount cases("mirrored arms", kCases);
  Draws draws(3);
  const Eigen::Matrix4d mirror = Eigen::Vector4d(1, -1, 1, 1).asDiagonal();
  for (int n = 0; n < kCases; ++n) {
    const std::vector<double> q = drawnJoints(draws, 5);
    kmatTable left, right;
    nao.filterForward(left, "LeftHand", q);
    nao.filterForward(right, "RightHand", {q[0], -q[1], -q[2], -q[3], -q[4]});
    ASSERT_LT(difference(values(right), mirror * values(left) * mirror), kRounding);
    cases.count();
  }
}

// From one end to another.

TEST(NAOKinematicsFromToTest, TorsoToFootAndBack) {
  NAOKinematics nao;
  const std::vector<double> zeros(6, 0.0);
  const FKvars down = nao.filterForwardFromTo("Torso", "RightLeg", {}, zeros);
  EXPECT_NEAR(down.pointX, 0, kRounding);
  EXPECT_NEAR(down.pointY, -55, kRounding);
  EXPECT_NEAR(down.pointZ, -355, kRounding);
  EXPECT_NEAR(down.angleX, 0, 1e-15);
  EXPECT_NEAR(down.angleY, 0, 1e-15);
  EXPECT_NEAR(down.angleZ, 0, 1e-15);

  const FKvars up = nao.filterForwardFromTo("RightLeg", "Torso", zeros, {});
  EXPECT_NEAR(up.pointY, 55, kRounding);
  EXPECT_NEAR(up.pointZ, 355, kRounding);
}

TEST(NAOKinematicsFromToTest, TorsoToTorsoIsTheIdentity) {
  NAOKinematics nao;
  EXPECT_EQ(values(nao.forwardFromTo("Torso", "Torso", {}, {})),
            Eigen::Matrix4d::Identity().eval());
}

TEST(NAOKinematicsFromToTest, UnknownNamesGiveZerosAndNoError) {
  NAOKinematics nao;
  const std::vector<double> q(6, 0.1);
  for (const auto& [start, stop] : std::vector<std::pair<std::string, std::string>>{
           {"nowhere", "LeftLeg"}, {"nowhere", "Torso"}, {"nowhere", "nowhere"}}) {
    const FKvars f = nao.filterForwardFromTo(start, stop, q, q);
    EXPECT_EQ(f.pointX, 0);
    EXPECT_EQ(f.pointY, 0);
    EXPECT_EQ(f.pointZ, 0);
    EXPECT_EQ(f.angleX, 0);
    EXPECT_EQ(f.angleY, 0);
    EXPECT_EQ(f.angleZ, 0);
  }
}

TEST(NAOKinematicsFromToTest, StartThatCannotBeInvertedPassesTheExceptionOn) {
  NAOKinematics nao;
  const std::vector<double> none(6, std::numeric_limits<double>::quiet_NaN());
  EXPECT_THROW(nao.filterForwardFromTo("LeftLeg", "Torso", none, {}),
               KMath::KMat::SingularMatrixInvertionException);
}

TEST(NAOKinematicsFromToTest, AgreesWithTheDollBetweenAllChains) {
  NAOKinematics nao;
  CaseCount cases("pairs of chains", kCases);
  Draws draws(4);
  std::vector<std::string> names = kChains;
  names.push_back("Torso");
  for (int n = 0; n < kCases; ++n) {
    const std::string start = names[draws.oneOf(static_cast<int>(names.size()))];
    const std::string stop = names[draws.oneOf(static_cast<int>(names.size()))];
    const std::vector<double> a = drawnJoints(draws, 6), b = drawnJoints(draws, 6);
    const Eigen::Isometry3d expected = body::end(start, a).inverse() * body::end(stop, b);

    const kmatTable t = nao.forwardFromTo(start, stop, a, b);
    ASSERT_LT(difference(values(t), expected.matrix()), kRounding) << start << ' ' << stop;

    const FKvars f = nao.filterForwardFromTo(start, stop, a, b);
    ASSERT_LT((Eigen::Vector3d(f.pointX, f.pointY, f.pointZ) - expected.translation()).norm(),
              kRounding);
    // The angles must rebuild the rotation, with the pitch in the half circle that an arc tangent
    // over a root has.
    ASSERT_LT(difference(zyx(f.angleZ, f.angleY, f.angleX).topLeftCorner(3, 3), expected.linear()),
              1e-7);
    ASSERT_LE(std::fabs(f.angleY), kPi / 2);
    cases.count();
  }
}

TEST(NAOKinematicsFromToTest, EachAngleIsThatAboutItsAxis) {
  NAOKinematics nao;
  // The head turns about z first and y next, so both can be read off; the foot rolls about x.
  const FKvars head = nao.filterForwardFromTo("Torso", "CameraTop", {}, {0.4, -0.3});
  EXPECT_NEAR(head.angleZ, 0.4, 1e-15);
  EXPECT_NEAR(head.angleY, -0.3, 1e-15);
  EXPECT_NEAR(head.angleX, 0, 1e-15);
  const FKvars foot = nao.filterForwardFromTo("Torso", "LeftLeg", {}, {0, 0, 0, 0, 0, 0.25});
  EXPECT_NEAR(foot.angleX, 0.25, 1e-15);
}

// The centre of mass.

struct Mass {
  double x, y, z, mass;
};

// The mass centres as measured on the straight robot: offsets from each joint along the torso's
// axes.
Eigen::Vector3d centreOfMass(const std::vector<double>& q) {
  const std::vector<Mass> head = {{-0.02, 0.17, -25.56, 0.0593}, {1.2, -0.84, 53.53, 0.52065}};
  const std::vector<Mass> leftArm = {{-1.78, -24.96, 0.18, 0.06996},
                                     {18.85, 5.77, 0.65, 0.12309},
                                     {-25.6, -0.01, -0.19, 0.05971},
                                     {25.56, -2.81, 0.76, 0.07761},
                                     {34.34, -0.88, 3.08, 0.18533}};
  const std::vector<Mass> leftLeg = {{-7.66, -12, 27.17, 0.07117},  {-16.49, 0.29, -4.75, 0.1353},
                                     {1.32, 2.35, -53.52, 0.39421}, {4.22, 2.52, -48.68, 0.29159},
                                     {1.42, 0.28, 6.38, 0.13892},   {25.4, 3.32, -32.41, 0.16175}};
  const std::vector<Mass> rightLeg = {
      {-7.66, 12, 27.17, 0.07117},    {-16.49, -0.29, -4.75, 0.1353},
      {1.32, -2.35, -53.52, 0.39421}, {4.22, -2.52, -48.68, 0.29159},
      {1.42, -0.28, 6.38, 0.13892},   {25.4, -3.32, -32.41, 0.16175}};
  const std::vector<Mass> rightArm = {{-1.78, 24.96, 0.18, 0.06996},
                                      {18.85, -5.77, 0.65, 0.12309},
                                      {-25.6, 0.01, -0.19, 0.05971},
                                      {25.52, -2.81, 0.9, 0.07778},
                                      {34.34, -0.88, 3.08, 0.18533}};
  const auto joints = [&q](int first, int count) {
    return std::vector<double>(q.begin() + first, q.begin() + first + count);
  };
  Eigen::Vector3d sum = 1.03948 * Eigen::Vector3d(-4.15, 0.07, 42.58);
  const auto add = [&sum](const std::vector<body::Pose>& frames, const std::vector<Mass>& masses) {
    ASSERT_EQ(frames.size(), masses.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
      sum += masses[i].mass * (frames[i] * Eigen::Vector3d(masses[i].x, masses[i].y, masses[i].z));
    }
  };
  add(body::head(joints(0, 2)), head);
  add(body::arm(1, joints(2, 5)), leftArm);
  // The model gives the masses of the two hips in a frame that looks backward.
  const auto hipTurned = [](std::vector<body::Pose> frames) {
    frames[1] = frames[1] * body::turn(kPi, body::kZ);
    return frames;
  };
  add(hipTurned(body::leg(1, joints(7, 6))), leftLeg);
  add(hipTurned(body::leg(-1, joints(13, 6))), rightLeg);
  add(body::arm(-1, joints(19, 5)), rightArm);
  return 0.20496003279360528 * sum;
}

TEST(NAOKinematicsCentreOfMassTest, AgreesWithTheMassesOfTheDoll) {
  NAOKinematics nao;
  CaseCount cases("centres of mass", kCases);
  Draws draws(5);
  for (int n = 0; n < kCases; ++n) {
    const std::vector<double> joints = drawnJoints(draws, 24);
    const Eigen::Vector3d expected = centreOfMass(joints);
    const FKvars f = nao.calculateCenterOfMass(joints);
    ASSERT_LT((Eigen::Vector3d(f.pointX, f.pointY, f.pointZ) - expected).norm(), kRounding);
    ASSERT_EQ(f.angleX, 0);
    ASSERT_EQ(f.angleY, 0);
    ASSERT_EQ(f.angleZ, 0);
    cases.count();
  }
}

TEST(NAOKinematicsCentreOfMassTest, ForearmsDoNotMirrorEachOther) {
  // On the straight robot all masses in pairs cancel in y but for the arms' -0.88 of the hands,
  // which have one sign, and the forearms. Worked by hand: head 0.17 * 0.0593 - 0.84 * 0.52065,
  // torso 0.07 * 1.03948, hands 2 * -0.88 * 0.18533, forearms (113 - 2.81) * 0.07761 and
  // (-113 - 2.81) * 0.07778.
  const double sum = 0.17 * 0.0593 - 0.84 * 0.52065 + 0.07 * 1.03948 - 2 * 0.88 * 0.18533 +
                     110.19 * 0.07761 - 115.81 * 0.07778;
  NAOKinematics nao;
  const FKvars f = nao.calculateCenterOfMass(std::vector<double>(24, 0.0));
  EXPECT_NEAR(f.pointY, sum * 0.20496003279360528, kRounding);
}

TEST(NAOKinematicsCentreOfMassTest, WrongNumberOfJointsIsReportedWithAnotherNumber) {
  NAOKinematics nao;
  const std::string text = "Kinematics CoM fatal: joints vector not equal to 22\n";
  for (const int count : {0, 22, 23, 24, 25}) {
    std::vector<double> joints(count, 0.1);
    testing::internal::CaptureStdout();
    const FKvars f = nao.calculateCenterOfMass(joints);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), count == 24 ? "" : text) << count;
    joints.resize(24, 0.1);
    if (count >= 24) {
      EXPECT_EQ(f.pointX, nao.calculateCenterOfMass(joints).pointX) << "the first 24 count";
    } else {
      EXPECT_EQ(f.pointX, 0) << "too few: stops after the message";
      EXPECT_EQ(f.pointZ, 0);
    }
  }
}

// Scratch space.

TEST(NAOKinematicsScratchTest, EarlierCallsLeaveNoTrace) {
  NAOKinematics used;
  Draws draws(6);
  CaseCount cases("calls on one object and on fresh ones", 1000);
  for (int n = 0; n < 1000; ++n) {
    const std::string chain = kChains[draws.oneOf(static_cast<int>(kChains.size()))];
    const std::vector<double> joints = drawnJoints(draws, 6);
    kmatTable a, b;
    used.filterForward(a, chain, joints);
    used.inverseLeftLeg(a);
    used.inverseRightHand(a);
    used.inverseLeftHand(a);
    used.calculateCenterOfMass(drawnJoints(draws, 24));
    used.filterForward(a, chain, joints);
    NAOKinematics().filterForward(b, chain, joints);
    ASSERT_EQ(values(a), values(b));
    cases.count();
  }
}

}  // namespace
