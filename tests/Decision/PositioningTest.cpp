#include "Decision/Positioning.h"

#include <gtest/gtest.h>

#include "support/PointCheck.h"

namespace {

using support::expectGroundPoint;

TEST(PositioningTest, AttackersKeepTheirLanesBesideTheBall) {
  const Vector self(1, 3, 0.45f);
  expectGroundPoint(positioning::attack(9, Vector(4, 2, 0), self), 3, 3.5);
  expectGroundPoint(positioning::attack(10, Vector(4, 2, 0), self), 3, 0.5);
  expectGroundPoint(positioning::attack(11, Vector(4, 2, 0), self), 4, 2);
  expectGroundPoint(positioning::attack(5, Vector(4, 2, 0), self), 4, 3);  // no lane: its own y
}

TEST(PositioningTest, AttackersWaitInFrontOfABallThatIsDeepInTheOwnHalf) {
  const Vector self(1, 3, 0.45f);
  expectGroundPoint(positioning::attack(9, Vector(-5, 2, 0), self), -6, 3.5);
  expectGroundPoint(positioning::attack(11, Vector(-5, 2, 0), self), -5, 2);
  expectGroundPoint(positioning::attack(2, Vector(-9, 2, 0), self), -5, 3);
}

TEST(PositioningTest, LanesAreSqueezedNearTheTouchLine) {
  expectGroundPoint(positioning::attack(9, Vector(0, 7, 0), Vector()), -1, 8.5);
  expectGroundPoint(positioning::attack(9, Vector(0, 10, 0), Vector()), -1, 10);
  expectGroundPoint(positioning::attack(10, Vector(0, -10, 0), Vector()), -1, -10);
  expectGroundPoint(positioning::halfBack(7, Vector(-7.5f, 10, 0)), -11, 10);
}

TEST(PositioningTest, HalfBacksStandAPartOfTheWayToTheBallAndFoldAtTheHalfWayLine) {
  expectGroundPoint(positioning::halfBack(7, Vector(-7.5f, 1, 0)), 7.5 / 1.875 - 15, 2.6);
  expectGroundPoint(positioning::halfBack(8, Vector(-7.5f, 1, 0)), 7.5 / 1.875 - 15, -0.6);
  expectGroundPoint(positioning::halfBack(6, Vector(-7.5f, 1, 0)), 7.5 / 2.72 - 15, 1);
  expectGroundPoint(positioning::halfBack(7, Vector(7.5f, 1, 0)), 15 - 22.5 / 1.875, 2.6);
}

TEST(PositioningTest, DefendersHoldTheirLineAndTheirOwnY) {
  const Vector self(-9, 4, 0.45f);
  for (int number : {4, 5}) {
    expectGroundPoint(positioning::defence(number, Vector(3, 0, 0), self), -11.6, 4);
    expectGroundPoint(positioning::defence(number, Vector(-6, 0, 0), self), 9 / 3.0 - 15, 4);
  }
  expectGroundPoint(positioning::defence(2, Vector(-5, 0, 0), self), -13.6, 4);
  expectGroundPoint(positioning::defence(2, Vector(-6, 0, 0), self), 9 / 7.5 - 15, 4);
}

TEST(PositioningTest, ADefenderCoversByTheGapOfWhoeverIsNearestToTheBallsLine) {
  Player team[kPlayers];
  for (int i = 0; i < kPlayers; ++i) {
    team[i].setPlayerNumber(i + 1);
    team[i].leftFootPosition = team[i].rightFootPosition = Vector(-10, 8, 0);
  }
  const Vector self(-13, -2, 0.45f);
  const Vector ball(-12, 1, 0);
  expectGroundPoint(positioning::cover(4, ball, self, team), 3 / 3.0 - 14.6,
                    -5);  // itself, 3 m to the right
  expectGroundPoint(positioning::cover(2, ball, self, team), 3 / 7.5 - 14.8, -5);
  team[8].leftFootPosition = team[8].rightFootPosition = Vector(-10, 2, 0);
  expectGroundPoint(positioning::cover(4, ball, self, team), 3 / 3.0 - 14.6, -1);
}

TEST(PositioningTest, TheDangerZoneLiesInFrontOfTheOwnGoal) {
  EXPECT_TRUE(positioning::isInDangerZone(Vector(-11.5f, 4.5f, 0)));
  EXPECT_FALSE(positioning::isInDangerZone(Vector(-11, 0, 0)));
  EXPECT_FALSE(positioning::isInDangerZone(Vector(-12, 5, 0)));
  EXPECT_FALSE(positioning::isInDangerZone(Vector(-12, -5, 0)));
}

}  // namespace
