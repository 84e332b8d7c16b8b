#ifndef QUOLNARIS_MATHEMATICS_VECTOR_H_
#define QUOLNARIS_MATHEMATICS_VECTOR_H_

#include <cmath>
#include <iosfwd>

#include "Utilities/Types.h"

/// Three single-precision coordinates: a position, a direction or a size, in the unit and the frame
/// that its holder states. A small value, passed by value.
///
/// Several operators do not mean what a reader expects. All callers are written against these
/// meanings, so none of them may be "repaired":
///   a -= b (vectors)  changes x alone, to x - b.x - b.y - b.z;
///   a * b (vectors)   is the componentwise product, not the dot product;
///   a / b (vectors)   is the componentwise product as well, no division takes place;
///   a / 0.0           leaves the vector as it is;
///   assigning forms   alter the left side and return a copy of it, not a reference.
/// Arithmetic with a double is done in double and narrowed to float.
class Vector {
 public:
  static constexpr double RAD2DEG = 57.29577951308232;
  static constexpr double DEG2RAD = 0.017453292519943295;

  float x = 0;
  float y = 0;
  float z = 0;

  Vector() = default;
  constexpr Vector(float a, float b, float c) : x(a), y(b), z(c) {}

  /// CARTESIAN: the three coordinates. SPHERICAL: `vx` is the length, `vy` the azimuth from +x
  /// towards +y and `vz` the elevation above the xy plane, both in degrees.
  Vector(double vx, double vy, double vz, CoordinateSystem cs);

  Vector(const Vector&) = default;
  Vector operator=(const Vector& b) {
    x = b.x;
    y = b.y;
    z = b.z;
    return *this;
  }

  void setX(float a) { x = a; }
  void setY(float a) { y = a; }
  void setZ(float a) { z = a; }
  float getX() const { return x; }
  float getY() const { return y; }
  float getZ() const { return z; }
  void setElements(float a, float b, float c) {
    x = a;
    y = b;
    z = c;
  }

  /// A vector of three zeros; this vector stays as it is.
  Vector zero() const { return Vector(); }

  /// The length; the sum of squares is single precision, its root double.
  double getLength() const { return std::sqrt(static_cast<double>(x * x + y * y + z * z)); }

  /// `getLength()` narrowed to float.
  float getR() const { return static_cast<float>(getLength()); }

  /// The length of the projection on the xy plane.
  double getLengthOnGround() const { return std::sqrt(static_cast<double>(x * x + y * y)); }

  /// The length of the difference.
  float getDistanceTo(Vector p) const { return (*this - p).getR(); }

  /// The length of the difference in x and y alone.
  float getDistanceOnGround(Vector p) const {
    return static_cast<float>((*this - p).getLengthOnGround());
  }

  /// Direction in the xy plane in degrees, -180 to 180.
  float getDir() const { return static_cast<float>(atan2f(y, x) * RAD2DEG); }

  /// Direction in the xy plane in degrees by the coarser pi of `Converter`, so that it differs
  /// slightly from `getDir()`.
  double getSlope() const;

  /// Angle from +z in radians, 0 to pi. 0 for a zero vector, and also for one straight down.
  float getTetha() const;

  /// Angle between +x and the projection on the xy plane in radians, 0 to pi. It has no sign: the
  /// same for y and for -y. 0 if the projection is a point.
  float getPhi() const;

  /// `getPhi()` of the way from this point to `b`, radians, 0 to pi; as unsigned as `getPhi()` is.
  float getAngleTo(Vector b) const { return (b - *this).getPhi(); }

  float dot(Vector b) const { return x * b.x + y * b.y + z * b.z; }

  /// The right-handed product.
  Vector cross(Vector b) const {
    return Vector(y * b.z - z * b.y, z * b.x - x * b.z, x * b.y - y * b.x);
  }

  /// Divides this vector by its length and returns a copy. No guard: a zero vector becomes
  /// not-a-number.
  Vector normalize();

  /// Normalises this vector, scales it to the length `a` and returns a copy.
  Vector setLength(double a);

  /// Normalises this vector in three dimensions, then drops z and scales x and y by `a`; returns a
  /// copy. So the length on ground is `a` only for a vector with z = 0, and less otherwise; callers
  /// depend on this order.
  Vector setLengthOnGround(double a);

  Vector operator+(Vector b) const { return Vector(x + b.x, y + b.y, z + b.z); }
  Vector operator+=(Vector b) { return *this = *this + b; }
  Vector operator-(Vector b) const { return Vector(x - b.x, y - b.y, z - b.z); }
  Vector operator-=(Vector b) {  // x alone, see the class comment
    x = x - b.x - b.y - b.z;
    return *this;
  }
  Vector operator*(Vector b) const { return Vector(x * b.x, y * b.y, z * b.z); }
  Vector operator*=(Vector b) { return *this = *this * b; }
  Vector operator/(Vector b) const { return *this * b; }  // a product, see the class comment

  Vector operator+(double a) const { return narrowed(x + a, y + a, z + a); }
  Vector operator+=(double a) { return *this = *this + a; }
  Vector operator-(double a) const { return narrowed(x - a, y - a, z - a); }
  Vector operator-=(double a) { return *this = *this - a; }
  Vector operator*(double a) const { return narrowed(x * a, y * a, z * a); }
  Vector operator*=(double a) { return *this = *this * a; }
  Vector operator/(double a) const {
    if (a == 0.0) return *this;
    return narrowed(x / a, y / a, z / a);
  }
  Vector operator/=(double a) { return *this = *this / a; }

  bool operator==(Vector b) const { return x == b.x && y == b.y && z == b.z; }
  bool operator!=(Vector b) const { return !(*this == b); }

 private:
  static Vector narrowed(double a, double b, double c) {
    return Vector(static_cast<float>(a), static_cast<float>(b), static_cast<float>(c));
  }
};

/// Writes "(vector: x, y, z )".
std::ostream& operator<<(std::ostream& out, Vector v);

/// 0 for 0.0, otherwise the value divided by its magnitude, cut to int: 1 or -1. The quotient of
/// an infinity or not-a-number is no number; it gives the lowest int, see `integerPart`.
int sign(double value);

#endif  // QUOLNARIS_MATHEMATICS_VECTOR_H_
