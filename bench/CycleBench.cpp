// What one whole cycle of the player costs, from the server's message to the answer: belief,
// joints, decision and command, over every frame of recorded matches from the first cycle on.
//
// The aim is below 150 microseconds in the median and below 500 at the 99th percentile, so that
// eleven players take less than a tenth of a core at 50 cycles a second, and no allocation that
// outlives the cycle. The frames do not depend on the answers, and the log is written as in play.
//
// Each benchmark plays its recording over and over and reports the median, the 99th percentile and
// the maximum in microseconds, the allocations in a cycle, and, of all passes after the first, how
// many blocks were left behind and the most that one cycle left.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "Agent/OurPlayer.h"
#include "BenchKit.h"
#include "FrameRecording.h"

namespace {

using bench::allocations;
using bench::blocks;
using Clock = std::chrono::steady_clock;

// The answers to the scene, init and beam messages come before the first cycle.
constexpr std::size_t kHandshake = 12;

std::unique_ptr<OurPlayer> makePlayer(int number) {
  std::string arguments[] = {"quolnaris", "--number", std::to_string(number)};
  char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data()};
  auto player = std::make_unique<OurPlayer>(3, argv);
  player->publish();
  return player;
}

// What the player prints goes nowhere, at the cost of printing it.
class SilentOutput {
 public:
  SilentOutput() : previous(std::cout.rdbuf(nowhere.rdbuf())) {}
  ~SilentOutput() { std::cout.rdbuf(previous); }
  SilentOutput(const SilentOutput&) = delete;
  SilentOutput& operator=(const SilentOutput&) = delete;

 private:
  std::ofstream nowhere{"/dev/null"};
  std::streambuf* previous;
};

void playRecording(benchmark::State& state, const char* name, int number) {
  const std::vector<std::string> frames =
      readRecording(std::string(QUOLNARIS_SOURCE_DIR) + "/tests/data/recordings/" + name);
  const std::unique_ptr<OurPlayer> player = makePlayer(number);
  for (std::size_t i = 0; i < kHandshake; ++i) player->WM->update(frames[i]);

  std::vector<double> times;
  times.reserve(std::size_t{1} << 22);
  std::size_t next = kHandshake;
  bool firstPass = true;
  long allocated = 0;
  long leftBehind = 0;
  long mostLeft = 0;
  player->msg.reserve(kLongestFrame);
  const SilentOutput silence;
  for (auto _ : state) {
    player->msg = frames[next];
    // There is no server for the beams that the decision sends by itself after a goal.
    player->de.beamCount = 100;
    // The recorded body does not move as the answers ask: a stand-up would never end, and nothing
    // would be decided from then on.
    player->de.checkstandup = true;
    const long allocationsBefore = allocations;
    const long blocksBefore = blocks;
    const Clock::time_point start = Clock::now();
    player->cycle();
    benchmark::DoNotOptimize(player->command->getFinal().size());
    player->command->clear();
    const double time = std::chrono::duration<double>(Clock::now() - start).count();
    state.SetIterationTime(time);
    if (times.size() < times.capacity()) times.push_back(time);
    allocated += allocations - allocationsBefore;
    if (!firstPass) {
      leftBehind += blocks - blocksBefore;
      mostLeft = std::max(mostLeft, blocks - blocksBefore);
    }
    if (++next == frames.size()) {
      next = kHandshake;
      firstPass = false;
    }
  }
  state.counters["median_us"] = bench::percentile(times, 0.5);
  state.counters["p99_us"] = bench::percentile(times, 0.99);
  state.counters["max_us"] = bench::percentile(times, 1);
  state.counters["allocations"] =
      static_cast<double>(allocated) / static_cast<double>(state.iterations());
  state.counters["left_behind"] = static_cast<double>(leftBehind);
  state.counters["most_left_in_a_cycle"] = static_cast<double>(mostLeft);
}

void BM_SetPlayTakerOnTheLeft(benchmark::State& state) {
  playRecording(state, "match-a-left-10.frames.gz", 10);
}
void BM_SetPlayTakerOnTheRight(benchmark::State& state) {
  playRecording(state, "match-b-right-10.frames.gz", 10);
}
void BM_AloneOnThePitch(benchmark::State& state) {
  playRecording(state, "solo-c-left-9.frames.gz", 9);
}
// The frames of one player do for another: the goalie's work instead of the dribble.
void BM_Goalie(benchmark::State& state) {
  playRecording(state, "match-a-left-10.frames.gz", 1);
}
void BM_Defender(benchmark::State& state) {
  playRecording(state, "match-b-right-10.frames.gz", 4);
}

BENCHMARK(BM_SetPlayTakerOnTheLeft)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SetPlayTakerOnTheRight)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_AloneOnThePitch)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Goalie)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Defender)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  return bench::run(argc, argv, [] { bench::enterWorkingDirectory("cycle-bench"); });
}
