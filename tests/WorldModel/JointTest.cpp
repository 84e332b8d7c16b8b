#include "WorldModel/Joint.h"

#include <gtest/gtest.h>

namespace {

TEST(JointTest, StartsNamelessAtZero) {
  const Joint joint;
  EXPECT_EQ(joint.getName(), "");
  EXPECT_EQ(joint.getAngle(), 0.0f);
}

TEST(JointTest, HoldsNameAndAngle) {
  Joint joint("lle3", -12.5f);
  EXPECT_EQ(joint.getName(), "lle3");
  EXPECT_EQ(joint.getAngle(), -12.5f);
  joint.setName("rle4");
  joint.setAngle(30.25f);
  EXPECT_EQ(joint.getName(), "rle4");
  EXPECT_EQ(joint.getAngle(), 30.25f);
}

}  // namespace
