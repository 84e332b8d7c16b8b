#ifndef QUOLNARIS_AGENT_AGENT_H_
#define QUOLNARIS_AGENT_AGENT_H_

#include "Agent/BasicAgent.h"
#include "Mathematics/Vector.h"

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
};

#endif  // QUOLNARIS_AGENT_AGENT_H_
