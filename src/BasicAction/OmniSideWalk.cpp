#include "BasicAction/OmniSideWalk.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Utilities/Converter.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr stepping::Table kTurning = {
    .file = "omniSideWalk", .group = "omnisidewalk", .stride = "Yankle"};

/// Within this ground distance of the target, metres, the gait stops turning: `error` becomes this
/// many degrees, until the next request.
constexpr double kArrived = 1.0;
constexpr double kArrivedError = 50;

/// Direction and rotating leg by the quarter in which the target lies: angles above `above` up to
/// `upTo` degrees. A target to the left is walked to with gain +1. Exactly 0 and exactly -180 lie
/// in no quarter, and neither does the end of the second.
struct Quarter {
  double above, upTo;
  int gain;
  bool rotSide;
};
constexpr Quarter kQuarters[] = {
    {-180, -90, -1, false},
    {-90, 0, -1, true},
    {0, 90, +1, false},
    {90, 180, +1, true},
};

}  // namespace

bool OmniSideWalk::execute() {
  logger["Agent"] << "heyy ~~~~~~~~" << std::endl;
  angle = agent->WM->getAngleTo(v);
  myself_pos = agent->WM->getAgentPosition();
  if (myself_pos.getDistanceOnGround(v) < kArrived) error = kArrivedError;
  stepping::readTorso(stepping::kSideWalk, Xtorso, Ytorso, Ztorso);
  sp = sp1 = integerPart(stepping::readSpeed(stepping::kSideWalk));
  stepping::readAnkles(stepping::kSideWalk, Yankle, Zankle);
  return basicWalk(v, error);
}

bool OmniSideWalk::basicWalk(Vector, double turnError) {
  if (basicWalkState == stepping::kStance || OWalk) {
    for (const Quarter& quarter : kQuarters) {
      if (angle == 0 || !(angle > quarter.above && angle <= quarter.upTo)) continue;
      Gain = quarter.gain;
      side = Gain > 0;
      otherside = !side;
      rotSide = quarter.rotSide;
      rotOtherSide = !rotSide;
    }
    OWalk = false;
  }
  angle = std::fabs(angle);
  logger["Agent"] << " rotSide : " << rotSide << std::endl;

  // The opening step keeps what execute has read.
  stepping::runPhase(*this, basicWalkState, OWalk, Reset::kFixedStance, Gain, Gain, [&] {
    if (basicWalkState != stepping::kFirstStep) stepping::readAnkles(kTurning, Yankle, Zankle);
  });

  return stepping::chooseStep(*this, basicWalkState, true, [&] {
    // The increments along y and z read here never reach a step: execute reads them again first.
    if (std::fabs(angle - 90) >= turnError) {
      stepping::readYaw(kTurning, RotZ);
      stepping::readAnkles(kTurning, Yankle, Zankle);
    } else {
      for (double& yaw : RotZ) yaw = 0;
      stepping::readAnkles(stepping::kSideWalk, Yankle, Zankle);
    }
    return false;
  });
}

bool OmniSideWalk::step(float stepGain, bool swing) {
  const stepping::Track track = stepping::alongY(*this);
  stepping::solvePhase(*this, track, stepGain, swing);
  logger["Agent"] << "side : " << swing << std::endl;
  logger["Agent"] << "   rotside : " << rotSide << std::endl;
  logger["Agent"] << "theta[1] side : " << theta[0][1] << std::endl;
  logger["Agent"] << "theta[1] otherside : " << theta[1][1] << std::endl;
  if (!stepping::commandPhase(*this, track, swing)) return false;
  lastSide = swing;
  return true;
}

void OmniSideWalk::resetVars() {
  basicWalkState = stepping::kStance;
  state = 0;
  side = otherside = OWalk = rotSide = rotOtherSide = false;
  _othersideOmni = _sideOmni = sideEnd = false;
  ry = ly = rotate = 0;
  Xtorso = Ytorso = Ztorso = 0;
  t = sy = oy = z = angle = dist = 0;
  endStepVal = 0.5;
  sp = 0;
}
