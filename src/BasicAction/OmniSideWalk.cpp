#include "BasicAction/OmniSideWalk.h"

#include <cmath>

#include "Agent/Agent.h"
#include "BasicAction/Stepping.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr stepping::Table kStraight = {.file = "sideWalk", .group = "sidewalk", .stride = "Yankle"};

constexpr stepping::Table kTurning = {
    .file = "omniSideWalk", .group = "omnisidewalk", .stride = "Yankle"};

constexpr int kFixedStance = 0;

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
  stepping::readTorso(kStraight, Xtorso, Ytorso, Ztorso);
  sp = sp1 = stepping::integerPart(stepping::readSpeed(kStraight));
  stepping::readAnkles(kStraight, Yankle, Zankle);
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
  stepping::runPhase(*this, basicWalkState, OWalk, kFixedStance, Gain, Gain, [&] {
    if (basicWalkState != stepping::kFirstStep) stepping::readAnkles(kTurning, Yankle, Zankle);
  });

  return stepping::chooseStep(*this, basicWalkState, true, [&] {
    // The increments along y and z read here never reach a step: execute reads them again first.
    if (std::fabs(angle - 90) >= turnError) {
      stepping::readYaw(kTurning, RotZ);
      stepping::readAnkles(kTurning, Yankle, Zankle);
    } else {
      for (double& yaw : RotZ) yaw = 0;
      stepping::readAnkles(kStraight, Yankle, Zankle);
    }
    return false;
  });
}

bool OmniSideWalk::step(float stepGain, bool swing) {
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
  logger["Agent"] << "side : " << swing << std::endl;
  logger["Agent"] << "   rotside : " << rotSide << std::endl;
  logger["Agent"] << "theta[1] side : " << theta[0][1] << std::endl;
  logger["Agent"] << "theta[1] otherside : " << theta[1][1] << std::endl;
  stepping::commandLegs(swing, theta, sp);

  if (!stepping::endPhase(state, z, sy, oy)) return false;
  sideEnd = swing;
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
