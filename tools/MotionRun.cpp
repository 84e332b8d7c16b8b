#include "MotionRun.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

#include "BasicAction/Reset.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"

namespace {

constexpr double kDegree = 3.141592653589793 / 180;
constexpr int kSettle = 50;       // cycles to stand still with straight joints before the start
constexpr int kFigureEvery = 10;  // cycles between two stick figures, at least
constexpr std::size_t kMaxFigures = 60;
// From which bearing on a course's walk turns, degrees: as the walk to the ball in play on.
constexpr double kCourseError = 3;

// Where the run starts and where the ball waits out of the way, metres.
constexpr double kStartX = -8;
constexpr double kStartY = 0;
constexpr double kAwayX = 0;
constexpr double kAwayY = -9;
// Above the ground, just so that the feet of every robot type clear it.
constexpr double kStartZ = 0.4;

std::string text(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof(buffer), "%.3f", value);
  return buffer;
}

// A ball at rest on the ground.
std::string ballAt(double x, double y) {
  return "(ball (pos " + text(x) + " " + text(y) + " 0.042)(vel 0 0 0))";
}

}  // namespace

std::vector<MotionSample> MotionRun::driveMotion() {
  const MotionKind motion = findMotion(options_, start_);
  player_.shakeHands();
  comeToTheStart();
  prepare(motion.start);
  start_ = player_.place();
  return drive(motion);
}

std::vector<MotionSample> MotionRun::walkCourse(CourseSummary& summary) {
  player_.shakeHands();
  comeToTheStart();
  start_ = player_.place();
  MotionCourse course(options_.seed, start_.torso, options_.course);
  std::vector<MotionSample> samples = {player_.sample(0, true)};
  const int cycles = static_cast<int>(std::lround(options_.seconds * 50));
  for (int cycle = 1; cycle <= cycles && !course.done(); ++cycle) {
    player_.playCycle([&] { stepAlong(course); });
    samples.push_back(player_.sample(cycle, false));
    course.observe(samples.back().torso, samples.back().tilt);
  }
  summary = course.summary();
  return samples;
}

void MotionRun::stepAlong(const MotionCourse& course) {
  if (course.stops()) {
    player_.actions->ChangeAction(player_.reset->execute(1, 10, 5));
    return;
  }
  const Vector target(static_cast<float>(course.target().x), static_cast<float>(course.target().y),
                      0);
  const auto speed = static_cast<float>(options_.speed);
  player_.actions->ChangeAction(player_.walk->omniWalk(target, speed, kCourseError, 1));
}

// Upright at the start of the run, facing the opponent's goal, with the game on: before the
// kick-off the player takes itself to face the goal whatever it does.
void MotionRun::comeToTheStart() {
  if (trainer_ == nullptr) {
    player_.rest(kSettle);
    return;
  }
  player_.rest(10);  // the last beam may still be on its way
  trainer_->say("(agent (unum " + std::to_string(options_.number) + ")(team Left)(move " +
                text(kStartX) + " " + text(kStartY) + " " + text(kStartZ) + " -90))");
  if (!player_.restUntil([&] {
        const MotionPoint& at = player_.place().torso;
        return !player_.knowsTruth() || std::hypot(at.x - kStartX, at.y - kStartY) < 0.1;
      })) {
    throw std::runtime_error("the robot does not come to where the trainer wants it");
  }
  player_.standsUpright();
  player_.rest(kSettle);
  trainer_->say("(playMode PlayOn)");
  if (!player_.restUntil([&] { return player_.WM->playMode == PM_PLAY_ON; })) {
    throw std::runtime_error("the server does not heed the trainer");
  }
  trainer_->say(ballAt(kAwayX, kAwayY));
  player_.rest(kSettle);
}

void MotionRun::prepare(MotionKind::Start start) {
  switch (start) {
    case MotionKind::Start::Standing:
      return;
    case MotionKind::Start::BallAhead:
      return putBall(0.22, 0);
    case MotionKind::Start::BallAtFoot: {
      const bool right = options_.motion != "kick-left";
      return putBall(options_.ballAhead, right ? -options_.ballAside : options_.ballAside);
    }
    case MotionKind::Start::OnTheFront:
      return lieDown(FALL_FRONT);
    case MotionKind::Start::OnTheBack:
      return lieDown(FALL_BACK);
  }
}

// Metres ahead of the torso and to the left of it.
void MotionRun::putBall(double forward, double left) {
  if (trainer_ == nullptr) return;
  const MotionPlace here = player_.place();
  const double c = std::cos(here.heading * kDegree);
  const double s = std::sin(here.heading * kDegree);
  const double x = here.torso.x + forward * c - left * s;
  const double y = here.torso.y + forward * s + left * c;
  trainer_->say(ballAt(x, y));
  if (!player_.restUntil([&] {
        const auto& ball = player_.ball();
        return !ball || std::hypot(ball->x - x, ball->y - y) < 0.03;
      })) {
    throw std::runtime_error("the ball does not come to where the trainer wants it");
  }
  player_.rest(10);
}

// From the neutral stance, as after a gait, tips the robot over with its ankles and lets it lie.
void MotionRun::lieDown(FallOrientation side) {
  bool standing = false;
  for (int i = 0; i < 200 && !standing; ++i) {
    player_.turnCycle([&] { standing = player_.reset->execute(1, 10, 5)->init(); });
  }
  const float ankle = side == FALL_FRONT ? 70 : -44;
  for (int i = 0; i < 200 && player_.tilt() < 75; ++i) {
    player_.turnCycle([&] { player_.setBothLeg(5, ankle, 100, 1); });
  }
  for (int i = 0; i < 75; ++i) player_.turnCycle([] {});
  player_.WM->isFall();
  if (player_.WM->fall != side) std::cerr << "motion: the robot does not lie as it should\n";
}

std::vector<MotionSample> MotionRun::drive(const MotionKind& motion) {
  const int cycles = static_cast<int>(std::lround(options_.seconds * 50));
  const int every = std::max(kFigureEvery, cycles / static_cast<int>(kMaxFigures) + 1);
  std::vector<MotionSample> samples;
  samples.push_back(player_.sample(0, true));
  bool ended = false;
  for (int cycle = 1; cycle <= cycles; ++cycle) {
    player_.turnCycle([&] {
      // A motion that is complete is held, not asked for again.
      if (!ended) ended = motion.step(player_);
    });
    samples.push_back(player_.sample(cycle, cycle % every == 0));
    samples.back().result = player_.actions->preAction;
    samples.back().ended = ended;
  }
  return samples;
}
