#include "BasicAction/ForWalk.h"

#include "BasicAction/Stepping.h"
#include "Utilities/Logger.h"

namespace {

constexpr stepping::Table kForWalk = {.file = "forWalk",
                                      .group = "forwalk",
                                      .stride = "Xankle",
                                      .torso = {60, -10, -70},
                                      .speed = {70, 30},
                                      .strideFactor = 80,
                                      .liftFactor = 50};

constexpr int kWalkingStance = 3;

}  // namespace

bool ForWalk::execute() {
  sp = stepping::integerPart(stepping::readSpeed(kForWalk));
  sp = stepping::integerPart(sp * speed);
  stepping::readTorso(kForWalk, Xtorso, Ytorso, Ztorso);
  for (double& increment : Yankle) increment = 0;
  stepping::readAnkles(kForWalk, Xankle, Zankle);
  return basicWalk(gain, side);
}

bool ForWalk::basicWalk(float forGain, bool firstSide) {
  return stepping::alternateSteps(*this, kWalkingStance, forGain, firstSide);
}

bool ForWalk::step(float forGain, bool swing) {
  stepping::moveFoot(swing, forGain * Xankle[state], rx, lx, sx, ox);
  sy = ry;
  oy = ly;
  z += Zankle[state];

  Vector ankle[2];
  ankle[swing] = Vector(sx, sy, z);
  ankle[!swing] = Vector(ox, oy, 0);
  const Vector torso((sx + ox) * 0.5 + Xtorso, stepping::shiftSign(swing) * Ytorso, Ztorso);

  double theta[2][7];
  stepping::solveLegs(IK, swing, torso, ankle, {0, 0}, theta);
  stepping::commandLegs(swing, theta, sp);
  logger["Agent"] << "sp ====== " << sp << std::endl;

  if (!stepping::endPhase(state, z, sx, ox)) return false;
  sideEnd = swing;
  lastSide = swing;
  return true;
}

void ForWalk::resetVars() {
  basicWalkState = state = 0;
  sp = 60;
  rx = lx = sx = ox = sy = oy = z = 0;
  RotZ = Xtorso = Ytorso = Ztorso = khargush = 0;
  for (int i = 0; i < stepping::kPhases; ++i) Xankle[i] = Zankle[i] = 0;
  lastSide = sideEnd = side = true;
  count = 0;
  gain = speed = Gain = 1;
  preSp = 60;
}
