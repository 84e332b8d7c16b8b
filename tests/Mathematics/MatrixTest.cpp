#include "Mathematics/Matrix.h"

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <array>
#include <cmath>
#include <random>
#include <sstream>
#include <utility>

#include "Kinematics/Draws.h"

namespace {

using Matrix4 = Matrix<4, 4>;
using Rows = std::array<std::array<double, 4>, 4>;

Matrix4 matrixOf(const Rows& rows) {
  Matrix4 m;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) m(i, j) = rows[i][j];
  }
  return m;
}

void expectElements(const Matrix4& m, const Rows& rows, double tolerance = 0) {
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      EXPECT_NEAR(m.get(i, j), rows[i][j], tolerance) << i << "," << j;
    }
  }
}

template <int N>
void expectIdentity(const Matrix<N, N>& m, double tolerance) {
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) {
      EXPECT_NEAR(m.get(i, j), i == j ? 1 : 0, tolerance) << i << "," << j;
    }
  }
}

constexpr Rows kCount = {{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}}};
constexpr Rows kIdentity = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

TEST(MatrixTest, NewMatrixIsZeroButForTheLastElement) {
  expectElements(Matrix4(), {{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 1}}});
  const Matrix<6, 1> column;
  for (int i = 0; i < 6; ++i) EXPECT_EQ(column.get(i, 0), i == 5 ? 1 : 0);
  EXPECT_EQ((Matrix<3, 3>()).get(2, 2), 1);
}

TEST(MatrixTest, NewMatrixIsCleanAfterADirtyOneWasReleased) {
  {
    Matrix4 dirty = matrixOf(kCount);
    EXPECT_EQ(dirty.get(0, 0), 1);
  }
  expectElements(Matrix4(), {{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 1}}});
}

TEST(MatrixTest, KnowsItsShape) {
  EXPECT_EQ((Matrix<6, 1>()).getN(), 6);
  EXPECT_EQ((Matrix<6, 1>()).getM(), 1);
}

TEST(MatrixTest, IdentityClearsEverythingElse) {
  Matrix4 m = matrixOf(kCount);
  m.identityMatrix();
  expectElements(m, kIdentity);
}

TEST(MatrixTest, SetElementsGoesByRows) {
  Matrix4 m;
  m.setElements(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
  expectElements(m, kCount);
}

TEST(MatrixTest, SetElementsNarrowsToFloat) {
  Matrix4 m;
  m.setElements(static_cast<float>(0.1), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  EXPECT_EQ(m.get(0, 0), static_cast<double>(0.1f));
}

// ------------------------------------------------------------------------------- shared elements

TEST(MatrixTest, CopySeesLaterWritesThroughTheSource) {
  Matrix4 source;
  const Matrix4 copy = source;
  source(1, 2) = 7;
  EXPECT_EQ(copy.get(1, 2), 7);
}

TEST(MatrixTest, SourceSeesWritesThroughTheCopy) {
  Matrix4 source;
  const auto writeTo = [](Matrix4 byValue) { byValue(1, 2) = 7; };
  writeTo(source);
  EXPECT_EQ(source.get(1, 2), 7);
}

TEST(MatrixTest, CopyOutlivesItsSource) {
  const auto make = [] {
    Matrix4 local;
    local(0, 0) = 42;
    return Matrix4(local);
  };
  const Matrix4 kept = make();
  const Matrix4 another;
  EXPECT_EQ(kept.get(0, 0), 42);
  EXPECT_EQ(another.get(0, 0), 0);
}

TEST(MatrixTest, MovedFromMatrixKeepsItsElements) {
  Matrix4 source = matrixOf(kCount);
  const Matrix4 target = std::move(source);
  EXPECT_EQ(source.get(0, 3), 4);
  EXPECT_EQ(target.get(0, 3), 4);
}

TEST(MatrixTest, AssignmentCopiesElements) {
  Matrix4 source = matrixOf(kCount);
  Matrix4 target;
  target = source;
  source(0, 0) = 100;
  EXPECT_EQ(target.get(0, 0), 1);
}

TEST(MatrixTest, AssignmentWritesIntoTheRowsThatAreOwnedAlready) {
  Matrix4 target;
  const Matrix4 sharer = target;
  target = matrixOf(kCount);
  expectElements(sharer, kCount);
}

TEST(MatrixTest, AssignmentReturnsASharerOfTheLeftSide) {
  Matrix4 target;
  (target = matrixOf(kCount))(0, 0) = 50;
  EXPECT_EQ(target.get(0, 0), 50);
}

TEST(MatrixTest, AssigningToItselfChangesNothing) {
  Matrix4 m = matrixOf(kCount);
  const Matrix4& alias = m;
  m = alias;
  expectElements(m, kCount);
}

TEST(MatrixTest, AssigningOperatorsWriteThroughToSharers) {
  Matrix4 m = matrixOf(kCount);
  const Matrix4 sharer = m;
  m /= 2;
  EXPECT_EQ(sharer.get(0, 1), 1);
  m += m;
  EXPECT_EQ(sharer.get(0, 1), 2);
  m -= m;
  EXPECT_EQ(sharer.get(0, 1), 0);
}

// ------------------------------------------------------------------------------------- operators

TEST(MatrixTest, ElementwiseOperatorsMakeNewMatrices) {
  const Matrix4 a = matrixOf(kCount);
  const Matrix4 b = matrixOf(kIdentity);
  expectElements(a + b, {{{2, 2, 3, 4}, {5, 7, 7, 8}, {9, 10, 12, 12}, {13, 14, 15, 17}}});
  expectElements(a - b, {{{0, 2, 3, 4}, {5, 5, 7, 8}, {9, 10, 10, 12}, {13, 14, 15, 15}}});
  expectElements(a * 2.0f, {{{2, 4, 6, 8}, {10, 12, 14, 16}, {18, 20, 22, 24}, {26, 28, 30, 32}}});
  expectElements(a / 2.0f,
                 {{{0.5, 1, 1.5, 2}, {2.5, 3, 3.5, 4}, {4.5, 5, 5.5, 6}, {6.5, 7, 7.5, 8}}});
  expectElements(a, kCount);
  expectElements(b, kIdentity);
}

TEST(MatrixTest, AssigningOperatorsAreElementwise) {
  Matrix4 m = matrixOf(kCount);
  m += matrixOf(kIdentity);
  EXPECT_EQ(m.get(1, 1), 7);
  m -= matrixOf(kIdentity);
  expectElements(m, kCount);
  m /= 4;
  EXPECT_EQ(m.get(3, 3), 4);
}

TEST(MatrixTest, ProductGoesRowsByColumns) {
  // clang-format off
  const Matrix4 a = matrixOf({{{1, 2, 0, 1}, {0, 1, 3, 0}, {2, 0, 1, 1}, {0, 0, 0, 1}}});
  const Matrix4 b = matrixOf({{{2, 0, 1, 0}, {1, 1, 0, 2}, {0, 3, 1, 0}, {0, 0, 0, 1}}});
  expectElements(a * b,      {{{4, 2, 1, 5}, {1, 10, 3, 2}, {4, 3, 3, 1}, {0, 0, 0, 1}}});
  // clang-format on
}

TEST(MatrixTest, ProductOfUnequalShapes) {
  Matrix<6, 6> a;
  Matrix<6, 1> x;
  for (int i = 0; i < 6; ++i) {
    x(i, 0) = i + 1;
    for (int j = 0; j < 6; ++j) a(i, j) = i == j ? 2 : 0;
  }
  const Matrix<6, 1> product = a * x;
  for (int i = 0; i < 6; ++i) EXPECT_EQ(product.get(i, 0), 2 * (i + 1));
}

TEST(MatrixTest, ProductIsSummedInSinglePrecision) {
  Matrix4 a;
  Matrix4 b;
  b.identityMatrix();
  a(0, 0) = 1 + 1e-12;  // kept by a sum in double
  EXPECT_EQ((a * b).get(0, 0), 1);
  // Rounded at every addition: each 1 vanishes beside 2^24, while their sum would not.
  a(1, 0) = 16777216;
  a(1, 1) = 1;
  a(1, 2) = 1;
  for (int i = 0; i < 3; ++i) b(i, 0) = 1;
  EXPECT_EQ((a * b).get(1, 0), 16777216);
}

TEST(MatrixTest, TimesVectorRotatesOnly) {
  Matrix4 moved;
  moved.translate(1, 2, 3);
  EXPECT_EQ(moved * Vector(4, 5, 6), Vector(4, 5, 6));
  EXPECT_EQ(matrixOf(kCount) * Vector(1, 10, 100), Vector(321, 765, 1209));
}

TEST(MatrixTest, PrintsRowsOfTabbedElements) {
  Matrix4 m = matrixOf(kCount);
  m(0, 0) = 1.5;
  std::ostringstream out;
  out << m;
  EXPECT_EQ(out.str(), "1.5\t2\t3\t4\t\n5\t6\t7\t8\t\n9\t10\t11\t12\t\n13\t14\t15\t16\t\n");
}

// ------------------------------------------------------------------- rotations and translations

// With 3.14159265 for pi a right angle misses by 1.8e-9.
constexpr double kRightAngle = 2e-9;

TEST(MatrixTest, RotationByEachAxisIsRightHanded) {
  Matrix4 x;
  x.rotationByX(90);
  expectElements(x, {{{1, 0, 0, 0}, {0, 0, -1, 0}, {0, 1, 0, 0}, {0, 0, 0, 1}}}, kRightAngle);
  Matrix4 y;
  y.rotationByY(90);
  expectElements(y, {{{0, 0, 1, 0}, {0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 0, 1}}}, kRightAngle);
  Matrix4 z;
  z.rotationByZ(90);
  expectElements(z, {{{0, -1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}, kRightAngle);
}

TEST(MatrixTest, RotationUsesItsOwnPi) {
  Matrix4 m;
  m.rotationByX(90);
  EXPECT_EQ(m.get(1, 1), std::cos(90 * 3.14159265 / 180.0));
  EXPECT_GT(m.get(1, 1), 1e-9);
  EXPECT_EQ(m.get(2, 1), std::sin(90 * 3.14159265 / 180.0));
}

constexpr double kOld = 9;

Matrix4 filledWith(double value) {
  Matrix4 m;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) m(i, j) = value;
  }
  return m;
}

TEST(MatrixTest, RotationsWriteOnlyTheirOwnElements) {
  Matrix4 x = filledWith(kOld);
  x.rotationByX(0);
  expectElements(x, {{{1, 9, 9, 9}, {9, 1, 0, 9}, {9, 0, 1, 9}, {9, 9, 9, 1}}});
  Matrix4 y = filledWith(kOld);
  y.rotationByY(0);
  expectElements(y, {{{1, 9, 0, 9}, {9, 1, 9, 9}, {0, 9, 1, 9}, {9, 9, 9, 9}}});
  Matrix4 z = filledWith(kOld);
  z.rotationByZ(0);
  expectElements(z, {{{1, 0, 9, 9}, {0, 1, 9, 9}, {9, 9, 1, 9}, {9, 9, 9, 1}}});
}

TEST(MatrixTest, TranslateWritesDiagonalAndLastColumn) {
  Matrix4 m = filledWith(kOld);
  m.translate(2, 3, 4);
  expectElements(m, {{{1, 9, 9, 2}, {9, 1, 9, 3}, {9, 9, 1, 4}, {9, 9, 9, 1}}});
}

TEST(MatrixTest, StepsMultiplyFromTheLeft) {
  // First moved along x, then turned about z: the translation turns with it.
  Matrix4 m;
  m.identityMatrix();
  m.trans(1, 0, 0);
  m.rotateZ(90);
  expectElements(m, {{{0, -1, 0, 0}, {1, 0, 0, 1}, {0, 0, 1, 0}, {0, 0, 0, 1}}}, 1e-7);
  // The other way round it does not.
  Matrix4 n;
  n.identityMatrix();
  n.rotateZ(90);
  n.trans(1, 0, 0);
  expectElements(n, {{{0, -1, 0, 1}, {1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}, 1e-7);
}

TEST(MatrixTest, RotateXYZPreMultiplyTheirRotation) {
  const auto expectStep = [](void (Matrix4::*rotate)(double), void (Matrix4::*rotationBy)(double)) {
    Matrix4 stepped = matrixOf(kCount);
    (stepped.*rotate)(25);
    Matrix4 r;
    (r.*rotationBy)(25);
    const Matrix4 product = r * matrixOf(kCount);
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 4; ++j) EXPECT_EQ(stepped.get(i, j), product.get(i, j));
    }
  };
  expectStep(&Matrix4::rotateX, &Matrix4::rotationByX);
  expectStep(&Matrix4::rotateY, &Matrix4::rotationByY);
  expectStep(&Matrix4::rotateZ, &Matrix4::rotationByZ);
}

TEST(MatrixTest, StepsWriteThroughToSharers) {
  Matrix4 m;
  m.identityMatrix();
  const Matrix4 sharer = m;
  m.trans(1, 2, 3);
  EXPECT_EQ(sharer.get(1, 3), 2);
}

// -------------------------------------------------------------------------------------- inverses

Matrix4 randomTransform(std::mt19937& random) {
  std::uniform_real_distribution<double> angle(-180, 180);
  std::uniform_real_distribution<double> offset(-2, 2);
  Matrix4 m;
  m.identityMatrix();
  m.rotateX(angle(random));
  m.rotateY(angle(random));
  m.rotateZ(angle(random));
  m.trans(offset(random), offset(random), offset(random));
  return m;
}

TEST(MatrixTest, DeterminantIsThatOfTheUpperLeftBlock) {
  const Matrix4 m = matrixOf({{{2, -1, 0, 9}, {3, 5, 4, 9}, {1, 7, -6, 9}, {9, 9, 9, 9}}});
  // 2(5(-6) - 4*7) - (-1)(3(-6) - 4*1) + 0
  EXPECT_EQ(~m, -138);
  EXPECT_EQ(~matrixOf(kCount), 0);
}

TEST(MatrixTest, InverseDropsTheTranslation) {
  Matrix4 m;
  m.translate(1, 2, 3);
  expectElements(m.inverseMatrix(), kIdentity);
}

TEST(MatrixTest, InverseIsAdjugateOverDeterminant) {
  // The determinant 4 is a power of two, so that the quotients are exact.
  const Matrix4 m = matrixOf({{{1, 2, 0, 7}, {0, 1, 3, 7}, {1, 0, -2, 7}, {7, 7, 7, 7}}});
  ASSERT_EQ(~m, 4);
  expectElements(
      m.inverseMatrix(),
      {{{-0.5, 1, 1.5, 0}, {0.75, -0.5, -0.75, 0}, {-0.25, 0.5, 0.25, 0}, {0, 0, 0, 0.25}}});
}

TEST(MatrixTest, InverseNarrowsTheAdjugateAndTheReciprocalOfTheDeterminant) {
  // A third in single precision, times adjugates of 1 and 3 in double.
  const double third = static_cast<double>(1.0f / 3);
  ASSERT_NE(third, 1.0 / 3);
  const Matrix4 m = matrixOf({{{3, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}});
  expectElements(
      m.inverseMatrix(),
      {{{third, 0, 0, 0}, {0, 3 * third, 0, 0}, {0, 0, 3 * third, 0}, {0, 0, 0, third}}});
  // What a float cannot hold beside 1 is lost from each adjugate.
  const Matrix4 n = matrixOf({{{1, 0, 0, 0}, {0, 1 + 1e-12, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}});
  expectElements(n.inverseMatrix(), kIdentity);
}

TEST(MatrixTest, InverseOfARotationIsItsTranspose) {
  std::mt19937 random(4);
  for (int n = 0; n < 1000; ++n) {
    const Matrix4 m = randomTransform(random);
    const Matrix4 inverse = m.inverseMatrix();
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) EXPECT_NEAR(inverse.get(i, j), m.get(j, i), 2e-6);
      EXPECT_EQ(inverse.get(i, 3), 0);
      EXPECT_EQ(inverse.get(3, i), 0);
    }
    EXPECT_NEAR(inverse.get(3, 3), 1, 1e-6);
  }
}

TEST(MatrixTest, InverseOfASingularBlockIsNotFinite) {
  const Matrix4 inverse = matrixOf(kCount).inverseMatrix();
  EXPECT_TRUE(std::isinf(inverse.get(0, 0)));
  EXPECT_TRUE(std::isinf(inverse.get(3, 3)));
}

TEST(MatrixTest, InverseLeavesTheMatrix) {
  const Matrix4 m = matrixOf(kCount);
  m.inverseMatrix();
  m.newinverse();
  expectElements(m, kCount);
}

TEST(MatrixTest, NewInverseKeepsTheTranslation) {
  Matrix4 m;
  m.translate(1, 2, 3);
  expectElements(m.newinverse(), {{{1, 0, 0, -1}, {0, 1, 0, -2}, {0, 0, 1, -3}, {0, 0, 0, 1}}});
}

TEST(MatrixTest, NewInverseTimesTheMatrixIsTheIdentity) {
  std::mt19937 random(5);
  for (int n = 0; n < 1000; ++n) {
    const Matrix4 m = randomTransform(random);
    expectIdentity<4>(m * m.newinverse(), 2e-6);
    expectIdentity<4>(m.newinverse() * m, 2e-6);
  }
}

TEST(MatrixTest, NewInverseServesEverySquareShape) {
  std::mt19937 random(6);
  std::uniform_real_distribution<double> element(-1, 1);
  for (int n = 0; n < 100; ++n) {
    Matrix<6, 6> six;
    Matrix<3, 3> three;
    for (int i = 0; i < 6; ++i) {
      for (int j = 0; j < 6; ++j) {
        six(i, j) = element(random) + (i == j ? 6 : 0);
        if (i < 3 && j < 3) three(i, j) = six(i, j);
      }
    }
    expectIdentity<6>(six * six.newinverse(), 1e-6);
    expectIdentity<3>(three * three.newinverse(), 1e-6);
  }
}

TEST(MatrixTest, NewInverseTakesALowerRowWhereAPivotIsZero) {
  const Matrix4 m = matrixOf({{{0, 0, 2, 0}, {0, 4, 0, 0}, {1, 0, 0, 0}, {0, 0, 0, 1}}});
  expectElements(m.newinverse(), {{{0, 0, 1, 0}, {0, 0.25, 0, 0}, {0.5, 0, 0, 0}, {0, 0, 0, 1}}});
}

TEST(MatrixTest, PowerIsRepeatedMultiplication) {
  Matrix4 m = matrixOf({{{1, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 2, 0}, {0, 0, 0, 1}}});
  // The upper left block holds Fibonacci numbers.
  const int fibonacci[] = {0, 1, 1, 2, 3, 5, 8, 13, 21, 34, 55, 89, 144, 233};
  for (int n = 1; n <= 12; ++n) {
    const Matrix4 power = m ^ n;
    EXPECT_EQ(power.get(0, 0), fibonacci[n + 1]) << n;
    EXPECT_EQ(power.get(0, 1), fibonacci[n]) << n;
    EXPECT_EQ(power.get(2, 2), std::pow(2, n)) << n;
    EXPECT_EQ(power.get(3, 3), 1) << n;
  }
  EXPECT_EQ(m.get(0, 0), 1);
  EXPECT_EQ(m.get(2, 2), 2);
}

TEST(MatrixTest, PowerOfASixBySixMatrix) {
  Matrix<6, 6> m;
  for (int i = 0; i < 6; ++i) m(i, i) = i;
  const Matrix<6, 6> power = m ^ 5;
  for (int i = 0; i < 6; ++i) EXPECT_EQ(power.get(i, i), std::pow(i, 5));
}

// --- inverseMatrix against an independent inverse of the upper left block ---

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

TEST(MatrixInverseTest, OfARotationIsThatOfEigenAndItsTranspose) {
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

TEST(MatrixInverseTest, OfAnyRegularBlockIsThatOfEigen) {
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
