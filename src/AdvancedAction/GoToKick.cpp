#include "AdvancedAction/GoToKick.h"

#include <cmath>

#include "AdvancedAction/GoToPoint.h"
#include "Agent/Agent.h"
#include "BasicAction/Kick.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/Reset.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "Mathematics/Degree.h"
#include "WorldModel/Ball.h"
#include "WorldModel/WorldModel.h"

int GTKstate = 1;
int gtkstate = 1;

namespace {

enum { kApproach = 1, kReset = 2, kSmallSteps = 30, kKick = 3 };

}  // namespace

bool GoToKick::execute(Vector v) {
  static bool side = true;
  // A kick that was cut off keeps its foot; one that ended makes the next ask anew.
  static bool askForFoot = true;

  const Vector myself = agent->WM->getAgentPosition();
  // The real position, which vision never fills in: this action plays a ball at the pitch centre.
  // That is how its callers know it; the seen position must not be put in its place.
  const Vector ball = agent->WM->ball->getRealPosition();
  Actions* const actions = agent->actions;

  switch (GTKstate) {
    case kApproach:
      if (agent->goToPoint->fineApproach(ball, v, 5, 0.2)) {
        agent->walk->_omniWalk->resetVars();
        GTKstate = kReset;
      }
      return false;

    case kReset:
      if (actions->ChangeAction(agent->reset->execute(Reset::kFixedStance))) GTKstate = kSmallSteps;
      return false;

    case kSmallSteps: {
      const double angle = Degree::normalizeAngle(static_cast<float>(agent->WM->getAngleTo(ball)));
      const double dist = myself.getDistanceTo(ball);
      // The cosine of the number of degrees, taken as radians. It decides the last small steps and
      // must stay: with a conversion the player would kick from elsewhere.
      if (std::fabs(std::cos(std::fabs(angle)) * dist) > 0.1) {
        actions->ChangeAction(agent->walk->omniWalk(v, 0.2, 5, 0));
        actions->endStepIsRequired = false;
      } else {
        GTKstate = kKick;
      }
      return false;
    }

    case kKick:
      actions->endStepIsRequired = false;
      if (myself.getDistanceOnGround(ball) > 1) {
        GTKstate = kApproach;
        return false;
      }
      if (askForFoot) {
        askForFoot = false;
        side = agent->kick->detectFoot();
      }
      if (!actions->ChangeAction(agent->kick->unstable(side))) return false;
      askForFoot = true;
      GTKstate = kApproach;
      return true;

    default:
      return false;
  }
}
