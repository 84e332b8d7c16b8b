#ifndef QUOLNARIS_TOOLS_MOTIONCOURSE_H_
#define QUOLNARIS_TOOLS_MOTIONCOURSE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "MotionRecord.h"

// The figures of a walk along a course.
struct CourseSummary {
  double seconds = 0;
  int points = 0;     // reached
  double metres = 0;  // of the course: whole legs, and how much nearer the next point has come
  double way = 0;     // metres walked, between places half a second apart
  int fallsWalking = 0;
  int fallsStopping = 0;
  int fallsStarting = 0;
};

// A row of points that a robot walks to, one after the other: some ahead, some beside it, some
// behind; at every second one it stops and starts anew, unless told to walk on. The points are
// drawn by the seed, so that a motion is not good at one row alone.
//
// Frame and units as in MotionRecord.h.
class MotionCourse {
 public:
  struct Rules {
    double reach = 0.4;  // within this of a point the robot has reached it, metres
    bool stops = true;
  };

  // How long it stops, cycles.
  static constexpr int kStop = 125;
  // A fall so many cycles after a start is one of starting.
  static constexpr int kStart = 100;

  // For a robot that stands at `start` and looks along +x.
  MotionCourse(std::uint32_t seed, const MotionPoint& start, const Rules& rules);

  // One cycle has passed, and this is where the robot is now.
  void observe(const MotionPoint& torso, double tilt);

  const MotionPoint& target() const { return points_[next_]; }
  // The robot shall come to a stand and wait.
  bool stops() const { return stopLeft_ > 0; }
  bool done() const { return next_ + 1 == points_.size() && reachedLast_; }

  const std::vector<MotionPoint>& points() const { return points_; }
  CourseSummary summary() const;

 private:
  void watchPosture(double tilt);
  void watchWay(const MotionPoint& torso);
  void arrive();

  Rules rules_;
  std::vector<MotionPoint> points_;
  std::size_t next_ = 0;
  MotionPoint from_;  // where the leg under way began
  MotionPoint torso_;
  MotionPoint mark_;
  int cycles_ = 0;
  int sinceStart_ = 0;  // cycles since it began to walk from a stand
  int stopLeft_ = 0;    // cycles
  bool lying_ = false;
  bool reachedLast_ = false;
  CourseSummary sum_;
};

// The columns of a course, and one line of values; both end with a line end.
std::string courseHeader();
std::string courseLine(int type, unsigned seed, const CourseSummary& summary);

#endif  // QUOLNARIS_TOOLS_MOTIONCOURSE_H_
