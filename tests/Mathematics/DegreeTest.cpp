#include "Mathematics/Degree.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(DegreeTest, TrigonometryTakesDegrees) {
  EXPECT_FLOAT_EQ(Degree::sin(30), 0.5f);
  EXPECT_FLOAT_EQ(Degree::cos(60), 0.5f);
  EXPECT_FLOAT_EQ(Degree::tan(45), 1.0f);
  EXPECT_FLOAT_EQ(Degree::cot(45), 1.0f);
  EXPECT_FLOAT_EQ(Degree::cot(30), std::sqrt(3.0f));
  EXPECT_FLOAT_EQ(Degree::sin(-90), -1.0f);
}

TEST(DegreeTest, InverseFunctionsGiveDegrees) {
  EXPECT_FLOAT_EQ(Degree::arcSin(0.5f), 30.0f);
  EXPECT_FLOAT_EQ(Degree::arcCos(0.5f), 60.0f);
  EXPECT_FLOAT_EQ(Degree::arcTan(1), 45.0f);
  EXPECT_FLOAT_EQ(Degree::arcCot(1), 45.0f);
  EXPECT_TRUE(std::isnan(Degree::arcSin(1.5f)));
  EXPECT_TRUE(std::isnan(Degree::arcCos(-1.5f)));
}

TEST(DegreeTest, InverseFunctionsUndoTheFunctions) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> angle(-89, 89);
  for (int i = 0; i < 1000; ++i) {
    const float a = angle(random);
    EXPECT_NEAR(Degree::arcSin(Degree::sin(a)), a, 1e-3) << a;
    EXPECT_NEAR(Degree::arcTan(Degree::tan(a)), a, 1e-3) << a;
    EXPECT_NEAR(Degree::arcCos(Degree::cos(a)), std::fabs(a), 2e-2) << a;
    EXPECT_NEAR(Degree::arcCot(Degree::cot(a)), a, 1e-3) << a;
    EXPECT_NEAR(Degree::arcTan2(Degree::sin(a), Degree::cos(a)), a, 1e-4) << a;
  }
}

TEST(DegreeTest, ArithmeticInsideIsDouble) {
  constexpr double kRadian = 0.017453292519943295;
  constexpr double kDegree = 57.29577951308232;
  std::mt19937 random(2);
  std::uniform_real_distribution<float> angle(-360, 360);
  std::uniform_real_distribution<float> ratio(-1, 1);
  int unlikeFloat = 0;
  for (int i = 0; i < 1000; ++i) {
    const double a = angle(random);
    const float f = static_cast<float>(a);
    EXPECT_EQ(Degree::sin(f), static_cast<float>(std::sin(a * kRadian)));
    EXPECT_EQ(Degree::cos(f), static_cast<float>(std::cos(a * kRadian)));
    EXPECT_EQ(Degree::tan(f), static_cast<float>(std::tan(a * kRadian)));
    EXPECT_EQ(Degree::cot(f), static_cast<float>(1 / std::tan(a * kRadian)));
    if (Degree::sin(f) != std::sin(f * static_cast<float>(kRadian))) ++unlikeFloat;

    const double x = ratio(random), y = ratio(random);
    const float g = static_cast<float>(x), h = static_cast<float>(y);
    EXPECT_EQ(Degree::arcSin(g), static_cast<float>(std::asin(x) * kDegree));
    EXPECT_EQ(Degree::arcCos(g), static_cast<float>(std::acos(x) * kDegree));
    EXPECT_EQ(Degree::arcTan(g), static_cast<float>(std::atan(x) * kDegree));
    EXPECT_EQ(Degree::arcTan2(h, g), static_cast<float>(std::atan2(y, x) * kDegree));
    // But for the one quotient that is single precision.
    const double quotient = 1.0f / g;
    EXPECT_EQ(Degree::arcCot(g), static_cast<float>(std::atan(quotient) * kDegree));
  }
  EXPECT_GT(unlikeFloat, 100);
}

TEST(DegreeTest, ArcCotOfANegativeNumberStaysNegative) {
  EXPECT_FLOAT_EQ(Degree::arcCot(-1), -45.0f);
  EXPECT_FLOAT_EQ(Degree::arcCot(0), 90.0f);  // the quotient is an infinity
}

TEST(DegreeTest, ArcTan2KnowsTheQuadrant) {
  EXPECT_FLOAT_EQ(Degree::arcTan2(1, 1), 45.0f);
  EXPECT_FLOAT_EQ(Degree::arcTan2(1, -1), 135.0f);
  EXPECT_FLOAT_EQ(Degree::arcTan2(-1, -1), -135.0f);
  EXPECT_FLOAT_EQ(Degree::arcTan2(-1, 1), -45.0f);
}

TEST(DegreeTest, ArcCot2IsArcTan2) {
  for (float y = -2; y <= 2; y += 0.5f) {
    for (float x = -2; x <= 2; x += 0.5f) {
      EXPECT_EQ(Degree::arcCot2(y, x), Degree::arcTan2(y, x)) << y << " " << x;
    }
  }
}

TEST(DegreeTest, NormalizeAngleKeepsBothEnds) {
  EXPECT_EQ(Degree::normalizeAngle(180), 180);
  EXPECT_EQ(Degree::normalizeAngle(-180), -180);
  EXPECT_EQ(Degree::normalizeAngle(180.5f), -179.5f);
  EXPECT_EQ(Degree::normalizeAngle(-180.5f), 179.5f);
  EXPECT_EQ(Degree::normalizeAngle(540), 180);
  EXPECT_EQ(Degree::normalizeAngle(-540), -180);
  EXPECT_EQ(Degree::normalizeAngle(725), 5);
  EXPECT_EQ(Degree::normalizeAngle(-725), -5);
}

TEST(DegreeTest, AbsoluteAngleExcludesTheUpperEnd) {
  EXPECT_EQ(Degree::absoluteAngle(360), 0);
  EXPECT_EQ(Degree::absoluteAngle(0), 0);
  EXPECT_EQ(Degree::absoluteAngle(-0.5f), 359.5f);
  EXPECT_EQ(Degree::absoluteAngle(725), 5);
  EXPECT_EQ(Degree::absoluteAngle(-725), 355);
}

TEST(DegreeTest, AbsoluteAngleOfATinyNegativeAngleStaysBelow360) {
  EXPECT_EQ(Degree::absoluteAngle(-1e-9f), 0);
}

TEST(DegreeTest, WrappingEndsForAnglesOfAnySize) {
  for (float a : {1e7f, 2e7f, 1e10f, 1e20f, 3e38f}) {
    for (float signedAngle : {a, -a}) {
      const double turns = std::fmod(static_cast<double>(signedAngle), 360.0);
      const float normal = Degree::normalizeAngle(signedAngle);
      EXPECT_GE(normal, -180);
      EXPECT_LE(normal, 180);
      EXPECT_EQ(std::fmod(normal - turns, 360.0), 0) << signedAngle;
      const float absolute = Degree::absoluteAngle(signedAngle);
      EXPECT_GE(absolute, 0);
      EXPECT_LT(absolute, 360);
      EXPECT_EQ(std::fmod(absolute - turns, 360.0), 0) << signedAngle;
    }
  }
  EXPECT_TRUE(std::isnan(Degree::normalizeAngle(kInfinity)));
  EXPECT_TRUE(std::isnan(Degree::absoluteAngle(-kInfinity)));
  EXPECT_TRUE(std::isnan(Degree::normalizeAngle(std::nanf(""))));
}

TEST(DegreeTest, DeltaAngleIsTheShortTurn) {
  EXPECT_EQ(Degree::getDeltaAngle(10, 350), 20);
  EXPECT_EQ(Degree::getDeltaAngle(350, 10), -20);
  EXPECT_EQ(Degree::getDeltaAngle(-90, 90), 180);   // 270 - 90
  EXPECT_EQ(Degree::getDeltaAngle(90, -90), -180);  // 90 - 270
  EXPECT_EQ(Degree::getDeltaAngle(360, 0), 0);
}

TEST(DegreeTest, IsBetweenFollowsTheArcUpward) {
  EXPECT_TRUE(Degree::isBetween(350, 10, 0));
  EXPECT_FALSE(Degree::isBetween(10, 350, 0));
  EXPECT_TRUE(Degree::isBetween(10, 350, 180));
  EXPECT_FALSE(Degree::isBetween(350, 10, 180));
  EXPECT_TRUE(Degree::isBetween(-10, 10, 355));
  EXPECT_TRUE(Degree::isBetween(10, 20, 10));
  EXPECT_TRUE(Degree::isBetween(10, 20, 20));
  EXPECT_TRUE(Degree::isBetween(350, 10, 350));
  EXPECT_TRUE(Degree::isBetween(350, 10, 10));
}

TEST(DegreeTest, IsBetweenEqualEndsHoldsOnlyTheEnd) {
  EXPECT_TRUE(Degree::isBetween(30, 390, 30));
  EXPECT_FALSE(Degree::isBetween(30, 30, 31));
}

}  // namespace
