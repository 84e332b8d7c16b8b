#ifndef QUOLNARIS_BASICACTION_BACKWALK_H_
#define QUOLNARIS_BASICACTION_BACKWALK_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Utilities/Types.h"

// The plain back gait: the step of ForWalk, opened by the right leg from the fixed stance, with a
// ramp on the joint speed. The direction comes from the sign of the configured increments alone:
// no request changes `gain` or `speed`.
//
// Frame and units as in ForWalk.
//
// Reads: the configuration file backWalk, on every call. Provides: targets of both legs.
class BackWalk : public BasicAction {
 public:
  // One cycle of the gait; true in just those cycles that end a step.
  bool execute();

  // Sequences stance, half step and steps. `side` is ignored: the right leg always opens.
  bool basicWalk(float backGain, bool side);

  // One phase of one step of the leg `side`; true when it ended the step.
  bool step(float backGain, bool side);

  void resetVars();

  double RotZ = 0;         // Stays 0: no rotation in this gait.
  double Xtorso = 0;       // Torso offset, mm.
  double Ytorso = 0;       // Torso offset, mm.
  double Ztorso = 0;       // Torso offset, mm.
  double Xankle[4] = {};   // Swing foot's increment along x per phase, mm.
  double Zankle[4] = {};   // Swing foot's increment upward per phase, mm.
  double Yankle[4] = {};   // Stays 0.
  double sp = 60;          // Joint speed, percent of the remaining angle per cycle.
  float gain = 1;          // Step factor; no request changes it.
  float speed = 1;         // Where the ramp p stops; no request changes it.
  int state = 0;           // Phase of the step, 0 to 3.
  int basicWalkState = 0;  // 0 stance, 1 half step, 2 and 3 steps.
  double rx = 0;           // Accumulated x of the right foot, mm.
  double lx = 0;           // Accumulated x of the left foot, mm.
  bool lastSide = true;    // Side of the step that ended last.
  bool sideEnd = true;     // The same.
  InverseKinematic IK;
  ActionType type = AT_BACKWALK;
  bool side = true;  // Not used by the sequencer.
  double sx = 0;     // x of the swing foot in this phase, mm.
  double ox = 0;     // x of the other foot, mm.
  double z = 0;      // Height of the swing foot, mm.
  double p = 1;      // Multiplier of sp, the speed ramp.
};

#endif  // QUOLNARIS_BASICACTION_BACKWALK_H_
