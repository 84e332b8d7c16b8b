#include "MatchFigures.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "Common/Pitch.h"
#include "Common/Units.h"

namespace arena {
namespace {

using nlohmann::ordered_json;

// A posture counts once it has lasted for half a second.
constexpr int kPatience = 25;
// z of the torso's up axis: below the first a robot is down, above the second it is up again.
constexpr double kDown = 0.5;
constexpr double kUp = 0.9;
constexpr double kTouched = 0.02;  // m
// What moves farther in one cycle was put somewhere else, m.
constexpr double kBallJump = 0.5;
constexpr double kRobotJump = 0.15;
// Way is measured between places so many cycles apart: the torso sways with every step.
constexpr int kPiece = 25;
// The pitch and the margin around it, m.
constexpr double kOutsideX = kHalfLength + 1.0;
constexpr double kOutsideY = kHalfWidth + 1.0;
constexpr double kNear = 1.0;  // m from the ball

constexpr const char* kSideNames[] = {"left", "right", "none"};
constexpr const char* kFoulNames[] = {"crowding",  "touching", "illegal_defence", "illegal_attack",
                                      "incapable", "kick_off", "charging",        "self_collision"};

const ModeEntry& entryOf(PlayMode mode) {
  return kPlayModes[static_cast<std::size_t>(mode)];
}

bool isOn(PlayMode mode) {
  return entryOf(mode).kind == ModeKind::PlayOn;
}

// The clock of the game runs, be it with a set play.
bool hasBegun(PlayMode mode) {
  const ModeKind kind = entryOf(mode).kind;
  return kind != ModeKind::BeforeKickOff && kind != ModeKind::GameOver;
}

const char* nameOfKind(PlayMode mode) {
  switch (entryOf(mode).kind) {
    case ModeKind::BeforeKickOff:
      return "before_kick_off";
    case ModeKind::KickOff:
      return "kick_off";
    case ModeKind::PlayOn:
      return "play_on";
    case ModeKind::GameOver:
      return "game_over";
    case ModeKind::Goal:
      return "goal";
    default:
      return "set_play";
  }
}

double rounded(double value) {
  return std::round(value * 1e4) / 1e4;
}

ordered_json jsonOf(const std::optional<MatchFigures::Touch>& touch) {
  if (!touch) return nullptr;
  return {{"time", rounded(touch->time)},
          {"side", kSideNames[index(touch->side)]},
          {"number", touch->number}};
}

ordered_json jsonOf(const std::pair<Side, int>& who, const MatchFigures::Player& player) {
  ordered_json result = {{"side", kSideNames[index(who.first)]},
                         {"number", who.second},
                         {"type", player.type},
                         {"falls", player.falls},
                         {"falls_by_mode", player.fallsByKind},
                         {"stand_ups", player.standUps},
                         {"walked", rounded(player.walked)},
                         {"outside", rounded(player.outside)},
                         {"down", rounded(player.down)},
                         {"upright", rounded(player.upright)},
                         {"fouls", player.fouls}};
  if (player.places.empty()) return result;
  ordered_json places = ordered_json::array();
  for (const MatchFigures::Sample& s : player.places) {
    places.push_back({rounded(s.time), rounded(s.x), rounded(s.y), rounded(s.up)});
  }
  result["places"] = std::move(places);
  return result;
}

}  // namespace

void MatchFigures::observe(const RecordedCycle& cycle) {
  ++cycles_;
  time_ = cycle.time;
  score_ = cycle.score;
  if (isOn(cycle.mode)) playSeconds_ += kStepSeconds;
  for (const GoalEvent& goal : cycle.goals) {
    goals_.push_back({goal.time, goal.side, goal.scorerSide, goal.scorer});
  }
  for (const RecordedFoul& foul : cycle.fouls) {
    ++players_[{foul.side, foul.number}].fouls[kFoulNames[static_cast<std::size_t>(foul.type)]];
  }
  watchBall(cycle);
  for (const RecordedRobot& robot : cycle.robots) watchRobot(cycle, robot);
}

void MatchFigures::watchBall(const RecordedCycle& cycle) {
  const Eigen::Vector2d ball = cycle.ball.translation().head<2>();
  const bool kickOff = entryOf(cycle.mode).kind == ModeKind::KickOff;
  if (!rest_ && (kickOff || isOn(cycle.mode))) rest_ = ball;
  if (rest_ && !firstTouch_ && (ball - *rest_).norm() > kTouched) {
    firstTouch_ = Touch{cycle.time, Side::None, 0};
    double nearest = std::numeric_limits<double>::infinity();
    for (const RecordedRobot& robot : cycle.robots) {
      const double away = (robot.torso.translation().head<2>() - ball).norm();
      if (robot.side == Side::None || away >= nearest) continue;
      nearest = away;
      firstTouch_->side = robot.side;
      firstTouch_->number = robot.number;
    }
  }
  if (!isOn(cycle.mode)) {
    lastBall_.reset();
    return;
  }
  if (lastBall_ && (ball - *lastBall_).norm() < kBallJump) {
    ballMetres_ += (ball - *lastBall_).norm();
    const double dx = ball.x() - lastBall_->x();
    ballForward_[index(dx > 0 ? Side::Left : Side::Right)] += std::abs(dx);
  }
  lastBall_ = ball;
}

void MatchFigures::watchRobot(const RecordedCycle& cycle, const RecordedRobot& robot) {
  if (robot.side == Side::None) return;
  const std::pair<Side, int> key{robot.side, robot.number};
  Player& player = players_[key];
  Watch& watch = watches_[key];
  player.type = robot.type;
  const Eigen::Vector2d place = robot.torso.translation().head<2>();
  const double up = robot.torso.linear()(2, 2);

  watchPosture(player, watch, up, cycle.mode);
  watchWay(player, watch, place);
  if (hasBegun(cycle.mode)) {
    if (up < kDown) player.down += kStepSeconds;
    if (!watch.down && up > kUp) player.upright += kStepSeconds;
    const bool outside = std::abs(place.x()) > kOutsideX || std::abs(place.y()) > kOutsideY;
    if (outside) player.outside += kStepSeconds;
  }
  if (isOn(cycle.mode) && (place - cycle.ball.translation().head<2>()).norm() < kNear) {
    crowd_[index(robot.side)] += kStepSeconds;
  }
  if (placesEvery_ > 0 && cycle.time >= watch.nextSample) {
    player.places.push_back({cycle.time, place.x(), place.y(), up});
    watch.nextSample = cycle.time + static_cast<float>(placesEvery_);
  }
}

void MatchFigures::watchPosture(Player& player, Watch& watch, double up, PlayMode mode) {
  const bool changed = watch.down ? up > kUp : up < kDown;
  if (!changed) {
    watch.since = 0;
    return;
  }
  if (watch.since == 0) watch.kind = nameOfKind(mode);
  if (++watch.since < kPatience) return;
  watch.since = 0;
  watch.down = !watch.down;
  if (!watch.down) {
    ++player.standUps;
    return;
  }
  ++player.falls;
  ++player.fallsByKind[watch.kind];
}

void MatchFigures::watchWay(Player& player, Watch& watch, const Eigen::Vector2d& place) {
  if (!watch.seen || (place - watch.place).norm() > kRobotJump) {
    if (watch.seen) player.walked += (watch.place - watch.mark).norm();
    watch.mark = place;
    watch.sinceMark = 0;
  } else if (++watch.sinceMark == kPiece) {
    player.walked += (place - watch.mark).norm();
    watch.mark = place;
    watch.sinceMark = 0;
  }
  watch.place = place;
  watch.seen = true;
}

double MatchFigures::crowd(Side side) const {
  return playSeconds_ > 0 ? crowd_[index(side)] / playSeconds_ : 0;
}

std::string MatchFigures::json(const std::array<std::string, 2>& names) const {
  ordered_json result = {{"cycles", cycles_},
                         {"seconds", rounded(time_)},
                         {"play_seconds", rounded(playSeconds_)},
                         {"first_touch", jsonOf(firstTouch_)},
                         {"ball_metres", rounded(ballMetres_)}};
  for (const Side side : kBothSides) {
    const std::size_t i = index(side);
    result["teams"][kSideNames[i]] = {{"name", names[i]},
                                      {"score", score_[i]},
                                      {"ball_forward", rounded(ballForward_[i])},
                                      {"crowd", rounded(crowd(side))}};
  }
  result["goals"] = ordered_json::array();
  for (const Goal& goal : goals_) {
    result["goals"].push_back({{"time", rounded(goal.time)},
                               {"side", kSideNames[index(goal.side)]},
                               {"scorer_side", kSideNames[index(goal.scorerSide)]},
                               {"scorer", goal.scorer}});
  }
  result["players"] = ordered_json::array();
  for (const auto& [who, player] : players_) result["players"].push_back(jsonOf(who, player));
  return result.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

MatchFigures readMatchFigures(const std::string& path, double placesEvery,
                              std::array<std::string, 2>& names) {
  RecordingReader reader(path);
  MatchFigures figures(placesEvery);
  RecordedCycle cycle;
  while (reader.next(cycle)) figures.observe(cycle);
  if (!reader.complete()) throw RecordingError(path + ": the recording was cut off");
  names = reader.teamNames();
  return figures;
}

}  // namespace arena
