#include "AdvancedAction/Mark.h"

#include <algorithm>
#include <optional>

#include "AdvancedAction/GoToPoint.h"
#include "Agent/Agent.h"
#include "Utilities/Config.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

namespace {

// Metres from an opponent to its marking point, towards the ball.
constexpr double kMarkGap = 0.5;

// The way to a marking point is walked in this many growing steps at most.
constexpr int kRounds = 16;
constexpr double kFirstStep = 0.3;
constexpr double kArrived = 0.3;

// Whether a way that grows from 0.3 m by a metre at a time ever ends within 0.3 m of the point.
bool stepsMeet(Vector pos, Vector markPoint) {
  Vector step = markPoint - pos;
  double length = kFirstStep;
  step.setLength(length);
  for (int round = 0; round < kRounds; ++round) {
    if ((pos + step).getDistanceTo(markPoint) < kArrived) return true;
    length += 1;
    step.setLength(length);
  }
  return false;
}

}  // namespace

bool compare(MarkAgent a, MarkAgent b) {
  return a.dist < b.dist;
}

void Mark::inIt() {
  selfPos = agent->WM->mySelf->getGlobalPosition();
  ballPos = agent->WM->ball->getGlobalPosition();
  ballVel = agent->WM->ball->getVelocity();
  unum = config["Agent"]["Public"]["UniformNumber"].asInt();
  ourSide = agent->WM->ourSide != SIDE_LEFT;
}

bool Mark::weHaveTheBall() const {
  const auto& team = agent->WM->player[ourSide];
  return std::any_of(std::begin(team), std::end(team), [&](const Player& player) {
    return player.getCalculatedPosition().getDistanceTo(ballPos) < 0.2;
  });
}

double Mark::closestOpponent() const {
  double closest = 99999;
  for (const Player& opponent : agent->WM->player[!ourSide]) {
    const double distance = opponent.getCalculatedPosition().getDistanceTo(ballPos);
    if (distance < closest) closest = distance;
  }
  return closest;
}

// Whether the own team's entry `index` is a candidate for `markPoint`, and how far it has to go.
bool Mark::canServe(int index, Vector markPoint, double& distance) const {
  const Player& player = agent->WM->player[ourSide][index];
  const int number = player.getPlayerNumber();
  const Vector pos = number == unum ? selfPos : player.getCalculatedPosition();
  if (pos == Vector(0, 0, 0) || number == 1) return false;
  // The stored game time itself, not its age: whoever's head has been seen at all after the first
  // moments of the game is no candidate. Must stay: with the age in its place nearly everybody
  // would be one, other players would mark, and each candidate costs a calculation of its own.
  if (player.headLastTimeSeen > 0.2) return false;
  if (!stepsMeet(pos, markPoint)) return false;

  distance = pos.getDistanceTo(markPoint);
  if (distance >= 7) return false;
  const bool isForward = number == 9 || number == 10 || number == 11;
  return !(isForward && ballPos.getX() > -1 && distance > 4);
}

bool Mark::execute() {
  inIt();
  if (closestOpponent() > 7) return false;
  const bool weHaveIt = weHaveTheBall();

  // The nearest candidate of the last opponent that had any. An opponent without candidates gets
  // that one too, on purpose: its player may win again.
  std::optional<int> nearest;
  for (const Player& opponent : agent->WM->player[!ourSide]) {
    const Vector oppPos = opponent.getCalculatedPosition();
    Vector gap = ballPos - oppPos;
    const Vector markPoint = oppPos + gap.setLength(kMarkGap);

    std::vector<MarkAgent> candidates;
    for (int i = 0; i < kPlayers; ++i) {
      double distance = 0;
      if (!canServe(i, markPoint, distance)) continue;
      candidates.emplace_back(agent->WM->player[ourSide][i].getPlayerNumber(), distance);
    }
    std::sort(candidates.begin(), candidates.end(), compare);
    if (!candidates.empty()) nearest = candidates.front().unum;

    if (!weHaveIt && oppPos.getDistanceTo(ballPos) > 0.1 && nearest == unum) {
      agent->goToPoint->gtpDecide(markPoint, ballPos, 10, 0.5);
      return true;
    }
  }
  return false;
}
