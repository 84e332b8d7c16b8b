#include "BasicAction/Stepping.h"

#include <gtest/gtest.h>

#include "support/FakeBody.h"

namespace {

using support::FakeBody;

TEST(SteppingTest, AFootMovesAndBothPlacesAreTold) {
  double right = 10, left = 20, swing = 0, standing = 0;
  stepping::moveFoot(true, 5, right, left, swing, standing);
  EXPECT_EQ(right, 15);
  EXPECT_EQ(left, 20);
  EXPECT_EQ(swing, 15);
  EXPECT_EQ(standing, 20);
  stepping::moveFoot(false, -2, right, left, swing, standing);
  EXPECT_EQ(right, 15);
  EXPECT_EQ(left, 18);
  EXPECT_EQ(swing, 18);
  EXPECT_EQ(standing, 15);
  EXPECT_EQ(stepping::shiftSign(true), -1);
  EXPECT_EQ(stepping::shiftSign(false), 1);
}

TEST(SteppingTest, TheFourthPhaseEndsAStep) {
  int phase = 0;
  double z = 1, swing = 2, standing = 3;
  for (int next = 1; next < 4; ++next) {
    EXPECT_FALSE(stepping::endPhase(phase, z, swing, standing));
    EXPECT_EQ(phase, next);
    EXPECT_EQ(z, 1);
  }
  EXPECT_TRUE(stepping::endPhase(phase, z, swing, standing));
  EXPECT_EQ(phase, 0);
  EXPECT_EQ(z, 0);
  EXPECT_EQ(swing, 0);
  EXPECT_EQ(standing, 0);
}

TEST(SteppingTest, ASpeedStaysInSinglePrecisionUntilItIsCut) {
  FakeBody body;
  FakeBody::configure("Turn", "turn", "speed", "0.1");
  const stepping::Table scaled = {
      .file = "Turn", .group = "turn", .stride = "Yankle", .speed = {70, 30}};
  EXPECT_EQ(stepping::readSpeed(scaled), 0.1f * 70.0f + 30.0f);
  const stepping::Table plain = {.file = "Turn", .group = "turn", .stride = "Yankle"};
  EXPECT_EQ(stepping::readSpeed(plain), 0.1f);
}

}  // namespace
