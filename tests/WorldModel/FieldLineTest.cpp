#include "WorldModel/FieldLine.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

FieldLine lineTo(float x, float y, float z = 0) {
  Object first;
  Object second;
  first.setRelativePosition(Vector(1, 1, 1));
  second.setRelativePosition(Vector(1 + x, 1 + y, 1 + z));
  FieldLine line;
  line.setFirstPoint(first);
  line.setSecondPoint(second);
  return line;
}

LineSlopeType slopeOf(float x, float y, float z = 0) {
  return lineTo(x, y, z).getSlope();
}

TEST(FieldLineTest, StartsUnclassified) {
  EXPECT_EQ(FieldLine().lineSlope, LINE_NONE);
}

TEST(FieldLineTest, LinesAlongXAreHorizontalAndAlongYVertical) {
  EXPECT_EQ(slopeOf(5, 0), LINE_HORIZONTAL);
  EXPECT_EQ(slopeOf(-5, 0), LINE_HORIZONTAL);
  EXPECT_EQ(slopeOf(0, 5), LINE_VERTICAL);
  EXPECT_EQ(slopeOf(0, -5), LINE_VERTICAL);
}

TEST(FieldLineTest, AllowsATenthAcross) {
  EXPECT_EQ(slopeOf(1, 0.1f), LINE_HORIZONTAL);  // 0.0995 of its length across
  EXPECT_EQ(slopeOf(1, 0.102f), LINE_NONE);      // 0.1015
  EXPECT_EQ(slopeOf(0.1f, 1), LINE_VERTICAL);
  EXPECT_EQ(slopeOf(0.102f, 1), LINE_NONE);
}

TEST(FieldLineTest, NeedsNineTenthsAlong) {
  EXPECT_EQ(slopeOf(1, 0, 0.47f), LINE_HORIZONTAL);  // 0.905
  EXPECT_EQ(slopeOf(1, 0, 0.5f), LINE_NONE);         // 0.894
  EXPECT_EQ(slopeOf(0, 1, 0.47f), LINE_VERTICAL);
  EXPECT_EQ(slopeOf(0, 1, 0.5f), LINE_NONE);
}

TEST(FieldLineTest, ALineWithoutLengthIsUnclassified) {
  EXPECT_EQ(slopeOf(0, 0), LINE_NONE);
}

TEST(FieldLineTest, ASlantedLineIsClassifiedAnewEachTime) {
  FieldLine line = lineTo(1, 1);
  EXPECT_EQ(line.getSlope(), LINE_NONE);
  line.SecondPoint.setRelativePosition(Vector(9, 1, 1));
  EXPECT_EQ(line.getSlope(), LINE_HORIZONTAL);
}

TEST(FieldLineTest, AFoundSlopeIsKept) {
  FieldLine line = lineTo(1, 0);
  EXPECT_EQ(line.getSlope(), LINE_HORIZONTAL);
  line.SecondPoint.setRelativePosition(Vector(1, 9, 1));
  EXPECT_EQ(line.getSlope(), LINE_HORIZONTAL);
  line.calculateSlope();
  EXPECT_EQ(line.getSlope(), LINE_VERTICAL);
}

TEST(FieldLineTest, StepsApplyToBothPoints) {
  Matrix<4, 4> turn;
  turn.rotationByZ(90);
  FieldLine line;
  line.FirstPoint.setCameraPosition(Vector(1, 0, 0));
  line.SecondPoint.setCameraPosition(Vector(0, 2, 0));
  line.calculateBody(turn);
  line.calculateRelative(turn);
  line.calculateGlobal(Vector(10, 10, 0));
  EXPECT_NEAR(line.getFirstPoint().getBodyPosition().y, 1, 1e-6);
  EXPECT_NEAR(line.getSecondPoint().getBodyPosition().x, -2, 1e-6);
  EXPECT_NEAR(line.getFirstPoint().getRelativePosition().x, -1, 1e-6);
  EXPECT_NEAR(line.getSecondPoint().getRelativePosition().y, -2, 1e-6);
  EXPECT_NEAR(line.getFirstPoint().getGlobalPosition().x, 9, 1e-6);
  EXPECT_NEAR(line.getSecondPoint().getGlobalPosition().y, 8, 1e-6);
}

TEST(FieldLineTest, PointsAreCopiedWithAllTheirFields) {
  Object point;
  point.setLastTimeSeen(3.5f);
  point.headPosition = Vector(1, 2, 3);
  point.headLastTimeSeen = 4.5f;
  FieldLine line;
  line.setFirstPoint(point);
  point.setLastTimeSeen(9.0f);
  EXPECT_EQ(line.getFirstPoint().getLastTimeSeen(), 3.5f);
  EXPECT_EQ(line.getFirstPoint().headPosition, Vector(1, 2, 3));
  EXPECT_EQ(line.getFirstPoint().headLastTimeSeen, 4.5f);
}

}  // namespace
