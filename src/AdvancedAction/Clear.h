#ifndef QUOLNARIS_ADVANCEDACTION_CLEAR_H_
#define QUOLNARIS_ADVANCEDACTION_CLEAR_H_

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// Takes the ball away from an opponent in front of its own goal: kicks it across the opponent's
// line to the ball.
//
// Reads: ball and own position. Provides: calls of GoToKick.
class Clear : public AdvancedAction {
 public:
  // Refreshes ball and own position.
  void inIt();

  // One cycle of clearing; `p2` is where the player expected at the ball stands, `reachPoint` is
  // not used. Always true.
  bool execute(Vector p2, Vector reachPoint);

  void resetVars() {}

  Vector selfPos;
  Vector ballPos;

 private:
  Vector direction(Vector p2) const;
};

#endif  // QUOLNARIS_ADVANCEDACTION_CLEAR_H_
