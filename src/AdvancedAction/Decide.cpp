#include "AdvancedAction/Decide.h"

#include <algorithm>
#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Reset.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "Mathematics/Degree.h"
#include "Utilities/Config.h"
#include "Utilities/FastIC.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr double kTurnPerCycle = 1.2;  // degrees of a turn on the spot
constexpr double kStartAndStop = 50;   // cycles that a turn and a walk cost beyond their length
constexpr double kNever = 60000;       // cycles; no way takes that long
constexpr double kOwnGoalRadius = 3;   // metres around the own goal without walking backward

// Degrees and metres per cycle of the omnidirectional gaits.
struct GaitSpeed {
  double rotation;
  double x;
  double y;
};
constexpr GaitSpeed kOmniSide{0.6625, 0.00875, 0.00876};
constexpr GaitSpeed kOmniForward{0.3, 0.016, 0.006};
constexpr GaitSpeed kOmniBack{0.32, 0.004, 0.00512};

// Metres per cycle of the gaits that follow a turn.
constexpr double kStep = 0.00876;
constexpr double kForward = 0.016;
constexpr double kBackward = 0.0125;

enum Way {
  kTurnLeftThenStep,
  kTurnRightThenStep,
  kTurnThenForward,
  kTurnThenBackward,
  kOmniSideway,
  kOmniForwardWay,
  kOmniBackwardWay,
  kWays
};

enum {
  kStateSide = 1,
  kStateForward = 2,
  kStateTurnThenForward = 3,
  kStateForwardReserve = 4,
  kStateBackwardReserve = 5,
  kStateBackward = 6,
  kStateTurnThenStep = 7,
  kStateArrived = 8,
  kStateTurnThenBackward = 9
};

// What each way leads to when it is the quickest: the state, and the side that state 7 turns to.
struct Choice {
  int state;
  int side;  // 0: not a sideways turn
};
constexpr Choice kChoices[kWays] = {
    {kStateTurnThenStep, 1},     {kStateTurnThenStep, -1}, {kStateTurnThenForward, 0},
    {kStateTurnThenBackward, 0}, {kStateSide, 0},          {kStateForward, 0},
    {kStateBackward, 0}};

// The side of a step, 1 or -1. One for all objects, and it outlives resets.
int stepSide = 1;

double wrapped(double angle) {
  return Degree::normalizeAngle(static_cast<float>(angle));
}

double turnBetween(double from, double to) {
  return std::fabs(Degree::getDeltaAngle(static_cast<float>(from), static_cast<float>(to))) /
         kTurnPerCycle;
}

double longest(double rotation, Vector dis, const GaitSpeed& speed) {
  return std::max({std::fabs(rotation / speed.rotation), std::fabs(dis.getX() / speed.x),
                   std::fabs(dis.getY() / speed.y)});
}

// `v`, given in the pitch frame, in a frame that is turned by `phi` degrees.
Vector intoBody(Vector v, double phi) {
  const double c = std::cos(phi * Vector::DEG2RAD);
  const double s = std::sin(phi * Vector::DEG2RAD);
  return Vector(static_cast<float>(v.getX() * c + v.getY() * s),
                static_cast<float>(-v.getX() * s + v.getY() * c), 0);
}

double compassDegrees(Orientation facing) {
  switch (facing) {
    case NORTH:
      return 0;
    case EAST:
      return 90;
    case WEST:
      return 180;
    default:
      return -90;
  }
}

// Cycles of the seven ways without the turn at the end. `theta` is the bearing of the target in
// degrees, `d` its ground distance, `dis` its offset in the body frame.
void travelTimes(double theta, double d, Vector dis, double (&time)[kWays]) {
  time[kTurnLeftThenStep] = turnBetween(theta, 90) + (kStartAndStop + std::fabs(d / kStep));
  time[kTurnRightThenStep] = turnBetween(theta, -90) + (kStartAndStop + std::fabs(d / kStep));
  time[kTurnThenForward] =
      std::fabs(theta / kTurnPerCycle) + (kStartAndStop + std::fabs(d / kForward));
  time[kTurnThenBackward] = turnBetween(theta, 180) + (kStartAndStop + std::fabs(d / kBackward));
  time[kOmniSideway] = longest(90 - std::fabs(theta), dis, kOmniSide);
  time[kOmniForwardWay] = longest(theta, dis, kOmniForward);
  time[kOmniBackwardWay] = longest(theta, dis, kOmniBack);
}

// The least time. The ways to the left and sideways are never taken, and nobody walks backward near
// its own goal.
double least(const double (&time)[kWays], Vector pos) {
  const bool farFromOwnGoal = pos.getDistanceOnGround(kOwnGoal) > kOwnGoalRadius;
  double t = kNever;
  for (int i = 0; i < kWays; ++i) {
    if (i == kTurnLeftThenStep || i == kOmniSideway) continue;
    if ((i == kTurnThenBackward || i == kOmniBackwardWay) && !farFromOwnGoal) continue;
    if (time[i] < t) t = time[i];
  }
  return t;
}

}  // namespace

Decide::Decide() : ourSide(true) {
  resetVars();
}

void Decide::resetVars() {
  cycle = 0;
  findstate = 0;
  h = -1;
  bestTime = static_cast<float>(kNever);
  decideState = 0;
  ch = true;
  lastPos = Vector(20, 20, 0);
}

bool Decide::find(Vector pos_toGo, Vector posToRot, int cyl, double error) {
  const Vector pos = agent->WM->mySelf->getGlobalPosition();
  const double theta = agent->WM->getAngleTo(pos_toGo);  // as it is, not wrapped
  const double d = pos.getDistanceOnGround(pos_toGo);

  if (error > d) decideState = kStateArrived;
  if (cycle == cyl) cycle = 0;

  // Directions in which the body looks after a walk: across, back and forward; each then turns to
  // the face point.
  const Vector disRot = posToRot - pos;
  const Vector forward = pos_toGo - pos;
  const Vector rev = pos - pos_toGo;
  Vector across(-rev.getY(), rev.getX(), 0);
  const auto offFace = [&](Vector v) {
    return std::fabs(wrapped(v.getSlope() - disRot.getSlope()));
  };

  const double phi = agent->WM->getAngleTo(Vector(pos.getX() + 2, pos.getY(), pos.getZ()));
  double time[kWays];
  travelTimes(theta, d, intoBody(forward, phi), time);
  time[kTurnLeftThenStep] += offFace(across) / kTurnPerCycle;
  time[kTurnRightThenStep] += (180 - offFace(across)) / kTurnPerCycle;
  time[kTurnThenForward] += offFace(forward) / kTurnPerCycle;
  time[kTurnThenBackward] += offFace(rev) / kTurnPerCycle;
  if (theta < 0) across = Vector(rev.getY(), -rev.getX(), 0);
  time[kOmniSideway] += offFace(across) / kTurnPerCycle;
  time[kOmniForwardWay] += offFace(forward) / kTurnPerCycle;
  time[kOmniBackwardWay] += offFace(rev) / kTurnPerCycle;

  const double newPosDis = pos_toGo.getDistanceOnGround(lastPos);
  lastPos = pos_toGo;
  // A new choice also overrides an arrival in the same cycle.
  if (newPosDis > 0.5) choose(least(time, pos), time);

  ++cycle;
  return act(pos_toGo, posToRot);
}

// By equality: a way that is never taken can still be chosen when it costs exactly as much as the
// one that was.
void Decide::choose(double t, const double (&time)[7]) {
  for (int i = 0; i < kWays; ++i) {
    if (t != time[i]) continue;
    bestTime = static_cast<float>(time[i]);
    decideState = kChoices[i].state;
    if (kChoices[i].side != 0) stepSide = kChoices[i].side;
    return;
  }
}

bool Decide::act(Vector pos_toGo, Vector posToRot) {
  Actions* const actions = agent->actions;
  switch (decideState) {
    case kStateSide:
      actions->ChangeAction(agent->walk->omniSideWalk(pos_toGo, 25));
      return false;
    case kStateForward:
    case kStateForwardReserve:
      actions->ChangeAction(agent->walk->omniWalk(pos_toGo, 1, 20, 0));
      return false;
    case kStateBackward:
    case kStateBackwardReserve:
      actions->ChangeAction(agent->walk->omniBackWalk(pos_toGo, 20, 0.8f));
      return false;
    case kStateTurnThenForward:
      turnThen(kStateForward, pos_toGo, 0);
      return false;
    case kStateTurnThenStep:
      turnThen(kStateSide, pos_toGo, stepSide * 90);
      return false;
    case kStateTurnThenBackward:
      turnThen(kStateBackward, pos_toGo, 180);
      return false;
    case kStateArrived:
      return actions->ChangeAction(agent->turn->execute(posToRot, 15, 0));
    default:
      return false;
  }
}

void Decide::turnThen(int walkState, Vector pos_toGo, double finalAngle) {
  if (!agent->actions->ChangeAction(agent->turn->execute(pos_toGo, 10, finalAngle))) return;
  decideState = walkState;
  ch = false;
  bestTime = static_cast<float>(kNever);
}

bool Decide::end(Vector pos_toGo, Vector posToRot) {
  find(pos_toGo, posToRot, 20, 1.0);
  const float behind = agent->WM->mySelf->getGlobalPosition().getX() - pos_toGo.getX();
  if (behind >= -2 && behind <= -1.5) {
    agent->actions->stopAction(agent->reset->execute(Reset::kFixedStance));
  }
  return false;
}

double Decide::fast(Vector pos_toGo) {
  const int unum = config["Agent"]["Public"]["UniformNumber"].asInt();
  WorldModel* const WM = agent->WM;
  const Vector pos = WM->mySelf->getGlobalPosition();
  Player& entry = WM->player[WM->ourSide != SIDE_LEFT][unum - 1];
  const Orientation facing = entry.getPlayerNumber() == unum
                                 ? orientationFromBearing(wrapped(WM->getAngleTo(kOtherGoal)))
                                 : entry.getBodyDirection(WM->gameTime);

  const double heading = compassDegrees(facing);
  const Vector dis = pos_toGo - pos;
  double time[kWays];
  travelTimes(wrapped(dis.getSlope() - heading), pos.getDistanceOnGround(pos_toGo),
              intoBody(dis, heading), time);
  return least(time, pos);
}
