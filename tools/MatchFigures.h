#ifndef QUOLNARIS_TOOLS_MATCHFIGURES_H_
#define QUOLNARIS_TOOLS_MATCHFIGURES_H_

#include <Eigen/Core>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Recording/RecordingReader.h"

namespace arena {

// What a recorded match tells about play: adds up its cycles, one after the other. Sides are those
// of each moment; a match in which the teams change sides mixes them.
//
// Lengths in metres, times in seconds of game time, the pitch's frame (the right goal at x = 15).
class MatchFigures {
 public:
  // Where a player was, and whether its torso was upright (z of its up axis, 1: upright).
  struct Sample {
    float time = 0;
    double x = 0;
    double y = 0;
    double up = 1;
  };

  struct Player {
    int type = 0;
    int falls = 0;                           // tilted by over 60 degrees for half a second
    int standUps = 0;                        // upright for half a second after that
    std::map<std::string, int> fallsByKind;  // by the kind of play mode in which the tilt began
    std::map<std::string, int> fouls;        // by kind
    double walked = 0;                       // between places half a second apart
    double outside = 0;                      // seconds of play more than 1 m outside the pitch
    double down = 0;                         // seconds tilted by over 60 degrees
    double upright = 0;                      // seconds of play neither down nor standing up
    std::vector<Sample> places;              // as far as they were asked for
  };

  struct Goal {
    double time = 0;
    Side side = Side::Left;
    Side scorerSide = Side::None;
    int scorer = 0;
  };

  struct Touch {
    double time = 0;
    Side side = Side::None;  // of the robot whose torso was nearest
    int number = 0;
  };

  // `placesEvery`: seconds between two samples of the players' places; 0: none are kept.
  explicit MatchFigures(double placesEvery = 0) : placesEvery_(placesEvery) {}

  // REQUIRES: called with every cycle of the recording, in order.
  void observe(const RecordedCycle& cycle);

  // All of them as JSON text, in one line. `names`: of the teams, by side.
  std::string json(const std::array<std::string, 2>& names) const;

  long cycles() const { return cycles_; }
  const std::array<int, 2>& score() const { return score_; }
  const std::vector<Goal>& goals() const { return goals_; }
  // The first cycle since the first kick-off in which the ball was 2 cm from where it had lain.
  const std::optional<Touch>& firstTouch() const { return firstTouch_; }
  // Way of the ball while the game was on, wherever to.
  double ballMetres() const { return ballMetres_; }
  // The parts of that way towards the other side's goal line, by side.
  const std::array<double, 2>& ballForward() const { return ballForward_; }
  // Players of a side within 1 m of the ball, on average over the seconds of open play.
  double crowd(Side side) const;
  const std::map<std::pair<Side, int>, Player>& players() const { return players_; }

 private:
  // What is remembered of a player from cycle to cycle.
  struct Watch {
    bool down = false;
    int since = 0;     // cycles for which it has looked changed
    std::string kind;  // of the mode in which that began
    bool seen = false;
    Eigen::Vector2d place = Eigen::Vector2d::Zero();
    Eigen::Vector2d mark = Eigen::Vector2d::Zero();
    int sinceMark = 0;  // cycles
    float nextSample = 0;
  };

  void watchBall(const RecordedCycle& cycle);
  void watchRobot(const RecordedCycle& cycle, const RecordedRobot& robot);
  void watchPosture(Player& player, Watch& watch, double up, PlayMode mode);
  void watchWay(Player& player, Watch& watch, const Eigen::Vector2d& place);

  double placesEvery_;
  long cycles_ = 0;
  float time_ = 0;
  double playSeconds_ = 0;  // of open play
  std::array<int, 2> score_ = {0, 0};
  std::vector<Goal> goals_;
  std::optional<Touch> firstTouch_;
  std::optional<Eigen::Vector2d> rest_;      // where the ball lay at the first kick-off
  std::optional<Eigen::Vector2d> lastBall_;  // in the cycle before, if the game was on
  double ballMetres_ = 0;
  std::array<double, 2> ballForward_ = {0, 0};
  std::array<double, 2> crowd_ = {0, 0};  // robot seconds
  std::map<std::pair<Side, int>, Player> players_;
  std::map<std::pair<Side, int>, Watch> watches_;
};

// The figures of a whole recording. Throws RecordingError if it cannot be read.
MatchFigures readMatchFigures(const std::string& path, double placesEvery,
                              std::array<std::string, 2>& names);

}  // namespace arena

#endif  // QUOLNARIS_TOOLS_MATCHFIGURES_H_
