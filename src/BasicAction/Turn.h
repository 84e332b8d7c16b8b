#ifndef QUOLNARIS_BASICACTION_TURN_H_
#define QUOLNARIS_BASICACTION_TURN_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

// Turns the player on the spot until a point lies at a given bearing.
//
// Steps in place on alternating legs as OmniWalk does: a turning step yaws the rotating leg by a
// running angle, the next step unwinds it. The turn is done when, at a decision for the rotating
// leg, the remaining angle is below the allowed error.
//
// Frame and units as in ForWalk; the point is in metres in the pitch frame.
//
// Reads: the configuration file Turn, on every call; own position and heading in the world model.
// Provides: targets of both legs.
class Turn : public BasicAction {
 public:
  // Stores the request and returns itself for Actions::ChangeAction: the player shall turn until
  // `v` lies at the bearing `finalAngle` (degrees, positive to the left) within `error` degrees.
  // Makes the legs move again after a turn has ended.
  Turn* execute(Vector v, double error, double finalAngle);

  // One cycle of the turn; true when it is done, and then in every call, without a leg command,
  // until the next request.
  bool execute();

  // Choice of the rotating leg, phase, and choice of the next step.
  bool basicTurn(Vector v, double turnError);

  // One phase of one step of the leg `side`; true when it ended the step.
  bool step(float Gain, bool side);

  // Puts the feet side by side. Without a caller.
  bool endStep();

  // The turn begins anew. The arbiter calls it after the request is stored, so that the first call
  // of a turn after another action finds `ak` 1: it moves nothing and reports done.
  void resetVars();

  double RotZ[4] = {};          // Yaw increments per phase, degrees.
  double Xtorso = 0;            // Torso offset, mm.
  double Ytorso = 0;            // Torso offset, mm.
  double Ztorso = 0;            // Torso offset, mm.
  double Yankle[4] = {};        // Stepping foot's increment along y per phase, mm.
  double Zankle[4] = {};        // Stepping foot's increment upward per phase, mm.
  double t = 0;                 // Not used.
  double dist = 0;              // Cleared only.
  double endStepVal = 0;        // Cleared only.
  double sy = 0;                // y of the stepping foot in this phase, mm.
  double oy = 0;                // y of the other foot, mm.
  double z = 0;                 // Height of the stepping foot, mm.
  double angle = 0;             // Magnitude of the remaining angle, degrees.
  double finalAngle = 0;        // The bearing at which the point shall end up, degrees.
  double theta[2][7] = {};      // Solved angles: [0] stepping leg, [1] the other; joint n in n.
  double theta1[2][7] = {};     // Not used.
  double ly = 0;                // Accumulated y of the left foot, mm.
  double ry = 0;                // Accumulated y of the right foot, mm.
  double rotate = 0;            // Running yaw of the rotating leg, degrees.
  int state = 0;                // Phase of the step, 0 to 3.
  int state2 = 0;               // Cleared only.
  int basicTurnState = 1;       // Sequencer: 1 to 6, 30, 40; see Stepping.h.
  int sp = 60;                  // Joint speed, percent of the remaining angle per cycle.
  int sp1 = 60;                 // A copy of sp.
  int a[2] = {};                // Phases done in the unwinding step of state 4 and 6.
  int d = 1;                    // Sign of the torso's shift: -1 right leg steps, +1 left.
  bool side = true;             // One leg of the turn's rhythm, by the sign of the angle.
  bool otherside = false;       // The other leg.
  bool OTurn = false;           // Set by the first unwinding step that ends, until resetVars:
                                // the rotating leg follows the angle's sign at every call.
  bool rotSide = true;          // The rotating leg.
  bool rotOtherSide = false;    // Its negation.
  bool _othersideOmni = false;  // Record at the start of an unwinding step; nothing reads it.
  bool _sideOmni = true;        // The same.
  bool sideEnd = true;          // Side of the step that ended last; nothing reads it.
  Vector torso{0, 0, 0};        // Torso target of this phase, mm.
  Vector ankle[2] = {};         // Ankle targets by side, mm.
  Vector myself_pos{0, 0, 0};   // The player's position, metres, pitch frame.
  InverseKinematic IK;
  int count = 0;              // Number of finished steps since the reset.
  double Gain = 1;            // Step factor of the sideways increments.
  double error = 1;           // Remaining angle below which the turn is done, degrees.
  Vector v{0, 0, 0};          // The point to face, metres, pitch frame.
  ActionType type = AT_NONE;  // AT_TURN from the first request on.
  int ak = 1;                 // Result latch of the last basicTurn: not 0 means done.
};

#endif  // QUOLNARIS_BASICACTION_TURN_H_
