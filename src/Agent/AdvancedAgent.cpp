#include "Agent/AdvancedAgent.h"

AdvancedAgent::AdvancedAgent() = default;

AdvancedAgent::~AdvancedAgent() = default;
