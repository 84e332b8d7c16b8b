#include "Agent/Agent.h"

Agent::Agent() : GOAL(15, 0, 0) {}

Agent::~Agent() = default;

void Agent::resetAllVars() {}
