// What it costs to take in one message of the server: parsing, orientation, localisation. The
// messages are those of a recorded game, in order, from the moment on at which it is under way.
//
// Each benchmark times single frames and reports their median and 99th percentile in microseconds
// and the allocations for each frame. The last one loops the game and reports the resident memory
// after 10,000 and 100,000 frames, which must not grow by a megabyte.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "BenchKit.h"
#include "FrameRecording.h"
#include "Utilities/Config.h"
#include "WorldModel/WorldModel.h"

namespace {

using bench::allocations;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kFirstFrame = 1884;  // counted from 1
const char* const kSource = QUOLNARIS_SOURCE_DIR;

const std::vector<std::string>& game() {
  static const std::vector<std::string> frames =
      readRecording(std::string(kSource) + "/tests/data/recordings/match-a-left-10.frames.gz");
  return frames;
}

void configure() {
  for (const char* const name : {"Agent", "Formation", "WorldModel"}) {
    config.add(name, std::string(kSource) + "/Configs/" + name + ".conf");
  }
  config["Agent"]["Public"].add("UniformNumber", "10");
}

bool holdsVision(const std::string& frame) {
  return frame.find("(See ") != std::string::npos;
}

// The frames from kFirstFrame on, over and over, into a model that knows the game up to there.
class Player {
 public:
  Player() {
    for (std::size_t i = 0; i + 1 < kFirstFrame; ++i) model_.update(game()[i]);
    next_ = kFirstFrame - 1;
  }

  const std::string& frame() const { return game()[next_]; }

  void step() {
    model_.update(frame());
    if (++next_ == game().size()) next_ = kFirstFrame - 1;
  }

 private:
  WorldModel model_;
  std::size_t next_;
};

double seconds(Clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

void updateFrames(benchmark::State& state, bool withVision) {
  Player player;
  std::vector<double> times;
  times.reserve(1 << 22);
  long allocated = 0;
  for (auto _ : state) {
    while (holdsVision(player.frame()) != withVision) player.step();
    const long allocatedBefore = allocations;
    const Clock::time_point start = Clock::now();
    player.step();
    const double time = seconds(Clock::now() - start);
    allocated += allocations - allocatedBefore;
    state.SetIterationTime(time);
    if (times.size() < times.capacity()) times.push_back(time);
  }
  state.counters["median_us"] = bench::percentileMicroseconds(times, 0.5);
  state.counters["p99_us"] = bench::percentileMicroseconds(times, 0.99);
  state.counters["allocations"] =
      static_cast<double>(allocated) / static_cast<double>(state.iterations());
}

void BM_UpdateWithVision(benchmark::State& state) {
  updateFrames(state, true);
}
BENCHMARK(BM_UpdateWithVision)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_UpdateWithoutVision(benchmark::State& state) {
  updateFrames(state, false);
}
BENCHMARK(BM_UpdateWithoutVision)->UseManualTime()->Unit(benchmark::kMicrosecond);

// As the game has them: every third frame holds vision.
void BM_UpdateGame(benchmark::State& state) {
  Player player;
  for (auto _ : state) player.step();
}
BENCHMARK(BM_UpdateGame)->Unit(benchmark::kMicrosecond);

// Resident memory of this process in megabytes.
double residentMegabytes() {
  std::ifstream statm("/proc/self/statm");
  long total = 0;
  long resident = 0;
  statm >> total >> resident;
  return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / 1e6;
}

void BM_ResidentMemory(benchmark::State& state) {
  constexpr long kEarly = 10'000;
  constexpr long kLate = 100'000;
  constexpr double kAllowed = 1;  // megabyte
  for (auto _ : state) {
    WorldModel model;
    double early = 0;
    for (long taken = 0; taken < kLate; ++taken) {
      if (taken == kEarly) early = residentMegabytes();
      model.update(game()[static_cast<std::size_t>(taken) % game().size()]);
    }
    const double late = residentMegabytes();
    state.counters["at_10000_MB"] = early;
    state.counters["at_100000_MB"] = late;
    state.counters["growth_MB"] = late - early;
    if (late - early >= kAllowed) state.SkipWithError("resident memory grows");
  }
}
BENCHMARK(BM_ResidentMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  return bench::run(argc, argv, configure);
}
