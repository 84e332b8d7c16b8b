#include "AdvancedAction/GoToPoint.h"

#include <cmath>

#include "AdvancedAction/Decide.h"
#include "Agent/Agent.h"
#include "BasicAction/Reset.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "Mathematics/Degree.h"
#include "WorldModel/WorldModel.h"

namespace {

// A bearing error above this, in degrees, ends a walk for a turn.
constexpr double kTurnFirst = 20;

// The distance beyond the allowed one, in metres, at which the fast stretch of the precise walk
// ends.
constexpr double kSlowStretch = 1;

double bearingOf(Agent* agent, Vector point) {
  return Degree::normalizeAngle(static_cast<float>(agent->WM->getAngleTo(point)));
}

double distanceOf(Agent* agent, Vector point) {
  return std::fabs(agent->WM->getAgentPosition().getDistanceTo(point));
}

bool neutralStance(Agent* agent) {
  return agent->actions->ChangeAction(agent->reset->execute(Reset::kNeutralStance));
}

}  // namespace

bool GoToPoint::execute(Vector pos_toGo, float distEr) {
  // Kept between calls: a turn that is still running leaves stateFineApproach as it was, so that
  // it goes on until it has finished.
  static bool turned = true;

  if (distEr >= distanceOf(agent, pos_toGo)) {
    stateFineApproach = 4;
  } else if (std::fabs(bearingOf(agent, pos_toGo)) > kTurnFirst) {
    stateFineApproach = 1;
  } else if (turned) {
    stateFineApproach = 2;
  }

  switch (stateFineApproach) {
    case 1:
      turned = agent->actions->ChangeAction(agent->turn->execute(pos_toGo, 10, 0));
      return false;
    case 2:
      agent->actions->ChangeAction(agent->walk->omniWalk(pos_toGo, 1, 10, 0));
      return false;
    case 4:
      return agent->actions->endStep();
    default:
      return false;
  }
}

bool GoToPoint::gtpDecide(Vector posToGo, Vector posToRot, double angEr, double disEr) {
  tashkor = true;
  if (rokhsat && neutralStance(agent)) rokhsat = false;

  switch (stateGtpDecide) {
    case 1:
      return agent->decide->find(posToGo, posToRot, static_cast<int>(angEr), disEr);
    case 2:
      return agent->actions->ChangeAction(agent->turnAroundBall->execute(posToRot, angEr));
    case 200:
      neutralStance(agent);
      return false;
    default:
      return false;
  }
}

bool GoToPoint::fineApproach(Vector pos_toGo, Vector pos, double angleEr, double distEr) {
  // Set by the first fast stretch and never cleared, on purpose: from then on the slow stretch is
  // skipped and the final turn comes up to a metre early.
  static bool walkedFast = false;

  rokhsat = true;
  if (tashkor && neutralStance(agent)) tashkor = false;

  const double distance = distanceOf(agent, pos_toGo);
  if (distEr >= distance) {
    stateFineApproach = 3;
  } else if (std::fabs(bearingOf(agent, pos_toGo)) > kTurnFirst) {
    stateFineApproach = 1;
  } else {
    stateFineApproach = distance - distEr < kSlowStretch ? 4 : 2;
  }
  if (walkedFast && distance - distEr <= kSlowStretch) stateFineApproach = 3;

  switch (stateFineApproach) {
    case 1:
      s = agent->actions->ChangeAction(agent->turn->execute(pos_toGo, 10, 0));
      return false;
    case 2:
      walkedFast = true;
      agent->actions->ChangeAction(agent->walk->omniWalk(pos_toGo, 1, 5, 0));
      st = 0;
      return false;
    case 3:
      if (st == 0) {
        if (agent->actions->ChangeAction(agent->turn->execute(pos_toGo, 7, 0))) st = 1;
        return false;
      }
      return st == 1 && agent->actions->ChangeAction(agent->turnAroundBall->execute(pos, angleEr));
    case 4:
      agent->actions->ChangeAction(agent->walk->omniWalk(pos_toGo, 0.3, 5, 0));
      agent->actions->endStepIsRequired = false;
      st = 0;
      return false;
    default:
      return false;
  }
}

void GoToPoint::resetVars() {
  state = gtpo = GTBstate = stateFineApproach = stateGtpDecide = 1;
  gtbstate = 0;
  rokhsat = tashkor = s = firstTime = true;
  vasatWalk = false;
  sp = 1.0;
  cyl = 0;
  endStep = false;
  st = 0;
}
