#ifndef QUOLNARIS_TESTS_SUPPORT_PAIRORACLE_H_
#define QUOLNARIS_TESTS_SUPPORT_PAIRORACLE_H_

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "support/GaitCheck.h"

namespace support {

// The rules of the five actions that step in pairs, written out once more, plainly and on numbers
// alone: what the sequencer, the legs and the feet do in each cycle for the angle seen in it. Tests
// run an action and its oracle side by side over random targets.
class PairOracle {
 public:
  enum Kind { kOmni, kBack, kSide, kTurn, kAround };

  // `straight` holds the increments of every phase but those for which `special` is read.
  PairOracle(Kind kind_, const GaitNumbers& straight_, const GaitNumbers& special_)
      : kind(kind_), straight(straight_), special(special_) {
    if (kind == kTurn || kind == kAround) {
      side = rotSide = kRight;
      otherside = kLeft;
    }
  }

  // One cycle with the target at `angle` degrees; `stanceReached` matters in state 1 alone.
  bool cycle(double angle, double error, bool stanceReached) {
    stepped = false;
    chooseAtHead(angle);
    const double away = std::fabs(angle);
    const double gain = stepGain();
    switch (sequence) {
      case 1:
        if (stanceReached) sequence = 2;
        break;
      case 2:
        for (double& yaw : RotZ) yaw = 0;
        if (phaseOf(otherside,
                    kind == kOmni   ? 0.5
                    : kind == kBack ? -0.5
                                    : gain,
                    kind == kBack || kind == kTurn || kind == kAround ? special : straight)) {
          sequence = 3;
        }
        break;
      case 3:
        if (phaseOf(side, gain, straight)) sequence = 40;
        break;
      case 4:
        RotZ[phase] *= -1;
        if (phaseOf(side, gain, ++unwindingPhases[0] == 1 ? special : straight)) {
          sequence = 40;
          unwindingEnded();
        }
        break;
      case 5:
        if (phaseOf(otherside, gain, straight)) sequence = 30;
        break;
      case 6:
        RotZ[phase] *= -1;
        if (phaseOf(otherside, gain, ++unwindingPhases[1] == 1 ? special : straight)) {
          sequence = 30;
          unwindingEnded();
        }
        break;
    }
    chooseAfterPhase(angle);

    if (sequence == 30 && side == rotSide) return decideTurn(away, error, 3);
    if (sequence == 30) {
      sequence = 4;
      return kind <= kSide;
    }
    if (sequence == 40 && otherside == rotSide) return decideTurn(away, error, 5);
    if (sequence == 40) {
      sequence = 6;
      return kind <= kSide;
    }
    return false;
  }

  int sequence = 1;
  int phase = 0;
  bool side = false;
  bool otherside = false;
  bool rotSide = false;
  int count = 0;  // finished steps
  // Of the last cycle, if it stepped:
  bool stepped = false;
  bool leg = false;
  double height = 0;
  Feet feet;

 private:
  void chooseAtHead(double a) {
    if (kind == kOmni && sequence == 1) {
      rotSide = side = a > 0 ? kLeft : kRight;
      otherside = !side;
    }
    if (kind == kBack && sequence == 1) {
      rotSide = side = a > 0 ? kRight : kLeft;
      otherside = !side;
    }
    if (kind == kSide && (sequence == 1 || again)) {
      if (a < 0 && a > -90) direction = -1, side = kLeft, otherside = kRight, rotSide = kRight;
      if (a <= -90 && a > -180) direction = -1, side = kLeft, otherside = kRight, rotSide = kLeft;
      if (a > 0 && a <= 90) direction = 1, side = kRight, otherside = kLeft, rotSide = kLeft;
      if (a > 90 && a <= 180) direction = 1, side = kRight, otherside = kLeft, rotSide = kRight;
      again = false;
    }
    if (kind == kTurn) {
      direction = a > 0 ? 1 : 0;
      side = a > 0;
      otherside = !side;
      if (sequence == 1 && a > 0) rotSide = side;
      if (sequence == 1 && a < 0) rotSide = otherside;
      if (again) rotSide = a > 0 ? kLeft : kRight;
    }
    if (kind == kAround && a != 0) {
      const bool ahead = -a > 0;
      direction = ahead ? 1 : -1;
      side = rotSide = ahead;
      otherside = !ahead;
    }
  }

  void chooseAfterPhase(double a) {
    if (!again || kind == kSide || kind == kTurn || kind == kAround) return;
    again = false;
    if (a > 0) rotSide = kind == kOmni ? kLeft : kRight;
    if (a < 0) rotSide = kind == kOmni ? kRight : kLeft;
  }

  double stepGain() const {
    switch (kind) {
      case kOmni:
        return 1;
      case kBack:
        return -1;
      case kTurn:
        return static_cast<float>(direction * 0.05);
      default:
        return direction;
    }
  }

  bool phaseOf(bool stepping, double gain, const GaitNumbers& numbers) {
    stepped = true;
    leg = stepping;
    if (phase == 0) height = 0;
    feet.place[leg] += gain * numbers.stride[phase];
    height += numbers.lift[phase];
    feet.yaw += RotZ[phase];
    phase = (phase + 1) % 4;
    if (phase == 0) ++count;
    return phase == 0;
  }

  void unwindingEnded() {
    for (double& yaw : RotZ) yaw = 0;
    unwindingPhases[0] = unwindingPhases[1] = 0;
    again = true;
  }

  bool decideTurn(double away, double error, int next) {
    const double off = kind == kBack   ? std::fabs(180 - away)
                       : kind == kSide ? std::fabs(away - 90)
                                       : away;
    const bool turns = off >= error;
    if ((kind == kTurn || kind == kAround) && !turns) {
      if (kind == kTurn) {
        for (double& yaw : RotZ) yaw = 0;
      }
      return true;
    }
    for (int i = 0; i < 4; ++i) RotZ[i] = turns ? special.yaw[i] : 0;
    sequence = next;
    return false;
  }

  const Kind kind;
  const GaitNumbers straight;
  const GaitNumbers special;
  double RotZ[4] = {0, 0, 0, 0};
  int unwindingPhases[2] = {0, 0};
  int direction = 1;
  bool again = false;  // an unwinding step has ended
};

// Runs `execute` of the action beside the oracle for `cycles` cycles, with a target that jumps
// every `hold` cycles, and compares sequencer, legs, feet, yaw and result in each. `aim(angle)`
// puts the target and returns the angle that the action will see; `places` gives the action's
// accumulated feet, by side; `renew` is called after a true result. Returns how many results were
// true.
template <class Action, class Aim, class Execute, class Places, class Renew>
int expectLikeOracle(FakeBody& body, Action& action, const int& sequence, PairOracle& oracle,
                     double error, int cycles, int hold, unsigned seed, Aim aim, Execute execute,
                     Places places, Renew renew) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> angles(-180, 180);
  int ends = 0;
  double angle = 0;
  for (int cycle = 0; cycle < cycles && !::testing::Test::HasFailure(); ++cycle) {
    SCOPED_TRACE("cycle " + std::to_string(cycle) + ", state " + std::to_string(sequence) +
                 ", phase " + std::to_string(action.state) + ", angle " + std::to_string(angle));
    if (cycle % hold == 0) angle = aim(angles(random));
    body.nextCycle();
    const bool result = execute();
    EXPECT_EQ(result, oracle.cycle(angle, error, sequence != 1));
    EXPECT_EQ(sequence, oracle.sequence);
    EXPECT_EQ(action.state, oracle.phase);
    EXPECT_EQ(action.side, oracle.side);
    EXPECT_EQ(action.otherside, oracle.otherside);
    EXPECT_EQ(action.rotSide, oracle.rotSide);
    EXPECT_NEAR(action.rotate, oracle.feet.yaw, 1e-9);
    EXPECT_NEAR(places(kLeft), oracle.feet.place[kLeft], 1e-3);
    EXPECT_NEAR(places(kRight), oracle.feet.place[kRight], 1e-3);
    if (oracle.stepped) {
      // The pose follows from places, height and yaw, whatever step this was.
      EXPECT_NEAR(action.ankle[oracle.leg].getZ(), oracle.height, 1e-3);
      EXPECT_EQ(action.ankle[!oracle.leg].getZ(), 0);
      EXPECT_NEAR(action.theta[0][1], oracle.leg == oracle.rotSide ? oracle.feet.yaw : 0, 1e-9);
      EXPECT_NEAR(action.theta[1][1], oracle.leg == oracle.rotSide ? 0 : oracle.feet.yaw, 1e-9);
    }
    if (result) {
      ++ends;
      renew();
    }
  }
  return ends;
}

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_PAIRORACLE_H_
