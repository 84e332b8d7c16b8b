#include "BasicAction/Dive.h"

#include <iostream>

#include "Agent/Agent.h"
#include "Mathematics/Vector.h"
#include "Utilities/Converter.h"
#include "Utilities/Logger.h"
#include "WorldModel/WorldModel.h"

namespace {

void log(const char* text) {
  logger["Agent"] << text << std::endl;
}

}  // namespace

int Dive::freezeCycle = 0;

Dive* Dive::execute(int side, double _fCycle, bool rotateSide) {
  type = AT_DIVE;
  inAction = AT_DIVE;
  Side = side;
  RotateSide = rotateSide;
  fCycle = integerPart(_fCycle);
  return this;
}

bool Dive::execute() {
  type = AT_DIVE;
  inAction = AT_DIVE;
  bool done;
  switch (Side) {
    case 0:
      done = frontDive();
      break;
    case -1:
    case 1:
      done = sideDive();
      break;
    default:
      done = shortBlock();
      break;
  }
  if (!done) log("return false");
  return done;
}

bool Dive::frontDive() {
  const float sign = RotateSide ? -1 : 1;
  bool arrived = true;
  switch (diveState) {
    case 0:
      arrived &= agent->setAllBothLeg(0, 10, 5);
      arrived &= agent->setAllBothHand(0, 10, 5);
      arrived &= agent->setAllHead(0, 50, 5);
      if (arrived) {
        log("jeleH");
        diveState = 1;
      }
      return false;
    case 1:
      arrived &= agent->setLeg(2, RotateSide, 45 * sign, 70, 5);
      arrived &= agent->setLeg(2, !RotateSide, -45 * sign, 70, 5);
      arrived &= agent->setBothLeg(3, 80, 70, 5);
      arrived &= agent->setBothLeg(1, -65, 70, 5);
      arrived &= agent->setHand(2, kRight, -90, 70, 5);
      arrived &= agent->setHand(2, kLeft, 90, 70, 5);
      if (arrived) {
        log("khafan!");
        diveState = 2;
      }
      return false;
    case 2:
      return lieStill();
    default:
      return false;
  }
}

bool Dive::sideDive() {
  std::cout << "gameTime=" << agent->WM->gameTime << std::endl;
  const bool leg = Side == -1 ? kLeft : kRight;
  const float a = Side == -1 ? 45 : -45;
  switch (diveState) {
    case 0: {
      const Vector torso(1, 27 * Side, -2);
      const Vector ankle(0, 0, 0);
      double left[7] = {};
      double right[7] = {};
      agent->solveIkLeg1(torso, ankle, left, kLeft, 0, 0, 0);
      agent->solveIkLeg1(torso, ankle, right, kRight, 0, 0, 0);
      for (int joint = 1; joint <= 6; ++joint) {
        agent->setLeg(joint, kLeft, static_cast<float>(left[joint]), 100, 5);
        agent->setLeg(joint, kRight, static_cast<float>(right[joint]), 100, 5);
      }
      diveState = 1;
      return false;
    }
    case 1: {
      // Rolling on the ankle's outer edge tips the robot over; only the fall itself ends the state.
      agent->setLeg(6, leg, a, 100, 10);
      agent->setLeg(6, !leg, -a, 100, 10);
      const bool hands = agent->setBothHand(1, 90, 100, 10);
      const bool head = agent->setAllHead(0, 100, 10);
      if (hands && head && agent->WM->isFall()) {
        log(" lokaloka!");
        diveState = 2;
      }
      return false;
    }
    case 2:
      return lieStill();
    default:
      return false;
  }
}

bool Dive::shortBlock() {
  if (diveState != 0) return false;
  log("divefront");
  bool arrived = agent->setBothLeg(5, 90, 100, 5);
  arrived &= agent->setBothHand(1, 90, 100, 10);
  arrived &= agent->setAllHead(0, 100, 10);
  if (!arrived) return false;
  diveState = 0;
  finish = true;
  return true;
}

bool Dive::lieStill() {
  log("horaaaaaaaa!");
  if (fCycle <= freezeCycle) {
    diveState = 0;
    return true;
  }
  ++freezeCycle;
  return false;
}

void Dive::resetVars() {
  diveState = 0;
  freezeCycle = 0;
  finish = false;
}
