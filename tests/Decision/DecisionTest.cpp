#include "Decision/Decision.h"

#include <cmath>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "AdvancedAction/Block.h"
#include "AdvancedAction/Decide.h"
#include "AdvancedAction/GoToGoal.h"
#include "AdvancedAction/GoToKick.h"
#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/Dive.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/Kick.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "Utilities/Config.h"
#include "support/TestPlayer.h"

namespace {

using support::TestPlayer;

void expectAbout(Vector actual, double x, double y, const std::string& what = "") {
  EXPECT_NEAR(actual.getX(), x, 2e-3) << what;
  EXPECT_NEAR(actual.getY(), y, 2e-3) << what;
}

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

constexpr ActionType kIdle = TestPlayer::kIdle;

void arm(TestPlayer& p) {
  p.arm();
  Block::doBlockCD = 100;
  Block::blockCountDown = 100;
}

bool wentByDecide(TestPlayer& p) {
  return p.askedForDecide();
}

bool dribbled(TestPlayer& p) {
  return p.player.walk->type == AT_OMNIWALK && p.player.walk->_omniWalk->actionType == 1;
}

bool rolePlayed() {
  return Block::doBlockCD == 99 && Block::blockCountDown == 99;
}

bool roleRested() {
  return Block::doBlockCD == 100 && Block::blockCountDown == 100;
}

// --- Construction --------------------------------------------------------------------------------

TEST(DecisionConstructionTest, StartsUprightWithoutSituation) {
  const Decision decision;
  EXPECT_EQ(decision.decisionstate, 1);
  EXPECT_EQ(decision.beamstate, 1);
  EXPECT_TRUE(decision.checkstandup);
  EXPECT_TRUE(decision.checkstandupGoalie);
  EXPECT_FALSE(decision.diveFreeze);
  EXPECT_FALSE(decision.KO);
  EXPECT_EQ(decision.modestate, 0);
  EXPECT_EQ(decision.standstate, 0);
  EXPECT_EQ(decision.standstateGoalie, 0);
  EXPECT_EQ(decision.beamCount, 0);
  EXPECT_EQ(decision.waitValue, 0);
  EXPECT_EQ(decision.waitValueG, 0);
  EXPECT_EQ(decision.j, 0);
  EXPECT_FALSE(decision.a);
  EXPECT_EQ(decision.ballPos, Vector(0, 0, 0));
}

// --- The situation table -------------------------------------------------------------------------

struct ModeRow {
  const char* mode;
  int left;  // the situation of a team on the left, 4 where the mode leaves play on as it was
  int right;
};
constexpr ModeRow kModes[] = {
    {"BeforeKickOff", 2, 2},
    {"KickOff_Left", 3, 4},
    {"KickOff_Right", 4, 3},
    {"PlayOn", 4, 4},
    {"KickIn_Left", 5, 4},
    {"KickIn_Right", 4, 5},
    {"corner_kick_left", 6, 4},
    {"corner_kick_right", 4, 6},
    {"goal_kick_left", 7, 4},
    {"goal_kick_right", 4, 7},
    {"offside_left", 8, 4},
    {"offside_right", 4, 8},
    {"quit", 9, 9},
    {"Goal_Left", 10, 11},
    {"Goal_Right", 11, 10},
    {"free_kick_left", 12, 4},
    {"free_kick_right", 4, 12},
    {"no such mode", 13, 13},
};

// Where each number stands without the ball, for a ball at (2, 1) and itself at (-10, 0); worked
// out by hand from the positioning rules.
constexpr double kPlaces[12][2] = {
    {},         {},        {-13.6, 0},      {-13.6, 0},       {-11.6, 0},
    {-11.6, 0}, {8.75, 1}, {5.933333, 2.6}, {5.933333, -0.6}, {1, 2.5},
    {1, -0.5},  {2, 1}};

// The order that puts a player to its start place, wherever the configuration has that.
std::string beamOf(int number) {
  const ConfigValue& place = config["Formation"]["Beam"]["p" + std::to_string(number)];
  std::ostringstream order;
  order << "(beam " << place[0].asFloat() << ' ' << place[1].asFloat() << ' ' << place[2].asFloat()
        << ')';
  return order.str();
}

// The role's fall-back ran (or, for the goalie, its turn to the goal), and nothing else walked.
void expectRole(TestPlayer& p, int number, const std::string& what) {
  if (number == 1) {
    EXPECT_TRUE(roleRested()) << what;
    EXPECT_EQ(p.player.turn->v, Vector(15, 0, 0)) << what;
    return;
  }
  EXPECT_TRUE(rolePlayed()) << what;
  EXPECT_TRUE(wentByDecide(p)) << what;
  expectAbout(p.player.decide->lastPos, kPlaces[number][0], kPlaces[number][1], what);
}

void expectNoRole(TestPlayer& p, const std::string& what) {
  EXPECT_TRUE(roleRested()) << what;
  EXPECT_FALSE(wentByDecide(p)) << what;
}

void checkSituation(TestPlayer& p, int number, int situation, const std::string& answer,
                    const std::string& what) {
  Decision& de = p.player.de;
  const bool waits = number == 10 && (situation == 5 || situation == 6 || situation == 8 ||
                                      situation == 12 || situation == 13);
  EXPECT_EQ(de.modestate, situation) << what;
  EXPECT_EQ(de.waitValue, waits ? 1 : 0) << what;
  EXPECT_EQ(dribbled(p), situation == 4 && number != 1) << what;
  EXPECT_EQ(de.KO, situation == 3) << what;
  EXPECT_EQ(p.player.kick->stableState, situation == 7 && number == 1 ? 100 : 0) << what;
  const bool clearsBeams = situation == 3 || (situation >= 5 && situation <= 9) || situation >= 12;
  switch (situation) {
    case 2:
      EXPECT_TRUE(has(answer, beamOf(number))) << what << answer;
      EXPECT_EQ(de.beamCount, 6) << what;
      EXPECT_EQ(p.player.reset->State, number == 11 ? -1 : 0) << what;
      expectNoRole(p, what);
      break;
    case 3:
      EXPECT_EQ(p.player.reset->State, number == 11 ? 0 : -1) << what;
      expectNoRole(p, what);
      break;
    case 4:
      EXPECT_EQ(de.beamCount, 5) << what;
      if (number == 1) {
        expectRole(p, 1, what);
      } else {
        expectNoRole(p, what);
      }
      break;
    case 10:
    case 11:
      EXPECT_EQ(de.beamCount, situation == 10 ? 8 : 7) << what;
      EXPECT_FALSE(has(answer, "(beam")) << what;  // it went out in a message of its own
      expectNoRole(p, what);
      break;
    case 7:
      if (number == 1) {
        EXPECT_EQ(de.j, 4) << what;
        EXPECT_EQ(p.player.actions->NowAction.actionType, kIdle) << what;
        expectNoRole(p, what);
      } else {
        expectRole(p, number, what);
      }
      break;
    case 5:
    case 6:
    case 8:
      if (waits) {
        EXPECT_EQ(de.j, situation == 5 ? 2 : situation == 6 ? 3 : 5) << what;
        expectNoRole(p, what);
      } else {
        expectRole(p, number, what);
      }
      break;
    case 12:
      if (waits) {
        EXPECT_EQ(de.j, 8) << what;
      }
      expectRole(p, number, what);
      break;
    case 13:
      if (waits) {
        EXPECT_EQ(de.j, 9) << what;
      }
      if (number == 1) {
        // Kicks to the goal: the approach of a ball at the pitch centre, which lies 15 degrees or
        // more to the side.
        EXPECT_TRUE(p.player.goToPoint->rokhsat) << what;
      } else {
        expectRole(p, number, what);
      }
      break;
    default:
      expectRole(p, number, what);
      break;
  }
  if (clearsBeams) {
    EXPECT_EQ(de.beamCount, 0) << what;
  }
  EXPECT_EQ(de.a, !(clearsBeams && situation != 6)) << what;
  if (situation != 2) {
    EXPECT_FALSE(has(answer, "(beam")) << what;
  }
  EXPECT_FALSE(has(answer, "(say")) << what;
  support::expectWholeAnswer(answer);
}

void checkTable(TeamSide side) {
  for (int number = 1; number <= 11; ++number) {
    TestPlayer p(number, side);
    support::FakeServer& server = p.connect();
    p.scene.x = -10;
    p.scene.ball = {2, 1};
    p.scene.others = {{false, 9, 3, 1}};  // somebody has to reach the ball for a goalie to move
    p.settle();
    // Player 1 looks away from the goal, so that its turn shows that it plays goalie.
    p.scene.heading = number == 1 ? 20 : 0;
    p.cycle();
    for (const ModeRow& row : kModes) {
      const int situation = side == SIDE_LEFT ? row.left : row.right;
      const std::string what = "number " + std::to_string(number) + " " + row.mode;
      SCOPED_TRACE(what);
      arm(p);
      Decision& de = p.player.de;
      de.modestate = 4;
      de.beamCount = 5;
      de.waitValue = 0;
      de.KO = false;
      de.a = true;
      p.scene.mode = row.mode;
      // Somebody else is at the ball, so that the roles fall back.
      p.scene.heard =
          number == 3 ? "(hear Quolnaris 0.1 10 u02rc01)" : "(hear Quolnaris 0.1 10 u03rc01)";
      const int beams = situation == 10 ? 2 : situation == 11 ? 1 : 0;
      p.beamsPerCycle = beams;
      const std::string answer = p.cycle();
      for (int i = 0; i < beams; ++i) EXPECT_EQ(server.receive(), beamOf(number));
      checkSituation(p, number, situation, answer, what);
      p.beamsPerCycle = 0;
      p.scene.mode = "PlayOn";
      p.cycle();
    }
  }
}

PLAYER_TEST(DecisionSituationTest, EachNumberOnTheLeft) {
  checkTable(SIDE_LEFT);
}

PLAYER_TEST(DecisionSituationTest, EachNumberOnTheRight) {
  checkTable(SIDE_RIGHT);
}

// The opponents' set plays are handled as whatever came before: here, as our kick-in.
PLAYER_TEST(DecisionSituationTest, OpponentsSetPlaysLeaveTheSituation) {
  TestPlayer p(10);
  p.settle();
  p.scene.mode = "KickIn_Left";
  p.cycle();
  EXPECT_EQ(p.player.de.modestate, 5);
  const int waited = p.player.de.waitValue;
  for (const char* mode : {"KickOff_Right", "KickIn_Right", "corner_kick_right", "goal_kick_right",
                           "offside_right", "free_kick_right"}) {
    p.scene.mode = mode;
    p.cycle();
    EXPECT_EQ(p.player.de.modestate, 5) << mode;
  }
  EXPECT_EQ(p.player.de.waitValue, waited + 6);
}

// Our goal stays in force through the opponents' kick-off, so that the beam block goes on running.
PLAYER_TEST(DecisionSituationTest, AGoalOfOursGoesOnBeamingUntilPlayOn) {
  TestPlayer p(9);
  support::FakeServer& server = p.connect();
  p.settle();
  p.scene.mode = "PlayOn";
  p.cycle();
  p.player.de.beamCount = 0;
  p.scene.mode = "Goal_Left";
  // Three counts a cycle, two of them messages: 3, 6, 9; then the block alone.
  for (int expected : {3, 6, 9}) {
    p.beamsPerCycle = 2;
    p.cycle();
    EXPECT_EQ(p.player.de.beamCount, expected);
    EXPECT_EQ(server.receive(), beamOf(9));
    EXPECT_EQ(server.receive(), beamOf(9));
  }
  p.beamsPerCycle = 0;
  arm(p);
  EXPECT_TRUE(has(p.cycle(), beamOf(9)));
  EXPECT_EQ(p.player.de.beamCount, 10);
  EXPECT_EQ(p.player.reset->State, 0);
  p.scene.mode = "KickOff_Right";
  EXPECT_TRUE(has(p.cycle(), beamOf(9)));
  EXPECT_EQ(p.player.de.modestate, 10);
  EXPECT_EQ(p.player.de.beamCount, 11);
  p.scene.mode = "PlayOn";
  EXPECT_FALSE(has(p.cycle(), "(beam"));
  EXPECT_EQ(p.player.de.modestate, 4);
  // Play on does not clear the count: it reaches the next goal.
  EXPECT_EQ(p.player.de.beamCount, 11);
  p.scene.mode = "Goal_Right";
  EXPECT_TRUE(has(p.cycle(), beamOf(9)));
  EXPECT_EQ(p.player.de.beamCount, 12);
}

PLAYER_TEST(DecisionSituationTest, TheirGoalCountsTwoBeamsACycle) {
  TestPlayer p(9, SIDE_RIGHT);
  support::FakeServer& server = p.connect();
  p.settle();
  p.player.de.beamCount = 0;
  p.scene.mode = "Goal_Left";
  for (int expected : {2, 4, 6, 8, 10}) {
    p.beamsPerCycle = 1;
    p.cycle();
    EXPECT_EQ(p.player.de.beamCount, expected);
    EXPECT_EQ(server.receive(), beamOf(9));
  }
  p.beamsPerCycle = 0;
  EXPECT_TRUE(has(p.cycle(), beamOf(9)));
  EXPECT_EQ(p.player.de.beamCount, 11);
}

// A row's exchange absorbs the frame that it takes, and the cycle goes on with the joints as they
// were.
PLAYER_TEST(DecisionSituationTest, ABeamMessageAbsorbsOneFrame) {
  TestPlayer p(4);
  p.connect();
  p.settle();
  p.scene.mode = "Goal_Right";
  p.player.de.beamCount = 0;
  p.beamsPerCycle = 1;
  p.time = 7;
  p.cycle();
  EXPECT_NEAR(p.world.gameTime, 7, 1e-4);
  p.beamsPerCycle = 0;
}

PLAYER_TEST(DecisionSituationTest, PenaltyModeBeamsToItsOwnPlaces) {
  TestPlayer p(10, SIDE_LEFT, {{"Agent", "Public", "Penalty", "true"}});
  EXPECT_TRUE(has((p.scene.mode = "BeforeKickOff", p.cycle()), "(beam -0.6 0 0)"));
}

PLAYER_TEST(DecisionSituationTest, TheBeamBlockStopsAllMotionAndEndsADive) {
  TestPlayer p(9);
  p.settle();
  p.scene.mode = "PlayOn";
  p.cycles(10);
  Decision::anyThingToDoZero = Decision::anyThingToDoOne = true;
  p.player.actions->preAction = false;
  p.player.goToPoint->st = 1;
  p.scene.mode = "BeforeKickOff";
  p.cycle();
  EXPECT_FALSE(Decision::anyThingToDoZero);
  EXPECT_FALSE(Decision::anyThingToDoOne);
  EXPECT_TRUE(p.player.actions->preAction);
  EXPECT_EQ(p.player.goToPoint->st, 0);
}

PLAYER_TEST(DecisionSituationTest, GoaliesOfOtherNumbersKickOurGoalKick) {
  TestPlayer p(4, SIDE_LEFT, {{"Agent", "AgentPost", "P", "3 2 2 3 2 1 1 1 0 0 0"}});
  p.settle();
  arm(p);
  p.scene.mode = "goal_kick_left";
  p.cycle();
  EXPECT_TRUE(p.player.goToPoint->rokhsat);  // fineApproach, of goToKick
  EXPECT_EQ(p.player.kick->stableState, 0);
  EXPECT_TRUE(roleRested());
}

PLAYER_TEST(DecisionSituationTest, WithoutASideOnlyTheNeutralModesCount) {
  TestPlayer p(9);
  Decision& de = p.player.de;
  de.modestate = 4;
  p.world.playMode = PM_KICK_IN_LEFT;
  de.decideplaymode();
  EXPECT_EQ(de.modestate, 4);
  p.world.playMode = PM_GOAL_LEFT;
  de.decideplaymode();
  EXPECT_EQ(de.modestate, 4);
  p.world.playMode = PM_QUIT;
  de.decideplaymode();
  EXPECT_EQ(de.modestate, 9);
}

PLAYER_TEST(DecisionSituationTest, PlayOnPrintsTheBallsPlace) {
  TestPlayer p(9);
  p.scene.x = -3;
  p.scene.ball = {0, 4};
  p.settle();
  p.scene.mode = "PlayOn";
  p.takeOutput();
  p.cycle();
  std::istringstream out(p.takeOutput());
  std::string line;
  ASSERT_TRUE(std::getline(out, line));
  ASSERT_EQ(line.substr(0, 7), "dist : ");
  EXPECT_NEAR(std::stod(line.substr(7)), 5, 1e-3);
  ASSERT_TRUE(std::getline(out, line));
  ASSERT_EQ(line.substr(0, 9), " angle : ");
  EXPECT_NEAR(std::stod(line.substr(9)), 53.1301, 1e-2);
}

// --- Our kick-off --------------------------------------------------------------------------------

PLAYER_TEST(DecisionKickOffTest, TheTakerMakesOneStepOncePerMatch) {
  TestPlayer p(11);
  p.settle();
  p.scene.mode = "KickOff_Left";
  ForWalk& gait = *p.player.walk->_forWalk;
  int cycles = 0;
  while (gait.state == 0 && ++cycles < 500) p.cycle();
  ASSERT_LT(cycles, 500) << "the stance was never reached";
  EXPECT_EQ(p.player.reset->State, 0);
  EXPECT_EQ(gait.sp, 57);
  EXPECT_NEAR(gait.Xtorso, 0.328 * 60, 1e-4);
  EXPECT_NEAR(gait.Ytorso, 0, 1e-4);
  EXPECT_NEAR(gait.Ztorso, 0.5937 * -70 * 1.5, 1e-4);
  EXPECT_NEAR(gait.Xankle[1], 0.5219 * 80, 1e-4);
  EXPECT_NEAR(gait.Zankle[3], -1.327 * 50, 1e-4);
  for (double y : gait.Yankle) EXPECT_EQ(y, 220);
  EXPECT_NEAR(gait.rx, 0.1213 * 80, 1e-4);  // the right leg, at full gain
  EXPECT_EQ(gait.lx, 0);
  p.cycles(3);
  EXPECT_EQ(gait.state, 0);
  EXPECT_NEAR(gait.rx, (0.1213 + 0.5219 + 0.6694 + 0.3897) * 80, 1e-4);
  const double rx = gait.rx;
  p.cycles(10);
  p.scene.mode = "PlayOn";
  p.cycle();
  p.scene.mode = "KickOff_Left";
  p.cycles(100);
  EXPECT_EQ(gait.rx == rx || gait.rx == 0, true);
  EXPECT_EQ(gait.state, 0);
}

PLAYER_TEST(DecisionKickOffTest, TheDribblerPlaysOnUntilTheBallIsFar) {
  TestPlayer p(10);
  p.scene.x = -0.5;
  p.settle();
  p.scene.mode = "KickOff_Left";
  p.cycle();
  EXPECT_TRUE(p.player.de.KO);
  // A free kick of ours, for the role to run.
  p.scene.mode = "free_kick_left";
  arm(p);
  p.cycle();
  EXPECT_TRUE(p.player.de.KO);
  EXPECT_TRUE(dribbled(p));
  EXPECT_TRUE(rolePlayed());
  EXPECT_FALSE(wentByDecide(p));
  EXPECT_FALSE(has(p.log(), "else nabayad bashe !!!!!!!!!!!"));
  EXPECT_TRUE(has(p.log(), "unum  : 10\n"));
  p.scene.ball = {0.5, 0};
  arm(p);
  p.cycles(2);
  EXPECT_FALSE(p.player.de.KO);
  EXPECT_TRUE(has(p.log(), "else nabayad bashe !!!!!!!!!!!"));
}

// --- Waiting for a set play ----------------------------------------------------------------------

PLAYER_TEST(DecisionWaitingTest, OnlyTheFirstSetPlayOfAMatchWaits) {
  TestPlayer p(10, SIDE_LEFT, {{"decision", "time", "t", "9 9 0.5 0.5 9 9 9 9 9 9"}});
  p.settle();
  p.scene.mode = "PlayOn";
  p.cycle();
  p.scene.mode = "KickIn_Left";
  for (int i = 1; i <= 24; ++i) {
    arm(p);
    p.cycle();
    EXPECT_EQ(p.player.kick->type, AT_NONE) << i;
  }
  EXPECT_EQ(p.player.de.t[2], 25);
  arm(p);
  p.cycle();
  EXPECT_EQ(p.player.de.waitValue, 25);
  EXPECT_EQ(p.player.kick->type, AT_UNSTABLE1_KICK);
  EXPECT_TRUE(p.player.kick->side);
  p.scene.mode = "PlayOn";
  p.cycle();
  arm(p);
  p.scene.mode = "corner_kick_left";
  p.cycle();
  EXPECT_EQ(p.player.kick->type, AT_UNSTABLE1_KICK);
  EXPECT_EQ(p.player.de.waitValue, 26);
}

PLAYER_TEST(DecisionWaitingTest, ATimeIsNeededForTheSetPlayAtHand) {
  TestPlayer p(10, SIDE_LEFT, {{"decision", "time", "t", "9 9"}});
  p.player.de.j = 1;
  p.player.de.waiting();
  EXPECT_EQ(p.player.de.t[1], 9 * 50);
  p.player.de.j = 2;
  EXPECT_DEATH(p.player.de.waiting(), "seconds.size\\(\\) > j");
}

PLAYER_TEST(DecisionWaitingTest, TheTakerLooksDown) {
  TestPlayer p(10);
  p.settle();
  p.scene.mode = "KickIn_Left";
  p.cycle();
  // 10 percent of the way to -45, cut to nothing larger than 6.
  EXPECT_NEAR(p.player.bControl.headController[1].preValue, -45, 1e-6);
}

PLAYER_TEST(DecisionWaitingTest, TheGoaliesFormGoesToTheBallAtItsFeet) {
  TestPlayer p(1);
  p.settle();
  Decision& de = p.player.de;
  p.world.mySelf->setGlobalPosition(Vector(-5, 0, 0.45f));
  p.world.ball->setGlobalPosition(Vector(-4.95f, 0, 0));
  de.t[0] = 3;
  arm(p);
  de.waitingGoalie();
  EXPECT_EQ(de.waitValueG, 1);
  EXPECT_EQ(p.player.kick->type, AT_NONE);
  EXPECT_EQ(de.selfPos, Vector(-5, 0, 0.45f));
  const std::string approach = "real ball";  // GoToBall tells the log whenever it is asked
  EXPECT_TRUE(has(p.log(), approach));
  const std::size_t before = p.log().size();
  p.world.ball->setGlobalPosition(Vector(-4.8f, 0, 0));
  de.waitingGoalie();
  EXPECT_EQ(p.log().size(), before);
  EXPECT_EQ(p.player.kick->type, AT_NONE);
  de.waitingGoalie();
  EXPECT_EQ(p.player.kick->type, AT_UNSTABLE1_KICK);
}

// --- Standing up ---------------------------------------------------------------------------------

PLAYER_TEST(DecisionStandUpTest, AFallenPlayerDecidesNothingUntilItStands) {
  const std::pair<FallOrientation, int> rows[] = {
      {FALL_FRONT, 2}, {FALL_BACK, 3}, {FALL_RIGHT, 4}, {FALL_LEFT, 4}};
  for (const auto& [fall, motion] : rows) {
    TestPlayer p(9);
    p.settle();
    p.scene.mode = "PlayOn";
    p.cycles(5);
    p.takeOutput();
    p.player.goToPoint->st = 1;
    Decision::anyThingToDoZero = Decision::anyThingToDoOne = true;
    p.scene.lying = fall;
    const int sweep = SeeBall::aroundState;
    p.cycle();
    EXPECT_EQ(p.player.de.standstate, motion);
    EXPECT_FALSE(p.player.de.checkstandup);
    EXPECT_FALSE(Decision::anyThingToDoZero);
    EXPECT_FALSE(Decision::anyThingToDoOne);
    EXPECT_EQ(p.player.goToPoint->st, 0);
    EXPECT_EQ(SeeBall::aroundState, sweep);
    EXPECT_EQ(p.takeOutput(), "");
    // Half upright again it still goes on standing up.
    p.cycles(3);
    p.scene.lying = FALL_NONE;
    bool sawBack = motion != 4;
    int cycles = 0;
    while (!p.player.de.checkstandup && ++cycles < 2000) {
      p.cycle();
      if (motion == 4 && p.player.de.standstate == 3) sawBack = true;
      if (!p.player.de.checkstandup) {
        EXPECT_EQ(p.takeOutput(), "");
      }
    }
    EXPECT_LT(cycles, 2000);
    EXPECT_TRUE(sawBack) << "a flip is followed by the stand-up from the back";
    p.cycle();
    EXPECT_TRUE(has(p.takeOutput(), "dist : "));
  }
}

PLAYER_TEST(DecisionStandUpTest, AFlipThatEndsIsNotYetUp) {
  TestPlayer p(9);
  p.settle();
  p.scene.mode = "PlayOn";
  p.cycle();
  p.scene.lying = FALL_LEFT;
  int cycles = 0;
  while (p.player.de.standstate != 3 && ++cycles < 1000) p.cycle();
  ASSERT_LT(cycles, 1000);
  EXPECT_FALSE(p.player.de.checkstandup);
  EXPECT_EQ(p.player.standUp->type, AT_STANDUP_BACK);
  p.cycle();
  EXPECT_EQ(p.player.actions->NowAction.actionType, AT_STANDUP_BACK);
}

PLAYER_TEST(DecisionStandUpTest, AnUnknownMotionStandsForNothing) {
  TestPlayer p(9);
  p.settle();
  p.player.de.checkstandup = false;
  p.player.de.standstate = 9;
  arm(p);
  EXPECT_FALSE(p.player.de.standup());
  EXPECT_EQ(p.player.actions->NowAction.actionType, kIdle);
}

PLAYER_TEST(DecisionStandUpTest, TheGoaliesFormKeepsItsOwnStateAndTheDive) {
  TestPlayer p(1);
  p.settle();
  Decision& de = p.player.de;
  p.world.fall = FALL_FRONT;
  Decision::anyThingToDoZero = Decision::anyThingToDoOne = true;
  EXPECT_FALSE(de.standUpGoalie());
  EXPECT_EQ(de.standstateGoalie, 2);
  EXPECT_FALSE(de.checkstandupGoalie);
  EXPECT_TRUE(de.checkstandup);
  EXPECT_EQ(de.standstate, 0);
  EXPECT_TRUE(Decision::anyThingToDoZero);
  EXPECT_TRUE(Decision::anyThingToDoOne);
}

PLAYER_TEST(DecisionStandUpTest, AFallenPlayerIsBeamedAfterAGoal) {
  TestPlayer p(9);
  p.connect();
  p.settle();
  p.player.de.beamCount = 20;
  p.scene.lying = FALL_FRONT;
  p.scene.mode = "Goal_Left";
  EXPECT_TRUE(has(p.cycle(), beamOf(9)));
  EXPECT_EQ(p.player.de.modestate, 10);
  EXPECT_TRUE(p.player.de.checkstandup);
}

PLAYER_TEST(DecisionStandUpTest, ADivingGoalieOnTheGroundGoesOnPlaying) {
  TestPlayer p(1);
  p.settle();
  p.scene.mode = "PlayOn";
  p.cycles(3);
  p.takeOutput();
  p.player.de.diveFreeze = true;
  Decision::anyThingToDoZero = true;
  p.scene.lying = FALL_RIGHT;
  const int sweep = SeeBall::aroundState;
  p.cycle();
  EXPECT_TRUE(has(p.takeOutput(), "dist : "));
  EXPECT_EQ(SeeBall::aroundState, sweep);
  EXPECT_TRUE(p.player.de.checkstandup);
  EXPECT_EQ(p.player.de.standstate, 0);
}

PLAYER_TEST(DecisionStandUpTest, OnlyAGoalieDoesThat) {
  TestPlayer p(4);
  p.settle();
  p.scene.mode = "PlayOn";
  p.cycle();
  p.player.de.diveFreeze = true;
  p.scene.lying = FALL_BACK;
  p.cycle();
  EXPECT_FALSE(p.player.de.checkstandup);
}

PLAYER_TEST(DecisionStandUpTest, HeadSweepsOnlyWhileUp) {
  TestPlayer p(9);
  p.settle();
  p.scene.mode = "PlayOn";
  p.cycles(2);
  const std::string up = p.cycle();
  EXPECT_TRUE(has(up, "(he1 6)") || has(up, "(he1 -6)")) << up;
}

// --- The goalie ----------------------------------------------------------------------------------

// A goalie on its line at (-14, 0), and a shot that is out at the look-ahead at (-14.2, y).
struct Shot {
  Shot() : p(1) {
    p.settle();
    p.world.mySelf->setGlobalPosition(Vector(-14, 0, 0.45f));
    p.world.isFall();
  }

  bool at(double y, double vx = -0.3, double x = -13.9) {
    Decision& de = p.player.de;
    de.ballPos = Vector(static_cast<float>(x), static_cast<float>(y), 0);
    de.ballVel = Vector(static_cast<float>(vx), 0, 0);
    arm(p);
    p.player.dive->Side = 7;
    return de.doPreProcess();
  }

  void endDive() {
    Decision::anyThingToDoZero = Decision::anyThingToDoOne = false;
    p.player.de.diveFreeze = false;
  }

  TestPlayer p;
};

PLAYER_TEST(DecisionGoalieTest, DivesByWhereTheBallComes) {
  Shot shot;
  Decision& de = shot.p.player.de;
  struct Row {
    double y;
    int side;  // 7: no dive
  };
  const Row rows[] = {{-0.03, 7}, {-0.049, 7}, {0, 0},   {0.02, 0}, {-0.051, 0}, {-0.1, 0},
                      {-0.14, 0}, {0.04, 1},   {0.5, 1}, {1.1, 1},  {-0.16, -1}, {-1.1, -1}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.y);
    shot.endDive();
    EXPECT_TRUE(shot.at(row.y));
    EXPECT_EQ(shot.p.player.dive->Side, row.side);
    EXPECT_EQ(de.diveFreeze, row.side != 7);
    EXPECT_EQ(Decision::anyThingToDoZero, row.side == 0);
    EXPECT_EQ(Decision::anyThingToDoOne, row.side == 1 || row.side == -1);
    if (row.side != 7) {
      // The first entries of the table "reach" a ball that is out, at step 0.
      EXPECT_EQ(Decision::freezeCycle, row.side == 0 ? 150 : 100);
      EXPECT_EQ(shot.p.player.dive->fCycle, Decision::freezeCycle);
      EXPECT_TRUE(shot.p.player.dive->RotateSide);
      EXPECT_EQ(shot.p.player.actions->NowAction.actionType, AT_DIVE);
    }
  }
  EXPECT_TRUE(
      has(shot.p.log(), "GOALIE :: \nisingoal = 1  getX ball : -13.900000\ndive @@@@@@@\n"));
  EXPECT_FALSE(has(shot.p.log(), "dive nakard!!!"));
}

PLAYER_TEST(DecisionGoalieTest, ADiveGoesOnWhereverTheBallGoes) {
  Shot shot;
  ASSERT_TRUE(shot.at(0.01));
  EXPECT_EQ(shot.p.player.dive->Side, 0);
  EXPECT_TRUE(shot.at(0.8));  // a side dive for a fresh goalie
  EXPECT_EQ(shot.p.player.dive->Side, 0);
  shot.endDive();
  ASSERT_TRUE(shot.at(0.8));
  EXPECT_TRUE(shot.at(0));  // a centre dive for a fresh goalie
  EXPECT_EQ(shot.p.player.dive->Side, 1);
  EXPECT_TRUE(shot.at(5));  // beside the goal: nothing to dive for, for a fresh goalie
  EXPECT_EQ(shot.p.player.dive->Side, 1);
}

PLAYER_TEST(DecisionGoalieTest, AFinishedDiveFreesTheGoalie) {
  for (const double y : {0.0, 0.6}) {
    Shot shot;
    ASSERT_TRUE(shot.at(y));
    EXPECT_TRUE(shot.p.player.de.diveFreeze);
    // Only the short block ever says that it has finished; here it is said for it.
    shot.p.player.dive->finish = true;
    Decision& de = shot.p.player.de;
    EXPECT_TRUE(de.doPreProcess());
    EXPECT_FALSE(de.diveFreeze);
    EXPECT_FALSE(Decision::anyThingToDoZero);
    EXPECT_FALSE(Decision::anyThingToDoOne);
  }
}

PLAYER_TEST(DecisionGoalieTest, WalksToABallThatLeavesBesideTheGoal) {
  Shot shot;
  EXPECT_TRUE(shot.at(3));
  EXPECT_EQ(shot.p.player.dive->Side, 7);
  expectAbout(shot.p.player.turn->v, -14.2, 3);
  EXPECT_TRUE(has(shot.p.log(),
                  "dive nakard!!!\nisingoal : 0 fc.fastest.reachCycle : 0  ballVel : (vector: "));
  EXPECT_TRUE(has(shot.p.log(), "  point.getX() : -14.200000\n"));
}

PLAYER_TEST(DecisionGoalieTest, LeavesAHardShotBesideTheGoal) {
  Shot shot;
  EXPECT_FALSE(shot.at(3, -2));
  EXPECT_EQ(shot.p.player.turn->type, AT_NONE);
}

PLAYER_TEST(DecisionGoalieTest, DoesNothingWhenNobodyReachesTheBall) {
  Shot shot;
  EXPECT_FALSE(shot.at(0, 0, 0));
  EXPECT_EQ(shot.p.player.dive->Side, 7);
}

PLAYER_TEST(DecisionGoalieTest, FacesTheOtherGoalWhenItHasNothingToDo) {
  Shot shot;
  shot.p.scene.others = {{false, 9, 1, 0}};
  shot.p.scene.x = -14;
  shot.p.scene.mode = "PlayOn";
  shot.p.settle();
  shot.p.scene.heading = 4;
  arm(shot.p);
  shot.p.cycle();
  EXPECT_EQ(shot.p.player.turn->type, AT_NONE);
  shot.p.scene.heading = 6;
  shot.p.cycle();
  EXPECT_EQ(shot.p.player.turn->v, Vector(15, 0, 0));
  EXPECT_EQ(shot.p.player.turn->error, 10);
  EXPECT_EQ(shot.p.player.actions->NowAction.actionType, AT_TURN);
}

// A ball behind the line, outside the mouth: the dive logic runs and finds nothing to dive for.
PLAYER_TEST(DecisionGoalieTest, ABallBehindTheLineIsNoDive) {
  Shot shot;
  EXPECT_TRUE(shot.at(2, 0, -14.1));
  EXPECT_EQ(shot.p.player.dive->Side, 7);
  EXPECT_TRUE(has(shot.p.log(), "GOALIE :: \n"));
  expectAbout(shot.p.player.turn->v, -14.1, 2);
}

PLAYER_TEST(DecisionGoalieTest, StandsUpOnlyWithNothingElseToDo) {
  TestPlayer p(1);
  p.settle();
  p.scene.mode = "PlayOn";
  p.scene.ball = {0, 0};
  p.cycle();
  Decision& de = p.player.de;
  EXPECT_TRUE(de.checkstandupGoalie);
  EXPECT_FALSE(de.chaseBall());
  EXPECT_TRUE(de.checkstandupGoalie);  // up: nothing happens
  p.scene.lying = FALL_BACK;
  de.diveFreeze = true;
  p.cycle();
  EXPECT_FALSE(de.checkstandupGoalie);
  EXPECT_EQ(de.standstateGoalie, 3);
  de.checkstandupGoalie = true;
  p.world.playMode = PM_GOAL_LEFT;
  EXPECT_FALSE(de.chaseBall());
  EXPECT_TRUE(de.checkstandupGoalie);
}

// --- The ball claim ------------------------------------------------------------------------------

// A free kick of ours, so that the field roles run, with the ball at the centre. Its own table
// entry, whose head nobody sees, lies on the ground for the interception: twelve steps that are no
// part of the cost.
//
// From (-2.9, -1) the ball lies 3.1 m away (height included) and 19 degrees to the left of +x,
// which costs 0.32 steps: 0.9 * 3.68 covers it first, cost 3.
struct Claim {
  explicit Claim(int number, double x = -2.9, double y = -1) : p(number) {
    p.scene.x = x;
    p.scene.y = y;
    p.scene.mode = "free_kick_left";
    p.scene.others = {{false, 11, 14, 9}};  // far off; it makes the players' numbers known
    p.settle();
  }

  std::string answer(const std::string& heard = "", int doBlock = 100) {
    arm(p);
    Block::doBlockCD = doBlock;
    if (!heard.empty()) p.scene.heard = "(hear Quolnaris 1 20 " + heard + ")";
    return p.cycle();
  }

  bool wentToGoal() { return p.player.goToPoint->rokhsat; }

  TestPlayer p;
};

PLAYER_TEST(DecisionClaimTest, TheFirstAtTheBallSaysSoAndGoes) {
  for (int number : {2, 4, 6, 7, 9, 11}) {
    SCOPED_TRACE(number);
    Claim claim(number);
    const std::string answer = claim.answer();
    const std::string say =
        "(say u" + std::string(number < 10 ? "0" : "") + std::to_string(number) + "rc03)";
    EXPECT_TRUE(has(answer, say)) << answer;
    EXPECT_TRUE(claim.wentToGoal());
    EXPECT_FALSE(wentByDecide(claim.p));
    EXPECT_EQ(answer.rfind(say), answer.size() - say.size()) << "behind the hinges";
  }
}

PLAYER_TEST(DecisionClaimTest, RenewsItsOwnClaim) {
  Claim claim(7);
  EXPECT_TRUE(has(claim.answer("u07rc05"), "(say u07rc03)"));
  EXPECT_TRUE(claim.wentToGoal());
}

PLAYER_TEST(DecisionClaimTest, TakesOverByMoreThanOneAndAHalfCyclesOnly) {
  Claim claim(7);
  EXPECT_FALSE(has(claim.answer("u09rc04"), "(say"));  // 4 > 3 + 1.5 is false
  EXPECT_FALSE(claim.wentToGoal());
  EXPECT_TRUE(has(claim.answer("u09rc05"), "(say u07rc03)"));
  EXPECT_TRUE(claim.wentToGoal());
}

// 5.9 m away and 42 degrees to the left: 0.9 * 6.3 is not enough, 0.9 * 7.3 is; cost 7.
PLAYER_TEST(DecisionClaimTest, FromAfarNothingIsSaid) {
  Claim claim(7, -4.37, -3.935);
  EXPECT_FALSE(has(claim.answer(), "(say"));
  EXPECT_FALSE(claim.wentToGoal());
  // But with its own number heard last the player still goes for the ball.
  EXPECT_FALSE(has(claim.answer("u07rc02"), "(say"));
  EXPECT_TRUE(claim.wentToGoal());
}

PLAYER_TEST(DecisionClaimTest, ATeammateThatIsFirstGetsTheBall) {
  Claim claim(7);
  claim.p.scene.others.push_back({true, 9, -1, 0.2, NORTH});
  EXPECT_FALSE(has(claim.answer(), "(say"));
  EXPECT_FALSE(claim.wentToGoal());
  // Unless its own number was heard last: that claim is acted on, in silence.
  EXPECT_FALSE(has(claim.answer("u07rc06"), "(say"));
  EXPECT_TRUE(claim.wentToGoal());
}

// A teammate with the same cost, and nobody heard: this player claims.
PLAYER_TEST(DecisionClaimTest, ATieGoesToThisPlayer) {
  Claim claim(7);
  claim.p.scene.others.push_back({true, 9, -2.9, -1, NORTH});
  EXPECT_TRUE(has(claim.answer(), "(say u07rc03)"));
  EXPECT_TRUE(claim.wentToGoal());
  EXPECT_FALSE(has(claim.answer("u09rc04"), "(say"));
  EXPECT_FALSE(claim.wentToGoal());
}

PLAYER_TEST(DecisionClaimTest, WithoutAnyTeammateNothingIsClaimed) {
  TestPlayer p(7);
  p.scene.x = -12;
  p.scene.mode = "free_kick_left";
  p.settle();  // no player was ever seen: not even its own number is known to the table
  arm(p);
  EXPECT_FALSE(has(p.cycle(), "(say"));
  EXPECT_TRUE(wentByDecide(p));
}

// --- The ball action -----------------------------------------------------------------------------

// The claimant is 7 m away, and an opponent is first: it blocks, on the line from the ball at
// (0, 0) to the goal mouth, which runs along y = 0.
PLAYER_TEST(DecisionBallActionTest, BlocksAnOpponentThatIsFirst) {
  for (int number : {7, 9, 4}) {
    SCOPED_TRACE(number);
    Claim claim(number, -7, -1);
    claim.p.scene.others.push_back({false, 5, 1, 0, NORTH});
    claim.answer("u0" + std::to_string(number) + "rc02", 3);
    ASSERT_TRUE(wentByDecide(claim.p));
    const Vector at = claim.p.player.decide->lastPos;
    EXPECT_NEAR(at.getY(), 0, 0.05);
    EXPECT_LT(at.getX(), -2);
    EXPECT_GT(at.getX(), -7);
  }
}

// Half-backs and defenders leave the opposing number 1 out of their reckoning.
PLAYER_TEST(DecisionBallActionTest, OnlyAttackersBlockTheOpposingGoalie) {
  const auto play = [](Claim& claim, const std::string& heard) {
    claim.p.scene.others.push_back({false, 1, 1, 0, NORTH});
    claim.answer(heard, 3);
    return claim.p.player.decide->lastPos;
  };
  Claim attacker(9, -8, -1);
  const Vector at = play(attacker, "u09rc02");
  EXPECT_NEAR(at.getY(), 0, 0.05);
  EXPECT_LT(at.getX(), -2);
  Claim halfBack(7, -8, -1);
  expectAbout(play(halfBack, "u07rc02"), -7, 1.6);
  Claim defender(4, -8, -1);
  play(defender, "u04rc02");
  EXPECT_FALSE(wentByDecide(defender.p));
}

PLAYER_TEST(DecisionBallActionTest, WithNobodyToMarkAttackersPositionAndDefendersStay) {
  Claim attacker(9, -8);
  attacker.answer("u09rc02");
  EXPECT_TRUE(wentByDecide(attacker.p));
  expectAbout(attacker.p.player.decide->lastPos, -1, 1.5);
  Claim halfBack(7, -8);
  halfBack.answer("u07rc02");
  expectAbout(halfBack.p.player.decide->lastPos, -7, 1.6);
  Claim defender(4, -8);
  defender.answer("u04rc02");
  EXPECT_FALSE(wentByDecide(defender.p));
}

// --- Positioning ---------------------------------------------------------------------------------

struct Place {
  int number;
  double ballX, ballY;
  double x, y;
};

template <typename Operation>
void checkPlaces(std::initializer_list<Place> places, Operation operation, float selfX = -14) {
  for (const Place& place : places) {
    SCOPED_TRACE("number " + std::to_string(place.number) + " ball " + std::to_string(place.ballX) +
                 " " + std::to_string(place.ballY));
    TestPlayer p(place.number);
    Decision& de = p.player.de;
    p.world.gameTime = 1;
    p.world.mySelf->setGlobalPosition(Vector(selfX, -9.5f, 0.45f));
    de.unum = place.number;
    de.selfPos = Vector(selfX, -9.5f, 0.45f);
    de.ballPos = Vector(static_cast<float>(place.ballX), static_cast<float>(place.ballY), 0);
    arm(p);
    EXPECT_TRUE((de.*operation)());
    EXPECT_NEAR(p.player.decide->lastPos.getX(), place.x, 1e-4);
    EXPECT_NEAR(p.player.decide->lastPos.getY(), place.y, 1e-4);
    EXPECT_EQ(p.player.decide->lastPos.getZ(), 0);
  }
}

PLAYER_TEST(DecisionPositioningTest, Attackers) {
  checkPlaces({{9, 2, 1, 1, 2.5},
               {9, 2, 7, 1, 8.5},    // not above 7
               {9, 2, 8.5, 1, 9.5},  // (8.5 - 7) / 3 + 9
               {9, -4.9, 0, -5.9, 1.5},
               {9, -5, 0, -6, 1.5},
               {9, -9, -8, -6, -6.5},
               {10, 2, 1, 1, -0.5},
               {10, 2, -7, 1, -8.5},
               {10, 2, -8.5, 1, -9.5},
               {10, -6, 3, -6, 1.5},
               {11, 2, 1, 2, 1},
               {11, 2, 9, 2, 9},
               {11, -6, -3, -5, -3},
               {6, 2, 1, 2, -9.5},  // another number keeps its own y
               {6, -7, 1, -5, -9.5}},
              &Decision::attackPositioning);
}

PLAYER_TEST(DecisionPositioningTest, HalfBacks) {
  checkPlaces({{7, -7.5, 1, -11, 2.6},  // 7.5 / 1.875 - 15
               {7, -7.5, 8, -11, 9.6},
               {7, -7.5, 9, -11, 9.5},  // (9 - 8) * 0.5 + 9
               {8, -7.5, 1, -11, -0.6},
               {8, -7.5, -9, -11, -9.5},
               {8, -7.5, -8, -11, -9.6},
               {6, -1.4, 3, -10, 3},  // 13.6 / 2.72 - 15
               {6, -1.4, 9, -10, 9},
               {7, 0, 0, -7, 1.6},    // not above 0: not folded
               {7, 3.75, 0, 5, 1.6},  // folded: -(18.75 / 1.875 - 15)
               {6, 1.32, 0, 9, 0}},   // -(16.32 / 2.72 - 15)
              &Decision::halfBackPositioning);
}

PLAYER_TEST(DecisionPositioningTest, Defenders) {
  checkPlaces({{2, -7.5, 4, -14, -9.5},    // 7.5 / 7.5 - 15
               {4, -7.5, 4, -12.5, -9.5},  // 7.5 / 3 - 15
               {5, -9, 4, -13, -9.5},
               {3, -5, 4, -13.6, -9.5},
               {5, -5, 4, -11.6, -9.5},
               {4, 8, 4, -11.6, -9.5}},
              &Decision::defencePositioning, -9);
}

PLAYER_TEST(DecisionPositioningTest, APlayerNearerToTheBallThanItsPointStays) {
  TestPlayer p(9);
  Decision& de = p.player.de;
  de.unum = 9;
  de.ballPos = Vector(2, 1, 0);
  de.selfPos = Vector(2, 1.5f, 0.45f);  // its point is (1, 2.5), 1.8 m from the ball
  arm(p);
  EXPECT_TRUE(de.attackPositioning());
  EXPECT_FALSE(wentByDecide(p));
}

PLAYER_TEST(DecisionPositioningTest, DefendersWaitForTheGameToStartAndIgnoreSmallErrors) {
  TestPlayer p(2);
  Decision& de = p.player.de;
  de.unum = 2;
  de.ballPos = Vector(0, 0, 0);
  de.selfPos = Vector(-12, 0, 0.45f);
  p.world.gameTime = 0.3f;  // as a float just above 0.3
  arm(p);
  de.defencePositioning();
  EXPECT_TRUE(wentByDecide(p));
  p.world.gameTime = 0.29f;
  arm(p);
  EXPECT_TRUE(de.defencePositioning());
  EXPECT_FALSE(wentByDecide(p));
  p.world.gameTime = 1;
  // 0.66 on the ground and 0.45 in height are 0.799.
  de.selfPos = Vector(-13.6f + 0.66f, 0, 0.45f);
  arm(p);
  de.defencePositioning();
  EXPECT_FALSE(wentByDecide(p));
  de.selfPos = Vector(-13.6f + 0.67f, 0, 0.45f);
  arm(p);
  de.defencePositioning();
  EXPECT_TRUE(wentByDecide(p));
}

// The teammate nearest to the ball's line is 1.2 below it (y), so the player moves 1.2 to -y; one
// 0.5 above it moves it 0.5 to +y.
PLAYER_TEST(DecisionPositioningTest, ProtectGoalShiftsByTheGapToTheBallsLine) {
  TestPlayer p(4);
  Decision& de = p.player.de;
  de.unum = 4;
  de.ballPos = Vector(-12, 2, 0);
  de.selfPos = Vector(-14, -3, 0.45f);
  const auto stand = [&](int row, int number, float y) {
    Player& player = p.world.player[row][number - 1];
    player.setPlayerNumber(number);
    player.leftFootPosition = player.rightFootPosition = Vector(-10, y, 0);
  };
  for (int i = 1; i <= 11; ++i) stand(0, i, 9);
  stand(0, 4, 2);  // its own entry does not count, its own position does: 5 away
  stand(0, 6, 0.8f);
  arm(p);
  EXPECT_TRUE(de.protectGoal());
  expectAbout(p.player.decide->lastPos, -13.6, -4.2);  // 3 / 3 - 14.6
  stand(0, 8, 2.5f);
  arm(p);
  de.protectGoal();
  expectAbout(p.player.decide->lastPos, -13.6, -2.5);
  stand(0, 7, 1.5f);  // as near, but earlier in the table
  arm(p);
  de.protectGoal();
  expectAbout(p.player.decide->lastPos, -13.6, -3.5);
  // Others stand deeper: 3 / 7.5 - 14.8.
  de.unum = 2;
  arm(p);
  de.protectGoal();
  EXPECT_NEAR(p.player.decide->lastPos.getX(), -14.4, 1e-4);
}

// For a team on the right the row of its own side holds what vision saw of the opponents.
PLAYER_TEST(DecisionPositioningTest, ProtectGoalOfATeamOnTheRightLooksAtTheOtherRow) {
  TestPlayer p(4, SIDE_RIGHT);
  p.scene.x = -13.9;
  p.scene.ball = {-12, 2};
  p.scene.mode = "free_kick_right";
  p.scene.others = {{true, 6, -12.5, 2.1}, {false, 8, -8, 3}};
  p.settle();
  arm(p);
  p.scene.heard = "(hear Quolnaris 1 20 u09rc00)";
  p.cycle();
  // The opponent 8 is 1 m above the ball's line; the teammate at 0.1 is not looked at. The entries
  // never seen lie at y 0, 2 m off.
  expectAbout(p.player.decide->lastPos, -13.6, 1);
}

PLAYER_TEST(DecisionPositioningTest, TheDangerZoneIsOpenOnAllSides) {
  const auto protects = [](double x, double y) {
    TestPlayer p(2);
    p.scene.x = -13;
    p.scene.y = -4;
    p.settle();
    p.world.fastestTeammateUnum = 3;
    p.world.fastestReachCycle = 0;
    Decision& de = p.player.de;
    de.unum = 2;
    de.ballPos = Vector(static_cast<float>(x), static_cast<float>(y), 0);
    de.selfPos = Vector(-10, -4, 0.45f);
    arm(p);
    de.defence();
    EXPECT_TRUE(rolePlayed());
    const double deep = (static_cast<float>(x) + 15) / 7.5;
    return std::fabs(p.player.decide->lastPos.getX() - (deep - 14.8)) < 1e-4;
  };
  EXPECT_TRUE(protects(-11.1, 0));
  EXPECT_FALSE(protects(-11, 0));
  EXPECT_TRUE(protects(-12, 4.9));
  EXPECT_FALSE(protects(-12, 5));
  EXPECT_TRUE(protects(-12, -4.9));
  EXPECT_FALSE(protects(-12, -5));
}

// In the danger zone a defender near the ball clears it. The kick is aimed beside the ball; the
// approach of GoToKick goes to the pitch centre, as it always does.
PLAYER_TEST(DecisionBallActionTest, ADefenderClearsInTheDangerZone) {
  TestPlayer p(2);
  p.scene.x = -13;
  p.scene.y = -1;
  p.scene.ball = {-12, 1};
  p.scene.others = {{false, 9, -11, 1, NORTH}};
  p.scene.mode = "free_kick_left";
  p.settle();
  arm(p);
  EXPECT_TRUE(has(p.cycle(), "(say u02rc02)"));  // 2.3 m, 63 degrees: 0.9 * 2.94
  EXPECT_TRUE(p.player.goToPoint->rokhsat);      // fineApproach
  EXPECT_EQ(p.player.goToGoal->state, 0);
  EXPECT_EQ(p.player.walk->v, Vector(0, 0, 0));
}

}  // namespace
