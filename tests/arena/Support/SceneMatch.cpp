#include "arena/Support/SceneMatch.h"

#include <fstream>
#include <stdexcept>

namespace arena {
namespace {

// Until every robot has fallen onto its feet and sleeps.
constexpr int kSettleCycles = 150;

// Where the players of either team stand, in their own team's coordinates, m.
constexpr const char* kBeams[] = {"(beam -14 0 0)", "(beam -3 0 0)", "(beam -6 4 0)",
                                  "(beam -6 -4 0)"};

MatchOptions exact() {
  MatchOptions options;
  options.noise = false;
  return options;
}

std::string nameOfPlayer(Side side, int number) {
  return (side == Side::Left ? "L" : "R") + std::to_string(number);
}

}  // namespace

nlohmann::json readScenes(const std::string& file) {
  std::ifstream stream(QUOLNARIS_SOURCE_DIR "/tests/data/scenes/" + file);
  if (!stream) throw std::runtime_error("cannot read " + file);
  return nlohmann::json::parse(stream);
}

SceneMatch::SceneMatch() : match_(exact()) {
  for (int number = 1; number <= 4; ++number) {
    for (const Side side : kBothSides) join(side, number);
  }
  for (int i = 0; i < kSettleCycles; ++i) match_.step();
}

void SceneMatch::join(Side side, int number) {
  const Match::AgentId agent = match_.connect();
  agents_[nameOfPlayer(side, number)] = agent;
  match_.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  match_.step();
  match_.step();
  match_.receive(agent, "(init (unum " + std::to_string(number) + ")(teamname " +
                            (side == Side::Left ? "Alpha" : "Beta") + "))");
  match_.step();
  match_.receive(agent, kBeams[number - 1]);
  match_.step();
}

void SceneMatch::say(const std::string& player, std::string_view text) {
  match_.receive(agents_.at(player), text);
}

const RobotView* SceneMatch::find(const std::string& player) {
  return match_.world().find(agents_.at(player));
}

std::optional<Eigen::Vector3d> SceneMatch::place(const std::string& player) {
  const RobotView* robot = find(player);
  if (robot == nullptr) return std::nullopt;
  return robot->torso.translation();
}

void SceneMatch::hit(const std::string& player) {
  const RobotView& robot = *find(player);
  const double forward = -ownGoalSign(robot.side);
  const Eigen::Vector3d torso = robot.torso.translation();
  command("(ball (pos " + std::to_string(torso.x() + 0.5 * forward) + " " +
          std::to_string(torso.y()) + " 0.1)(vel " + std::to_string(-4.0 * forward) + " 0 0))");
}

void SceneMatch::cycles(int count) {
  for (int i = 0; i < count; ++i) {
    match_.step();
    observe();
  }
}

void SceneMatch::observe() {
  const GameState& game = match_.game();
  if (stretches_.empty() || stretches_.back().mode != game.mode ||
      stretches_.back().score != game.score) {
    Stretch& begun = stretches_.emplace_back();
    begun.mode = game.mode;
    begun.score = game.score;
    begun.since = game.time;
  }
  Stretch& now = stretches_.back();
  now.ball = match_.scene().ball.translation();
  now.players.clear();
  for (const SceneRobot& robot : match_.scene().robots) {
    now.players[nameOfPlayer(robot.side, robot.number)] = robot.pose(Body::Torso).translation();
  }
}

std::vector<SceneMatch::Stretch> SceneMatch::takeStretches() {
  return std::exchange(stretches_, {});
}

}  // namespace arena
