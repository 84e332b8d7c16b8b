#include "BasicAction/BackWalk.h"

#include "BasicAction/Stepping.h"
#include "Utilities/Logger.h"

bool BackWalk::execute() {
  sp = stepping::readSpeed(stepping::kBackWalk);
  stepping::readTorso(stepping::kBackWalk, Xtorso, Ytorso, Ztorso);
  stepping::readAnkles(stepping::kBackWalk, Xankle, Zankle);
  sp = sp * p;
  const bool stepEnded = basicWalk(gain, side);
  if (stepEnded) p = speed > p ? p + 0.1 : speed;
  return stepEnded;
}

bool BackWalk::basicWalk(float backGain, bool) {
  return stepping::alternateSteps(*this, Reset::kFixedStance, backGain, kRight);
}

bool BackWalk::step(float backGain, bool swing) {
  stepping::moveFoot(swing, backGain * Xankle[state], rx, lx, sx, ox);
  z += Zankle[state];

  Vector ankle[2];
  ankle[swing] = Vector(sx, 0, z);
  ankle[!swing] = Vector(ox, 0, 0);
  const Vector torso((sx + ox) * 0.5 + Xtorso, stepping::shiftSign(swing) * Ytorso, Ztorso);

  double theta[2][7];
  stepping::solveLegs(IK, swing, torso, ankle, {0, 0}, theta);
  stepping::commandLegs(swing, theta, sp);
  logger["Agent"] << "side : " << swing << std::endl;
  logger["Agent"] << "sp : " << sp << std::endl;

  if (!stepping::endPhase(state, z, sx, ox)) return false;
  sideEnd = swing;
  lastSide = swing;
  return true;
}

void BackWalk::resetVars() {
  basicWalkState = state = 0;
  sp = 60;
  rx = lx = sx = ox = z = 0;
  RotZ = Xtorso = Ytorso = Ztorso = 0;
  for (int i = 0; i < stepping::kPhases; ++i) Xankle[i] = Yankle[i] = Zankle[i] = 0;
  sideEnd = lastSide = side = true;
  gain = speed = 1;
  p = 1;
}
