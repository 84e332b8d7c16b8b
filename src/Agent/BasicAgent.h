#ifndef QUOLNARIS_AGENT_BASICAGENT_H_
#define QUOLNARIS_AGENT_BASICAGENT_H_

#include "Agent/BodyController.h"
#include "Agent/Robot.h"
#include "Kinematics/ForwardKinematic.h"
#include "Mathematics/Matrix.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

// The body as the motion actions move it.
//
// Reads:    sensed joint angles, through the bound controllers; WM's fall flag.
// Provides: joint targets by limb, the bridges to leg inverse kinematics, the centre of mass.
//
// Joint numbers start at 1 within a limb; side is false for left and true for right. `value` is a
// target in degrees in the server's sign convention, `gain` the percentage of the remaining error
// taken off per cycle, `error` the tolerance in degrees. A result is true when the joints have
// arrived. A two-sided operation sends the same value to both sides and mirrors nothing. Every
// controller of a group is driven on each call; the limit per cycle is BodyController::kMaxAngle
// for all joints of all robot types.
class BasicAgent : public Robot {
 public:
  bool setLeg(int jointNo, bool side, float value, float gain, float error);
  bool setHand(int jointNo, bool side, float value, float gain, float error);
  bool setHead(int jointNo, float value, float gain, float error);

  // The same commands; always true, so that the caller's sequence goes on at once.
  bool fastSetLeg(int jointNo, bool side, float value, float gain, float error);
  bool fastSetHand(int jointNo, bool side, float value, float gain, float error);
  bool fastSetHead(int jointNo, float value, float gain, float error);

  // Send `value` as the effector value of this cycle, unclipped; true if it is within the limit.
  bool rotateLeg(int jointNo, bool side, float value);
  bool rotateHand(int jointNo, bool side, float value);
  bool rotateHead(int jointNo, float value);

  // One joint number on both sides, right first.
  bool setBothLeg(int jointNo, float value, float gain, float error);
  bool setBothHand(int jointNo, float value, float gain, float error);

  // One target for all joints of a limb, of both such limbs, or of the whole body.
  bool setAllLeg(bool side, float value, float gain, float error);
  bool setAllHand(bool side, float value, float gain, float error);
  bool setAllBothLeg(float value, float gain, float error);
  bool setAllBothHand(float value, float gain, float error);
  bool setAllHead(float value, float gain, float error);
  bool setAll(float value, float gain, float error);

  // The store of target poses in bControl (torso frame, metres). Nothing reads it.
  void setHandPosition(bool side, Vector position);
  void setLegPosition(bool side, Vector position);
  void setHandRotation(bool side, Matrix<4, 4> rotation);
  void setLegRotation(bool side, Matrix<4, 4> rotation);

  // Leg angles for a torso and an ankle position (millimetres) by the closed form of
  // InverseKinematic::legSolver, which gives them in degrees. side and the rotations take no part.
  // REQUIRES: theta has room for seven numbers, joints 1 to 6 at their own index. Always true.
  bool solveIkLeg(Vector torso, Vector ankle, double* theta, bool side, double xRot, double yRot,
                  double zRot);

  // Leg angles in degrees, in the server's sign convention, for a torso and an ankle position
  // (millimetres) of the leg `side` by the chain form of InverseKinematic::legSolver: the foot, of
  // the orientation xRot, yRot, zRot (radians), is aimed by the first solution within the joint
  // ranges. The sensed angles of the leg go along and do not influence the answer. False, and theta
  // as it was, when the target has no solution. REQUIRES: theta has room for seven numbers, joints
  // 1 to 6 at their own index; a bound controller for each joint of the leg.
  bool solveIkLeg1(Vector torso, Vector ankle, double* theta, bool side, double xRot, double yRot,
                   double zRot);

  // Centre of mass from the sensed angles, metres, torso frame (x forward, y left, z up). Leaves
  // the present pose in fwd.
  Vector findCOM();

  // Where the feet lie as seen from the centre of mass: BACK means more than 0.1 m behind it. While
  // one foot is more than 5 mm above the other, that higher foot alone counts.
  COMD isInCOM();

  BodyController bControl;
  ForwardKinematic fwd;
};

#endif  // QUOLNARIS_AGENT_BASICAGENT_H_
