#include "WorldModel/Player.h"

#include <cmath>

namespace {

// The heading of a body whose left and right part lie at these places; UNKNOWN when they coincide
// along the axis in which they differ most.
Orientation directionFromPair(const Vector& left, const Vector& right) {
  if (std::fabs(left.x - right.x) > std::fabs(left.y - right.y)) {
    if (left.x > right.x) return SOUTH;
    if (right.x > left.x) return NORTH;
  } else {
    if (left.y > right.y) return EAST;
    if (right.y > left.y) return WEST;
  }
  return UNKNOWN;
}

// True for any sighting that lies not a second or more after `time`; old ones count.
bool wasSeen(float lastTimeSeen, float time) {
  return lastTimeSeen - time < 1.0;
}

}  // namespace

Orientation Player::getBodyDirection(float time) const {
  if (wasSeen(leftLowerArmLastTimeSeen, time) && wasSeen(rightLowerArmLastTimeSeen, time)) {
    const Orientation byArms = directionFromPair(leftLowerArmPosition, rightLowerArmPosition);
    if (byArms != UNKNOWN) return byArms;
  }
  if (!wasSeen(leftFootLastTimeSeen, time) || !wasSeen(rightFootLastTimeSeen, time)) return UNKNOWN;
  return directionFromPair(leftFootPosition, rightFootPosition);
}

template <typename Step>
void Player::carryParts(float time, Step step) {
  // Part times start at 0, so at game time 0 a part never seen would look seen.
  if (time == 0.0f) return;
  if (leftLowerArmLastTimeSeen == time) leftLowerArmPosition = step(leftLowerArmPosition);
  if (rightLowerArmLastTimeSeen == time) rightLowerArmPosition = step(rightLowerArmPosition);
  if (leftFootLastTimeSeen == time) leftFootPosition = step(leftFootPosition);
  if (rightFootLastTimeSeen == time) rightFootPosition = step(rightFootPosition);
  if (headLastTimeSeen == time) headPosition = step(headPosition);
}

void Player::calculateBodyPosition(const Matrix<4, 4>& neckRotation, float time) {
  carryParts(time, [&](const Vector& part) { return neckRotation * part; });
  Object::calculateBodyPosition(neckRotation);
}

void Player::calculateRelativePosition(const Matrix<4, 4>& torsoRotation, float time) {
  carryParts(time, [&](const Vector& part) { return torsoRotation * part; });
  Object::calculateRelativePosition(torsoRotation);
}

void Player::calculateGlobalPosition(const Vector& me, float time) {
  carryParts(time, [&](const Vector& part) { return me + part; });
  Object::calculateGlobalPosition(me);
}

Vector Player::getCalculatedPosition() const {
  return Vector(0.5 * (leftFootPosition.x + rightFootPosition.x),
                0.5 * (leftFootPosition.y + rightFootPosition.y),
                0.5 * (leftFootPosition.z + rightFootPosition.z), CARTESIAN);
}
