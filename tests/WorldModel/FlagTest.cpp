#include "WorldModel/Flag.h"

#include <gtest/gtest.h>

namespace {

TEST(FlagTest, StartsWithoutName) {
  Flag flag;
  EXPECT_EQ(flag.getFlagName(), "");
  flag.setFlagName("F1L");
  EXPECT_EQ(flag.getFlagName(), "F1L");
}

}  // namespace
