#ifndef QUOLNARIS_KINEMATICS_FORWARDKINEMATIC_H_
#define QUOLNARIS_KINEMATICS_FORWARDKINEMATIC_H_

// Where the parts of the body lie in the torso frame for given joint angles.
//
// Reads:    the joint angles of each call; the robot type, config["Agent"]["Public"]["Type"].
// Provides: the end points, joints and mass centres of the limbs, and the orientation of the feet.
//
// Units and frames: angles in degrees in the server's sign convention, lengths in metres. The
// torso frame has its origin at the torso centre, x forward, y to the left, z up.
//
// NAOKinematics is an independent model of the same robot in millimetres and radians with other
// joint signs; the two are kept apart on purpose.

#include "Mathematics/Matrix.h"
#include "Mathematics/Vector.h"

class ForwardKinematic {
 public:
  // Every matrix below is in position form: the translation column (0..2, 3) is the point's
  // position in the torso frame in metres, and the upper left block is, up to rounding, the
  // identity. Only the translation carries meaning. A new object holds zero vectors and matrices
  // that are 0 but for the 1 in the last row and column (Matrix's default): every point in the
  // origin.

  // End points of the limbs.
  Matrix<4, 4> leftHand, leftLeg, rightHand, rightLeg, head;
  // Hip and ankle points of the legs.
  Matrix<4, 4> rightthigh, rightankle, leftthigh, leftankle;
  // Knee points.
  Matrix<4, 4> rightKnee, leftKnee;
  // Mass centres of thigh, shank and foot.
  Matrix<4, 4> rightUpLeg, leftUpLeg, rightLoLeg, leftLoLeg, rightFoot, leftFoot;
  // Mass centres of upper and lower arm.
  Matrix<4, 4> leftUpArm, leftLoArm, rightLoArm, rightUpArm;
  // Mass centre of the head.
  Matrix<4, 4> headCenter;

  // Orientation of the foot against the torso, in radians: roll in x, pitch in y, yaw in z.
  Vector rightLegRotation, leftLegRotation;

  // Each operation recomputes all fields of its limb and no others. A not-a-number angle spreads
  // through the fields of the limb; nothing else can go wrong.

  // Joints 1 to 6 of a leg: hip yaw-pitch, hip roll, hip pitch, knee pitch, ankle pitch, ankle
  // roll.
  void setRightLeg(double a0, double a1, double a2, double a3, double a4, double a5);
  void setLeftLeg(double b0, double b1, double b2, double b3, double b4, double b5);

  // Joints 1 to 4 of an arm: shoulder pitch, shoulder roll, elbow yaw, elbow roll.
  //
  // setRightHand also sets rightLegRotation and leftLegRotation to zero. That is required: whoever
  // wants the orientation of the feet reads it before the right arm is set. setLeftHand does not.
  void setRightHand(double alfa1, double alfa2, double alfa3, double alfa4);
  void setLeftHand(double alfa1, double alfa2, double alfa3, double alfa4);

  // Head joints 1 and 2: yaw and pitch.
  void setHead(double he1, double he2);
};

#endif  // QUOLNARIS_KINEMATICS_FORWARDKINEMATIC_H_
