#ifndef QUOLNARIS_BASICACTION_TAB_H_
#define QUOLNARIS_BASICACTION_TAB_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

/// Turns around the ball: moves the player on a circle, sidestepping and yawing at the same time,
/// until the bearing of a given point is below an allowed error. The stepping machine of Turn.
///
/// Nothing resets it after construction: it takes its stance only at its first use, and a later
/// one goes on where the last one ended, which may report done at once.
///
/// Frame and units as in ForWalk; the point is in metres in the pitch frame.
///
/// Reads: the configuration file TAB, on every call; own position and heading in the world model.
/// Provides: targets of both legs.
class TAB : public BasicAction {
 public:
  /// Stores the request and returns itself for Actions::ChangeAction: the player shall circle until
  /// the bearing of `v` is below `error` degrees.
  TAB* execute(Vector v, double error);

  /// One cycle; true when the bearing is closed, at a decision for the rotating leg.
  bool execute();

  /// Choice of direction and rotating leg, phase, and choice of the next step.
  bool basicWalk(Vector v, double turnError);

  /// One phase of one step of the leg `side`; true when it ended the step.
  bool step(float Gain, bool side);

  /// The values of construction. Without a caller in play.
  void resetVars();

  double RotZ[4] = {};          ///< Yaw increments per phase, degrees.
  double Xtorso = 0;            ///< Torso offset, mm.
  double Ytorso = 0;            ///< Torso offset, mm.
  double Ztorso = 0;            ///< Torso offset, mm.
  double Yankle[4] = {};        ///< Stepping foot's increment along y per phase, mm.
  double Zankle[4] = {};        ///< Stepping foot's increment upward per phase, mm.
  double t = 1;                 ///< Set only.
  double dist = 0;              ///< Cleared only.
  double endStepVal = 0;        ///< Cleared only.
  double sy = 0;                ///< y of the stepping foot in this phase, mm.
  double oy = 0;                ///< y of the other foot, mm.
  double z = 0;                 ///< Height of the stepping foot, mm.
  double angle = 0;             ///< Remaining bearing, degrees.
  double angle1 = 0;            ///< Never takes a value.
  double angle2 = 0;            ///< Never takes a value.
  double theta[2][7] = {};      ///< Solved angles: [0] stepping leg, [1] the other; joint n in n.
  double theta1[2][7] = {};     ///< Not used.
  double ly = 0;                ///< Accumulated y of the left foot, mm.
  double ry = 0;                ///< Accumulated y of the right foot, mm.
  double rotate = 0;            ///< Running yaw of the rotating leg, degrees.
  int state = 0;                ///< Phase of the step, 0 to 3.
  int basicWalkState = 1;       ///< Sequencer: 1 to 6, 30, 40; see Stepping.h.
  int sp = 60;                  ///< Joint speed, percent of the remaining angle per cycle.
  int sp1 = 60;                 ///< A copy of sp.
  int a[2] = {};                ///< Phases done in the unwinding step of state 4 and 6.
  int d = 1;                    ///< Sign of the torso's shift: -1 right leg steps, +1 left.
  bool side = true;             ///< One leg of the rhythm, by the sign of the bearing.
  bool otherside = false;       ///< The other leg.
  bool OWalk = true;            ///< Never cleared: the head of basicWalk runs on each call.
  bool rotSide = true;          ///< The rotating leg.
  bool rotOtherSide = false;    ///< Its negation.
  bool _othersideOmni = false;  ///< Record at the start of an unwinding step; nothing reads it.
  bool _sideOmni = true;        ///< The same.
  bool sideEnd = false;         ///< Side of the step that ended last; nothing reads it.
  Vector torso{0, 0, 0};        ///< Torso target of this phase, mm.
  Vector ankle[2] = {};         ///< Ankle targets by side, mm.
  Vector myself_pos{0, 0, 0};   ///< The player's position, metres, pitch frame.
  InverseKinematic IK;
  int count = 0;        ///< Never raised.
  int Gain = 1;         ///< Direction of the sidestep, +1 or -1.
  Vector vec{0, 0, 0};  ///< The point whose bearing is to be closed, metres, pitch frame.
  double Error = 0;     ///< Bearing below which the action is done, degrees.
  ActionType type = AT_TURN_AROUND_BALL;
};

#endif  // QUOLNARIS_BASICACTION_TAB_H_
