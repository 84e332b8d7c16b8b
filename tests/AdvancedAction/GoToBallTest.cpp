#include "AdvancedAction/GoToBall.h"

#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/OmniWalk.h"
#include "support/PointCheck.h"
#include "support/TestPlayer.h"

namespace {

using support::expectPoint;
using support::TestPlayer;

const Vector kAim(15, 0, 0);

TEST(GoToBallConstructionTest, StartValues) {
  GoToBall action;
  action.GTBstate = action.GTBallState = action.state = action.st = 7;
  action.resetVars();
  for (const GoToBall& a : {action, GoToBall()}) {
    EXPECT_EQ(a.GTBstate, 1);
    EXPECT_EQ(a.GTBallState, 0);
    EXPECT_EQ(a.state, 0);
    EXPECT_EQ(a.st, 0);
  }
}

PLAYER_TEST(GoToBallTest, CommonIsThePreciseWalkToTheSeenBall) {
  TestPlayer p(5);
  p.me(-5, 1);
  p.ball(0, 1);
  p.arm();
  p.player.goToPoint->tashkor = true;
  EXPECT_FALSE(p.player.goToBall->common(kAim, 15, 0.5f));
  EXPECT_EQ(p.player.walk->v, Vector(0, 1, 0));
  EXPECT_TRUE(p.player.goToPoint->rokhsat);
}

// The kick goes along +x, so that the spot lies behind the ball at smaller x.
PLAYER_TEST(GoToBallTest, WalksToTheSpotBehindTheBall) {
  TestPlayer p(5);
  p.ball(0, 0);
  for (const bool go : {false, true}) {
    p.me(-3, 0, 90);  // more than 1.5 m away: whatever the angle
    p.arm();
    EXPECT_FALSE(p.player.goToBall->execute(kAim, 5, 0.2f, go));
    EXPECT_EQ(p.player.goToBall->GTBstate, 5);
    expectPoint(p.player.walk->v, go ? -0.1 : -0.35, 0);
    EXPECT_FLOAT_EQ(p.player.walk->Speed, 0.4f);
    EXPECT_EQ(p.player.walk->Error, 5);
    EXPECT_EQ(p.player.walk->_omniWalk->actionType, 0);
    p.arm();
    EXPECT_FALSE(p.player.goToBall->execute1(kAim, 5, 0.2f, go));
    expectPoint(p.player.walk->v, go ? -0.2 : -0.35, 0);
  }
  // A kick along +y, from a ball at (1, 2).
  p.ball(1, 2);
  p.me(1, -3);
  p.arm();
  p.player.goToBall->execute(Vector(1, 10, 0), 5, 0.2f, false);
  expectPoint(p.player.walk->v, 1, 1.65);
}

PLAYER_TEST(GoToBallTest, SlowsDownNearTheSpot) {
  struct Row {
    double x;
    double speed;
  };
  // sx is the distance to x = -0.35.
  const Row rows[] = {{-1.7, 0.4}, {-0.9, 0.4}, {-0.84, 0.39}, {-0.65, 0.2}, {-0.5, 0.1}};
  TestPlayer p(5);
  p.ball(0, 0);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.x);
    p.me(row.x, 0);
    p.arm();
    EXPECT_FALSE(p.player.goToBall->execute(kAim, 5, 0.2f, false));
    EXPECT_NEAR(p.player.walk->Speed, row.speed, 1e-5);
  }
}

PLAYER_TEST(GoToBallTest, TurnsToTheApproachLineNearTheBall) {
  TestPlayer p(5);
  p.ball(0, 0);
  p.me(-0.5, 0.2, 30);
  p.arm();
  EXPECT_FALSE(p.player.goToBall->execute(kAim, 8, 0.2f, false));
  EXPECT_EQ(p.player.goToBall->GTBstate, 1);
  expectPoint(p.player.turn->v, 0, 0.2);  // at the ball's x, on the parallel through the player
  EXPECT_EQ(p.player.turn->error, 4);
  // Not where the ball's x is 0.6 m or more away, but in the other form.
  p.me(-0.7, 0, 30);
  p.arm();
  p.player.goToBall->execute(kAim, 8, 0.2f, false);
  EXPECT_EQ(p.player.goToBall->GTBstate, 5);
  p.player.goToBall->execute1(kAim, 8, 0.2f, false);
  EXPECT_EQ(p.player.goToBall->GTBstate, 1);
}

PLAYER_TEST(GoToBallTest, StepsAsideAndBack) {
  TestPlayer p(5);
  p.ball(0, 0);
  const auto state = [&](double x, double y) {
    p.me(x, y);
    p.arm();
    EXPECT_FALSE(p.player.goToBall->execute(kAim, 200, 0.2f, false));
    return p.player.goToBall->GTBstate;
  };
  EXPECT_EQ(state(-0.35, 0.3), 2);
  EXPECT_EQ(p.player.walk->type, AT_SIDEWALK_LEFT);
  EXPECT_EQ(p.player.walk->preSideGain, -1);
  EXPECT_EQ(state(-0.35, -0.3), 3);
  EXPECT_EQ(p.player.walk->type, AT_SIDEWALK_RIGHT);
  EXPECT_EQ(p.player.walk->preSideGain, 1);
  EXPECT_EQ(state(0.4, 0), 4);  // past the ball
  EXPECT_EQ(p.player.walk->type, AT_BACKWALK);
  EXPECT_EQ(p.player.walk->preBackGain, -1);
  EXPECT_EQ(p.player.walk->prespeedB, 1);
}

// Towards a point behind the player's own goal the kick runs along -x, and all sides swap.
PLAYER_TEST(GoToBallTest, SidesSwapForAKickBackwards) {
  TestPlayer p(5);
  p.ball(0, 0);
  const auto state = [&](double x, double y) {
    p.me(x, y);
    p.arm();
    p.player.goToBall->execute(Vector(-10, 0, 0), 200, 0.2f, false);
    return p.player.goToBall->GTBstate;
  };
  EXPECT_EQ(state(0.35, 0.3), 3);
  EXPECT_EQ(state(0.35, -0.3), 2);
  EXPECT_EQ(state(-0.4, 0), 4);
}

// While a correcting step runs, the band along the line is twice as wide and the one across it
// half.
PLAYER_TEST(GoToBallTest, CorrectionsWidenAndTightenTheBands) {
  TestPlayer p(5);
  p.ball(0, 0);
  const auto state = [&](double x, double y) {
    p.me(x, y);
    p.arm();
    p.player.goToBall->execute(kAim, 200, 0.05f, false);
    return p.player.goToBall->GTBstate;
  };
  EXPECT_EQ(state(-0.35, 0.07), 5);  // within 0.1
  EXPECT_EQ(state(0.2, 0), 4);       // past by more than 0.15
  EXPECT_EQ(state(0.2, 0), 5);       // not by more than 0.3
  EXPECT_EQ(state(-0.35, 0.07), 2);  // outside 0.05
  p.player.resetAllVars();
  EXPECT_EQ(state(-0.35, 0.07), 2);  // the memory outlives resets
  EXPECT_EQ(state(-3, 3), 5);        // far away: back to the narrow bands
  EXPECT_EQ(state(-0.35, 0.07), 5);
}

PLAYER_TEST(GoToBallTest, TheOtherFormHasAWiderBand) {
  TestPlayer p(5);
  p.ball(0, 0);
  p.me(0.155, 0);
  p.arm();
  p.player.goToBall->execute1(kAim, 200, 0.05f, false);
  EXPECT_EQ(p.player.goToBall->GTBstate, 5);
  p.me(0.165, 0);
  p.player.goToBall->execute1(kAim, 200, 0.05f, false);
  EXPECT_EQ(p.player.goToBall->GTBstate, 4);
  // Its memory is its own.
  p.me(0.155, 0);
  p.player.goToBall->execute(kAim, 200, 0.05f, false);
  EXPECT_EQ(p.player.goToBall->GTBstate, 4);
}

// The narrow bands come back far from the spot only, and neither past the ball nor with a wrong
// bearing or level with the line while the ball's x is near; in the other form at any x.
PLAYER_TEST(GoToBallTest, TheNarrowBandsComeBackOnlyFarAwayOutOfTheCorrectingRange) {
  TestPlayer p(5);
  p.ball(0, 0);
  using Form = bool (GoToBall::*)(Vector, float, float, bool);
  const auto state = [&](Form form, double x, double y, double heading, float error) {
    p.me(x, y, heading);
    p.arm();
    (p.player.goToBall->*form)(kAim, error, 0.05f, false);
    return p.player.goToBall->GTBstate;
  };
  const auto isNarrow = [&](Form form) { return state(form, -0.35, 0.07, 0, 200) == 5; };
  for (const Form form : {&GoToBall::execute, &GoToBall::execute1}) {
    EXPECT_TRUE(isNarrow(form));
    EXPECT_EQ(state(form, -0.35, 0.3, 0, 200), 2);  // corrects
    EXPECT_FALSE(isNarrow(form));
    EXPECT_EQ(state(form, -0.35, 3, 40, 5), 5);  // wrong bearing beside the ball
    EXPECT_FALSE(isNarrow(form));
    EXPECT_EQ(state(form, 3, 3, 0, 200), 5);  // past the ball
    EXPECT_FALSE(isNarrow(form));
    EXPECT_EQ(state(form, -3, 3, 40, 5), 5);  // wrong bearing far behind the ball
    EXPECT_EQ(isNarrow(form), form == &GoToBall::execute);
    EXPECT_EQ(state(form, -3, 3, 0, 5), 5);
    EXPECT_TRUE(isNarrow(form));
  }
}

PLAYER_TEST(GoToBallTest, IsDoneInPlaceWithoutAnyMotion) {
  TestPlayer p(5);
  p.ball(0, 0);
  p.me(-0.35, 0.05, 3);
  p.arm();
  EXPECT_TRUE(p.player.goToBall->execute(kAim, 5, 0.4f, false));
  EXPECT_FALSE(p.askedToWalk());
  EXPECT_FALSE(p.askedToTurn());
  EXPECT_FALSE(p.player.goToBall->execute(kAim, 5, 0.3f, false));  // too far from the ball
  EXPECT_FALSE(p.player.goToBall->execute(kAim, 2, 0.4f, false));  // not facing
  p.me(-0.35, 0.11);
  EXPECT_FALSE(p.player.goToBall->execute(kAim, 5, 0.4f, false));  // aside
}

PLAYER_TEST(GoToBallTest, WalkingThroughItIsDoneNearTheBallAtAnyAngle) {
  TestPlayer p(5);
  p.ball(0, 0);
  p.me(-0.7, 0, 40);
  p.arm();
  EXPECT_TRUE(p.player.goToBall->execute(kAim, 5, 0.8f, true));
  EXPECT_TRUE(p.askedToWalk());
  EXPECT_FALSE(p.player.goToBall->execute(kAim, 5, 0.8f, false));
  EXPECT_FALSE(p.player.goToBall->execute(kAim, 5, 0.6f, true));
}

// Straight along -y the slope that tells the side is zero: any side will do, and nothing breaks.
PLAYER_TEST(GoToBallTest, SurvivesALineWithoutASide) {
  TestPlayer p(5);
  p.ball(0, 0);
  p.me(0, 0.5);
  p.arm();
  p.player.goToBall->execute(Vector(0, -10, 0), 5, 0.1f, false);
  EXPECT_GE(p.player.goToBall->GTBstate, 1);
  EXPECT_LE(p.player.goToBall->GTBstate, 5);
}

PLAYER_TEST(GoToBallTest, TellsTheLogWhereEverythingIs) {
  TestPlayer p(5);
  p.ball(0.5, 0.25);
  p.me(-3, 0);
  p.world.ball->setServerBallPos(Vector(0.75f, 0, 0));
  p.player.goToBall->execute(kAim, 5, 0.2f, false);
  for (const char* label : {"real ball (vector: 0.750000, ", " pos (vector: 15.000000, ",
                            " ball (vector: 0.500000, 0.250000, ", " point ", " myself "}) {
    EXPECT_NE(p.log().find(label), std::string::npos) << label << p.log();
  }
}

}  // namespace
