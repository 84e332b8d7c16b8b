#ifndef QUOLNARIS_BASICACTION_FOREAFTGAIT_H_
#define QUOLNARIS_BASICACTION_FOREAFTGAIT_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Mathematics/Vector.h"

/// The variables of a gait that steps in pairs along x, as OmniWalk and OmniBackWalk do: lengths in
/// millimetres in the body frame, angles in degrees. The other actions that step in pairs have
/// further variables between these, and keep a list of their own.
///
/// Reads and provides nothing by itself.
class ForeAftGait : public BasicAction {
 public:
  // The arbiter's end step clears RotZ, the torso offsets and Xankle[0..2], the first ten doubles.
  double RotZ[4] = {};          ///< Yaw increments of the current step, degrees.
  double Xtorso = 0;            ///< Torso offset, mm.
  double Ytorso = 0;            ///< Torso offset, mm.
  double Ztorso = 0;            ///< Torso offset, mm.
  double Xankle[4] = {};        ///< Swing foot's increment along x per phase, mm, before the gain.
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

 protected:
  /// Back to the first step. RotZ and `a` stay as they are on purpose: a step cut off in the middle
  /// leaves them behind, and the next unwinding step counts on from there.
  void resetSteps();
};

#endif  // QUOLNARIS_BASICACTION_FOREAFTGAIT_H_
