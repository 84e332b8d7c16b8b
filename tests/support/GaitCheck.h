#ifndef QUOLNARIS_TESTS_SUPPORT_GAITCHECK_H_
#define QUOLNARIS_TESTS_SUPPORT_GAITCHECK_H_

#include <gtest/gtest.h>

#include <string>

#include "BasicAction/Reset.h"
#include "Mathematics/Vector.h"
#include "support/FakeBody.h"

// What the tests of the gaits and turns share: the targets that a phase of a step asks of both
// legs, worked out from the gait's numbers, and their comparison with what the body was sent.

namespace support {

// One gait's numbers in millimetres, degrees and percent, as the configuration of FakeBody gives
// them, worked out by hand in each test.
struct GaitNumbers {
  double torso[3];
  double stride[4];
  double lift[4];
  double yaw[4] = {};
  bool sideways = false;  // strides along y instead of x
};

// One whole step as the rules want it.
struct GaitStep {
  int sequence;    // the sequencer's state during the step
  bool leg;        // the leg that steps
  bool rotating;   // the rotating leg
  int turn;        // +1 turns by the yaw increments, -1 unwinds them, 0 steps straight
  double gain;     // factor of the stride
  float speed;     // joint speed
  bool endResult;  // the action's result in the last phase; it is false in the others
  int next;        // the sequencer's state after the step
};

// Where both feet stand; lives across the steps of a gait.
struct Feet {
  double place[2] = {0, 0};  // along the walking axis, by side
  double yaw = 0;            // of the rotating leg
  double fixedYaw = 0;       // of both legs
};

// What one phase asks of both legs.
struct LegTargets {
  Vector torso;
  Vector ankle[2];
  double yaw[2] = {0, 0};
};

// The targets with the foot of `leg` at `height`.
LegTargets legTargets(const GaitNumbers& numbers, const Feet& feet, bool leg, bool rotating,
                      double height);

// Joints 1 to 6 of both legs are driven towards the targets at `speed`, and stopped where a target
// is out of reach.
void expectLegs(FakeBody& body, const LegTargets& targets, float speed);

// No leg joint has been commanded in this cycle. REQUIRES: markCommands() at its start.
void expectNoLegCommand(FakeBody& body);

// The text holds the line.
void expectLine(const std::string& text, const std::string& line);

// A point whose bearing is `angle` degrees for a player who stands at the pitch centre and looks
// along x.
Vector pointAt(double angle, double distance = 5);

// Runs `execute` for one step, phase by phase, and compares the sequencer, the phase, the result
// and both legs' targets with the step.
template <class Action, class Execute>
void expectStep(FakeBody& body, Action& action, int& sequence, Execute execute,
                const GaitNumbers& numbers, const GaitStep& step, Feet& feet) {
  double height = 0;
  for (int phase = 0; phase < 4; ++phase) {
    SCOPED_TRACE("state " + std::to_string(step.sequence) + ", phase " + std::to_string(phase));
    EXPECT_EQ(sequence, step.sequence);
    EXPECT_EQ(action.state, phase);
    body.nextCycle();
    const bool result = execute();
    feet.place[step.leg] += step.gain * numbers.stride[phase];
    feet.yaw += step.turn * numbers.yaw[phase];
    height += numbers.lift[phase];
    expectLegs(body, legTargets(numbers, feet, step.leg, step.rotating, height), step.speed);
    EXPECT_EQ(result, phase == 3 && step.endResult);
  }
  EXPECT_EQ(sequence, step.next);
  EXPECT_EQ(action.state, 0);
  EXPECT_EQ(action.sideEnd, step.leg);
}

// Runs `execute` through the stance, which must report false throughout; gives the number of
// cycles that it took.
template <class Execute>
int takeStance(FakeBody& body, const int& sequence, Execute execute) {
  const int start = sequence;
  int cycles = 0;
  while (sequence == start && cycles < 1000) {
    body.nextCycle();
    EXPECT_FALSE(execute());
    ++cycles;
  }
  EXPECT_LT(cycles, 1000) << "the stance is never reached";
  return cycles;
}

// A gait on a body of its own, and where its feet stand: what the tests of the gaits begin with.
template <class Gait>
class GaitFixture : public ::testing::Test {
 protected:
  bool execute() { return gait.execute(); }
  void start() {
    takeStance(body, gait.basicWalkState, [this] { return execute(); });
  }
  void expectStepOf(const GaitNumbers& numbers, const GaitStep& step) {
    expectStep(
        body, gait, gait.basicWalkState, [this] { return execute(); }, numbers, step, feet);
  }

  // The first cycle goes for this stance, at the gaits' speeds.
  void expectStance(Reset::Stance stance) {
    body.nextCycle();
    EXPECT_FALSE(execute());
    const Reset& reset = *body.agent.reset;
    EXPECT_EQ(reset.State, stance);
    EXPECT_EQ(reset.Speed, 10);
    EXPECT_EQ(reset.SP, 5);
  }

  // The ten doubles that the arbiter clears after an end step stand first, in this order.
  void expectFirstTenDoubles() {
    const auto* begin = reinterpret_cast<const char*>(&gait.RotZ);
    const auto place = [begin](const auto& field) {
      return (reinterpret_cast<const char*>(&field) - begin) / static_cast<int>(sizeof(double));
    };
    EXPECT_EQ(place(gait.Xtorso), 4);
    EXPECT_EQ(place(gait.Ytorso), 5);
    EXPECT_EQ(place(gait.Ztorso), 6);
    EXPECT_EQ(place(gait.Xankle), 7);
  }

  FakeBody body;
  Gait gait;
  Feet feet;
};

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_GAITCHECK_H_
