#include "Percepts/PerceptText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

namespace arena {
namespace {

std::string real(double value) {
  std::string text;
  appendReal(text, value);
  return text;
}

std::string printed(double value) {
  char text[400];
  std::snprintf(text, sizeof(text), "%.2f", value);
  return text;
}

TEST(PerceptTextTest, WritesTwoDecimals) {
  EXPECT_EQ(real(0.0), "0.00");
  EXPECT_EQ(real(1.0), "1.00");
  EXPECT_EQ(real(-12.34), "-12.34");
  EXPECT_EQ(real(104.87), "104.87");
  EXPECT_EQ(real(0.999), "1.00");
  EXPECT_EQ(real(99.995000001), "100.00");
}

TEST(PerceptTextTest, KeepsTheSignOfAVanishingNumber) {
  EXPECT_EQ(real(-0.0), "-0.00");
  EXPECT_EQ(real(-0.001), "-0.00");
  EXPECT_EQ(real(0.001), "0.00");
}

TEST(PerceptTextTest, RoundsTiesLikeTheCLibrary) {
  for (double value : {0.125, 0.375, -0.625, 0.005, 1.005, 2.675, 1e6 + 0.125, 0.015}) {
    EXPECT_EQ(real(value), printed(value));
  }
}

TEST(PerceptTextTest, AgreesWithTheCLibraryOnManyNumbers) {
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (int i = 0; i < 200000; ++i) {
    const double value = uniform(engine) * std::pow(10.0, i % 8 - 3);
    ASSERT_EQ(real(value), printed(value));
  }
}

TEST(PerceptTextTest, CopesWithHugeAndUndefinedNumbers) {
  EXPECT_EQ(real(1e15), "1000000000000000.00");
  EXPECT_EQ(real(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(real(std::numeric_limits<double>::max()).size(), 312u);
}

TEST(PerceptTextTest, WritesVectorsWithSingleSpaces) {
  std::string text = "(a ";
  appendReals(text, {0.02, -0.11, 9.81});
  EXPECT_EQ(text, "(a 0.02 -0.11 9.81");
}

TEST(PerceptTextTest, WritesIntegers) {
  std::string text;
  appendInteger(text, 11);
  appendInteger(text, -3);
  EXPECT_EQ(text, "11-3");
}

}  // namespace
}  // namespace arena
