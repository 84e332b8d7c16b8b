#ifndef QUOLNARIS_TOOLS_MOTIONRUN_H_
#define QUOLNARIS_TOOLS_MOTIONRUN_H_

#include <vector>

#include "MotionCourse.h"
#include "MotionPlayer.h"
#include "MotionRecord.h"
#include "Motions.h"

// One run of a motion: brings the robot to its start, prepares what the motion needs, drives it and
// writes down each cycle. Every operation throws std::runtime_error if the server has gone or does
// not heed the trainer. What is given must outlive the run; `trainer` may be null.
class MotionRun {
 public:
  MotionRun(const MotionOptions& options, MotionPlayer& player, MotionTrainer* trainer)
      : options_(options), player_(player), trainer_(trainer) {}

  // The motion that the options name; one sample for each cycle, and one ahead of them.
  std::vector<MotionSample> driveMotion();

  // Walks along a course with the long stride, as play on walks to the ball.
  std::vector<MotionSample> walkCourse(CourseSummary& summary);

 private:
  void stepAlong(const MotionCourse& course);
  void comeToTheStart();
  void prepare(MotionKind::Start start);
  void putBall(double forward, double left);
  void lieDown(FallOrientation side);
  std::vector<MotionSample> drive(const MotionKind& motion);

  const MotionOptions& options_;
  MotionPlayer& player_;
  MotionTrainer* trainer_;
  MotionPlace start_;
};

#endif  // QUOLNARIS_TOOLS_MOTIONRUN_H_
