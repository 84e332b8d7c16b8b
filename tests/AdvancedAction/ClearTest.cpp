#include "AdvancedAction/Clear.h"

#include "AdvancedAction/GoToKick.h"
#include "support/PointCheck.h"
#include "support/TestPlayer.h"

namespace {

using support::expectGroundPoint;
using support::TestPlayer;

struct Clearing {
  Clearing(double x, double y) : p(3) { p.me(x, y); }

  // The aim handed to the kick, which its small steps walk towards.
  Vector aim(Vector p2) {
    p.arm();
    GTKstate = 30;
    EXPECT_TRUE(p.player.clear->execute(p2, Vector(9, 9, 9)));
    return p.player.walk->v;
  }

  TestPlayer p;
};

PLAYER_TEST(ClearTest, TakesTheWorldFresh) {
  Clearing c(-13, 2);
  c.p.ball(-12, 1);
  c.aim(Vector(-10, 1, 0));
  EXPECT_EQ(c.p.player.clear->selfPos, Vector(-13, 2, 0.45f));
  EXPECT_EQ(c.p.player.clear->ballPos, Vector(-12, 1, 0));
}

// The opponent straight ahead along x: half a metre to either side, away from the player.
PLAYER_TEST(ClearTest, KicksAsideAwayFromThePlayer) {
  Clearing c(-13, 2);
  c.p.ball(-12, 1);
  expectGroundPoint(c.aim(Vector(-10, 1.005f, 0)), -12, 0.5);
  c.p.me(-13, 0);
  expectGroundPoint(c.aim(Vector(-10, 1, 0)), -12, 1.5);
  c.p.me(-13, 1);  // equally far: the second
  expectGroundPoint(c.aim(Vector(-10, 1, 0)), -12, 1.5);
}

// The opponent aside along y: straight forward, and also when it stands on the ball.
PLAYER_TEST(ClearTest, KicksForwardPastAnOpponentAside) {
  Clearing c(-13, 2);
  c.p.ball(-12, 1);
  expectGroundPoint(c.aim(Vector(-12, 4, 0)), -11.5, 1);
  expectGroundPoint(c.aim(Vector(-12.005f, -4, 0)), -11.5, 1);
  expectGroundPoint(c.aim(Vector(-12, 1, 0)), -11.5, 1);
}

// Ball (-12, 2), opponent (-11, 3): L_a = -1, L_b = 1, L_c = -12 - 2 = -14. Slope L_b / L_a = -1,
// c = -14: points (-12.5, 26.5) and (-11.5, 25.5), a line far from the goal mouth. The player at
// (-13, -2) is farther from the first.
PLAYER_TEST(ClearTest, ASlantingLineWorksOutTwoPoints) {
  Clearing c(-13, -2);
  c.p.ball(-12, 2);
  expectGroundPoint(c.aim(Vector(-11, 3, 0)), -12.5, 26.5);
  c.p.me(-12, 60);
  expectGroundPoint(c.aim(Vector(-11, 3, 0)), -11.5, 25.5);
}

// Ball at the centre: the line across runs through it, with the slope L_b / L_a. For an opponent at
// (0.2, -3.75) that is 0.2 / 3.75, which reaches y = -0.8 at x = -15: into the goal.
PLAYER_TEST(ClearTest, AvoidsTheOwnGoal) {
  Clearing c(3, 0);  // the first point is farther away
  c.p.ball(0, 0);
  expectGroundPoint(c.aim(Vector(0.2f, -3.75f, 0)), 0.5, 0.5 * 0.2 / 3.75);
  // A slope of 0.1 reaches -1.5: outside, so that the farther one counts.
  expectGroundPoint(c.aim(Vector(0.4f, -4, 0)), -0.5, -0.05);
  // A slope of 0.05 reaches -0.75, and is not noticed between the looks at -0.8 and -0.6.
  expectGroundPoint(c.aim(Vector(0.2f, -4, 0)), -0.5, -0.025);
}

}  // namespace
