// The vision expression: sightings into the camera frame.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "WorldModelFixture.h"

namespace {

class WorldModelVisionTest : public WorldModelFixture {
 protected:
  static Vector polarVector(double distance, double azimuth, double elevation) {
    return Vector(distance, azimuth, elevation, SPHERICAL);
  }

  // Parses without localising, so that sightings stay in the camera frame.
  void parse(const std::string& objects) { model->parse(see(objects)); }
};

TEST_F(WorldModelVisionTest, NothingInSightIsStillVision) {
  update(see(""));
  EXPECT_TRUE(model->visionThisCycle);
  EXPECT_EQ(model->flagCounted, 0);
  EXPECT_TRUE(model->fieldLine.empty());
  EXPECT_EQ(model->getAgentPosition(), Vector(0, 0, 0));
}

TEST_F(WorldModelVisionTest, NumbersOfLandmarks) {
  EXPECT_EQ(WorldModel::getFlagNumber(true, false, 0), 0);
  EXPECT_EQ(WorldModel::getFlagNumber(true, false, 1), 1);
  EXPECT_EQ(WorldModel::getFlagNumber(true, true, 0), 2);
  EXPECT_EQ(WorldModel::getFlagNumber(true, true, 1), 3);
  EXPECT_EQ(WorldModel::getFlagNumber(false, false, 0), 4);
  EXPECT_EQ(WorldModel::getFlagNumber(false, false, 1), 5);
  EXPECT_EQ(WorldModel::getFlagNumber(false, true, 0), 6);
  EXPECT_EQ(WorldModel::getFlagNumber(false, true, 1), 7);
}

TEST_F(WorldModelVisionTest, EachLandmarkHasItsPlace) {
  const std::vector<std::string> names = {"F1L", "F2L", "F1R", "F2R", "G1L", "G2L", "G1R", "G2R"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    restart();
    parse("(" + names[i] + " (pol 5.50 -12.25 3.75))");
    for (std::size_t k = 0; k < names.size(); ++k) {
      const bool isIt = k == i;
      EXPECT_EQ(model->flag[k].getLastTimeSeen(), isIt ? 10.0f : -1000.0f) << names[i] << k;
      EXPECT_EQ(model->flag[k].getCameraPosition(),
                isIt ? polarVector(5.5, -12.25, 3.75) : Vector());
    }
  }
}

TEST_F(WorldModelVisionTest, LandmarksAreToldByTheirLetters) {
  parse("(F9Q (pol 1.00 0.00 0.00)) (G2x (pol 2.00 0.00 0.00))");  // neither 2 nor R; 2, not R
  EXPECT_EQ(model->flag[0].getCameraPosition(), Vector(1, 0, 0));
  EXPECT_EQ(model->flag[5].getCameraPosition(), Vector(2, 0, 0));
}

TEST_F(WorldModelVisionTest, UpdateCameraFlagStoresASighting) {
  model->gameTime = 7.0f;
  model->updateCameraFlag(Vector(1, 2, 3), 6);
  EXPECT_EQ(model->flag[6].getCameraPosition(), Vector(1, 2, 3));
  EXPECT_EQ(model->flag[6].getLastTimeSeen(), 7.0f);
}

TEST_F(WorldModelVisionTest, TheBallIsStored) {
  parse("(B (pol 2.00 90.00 0.00))");
  EXPECT_EQ(model->ball->getCameraPosition(), polarVector(2, 90, 0));
  expectNear(model->ball->getCameraPosition(), 0, 2, 0);  // a positive azimuth is to the left
  EXPECT_EQ(model->ball->getLastTimeSeen(), 10.0f);
}

TEST_F(WorldModelVisionTest, APositiveElevationIsUp) {
  parse("(B (pol 2.00 0.00 30.00))");
  expectNear(model->ball->getCameraPosition(), std::sqrt(3.0), 0, 1);
}

TEST_F(WorldModelVisionTest, TheBallsFirstVelocityComesFromItsInitialPositions) {
  parse("(B (pol 2.00 0.00 0.00))");
  EXPECT_EQ(model->ball->getVelocity(), Vector(0, 0, static_cast<float>(-0.04f / 0.94)));
}

TEST_F(WorldModelVisionTest, TheVelocityIsThatOfTheSightingsBefore) {
  model->ball->setGlobalPosition(Vector(1, 1, 0));
  model->ball->setGlobalPosition(Vector(2.88f, 0.06f, 0));
  parse("(B (pol 2.00 0.00 0.00))");
  expectNear(model->ball->getVelocity(), 2, -1, 0);
  EXPECT_EQ(model->ball->getGlobalPosition(), Vector(2.88f, 0.06f, 0));
}

TEST_F(WorldModelVisionTest, TheVelocitysDivisorIsDoublePrecision) {
  model->ball->setGlobalPosition(Vector(0, 0, 0));
  model->ball->setGlobalPosition(Vector(12.375f, 0, 0));
  parse("(B (pol 2.00 0.00 0.00))");
  EXPECT_EQ(model->ball->getVelocity().x, static_cast<float>(12.375 / 0.94));
  EXPECT_NE(model->ball->getVelocity().x, static_cast<float>(12.375 / 0.94f));
}

TEST_F(WorldModelVisionTest, TheTrueBallPositionTriggersTheVelocityToo) {
  model->ball->setGlobalPosition(Vector(0.94f, 0, 0));
  parse("(ballpos 1.5 -2.5 0.04)");
  EXPECT_EQ(model->ball->getServerBallPos(), Vector(1.5f, -2.5f, 0.04f));
  expectNear(model->ball->getVelocity(), 1, 0, 0);
  EXPECT_EQ(model->ball->getLastTimeSeen(), -1000.0f);
}

TEST_F(WorldModelVisionTest, TheTrueOwnPositionIsStoredAndNotUsed) {
  update(see("(mypos 1.5 -2.5 0.35)"));
  EXPECT_EQ(model->mySelf->getServerMypos(), Vector(1.5f, -2.5f, 0.35f));
  EXPECT_EQ(model->getAgentPosition(), Vector(0, 0, 0));
}

TEST_F(WorldModelVisionTest, LinesOfAMessageAreCollectedAfresh) {
  parse(
      "(L (pol 1.00 0.00 0.00) (pol 2.00 90.00 0.00)) (L (pol 3.00 0.00 0.00) (pol 4.00 0.00 "
      "0.00))");
  ASSERT_EQ(model->fieldLine.size(), 2u);
  const FieldLine& line = model->fieldLine[0];
  EXPECT_EQ(line.getFirstPoint().getCameraPosition(), polarVector(1, 0, 0));
  EXPECT_EQ(line.getSecondPoint().getCameraPosition(), polarVector(2, 90, 0));
  EXPECT_EQ(line.getFirstPoint().getLastTimeSeen(), 10.0f);
  EXPECT_EQ(line.getSecondPoint().getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->fieldLine[1].getFirstPoint().getCameraPosition(), polarVector(3, 0, 0));
  parse("(L (pol 5.00 0.00 0.00) (pol 6.00 0.00 0.00))");
  ASSERT_EQ(model->fieldLine.size(), 1u);
  update("(time (now 1.0))");
  EXPECT_TRUE(model->fieldLine.empty());
}

TEST_F(WorldModelVisionTest, UnknownObjectsArePassedOver) {
  parse("(myorien 45.00) (X (pol 9 9 9)) (Z1 (Z2 (Z3))) (B (pol 2.00 0.00 0.00))");
  EXPECT_EQ(model->ball->getLastTimeSeen(), 10.0f);
}

TEST_F(WorldModelVisionTest, OneSeparatorIsPassedOverWhateverItIs) {
  parse("(F1L (pol 1.00 0.00 0.00))x(F2L (pol 2.00 0.00 0.00))");
  EXPECT_EQ(model->flag[0].getCameraPosition(), Vector(1, 0, 0));
  EXPECT_EQ(model->flag[1].getCameraPosition(), Vector(2, 0, 0));
}

TEST_F(WorldModelVisionTest, ExtraSeparatorsAreLostOneByOne) {
  parse("   (F1L (pol 1.00 0.00 0.00))  xB \t(F2L (pol 2.00 0.00 0.00))");
  EXPECT_EQ(model->flag[0].getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->flag[1].getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->ball->getLastTimeSeen(), -1000.0f);
}

TEST_F(WorldModelVisionTest, AMissingSeparatorCostsTheNextObject) {
  // The parenthesis of F2L is taken for the separator; the object after it is read again.
  parse("(F1L (pol 1.00 0.00 0.00))(F2L (pol 2.00 0.00 0.00)) (F1R (pol 3.00 0.00 0.00))");
  EXPECT_EQ(model->flag[0].getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->flag[1].getLastTimeSeen(), -1000.0f);
  EXPECT_EQ(model->flag[2].getLastTimeSeen(), 10.0f);
}

TEST_F(WorldModelVisionTest, TheHeadIsPassedOverByItsLength) {
  model->parse("(GS (t 10.00))(Seen(B (pol 2.00 0.00 0.00)))");
  EXPECT_EQ(model->ball->getLastTimeSeen(), 10.0f);
}

TEST_F(WorldModelVisionTest, ShortVisionExpressionsHoldNothing) {
  for (const char* vision : {"(See)", "(See )", "(Se)", "( e)"}) {
    model->parse(vision);
    EXPECT_TRUE(model->visionThisCycle) << vision;
  }
}

TEST_F(WorldModelVisionTest, ABallWithoutNumbersIsSeenWhereItWas) {
  for (const char* broken :
       {"(B (pol nan nan nan))", "(B (pol 1 2))", "(B)", "(B (pol 1e999 0 0))"}) {
    restart();
    model->ball->setCameraPosition(Vector(1, 2, 3));
    parse(broken);
    EXPECT_EQ(model->ball->getCameraPosition(), Vector(1, 2, 3)) << broken;
    EXPECT_EQ(model->ball->getLastTimeSeen(), 10.0f) << broken;
    EXPECT_NE(model->ball->getVelocity(), Vector()) << broken;
  }
}

TEST_F(WorldModelVisionTest, ALandmarkWithoutNumbersIsSeenWhereItWas) {
  for (const char* broken : {"(F1L (pol nan nan nan))", "(F1L (pol 1 inf 2))", "(F1L)"}) {
    restart();
    model->flag[0].setCameraPosition(Vector(1, 2, 3));
    model->flag[4].setCameraPosition(Vector(4, 5, 6));
    parse(std::string(broken) + " (G1L (pol 1.00 nan nan))");
    EXPECT_EQ(model->flag[0].getCameraPosition(), Vector(1, 2, 3)) << broken;
    EXPECT_EQ(model->flag[0].getLastTimeSeen(), 10.0f) << broken;
    EXPECT_EQ(model->flag[4].getCameraPosition(), Vector(4, 5, 6)) << broken;
    EXPECT_EQ(model->flag[4].getLastTimeSeen(), 10.0f) << broken;
  }
}

// As the league's server has sent it.
constexpr const char* kLineWithoutAnEnd = "(L (pol nan nan nan) (pol 4.49 60.00 2.50))";

TEST_F(WorldModelVisionTest, ALineWithoutTheNumbersOfOneEndIsALine) {
  parse("(L (pol 7.71 58.90 5.58) (pol 7.52 59.95 5.19)) " + std::string(kLineWithoutAnEnd) +
        " (L (pol 4.21 -1.50 2.50) (pol nan nan nan))");
  ASSERT_EQ(model->fieldLine.size(), 3u);
  EXPECT_EQ(model->fieldLine[1].getFirstPoint().getCameraPosition(), Vector());
  EXPECT_EQ(model->fieldLine[1].getFirstPoint().getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->fieldLine[1].getSecondPoint().getCameraPosition(), polarVector(4.49, 60, 2.5));
  EXPECT_EQ(model->fieldLine[1].getSecondPoint().getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->fieldLine[2].getFirstPoint().getCameraPosition(), polarVector(4.21, -1.5, 2.5));
  EXPECT_EQ(model->fieldLine[2].getSecondPoint().getCameraPosition(), Vector());
}

TEST_F(WorldModelVisionTest, APictureWhoseOnlyLineHasAnEndWithoutNumbersHasALine) {
  Matrix<4, 4> turned;
  turned.rotationByZ(30);
  model->mySelf->setGyroRotation(turned);
  update(see(kLineWithoutAnEnd));
  // A line makes vision follow the gyro.
  EXPECT_NE(model->mySelf->gyro.get(1, 0), 0);
  EXPECT_EQ(model->mySelf->body.get(1, 0), model->mySelf->gyro.get(1, 0));
}

TEST_F(WorldModelVisionTest, LinesWithoutAnyNumbersAreLines) {
  for (const char* broken : {"(L (pol nan nan nan) (pol nan nan nan))", "(L (pol 1 x 3))", "(L)"}) {
    parse(broken);
    ASSERT_EQ(model->fieldLine.size(), 1u) << broken;
    EXPECT_EQ(model->fieldLine[0].getFirstPoint().getCameraPosition(), Vector()) << broken;
    EXPECT_EQ(model->fieldLine[0].getSecondPoint().getCameraPosition(), Vector()) << broken;
  }
}

TEST_F(WorldModelVisionTest, APlayerWithoutNumbersIsSeenWhereItWas) {
  for (const char* broken :
       {"(P (team A) (id 3) (head (pol nan nan nan)))", "(P (team A) (id 3) (head (pol 1 x 2)))"}) {
    restart();
    Player& other = model->player[1][2];
    other.setCameraPosition(Vector(1, 2, 3));
    other.headPosition = Vector(4, 5, 6);
    parse(broken);
    EXPECT_EQ(other.getCameraPosition(), Vector(1, 2, 3)) << broken;
    EXPECT_EQ(other.getLastTimeSeen(), 10.0f) << broken;
    EXPECT_EQ(other.headPosition, Vector(4, 5, 6)) << broken;
    EXPECT_EQ(other.headLastTimeSeen, 10.0f) << broken;
    EXPECT_EQ(other.rightFootLastTimeSeen, 0.0f) << broken;
  }
  restart();
  parse("(P (team A) (id 3))");
  EXPECT_EQ(model->player[1][2].getLastTimeSeen(), 10.0f);
}

TEST_F(WorldModelVisionTest, PlayersWithoutANumberAndTruePlacesThatCannotBeReadAreDropped) {
  for (const char* broken : {"(mypos 1 2)", "(ballpos a b c)", "(P)", "(P (team A))",
                             "(P (team A) (id x) (head (pol 1 2 3)))"}) {
    restart();
    parse(broken);
    EXPECT_EQ(model->ball->getLastTimeSeen(), -1000.0f) << broken;
    EXPECT_EQ(model->ball->getVelocity(), Vector()) << broken;
    EXPECT_EQ(model->ball->getServerBallPos(), Vector()) << broken;
    EXPECT_EQ(model->mySelf->getServerMypos(), Vector()) << broken;
    EXPECT_TRUE(model->fieldLine.empty()) << broken;
    for (const Flag& flag : model->flag) EXPECT_EQ(flag.getLastTimeSeen(), -1000.0f) << broken;
    for (const auto& team : model->player) {
      for (const Player& player : team) EXPECT_EQ(player.getLastTimeSeen(), -1000.0f) << broken;
    }
  }
}

// --- Players ----------------------------------------------------------------------------------

constexpr const char* kMate =
    "(P (team Quolnaris) (id 7) (head (pol 4.25 40.61 -0.06)) (rlowerarm (pol 4.28 38.34 -1.02)) "
    "(llowerarm (pol 4.42 40.25 -0.76)) (rfoot (pol 4.26 39.66 -7.18)) (lfoot (pol 4.33 40.92 "
    "-6.98)))";

TEST_F(WorldModelVisionTest, APlayerIsStoredByItsFirstPart) {
  parse(kMate);
  const Player& mate = model->player[0][6];
  EXPECT_EQ(mate.getCameraPosition(), polarVector(4.25, 40.61, -0.06));
  EXPECT_EQ(mate.getLastTimeSeen(), 10.0f);
  parse("(P (team Quolnaris) (id 7) (lfoot (pol 4.33 40.92 -6.98)))");
  EXPECT_EQ(mate.getCameraPosition(), polarVector(4.33, 40.92, -6.98));
}

TEST_F(WorldModelVisionTest, EachPartHasItsPlaceInSinglePrecision) {
  parse(kMate);
  const Player& mate = model->player[0][6];
  EXPECT_EQ(mate.headPosition, polarVector(4.25f, 40.61f, -0.06f));
  EXPECT_EQ(mate.rightLowerArmPosition, polarVector(4.28f, 38.34f, -1.02f));
  EXPECT_EQ(mate.leftLowerArmPosition, polarVector(4.42f, 40.25f, -0.76f));
  EXPECT_EQ(mate.rightFootPosition, polarVector(4.26f, 39.66f, -7.18f));
  EXPECT_EQ(mate.leftFootPosition, polarVector(4.33f, 40.92f, -6.98f));
  EXPECT_EQ(mate.headLastTimeSeen, 10.0f);
  EXPECT_EQ(mate.rightLowerArmLastTimeSeen, 10.0f);
  EXPECT_EQ(mate.leftLowerArmLastTimeSeen, 10.0f);
  EXPECT_EQ(mate.rightFootLastTimeSeen, 10.0f);
  EXPECT_EQ(mate.leftFootLastTimeSeen, 10.0f);
}

TEST_F(WorldModelVisionTest, OnlyPartsInSightAreStored) {
  parse("(P (team Quolnaris) (id 7) (rfoot (pol 4.26 39.66 -7.18)))");
  EXPECT_EQ(model->player[0][6].rightFootLastTimeSeen, 10.0f);
  EXPECT_EQ(model->player[0][6].leftFootLastTimeSeen, 0.0f);
  EXPECT_EQ(model->player[0][6].headLastTimeSeen, 0.0f);
}

TEST_F(WorldModelVisionTest, AnyOtherTeamIsTheOpponent) {
  for (const char* team : {"Rivals", "quolnaris", "Quolnari", "Quolnarisx"}) {
    restart();
    parse("(P (team " + std::string(team) + ") (id 4) (head (pol 3.00 0.00 0.00)))");
    EXPECT_EQ(model->player[1][3].getLastTimeSeen(), 10.0f) << team;
    EXPECT_EQ(model->player[1][3].headLastTimeSeen, 10.0f) << team;
    EXPECT_EQ(model->player[0][3].getLastTimeSeen(), -1000.0f) << team;
    EXPECT_EQ(model->player[0][3].headLastTimeSeen, 0.0f) << team;
  }
}

TEST_F(WorldModelVisionTest, TheOwnTeamIsTheConfiguredOne) {
  sandbox.set("Agent", "Public", "TeamName", "Rivals");
  restart();
  parse("(P (team Rivals) (id 4) (head (pol 3.00 0.00 0.00)))");
  EXPECT_EQ(model->player[0][3].getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->player[0][3].headLastTimeSeen, 10.0f);
}

TEST_F(WorldModelVisionTest, LongTeamNamesAreComparedWhole) {
  const std::string name(200, 'n');
  sandbox.set("Agent", "Public", "TeamName", name);
  restart();
  parse("(P (team " + name + "x) (id 4) (head (pol 3.00 0.00 0.00))) (P (team " + name +
        ") (id 5) (head (pol 3.00 0.00 0.00)))");
  EXPECT_EQ(model->player[1][3].getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->player[0][4].getLastTimeSeen(), 10.0f);
}

TEST_F(WorldModelVisionTest, RowsBearTheirSideAndNumbersWhicheverSideWePlayOn) {
  model->parse("(GS (unum 9) (team right))");
  EXPECT_EQ(model->player[0][0].getTeamSide(), SIDE_ILLEGAL);
  EXPECT_EQ(model->player[0][0].getPlayerNumber(), 0);
  model->setPositions("anything");  // any term at all of any player
  for (int i = 0; i < 11; ++i) {
    EXPECT_EQ(model->player[0][i].getTeamSide(), SIDE_LEFT);
    EXPECT_EQ(model->player[1][i].getTeamSide(), SIDE_RIGHT);
    EXPECT_EQ(model->player[0][i].getPlayerNumber(), i + 1);
    EXPECT_EQ(model->player[1][i].getPlayerNumber(), i + 1);
  }
}

TEST_F(WorldModelVisionTest, TheOwnBodyIsStoredLikeAnyOther) {
  parse(
      "(P (team Quolnaris) (id 9) (rlowerarm (pol 0.18 -36.56 -22.65)) (llowerarm (pol 0.18 "
      "35.08 -22.70)))");
  EXPECT_EQ(model->player[0][8].getLastTimeSeen(), 10.0f);
  EXPECT_EQ(model->player[0][8].leftLowerArmLastTimeSeen, 10.0f);
}

TEST_F(WorldModelVisionTest, UnknownTermsOfAPlayerArePassedOver) {
  parse(
      "(P (team Quolnaris) (id 7) (tail (pol 1 2 3)) (h (pol 1 2 3)) () (head (pol 4.25 40.61 "
      "-0.06)))");
  EXPECT_EQ(model->player[0][6].headPosition, polarVector(4.25f, 40.61f, -0.06f));
  // The first part of the list stands for the player, whatever it is called.
  EXPECT_EQ(model->player[0][6].getCameraPosition(), polarVector(1, 2, 3));
}

TEST_F(WorldModelVisionTest, NumbersOutside1To11AreNotStored) {
  for (const char* id : {"0", "12", "-1", "99", "2147483647", "-2147483648", "99999999999", "x"}) {
    parse("(P (team Quolnaris) (id " + std::string(id) + ") (head (pol 4.25 40.61 -0.06)))");
  }
  for (const auto& team : model->player) {
    for (const Player& player : team) {
      EXPECT_EQ(player.getLastTimeSeen(), -1000.0f);
      EXPECT_EQ(player.headLastTimeSeen, 0.0f);
    }
  }
}

TEST_F(WorldModelVisionTest, PartsUseTheLastTeamAndNumberBeforeThem) {
  model->setPositions("team Quolnaris");
  EXPECT_EQ(model->s, 0);
  model->setPositions("id 3");
  model->gameTime = 5.0f;
  model->setPositions("rfoot (pol 1 0 0)");
  EXPECT_EQ(model->player[0][2].rightFootLastTimeSeen, 5.0f);
  model->setPositions("team Rivals");
  EXPECT_EQ(model->s, 1);
  model->setPositions("lfoot (pol 1 0 0)");
  EXPECT_EQ(model->player[1][2].leftFootLastTimeSeen, 5.0f);
  // A bad number is 0, and what follows it is dropped.
  model->setPositions("id none");
  model->setPositions("head (pol 1 0 0)");
  for (const auto& team : model->player) {
    for (const Player& player : team) EXPECT_EQ(player.headLastTimeSeen, 0.0f);
  }
}

TEST_F(WorldModelVisionTest, TermsAreToldByTwoLetters) {
  model->gameTime = 5.0f;
  model->setPositions("team Quolnaris");
  model->setPositions("identity 3");
  model->setPositions("hexagon (pol 1 0 0)");
  model->setPositions("rl (pol 2 0 0)");
  EXPECT_EQ(model->player[0][2].headPosition, Vector(1, 0, 0));
  EXPECT_EQ(model->player[0][2].rightLowerArmPosition, Vector(2, 0, 0));
  model->setPositions("");
  model->setPositions("h");
  model->setPositions(" head (pol 9 0 0)");
  EXPECT_EQ(model->player[0][2].headPosition, Vector(1, 0, 0));
}

TEST_F(WorldModelVisionTest, SetCameraPlayerChecksTheNumberAlone) {
  model->gameTime = 5.0f;
  model->setCameraPlayer("Quolnaris", 11, "whatever", 2, 0, 0);
  model->setCameraPlayer("Rivals", 1, "", 3, 0, 0);
  model->setCameraPlayer("Quolnaris", 0, "head", 4, 0, 0);
  model->setCameraPlayer("Quolnaris", 12, "head", 4, 0, 0);
  EXPECT_EQ(model->player[0][10].getCameraPosition(), Vector(2, 0, 0));
  EXPECT_EQ(model->player[1][0].getCameraPosition(), Vector(3, 0, 0));
  EXPECT_EQ(model->player[0][0].getLastTimeSeen(), -1000.0f);
}

}  // namespace
