#include "BasicAction/Turn.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Mathematics/Degree.h"
#include "Utilities/Converter.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr stepping::Table kTurn = {.file = "Turn", .group = "turn", .stride = "Yankle"};

/// The first step of a turn runs at this part of the configured joint speed, every later one at
/// kLaterSpeed times that.
constexpr double kFirstSpeed = 0.1;
constexpr double kLaterSpeed = 8;

/// Part of the configured sideways increments that a turn to the left takes; one to the right steps
/// in place.
constexpr double kSidePart = 0.05;

}  // namespace

Turn* Turn::execute(Vector point, double allowedError, double bearing) {
  v = point;
  error = allowedError;
  finalAngle = bearing;
  type = AT_TURN;
  ak = 0;
  return this;
}

bool Turn::execute() {
  angle = Degree::getDeltaAngle(agent->WM->getAngleTo(v), finalAngle);
  myself_pos = agent->WM->getAgentPosition();
  side = angle > 0;
  otherside = !side;
  Gain = side ? 1 : 0;

  sp = integerPart(stepping::readSpeed(kTurn));
  stepping::readTorso(kTurn, Xtorso, Ytorso, Ztorso);
  sp = sp1 = integerPart(sp * kFirstSpeed);
  Gain = Gain * kSidePart;
  stepping::readAnkles(kTurn, Yankle, Zankle);

  if (ak != 0) return true;
  ak = basicTurn(v, error);
  return ak != 0;
}

bool Turn::basicTurn(Vector target, double turnError) {
  angle = Degree::getDeltaAngle(agent->WM->getAngleTo(target), finalAngle);
  if (basicTurnState == stepping::kStance && (angle > 0 || angle < 0)) {
    rotSide = angle > 0 ? side : otherside;
    rotOtherSide = angle > 0 ? otherside : side;
  }
  if (OTurn) {
    rotSide = !(angle > 0);
    rotOtherSide = !rotSide;
  }
  angle = std::fabs(angle);

  const auto loadSteps = [&] { stepping::readAnkles(kTurn, Yankle, Zankle); };
  stepping::runPhase(*this, basicTurnState, OTurn, Reset::kFixedStance, Gain, Gain, loadSteps);

  return stepping::chooseStep(*this, basicTurnState, false, [&] {
    const bool done = angle < turnError;
    if (done) {
      for (double& yaw : RotZ) yaw = 0;
    } else {
      stepping::readYaw(kTurn, RotZ);
    }
    loadSteps();
    return done;
  });
}

bool Turn::step(float stepGain, bool swing) {
  // In double: endStep, which reads no speed, raises the same one again in every call.
  if (count > 0) sp = integerPart(sp * kLaterSpeed);
  const stepping::Track track = stepping::alongY(*this);
  stepping::solvePhase(*this, track, stepGain, swing);
  if (!stepping::commandPhase(*this, track, swing)) return false;
  count += 1;
  return true;
}

bool Turn::endStep() {
  side = rotSide;
  if (rotSide) otherside = true;
  for (double& yaw : RotZ) yaw = 0;
  stepping::readAnkles(kTurn, Yankle, Zankle);
  rotate = 0;
  return step(Gain, otherside);
}

void Turn::resetVars() {
  basicTurnState = stepping::kStance;
  state = state2 = 0;
  ry = ly = rotate = endStepVal = dist = finalAngle = angle = z = sy = 0;
  Xtorso = Ytorso = Ztorso = 0;
  count = 0;
  ak = 1;
  // A slip without effect, kept: the opening step loads all three arrays again.
  for (int i = 0; i < stepping::kPhases; ++i) RotZ[i] = Yankle[i] = Zankle[i];
  sp = sp1 = 60;
  a[0] = a[1] = 0;
  d = 1;
  side = rotSide = true;
  otherside = OTurn = rotOtherSide = _othersideOmni = false;
  _sideOmni = sideEnd = true;
  torso = ankle[0] = ankle[1] = myself_pos = v = Vector();
  Gain = 1;
  error = 1;
}
