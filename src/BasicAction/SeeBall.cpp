#include "BasicAction/SeeBall.h"

#include "Agent/Agent.h"
#include "WorldModel/Ball.h"
#include "WorldModel/WorldModel.h"

namespace {

constexpr int kPan = 1;
constexpr int kTilt = 2;

// A ball counts as seen for this long, seconds.
constexpr double kSeenWithin = 0.12;

}  // namespace

int SeeBall::aroundState = 0;
int SeeBall::downState = 0;
bool SeeBall::tof = false;

bool SeeBall::seen() {
  const float age = agent->WM->gameTime - agent->WM->ball->getLastTimeSeen();
  return age < kSeenWithin;
}

void SeeBall::SeeAll() {
  const auto moveHead = [](int joint, float value) { return agent->setHead(joint, value, 70, 5); };
  switch (aroundState) {
    case 0:
      if (moveHead(kTilt, 0)) aroundState = 1;
      break;
    case 1:
      if (moveHead(kPan, 120)) aroundState = 2;
      break;
    case 2:
      if (!moveHead(kPan, -120)) break;
      if (lookDown == 1) {
        lookDown = 0;
        aroundState = 0;
      } else if (seen()) {
        aroundState = 1;
      } else if (moveHead(kTilt, -45)) {
        lookDown = 1;
        aroundState = 1;
      }
      break;
    default:
      break;
  }
}

void SeeBall::lookForBall() {
  struct Look {
    int joint;
    int value;
  };
  const Look looks[] = {{kPan, 0},  {kTilt, -40}, {kTilt, 0},   {kPan, d}, {kTilt, -40},
                        {kTilt, 0}, {kPan, -d},   {kTilt, -40}, {kTilt, 0}};
  constexpr int kLast = 8;
  if (state < 0 || state > kLast) return;
  if (!agent->setHead(looks[state].joint, looks[state].value, 7, 5)) return;
  if (state < kLast) {
    ++state;
    return;
  }
  state = 0;
  s = -s;
  d += s * 40;
}
