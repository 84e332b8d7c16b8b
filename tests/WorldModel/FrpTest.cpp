#include "WorldModel/Frp.h"

#include <gtest/gtest.h>

namespace {

TEST(FrpTest, SettersAnswerTrue) {
  FRP frp;
  EXPECT_TRUE(frp.setCenter(Vector(1, 2, 3)));
  EXPECT_TRUE(frp.setForce(Vector(4, 5, 6)));
  EXPECT_TRUE(frp.setLastTimeSensed(7.5));
  EXPECT_EQ(frp.getCenter(), Vector(1, 2, 3));
  EXPECT_EQ(frp.getForce(), Vector(4, 5, 6));
  EXPECT_EQ(frp.getLastTimeSensed(), 7.5);
}

TEST(FrpTest, AssignmentCopiesAllFourFields) {
  FRP source;
  source.type = FRP_RIGHT_FOOT;
  source.setCenter(Vector(1, 2, 3));
  source.setForce(Vector(4, 5, 6));
  source.setLastTimeSensed(7.5);
  FRP target;
  target = source;
  EXPECT_EQ(target.getTFRP(), FRP_RIGHT_FOOT);
  EXPECT_EQ(target.getCenter(), Vector(1, 2, 3));
  EXPECT_EQ(target.getForce(), Vector(4, 5, 6));
  EXPECT_EQ(target.getLastTimeSensed(), 7.5);
}

}  // namespace
