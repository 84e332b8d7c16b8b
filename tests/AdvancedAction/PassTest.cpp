#include "AdvancedAction/Pass.h"

#include "AdvancedAction/GoToKick.h"
#include "AdvancedAction/GoToPoint.h"
#include "support/TestPlayer.h"

namespace {

using support::TestPlayer;

TEST(PassWayTest, MeasuresTheKick) {
  const Way forward(Vector(0, 0, 0), Vector(3, 4, 0), Vector(1, 1, 0), 4.9, 7);
  EXPECT_EQ(forward.length, 5);
  EXPECT_EQ(forward.value, 5);
  EXPECT_EQ(forward.reachCycle, 4);
  EXPECT_EQ(forward.maghsadNumber, 7);
  EXPECT_EQ(forward.maghsadPos, Vector(3, 4, 0));
  EXPECT_EQ(forward.mabdaPos, Vector(0, 0, 0));
  EXPECT_EQ(forward.reachPoint, Vector(1, 1, 0));
  EXPECT_EQ(Way(Vector(1, 0, 0), Vector(1, 4, 0), Vector(), 0, 7).value, 4);
  EXPECT_EQ(Way(Vector(1, 0, 0), Vector(0.9f, 4, 0), Vector(), 0, 7).value,
            -Way(Vector(1, 0, 0), Vector(0.9f, 4, 0), Vector(), 0, 7).length);
}

struct Passing {
  Passing() : p(9) {
    p.world.ourSide = SIDE_LEFT;
    p.world.gameTime = 50;
    p.me(0, 0);
    p.ball(0, 0);
    p.numberEverybody();
    // Last seen long ago, far behind: a pass that way would lose much.
    for (int i = 1; i <= 11; ++i) {
      p.see(0, i, -1000, 0).headLastTimeSeen = 0;
      p.see(1, i, -1000, 0).headLastTimeSeen = 0;
    }
  }

  bool run() {
    p.arm();
    GTKstate = 30;  // small steps towards the aim show it
    return p.player.pass->execute();
  }

  TestPlayer p;
};

// 3 m ahead, looking at the passer: the ball rolls out to 2 / 0.94 = 2.13 m.
PLAYER_TEST(PassTest, KicksToTheTeammateThatReachesTheBallFirst) {
  Passing s;
  s.p.see(0, 5, 3, 0, NORTH);
  EXPECT_TRUE(s.run());
  EXPECT_EQ(s.p.player.walk->v, Vector(3, 0, 0));
  EXPECT_EQ(s.p.player.pass->unum, 9);
  // Every kick that is tried leaves a way as long as a teammate is first, also those tried for the
  // players out of sight.
  ASSERT_FALSE(s.p.player.pass->passModels.empty());
  for (const Way& way : s.p.player.pass->passModels) EXPECT_EQ(way.maghsadNumber, 5);
}

PLAYER_TEST(PassTest, OffersTheBallNeitherToItselfNorToTheGoalie) {
  Passing s;
  s.p.see(0, 1, 3, 0, NORTH);
  s.p.see(0, 9, 3, 0, NORTH);
  s.run();
  EXPECT_TRUE(s.p.player.pass->passModels.empty());
}

PLAYER_TEST(PassTest, TheWayWithTheMostForwardGainWins) {
  Passing s;
  s.p.see(0, 5, -3, 0, NORTH);
  EXPECT_TRUE(s.run());
  EXPECT_EQ(s.p.player.walk->v, Vector(-3, 0, 0)) << "backwards when there is nothing else";
  s.p.see(0, 7, 1, 3, NORTH);
  EXPECT_TRUE(s.run());
  EXPECT_EQ(s.p.player.walk->v, Vector(1, 3, 0));
}

PLAYER_TEST(PassTest, OldWaysStayAndCanWin) {
  Passing s;
  s.p.player.pass->passModels.emplace_back(Vector(0, 0, 0), Vector(10, 1, 0), Vector(), 0, 3);
  s.p.player.pass->passModels.emplace_back(Vector(0, 0, 0), Vector(10, -1, 0), Vector(), 0, 4);
  s.p.see(1, 4, 0.5, 0, NORTH);
  EXPECT_TRUE(s.run());
  EXPECT_EQ(s.p.player.walk->v, Vector(10, 1, 0)) << "the first of equal ones";
  EXPECT_EQ(s.p.player.pass->passModels.size(), 2u);
}

// The player itself is at the start of its own kick and has cost 0; only an opponent with a cost of
// at most 1 is before it.
PLAYER_TEST(PassTest, AnOpponentThatIsFirstLeavesNoPass) {
  Passing s;
  s.p.see(0, 5, 5, 0, NORTH);
  s.p.see(1, 4, 1.9, 0, NORTH);
  EXPECT_FALSE(s.run());
  EXPECT_FALSE(s.p.askedToWalk());
}

// Alone, the player kicks ahead and runs after its kick.
PLAYER_TEST(PassTest, WithoutATeammateItPassesToItself) {
  Passing s;
  s.p.world.player[0][8].headPosition.setZ(0.6f);
  s.p.me(-1, 0);
  EXPECT_TRUE(s.run());
  EXPECT_TRUE(s.p.player.pass->passModels.empty());
  EXPECT_EQ(s.p.player.walk->v, Vector(15, 0, 0));
  const Way& way = s.p.player.pass->selfWay;
  EXPECT_EQ(way.maghsadPos, Vector(15, 0, 0));
  EXPECT_EQ(way.maghsadNumber, 9);
  EXPECT_EQ(Pass::goAfter, 0);
}

PLAYER_TEST(PassTest, WhileItRunsAfterItsKickNobodyElseIsLookedAt) {
  Passing s;
  s.p.see(0, 5, 3, 0, NORTH);
  Pass::goAfter = 1;
  s.p.me(-4, 0);
  EXPECT_TRUE(s.run());
  EXPECT_TRUE(s.p.player.pass->passModels.empty());
  EXPECT_EQ(s.p.player.walk->v, Vector(0, 0, 0)) << "the precise walk to the ball";
  EXPECT_TRUE(s.p.player.goToPoint->rokhsat);
  // In place and turned the run has ended.
  s.p.me(-0.05, 0);
  s.p.arm();
  s.p.until([&] {
    EXPECT_TRUE(s.p.player.pass->selfPassExecute());
    return Pass::goAfter == 0;
  });
}

PLAYER_TEST(PassTest, TheRunBeginsWhenTheKickHasEnded) {
  Passing s;
  s.p.me(-0.2, 0.1);
  s.p.arm();
  GTKstate = 3;
  s.p.until([&] {
    EXPECT_TRUE(s.p.player.pass->selfPassExecute());
    return Pass::goAfter == 1;
  });
}

// A kick that leaves through the own goal mouth counts as good, whoever reaches it: odd, and so
// required.
PLAYER_TEST(PassTest, ASelfPassIntoTheGoalMouthCountsAsGood) {
  Passing s;
  s.p.me(-14.1, 0);  // behind the line from the start
  s.p.see(1, 4, -13, 0, NORTH);
  EXPECT_TRUE(s.run());
  EXPECT_EQ(s.p.player.pass->selfWay.maghsadPos, Vector(15, 0, 0));
}

}  // namespace
