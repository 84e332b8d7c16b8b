#include "Recording/MatchReport.h"

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "Common/Units.h"
#include "Referee/Rules.h"

namespace arena {

namespace {

// Way is measured between places half a second apart: the torso sways with every step, and that
// is no distance walked.
constexpr int kPieceCycles = 25;
// A torso that moves farther in one cycle was put somewhere else.
constexpr double kJump = 0.15;
// Height of the torso's upward axis below which a player is down, and above which he is up again.
constexpr double kDown = 0.5;
constexpr double kUp = 0.9;

constexpr const char* kSideNames[] = {"left", "right", "none"};
constexpr const char* kFoulNames[] = {"crowding",  "touching", "illegal defence", "illegal attack",
                                      "incapable", "kick-off", "charging",        "self-collision"};

// `steps`: of the rounding, to 1.
double rounded(double value, double steps) {
  return std::round(value * steps) / steps;
}

}  // namespace

void MatchReport::watch(const SceneRobot& robot) {
  Player& player = players_[{robot.side, robot.number}];
  player.type = robot.type;
  const Eigen::Isometry3d& torso = robot.pose(Body::Torso);
  const Eigen::Vector2d place = torso.translation().head<2>();
  if (!player.seen || (place - player.place).norm() > kJump) {
    if (player.seen) player.distance += (player.place - player.mark).norm();
    player.mark = place;
    player.sinceMark = 0;
  } else if (++player.sinceMark == kPieceCycles) {
    player.distance += (place - player.mark).norm();
    player.mark = place;
    player.sinceMark = 0;
  }
  player.place = place;
  player.seen = true;

  const double up = torso.linear()(2, 2);
  if (!player.down && up < kDown) {
    player.down = true;
    ++player.falls;
  } else if (up > kUp) {
    player.down = false;
  }
}

// All that was noted so far goes with the teams.
void MatchReport::changeSides() {
  std::map<std::pair<Side, int>, Player> moved;
  for (auto& [key, player] : players_) moved[{opponent(key.first), key.second}] = player;
  players_ = std::move(moved);
  for (GoalEvent& goal : goals_) {
    goal.side = opponent(goal.side);
    goal.scorerSide = opponent(goal.scorerSide);
  }
  std::swap(possession_[index(Side::Left)], possession_[index(Side::Right)]);
}

void MatchReport::observe(const Scene& scene, const GameState& game,
                          std::span<const GoalEvent> goals, std::span<const FoulEvent> fouls,
                          const Touch& lastTouch) {
  ++cycles_;
  if (game.sidesChanged != game_.sidesChanged) changeSides();
  for (const SceneRobot& robot : scene.robots) {
    if (robot.side != Side::None) watch(robot);
  }
  goals_.insert(goals_.end(), goals.begin(), goals.end());
  for (const FoulEvent& foul : fouls) {
    if (foul.first) ++players_[{foul.side, foul.number}].fouls[foul.type];
  }
  if (game.mode == PlayMode::PlayOn) ++possession_[index(lastTouch.side)];
  game_ = game;
}

std::string MatchReport::json() const {
  using nlohmann::ordered_json;
  ordered_json report;
  report["cycles"] = cycles_;
  report["simulated_seconds"] = rounded(static_cast<double>(cycles_) * kStepSeconds, 100);
  report["game_time"] = rounded(static_cast<double>(game_.time), 100);
  report["half"] = game_.half;
  report["play_mode"] = nameOf(game_.mode);
  const long owned = possession_[0] + possession_[1];
  for (const Side side : kBothSides) {
    ordered_json& team = report["teams"][kSideNames[index(side)]];
    team["name"] = game_.teamNames[index(side)];
    team["score"] = game_.score[index(side)];
    const double share =
        owned == 0 ? 0.0
                   : static_cast<double>(possession_[index(side)]) / static_cast<double>(owned);
    team["possession"] = rounded(share, 1000);
  }
  report["goals"] = ordered_json::array();
  for (const GoalEvent& goal : goals_) {
    ordered_json entry;
    entry["time"] = rounded(static_cast<double>(goal.time), 100);
    entry["team"] = kSideNames[index(goal.side)];
    entry["scorer_team"] = kSideNames[index(goal.scorerSide)];
    entry["scorer"] = goal.scorer;
    entry["own_goal"] = goal.scorerSide != Side::None && goal.scorerSide != goal.side;
    report["goals"].push_back(entry);
  }
  report["players"] = ordered_json::array();
  for (const auto& [key, player] : players_) {
    ordered_json entry;
    entry["team"] = kSideNames[index(key.first)];
    entry["number"] = key.second;
    entry["type"] = player.type;
    entry["distance"] = rounded(player.distance + (player.place - player.mark).norm(), 100);
    entry["falls"] = player.falls;
    entry["fouls"] = ordered_json::object();
    for (const auto& [type, count] : player.fouls) {
      entry["fouls"][kFoulNames[static_cast<std::size_t>(type)]] = count;
    }
    entry["late_answers"] = player.lateAnswers;
    entry["said"] = player.said;
    entry["heard"] = player.heard;
    report["players"].push_back(entry);
  }
  return report.dump(2, ' ', false, ordered_json::error_handler_t::replace);
}

bool MatchReport::write(const std::string& path) const {
  std::ofstream file(path);
  file << json() << '\n';
  return static_cast<bool>(file.flush());
}

}  // namespace arena
