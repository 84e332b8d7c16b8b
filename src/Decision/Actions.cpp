#include "Decision/Actions.h"

#include "AdvancedAction/Decide.h"
#include "Agent/Agent.h"
#include "BasicAction/BackWalk.h"
#include "BasicAction/Dive.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/Kick.h"
#include "BasicAction/OmniBackWalk.h"
#include "BasicAction/OmniSideWalk.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SideWalk.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"

namespace {

// Tells the outermost ChangeAction, across the recursion through decideChangeAction, whether the
// reply of the inner call may be passed on. A gait, turn, kick or turn around the ball sets it;
// a reset, dive or stand-up leaves it.
bool dchange = false;

// All gaits start afresh.
void resetGaits(Walk* walk) {
  walk->_omniWalk->resetVars();
  walk->_omniSideWalk->resetVars();
  walk->_omniBackWalk->resetVars();
  walk->_sideWalk->resetVars();
  walk->_backWalk->resetVars();
  walk->_forWalk->resetVars();
}

// Clears ten consecutive doubles of an omni gait: RotZ, the torso offsets and the first three of
// Xankle. That the fourth Xankle and all of Zankle stay is required; the gait reads them afresh.
template <typename OmniGait>
void clearAfterEndStep(OmniGait* gait) {
  for (double& rotZ : gait->RotZ) rotZ = 0;
  gait->Xtorso = 0;
  gait->Ytorso = 0;
  gait->Ztorso = 0;
  for (int i = 0; i < 3; ++i) gait->Xankle[i] = 0;
}

}  // namespace

Agent* Actions::agent = nullptr;

bool Actions::ChangeAction(Turn* turn) {
  const ActionType requested = turn->type;
  const bool different = NowAction.actionType != requested;
  dchange = true;
  if (!preAction && different) {
    dchange = false;
    preAction = decideChangeAction();
    return dchange && preAction;
  }
  if (endStepIsRequired || checkEnd) {
    dchange = false;
    endStep();
    return false;
  }
  if (different) turn->resetVars();
  at = NowAction.actionType = requested;
  dchange = true;
  preAction = turn->execute();
  return dchange && preAction;
}

bool Actions::ChangeAction(Walk* walk) {
  resetVarsEndStep();
  const ActionType requested = walk->type;
  const bool different = NowAction.actionType != requested;
  dchange = true;
  if (preAction && endStepIsRequired && different) {
    dchange = false;
    endStep();
    return false;
  }
  if (!preAction && different) {
    dchange = false;
    preAction = decideChangeAction();
    return dchange && preAction;
  }
  if (checkEnd) {
    dchange = false;
    endStep();
    return false;
  }
  if (different) {
    resetGaits(walk);
    walk->resetVars();
  }
  at = NowAction.actionType = requested;

  // The side gaits bring their own feet together and demand no end step. After an omni gait the end
  // step leaves AT_NONE behind, so that the same gait starts from its first step again.
  switch (requested) {
    case AT_FORWALK:
      endStepIsRequired = true;
      preAction = walk->forWalk();
      break;
    case AT_BACKWALK:
      endStepIsRequired = true;
      preAction = walk->backWalk();
      break;
    case AT_SIDEWALK_RIGHT:
    case AT_SIDEWALK_LEFT:
      preAction = walk->sideWalk();
      break;
    case AT_OMNIWALK:
      endStepIsRequired = true;
      preAction = walk->omniWalk();
      if (preAction) at = AT_NONE;
      break;
    case AT_OMNIBACKWALK:
      endStepIsRequired = true;
      preAction = walk->omniBackWalk();
      if (preAction) at = AT_NONE;
      break;
    case AT_OMNISIDEWALK:
      preAction = walk->omniSideWalk();
      if (preAction) at = AT_NONE;
      break;
    default:
      break;
  }
  return dchange && preAction;
}

bool Actions::ChangeAction(Reset* reset) {
  const ActionType requested = reset->type;
  const bool different = NowAction.actionType != requested;
  if (!preAction && different) {
    preAction = decideChangeAction();
    return preAction;
  }
  if (endStepIsRequired || checkEnd) {
    endStep();
    return preAction;
  }
  if (different) reset->resetVars();
  at = NowAction.actionType = requested;
  // Whatever stance the caller asked for, a requested reset goes to the neutral one.
  preAction = reset->execute(1, 10, 5)->init();
  return preAction;
}

bool Actions::ChangeAction(Dive* dive) {
  const ActionType requested = dive->type;
  const bool different = NowAction.actionType != requested;
  if (!preAction && different) {
    preAction = decideChangeAction();
    return preAction;
  }
  if (endStepIsRequired || checkEnd) {
    endStep();
    return preAction;
  }
  if (different) dive->resetVars();
  at = NowAction.actionType = requested;
  preAction = dive->execute();
  return preAction;
}

bool Actions::ChangeAction(Kick* kick) {
  const ActionType requested = kick->type;
  const bool different = NowAction.actionType != requested;
  dchange = true;
  if (!preAction && different) {
    preAction = decideChangeAction();
    dchange = false;
    return false;
  }
  if (endStepIsRequired || checkEnd) {
    dchange = false;
    endStep();
    return false;
  }
  if (different) kick->resetVars();
  at = NowAction.actionType = requested;
  switch (requested) {
    case AT_UNSTABLE_KICK:
      preAction = kick->unstable();
      break;
    case AT_UNSTABLE1_KICK:
      preAction = kick->unstable1();
      break;
    case AT_KICK:
      preAction = kick->execute(CLOSE_X, CLOSE_Y);
      break;
    default:
      break;
  }
  return dchange && preAction;
}

bool Actions::ChangeAction(TAB* tab) {
  const ActionType requested = tab->type;
  const bool different = NowAction.actionType != requested;
  dchange = true;
  if (!preAction && different) {
    preAction = decideChangeAction();
    dchange = false;
    return false;
  }
  if (endStepIsRequired || checkEnd) {
    dchange = false;
    endStep();
    return false;
  }
  // No reset here, on purpose: the turn around the ball goes on where the last one left it.
  at = NowAction.actionType = requested;
  if (requested == AT_TURN_AROUND_BALL) preAction = tab->execute();
  return dchange && preAction;
}

bool Actions::ChangeAction(StandUp* standUp) {
  const ActionType requested = standUp->type;
  checkEnd = false;
  endStepIsRequired = false;
  if (NowAction.actionType != requested) standUp->resetVars(AT_ALL);
  at = NowAction.actionType = requested;
  switch (requested) {
    case AT_STANDUP_FRONT:
      preAction = standUp->init_front();
      break;
    case AT_STANDUP_BACK:
      preAction = standUp->init_back();
      break;
    case AT_FLIP:
      preAction = standUp->init_flip();
      break;
    default:
      break;
  }
  resetGaits(agent->walk);
  agent->turn->resetVars();
  agent->walk->resetVars();
  agent->decide->resetVars();
  return preAction;
}

bool Actions::decideChangeAction() {
  Walk* const walk = agent->walk;
  Dive* const dive = agent->dive;
  const ActionType running = NowAction.actionType;
  switch (running) {
    case AT_NONE:
      // Names no action, although it is the type of the actions that nobody has asked for yet.
      return false;
    case AT_FORWALK:
      return ChangeAction(
          walk->forWalk(walk->preForGain, walk->prespeedF, walk->preSide, walk->preStart));
    case AT_BACKWALK:
      return ChangeAction(walk->backWalk(walk->preBackGain, walk->prespeedB));
    case AT_SIDEWALK_RIGHT:
    case AT_SIDEWALK_LEFT:
      // A request for the other way has already changed the remembered gain, and with it the type
      // that the setter picks. The step that is under way ends as the type that began it; only its
      // sign is the new one. Otherwise the re-issue would differ from the running type and call
      // itself without end.
      walk->sideWalk(walk->preSideGain);
      walk->type = running;
      return ChangeAction(walk);
    // The two omni gaits that do not go forward are re-issued towards the last target of the one
    // that does: they remember theirs in prePos, which nothing reads. Required as it stands.
    case AT_OMNISIDEWALK:
      return ChangeAction(
          walk->omniSideWalk(walk->prePosition, static_cast<float>(walk->preError)));
    case AT_OMNIBACKWALK:
      // Speed and error in this order, the reverse of the setter's: a re-issued back gait takes its
      // speed for its error and its error for its speed. Required as it stands.
      return ChangeAction(walk->omniBackWalk(walk->prePosition, walk->prespeedOB,
                                             static_cast<float>(walk->preError)));
    case AT_OMNIWALK:
      return ChangeAction(walk->omniWalk(walk->prePosition, walk->prespeedOW, walk->preError, 0));
    default:
      break;
  }
  if (running == agent->turn->type) return ChangeAction(agent->turn);
  if (running == agent->reset->type) return ChangeAction(agent->reset);
  if (running == AT_DIVE) {
    // The mirror flag lands in the count of cycles to lie still, as 0 or 1, and the flag becomes
    // true. Required as it stands: a dive that is re-issued ends as soon as the robot lies.
    return ChangeAction(dive->execute(dive->Side, dive->RotateSide, true));
  }
  if (running == agent->kick->type) return ChangeAction(agent->kick);
  if (running == agent->turnAroundBall->type) return ChangeAction(agent->turnAroundBall);
  if (running == agent->standUp->type) return ChangeAction(agent->standUp);
  return true;
}

bool Actions::endStep() {
  if (!agent->reset->execute(1, 10, 5)->init()) return false;
  clearAfterEndStep(agent->walk->_omniWalk);
  clearAfterEndStep(agent->walk->_omniBackWalk);
  p += 1;
  spd = 0;
  e = 0;
  checkEnd = false;
  endStepIsRequired = false;
  NowAction.actionType = at;
  state = 1000;
  return true;
}

void Actions::resetVarsEndStep() {
  con = 0.05;
  side = false;
  for (bool& stepEnded : es) stepEnded = false;
  endStepVal = 0.5;
  f = 0;
  state = 1;
  spd = 1.0;
  stepTime = 0;
  e = 0;
  p = 0;
  k = true;
}

bool Actions::stopAction(Reset*) {
  agent->resetAllVars();
  agent->setAll(0, 50, 3);
  preAction = true;
  return true;
}
