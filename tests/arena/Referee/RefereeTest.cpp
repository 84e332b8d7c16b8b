// Clock, halves, modes and their transitions, on scripted robots.
#include "Referee/Referee.h"

#include <gtest/gtest.h>

#include "arena/Support/RefereeTest.h"

namespace arena {
namespace {

// ------------------------------------------------------------------------------ clock and halves

TEST_F(RefereeTest, ClockStandsBeforeKickOffAndAfterTheGame) {
  run(1);
  EXPECT_EQ(referee.game().time, 0.0f);
  start(PlayMode::GameOver);
  run(1);
  EXPECT_EQ(referee.game().time, 0.0f);
}

TEST_F(RefereeTest, ClockRunsInEveryOtherModeAsASumOfSinglePrecision) {
  for (std::size_t i = 0; i < kPlayModeCount; ++i) {
    const auto mode = static_cast<PlayMode>(i);
    if (stopsClock(mode)) continue;
    referee.setTime(0);
    start(mode);
    step();
    EXPECT_EQ(referee.game().time, 0.02f) << nameOf(mode);
  }
  referee.setTime(0);
  start(PlayMode::OffsideLeft);
  float sum = 0;
  for (int i = 0; i < 5000; ++i) sum += 0.02f;
  step(5000);
  EXPECT_EQ(referee.game().time, sum);
  EXPECT_LT(referee.game().time, 100.0f);
}

TEST_F(RefereeTest, FirstHalfEndsInBeforeKickOffAndTheClockGoesOn) {
  start(PlayMode::CornerKickLeft);
  referee.setTime(299.99f);
  step();
  EXPECT_EQ(mode(), PlayMode::BeforeKickOff);
  EXPECT_EQ(referee.game().half, 2);
  EXPECT_GE(referee.game().time, 300.0f);
  start(PlayMode::PlayOn);
  step();
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  EXPECT_GT(referee.game().time, 300.0f);
}

TEST_F(RefereeTest, SecondHalfEndsTheGame) {
  referee.setTime(300);
  step();
  referee.setTime(599.9f);
  start(PlayMode::GoalLeft);
  step();
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
  referee.setTime(599.99f);
  step();
  EXPECT_EQ(mode(), PlayMode::GameOver);
  step(10);
  EXPECT_EQ(mode(), PlayMode::GameOver);
}

TEST(RefereeOptionsTest, HalfTimeCanBeChosen) {
  RefereeFixture match({.halfTime = 10.0f});
  match.addPlayers();
  match.start(PlayMode::OffsideLeft);
  match.run(9.9);
  EXPECT_EQ(match.referee.game().half, 1);
  match.run(0.2);
  EXPECT_EQ(match.referee.game().half, 2);
}

// ------------------------------------------------------------------------------ before kick-off

TEST_F(RefereeTest, BeforeKickOffHoldsTheBallAtTheMiddle) {
  world.setBallAt(3, 2, 1);
  world.ballView.velocity = {1, 2, 3};
  step();
  expectBall(0, 0);
  EXPECT_NEAR(world.ballView.position.z(), 0.042, 1e-12);
  EXPECT_TRUE(world.ballView.velocity.isZero());
}

TEST_F(RefereeTest, BeforeKickOffMovesPlayersIntoTheirHalf) {
  world.put(left2, 1, 6);
  world.put(right2, 0, 5);
  world.addCollider(left3, Body::RightLowerArm, {0.1, 0.3, 0}, {0.03, 0.03, 0.03});
  world.put(left3, -0.29, -6);  // the forearm's centre is across the line
  step();
  EXPECT_NEAR(world.place(left2).x(), -2.5, 1e-9);
  EXPECT_NEAR(world.place(left2).y(), 6, 1e-9);
  EXPECT_NEAR(world.place(right2).x(), 2.5, 1e-9);
  EXPECT_NEAR(world.place(left3).x(), -2.5, 1e-9);
}

TEST_F(RefereeTest, BeforeKickOffEnforcesNothingWithoutAgents) {
  world.agents = 0;
  world.setBallAt(3, 2);
  world.put(left2, 1, 6);
  step();
  expectBall(3, 2);
  EXPECT_TRUE(world.moves.empty());
}

TEST_F(RefereeTest, NobodyKicksOffByHimself) {
  run(60);
  EXPECT_EQ(mode(), PlayMode::BeforeKickOff);
}

TEST(RefereeOptionsTest, AutomaticKickOffComesAfterThirtySeconds) {
  RefereeFixture match({.autoKickOff = true});
  match.world.agents = 0;
  match.run(40);
  match.addPlayers();
  match.run(29.9);
  EXPECT_EQ(match.mode(), PlayMode::BeforeKickOff);
  match.run(0.2);
  EXPECT_EQ(match.mode(), PlayMode::KickOffLeft);
}

TEST_F(RefereeTest, UnnamedKickOffGoesLeftFirstAndToTheOtherSideInTheSecondHalf) {
  referee.kickOff(Side::None);
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
  referee.setTime(300);
  step();
  EXPECT_EQ(mode(), PlayMode::BeforeKickOff);
  referee.kickOff(Side::None);
  EXPECT_EQ(mode(), PlayMode::KickOffRight);
}

TEST_F(RefereeTest, NamedKickOffIsNotRememberedForTheSecondHalf) {
  referee.kickOff(Side::Right);
  EXPECT_EQ(mode(), PlayMode::KickOffRight);
  referee.setTime(300);
  step();
  referee.kickOff(Side::None);
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
}

TEST(RefereeOptionsTest, CoinTossDrawsBothSides) {
  int left = 0;
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    RefereeFixture match({.coinToss = true, .seed = seed});
    match.referee.kickOff(Side::None);
    left += match.mode() == PlayMode::KickOffLeft;
  }
  EXPECT_GT(left, 25);
  EXPECT_LT(left, 75);
}

class RefereeChangedSidesTest : public testing::Test, public RefereeFixture {
 protected:
  RefereeChangedSidesTest() : RefereeFixture({.changeSides = true}) {
    addPlayers();
    referee.setTeamName(Side::Left, "Alpha");
    referee.setTeamName(Side::Right, "Beta");
  }
  void endFirstHalf() {
    referee.setTime(299.99f);
    if (stopsClock(mode())) start(PlayMode::PlayOn);
    step();
    ASSERT_EQ(referee.game().half, 2);
  }
};

TEST_F(RefereeChangedSidesTest, TeamsTakeTheirNamesScoresAndNumbersAlong) {
  referee.setScore(2, 1);
  endFirstHalf();
  EXPECT_TRUE(referee.game().sidesChanged);
  EXPECT_EQ(referee.game().score, (std::array<int, 2>{1, 2}));
  EXPECT_EQ(referee.game().teamNames, (std::array<std::string, 2>{"Beta", "Alpha"}));
  EXPECT_EQ(world.find(Side::Right, 3)->handle, left3);
  EXPECT_EQ(world.find(Side::Left, 2)->handle, right2);
  EXPECT_EQ(world.find(Side::Left, 3), nullptr);
}

TEST_F(RefereeChangedSidesTest, EverybodyIsInHisNewHalfAtOnce) {
  endFirstHalf();
  EXPECT_NEAR(world.place(left2).x(), 2.5, 1e-9);
  EXPECT_NEAR(world.place(right2).x(), -2.5, 1e-9);
}

TEST_F(RefereeChangedSidesTest, UnnamedKickOffStaysOnItsSide) {
  referee.kickOff(Side::None);
  ASSERT_EQ(mode(), PlayMode::KickOffLeft);
  endFirstHalf();
  referee.kickOff(Side::None);
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
}

TEST_F(RefereeChangedSidesTest, TheLastToucherGoesWithHisTeam) {
  start(PlayMode::PlayOn);
  touch(left2);
  endFirstHalf();
  EXPECT_EQ(referee.lastTouch().side, Side::Right);
  start(PlayMode::PlayOn);
  world.setBallAt(3, 10.1);
  step();
  EXPECT_EQ(mode(), PlayMode::KickInLeft);
}

TEST_F(RefereeChangedSidesTest, TheWaitForAnotherPassModeGoesWithTheTeam) {
  start(PlayMode::PassLeft);
  referee.setTime(298);
  step();
  endFirstHalf();
  start(PlayMode::PlayOn);
  world.put(left2, 0.3, 0);
  referee.requestPass(left2);  // two seconds after his last pass mode
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  world.put(left2, 5, 5);
  world.put(right2, -0.3, 0);
  referee.requestPass(right2);
  EXPECT_EQ(mode(), PlayMode::PassLeft);
}

TEST_F(RefereeTest, SidesAreNotChangedUnlessAskedFor) {
  referee.setScore(2, 1);
  referee.setTime(300);
  step();
  ASSERT_EQ(referee.game().half, 2);
  EXPECT_FALSE(referee.game().sidesChanged);
  EXPECT_EQ(referee.game().score, (std::array<int, 2>{2, 1}));
  EXPECT_EQ(world.find(Side::Left, 3)->handle, left3);
}

TEST_F(RefereeTest, BeamIsAllowedBeforeKickOffAndAfterGoals) {
  for (std::size_t i = 0; i < kPlayModeCount; ++i) {
    const auto mode = static_cast<PlayMode>(i);
    start(mode);
    const bool allowed = mode == PlayMode::BeforeKickOff || mode == PlayMode::GoalLeft ||
                         mode == PlayMode::GoalRight;
    EXPECT_EQ(referee.beamAllowed(), allowed) << nameOf(mode);
  }
}

// ------------------------------------------------------------------------------ kick-off

TEST_F(RefereeTest, KickOffKeepsTheOtherTeamInItsHalfAndOutOfTheCircle) {
  world.put(right2, 1.5, 1);
  const RobotHandle right3 = world.add(Side::Right, 3, -1, 5);
  start(PlayMode::KickOffLeft);
  step();
  EXPECT_NEAR(world.place(right2).x(), 2.5, 1e-9);
  EXPECT_NEAR(world.place(right2).y(), 1, 1e-9);
  EXPECT_NEAR(world.place(right3).x(), 2.5, 1e-9);
}

TEST_F(RefereeTest, KickOffLetsTheKickingTeamIntoTheCircle) {
  world.put(left2, 0.5, 0.5);
  world.put(left3, 2.5, -3);
  start(PlayMode::KickOffLeft);
  step();
  EXPECT_NEAR(world.place(left2).x(), 0.5, 1e-9);
  EXPECT_NEAR(world.place(left3).x(), -2.5, 1e-9);
}

TEST_F(RefereeTest, KickOffIsTakenByTheFirstTouchOfAnybody) {
  for (const RobotHandle robot : {left2, right2}) {
    start(PlayMode::KickOffLeft);
    step(3);
    EXPECT_EQ(mode(), PlayMode::KickOffLeft);
    touch(robot);
    EXPECT_EQ(mode(), PlayMode::PlayOn);
    start(PlayMode::OffsideLeft);
    step();
  }
}

TEST_F(RefereeTest, TouchesBeforeTheKickOffDoNotTakeIt) {
  start(PlayMode::OffsideLeft);
  touch(left2);
  start(PlayMode::KickOffLeft);
  step(5);
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
}

TEST_F(RefereeTest, UntouchedKickOffIsDroppedAfterFifteenSeconds) {
  start(PlayMode::KickOffLeft);
  run(14.9);
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
  world.put(left2, 0.5, 0.5);
  run(0.2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  EXPECT_NEAR(world.place(left2).x(), -2.5, 1e-9);  // both teams are cleared
}

TEST_F(RefereeTest, KickOffTeamCannotScoreFromTheCircle) {
  start(PlayMode::KickOffLeft);
  touch(left2);
  run(0.5);
  world.setBallAt(1.9, 0);
  touch(left3);  // another own player, but not yet 2 m from the middle
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalKickRight);
  EXPECT_EQ(referee.game().score[0], 0);
}

TEST_F(RefereeTest, KickOffTeamMayScoreAfterATouchFarFromTheMiddle) {
  start(PlayMode::KickOffLeft);
  touch(left2);
  run(0.5);
  world.setBallAt(2.1, 0);
  touch(left3);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(RefereeTest, KickOffTeamMayScoreAfterAnOpponentsTouch) {
  start(PlayMode::KickOffLeft);
  touch(left2);
  run(0.5);
  touch(right2);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(RefereeTest, TheOtherTeamMayScoreFromTheKickOff) {
  start(PlayMode::KickOffLeft);
  touch(left2);
  run(0.5);
  touch(right2);
  hitGoalOf(Side::Left);
  EXPECT_EQ(mode(), PlayMode::GoalRight);
}

TEST_F(RefereeTest, KickOffTakerMustNotTouchTwice) {
  start(PlayMode::KickOffLeft);
  touch(left2);
  run(0.5);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::FreeKickRight);
}

TEST(RefereeFewAgentsTest, TwoAgentsHaveNoKickOffRestrictions) {
  RefereeFixture match;
  const RobotHandle left = match.world.add(Side::Left, 2, -8, 6);
  match.world.add(Side::Right, 2, 8, 6);
  match.start(PlayMode::KickOffLeft);
  match.touch(left);
  match.run(1);
  match.touch(left);
  EXPECT_EQ(match.mode(), PlayMode::PlayOn);
  match.hitGoalOf(Side::Right);
  EXPECT_EQ(match.mode(), PlayMode::GoalLeft);
}

// ------------------------------------------------------------------------------ ball out

TEST_F(RefereeTest, BallIsOutOnlyWhenAllOfItIsAcross) {
  start(PlayMode::PlayOn);
  kickTo(left2, 3, 10.042);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  kickTo(left2, 3, 10.044);
  EXPECT_EQ(mode(), PlayMode::KickInRight);
  start(PlayMode::PlayOn);
  kickTo(left2, -15.042, 4);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  kickTo(left2, -15.044, 4);
  EXPECT_EQ(mode(), PlayMode::CornerKickRight);
}

TEST_F(RefereeTest, OverTheSideLineItIsAKickInForTheOpponents) {
  start(PlayMode::PlayOn);
  kickTo(right2, 3, -10.1);
  EXPECT_EQ(mode(), PlayMode::KickInLeft);
}

TEST_F(RefereeTest, OverTheGoalLinesItIsAGoalKickOrACorner) {
  struct Case {
    RobotHandle toucher;
    double x;
    PlayMode mode;
  };
  const Case cases[] = {{left2, 15.1, PlayMode::GoalKickRight},
                        {left2, -15.1, PlayMode::CornerKickRight},
                        {right2, -15.1, PlayMode::GoalKickLeft},
                        {right2, 15.1, PlayMode::CornerKickLeft}};
  for (const Case& c : cases) {
    start(PlayMode::PlayOn);
    kickTo(c.toucher, c.x, 5);
    EXPECT_EQ(mode(), c.mode);
  }
}

TEST_F(RefereeTest, OverTheCornerTheGoalLineDecides) {
  start(PlayMode::PlayOn);
  kickTo(left2, 15.01, 10.1);
  EXPECT_EQ(mode(), PlayMode::GoalKickRight);
}

TEST_F(RefereeTest, WithoutATouchNothingHappensToABallThatGoesOut) {
  start(PlayMode::PlayOn);
  world.setBallAt(3, 10.5);
  run(1);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(RefereeTest, RobotsWithoutTeamTouchNothing) {
  const RobotHandle stranger = world.add(Side::None, 0, 0, 3);
  start(PlayMode::PlayOn);
  touch(stranger);
  EXPECT_EQ(referee.lastTouch().robot, kNoRobot);
}

// ------------------------------------------------------------------------------ goals

TEST_F(RefereeTest, BallAtTheSensorIsAGoal) {
  start(PlayMode::PlayOn);
  touch(left2);
  hitGoalOf(Side::Right);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
  EXPECT_EQ(referee.game().score[0], 1);
  EXPECT_EQ(referee.game().score[1], 0);
  start(PlayMode::PlayOn);
  hitGoalOf(Side::Left);
  EXPECT_EQ(mode(), PlayMode::GoalRight);
  EXPECT_EQ(referee.game().score[1], 1);
}

TEST_F(RefereeTest, GoalEventNamesTheScorer) {
  start(PlayMode::PlayOn);
  touch(left3);
  world.setBallAt(15.01, 0);
  world.sensor[1] = true;
  referee.step();
  ASSERT_EQ(referee.goals().size(), 1u);
  EXPECT_EQ(referee.goals()[0].side, Side::Left);
  EXPECT_EQ(referee.goals()[0].scorerSide, Side::Left);
  EXPECT_EQ(referee.goals()[0].scorer, 3);
  EXPECT_EQ(referee.goals()[0].time, referee.game().time);
  world.clearContacts();
  referee.step();
  EXPECT_TRUE(referee.goals().empty());
}

TEST_F(RefereeTest, FastBallsAreFollowedBackToTheLine) {
  start(PlayMode::PlayOn);
  touch(left2);
  world.setBallAt(14.9, 0.5);
  step();
  world.setBallAt(15.2, 0.9, 0.5);
  world.ballView.velocity = {10, 5, 0};
  step();
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
}

TEST_F(RefereeTest, FastBallsBesideOrAboveTheMouthAreNoGoal) {
  struct Case {
    double y, z;
    Eigen::Vector3d velocity;
  };
  const Case cases[] = {{0.9, 0.5, {10, -10, 0}},  // crossed the line at y 1.1
                        {0.9, 0.75, {10, 0, -5}},  // crossed it at z 0.85
                        {0.9, 0.5, {-1, 0, 0}}};   // comes from behind
  for (const Case& c : cases) {
    start(PlayMode::PlayOn);
    world.setBallAt(14.9, 0.5);
    touch(left2);
    world.setBallAt(15.2, c.y, c.z);
    world.ballView.velocity = c.velocity;
    step();
    EXPECT_EQ(mode(), PlayMode::GoalKickRight);
  }
}

// As in a recording of the league's server: its way back meets the line at y 1.016, between the
// posts, but 4.2 cm behind it at y 1.052.
TEST_F(RefereeTest, BallThrownOutwardsByThePostIsNoGoal) {
  start(PlayMode::PlayOn);
  world.setBallAt(14.8573, 1.07, 0.339);
  step();
  world.setBallAt(15.0976, 1.0986, 0.332);
  world.ballView.velocity = {1.7, 1.43, -0.17};
  step();
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(RefereeTest, BallLongBehindTheLineIsNoGoal) {
  start(PlayMode::PlayOn);
  world.setBallAt(15.2, 0.5);
  run(1.1);
  world.ballView.velocity = {5, 0, 0};
  step();
  EXPECT_EQ(mode(), PlayMode::PlayOn);  // nobody has touched it
}

TEST_F(RefereeTest, AfterAGoalTheBallIsLeftAloneForThreeSeconds) {
  start(PlayMode::PlayOn);
  touch(left2);
  hitGoalOf(Side::Right);
  run(2.9);
  EXPECT_EQ(mode(), PlayMode::GoalLeft);
  expectBall(15.01, 0);
  run(0.2);
  EXPECT_EQ(mode(), PlayMode::KickOffRight);
  expectBall(0, 0);
}

// Times as in a recording of the league's server: mode entered at 20.00, kick-off at 23.00.
TEST_F(RefereeTest, GoalPauseEndsInTheCycleOfTheLeaguesServer) {
  start(PlayMode::OffsideLeft);
  step(1000);
  start(PlayMode::GoalRight);
  step(149);
  EXPECT_EQ(mode(), PlayMode::GoalRight);
  step();
  EXPECT_EQ(mode(), PlayMode::KickOffLeft);
}

TEST_F(RefereeTest, AfterAGoalPlayersAreOrderedAsForTheKickOff) {
  world.put(right2, -1.65, -0.95);
  world.put(left2, 1.7, 0.17);
  const RobotHandle right3 = world.add(Side::Right, 3, 1.2, 0.5);
  start(PlayMode::GoalRight);
  step();
  EXPECT_NEAR(world.place(right2).x(), 2.5, 1e-9);
  EXPECT_NEAR(world.place(right2).y(), -0.95, 1e-9);
  EXPECT_NEAR(world.place(left2).x(), 1.7, 1e-9);  // kicks off next, wholly inside the circle
  EXPECT_NEAR(world.place(right3).x(), 2.5, 1e-9);
}

TEST_F(RefereeTest, TheTrainersGoalModeDoesNotCount) {
  start(PlayMode::GoalRight);
  step();
  EXPECT_EQ(referee.game().score[1], 0);
}

// ------------------------------------------------------------------------------ set plays

TEST_F(RefereeTest, SetPlaysLetTheBallRollForOneSecond) {
  start(PlayMode::PlayOn);
  world.put(left2, 3.2, 9.9);
  kickTo(left3, 3, 10.1);
  ASSERT_EQ(mode(), PlayMode::KickInRight);
  world.setBallAt(4, 11);
  world.moves.clear();
  run(0.9);
  expectBall(4, 11);
  EXPECT_TRUE(world.moves.empty());
  run(0.2);
  expectBall(3, 9.958);
  EXPECT_TRUE(world.ballView.velocity.isZero());
  EXPECT_NEAR(world.place(left2).x(), 0.5, 1e-9);
}

// As in the recordings: entered at 12.00, placed in the cycle of 13.00.
TEST_F(RefereeTest, BallIsPlacedInTheCycleOfTheLeaguesServer) {
  start(PlayMode::OffsideLeft);
  world.setBallAt(2.4177, -1.6707);
  step(600);
  start(PlayMode::KickInLeft);
  world.setBallAt(2.44, -1.70);
  step(49);
  expectBall(2.44, -1.70);
  step();
  expectBall(2.4177, -1.6707);
}

// The league's server does not put the ball to a line, a corner or a goal area on the trainer's
// word, but where it was when the mode was set.
TEST_F(RefereeTest, SetPlaysOfTheTrainerAreTakenWhereTheBallIs) {
  for (const PlayMode mode : {PlayMode::KickInLeft, PlayMode::FreeKickLeft}) {
    start(PlayMode::OffsideLeft);
    world.setBallAt(2.4, -1.6);
    step();
    start(mode);
    world.setBallAt(5, 5);
    run(1.1);
    expectBall(2.4, -1.6);
  }
}

// Nor does it hold the ball there in a corner or goal kick: it puts it back when it is touched.
TEST_F(RefereeTest, BallOfTheTrainersCornerIsPutBackWhenTouched) {
  start(PlayMode::OffsideLeft);
  world.setBallAt(2.4, -1.6);
  step();
  start(PlayMode::CornerKickLeft);
  world.put(left2, 2.1, -1.6);
  world.setBallAt(5, 5);
  run(1.1);
  expectBall(5, 5);
  EXPECT_NEAR(world.place(left2).x(), 2.1, 1e-9);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  expectBall(2.4, -1.6);
  EXPECT_NEAR(world.place(left2).x(), 1.9, 1e-9);
}

TEST_F(RefereeTest, BallOfTheTrainersGoalKickIsPutBackOnce) {
  start(PlayMode::OffsideLeft);
  world.setBallAt(-14.2, 0.5);
  step();
  start(PlayMode::GoalKickLeft);
  world.setBallAt(-13.6, 2);
  run(1.1);
  expectBall(-13.6, 2);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::GoalKickLeft);
  expectBall(-14.2, 0.5);
  world.setBallAt(-13.7, 1);
  touch(left2);
  expectBall(-13.7, 1);
}

TEST_F(RefereeTest, TrainersGoalKickOutsideTheAreaEndsWithTheTouch) {
  start(PlayMode::OffsideLeft);
  world.setBallAt(0, 0);
  step();
  start(PlayMode::GoalKickLeft);
  run(1.1);
  world.setBallAt(-13.5, 0);
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  expectBall(0, 0);
}

TEST_F(RefereeTest, BallStaysPinnedUntilTheKickIsTaken) {
  start(PlayMode::PlayOn);
  kickTo(left2, 3, 10.1);
  run(5);
  world.setBallAt(6, 6);
  step();
  expectBall(3, 9.958);
}

TEST_F(RefereeTest, PlacesOfTheSetPlays) {
  struct Case {
    RobotHandle toucher;
    double x, y;
    double placeX, placeY;
  };
  const Case cases[] = {{left2, 3, 10.1, 3, 9.958},        {left2, -4, -10.1, -4, -9.958},
                        {right2, 15.1, 4, 14.958, 5.483},  {right2, 15.1, -4, 14.958, -5.483},
                        {left2, -15.1, 4, -14.958, 5.483}, {left2, 15.1, 4, 14, 0},
                        {right2, -15.1, -4, -14, 0}};
  for (const Case& c : cases) {
    start(PlayMode::PlayOn);
    kickTo(c.toucher, c.x, c.y);
    run(1.1);
    expectBall(c.placeX, c.placeY);
  }
}

TEST_F(RefereeTest, FreeKicksInAPenaltyAreaAreTakenAtItsOuterCorner) {
  struct Case {
    double x, y, placeX, placeY;
  };
  const Case cases[] = {{-14, 1, -13.2, 3}, {-14, -1, -13.2, -3}, {14.5, -2.9, 13.2, -3},
                        {13.3, 0, 13.2, 3}, {13.1, 1, 13.1, 1},   {14, 3.1, 14, 3.1}};
  for (const Case& c : cases) {
    for (const PlayMode mode : {PlayMode::FreeKickRight, PlayMode::DirectFreeKickLeft}) {
      start(PlayMode::OffsideLeft);
      world.setBallAt(c.x, c.y);
      step();
      start(mode);
      run(1.1);
      expectBall(c.placeX, c.placeY);
    }
  }
}

TEST_F(RefereeTest, OpponentsAreKeptTwoMetresAwayInEveryCycle) {
  for (const PlayMode mode : {PlayMode::KickInLeft, PlayMode::CornerKickLeft,
                              PlayMode::FreeKickLeft, PlayMode::DirectFreeKickLeft}) {
    start(PlayMode::OffsideLeft);
    world.setBallAt(0, 5);
    step();
    start(mode);
    world.put(right2, 1, 5);
    run(1.1);
    EXPECT_NEAR(world.place(right2).x(), 2.5, 1e-9) << nameOf(mode);
    world.put(right2, 1, 5);
    step();
    EXPECT_NEAR(world.place(right2).x(), 2.5, 1e-9) << nameOf(mode);
  }
}

TEST_F(RefereeTest, KickersAreMovedOffTheBallOnce) {
  start(PlayMode::OffsideLeft);
  world.setBallAt(0, 5);
  step();
  start(PlayMode::KickInLeft);
  world.put(left2, -0.3, 5);
  run(1.1);
  EXPECT_NEAR(world.place(left2).x(), -0.5, 1e-9);
  world.put(left2, -0.3, 5);
  run(1);
  EXPECT_NEAR(world.place(left2).x(), -0.3, 1e-9);
}

TEST_F(RefereeTest, TouchesUpToThreeCentisecondsAfterThePauseDoNotCount) {
  start(PlayMode::PlayOn);
  kickTo(left2, 3, 10.1);
  const float entered = referee.game().modeStart;
  while (referee.game().time - entered < 1.01f) touch(right2);
  EXPECT_EQ(mode(), PlayMode::KickInRight);
  step();
  EXPECT_EQ(mode(), PlayMode::KickInRight);
  touch(right2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(RefereeTest, AnybodyMayTakeASetPlayAndTheBallKeepsItsSpeed) {
  start(PlayMode::PlayOn);
  kickTo(left2, 3, 10.1);
  run(2);
  world.ballView.velocity = {0, -3, 0};
  touch(left2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  EXPECT_EQ(world.ballView.velocity.y(), -3);
}

TEST_F(RefereeTest, SetPlaysTimeOutFifteenSecondsAfterTheModeChange) {
  start(PlayMode::PlayOn);
  kickTo(left2, 3, 10.1);
  run(14.9);
  EXPECT_EQ(mode(), PlayMode::KickInRight);
  world.put(left2, 2, 9);
  world.put(right2, 3.5, 9);
  run(0.2);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  expectBall(3, 9.958);
  EXPECT_NEAR(world.place(left2).x(), 0.5, 1e-9);
  EXPECT_NEAR(world.place(right2).x(), 5.5, 1e-9);
}

TEST_F(RefereeTest, GoalKickKeepsOpponentsOutOfTheArea) {
  start(PlayMode::PlayOn);
  kickTo(right2, -15.1, 5);
  ASSERT_EQ(mode(), PlayMode::GoalKickLeft);
  world.put(right2, -14, 2);
  const RobotHandle nearBall = world.add(Side::Right, 3, -12.9, 0);
  run(1.1);
  EXPECT_NEAR(world.place(right2).x(), -10.7, 1e-9);
  EXPECT_NEAR(world.place(nearBall).x(), -12.9, 1e-9);  // outside the area: may stay
}

TEST_F(RefereeTest, GoalKickEndsOnlyWhenTheBallLeavesTheArea) {
  start(PlayMode::PlayOn);
  kickTo(right2, -15.1, 5);
  run(2);
  touch(left2);
  world.setBallAt(-13.5, 1);
  touch(left2);
  run(1);
  touch(left3);
  EXPECT_EQ(mode(), PlayMode::GoalKickLeft);
  expectBall(-13.5, 1);  // no longer pinned
  world.setBallAt(-13.5, 3.1);
  step();
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  touch(left3);  // the last toucher is the taker, in the contact of the kick or later
  run(0.5);
  touch(left3);
  EXPECT_EQ(mode(), PlayMode::FreeKickRight);
}

TEST_F(RefereeTest, GoalKickThatNobodyTakesEndsAtTheUpperCorner) {
  start(PlayMode::PlayOn);
  kickTo(left2, 15.1, -5);
  run(15.1);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
  expectBall(13.2, 3);
}

TEST_F(RefereeTest, DropBallKeepsItsPlaceWithinTheSideLines) {
  start(PlayMode::PlayOn);
  world.setBallAt(5, 11);
  world.ballView.velocity = {2, 0, 0};
  referee.dropBall();
  expectBall(5, 9.958);
  world.setBallAt(5, -9.99);
  referee.dropBall();
  expectBall(5, -9.99);
  world.setBallAt(-13.5, -1);
  start(PlayMode::FreeKickLeft);
  referee.dropBall();
  expectBall(-13.2, -3);
  EXPECT_EQ(mode(), PlayMode::PlayOn);
}

TEST_F(RefereeTest, DroppedBallFallsFromItsHeight) {
  start(PlayMode::PlayOn);
  world.setBallAt(5, 1, 0.7);
  world.ballView.velocity = {2, 0, 1};
  referee.dropBall();
  EXPECT_EQ(world.ballView.position.z(), 0.7);
  EXPECT_TRUE(world.ballView.velocity.isZero());
}

TEST_F(RefereeTest, OffsideAndGameOverDoNothing) {
  for (const PlayMode mode : {PlayMode::OffsideLeft, PlayMode::OffsideRight, PlayMode::GameOver}) {
    world.setBallAt(3, 11);
    start(mode);
    world.put(right2, 3, 10);
    touch(left2);
    run(20);
    EXPECT_EQ(this->mode(), mode);
    expectBall(3, 11);
  }
  EXPECT_TRUE(world.moves.empty());
}

}  // namespace
}  // namespace arena
