#include "AdvancedAction/Block.h"

#include <cmath>
#include <random>

#include "AdvancedAction/GoToPoint.h"
#include "support/PointCheck.h"
#include "support/TestPlayer.h"

namespace {

using support::expectGroundPoint;
using support::TestPlayer;

constexpr double kMargin = 1e-4;  // m

// An opponent on a resting ball, which it therefore reaches at once and where it lies.
struct Blocking {
  explicit Blocking(int number) : p(number) {
    p.world.ourSide = SIDE_LEFT;
    p.world.gameTime = 50;
    p.numberEverybody();
  }

  void opponentAt(double x, double y) {
    p.ball(x, y);
    p.see(1, 5, x, y, NORTH);
  }

  Vector pos() {
    p.player.block->inIt();
    return p.player.block->getBlockPos();
  }

  TestPlayer p;
};

PLAYER_TEST(BlockTest, InItReadsTheWorld) {
  Blocking b(7);
  b.p.me(1, 2);
  b.p.ball(3, 4);
  b.p.world.ball->setVelocity(Vector(0.5f, 0.25f, 0));
  Block& block = *b.p.player.block;
  block.inIt();
  EXPECT_EQ(block.selfPos, Vector(1, 2, 0.45f));
  EXPECT_EQ(block.selfX, 1);
  EXPECT_EQ(block.selfY, 2);
  EXPECT_EQ(block.ballPos, Vector(3, 4, 0));
  EXPECT_EQ(block.ballVel, Vector(0.5f, 0.25f, 0));
  EXPECT_EQ(block.unum, 7);
  EXPECT_EQ(block.cyclesAfter, 6);
  EXPECT_EQ(block.firstLimit, 8);
  EXPECT_EQ(block.secondLimit, 9);
  EXPECT_FALSE(block.ourSide);
  EXPECT_EQ(Block::blockCountDown, -1);
  EXPECT_EQ(Block::doBlockCD, -1);
}

PLAYER_TEST(BlockTest, WithoutAnOpponentThereIsNothingToBlock) {
  Blocking b(7);
  b.p.me(-5, 0);
  b.p.ball(0, 0);
  EXPECT_EQ(b.pos(), Vector(1000, 1000, 1000));
  b.p.arm();
  EXPECT_FALSE(b.p.player.block->realBlockExecute());
  EXPECT_FALSE(b.p.player.block->extraBlockExecute());
  EXPECT_FALSE(b.p.askedForDecide());
}

// With the player level with the ball, four metres behind it, the point to stand on lies half way,
// on the line to the aim: its y shows the aim.
PLAYER_TEST(BlockTest, AimsOfTheOpponent) {
  struct Row {
    double x, y;
    double targetX, targetY;
  };
  const auto mouth = [](double s, double x) { return s * 0.5 / (x + 15); };
  const Row rows[] = {
      {1, 6, -1.5, 6},  // wide: along the wing
      {1, -6.5, -1.5, -6.5},
      {1, 5.9, -14.5, mouth(4.9, 1)},  // central
      {1, -3, -14.5, mouth(-2, 1)},
      {1, 0.5, -14.5, mouth(0.5, 1)},
      {1, -1, -14.5, mouth(-1, 1)},
      {-1, 7, -3.5, 7},
      {-10.9, -7, -13.4, -7},
      {-1, 6.5, -14.5, mouth(5.5, -1)},  // not yet wide in its own half
      {-5, -2, -14.5, mouth(-1, -5)},
      {-5, 0.9, -14.5, mouth(0.9, -5)},
      {-9.9, 3, -14.5, mouth(2, -9.9)},
      {0, -6.5, -14.5, mouth(-5.5, 0)},  // zero belongs to its own half
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.x) + " " + std::to_string(row.y));
    Blocking b(7);
    b.opponentAt(row.x, row.y);
    const double selfX = row.x - (row.targetX == -14.5 ? 2 : 4.8);
    b.p.me(selfX, row.y);
    const double midX = (selfX + row.x) / 2;
    const double midY = row.y + (row.targetY - row.y) / (row.targetX - row.x) * (midX - row.x);
    expectGroundPoint(b.pos(), midX, midY, 2e-3);
  }
}

// Near its own goal the lateral offset counts whole, wide or not; there half way is beyond the
// target for a player far off, so that the target itself shows.
PLAYER_TEST(BlockTest, AimsNearTheOwnGoal) {
  for (const auto& [x, y] : {std::pair(-11.0, 7.5), {-11.0, -8.0}, {-10.0, 3.0}, {-12.0, -2.0}}) {
    SCOPED_TRACE(std::to_string(x) + " " + std::to_string(y));
    Blocking b(7);
    b.opponentAt(x, y);
    b.p.me(x + 20, y);
    expectGroundPoint(b.pos(), -14.5, y * 0.5 / (x + 15), kMargin);
  }
}

// The general case: the point is equally far from the player and the opponent, on the line to the
// aim, and between both ends.
PLAYER_TEST(BlockTest, ThePointIsEquallyFarFromPlayerAndOpponent) {
  Blocking b(7);
  std::mt19937 random(5);
  const auto draw = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  int inside = 0;
  int targets = 0;
  int reaches = 0;
  for (int i = 0; i < 500; ++i) {
    const double x = draw(1, 10), y = draw(1.2, 5);
    const double sx = draw(-10, x - 1), sy = draw(-4, 6);
    if (std::fabs(sy - y) < 0.2) continue;
    b.opponentAt(x, y);
    b.p.me(sx, sy);
    const Vector at = b.pos();
    const double tx = -14.5, ty = (y - 1) * 0.5 / (x + 15);
    const double m = (y - ty) / (x - tx);
    const double off = std::fabs(sy - y - m * (sx - x)) / std::sqrt(m * m + 1);
    if (std::fabs(off - 0.5) < 0.01) continue;
    if (off < 0.5) {
      expectGroundPoint(at, x, y, 1e-3);  // close to the line: straight at the opponent
      ++reaches;
      continue;
    }
    EXPECT_NEAR(at.getY(), y + m * (at.getX() - x), 1e-3);
    if (std::fabs(at.getX() - tx) < 1e-3) {
      ++targets;
      continue;
    }
    ++inside;
    EXPECT_NEAR(std::hypot(at.getX() - x, at.getY() - y),
                std::hypot(at.getX() - sx, at.getY() - sy), 1e-2);
    EXPECT_LE(at.getX(), x);
    EXPECT_GE(at.getX(), tx);
  }
  EXPECT_GT(inside, 100);
  EXPECT_GT(reaches, 20);
  static_cast<void>(targets);
}

PLAYER_TEST(BlockTest, LevelAndNearTheTargetItGoesToTheOpponent) {
  Blocking b(7);
  b.opponentAt(1, 7);  // aim (-1.5, 7)
  b.p.me(0.4, 7.05);
  expectGroundPoint(b.pos(), 1, 7, kMargin);
}

// The bisector meets the line beyond its end: the target.
PLAYER_TEST(BlockTest, BeyondTheLineItTakesTheTarget) {
  Blocking b(7);
  b.opponentAt(1, 7);
  b.p.me(-9, 5);
  expectGroundPoint(b.pos(), -1.5, 7, kMargin);
  // A bisector parallel to the line, for a player straight beside the ball.
  b.p.me(1, 3);
  expectGroundPoint(b.pos(), -1.5, 7, kMargin);
}

// Within 0.1 of x -14.5 no ball is on the pitch, so that a vertical line only comes with a ball
// that is out, whose place is the reach point: (-14.45, 4), with the aim at (-14.5, 3.636).
PLAYER_TEST(BlockTest, AVerticalLine) {
  const double aim = 4 * 0.5 / 0.55;
  Blocking b(7);
  b.p.ball(-14.45, 4);
  // Level with it the player's own run crosses the line at its own y.
  b.p.me(-12, 4.05);
  expectGroundPoint(b.pos(), -14.45, 4.05, kMargin);
  b.p.me(-14.45, 3.95);
  expectGroundPoint(b.pos(), -14.45, 3.95, kMargin);
  // In line and not level: the x of the reach point as y, which lies beyond, so that the target
  // is taken.
  b.p.me(-14.45, 2);
  expectGroundPoint(b.pos(), -14.5, aim, kMargin);
  // Neither: the bisector of (-13, 3.3) and (-14.45, 4) is at y 2.0 there, beyond: the target.
  b.p.me(-13, 3.3);
  expectGroundPoint(b.pos(), -14.5, aim, kMargin);
  // The bisector of (-11, 3.4) and the reach point, k = 3.45 / 0.6 = 5.75, c = 3.7 + 5.75 * 12.725,
  // is at y -6.5: beyond as well.
  b.p.me(-11, 3.4);
  expectGroundPoint(b.pos(), -14.5, aim, kMargin);
}

// With a ball behind the line of the goal, at (-16, 4), the aim is at (-14.5, 4 * 0.5 / -1) and the
// line y = -4 x - 60 runs forward. There is no falling back to the aim then: half way to a player
// level with the ball the point lies on the line beyond it.
PLAYER_TEST(BlockTest, BehindTheGoalLineThePointMayLieBeyondTheAim) {
  Blocking b(7);
  b.p.ball(-16, 4);
  b.p.me(-10, 4);
  expectGroundPoint(b.pos(), -13, -8, kMargin);
}

// A player that already runs along a good line stays on it: the velocity's slope, with the sign
// that atan and tan leave it, meets the line within 2 m of the point.
PLAYER_TEST(BlockTest, ARunningPlayerStaysOnItsLine) {
  Blocking b(7);
  b.opponentAt(1, 7);  // the wing: the line y = 7 from 1 to -1.5
  b.p.me(-3.8, 7.05);  // level: half way
  expectGroundPoint(b.pos(), -1.4, 7, kMargin);
  b.p.world.mySelf->setVelocity(Vector(1.7f, 0.05f, 0));
  expectGroundPoint(b.pos(), -1.4, 7, kMargin);  // too parallel to have a crossing
  b.p.me(-2.8, 5);
  b.p.world.mySelf->setVelocity(Vector(0, 0, 0));
  // Bisector of (-2.8, 5) and (1, 7): 1.9 x + y... at y 7: x = -0.9 + (6 - 7) / 1.9 * 1 = -1.426.
  const Vector still = b.pos();
  EXPECT_NEAR(still.getY(), 7, 1e-4);
  EXPECT_NEAR(still.getX(), -0.9 - 1 / 1.9, 1e-3);
  // Velocity (1, -1): slope +1 after the sign, through (-2.8, 5): meets y = 7 at x = -0.8, which
  // lies ahead of the point by less than 1 m.
  b.p.world.mySelf->setVelocity(Vector(1, -1, 0));
  expectGroundPoint(b.pos(), -0.8, 7, 1e-3);
  // Slope 0.8: at x = -0.3, more than 1 m ahead: the point stays.
  b.p.world.mySelf->setVelocity(Vector(1, -0.8f, 0));
  EXPECT_NEAR(b.pos().getX(), still.getX(), 1e-3);
  // Slope -1 meets the line far beyond its end.
  b.p.world.mySelf->setVelocity(Vector(1, 1, 0));
  EXPECT_NEAR(b.pos().getX(), still.getX(), 1e-3);
  // Straight along y the arc is a quarter: tan of it is huge, and the crossing right above.
  b.p.me(-1.45, 5.5);
  b.p.world.mySelf->setVelocity(Vector(0, 1, 0));
  EXPECT_NEAR(b.pos().getX(), -1.45, 1e-2);
}

// --- realBlockExecute ----------------------------------------------------------------------------

PLAYER_TEST(BlockRealTest, WalksToThePointFacingTheBall) {
  Blocking b(7);
  b.opponentAt(1, 7);
  b.p.me(-3.8, 7);
  b.p.arm();
  EXPECT_TRUE(b.p.player.block->realBlockExecute());
  expectGroundPoint(b.p.player.decide->lastPos, -1.4, 7, kMargin);
  EXPECT_EQ(Block::blockCountDown, -1);
}

PLAYER_TEST(BlockRealTest, DefendersKeepAwayFromFarBlocksAndAfterABlock) {
  const auto takesPart = [](int number, double selfX, int doBlock) {
    Blocking b(number);
    b.opponentAt(1, 7);
    b.p.me(selfX, 7);  // the point is half way, or the end of the line at -1.5
    Block::doBlockCD = doBlock;
    b.p.arm();
    const bool result = b.p.player.block->realBlockExecute();
    EXPECT_EQ(result, b.p.askedForDecide());
    return result;
  };
  EXPECT_TRUE(takesPart(6, -10.4, 5));   // 8.9 m on the ground
  EXPECT_FALSE(takesPart(6, -10.5, 5));  // 9.01 m with the height
  EXPECT_FALSE(takesPart(6, -3, 6));
  EXPECT_TRUE(takesPart(7, -14, 9));  // higher numbers know no limits
}

PLAYER_TEST(BlockRealTest, InPlaceItHolds) {
  Blocking b(7);
  b.opponentAt(1, 7);
  const auto run = [&](double x, double y, double heading) {
    b.p.me(x, y, heading);
    Block::blockCountDown = Block::doBlockCD = 1;
    b.p.arm();
    EXPECT_TRUE(b.p.player.block->realBlockExecute());
    return Block::doBlockCD == 7 && Block::blockCountDown == 6 && !b.p.askedForDecide();
  };
  // The point is half way to the opponent at (1, 7).
  EXPECT_TRUE(run(0.85, 7, 0));
  EXPECT_FALSE(run(0.55, 7, 0)) << "0.225 m, and 0.503 with the height";
  // The signed angle is compared: only a ball more than 10 degrees to the left is not faced.
  EXPECT_TRUE(run(0.85, 7, 9));
  EXPECT_FALSE(run(0.85, 7, -11));
  EXPECT_TRUE(run(0.85, 7, 170)) << "-170 degrees";
  EXPECT_FALSE(run(0.85, 7, -170)) << "170 degrees";
}

// --- extraBlockExecute ---------------------------------------------------------------------------

struct Extra : Blocking {
  explicit Extra(int number) : Blocking(number) {
    opponentAt(-10, 0);
    p.me(-14, 0.5);
    for (int i = 1; i <= 11; ++i) p.see(0, i, 10, 0);
  }

  bool run() {
    p.arm();
    return p.player.block->extraBlockExecute();
  }
};

PLAYER_TEST(BlockExtraTest, TheNearestOfTheNumbersTwoToSixGoes) {
  for (const int number : {2, 6}) {
    Extra e(number);
    e.p.see(0, number, -11, 0);
    e.p.see(0, 1, -10.1, 0);  // nearer, but no such defender
    e.p.see(0, 7, -10.1, 0);
    EXPECT_TRUE(e.run()) << number;
    EXPECT_TRUE(e.p.askedForDecide());
    e.p.see(0, number == 2 ? 6 : 2, -10.5, 0);
    EXPECT_FALSE(e.run());
    EXPECT_FALSE(e.p.askedForDecide());
  }
}

// Its own entry counts by where it was seen, not by its own position; of equal ones the first of
// the table goes.
PLAYER_TEST(BlockExtraTest, EqualDistancesKeepTheOrderOfTheTable) {
  Extra first(2);
  EXPECT_TRUE(first.run()) << "all are equally far";
  Extra second(3);
  EXPECT_FALSE(second.run());
}

PLAYER_TEST(BlockExtraTest, OnlyForABallDeepInTheOwnHalf) {
  const auto goes = [](double x) {
    Extra e(2);
    e.opponentAt(x, 0);
    return e.run();
  };
  EXPECT_TRUE(goes(-9));
  EXPECT_FALSE(goes(-8.9));
}

PLAYER_TEST(BlockExtraTest, APlayerThatHasJustBlockedHoldsOn) {
  Extra e(9);
  Block::blockCountDown = 0;
  Block::doBlockCD = 6;
  EXPECT_TRUE(e.run());
  EXPECT_TRUE(e.p.askedForDecide());
  Block::blockCountDown = -1;
  EXPECT_FALSE(e.run());
  Block::blockCountDown = 5;
  Block::doBlockCD = 5;
  EXPECT_FALSE(e.run());
}

PLAYER_TEST(BlockExtraTest, ATeamWithoutSuchNumbersSendsNobody) {
  Extra e(9);
  for (Player& player : e.p.world.player[0]) player.setPlayerNumber(9);
  EXPECT_FALSE(e.run());
  for (Player& player : e.p.world.player[0]) player.setPlayerNumber(0);
  EXPECT_FALSE(e.run());
}

}  // namespace
