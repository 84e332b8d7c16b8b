#include "WorldModel/Player.h"

#include <gtest/gtest.h>

#include <string>

#include "support/PointCheck.h"

namespace {

using support::expectNear;
using support::quarterTurnAboutZ;

constexpr float kSeenAt = 10.0f;

Player seenWithAllParts(float time) {
  Player player;
  player.leftLowerArmPosition = player.rightLowerArmPosition = player.leftFootPosition =
      player.rightFootPosition = player.headPosition = Vector(1, 2, 3);
  player.leftLowerArmLastTimeSeen = player.rightLowerArmLastTimeSeen = player.leftFootLastTimeSeen =
      player.rightFootLastTimeSeen = player.headLastTimeSeen = time;
  player.setCameraPosition(Vector(1, 2, 3));
  player.setBodyPosition(Vector(1, 2, 3));
  player.setRelativePosition(Vector(1, 2, 3));
  return player;
}

void expectAllParts(const Player& player, float x, float y, float z) {
  expectNear(player.leftLowerArmPosition, x, y, z);
  expectNear(player.rightLowerArmPosition, x, y, z);
  expectNear(player.leftFootPosition, x, y, z);
  expectNear(player.rightFootPosition, x, y, z);
  expectNear(player.headPosition, x, y, z);
}

TEST(PlayerTest, StartsWithoutSideAndNumberAndWithPartTimesOfZero) {
  const Player player;
  EXPECT_EQ(player.getTeamSide(), SIDE_ILLEGAL);
  EXPECT_EQ(player.getPlayerNumber(), 0);
  EXPECT_EQ(player.leftLowerArmLastTimeSeen, 0.0f);
  EXPECT_EQ(player.rightLowerArmLastTimeSeen, 0.0f);
  EXPECT_EQ(player.leftFootLastTimeSeen, 0.0f);
  EXPECT_EQ(player.rightFootLastTimeSeen, 0.0f);
  EXPECT_EQ(player.headLastTimeSeen, 0.0f);
  EXPECT_EQ(player.getLastTimeSeen(), -1000.0f);
}

TEST(PlayerTest, PartsHideTheFieldsOfTheSameNameInObject) {
  Player player;
  player.headPosition = Vector(1, 2, 3);
  EXPECT_EQ(static_cast<Object&>(player).headPosition, Vector(0, 0, 0));
}

TEST(PlayerTest, EachStepCarriesThePartsInPlace) {
  Player player = seenWithAllParts(kSeenAt);
  player.calculateBodyPosition(quarterTurnAboutZ(), kSeenAt);
  expectAllParts(player, -2, 1, 3);
  expectNear(player.getBodyPosition(), -2, 1, 3);
  player.calculateRelativePosition(quarterTurnAboutZ(), kSeenAt);
  expectAllParts(player, -1, -2, 3);
  expectNear(player.getRelativePosition(), -1, -2, 3);
  player.setGlobalPosition(Vector(7, 7, 7));
  player.calculateGlobalPosition(Vector(10, 20, 30), kSeenAt);
  expectAllParts(player, 9, 18, 33);
  expectNear(player.getGlobalPosition(), 9, 18, 33);
  EXPECT_EQ(player.getPreviousPosition(), Vector(7, 7, 7));
}

TEST(PlayerTest, RepeatingAStepTurnsThePartsAgainButNotThePlayer) {
  Player player = seenWithAllParts(kSeenAt);
  player.calculateRelativePosition(quarterTurnAboutZ(), kSeenAt);
  player.calculateRelativePosition(quarterTurnAboutZ(), kSeenAt);
  expectAllParts(player, -1, -2, 3);
  expectNear(player.getRelativePosition(), -2, 1, 3);
}

TEST(PlayerTest, PartsOfAnotherTimeStayWhereTheyAre) {
  Player player = seenWithAllParts(kSeenAt);
  player.headLastTimeSeen = kSeenAt - 0.06f;
  player.calculateBodyPosition(quarterTurnAboutZ(), kSeenAt);
  expectNear(player.headPosition, 1, 2, 3);
  expectNear(player.leftFootPosition, -2, 1, 3);
}

TEST(PlayerTest, AtGameTimeZeroThePlayerIsCarriedAndItsPartsAreNot) {
  Player player = seenWithAllParts(0.0f);
  player.calculateBodyPosition(quarterTurnAboutZ(), 0.0f);
  player.calculateRelativePosition(quarterTurnAboutZ(), 0.0f);
  player.calculateGlobalPosition(Vector(1, 1, 1), 0.0f);
  expectAllParts(player, 1, 2, 3);
  expectNear(player.getBodyPosition(), -2, 1, 3);
  expectNear(player.getGlobalPosition(), 0, -1, 4);
}

TEST(PlayerTest, CalculatedPositionIsTheMiddleOfTheFeet) {
  Player player;
  player.leftFootPosition = Vector(1, 2, 3);
  player.rightFootPosition = Vector(3, -4, 0);
  EXPECT_EQ(player.getCalculatedPosition(), Vector(2, -1, 1.5f));
}

struct DirectionRow {
  std::string name;
  Vector left, right;
  Orientation expected;
};

class PlayerBodyDirectionTest : public testing::TestWithParam<DirectionRow> {};

TEST_P(PlayerBodyDirectionTest, OfTheArms) {
  Player player;
  player.leftLowerArmPosition = GetParam().left;
  player.rightLowerArmPosition = GetParam().right;
  EXPECT_EQ(player.getBodyDirection(kSeenAt), GetParam().expected);
}

TEST_P(PlayerBodyDirectionTest, OfTheFeetWhereAnArmIsFromTheFuture) {
  Player player;
  // The arms say the opposite and must not be looked at.
  player.leftLowerArmPosition = GetParam().right;
  player.rightLowerArmPosition = GetParam().left;
  player.leftLowerArmLastTimeSeen = kSeenAt + 1.0f;
  player.leftFootPosition = GetParam().left;
  player.rightFootPosition = GetParam().right;
  EXPECT_EQ(player.getBodyDirection(kSeenAt), GetParam().expected);
}

TEST_P(PlayerBodyDirectionTest, OfTheFeetWhereTheArmsCoincide) {
  Player player;
  player.leftFootPosition = GetParam().left;
  player.rightFootPosition = GetParam().right;
  EXPECT_EQ(player.getBodyDirection(kSeenAt), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PlayerBodyDirectionTest,
    testing::Values(DirectionRow{"LeftFartherInX", {2, 0, 0}, {1, 0, 0}, SOUTH},
                    DirectionRow{"RightFartherInX", {1, 0, 0}, {2, 0, 0}, NORTH},
                    DirectionRow{"LeftFartherInY", {0, 2, 0}, {0, 1, 0}, EAST},
                    DirectionRow{"RightFartherInY", {0, 1, 0}, {0, 2, 0}, WEST},
                    // Equal differences count as differing in y.
                    DirectionRow{"DiagonalUp", {1, 1, 0}, {0, 0, 0}, EAST},
                    DirectionRow{"DiagonalDown", {1, 0, 0}, {0, 1, 0}, WEST},
                    DirectionRow{"Coinciding", {1, 1, 5}, {1, 1, 0}, UNKNOWN}),
    [](const auto& row) { return row.param.name; });

// Any sighting of the past counts as recent, also none at all: an arm never seen is looked at where
// it was left, at the origin.
TEST(PlayerTest, ArmsNeverSeenCountAsSeen) {
  Player player;
  player.leftLowerArmPosition = Vector(2, 0, 0);
  player.leftLowerArmLastTimeSeen = kSeenAt;
  player.leftFootPosition = Vector(0, 2, 0);
  player.leftFootLastTimeSeen = player.rightFootLastTimeSeen = kSeenAt;
  EXPECT_EQ(player.getBodyDirection(kSeenAt), SOUTH);
}

TEST(PlayerTest, OneFootFromTheFutureMakesTheDirectionUnknown) {
  Player player;
  player.leftFootPosition = Vector(2, 0, 0);
  player.rightFootLastTimeSeen = kSeenAt + 1.0f;
  EXPECT_EQ(player.getBodyDirection(kSeenAt), UNKNOWN);
  player.rightFootLastTimeSeen = kSeenAt + 0.99f;
  EXPECT_EQ(player.getBodyDirection(kSeenAt), SOUTH);
  player.leftFootLastTimeSeen = kSeenAt + 1.0f;
  EXPECT_EQ(player.getBodyDirection(kSeenAt), UNKNOWN);
}

}  // namespace
