#include "Kinematics/KMat.h"

#include <cmath>
#include <limits>

namespace KMath {
namespace KMat {
namespace {

using Transform = transformations::Transform;

void assignTranslation(Transform& transform, double x, double y, double z) {
  transform.B.assign({{x}, {y}, {z}});
  transform.BisZero = x == 0 && y == 0 && z == 0;
}

// The flags are set from all elements here, unlike in Transform::check: a tiny rotation, whose
// diagonal rounds to 1, must not be lost on the way into a chain.
void assign(Transform& transform, const double (&rotation)[3][3], const double (&translation)[3]) {
  transform.A.assign(rotation);
  transform.AisZero = false;
  transform.AisIdentity = true;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      if (rotation[i][j] != (i == j ? 1.0 : 0.0)) transform.AisIdentity = false;
    }
  }
  assignTranslation(transform, translation[0], translation[1], translation[2]);
}

}  // namespace

MatrixIndexOutOfBoundsException::MatrixIndexOutOfBoundsException(const std::string& origin)
    : std::runtime_error(
          origin + ": MatrixIndexOutOfBoundsException : attempted to access an invalid element") {}

SingularMatrixInvertionException::SingularMatrixInvertionException(const std::string& origin)
    : std::runtime_error(
          origin + ": SingularMatrixInvertionException : attempted to invert a singular matrix") {}

void invert_square_matrix(GenMatrix<double, 3, 3>& athis) {
  const GenMatrix<double, 3, 3>& m = athis;
  const double a = m(0, 0), b = m(0, 1), c = m(0, 2);
  const double d = m(1, 0), e = m(1, 1), f = m(1, 2);
  const double g = m(2, 0), h = m(2, 1), i = m(2, 2);

  const double determinant = a * e * i + b * f * g + c * d * h - c * e * g - b * d * i - a * f * h;
  if (!(determinant > std::numeric_limits<double>::epsilon())) {
    throw SingularMatrixInvertionException("KMat::invert_square_matrixGenMatrix<A,3,3>");
  }

  // clang-format off
  athis.assign({
      {(e * i - f * h) / determinant, (c * h - b * i) / determinant, (b * f - c * e) / determinant},
      {(f * g - d * i) / determinant, (a * i - c * g) / determinant, (c * d - a * f) / determinant},
      {(d * h - e * g) / determinant, (b * g - a * h) / determinant, (a * e - b * d) / determinant},
  });
  // clang-format on
}

void transformations::makeTranslation(Transform& Transl, double x, double y, double z) {
  // clang-format off
  assign(Transl, {{1, 0, 0},
                  {0, 1, 0},
                  {0, 0, 1}}, {x, y, z});
  // clang-format on
}

void transformations::makeRotationX(Transform& Rot, double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  // clang-format off
  assign(Rot, {{1, 0,  0},
               {0, c, -s},
               {0, s,  c}}, {0, 0, 0});
  // clang-format on
}

void transformations::makeRotationY(Transform& Rot, double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  // clang-format off
  assign(Rot, {{ c, 0, s},
               { 0, 1, 0},
               {-s, 0, c}}, {0, 0, 0});
  // clang-format on
}

void transformations::makeRotationZ(Transform& Rot, double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  // clang-format off
  assign(Rot, {{c, -s, 0},
               {s,  c, 0},
               {0,  0, 1}}, {0, 0, 0});
  // clang-format on
}

void transformations::makeRotationXYZ(Transform& Rot, double xAngle, double yAngle, double zAngle) {
  Transform y, z;
  makeRotationX(Rot, xAngle);
  makeRotationY(y, yAngle);
  makeRotationZ(z, zAngle);
  Rot.fast_mult(y).fast_mult(z);
}

void transformations::makeRotationZYX(Transform& Rot, double zAngle, double yAngle, double xAngle) {
  Transform y, x;
  makeRotationZ(Rot, zAngle);
  makeRotationY(y, yAngle);
  makeRotationX(x, xAngle);
  Rot.fast_mult(y).fast_mult(x);
}

void transformations::makeDHTransformation(Transform& Transf, double a, double alpha, double d,
                                           double theta) {
  const double ct = std::cos(theta), st = std::sin(theta);
  const double ca = std::cos(alpha), sa = std::sin(alpha);
  // clang-format off
  assign(Transf, {{     ct,     -st,   0},
                  {st * ca, ct * ca, -sa},
                  {st * sa, ct * sa,  ca}}, {a, -d * sa, d * ca});
  // clang-format on
}

void transformations::makeTransformation(Transform& Transf, double px, double py, double pz,
                                         double rx, double ry, double rz) {
  makeRotationZYX(Transf, rz, ry, rx);
  assignTranslation(Transf, px, py, pz);
}

}  // namespace KMat
}  // namespace KMath
