#include "Mathematics/Vector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

namespace {

constexpr double kPi = 3.14159265358979323846;

void expectNear(Vector actual, Vector expected, double tolerance) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
  EXPECT_NEAR(actual.z, expected.z, tolerance);
}

TEST(VectorTest, StartsAtZero) {
  EXPECT_EQ(Vector(), Vector(0, 0, 0));
}

TEST(VectorTest, TakesTwelveBytes) {
  EXPECT_EQ(sizeof(Vector), 3 * sizeof(float));
}

TEST(VectorTest, CartesianCoordinatesAreNarrowed) {
  EXPECT_EQ(Vector(0.1, 0.2, -0.3, CARTESIAN), Vector(0.1f, 0.2f, -0.3f));
}

TEST(VectorTest, SphericalCoordinatesAreLengthAzimuthElevation) {
  expectNear(Vector(2.0, 0.0, 0.0, SPHERICAL), Vector(2, 0, 0), 1e-6);
  expectNear(Vector(2.0, 90.0, 0.0, SPHERICAL), Vector(0, 2, 0), 1e-6);
  expectNear(Vector(2.0, -90.0, 0.0, SPHERICAL), Vector(0, -2, 0), 1e-6);
  expectNear(Vector(2.0, 77.0, 90.0, SPHERICAL), Vector(0, 0, 2), 1e-6);
  const double half = std::sqrt(0.5);
  expectNear(Vector(2.0, 45.0, 30.0, SPHERICAL),
             Vector(static_cast<float>(std::sqrt(3.0) * half),
                    static_cast<float>(std::sqrt(3.0) * half), 1),
             1e-6);
}

TEST(VectorTest, SphericalCoordinatesUseTheShortPi) {
  // Half a turn by 3.1415926 falls short of pi by 5.36e-8, which is left as the y coordinate.
  EXPECT_NEAR(Vector(1.0, 180.0, 0.0, SPHERICAL).y, kPi - 3.1415926, 1e-12);
}

TEST(VectorTest, SphericalCoordinatesGiveBackLengthAndAngles) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> length(0.1, 30);
  std::uniform_real_distribution<double> azimuth(-179, 179);
  std::uniform_real_distribution<double> elevation(-89, 89);
  for (int i = 0; i < 1000; ++i) {
    const double r = length(random);
    const double a = azimuth(random);
    const double e = elevation(random);
    const Vector v(r, a, e, SPHERICAL);
    EXPECT_NEAR(v.getLength(), r, 1e-5 * r);
    EXPECT_NEAR(v.getDir(), a, 1e-3);
    EXPECT_NEAR(v.getTetha(), (90 - e) * kPi / 180, 1e-4);
    EXPECT_NEAR(v.getPhi(), std::fabs(a) * kPi / 180, 1e-3);
  }
}

TEST(VectorTest, AccessorsReadAndWriteTheCoordinates) {
  Vector v;
  v.setX(1);
  v.setY(2);
  v.setZ(3);
  EXPECT_EQ(v, Vector(1, 2, 3));
  v.setElements(4, 5, 6);
  EXPECT_EQ(v.getX(), 4);
  EXPECT_EQ(v.getY(), 5);
  EXPECT_EQ(v.getZ(), 6);
}

TEST(VectorTest, ZeroLeavesTheVectorAsItWas) {
  const Vector v(1, 2, 3);
  EXPECT_EQ(v.zero(), Vector(0, 0, 0));
  EXPECT_EQ(v, Vector(1, 2, 3));
}

TEST(VectorTest, LengthsInSpaceAndOnGround) {
  const Vector v(2, 3, 6);
  EXPECT_EQ(v.getLength(), 7.0);
  EXPECT_EQ(v.getR(), 7.0f);
  EXPECT_EQ(Vector(3, 4, 12).getLengthOnGround(), 5.0);
  EXPECT_EQ(Vector(1, 2, 3).getDistanceTo(Vector(3, 5, 9)), 7.0f);
  EXPECT_EQ(Vector(1, 2, 3).getDistanceOnGround(Vector(4, 6, 99)), 5.0f);
}

TEST(VectorTest, LengthSumsItsSquaresInSinglePrecision) {
  // 4096 squared is 2^24; the 1 that is added gets lost in a float, but not in a double.
  EXPECT_EQ(Vector(4096, 1, 0).getLength(), 4096.0);
  EXPECT_EQ(Vector(4096, 1, 0).getLengthOnGround(), 4096.0);
  // The root is double: that of the float 2 has more than 24 bits.
  EXPECT_EQ(Vector(1, 1, 0).getLength(), std::sqrt(2.0));
  EXPECT_EQ(Vector(1, 1, 0).getR(), std::sqrt(2.0f));
}

TEST(VectorTest, DirectionIsInDegrees) {
  EXPECT_FLOAT_EQ(Vector(1, 1, 5).getDir(), 45);
  EXPECT_FLOAT_EQ(Vector(-1, 1, 0).getDir(), 135);
  EXPECT_FLOAT_EQ(Vector(-1, -1, 0).getDir(), -135);
  EXPECT_FLOAT_EQ(Vector(0, -2, 0).getDir(), -90);
  EXPECT_FLOAT_EQ(Vector(-1, 0, 0).getDir(), 180);
  EXPECT_EQ(Vector().getDir(), 0);
}

TEST(VectorTest, SlopeUsesTheShortPi) {
  const Vector v(-1, 0, 0);
  EXPECT_DOUBLE_EQ(v.getSlope(), kPi * 180.0 / 3.1415926);
  EXPECT_GT(v.getSlope(), 180.000003);
  EXPECT_FLOAT_EQ(v.getDir(), 180);
}

TEST(VectorTest, TethaIsTheAngleFromAbove) {
  EXPECT_FLOAT_EQ(Vector(1, 0, 0).getTetha(), static_cast<float>(kPi / 2));
  EXPECT_FLOAT_EQ(Vector(0, 1, 1).getTetha(), static_cast<float>(kPi / 4));
  EXPECT_FLOAT_EQ(Vector(0, 1, -1).getTetha(), static_cast<float>(3 * kPi / 4));
}

TEST(VectorTest, TethaIsZeroForAVectorStraightUpOrDown) {
  EXPECT_EQ(Vector(0, 0, 1).getTetha(), 0);
  EXPECT_EQ(Vector(0, 0, -1).getTetha(), 0);
  EXPECT_EQ(Vector().getTetha(), 0);
}

TEST(VectorTest, PhiHasNoSign) {
  EXPECT_FLOAT_EQ(Vector(1, 1, 0).getPhi(), static_cast<float>(kPi / 4));
  EXPECT_EQ(Vector(1, -1, 0).getPhi(), Vector(1, 1, 0).getPhi());
  EXPECT_FLOAT_EQ(Vector(-1, 0, 3).getPhi(), static_cast<float>(kPi));
  EXPECT_EQ(Vector(0, 0, 4).getPhi(), 0);
  EXPECT_EQ(Vector().getPhi(), 0);
}

TEST(VectorTest, PhiIsANumberForEveryOrdinaryVector) {
  std::mt19937 random(3);
  std::uniform_real_distribution<float> coordinate(-30, 30);
  for (int i = 0; i < 10000; ++i) {
    const float x = coordinate(random);
    EXPECT_FALSE(std::isnan(Vector(x, 0, 0).getPhi())) << x;
    EXPECT_FALSE(std::isnan(Vector(x, 1e-4f, 0).getPhi())) << x;
  }
}

TEST(VectorTest, AngleToIsTheUnsignedDirectionOfTheWayThere) {
  EXPECT_FLOAT_EQ(Vector(1, 1, 5).getAngleTo(Vector(1, 3, 0)), static_cast<float>(kPi / 2));
  EXPECT_FLOAT_EQ(Vector(1, 3, 0).getAngleTo(Vector(1, 1, 5)), static_cast<float>(kPi / 2));
  EXPECT_FLOAT_EQ(Vector(1, 0, 0).getAngleTo(Vector(0, 1, 0)), static_cast<float>(kPi * 3 / 4));
  EXPECT_FLOAT_EQ(Vector(2, 1, 0).getAngleTo(Vector(-1, 1, 0)), static_cast<float>(kPi));
  EXPECT_EQ(Vector(1, 1, 0).getAngleTo(Vector(1, 1, 3)), 0);  // straight up
}

TEST(VectorTest, DotAndCross) {
  EXPECT_EQ(Vector(1, 2, 3).dot(Vector(4, -5, 6)), 12);
  EXPECT_EQ(Vector(1, 0, 0).cross(Vector(0, 1, 0)), Vector(0, 0, 1));
  EXPECT_EQ(Vector(0, 1, 0).cross(Vector(0, 0, 1)), Vector(1, 0, 0));
  EXPECT_EQ(Vector(1, 2, 3).cross(Vector(4, -5, 6)), Vector(27, 6, -13));
}

TEST(VectorTest, NormalizeChangesTheVectorAndReturnsACopy) {
  Vector v(3, 0, 4);
  Vector copy = v.normalize();
  EXPECT_EQ(v, Vector(0.6f, 0, 0.8f));
  EXPECT_EQ(copy, v);
  copy.setX(9);
  EXPECT_EQ(v.x, 0.6f);
}

TEST(VectorTest, NormalizeOfAZeroVectorIsNotANumber) {
  Vector v;
  v.normalize();
  EXPECT_TRUE(std::isnan(v.x));
  EXPECT_TRUE(std::isnan(v.y));
  EXPECT_TRUE(std::isnan(v.z));
  EXPECT_TRUE(std::isnan(Vector().setLength(2).x));
}

TEST(VectorTest, SetLengthKeepsTheDirection) {
  Vector v(3, 0, 4);
  EXPECT_EQ(v.setLength(10), Vector(6, 0, 8));
  EXPECT_EQ(v, Vector(6, 0, 8));
}

TEST(VectorTest, SetLengthOnGroundNormalizesInSpaceFirst) {
  Vector v(3, 0, 4);
  EXPECT_EQ(v.setLengthOnGround(5), Vector(3, 0, 0));
  EXPECT_EQ(v, Vector(3, 0, 0));
  Vector flat(3, 4, 0);
  EXPECT_NEAR(flat.setLengthOnGround(2).getLengthOnGround(), 2, 1e-6);
}

TEST(VectorTest, SumAndDifferenceOfVectors) {
  EXPECT_EQ(Vector(1, 2, 3) + Vector(4, 5, 6), Vector(5, 7, 9));
  EXPECT_EQ(Vector(1, 2, 3) - Vector(4, 6, 8), Vector(-3, -4, -5));
  Vector v(1, 2, 3);
  EXPECT_EQ(v += Vector(1, 1, 1), Vector(2, 3, 4));
  EXPECT_EQ(v, Vector(2, 3, 4));
}

TEST(VectorTest, AssigningDifferenceChangesXAlone) {
  Vector v(1, 2, 3);
  EXPECT_EQ(v -= Vector(1, 1, 1), Vector(-2, 2, 3));
  EXPECT_EQ(v, Vector(-2, 2, 3));
}

TEST(VectorTest, ProductOfVectorsIsComponentwise) {
  EXPECT_EQ(Vector(1, 2, 3) * Vector(4, 5, -6), Vector(4, 10, -18));
  Vector v(1, 2, 3);
  EXPECT_EQ(v *= Vector(4, 5, 6), Vector(4, 10, 18));
  EXPECT_EQ(v, Vector(4, 10, 18));
}

TEST(VectorTest, QuotientOfVectorsIsAProduct) {
  EXPECT_EQ(Vector(2, 3, 4) / Vector(2, 3, 4), Vector(4, 9, 16));
  EXPECT_EQ(Vector(2, 3, 4) / Vector(0, 0, 0), Vector(0, 0, 0));
}

TEST(VectorTest, ScalarIsAddedToAllCoordinates) {
  EXPECT_EQ(Vector(1, 2, 3) + 1.5, Vector(2.5f, 3.5f, 4.5f));
  EXPECT_EQ(Vector(1, 2, 3) - 1.5, Vector(-0.5f, 0.5f, 1.5f));
  Vector v(1, 2, 3);
  EXPECT_EQ(v += 1.0, Vector(2, 3, 4));
  EXPECT_EQ(v -= 3.0, Vector(-1, 0, 1));
  EXPECT_EQ(v, Vector(-1, 0, 1));
}

TEST(VectorTest, ScalarScalesAllCoordinates) {
  EXPECT_EQ(Vector(1, -2, 3) * 2.0, Vector(2, -4, 6));
  EXPECT_EQ(Vector(1, -2, 3) / 2.0, Vector(0.5f, -1, 1.5f));
  Vector v(1, -2, 3);
  EXPECT_EQ(v *= 4.0, Vector(4, -8, 12));
  EXPECT_EQ(v /= 2.0, Vector(2, -4, 6));
  EXPECT_EQ(v, Vector(2, -4, 6));
}

TEST(VectorTest, ScalarArithmeticIsDoneInDouble) {
  // The float nearest to 0.1 is too large by so much that the product would round up.
  EXPECT_EQ((Vector(9, 9, 9) * 0.1).y, 0.9f);
  EXPECT_NE(9 * 0.1f, 0.9f);
}

TEST(VectorTest, DivisionByExactlyZeroLeavesTheVector) {
  EXPECT_EQ(Vector(1, 2, 3) / 0.0, Vector(1, 2, 3));
  EXPECT_EQ(Vector(1, 2, 3) / -0.0, Vector(1, 2, 3));
  Vector v(1, 2, 3);
  EXPECT_EQ(v /= 0.0, Vector(1, 2, 3));
  EXPECT_EQ(v, Vector(1, 2, 3));
}

TEST(VectorTest, AssigningFormsReturnCopies) {
  Vector v(1, 2, 3);
  (v += Vector(1, 1, 1)).setX(50);
  (v = Vector(7, 8, 9)).setX(50);
  EXPECT_EQ(v, Vector(7, 8, 9));
}

TEST(VectorTest, EqualityIsExact) {
  EXPECT_TRUE(Vector(1, 2, 3) == Vector(1, 2, 3));
  EXPECT_FALSE(Vector(1, 2, 3) != Vector(1, 2, 3));
  const float next = std::nextafter(3.0f, 4.0f);
  EXPECT_FALSE(Vector(1, 2, 3) == Vector(1, 2, next));
  EXPECT_TRUE(Vector(1, 2, 3) != Vector(1, 2, next));
  EXPECT_TRUE(Vector(1, 2, 3) != Vector(0, 2, 3));
  EXPECT_TRUE(Vector(1, 2, 3) != Vector(1, 0, 3));
}

TEST(VectorTest, PrintsItsCoordinates) {
  std::ostringstream out;
  out << Vector(1, -2.5f, 3);
  EXPECT_EQ(out.str(), "(vector: 1, -2.5, 3 )");
}

TEST(VectorTest, AngleConstants) {
  EXPECT_EQ(Vector::RAD2DEG, 57.29577951308232);
  EXPECT_EQ(Vector::DEG2RAD, 0.017453292519943295);
}

TEST(VectorSignTest, GivesTheSignAsInt) {
  EXPECT_EQ(sign(0.0), 0);
  EXPECT_EQ(sign(-0.0), 0);
  EXPECT_EQ(sign(3.7), 1);
  EXPECT_EQ(sign(-3.7), -1);
  EXPECT_EQ(sign(std::numeric_limits<double>::denorm_min()), 1);
  EXPECT_EQ(sign(-std::numeric_limits<double>::max()), -1);
}

TEST(VectorSignTest, HasNoSignForWhatIsNoNumber) {
  EXPECT_EQ(sign(std::numeric_limits<double>::quiet_NaN()), std::numeric_limits<int>::min());
  EXPECT_EQ(sign(std::numeric_limits<double>::infinity()), std::numeric_limits<int>::min());
}

}  // namespace
