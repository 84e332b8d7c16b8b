// What the class chain owns and how it is wired; the running program is WireTest's.

#include "Agent/OurPlayer.h"

#include <gtest/gtest.h>

#include <string>

#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/BasicAction.h"
#include "BasicAction/FeedBack.h"
#include "BasicAction/Turn.h"
#include "Decision/Actions.h"
#include "Utilities/Config.h"
#include "Utilities/Say.h"
#include "support/TestPlayer.h"

namespace {

using support::TestPlayer;

PLAYER_TEST(OurPlayerTest, EachControllerSensesItsOwnHinge) {
  TestPlayer p(5);
  const BodyController& body = p.player.bControl;
  EXPECT_EQ(body.WM, &p.world);
  for (int side = 0; side < 2; ++side) {
    for (int i = 1; i <= 4; ++i) {
      EXPECT_EQ(body.handController[side][i - 1].joint, p.world.getHandJoint(i, side)) << side << i;
    }
    for (int i = 1; i <= 7; ++i) {
      EXPECT_EQ(body.legController[side][i - 1].joint, p.world.getLegJoint(i, side)) << side << i;
    }
  }
  for (int i = 1; i <= 2; ++i) {
    EXPECT_EQ(body.headController[i - 1].joint, p.world.getHeadJoint(i)) << i;
  }
}

PLAYER_TEST(OurPlayerTest, PublishesItselfToActionsAndDecision) {
  TestPlayer p(5);
  EXPECT_EQ(BasicAction::agent, &p.player);
  EXPECT_EQ(Actions::agent, &p.player);
  EXPECT_EQ(FeedBack::agent, &p.player);
  EXPECT_EQ(Decision::advancedAgent, &p.player);
  EXPECT_EQ(Say::advancedAgent, &p.player);
}

// Of the four pointers that AdvancedAgent hides behind its own, one is in use.
PLAYER_TEST(OurPlayerTest, TheHiddenDribbleIsTheOneInUse) {
  TestPlayer p(5);
  EXPECT_NE(p.player.dribble, nullptr);
  EXPECT_EQ(p.player.Agent::dribble, p.player.dribble);
  EXPECT_EQ(p.player.Agent::block, nullptr);
  EXPECT_EQ(p.player.Agent::clear, nullptr);
  EXPECT_EQ(p.player.Agent::pass, nullptr);
}

PLAYER_TEST(OurPlayerTest, TheOpponentsGoalLiesAtPositiveXOnBothSides) {
  TestPlayer p(5, SIDE_RIGHT);
  p.settle();
  EXPECT_EQ(p.world.ourSide, SIDE_RIGHT);
  EXPECT_EQ(p.player.GOAL, Vector(15, 0, 0));
}

PLAYER_TEST(OurPlayerTest, ConstructionDoesNotTouchTheServer) {
  TestPlayer p(5);
  EXPECT_EQ(p.player.connection, nullptr);
  EXPECT_FALSE(p.player.rsgCheck);
  EXPECT_FALSE(p.player.initCheck);
  EXPECT_EQ(p.player.beamCounter, 0);
  EXPECT_EQ(p.player.msg, "");
  EXPECT_EQ(p.takeOutput(), "");
}

PLAYER_TEST(OurPlayerTest, TheOptionsCountBeforeTheWorldModelIsBuilt) {
  TestPlayer p(7);  // by "--number"; the file says 1
  EXPECT_EQ(p.world.mySelf->getAgentNum(), 7);
  EXPECT_EQ(p.world.mySelf->getPlayerPost(), 7);
}

PLAYER_TEST(OurPlayerTest, ResetAllVarsReachesTurnAndApproach) {
  TestPlayer p(5);
  p.player.turn->count = 4;
  p.player.goToPoint->gtbstate = 4;
  p.player.resetAllVars();
  EXPECT_EQ(p.player.turn->count, 0);
  EXPECT_EQ(p.player.goToPoint->gtbstate, 0);
}

TestPlayer::Overrides places(const char* beam, const char* penalty, const char* isPenalty) {
  return {{"Formation", "Beam", "p5", beam},
          {"Formation", "Penalty", "p5", penalty},
          {"Agent", "Public", "Penalty", isPenalty}};
}

PLAYER_TEST(OurPlayerTest, ThePenaltyShootOutHasStartPlacesOfItsOwn) {
  TestPlayer p(5, SIDE_LEFT, places("-3 2 10", "-4 1 20", "false"));
  EXPECT_EQ(p.player.startPlace(), Vector(-3, 2, 10));
  config["Agent"]["Public"].add("Penalty", "1");
  EXPECT_EQ(p.player.startPlace(), Vector(-4, 1, 20));
}

PLAYER_TEST(OurPlayerTest, AStartPlaceNeedsThreeNumbers) {
  TestPlayer p(5, SIDE_LEFT, places("-3 2 10", "-4 1", "true"));
  EXPECT_DEATH(p.player.startPlace(), "place.size\\(\\) > 2");
}

}  // namespace
