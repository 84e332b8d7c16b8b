#include "WorldModel/WorldModel.h"

#include <cassert>
#include <cmath>
#include <string>
#include <utility>

#include "Mathematics/Degree.h"
#include "Utilities/Config.h"

namespace {

// Sum of the distances, in metres, up to which sightings are taken to agree.
constexpr double kMaxError = 4.0;
// The height of the torso centre above the ground that every estimate is given, metres.
constexpr float kTorsoHeight = 0.45f;

// Adjacent pairs of landmarks whose connecting lines run along the pitch's +x and +y axis.
struct FlagPair {
  int a;
  int b;
};
constexpr FlagPair kAlongX[] = {{2, 0}, {6, 4}, {3, 1}, {7, 5}};
constexpr FlagPair kAlongY[] = {{0, 1}, {4, 5}, {2, 3}, {6, 7}};

}  // namespace

// Counters of localize, global as the program's others are not: its runs in the last update with
// vision, and in the whole process. No code reads them.
int locCount = 0;
unsigned c = 0;

WorldModel::WorldModel() : timer(new Timer), ball(new Ball), mySelf(new Self), say(new Say) {
  // A message holds at most some twenty lines; room for them now keeps the cycle free of
  // allocation.
  fieldLine.reserve(64);
}

WorldModel::~WorldModel() {
  delete say;
  delete mySelf;
  delete ball;
  delete timer;
}

bool WorldModel::update(const std::string& message) {
  parse(message);
  // Before a kick-off the robot has just been beamed: orientation starts anew as facing +x.
  if (playMode == PM_BEFORE_KICK_OFF || playMode == PM_GOAL_LEFT || playMode == PM_GOAL_RIGHT) {
    mySelf->reset();
    fall = FALL_NONE;
  }
  mySelf->preProc();
  if (visionThisCycle) {
    locCount = 0;
    localize();
  }
  if (!setFlagCheck) setFlags();
  return true;
}

int WorldModel::getFlagNumber(bool isFieldFlag, bool isRight, int no) {
  return no + (isFieldFlag ? 0 : 4) + (isRight ? 2 : 0);
}

void WorldModel::setFlags() {
  const TeamSide oside = ourSide;
  for (int a = 1; a >= 0; --a) {
    for (int b = 0; b <= 1; ++b) {
      for (int no = 0; no <= 1; ++no) {
        const std::string key = "f" + std::to_string(a) + std::to_string(b) + std::to_string(no);
        const ConfigValue& position = config["WorldModel"]["FlagPosition"][key];
        assert(position.size() > 2);
        float x = position[0].asFloat();
        float y = position[1].asFloat();
        const float z = position[2].asFloat();
        if (oside == SIDE_RIGHT) {
          x = -x;
          y = -y;
        }
        flag[getFlagNumber(a != 0, b != 0, no)].setRealPosition(Vector(x, y, z));
      }
    }
  }
  if (isInit) setFlagCheck = true;
}

void WorldModel::localize() {
  setBodyAllObjects();
  ++locCount;
  ++c;
  mySelf->calculateBodyRotation(fieldLine);

  for (int pass = 0; pass < 2; ++pass) {
    Estimates estimates = estimateByLandmark();
    sortByDistance(estimates);
    if (flagCounted == 0) continue;
    const Vector mean = weightedMean(estimates, flagCounted);
    const double errorLen = disagreement(mean);
    if (errorLen > kMaxError || std::isnan(errorLen)) {
      ++isValidPosition;
    } else {
      isValidPosition = 0;
    }

    // A first pass with a large error only repeats itself. Only an error that is no number rebuilds
    // the orientation; widening that to large errors would change how the player plays.
    if (pass == 0 && errorLen > kMaxError) continue;
    if (pass == 0 && std::isnan(errorLen)) {
      correctRotation();
      continue;
    }
    takePosition(mean, errorLen);
    return;
  }
}

WorldModel::Estimates WorldModel::estimateByLandmark() {
  Estimates estimates;
  flagCounted = 0;
  for (int k = 0; k < kFlags; ++k) {
    if (!isSeenNow(flag[k])) continue;
    flag[k].calculateRelativePosition(mySelf->body);
    const Vector relative = flag[k].RelativePosition;
    estimates.squaredDistance[k] = relative.x * relative.x + relative.y * relative.y;
    estimates.position[k] = flag[k].RealPosition - relative;
    ++flagCounted;
  }
  return estimates;
}

void WorldModel::sortByDistance(Estimates& estimates) {
  auto& [position, squaredDistance] = estimates;
  for (int sweep = 0; sweep < kFlags; ++sweep) {
    for (int k = 0; k + 1 < kFlags; ++k) {
      if (squaredDistance[k] > squaredDistance[k + 1]) {
        std::swap(squaredDistance[k], squaredDistance[k + 1]);
        const Vector farther = position[k];
        position[k] = position[k + 1];
        position[k + 1] = farther;
      }
    }
  }
}

Vector WorldModel::weightedMean(const Estimates& estimates, int counted) {
  Vector mean;
  int weight = counted;
  int sum = 0;
  for (const Vector& position : estimates.position) {
    if (position == Vector()) continue;
    mean += position * static_cast<double>(weight);
    sum += weight;
    --weight;
  }
  return mean / static_cast<double>(sum);
}

double WorldModel::disagreement(Vector mean) const {
  double errorLen = 0.0;
  for (int i = 0; i < flagCounted; ++i) {
    if (!isSeenNow(flag[i])) continue;
    Vector difference = mean - (flag[i].RealPosition - flag[i].RelativePosition);
    difference.setZ(0.0f);
    errorLen += difference.getLength();
  }
  return errorLen;
}

void WorldModel::takePosition(Vector mean, double errorLen) {
  mySelf->setGyroRotation(mySelf->body);
  const Vector lastPos = mySelf->GlobalPosition;
  mean = (mean + lastPos * (1 + 2 * errorLen)) * (1 / (2 + 2 * errorLen));
  mean.setZ(kTorsoHeight);
  mySelf->setGlobalPosition(mean);
  setRelativeAllObjects();
  setGlobalAllObjects();
}

bool WorldModel::correctRotation() {
  int hcount = 0;
  int vcount = 0;
  Vector horizontal;
  Vector vertical;
  for (const FlagPair& pair : kAlongX) horizontal += useFlags(pair.a, pair.b, hcount);
  for (const FlagPair& pair : kAlongY) vertical += useFlags(pair.a, pair.b, vcount);
  if (hcount * vcount == 0) return false;

  const Vector vx = horizontal.normalize();
  const Vector vy = vertical.normalize();
  const Vector vz = vx.cross(vy);
  Matrix<4, 4> newBody;
  // clang-format off
  newBody.setElements(vx.x, vx.y, vx.z, 0,
                      vy.x, vy.y, vy.z, 0,
                      vz.x, vz.y, vz.z, 0,
                      0,    0,    0,    1);
  // clang-format on
  mySelf->setBodyRotation(newBody);
  mySelf->setGyroRotation(newBody);
  return true;
}

Vector WorldModel::useFlags(int a, int b, int& count) {
  // Any past sighting passes, even that of a landmark never seen; only the future is refused.
  if (!(flag[a].LastTimeSeen - gameTime < 1.0) || !(flag[b].LastTimeSeen - gameTime < 1.0)) {
    return Vector();
  }
  ++count;
  Vector difference = flag[a].BodyPosition - flag[b].BodyPosition;
  return difference.normalize();
}

void WorldModel::setBodyAllObjects() {
  for (Flag& landmark : flag) {
    if (isSeenNow(landmark)) landmark.calculateBodyPosition(mySelf->neck);
  }
  for (FieldLine& line : fieldLine) {
    line.calculateBody(mySelf->neck);
    line.calculateRelative(mySelf->gyro);  // there is no fresher orientation yet
  }
  if (isSeenNow(*ball)) ball->calculateBodyPosition(mySelf->neck);
  for (auto& team : player) {
    for (Player& one : team) {
      if (isSeenNow(one)) one.calculateBodyPosition(mySelf->neck, gameTime);
    }
  }
}

void WorldModel::setRelativeAllObjects() {
  if (isSeenNow(*ball)) ball->calculateRelativePosition(mySelf->body);
  for (int n = 0; n < kPlayers; ++n) {
    for (int team = 0; team < kTeams; ++team) {
      Player& one = player[team][n];
      if (isSeenNow(one)) one.calculateRelativePosition(mySelf->body, gameTime);
      // Once more for each limb seen, so that the parts of a player turn up to five times. Who
      // reads them only compares them with each other, and is tuned to it: it must stay.
      for (const float limbTime : {one.leftLowerArmLastTimeSeen, one.rightLowerArmLastTimeSeen,
                                   one.leftFootLastTimeSeen, one.rightFootLastTimeSeen}) {
        if (limbTime == gameTime) one.calculateRelativePosition(mySelf->body, gameTime);
      }
    }
  }
}

void WorldModel::setGlobalAllObjects() {
  const Vector me = mySelf->GlobalPosition;
  if (isSeenNow(*ball)) ball->calculateGlobalPosition(me);
  for (auto& team : player) {
    for (Player& one : team) {
      if (isSeenNow(one)) one.calculateGlobalPosition(me, gameTime);
    }
  }
}

bool WorldModel::isFall() {
  constexpr float kThreshold = 8.0f;  // m/s^2
  const Vector a = mySelf->getAccellerator();
  fall = FALL_NONE;
  if (a.z > kThreshold) return false;  // an upright z wins over anything else
  if (a.x < -kThreshold) {
    fall = FALL_RIGHT;
  } else if (a.x > kThreshold) {
    fall = FALL_LEFT;
  } else if (a.y > kThreshold) {
    fall = FALL_BACK;
  } else if (a.y < -kThreshold) {
    fall = FALL_FRONT;
  }
  return fall != FALL_NONE;
}

bool WorldModel::isInBeamLocation(const Vector& v) const {
  const Vector& me = getAgentPosition();
  return std::fabs(v.x - me.x) < 0.5f && std::fabs(v.y - me.y) < 0.5f;
}

double WorldModel::getAngleTo(Vector vec) const {
  // The first column of the orientation, through a product, which rounds it to single precision.
  Matrix<4, 4> firstColumn;
  firstColumn(0, 0) = 1.0;
  const Matrix<4, 4> forward = mySelf->gyro * firstColumn;
  const Vector o(forward.get(0, 0), forward.get(1, 0), forward.get(2, 0), CARTESIAN);
  const Vector vec2me = vec - getAgentPosition();
  return -static_cast<double>(
      Degree::normalizeAngle(static_cast<float>(o.getSlope() - vec2me.getSlope())));
}
