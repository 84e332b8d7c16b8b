#include "Kinematics/KMat.h"

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include "Kinematics/Draws.h"

namespace {

using KMath::KMat::ATMatrix;
using KMath::KMat::DataContainer;
using KMath::KMat::invert_square_matrix;
using KMath::KMat::MatrixIndexOutOfBoundsException;
using KMath::KMat::RefCounted;
using KMath::KMat::SingularMatrixInvertionException;
using KMath::KMat::transformations;

using Square = KMath::KMat::GenMatrix<double, 3, 3>;
using Column = KMath::KMat::GenMatrix<double, 3, 1>;
using Transform = ATMatrix<double, 4>;

constexpr double kPi = 3.141592653589793;
constexpr int kCases = 10000;
const char* const kIndexText =
    "BaseMatrix.get() : MatrixIndexOutOfBoundsException : attempted to access an invalid element";
const char* const kSingularText =
    "KMat::invert_square_matrixGenMatrix<A,3,3>: SingularMatrixInvertionException : attempted to "
    "invert a singular matrix";

template <typename Exception, typename Action>
std::string textOf(Action action) {
  try {
    action();
  } catch (const Exception& exception) {
    return exception.what();
  }
  return "nothing was thrown";
}

Square square(std::array<double, 9> rows) {
  Square m;
  for (int i = 0; i < 9; ++i) m.get(i / 3, i % 3) = rows[i];
  return m;
}

Column column(double a, double b, double c) {
  Column v;
  v.get(0, 0) = a;
  v.get(1, 0) = b;
  v.get(2, 0) = c;
  return v;
}

Transform transform(double px, double py, double pz, double rx, double ry, double rz) {
  Transform t;
  transformations::makeTransformation(t, px, py, pz, rx, ry, rz);
  return t;
}

Transform translation(double x, double y, double z) {
  Transform t;
  transformations::makeTranslation(t, x, y, z);
  return t;
}

Eigen::Matrix3d eigen(const Square& m) {
  Eigen::Matrix3d e;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) e(i, j) = m.read(i, j);
  }
  return e;
}

Eigen::Matrix4d eigen(const Transform& t) {
  Eigen::Matrix4d e;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) e(i, j) = t.read(i, j);
  }
  return e;
}

Eigen::Matrix3d rx(double a) {
  return Eigen::AngleAxisd(a, Eigen::Vector3d::UnitX()).toRotationMatrix();
}
Eigen::Matrix3d ry(double a) {
  return Eigen::AngleAxisd(a, Eigen::Vector3d::UnitY()).toRotationMatrix();
}
Eigen::Matrix3d rz(double a) {
  return Eigen::AngleAxisd(a, Eigen::Vector3d::UnitZ()).toRotationMatrix();
}

Eigen::Matrix4d homogeneous(const Eigen::Matrix3d& r, const Eigen::Vector3d& p) {
  Eigen::Matrix4d m = Eigen::Matrix4d::Identity();
  m.topLeftCorner<3, 3>() = r;
  m.topRightCorner<3, 1>() = p;
  return m;
}

double difference(const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
  return (a - b).cwiseAbs().maxCoeff();
}

// A set flag must tell the truth.
void expectTrueFlags(const Transform& t) {
  EXPECT_TRUE(!t.AisZero || eigen(t.A) == Eigen::Matrix3d::Zero());
  EXPECT_TRUE(!t.AisIdentity || eigen(t.A) == Eigen::Matrix3d::Identity());
  EXPECT_TRUE(!t.BisZero || eigen(t).topRightCorner(3, 1) == Eigen::Vector3d::Zero());
}

// Storage and handles.

TEST(KMatStorageTest, DataContainerIsPlainRowMajorStorage) {
  DataContainer<double, 2, 3> d;
  d.zero();
  d.data(1, 2) = 7;
  EXPECT_EQ(d.mem[1][2], 7);
  EXPECT_EQ(d.data(1)[2], 7);
  EXPECT_EQ(d.data(1), &d.data(1, 0));
  EXPECT_EQ(&d.data(1, 0) - &d.data(0, 0), 3);
  EXPECT_EQ(d.data(0, 0), 0);
}

TEST(KMatStorageTest, CountsOwners) {
  RefCounted<DataContainer<double, 1, 1>> r;
  r.counts = 1;
  EXPECT_TRUE(r.isExclusive());
  r.inc();
  EXPECT_EQ(r.counts, 2u);
  EXPECT_FALSE(r.isExclusive());
  r.dec();
  EXPECT_TRUE(r.isExclusive());
}

TEST(KMatHandleTest, CopySharesAndCounts) {
  const Square m = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_EQ(m.h->counts, 1u);
  {
    const Square copy = m;
    EXPECT_EQ(copy.h, m.h);
    EXPECT_EQ(m.h->counts, 2u);
  }
  EXPECT_EQ(m.h->counts, 1u);
}

TEST(KMatHandleTest, AssignmentReleasesTheOldStorageAndSharesTheNew) {
  Square a = square({1, 0, 0, 0, 1, 0, 0, 0, 1});
  const Square b = square({2, 0, 0, 0, 2, 0, 0, 0, 2});
  const Square keepsOld = a;
  a = b;
  EXPECT_EQ(a.h, b.h);
  EXPECT_EQ(b.h->counts, 2u);
  EXPECT_EQ(keepsOld.h->counts, 1u);
  EXPECT_EQ(keepsOld.read(0, 0), 1);
}

TEST(KMatHandleTest, AssignmentToItselfAndToAnotherOwnerOfTheSameStorageChangesNothing) {
  Square a = square({1, 0, 0, 0, 1, 0, 0, 0, 1});
  Square b = a;
  a = b;
  EXPECT_EQ(a.h->counts, 2u);
  Square& same = a;
  a = same;
  EXPECT_EQ(a.h->counts, 2u);
  EXPECT_EQ(a.read(2, 2), 1);
}

TEST(KMatHandleTest, CleanHandleReleasesAndReadsAsZeros) {
  Square a = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const Square b = a;
  a.cleanHandle();
  EXPECT_EQ(a.h, nullptr);
  EXPECT_EQ(a.read(1, 1), 0);
  EXPECT_EQ(b.h->counts, 1u);
  EXPECT_EQ(b.read(1, 1), 5);
}

TEST(KMatHandleTest, GetHandleTellsWhetherTheStorageIsNew) {
  Square a;
  EXPECT_TRUE(a.getHandle());
  EXPECT_EQ(a.h->counts, 1u);
  EXPECT_FALSE(a.getHandle()) << "exclusive already";
  a.zero();
  const Square b = a;
  EXPECT_FALSE(a.getHandle()) << "a private copy is not empty";
  EXPECT_NE(a.h, b.h);
  EXPECT_EQ(a.h->counts, 1u);
  EXPECT_EQ(b.h->counts, 1u);
}

TEST(KMatHandleTest, StorageThatWasGivenUpServesAgain) {
  Square a = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const void* storage = a.h;
  a.cleanHandle();
  Square b;
  b.get(0, 0) = 1;
  EXPECT_EQ(b.h, storage);
  EXPECT_EQ(b.read(1, 1), 0) << "nothing of the former owner shows through";
}

// Elements.

TEST(KMatElementsTest, WriteToACopyLeavesTheSourceUnchanged) {
  const Square source = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  Square copy = source;
  copy.get(0, 0) = 42;
  EXPECT_EQ(source.read(0, 0), 1);
  EXPECT_EQ(copy.read(0, 0), 42);
  EXPECT_EQ(copy.read(2, 2), 9);
  EXPECT_EQ(source.h->counts, 1u);
  EXPECT_EQ(copy.h->counts, 1u);
}

TEST(KMatElementsTest, FirstWriteLeavesTheOtherElementsZero) {
  Square m;
  m.get(1, 2) = 5;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_EQ(m.read(i, j), i == 1 && j == 2 ? 5 : 0);
  }
}

TEST(KMatElementsTest, ReadOutsideThrowsOnAWrittenMatrix) {
  const Square m = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  for (const auto& [i, j] :
       std::vector<std::pair<int, int>>{{3, 0}, {0, 3}, {-1, 0}, {0, -1}, {1000000, 1000000}}) {
    EXPECT_EQ(textOf<MatrixIndexOutOfBoundsException>([&, i = i, j = j] { m.read(i, j); }),
              kIndexText)
        << i << ' ' << j;
  }
}

TEST(KMatElementsTest, ReadOfANeverWrittenMatrixIsZeroWhateverTheIndices) {
  const Square m;
  EXPECT_EQ(m.read(0, 0), 0);
  EXPECT_EQ(m.read(3, 0), 0);
  EXPECT_EQ(m.read(-1, 7), 0);
}

TEST(KMatElementsTest, GetOutsideThrowsOnAnyMatrix) {
  Square written = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  Square never;
  Column v;
  EXPECT_EQ(textOf<MatrixIndexOutOfBoundsException>([&] { written.get(3, 0); }), kIndexText);
  EXPECT_EQ(textOf<MatrixIndexOutOfBoundsException>([&] { written.get(0, -1); }), kIndexText);
  EXPECT_EQ(textOf<MatrixIndexOutOfBoundsException>([&] { never.get(0, 3); }), kIndexText);
  EXPECT_EQ(textOf<MatrixIndexOutOfBoundsException>([&] { v.get(0, 1); }), kIndexText);
}

TEST(KMatElementsTest, ExceptionsAreRuntimeErrorsThatAddTheirTextToTheOrigin) {
  static_assert(std::is_base_of_v<std::runtime_error, MatrixIndexOutOfBoundsException>);
  static_assert(std::is_base_of_v<std::runtime_error, SingularMatrixInvertionException>);
  EXPECT_STREQ(MatrixIndexOutOfBoundsException("here").what(),
               "here: MatrixIndexOutOfBoundsException : attempted to access an invalid element");
  EXPECT_STREQ(SingularMatrixInvertionException("there").what(),
               "there: SingularMatrixInvertionException : attempted to invert a singular matrix");
}

TEST(KMatElementsTest, ProxyReadsWithoutCopyingAndWritesIntoAPrivateCopy) {
  Square m = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const Square shares = m;
  const double read = m(1, 1);
  EXPECT_EQ(read, 5);
  EXPECT_EQ(m.h, shares.h) << "reading through the proxy shares on";
  m(1, 1) = 50;
  EXPECT_NE(m.h, shares.h);
  EXPECT_EQ(m.read(1, 1), 50);
  EXPECT_EQ(shares.read(1, 1), 5);
  m(0, 0) = m(1, 1);
  EXPECT_EQ(m.read(0, 0), 50) << "assigning a proxy to a proxy copies the value";
  EXPECT_THROW(m(3, 0) = 1, MatrixIndexOutOfBoundsException);
}

TEST(KMatElementsTest, ColumnHasOneIndex) {
  Column v = column(1, 2, 3);
  const Column& reader = v;
  EXPECT_EQ(reader(2), 3);
  v(2) = 30;
  EXPECT_EQ(reader(2), 30);
  EXPECT_EQ(static_cast<double>(v(0)), 1);
  EXPECT_THROW(reader(3), MatrixIndexOutOfBoundsException);
}

// Sums and products with a number.

TEST(KMatSumsTest, AddAndPlusAssignWorkElementwise) {
  Square a = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const Square b = square({10, 20, 30, 40, 50, 60, 70, 80, 90});
  a.add(b);
  EXPECT_EQ(a.read(0, 0), 11);
  EXPECT_EQ(a.read(2, 1), 88);
  a += b;
  EXPECT_EQ(a.read(2, 1), 168);
  a -= b;
  EXPECT_EQ(a.read(2, 1), 88);
  EXPECT_EQ(b.read(2, 1), 80);
}

TEST(KMatSumsTest, AddLeavesTheMatrixUnchangedIfEitherSideWasNeverWritten) {
  Square written = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const void* storage = written.h;
  Square never;
  written.add(never);
  EXPECT_EQ(written.h, storage);
  EXPECT_EQ(written.read(0, 1), 2);
  never.add(written);
  EXPECT_EQ(never.h, nullptr) << "the sum is dropped";
}

TEST(KMatSumsTest, AddToItselfDoublesAndKeepsOtherOwners) {
  Square a = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const Square b = a;
  a.add(a);
  EXPECT_EQ(a.read(2, 2), 18);
  EXPECT_EQ(b.read(2, 2), 9);
  a.sub(a);
  EXPECT_EQ(a.read(2, 2), 0);
}

TEST(KMatSumsTest, ScalarMultScalesAPrivateCopyAndKeepsANeverWrittenMatrix) {
  Column a = column(1, -2, 3);
  const Column b = a;
  a.scalar_mult(-2);
  EXPECT_EQ(a.read(0, 0), -2);
  EXPECT_EQ(a.read(1, 0), 4);
  EXPECT_EQ(b.read(1, 0), -2);
  Column never;
  never.scalar_mult(5);
  EXPECT_EQ(never.h, nullptr);
}

// Square matrices.

TEST(KMatInverseTest, ZeroMatrixIsSingular) {
  Square never;
  EXPECT_EQ(textOf<SingularMatrixInvertionException>([&] { invert_square_matrix(never); }),
            kSingularText);
  Square zeros;
  zeros.zero();
  EXPECT_EQ(textOf<SingularMatrixInvertionException>([&] { zeros.fast_invert(); }), kSingularText);
}

TEST(KMatInverseTest, ReflectionCountsAsSingular) {
  Square m = square({1, 0, 0, 0, 1, 0, 0, 0, -1});
  EXPECT_EQ(textOf<SingularMatrixInvertionException>([&] { m.fast_invert(); }), kSingularText);
  EXPECT_EQ(m.read(2, 2), -1) << "stays as it was";
}

TEST(KMatInverseTest, DeterminantMustExceedTheBound) {
  const double bound = 2.220446049250313e-16;
  Square at = square({bound, 0, 0, 0, 1, 0, 0, 0, 1});
  EXPECT_THROW(at.fast_invert(), SingularMatrixInvertionException);
  Square above = square({2 * bound, 0, 0, 0, 1, 0, 0, 0, 1});
  above.fast_invert();
  EXPECT_DOUBLE_EQ(above.read(0, 0), 1 / (2 * bound));
  Square notANumber = square({std::nan(""), 0, 0, 0, 1, 0, 0, 0, 1});
  EXPECT_THROW(notANumber.fast_invert(), SingularMatrixInvertionException);
}

TEST(KMatInverseTest, HandWorkedExample) {
  // det = 2 * 3 * 4 - 1 * 0 + ... = 24 for this upper triangular matrix.
  Square m = square({2, 1, 1, 0, 3, 1, 0, 0, 4});
  m.fast_invert();
  const std::array<double, 9> expected = {0.5,       -1.0 / 6, -2.0 / 24, 0,   1.0 / 3,
                                          -1.0 / 12, 0,        0,         0.25};
  for (int i = 0; i < 9; ++i) EXPECT_DOUBLE_EQ(m.read(i / 3, i % 3), expected[i]) << i;
}

TEST(KMatInverseTest, AgreesWithEigenAndKeepsOtherOwners) {
  CaseCount cases("inverse of a 3x3 matrix", kCases);
  Draws draws(1);
  for (int inverted = 0; inverted < kCases;) {
    Square m;
    for (int i = 0; i < 9; ++i) m.get(i / 3, i % 3) = draws.between(-3, 3);
    const Eigen::Matrix3d e = eigen(m);
    if (std::fabs(e.determinant()) < 0.1) continue;
    const Square original = m;
    if (e.determinant() < 0) {
      EXPECT_THROW(m.fast_invert(), SingularMatrixInvertionException);
      continue;
    }
    m.fast_invert();
    // Elements up to 3 and determinants of at least 0.1: cancellation costs three digits at most.
    ASSERT_LT(difference(eigen(m), e.inverse()), 1e-10);
    ASSERT_EQ(eigen(original), e);
    cases.count();
    ++inverted;
  }
}

TEST(KMatTranspositionTest, SwapsInPlaceInAPrivateCopy) {
  Square m = square({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const Square source = m;
  m.fast_transp();
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_EQ(m.read(i, j), source.read(j, i));
  }
  EXPECT_EQ(source.read(0, 1), 2);
  Square never;
  never.fast_transp();
  EXPECT_EQ(never.h, nullptr);
}

// Copy-on-write as a whole: a crowd of matrices that share storage in every way must behave like
// plain values.
TEST(KMatCopyOnWriteTest, NeverWritesThrough) {
  constexpr int kCrowd = 8;
  CaseCount cases("operation on shared matrices", kCases);
  Draws draws(2);
  std::array<Square, kCrowd> crowd;
  std::array<Eigen::Matrix3d, kCrowd> model;
  std::array<bool, kCrowd> written = {};
  for (auto& m : model) m.setZero();
  for (int n = 0; n < kCases; ++n) {
    const int a = draws.oneOf(kCrowd), b = draws.oneOf(kCrowd);
    const int i = draws.oneOf(3), j = draws.oneOf(3);
    const double value = draws.between(-1, 1);
    switch (draws.oneOf(8)) {
      case 0:
      case 1:
        crowd[a] = crowd[b];
        model[a] = Eigen::Matrix3d(model[b]);
        written[a] = written[b];
        break;
      case 2:
        crowd[a].get(i, j) = value;
        model[a](i, j) = value;
        written[a] = true;
        break;
      case 3:
        crowd[a](i, j) = crowd[b](j, i);
        model[a](i, j) = model[b](j, i);
        written[a] = true;
        break;
      case 4:
        crowd[a].add(crowd[b]);
        if (written[a] && written[b]) model[a] += Eigen::Matrix3d(model[b]);
        break;
      case 5:
        crowd[a].scalar_mult(value);
        model[a] *= value;
        break;
      case 6:
        crowd[a].fast_transp();
        model[a].transposeInPlace();
        break;
      case 7:
        if (draws.oneOf(4) == 0) {
          crowd[a].cleanHandle();
          model[a].setZero();
          written[a] = false;
        }
        break;
    }
    for (int k = 0; k < kCrowd; ++k) {
      ASSERT_EQ(eigen(crowd[k]), model[k]) << "matrix " << k << " after operation " << n;
      ASSERT_EQ(crowd[k].h != nullptr, written[k]);
    }
    cases.count();
  }
}

// Transforms.

TEST(KMatTransformTest, NewTransformHasNoStorageAndNoFlag) {
  const Transform t;
  EXPECT_EQ(t.A.h, nullptr);
  EXPECT_EQ(t.B.h, nullptr);
  EXPECT_FALSE(t.AisZero);
  EXPECT_FALSE(t.AisIdentity);
  EXPECT_FALSE(t.BisZero);
}

TEST(KMatTransformTest, CopySharesBothBlocksAndTakesTheFlags) {
  const Transform t = translation(1, 2, 3);
  const Transform copy = t;
  Transform assigned;
  assigned = t;
  for (const Transform* other : {&copy, static_cast<const Transform*>(&assigned)}) {
    EXPECT_EQ(other->A.h, t.A.h);
    EXPECT_EQ(other->B.h, t.B.h);
    EXPECT_TRUE(other->AisIdentity);
    EXPECT_FALSE(other->AisZero);
    EXPECT_FALSE(other->BisZero);
  }
  EXPECT_EQ(t.A.h->counts, 3u);
}

TEST(KMatTransformTest, IdentityAndZero) {
  Transform t = transform(1, 2, 3, 0.1, 0.2, 0.3);
  t.identity();
  EXPECT_EQ(eigen(t), Eigen::Matrix4d::Identity().eval());
  EXPECT_TRUE(t.AisIdentity);
  EXPECT_FALSE(t.AisZero);
  EXPECT_TRUE(t.BisZero);

  t.zero();
  Eigen::Matrix4d corner = Eigen::Matrix4d::Zero();
  corner(3, 3) = 1;
  EXPECT_EQ(eigen(t), corner);
  EXPECT_FALSE(t.AisIdentity);
  EXPECT_TRUE(t.AisZero);
  EXPECT_TRUE(t.BisZero);
}

TEST(KMatTransformTest, ElementsOfTheImplicitFourByFourForm) {
  Transform t = transform(1, 2, 3, 0, 0, kPi / 2);
  EXPECT_EQ(t.read(0, 3), 1);
  EXPECT_EQ(t.read(2, 3), 3);
  EXPECT_EQ(t.read(1, 0), 1);
  EXPECT_EQ(t.read(3, 0), 0);
  EXPECT_EQ(t.read(3, 2), 0);
  EXPECT_EQ(t.read(3, 3), 1);
  EXPECT_THROW(t.read(4, 0), MatrixIndexOutOfBoundsException);
  EXPECT_THROW(t.read(0, 4), MatrixIndexOutOfBoundsException);
  EXPECT_THROW(t.read(3, 4), MatrixIndexOutOfBoundsException);
  EXPECT_THROW(t.read(-1, 0), MatrixIndexOutOfBoundsException);
  t(1, 3) = 20;
  t(2, 2) = 5;
  const Transform& reader = t;
  EXPECT_EQ(reader(1, 3), 20);
  EXPECT_EQ(reader(2, 2), 5);
  EXPECT_THROW(t.get(3, 0), MatrixIndexOutOfBoundsException) << "the last row is not stored";
  EXPECT_THROW(t.get(3, 3), MatrixIndexOutOfBoundsException);
}

TEST(KMatTransformTest, WritingAnElementDropsTheFlagsOfItsBlock) {
  Transform t;
  t.identity();
  t.get(0, 3) = 4;
  EXPECT_FALSE(t.BisZero);
  EXPECT_TRUE(t.AisIdentity);
  t.get(0, 1) = 4;
  EXPECT_FALSE(t.AisIdentity);
  t.zero();
  t(2, 2) = 1;
  EXPECT_FALSE(t.AisZero);
  EXPECT_TRUE(t.BisZero);
}

TEST(KMatTransformTest, PartsAndPoints) {
  const Transform t = transform(1, 2, 3, 0, 0, kPi / 2);
  EXPECT_EQ(t.get_translation().h, t.B.h) << "shared, not copied";
  EXPECT_EQ(t.get_rotation().h, t.A.h);
  Column v = column(1, 0, 0);
  Column w;
  t.transform(v, w);
  EXPECT_NEAR(w.read(0, 0), 1, 1e-15);
  EXPECT_NEAR(w.read(1, 0), 3, 1e-15);
  EXPECT_NEAR(w.read(2, 0), 3, 1e-15);
  t.transform(v, v);
  EXPECT_EQ(v.read(1, 0), w.read(1, 0));
}

TEST(KMatTransformTest, AddAndSubWorkOnBothBlocks) {
  Transform t = translation(1, 2, 3);
  const Transform other = translation(10, 20, 30);
  t.add(other);
  EXPECT_EQ(t.read(0, 0), 2);
  EXPECT_EQ(t.read(1, 3), 22);
  EXPECT_FALSE(t.AisIdentity);
  t.sub(other);
  EXPECT_EQ(t.read(0, 0), 1);
  EXPECT_EQ(t.read(1, 3), 2);
  EXPECT_TRUE(t.AisIdentity);
  EXPECT_EQ(other.read(1, 3), 20);
}

TEST(KMatTransformTest, CheckRecomputesTheFlags) {
  Transform t = transform(1, 2, 3, 0.1, 0.2, 0.3);
  t.AisZero = t.AisIdentity = t.BisZero = true;
  t.check();
  EXPECT_FALSE(t.AisZero);
  EXPECT_FALSE(t.AisIdentity);
  EXPECT_FALSE(t.BisZero);

  t.A.zero();
  t.B.zero();
  t.check();
  EXPECT_TRUE(t.AisZero);
  EXPECT_TRUE(t.BisZero);
  t.A.get(0, 2) = 1e-300;
  t.B.get(2, 0) = 1e-300;
  t.check();
  EXPECT_FALSE(t.AisZero) << "all elements count";
  EXPECT_FALSE(t.BisZero);
}

TEST(KMatTransformTest, CheckTakesAnyBlockWithADiagonalOfOnesForTheIdentity) {
  Transform t;
  t.identity();
  t.A.get(0, 1) = 5;
  t.A.get(2, 0) = -7;
  t.check();
  EXPECT_TRUE(t.AisIdentity);
  t.A.get(1, 1) = std::nextafter(1.0, 2.0);
  t.check();
  EXPECT_FALSE(t.AisIdentity);
}

// Products.

TEST(KMatProductTest, IdentityTakesTheOtherRotationByShare) {
  Transform one;
  one.identity();
  const Transform other = transform(1, 2, 3, 0.1, 0.2, 0.3);
  one.fast_mult(other);
  EXPECT_EQ(one.A.h, other.A.h);
  EXPECT_FALSE(one.AisIdentity);
  EXPECT_FALSE(one.BisZero);
  EXPECT_EQ(eigen(one), eigen(other));

  Transform still = translation(1, 0, 0);
  still *= translation(0, 1, 0);
  EXPECT_TRUE(still.AisIdentity);
  EXPECT_EQ(still.read(0, 3), 1);
  EXPECT_EQ(still.read(1, 3), 1);
}

TEST(KMatProductTest, SharedOperandIsNotWrittenThrough) {
  Transform a = transform(1, 2, 3, 0.1, 0.2, 0.3);
  const Transform b = a;
  const Eigen::Matrix4d before = eigen(b);
  a.fast_mult(b);
  EXPECT_LT(difference(eigen(a), before * before), 1e-14);
  EXPECT_EQ(eigen(b), before);
}

TEST(KMatProductTest, SquareOfItself) {
  Transform a = transform(1, 2, 3, 0.1, 0.2, 0.3);
  const Eigen::Matrix4d before = eigen(a);
  a.fast_mult(a);
  EXPECT_LT(difference(eigen(a), before * before), 1e-14);
  Transform t = translation(1, 2, 3);
  t.fast_mult(t);
  EXPECT_EQ(t.read(2, 3), 6);
}

TEST(KMatProductTest, TranslationIsDroppedWhereThisHasNoneInStorage) {
  Transform a = transform(1, 2, 3, 0.1, 0.2, 0.3);
  a.B.cleanHandle();
  a.fast_mult(translation(5, 6, 7));
  EXPECT_EQ(a.B.h, nullptr);
  EXPECT_EQ(a.read(0, 3), 0);
}

TEST(KMatProductTest, RotationStaysWhereEitherSideHasNoneInStorage) {
  Transform a = transform(1, 2, 3, 0.1, 0.2, 0.3);
  const Eigen::Matrix3d before = eigen(a.A);
  Transform never;
  a.fast_mult(never);
  EXPECT_EQ(eigen(a.A), before);
  EXPECT_EQ(a.read(0, 3), 1);

  Transform fresh;
  fresh.fast_mult(a);
  EXPECT_EQ(fresh.A.h, nullptr);
  EXPECT_EQ(fresh.B.h, nullptr);
}

TEST(KMatProductTest, ZeroRotationStaysZeroAndKeepsItsTranslation) {
  Transform a = translation(1, 2, 3);
  a.A.zero();
  a.check();
  ASSERT_TRUE(a.AisZero);
  a.fast_mult(transform(5, 6, 7, 0.1, 0.2, 0.3));
  EXPECT_TRUE(a.AisZero);
  EXPECT_EQ(a.read(0, 0), 0);
  EXPECT_EQ(a.read(0, 3), 1);
}

TEST(KMatProductTest, ZeroOnTheRightMakesTheRotationZero) {
  Transform zeroRotation = translation(1, 2, 3);
  zeroRotation.A.zero();
  zeroRotation.check();
  Transform a = transform(1, 2, 3, 0.1, 0.2, 0.3);
  a.fast_mult(zeroRotation);
  EXPECT_TRUE(a.AisZero);
  expectTrueFlags(a);
  Transform identity;
  identity.identity();
  identity.fast_mult(zeroRotation);
  EXPECT_TRUE(identity.AisZero);
  EXPECT_FALSE(identity.AisIdentity);
}

TEST(KMatProductTest, ZeroTranslationFlagPassesOnOnlyIfBothAreZero) {
  Transform r;
  transformations::makeRotationX(r, 0.3);
  Transform both = r;
  both.fast_mult(r);
  EXPECT_TRUE(both.BisZero);
  Transform right = r;
  right.fast_mult(translation(1, 0, 0));
  EXPECT_FALSE(right.BisZero);
  Transform left = translation(1, 0, 0);
  left.fast_mult(r);
  EXPECT_FALSE(left.BisZero);
}

// A transform of one of the kinds that chains are made of.
Transform drawn(Draws& draws) {
  const double x = draws.between(-200, 200), y = draws.between(-200, 200);
  const double z = draws.between(-200, 200);
  const double a = draws.between(-kPi, kPi), b = draws.between(-kPi, kPi);
  const double c = draws.between(-kPi, kPi);
  Transform t;
  switch (draws.oneOf(6)) {
    case 0:
      t.identity();
      break;
    case 1:
      transformations::makeTranslation(t, x, y, z);
      break;
    case 2:
      transformations::makeRotationXYZ(t, a, b, c);
      break;
    case 3:
      transformations::makeDHTransformation(t, x, draws.oneOf(2) == 0 ? 0 : a, y, b);
      break;
    case 4:
      transformations::makeRotationX(t, a);
      break;
    default:
      transformations::makeTransformation(t, x, y, z, a, b, c);
  }
  return t;
}

TEST(KMatProductTest, AgreesWithEigenAndKeepsFlagsTrueAndSourcesWhole) {
  CaseCount cases("chain of products", kCases);
  Draws draws(3);
  for (int n = 0; n < kCases; ++n) {
    Transform product = drawn(draws);
    Eigen::Matrix4d expected = eigen(product);
    for (int factors = 0; factors < 4; ++factors) {
      const Transform before = product;
      const Eigen::Matrix4d beforeValues = eigen(before);
      const Transform factor = drawn(draws);
      const Eigen::Matrix4d factorValues = eigen(factor);
      product.fast_mult(factor);
      expected = Eigen::Matrix4d(expected * factorValues);
      ASSERT_EQ(eigen(before), beforeValues);
      ASSERT_EQ(eigen(factor), factorValues);
      expectTrueFlags(product);
    }
    // Lengths up to 1000 and ten roundings of 1e-16 each.
    ASSERT_LT(difference(eigen(product), expected), 1e-11);
    cases.count();
  }
}

// Inverses.

TEST(KMatTransformInverseTest, PureTranslationIsNegatedAndTheRotationLeftAlone) {
  Transform t = translation(1, -2, 3);
  const void* rotation = t.A.h;
  t.fast_invert();
  EXPECT_EQ(t.A.h, rotation);
  EXPECT_TRUE(t.AisIdentity);
  EXPECT_EQ(t.read(0, 3), -1);
  EXPECT_EQ(t.read(1, 3), 2);
  EXPECT_EQ(t.read(2, 3), -3);
}

TEST(KMatTransformInverseTest, PureRotationLeavesTheTranslationAlone) {
  Transform t;
  transformations::makeRotationZ(t, 0.3);
  const void* before = t.B.h;
  t.fast_invert();
  EXPECT_EQ(t.B.h, before);
  EXPECT_TRUE(t.BisZero);
  EXPECT_NEAR(t.read(0, 1), std::sin(0.3), 1e-16);
}

TEST(KMatTransformInverseTest, NeverWrittenRotationIsNotInvertedAndGivesAZeroTranslation) {
  Transform t = translation(1, 2, 3);
  t.A.cleanHandle();
  t.check();
  ASSERT_TRUE(t.AisZero);
  t.fast_invert();
  EXPECT_EQ(t.read(0, 3), 0);
  EXPECT_EQ(t.read(2, 3), 0);
}

TEST(KMatTransformInverseTest, SingularRotationThrowsAndStays) {
  Transform t = translation(1, 2, 3);
  t.A.zero();
  t.check();
  EXPECT_EQ(textOf<SingularMatrixInvertionException>([&] { t.fast_invert(); }), kSingularText);
  EXPECT_EQ(t.read(0, 3), 1);
}

TEST(KMatTransformInverseTest, AgreesWithEigenAndKeepsSourcesWhole) {
  CaseCount cases("inverse of a transform", kCases);
  Draws draws(4);
  for (int n = 0; n < kCases; ++n) {
    Transform t = drawn(draws);
    t.fast_mult(drawn(draws));
    const Transform source = t;
    const Eigen::Matrix4d values = eigen(t);
    t.fast_invert();
    // Translations up to 700: rounding of the rotation times that.
    ASSERT_LT(difference(eigen(t), values.inverse()), 1e-11);
    ASSERT_EQ(eigen(source), values);
    expectTrueFlags(t);
    Transform one = source;
    one.fast_mult(t);
    ASSERT_LT(difference(eigen(one), Eigen::Matrix4d::Identity()), 1e-11);
    cases.count();
  }
}

TEST(KMatTransformInverseTest, TheIdentityFlagIsBelievedWhereTheDiagonalAloneBearsIt) {
  Transform shear = translation(1, 2, 3);
  shear.A.get(0, 1) = 5;
  shear.check();
  ASSERT_TRUE(shear.AisIdentity);
  Transform inverse = shear;
  inverse.fast_invert();
  EXPECT_EQ(inverse.read(0, 1), 5);
  EXPECT_EQ(inverse.read(0, 3), -1);
  EXPECT_EQ(inverse.read(1, 3), -2);
  // Likewise in a product: the shear is lost from the rotation, and acts on the translation.
  const Transform right = translation(0, 1, 0);
  shear.fast_mult(right);
  EXPECT_EQ(shear.A.h, right.A.h);
  EXPECT_EQ(shear.read(0, 1), 0);
  EXPECT_EQ(shear.read(0, 3), 1 + 5);
}

// Equality by size.

TEST(KMatAlmostEqualTest, SeesThePositionAndNotTheRotation) {
  const Transform a = transform(100, -50, 30, 0.1, 0.2, 0.3);
  EXPECT_TRUE(a.almostEqualTo(a));
  EXPECT_TRUE(a.almostEqualTo(transform(100, -50, 30, -2, 1, 0.5)));
  EXPECT_FALSE(a.almostEqualTo(transform(101, -50, 30, 0.1, 0.2, 0.3)));
  EXPECT_FALSE(a.almostEqualTo(transform(100, -51, 30, 0.1, 0.2, 0.3)));
  EXPECT_FALSE(a.almostEqualTo(transform(100, -50, 31, -2, 1, 0.5)));
}

TEST(KMatAlmostEqualTest, BoundIsOnTheSquaredDistance) {
  const Transform a = translation(0, 0, 0);
  const double bound = std::sqrt(2.220446049250313e-9);  // 4.7e-5 mm
  EXPECT_TRUE(a.almostEqualTo(translation(0.999 * bound, 0, 0)));
  EXPECT_FALSE(a.almostEqualTo(translation(1.001 * bound, 0, 0)));
}

TEST(KMatAlmostEqualTest, NotANumberEqualsNothing) {
  const Transform a = transform(std::nan(""), 0, 0, 0, 0, 0);
  EXPECT_FALSE(a.almostEqualTo(translation(0, 0, 0)));
}

TEST(KMatAlmostEqualTest, LeavesBothSidesAsTheyWere) {
  const Transform a = transform(1, 2, 3, 0.1, 0.2, 0.3);
  const Transform b = transform(4, 5, 6, 0.4, 0.5, 0.6);
  const Eigen::Matrix4d aValues = eigen(a), bValues = eigen(b);
  a.almostEqualTo(b);
  EXPECT_EQ(eigen(a), aValues);
  EXPECT_EQ(eigen(b), bValues);
}

// Makers.

TEST(KMatMakersTest, PiIsTheFullOne) {
  EXPECT_EQ(transformations::PI, 3.141592653589793);
}

TEST(KMatMakersTest, TranslationSetsFlagsByItsContents) {
  const Transform t = translation(0, 0, -2);
  EXPECT_EQ(eigen(t), homogeneous(Eigen::Matrix3d::Identity(), {0, 0, -2}));
  EXPECT_TRUE(t.AisIdentity);
  EXPECT_FALSE(t.AisZero);
  EXPECT_FALSE(t.BisZero);
  EXPECT_TRUE(translation(0, 0, 0).BisZero);
}

TEST(KMatMakersTest, TinyRotationIsNotTakenForTheIdentity) {
  Transform t;
  transformations::makeRotationX(t, 1e-9);
  ASSERT_EQ(t.read(1, 1), 1);
  EXPECT_FALSE(t.AisIdentity);
  t.fast_mult(t);
  EXPECT_DOUBLE_EQ(t.read(2, 1), 2e-9);
}

TEST(KMatMakersTest, AgreeWithEigen) {
  CaseCount cases("made transforms", kCases);
  Draws draws(5);
  const Eigen::Vector3d none = Eigen::Vector3d::Zero();
  for (int n = 0; n < kCases; ++n) {
    const double x = draws.between(-200, 200), y = draws.between(-200, 200);
    const double z = draws.between(-200, 200);
    const double a = draws.between(-kPi, kPi), b = draws.between(-kPi, kPi);
    const double c = draws.between(-kPi, kPi);
    Transform t = transform(9, 9, 9, 1, 2, 3);  // whatever was there is replaced

    transformations::makeRotationX(t, a);
    ASSERT_LT(difference(eigen(t), homogeneous(rx(a), none)), 1e-15);
    ASSERT_TRUE(t.BisZero && !t.AisIdentity && !t.AisZero);
    ASSERT_NE(t.B.h, nullptr) << "zero, but in storage: products need it";
    transformations::makeRotationY(t, a);
    ASSERT_LT(difference(eigen(t), homogeneous(ry(a), none)), 1e-15);
    transformations::makeRotationZ(t, a);
    ASSERT_LT(difference(eigen(t), homogeneous(rz(a), none)), 1e-15);
    transformations::makeRotationXYZ(t, a, b, c);
    ASSERT_LT(difference(eigen(t), homogeneous(rx(a) * ry(b) * rz(c), none)), 1e-15);
    ASSERT_TRUE(t.BisZero);
    transformations::makeRotationZYX(t, c, b, a);
    ASSERT_LT(difference(eigen(t), homogeneous(rz(c) * ry(b) * rx(a), none)), 1e-15);
    transformations::makeTransformation(t, x, y, z, a, b, c);
    ASSERT_LT(difference(eigen(t), homogeneous(rz(c) * ry(b) * rx(a), {x, y, z})), 1e-15);
    ASSERT_FALSE(t.BisZero);
    // Rx(alpha) Tx(a) Rz(theta) Tz(d), that is a = x, alpha = b, d = y, theta = c.
    transformations::makeDHTransformation(t, x, b, y, c);
    const Eigen::Matrix4d dh =
        homogeneous(rx(b), none) * homogeneous(Eigen::Matrix3d::Identity(), {x, 0, 0}) *
        homogeneous(rz(c), none) * homogeneous(Eigen::Matrix3d::Identity(), {0, 0, y});
    ASSERT_LT(difference(eigen(t), dh), 1e-12);
    expectTrueFlags(t);
    cases.count();
  }
}

}  // namespace
