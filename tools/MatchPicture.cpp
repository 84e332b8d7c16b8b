#include "MatchPicture.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

#include "PitchPicture.h"
#include "Recording/RecordingReader.h"

namespace arena {

namespace {

using Point = PitchPicture::Point;

// Farther in one cycle, and somebody has put it there.
constexpr double kBallJump = 0.5;    // m
constexpr double kRobotJump = 0.15;  // m

constexpr const char* kTeamColours[] = {"#1e4fa3", "#c62828"};
constexpr const char* kBallColour = "#fff176";
constexpr const char* kNames[] = {"left", "right"};

// A path that is interrupted where its points lie too far apart.
class Track {
 public:
  void add(const Eigen::Vector3d& place, double jump) {
    const Point point{place.x(), place.y()};
    if (!path_.empty() && std::hypot(point.x - last_.x, point.y - last_.y) > jump) interrupt();
    path_.push_back(point);
    last_ = point;
  }
  void interrupt() {
    const double none = std::numeric_limits<double>::quiet_NaN();
    path_.push_back({none, none});
  }
  const PitchPicture::Path& path() const { return path_; }
  const Point& last() const { return last_; }

 private:
  PitchPicture::Path path_;
  Point last_;
};

struct Goal {
  GoalEvent event;
  Point place;
  std::array<int, 2> score;
};

std::string seconds(double time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", time);
  return text;
}

std::string scoreText(const std::array<int, 2>& score) {
  return std::to_string(score[0]) + " : " + std::to_string(score[1]);
}

std::string scorerOf(const GoalEvent& goal) {
  if (goal.scorerSide == Side::None) return "";
  const std::string own = goal.scorerSide == goal.side ? "" : " (own goal)";
  return ", number " + std::to_string(goal.scorer) + own;
}

// The goals as far as they fit below the title.
std::string goalList(const std::vector<Goal>& goals) {
  constexpr std::size_t kShown = 3;
  std::string text;
  for (std::size_t i = 0; i < goals.size() && i < kShown; ++i) {
    text += "; " + scoreText(goals[i].score) + " at " +
            seconds(static_cast<double>(goals[i].event.time)) + scorerOf(goals[i].event);
  }
  if (goals.size() > kShown) text += " ...";
  return text;
}

// Where the teams change sides at half time, everything is drawn by the sides on which they began:
// a team keeps its colour.
class FirstSides {
 public:
  // REQUIRES: called with the names of the teams in each cycle.
  void observe(const std::array<std::string, 2>& names) {
    if (names == names_) return;
    if (names[0] == names_[1] && names[1] == names_[0]) changed_ = !changed_;
    names_ = names;
  }
  Side of(Side side) const { return changed_ ? opponent(side) : side; }
  template <class T>
  std::array<T, 2> of(const std::array<T, 2>& bySide) const {
    return changed_ ? std::array<T, 2>{bySide[1], bySide[0]} : bySide;
  }
  std::array<std::string, 2> names() const { return of(names_); }

 private:
  std::array<std::string, 2> names_;
  bool changed_ = false;
};

}  // namespace

DrawnMatch drawMatch(const std::string& path, const MatchPictureOptions& options) {
  RecordingReader reader(path);
  Track ball;
  std::map<std::pair<Side, int>, Track> players;
  std::vector<Goal> goals;
  RecordedCycle cycle;
  double first = -1;
  double last = 0;
  std::array<int, 2> score{};
  int fouls = 0;
  FirstSides sides;
  while (reader.next(cycle)) {
    sides.observe(reader.teamNames());
    const double time = static_cast<double>(cycle.time);
    if (time < options.from || time > options.to) continue;
    if (first < 0) first = time;
    last = time;
    score = sides.of(cycle.score);
    const Eigen::Vector3d place = cycle.ball.translation();
    ball.add(place, kBallJump);
    for (const RecordedRobot& robot : cycle.robots) {
      players[{sides.of(robot.side), robot.number}].add(robot.torso.translation(), kRobotJump);
    }
    for (GoalEvent goal : cycle.goals) {
      goal.side = sides.of(goal.side);
      goal.scorerSide = sides.of(goal.scorerSide);
      goals.push_back({goal, {place.x(), place.y()}, score});
    }
    fouls += static_cast<int>(cycle.fouls.size());
  }

  std::array<std::string, 2> names = sides.names();
  for (std::size_t i = 0; i < 2; ++i) {
    if (names[i].empty()) names[i] = kNames[i];
  }
  const std::string title = names[0] + "  " + scoreText(score) + "  " + names[1];
  std::string subtitle = first < 0 ? "nothing recorded in this time"
                                   : "game time " + seconds(first) + " to " + seconds(last) + ", " +
                                         std::to_string(players.size()) + " players, " +
                                         std::to_string(fouls) + " fouls";
  subtitle += goalList(goals);
  if (!reader.complete()) subtitle += "; the recording was cut off";

  PitchPicture picture(title, subtitle);
  if (options.players) {
    std::array<bool, 2> named{};
    for (const auto& [key, track] : players) {
      const std::size_t side = index(key.first);
      picture.addPath(
          track.path(), {kTeamColours[side], 2, 0.6},
          std::exchange(named[side], true) ? "" : names[side] + " (" + kNames[side] + ")");
    }
  }
  if (!ball.path().empty()) {
    picture.addPath(ball.path(), {"#263238", 5, 0.8});
    picture.addPath(ball.path(), {kBallColour, 3, 1}, "ball");
  }
  for (const auto& [key, track] : players) {
    picture.addMark(track.last(), kTeamColours[index(key.first)], std::to_string(key.second));
  }
  if (!ball.path().empty()) {
    picture.addMark(ball.last(), "#f57f17", "ball", PitchPicture::Label::Below);
  }
  // Goals fall at nearly the same places; their scores stand above and below by turns.
  for (std::size_t i = 0; i < goals.size(); ++i) {
    picture.addMark(goals[i].place, kTeamColours[index(goals[i].event.side)],
                    scoreText(goals[i].score),
                    i % 2 == 0 ? PitchPicture::Label::Above : PitchPicture::Label::Below);
  }
  return {picture.svg(), reader.complete()};
}

}  // namespace arena
