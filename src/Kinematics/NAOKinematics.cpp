#include "Kinematics/NAOKinematics.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iostream>
#include <utility>

using KMath::KMat::SingularMatrixInvertionException;
using KMath::KMat::transformations;

namespace {

constexpr double PI = NAOKinematics::PI;

// Link lengths in millimetres.
constexpr double kUpperArm = 105;
constexpr double kLowerArm = 57.75;
constexpr double kElbowToHand = 113.7;  // lower arm and hand
constexpr double kThigh = 120;
constexpr double kShank = 100;

// The joints of a whole body, as the centre of mass takes them.
constexpr std::size_t kBodyJoints = 24;

// The range of a joint in radians, both ends included. What is not a number lies outside.
struct Range {
  double low, high;
  bool holds(double angle) const { return angle >= low && angle <= high; }
};

constexpr Range kKneePitch = {-0.103, 3.14};
constexpr Range kAnklePitch = {-3.14, 3.14};
constexpr Range kHipYawPitch = {-1.1453, 0.7408};
constexpr Range kElbowYaw = {-2.0875, 2.0875};
constexpr Range kShoulderPitch = {-2.0857, 2.0857};
constexpr Range kHeadPitch = {-2.0857, 2.0857};

double square(double value) {
  return value * value;
}

double length(double x, double y, double z) {
  return std::sqrt(x * x + y * y + z * z);
}

// What a solution v of sin(v) = s is taken from to give the other one.
double halfTurn(double v) {
  return v >= 0 ? PI : -PI;
}

// Stands in for the asin of a quotient that rounding has pushed out of the domain.
double rightAngle(double quotient) {
  return quotient < 0 ? -PI / 2 : PI / 2;
}

}  // namespace

// The mass centre of a link: rotation leads from the joint's frame to the one that the offset is
// given in; without one they are the same.
struct NAOKinematics::LinkMass {
  const kmatTable NAOKinematics::*rotation;
  double x, y, z;  // millimetres
  double mass;     // kilograms
};

// Where the inverse solutions of the two legs differ.
struct NAOKinematics::LegSide {
  const char* chain;
  const kmatTable &baseInv, &endInv, &rotFix, &rot;
  double hipRollZero;
  Range hipRoll, hipPitch, ankleRoll;
};

// Where the inverse solutions of the two arms differ.
struct NAOKinematics::ArmSide {
  const char* chain;
  double sign;  // of the body's side: y of the shoulder
  const kmatTable &baseInv, &endAndRotInv, &oldR, &oldEnd, &straightEnd;
  Range elbowRoll, shoulderRoll;
};

kmatTable NAOKinematics::translation(double x, double y, double z) {
  kmatTable result;
  transformations::makeTranslation(result, x, y, z);
  return result;
}

kmatTable NAOKinematics::rotationXYZ(double x, double y, double z) {
  kmatTable result;
  transformations::makeRotationXYZ(result, x, y, z);
  return result;
}

kmatTable NAOKinematics::rotationZYX(double z, double y, double x) {
  kmatTable result;
  transformations::makeRotationZYX(result, z, y, x);
  return result;
}

kmatTable NAOKinematics::inverse(const kmatTable& transform) {
  kmatTable result = transform;
  return result.fast_invert();
}

kmatTable NAOKinematics::product(std::initializer_list<const kmatTable*> factors) {
  kmatTable result;
  result.identity();
  for (const kmatTable* factor : factors) result.fast_mult(*factor);
  return result;
}

// clang-format off
std::array<NAOKinematics::Link, 2> NAOKinematics::headLinks(const double* joints) {
  return {{{0, 0,       0, joints[0]},
           {0, -PI / 2, 0, joints[1] - PI / 2}}};
}

std::array<NAOKinematics::Link, 5> NAOKinematics::leftArmLinks(const double* joints) {
  return {{{0, -PI / 2, 0,         joints[0]},
           {0, PI / 2,  0,         joints[1] - PI / 2},
           {0, -PI / 2, kUpperArm, -joints[2]},
           {0, PI / 2,  0,         joints[3]},
           {0, -PI / 2, kLowerArm, -joints[4]}}};
}

std::array<NAOKinematics::Link, 5> NAOKinematics::rightArmLinks(const double* joints) {
  return {{{0, -PI / 2, 0,          joints[0]},
           {0, PI / 2,  0,          joints[1] + PI / 2},
           {0, -PI / 2, -kUpperArm, joints[2]},
           {0, PI / 2,  0,          joints[3]},
           {0, -PI / 2, -kLowerArm, joints[4]}}};
}

std::array<NAOKinematics::Link, 6> NAOKinematics::leftLegLinks(const double* joints) {
  return {{{0,       -3 * PI / 4, 0, joints[0] - PI / 2},
           {0,       -PI / 2,     0, joints[1] + PI / 4},
           {0,       PI / 2,      0, joints[2]},
           {-kThigh, 0,           0, joints[3]},
           {-kShank, 0,           0, joints[4]},
           {0,       -PI / 2,     0, joints[5]}}};
}

std::array<NAOKinematics::Link, 6> NAOKinematics::rightLegLinks(const double* joints) {
  return {{{0,       -PI / 4, 0, joints[0] - PI / 2},
           {0,       -PI / 2, 0, joints[1] - PI / 4},
           {0,       PI / 2,  0, joints[2]},
           {-kThigh, 0,       0, joints[3]},
           {-kShank, 0,       0, joints[4]},
           {0,       -PI / 2, 0, joints[5]}}};
}
// clang-format on

void NAOKinematics::forwardChain(kmatTable& EndTransf, const kmatTable& limbBase,
                                 std::span<const Link> links,
                                 std::initializer_list<const kmatTable*> end) {
  const std::array<kmatTable*, 6> factors = {&T1, &T2, &T3, &T4, &T5, &T6};
  Tend = limbBase;
  for (std::size_t i = 0; i < links.size(); ++i) {
    const Link& link = links[i];
    transformations::makeDHTransformation(*factors[i], link.a, link.alpha, link.d, link.theta);
    Tend.fast_mult(*factors[i]);
  }
  for (const kmatTable* factor : end) Tend.fast_mult(*factor);
  EndTransf = Tend;
}

void NAOKinematics::forwardLeftHand(kmatTable& EndTransf, double ShoulderPitch, double ShoulderRoll,
                                    double ElbowYaw, double ElbowRoll, double EwristYaw) {
  const double joints[] = {ShoulderPitch, ShoulderRoll, ElbowYaw, ElbowRoll, EwristYaw};
  forwardChain(EndTransf, TBaseLArm, leftArmLinks(joints), {&RotLArm, &TEndLArm});
}

void NAOKinematics::forwardRightHand(kmatTable& EndTransf, double ShoulderPitch,
                                     double ShoulderRoll, double ElbowYaw, double ElbowRoll,
                                     double EwristYaw) {
  const double joints[] = {ShoulderPitch, ShoulderRoll, ElbowYaw, ElbowRoll, EwristYaw};
  forwardChain(EndTransf, TBaseRArm, rightArmLinks(joints), {&RotRArm, &TEndRArm, &RotRArmFix});
}

void NAOKinematics::forwardLeftLeg(kmatTable& EndTransf, double HipYawPitch, double HipRoll,
                                   double HipPitch, double KneePitch, double AnklePitch,
                                   double AnkleRoll) {
  const double joints[] = {HipYawPitch, HipRoll, HipPitch, KneePitch, AnklePitch, AnkleRoll};
  forwardChain(EndTransf, TBaseLLeg, leftLegLinks(joints), {&RotLLeg, &TEndLLeg});
}

void NAOKinematics::forwardRightLeg(kmatTable& EndTransf, double HipYawPitch, double HipRoll,
                                    double HipPitch, double KneePitch, double AnklePitch,
                                    double AnkleRoll) {
  const double joints[] = {HipYawPitch, HipRoll, HipPitch, KneePitch, AnklePitch, AnkleRoll};
  forwardChain(EndTransf, TBaseBRLeg, rightLegLinks(joints), {&RotRLeg, &TEndRLeg});
}

void NAOKinematics::forwardCamera(kmatTable& EndTransf, double HeadYaw, double HeadPitch,
                                  bool topCamera) {
  const double joints[] = {HeadYaw, HeadPitch};
  forwardChain(EndTransf, TBaseHead, headLinks(joints),
               {&RotHead, topCamera ? &TEndHead2 : &TEndHead1});
}

void NAOKinematics::filterForward(kmatTable& Tmatrix, const std::string& WhatForward,
                                  const std::vector<double>& joints) {
  forwardNamed(Tmatrix, WhatForward, joints);
}

void NAOKinematics::forwardNamed(kmatTable& Tmatrix, std::string_view chain,
                                 std::span<const double> joints) {
  const auto joint = [&](std::size_t i) {
    assert(i < joints.size());
    return joints[i];
  };
  Tmatrix.zero();
  if (chain == "CameraTop") {
    forwardCamera(Tmatrix, joint(0), joint(1), true);
  } else if (chain == "CameraBot") {
    forwardCamera(Tmatrix, joint(0), joint(1), false);
  } else if (chain == "LeftArm" || chain == "LeftHand") {
    forwardLeftHand(Tmatrix, joint(0), joint(1), joint(2), joint(3), joint(4));
  } else if (chain == "RightArm" || chain == "RightHand") {
    forwardRightHand(Tmatrix, joint(0), joint(1), joint(2), joint(3), joint(4));
  } else if (chain == "LeftLeg") {
    forwardLeftLeg(Tmatrix, joint(0), joint(1), joint(2), joint(3), joint(4), joint(5));
  } else if (chain == "RightLeg") {
    forwardRightLeg(Tmatrix, joint(0), joint(1), joint(2), joint(3), joint(4), joint(5));
  }
  Tmatrix.check();
}

kmatTable NAOKinematics::forwardFromTo(const std::string& start, const std::string& stop,
                                       const std::vector<double>& jointsStart,
                                       const std::vector<double>& jointsEnd) {
  const auto chain = [this](const std::string& name, const std::vector<double>& joints) {
    kmatTable end;
    if (name == "Torso") {
      end.identity();
    } else {
      filterForward(end, name, joints);
    }
    return end;
  };
  kmatTable Tmatrix1 = chain(start, jointsStart);
  const kmatTable Tmatrix2 = chain(stop, jointsEnd);
  return Tmatrix1.fast_invert().fast_mult(Tmatrix2);
}

FKvars NAOKinematics::filterForwardFromTo(const std::string& start, const std::string& stop,
                                          const std::vector<double>& jointsStart,
                                          const std::vector<double>& jointsEnd) {
  const kmatTable t = forwardFromTo(start, stop, jointsStart, jointsEnd);
  FKvars result;
  result.pointX = t.B(0);
  result.pointY = t.B(1);
  result.pointZ = t.B(2);
  result.angleZ = std::atan2(t.A(1, 0), t.A(0, 0));
  result.angleY = std::atan2(-t.A(2, 0), std::sqrt(square(t.A(2, 1)) + square(t.A(2, 2))));
  result.angleX = std::atan2(t.A(2, 1), t.A(2, 2));
  return result;
}

// Adds the mass centre of every link, in the torso frame and times its mass, to the translation of
// sum.
void NAOKinematics::addMasses(kmatTable& sum, const kmatTable& limbBase,
                              std::span<const Link> links, std::span<const LinkMass> masses) {
  Tend = limbBase;
  for (std::size_t i = 0; i < links.size(); ++i) {
    const Link& link = links[i];
    const LinkMass& part = masses[i];
    transformations::makeDHTransformation(T1, link.a, link.alpha, link.d, link.theta);
    Tend.fast_mult(T1);

    kmatTable centre = Tend;
    if (part.rotation != nullptr) centre.fast_mult(this->*part.rotation);
    centre.fast_mult(translation(part.x, part.y, part.z));
    sum.B.add(centre.B.scalar_mult(part.mass));
  }
}

FKvars NAOKinematics::calculateCenterOfMass(const std::vector<double>& allJoints) {
  using NAO = NAOKinematics;
  // The two forearms differ in the model's data, and so do not mirror each other.
  // clang-format off
  static constexpr LinkMass kHead[] = {
      {nullptr,               -0.02,   0.17, -25.56, 0.0593},    // neck
      {&NAO::RotHead,          1.2,   -0.84,  53.53, 0.52065},   // head
  };
  static constexpr LinkMass kLeftArm[] = {
      {&NAO::RotLHshouldP,    -1.78, -24.96,   0.18, 0.06996},   // shoulder
      {&NAO::RotLHshoulR,     18.85,   5.77,   0.65, 0.12309},   // biceps
      {&NAO::RotLHelbowY,    -25.6,   -0.01,  -0.19, 0.05971},   // elbow
      {&NAO::RotLHelbowR,     25.56,  -2.81,   0.76, 0.07761},   // forearm
      {&NAO::RotLArm,         34.34,  -0.88,   3.08, 0.18533},   // hand
  };
  static constexpr LinkMass kLeftLeg[] = {
      {&NAO::RotLLhipYP,      -7.66, -12,     27.17, 0.07117},   // pelvis
      {&NAO::RotLLhipR,      -16.49,   0.29,  -4.75, 0.1353},    // hip
      {&NAO::RotLLallPitchs,   1.32,   2.35, -53.52, 0.39421},   // thigh
      {&NAO::RotLLallPitchs,   4.22,   2.52, -48.68, 0.29159},   // shank
      {&NAO::RotLLallPitchs,   1.42,   0.28,   6.38, 0.13892},   // ankle
      {&NAO::RotLLeg,         25.4,    3.32, -32.41, 0.16175},   // foot
  };
  static constexpr LinkMass kRightLeg[] = {
      {&NAO::RotRLhipYP,      -7.66,  12,     27.17, 0.07117},   // pelvis
      {&NAO::RotRLhipR,      -16.49,  -0.29,  -4.75, 0.1353},    // hip
      {&NAO::RotRLallPitchs,   1.32,  -2.35, -53.52, 0.39421},   // thigh
      {&NAO::RotRLallPitchs,   4.22,  -2.52, -48.68, 0.29159},   // shank
      {&NAO::RotRLallPitchs,   1.42,  -0.28,   6.38, 0.13892},   // ankle
      {&NAO::RotRLeg,         25.4,   -3.32, -32.41, 0.16175},   // foot
  };
  static constexpr LinkMass kRightArm[] = {
      {&NAO::RotRHshouldP,    -1.78,  24.96,   0.18, 0.06996},   // shoulder
      {&NAO::RotRHshoulR,     18.85,  -5.77,   0.65, 0.12309},   // biceps
      {&NAO::RotRHelbowY,    -25.6,    0.01,  -0.19, 0.05971},   // elbow
      {&NAO::RotRHelbowR,     25.52,  -2.81,   0.9,  0.07778},   // forearm
      {&NAO::RotRHwristY,     34.34,  -0.88,   3.08, 0.18533},   // hand
  };
  static constexpr LinkMass kTorso = {nullptr, -4.15, 0.07, 42.58, 1.03948};
  // clang-format on

  // Not the reciprocal of the sum of the masses above, and not to be replaced by it: every centre
  // of mass that was ever computed carries this factor, and whoever is tuned to one is tuned to it.
  constexpr double kPerMass = 0.20496003279360528;

  if (allJoints.size() != kBodyJoints) {
    // The number in the text is not the one tested. Both stay: the text is what readers of the
    // output look for, the other number is that of the chains.
    std::cout << "Kinematics CoM fatal: joints vector not equal to 22" << std::endl;
    if (allJoints.size() < kBodyJoints) return {};
  }

  kmatTable sum = translation(kTorso.x, kTorso.y, kTorso.z);
  sum.B.scalar_mult(kTorso.mass);
  const double* joints = allJoints.data();
  addMasses(sum, TBaseHead, headLinks(joints), kHead);
  addMasses(sum, TBaseLArm, leftArmLinks(joints + 2), kLeftArm);
  addMasses(sum, TBaseLLeg, leftLegLinks(joints + 7), kLeftLeg);
  addMasses(sum, TBaseBRLeg, rightLegLinks(joints + 13), kRightLeg);
  addMasses(sum, TBaseRArm, rightArmLinks(joints + 19), kRightArm);
  sum.B.scalar_mult(kPerMass);

  FKvars centre;
  centre.pointX = sum.B(0);
  centre.pointY = sum.B(1);
  centre.pointZ = sum.B(2);
  return centre;
}

NAOKinematics::Taker NAOKinematics::into(Solutions& solutions) {
  return [&solutions](std::span<const double> joints) {
    solutions.emplace_back(joints.begin(), joints.end());
  };
}

void NAOKinematics::takeIfReached(const char* chain, std::span<const double> joints,
                                  const Taker& take) {
  kmatTable reached;
  forwardNamed(reached, chain, joints);
  if (reached.almostEqualTo(Tinit)) take(joints);
}

// The legs. Names and steps follow the angles theta1 to theta6, which are theta[0] to theta[5]
// here.

NAOKinematics::LegSide NAOKinematics::legSide(bool right) const {
  if (right) {
    return {.chain = "RightLeg",
            .baseInv = TBaseRLegInv,
            .endInv = TEndRLegInv,
            .rotFix = RotFixRLeg,
            .rot = RotRLeg,
            .hipRollZero = PI / 4,
            .hipRoll = {-0.7383, 0.4147},
            .hipPitch = {-1.7723, 0.4856},
            .ankleRoll = {-2, 1}};
  }
  return {.chain = "LeftLeg",
          .baseInv = TBaseLLegInv,
          .endInv = TEndLLegInv,
          .rotFix = RotFixLLeg,
          .rot = RotLLeg,
          .hipRollZero = -PI / 4,
          .hipRoll = {-0.3794, 0.7904},
          .hipPitch = {-1.7739, 0.484},
          .ankleRoll = {-1, 2}};
}

NAOKinematics::Solutions NAOKinematics::inverseLeftLeg(const kmatTable& targetPoint) {
  Solutions solutions;
  inverseLeg(targetPoint, legSide(false), into(solutions));
  return solutions;
}

NAOKinematics::Solutions NAOKinematics::inverseRightLeg(const kmatTable& targetPoint) {
  Solutions solutions;
  inverseLeg(targetPoint, legSide(true), into(solutions));
  return solutions;
}

NAOKinematics::Solutions NAOKinematics::inverseLeftLeg(double px, double py, double pz, double rx,
                                                       double ry, double rz) {
  transformations::makeTransformation(T, px, py, pz, rx, ry, rz);
  return inverseLeftLeg(T);
}

NAOKinematics::Solutions NAOKinematics::inverseRightLeg(double px, double py, double pz, double rx,
                                                        double ry, double rz) {
  transformations::makeTransformation(T, px, py, pz, rx, ry, rz);
  return inverseRightLeg(T);
}

bool NAOKinematics::firstLegSolution(bool right, double px, double py, double pz, double rx,
                                     double ry, double rz, LegJoints& joints) {
  transformations::makeTransformation(T, px, py, pz, rx, ry, rz);
  bool found = false;
  inverseLeg(T, legSide(right), [&found, &joints](std::span<const double> solution) {
    if (!std::exchange(found, true)) std::copy(solution.begin(), solution.end(), joints.begin());
  });
  return found;
}

void NAOKinematics::inverseLeg(const kmatTable& targetPoint, const LegSide& leg,
                               const Taker& take) {
  Tinit = targetPoint;
  T = Tinit;

  // The hip as seen from the foot, in the frame turned by the slanted yaw-pitch axis.
  base = leg.baseInv;
  base.fast_mult(T).fast_mult(leg.endInv);
  Rot = leg.rotFix;
  Rot.fast_mult(base);
  Tstart = Rot;
  Rot.fast_invert();
  T = Rot;
  const auto hip = T.get_translation();
  const double x = hip(0), y = hip(1), z = hip(2);

  const double distance = length(x, y, z);
  const double theta4 = PI - std::acos((24400 - square(distance)) / 24000);
  if (std::isnan(theta4)) return;
  const double theta6 = std::atan(y / z);
  if (theta6 < leg.ankleRoll.low || theta6 > leg.ankleRoll.high) return;

  try {
    transformations::makeDHTransformation(T6i, 0, -PI / 2, 0, theta6);
    T6i.fast_mult(leg.rot).fast_invert();
  } catch (const SingularMatrixInvertionException&) {
    return;
  }
  Tstart.fast_mult(T6i);
  TtempTheta5 = Tstart;
  TtempTheta5.fast_invert();

  for (const double knee : {theta4, -theta4}) {
    if (!kKneePitch.holds(knee)) continue;
    LegJoints theta = {};
    theta[3] = knee;
    theta[5] = theta6;
    solveAnklePitch(leg, theta, take);
  }
}

void NAOKinematics::solveAnklePitch(const LegSide& leg, LegJoints& theta, const Taker& take) {
  const auto C = TtempTheta5.get_translation();
  const double knee = theta[3];
  transformations::makeDHTransformation(T4i, -kThigh, 0, 0, knee);
  const double along = kShank + kThigh * std::cos(knee);
  const double up = C(1) * along + C(0) * kThigh * std::sin(knee);
  const double down = square(along) + square(kThigh) * square(std::sin(knee));

  double theta5 = std::asin(-up / down);
  const double s5 = halfTurn(theta5);
  // Required sign: the opposite of the asin's at the end of its domain that was passed.
  if (std::isnan(theta5)) theta5 = rightAngle(up / down);

  for (const double ankle : {theta5, s5 - theta5}) {
    if (!kAnklePitch.holds(ankle)) continue;
    theta[4] = ankle;
    transformations::makeDHTransformation(T5i, -kShank, 0, 0, ankle);
    Ttemp = T4i;
    try {
      Ttemp.fast_mult(T5i).fast_invert();
    } catch (const SingularMatrixInvertionException&) {
      continue;
    }
    Ttemp2 = Tstart;
    Ttemp2.fast_mult(Ttemp);
    solveHipRoll(leg, theta, take);
  }
}

void NAOKinematics::solveHipRoll(const LegSide& leg, LegJoints& theta, const Taker& take) {
  const double a = std::acos(Ttemp2.A.read(1, 2));
  for (const double hipRoll : {leg.hipRollZero + a, leg.hipRollZero - a}) {
    if (!leg.hipRoll.holds(hipRoll)) continue;
    theta[1] = hipRoll;
    solveHipPitch(leg, theta, take);
  }
}

void NAOKinematics::solveHipPitch(const LegSide& leg, LegJoints& theta, const Taker& take) {
  const double q = std::sin(theta[1] - leg.hipRollZero);
  const double sine = Ttemp2.A.read(1, 1) / q;
  double theta3 = std::asin(sine);
  const double s3 = halfTurn(theta3);
  if (std::isnan(theta3)) theta3 = rightAngle(sine);

  for (const double hipPitch : {theta3, s3 - theta3}) {
    if (!leg.hipPitch.holds(hipPitch)) continue;
    theta[2] = hipPitch;
    double b = std::acos(Ttemp2.A.read(0, 2) / q);
    if (std::isnan(b)) b = 0;

    // The lower bound of the first candidate is tested on the second one. Must stay: a test of its
    // own would let through other solutions, and callers take the first of the list.
    const double other = PI / 2 - b;
    if (b + PI / 2 <= kHipYawPitch.high && other >= kHipYawPitch.low) {
      theta[0] = b + PI / 2;
      takeIfReached(leg.chain, theta, take);
    }
    if (kHipYawPitch.holds(other)) {
      theta[0] = other;
      takeIfReached(leg.chain, theta, take);
    }
  }
}

// The arms.

NAOKinematics::Solutions NAOKinematics::inverseLeftHand(const kmatTable& targetPoint) {
  Tinit = targetPoint;
  return inverseHand(targetPoint, {.chain = "LeftHand",
                                   .sign = 1,
                                   .baseInv = TBaseLArmInv,
                                   .endAndRotInv = TEndAndRotLArmInv,
                                   .oldR = TLArmOldR,
                                   .oldEnd = TLArmOldEnd,
                                   .straightEnd = TLArmOldEnd,
                                   .elbowRoll = {-1.5446, 9.999999747378752e-6},
                                   .shoulderRoll = {-0.3142, 1.3265}});
}

NAOKinematics::Solutions NAOKinematics::inverseRightHand(const kmatTable& targetPoint) {
  // The turn of the hand is taken away here and once more by TEndAndRotRArmInv, so that reachable
  // targets have no solution. Must stay: callers go by the empty list, and an answer in its place
  // would move an arm that has never moved for them.
  Tinit = targetPoint;
  Tinit.fast_mult(RotRArmFixInv);
  return inverseHand(targetPoint, {.chain = "RightHand",
                                   .sign = -1,
                                   .baseInv = TBaseRArmInv,
                                   .endAndRotInv = TEndAndRotRArmInv,
                                   .oldR = TRArmOldR,
                                   .oldEnd = TRArmOldEnd,
                                   .straightEnd = TEndRArm,
                                   .elbowRoll = {9.999999747378752e-6, 1.5446},
                                   .shoulderRoll = {-1.3265, 0.3142}});
}

NAOKinematics::Solutions NAOKinematics::inverseLeftHand(double px, double py, double pz, double rx,
                                                        double ry, double rz) {
  transformations::makeTransformation(T, px, py, pz, rx, ry, rz);
  return inverseLeftHand(T);
}

NAOKinematics::Solutions NAOKinematics::inverseRightHand(double px, double py, double pz, double rx,
                                                         double ry, double rz) {
  transformations::makeTransformation(T, px, py, pz, rx, ry, rz);
  return inverseRightHand(T);
}

NAOKinematics::Solutions NAOKinematics::inverseHand(const kmatTable& targetPoint,
                                                    const ArmSide& arm) {
  Solutions solutions;
  const auto end = targetPoint.get_translation();
  const double distance = length(end(0), end(1) - arm.sign * 113, end(2) - 100);
  const double bend = PI - std::acos((23952.690000000002 - square(distance)) / 23877);
  const double theta4 = -arm.sign * bend;
  if (!arm.elbowRoll.holds(theta4)) return solutions;

  // The shoulder as seen from the hand gives the turn of the wrist.
  T = arm.baseInv;
  T.fast_mult(Tinit).fast_mult(arm.endAndRotInv).fast_invert();
  const auto shoulder = T.get_translation();
  const double theta5 = -arm.sign * std::atan2(-shoulder(1), shoulder(0));

  // The arm without the wrist.
  transformations::makeDHTransformation(T5i, 0, -PI / 2, arm.sign * kLowerArm, -arm.sign * theta5);
  T = Tinit;
  T.fast_mult(arm.endAndRotInv).fast_mult(T5i.fast_invert()).fast_mult(arm.oldR);
  T.fast_mult(arm.oldEnd);

  const double s = std::sin(theta4), c = std::cos(theta4);
  const double a = std::acos(
      (T.B.read(1, 0) - arm.sign * 113 - arm.sign * (kElbowToHand * T.A.read(1, 1) * s / c)) /
      (arm.sign * (kElbowToHand * c + kUpperArm + kElbowToHand * square(s) / c)));

  ArmJoints theta = {};
  theta[3] = theta4;
  theta[4] = theta5;
  for (const double shoulderRoll : {arm.sign * PI / 2 + a, arm.sign * PI / 2 - a}) {
    if (!arm.shoulderRoll.holds(shoulderRoll)) continue;
    theta[1] = shoulderRoll;
    solveElbowYaw(arm, theta, solutions);
  }
  return solutions;
}

void NAOKinematics::solveElbowYaw(const ArmSide& arm, ArmJoints& theta, Solutions& solutions) {
  const double sine = T.A.read(1, 2) / std::sin(theta[1] - arm.sign * PI / 2);
  double theta3 = std::asin(sine);
  if (std::isnan(theta3)) theta3 = rightAngle(sine);

  for (const double elbowYaw : {-arm.sign * theta3, -arm.sign * (halfTurn(theta3) - theta3)}) {
    if (!kElbowYaw.holds(elbowYaw)) continue;
    theta[2] = elbowYaw;
    solveShoulderPitch(arm, theta, solutions);
  }
}

void NAOKinematics::solveShoulderPitch(const ArmSide& arm, ArmJoints& theta, Solutions& solutions) {
  constexpr double kNone = 1e-9;  // a cosine below this counts as none
  const double k = std::cos(theta[2]);
  const double p = std::cos(theta[1] - arm.sign * PI / 2);
  double c1;
  if (std::fabs(k) >= kNone) {
    const double sine = std::sin(-arm.sign * theta[2]);
    c1 = std::acos((T.A.read(0, 2) * sine * p / k + T.A.read(2, 2)) /
                   (square(p) * square(sine) / k + k));
  } else if (std::fabs(p) >= kNone) {
    c1 = std::acos(T.A.read(0, 2) / p);
  } else {
    Ttemp = T;
    Ttemp.fast_mult(inverse(arm.straightEnd));
    const double cosine = Ttemp.B.read(0, 0) / kUpperArm;
    c1 = std::acos(cosine);
    if (std::isnan(c1)) c1 = cosine < 0 ? -PI : 0;
  }

  // The range is tested on c1 for both signs, which is the same while the range is symmetric, and
  // keeps both solutions or none should it ever not be.
  if (!kShoulderPitch.holds(c1)) return;
  for (const double shoulderPitch : {c1, -c1}) {
    theta[0] = shoulderPitch;
    takeIfReached(arm.chain, theta, into(solutions));
  }
}

// The head.

NAOKinematics::Solutions NAOKinematics::inverseHead(const kmatTable& targetPoint, bool withAngles,
                                                    bool topCamera) {
  // Angle and length of the way from the neck's pitch axis to the camera.
  struct Camera {
    const char* chain;
    double angle, radius, forward, up;
  };
  static constexpr Camera kTop = {"CameraTop", 0.6709578581273848, 86.69267558450368, 53.9, 67.9};
  static constexpr Camera kBottom = {"CameraBot", 1.1168675452978125, 54.29876702099229, 48.8,
                                     23.81};
  // Yaw angles that come out within this range are taken the other way round.
  constexpr Range kNegatedYaw = {-0.5149, 0.672};
  constexpr double kTolerance = 1;  // millimetres

  Solutions solutions;
  if (withAngles) return solutions;

  const Camera& camera = topCamera ? kTop : kBottom;
  const auto target = targetPoint.get_translation();
  const double v = std::asin((126.5 - target(2)) / camera.radius);
  for (const double p : {v - camera.angle, halfTurn(v) - v - camera.angle}) {
    if (!kHeadPitch.holds(p)) continue;
    const double w = camera.up * std::cos(p) - camera.forward * std::sin(p);
    double headYaw = std::acos(target(0) / w);
    if (kNegatedYaw.holds(headYaw)) headYaw = -headYaw;
    std::vector<double> solution = {headYaw, p + PI / 2};

    const FKvars reached = filterForwardFromTo("Torso", camera.chain, {}, solution);
    if (std::fabs(reached.pointX - target(0)) <= kTolerance &&
        std::fabs(reached.pointY - target(1)) <= kTolerance &&
        std::fabs(reached.pointZ - target(2)) <= kTolerance) {
      solutions.push_back(std::move(solution));
    }
  }
  return solutions;
}

NAOKinematics::Solutions NAOKinematics::inverseHead(double px, double py, double pz, double rx,
                                                    double ry, double rz, bool withAngles,
                                                    bool topCamera) {
  transformations::makeTransformation(T, px, py, pz, rx, ry, rz);
  return inverseHead(T, withAngles, topCamera);
}
