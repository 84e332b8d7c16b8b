#ifndef QUOLNARIS_ADVANCEDACTION_DECIDE_H_
#define QUOLNARIS_ADVANCEDACTION_DECIDE_H_

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// Chooses how to walk: estimates for seven ways of getting to a point how many cycles each takes,
// keeps the quickest, and runs it. A choice stands until the target moves by more than half a
// metre between two calls.
//
// Reads: own position and bearing. Provides: turns and omnidirectional walks asked of the arbiter.
class Decide : public AdvancedAction {
 public:
  Decide();

  // One cycle on the way to `pos_toGo`. `posToRot` is the point to face on arrival, `cyl` the
  // period of `cycle`, `error` the arrival ground distance in metres. False except on arrival,
  // where the result says that the final turn has finished.
  bool find(Vector pos_toGo, Vector posToRot, int cyl, double error);

  // `find` with a period of 20 and an error of 1 m; stops all motion when its own x lies 1.5 to 2
  // behind that of the target. Always false. No caller in play.
  bool end(Vector pos_toGo, Vector posToRot);

  // The least number of cycles to `pos_toGo`, without a turn at the end, for a body that faces its
  // compass direction exactly. No caller in play.
  double fast(Vector pos_toGo);

  // Called by the arbiter in every cycle of a stand-up, and not by Agent::resetAllVars.
  void resetVars();

  int findstate;    // No logic uses it.
  float py = 0;     // No logic uses it.
  float vy = 0;     // No logic uses it.
  float h;          // No logic uses it.
  int decideState;  // 0 none, 1 side, 2 forward, 3, 7, 9 turn first, 6 backward, 8 arrived.
  float bestTime;   // Cycles of the way chosen last; 60000 after a reset or a finished turn.
  bool a[10] = {};  // No logic uses it.
  bool ch;          // False once a first turn has finished; no logic reads it.
  Vector lastPos;   // Target of the last call; off the pitch after a reset.
  int cycle;        // Calls since it last reached the period.
  bool ourSide;     // False for the left side. No side is known when the object is built.

 private:
  void choose(double t, const double (&time)[7]);
  bool act(Vector pos_toGo, Vector posToRot);
  void turnThen(int walkState, Vector pos_toGo, double finalAngle);
};

#endif  // QUOLNARIS_ADVANCEDACTION_DECIDE_H_
