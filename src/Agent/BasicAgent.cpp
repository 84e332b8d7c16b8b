#include "Agent/BasicAgent.h"

#include "Kinematics/InverseKinematic.h"

namespace {

constexpr float kMax = BodyController::kMaxAngle;

// Drives every controller of a group, also after one that has not arrived.
template <std::size_t N>
bool setEach(JointController (&group)[N], float value, float gain, float error) {
  bool arrived = true;
  for (JointController& controller : group) {
    if (!controller.setAngle(value, gain, error, kMax)) arrived = false;
  }
  return arrived;
}

// Translation column of a transform.
Vector position(Matrix<4, 4>& m) {
  return Vector(m(0, 3), m(1, 3), m(2, 3), CARTESIAN);
}

void storePosition(Matrix<4, 4>& pose, const Vector& p) {
  pose(0, 3) = p.x;
  pose(1, 3) = p.y;
  pose(2, 3) = p.z;
}

void storeRotation(Matrix<4, 4>& pose, const Matrix<4, 4>& rotation) {
  for (int row = 0; row < 3; ++row) {
    for (int col = 0; col < 3; ++col) pose(row, col) = rotation.get(row, col);
  }
}

// Mass of the body parts beside the torso, grams; the torso lies in the origin and adds nothing.
struct MassPoint {
  Matrix<4, 4> ForwardKinematic::*centre;
  double mass;
};
constexpr MassPoint kMassPoints[] = {
    {&ForwardKinematic::rightUpLeg, 490}, {&ForwardKinematic::rightLoLeg, 350},
    {&ForwardKinematic::rightFoot, 200},  {&ForwardKinematic::leftUpLeg, 490},
    {&ForwardKinematic::leftLoLeg, 350},  {&ForwardKinematic::leftFoot, 200},
    {&ForwardKinematic::rightUpArm, 220}, {&ForwardKinematic::rightLoArm, 235},
    {&ForwardKinematic::leftUpArm, 220},  {&ForwardKinematic::leftLoArm, 235},
    {&ForwardKinematic::headCenter, 400},
};
constexpr double kBodyMass = 4607.1;  // the whole robot, grams

// Feet whose heights differ by no more count both, metres.
constexpr double kLevelFeet = 0.005;
// How far the feet may lie from the centre of mass, metres.
constexpr double kReachX = 0.1;
constexpr double kReachY = 0.06;

}  // namespace

bool BasicAgent::setLeg(int jointNo, bool side, float value, float gain, float error) {
  return bControl.legController[side][jointNo - 1].setAngle(value, gain, error, kMax);
}

bool BasicAgent::setHand(int jointNo, bool side, float value, float gain, float error) {
  return bControl.handController[side][jointNo - 1].setAngle(value, gain, error, kMax);
}

bool BasicAgent::setHead(int jointNo, float value, float gain, float error) {
  return bControl.headController[jointNo - 1].setAngle(value, gain, error, kMax);
}

bool BasicAgent::fastSetLeg(int jointNo, bool side, float value, float gain, float error) {
  setLeg(jointNo, side, value, gain, error);
  return true;
}

bool BasicAgent::fastSetHand(int jointNo, bool side, float value, float gain, float error) {
  setHand(jointNo, side, value, gain, error);
  return true;
}

bool BasicAgent::fastSetHead(int jointNo, float value, float gain, float error) {
  setHead(jointNo, value, gain, error);
  return true;
}

bool BasicAgent::rotateLeg(int jointNo, bool side, float value) {
  return bControl.legController[side][jointNo - 1].rotateAngle(value, kMax);
}

bool BasicAgent::rotateHand(int jointNo, bool side, float value) {
  return bControl.handController[side][jointNo - 1].rotateAngle(value, kMax);
}

bool BasicAgent::rotateHead(int jointNo, float value) {
  return bControl.headController[jointNo - 1].rotateAngle(value, kMax);
}

bool BasicAgent::setBothLeg(int jointNo, float value, float gain, float error) {
  const bool right = setLeg(jointNo, true, value, gain, error);
  const bool left = setLeg(jointNo, false, value, gain, error);
  return right && left;
}

bool BasicAgent::setBothHand(int jointNo, float value, float gain, float error) {
  const bool right = setHand(jointNo, true, value, gain, error);
  const bool left = setHand(jointNo, false, value, gain, error);
  return right && left;
}

bool BasicAgent::setAllLeg(bool side, float value, float gain, float error) {
  return setEach(bControl.legController[side], value, gain, error);
}

bool BasicAgent::setAllHand(bool side, float value, float gain, float error) {
  return setEach(bControl.handController[side], value, gain, error);
}

bool BasicAgent::setAllBothLeg(float value, float gain, float error) {
  const bool right = setAllLeg(true, value, gain, error);
  const bool left = setAllLeg(false, value, gain, error);
  return right && left;
}

bool BasicAgent::setAllBothHand(float value, float gain, float error) {
  const bool right = setAllHand(true, value, gain, error);
  const bool left = setAllHand(false, value, gain, error);
  return right && left;
}

bool BasicAgent::setAllHead(float value, float gain, float error) {
  return setEach(bControl.headController, value, gain, error);
}

bool BasicAgent::setAll(float value, float gain, float error) {
  const bool legs = setAllBothLeg(value, gain, error);
  const bool hands = setAllBothHand(value, gain, error);
  const bool head = setAllHead(value, gain, error);
  return legs && hands && head;
}

void BasicAgent::setHandPosition(bool side, Vector position) {
  storePosition(bControl.hand[side], position);
}

void BasicAgent::setLegPosition(bool side, Vector position) {
  storePosition(bControl.leg[side], position);
}

void BasicAgent::setHandRotation(bool side, Matrix<4, 4> rotation) {
  storeRotation(bControl.hand[side], rotation);
}

void BasicAgent::setLegRotation(bool side, Matrix<4, 4> rotation) {
  storeRotation(bControl.leg[side], rotation);
}

bool BasicAgent::solveIkLeg(Vector torso, Vector ankle, double* theta, bool /*side*/,
                            double /*xRot*/, double /*yRot*/, double /*zRot*/) {
  InverseKinematic().legSolver(torso, ankle, theta);
  return true;
}

bool BasicAgent::solveIkLeg1(Vector torso, Vector ankle, double* theta, bool side, double xRot,
                             double yRot, double zRot) {
  constexpr int kSolvedJoints = 6;
  thread_local std::vector<double> sensed(kSolvedJoints);
  for (int i = 0; i < kSolvedJoints; ++i) {
    sensed[i] = bControl.legController[side][i].currentAngle * InverseKinematic::kPi / 180;
  }
  return InverseKinematic().legSolver(torso, ankle, theta, side, sensed, xRot, yRot, zRot);
}

Vector BasicAgent::findCOM() {
  const auto legAngle = [this](bool side, int i) {
    return bControl.legController[side][i].joint->getAngle();
  };
  const auto handAngle = [this](bool side, int i) {
    return bControl.handController[side][i].joint->getAngle();
  };
  fwd.setRightLeg(legAngle(true, 0), legAngle(true, 1), legAngle(true, 2), legAngle(true, 3),
                  legAngle(true, 4), legAngle(true, 5));
  fwd.setLeftLeg(legAngle(false, 0), legAngle(false, 1), legAngle(false, 2), legAngle(false, 3),
                 legAngle(false, 4), legAngle(false, 5));
  fwd.setRightHand(handAngle(true, 0), handAngle(true, 1), handAngle(true, 2), handAngle(true, 3));
  fwd.setLeftHand(handAngle(false, 0), handAngle(false, 1), handAngle(false, 2),
                  handAngle(false, 3));
  fwd.setHead(bControl.headController[0].joint->getAngle(),
              bControl.headController[1].joint->getAngle());

  Vector sum;
  for (const MassPoint& part : kMassPoints) sum += position(fwd.*part.centre) * part.mass;
  return sum / kBodyMass;
}

COMD BasicAgent::isInCOM() {
  const Vector com = findCOM();
  const Vector lc = position(fwd.leftLeg);
  const Vector rc = position(fwd.rightLeg);
  const double a = fwd.leftLeg(2, 3) - fwd.rightLeg(2, 3);
  if (WM->isFall()) return FALL;

  // The foot that decides towards the right and the one that decides towards the left; fore and aft
  // both must agree. On level feet these are the right and the left foot, otherwise the higher one.
  const bool level = a >= -kLevelFeet && a <= kLevelFeet;
  const Vector& rightmost = level || a < 0 ? rc : lc;
  const Vector& leftmost = level || a > 0 ? lc : rc;

  if (leftmost.x - com.x < -kReachX && rightmost.x - com.x < -kReachX) return BACK;
  if (leftmost.x - com.x > kReachX && rightmost.x - com.x > kReachX) return FRONT;
  if (rightmost.y - com.y < -kReachY) return RIGHT;
  if (leftmost.y - com.y > kReachY) return LEFT;
  return NONE;
}
