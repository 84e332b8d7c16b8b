#include "Kinematics/InverseKinematic.h"

#include <array>
#include <cmath>
#include <iostream>
#include <string>

#include "Kinematics/ForwardKinematic.h"
#include "Kinematics/NAOKinematics.h"
#include "Mathematics/Matrix.h"
#include "Utilities/Config.h"

namespace {

constexpr double pi = InverseKinematic::kPi;

// Taken from the results after the conversion to degrees, although the size of the numbers suggests
// radians. As degrees they hardly bend the knee; as radians they would by some 27 degrees, and no
// stance, gait or kick would be what its numbers are tuned to.
constexpr std::array<double, 10> initAng = {0, 0, 0, -0.217967, 0.476474, -0.258508, 0, 0, 0, 0};

// What the closed forms know of a leg, in millimetres. They place the hip of either leg on the
// left.
struct LegModel {
  Vector P12;    // hip for roll
  Vector P3;     // hip for pitch
  double ltmp3;  // upper leg
  double ltmp2;  // lower leg
};

// The model of the configured robot type with the torso at the given offset.
LegModel legModel(Vector torso) {
  switch (config["Agent"]["Public"]["Type"].asInt()) {
    case 1:
      return {torso + Vector(-10, 55, -115), torso + Vector(-10, 55, -133.32f),
              Vector(5, 0, -101.68f).getLength(), Vector(0, 0, -118.32f).getLength()};
    case 3:
      return {torso + Vector(-10, 72.95413970947266f, -115),
              torso + Vector(-10, 72.95413970947266f, -142.86842346191406f),
              Vector(5, 0, -92.13157653808594f).getLength(),
              Vector(0, 0, -127.86842346191406f).getLength()};
    default:
      return {torso + Vector(-10, 55, -115), torso + Vector(-10, 55, -115),
              Vector(5, 0, -120).getLength(), Vector(0, 0, -100).getLength()};
  }
}

// The ankle point; its 55 is the hip's, so that a neutral leg hangs straight.
Vector anklePoint(Vector ankle) {
  return ankle + Vector(-5, 55, -335);
}

// Solves the triangle of hip, knee and ankle A by the law of cosines. Fills theta[2..6], in
// degrees.
void solveLeg(const LegModel& leg, Vector A, double* theta) {
  Vector Pdelta = leg.P12 - A;
  const float slope = Pdelta.y / Pdelta.z;
  theta[2] = -std::atan(static_cast<double>(slope));

  Pdelta = leg.P3 - A;
  const double dis = Pdelta.getLength();
  theta[4] = std::acos((leg.ltmp2 * leg.ltmp2 + leg.ltmp3 * leg.ltmp3 - dis * dis) /
                       (leg.ltmp2 * 2 * leg.ltmp3)) -
             pi;
  const double alpha = std::asin(Pdelta.x / dis);
  const double beta = std::acos((dis * dis + leg.ltmp3 * leg.ltmp3 - leg.ltmp2 * leg.ltmp2) /
                                (dis * 2 * leg.ltmp3));
  theta[3] = beta - alpha;
  theta[5] = -theta[4] - theta[3];
  theta[6] = -theta[2];

  for (int i = 2; i <= 6; ++i) theta[i] = theta[i] * 180 / pi - initAng[i];
}

// Maps the robot's frame to that of a leg turned by eng1 degrees about the slanted hip yaw-pitch
// axis, whose sense differs between the legs. The axes come out in the order z, x, y.
Matrix<4, 4> hipFrame(bool side, double eng1) {
  Matrix<4, 4> frame;
  frame.identityMatrix();
  frame.rotateX(side ? 45 : 135);
  frame.rotateZ(90 - eng1);
  frame.rotateX(90);
  frame.rotateZ(side ? 45 : -45);
  frame.rotateX(-90);
  return frame;
}

// The point in the turned frame, with its axes back in their order.
Vector turned(const Matrix<4, 4>& frame, Vector point) {
  Matrix<4, 4> anc;
  anc.identityMatrix();
  anc(0, 3) = point.x;
  anc(1, 3) = point.y;
  anc(2, 3) = point.z;
  anc = frame * anc;
  return Vector(anc(1, 3), anc(2, 3), anc(0, 3), CARTESIAN);
}

}  // namespace

void InverseKinematic::legSolver(Vector torso, Vector ankle, double* theta) {
  theta[0] = 0;
  theta[1] = 0;
  solveLeg(legModel(torso), anklePoint(ankle), theta);
}

void InverseKinematic::legSolverWith1(Vector torso, Vector ankle, double* theta, bool side,
                                      double eng1) {
  theta[0] = 0;
  theta[1] = eng1;

  const Matrix<4, 4> frame = hipFrame(side, eng1);
  const Vector A = turned(frame, anklePoint(ankle));
  LegModel leg = legModel(torso);
  leg.P12 = turned(frame, leg.P12);
  leg.P3 = turned(frame, leg.P3);
  if ((leg.P12 - A).z < 0.1) std::cout << ' ' << std::string(64, '*') << std::endl;
  solveLeg(leg, A, theta);

  // One step, not repeated, takes out the pitch and roll that the slanted first joint leaves.
  ForwardKinematic fwd;
  if (side) {
    fwd.setRightLeg(theta[1], theta[2], theta[3], theta[4], theta[5], theta[6]);
  } else {
    fwd.setLeftLeg(theta[1], theta[2], theta[3], theta[4], theta[5], theta[6]);
  }
  const Vector r = side ? fwd.rightLegRotation : fwd.leftLegRotation;
  theta[5] -= r.y * 180.0f / pi;
  theta[6] -= r.x * 180.0f / pi;
}

bool InverseKinematic::legSolver(Vector torso, Vector ankle, double* theta, bool side,
                                 const std::vector<double>& fll, double xRot, double yRot,
                                 double zRot) {
  NAOKinematics chain;
  // The present pose of the leg takes no part in the answer.
  chain.filterForwardFromTo("Torso", side ? "RightLeg" : "LeftLeg", {}, fll);

  // The sole of a stretched leg: 55 to the side of the torso's origin and 355 below it.
  const float x = 0 + ankle.x - torso.x;
  const float y = (side ? ankle.y - 55 : ankle.y + 55) - torso.y;
  const float z = ankle.z - 355 - torso.z;
  // Only the first solution is asked for: theta has no room for a second one.
  NAOKinematics::LegJoints joints;
  if (!chain.firstLegSolution(side, x, y, z, xRot, yRot, zRot, joints)) return false;

  // The pitch joints of the chain turn the other way than the server's.
  constexpr std::array<double, 6> kSign = {1, 1, -1, -1, -1, 1};
  for (int i = 0; i < 6; ++i) theta[i + 1] = kSign[i] * (joints[i] * Vector::RAD2DEG);
  return true;
}

bool InverseKinematic::legSolver(Vector torso, Vector ankle, double* theta, bool side,
                                 const std::vector<double>& fll) {
  return legSolver(torso, ankle, theta, side, fll, 0, 0, 0);
}
