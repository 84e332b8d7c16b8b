#include "WorldModel/FieldLine.h"

#include <cmath>

void FieldLine::calculateBody(const Matrix<4, 4>& neckRotation) {
  FirstPoint.calculateBodyPosition(neckRotation);
  SecondPoint.calculateBodyPosition(neckRotation);
}

void FieldLine::calculateRelative(const Matrix<4, 4>& torsoRotation) {
  FirstPoint.calculateRelativePosition(torsoRotation);
  SecondPoint.calculateRelativePosition(torsoRotation);
}

void FieldLine::calculateGlobal(const Vector& me) {
  FirstPoint.calculateGlobalPosition(me);
  SecondPoint.calculateGlobalPosition(me);
}

void FieldLine::calculateSlope() {
  // Across at most this, in single precision, and along more than that, in double.
  constexpr float kMaxAcross = 0.1f;
  constexpr double kMinAlong = 0.9;

  Vector direction = SecondPoint.RelativePosition - FirstPoint.RelativePosition;
  direction.normalize();
  const float alongX = std::fabs(direction.x);
  const float alongY = std::fabs(direction.y);
  if (alongX < kMaxAcross && alongY > kMinAlong) {
    lineSlope = LINE_VERTICAL;
  } else if (alongY < kMaxAcross && alongX > kMinAlong) {
    lineSlope = LINE_HORIZONTAL;
  } else {
    lineSlope = LINE_NONE;
  }
}

const LineSlopeType& FieldLine::getSlope() {
  if (lineSlope == LINE_NONE) calculateSlope();
  return lineSlope;
}
