#ifndef QUOLNARIS_BASICACTION_SIDEWALK_H_
#define QUOLNARIS_BASICACTION_SIDEWALK_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Utilities/Types.h"

// The plain side gait: the step of ForWalk across the y axis. The leading leg steps, the trailing
// leg closes up, and the gait may be left only with the feet together, so that the arbiter asks
// no end step of it.
//
// Frame and units as in ForWalk.
//
// Reads: the configuration file sideWalk, on every call. Provides: targets of both legs.
class SideWalk : public BasicAction {
 public:
  // One cycle of the gait; true in the cycle that ends a closing step.
  bool execute();

  // Sequences stance, left step and right step. The sign of `sideGain` picks the leg that opens.
  bool basicWalk(float sideGain);

  // One phase of one step of the leg `side`; true when it ended the step.
  bool step(float sideGain, bool side);

  void resetVars();

  double Xtorso = 0;       // Torso offset, mm.
  double Ytorso = 0;       // Torso offset, mm.
  double Ztorso = 0;       // Torso offset, mm.
  double Yankle[4] = {};   // Stepping foot's increment along y per phase, mm.
  double Zankle[4] = {};   // Stepping foot's increment upward per phase, mm.
  int sp = 0;              // Joint speed, percent of the remaining angle per cycle.
  int state = 0;           // Phase of the step, 0 to 3.
  bool side = true;        // Not used.
  int basicWalkState = 0;  // 0 stance, 1 left step, 2 right step.
  double ry = 0;           // Accumulated y of the right foot, mm.
  double ly = 0;           // Accumulated y of the left foot, mm.
  InverseKinematic IK;
  bool sideEnd = false;       // Side of the step that ended last.
  float gain = 1;             // Step factor of the request, signed.
  float Gain = 1;             // Not used.
  float preGain = 1;          // Not used.
  ActionType type = AT_NONE;  // Not used by the gait: Walk holds the request.
};

#endif  // QUOLNARIS_BASICACTION_SIDEWALK_H_
