#include "Common/DecimalText.h"

#include <gtest/gtest.h>

#include <limits>

namespace arena {
namespace {

std::string fixed(bool negative, std::uint32_t whole, int decimals) {
  std::string text;
  appendFixed(text, negative, whole, decimals);
  return text;
}

TEST(DecimalTextTest, TakesTheNearestWholeNumber) {
  EXPECT_EQ(nearestWhole(0.0), 0u);
  EXPECT_EQ(nearestWhole(0.49), 0u);
  EXPECT_EQ(nearestWhole(0.51), 1u);
  EXPECT_EQ(nearestWhole(9999999.7), 10000000u);
}

TEST(DecimalTextTest, LeavesTiesAndWhatIsOutOfRangeToOthers) {
  for (const double number :
       {0.5, 2.5 - 1e-9, 2.5 + 1e-9, -1.0, 1e7, 1e300, std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(nearestWhole(number)) << number;
  }
}

TEST(DecimalTextTest, WritesEveryDecimal) {
  EXPECT_EQ(fixed(false, 0, 0), "0");
  EXPECT_EQ(fixed(true, 0, 2), "-0.00");
  EXPECT_EQ(fixed(false, 7, 3), "0.007");
  EXPECT_EQ(fixed(true, 12345, 2), "-123.45");
  EXPECT_EQ(fixed(false, 4294967295u, 9), "4.294967295");
  EXPECT_EQ(fixed(true, 4294967295u, 0), "-4294967295");
}

}  // namespace
}  // namespace arena
