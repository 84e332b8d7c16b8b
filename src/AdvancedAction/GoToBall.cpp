#include "AdvancedAction/GoToBall.h"

#include <cmath>

#include "AdvancedAction/GoToPoint.h"
#include "Agent/Agent.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "Mathematics/Degree.h"
#include "Utilities/Logger.h"
#include "WorldModel/Ball.h"
#include "WorldModel/Self.h"
#include "WorldModel/WorldModel.h"

namespace {

enum { kTurn = 1, kSideOne = 2, kSideOther = 3, kBack = 4, kWalk = 5 };

// How far behind the ball to stand for a kick, metres.
constexpr double kKickLength = 0.35;

}  // namespace

// What tells the two forms of the approach apart.
struct GoToBall::Margins {
  double goLength;    // metres behind the ball when walking through it
  double band;        // metres of the lengthwise dead band, times the coefficient
  double bandTenths;  // the same band in tenths, as the test of arrival takes it
  bool nearBallOnly;  // corrections only while the ball's x is within 0.6 m
  const char* distName;
};

GoToBall::GoToBall() {
  resetVars();
}

void GoToBall::resetVars() {
  GTBstate = 1;
  GTBallState = state = st = 0;
}

bool GoToBall::common(Vector toGo, float angleErr, float distErr) {
  return agent->goToPoint->fineApproach(agent->WM->ball->getGlobalPosition(), toGo, angleErr,
                                        distErr);
}

// The coefficients outlive resets: 2 while a correcting step runs, which widens the dead band along
// the line and tightens the one across it.
bool GoToBall::execute(Vector pos, float error, float dis, bool go) {
  static int coefficient = 1;
  constexpr Margins kMargins{0.1, 0.15, 1.5, true, "dist"};
  return approach(pos, error, dis, go, kMargins, coefficient);
}

bool GoToBall::execute1(Vector pos, float error, float dis, bool go) {
  static int zarib = 1;  // "coefficient"
  constexpr Margins kMargins{0.2, 0.16, 1.6, false, "fasele"};
  return approach(pos, error, dis, go, kMargins, zarib);
}

bool GoToBall::approach(Vector pos, float error, float dis, bool go, const Margins& margins,
                        int& coefficient) {
  const Vector ball = agent->WM->ball->getGlobalPosition();
  const Vector myself = agent->WM->getAgentPosition();

  // `equal` is the target moved so that the line to it runs through the player, parallel to the
  // kick; `point` is the point of that line at the ball's x.
  const Vector face = pos - ball;
  const Vector equal = pos + myself - ball;
  Vector point;
  point.setX(ball.getX());
  point.setY((equal.getY() - myself.getY()) / (equal.getX() - myself.getX()) *
                 (point.getX() - myself.getX()) +
             myself.getY());

  const double degree = Degree::normalizeAngle(static_cast<float>(agent->WM->getAngleTo(point)));
  const double slope = Degree::normalizeAngle(static_cast<float>(face.getSlope() + 90));
  const int factor = slope < 0 ? -1 : 1;

  const double length = go ? margins.goLength : kKickLength;
  Vector sincos(static_cast<float>(std::sin(slope * M_PI / 180)),
                static_cast<float>(-std::cos(slope * M_PI / 180)), 0);
  const Vector good = ball - sincos * length;
  const double dist = good.getDistanceOnGround(myself);

  logger["Agent"] << "real ball " << agent->WM->ball->getServerBallPos() << " pos " << pos
                  << " ball " << ball << " point " << point << " myself " << myself << " good "
                  << good << " degree " << degree << " slope " << slope << " " << margins.distName
                  << " " << dist << std::endl;

  const double dx = ball.getX() - myself.getX();
  const double dy = good.getY() - myself.getY();
  const double band = coefficient * margins.bandTenths / 10;
  const bool correct = !margins.nearBallOnly || std::fabs(dx) < 0.6;

  if (!((std::fabs(degree) > error || std::fabs(dy) < 0.1) && correct) && !(factor * dx < -band) &&
      dist >= 1.5) {
    coefficient = 1;
  }
  if (std::fabs(degree) > error && correct) {
    GTBstate = kTurn;
  } else if (factor * dx < -coefficient * margins.band && correct) {
    GTBstate = kBack;
  } else if (factor * dy < -0.1 / coefficient && correct) {
    GTBstate = kSideOne;
  } else if (factor * dy > 0.1 / coefficient && correct) {
    GTBstate = kSideOther;
  } else {
    GTBstate = kWalk;
  }
  if (dist > 1.5) GTBstate = kWalk;

  const double toBall = myself.getDistanceOnGround(ball);
  if (std::fabs(degree) < error && std::fabs(dy) < 0.1 && factor * dx > -band && toBall <= dis) {
    return true;
  }

  Actions* const actions = agent->actions;
  if (GTBstate != kWalk) coefficient = 2;
  switch (GTBstate) {
    case kTurn:
      actions->ChangeAction(agent->turn->execute(point, error * 0.5, 0));
      return false;
    case kSideOne:
      actions->ChangeAction(agent->walk->sideWalk(-1));
      return false;
    case kSideOther:
      actions->ChangeAction(agent->walk->sideWalk(1));
      return false;
    case kBack:
      actions->ChangeAction(agent->walk->backWalk(-1, 1));
      return false;
    default: {
      const double sx = std::fabs(good.getX() - myself.getX());
      double speed = 0.1;
      if (sx > 0.5 || dist > 1.3) {
        speed = 0.4;
      } else if (sx >= 0.2) {
        speed = sx - 0.1;
      }
      actions->ChangeAction(agent->walk->omniWalk(good, static_cast<float>(speed), 5, 0));
      return go && toBall <= dis;
    }
  }
}
