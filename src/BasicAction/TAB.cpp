#include "BasicAction/TAB.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Utilities/Converter.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr stepping::Table kTAB = {.file = "TAB", .group = "TAB", .stride = "Yankle"};

}  // namespace

TAB* TAB::execute(Vector point, double allowedError) {
  logger["Agent"] << "TAB !!!!" << std::endl;
  vec = point;
  Error = allowedError;
  type = AT_TURN_AROUND_BALL;
  return this;
}

bool TAB::execute() {
  logger["Agent"]
      << "**************************************&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&***"
         "********************"
      << std::endl;
  angle = -agent->WM->getAngleTo(vec);
  myself_pos = agent->WM->getAgentPosition();
  logger["Agent"] << "turn Arond ball execute!!!!!!!!!" << std::endl;
  if (angle > 0 || angle < 0) {
    Gain = angle > 0 ? 1 : -1;
    side = rotSide = angle > 0;
    otherside = rotOtherSide = !side;
  }
  sp = integerPart(stepping::readSpeed(kTAB));
  stepping::readTorso(kTAB, Xtorso, Ytorso, Ztorso);
  sp1 = sp;
  stepping::readAnkles(kTAB, Yankle, Zankle);
  return basicWalk(vec, Error);
}

bool TAB::basicWalk(Vector target, double turnError) {
  if (OWalk && (angle > 0 || angle < 0)) {
    Gain = angle > 0 ? 1 : -1;
    rotSide = side;
    rotOtherSide = otherside;
  }
  angle = std::fabs(agent->WM->getAngleTo(target));
  const auto logAngle = [&] {
    logger["Agent"] << "angle TAB : " << angle << "  error : " << turnError << std::endl;
  };
  const auto loadSteps = [&] { stepping::readAnkles(kTAB, Yankle, Zankle); };

  logAngle();
  stepping::runPhase(*this, basicWalkState, OWalk, Reset::kFixedStance, Gain, Gain, loadSteps);
  logAngle();
  return stepping::chooseStep(*this, basicWalkState, false, [&] {
    if (angle < turnError) return true;
    stepping::readYaw(kTAB, RotZ);
    loadSteps();
    return false;
  });
}

bool TAB::step(float stepGain, bool swing) {
  const stepping::Track track = stepping::alongY(*this);
  stepping::solvePhase(*this, track, stepGain, swing);
  return stepping::commandPhase(*this, track, swing);
}

void TAB::resetVars() {
  basicWalkState = stepping::kStance;
  state = 0;
  t = 1;
  ry = ly = rotate = endStepVal = dist = angle = angle1 = angle2 = z = sy = 0;
  Xtorso = Ytorso = Ztorso = 0;
  count = 0;
  // A slip without effect, kept: the opening step loads all three arrays again.
  for (int i = 0; i < stepping::kPhases; ++i) RotZ[i] = Yankle[i] = Zankle[i];
  sp = sp1 = 60;
  a[0] = a[1] = 0;
  d = 1;
  side = rotSide = OWalk = true;
  otherside = rotOtherSide = _othersideOmni = sideEnd = false;
  _sideOmni = true;
  torso = ankle[0] = ankle[1] = myself_pos = vec = Vector();
  Gain = 1;
  Error = 0;
}
