#ifndef QUOLNARIS_ADVANCEDACTION_GOTOGOAL_H_
#define QUOLNARIS_ADVANCEDACTION_GOTOGOAL_H_

#include "AdvancedAction/AdvancedAction.h"

// Plays the ball forward: approach, reset, then dribble towards the opponents' goal.
//
// Reads: ball and own position, game time. Provides: calls of GoToPoint and Dribble.
class GoToGoal : public AdvancedAction {
 public:
  GoToGoal();

  // One cycle; true when the player is within 0.2 m of the goal centre (z included, so that a
  // player at its fixed height of 0.45 m never is).
  bool execute();

  // Only GTGstate: a ball more than 1.5 m away is what puts `state` back to 0.
  void resetVars();

  int GTGstate;         // No logic uses it.
  int GTGoalState = 0;  // No logic uses it.
  int state = 0;        // 0 approach, 1 reset, 3 dribble.
  int st = 0;           // No logic uses it.
};

#endif  // QUOLNARIS_ADVANCEDACTION_GOTOGOAL_H_
