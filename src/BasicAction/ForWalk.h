#ifndef QUOLNARIS_BASICACTION_FORWALK_H_
#define QUOLNARIS_BASICACTION_FORWALK_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Utilities/Types.h"

// The plain forward gait, the model of all the others: a small key-frame generator.
//
// A step of one leg lasts four cycles, its phases. Each phase moves the swing foot by a configured
// increment forward and upward, places the torso over the mean of both feet plus an offset, solves
// both legs and sends their joints towards the angles, whether or not they arrive. Walking is a
// chain of steps on alternating legs, opened by a half-length step from the stance.
//
// Frame: body, x forward, y to the left, z up; millimetres and degrees. A `side` is false for the
// left and true for the right leg.
//
// Reads: the configuration file forWalk, on every call. Provides: targets of both legs.
class ForWalk : public BasicAction {
 public:
  // One cycle of the gait; true in just those cycles that end a step.
  bool execute();

  // Sequences stance, half step and steps; `side` names the leg of the half step and of every
  // second step after it.
  bool basicWalk(float forGain, bool side);

  // One phase of one step of the leg `side`, with the increments scaled by `forGain`; true when it
  // ended the step. Also driven directly by Decision::passKickOff, which loads `sp`, the torso
  // offsets and the increments itself.
  bool step(float forGain, bool side);

  // The gait begins anew: with the stance and a half step.
  void resetVars();

  double RotZ = 0;         // Stays 0: no rotation in this gait.
  double Xtorso = 0;       // Torso offset, mm.
  double Ytorso = 0;       // Torso offset, mm.
  double Ztorso = 0;       // Torso offset, mm.
  double Xankle[4] = {};   // Swing foot's increment forward per phase, mm.
  double Zankle[4] = {};   // Swing foot's increment upward per phase, mm.
  double Yankle[4] = {};   // No step reads it; execute clears it.
  int sp = 60;             // Joint speed, percent of the remaining angle per cycle.
  float gain = 1;          // Step length factor of the request.
  float speed = 1;         // Multiplier of sp; nothing changes it.
  int state = 0;           // Phase of the step, 0 to 3.
  int basicWalkState = 0;  // 0 stance, 1 half step, 2 and 3 steps.
  double rx = 0;           // Accumulated x of the right foot, mm; grows without bound.
  double lx = 0;           // Accumulated x of the left foot, mm.
  double ry = 0;           // y of the right foot, mm; stays 0.
  double ly = 0;           // y of the left foot, mm; stays 0.
  bool lastSide = true;    // Side of the step that ended last.
  bool sideEnd = true;     // The same.
  InverseKinematic IK;
  ActionType type = AT_FORWALK;
  float Gain = 1;       // Not used.
  bool side = true;     // The side given with the request.
  double preSp = 60;    // Not used.
  int count = 0;        // Not used.
  double khargush = 0;  // "Rabbit"; not used.
  double sx = 0;        // x of the swing foot in this phase, mm.
  double ox = 0;        // x of the other foot, mm.
  double sy = 0;        // y of the swing foot, mm.
  double oy = 0;        // y of the other foot, mm.
  double z = 0;         // Height of the swing foot, mm: the running sum of Zankle.
};

#endif  // QUOLNARIS_BASICACTION_FORWALK_H_
