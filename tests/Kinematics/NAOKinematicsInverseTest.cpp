// The inverse solutions of NAOKinematics.

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "Kinematics/BodyModel.h"
#include "Kinematics/Draws.h"
#include "Kinematics/NAOKinematics.h"

namespace {

using Joints = std::vector<double>;
using KMath::KMat::SingularMatrixInvertionException;
using KMath::KMat::transformations;
using Solutions = NAOKinematics::Solutions;

constexpr double kPi = 3.141592653589793;
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int kCases = 10000;

// How far a solution may be from the joints that were put in.
constexpr double kFound = 1e-6;

// How far the end of a returned solution may be from the target: the solver's own bound, the root
// of 2.220446049250313e-9 square millimetres, and rounding.
constexpr double kReached = 4.8e-5;

struct Range {
  double low, high;
};

struct Leg {
  const char* chain;
  Range joints[6];  // in chain order
};

const Leg kLeft = {"LeftLeg",
                   {{-1.1453, 0.7408},
                    {-0.3794, 0.7904},
                    {-1.7739, 0.484},
                    {-0.103, 3.14},
                    {-3.14, 3.14},
                    {-1, 2}}};
const Leg kRight = {"RightLeg",
                    {{-1.1453, 0.7408},
                     {-0.7383, 0.4147},
                     {-1.7723, 0.4856},
                     {-0.103, 3.14},
                     {-3.14, 3.14},
                     {-2, 1}}};

Solutions solve(const Leg& leg, const kmatTable& target) {
  NAOKinematics nao;
  return &leg == &kLeft ? nao.inverseLeftLeg(target) : nao.inverseRightLeg(target);
}

Solutions solve(const Leg& leg, double px, double py, double pz, double rx, double ry, double rz) {
  NAOKinematics nao;
  return &leg == &kLeft ? nao.inverseLeftLeg(px, py, pz, rx, ry, rz)
                        : nao.inverseRightLeg(px, py, pz, rx, ry, rz);
}

// The target that the doll's limb reaches with these joints.
kmatTable targetOf(const body::Pose& pose) {
  kmatTable t;
  t.identity();
  for (int i = 0; i < 3; ++i) {
    t.B.get(i, 0) = pose.translation()(i);
    for (int j = 0; j < 3; ++j) t.A.get(i, j) = pose.linear()(i, j);
  }
  t.check();
  return t;
}
kmatTable targetOf(const std::string& chain, const Joints& joints) {
  return targetOf(body::end(chain, joints));
}

double distance(const Joints& a, const Joints& b) {
  double largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::fabs(a[i] - b[i]));
  return largest;
}

bool contains(const Solutions& solutions, const Joints& joints) {
  return std::any_of(solutions.begin(), solutions.end(),
                     [&](const Joints& s) { return distance(s, joints) < kFound; });
}

double error(const std::string& chain, const Joints& solution, const kmatTable& target) {
  const Eigen::Vector3d wanted(target.B.read(0, 0), target.B.read(1, 0), target.B.read(2, 0));
  return (body::end(chain, solution).translation() - wanted).norm();
}

// Legs.

class NAOKinematicsInverseLegsTest : public testing::TestWithParam<const Leg*> {};
INSTANTIATE_TEST_SUITE_P(NAOKinematicsInverse, NAOKinematicsInverseLegsTest,
                         testing::Values(&kLeft, &kRight),
                         [](const auto& leg) { return leg.param->chain; });

// Within the ranges of the solver and those of the robot's ankle and knee, whichever is narrower.
Joints drawnLeg(Draws& draws, const Leg& leg, Range knee) {
  return {draws.between(leg.joints[0].low, leg.joints[0].high),
          draws.between(leg.joints[1].low, leg.joints[1].high),
          draws.between(leg.joints[2].low, leg.joints[2].high),
          draws.between(knee.low, knee.high),
          draws.between(-1.19, 0.92),
          draws.between(-0.77, 0.39)};
}

void expectJointsFound(const Leg& leg, Range knee, unsigned seed) {
  CaseCount cases(std::string("joints found again, ") + leg.chain, kCases);
  CaseCount returned(std::string("solutions checked, ") + leg.chain, kCases);
  Draws draws(seed);
  NAOKinematics nao;
  for (int n = 0; n < kCases; ++n) {
    const Joints joints = drawnLeg(draws, leg, knee);
    kmatTable target;
    nao.filterForward(target, leg.chain, joints);
    const Solutions solutions =
        &leg == &kLeft ? nao.inverseLeftLeg(target) : nao.inverseRightLeg(target);
    ASSERT_TRUE(contains(solutions, joints)) << testing::PrintToString(joints);
    for (const Joints& s : solutions) {
      ASSERT_EQ(s.size(), 6u);
      ASSERT_LT(error(leg.chain, s, target), kReached);
      for (int i = 0; i < 6; ++i) {
        ASSERT_GE(s[i], leg.joints[i].low) << i;
        ASSERT_LE(s[i], leg.joints[i].high) << i;
      }
      returned.count();
    }
    cases.count();
  }
}

TEST_P(NAOKinematicsInverseLegsTest, JointsOfAReachedTargetAreAmongTheSolutions) {
  expectJointsFound(*GetParam(), {0.05, 2.2}, 11);
}

TEST_P(NAOKinematicsInverseLegsTest, KneesBentSlightlyBackwardAreFoundToo) {
  expectJointsFound(*GetParam(), {-0.1, -0.02}, 12);
}

TEST_P(NAOKinematicsInverseLegsTest, StretchedLegHasTwoEqualSolutionsOfZeros) {
  const double side = GetParam() == &kLeft ? 1 : -1;
  const Solutions solutions = solve(*GetParam(), 0, side * 55, -355, 0, 0, 0);
  ASSERT_EQ(solutions.size(), 2u);
  for (const Joints& s : solutions) EXPECT_LT(distance(s, Joints(6, 0.0)), 1e-12);
  EXPECT_FALSE(std::signbit(solutions[0][3]));
  EXPECT_TRUE(std::signbit(solutions[1][3])) << "the second knee candidate is the negated first";
}

TEST_P(NAOKinematicsInverseLegsTest, SlightlyBentLegHasExactlyTheJointsPutIn) {
  const Joints joints = {0, 0, -0.4, 0.8, -0.4, 0};
  NAOKinematics nao;
  kmatTable target;
  nao.filterForward(target, GetParam()->chain, joints);
  const Solutions solutions = solve(*GetParam(), target);
  ASSERT_EQ(solutions.size(), 1u);
  EXPECT_LT(distance(solutions[0], joints), 1e-12);
}

TEST_P(NAOKinematicsInverseLegsTest, TargetOutOfReachHasNoSolution) {
  const double side = GetParam() == &kLeft ? 1 : -1;
  EXPECT_TRUE(solve(*GetParam(), 0, side * 55, -356, 0, 0, 0).empty()) << "below the stretched leg";
  EXPECT_TRUE(solve(*GetParam(), 300, side * 55, -200, 0, 0, 0).empty());
  // Nearer to the hip than thigh less shank.
  EXPECT_TRUE(solve(*GetParam(), 0, side * 55, -140, 0, 0, 0).empty());
}

TEST_P(NAOKinematicsInverseLegsTest, PositionThatIsNoNumberHasNoSolution) {
  EXPECT_TRUE(solve(*GetParam(), kNotANumber, 0, -300, 0, 0, 0).empty());
  EXPECT_TRUE(solve(*GetParam(), 0, std::numeric_limits<double>::infinity(), 0, 0, 0, 0).empty());
}

TEST_P(NAOKinematicsInverseLegsTest, RotationThatCannotBeInvertedPassesTheExceptionOn) {
  EXPECT_THROW(solve(*GetParam(), 0, 0, -300, kNotANumber, 0, 0), SingularMatrixInvertionException);
  kmatTable reflection = targetOf(GetParam()->chain, {0, 0, -0.4, 0.8, -0.4, 0});
  for (int i = 0; i < 3; ++i) reflection.A.get(i, 1) = -reflection.A.read(i, 1);
  reflection.check();
  EXPECT_THROW(solve(*GetParam(), reflection), SingularMatrixInvertionException);
}

TEST_P(NAOKinematicsInverseLegsTest, BothFormsAgree) {
  CaseCount cases("positions and angles against transforms", kCases);
  Draws draws(13);
  for (int n = 0; n < kCases; ++n) {
    const body::Pose pose = body::end(GetParam()->chain, drawnLeg(draws, *GetParam(), {0.05, 2.2}));
    const Eigen::Vector3d p = pose.translation();
    const Eigen::Vector3d angles = pose.linear().eulerAngles(2, 1, 0);  // about z, y, x
    kmatTable target;
    transformations::makeTransformation(target, p.x(), p.y(), p.z(), angles[2], angles[1],
                                        angles[0]);
    const Solutions one = solve(*GetParam(), target);
    ASSERT_FALSE(one.empty());
    ASSERT_EQ(one, solve(*GetParam(), p.x(), p.y(), p.z(), angles[2], angles[1], angles[0]));
    cases.count();
  }
}

TEST_P(NAOKinematicsInverseLegsTest, JointsOutsideTheirRangesAreDropped) {
  const Leg& leg = *GetParam();
  const bool left = &leg == &kLeft;
  const Joints middle = {-0.2, 0.02, -0.6, 0.9, -0.3, 0.1};
  const struct {
    int joint;
    double bound;
    double outward;
  } rows[] = {
      {0, -1.1453, -1},
      {0, 0.7408, 1},
      {1, left ? -0.3794 : -0.7383, -1},
      {1, left ? 0.7904 : 0.4147, 1},
      {2, left ? -1.7739 : -1.7723, -1},
      {2, left ? 0.484 : 0.4856, 1},
      {3, -0.103, -1},
      {3, 3.14, 1},
      {4, -3.14, -1},
      {4, 3.14, 1},
      {5, left ? -1.0 : 1.0, left ? -1.0 : 1.0},
  };
  for (const auto& row : rows) {
    Joints joints = middle;
    joints[row.joint] = row.bound - row.outward * 1e-4;
    EXPECT_TRUE(contains(solve(leg, targetOf(leg.chain, joints)), joints))
        << "joint " << row.joint << " just within " << row.bound;
    joints[row.joint] = row.bound + row.outward * 1e-4;
    EXPECT_FALSE(contains(solve(leg, targetOf(leg.chain, joints)), joints))
        << "joint " << row.joint << " just beyond " << row.bound;
  }
}

TEST_P(NAOKinematicsInverseLegsTest, AnkleRollOnItsWideSideEndsAtARightAngle) {
  // Bounds of -2 and 2 lie beyond what an arc tangent yields.
  const Leg& leg = *GetParam();
  const double inward = &leg == &kLeft ? 1 : -1;
  Joints joints = {0, 0, -0.6, 0.9, -0.3, inward * 1.57};
  EXPECT_TRUE(contains(solve(leg, targetOf(leg.chain, joints)), joints));
  joints[5] = inward * 1.58;
  EXPECT_TRUE(solve(leg, targetOf(leg.chain, joints)).empty());
}

TEST_P(NAOKinematicsInverseLegsTest, AnkleAtARightAngleIsLostWhereRoundingPassesTheArcSine) {
  // The stand-in has the sign opposite to the clipped arc sine, so such a target has no solution.
  // Required: with the other sign none of them would be lost.
  int found = 0, lost = 0;
  for (int i = 0; i < 2000; ++i) {
    const Joints joints = {-0.1, 0.05, -0.5, 0.05 + 0.001 * i, kPi / 2, 0.1};
    NAOKinematics nao;
    kmatTable target;
    nao.filterForward(target, GetParam()->chain, joints);
    const Solutions solutions = solve(*GetParam(), target);
    ++(contains(solutions, joints) ? found : lost);
  }
  EXPECT_GT(found, 500);
  EXPECT_GT(lost, 50);
}

TEST_P(NAOKinematicsInverseLegsTest, SolutionsComeInTheOrderOfTheCandidates) {
  // Knee first: the angle from the arc cosine, which is never negative, then its negative.
  CaseCount both("targets that both knee candidates reach", 50);
  Draws draws(14);
  for (int n = 0; n < 3000; ++n) {
    const Solutions solutions =
        solve(*GetParam(), targetOf(GetParam()->chain, drawnLeg(draws, *GetParam(), {-0.1, 0.1})));
    if (solutions.size() < 2) continue;
    ASSERT_TRUE(std::is_sorted(solutions.begin(), solutions.end(),
                               [](const Joints& a, const Joints& b) { return a[3] > b[3]; }));
    if (solutions.front()[3] > 0 && solutions.back()[3] < 0) both.count();
  }
}

TEST_P(NAOKinematicsInverseLegsTest, TheFirstSolutionIsThatOfTheList) {
  CaseCount none("targets without a solution", 50);
  CaseCount several("targets with several solutions", 50);
  Draws draws(15);
  const NAOKinematics::LegJoints untouched = {9, 8, 7, 6, 5, 4};
  const bool right = GetParam() == &kRight;
  for (int n = 0; n < 3000; ++n) {
    // Every other leg is nearly stretched: then both knee candidates are within the range.
    const bool stretched = n % 2 == 0;
    const double x = stretched ? 0 : draws.between(-120, 120);
    const double y = stretched ? (right ? -55 : 55) : draws.between(-120, 120);
    const double z = stretched ? draws.between(-355, -354.8) : draws.between(-360, -250);
    const Solutions solutions = solve(*GetParam(), x, y, z, 0, 0, 0);
    NAOKinematics::LegJoints joints = untouched;
    ASSERT_EQ(NAOKinematics().firstLegSolution(right, x, y, z, 0, 0, 0, joints),
              !solutions.empty());
    if (solutions.empty()) {
      ASSERT_EQ(joints, untouched);
      none.count();
    } else {
      ASSERT_EQ(Joints(joints.begin(), joints.end()), solutions.front());
      if (solutions.size() > 1) several.count();
    }
  }
}

TEST(NAOKinematicsInverseBothLegsTest, MirroredTargetsHaveMirroredSolutions) {
  // Within the ranges that both legs have in common.
  CaseCount cases("mirrored targets", kCases);
  Draws draws(15);
  for (int n = 0; n < kCases; ++n) {
    const Joints q = {draws.between(-1.145, 0.74), draws.between(-0.379, 0.414),
                      draws.between(-1.77, 0.483), draws.between(0.05, 2.2),
                      draws.between(-1.19, 0.92),  draws.between(-0.77, 0.77)};
    const Joints mirrored = {q[0], -q[1], q[2], q[3], q[4], -q[5]};
    ASSERT_TRUE(contains(solve(kLeft, targetOf("LeftLeg", q)), q));
    ASSERT_TRUE(contains(solve(kRight, targetOf("RightLeg", mirrored)), mirrored));
    cases.count();
  }
}

TEST(NAOKinematicsInverseBothLegsTest, RangesOfTheTwoHipsAreNotMirrored) {
  const Joints left = {0, 0, -1.773, 0.9, 0.3, 0};
  EXPECT_TRUE(contains(solve(kLeft, targetOf("LeftLeg", left)), left));
  EXPECT_FALSE(contains(solve(kRight, targetOf("RightLeg", left)), left));
  const Joints right = {0, 0, 0.485, 0.9, -0.3, 0};
  EXPECT_TRUE(contains(solve(kRight, targetOf("RightLeg", right)), right));
  EXPECT_FALSE(contains(solve(kLeft, targetOf("LeftLeg", right)), right));
}

// Arms.

Joints drawnArm(Draws& draws, double side) {
  // Drawn for the left arm; a wrist turn that is no full circle, as it is not bounded here.
  const Joints q = {draws.between(-2.0857, 2.0857), draws.between(-0.3142, 1.3265),
                    draws.between(-2.0875, 2.0875), draws.between(-1.5446, -0.001),
                    draws.between(-3.1, 3.1)};
  return side > 0 ? q : Joints{q[0], -q[1], -q[2], -q[3], -q[4]};
}

TEST(NAOKinematicsInverseArmsTest, JointsOfTheLeftArmAreAmongTheSolutions) {
  CaseCount cases("left arm found again", kCases);
  CaseCount returned("solutions of the left arm checked", kCases);
  const Range ranges[5] = {{-2.0857, 2.0857},
                           {-0.3142, 1.3265},
                           {-2.0875, 2.0875},
                           {-1.5446, 9.999999747378752e-6},
                           {-kPi, kPi}};
  Draws draws(21);
  NAOKinematics nao;
  for (int n = 0; n < kCases; ++n) {
    const Joints joints = drawnArm(draws, 1);
    kmatTable target;
    nao.filterForward(target, "LeftHand", joints);
    const Solutions solutions = nao.inverseLeftHand(target);
    ASSERT_TRUE(contains(solutions, joints)) << testing::PrintToString(joints);
    for (const Joints& s : solutions) {
      ASSERT_EQ(s.size(), 5u);
      ASSERT_LT(error("LeftHand", s, target), kReached);
      for (int i = 0; i < 5; ++i) {
        ASSERT_GE(s[i], ranges[i].low) << i;
        ASSERT_LE(s[i], ranges[i].high) << i;
      }
      returned.count();
    }
    cases.count();
  }
}

TEST(NAOKinematicsInverseArmsTest, LeftArmJointsOutsideTheirRangesAreDropped) {
  NAOKinematics nao;
  const Joints middle = {0.3, 0.4, -0.5, -0.6, 0.7};
  const struct {
    int joint;
    double bound;
    double outward;
  } rows[] = {{0, -2.0857, -1}, {0, 2.0857, 1}, {1, -0.3142, -1}, {1, 1.3265, 1},
              {2, -2.0875, -1}, {2, 2.0875, 1}, {3, -1.5446, -1}};
  for (const auto& row : rows) {
    Joints joints = middle;
    joints[row.joint] = row.bound - row.outward * 1e-4;
    EXPECT_TRUE(contains(nao.inverseLeftHand(targetOf("LeftHand", joints)), joints))
        << "joint " << row.joint << " just within " << row.bound;
    joints[row.joint] = row.bound + row.outward * 1e-4;
    EXPECT_FALSE(contains(nao.inverseLeftHand(targetOf("LeftHand", joints)), joints))
        << "joint " << row.joint << " just beyond " << row.bound;
  }
}

TEST(NAOKinematicsInverseArmsTest, ElbowTurnedByARightAngleIsFoundOnOneSideOnly) {
  // Where the cosine of the elbow yaw vanishes the shoulder pitch comes from another formula, which
  // takes the sine of the yaw for -1 on the left arm.
  NAOKinematics nao;
  const Joints inward = {0.8, 0.4, -kPi / 2, -0.6, 0.2};
  EXPECT_TRUE(contains(nao.inverseLeftHand(targetOf("LeftHand", inward)), inward));
  const Joints outward = {0.8, 0.4, kPi / 2, -0.6, 0.2};
  EXPECT_TRUE(nao.inverseLeftHand(targetOf("LeftHand", outward)).empty());
}

TEST(NAOKinematicsInverseArmsTest, ElbowTurnedByARightAngleWithTheArmForwardIsFoundOnBothSides) {
  // Both cosines vanish: the shoulder pitch comes from where the elbow is.
  NAOKinematics nao;
  for (const double yaw : {kPi / 2, -kPi / 2}) {
    const Joints joints = {0.8, 0, yaw, -0.6, 0.2};
    EXPECT_TRUE(contains(nao.inverseLeftHand(targetOf("LeftHand", joints)), joints)) << yaw;
  }
}

TEST(NAOKinematicsInverseArmsTest, HandOutOfReachHasNoSolution) {
  NAOKinematics nao;
  EXPECT_TRUE(nao.inverseLeftHand(220, 113, 100, 0, 0, 0).empty()) << "beyond the stretched arm";
  EXPECT_TRUE(nao.inverseLeftHand(50, 113, 100, 0, 0, 0).empty()) << "the elbow would bend too far";
  EXPECT_TRUE(nao.inverseRightHand(220, -113, 100, 0, 0, 0).empty());
  EXPECT_TRUE(nao.inverseLeftHand(kNotANumber, 113, 100, 0, 0, 0).empty());
}

TEST(NAOKinematicsInverseArmsTest, RightArmFindsNothingForTargetsThatItReaches) {
  // Required: the turn of the hand is taken away twice.
  CaseCount cases("reached targets of the right arm", kCases);
  Draws draws(22);
  NAOKinematics nao;
  for (int n = 0; n < kCases; ++n) {
    const Joints joints = drawnArm(draws, -1);
    kmatTable target;
    nao.filterForward(target, "RightHand", joints);
    ASSERT_TRUE(nao.inverseRightHand(target).empty()) << testing::PrintToString(joints);
    cases.count();
  }
}

TEST(NAOKinematicsInverseArmsTest, RightArmSolvesTargetsWithTheHandTurnedOnceMore) {
  // What its steps are right for: a hand that points back along the lower arm.
  CaseCount cases("turned targets of the right arm", kCases);
  const Range ranges[5] = {{-2.0857, 2.0857},
                           {-1.3265, 0.3142},
                           {-2.0875, 2.0875},
                           {9.999999747378752e-6, 1.5446},
                           {-kPi, kPi}};
  Draws draws(23);
  NAOKinematics nao;
  for (int n = 0; n < kCases; ++n) {
    const Joints joints = drawnArm(draws, -1);
    const kmatTable target = targetOf(body::end("RightHand", joints) * body::turn(-kPi, body::kZ));
    const Solutions solutions = nao.inverseRightHand(target);
    ASSERT_TRUE(contains(solutions, joints)) << testing::PrintToString(joints);
    for (const Joints& s : solutions) {
      ASSERT_LT(error("RightHand", s, target), kReached);
      for (int i = 0; i < 5; ++i) {
        ASSERT_GE(s[i], ranges[i].low) << i;
        ASSERT_LE(s[i], ranges[i].high) << i;
      }
    }
    cases.count();
  }
}

TEST(NAOKinematicsInverseArmsTest, RightArmJointsOutsideTheirRangesAreDropped) {
  NAOKinematics nao;
  const Joints middle = {0.3, -0.4, 0.5, 0.6, -0.7};
  const struct {
    int joint;
    double bound;
    double outward;
  } rows[] = {{0, -2.0857, -1}, {0, 2.0857, 1}, {1, 0.3142, 1}, {1, -1.3265, -1},
              {2, -2.0875, -1}, {2, 2.0875, 1}, {3, 1.5446, 1}};
  const auto solved = [&nao](const Joints& joints) {
    return nao.inverseRightHand(
        targetOf(body::end("RightHand", joints) * body::turn(-kPi, body::kZ)));
  };
  for (const auto& row : rows) {
    Joints joints = middle;
    joints[row.joint] = row.bound - row.outward * 1e-4;
    EXPECT_TRUE(contains(solved(joints), joints)) << row.joint << " within " << row.bound;
    joints[row.joint] = row.bound + row.outward * 1e-4;
    EXPECT_FALSE(contains(solved(joints), joints)) << row.joint << " beyond " << row.bound;
  }
}

TEST(NAOKinematicsInverseArmsTest, BothFormsAgree) {
  CaseCount cases("positions and angles against transforms, arms", kCases);
  Draws draws(24);
  NAOKinematics nao;
  for (int n = 0; n < kCases; ++n) {
    const body::Pose pose = body::end("LeftHand", drawnArm(draws, 1));
    const Eigen::Vector3d p = pose.translation();
    const Eigen::Vector3d e = pose.linear().eulerAngles(2, 1, 0);
    kmatTable target;
    transformations::makeTransformation(target, p.x(), p.y(), p.z(), e[2], e[1], e[0]);
    const Solutions left = nao.inverseLeftHand(target);
    ASSERT_FALSE(left.empty());
    ASSERT_EQ(left, nao.inverseLeftHand(p.x(), p.y(), p.z(), e[2], e[1], e[0]));

    transformations::makeTransformation(target, p.x(), -p.y(), p.z(), -e[2], e[1], kPi - e[0]);
    const Solutions right = nao.inverseRightHand(target);
    ASSERT_EQ(right, nao.inverseRightHand(p.x(), -p.y(), p.z(), -e[2], e[1], kPi - e[0]));
    cases.count();
  }
}

// The head.

struct Camera {
  const char* chain;
  bool top;
};

class NAOKinematicsInverseHeadTest : public testing::TestWithParam<Camera> {};
INSTANTIATE_TEST_SUITE_P(NAOKinematicsInverse, NAOKinematicsInverseHeadTest,
                         testing::Values(Camera{"CameraTop", true}, Camera{"CameraBot", false}),
                         [](const auto& camera) { return camera.param.chain; });

TEST_P(NAOKinematicsInverseHeadTest, YawIsFoundOnOneSideOnly) {
  // Up to 0.672 the angle from the arc cosine is negated, beyond it is not: a turn to the right
  // is found while it is small, one to the left while it is large.
  NAOKinematics nao;
  const auto found = [&](double yaw) {
    const Joints joints = {yaw, -0.1};
    return contains(nao.inverseHead(targetOf(GetParam().chain, joints), false, GetParam().top),
                    joints);
  };
  EXPECT_TRUE(found(-0.3));
  EXPECT_TRUE(found(-0.671));
  EXPECT_FALSE(found(-0.673));
  EXPECT_FALSE(found(-1.5));
  EXPECT_FALSE(found(0.3));
  EXPECT_FALSE(found(0.671));
  EXPECT_TRUE(found(0.673));
  EXPECT_TRUE(found(1.5));
}

TEST_P(NAOKinematicsInverseHeadTest, EverySolutionPutsTheCameraWithinAMillimetre) {
  CaseCount cases("solutions of the head", kCases);
  Draws draws(31);
  NAOKinematics nao;
  for (int n = 0; n < 3 * kCases; ++n) {
    const double yaw = draws.oneOf(2) == 0 ? draws.between(-0.67, -0.01) : draws.between(0.68, 2);
    const Joints joints = {yaw, draws.between(-0.51, 0.67)};
    const kmatTable target = targetOf(GetParam().chain, joints);
    const Solutions solutions = nao.inverseHead(target, false, GetParam().top);
    ASSERT_TRUE(contains(solutions, joints)) << testing::PrintToString(joints);
    for (const Joints& s : solutions) {
      const Eigen::Vector3d end = body::end(GetParam().chain, s).translation();
      for (int i = 0; i < 3; ++i) ASSERT_LE(std::fabs(end(i) - target.B.read(i, 0)), 1 + 1e-9);
      cases.count();
    }
  }
}

TEST_P(NAOKinematicsInverseHeadTest, PositionIsComparedToTheMillimetre) {
  // The solver takes x and z from the target; y comes in by the comparison alone.
  NAOKinematics nao;
  const kmatTable target = targetOf(GetParam().chain, {-0.3, 0.1});
  const auto solutions = [&](double offset) {
    kmatTable moved = target;
    moved.B.get(1, 0) += offset;
    return nao.inverseHead(moved, false, GetParam().top).size();
  };
  EXPECT_EQ(solutions(0), 1u);
  EXPECT_EQ(solutions(0.999), 1u);
  EXPECT_EQ(solutions(-0.999), 1u);
  EXPECT_EQ(solutions(1.001), 0u);
  EXPECT_EQ(solutions(-1.001), 0u);
}

TEST_P(NAOKinematicsInverseHeadTest, TargetAboveTheNeckByMoreThanTheRadiusHasNoSolution) {
  NAOKinematics nao;
  const double radius = GetParam().top ? 86.69267558450368 : 54.29876702099229;
  EXPECT_TRUE(nao.inverseHead(0, 0, 126.5 + radius + 0.01, 0, 0, 0, false, GetParam().top).empty());
  EXPECT_TRUE(nao.inverseHead(0, 0, 126.5 - radius - 0.01, 0, 0, 0, false, GetParam().top).empty());
  EXPECT_TRUE(nao.inverseHead(kNotANumber, 0, kNotANumber, 0, 0, 0, false, GetParam().top).empty());
}

TEST_P(NAOKinematicsInverseHeadTest, RangeOfThePitchIsTestedAQuarterTurnOff) {
  // -2.0857 to 2.0857 is tested before the quarter turn is added, which leaves -0.5149 and up.
  NAOKinematics nao;
  const auto found = [&](double pitch) {
    const Joints joints = {-0.3, pitch};
    return contains(nao.inverseHead(targetOf(GetParam().chain, joints), false, GetParam().top),
                    joints);
  };
  EXPECT_FALSE(found(-0.5150));
  EXPECT_TRUE(found(-0.5148));
  EXPECT_TRUE(found(2.0));
}

TEST_P(NAOKinematicsInverseHeadTest, AnglesNeverGiveASolution) {
  NAOKinematics nao;
  EXPECT_TRUE(
      nao.inverseHead(targetOf(GetParam().chain, {-0.3, 0.1}), true, GetParam().top).empty());
  EXPECT_TRUE(nao.inverseHead(0, 0, 0, 0, 0.1, -0.3, true, GetParam().top).empty());
}

TEST_P(NAOKinematicsInverseHeadTest, BothFormsAgree) {
  NAOKinematics nao;
  const kmatTable target = targetOf(GetParam().chain, {-0.3, 0.1});
  const auto& b = target.B;
  const Solutions byNumbers =
      nao.inverseHead(b.read(0, 0), b.read(1, 0), b.read(2, 0), 1, 2, 3, false, GetParam().top);
  EXPECT_EQ(byNumbers.size(), 1u) << "the rotation does not count";
  EXPECT_EQ(byNumbers, nao.inverseHead(target, false, GetParam().top));
}

}  // namespace
