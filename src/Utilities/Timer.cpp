#include "Utilities/Timer.h"

long Timer::now() const {
  timeval time;
  gettimeofday(&time, nullptr);
  return millisecondsBetween(beginning, time);
}

void Timer::resetCycle(long newCycle) {
  cycle = newCycle;
  gettimeofday(&beginning, nullptr);
}

long Timer::millisecondsBetween(const timeval& from, const timeval& to) {
  const long wholeSeconds = (to.tv_sec - from.tv_sec) * 1000;
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): a clock runs forward, so nothing is negative here
  return static_cast<long>((to.tv_usec - from.tv_usec) / 1000.0 + wholeSeconds + 0.5);
}
