#ifndef QUOLNARIS_TESTS_SUPPORT_POINTCHECK_H_
#define QUOLNARIS_TESTS_SUPPORT_POINTCHECK_H_

#include <gtest/gtest.h>

#include "Mathematics/Matrix.h"
#include "Mathematics/Vector.h"

namespace support {

// Whether a point lies at x and y, whatever its height, to within `margin` metres.
inline void expectPoint(Vector actual, double x, double y, double margin = 1e-5) {
  EXPECT_NEAR(actual.getX(), x, margin);
  EXPECT_NEAR(actual.getY(), y, margin);
}

// The same, and on the ground.
inline void expectGroundPoint(Vector actual, double x, double y, double margin = 1e-5) {
  expectPoint(actual, x, y, margin);
  EXPECT_EQ(actual.getZ(), 0);
}

// Whether a point lies at x, y and z, to within a hundredth of a millimetre.
inline void expectNear(const Vector& actual, double x, double y, double z) {
  expectPoint(actual, x, y);
  EXPECT_NEAR(actual.z, z, 1e-5);
}

// Takes (1, 0, 0) to (0, 1, 0).
inline Matrix<4, 4> quarterTurnAboutZ() {
  Matrix<4, 4> m;
  m.rotationByZ(90);
  return m;
}

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_POINTCHECK_H_
