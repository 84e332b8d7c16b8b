#include "BasicAction/FeedBack.h"

#include <cmath>
#include <iostream>

#include "Agent/Agent.h"
#include "Decision/Actions.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

Agent* FeedBack::agent = nullptr;

IsNearFall FeedBack::isNearFall() {
  [[maybe_unused]] static int stateF = 0;  // the dominant axis: 1 for x, 2 for y
  const Vector acc = agent->WM->mySelf->getAccellerator();
  if (std::fabs(acc.x) > std::fabs(acc.y)) {
    stateF = 1;
    if (acc.x > -5.5 && acc.x < -1.5) return NEAR_FALL_RIGHT;
    if (acc.x > 1.5) return NEAR_FALL_LEFT;
  } else {
    stateF = 2;
    if (acc.y > 1.5 && acc.y < 5.5) return NEAR_FALL_BACK;
    if (acc.y < -1.5) return NEAR_FALL_FRONT;
  }
  return kQuiet;
}

bool FeedBack::execute() {
  const IsNearFall f = isNearFall();
  if (f == NONE2) return true;
  const ActionType running = agent->actions->NowAction.actionType;
  if (running == AT_RESET || running == AT_STANDUP_RESET) return true;

  const float forwardAcc = agent->WM->mySelf->getAccellerator().y;
  switch (f) {
    case FALL2:
      return true;
    case NEAR_FALL_FRONT:
      return agent->setBothHand(1, forwardAcc < -4 ? -90 : -50, 80, 2);
    case NEAR_FALL_BACK:
      return agent->setBothHand(1, forwardAcc > 4 ? 0 : -20, 100, 2);
    case NEAR_FALL_RIGHT:
      return agent->setHand(1, kLeft, 10, 90, 2);
    case NEAR_FALL_LEFT: {
      bool arrived = agent->setHand(1, kLeft, 10, 90, 2);
      arrived &= agent->setHand(2, kRight, -90, 90, 2);
      if (arrived) std::cout << "TRUE" << std::endl;
      return arrived;
    }
    default:
      return false;
  }
}

bool FeedBack::fall() {
  a = agent->findCOM();
  if (fstate == 1) {
    agent->setLeg(5, kLeft, 15, 30, 5);
    agent->setLeg(5, kRight, 15, 30, 5);
    return true;
  }
  return fstate == 2;
}
