#include "Agent/Agent.h"

#include "BasicAction/Dive.h"
#include "BasicAction/FeedBack.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "Decision/Actions.h"

Agent::Agent() : GOAL(15, 0, 0) {
  kick = new Kick;
  standUp = new StandUp;
  reset = new Reset;
  dive = new Dive;
  seeBall = new SeeBall;
  feedBack = new FeedBack;
  actions = new Actions;
}

Agent::~Agent() {
  delete kick;
  delete standUp;
  delete reset;
  delete dive;
  delete seeBall;
  delete feedBack;
}

void Agent::resetAllVars() {
  dive->resetVars();
  kick->resetVars();
  reset->resetVars();
}
