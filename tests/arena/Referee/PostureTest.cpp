// Who lies or does not stand for too long.
#include "Referee/Posture.h"

#include <gtest/gtest.h>

namespace arena {
namespace {

int cyclesUntilIncapable(double height, bool goalie, double y = 0) {
  Posture posture;
  for (int cycle = 1; cycle < 5000; ++cycle) {
    posture.update(height, y);
    if (posture.incapable(goalie)) return cycle;
  }
  return 0;
}

TEST(PostureTest, LyingAndNotStandingHaveTheirLimits) {
  EXPECT_EQ(cyclesUntilIncapable(0.149, false), 751);   // more than 15 s
  EXPECT_EQ(cyclesUntilIncapable(0.149, true), 1501);   // 30 s
  EXPECT_EQ(cyclesUntilIncapable(0.151, false), 1501);  // 30 s
  EXPECT_EQ(cyclesUntilIncapable(0.249, true), 3001);   // 60 s
  EXPECT_EQ(cyclesUntilIncapable(0.25, false), 0);
}

TEST(PostureTest, NobodyIsCountedBesideThePitch) {
  EXPECT_EQ(cyclesUntilIncapable(0.1, false, 10.1), 0);
  EXPECT_EQ(cyclesUntilIncapable(0.1, false, -10.2), 0);
  EXPECT_EQ(cyclesUntilIncapable(0.1, false, -10.09), 751);
}

TEST(PostureTest, OneUprightCycleClearsLyingButNotNotStanding) {
  Posture posture;
  for (int i = 0; i < 700; ++i) posture.update(0.1, 0);
  posture.update(0.26, 0);
  for (int i = 0; i < 750; ++i) posture.update(0.1, 0);
  EXPECT_FALSE(posture.incapable(false));
  EXPECT_FALSE(posture.standing());
  for (int i = 0; i < 51; ++i) posture.update(0.2, 0);
  EXPECT_TRUE(posture.incapable(false));  // 1501 cycles not standing
}

TEST(PostureTest, StandsAgainAfterMoreThanHalfASecondUpright) {
  Posture posture;
  posture.update(0.2, 0);
  for (int i = 0; i < 25; ++i) posture.update(0.3, 0);
  EXPECT_FALSE(posture.standing());
  posture.update(0.3, 0);
  EXPECT_TRUE(posture.standing());
}

}  // namespace
}  // namespace arena
