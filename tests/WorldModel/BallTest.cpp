#include "WorldModel/Ball.h"

#include <gtest/gtest.h>

namespace {

TEST(BallTest, StartsWithItsRadiusAsPreviousHeight) {
  const Ball ball;
  EXPECT_EQ(ball.getPreviousPosition(), Vector(0, 0, 0.04f));
  EXPECT_EQ(ball.getGlobalPosition(), Vector(0, 0, 0));
  EXPECT_EQ(ball.dks, 1);
  EXPECT_EQ(ball.getLastTimeSeen(), -1000.0f);
}

TEST(BallTest, KeepsTheGroundTruthApart) {
  Ball ball;
  ball.setServerBallPos(Vector(1, 2, 3));
  EXPECT_EQ(ball.getServerBallPos(), Vector(1, 2, 3));
  EXPECT_EQ(ball.getGlobalPosition(), Vector(0, 0, 0));
}

}  // namespace
