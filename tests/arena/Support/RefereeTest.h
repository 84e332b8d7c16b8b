#ifndef QUOLNARIS_TESTS_ARENA_SUPPORT_REFEREETEST_H_
#define QUOLNARIS_TESTS_ARENA_SUPPORT_REFEREETEST_H_

#include <gtest/gtest.h>

#include "arena/Support/FakeWorld.h"

namespace arena {

// A referee over scripted robots: two players a side and a ball that is put where a test wants it.
class RefereeTest : public testing::Test, public RefereeFixture {
 protected:
  RefereeTest() { addPlayers(); }

  void expectBall(double x, double y) {
    EXPECT_NEAR(world.ballView.position.x(), x, 1e-9);
    EXPECT_NEAR(world.ballView.position.y(), y, 1e-9);
  }
  // Lets `toucher` touch a ball in the field and then puts the ball somewhere.
  void kickTo(RobotHandle toucher, double x, double y) {
    world.setBallAt(x > 14 ? 14 : x < -14 ? -14 : x, y > 9 ? 9 : y < -9 ? -9 : y);
    touch(toucher);
    world.setBallAt(x, y);
    step();
  }
};

}  // namespace arena

#endif  // QUOLNARIS_TESTS_ARENA_SUPPORT_REFEREETEST_H_
