#include "Utilities/FastIC.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <random>
#include <vector>

#include "WorldModel/WorldModel.h"
#include "support/ConfigSandbox.h"

namespace {

constexpr int kMyNumber = 7;
constexpr float kNow = 100;

// A world with all players numbered and out of sight, and its own player too far away to reach
// anything, looking towards +x.
class FastICTest : public ::testing::Test {
 protected:
  FastICTest() {
    sandbox.loadDeployment();
    sandbox.set("Agent", "Public", "UniformNumber", std::to_string(kMyNumber));
    world = std::make_unique<WorldModel>();
    world->gameTime = kNow;
    play(SIDE_LEFT);
    putMe(0, 500);
    for (int i = 0; i < 11; ++i) {
      number(0, i + 1);
      number(1, i + 1);
    }
  }

  void play(TeamSide side) {
    world->ourSide = side;
    world->mySelf->setTeamSide(side);
  }

  void number(int row, int number) {
    Player& player = world->player[row][number - 1];
    player.setTeamSide(row == 0 ? SIDE_LEFT : SIDE_RIGHT);
    player.setPlayerNumber(number);
    player.headLastTimeSeen = -100;
  }

  // Puts a player in sight, upright, at (x, y), looking along `facing`.
  Player& put(int row, int number, double x, double y, Orientation facing) {
    Player& player = world->player[row][number - 1];
    player.headLastTimeSeen = kNow;
    player.headPosition = Vector(0, 0, 0.6f);
    const Vector pos(static_cast<float>(x), static_cast<float>(y), 0);
    player.leftFootPosition = player.rightFootPosition = pos;
    // The arms tell the facing: the difference of their larger coordinate, as getBodyDirection
    // reads it.
    player.leftLowerArmPosition = player.rightLowerArmPosition = Vector(0, 0, 0);
    if (facing == NORTH) player.rightLowerArmPosition.setX(1);
    if (facing == SOUTH) player.leftLowerArmPosition.setX(1);
    if (facing == EAST) player.leftLowerArmPosition.setY(1);
    if (facing == WEST) player.rightLowerArmPosition.setY(1);
    return player;
  }

  void putMe(double x, double y) {
    world->mySelf->setGlobalPosition(Vector(static_cast<float>(x), static_cast<float>(y), 0));
  }

  // The entry of its own player decides whether it lies on the ground.
  void standUpright() { mine().headPosition = Vector(0, 0, 0.6f); }

  Player& mine() { return world->player[world->ourSide == SIDE_LEFT ? 0 : 1][kMyNumber - 1]; }

  FastIC run(Vector pos, Vector vel, double decay) {
    FastIC fc(world.get());
    fc.setTarget(pos, vel, decay);
    fc.setPlayers();
    fc.calculate();
    return fc;
  }

  support::ConfigSandbox sandbox;
  std::unique_ptr<WorldModel> world;
};

void expectVector(Vector actual, double x, double y, double z) {
  EXPECT_FLOAT_EQ(actual.getX(), static_cast<float>(x));
  EXPECT_FLOAT_EQ(actual.getY(), static_cast<float>(y));
  EXPECT_FLOAT_EQ(actual.getZ(), static_cast<float>(z));
}

TEST(FastPlayerTest, StartsUnknown) {
  const FastPlayer player;
  expectVector(player.reachPoint, 9999, 9999, 9999);
  EXPECT_EQ(player.reachCycle, 9999);
  EXPECT_FALSE(player.calculated);
  EXPECT_FALSE(player.vojood);
  EXPECT_EQ(player.human.getPlayerNumber(), 0);
}

TEST(FastPlayerTest, TakesPositionAndVelocityOfThePlayer) {
  Player human;
  human.setPlayerNumber(4);
  human.leftFootPosition = Vector(1, 2, 0.2f);
  human.rightFootPosition = Vector(3, 6, 0.4f);
  human.setVelocity(Vector(0.5f, -0.25f, 0));
  const FastPlayer player(human);
  EXPECT_EQ(player.human.getPlayerNumber(), 4);
  expectVector(player.playerPos, 2, 4, 0.3f);
  expectVector(player.playerVel, 0.5, -0.25, 0);
  EXPECT_EQ(player.reachCycle, 9999);
}

TEST(FastBallTest, DefaultsToAStandingBallThatStopsSoon) {
  const FastBall ball;
  expectVector(ball.ballPos, 0, 0, 0);
  expectVector(ball.ballVel, 0, 0, 0);
  EXPECT_EQ(ball.ballDecay, 0.06);
}

TEST(FastICOrientationTest, CutsTheCompassIntoOverlappingQuarters) {
  const std::pair<double, Orientation> rows[] = {
      {0, NORTH},     {-0.5, NORTH}, {-1, SOUTH},  {90.5, NORTH}, {91, WEST},
      {90.99, NORTH}, {180, WEST},   {-45, SOUTH}, {-91, SOUTH},  {-91.01, EAST},
      {-179.9, EAST}, {0.99, NORTH}, {120, WEST},
  };
  for (const auto& [bearing, expected] : rows) {
    EXPECT_EQ(orientationFromBearing(bearing), expected) << bearing;
  }
}

TEST_F(FastICTest, TakesTheOwnSideFromTheWorld) {
  EXPECT_FALSE(FastIC(world.get()).ourSide);
  play(SIDE_RIGHT);
  EXPECT_TRUE(FastIC(world.get()).ourSide);
  play(SIDE_ILLEGAL);
  EXPECT_TRUE(FastIC(world.get()).ourSide);
  EXPECT_FALSE(FastIC(world.get()).amIGoalie);
  EXPECT_FALSE(FastIC(world.get()).mySelfIsAlive);
}

TEST_F(FastICTest, CandidatesAreTheOthersThenTheOwnTeamWithoutItsGoalie) {
  putMe(1, 2);
  FastIC fc(world.get());
  fc.setPlayers();
  ASSERT_EQ(fc.fastPlayers.size(), 21u);
  for (int i = 0; i < 11; ++i) {
    EXPECT_EQ(fc.fastPlayers[i].human.getTeamSide(), SIDE_RIGHT);
    EXPECT_EQ(fc.fastPlayers[i].human.getPlayerNumber(), i + 1);
  }
  for (int i = 11; i < 21; ++i) {
    EXPECT_EQ(fc.fastPlayers[i].human.getTeamSide(), SIDE_LEFT);
    EXPECT_EQ(fc.fastPlayers[i].human.getPlayerNumber(), i - 9);
  }
  expectVector(fc.fastPlayers[16].playerPos, 1, 2, 0);
}

TEST_F(FastICTest, ASecondSetPlayersAddsEverybodyAgain) {
  FastIC fc(world.get());
  fc.setPlayers();
  fc.setPlayers();
  EXPECT_EQ(fc.fastPlayers.size(), 42u);
}

// Vision files teammates in row 0 on both sides of the game, and this calculator takes the row that
// the side names: for a team on the right its own team is what vision saw of the opponents.
TEST_F(FastICTest, RowsCrossForATeamOnTheRight) {
  play(SIDE_RIGHT);
  put(0, 3, 2, 0, NORTH);   // a teammate by vision
  put(1, 5, -4, 0, NORTH);  // an opponent by vision
  FastIC fc = run(Vector(2, 0, 0), Vector(0, 0, 0), 0);
  ASSERT_TRUE(fc.fastestOpponentIsAlive);
  EXPECT_EQ(fc.fastestOpponent.human.getPlayerNumber(), 3);
  ASSERT_TRUE(fc.fastestTeammateIsAlive);
  EXPECT_EQ(fc.fastestTeammate.human.getPlayerNumber(), 5);
  EXPECT_EQ(fc.fastPlayers[0].human.getTeamSide(), SIDE_LEFT);
  EXPECT_EQ(fc.fastPlayers.back().human.getTeamSide(), SIDE_RIGHT);
}

TEST_F(FastICTest, EraseOfOneTakesTheOpposingGoalieOut) {
  FastIC fc(world.get());
  fc.setPlayers();
  fc.erasePlayer(1);
  ASSERT_EQ(fc.fastPlayers.size(), 20u);
  for (const FastPlayer& candidate : fc.fastPlayers) {
    EXPECT_NE(candidate.human.getPlayerNumber(), 1);
  }
}

TEST_F(FastICTest, EraseLeavesTheSecondOfTwoNeighbours) {
  FastIC fc(world.get());
  for (int number : {4, 4, 2, 4, 4, 4}) {
    Player player;
    player.setPlayerNumber(number);
    fc.fastPlayers.emplace_back(player);
  }
  fc.erasePlayer(4);
  ASSERT_EQ(fc.fastPlayers.size(), 3u);
  EXPECT_EQ(fc.fastPlayers[0].human.getPlayerNumber(), 4);
  EXPECT_EQ(fc.fastPlayers[1].human.getPlayerNumber(), 2);
  EXPECT_EQ(fc.fastPlayers[2].human.getPlayerNumber(), 4);
}

TEST_F(FastICTest, EraseOfTheLastCandidateEndsTheWalk) {
  FastIC fc(world.get());
  Player player;
  player.setPlayerNumber(4);
  fc.fastPlayers.emplace_back(player);
  fc.erasePlayer(4);
  EXPECT_TRUE(fc.fastPlayers.empty());
}

// Opponent 4 m behind the ball, looking at it: its way is 4 m and its facing costs
// |0 - 0.5 * 0| = 0 degrees, so that it has it at the first step whose number is at least 4.
TEST_F(FastICTest, OpponentWalksAMetreAStep) {
  put(1, 5, -4, 0, NORTH);
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_TRUE(fc.isAlive);
  ASSERT_TRUE(fc.fastestOpponentIsAlive);
  EXPECT_FALSE(fc.fastestTeammateIsAlive);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 4);
  EXPECT_EQ(fc.fastest.human.getPlayerNumber(), 5);
  expectVector(fc.fastest.reachPoint, 0, 0, 0);
  EXPECT_TRUE(fc.fastestOpponent.calculated);
}

// Teammate 4 m away: 0.9 * 5 = 4.5 is the first allowance that covers it.
TEST_F(FastICTest, TeammateWalksNineTenthsOfAMetreAStep) {
  put(0, 5, -4, 0, NORTH);
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  ASSERT_TRUE(fc.fastestTeammateIsAlive);
  EXPECT_EQ(fc.fastestTeammate.reachCycle, 5);
  EXPECT_EQ(fc.fastest.human.getPlayerNumber(), 5);
}

// The single-precision 0.9 is a little below nine tenths: ten steps do not cover nine metres.
TEST_F(FastICTest, NineTenthsAreSinglePrecision) {
  put(0, 5, -9, 0, NORTH);
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  ASSERT_TRUE(fc.fastestTeammateIsAlive);
  EXPECT_EQ(fc.fastestTeammate.reachCycle, 11);
}

// Facing counts half: an opponent that looks away along -x from a ball at +x has
// |0 - 0.5 * 180| = 90 degrees to turn, 90 / 50 = 1.8 steps; the first whole step with
// step - 1.8 >= 4 is 6, cost 4.2, cut to 4.
TEST_F(FastICTest, FacingCountsHalf) {
  put(1, 5, -4, 0, WEST);
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  ASSERT_TRUE(fc.fastestOpponentIsAlive);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 4);
  // 90 degrees for a teammate: 1.5 steps; 0.9 * (step - 1.5) >= 4 first at 6, cost 4.5.
  put(0, 5, -4, 0, WEST);
  EXPECT_EQ(run(Vector(0, 0, 0), Vector(0, 0, 0), 0).fastestTeammate.reachCycle, 4);
  // Towards +y, the ball straight on: |90 - 45| = 45 degrees are lost all the same, 0.9 steps.
  put(1, 5, 0, -4, EAST);
  EXPECT_EQ(run(Vector(0, 0, 0), Vector(0, 0, 0), 0).fastestOpponent.reachCycle, 4);
  // Looking along -y with the ball at +y: |90 + 45| = 135 degrees, 2.7 steps: step 7, cost 4.3.
  put(1, 5, 0, -4, SOUTH);
  EXPECT_EQ(run(Vector(0, 0, 0), Vector(0, 0, 0), 0).fastestOpponent.reachCycle, 4);
}

TEST_F(FastICTest, FallenPlayersNeedLonger) {
  put(1, 5, -4, 0, NORTH).headPosition.setZ(0.49f);
  const FastIC opponent = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_EQ(opponent.fastestOpponent.reachCycle, 4);  // at step 7
  put(0, 6, -4, 0, NORTH).headPosition.setZ(0.49f);
  const FastIC both = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_EQ(both.fastestTeammate.reachCycle, 5);  // at step 17
  // The step shows in where the rolling ball was met.
  const FastIC rolled = run(Vector(0, 0, 0), Vector(0.01f, 0, 0), 1);
  EXPECT_NEAR(rolled.fastestOpponent.reachPoint.getX(), 0.08, 1e-5);  // 4.08 m: step 8
  EXPECT_NEAR(rolled.fastestTeammate.reachPoint.getX(), 0.17, 1e-5);
}

// The head height of its own table entry counts for its own player too, and an entry that was never
// seen lies on the ground.
TEST_F(FastICTest, AFallenOwnPlayerNeedsTwelveStepsMore) {
  putMe(-4, 0);
  const FastIC down = run(Vector(0, 0, 0), Vector(0.01f, 0, 0), 1);
  ASSERT_TRUE(down.mySelfIsAlive);
  EXPECT_NEAR(down.mySelf.reachPoint.getX(), 0.17, 1e-5);
  standUpright();
  const FastIC up = run(Vector(0, 0, 0), Vector(0.01f, 0, 0), 1);
  EXPECT_NEAR(up.mySelf.reachPoint.getX(), 0.05, 1e-5);
}

TEST_F(FastICTest, OwnPlayerIsFoundWithoutBeingSeen) {
  putMe(-3, 0);
  standUpright();
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  ASSERT_TRUE(fc.mySelfIsAlive);
  EXPECT_EQ(fc.mySelf.human.getPlayerNumber(), kMyNumber);
  EXPECT_EQ(fc.mySelf.reachCycle, 4);
  // Alone, it is its team's best, and the winner.
  EXPECT_TRUE(fc.fastestTeammateIsAlive);
  EXPECT_EQ(fc.fastestTeammate.human.getPlayerNumber(), kMyNumber);
  EXPECT_EQ(fc.fastest.human.getPlayerNumber(), kMyNumber);
}

// Looking 170 degrees to the right, the goal lies at +170: WEST, whatever the table's entry shows.
TEST_F(FastICTest, OwnFacingComesFromTheBearingOfTheGoal) {
  standUpright();
  world->mySelf->gyro.rotationByZ(-170);
  putMe(0, 0);
  const FastIC fc = run(Vector(5, 0, 0), Vector(0, 0, 0), 0);
  // |0 - 90| / 60 = 1.5; 0.9 * (step - 1.5) >= 5 first at step 8, cost 6.5.
  EXPECT_EQ(fc.mySelf.reachCycle, 6);
}

TEST_F(FastICTest, UnseenAndUnknownPlayersAreSkipped) {
  put(1, 5, -1, 0, NORTH).headLastTimeSeen = kNow - 5;
  put(1, 6, -1, 0, UNKNOWN);
  EXPECT_FALSE(run(Vector(0, 0, 0), Vector(0, 0, 0), 0).isAlive);
  put(1, 5, -1, 0, NORTH).headLastTimeSeen = kNow - 4.98f;
  EXPECT_TRUE(run(Vector(0, 0, 0), Vector(0, 0, 0), 0).isAlive);
}

TEST_F(FastICTest, EntriesBeforeTheFirstSightingCountForNobody) {
  WorldModel fresh;
  fresh.ourSide = SIDE_LEFT;
  FastIC fc(&fresh);
  fc.setTarget(Vector(0, 0, 0), Vector(0, 0, 0), 0.06);
  fc.setPlayers();
  EXPECT_EQ(fc.fastPlayers.size(), 22u);
  fc.calculate();
  EXPECT_FALSE(fc.isAlive);
  EXPECT_FALSE(fc.mySelfIsAlive);
}

TEST_F(FastICTest, PlayerOnTheTargetIsFoundAtOnce) {
  put(1, 5, 2, 1, NORTH);
  const FastIC fc = run(Vector(2, 1, 0), Vector(0, 0, 0), 0);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 0);
}

// Nobody within 35 steps: an opponent at 35 m would be, one at 36 m is not.
TEST_F(FastICTest, GivesUpAfterThirtySixSteps) {
  put(1, 5, -22, 0, NORTH);
  EXPECT_TRUE(run(Vector(13, 0, 0), Vector(0, 0, 0), 0).isAlive);
  put(1, 5, -23, 0, NORTH);
  const FastIC fc = run(Vector(13, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_FALSE(fc.isAlive);
  EXPECT_EQ(fc.fastest.reachCycle, 9999);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 9999);
}

TEST_F(FastICTest, BallRollsOutToItsVelocityDividedByNinetyFourHundredths) {
  put(1, 5, -9, 0, NORTH);
  const FastIC fc = run(Vector(0, 0, 0), Vector(0.94f, 0, 0), 0.06);
  EXPECT_NEAR(fc.fastestOpponent.reachPoint.getX(), 1, 1e-5);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 10);
}

TEST_F(FastICTest, CandidatesMoveOnWithTheirVelocityUntilTheyReachTheTarget) {
  put(1, 5, -8, 0, NORTH).setVelocity(Vector(1, 0, 0));
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 4);
  expectVector(fc.fastest.playerPos, -4, 0, 0);  // as it was in the step of reaching
  expectVector(fc.fastPlayers[4].playerPos, -3, 0, 0);
}

TEST_F(FastICTest, SkippedCandidatesDoNotMove) {
  put(1, 5, -8, 0, UNKNOWN).setVelocity(Vector(1, 0, 0));
  put(1, 6, -4, 0, NORTH);
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  expectVector(fc.fastPlayers[4].playerPos, -8, 0, 0);
}

TEST_F(FastICTest, OpponentWinsTiesAndNearTies) {
  put(0, 5, -4, 0, NORTH);  // cost 5
  for (const auto& [distance, opponentWins] :
       {std::pair(5.0, true), std::pair(6.0, true), std::pair(7.0, false)}) {
    put(1, 8, -distance, 0, NORTH);
    const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
    EXPECT_EQ(fc.fastestOpponent.reachCycle, static_cast<int>(distance));
    EXPECT_EQ(fc.fastest.human.getTeamSide(), opponentWins ? SIDE_RIGHT : SIDE_LEFT) << distance;
  }
}

TEST_F(FastICTest, OwnPlayerIsItsTeamsBestOnlyWithALeadOfMoreThanOne) {
  standUpright();
  put(0, 5, 4, 0, WEST);  // teammate: |180 - 90| = 90 degrees, cost 4 (4.5)
  putMe(-4, 0);           // 5
  EXPECT_EQ(run(Vector(0, 0, 0), Vector(0, 0, 0), 0).fastestTeammate.human.getPlayerNumber(), 5);
  put(0, 5, -6, 0, NORTH);  // 7
  putMe(-5, 0);             // 6: a lead of one
  EXPECT_EQ(run(Vector(0, 0, 0), Vector(0, 0, 0), 0).fastestTeammate.human.getPlayerNumber(), 5);
  putMe(-4, 0);  // 5: a lead of two
  const FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_EQ(fc.fastestTeammate.human.getPlayerNumber(), kMyNumber);
  EXPECT_EQ(fc.mySelf.reachCycle, 5);
}

TEST_F(FastICTest, MySelfIsNeverCleared) {
  standUpright();
  putMe(-4, 0);
  FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  ASSERT_EQ(fc.mySelf.reachCycle, 5);
  fc.refresh();
  fc.setTarget(Vector(200, 0, 0), Vector(0, 0, 0), 0);  // out at once: nobody reaches it
  fc.calculate();
  EXPECT_TRUE(fc.mySelfIsAlive);
  EXPECT_EQ(fc.mySelf.reachCycle, 5);
}

// Its own goalie is no candidate, so that it never finds itself.
TEST_F(FastICTest, TheGoalieNeverFindsItself) {
  sandbox.set("Agent", "Public", "UniformNumber", "1");
  WorldModel asGoalie;
  asGoalie.ourSide = SIDE_LEFT;
  for (int i = 0; i < 11; ++i) {
    asGoalie.player[0][i].setTeamSide(SIDE_LEFT);
    asGoalie.player[0][i].setPlayerNumber(i + 1);
  }
  FastIC fc(&asGoalie);
  fc.setTarget(Vector(0, 0, 0), Vector(0, 0, 0), 0.06);
  fc.setPlayers();
  fc.calculate();
  EXPECT_FALSE(fc.mySelfIsAlive);
  EXPECT_FALSE(fc.isAlive);
}

TEST_F(FastICTest, RefreshMakesReadyForAnotherTarget) {
  standUpright();
  putMe(-4, 0);
  put(1, 5, -4, 0, NORTH).setVelocity(Vector(0.5f, 0, 0));
  FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  putMe(-2, 0);
  fc.refresh();
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 9999);
  EXPECT_EQ(fc.fastestTeammate.reachCycle, 9999);
  EXPECT_NE(fc.fastest.reachCycle, 9999);
  EXPECT_TRUE(fc.isAlive);
  for (const FastPlayer& candidate : fc.fastPlayers) {
    EXPECT_FALSE(candidate.calculated);
    EXPECT_EQ(candidate.reachCycle, 9999);
  }
  expectVector(fc.fastPlayers[4].playerPos, -4, 0, 0);
  expectVector(fc.fastPlayers[16].playerPos, -2, 0, 0);
  fc.setTarget(Vector(1, 0, 0), Vector(0, 0, 0), 0);
  fc.calculate();
  EXPECT_EQ(fc.mySelf.reachCycle, 4);  // 3 m
}

// Without refresh the candidates that had reached the first target are skipped.
TEST_F(FastICTest, WithoutRefreshReachedCandidatesAreSkipped) {
  put(1, 5, -4, 0, NORTH);
  FastIC fc = run(Vector(0, 0, 0), Vector(0, 0, 0), 0);
  fc.setTarget(Vector(1, 0, 0), Vector(0, 0, 0), 0);
  fc.calculate();
  EXPECT_FALSE(fc.isAlive);
  EXPECT_FALSE(fc.fastestOpponentIsAlive);
}

// --- The ball leaves the pitch -------------------------------------------------------------------

TEST_F(FastICTest, BallOutsideAtTheStartTakesTheFirstEntriesOfTheTable) {
  put(1, 9, 14.6, 0, NORTH);  // right at the ball, but not the first entry
  put(0, 9, 14.6, 0, NORTH);
  const FastIC fc = run(Vector(14.6f, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_TRUE(fc.isOut);
  EXPECT_TRUE(fc.isAlive);
  EXPECT_FALSE(fc.isInGoal);
  EXPECT_EQ(fc.fastestOpponent.human.getPlayerNumber(), 1);
  EXPECT_EQ(fc.fastestTeammate.human.getPlayerNumber(), 1);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 0);
  expectVector(fc.fastestOpponent.reachPoint, 14.6, 0, 0);
  // Both at (0, 0, 0), equally far: the teammate.
  EXPECT_EQ(fc.fastest.human.getTeamSide(), SIDE_LEFT);
}

TEST_F(FastICTest, TheNearerOfTheTwoFirstEntriesWinsABallThatIsOut) {
  put(1, 1, 10, 0, NORTH);
  put(0, 1, 9, 0, NORTH);
  EXPECT_EQ(run(Vector(14.6f, 0, 0), Vector(0, 0, 0), 0).fastest.human.getTeamSide(), SIDE_RIGHT);
  put(0, 1, 11, 0, NORTH);
  EXPECT_EQ(run(Vector(14.6f, 0, 0), Vector(0, 0, 0), 0).fastest.human.getTeamSide(), SIDE_LEFT);
}

// An entry whose distance is not a number is not nearer than 9999, so the next one counts; its own
// position stands in for its own entry in that test, and only there.
TEST_F(FastICTest, OwnPositionStandsInOnlyForTheTestOfNearness) {
  for (int i = 1; i <= 6; ++i) put(0, i, NAN, 0, NORTH);
  put(0, kMyNumber, -1, -1, NORTH);
  putMe(NAN, 0);
  const FastIC other = run(Vector(14.6f, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_EQ(other.fastestTeammate.human.getPlayerNumber(), 8);
  putMe(3, 0);
  const FastIC own = run(Vector(14.6f, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_EQ(own.fastestTeammate.human.getPlayerNumber(), kMyNumber);
  expectVector(own.fastestTeammate.playerPos, -1, -1, 0);
}

TEST_F(FastICTest, AResultFoundBeforeTheBallIsOutStays) {
  put(1, 5, 13.9, 0, NORTH);
  const FastIC fc = run(Vector(14, 0, 0), Vector(0.2f, 0, 0), 1);  // 14, 14.2, 14.4, 14.6
  EXPECT_TRUE(fc.isOut);
  EXPECT_EQ(fc.fastestOpponent.human.getPlayerNumber(), 5);
  EXPECT_EQ(fc.fastestOpponent.reachCycle, 1);
  EXPECT_EQ(fc.fastestTeammate.human.getPlayerNumber(), 1);
  EXPECT_EQ(fc.fastestTeammate.reachCycle, 3);
}

TEST_F(FastICTest, BoundsOfThePitch) {
  const auto isOut = [&](float x, float y) {
    return run(Vector(x, y, 0), Vector(0, 0, 0), 0).isOut;
  };
  EXPECT_FALSE(isOut(14.5f, 0));
  EXPECT_TRUE(isOut(14.51f, 0));
  EXPECT_FALSE(isOut(-14, 0));
  EXPECT_TRUE(isOut(-14.01f, 0));
  EXPECT_FALSE(isOut(0, 9.9f));
  EXPECT_TRUE(isOut(0, 9.91f));
  EXPECT_FALSE(isOut(0, -9.9f));
  EXPECT_TRUE(isOut(0, -9.91f));
}

TEST_F(FastICTest, OnlyTheOwnGoalMouthCountsAsGoal) {
  const auto isInGoal = [&](float x, float y) {
    return run(Vector(x, y, 0), Vector(0, 0, 0), 0).isInGoal;
  };
  EXPECT_TRUE(isInGoal(-14.01f, 0));
  EXPECT_TRUE(isInGoal(-14.01f, 1.19f));
  EXPECT_FALSE(isInGoal(-14.01f, 1.21f));
  EXPECT_TRUE(isInGoal(-14.01f, -1.19f));
  EXPECT_FALSE(isInGoal(-14.01f, -1.21f));
  EXPECT_FALSE(isInGoal(14.6f, 0));
}

TEST_F(FastICTest, AGoalieSeesTheBallOneStepEarlier) {
  const Vector from(-13.5f, 0, 0);
  const Vector vel(-0.3f, 0, 0);  // -13.8, then -14.1
  FastIC field = run(from, vel, 1);
  EXPECT_TRUE(field.isOut);
  EXPECT_EQ(field.fastestOpponent.reachCycle, 2);
  FastIC goalie(world.get());
  goalie.setTarget(from, vel, 1);
  goalie.setPlayers();
  goalie.amIGoalie = true;
  goalie.calculate();
  EXPECT_TRUE(goalie.isInGoal);
  EXPECT_EQ(goalie.fastestOpponent.reachCycle, 1);
}

TEST_F(FastICTest, ATargetThatIsNotANumberIsReachedByNobody) {
  put(1, 5, 0, 0, NORTH);
  const FastIC fc = run(Vector(NAN, 0, 0), Vector(0, 0, 0), 0);
  EXPECT_FALSE(fc.isAlive);
  EXPECT_FALSE(fc.isOut);
}

// --- Against a second calculation ----------------------------------------------------------------

// The same rules in another form: for every candidate alone, by search for its first step, in
// double precision, and then a choice among the results.
struct Search {
  struct Candidate {
    int row;
    int number;
    double x, y;
    double velX, velY;
    double facing;
    bool me;
    bool fallen;
  };
  struct Hit {
    int step;
    double cost;
    int order;
    int number;
  };

  static double ballAt(double start, double vel, double decay, int step) {
    double pos = start;
    for (int i = 0; i < step; ++i, vel *= decay) pos += vel;
    return pos;
  }

  static std::optional<Hit> first(const Candidate& c, int order, double bx, double by, double vx,
                                  double vy, double decay, bool own) {
    for (int step = 0; step <= 35; ++step) {
      const double x = ballAt(bx, vx, decay, step);
      const double y = ballAt(by, vy, decay, step);
      const double turn = std::fabs(std::atan2(y - c.y, x - c.x) * 180 / M_PI - c.facing / 2);
      double cost = step - turn / (own ? 60 : 50) - (c.fallen ? (own ? 12 : 3) : 0);
      cost = std::max(cost, 0.0);
      const double way = std::hypot(x - (c.x + step * c.velX), y - (c.y + step * c.velY));
      if (cost * (own ? static_cast<double>(0.9f) : 1.0) >= way) {
        return Hit{step, cost, order, c.number};
      }
    }
    return std::nullopt;
  }
};

TEST_F(FastICTest, AgreesWithASearchForEachPlayerAlone) {
  std::mt19937 random(20240311);
  const auto draw = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  int decided = 0;
  for (int scene = 0; scene < 500; ++scene) {
    const bool right = scene % 2 == 1;
    play(right ? SIDE_RIGHT : SIDE_LEFT);
    const int ownRow = right ? 1 : 0;
    std::vector<Search::Candidate> candidates;
    for (int row : {1 - ownRow, ownRow}) {
      for (int n = 1; n <= 11; ++n) {
        const Orientation facings[] = {NORTH, EAST, WEST, SOUTH};
        const double degrees[] = {0, 90, 180, -90};
        const int way = static_cast<int>(draw(0, 3.999));
        const double x = draw(-13, 13), y = draw(-9, 9), vx = draw(-0.2, 0.2), vy = draw(-0.2, 0.2);
        const bool fallen = draw(0, 1) < 0.2;
        const bool seen = draw(0, 1) < 0.7;
        Player& player = put(row, n, x, y, facings[way]);
        player.setVelocity(Vector(static_cast<float>(vx), static_cast<float>(vy), 0));
        player.headPosition.setZ(fallen ? 0.1f : 0.6f);
        if (!seen) player.headLastTimeSeen = kNow - 10;
        const bool me = row == ownRow && n == kMyNumber;
        if (row == ownRow && n == 1) continue;
        if (!seen && !me) continue;
        candidates.push_back({row, n, x, y, vx, vy, degrees[way], me, fallen});
        if (me) {
          const double mx = draw(-13, 13), my = draw(-9, 9);
          putMe(mx, my);
          candidates.back().x = mx;
          candidates.back().y = my;
          // Looks along +x: the bearing of the goal is its direction from here.
          const double bearing = std::atan2(-my, 15 - mx) * 180 / M_PI;
          candidates.back().facing = bearing > -1 ? 0 : -90;
        }
      }
    }
    const double bx = draw(-10, 10), by = draw(-7, 7), bvx = draw(-1, 1), bvy = draw(-1, 1);

    const Search::Candidate* best[3] = {};
    std::optional<Search::Hit> hit[3];  // me, teammate, opponent
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      const Search::Candidate& c = candidates[i];
      const bool own = c.row == ownRow;
      const auto found = Search::first(c, static_cast<int>(i), bx, by, bvx, bvy, 0.06, own);
      const int kind = c.me ? 0 : own ? 1 : 2;
      if (found && (!hit[kind] || found->step < hit[kind]->step)) {
        hit[kind] = found;
        best[kind] = &c;
      }
    }
    FastIC fc = run(Vector(static_cast<float>(bx), static_cast<float>(by), 0),
                    Vector(static_cast<float>(bvx), static_cast<float>(bvy), 0), 0.06);
    ASSERT_FALSE(fc.isOut);
    ASSERT_EQ(fc.mySelfIsAlive, hit[0].has_value()) << scene;
    ASSERT_EQ(fc.fastestOpponentIsAlive, hit[2].has_value()) << scene;
    ASSERT_EQ(fc.fastestTeammateIsAlive, hit[0].has_value() || hit[1].has_value()) << scene;
    if (hit[0]) {
      EXPECT_EQ(fc.mySelf.reachCycle, static_cast<int>(hit[0]->cost)) << scene;
    }
    if (hit[2]) {
      EXPECT_EQ(fc.fastestOpponent.human.getPlayerNumber(), hit[2]->number) << scene;
      EXPECT_EQ(fc.fastestOpponent.reachCycle, static_cast<int>(hit[2]->cost)) << scene;
      EXPECT_NEAR(fc.fastestOpponent.reachPoint.getX(), Search::ballAt(bx, bvx, 0.06, hit[2]->step),
                  1e-4);
      EXPECT_NEAR(fc.fastestOpponent.playerPos.getX(), best[2]->x + hit[2]->step * best[2]->velX,
                  1e-4);
    }
    std::optional<Search::Hit> team = hit[1];
    if (hit[0] && (!team || static_cast<int>(hit[0]->cost) + 1 < static_cast<int>(team->cost))) {
      team = hit[0];
    }
    if (team) {
      EXPECT_EQ(fc.fastestTeammate.human.getPlayerNumber(), team->number) << scene;
    }
    if (team && hit[2]) {
      ++decided;
      const bool opponent = static_cast<int>(hit[2]->cost) - 1 <= static_cast<int>(team->cost);
      const int winner = opponent ? hit[2]->number : team->number;
      EXPECT_EQ(fc.fastest.human.getPlayerNumber(), winner) << scene;
      EXPECT_EQ(fc.fastest.human.getTeamSide() == (right ? SIDE_LEFT : SIDE_RIGHT), opponent);
    }
  }
  EXPECT_GT(decided, 400);
}

}  // namespace
