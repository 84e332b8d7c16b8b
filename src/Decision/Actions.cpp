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

// The gaits, as the arbiter tells them apart.
struct Gait {
  ActionType type;
  bool (Walk::*run)();
  // Its legs stand in a gait stance. The side gaits bring their own feet together.
  bool needsEndStep;
  // Once it may be left, an end step leaves AT_NONE behind, so that a later request of the same
  // gait counts as different and starts it from its first step.
  bool startsAfresh;
  // Sets the gait's parameters to those that Walk remembers.
  void (*repeat)(Walk& walk);
};

void repeatSideWalk(Walk& walk) {
  walk.sideWalk(walk.preSideGain);
}

// The two omni gaits that do not go forward are repeated towards the last target of the one that
// does: they remember theirs in prePos, which nothing reads. Must stay: a repeated gait only has to
// end its pair of steps, and where these lead decides where the next action starts.
constexpr Gait kGaits[] = {
    {AT_FORWALK, &Walk::forWalk, true, false,
     [](Walk& walk) {
       walk.forWalk(walk.preForGain, walk.prespeedF, walk.preSide, walk.preStart);
     }},
    {AT_BACKWALK, &Walk::backWalk, true, false,
     [](Walk& walk) { walk.backWalk(walk.preBackGain, walk.prespeedB); }},
    {AT_SIDEWALK_RIGHT, &Walk::sideWalk, false, false, repeatSideWalk},
    {AT_SIDEWALK_LEFT, &Walk::sideWalk, false, false, repeatSideWalk},
    {AT_OMNIWALK, &Walk::omniWalk, true, true,
     [](Walk& walk) { walk.omniWalk(walk.prePosition, walk.prespeedOW, walk.preError, 0); }},
    // Speed and error in this order, the reverse of the setter's: a repeated back gait takes its
    // speed for its error and its error for its speed. Must stay: the speed ends the gait's ramp,
    // so that the swap sets how hard the last steps before a change of action are driven.
    {AT_OMNIBACKWALK, &Walk::omniBackWalk, true, true,
     [](Walk& walk) {
       walk.omniBackWalk(walk.prePosition, walk.prespeedOB, static_cast<float>(walk.preError));
     }},
    {AT_OMNISIDEWALK, &Walk::omniSideWalk, false, true,
     [](Walk& walk) { walk.omniSideWalk(walk.prePosition, static_cast<float>(walk.preError)); }},
};

const Gait* gaitOf(ActionType type) {
  for (const Gait& gait : kGaits) {
    if (gait.type == type) return &gait;
  }
  return nullptr;
}

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

// Where requests differ. A gait flows on from step to step; all others begin and go on from the
// neutral stance. In a cycle in which the request is not served, gaits and turns pass on the result
// of a running action that steps or kicks, kicks and turns around the ball nothing, and what moves
// the whole body any result.
enum class Actions::Kind { kGait, kTurn, kKick, kWholeBody };

Agent* Actions::agent = nullptr;

template <typename Start, typename Run>
bool Actions::serve(Kind kind, ActionType requested, Start start, Run run) {
  const bool different = NowAction.actionType != requested;
  if (!preAction && different) {
    const Running running = goOn();
    preAction = running.mayBeLeft;
    if (kind == Kind::kKick) return false;
    return preAction && (running.stepsOrKicks || kind == Kind::kWholeBody);
  }
  const bool flowsOn = kind == Kind::kGait && !different;
  if (checkEnd || (endStepIsRequired && !flowsOn)) {
    endStep();
    return preAction && kind == Kind::kWholeBody;
  }
  if (different) start();
  at = NowAction.actionType = requested;
  run();
  return preAction;
}

bool Actions::ChangeAction(Turn* turn) {
  return serve(
      Kind::kTurn, turn->type, [&] { turn->resetVars(); }, [&] { preAction = turn->execute(); });
}

bool Actions::ChangeAction(Walk* walk) {
  resetVarsEndStep();
  const Gait* const gait = gaitOf(walk->type);
  return serve(
      Kind::kGait, walk->type,
      [&] {
        resetGaits(walk);
        walk->resetVars();
      },
      [&] {
        if (gait == nullptr) return;
        if (gait->needsEndStep) endStepIsRequired = true;
        preAction = (walk->*gait->run)();
        if (preAction && gait->startsAfresh) at = AT_NONE;
      });
}

bool Actions::ChangeAction(Reset* reset) {
  return serve(
      Kind::kWholeBody, reset->type, [&] { reset->resetVars(); },
      // Whatever stance the caller asked for, a requested reset goes to the neutral one.
      [&] { preAction = reset->execute(Reset::kNeutralStance)->init(); });
}

bool Actions::ChangeAction(Dive* dive) {
  return serve(
      Kind::kWholeBody, dive->type, [&] { dive->resetVars(); },
      [&] { preAction = dive->execute(); });
}

bool Actions::ChangeAction(Kick* kick) {
  const ActionType requested = kick->type;
  return serve(
      Kind::kKick, requested, [&] { kick->resetVars(); },
      [&] {
        if (requested == AT_UNSTABLE_KICK) preAction = kick->unstable();
        if (requested == AT_UNSTABLE1_KICK) preAction = kick->unstable1();
        if (requested == AT_KICK) preAction = kick->execute(CLOSE_X, CLOSE_Y);
      });
}

bool Actions::ChangeAction(TAB* tab) {
  const ActionType requested = tab->type;
  return serve(
      Kind::kKick, requested,
      // No reset here, on purpose: the turn around the ball goes on where the last one left it.
      [] {},
      [&] {
        if (requested == AT_TURN_AROUND_BALL) preAction = tab->execute();
      });
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
  return goOn().mayBeLeft;
}

Actions::Running Actions::goOn() {
  const ActionType running = NowAction.actionType;
  // Names no action, although it is the type of the actions that nobody has asked for yet.
  if (running == AT_NONE) return {false, false};

  if (const Gait* const gait = gaitOf(running)) {
    gait->repeat(*agent->walk);
    // A request for the other way has already changed the remembered gain of the side gait, and
    // with it the type that the setter picks. The step that is under way ends as the type that
    // began it; only its sign is the new one. Otherwise the repeated request would differ from the
    // running type and call itself without end.
    agent->walk->type = running;
    return {ChangeAction(agent->walk), true};
  }
  if (running == agent->turn->type) return {ChangeAction(agent->turn), true};
  if (running == agent->reset->type) return {ChangeAction(agent->reset), false};
  if (running == AT_DIVE) {
    // The mirror flag lands in the count of cycles to lie still, as 0 or 1, and the flag becomes
    // true. Must stay: a dive that another request interrupts ends as soon as the robot lies, and
    // frees it for that request.
    Dive* const dive = agent->dive;
    return {ChangeAction(dive->execute(dive->Side, dive->RotateSide, true)), false};
  }
  if (running == agent->kick->type) return {ChangeAction(agent->kick), true};
  if (running == agent->turnAroundBall->type) return {ChangeAction(agent->turnAroundBall), true};
  if (running == agent->standUp->type) return {ChangeAction(agent->standUp), false};
  return {true, false};
}

bool Actions::endStep() {
  if (!agent->reset->execute(Reset::kNeutralStance)->init()) return false;
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
