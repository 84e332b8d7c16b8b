// Processor time of the arena per 20 ms cycle and simulated seconds per second, without network:
// robots that stand, robots that throw all their joints about, and the physics library's share.

#include <benchmark/benchmark.h>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Fidelity/Trace.h"
#include "Match/Match.h"
#include "Monitor/MonitorStream.h"
#include "Percepts/Percept.h"

namespace {

constexpr char kLoad[] = QUOLNARIS_SOURCE_DIR "/tests/data/traces/flail_type0.csv.gz";
constexpr int kWarmUpCycles = 100;

// The recorded answers as messages, one per cycle.
const std::vector<std::string>& movingMessages() {
  static const std::vector<std::string> messages = [] {
    const arena::Trace trace = arena::readTrace(kLoad);
    const auto& joints = arena::robotModel(trace.type).joints;
    std::vector<std::string> result;
    for (const arena::TraceRow& row : trace.rows) {
      std::string& message = result.emplace_back();
      for (std::size_t i = 0; i < joints.size(); ++i) {
        if (!row.command[i]) continue;
        message += '(' + joints[i].effector + ' ' + std::to_string(*row.command[i]) + ')';
      }
      message += "(syn)";
    }
    return result;
  }();
  return messages;
}

// A match with `count` robots in two rows, in play.
class Game {
 public:
  Game(int count, int threads) : match_(optionsWith(threads)) {
    for (int i = 0; i < count; ++i) join(i);
    match_.referee().setMode(arena::PlayMode::PlayOn);
  }

  // All robots to one place, some centimetres apart.
  void heapUp() {
    for (int i = 0; i < static_cast<int>(agents_.size()); ++i) {
      match_.trainer().receive("(agent (unum " + std::to_string(i / 2 + 1) + ")(team " +
                               (i % 2 == 0 ? "Left" : "Right") + ")(pos " +
                               std::to_string(0.15 * (i % 4)) + ' ' +
                               std::to_string(0.15 * (i / 4)) + " 0.4))");
    }
  }

  arena::Match& match() { return match_; }

  void cycle(const std::string& message) {
    for (const auto agent : agents_) {
      benchmark::DoNotOptimize(match_.percept(agent).size());
      match_.receive(agent, message);
    }
    match_.step();
  }

 private:
  static arena::MatchOptions optionsWith(int threads) {
    arena::MatchOptions options;
    options.threads = threads;
    return options;
  }
  void join(int i) {
    const auto agent = match_.connect();
    agents_.push_back(agent);
    // Three types in a full team, as the rules want.
    const int number = i / 2 + 1;
    const int type = number <= 7 ? 0 : (number <= 9 ? 2 : 4);
    match_.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")");
    match_.step();
    match_.step();
    match_.receive(agent, "(init (unum " + std::to_string(number) + ")(teamname " +
                              (i % 2 == 0 ? "Alpha" : "Beta") + "))");
    match_.step();
    const int row = i / 2;
    match_.receive(agent, "(beam " + std::to_string(-2.0 - row) + ' ' +
                              std::to_string(i % 2 == 0 ? 5.0 : -5.0) + " 0)");
    match_.step();
  }

  arena::Match match_;
  std::vector<arena::Match::AgentId> agents_;
};

void play(benchmark::State& state, bool moving) {
  Game game(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const std::vector<std::string>& load = movingMessages();
  std::size_t next = 0;
  const auto message = [&]() -> const std::string& {
    static const std::string nothing = "(syn)";
    return moving ? load[next++ % load.size()] : nothing;
  };
  for (int i = 0; i < kWarmUpCycles; ++i) game.cycle(message());
  for (auto _ : state) game.cycle(message());
  state.counters["simulated_s_per_s"] = benchmark::Counter(
      0.02 * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void standing(benchmark::State& state) {
  play(state, false);
}
void moving(benchmark::State& state) {
  play(state, true);
}

// Robots that lie on each other are one island: its cost grows with the cube of their number.
void heap(benchmark::State& state) {
  Game game(static_cast<int>(state.range(0)), 1);
  game.heapUp();
  for (auto _ : state) game.cycle("(syn)");
}

// Robots of a game that has been under way for some time.
Game& movedGame(int robots) {
  static std::map<int, std::unique_ptr<Game>> games;
  std::unique_ptr<Game>& game = games[robots];
  if (!game) {
    game = std::make_unique<Game>(robots, 1);
    for (int i = 0; i < kWarmUpCycles; ++i) game->cycle(movingMessages()[i]);
  }
  return *game;
}

// What all agents are sent in a cycle; each of them is sent every third picture.
void perceptText(benchmark::State& state) {
  arena::Match& match = movedGame(static_cast<int>(state.range(0))).match();
  const std::array<std::string, 2> names{"Alpha", "Beta"};
  const arena::Surroundings surroundings{match.scene(), match.game(), names};
  const auto& robots = match.world().physics().robots();
  std::vector<arena::Vision> eyes;
  for (std::size_t i = 0; i < robots.size(); ++i) {
    eyes.emplace_back(arena::VisionOptions{}, arena::Random(i, "camera"),
                      arena::Random(i, "vision"));
  }
  const arena::Hearing ears;
  std::string text;
  std::size_t cycle = 0;
  for (auto _ : state) {
    ++cycle;
    for (std::size_t i = 0; i < robots.size(); ++i) {
      text.clear();
      arena::writePercept(surroundings, *robots[i], nullptr, ears,
                          (cycle + i) % 3 == 0 ? &eyes[i] : nullptr, text);
      benchmark::DoNotOptimize(text.data());
    }
  }
}
BENCHMARK(perceptText)->ArgName("robots")->Arg(22)->Unit(benchmark::kMillisecond);

// What a viewer is sent every other cycle of a game in which everybody moves.
void monitorText(benchmark::State& state) {
  Game& game = movedGame(static_cast<int>(state.range(0)));
  const arena::Match& match = game.match();
  std::vector<arena::Scene> scenes;
  for (std::size_t i = 0; i < 20; ++i) {
    game.cycle(movingMessages()[i]);
    game.cycle(movingMessages()[i]);
    scenes.push_back(match.scene());
  }
  arena::MonitorStream stream;
  std::size_t cycle = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(stream.next(scenes[++cycle % scenes.size()], match.game(), {}).size());
  }
}
BENCHMARK(monitorText)->ArgName("robots")->Arg(22)->Unit(benchmark::kMillisecond);

// Robots, and threads that work on the cycle.
void robotsAndThreads(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"robots", "threads"})->ArgsProduct({{1, 11, 22}, {1, 2}});
  bench->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}
BENCHMARK(standing)->Apply(robotsAndThreads);
// The whole recording several times, falls and wallowing included.
BENCHMARK(moving)->Apply(robotsAndThreads)->Iterations(1000);

BENCHMARK(heap)
    ->ArgName("robots")
    ->Arg(2)
    ->Arg(4)
    ->Arg(8)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(25);

}  // namespace

BENCHMARK_MAIN();
