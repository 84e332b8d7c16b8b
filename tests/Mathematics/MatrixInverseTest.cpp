// Matrix<4, 4>::inverseMatrix against an independent inverse of the upper left block.

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <cmath>

#include "Kinematics/Draws.h"
#include "Mathematics/Matrix.h"

namespace {

constexpr int kCases = 10000;

Eigen::Matrix3d block(const Matrix<4, 4>& m) {
  Eigen::Matrix3d e;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) e(i, j) = m(i, j);
  }
  return e;
}

// The inverse must have no translation and, in its corner, the reciprocal of the determinant.
void expectFrame(const Matrix<4, 4>& inverse, double determinant) {
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(inverse(i, 3), 0);
    ASSERT_EQ(inverse(3, i), 0);
  }
  ASSERT_NEAR(inverse(3, 3) * determinant, 1, 1e-6);
}

TEST(MatrixInverse, OfARotationIsThatOfEigenAndItsTranspose) {
  CaseCount cases("rotations", kCases);
  Draws draws(1);
  for (int n = 0; n < kCases; ++n) {
    Matrix<4, 4> m;
    m.identityMatrix();
    m.rotateX(draws.between(-180, 180));
    m.trans(draws.between(-1, 1), draws.between(-1, 1), draws.between(-1, 1));
    m.rotateY(draws.between(-180, 180));
    m.rotateZ(draws.between(-180, 180));
    const Matrix<4, 4> inverse = m.inverseMatrix();
    // Entries and the reciprocal determinant are narrowed to float: two roundings of 6e-8.
    ASSERT_LT((block(inverse) - block(m).inverse()).cwiseAbs().maxCoeff(), 3e-7);
    ASSERT_LT((block(inverse) - block(m).transpose()).cwiseAbs().maxCoeff(), 1e-6);
    ASSERT_NO_FATAL_FAILURE(expectFrame(inverse, 1));
    cases.count();
  }
}

TEST(MatrixInverse, OfAnyRegularBlockIsThatOfEigen) {
  CaseCount cases("regular blocks", kCases);
  Draws draws(2);
  for (int n = 0; n < 2 * kCases; ++n) {
    Matrix<4, 4> m;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 4; ++j) m(i, j) = draws.between(-2, 2);
    }
    const double determinant = block(m).determinant();
    if (std::fabs(determinant) < 0.5) continue;
    const Matrix<4, 4> inverse = m.inverseMatrix();
    // Adjugates up to 8, over a determinant of at least 0.5, in two roundings of 6e-8.
    ASSERT_LT((block(inverse) - block(m).inverse()).cwiseAbs().maxCoeff(), 3e-6);
    ASSERT_NO_FATAL_FAILURE(expectFrame(inverse, determinant));
    cases.count();
  }
}

}  // namespace
