#ifndef QUOLNARIS_BASICACTION_OMNISIDEWALK_H_
#define QUOLNARIS_BASICACTION_OMNISIDEWALK_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

/// OmniWalk walking sideways: turns while it steps so that the target comes to lie straight abeam.
///
/// Direction and legs are chosen at the start and after each unwinding step by the quarter in which
/// the target lies; a pair turns by the target's angle from abeam. All steps have full length, and
/// there is no ramp. Frame and units as in OmniWalk.
///
/// Reads: the configuration file sideWalk, on every call, and omniSideWalk at the decision for a
/// turning pair and in the first phase of an unwinding step; own position and heading in the world
/// model. Provides: targets of both legs.
class OmniSideWalk : public BasicAction {
 public:
  /// One cycle of the gait; true as in OmniWalk. Within a metre of the target it stops turning but
  /// never stops walking.
  bool execute();

  /// Choice of direction and legs, phase, and choice of the next step.
  bool basicWalk(Vector v, double turnError);

  /// One phase of one step of the leg `side`; true when it ended the step.
  bool step(float Gain, bool side);

  /// The gait begins anew, but for RotZ and `a`, as in OmniWalk.
  void resetVars();

  double RotZ[4] = {};          ///< Yaw increments of the current step, degrees.
  double Xtorso = 0;            ///< Torso offset, mm.
  double Ytorso = 0;            ///< Torso offset, mm.
  double Ztorso = 0;            ///< Torso offset, mm.
  double Yankle[4] = {};        ///< Stepping foot's increment along y per phase, mm.
  double Zankle[4] = {};        ///< Stepping foot's increment upward per phase, mm.
  double t = 0;                 ///< Cleared only.
  double dist = 0;              ///< Cleared only.
  double endStepVal = 0.5;      ///< Reset only.
  double sy = 0;                ///< y of the stepping foot in this phase, mm.
  double oy = 0;                ///< y of the other foot, mm.
  double z = 0;                 ///< Height of the stepping foot, mm.
  double angle = 0;             ///< Magnitude of the angle to the target, degrees.
  double theta[2][7] = {};      ///< Solved angles: [0] stepping leg, [1] the other; joint n in n.
  double theta1[2][7] = {};     ///< Not used.
  double ly = 0;                ///< Accumulated y of the left foot, mm.
  double ry = 0;                ///< Accumulated y of the right foot, mm.
  double rotate = 0;            ///< Running yaw of the rotating leg, degrees.
  int state = 0;                ///< Phase of the step, 0 to 3.
  int basicWalkState = 1;       ///< Sequencer: 1 to 6, 30, 40; see Stepping.h.
  int sp = 0;                   ///< Joint speed, percent of the remaining angle per cycle.
  int sp1 = 0;                  ///< A copy of sp.
  int a[2] = {};                ///< Phases done in the unwinding step of state 4 and 6.
  int d = 0;                    ///< Sign of the torso's shift: -1 right leg steps, +1 left.
  bool side = false;            ///< Leg of the step that comes second.
  bool otherside = false;       ///< Leg of the first step.
  bool OWalk = false;           ///< An unwinding step has ended: choose direction and legs again.
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
  int count = 0;      ///< Not used.
  double error = 0;   ///< Angle from abeam from which on a pair turns, degrees.
  Vector v{0, 0, 0};  ///< The target, metres, pitch frame.
  ActionType type = AT_OMNISIDEWALK;
  int Gain = 1;  ///< Direction of the sidestep, +1 or -1.
};

#endif  // QUOLNARIS_BASICACTION_OMNISIDEWALK_H_
