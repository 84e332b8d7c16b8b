#include "Decision/Decision.h"

#include <cassert>
#include <cmath>
#include <iostream>
#include <string>

#include "AdvancedAction/Block.h"
#include "AdvancedAction/Clear.h"
#include "AdvancedAction/Dribble.h"
#include "AdvancedAction/GoToBall.h"
#include "AdvancedAction/GoToGoal.h"
#include "AdvancedAction/GoToKick.h"
#include "AdvancedAction/GoToPoint.h"
#include "AdvancedAction/Mark.h"
#include "Agent/AdvancedAgent.h"
#include "BasicAction/Dive.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Command/Command.h"
#include "Decision/Actions.h"
#include "Mathematics/Degree.h"
#include "Utilities/Config.h"
#include "Utilities/FastIC.h"
#include "Utilities/Logger.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

AdvancedAgent* Decision::advancedAgent = nullptr;
bool Decision::anyThingToDoZero = false;
bool Decision::anyThingToDoOne = false;
int Decision::freezeCycle = 0;

namespace {

const Vector kGoal(15, 0, 0);

// The server's cycles per second.
constexpr int kCyclesPerSecond = 50;

constexpr int kKickOffTaker = 11;
constexpr int kDribbler = 10;  // dribbles on after our kick-off

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

// The claim of the ball.
constexpr int kNobody = -1;
constexpr int kClaimCycles = 6;        // the greatest cost at which a player claims the ball
constexpr double kTakeOverLead = 1.5;  // cycles that a rival must be nearer than a heard claim

constexpr double kPlayRadius = 6;       // metres to the ball within which it is played
constexpr double kBallDecay = 0.06;     // per step of the interception
constexpr double kKickOffRadius = 0.9;  // metres to the ball at which our kick-off is over

// Where an attacker stands in relation to the ball, metres.
struct AttackLane {
  int number;
  int side;       // +1 the left lane, -1 the right one, 0 at the ball's own y
  double behind;  // behind a ball that is not deep in the own half
  double holdX;   // x for a ball that is
};
constexpr AttackLane kAttackLanes[] = {{9, +1, 1, -6}, {10, -1, 1, -6}, {11, 0, 0, -5}};
constexpr double kDeep = -5;  // x of the ball below which the own half is in need

// How far a lane runs beside the ball, and how it is squeezed near the touch line.
struct LaneShape {
  double beside;   // metres beside the ball
  double from;     // |y| of the ball from which on the lane is squeezed
  double squeeze;  // divisor of what lies beyond
};
constexpr LaneShape kAttackShape{1.5, 7, 3};
constexpr LaneShape kHalfBackShape{1.6, 8, 2};
constexpr double kTouchLane = 9;

double laneY(double ballY, int side, const LaneShape& shape) {
  if (ballY * side > shape.from) {
    return (ballY - side * shape.from) / shape.squeeze + side * kTouchLane;
  }
  return ballY + side * shape.beside;
}

// The part of the way from the own goal line to the ball at which a line of players stands.
double ahead(double ballX, double part) {
  return (ballX + 15) / part - 15;
}

Vector onGround(double x, double y) {
  return Vector(static_cast<float>(x), static_cast<float>(y), 0);
}

// The defenders who stand further forward.
bool isForwardDefender(int number) {
  return number == 4 || number == 5;
}

bool isInDangerZone(Vector ball) {
  return ball.getX() < -11 && ball.getY() < 5 && ball.getY() > -5;
}

std::string twoDigits(int n) {
  return (n <= 9 ? "0" : "") + std::to_string(n);
}

double bearingOf(WorldModel* WM, Vector point) {
  return Degree::normalizeAngle(static_cast<float>(WM->getAngleTo(point)));
}

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
    advancedAgent->dribble->execute(kGoal);
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
      advancedAgent->goToKick->execute(kGoal);
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
    advancedAgent->goToBall->execute(kGoal, 90, 0.2f, false);
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

// --- The goalie ----------------------------------------------------------------------------------

bool Decision::doPreProcess() {
  WorldModel* const WM = advancedAgent->WM;
  FastIC fc(WM);
  fc.setTarget(ballPos, ballVel, kBallDecay);
  fc.setPlayers();
  fc.amIGoalie = true;
  fc.calculate();
  if (!fc.isAlive) return false;

  const Vector point = fc.fastest.reachPoint;
  if ((fc.isInGoal || anyThingToDoZero || anyThingToDoOne || ballPos.getX() < -14) && dive(fc)) {
    return true;
  }

  logger["Agent"] << "dive nakard!!!" << std::endl;  // "did not dive"
  logger["Agent"] << "isingoal : " << fc.isInGoal
                  << " fc.fastest.reachCycle : " << fc.fastest.reachCycle
                  << "  ballVel : " << ballVel << "  point.getX() : " << point.getX() << std::endl;

  if (!WM->isFall() && !fc.isInGoal && point.getX() < -14 && ballVel.getX() > -2) {
    advancedAgent->goToPoint->execute(point, 0.1f);
    return true;
  }
  if (!WM->isFall() && !fc.isInGoal && !anyThingToDoZero && !anyThingToDoOne &&
      std::fabs(bearingOf(WM, kGoal)) > 5) {
    advancedAgent->actions->ChangeAction(advancedAgent->turn->execute(kGoal, 10, 0));
    return true;
  }
  return false;
}

// True when the goalie dives, goes on diving, or rightly does not: the ball comes to it.
bool Decision::dive(const FastIC& fc) {
  logger["Agent"] << "GOALIE :: " << std::endl;
  logger["Agent"] << "isingoal = " << fc.isInGoal << "  getX ball : " << ballPos.getX()
                  << std::endl;

  const Vector goaliePlace = advancedAgent->WM->mySelf->getGlobalPosition();
  // "Distance": how far to the left of the goalie the ball comes, metres.
  const double fasele = fc.fastest.reachPoint.getY() - goaliePlace.getY();
  if (fasele > -0.05 && fasele < 0) return true;

  const bool centre = ((fasele < 0.03 && fasele > -0.15) || anyThingToDoZero) && !anyThingToDoOne;
  const bool aside = (std::fabs(fasele) < 1.2 || anyThingToDoOne) && !anyThingToDoZero;
  if (!centre && !aside) return false;

  const int soo = fasele < 0 ? -1 : 1;  // "direction"
  bool& underWay = centre ? anyThingToDoZero : anyThingToDoOne;
  freezeCycle = fc.fastest.reachCycle + (centre ? 150 : 100);
  logger["Agent"] << "dive @@@@@@@" << std::endl;
  advancedAgent->actions->ChangeAction(
      advancedAgent->dive->execute(centre ? 0 : soo, freezeCycle, true));
  diveFreeze = underWay = !advancedAgent->dive->getFinish();
  return true;
}

// --- The roles -----------------------------------------------------------------------------------

FastIC Decision::lookAhead(bool withoutNumberOne) {
  FastIC fc(advancedAgent->WM);
  fc.setTarget(ballPos, ballVel, kBallDecay);
  fc.setPlayers();
  if (withoutNumberOne) fc.erasePlayer(1);
  fc.calculate();
  --Block::blockCountDown;
  --Block::doBlockCD;
  return fc;
}

void Decision::attack() {
  const FastIC fc = lookAhead(false);
  const Vector myself = advancedAgent->WM->mySelf->getGlobalPosition();
  const Vector ball = advancedAgent->WM->ball->getGlobalPosition();
  if (myself.getDistanceOnGround(ball) > kKickOffRadius) KO = false;

  logger["Agent"] << "unum  : " << unum << std::endl;
  if (unum == kDribbler && KO) {
    advancedAgent->dribble->execute(kGoal);
    return;
  }
  logger["Agent"] << "else nabayad bashe !!!!!!!!!!!" << std::endl;  // "else must not be"

  if (goesForTheBall(fc) && playTheBall(fc, myself.getDistanceTo(ball))) return;
  attackPositioning();
}

void Decision::halfBack() {
  const FastIC fc = lookAhead(true);
  if (goesForTheBall(fc) && playTheBall(fc, selfPos.getDistanceTo(ballPos))) return;
  halfBackPositioning();
}

void Decision::defence() {
  const FastIC fc = lookAhead(true);
  const bool danger = isInDangerZone(ballPos);
  if (!goesForTheBall(fc)) {
    if (danger) {
      protectGoal();
    } else {
      defencePositioning();
    }
    return;
  }
  // Unlike the others, a defender with nothing to mark does not fall back.
  const double distToBall = selfPos.getDistanceTo(ballPos);
  if (danger && distToBall < kPlayRadius) {
    advancedAgent->clear->execute(fc.fastest.playerPos, fc.fastest.reachPoint);
  } else {
    playTheBall(fc, distToBall);
  }
}

void Decision::goalie() {
  if (!doPreProcess()) chaseBall();
}

// The one rule by which the field players agree on who goes to the ball: true when this player
// does, false when it falls back to what its role does without the ball. May say a claim.
bool Decision::goesForTheBall(const FastIC& fc) {
  if (!fc.fastestTeammateIsAlive) return false;
  const int heard = advancedAgent->WM->fastestTeammateUnum;
  const int first = fc.fastestTeammate.human.getPlayerNumber();
  const int reachCycle = fc.fastestTeammate.reachCycle;

  int claimant = heard;
  bool aha = false;  // level with the first, and nobody has claimed
  if (heard == kNobody) {
    aha = fc.mySelf.reachCycle == reachCycle;
    claimant = aha ? unum : first;
  }
  if (first == unum || aha) {
    if (reachCycle > kClaimCycles) {
      claimant = heard;
    } else if (heard == unum || heard == kNobody ||
               advancedAgent->WM->fastestReachCycle > reachCycle + kTakeOverLead) {
      sayClaim(reachCycle);
      claimant = unum;
    } else {
      return false;
    }
  }
  return claimant == unum;
}

void Decision::sayClaim(int reachCycle) {
  advancedAgent->command->addSay("u" + twoDigits(unum) + "rc" + twoDigits(reachCycle));
}

// False only when there was nothing to do: nobody to block and nobody to mark.
bool Decision::playTheBall(const FastIC& fc, double distToBall) {
  if (distToBall < kPlayRadius) {
    advancedAgent->goToGoal->execute();
    return true;
  }
  return contestTheBall(fc);
}

bool Decision::contestTheBall(const FastIC& fc) {
  const TeamSide other = ourSide ? SIDE_LEFT : SIDE_RIGHT;
  if (fc.fastest.human.getTeamSide() == other && fc.fastestOpponentIsAlive) {
    if (!advancedAgent->block->realBlockExecute()) advancedAgent->block->extraBlockExecute();
    return true;
  }
  return advancedAgent->mark->execute();
}

// --- Positioning ---------------------------------------------------------------------------------

bool Decision::attackPositioning() {
  AttackLane lane{unum, 0, 0, -5};
  bool keepsOwnY = true;
  for (const AttackLane& own : kAttackLanes) {
    if (own.number != unum) continue;
    lane = own;
    keepsOwnY = false;
  }
  const double x = ballPos.getX() > kDeep ? ballPos.getX() - lane.behind : lane.holdX;
  const double y = keepsOwnY ? selfPos.getY() : laneY(ballPos.getY(), lane.side, kAttackShape);
  return goUnlessNearer(onGround(x, y));
}

bool Decision::halfBackPositioning() {
  const int side = unum == 7 ? 1 : unum == 8 ? -1 : 0;
  double x = ahead(ballPos.getX(), side != 0 ? 1.875 : 2.72);
  // Folds the line at the half-way line on purpose: the point moves back towards the centre as the
  // ball goes further forward.
  if (ballPos.getX() > 0) x = -x;
  return goUnlessNearer(onGround(x, laneY(ballPos.getY(), side, kHalfBackShape)));
}

// A player nearer to the ball than its point stays.
bool Decision::goUnlessNearer(Vector point) {
  if (selfPos.getDistanceTo(ballPos) > point.getDistanceTo(ballPos)) {
    advancedAgent->goToPoint->gtpDecide(point, ballPos, 20, 0.5);
  }
  return true;
}

// A defender does not follow the ball sideways.
bool Decision::defencePositioning() {
  const bool forward = isForwardDefender(unum);
  double x = forward ? -11.6 : -13.6;
  if (ballPos.getX() < kDeep) x = ahead(ballPos.getX(), forward ? 3 : 7.5);
  const Vector point = onGround(x, selfPos.getY());
  if (advancedAgent->WM->gameTime > 0.3 && selfPos.getDistanceTo(point) > 0.8) {
    advancedAgent->goToPoint->gtpDecide(point, ballPos, 20, 0.5);
  }
  return true;
}

// For a defender that does not go to a ball in the danger zone: it shifts sideways by the gap
// between the ball and the teammate that stands nearest to the ball's line, and faces the other
// goal, not the ball.
bool Decision::protectGoal() {
  const bool forward = isForwardDefender(unum);
  const double x = (ballPos.getX() + 15) / (forward ? 3 : 7.5) - (forward ? 14.6 : 14.8);

  double mast = 9999;
  double doogh = 0;
  for (const Player& teammate : advancedAgent->WM->player[ourSide]) {
    const Vector pos =
        teammate.getPlayerNumber() == unum ? selfPos : teammate.getCalculatedPosition();
    const double gap = pos.getY() - ballPos.getY();
    if (std::fabs(gap) < mast) {
      mast = std::fabs(gap);
      doogh = gap;
    }
  }
  const double y = doogh < 0 ? selfPos.getY() - mast : selfPos.getY() + mast;
  advancedAgent->goToPoint->gtpDecide(onGround(x, y), kGoal, 10, 0.5);
  return true;
}

// A goalie that has nothing to do stays where it is; one that lies on the ground outside a dive
// stands up.
bool Decision::chaseBall() {
  if (!isUp() && !goalWasScored()) checkstandupGoalie = standUpGoalie();
  return false;
}
