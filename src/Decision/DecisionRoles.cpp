// What the goalie and the roles of the field players do, with and without the ball.

#include <cmath>
#include <iostream>
#include <string>

#include "AdvancedAction/Block.h"
#include "AdvancedAction/Clear.h"
#include "AdvancedAction/Dribble.h"
#include "AdvancedAction/GoToGoal.h"
#include "AdvancedAction/GoToPoint.h"
#include "AdvancedAction/Mark.h"
#include "Agent/AdvancedAgent.h"
#include "BasicAction/Dive.h"
#include "BasicAction/Turn.h"
#include "Command/Command.h"
#include "Decision/Actions.h"
#include "Decision/Decision.h"
#include "Decision/Positioning.h"
#include "Mathematics/Degree.h"
#include "Utilities/FastIC.h"
#include "Utilities/Logger.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr int kDribbler = 10;  // dribbles on after our kick-off

// The claim of the ball.
constexpr int kNobody = -1;
constexpr int kClaimCycles = 6;        // the greatest cost at which a player claims the ball
constexpr double kTakeOverLead = 1.5;  // cycles that a rival must be nearer than a heard claim

constexpr double kPlayRadius = 6;       // metres to the ball within which it is played
constexpr double kBallDecay = 0.06;     // per step of the interception
constexpr double kKickOffRadius = 0.9;  // metres to the ball at which our kick-off is over

std::string twoDigits(int n) {
  return (n <= 9 ? "0" : "") + std::to_string(n);
}

double bearingOf(WorldModel* WM, Vector point) {
  return Degree::normalizeAngle(static_cast<float>(WM->getAngleTo(point)));
}

}  // namespace

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
      std::fabs(bearingOf(WM, kOtherGoal)) > 5) {
    advancedAgent->actions->ChangeAction(advancedAgent->turn->execute(kOtherGoal, 10, 0));
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
    advancedAgent->dribble->execute(kOtherGoal);
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
  const bool danger = positioning::isInDangerZone(ballPos);
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
  return goUnlessNearer(positioning::attack(unum, ballPos, selfPos));
}

bool Decision::halfBackPositioning() {
  return goUnlessNearer(positioning::halfBack(unum, ballPos));
}

// A player nearer to the ball than its point stays.
bool Decision::goUnlessNearer(Vector point) {
  if (selfPos.getDistanceTo(ballPos) > point.getDistanceTo(ballPos)) {
    advancedAgent->goToPoint->gtpDecide(point, ballPos, 20, 0.5);
  }
  return true;
}

bool Decision::defencePositioning() {
  const Vector point = positioning::defence(unum, ballPos, selfPos);
  if (advancedAgent->WM->gameTime > 0.3 && selfPos.getDistanceTo(point) > 0.8) {
    advancedAgent->goToPoint->gtpDecide(point, ballPos, 20, 0.5);
  }
  return true;
}

// For a defender that does not go to a ball in the danger zone: it faces the other goal, not the
// ball.
bool Decision::protectGoal() {
  const Vector point =
      positioning::cover(unum, ballPos, selfPos, advancedAgent->WM->player[ourSide]);
  advancedAgent->goToPoint->gtpDecide(point, kOtherGoal, 10, 0.5);
  return true;
}

// A goalie that has nothing to do stays where it is; one that lies on the ground outside a dive
// stands up.
bool Decision::chaseBall() {
  if (!isUp() && !goalWasScored()) checkstandupGoalie = standUpGoalie();
  return false;
}
