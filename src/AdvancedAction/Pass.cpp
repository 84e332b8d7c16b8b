#include "AdvancedAction/Pass.h"

#include "AdvancedAction/GoToBall.h"
#include "AdvancedAction/GoToKick.h"
#include "Agent/Agent.h"
#include "Utilities/Config.h"
#include "Utilities/FastIC.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

double Pass::goAfter = 0;

namespace {

// Displacement of a kicked ball in its first step, metres, and the factor on it per step.
constexpr double kKickSpeed = 2;
constexpr double kKickDecay = 0.06;

}  // namespace

Way::Way(Vector mabda, Vector maghsad, Vector _reachPoint, double _reachCycle, int maghsadNum)
    : length(mabda.getDistanceTo(maghsad)),
      maghsadNumber(maghsadNum),
      maghsadPos(maghsad),
      mabdaPos(mabda),
      reachCycle(static_cast<int>(_reachCycle)),
      reachPoint(_reachPoint),
      value(mabda.getX() <= maghsad.getX() ? length : -length) {}

void Pass::inIt() {
  ballPos = agent->WM->ball->getGlobalPosition();
  selfPos = agent->WM->mySelf->getGlobalPosition();
  unum = config["Agent"]["Public"]["UniformNumber"].asInt();
  ourSide = agent->WM->ourSide != SIDE_LEFT;
}

// The list of candidates grows with every kick that is tried; twins change no result.
void Pass::simulateKick(FastIC& fc, Vector aim, bool excludeMyself) const {
  Vector ballVel = aim - selfPos;
  ballVel.setLength(kKickSpeed);
  fc.refresh();
  fc.setTarget(selfPos, ballVel, kKickDecay);
  fc.setPlayers();
  if (excludeMyself) fc.erasePlayer(unum);
  fc.calculate();
}

void Pass::collectPasses(FastIC& fc) {
  const TeamSide own = ourSide ? SIDE_RIGHT : SIDE_LEFT;
  for (const Player& teammate : agent->WM->player[ourSide]) {
    const int number = teammate.getPlayerNumber();
    if (number == 1 || number == unum) continue;
    const Vector teammatePos = teammate.getCalculatedPosition();
    simulateKick(fc, teammatePos, true);
    const Player& receiver = fc.fastest.human;
    if (receiver.getPlayerNumber() == fc.fastestTeammate.human.getPlayerNumber() &&
        receiver.getTeamSide() == own && !fc.isOut) {
      passModels.emplace_back(selfPos, teammatePos, fc.fastest.reachPoint, fc.fastest.reachCycle,
                              receiver.getPlayerNumber());
    }
  }
}

bool Pass::execute() {
  inIt();
  FastIC fc(agent->WM);
  if (goAfter != 0 && selfPassExecute()) return true;

  // Entries of former calls stay in the list and can win.
  collectPasses(fc);
  if (!passModels.empty()) {
    Way bestPass;
    double best = -9999;
    for (const Way& way : passModels) {
      if (!(way.value > best)) continue;
      best = way.value;
      bestPass = way;
    }
    agent->goToKick->execute(bestPass.maghsadPos);
    return true;
  }

  simulateKick(fc, kOtherGoal, false);
  const Player& receiver = fc.fastest.human;
  const bool mine = receiver.getPlayerNumber() == unum &&
                    receiver.getTeamSide() == (ourSide ? SIDE_RIGHT : SIDE_LEFT) && !fc.isOut;
  // A ball that leaves through the mouth of a goal counts as good, whoever reaches it.
  if (!mine && !fc.isInGoal) return false;
  selfWay = Way(selfPos, kOtherGoal, fc.fastest.reachPoint, fc.fastest.reachCycle,
                receiver.getPlayerNumber());
  return selfPassExecute();
}

bool Pass::selfPassExecute() {
  if (goAfter == 0) {
    if (agent->goToKick->execute(selfWay.maghsadPos)) goAfter = 1;
  } else {
    if (agent->goToBall->common(kOtherGoal, 15, 0.5f)) goAfter = 0;
  }
  return true;
}
