#include "WorldModel/Object.h"

#include <gtest/gtest.h>

#include "support/PointCheck.h"

namespace {

using support::expectNear;
using support::quarterTurnAboutZ;

TEST(ObjectTest, StartsUnseenAtTheOrigin) {
  const Object object;
  EXPECT_EQ(object.getLastTimeSeen(), -1000.0f);
  EXPECT_EQ(object.dks, 0);
  for (const Vector& position :
       {object.getRealPosition(), object.getCameraPosition(), object.getRelativePosition(),
        object.getPreviousPosition(), object.getBodyPosition(), object.getGlobalPosition(),
        object.getVelocity()}) {
    EXPECT_EQ(position, Vector(0, 0, 0));
  }
}

TEST(ObjectTest, SettersAndGettersMeetTheSameField) {
  Object object;
  object.setBodyPosition(Vector(1, 2, 3));
  object.setRealPosition(Vector(4, 5, 6));
  object.setRelativePosition(Vector(7, 8, 9));
  object.setCameraPosition(Vector(10, 11, 12));
  object.setVelocity(Vector(13, 14, 15));
  object.setPreviousPosition(Vector(16, 17, 18));
  object.setLastTimeSeen(2.5f);
  EXPECT_EQ(object.getBodyPosition(), Vector(1, 2, 3));
  EXPECT_EQ(object.getRealPosition(), Vector(4, 5, 6));
  EXPECT_EQ(object.getRelativePosition(), Vector(7, 8, 9));
  EXPECT_EQ(object.getCameraPosition(), Vector(10, 11, 12));
  EXPECT_EQ(object.getVelocity(), Vector(13, 14, 15));
  EXPECT_EQ(object.getPreviousPosition(), Vector(16, 17, 18));
  EXPECT_EQ(object.getLastTimeSeen(), 2.5f);
}

TEST(ObjectTest, SettingTheGlobalPositionKeepsTheOldOne) {
  Object object;
  object.setGlobalPosition(Vector(1, 2, 3));
  object.setGlobalPosition(Vector(4, 5, 6));
  EXPECT_EQ(object.getGlobalPosition(), Vector(4, 5, 6));
  EXPECT_EQ(object.getPreviousPosition(), Vector(1, 2, 3));
}

TEST(ObjectTest, IsCarriedFromTheCameraToThePitch) {
  Object object;
  object.setCameraPosition(Vector(1, 2, 3));
  object.calculateBodyPosition(quarterTurnAboutZ());
  expectNear(object.getBodyPosition(), -2, 1, 3);
  object.calculateRelativePosition(quarterTurnAboutZ());
  expectNear(object.getRelativePosition(), -1, -2, 3);
  object.setGlobalPosition(Vector(9, 9, 9));
  object.calculateGlobalPosition(Vector(10, 20, 30));
  expectNear(object.getGlobalPosition(), 9, 18, 33);
  EXPECT_EQ(object.getPreviousPosition(), Vector(9, 9, 9));
  EXPECT_EQ(object.getCameraPosition(), Vector(1, 2, 3));
}

TEST(ObjectTest, TranslationsOfAMatrixMoveNothing) {
  Matrix<4, 4> shift;
  shift.translate(5, 6, 7);
  Object object;
  object.setCameraPosition(Vector(1, 2, 3));
  object.calculateBodyPosition(shift);
  EXPECT_EQ(object.getBodyPosition(), Vector(1, 2, 3));
}

}  // namespace
