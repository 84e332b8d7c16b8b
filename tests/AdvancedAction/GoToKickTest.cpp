#include "AdvancedAction/GoToKick.h"

#include <cmath>

#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/Kick.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/Reset.h"
#include "BasicAction/TAB.h"
#include "Decision/Actions.h"
#include "support/TestPlayer.h"

namespace {

using support::TestPlayer;

const Vector kKickAim(15, 0, 0);

// The real position of the ball, which vision never fills in, is the pitch centre.
PLAYER_TEST(GoToKickTest, ApproachesThePitchCentreWhereverTheBallIsSeen) {
  TestPlayer p(5);
  p.me(-5, 0);
  p.ball(3, 4);
  p.arm();
  EXPECT_FALSE(p.player.goToKick->execute(kKickAim));
  EXPECT_EQ(p.player.walk->v, Vector(0, 0, 0));
  EXPECT_EQ(p.player.walk->Error, 5);
  p.world.ball->setRealPosition(Vector(-1, 0.5f, 0));
  p.player.goToKick->execute(kKickAim);
  EXPECT_EQ(p.player.walk->v, Vector(-1, 0.5f, 0));
}

PLAYER_TEST(GoToKickTest, RunsThroughItsStatesToTheKick) {
  TestPlayer p(5);
  p.ball(0, 0);
  p.me(-3, 0);
  p.arm();
  p.player.goToKick->execute(kKickAim);  // the fast stretch
  p.me(-0.05, 0);
  p.player.walk->_omniWalk->p = 9;
  p.until([&] { return p.player.goToKick->execute(kKickAim), GTKstate == 2; });
  EXPECT_EQ(p.player.turnAroundBall->vec, kKickAim);
  EXPECT_EQ(p.player.turnAroundBall->Error, 5);
  EXPECT_NE(p.player.walk->_omniWalk->p, 9) << "the omni gait starts afresh";
  p.until([&] { return p.player.goToKick->execute(kKickAim), GTKstate == 30; });
  EXPECT_EQ(p.player.reset->State, 1);
  // |cos(0) * 0.45| is above 0.1: small steps, until the ball lies at 11 degrees, whose number has
  // a cosine of 0.004.
  EXPECT_FALSE(p.player.goToKick->execute(kKickAim));
  EXPECT_EQ(GTKstate, 30);
  EXPECT_EQ(p.player.walk->v, kKickAim);
  EXPECT_FLOAT_EQ(p.player.walk->Speed, 0.2f);
  EXPECT_FALSE(p.player.actions->endStepIsRequired);
  p.me(-0.05, 0, -11);
  EXPECT_FALSE(p.player.goToKick->execute(kKickAim));
  EXPECT_EQ(GTKstate, 3);
  p.me(-0.05, 0.2);
  const int cycles = p.until([&] { return p.player.goToKick->execute(kKickAim); });
  EXPECT_GT(cycles, 20);
  EXPECT_EQ(GTKstate, 1);
  EXPECT_EQ(p.player.kick->type, AT_UNSTABLE_KICK);
}

// The cosine takes the number of degrees as radians.
PLAYER_TEST(GoToKickTest, CosineOfDegreesDecidesTheSmallSteps) {
  struct Row {
    double bearing;   // of the ball, degrees
    double distance;  // metres, on the ground
    bool kicks;
  };
  // cos(90 rad) = -0.448, cos(11) = 0.0044, cos(33) = -0.0133, cos(20) = 0.408.
  const Row rows[] = {{90, 0.5, false}, {11, 0.9, true}, {-11, 0.9, true},
                      {33, 0.9, true},  {20, 0, false},  {1.5708, 0.9, true}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.bearing);
    TestPlayer p(5);
    p.me(-row.distance, 0, -row.bearing);
    p.arm();
    GTKstate = 30;
    EXPECT_FALSE(p.player.goToKick->execute(kKickAim));
    EXPECT_EQ(GTKstate, row.kicks ? 3 : 30);
    EXPECT_EQ(p.askedToWalk(), !row.kicks);
  }
}

PLAYER_TEST(GoToKickTest, ABallThatRanAwayIsApproachedAnew) {
  TestPlayer p(5);
  p.arm();
  GTKstate = 3;
  p.me(-1.01, 0);
  p.player.actions->endStepIsRequired = true;
  EXPECT_FALSE(p.player.goToKick->execute(kKickAim));
  EXPECT_EQ(GTKstate, 1);
  EXPECT_FALSE(p.player.actions->endStepIsRequired);
  EXPECT_EQ(p.player.kick->type, AT_NONE);
  GTKstate = 3;
  p.me(-0.99, 0);  // on the ground: the height does not count here
  p.player.goToKick->execute(kKickAim);
  EXPECT_EQ(GTKstate, 3);
  EXPECT_EQ(p.player.kick->type, AT_UNSTABLE_KICK);
}

PLAYER_TEST(GoToKickTest, AnInterruptedKickKeepsItsFootAndAFinishedOneAsksAnew) {
  TestPlayer p(5);
  p.ball(0, 0);
  p.arm();
  const auto kick = [&] {
    p.player.actions->NowAction.actionType = AT_UNSTABLE_KICK;  // else the arbiter clears the side
    return p.player.goToKick->execute(kKickAim);
  };
  GTKstate = 3;
  p.me(-0.2, -0.1);  // ball to the left
  kick();
  EXPECT_FALSE(p.player.kick->side);
  p.me(-0.2, 0.1);  // ball to the right
  kick();
  EXPECT_FALSE(p.player.kick->side);
  p.until(kick);
  EXPECT_EQ(GTKstate, 1);
  GTKstate = 3;
  kick();
  EXPECT_TRUE(p.player.kick->side);
}

PLAYER_TEST(GoToKickTest, TheStateOutlivesAResetOfAllActions) {
  TestPlayer p(5);
  GTKstate = 30;
  p.player.resetAllVars();
  EXPECT_EQ(GTKstate, 30);
  GTKstate = 4;
  EXPECT_FALSE(p.player.goToKick->execute(kKickAim));
  EXPECT_EQ(GTKstate, 4);
}

}  // namespace
