#include "BasicAction/OmniWalk.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Utilities/Converter.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

enum Variant { kNormal = 0, kLongStride = 1 };

/// Fixed yaw of both legs in the long-stride variant, degrees.
constexpr double kLongStrideYaw = -20;

constexpr stepping::Table table(float speedOffset, float strideFactor) {
  return {.file = "omniWalk",
          .group = "omniwalk",
          .stride = "Xankle",
          .torso = {60, -10, -70},
          .speed = {70, speedOffset},
          .strideFactor = strideFactor,
          .liftFactor = 50};
}
constexpr stepping::Table kNormalTable = table(10, 50);
constexpr stepping::Table kLongStrideTable = table(30, 80);
constexpr stepping::Table kOtherTable = table(30, 50);

constexpr const stepping::Table& tableOf(int actionType) {
  return actionType == kNormal       ? kNormalTable
         : actionType == kLongStride ? kLongStrideTable
                                     : kOtherTable;
}

}  // namespace

bool OmniWalk::execute() {
  logger["Agent"] << "omniwalk !!" << std::endl;
  angle = agent->WM->getAngleTo(v);
  myself_pos = agent->WM->getAgentPosition();

  const stepping::Table& numbers = tableOf(actionType);
  stepping::readTorso(numbers, Xtorso, Ytorso, Ztorso);
  if (actionType == kNormal) Xtorso *= 0.7;
  sp = integerPart(stepping::readSpeed(numbers));
  rot = actionType == kLongStride ? kLongStrideYaw : 0;
  logger["Agent"] << "p omniWalk khar ~!!!! : " << p << std::endl;
  stepping::readAnkles(numbers, Xankle, Zankle);
  sp = sp1 = integerPart(sp * p);

  const bool mayLeave = basicWalk(v, error);
  if (mayLeave) p = speed > p ? p + 0.1 : speed;
  return mayLeave;
}

bool OmniWalk::basicWalk(Vector target, double turnError) {
  // The leg that points away from the target opens; the one on its side comes second and rotates.
  if (basicWalkState == stepping::kStance) {
    rotSide = side = !(angle > 0);
    rotOtherSide = otherside = !side;
  }
  const stepping::Table& numbers = tableOf(actionType);
  const auto loadSteps = [&] { stepping::readAnkles(numbers, Xankle, Zankle); };
  angle = std::fabs(agent->WM->getAngleTo(target));
  stepping::runPhase(*this, basicWalkState, OWalk, Reset::kNeutralStance, 0.5f, 1, loadSteps);

  angle = agent->WM->getAngleTo(target);
  if (OWalk) {
    if (angle > 0 || angle < 0) {
      rotSide = angle < 0;
      rotOtherSide = !rotSide;
    }
    OWalk = false;
  }
  angle = std::fabs(angle);

  return stepping::chooseStep(*this, basicWalkState, true, [&] {
    // An angle that is not a number takes neither branch: the step keeps what the arrays hold.
    if (angle >= turnError) {
      stepping::readYaw(numbers, RotZ);
      loadSteps();
    }
    if (angle < turnError) {
      for (double& yaw : RotZ) yaw = 0;
      double unused[stepping::kPhases];
      loadSteps();
      // Of no effect: execute reads the gait's own lift again before the step.
      stepping::readAnkles(stepping::kForWalk, unused, Zankle);
    }
    return false;
  });
}

bool OmniWalk::step(float stepGain, bool swing) {
  const stepping::Track track = stepping::alongX(*this);
  stepping::solvePhase(*this, track, stepGain, swing, rot);
  logger["Agent"] << "speed : " << sp << std::endl;
  if (!stepping::commandPhase(*this, track, swing)) return false;
  lastSide = swing;
  return true;
}

void OmniWalk::resetVars() {
  resetSteps();
  p = 0.1;
}
