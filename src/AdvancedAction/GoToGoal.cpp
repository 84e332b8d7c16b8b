#include "AdvancedAction/GoToGoal.h"

#include "AdvancedAction/Dribble.h"
#include "AdvancedAction/GoToPoint.h"
#include "Agent/Agent.h"
#include "BasicAction/Reset.h"
#include "Decision/Actions.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Game.h"
#include "WorldModel/WorldModel.h"

namespace {

enum { kApproach = 0, kReset = 1, kDribble = 3 };

// A ball unseen for longer than this, in seconds, is taken to lie at the own feet.
constexpr double kLost = 0.8;

}  // namespace

GoToGoal::GoToGoal() {
  resetVars();
}

bool GoToGoal::execute() {
  Vector ballPos = agent->WM->ball->getGlobalPosition();
  const Vector selfPos = agent->WM->getAgentPosition();
  const double dist = selfPos.getDistanceTo(ballPos);  // of the remembered ball, also when lost

  if (agent->WM->gameTime - agent->WM->ball->getLastTimeSeen() > kLost) ballPos = selfPos;
  if (selfPos.getDistanceTo(kOtherGoal) < 0.2) return true;
  if (dist > 1.5) state = kApproach;

  switch (state) {
    case kApproach:
      if (agent->goToPoint->fineApproach(ballPos, kOtherGoal, 5, 1.2)) state = kReset;
      break;
    case kReset:
      if (agent->actions->ChangeAction(agent->reset->execute(Reset::kNeutralStance))) {
        state = kDribble;
      }
      break;
    case kDribble:
      agent->dribble->dribble(kOtherGoal, 0);
      break;
    default:
      break;
  }
  return false;
}

void GoToGoal::resetVars() {
  GTGstate = 1;
}
