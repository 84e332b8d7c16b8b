#ifndef QUOLNARIS_AGENT_JOINTCONTROLLER_H_
#define QUOLNARIS_AGENT_JOINTCONTROLLER_H_

#include "WorldModel/Joint.h"

// Proportional control of one hinge.
//
// Reads:    the sensed angle of its Joint (degrees), once a cycle in adjustAngles().
// Provides: Angle, the value of the hinge effector for this cycle.
//
// The value sent in the previous cycle is taken as travel that is still under way, in degrees; the
// law therefore works on the angle where the joint will be, lastAngle + currentAngle. Targets are
// degrees in the server's sign convention and are never clipped to the joint's range: the one limit
// is `max`, the greatest size of the value sent in one cycle.
class JointController {
 public:
  JointController() = default;
  explicit JointController(Joint* j) : joint(j) {}

  // Drives the joint towards `value` (degrees), taking `gain` percent of the remaining error off in
  // this cycle, at most `max`. True when the joint counts as arrived, in which case nothing is
  // commanded: when the remaining error is below `error` (degrees), when `value` is not a number,
  // or when the target has been repeated 200 times and is less than 6 degrees away.
  bool setAngle(float value, float gain, float error, float max);

  // Sends `value` as it is, unclipped. True if its size is within `max`.
  bool rotateAngle(float value, float max);

  // Drives the whole remaining error at once, clipped to `max`, without tolerance and stall rule.
  // Always true.
  bool fastSetAngle(float value, float max);

  // Start of a cycle: takes over the sensed angle, remembers the last command and clears it, so
  // that a joint nobody commands stops. REQUIRES: joint is bound.
  void adjustAngles();

  Joint* joint = nullptr;  // the sensed joint; not owned
  float currentAngle = 0;  // sensed angle, degrees
  float lastAngle = 0;     // value sent in the previous cycle: degrees still under way
  float MaxAngle = 0;   // the joint's range, degrees: declared for it, read and written by nobody
  float MinAngle = 0;   // likewise
  float Angle = 0;      // value to send in this cycle: degrees to travel in it
  double preAngle = 0;  // read and written by nobody
  double preValue = 0;  // last target for which a value was computed, degrees
  int count = 0;        // calls in a row that repeated preValue

 private:
  void limitAngle(float max);
};

#endif  // QUOLNARIS_AGENT_JOINTCONTROLLER_H_
