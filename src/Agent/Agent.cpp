#include "Agent/Agent.h"

#include "AdvancedAction/Decide.h"
#include "AdvancedAction/GoToBall.h"
#include "AdvancedAction/GoToGoal.h"
#include "AdvancedAction/GoToKick.h"
#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/Dive.h"
#include "BasicAction/FeedBack.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "WorldModel/Game.h"

Agent::Agent() : GOAL(kOtherGoal) {
  kick = new Kick;
  standUp = new StandUp;
  reset = new Reset;
  dive = new Dive;
  turn = new Turn;
  walk = new Walk;
  seeBall = new SeeBall;
  feedBack = new FeedBack;
  goToBall = new GoToBall;
  turnAroundBall = new TAB;
  actions = new Actions;
  decide = new Decide;
  goToPoint = new GoToPoint;
  goToKick = new GoToKick;
  goToGoal = new GoToGoal;
}

Agent::~Agent() {
  delete kick;
  delete standUp;
  delete reset;
  delete dive;
  delete turn;
  delete walk;
  delete seeBall;
  delete feedBack;
}

void Agent::resetAllVars() {
  walk->resetVars();
  turn->resetVars();
  dive->resetVars();
  kick->resetVars();
  reset->resetVars();
  goToPoint->resetVars();
  goToKick->resetVars();
  goToGoal->resetVars();
  goToBall->resetVars();
}
