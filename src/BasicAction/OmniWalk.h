#ifndef QUOLNARIS_BASICACTION_OMNIWALK_H_
#define QUOLNARIS_BASICACTION_OMNIWALK_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
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
class OmniWalk : public BasicAction {
 public:
  /// One cycle of the gait; true only in the cycle that chose an unwinding step to come next: as a
  /// rule the one that ended a rotating leg's step. There the arbiter may leave.
  bool execute();

  /// Start of the gait, phase, and choice of the next step towards `v`; pairs turn from `turnError`
  /// degrees on.
  bool basicWalk(Vector v, double turnError);

  /// One phase of one step of the leg `side`; true when it ended the step.
  bool step(float Gain, bool side);

  /// The gait begins anew. RotZ and `a` stay as they are on purpose: a step cut off in the middle
  /// leaves them behind, and the next unwinding step counts on from there.
  void resetVars();

  // The arbiter's end step clears RotZ, the torso offsets and Xankle[0..2], the first ten doubles.
  double RotZ[4] = {};          ///< Yaw increments of the current step, degrees.
  double Xtorso = 0;            ///< Torso offset, mm.
  double Ytorso = 0;            ///< Torso offset, mm.
  double Ztorso = 0;            ///< Torso offset, mm.
  double Xankle[4] = {};        ///< Swing foot's increment forward per phase, mm.
  double Zankle[4] = {};        ///< Swing foot's increment upward per phase, mm.
  double t = 0;                 ///< Cleared only.
  double dist = 0;              ///< Cleared only.
  double endStepVal = 0;        ///< Cleared only.
  double sx = 0;                ///< x of the swing foot in this phase, mm.
  double ox = 0;                ///< x of the other foot, mm.
  double z = 0;                 ///< Height of the swing foot, mm.
  double angle = 0;             ///< Magnitude of the angle to the target, degrees.
  double theta[2][7] = {};      ///< Solved angles: [0] stepping leg, [1] the other; joint n in n.
  double theta1[2][7] = {};     ///< Not used.
  double lx = 0;                ///< Accumulated x of the left foot, mm.
  double rx = 0;                ///< Accumulated x of the right foot, mm.
  double rotate = 0;            ///< Running yaw of the rotating leg, degrees.
  int state = 0;                ///< Phase of the step, 0 to 3.
  int basicWalkState = 1;       ///< Sequencer: 1 to 6, 30, 40; see Stepping.h.
  int sp = 0;                   ///< Joint speed, percent of the remaining angle per cycle.
  int sp1 = 0;                  ///< A copy of sp.
  int a[2] = {};                ///< Phases done in the unwinding step of state 4 and 6.
  int d = 0;                    ///< Sign of the torso's shift: -1 right leg swings, +1 left.
  bool side = false;            ///< Leg of the step that comes second; fixed at the start.
  bool otherside = false;       ///< Leg of the first step.
  bool OWalk = false;           ///< An unwinding step has ended: choose the rotating leg again.
  bool rotSide = false;         ///< The rotating leg.
  bool rotOtherSide = false;    ///< Its negation.
  bool _othersideOmni = false;  ///< Record at the start of an unwinding step; nothing reads it.
  bool _sideOmni = false;       ///< The same.
  bool sideEnd = false;         ///< Side of the step that ended last.
  bool lastSide = false;        ///< The same.
  Vector torso{0, 0, 0};        ///< Torso target of this phase, mm.
  Vector ankle[2] = {};         ///< Ankle targets by side, mm.
  Vector myself_pos{0, 0, 0};   ///< The player's position, metres, pitch frame.
  InverseKinematic IK;
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
