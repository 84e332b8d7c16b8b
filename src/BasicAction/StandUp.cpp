#include "BasicAction/StandUp.h"

#include "Agent/Agent.h"
#include "BasicAction/Reset.h"

namespace {

// The timed steps of the front sequence last at least this many cycles: the body needs the time to
// roll over its arms, and later on to its feet, whatever the joints report.
constexpr int kTimedStepCycles = 36;
// From this cycle of the first timed step on, the hips fold too.
constexpr int kFoldHipsFromCycle = 16;

}  // namespace

StandUp* StandUp::front() {
  inAction = AT_STANDUP_FRONT;
  type = AT_STANDUP_FRONT;
  return this;
}

StandUp* StandUp::back() {
  inAction = AT_STANDUP_BACK;
  type = AT_STANDUP_BACK;
  return this;
}

StandUp* StandUp::flip() {
  inAction = AT_FLIP;
  type = AT_FLIP;
  return this;
}

bool StandUp::init_front() {
  bool arrived = true;
  switch (standUpFState) {
    case 0:
      arrived &= agent->setAllBothLeg(0, 50, 4);
      arrived &= agent->setBothHand(2, 0, 50, 4);
      arrived &= agent->setBothHand(3, 0, 50, 4);
      arrived &= agent->setBothHand(4, 0, 50, 4);
      if (arrived) standUpFState = 1;
      return false;
    case 1:
      ++counter;
      arrived &= agent->setBothHand(1, 30, 30, 4);
      if (counter >= kFoldHipsFromCycle) arrived &= agent->setBothLeg(3, 100, 90, 4);
      if (arrived && counter >= kTimedStepCycles) {
        counter = 0;
        standUpFState = 2;
      }
      return false;
    case 2:
      ++counter;
      arrived &= agent->setBothLeg(5, -15, 60, 3);
      if (arrived && counter >= kTimedStepCycles) {
        counter = 0;
        standUpFState = 3;
      }
      return false;
    case 3:
      if (agent->setBothLeg(3, 45, 10, 5)) standUpFState = 4;
      return false;
    case 4:
      if (!agent->reset->execute(Reset::kFixedStance)->init()) return false;
      standUpFState = 0;
      return true;
    default:
      return false;
  }
}

bool StandUp::init_back() {
  bool arrived = true;
  switch (standUpBState) {
    case 0:
      arrived &= agent->setAllBothLeg(0, 20, 2);
      arrived &= agent->setAllBothHand(0, 30, 6);
      arrived &= agent->setAllHead(0, 100, 6);
      break;
    case 1:
      arrived &= agent->setBothHand(1, -120, 100, 6);
      arrived &= agent->setHand(4, kRight, 65, 30, 6);
      arrived &= agent->setHand(4, kLeft, -65, 30, 6);
      break;
    case 2:
      arrived &= agent->setBothLeg(3, 100, 100, 6);
      break;
    case 3:
      arrived &= agent->setAllBothHand(0, 30, 6);
      break;
    case 4:
      arrived &= agent->setBothLeg(4, -100, 30, 6);
      arrived &= agent->setBothLeg(5, -30, 30, 6);
      arrived &= agent->setLeg(1, kRight, -90, 30, 6);
      arrived &= agent->setLeg(1, kLeft, -90, 30, 6);
      break;
    case 5:
      if (!agent->reset->execute(Reset::kFixedStance, 4, 4)->init()) return false;
      standUpBState = 0;
      inAction = AT_NONE;
      return true;
    default:
      return false;
  }
  if (arrived) ++standUpBState;
  return false;
}

bool StandUp::init_flip() {
  switch (flipState) {
    case 0:
      // Each command waits for the one before: the hips open before the knees fold.
      if (agent->setBothLeg(1, -90, 30, 2) && agent->setBothLeg(4, -100, 30, 2) &&
          agent->setBothLeg(5, -30, 30, 2)) {
        flipState = 1;
      }
      return false;
    case 1:
      // The hand-over: whoever goes on asking with this object gets the back sequence.
      type = AT_STANDUP_BACK;
      flipState = 0;
      inAction = AT_NONE;
      return true;
    default:
      return false;
  }
}

void StandUp::resetVars(ActionType which) {
  const bool all = which == AT_ALL;
  if (all || which == AT_STANDUP_FRONT) {
    // standUpFState stays on purpose: a broken-off front sequence resumes where it stopped.
    type0 = 0;
    type1 = 0;
    counter = 0;
  }
  if (all || which == AT_STANDUP_BACK) standUpBState = 0;
  if (all || which == AT_FLIP) {
    standUpBState = 0;
    flipState = 0;
  }
}
