#include "Utilities/Timer.h"

#include <gtest/gtest.h>

namespace {

TEST(TimerTest, CycleStartsAtMinusOne) {
  EXPECT_EQ(Timer().getCycle(), -1);
}

TEST(TimerTest, ResetSetsTheCycle) {
  Timer timer;
  timer.resetCycle(42);
  EXPECT_EQ(timer.getCycle(), 42);
}

TEST(TimerTest, ResetStartsTheCountOfMilliseconds) {
  Timer timer;
  timer.resetCycle(0);
  const long first = timer.now();
  EXPECT_GE(first, 0);
  EXPECT_LT(first, 3600 * 1000);  // and not the time since the epoch
}

TEST(TimerTest, MillisecondsAreRoundedToTheNearest) {
  EXPECT_EQ(Timer::millisecondsBetween({10, 0}, {10, 499}), 0);
  EXPECT_EQ(Timer::millisecondsBetween({10, 0}, {10, 500}), 1);
  EXPECT_EQ(Timer::millisecondsBetween({10, 0}, {10, 1499}), 1);
  EXPECT_EQ(Timer::millisecondsBetween({10, 0}, {10, 1500}), 2);
}

TEST(TimerTest, MillisecondsSpanSeconds) {
  EXPECT_EQ(Timer::millisecondsBetween({10, 0}, {12, 0}), 2000);
  EXPECT_EQ(Timer::millisecondsBetween({10, 999000}, {11, 1000}), 2);
  EXPECT_EQ(Timer::millisecondsBetween({0, 0}, {1700000000, 0}), 1700000000000);
}

}  // namespace
