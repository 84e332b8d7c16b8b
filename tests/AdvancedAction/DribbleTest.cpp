#include "AdvancedAction/Dribble.h"

#include <cmath>

#include "BasicAction/OmniWalk.h"
#include "support/PointCheck.h"
#include "support/TestPlayer.h"

namespace {

using support::expectPoint;
using support::TestPlayer;

// The root of 1 - 0.25, plus 0.5: how far the first look-ahead steps aside.
const double kAside = std::sqrt(0.75) + 0.5;

TEST(DribbleConstructionTest, Statics) {
  EXPECT_EQ(Dribble::mapsoosPos, Vector(9999, 9999, 9999));
  EXPECT_FALSE(Dribble::passToTeammate);
  Dribble::dribbleState = 4;
  Dribble action;
  action.resetVars();
  EXPECT_EQ(Dribble::dribbleState, 0);
}

PLAYER_TEST(DribbleTest, InItReadsTheWorldAndTheNumber) {
  TestPlayer p(9, SIDE_RIGHT);
  p.me(1, 2);
  p.ball(3, 4);
  Dribble& action = *p.player.dribble;
  p.world.ourSide = SIDE_LEFT;
  action.inIt();
  EXPECT_EQ(action.selfPos, Vector(1, 2, 0.45f));
  EXPECT_EQ(action.ballPos, Vector(3, 4, 0));
  EXPECT_EQ(action.unum, 9);
  EXPECT_FALSE(action.ourSide);
  p.world.ourSide = SIDE_RIGHT;
  action.inIt();
  EXPECT_TRUE(action.ourSide);
}

// --- dribble -------------------------------------------------------------------------------------

PLAYER_TEST(DribbleWalkTest, GoesToTheBallAndWithItOnToThePoint) {
  TestPlayer p(9);
  p.ball(0, 0);
  const Vector point(5, 1, 0);
  p.me(-0.21, 0);
  p.arm();
  EXPECT_FALSE(p.player.dribble->dribble(point, 0.1));
  EXPECT_EQ(p.player.walk->v, Vector(0, 0, 0));
  EXPECT_FLOAT_EQ(p.player.walk->Speed, 0.3f);
  EXPECT_EQ(p.player.walk->Error, 3);
  EXPECT_EQ(p.player.walk->_omniWalk->actionType, 1);
  p.me(-0.19, 0);
  p.arm();
  EXPECT_FALSE(p.player.dribble->dribble(point, 0.1));
  EXPECT_EQ(p.player.walk->v, point);
  EXPECT_FLOAT_EQ(p.player.walk->Speed, 0.3f);
  EXPECT_EQ(p.player.walk->Error, 10);
  EXPECT_EQ(p.player.walk->_omniWalk->actionType, 1);
}

PLAYER_TEST(DribbleWalkTest, IsDoneOnTheGroundWithinTheError) {
  TestPlayer p(9);
  p.ball(0, 0);
  p.me(4.95, 1);
  EXPECT_TRUE(p.player.dribble->dribble(Vector(5, 1, 0), 0.1));
  EXPECT_FALSE(p.player.dribble->dribble(Vector(5, 1, 0), 0.04));
  p.me(5, 1);
  EXPECT_FALSE(p.player.dribble->dribble(Vector(5, 1, 0), 0)) << "never within nothing";
}

PLAYER_TEST(DribbleWalkTest, ALostBallLiesAtTheFeet) {
  TestPlayer p(9);
  p.ball(0, 0);
  p.me(-4, 0);
  p.world.gameTime = 0.79f;
  p.player.dribble->dribble(Vector(5, 1, 0), 0.1);
  EXPECT_EQ(p.player.walk->v, Vector(0, 0, 0));
  p.world.gameTime = 0.81f;
  p.arm();
  p.player.dribble->dribble(Vector(5, 1, 0), 0.1);
  EXPECT_EQ(p.player.walk->v, Vector(5, 1, 0));
}

// GoToGoal dribbles through the pointer of the base class, which must lead here.
PLAYER_TEST(DribbleWalkTest, TheAgentsPointerLeadsToTheSameObject) {
  TestPlayer p(9);
  EXPECT_EQ(static_cast<Agent&>(p.player).dribble, p.player.dribble);
}

// --- execute -------------------------------------------------------------------------------------

// Its own player at the feet of the ball, upright, on a line along y = `y`.
struct Path {
  explicit Path(double y = 0) : p(9), y0(y) {
    p.world.ourSide = SIDE_LEFT;
    p.numberEverybody();
    p.world.player[0][8].headPosition.setZ(0.6f);
    p.ball(0, y);
    p.me(0, y);
  }

  Vector run(Vector target) {
    p.arm();
    p.player.dribble->execute(target);
    return p.player.dribble->nextPoint;
  }

  Vector run() { return run(Vector(15, static_cast<float>(y0), 0)); }

  TestPlayer p;
  double y0;
};

PLAYER_TEST(DribbleTest, GoesStraightOnWithoutAnOpponentOnThePath) {
  Path path;
  EXPECT_EQ(path.run(), Vector(15, 0, 0));
  EXPECT_EQ(path.p.player.walk->v, Vector(15, 0, 0));
  EXPECT_FALSE(path.p.player.dribble->turn);
  path.p.see(1, 5, 9, 0, WEST);  // too far away to be first
  EXPECT_EQ(path.run(), Vector(15, 0, 0));
}

// An opponent on the first point of the path, (0.5, 0). The line runs along x, where the point of
// the perpendicular lies 0.2 further along x, so that the side step goes on ahead.
PLAYER_TEST(DribbleTest, AnOpponentAtTheFirstStepBendsThePath) {
  Path path;
  path.p.see(1, 5, 0.5, 0, WEST);
  expectPoint(path.run(), 0.5 + kAside, 0);
  EXPECT_TRUE(path.p.player.dribble->turn);
  expectPoint(path.p.player.dribble->doshman, 0.5, 0);
  EXPECT_EQ(path.p.player.walk->v, path.p.player.dribble->nextPoint);
}

// In the left half the odd subtraction is used: x loses the sum of all three components, y stays.
PLAYER_TEST(DribbleTest, TheOddSubtractionBendsThePathInTheLeftHalf) {
  Path path(1);
  path.p.see(1, 5, 0.5, 1, WEST);
  expectPoint(path.run(), 0.5 - kAside, 1);
  // A line along y: the side step is (0, kAside), and all of it is taken from x.
  Path across;
  across.p.see(1, 5, 0, 0.5, WEST);
  expectPoint(across.run(Vector(0, 5, 0)), -kAside, 0.5);
  // In the right half it is a plain sum.
  Path back;
  back.p.see(1, 5, 0, -0.5, WEST);
  expectPoint(back.run(Vector(0, -5, 0)), 0, -0.5 + kAside);
}

// Self and target at the same place: both parts of the line vanish, and the step goes along y.
PLAYER_TEST(DribbleTest, ALineWithoutDirectionStepsAlongY) {
  TestPlayer p(9);
  p.world.ourSide = SIDE_LEFT;
  p.me(5, -3);
  p.ball(5, 0);
  p.see(1, 5, 5, -0.5, WEST);
  p.player.dribble->execute(Vector(5, -3, 0));
  expectPoint(p.player.dribble->nextPoint, 5, -0.5 + kAside);
}

// A slanting line: from (0, 0) to (8, -6), which is 0.8 and -0.6 on the way. L_a = 6, L_b = 8,
// L_c = 0. The point 0.2 above (0.4, -0.3) in y, -0.1, and in x (0 + -0.1) / (8 / 6) = -0.075.
PLAYER_TEST(DribbleTest, ASlantingLineUsesItsPerpendicular) {
  Path path;
  path.p.see(1, 5, 0.4, -0.3, WEST);
  const double dx = -0.075 - 0.4, dy = 0.2;
  const double length = std::hypot(dx, dy);
  expectPoint(path.run(Vector(8, -6, 0)), 0.4 + dx / length * kAside, -0.3 + dy / length * kAside);
  // From (0, 1) to (8, -5) the same with L_c = -8: newY = 0.7 + 0.2, and the half is the left one,
  // where x alone gives way.
  Path left(1);
  left.p.see(1, 5, 0.4, 0.7, WEST);
  const double lx = (-8.0 / 8 + 0.9) / (8.0 / 6) - 0.4, ly = 0.2;
  const double l = std::hypot(lx, ly);
  expectPoint(left.run(Vector(8, -5, 0)), 0.4 - (lx + ly) / l * kAside, 0.7);
}

// Looking away from the ball costs the opponent at distance D 1.8 steps; its own player, 0.45 m
// above the path, needs 1 step up to 0.7 m, then 2. D = 4 makes the opponent first at 0.9 m.
PLAYER_TEST(DribbleTest, TheFirstStepThatFindsAnOpponentEndsTheSearch) {
  Path path;
  path.p.see(1, 5, 4, 0, WEST);
  path.p.player.dribble->doshman = Vector(1, 2, 3);
  const float nam = 0.9f;
  expectPoint(path.run(), 0.9 + std::sqrt(1 - nam * nam) + 0.5, 0);
  EXPECT_FALSE(path.p.player.dribble->turn) << "not close ahead";
  EXPECT_EQ(path.p.player.dribble->doshman, Vector(1, 2, 3));
}

// Beyond 1 m the side step is the root of a negative number: the point is not a number. The answer
// to the server stays whole.
PLAYER_TEST(DribbleTest, AnOpponentBeyondOneMetreMakesThePointNotANumber) {
  Path path;
  path.p.see(1, 5, 4.15, 0, WEST);
  const Vector point = path.run();
  EXPECT_TRUE(std::isnan(point.getX()));
  EXPECT_FALSE(path.p.player.dribble->turn);
  EXPECT_TRUE(std::isnan(path.p.player.walk->v.getX()));
  path.p.bodyCycle();
  for (int i = 0; i < 200; ++i) {
    path.p.player.dribble->execute(Vector(15, 0, 0));
    path.p.player.bControl.makeCommand(path.p.player.command);
    path.p.player.command->setFinal();
    support::expectWholeAnswer(path.p.player.command->getFinal());
    path.p.player.command->clear();
    path.p.player.bControl.adjustJoints();
  }
}

// A ball exactly on the target has no direction to it: nothing is a number and nobody is first.
PLAYER_TEST(DribbleTest, ABallOnTheTargetGoesToTheTarget) {
  Path path;
  path.p.see(1, 5, 0.5, 0, WEST);
  EXPECT_EQ(path.run(Vector(0, 0, 0)), Vector(0, 0, 0));
}

// On the right the calculator takes vision's teammates for the others.
PLAYER_TEST(DribbleTest, RowsCrossForATeamOnTheRight) {
  TestPlayer p(9);
  p.world.ourSide = SIDE_RIGHT;
  p.ball(0, 0);
  p.me(0, 0);
  p.see(0, 5, 0.5, 0, WEST);
  p.player.dribble->execute(Vector(15, 0, 0));
  expectPoint(p.player.dribble->nextPoint, 0.5 + kAside, 0);
}

}  // namespace
