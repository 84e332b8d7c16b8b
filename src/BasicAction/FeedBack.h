#ifndef QUOLNARIS_BASICACTION_FEEDBACK_H_
#define QUOLNARIS_BASICACTION_FEEDBACK_H_

#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

class Agent;

// A reflex against falling: reads the accelerometer and throws the arms out. A component that
// stands ready; nothing in play calls it.
//
// Reads: the accelerometer (m/s^2), the arbiter's running action. Provides: joint targets of the
// arms (execute) and of the ankle pitch (fall).
class FeedBack {
 public:
  static Agent* agent;

  // What isNearFall yields when the robot stands quietly or already lies: no member of
  // IsNearFall, so that none of the reflexes of execute answers to it.
  static constexpr IsNearFall kQuiet = static_cast<IsNearFall>(6);

  // Which way the robot is tipping. The bands are lopsided on purpose: beyond 5.5 m/s^2 to the
  // right or to the back the robot counts as lying and the reflex keeps quiet, while to the left
  // and to the front there is no outer limit.
  IsNearFall isNearFall();

  // One cycle of the reflex; true when there is nothing to do or the arms are out.
  bool execute();

  // Tilts both ankles forward; true while fstate is 1 or 2. Nothing changes fstate from 1.
  bool fall();

  int state = 1;
  int fstate = 1;     // What fall does.
  Vector a{0, 0, 0};  // The last centre of mass, metres in the body frame.
  bool side = false;
  bool otherside = false;
  Vector torso{0, 0, 0};
  Vector ankle[2] = {Vector{0, 0, 0}, Vector{0, 0, 0}};
  Vector myself{0, 0, 0};
  FallOrientation isnearfall = FALL_NONE;
};

#endif  // QUOLNARIS_BASICACTION_FEEDBACK_H_
