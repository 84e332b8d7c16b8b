#include "AdvancedAction/GoToPoint.h"

#include "BasicAction/OmniWalk.h"
#include "BasicAction/Reset.h"
#include "BasicAction/TAB.h"
#include "Decision/Actions.h"
#include "support/TestPlayer.h"

namespace {

using support::TestPlayer;

const Vector kTarget(4, 0, 0);

TEST(GoToPointConstructionTest, StartValues) {
  GoToPoint action;
  action.state = action.gtpo = action.GTBstate = action.stateFineApproach = 9;
  action.stateGtpDecide = action.gtbstate = action.st = action.cyl = 9;
  action.s = action.firstTime = action.rokhsat = action.tashkor = false;
  action.vasatWalk = action.endStep = true;
  action.sp = 9;
  action.resetVars();
  for (const GoToPoint& a : {action, GoToPoint()}) {
    EXPECT_EQ(a.state, 1);
    EXPECT_EQ(a.gtpo, 1);
    EXPECT_EQ(a.GTBstate, 1);
    EXPECT_EQ(a.gtbstate, 0);
    EXPECT_EQ(a.stateFineApproach, 1);
    EXPECT_EQ(a.stateGtpDecide, 1);
    EXPECT_TRUE(a.s);
    EXPECT_TRUE(a.firstTime);
    EXPECT_FALSE(a.vasatWalk);
    EXPECT_EQ(a.sp, 1.0);
    EXPECT_EQ(a.cyl, 0);
    EXPECT_FALSE(a.endStep);
    EXPECT_EQ(a.st, 0);
    EXPECT_TRUE(a.rokhsat);
    EXPECT_TRUE(a.tashkor);
  }
}

// --- execute -------------------------------------------------------------------------------------

PLAYER_TEST(GoToPointExecuteTest, InPlaceItTakesTheNeutralStance) {
  TestPlayer p(5);
  p.me(4, 0, 170);  // the heading does not matter
  p.arm();
  // The own height of 0.45 counts.
  EXPECT_FALSE(p.player.goToPoint->execute(kTarget, 0.46f));
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 4);
  EXPECT_EQ(p.player.reset->State, 1);
  EXPECT_FALSE(p.askedToWalk());
  EXPECT_GT(p.until([&] { return p.player.goToPoint->execute(kTarget, 0.46f); }), 1);
  EXPECT_FALSE(p.player.goToPoint->execute(kTarget, 0.44f));
  EXPECT_NE(p.player.goToPoint->stateFineApproach, 4);
}

PLAYER_TEST(GoToPointExecuteTest, WalksWhenTheTargetLiesAhead) {
  TestPlayer p(5);
  for (const double heading : {0.0, 19.9, -19.9}) {
    p.me(0, 0, heading);
    p.arm();
    EXPECT_FALSE(p.player.goToPoint->execute(kTarget, 0.1f));
    EXPECT_TRUE(p.askedToWalk());
    EXPECT_EQ(p.player.walk->v, kTarget);
    EXPECT_EQ(p.player.walk->Speed, 1);
    EXPECT_EQ(p.player.walk->Error, 10);
    EXPECT_EQ(p.player.walk->_omniWalk->actionType, 0);
  }
}

PLAYER_TEST(GoToPointExecuteTest, ARunningTurnGoesOnUntilItHasFinished) {
  TestPlayer p(5);
  p.me(0, 0, 20.1);
  p.arm();
  EXPECT_FALSE(p.player.goToPoint->execute(kTarget, 0.1f));
  EXPECT_EQ(p.player.turn->v, kTarget);
  EXPECT_EQ(p.player.turn->error, 10);
  EXPECT_EQ(p.player.turn->finalAngle, 0);
  EXPECT_FALSE(p.askedToWalk());
  p.bodyCycle();
  // Facing the target already, it still turns: the turn has not said that it is done.
  p.me(0, 0, 0);
  p.player.goToPoint->execute(kTarget, 0.1f);
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 1);
  EXPECT_FALSE(p.askedToWalk());
  const int cycles = p.until([&] {
    p.player.goToPoint->execute(kTarget, 0.1f);
    return p.askedToWalk();
  });
  EXPECT_GT(cycles, 10);
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 2);
}

PLAYER_TEST(GoToPointExecuteTest, OtherStatesDoNothing) {
  TestPlayer p(5);
  p.me(0, 0, 30);
  p.arm();
  p.player.goToPoint->execute(kTarget, 0.1f);  // a turn runs from now on
  p.me(0, 0, 0);
  p.arm();
  p.player.goToPoint->stateFineApproach = 3;
  EXPECT_FALSE(p.player.goToPoint->execute(kTarget, 0.1f));
  EXPECT_FALSE(p.askedToWalk());
  EXPECT_FALSE(p.askedToTurn());
  EXPECT_EQ(p.player.reset->State, -1);
}

// --- gtpDecide -----------------------------------------------------------------------------------

PLAYER_TEST(GoToPointGtpDecideTest, HandsTheWalkToDecide) {
  TestPlayer p(5);
  p.me(0, 0);
  p.arm();
  p.player.decide->cycle = 10;
  EXPECT_FALSE(p.player.goToPoint->gtpDecide(kTarget, Vector(15, 0, 0), 10.9, 0.5));
  EXPECT_TRUE(p.player.goToPoint->tashkor);
  EXPECT_EQ(p.player.decide->lastPos, kTarget);
  EXPECT_EQ(p.player.decide->cycle, 1);  // the period is the integer part, 10
}

PLAYER_TEST(GoToPointGtpDecideTest, ResetsFirstWhenTheOtherWalkWasActive) {
  TestPlayer p(5);
  p.me(0, 0);
  p.arm();
  p.player.goToPoint->rokhsat = true;
  p.player.goToPoint->gtpDecide(kTarget, Vector(15, 0, 0), 10, 0.5);
  EXPECT_EQ(p.player.reset->State, 1);
  EXPECT_EQ(p.player.reset->Speed, 10);
  EXPECT_EQ(p.player.reset->SP, 5);
  EXPECT_TRUE(p.player.goToPoint->rokhsat);
  // The walk is asked for in the same cycle.
  EXPECT_EQ(p.player.decide->lastPos, kTarget);
  const int cycles = p.until([&] {
    p.player.goToPoint->gtpDecide(kTarget, Vector(15, 0, 0), 10, 0.5);
    return !p.player.goToPoint->rokhsat;
  });
  EXPECT_GT(cycles, 3);
  p.player.reset->State = -1;
  p.player.goToPoint->gtpDecide(kTarget, Vector(15, 0, 0), 10, 0.5);
  EXPECT_FALSE(p.player.goToPoint->rokhsat);
}

PLAYER_TEST(GoToPointGtpDecideTest, ReservesOfItsState) {
  TestPlayer p(5);
  p.me(0, 0);
  p.arm();
  p.player.goToPoint->stateGtpDecide = 2;
  EXPECT_FALSE(p.player.goToPoint->gtpDecide(kTarget, Vector(15, 1, 0), 10, 0.5));
  EXPECT_EQ(p.player.turnAroundBall->vec, Vector(15, 1, 0));
  EXPECT_EQ(p.player.turnAroundBall->Error, 10);
  p.arm();
  p.player.goToPoint->stateGtpDecide = 200;
  EXPECT_FALSE(p.player.goToPoint->gtpDecide(kTarget, Vector(15, 1, 0), 10, 0.5));
  EXPECT_EQ(p.player.reset->State, 1);
  p.arm();
  p.player.goToPoint->stateGtpDecide = 3;
  EXPECT_FALSE(p.player.goToPoint->gtpDecide(kTarget, Vector(15, 1, 0), 10, 0.5));
  EXPECT_EQ(p.player.reset->State, -1);
  EXPECT_FALSE(p.askedForDecide());
}

// --- fineApproach --------------------------------------------------------------------------------

const Vector kFace(15, 0, 0);

PLAYER_TEST(GoToPointFineApproachTest, TurnsTowardsATargetAside) {
  TestPlayer p(5);
  p.me(0, 0, 21);
  p.arm();
  EXPECT_FALSE(p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.2));
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 1);
  EXPECT_EQ(p.player.turn->v, kTarget);
  EXPECT_EQ(p.player.turn->error, 10);
  EXPECT_FALSE(p.player.goToPoint->s);
  EXPECT_TRUE(p.player.goToPoint->rokhsat);
}

PLAYER_TEST(GoToPointFineApproachTest, ComesSlowlyWithinTheLastMetre) {
  TestPlayer p(5);
  p.me(2.9, 0);  // 1.19 m with the height
  p.arm();
  p.player.goToPoint->st = 1;
  p.player.actions->endStepIsRequired = true;
  p.player.actions->NowAction.actionType = AT_OMNIWALK;
  EXPECT_FALSE(p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.2));
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 4);
  EXPECT_EQ(p.player.walk->v, kTarget);
  EXPECT_FLOAT_EQ(p.player.walk->Speed, 0.3f);
  EXPECT_EQ(p.player.walk->Error, 5);
  EXPECT_FALSE(p.player.actions->endStepIsRequired);
  EXPECT_EQ(p.player.goToPoint->st, 0);
}

// The first fast stretch is remembered for ever: from then on the slow one is skipped.
PLAYER_TEST(GoToPointFineApproachTest, AfterAFastStretchTheFinalTurnComesEarly) {
  TestPlayer p(5);
  p.me(1, 0);
  p.arm();
  p.player.goToPoint->st = 1;
  EXPECT_FALSE(p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.2));
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 2);
  EXPECT_EQ(p.player.walk->v, kTarget);
  EXPECT_EQ(p.player.walk->Speed, 1);
  EXPECT_EQ(p.player.walk->Error, 5);
  EXPECT_EQ(p.player.goToPoint->st, 0);

  p.me(2.9, 0);
  p.arm();
  EXPECT_FALSE(p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.2));
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 3);
  EXPECT_EQ(p.player.turn->v, kTarget);
  EXPECT_EQ(p.player.turn->error, 7);
  // Also with the target behind it.
  p.me(2.9, 0, 90);
  p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.2);
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 3);
  // And for a new action object: the memory is the function's.
  p.player.goToPoint->resetVars();
  p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.2);
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 3);
}

PLAYER_TEST(GoToPointFineApproachTest, InPlaceItTurnsAndThenCirclesUntilItFaces) {
  TestPlayer p(5);
  p.me(4, 0);
  p.arm();
  EXPECT_FALSE(p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.5));
  EXPECT_EQ(p.player.goToPoint->stateFineApproach, 3);
  EXPECT_EQ(p.player.turnAroundBall->vec, Vector(77, 77, 77));
  p.until([&] {
    EXPECT_FALSE(p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.5));
    return p.player.goToPoint->st == 1;
  });
  p.until([&] { return p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.5); });
  EXPECT_EQ(p.player.turnAroundBall->vec, kFace);
  EXPECT_EQ(p.player.turnAroundBall->Error, 5);
  p.player.goToPoint->st = 2;
  EXPECT_FALSE(p.player.goToPoint->fineApproach(kTarget, kFace, 5, 0.5));
}

PLAYER_TEST(GoToPointFineApproachTest, EachSwitchOfTheWalkCostsAReset) {
  TestPlayer p(5);
  p.me(0, 0);
  GoToPoint& action = *p.player.goToPoint;
  const auto fine = [&] { action.fineApproach(kTarget, kFace, 5, 0.2); };
  const auto decide = [&] { action.gtpDecide(kTarget, kFace, 10, 0.5); };
  p.until([&] { return fine(), !action.tashkor; });
  EXPECT_TRUE(action.rokhsat);
  p.player.reset->State = -1;
  fine();
  EXPECT_EQ(p.player.reset->State, -1) << "only once";
  decide();
  EXPECT_EQ(p.player.reset->State, 1);
  EXPECT_TRUE(action.tashkor);
  p.until([&] { return decide(), !action.rokhsat; });
  fine();
  EXPECT_TRUE(action.tashkor) << "and back again another";
}

}  // namespace
