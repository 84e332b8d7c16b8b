#include "Agent/AdvancedAgent.h"

#include "AdvancedAction/Block.h"
#include "AdvancedAction/Clear.h"
#include "AdvancedAction/Dribble.h"
#include "AdvancedAction/Mark.h"
#include "AdvancedAction/Pass.h"
#include "Decision/Decision.h"

AdvancedAgent::AdvancedAgent() {
  decision = new Decision;
  block = new Block;
  clear = new Clear;
  dribble = new Dribble;
  pass = new Pass;
  mark = new Mark;
  Agent::dribble = dribble;  // GoToGoal dribbles through it
}

AdvancedAgent::~AdvancedAgent() {
  delete decision;
  delete block;
  delete clear;
  delete dribble;
  delete pass;
  delete mark;
}
