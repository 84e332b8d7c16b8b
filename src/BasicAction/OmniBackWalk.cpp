#include "BasicAction/OmniBackWalk.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Utilities/Converter.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr stepping::Table kTurning = {.file = "omniBackWalk",
                                      .group = "omnibackwalk",
                                      .stride = "Xankle",
                                      .strideFactor = 90,
                                      .liftFactor = 50};

}  // namespace

bool OmniBackWalk::execute() {
  angle = agent->WM->getAngleTo(v);
  myself_pos = agent->WM->getAgentPosition();
  stepping::readTorso(stepping::kBackWalk, Xtorso, Ytorso, Ztorso);
  sp = integerPart(stepping::readSpeed(stepping::kBackWalk));
  stepping::readAnkles(stepping::kBackWalk, Xankle, Zankle);
  sp = sp1 = integerPart(sp * p);

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
  stepping::runPhase(*this, basicWalkState, OWalk, Reset::kFixedStance, -0.5f, -1,
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
      stepping::readAnkles(stepping::kBackWalk, Xankle, Zankle);
    }
    return false;
  });
}

bool OmniBackWalk::step(float stepGain, bool swing) {
  const stepping::Track track = stepping::alongX(*this);
  stepping::solvePhase(*this, track, stepGain, swing);
  logger["Agent"] << "ankle : " << ankle[swing] << std::endl;
  logger["Agent"] << "torso : " << torso << std::endl;
  logger["Agent"] << "rotate : " << rotate << std::endl;
  logger["Agent"] << "sp : " << sp << std::endl;
  logger["Agent"] << "setleg omnibackwalk" << std::endl;
  if (!stepping::commandPhase(*this, track, swing)) return false;
  lastSide = swing;
  return true;
}

void OmniBackWalk::resetVars() {
  resetSteps();
  error = 2;
  speed = 1;
  p = 1;
}
