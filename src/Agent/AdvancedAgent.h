#ifndef QUOLNARIS_AGENT_ADVANCEDAGENT_H_
#define QUOLNARIS_AGENT_ADVANCEDAGENT_H_

#include "Agent/Agent.h"

// The owner of the tactical actions that the decision layer chooses among.
class AdvancedAgent : public Agent {
 public:
  AdvancedAgent();
  ~AdvancedAgent();
};

#endif  // QUOLNARIS_AGENT_ADVANCEDAGENT_H_
