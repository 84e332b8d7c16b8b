#include "support/TestPlayer.h"

namespace {

PLAYER_TEST(TestPlayerTest, BeliefFollowsTheScene) {
  for (const TeamSide side : {SIDE_LEFT, SIDE_RIGHT}) {
    support::TestPlayer p(9, side);
    p.scene.x = -6;
    p.scene.y = 2;
    p.scene.heading = 40;
    p.scene.ball = {3, -1};
    p.scene.others = {{true, 4, -8, 1, EAST}, {false, 10, 2, 2, WEST, true}};
    p.settle();
    p.scene.heading = 0;
    p.cycle();
    EXPECT_EQ(p.world.ourSide, side);
    EXPECT_NEAR(p.world.getAgentPosition().getX(), -6, 1e-3);
    EXPECT_NEAR(p.world.getAgentPosition().getY(), 2, 1e-3);
    EXPECT_NEAR(p.world.ball->getGlobalPosition().getX(), 3, 1e-3);
    EXPECT_NEAR(p.world.ball->getGlobalPosition().getY(), -1, 1e-3);
    EXPECT_NEAR(p.world.ball->getGlobalPosition().getZ(), 0, 1e-3);
    const Player& mate = p.world.player[0][3];
    EXPECT_NEAR(mate.getCalculatedPosition().getX(), -8, 1e-3);
    EXPECT_EQ(mate.getBodyDirection(p.world.gameTime), EAST);
    EXPECT_GT(mate.headPosition.getZ(), 0.5);
    EXPECT_EQ(p.world.player[1][9].getBodyDirection(p.world.gameTime), WEST);
    EXPECT_LT(p.world.player[1][9].headPosition.getZ(), 0.5);
    p.scene.heading = 40;
    p.cycles(3);
    EXPECT_NEAR(p.world.getAngleTo(Vector(100, 2, 0)), -40, 1e-2);
    EXPECT_NEAR(p.world.getAgentPosition().getX(), -6, 1e-2);
    EXPECT_NEAR(p.world.ball->getGlobalPosition().getX(), 3, 1e-2);
    p.scene.lying = FALL_BACK;
    p.cycle();
    EXPECT_EQ(p.world.fall, FALL_BACK);
    p.scene.lying = FALL_NONE;
    p.cycle();
    EXPECT_FALSE(p.world.isFall());
  }
}

}  // namespace
