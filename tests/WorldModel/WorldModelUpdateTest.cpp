// The parser: expressions, sensors and hearing. Vision has a test of its own.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "Utilities/Converter.h"
#include "WorldModelFixture.h"

namespace {

class WorldModelUpdateTest : public WorldModelFixture {};

// --- Start ------------------------------------------------------------------------------------

TEST_F(WorldModelUpdateTest, StartsKnowingNothing) {
  EXPECT_EQ(model->fastestTeammateUnum, -1);
  EXPECT_EQ(model->lastTimeHeard, -1.0);
  EXPECT_EQ(model->fastestReachCycle, 9999);
  EXPECT_FALSE(model->fastestIsFall);
  EXPECT_EQ(model->isValidPosition, 0);
  EXPECT_EQ(model->ourSide, SIDE_ILLEGAL);
  EXPECT_FALSE(model->isInit);
  EXPECT_FALSE(model->setFlagCheck);
  EXPECT_FALSE(model->visionThisCycle);
  EXPECT_FALSE(model->isNewCommand);
  EXPECT_EQ(model->getPlayMode(), PM_BEFORE_KICK_OFF);
  EXPECT_EQ(model->gameTime, 0.0f);
  EXPECT_EQ(model->ourGoals, 0);
  EXPECT_EQ(model->oppGoals, 0);
  EXPECT_EQ(model->heards, "");
  EXPECT_EQ(model->getAgentPosition(), Vector(0, 0, 0));
  EXPECT_EQ(model->getTimer().getCycle(), -1);
  EXPECT_EQ(&model->setTimer(), &model->getTimer());
  EXPECT_NE(model->say, nullptr);
}

// --- Cutting a message into expressions --------------------------------------------------------

TEST_F(WorldModelUpdateTest, ReadsTheFirstMessageOfAGame) {
  model->mySelf->gyro(0, 1) = 0.5;
  update("(time (now 1.5))(GS (t 0.00) (pm BeforeKickOff))");
  EXPECT_EQ(model->gameTime, 0.0f);
  EXPECT_EQ(model->getPlayMode(), PM_BEFORE_KICK_OFF);
  expectIdentity(model->mySelf->gyro);
}

TEST_F(WorldModelUpdateTest, ParseAnswersThatThereIsNoNewCommand) {
  EXPECT_FALSE(model->parse("(GS (t 1.00))"));
}

TEST_F(WorldModelUpdateTest, StopsAtAnythingBetweenExpressions) {
  for (const char* gap : {" ", "\n", "x", ")", "\t"}) {
    restart();
    update("(GS (t 1.00))" + std::string(gap) + "(GS (t 2.00))");
    EXPECT_EQ(model->gameTime, 1.0f) << '"' << gap << '"';
  }
}

TEST_F(WorldModelUpdateTest, AnUnknownHeadHidesTheRest) {
  update("(GS (t 1.00))(xyz 1)(GS (t 2.00))");
  EXPECT_EQ(model->gameTime, 1.0f);
  restart();
  update("(zzz)(GS (t 2.00) (pm PlayOn))");
  EXPECT_EQ(model->gameTime, 0.0f);
  EXPECT_EQ(model->getPlayMode(), PM_BEFORE_KICK_OFF);
}

TEST_F(WorldModelUpdateTest, HeadsAreToldByTheirSecondLetterAlone) {
  const std::string message =
      "(kiwi (now 1))(TSunami (t 3.00) (pm PlayOn))(TCH (n torso) (a 0 0 9.81))"
      "(xJ (n hj1) (ax 4.5))(gR (n rf) (c 1 2 3) (f 4 5 6))(aYe (n torso) (rt 50 0 0))"
      "(bear Quolnaris 1 self u07rc04)";
  update(message);
  EXPECT_EQ(model->gameTime, 3.0f);
  EXPECT_EQ(model->mySelf->getAccellerator(), Vector(0, 0, 9.8f));
  EXPECT_EQ(model->getHeadJoint(1)->getAngle(), 4.5f);
  EXPECT_EQ(model->mySelf->getRightFRP().getCenter(), Vector(1, 2, 3));
  EXPECT_EQ(model->mySelf->getGyrVector(), Vector(1, 0, 0));
  EXPECT_EQ(model->fastestTeammateUnum, 7);
  EXPECT_FALSE(model->visionThisCycle);
  update("(Get it)");
  EXPECT_TRUE(model->visionThisCycle);
}

TEST_F(WorldModelUpdateTest, ExpressionsThatAreNotClosedAreDropped) {
  update("(GS (t 1.00))(GS (t 2.00) (pm PlayOn)");
  EXPECT_EQ(model->gameTime, 1.0f);
  EXPECT_EQ(model->getPlayMode(), PM_BEFORE_KICK_OFF);
}

TEST_F(WorldModelUpdateTest, VisionHoldsForItsMessageOnly) {
  update("(See )");
  EXPECT_TRUE(model->visionThisCycle);
  update("(time (now 1.0))");
  EXPECT_FALSE(model->visionThisCycle);
}

// --- Time and game state ------------------------------------------------------------------------

TEST_F(WorldModelUpdateTest, TheServersClockChangesNothing) {
  EXPECT_TRUE(model->updateTime("(time (now 104.87))"));
  EXPECT_FALSE(model->updateTime("(time (now soon))"));
  EXPECT_EQ(model->gameTime, 0.0f);
}

TEST_F(WorldModelUpdateTest, ReadsAWholeGameState) {
  update("(GS (unum 3) (team left) (sl 1) (sr 2) (t 12.34) (pm KickIn_Right))");
  EXPECT_TRUE(model->isInit);
  EXPECT_EQ(model->mySelf->getPlayerNumber(), 3);
  EXPECT_EQ(model->mySelf->getAgentNum(), 9);  // the configuration's number is another field
  EXPECT_EQ(model->ourSide, SIDE_LEFT);
  EXPECT_EQ(model->mySelf->getTeamSide(), SIDE_LEFT);
  EXPECT_EQ(model->ourGoals, 1);
  EXPECT_EQ(model->oppGoals, 2);
  EXPECT_EQ(model->gameTime, 12.34f);
  EXPECT_EQ(model->getPlayMode(), PM_KICK_IN_RIGHT);
}

TEST_F(WorldModelUpdateTest, TermsOfTheGameStateComeInAnyOrder) {
  update("(GS (pm PlayOn) (t 5.50) (team right) (sr 4) (sl 3) (unum 11))");
  EXPECT_EQ(model->getPlayMode(), PM_PLAY_ON);
  EXPECT_EQ(model->gameTime, 5.5f);
  EXPECT_EQ(model->ourSide, SIDE_RIGHT);
  EXPECT_EQ(model->ourGoals, 4);
  EXPECT_EQ(model->oppGoals, 3);
  EXPECT_EQ(model->mySelf->getPlayerNumber(), 11);
}

TEST_F(WorldModelUpdateTest, WithoutASideBothScoresAreTheOpponents) {
  update("(GS (sl 1) (sr 2) (t 0.00) (pm PlayOn))");
  EXPECT_EQ(model->ourGoals, 0);
  EXPECT_EQ(model->oppGoals, 2);
  update("(GS (sl 5) (t 0.00) (pm PlayOn))");
  EXPECT_EQ(model->oppGoals, 5);
}

TEST_F(WorldModelUpdateTest, AnySideButOneInLIsRight) {
  update("(GS (team middle))");
  EXPECT_EQ(model->ourSide, SIDE_RIGHT);
  update("(GS (team lower))");
  EXPECT_EQ(model->ourSide, SIDE_LEFT);
  EXPECT_EQ(model->mySelf->getTeamSide(), SIDE_LEFT);
}

TEST_F(WorldModelUpdateTest, TermsAreToldByOneLetter) {
  // The third letter "e" comes before the second "s"; unknown terms are passed over.
  update("(GS (xyz 4) (sea left) (uranus 5) (pony PlayOn) (tea 1) (ti 6.5))");
  EXPECT_EQ(model->mySelf->getPlayerNumber(), 5);
  EXPECT_EQ(model->getPlayMode(), PM_PLAY_ON);
  EXPECT_EQ(model->ourSide, SIDE_RIGHT);  // "(tea 1)" is a team that does not start with l
  EXPECT_EQ(model->gameTime, 6.5f);
}

TEST_F(WorldModelUpdateTest, PlayModesAreCutAtTheirParenthesis) {
  update("(GS (t 1.00) (pm free_kick_left))");
  EXPECT_EQ(model->getPlayMode(), PM_FREE_KICK_LEFT);
  update("(GS (pm goal_kick_right) (t 2.00))");
  EXPECT_EQ(model->getPlayMode(), PM_GOAL_KICK_RIGHT);
  EXPECT_EQ(model->gameTime, 2.0f);
}

TEST_F(WorldModelUpdateTest, KnowsEveryPlayMode) {
  for (int mode = PM_BEFORE_KICK_OFF; mode <= PM_FREE_KICK_RIGHT; ++mode) {
    update("(GS (t 1.00) (pm " + std::string(PlayModeNames[mode]) + "))");
    EXPECT_EQ(model->getPlayMode(), mode);
  }
}

TEST_F(WorldModelUpdateTest, UnknownPlayModesAreIllegal) {
  for (const char* mode : {"GameOver", "illegal", "playon", ")", "x"}) {
    update("(GS (pm PlayOn))");
    update("(GS (pm " + std::string(mode) + "))");
    EXPECT_EQ(model->getPlayMode(), PM_ILLEGAL) << mode;
  }
  update("(GS (pm PlayOnward" + std::string(500, 'x') + "))");
  EXPECT_EQ(model->getPlayMode(), PM_PLAY_ON);
}

TEST_F(WorldModelUpdateTest, NumbersThatCannotBeReadLeaveTheirFieldAndEndTheGameState) {
  update("(GS (unum 4) (team left) (sl 1) (sr 2) (t 3.00) (pm PlayOn))");
  for (const char* broken :
       {"(t abc) (pm KickIn_Left)", "(sl x) (t 9.00)", "(sr e1) (t 9.00)", "(unum -) (t 9.00)",
        "(t 1e999) (pm KickIn_Left)", "(sl 99999999999) (t 9.00)", "(t nan) (sl 9)"}) {
    update("(GS " + std::string(broken) + ")");
    EXPECT_EQ(model->mySelf->getPlayerNumber(), 4) << broken;
    EXPECT_EQ(model->ourGoals, 1) << broken;
    EXPECT_EQ(model->oppGoals, 2) << broken;
    EXPECT_EQ(model->gameTime, 3.0f) << broken;
    EXPECT_EQ(model->getPlayMode(), PM_PLAY_ON) << broken;
  }
}

TEST_F(WorldModelUpdateTest, LaterNumberAndSideOverwriteEarlierOnes) {
  update("(GS (unum 4) (team left))");
  update("(GS (unum 6) (team right))");
  EXPECT_EQ(model->mySelf->getPlayerNumber(), 6);
  EXPECT_EQ(model->ourSide, SIDE_RIGHT);
}

TEST_F(WorldModelUpdateTest, ThreeModesStartTheOrientationAnew) {
  for (int mode = PM_BEFORE_KICK_OFF; mode <= PM_ILLEGAL; ++mode) {
    const bool restarts =
        mode == PM_BEFORE_KICK_OFF || mode == PM_GOAL_LEFT || mode == PM_GOAL_RIGHT;
    model->mySelf->gyro(0, 1) = 0.25;
    model->mySelf->vision(0, 1) = 0.25;
    model->fall = FALL_BACK;
    update("(GS (pm " + std::string(PlayModeNames[mode]) + "))");
    EXPECT_EQ(model->mySelf->gyro(0, 1), restarts ? 0.0 : 0.25) << mode;
    EXPECT_EQ(model->mySelf->vision(0, 1), restarts ? 0.0 : 0.25) << mode;
    EXPECT_EQ(model->fall, restarts ? FALL_NONE : FALL_BACK) << mode;
  }
}

TEST_F(WorldModelUpdateTest, TheSampleOfAResettingMessageIsStillIntegrated) {
  update("(GS (pm BeforeKickOff))(GYR (n torso) (rt 0 0 1500))");
  // 1500 degrees per second are 30 in a cycle.
  EXPECT_NEAR(model->mySelf->gyro(1, 0), 0.5, 1e-6);
}

// --- Gyro and accelerometer ---------------------------------------------------------------------

TEST_F(WorldModelUpdateTest, TheGyroIsScaledToACycle) {
  update("(GYR (n torso) (rt 10.10 -20.20 0.07))");
  // Narrowed to float first, then multiplied by the single-precision 0.02 in double.
  const double factor = 0.02f;
  EXPECT_EQ(model->mySelf->getGyrVector().x, static_cast<float>(10.10f * factor));
  EXPECT_EQ(model->mySelf->getGyrVector().y, static_cast<float>(-20.20f * factor));
  EXPECT_EQ(model->mySelf->getGyrVector().z, static_cast<float>(0.07f * factor));
}

TEST_F(WorldModelUpdateTest, TheBodyOfAGyroIsNotLookedAt) {
  update("(GYR (n nose) (rt 50 100 150))");
  EXPECT_EQ(model->mySelf->getGyrVector(), Vector(1, 2, 3));
}

TEST_F(WorldModelUpdateTest, AGyroThatCannotBeReadLeavesTheLastSample) {
  update("(GYR (n torso) (rt 50 100 150))");
  for (const char* broken : {"(GYR (n torso) (rt x 1 1))", "(GYR (n torso) (rt 1 y 1))",
                             "(GYR (n torso) (rt 1 1))", "(GYR)", "(GYR (n torso)(rt 1 1 1))"}) {
    update(broken);
    EXPECT_EQ(model->mySelf->getGyrVector(), Vector(1, 2, 3)) << broken;
  }
}

TEST_F(WorldModelUpdateTest, TheFirstAccelerationSnapsToUpright) {
  update("(ACC (n torso) (a 0.00 0.00 9.81))");  // 0.98 after the filter: below 6
  EXPECT_EQ(model->mySelf->getAccellerator(), Vector(0, 0, 9.8f));
}

TEST_F(WorldModelUpdateTest, TheAccelerometerIsFiltered) {
  model->mySelf->setAccellerator(Vector(1, 2, 9));
  update("(ACC (n torso) (a 3.00 -4.00 8.00))");
  const double tenth = 0.1f;
  const Vector filtered = model->mySelf->getAccellerator();
  EXPECT_EQ(filtered.x, static_cast<float>(1 * 0.9) + static_cast<float>(3 * tenth));
  EXPECT_EQ(filtered.y, static_cast<float>(2 * 0.9) + static_cast<float>(-4 * tenth));
  EXPECT_EQ(filtered.z, static_cast<float>(9 * 0.9) + static_cast<float>(8 * tenth));
}

TEST_F(WorldModelUpdateTest, FreeFallSnapsBackAfterSeveralCycles) {
  model->mySelf->setAccellerator(Vector(0, 0, 9.8f));
  float expected = 9.8f;
  for (int cycle = 1; cycle <= 4; ++cycle) {
    update("(ACC (n torso) (a 0 0 0))");
    expected = static_cast<float>(expected * 0.9);
    EXPECT_EQ(model->mySelf->getAccellerator().z, expected) << cycle;
  }
  EXPECT_GT(expected, 6.0f);
  update("(ACC (n torso) (a 0 0 0))");  // 5.79
  EXPECT_EQ(model->mySelf->getAccellerator(), Vector(0, 0, 9.8f));
}

TEST_F(WorldModelUpdateTest, ABlowAbove12SnapsBack) {
  model->mySelf->setAccellerator(Vector(0, 0, 9.8f));
  update("(ACC (n torso) (a 80 0 9.8))");  // length 12.66
  EXPECT_EQ(model->mySelf->getAccellerator(), Vector(0, 0, 9.8f));
  update("(ACC (n torso) (a 60 0 9.8))");  // length 11.49
  EXPECT_NEAR(model->mySelf->getAccellerator().x, 6, 1e-5);
}

TEST_F(WorldModelUpdateTest, AnAccelerationThatIsNoNumberStays) {
  model->mySelf->setAccellerator(Vector(std::nanf(""), 0, 9.8f));
  update("(ACC (n torso) (a 0 0 9.8))");
  EXPECT_TRUE(std::isnan(model->mySelf->getAccellerator().x));
  EXPECT_NEAR(model->mySelf->getAccellerator().z, 9.8, 1e-5);
}

TEST_F(WorldModelUpdateTest, AnAccelerationThatCannotBeReadLeavesTheFilter) {
  model->mySelf->setAccellerator(Vector(1, 2, 9));
  for (const char* broken : {"(ACC (n torso) (a x 1 1))", "(ACC (n torso) (a 1 1))", "(ACC)"}) {
    update(broken);
    EXPECT_EQ(model->mySelf->getAccellerator(), Vector(1, 2, 9)) << broken;
  }
}

// --- Feet and joints ----------------------------------------------------------------------------

TEST_F(WorldModelUpdateTest, FootForcesGoToTheirFoot) {
  update("(GS (t 4.00))(FRP (n rf) (c 0.01 -0.02 0.03) (f 1.5 -2.5 22.61))");
  const FRP& right = model->mySelf->getRightFRP();
  EXPECT_EQ(right.getCenter(), Vector(0.01f, -0.02f, 0.03f));
  EXPECT_EQ(right.getForce(), Vector(1.5f, -2.5f, 22.61f));
  EXPECT_EQ(right.getLastTimeSensed(), 4.0);
  EXPECT_EQ(right.getTFRP(), FRP_ILLEGAL);  // nobody fills it
  EXPECT_NE(model->mySelf->getLeftFRP().getLastTimeSensed(), 4.0);

  update("(GS (t 5.00))(FRP (n lf) (c 1 2 3) (f 4 5 6))");
  EXPECT_EQ(model->mySelf->getLeftFRP().getForce(), Vector(4, 5, 6));
  EXPECT_EQ(model->mySelf->getLeftFRP().getLastTimeSensed(), 5.0);
  EXPECT_EQ(model->mySelf->getRightFRP().getLastTimeSensed(), 4.0);
}

TEST_F(WorldModelUpdateTest, AnyFootButOneInRIsTheLeftOne) {
  update("(FRP (n xf) (c 1 2 3) (f 4 5 6))");
  EXPECT_EQ(model->mySelf->getLeftFRP().getCenter(), Vector(1, 2, 3));
  update("(FRP (n rf1) (c 7 8 9) (f 4 5 6))");  // the toe of a type 4 counts as its foot
  EXPECT_EQ(model->mySelf->getRightFRP().getCenter(), Vector(7, 8, 9));
}

TEST_F(WorldModelUpdateTest, AFootForceThatCannotBeReadLeavesTheLastOne) {
  update("(FRP (n lf) (c 1 2 3) (f 4 5 6))");
  for (const char* broken : {"(FRP (n lf) (c x 2 3) (f 7 7 7))", "(FRP (n lf) (c 7 7 7) (f x 5 6))",
                             "(FRP (n lf) (c 7 7 7))", "(FRP)", "(FRP (n lf))"}) {
    update(broken);
    EXPECT_EQ(model->mySelf->getLeftFRP().getCenter(), Vector(1, 2, 3)) << broken;
    EXPECT_EQ(model->mySelf->getLeftFRP().getForce(), Vector(4, 5, 6)) << broken;
  }
}

// Every hinge of the server, by its percept name and by its effector name, with the joint that it
// belongs to.
TEST_F(WorldModelUpdateTest, EveryHingeFindsItsJoint) {
  std::vector<std::pair<std::string, Joint*>> rows;
  for (const char letter : {'e', 'j'}) {
    const std::string l(1, letter);
    for (int no = 1; no <= 2; ++no) {
      rows.emplace_back("h" + l + std::to_string(no), model->getHeadJoint(no));
    }
    for (int side = 0; side < 2; ++side) {
      const std::string s = side == 0 ? "l" : "r";
      for (int no = 1; no <= 4; ++no) {
        rows.emplace_back(s + "a" + l + std::to_string(no), model->getHandJoint(no, side));
      }
      for (int no = 1; no <= 7; ++no) {
        rows.emplace_back(s + "l" + l + std::to_string(no), model->getLegJoint(no, side));
      }
    }
  }
  ASSERT_EQ(rows.size(), 48u);
  float angle = 0.25f;
  for (const auto& [name, joint] : rows) {
    update("(HJ (n " + name + ") (ax " + std::to_string(angle) + "))");
    EXPECT_EQ(joint->getAngle(), angle) << name;
    // No other joint has changed.
    int sameAngle = 0;
    for (const auto& [otherName, other] : rows) sameAngle += other->getAngle() == angle ? 1 : 0;
    EXPECT_EQ(sameAngle, 2) << name;  // each joint stands under two names
    angle = -angle + (angle < 0 ? 1.0f : 0.0f);
  }
}

TEST_F(WorldModelUpdateTest, AnglesAreKeptAsSentInSinglePrecision) {
  update("(HJ (n rlj3) (ax -12.34))");
  EXPECT_EQ(model->getLegJoint(3, 1)->getAngle(), -12.34f);
}

TEST_F(WorldModelUpdateTest, JointNamesAreToldByTwoLettersAndTheNumber) {
  update("(HJ (n xyz2) (ax 5))");  // neither l nor l: an arm on the right
  EXPECT_EQ(model->getHandJoint(2, 1)->getAngle(), 5.0f);
  update("(HJ (n lxz2) (ax 6))");
  EXPECT_EQ(model->getHandJoint(2, 0)->getAngle(), 6.0f);
  update("(HJ (n xlz7) (ax 7))");
  EXPECT_EQ(model->getLegJoint(7, 1)->getAngle(), 7.0f);
}

TEST_F(WorldModelUpdateTest, JointsThatDoNotExistAreDropped) {
  for (const char* name : {"hj0", "hj3", "hj-1", "raj0", "raj5", "laj99999", "rlj8", "llj-3",
                           "rlj99999999999", "hj", "r", "llj"}) {
    update("(HJ (n " + std::string(name) + ") (ax 77.00))");
  }
  for (int side = 0; side < 2; ++side) {
    for (int no = 1; no <= 4; ++no) EXPECT_EQ(model->getHandJoint(no, side)->getAngle(), 0.0f);
    for (int no = 1; no <= 7; ++no) EXPECT_EQ(model->getLegJoint(no, side)->getAngle(), 0.0f);
  }
  for (int no = 1; no <= 2; ++no) EXPECT_EQ(model->getHeadJoint(no)->getAngle(), 0.0f);
}

TEST_F(WorldModelUpdateTest, AnAngleThatCannotBeReadLeavesTheJoint) {
  update("(HJ (n llj4) (ax 12.50))");
  for (const char* broken : {"(HJ (n llj4) (ax x))", "(HJ (n llj4) (ax nan))", "(HJ (n llj4))",
                             "(HJ (n llj4) (ax))", "(HJ)", "(HJ (n))"}) {
    update(broken);
    EXPECT_EQ(model->getLegJoint(4, 0)->getAngle(), 12.5f) << broken;
  }
}

// --- Hearing
// --------------------------------------------------------------------------------------

class WorldModelUpdateHearTest : public WorldModelUpdateTest {
 protected:
  void hear(const std::string& rest) {
    model->heards = "old";
    EXPECT_FALSE(model->updateHear("(hear " + rest + ")"));
    EXPECT_EQ(model->heards, "");
  }
};

TEST_F(WorldModelUpdateHearTest, RemembersAClaim) {
  update("(GS (t 12.36))(hear Quolnaris 12.34 self u07rc04)");
  EXPECT_EQ(model->fastestTeammateUnum, 7);
  EXPECT_EQ(model->fastestReachCycle, 4);
  EXPECT_EQ(model->lastTimeHeard, static_cast<double>(12.36f));
  EXPECT_FALSE(model->fastestIsFall);
}

TEST_F(WorldModelUpdateHearTest, ReadsTwoDigitsOfEach) {
  hear("Quolnaris 12.34 -45.20 u11rc36");
  EXPECT_EQ(model->fastestTeammateUnum, 11);
  EXPECT_EQ(model->fastestReachCycle, 36);
}

TEST_F(WorldModelUpdateHearTest, OtherTeamsAreNotListenedTo) {
  for (const char* team : {"other", "Quolnari", "Quolnarisx", "quolnaris", "Rivals"}) {
    hear(std::string(team) + " 12.34 -45.2 u07rc04");
    EXPECT_EQ(model->fastestTeammateUnum, -1) << team;
    EXPECT_EQ(model->fastestReachCycle, 9999) << team;
    EXPECT_EQ(model->lastTimeHeard, -1.0) << team;
  }
}

TEST_F(WorldModelUpdateHearTest, TheTeamWordIsFixedWhateverTheConfigurationSays) {
  sandbox.set("Agent", "Public", "TeamName", "Others");
  restart();
  hear("Others 12.34 self u07rc04");
  EXPECT_EQ(model->fastestTeammateUnum, -1);
  hear("Quolnaris 12.34 self u07rc04");
  EXPECT_EQ(model->fastestTeammateUnum, 7);
}

TEST_F(WorldModelUpdateHearTest, WithoutACycleCountTheOldOneStays) {
  hear("Quolnaris 12.34 30 u05rc03");
  hear("Quolnaris 12.34 30 u07");
  EXPECT_EQ(model->fastestTeammateUnum, 7);
  EXPECT_EQ(model->fastestReachCycle, 3);
  hear("Quolnaris 12.34 30 u08rx05");
  EXPECT_EQ(model->fastestTeammateUnum, 8);
  EXPECT_EQ(model->fastestReachCycle, 3);
}

TEST_F(WorldModelUpdateHearTest, TheFirstLetterOfAMessageIsNotChecked) {
  hear("Quolnaris 12.34 30 x09rc01");
  EXPECT_EQ(model->fastestTeammateUnum, 9);
  EXPECT_EQ(model->fastestReachCycle, 1);
}

TEST_F(WorldModelUpdateHearTest, OtherMessagesGiveMeaninglessNumbersAndCount) {
  model->gameTime = 3.0f;
  hear("Quolnaris 12.34 30 ab");  // "ab)": 'b' - '0' is 50, ')' - '0' is -7
  EXPECT_EQ(model->fastestTeammateUnum, 493);
  EXPECT_EQ(model->fastestReachCycle, 9999);
  EXPECT_EQ(model->lastTimeHeard, 3.0);
  hear("Quolnaris 12.34 30 a");  // "a)", then NUL
  EXPECT_EQ(model->fastestTeammateUnum, -7 * 10 - 48);
  hear("Quolnaris 12.34 30 u01rc");  // "u01rc)", then NUL
  EXPECT_EQ(model->fastestReachCycle, -7 * 10 - 48);
}

TEST_F(WorldModelUpdateHearTest, AFallIsNeverHeard) {
  hear("Quolnaris 12.34 30 f00fff");
  hear("foof 12.34 30 u01rf00");
  EXPECT_FALSE(model->fastestIsFall);
}

TEST_F(WorldModelUpdateHearTest, MessagesWithMissingValuesAreDropped) {
  for (const char* broken : {"Quolnaris 12.34 self", "Quolnaris", "", "Quolnaris x self u07rc04",
                             "12.34 self u07rc04"}) {
    hear(broken);
    EXPECT_EQ(model->fastestTeammateUnum, -1) << broken;
    EXPECT_EQ(model->lastTimeHeard, -1.0) << broken;
  }
}

TEST_F(WorldModelUpdateHearTest, AClaimNeverAges) {
  update("(GS (t 1.00) (pm PlayOn))(hear Quolnaris 1.00 self u07rc04)");
  update("(GS (t 500.00) (pm KickOff_Left))");
  EXPECT_EQ(model->fastestTeammateUnum, 7);
  EXPECT_EQ(model->fastestReachCycle, 4);
  EXPECT_EQ(model->lastTimeHeard, 1.0);
}

}  // namespace
