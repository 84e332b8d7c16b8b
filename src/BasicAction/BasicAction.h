#ifndef QUOLNARIS_BASICACTION_BASICACTION_H_
#define QUOLNARIS_BASICACTION_BASICACTION_H_

#include "Utilities/Types.h"

class Agent;

// Common base of every motion action and of AdvancedAction.
//
// An action is split in two. A setter stores the parameters and the requested ActionType in the
// action and returns the action itself; the caller hands that pointer to Actions::ChangeAction,
// which alone calls the action's step function. The step function makes one cycle of the motion
// and returns true in the cycle in which the action may be left.
//
// Reads: nothing. Provides: the way from an action to the body, the world model and the others.
class BasicAction {
 public:
  // The one player. Set before the player runs; constructors must not use it.
  static Agent* agent;

  // Written when a recovery move, a reset or a dive starts, and AT_NONE when it ends. For
  // observers only: the arbiter relies on Actions::NowAction.
  static ActionType inAction;

  // The type that a plain BasicAction value carries, as Actions::NowAction does.
  ActionType actionType = AT_NONE;

  // Spare; no logic uses it.
  int auxMark = 0;

  // Declared for the family and defined by each action that has something to reset; the base has
  // no body on purpose, so a call through the base does not link.
  void resetVars(ActionType type);
};

#endif  // QUOLNARIS_BASICACTION_BASICACTION_H_
