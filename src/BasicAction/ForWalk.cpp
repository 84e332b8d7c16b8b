#include "BasicAction/ForWalk.h"

#include "BasicAction/Stepping.h"
#include "Utilities/Converter.h"
#include "Utilities/Logger.h"

bool ForWalk::execute() {
  sp = integerPart(stepping::readSpeed(stepping::kForWalk));
  sp = integerPart(sp * speed);
  stepping::readTorso(stepping::kForWalk, Xtorso, Ytorso, Ztorso);
  for (double& increment : Yankle) increment = 0;
  stepping::readAnkles(stepping::kForWalk, Xankle, Zankle);
  return basicWalk(gain, side);
}

bool ForWalk::basicWalk(float forGain, bool firstSide) {
  return stepping::alternateSteps(*this, Reset::kForwardStance, forGain, firstSide);
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
