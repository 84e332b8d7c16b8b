#ifndef QUOLNARIS_ADVANCEDACTION_GOTOKICK_H_
#define QUOLNARIS_ADVANCEDACTION_GOTOKICK_H_

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// Step of the kick approach: 1 approach, 2 reset, 30 small steps, 3 kick. It outlives resets and
// falls on purpose: an approach that was cut off goes on where it stood.
extern int GTKstate;

// No logic reads it.
extern int gtkstate;

// Walks up to the ball and kicks it towards a point.
//
// Reads: own position and the ball's real position. Provides: the approach of GoToPoint, small
// steps, and the kick, all through the arbiter.
class GoToKick : public AdvancedAction {
 public:
  // One cycle towards the kick at `v`; true on the cycle on which the kick has ended.
  bool execute(Vector v);

  // Do nothing; kept for the family.
  void gtkomni(Vector /*v*/, double /*error*/) {}
  void resetVars() {}
};

#endif  // QUOLNARIS_ADVANCEDACTION_GOTOKICK_H_
