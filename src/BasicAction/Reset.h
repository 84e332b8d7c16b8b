#ifndef QUOLNARIS_BASICACTION_RESET_H_
#define QUOLNARIS_BASICACTION_RESET_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/InverseKinematic.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

// Brings the whole body to a stance: bent knees, arms forward, the pose from which the gaits start
// and to which the arbiter returns between actions.
//
// A function of the stance wanted: it keeps nothing between calls but its parameters.
//
// Reads: the configuration files forWalk and backWalk, on every call. Provides: joint targets of
// both arms and both legs (the head is left alone).
class Reset : public BasicAction {
 public:
  enum Stance {
    kFixedStance = 0,    // (50, 0, -60) mm, whatever the configuration says
    kNeutralStance = 1,  // between the gaits
    kBackStance = 2,     // of the back gait
    kForwardStance = 3,  // of the forward gait
  };

  // Stores the request and returns itself for Actions::ChangeAction; nothing moves.
  // `state` is a Stance; any other number gives the fixed one. `speed` (percent of the remaining
  // angle per cycle) drives leg joints 1 and 6, `sp` all the others.
  Reset* execute(int state, int speed = 10, int sp = 5);

  // One cycle towards the stance. Every joint is commanded in every call; true when all of them
  // stand within their tolerance (arms 5 degrees, legs 3).
  bool init();

  // One cycle towards a low crouch; prints the solved angles to the standard output. Without a
  // caller in play.
  bool prepareToReset();

  void resetVars();

  Vector heap{0, 0, 0};   // Hip target of the stance, millimetres in the body frame.
  Vector ankle{0, 0, 0};  // Ankle target, millimetres; always the origin.
  bool firstCheck = false;
  double angs[7] = {};     // Solved angles of one leg, degrees; joint n in index n.
  float resetCounter = 0;  // Cleared by resetVars; no logic uses it.
  InverseKinematic inv;
  int Speed = 0;  // Speed of leg joints 1 and 6, percent of the remaining angle per cycle.
  int State = 0;  // Which stance.
  int SP = 0;     // Speed of all other joints.
  ActionType type = AT_RESET;
};

#endif  // QUOLNARIS_BASICACTION_RESET_H_
