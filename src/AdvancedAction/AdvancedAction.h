#ifndef QUOLNARIS_ADVANCEDACTION_ADVANCEDACTION_H_
#define QUOLNARIS_ADVANCEDACTION_ADVANCEDACTION_H_

#include "BasicAction/BasicAction.h"

// Base of the tactical actions: where to go and what to do with the ball.
//
// A tactical action is called once per cycle for as long as it is wanted and returns true when it
// is done. It reaches the world model, the motion actions and the other tactical actions through
// the static BasicAction::agent, and asks for motion through Actions::ChangeAction alone.
//
// Positions are metres in the pitch frame: own goal at negative x, opponents' goal at (15, 0, 0).
// Angles are degrees. A distance that is not called ground distance includes z, and its own z is
// 0.45: a target on the ground is never nearer than that.
class AdvancedAction : public BasicAction {};

#endif  // QUOLNARIS_ADVANCEDACTION_ADVANCEDACTION_H_
