#include "BasicAction/Kick.h"

#include <iostream>

#include "Agent/Agent.h"
#include "BasicAction/Reset.h"
#include "Utilities/Config.h"
#include "WorldModel/Ball.h"
#include "WorldModel/WorldModel.h"

namespace {

// Frames that no kick handles: a kick that gets there holds still until it is reset.
constexpr int kEndlessUnstable = 1700;
constexpr int kEndlessUnstable1 = 80;

// The order of unstable's frames: the one that follows `frame` when all its joints have arrived. A
// frame of no kick is its own successor.
int nextOfUnstable(int frame, KickMood along, KickMood across) {
  const bool straight = across == CLOSE_Y;
  switch (frame) {
    case 0:  // the start
      return 100;
    case 100:  // all joints at 0
      return 1;
    case 1:  // to 5: the weight over the support foot, beside the ball
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:  // the kicking foot lifted
      return frame + 1;
    case 7:  // the knee drawn back
      return along == CLOSE_X ? 8 : along == MEDIUM_X ? 11 : along == DISTANT_X ? 14 : frame;
    case 8:  // the hip thrown forward, as far as the ball shall go: then one of two strikes
      return straight ? 9 : 10;
    case 11:
      return straight ? 12 : 13;
    case 14:
      return straight ? 15 : 16;
    case 15:  // the strike of a kick that never ends, kept on purpose
      return kEndlessUnstable;
    case 9:
    case 10:
    case 12:
    case 13:
    case 16:  // the other strikes
      return 17;
    case 17:   // the end
    case 200:  // the pause
      return 0;
    default:
      return frame;
  }
}

// A robot of this type reaches further in unstable1.
constexpr int kLongReachType = 2;

// Millimetres in the body frame.
struct Point {
  float x, y, z;
  Vector vector() const { return Vector(x, y, z); }
  // The same point with y mirrored for s = -1, the left kick.
  Vector mirrored(int s) const { return Vector(x, y * s, z); }
};

// A frame whose joints come from a pose: all of joints 1 to 6 of both legs.
struct PoseFrame {
  int frame;
  Point torso;  // y is that of the right kick
  Point ankleSide, ankleOther;
  float speed;
};

template <size_t N>
const PoseFrame* findPose(const PoseFrame (&frames)[N], int frame) {
  for (const PoseFrame& f : frames) {
    if (f.frame == frame) return &f;
  }
  return nullptr;
}

constexpr float kPoseError = 3;

// unstable: weight on the kicking leg, the other foot 100 mm forward, weight over that foot, the
// kicking foot lifted.
constexpr PoseFrame kUnstablePoses[] = {
    // frame     torso         ankle[side]  ankle[otherside]  speed
    {1, {30, -35, -25}, {0, 0, 0}, {0, 0, 15}, 25},
    {2, {30, -55, -25}, {0, 0, 0}, {0, 0, 30}, 25},
    {3, {30, 0, -25}, {0, 0, 0}, {100, 0, 0}, 50},
    {4, {85, 20, -25}, {0, 0, 15}, {100, 0, 0}, 40},
    {5, {85, 40, -25}, {0, 0, 25}, {100, 0, 0}, 40},
};

// The strikes of unstable.
struct StrikeFrame {
  int frame;
  Point ankleSide;  // y is that of the right kick; only joints 2 and 6 come from this pose
  float speed;      // of all joints that are given directly
  float hipPitch;   // joint 3 of the kicking leg, degrees
  bool levelHip;    // joints 2 and 6 of the kicking leg go to 0 instead of the solved angles
};

constexpr StrikeFrame kStrikes[] = {
    {9, {207, 2, 250}, 100, 100, false}, {10, {207, 45, 250}, 100, 100, false},
    {12, {209, 2, 205}, 40, 90, false},  {13, {209, 45, 205}, 40, 90, false},
    {15, {208, 2, 240}, 40, 90, true},   {16, {208, 45, 240}, 40, 100, false},
};

const StrikeFrame* findStrike(int frame) {
  for (const StrikeFrame& f : kStrikes) {
    if (f.frame == frame) return &f;
  }
  return nullptr;
}

// The joints of a strike that are given directly, in the order in which they are sent. The hip
// pitch of the kicking leg (joint 3) comes from the frame.
struct StrikeJoint {
  int joint;
  bool kickingLeg;
  float angle;
};
constexpr int kHipPitch = 3;
constexpr StrikeJoint kStrikeJoints[] = {
    {1, true, 0},         {1, false, 0.01f},       {2, false, 0},
    {kHipPitch, true, 0}, {kHipPitch, false, -25}, {4, true, 0.18f},
    {4, false, -60},      {5, true, 40},           {5, false, -30},
    {6, false, 0},
};
constexpr float kStrikeError = 5;

// unstable1, for the right foot: nothing is mirrored.
constexpr PoseFrame kUnstable1Poses[] = {
    {0, {40, -42, -10}, {0, 0, 0}, {0, 0, 30}, 50},
    {1, {10, -42, -10}, {0, 0, 0}, {125, 0, 30}, 50},
    {2, {110, 0, -35}, {0, 0, 0}, {125, 0, 0}, 50},
    {3, {110, 48, -35}, {0, 0, 20}, {125, 0, 0}, 50},
};
constexpr float kLongReachTorsoX = 115;

constexpr PoseFrame kGotosidePoses[] = {
    {1, {30, -35, -25}, {0, 0, 0}, {0, 0, 15}, 25},
    {2, {30, -55, -25}, {0, 0, 0}, {0, 0, 30}, 25},
    {3, {30, 0, -25}, {0, 0, 0}, {100, 0, 0}, 25},
    {4, {85, 20, -25}, {0, 0, 25}, {100, 0, 0}, 25},
    {5, {85, 40, -25}, {0, 0, 25}, {100, 0, 0}, 25},
    {6, {85, 40, -25}, {0, 0, 25}, {100, 0, 0}, 25},
    {7, {85, 40, -25}, {100, 0, 25}, {100, 0, 0}, 25},
    {8, {85, 80, -25}, {180, 0, 25}, {100, 0, 0}, 25},
    {9, {85, 80, -25}, {140, -80, 25}, {100, 0, 0}, 25},
};
constexpr int kGotosideSpread = 8;
constexpr int kGotosideLast = 9;

// The torso of these leans the same way for both feet.
constexpr PoseFrame kSideKickPoses[] = {
    {1, {-10, -35, -20}, {0, 0, 0}, {0, 60, 30}, 100},
    {2, {-10, -40, -20}, {0, 0, 0}, {0, 0, 0}, 100},
};
constexpr int kSideKickLast = 2;

constexpr const char* kRightEndMark = "FFFFFFFFFFFFFFFFFFFF";
constexpr const char* kLeftEndMark = "LLLLLLLLLLLLLLLLLLLLL";

int robotType() {
  return config["Agent"]["Public"]["Type"].asInt();
}

// Solved angles of the kicking leg and of the other leg, degrees; joint n in index n.
struct Angles {
  double sideLeg[7] = {};
  double otherLeg[7] = {};
};

using LegSolver = bool (BasicAgent::*)(Vector torso, Vector ankle, double* theta, bool side,
                                       double xRot, double yRot, double zRot);

// Solves the kick's present pose for both legs; a leg without a solution keeps its angles.
void solveBothLegs(const Kick& kick, LegSolver solver, Angles& angles) {
  Agent* body = Kick::agent;
  (body->*solver)(kick.torso, kick.ankle[kick.side], angles.sideLeg, kick.side, 0, 0, 0);
  (body->*solver)(kick.torso, kick.ankle[kick.otherside], angles.otherLeg, kick.otherside, 0, 0, 0);
}

// Sends one joint of both legs; true when both have arrived.
bool setSolvedJoint(const Kick& kick, const Angles& angles, int joint, float speed, float error) {
  bool arrived = Kick::agent->setLeg(joint, kick.side, static_cast<float>(angles.sideLeg[joint]),
                                     speed, error);
  arrived &= Kick::agent->setLeg(joint, kick.otherside, static_cast<float>(angles.otherLeg[joint]),
                                 speed, error);
  return arrived;
}

bool setSolvedLegs(const Kick& kick, const Angles& angles, float speed, float error) {
  bool arrived = true;
  for (int joint = 1; joint <= 6; ++joint) {
    arrived &= setSolvedJoint(kick, angles, joint, speed, error);
  }
  return arrived;
}

// The side's ankle is set first: where both names mean the same leg, the other's target holds.
void takePose(Kick& kick, const Point& ankleSide, const Point& ankleOther, const Vector& torso) {
  kick.ankle[kick.side] = ankleSide.vector();
  kick.ankle[kick.otherside] = ankleOther.vector();
  kick.torso = torso;
}

// One cycle of a frame that is a pose, with the torso as given.
bool runPose(Kick& kick, const PoseFrame& frame, const Vector& torso, LegSolver solver) {
  takePose(kick, frame.ankleSide, frame.ankleOther, torso);
  Angles angles;
  solveBothLegs(kick, solver, angles);
  return setSolvedLegs(kick, angles, frame.speed, kPoseError);
}

bool runMirroredPose(Kick& kick, const PoseFrame& frame, int s) {
  return runPose(kick, frame, frame.torso.mirrored(s), &BasicAgent::solveIkLeg);
}

bool runStrike(Kick& kick, const StrikeFrame& frame, int s) {
  takePose(kick, frame.ankleSide, {0, 0, 0}, Vector(0, 0, 0));
  kick.ankle[kick.side] = frame.ankleSide.mirrored(s);
  Angles angles;
  solveBothLegs(kick, &BasicAgent::solveIkLeg, angles);

  bool arrived = true;
  for (int joint : {2, 6}) {
    const float angle = frame.levelHip ? 0 : static_cast<float>(angles.sideLeg[joint]);
    arrived &= Kick::agent->setLeg(joint, kick.side, angle, 40, 3);
  }
  for (const StrikeJoint& j : kStrikeJoints) {
    const bool leg = j.kickingLeg ? kick.side : kick.otherside;
    const bool fromFrame = j.kickingLeg && j.joint == kHipPitch;
    arrived &= Kick::agent->setLeg(j.joint, leg, fromFrame ? frame.hipPitch : j.angle, frame.speed,
                                   kStrikeError);
  }
  return arrived;
}

// One cycle of the strike of unstable1; `l` tells how many of them there have been.
bool runUnstable1Strike(Kick& kick) {
  constexpr LegSolver kSolver = &BasicAgent::solveIkLeg1;
  const Vector torso(-35, 45, -20);
  takePose(kick, {100, 0, 40}, {-20, 0, 10}, torso);
  Angles angles;
  double* const sideLeg = angles.sideLeg;
  double* const otherLeg = angles.otherLeg;
  solveBothLegs(kick, kSolver, angles);

  ++kick.l;
  otherLeg[5] = 0;
  sideLeg[2] = 0;
  otherLeg[2] = 0;
  if (kick.l > 3) otherLeg[3] = 10;
  if (kick.l > 4) {
    sideLeg[5] = -30;
    otherLeg[5] = -18;
  }
  if (kick.l > 6) sideLeg[4] = -15;
  if (kick.l > 9) {
    kick.ankle[kick.otherside] = Vector(100, 0, 15);
    solveBothLegs(kick, kSolver, angles);
    sideLeg[4] = 0;
    sideLeg[5] = -35;
    otherLeg[5] = -25;
  }
  if (kick.l > 11) {
    kick.ankle[kick.otherside] = Vector(100, 0, 0);
    kick.torso = torso;
    solveBothLegs(kick, kSolver, angles);
    sideLeg[4] = 0;
    sideLeg[2] = 0;
    sideLeg[5] = -40;
    otherLeg[2] = 0;
    otherLeg[5] = -25;
  }
  return setSolvedLegs(kick, angles, 100, 3);
}

// Frame 6 of unstable1 for the robot that reaches further: the pose once more, but for joint 3.
bool holdLongReach(Kick& kick) {
  takePose(kick, {0, 0, 20}, {125, 0, 0}, Vector(kLongReachTorsoX, 48, -35));
  Angles angles;
  solveBothLegs(kick, &BasicAgent::solveIkLeg1, angles);
  bool arrived = true;
  for (int joint : {1, 2, 4, 5, 6}) arrived &= setSolvedJoint(kick, angles, joint, 50, 3);
  return arrived;
}

}  // namespace

Kick* Kick::unstable(bool _side) {
  type = AT_UNSTABLE_KICK;
  side = _side;
  return this;
}

Kick* Kick::unstable1(bool _side) {
  type = AT_UNSTABLE1_KICK;
  side = _side;
  return this;
}

Kick* Kick::execute(bool _side) {
  type = AT_KICK;
  side = _side;
  return this;
}

bool Kick::execute(KickMood, KickMood) {
  return robotType() == kLongReachType ? unstable1() : unstable();
}

void Kick::detectkick(KickMood& km, KickMood& k) {
  km = CLOSE_X;
  k = CLOSE_Y;
}

bool Kick::detectFoot() {
  const Vector ball = agent->WM->ball->getGlobalPosition();
  const Vector myself = agent->WM->getAgentPosition();
  if (ball.getDistanceOnGround(myself) < 1.0) agent->setHead(2, -45, 90, 3);
  const double angle = agent->WM->getAngleTo(ball);
  if (angle > 0) {
    side = kLeft;
    return kLeft;
  }
  if (angle < 0) {
    side = kRight;
    return kRight;
  }
  return false;
}

bool Kick::unstable() {
  static int counter = 0;  // cycles since the last frame change
  KickMood km, k;
  detectkick(km, k);
  otherside = !side;
  const int s = side ? 1 : -1;
  ++counter;
  const auto enterNext = [&] {
    stableState = nextOfUnstable(stableState, km, k);
    counter = 0;
  };

  if (const PoseFrame* pose = findPose(kUnstablePoses, stableState)) {
    if (runMirroredPose(*this, *pose, s)) enterNext();
    return false;
  }
  if (const StrikeFrame* strike = findStrike(stableState)) {
    if (runStrike(*this, *strike, s)) {
      std::cout << kRightEndMark << std::endl;
      enterNext();
    }
    return false;
  }
  switch (stableState) {
    case 0:
      agent->reset->execute(Reset::kFixedStance);
      enterNext();
      return false;
    case 100:
      if (agent->setAll(0, 5, 3)) enterNext();
      return false;
    case 6:
      if (agent->setLeg(4, side, -132, 30, 2)) enterNext();
      return false;
    case 7:
      if (agent->setLeg(3, side, -25, 40, 2) && agent->setLeg(5, side, -40, 40, 2)) enterNext();
      return false;
    case 8:
      if (agent->setLeg(3, otherside, 30, 90, 2)) enterNext();
      return false;
    case 11:
      if (agent->setLeg(3, otherside, 40, 10, 2)) enterNext();
      return false;
    case 14:
      enterNext();
      return false;
    case 17:
      agent->reset->execute(Reset::kFixedStance);
      enterNext();
      return true;
    case 200:
      if (counter > 100) enterNext();
      return false;
    default:
      return false;
  }
}

bool Kick::unstable1() {
  if (const PoseFrame* pose = findPose(kUnstable1Poses, unStableState1)) {
    Vector lean = pose->torso.vector();
    if (pose->frame == 3 && robotType() == kLongReachType) lean.setX(kLongReachTorsoX);
    if (runPose(*this, *pose, lean, &BasicAgent::solveIkLeg1)) ++unStableState1;
    return false;
  }
  // The single joints name the right and the left leg, whatever `side` says.
  switch (unStableState1) {
    case 4:
      if (agent->setLeg(4, kRight, -130, 30, 2)) unStableState1 = 5;
      return false;
    case 5:
      if (agent->setLeg(3, kRight, -25, 40, 2) && agent->setLeg(5, kRight, -40, 40, 2) &&
          agent->setHand(1, kLeft, -90, 40, 2) && agent->setHand(1, kRight, -90, 40, 2)) {
        unStableState1 = 6;
      }
      return false;
    case 6:
      if (robotType() == kLongReachType && !holdLongReach(*this)) return false;
      if (agent->setLeg(3, kLeft, 68, 10, 2)) unStableState1 = 7;
      return false;
    case 7:
      // The frame behind the strike does not exist, on purpose: whoever asked for this kick ends
      // it by a stop or by a change of the play mode.
      if (runUnstable1Strike(*this)) unStableState1 = kEndlessUnstable1;
      return false;
    case 8:
      agent->reset->execute(Reset::kFixedStance);
      unStableState1 = 1;
      return true;
    default:
      return false;
  }
}

bool Kick::gotoside() {
  otherside = !side;
  const PoseFrame* pose = findPose(kGotosidePoses, gtside);
  if (!pose) return false;
  bool arrived = runMirroredPose(*this, *pose, side ? 1 : -1);
  if (gtside == kGotosideSpread) {
    arrived &= agent->setLeg(2, side, -45, 40, 3);
    arrived &= agent->setLeg(6, side, 45, 40, 3);
  }
  if (!arrived) return false;
  const bool ended = gtside == kGotosideLast;
  gtside = ended ? 1 : gtside + 1;
  return ended;
}

bool Kick::sideKick() {
  otherside = !side;
  const PoseFrame* pose = findPose(kSideKickPoses, sideState);
  if (!pose || !runPose(*this, *pose, pose->torso.vector(), &BasicAgent::solveIkLeg)) return false;
  if (sideState != kSideKickLast) {
    ++sideState;
    return false;
  }
  std::cout << (side == kLeft ? kLeftEndMark : kRightEndMark) << std::endl;
  sideState = 1;
  return true;
}

void Kick::resetVars() {
  kickstate = 1;
  standupstate = 1;
  stableState = 0;
  unStableState1 = 0;
  side = true;
  otherside = false;
}
