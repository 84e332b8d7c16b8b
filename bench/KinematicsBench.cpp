// The body: inverse and forward kinematics, centre of mass, and the joints of a message. The
// counter "allocations" is the number of heap blocks that one call takes.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "Agent/BasicAgent.h"
#include "BenchKit.h"
#include "Kinematics/ForwardKinematic.h"
#include "Kinematics/InverseKinematic.h"
#include "Kinematics/NAOKinematics.h"
#include "Utilities/Config.h"

namespace {

using bench::allocations;

// Runs call once to warm up and then as often as the benchmark asks.
template <typename Call>
void measure(benchmark::State& state, Call call) {
  call();
  const long before = allocations;
  for (auto _ : state) {
    call();
    benchmark::ClobberMemory();
  }
  state.counters["allocations"] =
      benchmark::Counter(static_cast<double>(allocations - before) / state.iterations());
}

// The body with all joints bound to the world model's, at the deployment's configuration.
BasicAgent& agent() {
  static BasicAgent& instance = []() -> BasicAgent& {
    if (chdir(QUOLNARIS_SOURCE_DIR) != 0) std::abort();
    config.addFiles();
    static BasicAgent made;
    made.WM = new WorldModel;
    BodyController& body = made.bControl;
    for (int side = 0; side < 2; ++side) {
      for (int i = 0; i < kHandJoints; ++i) {
        body.handController[side][i].joint = made.WM->getHandJoint(i + 1, side);
      }
      for (int i = 0; i < kLegJoints; ++i) {
        body.legController[side][i].joint = made.WM->getLegJoint(i + 1, side);
      }
    }
    for (int i = 0; i < kHeadJoints; ++i) {
      body.headController[i].joint = made.WM->getHeadJoint(i + 1);
    }
    return made;
  }();
  return instance;
}

const Vector kTorso(5, 10, -35);
const Vector kAnkle(20, -5, 10);

void legSolver(benchmark::State& state) {
  agent();
  InverseKinematic inverse;
  double theta[7];
  measure(state, [&] { inverse.legSolver(kTorso, kAnkle, theta); });
}
BENCHMARK(legSolver);

void legSolverWith1(benchmark::State& state) {
  agent();
  InverseKinematic inverse;
  double theta[7];
  const bool side = state.range(0) != 0;
  measure(state, [&] { inverse.legSolverWith1(kTorso, kAnkle, theta, side, 10); });
}
BENCHMARK(legSolverWith1)->ArgName("right")->Arg(0)->Arg(1);

void legSolverChainForm(benchmark::State& state) {
  InverseKinematic inverse;
  double theta[7];
  const std::vector<double> sensed(6, 0.1);
  measure(state, [&] { inverse.legSolver(kTorso, kAnkle, theta, true, sensed, 0.05, -0.1, 0.1); });
}
BENCHMARK(legSolverChainForm);

void forwardLeg(benchmark::State& state) {
  agent();
  ForwardKinematic fwd;
  measure(state, [&] { fwd.setRightLeg(1, 2, 30, -60, 30, -2); });
}
BENCHMARK(forwardLeg);

void forwardArm(benchmark::State& state) {
  ForwardKinematic fwd;
  measure(state, [&] { fwd.setRightHand(-90, -10, 80, 40); });
}
BENCHMARK(forwardArm);

void forwardHead(benchmark::State& state) {
  ForwardKinematic fwd;
  measure(state, [&] { fwd.setHead(20, -10); });
}
BENCHMARK(forwardHead);

void buildChainModel(benchmark::State& state) {
  measure(state, [] {
    NAOKinematics nao;
    benchmark::DoNotOptimize(&nao);
  });
}
BENCHMARK(buildChainModel);

void inverseLeg(benchmark::State& state) {
  NAOKinematics nao;
  kmatTable target;
  const bool right = state.range(0) != 0;
  nao.filterForward(target, right ? "RightLeg" : "LeftLeg", {-0.2, 0.05, -0.6, 0.9, -0.35, 0.1});
  measure(state, [&] {
    benchmark::DoNotOptimize(right ? nao.inverseRightLeg(target) : nao.inverseLeftLeg(target));
  });
}
BENCHMARK(inverseLeg)->ArgName("right")->Arg(0)->Arg(1);

void findCOM(benchmark::State& state) {
  BasicAgent& body = agent();
  measure(state, [&] { benchmark::DoNotOptimize(body.findCOM()); });
}
BENCHMARK(findCOM);

void makeCommand(benchmark::State& state) {
  BasicAgent& body = agent();
  body.setAll(30, 20, 1);
  Command command;
  measure(state, [&] {
    body.bControl.makeCommand(&command);
    command.setFinal();
    benchmark::DoNotOptimize(command.getFinal().data());
    command.clear();
  });
}
BENCHMARK(makeCommand);

}  // namespace

BENCHMARK_MAIN();
