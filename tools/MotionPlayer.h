#ifndef QUOLNARIS_TOOLS_MOTIONPLAYER_H_
#define QUOLNARIS_TOOLS_MOTIONPLAYER_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "Agent/OurPlayer.h"
#include "FramedLink.h"
#include "MotionRecord.h"

// The trainer's side of the server: says what the referee shall do. Without one, everything happens
// where the server puts the robot.
class MotionTrainer {
 public:
  MotionTrainer(const std::string& host, std::uint16_t port) : link_(host, port) {}

  // Is sent ahead of the player's next answer: what a trainer says between two cycles is heard in
  // the one or the other, as it happens.
  void say(const std::string& command) { waiting_.push_back(command); }

  void send() {
    for (const std::string& command : waiting_) link_.send(command);
    waiting_.clear();
  }

  // Throws away what the server tells its viewers, so that it does not pile up.
  void drain() { link_.drain(); }

 private:
  FramedLink link_;
  std::vector<std::string> waiting_;
};

// What the robot is, wherever the knowledge comes from.
struct MotionPlace {
  MotionPoint torso;   // m, pitch
  double heading = 0;  // degrees, 0 towards the opponents' goal, positive to the left
};

// The player's code with the decision taken out: each cycle does one motion. Positions are metres
// in the frame of the pitch, angles degrees.
class MotionPlayer : public OurPlayer {
 public:
  // One cycle of the motion; true once it is complete, for motions that have an end.
  using Motion = std::function<bool(MotionPlayer&)>;

  // `argv`: the player's own command line. `trainer`: may be null; must outlive the player.
  // `noise`: standard deviation of an error on each joint's speed, rad/s, drawn by `seed`.
  MotionPlayer(int argc, char** argv, MotionTrainer* trainer, double noise, std::uint32_t seed);

  // Takes part in the game: scene, team, start place. Throws std::exception if there is no server.
  void shakeHands();

  // One cycle of the server: takes its message, lets `act` command the joints, answers. Throws
  // std::runtime_error if the server has gone.
  void turnCycle(const std::function<void()>& act);
  // So many cycles with straight joints.
  void rest(int cycles);
  // Rests until `there` holds; false if it does not come to that within half a minute.
  bool restUntil(const std::function<bool()>& there);
  // One cycle as in play on: stands up when it lies, otherwise looks around and does `act`.
  void playCycle(const std::function<void()>& act);

  // Whether the server tells the ground truth.
  bool knowsTruth() const { return truth_.has_value(); }
  const std::optional<MotionPoint>& ball() const { return ball_; }
  // By the ground truth, or as believed.
  MotionPlace place() const;
  double tilt() const { return orientation_.tilt(); }

  // To be said when the robot is known to stand and to look at the opponent's goal.
  void standsUpright() { orientation_.setUpright(0); }

  MotionSample sample(int cycle, bool withFigure);

 private:
  void disturb();
  void readOrientation();
  void readTruth();
  MotionPoint upright(const MotionPoint& p) const { return orientation_.toUpright(p); }
  MotionPoint upright(const Matrix<4, 4>& position) const;
  StickFigure figure();

  MotionTrainer* trainer_;
  std::mt19937 random_;
  std::normal_distribution<double> error_;
  double noise_;
  TorsoOrientation orientation_;
  std::optional<MotionPoint> truth_;
  std::optional<MotionPoint> ball_;
};

#endif  // QUOLNARIS_TOOLS_MOTIONPLAYER_H_
