#ifndef QUOLNARIS_FIDELITY_TRACEREPLAY_H_
#define QUOLNARIS_FIDELITY_TRACEREPLAY_H_

#include <cstddef>
#include <string>
#include <vector>

#include "Fidelity/Trace.h"

namespace arena {

// How far the torso of a sleeping robot of this type is put forward against its limbs before the
// first row, m; 0 for most types. It makes up for digits of the recorded stance that are not
// recorded: motions that balance on an edge blow them up within seconds.
// Throws std::out_of_range unless 0 <= type < kRobotTypeCount.
double nudgeOf(int type);

// Plays a match of one agent that gives the answers of a recording, from the same start, and
// returns what it senses: as many rows as the recording has, with the recording's times and
// commands.
std::vector<TraceRow> replayTrace(const Trace& trace, double nudge);

// How far a replay is from its recording. Root mean squares over the compared rows; of several
// channels the worst one counts.
struct TraceDifference {
  std::size_t rows = 0;        // compared: all, or those before a fall's first contact
  double angle = 0.0;          // degrees, worst joint
  double torso = 0.0;          // m, distance
  double gyro = 0.0;           // degrees/s, worst axis
  double accelerometer = 0.0;  // part of the recording's range, worst axis
  double footForce = 0.0;      // part of the recording's range, worst foot and axis
  double ball = 0.0;           // largest distance by the distance travelled; 0 for a ball at rest
  double angleMax = 0.0;       // degrees, largest single difference
  double torsoMax = 0.0;       // m
};

// The first row in which a part other than the feet is at the ground; the number of rows if none
// is.
std::size_t firstFallContact(const std::vector<TraceRow>& replayed);

// Whether a difference is within what the arena promises: joint angles 0.1 degrees, torso 2 mm,
// gyro 2 degrees/s, accelerometer and foot force 5 % of their range, ball 1 % of its way.
bool withinTolerance(const TraceDifference& difference);

// Compares rows 0 to `end` - 1.
TraceDifference compareTrace(const Trace& recorded, const std::vector<TraceRow>& replayed,
                             std::size_t end);

}  // namespace arena

#endif  // QUOLNARIS_FIDELITY_TRACEREPLAY_H_
