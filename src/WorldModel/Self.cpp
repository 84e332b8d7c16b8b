#include "WorldModel/Self.h"

#include <cassert>
#include <string>

#include "Utilities/Config.h"

namespace {

void nameJoints(Joint* joints, int count, const std::string& limb) {
  for (int i = 0; i < count; ++i) joints[i].setName(limb + std::to_string(i + 1));
}

bool isJoint(int jointNo, int jointSide, int count) {
  return jointNo >= 1 && jointNo <= count && (jointSide == 0 || jointSide == 1);
}

Post postFromConfiguration(int number) {
  switch (number) {
    case 1:
      return HALF_BACK;
    case 2:
      return DEFENCE;
    case 3:
      return GOALIE;
    default:
      return ATTACK;
  }
}

}  // namespace

Self::Self() {
  nameJoints(handJoints[0], kHandJoints, "lae");
  nameJoints(handJoints[1], kHandJoints, "rae");
  nameJoints(legJoints[0], kLegJoints, "lle");
  nameJoints(legJoints[1], kLegJoints, "rle");
  nameJoints(headJoints, kHeadJoints, "he");

  neckToGyro.translate(0, 0, 0.09);
  headToNeck.translate(0, 0, 0.065);
  for (Matrix<4, 4>* rotation : {&gyro, &vision, &neck, &body, &torsoTurn}) {
    rotation->identityMatrix();
  }

  playerNumber = config["Agent"]["Public"]["UniformNumber"].asInt();
  playerPost = playerNumber;
  const ConfigValue& posts = config["Agent"]["AgentPost"]["P"];
  assert(playerNumber >= 1 && playerNumber <= posts.size());
  agentPost = postFromConfiguration(posts[playerNumber - 1].asInt());
}

Joint* Self::getHandJoint(int jointNo, int jointSide) {
  assert(isJoint(jointNo, jointSide, kHandJoints));
  return &handJoints[jointSide][jointNo - 1];
}

Joint* Self::getLegJoint(int jointNo, int jointSide) {
  assert(isJoint(jointNo, jointSide, kLegJoints));
  return &legJoints[jointSide][jointNo - 1];
}

Joint* Self::getHeadJoint(int jointNo) {
  assert(isJoint(jointNo, 0, kHeadJoints));
  return &headJoints[jointNo - 1];
}

void Self::setHandJoint(int jointNo, int jointSide, float angle) {
  if (isJoint(jointNo, jointSide, kHandJoints)) handJoints[jointSide][jointNo - 1].setAngle(angle);
}

void Self::setLegJoint(int jointNo, int jointSide, float angle) {
  if (isJoint(jointNo, jointSide, kLegJoints)) legJoints[jointSide][jointNo - 1].setAngle(angle);
}

void Self::setHeadJoint(int jointNo, float angle) {
  if (isJoint(jointNo, 0, kHeadJoints)) headJoints[jointNo - 1].setAngle(angle);
}

void Self::preProc() {
  calculateGyroRotation();
  calculateNeckRotation();
}

bool Self::calculateGyroRotation() {
  if (!startHeadingChecked) {
    // The start heading plays no part in the orientation, which starts as facing +x whatever the
    // beam says; but a player without a readable one must not start.
    const ConfigValue& start = config["Formation"]["Beam"]["p" + std::to_string(playerNumber)];
    assert(start.size() > 2);
    start[2].asInt();
    startHeadingChecked = true;
  }

  // From the sensor's axes (x right, y front) to the torso's (x front, y left), degrees per cycle.
  const float gx = gyrVector.y;
  const float gy = -gyrVector.x;
  const float gz = gyrVector.z;
  gyrAngle += Vector(gx, gy, gz);

  Matrix<4, 4> aboutX;
  Matrix<4, 4> aboutY;
  Matrix<4, 4> aboutZ;
  aboutX.rotationByX(gx);
  aboutY.rotationByY(gy);
  aboutZ.rotationByZ(gz);
  gyro = gyro * (aboutX * (aboutY * aboutZ));
  return true;
}

bool Self::calculateNeckRotation() {
  Matrix<4, 4> pan;
  Matrix<4, 4> tilt;
  pan.rotationByZ(headJoints[0].getAngle());
  tilt.rotationByY(-headJoints[1].getAngle());
  neck = pan * (headToNeck * tilt);
  return true;
}

bool Self::calculateBodyRotation(std::vector<FieldLine>& line) {
  if (line.empty()) return false;
  for (FieldLine& seen : line) seen.getSlope();
  // The lines themselves correct nothing: being in sight they only make vision follow the gyro.
  body = gyro;
  return false;
}

void Self::reset() {
  gyro.identityMatrix();
  vision.identityMatrix();
}

Post Self::calculatePost(int p) const {
  switch (p) {
    case 0:
      return ATTACK;
    case 1:
      return HALF_BACK;
    case 2:
      return DEFENCE;
    case 3:
      return GOALIE;
    default:
      return DEFENCE;
  }
}

const Vector Self::localize(const Vector& flagcam, const Vector& flagreal) const {
  return flagreal - body * flagcam;
}
