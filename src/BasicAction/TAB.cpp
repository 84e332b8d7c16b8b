#include "BasicAction/TAB.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr stepping::Table kTAB = {.file = "TAB", .group = "TAB", .stride = "Yankle"};

constexpr int kFixedStance = 0;

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
  sp = stepping::integerPart(stepping::readSpeed(kTAB));
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
  stepping::runPhase(*this, basicWalkState, OWalk, kFixedStance, Gain, Gain, loadSteps);
  logAngle();
  return stepping::chooseStep(*this, basicWalkState, false, [&] {
    if (angle < turnError) return true;
    stepping::readYaw(kTAB, RotZ);
    loadSteps();
    return false;
  });
}

bool TAB::step(float stepGain, bool swing) {
  stepping::moveFoot(swing, stepGain * Yankle[state], ry, ly, sy, oy);
  d = stepping::shiftSign(swing);
  z += Zankle[state];
  rotate += RotZ[state];

  ankle[swing] = Vector(0, sy, z);
  ankle[!swing] = Vector(0, oy, 0);
  torso = Vector(Xtorso, (sy + oy) * 0.5 + d * Ytorso, Ztorso);

  double yaw[2] = {0, 0};
  yaw[rotSide] = rotate;
  stepping::solveLegs(IK, swing, torso, ankle, yaw, theta);
  stepping::commandLegs(swing, theta, sp);

  if (!stepping::endPhase(state, z, sy, oy)) return false;
  sideEnd = swing;
  return true;
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
