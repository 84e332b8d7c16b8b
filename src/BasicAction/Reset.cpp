#include "BasicAction/Reset.h"

#include <iostream>

#include "Agent/Agent.h"
#include "Utilities/Config.h"

namespace {

// The hip target of a stance, millimetres. The keys are those of the gaits; the factors are not.
Vector stance(int state) {
  const auto forWalk = [](const char* key) { return config["forWalk"]["forwalk"][key].asFloat(); };
  switch (state) {
    case Reset::kNeutralStance:
      return Vector(forWalk("Xtorso") * 80, forWalk("Ytorso") * -10, forWalk("Ztorso") * -70);
    case Reset::kBackStance:
      return Vector(config["backWalk"]["backwalk"]["Xtorso"].asFloat() * 60, 0,
                    forWalk("Ztorso") * -70);
    case Reset::kForwardStance:
      return Vector(forWalk("Xtorso") * 100, forWalk("Ytorso") * -10, forWalk("Ztorso") * -70);
    default:
      return Vector(50, 0, -60);
  }
}

// Sends joints 2 to 5 of both legs to the same angles.
bool setLegPitches(Agent* agent, const double* angles, float gain, float error) {
  bool arrived = true;
  for (int joint = 2; joint <= 5; ++joint) {
    const float angle = static_cast<float>(angles[joint]);
    arrived &= agent->setLeg(joint, kRight, angle, gain, error);
    arrived &= agent->setLeg(joint, kLeft, angle, gain, error);
  }
  return arrived;
}

}  // namespace

Reset* Reset::execute(int state, int speed, int sp) {
  type = AT_RESET;
  inAction = AT_RESET;
  State = state;
  Speed = speed;
  SP = sp;
  return this;
}

bool Reset::init() {
  heap = stance(State);
  ankle = Vector(0, 0, 0);
  inv.legSolver(heap, ankle, angs);

  bool arrived = agent->setBothHand(1, -90, SP, 5);
  arrived &= agent->setHand(3, kRight, 90, SP, 5);
  arrived &= agent->setHand(3, kLeft, -90, SP, 5);
  arrived &= agent->setBothHand(4, 0, SP, 5);
  arrived &= setLegPitches(agent, angs, SP, 3);
  arrived &= agent->setBothLeg(1, 0, Speed, 3);
  arrived &= agent->setBothLeg(6, 0, Speed, 3);
  if (arrived) inAction = AT_NONE;
  return arrived;
}

bool Reset::prepareToReset() {
  inAction = AT_STANDUP_RESET;
  heap = Vector(-10, 0, -20);
  ankle = Vector(0, 0, 0);
  inv.legSolver(heap, ankle, angs);
  for (int i = 0; i < 7; ++i) std::cout << " i : " << i << ' ' << angs[i] << std::endl;

  bool arrived = agent->setBothHand(1, -90, 10, 2);
  arrived &= agent->setHand(2, kLeft, 10, 5, 2);
  arrived &= agent->setBothHand(4, 0, 10, 5);
  arrived &= setLegPitches(agent, angs, 5, 0.5f);
  arrived &= agent->setBothLeg(1, 0, 50, 0.5f);
  arrived &= agent->setBothLeg(6, 0, 50, 0.5f);
  if (arrived) inAction = AT_NONE;
  return arrived;
}

void Reset::resetVars() {
  resetCounter = 0;
}
