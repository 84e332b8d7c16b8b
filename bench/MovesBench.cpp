// One cycle of the moves that are no gaits, on a body without a server: what an action costs of the
// 20 ms that a cycle lasts.

#include <benchmark/benchmark.h>

#include "BasicAction/Dive.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "Utilities/Logger.h"
#include "support/FakeBody.h"

namespace {

// A body whose log is silent, as it would grow without end.
class BenchBody : public support::FakeBody {
 public:
  BenchBody() { Logger::logStreams->add("Agent", new LogNull); }
};

// One frame of a kick, held by joints that do not move.
template <typename Step>
void holdFrame(benchmark::State& state, int frame, Step step) {
  BenchBody body;
  body.placeAll(40);
  body.agent.kick->resetVars();
  body.agent.kick->stableState = frame;
  body.agent.kick->unStableState1 = frame;
  for (auto _ : state) benchmark::DoNotOptimize(step(*body.agent.kick));
}

void KickPose(benchmark::State& state) {
  holdFrame(state, 4, [](Kick& kick) { return kick.unstable(); });
}
BENCHMARK(KickPose);

void KickStrike(benchmark::State& state) {
  holdFrame(state, 9, [](Kick& kick) { return kick.unstable(); });
}
BENCHMARK(KickStrike);

void StrongKickPose(benchmark::State& state) {
  holdFrame(state, 2, [](Kick& kick) { return kick.unstable1(); });
}
BENCHMARK(StrongKickPose);

// The strike of the strong kick solves both legs three times.
void StrongKickStrike(benchmark::State& state) {
  holdFrame(state, 7, [](Kick& kick) {
    kick.l = 20;
    return kick.unstable1();
  });
}
BENCHMARK(StrongKickStrike);

void Stance(benchmark::State& state) {
  BenchBody body;
  body.agent.reset->execute(Reset::kNeutralStance);
  for (auto _ : state) benchmark::DoNotOptimize(body.agent.reset->init());
}
BENCHMARK(Stance);

void DiveCycle(benchmark::State& state) {
  BenchBody body;
  body.agent.dive->execute(0, 10, true);
  body.agent.dive->diveState = 1;
  for (auto _ : state) benchmark::DoNotOptimize(body.agent.dive->execute());
}
BENCHMARK(DiveCycle);

void HeadSweep(benchmark::State& state) {
  BenchBody body;
  for (auto _ : state) {
    body.agent.seeBall->SeeAll();
    body.nextCycle();
  }
}
BENCHMARK(HeadSweep);

// --- through the arbiter, cycle by cycle on a body that obeys ---

void ArbiterStandUp(benchmark::State& state) {
  BenchBody body;
  for (auto _ : state) {
    benchmark::DoNotOptimize(body.agent.actions->ChangeAction(body.agent.standUp->back()));
    body.nextCycle();
  }
}
BENCHMARK(ArbiterStandUp);

void ArbiterWalk(benchmark::State& state) {
  BenchBody body;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        body.agent.actions->ChangeAction(body.agent.walk->omniWalk(Vector(9, 3, 0), 1, 5, 0)));
    body.nextCycle();
  }
}
BENCHMARK(ArbiterWalk);

// The costliest way through the arbiter: a request that is not served and re-issues the gait.
void ArbiterReissue(benchmark::State& state) {
  BenchBody body;
  Actions& actions = *body.agent.actions;
  for (auto _ : state) {
    actions.NowAction.actionType = AT_FORWALK;
    actions.preAction = false;
    benchmark::DoNotOptimize(actions.ChangeAction(body.agent.kick->unstable(true)));
    body.nextCycle();
  }
}
BENCHMARK(ArbiterReissue);

void ArbiterEndStep(benchmark::State& state) {
  BenchBody body;
  body.setResponse(0);
  for (auto _ : state) {
    benchmark::DoNotOptimize(body.agent.actions->endStep());
    body.nextCycle();
  }
}
BENCHMARK(ArbiterEndStep);

// What the loops above spend outside the arbiter.
void BodyAlone(benchmark::State& state) {
  BenchBody body;
  for (auto _ : state) body.nextCycle();
}
BENCHMARK(BodyAlone);

}  // namespace

BENCHMARK_MAIN();
