// What one cycle of each gait and turn costs: configuration read-out, both leg solves and the log
// lines included, the stance and the world model's update not.

#include <benchmark/benchmark.h>

#include <cmath>

#include "Agent/OurPlayer.h"
#include "BasicAction/BackWalk.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/OmniBackWalk.h"
#include "BasicAction/OmniSideWalk.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/SideWalk.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "BenchKit.h"

namespace {

// The state in which a sequencer takes its first step, without the stance.
constexpr int kFirstPlainStep = 1;
constexpr int kFirstPairStep = 2;

// Never reached: every pair of steps turns.
const Vector kTarget(5, 5, 0);

// The player with the deployment's configuration, in a directory of its own that takes its log.
OurPlayer& player() {
  static OurPlayer& instance = [&]() -> OurPlayer& {
    bench::enterWorkingDirectory("gait-bench");
    static char name[] = "GaitBench";
    static char* arguments[] = {name};
    static OurPlayer made(1, arguments);
    made.publish();
    return made;
  }();
  return instance;
}

// Cycles of an uninterrupted walk, five minutes. The feet are then brought back to the start: the
// places that a gait sums up lose their precision after kilometres.
constexpr int kLongWalk = 15000;

template <class Execute>
void run(benchmark::State& state, int& sequence, int first, double& right, double& left,
         Execute execute) {
  execute();  // chooses the legs; the stance that it waits for is then skipped
  sequence = first;
  int cycle = 0;
  for (auto _ : state) {
    if (++cycle % kLongWalk == 0) {
      right -= left;
      left = 0;
    }
    benchmark::DoNotOptimize(execute());
  }
}

void BM_ForWalk(benchmark::State& state) {
  ForWalk& gait = *player().walk->_forWalk;
  run(state, gait.basicWalkState, kFirstPlainStep, gait.rx, gait.lx,
      [&] { return gait.execute(); });
}

void BM_BackWalk(benchmark::State& state) {
  BackWalk& gait = *player().walk->_backWalk;
  run(state, gait.basicWalkState, kFirstPlainStep, gait.rx, gait.lx,
      [&] { return gait.execute(); });
}

void BM_SideWalk(benchmark::State& state) {
  SideWalk& gait = *player().walk->_sideWalk;
  run(state, gait.basicWalkState, kFirstPlainStep, gait.ry, gait.ly,
      [&] { return gait.execute(); });
}

void BM_OmniWalk(benchmark::State& state) {
  OmniWalk& gait = *player().walk->_omniWalk;
  player().walk->omniWalk(kTarget, 1, 0, 0);
  run(state, gait.basicWalkState, kFirstPairStep, gait.rx, gait.lx, [&] { return gait.execute(); });
}

void BM_OmniBackWalk(benchmark::State& state) {
  OmniBackWalk& gait = *player().walk->_omniBackWalk;
  player().walk->omniBackWalk(kTarget, 0, 1);
  run(state, gait.basicWalkState, kFirstPairStep, gait.rx, gait.lx, [&] { return gait.execute(); });
}

void BM_OmniSideWalk(benchmark::State& state) {
  OmniSideWalk& gait = *player().walk->_omniSideWalk;
  player().walk->omniSideWalk(kTarget, 0);
  run(state, gait.basicWalkState, kFirstPairStep, gait.ry, gait.ly, [&] { return gait.execute(); });
}

void BM_Turn(benchmark::State& state) {
  Turn& turn = *player().turn;
  turn.execute(kTarget, 0, 0);
  run(state, turn.basicTurnState, kFirstPairStep, turn.ry, turn.ly, [&] { return turn.execute(); });
}

void BM_TurnAroundBall(benchmark::State& state) {
  TAB& tab = *player().turnAroundBall;
  tab.execute(kTarget, 0);
  run(state, tab.basicWalkState, kFirstPairStep, tab.ry, tab.ly, [&] { return tab.execute(); });
}

BENCHMARK(BM_ForWalk);
BENCHMARK(BM_BackWalk);
BENCHMARK(BM_SideWalk);
BENCHMARK(BM_OmniWalk);
BENCHMARK(BM_OmniBackWalk);
BENCHMARK(BM_OmniSideWalk);
BENCHMARK(BM_Turn);
BENCHMARK(BM_TurnAroundBall);

}  // namespace

BENCHMARK_MAIN();
