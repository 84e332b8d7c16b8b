#include "Mathematics/Degree.h"

#include <cmath>

#include "Mathematics/Vector.h"

namespace {

constexpr double kDegToRad = Vector::DEG2RAD;
constexpr double kRadToDeg = Vector::RAD2DEG;

// From here on neighbouring floats lie two or more degrees apart. Adding or taking single turns
// would run for very long, and beyond 2^34 for ever; the remainder gives the same angle at once.
constexpr float kManyTurns = 16777216.0f;  // 2^24

float withoutManyTurns(float a) {
  return std::fabs(a) >= kManyTurns ? std::fmod(a, 360.0f) : a;
}

float narrow(double value) {
  return static_cast<float>(value);
}

}  // namespace

float Degree::sin(float a) {
  return narrow(std::sin(a * kDegToRad));
}

float Degree::cos(float a) {
  return narrow(std::cos(a * kDegToRad));
}

float Degree::tan(float a) {
  return narrow(std::tan(a * kDegToRad));
}

float Degree::cot(float a) {
  return narrow(1.0 / std::tan(a * kDegToRad));
}

float Degree::arcSin(float x) {
  return narrow(std::asin(static_cast<double>(x)) * kRadToDeg);
}

float Degree::arcCos(float x) {
  return narrow(std::acos(static_cast<double>(x)) * kRadToDeg);
}

float Degree::arcTan(float x) {
  return narrow(std::atan(static_cast<double>(x)) * kRadToDeg);
}

float Degree::arcCot(float x) {
  return narrow(std::atan(static_cast<double>(1.0f / x)) * kRadToDeg);
}

float Degree::arcTan2(float y, float x) {
  return narrow(std::atan2(static_cast<double>(y), static_cast<double>(x)) * kRadToDeg);
}

float Degree::arcCot2(float y, float x) {
  return arcTan2(y, x);
}

float Degree::normalizeAngle(float a) {
  a = withoutManyTurns(a);
  while (a < -180) a += 360;
  while (a > 180) a -= 360;
  return a;
}

float Degree::absoluteAngle(float a) {
  a = withoutManyTurns(a);
  while (a < 0) a += 360;
  while (a >= 360) a -= 360;
  return a;
}

float Degree::getDeltaAngle(float a, float b) {
  return normalizeAngle(absoluteAngle(a) - absoluteAngle(b));
}

bool Degree::isBetween(float a, float b, float c) {
  a = absoluteAngle(a);
  b = absoluteAngle(b);
  c = absoluteAngle(c);
  if (a == b) return c == a;
  if (a < b) return a <= c && c <= b;
  return c <= b || c >= a;
}
