#include "BasicAction/SideWalk.h"

#include "BasicAction/Stepping.h"
#include "Utilities/Converter.h"
#include "Utilities/Logger.h"

bool SideWalk::execute() {
  sp = integerPart(stepping::readSpeed(stepping::kSideWalk));
  stepping::readTorso(stepping::kSideWalk, Xtorso, Ytorso, Ztorso);
  stepping::readAnkles(stepping::kSideWalk, Yankle, Zankle);
  return basicWalk(gain);
}

bool SideWalk::basicWalk(float sideGain) {
  enum { kTakeStance, kLeftStep, kRightStep };
  switch (basicWalkState) {
    case kTakeStance:
      if (stepping::reachStance(Reset::kFixedStance)) {
        basicWalkState = sideGain > 0 ? kLeftStep : kRightStep;
      }
      return false;
    case kLeftStep:
      if (!step(sideGain, kLeft)) return false;
      basicWalkState = kRightStep;
      return sideGain < 0;
    case kRightStep:
      if (!step(sideGain, kRight)) return false;
      basicWalkState = kLeftStep;
      return sideGain >= 0;
    default:
      return false;
  }
}

bool SideWalk::step(float sideGain, bool swing) {
  // These outlive resetVars on purpose: a step that a reset cut off leaves its height behind, and
  // the next step starts from there.
  [[maybe_unused]] static double t = 0;
  static double sy = 0;
  static double oy = 0;
  static double z = 0;

  stepping::moveFoot(swing, sideGain * Yankle[state], ry, ly, sy, oy);
  const int d = stepping::shiftSign(swing);
  z += Zankle[state];

  Vector ankle[2];
  ankle[swing] = Vector(0, sy, z);
  ankle[!swing] = Vector(0, oy, 0);
  const Vector torso(Xtorso, (sy + oy) * 0.5 + d * Ytorso, Ztorso);

  double theta[2][7];
  stepping::solveLegs(IK, swing, torso, ankle, {0, 0}, theta);
  logger["Agent"] << "side : " << swing << std::endl;
  logger["Agent"] << "ankle : " << ankle[swing] << std::endl;
  logger["Agent"] << "torso :" << torso << std::endl;
  logger["Agent"] << "sp : " << sp << std::endl;
  logger["Agent"] << "setleg sidewalk " << std::endl;
  stepping::commandLegs(swing, theta, sp);

  if (!stepping::endPhase(state, z, sy, oy)) return false;
  t = 0;
  sideEnd = swing;
  return true;
}

void SideWalk::resetVars() {
  basicWalkState = state = sp = 0;
  side = true;
  sideEnd = false;
  ry = ly = 0;
  Xtorso = Ytorso = Ztorso = 0;
  for (int i = 0; i < stepping::kPhases; ++i) Yankle[i] = Zankle[i] = 0;
  gain = Gain = preGain = 1;
}
