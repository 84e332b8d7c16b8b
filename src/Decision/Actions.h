#ifndef QUOLNARIS_DECISION_ACTIONS_H_
#define QUOLNARIS_DECISION_ACTIONS_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/ForwardKinematic.h"
#include "Utilities/Types.h"

class Agent;
class Dive;
class Kick;
class Reset;
class StandUp;
class TAB;
class Turn;
class Walk;

// The arbiter: the one object through which every tactical layer asks for motion.
//
// It owns no motion. On each request it decides whether to start the requested action, to go on
// with the running one until that reaches a point at which it may be left, or to bring the legs
// back to the neutral stance first. No action advances in a cycle in which nobody asks.
//
// Its state is the triple (NowAction.actionType, preAction, endStepIsRequired). With R the running
// action and T the requested one:
//
//   preAction  endStepIsRequired  T and R    a request that is no gait   a gait request
//   false      any                different  R goes on                   R goes on
//   false      false              same       R goes on                   R goes on
//   false      true               same       one cycle of endStep        R goes on
//   true       false              different  T is reset and starts       gaits reset, T starts
//   true       false              same       R goes on                   R goes on, next step
//   true       true               different  one cycle of endStep        one cycle of endStep
//   true       true               same       one cycle of endStep        R goes on, next step
//
// A stand-up request stands outside the table: it runs at once, in any state.
//
// Reads: the parameters stored in the action objects. Provides: one cycle of one motion action per
// request.
class Actions {
 public:
  static Agent* agent;

  // Each asks for the action, every cycle for as long as it is wanted. True when the action that
  // ran in this call has reached a point at which it may be left; no promise that the requested
  // action ran.
  bool ChangeAction(Turn* turn);
  bool ChangeAction(Walk* walk);
  bool ChangeAction(Reset* reset);
  bool ChangeAction(Dive* dive);
  bool ChangeAction(Kick* kick);
  bool ChangeAction(TAB* tab);

  // Wins at once, whatever runs, and resets all motion state in every cycle of the stand-up.
  bool ChangeAction(StandUp* standUp);

  // Re-issues the running action with its remembered parameters.
  bool decideChangeAction();

  // One cycle of the walk to the neutral stance; true when it is reached.
  bool endStep();

  // Resets the end-of-step bookkeeping. Every request of a gait begins with it.
  void resetVarsEndStep();

  // Stops everything at once: resets the actions, drives every joint towards 0 and makes the next
  // request start. The running type and endStepIsRequired stay. The argument is not used.
  bool stopAction(Reset* reset);

  void action() {}

  BasicAction getFormerAction() const { return FormerAction; }
  BasicAction getNowAction() const { return NowAction; }

  BasicAction FormerAction;  // Reserved for the action before; never written.
  bool preAction = true;     // The last result of the running action: it may be left.
  ForwardKinematic fwd;      // No logic uses it.

  // Bookkeeping of the end of a step, from here to k. No decision reads it.
  double endStepVal = 0.5;
  double a[1] = {0};
  double con = 0.05;
  bool side = false;
  bool es[3] = {false, false, false};
  double spd = 1.0;
  int f = 0;
  int state = 1;
  bool _side = false;
  double stepTime = 0;
  double endstepTime = 0;
  int e = 0;
  int p = 0;
  bool k = true;

  BasicAction NowAction;  // Its actionType is the running action's type.
  int diveCounter = 0;    // Not used by the arbiter.
  bool beta = false;      // Not used by the arbiter.

  // The legs stand in a gait stance: leaving for another action must first pass the neutral
  // stance. Part of the interface: tactical actions clear it when they want to skip that.
  bool endStepIsRequired = false;

  ActionType at = AT_NONE;  // The type that endStep writes back into NowAction.

  // A second reason for an end step. Nothing sets it; the tests on it are kept.
  bool checkEnd = false;

 private:
  enum class Kind;

  // How one more cycle of the running action went.
  struct Running {
    bool mayBeLeft;
    bool stepsOrKicks;  // a gait, turn, turn around the ball or kick
  };

  // Re-issues the running action with its remembered parameters.
  Running goOn();

  // The table above, for a request of the type `requested`: `start` resets the action, `run` makes
  // one cycle of it and stores its result in preAction.
  template <typename Start, typename Run>
  bool serve(Kind kind, ActionType requested, Start start, Run run);
};

#endif  // QUOLNARIS_DECISION_ACTIONS_H_
