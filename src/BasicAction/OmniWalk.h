#ifndef QUOLNARIS_BASICACTION_OMNIWALK_H_
#define QUOLNARIS_BASICACTION_OMNIWALK_H_

#include "BasicAction/ForeAftGait.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

/// The gait of nearly all forward motion: walks like ForWalk and turns towards a target while it
/// walks.
///
/// One leg, the rotating leg, is yawed by a running angle through its step, and the next step of
/// the other leg unwinds the same angle, so that the pair leaves the body turned by the sum of the
/// RotZ increments. Whether a pair turns is decided anew at each pair from the angle to the target;
/// which leg rotates, at the end of each unwinding step. The ramp `p` grows the joint speed pair by
/// pair from a slow start.
///
/// Frame and units as in ForWalk; the target is in metres in the pitch frame.
///
/// Reads: the configuration file omniWalk, on every call, and forWalk at the decision for a
/// straight pair (without effect); own position and heading in the world model. Provides: targets
/// of both legs.
class OmniWalk : public ForeAftGait {
 public:
  /// One cycle of the gait; true only in the cycle that chose an unwinding step to come next: as a
  /// rule the one that ended a rotating leg's step. There the arbiter may leave.
  bool execute();

  /// Start of the gait, phase, and choice of the next step towards `v`; pairs turn from `turnError`
  /// degrees on.
  bool basicWalk(Vector v, double turnError);

  /// One phase of one step of the leg `side`; true when it ended the step.
  bool step(float Gain, bool side);

  /// The gait begins anew, but for RotZ and `a`, see ForeAftGait.
  void resetVars();

  int count = 0;        ///< Not used.
  int actionType = 0;   ///< Variant of the request: 0 the normal walk, 1 the long stride.
                        ///< Hides BasicAction::actionType on purpose.
  double error = 0;     ///< Angle from which on a pair of steps turns, degrees.
  double speed = 0;     ///< Where the ramp p stops.
  Vector v{0, 0, 0};    ///< The target, metres, pitch frame.
  double p = 0.1;       ///< The speed ramp, a multiplier of sp.
  Vector vec{0, 0, 0};  ///< Not used.
  double Error = 0;     ///< Not used.
  ActionType type = AT_OMNIWALK;
  double rot = 0;  ///< Fixed yaw of both legs during the whole gait, degrees.
};

#endif  // QUOLNARIS_BASICACTION_OMNIWALK_H_
