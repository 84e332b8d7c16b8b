#include "AdvancedAction/Mark.h"

#include <cmath>

#include "support/PointCheck.h"
#include "support/TestPlayer.h"

namespace {

using support::expectPoint;
using support::TestPlayer;

constexpr double kMarkMargin = 2e-5;  // m

TEST(MarkAgentTest, ComparesByDistance) {
  EXPECT_TRUE(compare(MarkAgent(2, 1), MarkAgent(3, 2)));
  EXPECT_FALSE(compare(MarkAgent(2, 2), MarkAgent(3, 1)));
  EXPECT_FALSE(compare(MarkAgent(2, 1), MarkAgent(3, 1)));
}

// The marking point of an opponent at (14, 9) with the ball at the centre: half a metre of the
// 16.643 m.
const Vector kFarMark(13.579406f, 8.729618f, 0);

// Everybody at a corner far away, and no head of its own team seen after the first moments.
struct Marking {
  explicit Marking(int unum, double x, double y) : p(unum) {
    p.world.ourSide = SIDE_LEFT;
    p.numberEverybody();
    p.world.gameTime = 50;
    for (int i = 1; i <= 11; ++i) {
      p.see(0, i, -14, -9).headLastTimeSeen = 0;
      p.see(1, i, 14, 9);
    }
    p.me(x, y);
    p.ball(0, 0);
  }

  bool run() {
    p.arm();
    const bool result = p.player.mark->execute();
    EXPECT_EQ(result, p.askedForDecide());
    return result;
  }

  Vector point() { return p.player.decide->lastPos; }

  TestPlayer p;
};

// An opponent at (3, 4), 5 m from the ball: half a metre of that way from it is (2.7, 3.6). The
// player stands 1.2 m from there, which steps of 0.3, 1.3, 2.3, ... meet.
PLAYER_TEST(MarkTest, StepsBetweenOpponentAndBall) {
  Marking m(7, 2.7, 2.486);  // 1.114 on the ground, 1.2 with the height
  m.p.see(1, 5, 3, 4);
  EXPECT_TRUE(m.run());
  expectPoint(m.point(), 2.7, 3.6, kMarkMargin);
  Mark& mark = *m.p.player.mark;
  EXPECT_EQ(mark.unum, 7);
  EXPECT_EQ(mark.selfPos, Vector(2.7f, 2.486f, 0.45f));
  EXPECT_FALSE(mark.ourSide);
}

PLAYER_TEST(MarkTest, NobodyNearTheBallIsNothingToMark) {
  Marking m(7, 2.7, 2.486);
  m.p.see(1, 5, 4.25, 5.6);  // 7.03 m from the ball
  EXPECT_FALSE(m.run());
}

// The player is the nearest to it all the same, and serves the next opponent: see the stale winner.
PLAYER_TEST(MarkTest, AnOpponentOnTheBallIsNotMarked) {
  Marking m(7, 1, 0);
  m.p.see(1, 5, 0.09, 0);
  EXPECT_TRUE(m.run());
  expectPoint(m.point(), kFarMark.getX(), kFarMark.getY(), kMarkMargin);
  m.p.see(1, 5, 0.11, 0);
  EXPECT_TRUE(m.run());
  expectPoint(m.point(), -0.39, 0, kMarkMargin);
}

PLAYER_TEST(MarkTest, WithATeammateAtTheBallNobodyMarks) {
  Marking m(7, 2.7, 2.486);
  m.p.see(1, 5, 3, 4);
  m.p.see(0, 10, 0.19, 0).headLastTimeSeen = 50;
  EXPECT_FALSE(m.run());
  m.p.see(0, 10, 0.21, 0);
  EXPECT_TRUE(m.run());
}

PLAYER_TEST(MarkTest, TheNearestCandidateGoes) {
  Marking m(7, 2.7, 2.486);
  m.p.see(1, 5, 3, 4);
  m.p.see(0, 4, 2.7, 2.5).headLastTimeSeen = 0.2f;  // 1.1 m; its head seen just in time
  EXPECT_TRUE(m.run()) << "0.2 as a float is above 0.2";
  m.p.see(0, 4, 2.7, 2.5).headLastTimeSeen = 0.19f;
  EXPECT_FALSE(m.run());
}

// The stored time counts, not its age: whoever's head was seen since the first moments of the game
// is no candidate, the player itself included.
PLAYER_TEST(MarkTest, OnlyHeadsNeverSeenSinceTheStartCount) {
  Marking m(7, 2.7, 2.486);
  m.p.see(1, 5, 3, 4);
  m.p.see(0, 4, 2.7, 2.5).headLastTimeSeen = 50;
  EXPECT_TRUE(m.run());
  m.p.world.player[0][6].headLastTimeSeen = 1;
  EXPECT_FALSE(m.run());
}

PLAYER_TEST(MarkTest, TheGoalieAndEntriesAtTheOriginAreNoCandidates) {
  Marking goalie(1, 2.7, 2.486);
  goalie.p.see(1, 5, 3, 4);
  EXPECT_FALSE(goalie.run());
  // A nearer entry at exactly (0, 0, 0) does not count; the ball lies elsewhere.
  Marking m(7, 1.5, 0);
  m.p.ball(0, 3);
  m.p.see(1, 5, 0, -3);  // marking point (0, -2.5)
  m.p.me(0, -4.78);      // 2.32 with the height
  m.p.see(0, 4, 0, 0).headLastTimeSeen = 0;
  EXPECT_TRUE(m.run());
}

// A way of 0.3, 1.3, 2.3, ... metres must end within 0.3 m of the point: from 0.6 to 1.0 m away it
// never does.
PLAYER_TEST(MarkTest, SomeDistancesAreNeverMet) {
  Marking m(7, 0, 0);
  m.p.ball(0, 3);
  m.p.see(1, 5, 0, -3);  // marking point (0, -2.5)
  const auto served = [&](double distance) {
    m.p.world.mySelf->GlobalPosition = Vector(static_cast<float>(distance), -2.5f, 0);
    return m.run();
  };
  EXPECT_TRUE(served(0.59));
  EXPECT_FALSE(served(0.61));
  EXPECT_FALSE(served(0.99));
  EXPECT_TRUE(served(1.01));
  EXPECT_TRUE(served(1.59));
  EXPECT_FALSE(served(1.61));
  EXPECT_TRUE(served(6.5));
}

// Sixteen lengths are tried, 0.3 to 15.3, but nobody goes 7 m.
PLAYER_TEST(MarkTest, NobodyGoesSevenMetres) {
  Marking m(7, 0, 0);
  m.p.ball(0, 3);
  m.p.see(1, 5, 0, -3);
  m.p.world.mySelf->GlobalPosition = Vector(6.99f, -2.5f, 0);
  EXPECT_FALSE(m.run()) << "between two lengths";
  m.p.world.mySelf->GlobalPosition = Vector(6.58f, -2.5f, 0);
  EXPECT_TRUE(m.run());
  m.p.world.mySelf->GlobalPosition = Vector(7.3f, -2.5f, 0);
  EXPECT_FALSE(m.run());
}

PLAYER_TEST(MarkTest, ForwardsMarkOnlyCloseByWhileTheBallIsNotDeep) {
  const auto marks = [](int number, double ballX) {
    Marking m(number, 0, 0);
    m.p.ball(ballX, 3);
    m.p.see(1, 5, static_cast<float>(ballX), -3);  // marking point (ballX, -2.5)
    m.p.world.mySelf->GlobalPosition = Vector(static_cast<float>(ballX - 4.3), -2.5f, 0);
    return m.run();
  };
  for (int number : {9, 10, 11}) {
    EXPECT_FALSE(marks(number, -0.9)) << number;
    EXPECT_TRUE(marks(number, -1)) << number;
  }
  EXPECT_TRUE(marks(8, -0.9));
}

// The list of candidates is emptied but keeps its storage: an opponent without any candidate gets
// the winner of an earlier one once more. Number 3 is on the ball and is not marked; its marking
// point (0, -0.45) decides who serves number 4 in the far corner.
PLAYER_TEST(MarkTest, AStaleWinnerServesAnOpponentWithoutCandidates) {
  Marking m(7, 0, 1.2);  // 1.71 m to (0, -0.45): never met
  m.p.see(1, 3, 0, 0.05);
  EXPECT_FALSE(m.run()) << "nobody has ever won";
  m.p.me(0, 0.6);  // 1.14 m: met
  EXPECT_TRUE(m.run());
  expectPoint(m.point(), kFarMark.getX(), kFarMark.getY(), kMarkMargin);
}

// For a team on the right the rows cross: it marks what vision saw of its teammates.
PLAYER_TEST(MarkTest, RowsCrossForATeamOnTheRight) {
  Marking m(7, 2.7, 2.486);
  m.p.world.ourSide = SIDE_RIGHT;
  for (int i = 1; i <= 11; ++i) m.p.see(1, i, -14, -9).headLastTimeSeen = 0;
  m.p.see(0, 5, 3, 4);
  EXPECT_TRUE(m.run());
  expectPoint(m.point(), 2.7, 3.6, kMarkMargin);
  EXPECT_TRUE(m.p.player.mark->ourSide);
}

}  // namespace
