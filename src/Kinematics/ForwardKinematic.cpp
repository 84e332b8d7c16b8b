#include "Kinematics/ForwardKinematic.h"

#include <cmath>

#include "Utilities/Config.h"

namespace {

using Transform = Matrix<4, 4>;

// A displacement in the frame of a link, in metres.
struct Offset {
  double x, y, z;
};

// The links of a leg that depend on the robot type.
struct LegLinks {
  Offset hip, thigh, shank;
};

constexpr LegLinks kStandardLeg = {{0, 0, 0}, {-0.12, 0.005, 0}, {-0.1, 0.005, 0}};
constexpr LegLinks kTypeOneLeg = {{0, 0, -0.01832}, {-0.10168, 0, 0}, {-0.09996332228183746, 0, 0}};

// Only type 1 has links of its own here. Type 3 counts as standard, unlike in InverseKinematic.
const LegLinks& legLinks() {
  return config["Agent"]["Public"]["Type"].asInt() == 1 ? kTypeOneLeg : kStandardLeg;
}

// Where the legs differ. The left leg is no plain mirror image of the right one: knee, ankle and
// mass centres lie alike in the frames of both.
struct LegSide {
  double hipY;         // of the hip in the torso frame, metres
  double hipTilt;      // of the hip yaw-pitch axis, degrees
  double hipRollZero;  // the turn about the roll axis at joint angle 0, degrees
};

constexpr LegSide kRightLeg = {-0.055, 45, 45};
constexpr LegSide kLeftLeg = {0.055, 135, -45};

// The fields of ForwardKinematic that one leg fills.
struct LegFields {
  Transform &thigh, &upLeg, &knee, &loLeg, &ankle, &foot, &end;
  Vector& rotation;
};

// Where the arms differ.
struct ArmSide {
  double shoulderY;     // of the shoulder in the torso frame, metres
  Offset upArm, loArm;  // mass centres
  double elbowYawSign;
};

constexpr ArmSide kRightArm = {-0.098, {0.02, -0.01, 0}, {-0.01, -0.05, 0}, 1};
constexpr ArmSide kLeftArm = {0.098, {0.02, 0.01, 0}, {0.01, -0.05, 0}, -1};

struct ArmFields {
  Transform &upArm, &loArm, &end;
};

void move(Transform& x, const Offset& offset) {
  x.trans(offset.x, offset.y, offset.z);
}

// The chains below build in x the pose of the current link as Matrix's operations, which multiply
// from the left, make it: the rotation block turns torso directions into the link's, the
// translation column is the position of the link's origin in the link's directions. Taking the
// rotation away from the left, with the inverse that drops the translation, leaves the position in
// the torso frame.
void intoPositionForm(Transform& point) {
  point = point.inverseMatrix() * point;
}

// Makes field the position of the link's origin, or of a point of the link. x stays as it was.
void capture(Transform& field, const Transform& x) {
  field = x;
  intoPositionForm(field);
}
void capture(Transform& field, const Transform& x, const Offset& offset) {
  field = x;
  move(field, offset);
  intoPositionForm(field);
}

// The angles about x, y and z of the rotation Rz * Ry * Rx, in radians.
Vector rollPitchYaw(const Transform& r) {
  const double roll = std::atan2(r(2, 1), r(2, 2));
  const double pitch = std::atan2(-r(2, 0), std::sqrt(r(2, 1) * r(2, 1) + r(2, 2) * r(2, 2)));
  const double yaw = std::atan2(r(1, 0), r(0, 0));
  return Vector(roll, pitch, yaw, CARTESIAN);
}

void setLeg(const LegSide& side, const LegFields& fields, double hipYawPitch, double hipRoll,
            double hipPitch, double kneePitch, double anklePitch, double ankleRoll) {
  const LegLinks& links = legLinks();
  Transform x;
  x.identityMatrix();

  x.trans(0, 0, -0.115);
  x.trans(-0.01, side.hipY, 0);
  x.rotateX(side.hipTilt);
  x.rotateZ(90 - hipYawPitch);
  x.rotateX(90);
  move(x, links.hip);
  x.rotateZ(side.hipRollZero - hipRoll);
  x.rotateX(-90);
  capture(fields.thigh, x);
  capture(fields.upLeg, x, {-0.04, 0.01, 0});

  x.rotateZ(hipPitch);
  move(x, links.thigh);
  capture(fields.knee, x);
  capture(fields.loLeg, x, {-0.045, 0.01, 0});

  x.rotateZ(kneePitch);
  move(x, links.shank);
  capture(fields.ankle, x);

  x.rotateZ(anklePitch);
  x.rotateX(90);
  x.rotateZ(-ankleRoll);
  capture(fields.foot, x, {-0.04, 0, 0.03});
  capture(fields.end, x);

  x.rotateY(-90);
  x.rotateZ(180);
  fields.rotation = rollPitchYaw(x);
}

void setArm(const ArmSide& side, const ArmFields& fields, double shoulderPitch, double shoulderRoll,
            double elbowYaw, double elbowRoll) {
  Transform x;
  x.identityMatrix();

  x.trans(0, 0, 0.075);
  x.trans(0, side.shoulderY, 0);
  x.rotateX(90);
  x.rotateZ(shoulderPitch);
  x.rotateX(-90);
  capture(fields.upArm, x, side.upArm);

  x.trans(0, 0, 0.009);
  x.rotateZ(-shoulderRoll - 90);
  x.trans(0, -0.09, 0);
  x.rotateX(-90);
  x.rotateZ(side.elbowYawSign * elbowYaw);
  x.rotateX(90);
  x.rotateZ(elbowRoll);
  capture(fields.loArm, x, side.loArm);
  capture(fields.end, x);
}

}  // namespace

void ForwardKinematic::setRightLeg(double a0, double a1, double a2, double a3, double a4,
                                   double a5) {
  setLeg(kRightLeg,
         {rightthigh, rightUpLeg, rightKnee, rightLoLeg, rightankle, rightFoot, rightLeg,
          rightLegRotation},
         a0, a1, a2, a3, a4, a5);
}

void ForwardKinematic::setLeftLeg(double b0, double b1, double b2, double b3, double b4,
                                  double b5) {
  setLeg(kLeftLeg,
         {leftthigh, leftUpLeg, leftKnee, leftLoLeg, leftankle, leftFoot, leftLeg, leftLegRotation},
         b0, b1, b2, b3, b4, b5);
}

void ForwardKinematic::setRightHand(double alfa1, double alfa2, double alfa3, double alfa4) {
  setArm(kRightArm, {rightUpArm, rightLoArm, rightHand}, alfa1, alfa2, alfa3, alfa4);
  rightLegRotation = Vector(0, 0, 0);
  leftLegRotation = Vector(0, 0, 0);
}

void ForwardKinematic::setLeftHand(double alfa1, double alfa2, double alfa3, double alfa4) {
  setArm(kLeftArm, {leftUpArm, leftLoArm, leftHand}, alfa1, alfa2, alfa3, alfa4);
}

void ForwardKinematic::setHead(double he1, double he2) {
  Transform x;
  x.identityMatrix();
  x.trans(0, 0, 0.09);
  x.trans(0, 0, 0.06);
  x.rotateZ(he1 + 90);
  x.rotateY(90);
  x.rotateX(he2);
  capture(headCenter, x, {0.005, 0, 0});
  capture(head, x);
}
