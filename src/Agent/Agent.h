#ifndef QUOLNARIS_AGENT_AGENT_H_
#define QUOLNARIS_AGENT_AGENT_H_

#include "Agent/BasicAgent.h"
#include "Mathematics/Vector.h"

class Actions;
class Block;
class Clear;
class Decide;
class Dive;
class Dribble;
class FeedBack;
class GoToBall;
class GoToGoal;
class GoToKick;
class GoToPoint;
class Kick;
class Pass;
class Reset;
class SeeBall;
class StandUp;
class TAB;
class Turn;
class Walk;

// The owner of the motion actions and of the tactical actions that are shared by all situations.
//
// Provides: the action objects, which reach each other and the body through the static pointer to
//           this object. They are built before any configuration is read, so no constructor of an
//           action may touch `config`, nor the static agent pointers, which main sets later.
class Agent : public BasicAgent {
 public:
  Agent();
  ~Agent();
  Agent(const Agent&) = delete;
  Agent& operator=(const Agent&) = delete;

  // Sets the motion and tactical state of the actions back to their start, before a restart of
  // play. Stand-up, ball search, feedback, turning around the ball, the arbiter and the decision
  // objects keep their state.
  void resetAllVars();

  // Centre of the opponents' goal, metres, pitch frame; the same on both sides of the game.
  Vector GOAL;

  GoToPoint* goToPoint = nullptr;
  GoToKick* goToKick = nullptr;
  GoToGoal* goToGoal = nullptr;
  // The four below are built by the AdvancedAgent, which hides these pointers with its own.
  Dribble* dribble = nullptr;
  Clear* clear = nullptr;
  Pass* pass = nullptr;
  Block* block = nullptr;

  Kick* kick = nullptr;
  StandUp* standUp = nullptr;
  Reset* reset = nullptr;
  Dive* dive = nullptr;
  Turn* turn = nullptr;
  Walk* walk = nullptr;
  SeeBall* seeBall = nullptr;
  GoToBall* goToBall = nullptr;
  Actions* actions = nullptr;
  TAB* turnAroundBall = nullptr;
  FeedBack* feedBack = nullptr;
  Decide* decide = nullptr;
};

#endif  // QUOLNARIS_AGENT_AGENT_H_
