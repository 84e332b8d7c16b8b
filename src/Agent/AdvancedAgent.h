#ifndef QUOLNARIS_AGENT_ADVANCEDAGENT_H_
#define QUOLNARIS_AGENT_ADVANCEDAGENT_H_

#include "Agent/Agent.h"

class Block;
class Clear;
class Decision;
class Dribble;
class Mark;
class Pass;

// The owner of the tactical actions that the decision layer chooses among.
class AdvancedAgent : public Agent {
 public:
  AdvancedAgent();
  ~AdvancedAgent();
  AdvancedAgent(const AdvancedAgent&) = delete;
  AdvancedAgent& operator=(const AdvancedAgent&) = delete;

  // Owned, and never driven: OurPlayer::de decides.
  Decision* decision;

  // Owned. The first four hide the pointers of Agent, of which only `dribble` is set: to this one.
  Block* block;
  Clear* clear;
  Pass* pass;
  Dribble* dribble;
  Mark* mark;
};

#endif  // QUOLNARIS_AGENT_ADVANCEDAGENT_H_
