#ifndef QUOLNARIS_UTILITIES_TIMER_H_
#define QUOLNARIS_UTILITIES_TIMER_H_

#include <sys/time.h>

// A wall clock with a cycle number. Nothing in the player resets it, so its cycle stays -1 and its
// time has no meaning: the time base of the player is `WorldModel::gameTime`. The log streams hold
// it and drop what it says.
class Timer {
 public:
  // Milliseconds since the last `resetCycle`, rounded to the nearest.
  long now() const;

  long getCycle() const { return cycle; }

  // Sets the cycle number and starts the count of milliseconds anew.
  void resetCycle(long newCycle);

  // Milliseconds from one time to another, rounded to the nearest, halves upward.
  static long millisecondsBetween(const timeval& from, const timeval& to);

 private:
  long cycle = -1;
  timeval beginning = {};
};

#endif  // QUOLNARIS_UTILITIES_TIMER_H_
