#include "MotionCourse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <random>

namespace {

constexpr double kCycle = 0.02;  // seconds
constexpr double kDegree = 3.141592653589793 / 180;
constexpr int kPiece = 25;  // cycles between two places of which the distance is way

// Bearings of the next point from the direction of the last leg, degrees; each comes once.
constexpr std::array<double, 9> kBearings = {0, 20, -20, 60, -60, 110, -110, 160, -160};
constexpr double kShortest = 1.5;  // metres of a leg
constexpr double kLongest = 4.0;
// All points lie within this, metres.
constexpr double kInsideX = 12;
constexpr double kInsideY = 7;

double distance(const MotionPoint& a, const MotionPoint& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

MotionPoint ahead(const MotionPoint& from, double heading, double length) {
  return {from.x + length * std::cos(heading * kDegree),
          from.y + length * std::sin(heading * kDegree), 0};
}

bool isInside(const MotionPoint& p) {
  return std::abs(p.x) < kInsideX && std::abs(p.y) < kInsideY;
}

// A number from 0 to 1. The library's distributions are free to differ; this is the same
// everywhere.
double draw(std::mt19937& random) {
  return static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
}

}  // namespace

MotionCourse::MotionCourse(std::uint32_t seed, const MotionPoint& start, const Rules& rules)
    : rules_(rules), from_(start), torso_(start), mark_(start) {
  std::mt19937 random(seed);
  std::vector<double> bearings(kBearings.begin(), kBearings.end());
  for (std::size_t left = bearings.size(); left > 1; --left) {
    std::swap(bearings[left - 1], bearings[random() % left]);
  }
  MotionPoint at = start;
  double heading = 0;
  for (double bearing : bearings) {
    const double length = kShortest + (kLongest - kShortest) * draw(random);
    // A point outside the pitch changes places with its mirror image, or with one on the way back
    // to the middle.
    if (!isInside(ahead(at, heading + bearing, length))) bearing = -bearing;
    if (!isInside(ahead(at, heading + bearing, length))) {
      bearing = std::atan2(-at.y, -at.x) / kDegree - heading;
    }
    heading += bearing;
    at = ahead(at, heading, length);
    points_.push_back(at);
  }
}

void MotionCourse::observe(const MotionPoint& torso, double tilt) {
  if (done()) return;
  ++cycles_;
  torso_ = torso;
  watchPosture(tilt);
  watchWay(torso);
  if (lying_) return;
  ++sinceStart_;
  if (stopLeft_ > 0) {
    if (--stopLeft_ == 0) sinceStart_ = 0;
    return;
  }
  if (distance(torso, target()) < rules_.reach) arrive();
}

void MotionCourse::arrive() {
  sum_.metres += distance(from_, target());
  ++sum_.points;
  if (next_ + 1 == points_.size()) {
    reachedLast_ = true;
    return;
  }
  from_ = target();
  ++next_;
  if (rules_.stops && sum_.points % 2 == 0) stopLeft_ = kStop;
}

void MotionCourse::watchPosture(double tilt) {
  if (lying_) {
    lying_ = tilt >= kUprightTilt;
    if (!lying_) sinceStart_ = 0;
    return;
  }
  if (tilt <= kLyingTilt) return;
  lying_ = true;
  int& falls = stops()                ? sum_.fallsStopping
               : sinceStart_ < kStart ? sum_.fallsStarting
                                      : sum_.fallsWalking;
  ++falls;
}

void MotionCourse::watchWay(const MotionPoint& torso) {
  if (cycles_ % kPiece != 0) return;
  sum_.way += distance(torso, mark_);
  mark_ = torso;
}

CourseSummary MotionCourse::summary() const {
  CourseSummary result = sum_;
  result.seconds = cycles_ * kCycle;
  if (!done()) {
    result.metres += std::max(0.0, distance(from_, target()) - distance(torso_, target()));
  }
  return result;
}

std::string courseHeader() {
  return "motion,type,seed,seconds,points,metres,way,falls_walking,falls_stopping,falls_starting\n";
}

std::string courseLine(int type, unsigned seed, const CourseSummary& s) {
  char text[160];
  std::snprintf(text, sizeof(text), "course,%d,%u,%.2f,%d,%.3f,%.3f,%d,%d,%d\n", type, seed,
                s.seconds, s.points, s.metres, s.way, s.fallsWalking, s.fallsStopping,
                s.fallsStarting);
  return text;
}
