#include "BasicAction/BasicAction.h"

Agent* BasicAction::agent = nullptr;
ActionType BasicAction::inAction = AT_NONE;
