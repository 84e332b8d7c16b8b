#include "BasicAction/OmniWalk.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "BasicAction/Reset.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"
#include "support/PairOracle.h"

namespace {

using support::expectLikeOracle;
using support::expectNoLegCommand;
using support::FakeBody;
using support::GaitNumbers;
using support::GaitStep;
using support::PairOracle;
using support::pointAt;

// omniWalk, normal walk: Xtorso 0.25 x 60 x 0.7, Ytorso -0.25 x -10, Ztorso 0.625 x -70,
// Xankle x 50, Zankle x 50, RotZ as it stands.
constexpr GaitNumbers kNumbers = {.torso = {10.5, 2.5, -43.75},
                                  .stride = {-12.5, 37.5, 50, 12.5},
                                  .lift = {37.5, 12.5, 6.25, -56.25},
                                  .yaw = {-1, -2, -4, -1}};

// 0.5 x 70 + 10, and the tenth of it at the start of the ramp: 4.5, cut.
constexpr int kSpeed = 45;
constexpr float kFirst = 4;

class OmniWalkTest : public support::GaitFixture<OmniWalk> {
 protected:
  OmniWalkTest() {
    body.stand(Vector(0, 0, 0), 0);
    gait.error = 10;
    gait.speed = 0.1;  // the ramp stays where it starts
    aim(60);
  }
  void aim(double angle) { gait.v = pointAt(angle); }
  void expect(const GaitStep& step, const GaitNumbers& numbers = kNumbers) {
    expectStepOf(numbers, step);
  }
};

TEST_F(OmniWalkTest, StartsFromTheNeutralStance) {
  body.nextCycle();
  EXPECT_FALSE(gait.execute());
  const Reset& reset = *body.agent.reset;
  EXPECT_EQ(reset.State, 1);
  EXPECT_EQ(reset.Speed, 10);
  EXPECT_EQ(reset.SP, 5);
  start();
  EXPECT_EQ(gait.basicWalkState, 2);
}

TEST_F(OmniWalkTest, TurnsLeftWithTheLeftLegAndUnwindsWithTheRight) {
  start();
  EXPECT_FALSE(gait.side);
  EXPECT_TRUE(gait.otherside);
  EXPECT_FALSE(gait.rotSide);
  EXPECT_TRUE(gait.rotOtherSide);
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, -0, 1, kFirst, false, 3});
  for (int pair = 0; pair < 40; ++pair) {
    expect({3, kLeft, kLeft, +1, 1, kFirst, true, 6});
    EXPECT_EQ(gait.rotate, -8);
    EXPECT_EQ(gait._sideOmni, kRight);
    EXPECT_EQ(gait._othersideOmni, kLeft);
    expect({6, kRight, kLeft, -1, 1, kFirst, false, 3});
    EXPECT_EQ(gait.rotate, 0);
  }
}

TEST_F(OmniWalkTest, TurnsRightWithTheRightLegAndUnwindsWithTheLeft) {
  aim(-60);
  start();
  EXPECT_TRUE(gait.side);
  EXPECT_FALSE(gait.otherside);
  EXPECT_TRUE(gait.rotSide);
  expect({2, kLeft, kRight, 0, 0.5, kFirst, false, 3});
  expect({3, kRight, kRight, 0, 1, kFirst, true, 6});
  expect({6, kLeft, kRight, 0, 1, kFirst, false, 3});
  for (int pair = 0; pair < 40; ++pair) {
    expect({3, kRight, kRight, +1, 1, kFirst, true, 6});
    expect({6, kLeft, kRight, -1, 1, kFirst, false, 3});
  }
}

TEST_F(OmniWalkTest, AnAngleOfZeroAtTheStartRotatesTheRightLeg) {
  aim(0);
  start();
  EXPECT_TRUE(gait.rotSide);
  EXPECT_FALSE(gait.rotOtherSide);
  EXPECT_TRUE(gait.side);
  EXPECT_FALSE(gait.otherside);
}

TEST_F(OmniWalkTest, BelowTheErrorItWalksStraight) {
  aim(9);
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  for (int pair = 0; pair < 40; ++pair) {
    expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
    expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
    EXPECT_EQ(gait.rotate, 0);
  }
}

TEST_F(OmniWalkTest, WhetherAPairTurnsIsDecidedAtEachPair) {
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  aim(5);  // the pair that is loaded turns all the same
  expect({3, kLeft, kLeft, +1, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, -1, 1, kFirst, false, 3});
  aim(60);
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  expect({3, kLeft, kLeft, +1, 1, kFirst, true, 6});
}

TEST_F(OmniWalkTest, AnErrorOfZeroTurnsAtEveryPair) {
  gait.error = 0;
  aim(0);
  start();
  expect({2, kLeft, kRight, 0, 0.5, kFirst, false, 3});
  expect({3, kRight, kRight, 0, 1, kFirst, true, 6});
  expect({6, kLeft, kRight, 0, 1, kFirst, false, 3});
  expect({3, kRight, kRight, +1, 1, kFirst, true, 6});
}

// With the target on the other side the chain 3, 6 passes into 5, 4 and back, with one straight
// step in between.
TEST_F(OmniWalkTest, ATargetThatChangesSideChangesTheRotatingLegAfterAnUnwindingStep) {
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  aim(-60);
  expect({3, kLeft, kLeft, +1, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, -1, 1, kFirst, true, 4});
  EXPECT_TRUE(gait.rotSide);
  EXPECT_FALSE(gait.rotOtherSide);
  EXPECT_EQ(gait._sideOmni, kLeft);
  EXPECT_EQ(gait._othersideOmni, kRight);
  expect({4, kLeft, kRight, 0, 1, kFirst, false, 5});
  for (int pair = 0; pair < 20; ++pair) {
    expect({5, kRight, kRight, +1, 1, kFirst, true, 4});
    expect({4, kLeft, kRight, -1, 1, kFirst, false, 5});
  }
  aim(60);
  expect({5, kRight, kRight, +1, 1, kFirst, true, 4});
  expect({4, kLeft, kRight, -1, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  expect({3, kLeft, kLeft, +1, 1, kFirst, true, 6});
}

TEST_F(OmniWalkTest, AtExactlyZeroTheRotatingLegStays) {
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  aim(0);
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  EXPECT_FALSE(gait.rotSide);
}

TEST_F(OmniWalkTest, AnAngleThatIsNotANumberTakesNeitherBranch) {
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  expect({3, kLeft, kLeft, +1, 1, kFirst, true, 6});
  gait.v = Vector(std::numeric_limits<float>::quiet_NaN(), 0, 0);
  for (int phase = 0; phase < 3; ++phase) {
    body.nextCycle();
    EXPECT_FALSE(gait.execute());
  }
  body.nextCycle();
  EXPECT_FALSE(gait.execute());
  EXPECT_TRUE(std::isnan(gait.angle));
  EXPECT_EQ(gait.basicWalkState, 3);
  EXPECT_FALSE(gait.rotSide) << "the rotating leg stays";
  for (double yaw : gait.RotZ) EXPECT_EQ(yaw, 0) << "as the unwinding step left them";
  EXPECT_EQ(gait.Zankle[0], 37.5);
}

// The lift of a straight pair is read from the forward gait, and read again before it is used.
TEST_F(OmniWalkTest, TheStraightPairsLiftHasNoEffect) {
  aim(5);
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  EXPECT_EQ(gait.Zankle[0], 0.5 * 50) << "forWalk's";
  EXPECT_EQ(gait.Xankle[1], 37.5);
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
}

TEST_F(OmniWalkTest, TheRampGrowsByATenthAtEachPairAndFallsAtOnce) {
  gait.speed = 0.25;
  start();
  const auto pair = [this](float turning, float unwinding) {
    expect({3, kLeft, kLeft, gait.RotZ[0] != 0, 1, turning, true, 6});
    expect({6, kRight, kLeft, gait.RotZ[0] != 0 ? -1 : 0, 1, unwinding, false, 3});
  };
  EXPECT_EQ(gait.p, 0.1);
  expect({2, kRight, kLeft, 0, 0.5, 4, false, 3});
  pair(4, 9);  // p 0.1, then 0.2
  EXPECT_DOUBLE_EQ(gait.p, 0.2);
  pair(9, 13);  // 0.3 x 45 = 13.5, just past the end
  EXPECT_DOUBLE_EQ(gait.p, 0.3);
  pair(13, 11);  // falls to 0.25 x 45 = 11.25
  EXPECT_DOUBLE_EQ(gait.p, 0.25);
  gait.speed = 2;
  pair(11, 15);
  EXPECT_DOUBLE_EQ(gait.p, 0.35);
  gait.speed = 0.15;
  pair(15, 6);
  EXPECT_DOUBLE_EQ(gait.p, 0.15);
}

TEST_F(OmniWalkTest, TheLongStrideYawsBothLegsAndScalesDifferently) {
  gait.actionType = 1;
  gait.p = gait.speed = 1;
  const GaitNumbers numbers = {.torso = {15, 2.5, -43.75},
                               .stride = {-20, 60, 80, 20},
                               .lift = {37.5, 12.5, 6.25, -56.25},
                               .yaw = {-1, -2, -4, -1}};
  feet.fixedYaw = -20;
  start();
  expect({2, kRight, kLeft, 0, 0.5, 65, false, 3}, numbers);
  expect({3, kLeft, kLeft, 0, 1, 65, true, 6}, numbers);
  expect({6, kRight, kLeft, 0, 1, 65, false, 3}, numbers);
  expect({3, kLeft, kLeft, +1, 1, 65, true, 6}, numbers);
  expect({6, kRight, kLeft, -1, 1, 65, false, 3}, numbers);

  // A request of the normal walk takes effect in the next cycle.
  gait.actionType = 0;
  feet.fixedYaw = 0;
  expect({3, kLeft, kLeft, +1, 1, kSpeed, true, 6});
}

TEST_F(OmniWalkTest, AnyOtherVariantHasTheLongStridesTorsoAndSpeedAndTheNormalStride) {
  gait.actionType = 2;
  gait.p = gait.speed = 1;
  GaitNumbers numbers = kNumbers;
  numbers.torso[0] = 15;
  start();
  expect({2, kRight, kLeft, 0, 0.5, 65, false, 3}, numbers);
  expect({3, kLeft, kLeft, 0, 1, 65, true, 6}, numbers);
}

TEST_F(OmniWalkTest, TheTorsoOffsetLeavesSinglePrecisionForItsLastFactor) {
  FakeBody::configure("omniWalk", "omniwalk", "Xtorso", "0.1");
  FakeBody::configure("omniWalk", "omniwalk", "RotZ", "0.1 0.2 0.3 0.4");
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.Xtorso, static_cast<double>(0.1f * 60.0f) * 0.7);
}

TEST_F(OmniWalkTest, LogsEachCycle) {
  gait.execute();
  EXPECT_EQ(body.takeLog(), "omniwalk !!\np omniWalk khar ~!!!! : 0.100000\n");
  start();
  body.takeLog();
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(body.takeLog(), "omniwalk !!\np omniWalk khar ~!!!! : 0.100000\nspeed : 4\n");
}

TEST_F(OmniWalkTest, TakesItsPositionFromTheWorldModel) {
  body.stand(Vector(3, -2, 0.45f), 90);
  gait.v = Vector(3, 5, 0);
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.myself_pos, Vector(3, -2, 0.45f));
  EXPECT_NEAR(gait.angle, 0, 1e-4);
}

TEST_F(OmniWalkTest, AResetInMidStepKeepsTheYawAndThePhaseCountOfTheUnwindingStep) {
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  expect({6, kRight, kLeft, 0, 1, kFirst, false, 3});
  expect({3, kLeft, kLeft, +1, 1, kFirst, true, 6});
  for (int phase = 0; phase < 2; ++phase) {
    body.nextCycle();
    gait.execute();
  }
  EXPECT_EQ(gait.a[1], 2);
  gait.p = 0.7;
  gait.resetVars();
  EXPECT_EQ(gait.a[1], 2);
  EXPECT_EQ(gait.RotZ[0], 1);
  EXPECT_EQ(gait.RotZ[2], -4);
  EXPECT_EQ(gait.basicWalkState, 1);
  EXPECT_EQ(gait.state, 0);
  EXPECT_EQ(gait.p, 0.1);
  EXPECT_EQ(gait.sp, 0);
  for (bool flag : {gait.side, gait.otherside, gait.OWalk, gait.rotSide, gait.rotOtherSide,
                    gait._othersideOmni, gait._sideOmni, gait.sideEnd}) {
    EXPECT_FALSE(flag);
  }
  for (double value : {gait.rx, gait.lx, gait.rotate, gait.Xtorso, gait.Ytorso, gait.Ztorso, gait.t,
                       gait.sx, gait.ox, gait.z, gait.angle, gait.endStepVal, gait.dist}) {
    EXPECT_EQ(value, 0);
  }
  EXPECT_EQ(gait.error, 10) << "the request's parameters stay";
  EXPECT_EQ(gait.v, pointAt(60));

  feet = {};
  start();
  expect({2, kRight, kLeft, 0, 0.5, kFirst, false, 3});
  expect({3, kLeft, kLeft, 0, 1, kFirst, true, 6});
  body.nextCycle();
  gait.execute();
  EXPECT_EQ(gait.a[1], 3);
}

TEST_F(OmniWalkTest, IsBuiltReadyToStart) {
  EXPECT_EQ(gait.basicWalkState, 1);
  EXPECT_EQ(gait.state, 0);
  EXPECT_EQ(gait.a[0], 0);
  EXPECT_EQ(gait.a[1], 0);
  EXPECT_EQ(gait.p, 0.1);
  EXPECT_EQ(gait.sp, 0);
  EXPECT_EQ(gait.type, AT_OMNIWALK);
  EXPECT_EQ(gait.rot, 0);
}

TEST_F(OmniWalkTest, AStateThatItDoesNotKnowDoesNothing) {
  gait.basicWalkState = 7;
  body.nextCycle();
  body.markCommands();
  EXPECT_FALSE(gait.execute());
  expectNoLegCommand(body);
  EXPECT_EQ(gait.basicWalkState, 7);
}

TEST_F(OmniWalkTest, AnUnwindingStepIsChosenInPhaseZeroOnly) {
  gait.rotSide = true;
  for (int choice : {30, 40}) {
    gait.side = choice == 40;
    gait.otherside = choice == 30;
    gait.basicWalkState = choice;
    gait.state = 2;
    body.nextCycle();
    EXPECT_FALSE(gait.execute());
    EXPECT_EQ(gait.basicWalkState, choice);
    gait.state = 0;
    body.nextCycle();
    EXPECT_TRUE(gait.execute());
    EXPECT_EQ(gait.basicWalkState, choice == 30 ? 4 : 6);
  }
}

TEST_F(OmniWalkTest, ItsFirstTenDoublesAreYawTorsoAndThreeStrides) {
  expectFirstTenDoubles();
}

TEST_F(OmniWalkTest, FollowsTheRulesForTargetsThatJumpAbout) {
  for (int hold : {1, 7, 40}) {
    body.setResponse(hold == 7 ? 0.6f : 1);  // obeying and lagging joints
    gait.resetVars();
    PairOracle oracle(PairOracle::kOmni, kNumbers, kNumbers);
    const int ends = expectLikeOracle(
        body, gait, gait.basicWalkState, oracle, gait.error, 1200, hold, 11u + hold,
        [this](double angle) {
          aim(angle);
          return body.world->getAngleTo(gait.v);
        },
        [this] { return execute(); },
        [this](bool side) { return side == kLeft ? gait.lx : gait.rx; }, [] {});
    EXPECT_GT(ends, 80);
  }
}

}  // namespace
