#ifndef QUOLNARIS_RECORDING_MATCHREPORT_H_
#define QUOLNARIS_RECORDING_MATCHREPORT_H_

#include <Eigen/Core>
#include <array>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "Common/Events.h"
#include "Common/GameState.h"
#include "Common/Scene.h"
#include "Referee/BallWatch.h"

namespace arena {

// Adds up a match: score, goals, possession, and for each player the distance walked, falls,
// fouls and late answers. Sides are those at the end, also where the teams have changed them. A
// player who comes back under the same number goes on with his sums.
class MatchReport {
 public:
  // REQUIRES: called once in each cycle, after the referee.
  void observe(const Scene& scene, const GameState& game, std::span<const GoalEvent> goals,
               std::span<const FoulEvent> fouls, const Touch& lastTouch);
  // The player's answer was not there when the cycle needed it.
  void noteLateAnswer(Side side, int number) { ++players_[{side, number}].lateAnswers; }
  // What the player said in a cycle, and how many messages of others it heard.
  void noteCalls(Side side, int number, bool said, int heard) {
    players_[{side, number}].said += said ? 1 : 0;
    players_[{side, number}].heard += heard;
  }

  // The report as JSON text, indented.
  std::string json() const;
  // Writes it to a file; returns whether that succeeded.
  bool write(const std::string& path) const;

 private:
  struct Player {
    int type = 0;
    double distance = 0;  // m
    int falls = 0;
    int lateAnswers = 0;
    int said = 0;
    int heard = 0;  // of others
    std::map<FoulType, int> fouls;
    // Watching the torso.
    bool seen = false;
    bool down = false;
    Eigen::Vector2d place = Eigen::Vector2d::Zero();  // in the last cycle
    Eigen::Vector2d mark = Eigen::Vector2d::Zero();   // from where the next piece is measured
    int sinceMark = 0;                                // cycles
  };

  void watch(const SceneRobot& robot);
  void changeSides();

  std::map<std::pair<Side, int>, Player> players_;
  std::vector<GoalEvent> goals_;
  std::array<long, 3> possession_{};  // cycles of open play, by side of the last toucher
  GameState game_;
  long cycles_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_MATCHREPORT_H_
