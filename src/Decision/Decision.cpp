#include "Decision/Decision.h"

#include <cassert>
#include <iostream>

#include "AdvancedAction/Dribble.h"
#include "AdvancedAction/GoToBall.h"
#include "AdvancedAction/GoToKick.h"
#include "Agent/AdvancedAgent.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/Walk.h"
#include "Command/Command.h"
#include "Decision/Actions.h"
#include "Utilities/Config.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

AdvancedAgent* Decision::advancedAgent = nullptr;
bool Decision::anyThingToDoZero = false;
bool Decision::anyThingToDoOne = false;
int Decision::freezeCycle = 0;

namespace {

constexpr int kKickOffTaker = 11;

// Beams of one stoppage after which the player settles in its stance instead.
constexpr int kBeamLimit = 9;

// The situations; the class comment lists them.
enum {
  kBeforeKickOff = 2,
  kOurKickOff = 3,
  kPlayOn = 4,
  kOurKickIn = 5,
  kOurCorner = 6,
  kOurGoalKick = 7,
  kOurOffside = 8,
  kQuit = 9,
  kOurGoal = 10,
  kTheirGoal = 11,
  kOurFreeKick = 12,
  kUnknownMode = 13,
  kKeep = -1  // no situation: the last one stays
};

// What a play mode means for the team on either side.
struct Meaning {
  PlayMode mode;
  int onTheLeft;
  int onTheRight;
};
constexpr Meaning kMeanings[] = {
    {PM_BEFORE_KICK_OFF, kBeforeKickOff, kBeforeKickOff},
    {PM_KICK_OFF_LEFT, kOurKickOff, kKeep},
    {PM_KICK_OFF_RIGHT, kKeep, kOurKickOff},
    {PM_PLAY_ON, kPlayOn, kPlayOn},
    {PM_KICK_IN_LEFT, kOurKickIn, kKeep},
    {PM_KICK_IN_RIGHT, kKeep, kOurKickIn},
    {PM_CORNER_KICK_LEFT, kOurCorner, kKeep},
    {PM_CORNER_KICK_RIGHT, kKeep, kOurCorner},
    {PM_GOAL_KICK_LEFT, kOurGoalKick, kKeep},
    {PM_GOAL_KICK_RIGHT, kKeep, kOurGoalKick},
    {PM_OFFSIDE_LEFT, kOurOffside, kKeep},
    {PM_OFFSIDE_RIGHT, kKeep, kOurOffside},
    {PM_QUIT, kQuit, kQuit},
    {PM_GOAL_LEFT, kOurGoal, kTheirGoal},
    {PM_GOAL_RIGHT, kTheirGoal, kOurGoal},
    {PM_FREE_KICK_LEFT, kOurFreeKick, kKeep},
    {PM_FREE_KICK_RIGHT, kKeep, kOurFreeKick},
    {PM_ILLEGAL, kUnknownMode, kUnknownMode},
};

// What the team does in a set play of its own, and in the modes that are nobody's. The taker has an
// act of its own, the others play their roles.
enum class Taking { kWaitsAndKicks, kKicks };
struct SetPlay {
  int situation;
  int taker;  // uniform number, 0 for none
  Taking taking;
  int time;  // index of the configured waiting time
  bool clearsA;
  bool takerPlaysItsRoleToo;
  bool goalieKicks;  // a goalie that is not the taker kicks to the goal; else it plays goalie
};
constexpr SetPlay kSetPlays[] = {
    {kOurKickIn, 10, Taking::kWaitsAndKicks, 2, true, false, false},
    {kOurCorner, 10, Taking::kWaitsAndKicks, 3, false, false, false},
    {kOurGoalKick, 1, Taking::kKicks, 4, true, false, true},
    {kOurOffside, 10, Taking::kWaitsAndKicks, 5, true, false, false},
    {kQuit, 0, Taking::kWaitsAndKicks, 0, true, false, false},
    {kOurFreeKick, 10, Taking::kWaitsAndKicks, 8, true, true, false},
    {kUnknownMode, 10, Taking::kWaitsAndKicks, 9, true, true, true},
};

}  // namespace

Decision::Decision() = default;

void Decision::decision() {
  WorldModel* const WM = advancedAgent->WM;
  ballPos = WM->ball->getGlobalPosition();
  ballVel = WM->ball->getVelocity();
  selfPos = WM->mySelf->getGlobalPosition();
  unum = config["Agent"]["Public"]["UniformNumber"].asInt();
  ourSide = WM->ourSide != SIDE_LEFT;

  if (isUp() || goalWasScored()) {
    advancedAgent->seeBall->SeeAll();
    decideplaymode();
  } else if (decidepost() == GOALIE && diveFreeze) {
    decideplaymode();
  } else {
    checkstandup = standup();
  }
}

bool Decision::isUp() {
  return !advancedAgent->WM->isFall() && checkstandup && advancedAgent->WM->fall == FALL_NONE;
}

bool Decision::goalWasScored() {
  const PlayMode mode = advancedAgent->WM->getPlayMode();
  return mode == PM_GOAL_LEFT || mode == PM_GOAL_RIGHT;
}

Post Decision::decidepost() {
  return advancedAgent->WM->mySelf->getAgentPost();
}

int Decision::decideNumber() {
  return advancedAgent->WM->mySelf->getAgentNum();
}

// --- Standing up ---------------------------------------------------------------------------------

bool Decision::standup() {
  anyThingToDoZero = anyThingToDoOne = false;
  return standUpBy(checkstandup, standstate);
}

bool Decision::standUpGoalie() {
  return standUpBy(checkstandupGoalie, standstateGoalie);
}

bool Decision::standUpBy(bool& standing, int& motion) {
  enum { kFront = 2, kBack = 3, kFlip = 4 };
  StandUp* const standUp = advancedAgent->standUp;
  Actions* const actions = advancedAgent->actions;

  advancedAgent->resetAllVars();
  if (standing) {
    standing = false;
    const FallOrientation fall = advancedAgent->WM->fall;
    motion = fall == FALL_FRONT ? kFront : fall == FALL_BACK ? kBack : kFlip;
  }
  switch (motion) {
    case kFront:
    case kBack:
      if (actions->ChangeAction(motion == kFront ? standUp->front() : standUp->back())) {
        standing = true;
      }
      return standing;
    case kFlip:
      // A flip ends on the back, so the player is not up yet.
      if (actions->ChangeAction(standUp->flip())) motion = kBack;
      return false;
    default:
      return false;
  }
}

// --- Play modes ----------------------------------------------------------------------------------

void Decision::decideplaymode() {
  chooseSituation();
  const bool stopped =
      modestate == kBeforeKickOff || modestate == kOurGoal || modestate == kTheirGoal;
  if (stopped) beam();

  switch (modestate) {
    case kBeforeKickOff:
      resetUnlessKickOffTaker();
      break;
    case kOurKickOff:
      ourKickOff();
      break;
    case kPlayOn:
      playOn();
      break;
    case kOurGoal:
      // Runs on into the next row on purpose: a goal of ours counts beams up to three at a time.
      afterGoal();
      [[fallthrough]];
    case kTheirGoal:
      afterGoal();
      break;
    default:
      setPlay();
      break;
  }
}

// The opponents' set plays leave the situation as it was, which is normally play on.
void Decision::chooseSituation() {
  const PlayMode mode = advancedAgent->WM->getPlayMode();
  const TeamSide side = advancedAgent->WM->ourSide;
  for (const Meaning& meaning : kMeanings) {
    if (meaning.mode != mode) continue;
    int situation = kKeep;
    if (side == SIDE_LEFT || meaning.onTheLeft == meaning.onTheRight) situation = meaning.onTheLeft;
    if (side == SIDE_RIGHT) situation = meaning.onTheRight;
    if (situation != kKeep) modestate = situation;
  }
}

void Decision::beam() {
  advancedAgent->resetAllVars();
  anyThingToDoZero = anyThingToDoOne = false;
  advancedAgent->actions->stopAction(advancedAgent->reset);

  advancedAgent->command->setBeam(advancedAgent->startPlace());
  ++beamCount;
}

void Decision::resetUnlessKickOffTaker() {
  if (unum == kKickOffTaker) return;
  advancedAgent->reset->execute(Reset::kFixedStance);
  advancedAgent->reset->init();
}

void Decision::afterGoal() {
  if (beamCount <= kBeamLimit) {
    advancedAgent->sendBeam();
    ++beamCount;
  } else {
    resetUnlessKickOffTaker();
  }
}

void Decision::ourKickOff() {
  const PlayMode mode = advancedAgent->WM->getPlayMode();
  const TeamSide side = advancedAgent->WM->ourSide;
  const bool still = (mode == PM_KICK_OFF_LEFT && side == SIDE_LEFT) ||
                     (mode == PM_KICK_OFF_RIGHT && side == SIDE_RIGHT);
  if (!still) return;
  KO = true;
  if (decideNumber() == kKickOffTaker) passKickOff();
  beamCount = 0;
  a = false;
}

// Plain on purpose: the roles are for our set plays alone.
void Decision::playOn() {
  WorldModel* const WM = advancedAgent->WM;
  const Vector ball = WM->ball->getGlobalPosition();
  const double angle = WM->getAngleTo(ball);
  const double distToBall = selfPos.getDistanceOnGround(ball);
  std::cout << "dist : " << distToBall << "\n angle : " << angle << '\n';
  if (unum == 1) {
    goalie();
  } else {
    advancedAgent->dribble->execute(kOtherGoal);
  }
}

void Decision::setPlay() {
  for (const SetPlay& play : kSetPlays) {
    if (play.situation != modestate) continue;
    beamCount = 0;
    if (play.clearsA) a = false;
    if (decideNumber() == play.taker) {
      j = play.time;
      if (play.taking == Taking::kWaitsAndKicks) {
        waiting();
      } else {
        // Without the arbiter, and without a look at the result.
        advancedAgent->kick->unstable();
      }
      if (!play.takerPlaysItsRoleToo) return;
    }
    if (dispatchFieldRole()) return;
    if (decidepost() != GOALIE) return;
    if (play.goalieKicks) {
      advancedAgent->goToKick->execute(kOtherGoal);
    } else {
      goalie();
    }
    return;
  }
}

bool Decision::dispatchFieldRole() {
  switch (decidepost()) {
    case ATTACK:
      attack();
      return true;
    case HALF_BACK:
      halfBack();
      return true;
    case DEFENCE:
      defence();
      return true;
    default:
      return false;
  }
}

void Decision::waiting() {
  advancedAgent->setHead(2, -45, 10, 3);
  // Never cleared: from the second set play of a match on, the player kicks at once.
  ++waitValue;
  const ConfigValue& seconds = config["decision"]["time"]["t"];
  assert(seconds.size() > j);
  t[j] = seconds[j].asFloat() * kCyclesPerSecond;
  if (static_cast<float>(waitValue) >= t[j]) {
    advancedAgent->actions->ChangeAction(advancedAgent->kick->unstable1(true));
  }
}

void Decision::waitingGoalie() {
  ++waitValueG;
  selfPos = advancedAgent->WM->mySelf->getGlobalPosition();
  ballPos = advancedAgent->WM->ball->getGlobalPosition();
  if (selfPos.getDistanceOnGround(ballPos) < 0.1) {
    advancedAgent->goToBall->execute(kOtherGoal, 90, 0.2f, false);
  }
  if (static_cast<float>(waitValueG) >= t[j]) {
    advancedAgent->actions->ChangeAction(advancedAgent->kick->unstable1(true));
  }
}

// Writes the parameters of the forward gait and drives it directly: one step with the right leg.
bool Decision::passKickOff() {
  enum { kStance = 0, kStep = 1, kDone = 200 };
  static int stateP = kStance;  // never cleared: one pass per match
  ForWalk& gait = *advancedAgent->walk->_forWalk;

  switch (stateP) {
    case kStance:
      advancedAgent->reset->execute(Reset::kFixedStance);
      if (advancedAgent->reset->init()) stateP = kStep;
      break;
    case kStep: {
      const ConfigGroup& values = config["forWalk"]["forwalk"];
      gait.sp = 57;
      gait.Xtorso = values["Xtorso"].asFloat() * 60;
      gait.Ytorso = values["Ytorso"].asFloat() * -10;
      gait.Ztorso = values["Ztorso"].asFloat() * -70 * 1.5;
      const ConfigValue& forward = values["Xankle"];
      const ConfigValue& upward = values["Zankle"];
      assert(forward.size() >= 4 && upward.size() >= 4);
      for (int i = 0; i < 4; ++i) {
        gait.Yankle[i] = 220;
        gait.Xankle[i] = forward[i].asFloat() * 80;
        gait.Zankle[i] = upward[i].asFloat() * 50;
      }
      if (gait.step(1.0f, true)) stateP = kDone;
      break;
    }
    default:
      break;
  }
  return false;
}
