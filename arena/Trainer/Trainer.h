#ifndef QUOLNARIS_TRAINER_TRAINER_H_
#define QUOLNARIS_TRAINER_TRAINER_H_

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "Referee/PerRobot.h"
#include "Referee/Referee.h"
#include "Referee/RefereeWorld.h"
#include "Wire/SExpression.h"

namespace arena {

// Carries out the commands that come in at the monitor port: (kickOff Left), (playMode PlayOn),
// (ball (pos 1 2 0.042)(vel 3 0 0)) and so on.
//
// Frames wait until the start of the next cycle and are then applied in order of arrival. Unknown
// commands, unknown players and numbers that are not finite or too large for the pitch are
// ignored; no command is answered.
class Trainer {
 public:
  // What may wait for the next cycle; frames beyond are dropped.
  static constexpr std::size_t kMaxFrames = 4096;
  static constexpr std::size_t kMaxBytes = std::size_t{4} << 20;
  // Coordinates and speeds of larger size are ignored, m and m/s.
  static constexpr double kMaxNumber = 1000.0;

  // Both must outlive the trainer.
  Trainer(RefereeWorld& world, Referee& referee) : world_(world), referee_(referee) {}

  // Takes the text of one frame. Returns whether there was room for it.
  bool receive(std::string_view frame);
  // Applies what has arrived. REQUIRES: called at the start of a cycle, before the agents' actions.
  void apply();

  // Whether a frame that has arrived, applied or not, asks for the end of the server.
  bool stopReceived() const { return stopReceived_; }
  // Whether the end of the server was asked for in what has been applied.
  bool stopRequested() const { return stopRequested_; }
  // Whether a full monitor message was asked for since the last call.
  bool takeFullStateRequest();
  // The robot with the selection marker, or kNoRobot.
  RobotHandle selected() const { return selected_; }

  // What a trainer has set; kept, but without effect on motion. Both 0 by default.
  struct Condition {
    double battery = 0;
    double temperature = 0;
  };
  Condition condition(RobotHandle robot) const { return conditions_.get(robot); }

 private:
  using Node = SExpression::Node;
  using Command = void (Trainer::*)(Node);
  struct Entry {
    std::string_view name;
    Command command;
  };
  static const Entry kCommands[];

  void kickOff(Node command);
  void playMode(Node command);
  void dropBall(Node command);
  void ball(Node command);
  void agent(Node command);
  void kill(Node command);
  void reposition(Node command);
  void select(Node command);
  void time(Node command);
  void score(Node command);
  void requestFullState(Node command);
  void stop(Node command);

  // The robot that a command names by unum and team; without both of them `otherwise`.
  RobotHandle named(Node command, RobotHandle otherwise) const;

  RefereeWorld& world_;
  Referee& referee_;
  SExpression expression_;
  std::deque<std::string> frames_;
  std::size_t bytes_ = 0;
  RobotHandle selected_ = kNoRobot;
  PerRobot<Condition> conditions_;
  bool fullStateRequested_ = false;
  bool stopReceived_ = false;
  bool stopRequested_ = false;
};

}  // namespace arena

#endif  // QUOLNARIS_TRAINER_TRAINER_H_
