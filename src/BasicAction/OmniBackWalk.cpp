#include "BasicAction/OmniBackWalk.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr stepping::Table kStraight = {.file = "backWalk",
                                       .group = "backwalk",
                                       .stride = "Xankle",
                                       .torso = {60, -10, -70},
                                       .speed = {60, 40},
                                       .strideFactor = 90,
                                       .liftFactor = 50};

constexpr stepping::Table kTurning = {.file = "omniBackWalk",
                                      .group = "omnibackwalk",
                                      .stride = "Xankle",
                                      .strideFactor = 90,
                                      .liftFactor = 50};

constexpr int kFixedStance = 0;

}  // namespace

bool OmniBackWalk::execute() {
  angle = agent->WM->getAngleTo(v);
  myself_pos = agent->WM->getAgentPosition();
  stepping::readTorso(kStraight, Xtorso, Ytorso, Ztorso);
  sp = stepping::integerPart(stepping::readSpeed(kStraight));
  stepping::readAnkles(kStraight, Xankle, Zankle);
  sp = sp1 = stepping::integerPart(sp * p);

  const bool mayLeave = basicWalk(v, error);
  if (mayLeave) p = speed > p ? p + 0.2 : speed;
  return mayLeave;
}

bool OmniBackWalk::basicWalk(Vector target, double turnError) {
  if (basicWalkState == stepping::kStance) {
    rotSide = side = angle > 0;
    rotOtherSide = otherside = !side;
  }
  angle = std::fabs(agent->WM->getAngleTo(target));
  stepping::runPhase(*this, basicWalkState, OWalk, kFixedStance, -0.5f, -1,
                     [&] { stepping::readAnkles(kTurning, Xankle, Zankle); });

  angle = agent->WM->getAngleTo(target);
  if (OWalk) {
    if (angle > 0 || angle < 0) {
      rotSide = angle > 0;
      rotOtherSide = !rotSide;
    }
    OWalk = false;
  }
  angle = std::fabs(angle);

  return stepping::chooseStep(*this, basicWalkState, true, [&] {
    // The ankle increments read here never reach a step: execute reads them again before it.
    if (std::fabs(180 - angle) >= turnError) {
      stepping::readYaw(kTurning, RotZ);
      stepping::readAnkles(kTurning, Xankle, Zankle);
    } else {
      for (double& yaw : RotZ) yaw = 0;
      stepping::readAnkles(kStraight, Xankle, Zankle);
    }
    return false;
  });
}

bool OmniBackWalk::step(float stepGain, bool swing) {
  stepping::moveFoot(swing, stepGain * Xankle[state], rx, lx, sx, ox);
  d = stepping::shiftSign(swing);
  z += Zankle[state];
  rotate += RotZ[state];

  ankle[swing] = Vector(sx, 0, z);
  ankle[!swing] = Vector(ox, 0, 0);
  torso = Vector((sx + ox) * 0.5 + Xtorso, d * Ytorso, Ztorso);

  double yaw[2] = {0, 0};
  yaw[rotSide] = rotate;
  stepping::solveLegs(IK, swing, torso, ankle, yaw, theta);
  logger["Agent"] << "ankle : " << ankle[swing] << std::endl;
  logger["Agent"] << "torso : " << torso << std::endl;
  logger["Agent"] << "rotate : " << rotate << std::endl;
  logger["Agent"] << "sp : " << sp << std::endl;
  logger["Agent"] << "setleg omnibackwalk" << std::endl;
  stepping::commandLegs(swing, theta, sp);

  if (!stepping::endPhase(state, z, sx, ox)) return false;
  sideEnd = swing;
  lastSide = swing;
  return true;
}

void OmniBackWalk::resetVars() {
  basicWalkState = stepping::kStance;
  state = 0;
  side = otherside = OWalk = rotSide = rotOtherSide = false;
  _othersideOmni = _sideOmni = sideEnd = false;
  rx = lx = rotate = 0;
  Xtorso = Ytorso = Ztorso = 0;
  t = sx = ox = z = angle = endStepVal = dist = 0;
  sp = 0;
  error = 2;
  speed = 1;
  p = 1;
}
