#include "Mathematics/Vector.h"

#include <ostream>

#include "Utilities/Converter.h"

Vector::Vector(double vx, double vy, double vz, CoordinateSystem cs) {
  if (cs == CARTESIAN) {
    *this = narrowed(vx, vy, vz);
  } else if (cs == SPHERICAL) {
    *this =
        narrowed(vx * Converter::cosDeg(vz) * Converter::cosDeg(vy),
                 vx * Converter::cosDeg(vz) * Converter::sinDeg(vy), vx * Converter::sinDeg(vz));
  }
}

double Vector::getSlope() const {
  return Converter::atan2Deg(y, x);
}

float Vector::getTetha() const {
  const double length = getLength();
  if (length == 0) return 0;
  if (x * x + y * y == 0) return 0;
  return static_cast<float>(std::acos(z / length));
}

float Vector::getPhi() const {
  if (getLength() == 0) return 0;
  if (x * x + y * y == 0) return 0;
  return acosf(static_cast<float>(x / getLengthOnGround()));
}

Vector Vector::normalize() {
  const double length = getLength();
  return *this = narrowed(x / length, y / length, z / length);
}

Vector Vector::setLength(double a) {
  normalize();
  return *this = *this * a;
}

Vector Vector::setLengthOnGround(double a) {
  normalize();
  z = 0;
  x = static_cast<float>(x * a);
  y = static_cast<float>(y * a);
  return *this;
}

std::ostream& operator<<(std::ostream& out, Vector v) {
  return out << "(vector: " << v.x << ", " << v.y << ", " << v.z << " )";
}

int sign(double value) {
  if (value == 0.0) return 0;
  return integerPart(value / std::fabs(value));
}
