#ifndef QUOLNARIS_BASICACTION_OMNIBACKWALK_H_
#define QUOLNARIS_BASICACTION_OMNIBACKWALK_H_

#include "BasicAction/ForeAftGait.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

/// OmniWalk walking backwards: turns while it steps so that the target comes to lie straight
/// behind.
///
/// All steps have negative gain, the legs are chosen in reverse, and a pair turns by its angle from
/// straight behind. Frame and units as in OmniWalk.
///
/// Reads: the configuration file backWalk, on every call, and omniBackWalk at the decision for a
/// turning pair, in the opening step and in the first phase of an unwinding step; own position and
/// heading in the world model. Provides: targets of both legs.
class OmniBackWalk : public ForeAftGait {
 public:
  /// One cycle of the gait; true as in OmniWalk.
  bool execute();

  /// Start of the gait, phase, and choice of the next step away from `v`.
  bool basicWalk(Vector v, double turnError);

  /// One phase of one step of the leg `side`; true when it ended the step.
  bool step(float Gain, bool side);

  /// The gait begins anew, but for RotZ and `a`, as in OmniWalk.
  void resetVars();

  double error = 2;   ///< Angle from straight behind from which on a pair turns, degrees.
  double speed = 1;   ///< Where the ramp p stops.
  Vector v{0, 0, 0};  ///< The target, metres, pitch frame.
  double p = 1;       ///< The speed ramp, a multiplier of sp.
  ActionType type = AT_OMNIBACKWALK;
};

#endif  // QUOLNARIS_BASICACTION_OMNIBACKWALK_H_
