#include "Agent/JointController.h"

#include <cmath>

#include "Mathematics/Vector.h"

namespace {

// A target repeated more often than this counts as reached by a joint that cannot get nearer (under
// load, or against a stop) ...
constexpr int kStallRepeats = 199;
// ... provided that it is nearer than this, degrees.
constexpr float kStallReach = 6;
// Tolerance that then replaces the caller's, degrees; above kStallReach, so that it always accepts.
constexpr float kStallTolerance = 7;

}  // namespace

bool JointController::setAngle(float value, float gain, float error, float max) {
  if (std::isnan(value)) {
    Angle = 0;
    return true;
  }

  const bool repeated = static_cast<double>(value) == preValue;
  count = repeated ? count + 1 : 0;

  const float diff = std::fabs((value - currentAngle) - lastAngle);
  if (repeated && count > kStallRepeats && diff < kStallReach) error = kStallTolerance;

  // An arrived joint leaves preValue as it was: only targets that needed driving are remembered.
  if (error > diff) {
    Angle = 0;
    return true;
  }

  Angle = (gain / 100) * (value - (lastAngle + currentAngle));
  limitAngle(max);
  preValue = static_cast<double>(value);
  return false;
}

bool JointController::rotateAngle(float value, float max) {
  Angle = value;
  return std::fabs(value) <= max;
}

bool JointController::fastSetAngle(float value, float max) {
  Angle = value - (currentAngle + lastAngle);
  limitAngle(max);
  return true;
}

void JointController::adjustAngles() {
  currentAngle = joint->getAngle();
  lastAngle = Angle;
  Angle = 0;
}

void JointController::limitAngle(float max) {
  if (std::fabs(Angle) > max) Angle = static_cast<float>(sign(Angle)) * max;
}
