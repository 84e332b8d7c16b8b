// What one whole cycle of the player costs, from the server's message to the answer: belief,
// joints, decision and command, over every frame of recorded matches from the first cycle on.
//
// The aim is below 60 microseconds at the 99th percentile and no allocation after the first second.
// The frames do not depend on the answers, and the log is written as in play.
//
// Each benchmark plays its recording over and over and reports, in microseconds, the median, the
// 99th percentile and the maximum of the processor time of a cycle, and the 99th percentile of the
// time that passed on the wall, which others on the machine lengthen; the median and the 99th
// percentile of its instructions, as far as the machine lets a program count them; the allocations
// in a cycle after the first second; and, of all passes after the first, how many blocks were left
// behind and the most that one cycle left.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
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
// In cycles; from then on no allocation is due.
constexpr long kFirstSecond = 50;

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

// What each cycle took.
class Samples {
 public:
  Samples() {
    for (auto* samples : {&times_, &walls_, &counts_}) samples->reserve(kMost);
  }

  void begin() {
    instructions_ = counter_.available() ? counter_.read() : 0;
    wall_ = Clock::now();
    time_ = bench::processorTime();
  }
  // The processor time of the cycle, in seconds.
  double end() {
    const double time = bench::processorTime() - time_;
    const double wall = std::chrono::duration<double>(Clock::now() - wall_).count();
    if (times_.size() == kMost) return time;
    times_.push_back(time);
    walls_.push_back(wall);
    if (counter_.available()) {
      counts_.push_back(static_cast<double>(counter_.read() - instructions_));
    }
    return time;
  }

  void report(benchmark::State& state) {
    state.counters["median_us"] = bench::percentileMicroseconds(times_, 0.5);
    state.counters["p99_us"] = bench::percentileMicroseconds(times_, 0.99);
    state.counters["max_us"] = bench::percentileMicroseconds(times_, 1);
    state.counters["wall_p99_us"] = bench::percentileMicroseconds(walls_, 0.99);
    if (counts_.empty()) {
      state.SetLabel("instructions: not available");
      return;
    }
    state.counters["instructions_median"] = bench::percentile(counts_, 0.5);
    state.counters["instructions_p99"] = bench::percentile(counts_, 0.99);
  }

 private:
  static constexpr std::size_t kMost = std::size_t{1} << 20;
  bench::InstructionCounter counter_;
  std::uint64_t instructions_ = 0;
  Clock::time_point wall_;
  double time_ = 0;
  std::vector<double> times_;   // s
  std::vector<double> walls_;   // s
  std::vector<double> counts_;  // instructions
};

void playRecording(benchmark::State& state, const char* name, int number) {
  const std::vector<std::string> frames =
      readRecording(std::string(QUOLNARIS_SOURCE_DIR) + "/tests/data/recordings/" + name);
  const std::unique_ptr<OurPlayer> player = makePlayer(number);
  for (std::size_t i = 0; i < kHandshake; ++i) player->WM->update(frames[i]);

  Samples samples;
  std::size_t next = kHandshake;
  long cycle = 0;
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
    samples.begin();
    player->cycle();
    benchmark::DoNotOptimize(player->command->getFinal().size());
    player->command->clear();
    state.SetIterationTime(samples.end());
    if (++cycle > kFirstSecond) allocated += allocations - allocationsBefore;
    if (!firstPass) {
      leftBehind += blocks - blocksBefore;
      mostLeft = std::max(mostLeft, blocks - blocksBefore);
    }
    if (++next == frames.size()) {
      next = kHandshake;
      firstPass = false;
    }
  }
  samples.report(state);
  state.counters["allocations"] =
      static_cast<double>(allocated) / static_cast<double>(std::max(1L, cycle - kFirstSecond));
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
