#include "Monitor/MonitorStream.h"

#include <algorithm>
#include <string_view>

namespace arena {

namespace {

void appendTerm(std::string& text, std::string_view name, double value) {
  text.append("(").append(name).append(" ");
  appendNumber(text, value);
  text += ')';
}

// Viewers read whole numbers as such: they must not be rounded or get an exponent.
void appendTerm(std::string& text, std::string_view name, int value) {
  text.append("(").append(name).append(" ").append(std::to_string(value)).append(")");
}

void appendTerm(std::string& text, std::string_view name, std::string_view value) {
  text.append("(").append(name).append(" ").append(value).append(")");
}

void appendEnvironment(std::string& text, float halfTime) {
  const struct {
    std::string_view name;
    double value;
  } terms[] = {
      {"FieldLength", kFieldLength},
      {"FieldWidth", kFieldWidth},
      {"FieldHeight", kFieldHeight},
      {"GoalWidth", kGoalWidth},
      {"GoalDepth", kGoalDepth},
      {"GoalHeight", kGoalHeight},
      {"BorderSize", 0.0},
      {"FreeKickDistance", kFreeKickDistance},
      {"WaitBeforeKickOff", kKickOffWait},
      {"AgentRadius", kAgentRadius},
      {"BallRadius", kBallRadius},
      {"BallMass", kBallMass},
      {"RuleGoalPauseTime", kGoalPause},
      {"RuleKickInPauseTime", kSetPlayPause},
      {"RuleHalfTime", halfTime},
      {"PassModeMinOppBallDist", kPassModeOpponentDistance},
      {"PassModeDuration", kPassModeDuration},
  };
  for (const auto& term : terms) appendTerm(text, term.name, term.value);
  text += "(play_modes";
  for (const ModeEntry& mode : kPlayModes) text.append(" ").append(mode.name);
  text += ')';
}

// A team's name as it can stand in an expression: what would end or quote an atom is replaced.
std::string asAtom(std::string_view name) {
  std::string atom(name);
  for (char& c : atom) {
    if (std::string_view(" \t\r\n()\"'\\;").find(c) != std::string_view::npos) c = '_';
  }
  return atom;
}

// Appends the state terms that differ from `sent`, or all of them if that is null.
void appendState(std::string& text, const GameState& game, const GameState* sent,
                 std::array<float, 2> passWait) {
  appendTerm(text, "time", static_cast<double>(game.time));
  constexpr std::string_view kTeams[] = {"team_left", "team_right"};
  constexpr std::string_view kScores[] = {"score_left", "score_right"};
  constexpr std::string_view kWaits[] = {"pass_mode_score_wait_left", "pass_mode_score_wait_right"};
  for (std::size_t i = 0; i < 2; ++i) {
    if (!game.teamNames[i].empty() && (!sent || game.teamNames[i] != sent->teamNames[i])) {
      appendTerm(text, kTeams[i], asAtom(game.teamNames[i]));
    }
  }
  if (!sent || game.half != sent->half) appendTerm(text, "half", game.half);
  for (std::size_t i = 0; i < 2; ++i) {
    if (!sent || game.score[i] != sent->score[i]) appendTerm(text, kScores[i], game.score[i]);
  }
  if (!sent || game.mode != sent->mode) appendTerm(text, "play_mode", static_cast<int>(game.mode));
  for (std::size_t i = 0; i < 2; ++i) {
    if (game.mode == PlayMode::PlayOn && passWait[i] > 0) {
      appendTerm(text, kWaits[i], static_cast<double>(passWait[i]));
    }
  }
}

void appendFouls(std::string& text, std::span<const FoulEvent> fouls) {
  for (const FoulEvent& foul : fouls) {
    text += "(foul";
    const int values[] = {foul.index, static_cast<int>(foul.type),
                          static_cast<int>(index(foul.side)) + 1, foul.number};
    for (const int value : values) text.append(" ").append(std::to_string(value));
    text += ')';
  }
}

constexpr std::string_view kFullHead = "(RSG 0 1)";
constexpr std::string_view kPartialHead = "(RDS 0 1)";

}  // namespace

void MonitorStream::noteFouls(std::span<const FoulEvent> fouls) {
  // Enough for every robot in both cycles of a message; a viewer who does not read loses older
  // ones.
  constexpr std::size_t kMaxFouls = 256;
  fouls_.insert(fouls_.end(), fouls.begin(), fouls.end());
  if (fouls_.size() > kMaxFouls) {
    fouls_.erase(fouls_.begin(), fouls_.end() - static_cast<std::ptrdiff_t>(kMaxFouls));
  }
}

std::vector<MonitorStream::RobotKey> MonitorStream::keysOf(const Scene& scene) {
  std::vector<RobotKey> keys;
  for (const SceneRobot& robot : scene.robots) {
    keys.push_back({robot.handle, robot.side, robot.number, robot.type});
  }
  return keys;
}

std::string MonitorStream::next(const Scene& scene, const GameState& game,
                                std::array<float, 2> passWait) {
  std::vector<RobotKey> keys = keysOf(scene);
  const bool whole = fullRequested_ || keys != keys_;
  std::string text = "(";
  if (whole) appendEnvironment(text, halfTime_);
  appendState(text, game, whole ? nullptr : &sent_, passWait);
  appendFouls(text, fouls_);
  text += ')';
  text += whole ? kFullHead : kPartialHead;
  if (whole) {
    graph_ = SceneGraph(scene);
    graph_.writeFull(scene, text);
    keys_ = std::move(keys);
    fullRequested_ = false;
  } else {
    graph_.writePartial(scene, text);
  }
  sent_ = game;
  fouls_.clear();
  return text;
}

}  // namespace arena
