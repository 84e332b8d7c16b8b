#ifndef QUOLNARIS_TOOLS_MOTIONS_H_
#define QUOLNARIS_TOOLS_MOTIONS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "MotionCourse.h"
#include "MotionPlayer.h"

// What to do, where, and how to tell about it.
struct MotionOptions {
  std::string motion;  // a name of allMotions(), or kCourse
  std::string host = "127.0.0.1";
  std::uint16_t agentPort = 3100;
  std::uint16_t trainerPort = 3200;  // 0: there is no trainer
  int type = 0;
  int number = 1;
  double seconds = 8;        // of play
  double lead = 2.5;         // seconds at the start that speeds leave out
  double angle = 120;        // bearing of the target of turns and curves, degrees
  double speed = 1;          // where the ramp of the omni gaits stops
  double ballAhead = 0.155;  // of the torso, for kicks, metres
  double ballAside = 0.04;   // to the kicking side, metres
  MotionCourse::Rules course;
  double noise = 0;  // rad/s
  std::uint32_t seed = 1;
  std::string trace;  // file names; empty: none
  std::string svg;
  bool csv = false;
  bool list = false;
};

// The motion that is none of a single kind: a walk along a row of points.
inline constexpr const char* kCourse = "course";

// A motion by name: what it needs before, what it does each cycle.
struct MotionKind {
  const char* name;
  const char* help;
  enum class Start { Standing, BallAtFoot, BallAhead, OnTheFront, OnTheBack } start;
  MotionPlayer::Motion step;
};

// All motions but the course. `start` holds the place from which the run begins, once it has begun;
// it must outlive the result.
std::vector<MotionKind> allMotions(const MotionOptions& options, const MotionPlace& start);

// The motion that the options name. Throws std::runtime_error where there is none of that name.
MotionKind findMotion(const MotionOptions& options, const MotionPlace& start);

#endif  // QUOLNARIS_TOOLS_MOTIONS_H_
