#ifndef QUOLNARIS_ADVANCEDACTION_GOTOPOINT_H_
#define QUOLNARIS_ADVANCEDACTION_GOTOPOINT_H_

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// Three ways of walking to a point.
//
// Reads: own position and bearing. Provides: turns, walks and resets asked of the arbiter.
//
// `gtpDecide` and `fineApproach` shake hands through `rokhsat` and `tashkor`: each runs a reset
// first when the other was active since its last reset.
class GoToPoint : public AdvancedAction {
 public:
  // The simple walk of the goalie: a finished turn to the point, then a walk; any error above 20
  // degrees stops the walk for a new turn. `distEr` is the allowed distance in metres; true from
  // Actions::endStep when standing within it.
  bool execute(Vector pos_toGo, float distEr);

  // The walk of all positioning, marking and blocking: Decide picks the gait. `posToRot` is the
  // point to face on arrival; `angEr` (its integer part is the period of Decide's counter) and
  // `disEr` (metres) are handed on. True when arrived and turned.
  bool gtpDecide(Vector posToGo, Vector posToRot, double angEr, double disEr);

  // The precise walk that ends next to the ball: face the target, walk fast, walk slowly, face the
  // target once more, then circle around it until `pos` lies ahead within `angleEr` degrees.
  // `distEr` is the allowed distance in metres. True when in place and turned.
  bool fineApproach(Vector pos_toGo, Vector pos, double angleEr, double distEr);

  // The start values. The function-local memories of `execute` and `fineApproach` stay.
  void resetVars();

  int state = 1;              // No logic uses it.
  int gtpo = 1;               // No logic uses it.
  int GTBstate = 1;           // No logic uses it.
  int gtbstate = 0;           // No logic uses it.
  int stateFineApproach = 1;  // Step of `execute` and of `fineApproach`.
  int stateGtpDecide = 1;     // Branch of `gtpDecide`; nothing moves it from 1.
  bool s = true;              // Last result of the turn of `fineApproach`.
  bool firstTime = true;      // No logic uses it.
  bool vasatWalk = false;     // "In the middle of the walk"; no logic uses it.
  double sp = 1.0;            // No logic uses it.
  int cyl = 0;                // No logic uses it.
  bool endStep = false;       // No logic uses it.
  int st = 0;                 // Stage of the last turn of `fineApproach`.
  bool rokhsat = true;        // "Leave": gtpDecide owes a reset.
  bool tashkor = true;        // "Thanks": fineApproach owes a reset.
};

#endif  // QUOLNARIS_ADVANCEDACTION_GOTOPOINT_H_
