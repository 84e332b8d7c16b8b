#ifndef QUOLNARIS_KINEMATICS_INVERSEKINEMATIC_H_
#define QUOLNARIS_KINEMATICS_INVERSEKINEMATIC_H_

// The six joint angles of a leg from where the torso and where the ankle should be.
//
// Reads:    its arguments; the closed forms also the robot type,
//           config["Agent"]["Public"]["Type"], at each call.
// Provides: joint targets for BasicAgent::setLeg, in degrees in the server's sign convention.
//
// Points are in millimetres in the robot's frame, x forward, y to the left, z up, both as offsets
// from the neutral leg: with torso and ankle (0, 0, 0) the leg hangs stretched. A torso with a
// negative z or an ankle with a positive z bends the knee.
//
// theta is an array of at least seven doubles. Index i is joint i of the leg: 1 hip yaw-pitch,
// 2 hip roll, 3 hip pitch, 4 knee pitch, 5 ankle pitch, 6 ankle roll; index 0 is no joint.
//
// Nothing iterates and no state survives a call.

#include <vector>

#include "Mathematics/Vector.h"

class InverseKinematic {
 public:
  // The pi of the closed forms, in the solution and in the conversion to degrees alike, and of
  // whoever hands them sensed angles. Coarse, and to stay so: with a finer one every angle of every
  // gait moves in its fifth digit, and the gaits' numbers are tuned to these.
  static constexpr double kPi = 3.1415;

  // Closed form with the hip yaw-pitch held at 0 and the sole parallel to the torso's horizontal
  // plane. Writes theta[0..6]. A target out of reach makes theta[3], theta[4] and theta[5]
  // not-a-number.
  void legSolver(Vector torso, Vector ankle, double* theta);

  // Closed form for a given hip yaw-pitch angle eng1 (degrees; goes unchanged into theta[1]), with
  // one correction step that takes out the residual pitch and roll of the foot. side is false for
  // the left leg and true for the right one. Writes theta[0..6]. Out of reach as in legSolver, and
  // theta[6] is not-a-number too, as the correction knows no orientation then.
  // Prints a line of asterisks to standard output, and goes on, when the hip is not at least 0.1 mm
  // above the ankle in the frame of the turned leg.
  void legSolverWith1(Vector torso, Vector ankle, double* theta, bool side, double eng1);

  // Chain form: aims the sole, with an orientation of its own given by xRot, yRot, zRot (radians,
  // applied as Rz * Ry * Rx), through NAOKinematics. fll holds the six sensed leg angles in
  // radians and does not influence the answer. Returns false, with theta as it was, when the target
  // has no solution; otherwise writes theta[1..6] from the first solution and returns true.
  // theta[0] is never touched.
  bool legSolver(Vector torso, Vector ankle, double* theta, bool side,
                 const std::vector<double>& fll, double xRot, double yRot, double zRot);

  // The chain form with all three rotations 0.
  bool legSolver(Vector torso, Vector ankle, double* theta, bool side,
                 const std::vector<double>& fll);
};

#endif  // QUOLNARIS_KINEMATICS_INVERSEKINEMATIC_H_
