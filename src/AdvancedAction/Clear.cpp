#include "AdvancedAction/Clear.h"

#include <cmath>

#include "AdvancedAction/GoToKick.h"
#include "Agent/Agent.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Game.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

namespace {

// A line whose direction has less than this along an axis counts as parallel to the other.
constexpr double kParallel = 0.01;

// Half a metre beside the ball.
constexpr double kBeside = 0.5;

// The own goal line is looked at from y = -1.2 in 13 steps of 0.2.
constexpr double kMouthFrom = -1.2;
constexpr double kMouthStep = 0.2;
constexpr int kMouthSteps = 13;

// Whether the line y = slope * x + offset runs into the own goal mouth.
bool runsIntoOwnGoal(double slope, double offset) {
  double y = kMouthFrom;
  for (int i = 0; i < kMouthSteps; ++i, y += kMouthStep) {
    if (std::fabs((y - offset) / slope + kHalfLength) < 0.4) return true;
  }
  return false;
}

Vector onGround(double x, double y) {
  return Vector(static_cast<float>(x), static_cast<float>(y), 0);
}

}  // namespace

void Clear::inIt() {
  selfPos = agent->WM->mySelf->getGlobalPosition();
  ballPos = agent->WM->ball->getGlobalPosition();
}

bool Clear::execute(Vector p2, Vector /*reachPoint*/) {
  inIt();
  agent->goToKick->execute(direction(p2));
  return true;
}

// One of the two points half a metre beside the ball, across the line from the ball to `p2`.
Vector Clear::direction(Vector p2) const {
  const double L_a = -(p2.getY() - ballPos.getY());
  const double L_b = p2.getX() - ballPos.getX();
  const double L_c = -L_a * ballPos.getX() - L_b * ballPos.getY();

  Vector firstPoint;
  Vector secondPoint;
  bool a = false;  // the own goal must be avoided
  if (std::fabs(L_b) < kParallel) {
    firstPoint = secondPoint = onGround(ballPos.getX() + kBeside, ballPos.getY());
    a = true;
  } else if (std::fabs(L_a) < kParallel) {
    firstPoint = onGround(ballPos.getX(), ballPos.getY() - kBeside);
    secondPoint = onGround(ballPos.getX(), ballPos.getY() + kBeside);
  } else {
    const double amood_m = L_b / L_a;  // "perpendicular": its slope
    const double c = L_c / L_b;
    const double left = ballPos.getX() - kBeside;
    const double right = ballPos.getX() + kBeside;
    firstPoint = onGround(left, left * amood_m - c);
    secondPoint = onGround(right, right * amood_m - c);
    a = runsIntoOwnGoal(amood_m, -c);
  }

  if (a) return firstPoint.getX() > secondPoint.getX() ? firstPoint : secondPoint;
  return firstPoint.getDistanceTo(selfPos) > secondPoint.getDistanceTo(selfPos) ? firstPoint
                                                                                : secondPoint;
}
