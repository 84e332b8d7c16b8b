#include "BasicAction/TAB.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "BasicAction/Reset.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"
#include "support/PairOracle.h"

namespace {

using support::expectLikeOracle;
using support::expectNoLegCommand;
using support::expectStep;
using support::FakeBody;
using support::Feet;
using support::GaitNumbers;
using support::GaitStep;
using support::PairOracle;
using support::pointAt;
using support::takeStance;

// TAB, as it stands.
constexpr GaitNumbers kNumbers = {.torso = {54, 3, -58},
                                  .stride = {-12, 22, 24, 2},
                                  .lift = {17, 14, -17, -14},
                                  .yaw = {-1, -9, -8, -6},
                                  .sideways = true};

constexpr float kSpeed = 55;

class TABTest : public ::testing::Test {
 protected:
  TABTest() {
    body.stand(Vector(0, 0, 0), 0);
    request(60);
  }
  void request(double angle, double error = 10) {
    EXPECT_EQ(tab.execute(pointAt(angle), error), &tab);
  }
  bool execute() { return tab.execute(); }
  void start() {
    takeStance(body, tab.basicWalkState, [this] { return execute(); });
  }
  void expect(const GaitStep& step) {
    expectStep(
        body, tab, tab.basicWalkState, [this] { return execute(); }, kNumbers, step, feet);
  }
  void expectRestingCycle(bool result, int next) {
    body.nextCycle();
    body.markCommands();
    EXPECT_EQ(tab.execute(), result);
    expectNoLegCommand(body);
    EXPECT_EQ(tab.basicWalkState, next);
  }

  FakeBody body;
  TAB tab;
  Feet feet;
};

TEST_F(TABTest, ARequestIsStoredAndLogged) {
  TAB fresh;
  EXPECT_EQ(fresh.type, AT_TURN_AROUND_BALL);
  body.takeLog();
  EXPECT_EQ(fresh.execute(Vector(1, 2, 3), 4.5), &fresh);
  EXPECT_EQ(body.takeLog(), "TAB !!!!\n");
  EXPECT_EQ(fresh.vec, Vector(1, 2, 3));
  EXPECT_EQ(fresh.Error, 4.5);
  EXPECT_EQ(fresh.type, AT_TURN_AROUND_BALL);
}

TEST_F(TABTest, StartsFromTheFixedStance) {
  body.nextCycle();
  EXPECT_FALSE(tab.execute());
  const Reset& reset = *body.agent.reset;
  EXPECT_EQ(reset.State, 0);
  EXPECT_EQ(reset.Speed, 10);
  EXPECT_EQ(reset.SP, 5);
  start();
  EXPECT_EQ(tab.basicWalkState, 2);
}

TEST_F(TABTest, APointToTheLeftIsCircledByStepsToTheRightWithTheLeftLegRotating) {
  start();
  EXPECT_FALSE(tab.side);
  EXPECT_TRUE(tab.otherside);
  EXPECT_FALSE(tab.rotSide);
  EXPECT_TRUE(tab.rotOtherSide);
  EXPECT_EQ(tab.Gain, -1);
  expect({2, kRight, kLeft, 0, -1, kSpeed, false, 3});
  expect({3, kLeft, kLeft, 0, -1, kSpeed, false, 6});
  expect({6, kRight, kLeft, 0, -1, kSpeed, false, 3});
  for (int pair = 0; pair < 40; ++pair) {
    expect({3, kLeft, kLeft, +1, -1, kSpeed, false, 6});
    EXPECT_EQ(tab.rotate, -24);
    EXPECT_EQ(tab._sideOmni, kRight);
    EXPECT_EQ(tab._othersideOmni, kLeft);
    expect({6, kRight, kLeft, -1, -1, kSpeed, false, 3});
    EXPECT_EQ(tab.rotate, 0);
  }
}

TEST_F(TABTest, APointToTheRightIsCircledTheOtherWay) {
  request(-60);
  start();
  EXPECT_TRUE(tab.side);
  EXPECT_TRUE(tab.rotSide);
  EXPECT_EQ(tab.Gain, 1);
  expect({2, kLeft, kRight, 0, 1, kSpeed, false, 3});
  expect({3, kRight, kRight, 0, 1, kSpeed, false, 6});
  expect({6, kLeft, kRight, 0, 1, kSpeed, false, 3});
  for (int pair = 0; pair < 40; ++pair) {
    expect({3, kRight, kRight, +1, 1, kSpeed, false, 6});
    expect({6, kLeft, kRight, -1, 1, kSpeed, false, 3});
  }
}

TEST_F(TABTest, ABearingOfZeroAtTheFirstCallKeepsTheLegsOfConstruction) {
  request(0);
  body.nextCycle();
  tab.execute();
  EXPECT_TRUE(tab.side);
  EXPECT_FALSE(tab.otherside);
  EXPECT_TRUE(tab.rotSide);
  EXPECT_EQ(tab.Gain, 1);
}

TEST_F(TABTest, DirectionAndLegsFollowTheSignOfTheBearingInEveryCycle) {
  start();
  for (double angle : {60.0, -60.0, 30.0, -10.0}) {
    request(angle);
    body.nextCycle();
    tab.execute();
    EXPECT_EQ(tab.Gain, angle > 0 ? -1 : 1);
    EXPECT_EQ(tab.side, angle < 0);
    EXPECT_EQ(tab.otherside, angle > 0);
    EXPECT_EQ(tab.rotSide, angle < 0);
    EXPECT_EQ(tab.rotOtherSide, angle > 0);
  }
}

// execute has chosen the same just before; the head does it once more, from the angle left to it.
TEST_F(TABTest, TheHeadOfBasicWalkChoosesDirectionAndRotatingLegToo) {
  for (double left : {5.0, -5.0, 0.0}) {
    tab.angle = left;
    tab.Gain = 7;
    tab.side = true;
    tab.otherside = false;
    tab.rotSide = false;
    tab.rotOtherSide = true;
    tab.basicWalkState = 7;
    EXPECT_FALSE(tab.basicWalk(pointAt(60), 10));
    EXPECT_EQ(tab.Gain, left > 0 ? 1 : left < 0 ? -1 : 7);
    EXPECT_EQ(tab.rotSide, left != 0);
    EXPECT_EQ(tab.rotOtherSide, left == 0);
    EXPECT_NEAR(tab.angle, 60, 1e-4);
  }
  tab.OWalk = false;
  tab.angle = 5;
  tab.Gain = 7;
  tab.basicWalk(pointAt(60), 10);
  EXPECT_EQ(tab.Gain, 7);
}

TEST_F(TABTest, EndsOnlyAtADecisionForTheRotatingLegAndKeepsTheStepArrays) {
  start();
  expect({2, kRight, kLeft, 0, -1, kSpeed, false, 3});
  expect({3, kLeft, kLeft, 0, -1, kSpeed, false, 6});
  expect({6, kRight, kLeft, 0, -1, kSpeed, false, 3});
  request(5);
  expect({3, kLeft, kLeft, +1, -1, kSpeed, false, 6});
  expect({6, kRight, kLeft, -1, -1, kSpeed, true, 30});
  EXPECT_EQ(tab.rotate, 0);
  EXPECT_EQ(tab.Yankle[1], 22);
}

TEST_F(TABTest, ALaterUseResumesAtTheDecision) {
  request(5);
  start();
  expect({2, kRight, kLeft, 0, -1, kSpeed, false, 3});
  expect({3, kLeft, kLeft, 0, -1, kSpeed, false, 6});
  expect({6, kRight, kLeft, 0, -1, kSpeed, true, 30});
  for (int cycle = 0; cycle < 5; ++cycle) expectRestingCycle(true, 30);
  request(60);
  expectRestingCycle(false, 3);
  expect({3, kLeft, kLeft, +1, -1, kSpeed, false, 6});
}

TEST_F(TABTest, AnErrorOfZeroNeverEnds) {
  request(1, 0);
  start();
  expect({2, kRight, kLeft, 0, -1, kSpeed, false, 3});
  expect({3, kLeft, kLeft, 0, -1, kSpeed, false, 6});
  expect({6, kRight, kLeft, 0, -1, kSpeed, false, 3});
  for (int pair = 0; pair < 30; ++pair) {
    expect({3, kLeft, kLeft, +1, -1, kSpeed, false, 6});
    expect({6, kRight, kLeft, -1, -1, kSpeed, false, 3});
  }
}

TEST_F(TABTest, ABearingThatIsNotANumberGoesOnTurning) {
  start();
  expect({2, kRight, kLeft, 0, -1, kSpeed, false, 3});
  expect({3, kLeft, kLeft, 0, -1, kSpeed, false, 6});
  tab.vec = Vector(std::numeric_limits<float>::quiet_NaN(), 0, 0);
  expect({6, kRight, kLeft, 0, -1, kSpeed, false, 3});
  EXPECT_EQ(tab.RotZ[1], -9);
}

TEST_F(TABTest, LogsEachCycle) {
  request(0);
  body.takeLog();
  body.nextCycle();
  tab.execute();
  EXPECT_EQ(body.takeLog(), std::string(38, '*') + std::string(37, '&') + std::string(23, '*') +
                                "\nturn Arond ball execute!!!!!!!!!\n"
                                "angle TAB : 0.000000  error : 10.000000\n"
                                "angle TAB : 0.000000  error : 10.000000\n");
}

TEST_F(TABTest, ResetGivesTheValuesOfConstruction) {
  const auto expectFresh = [](const TAB& t) {
    EXPECT_EQ(t.t, 1);
    EXPECT_EQ(t.basicWalkState, 1);
    EXPECT_EQ(t.state, 0);
    EXPECT_EQ(t.count, 0);
    EXPECT_EQ(t.sp, 60);
    EXPECT_EQ(t.sp1, 60);
    EXPECT_EQ(t.a[0], 0);
    EXPECT_EQ(t.a[1], 0);
    EXPECT_EQ(t.d, 1);
    EXPECT_EQ(t.Gain, 1);
    EXPECT_EQ(t.Error, 0);
    for (bool flag : {t.side, t.rotSide, t.OWalk, t._sideOmni}) EXPECT_TRUE(flag);
    for (bool flag : {t.otherside, t.rotOtherSide, t._othersideOmni, t.sideEnd}) {
      EXPECT_FALSE(flag);
    }
    for (double value : {t.ry, t.ly, t.rotate, t.endStepVal, t.dist, t.angle, t.angle1, t.angle2,
                         t.z, t.sy, t.Xtorso, t.Ytorso, t.Ztorso}) {
      EXPECT_EQ(value, 0);
    }
    for (const Vector& vector : {t.torso, t.ankle[0], t.ankle[1], t.myself_pos, t.vec}) {
      EXPECT_EQ(vector, Vector());
    }
  };
  expectFresh(TAB());
  start();
  for (int cycle = 0; cycle < 17; ++cycle) {
    body.nextCycle();
    tab.execute();
  }
  EXPECT_EQ(tab.count, 0) << "never raised";
  EXPECT_EQ(tab.angle1, 0);
  tab.t = 0;
  tab.resetVars();
  expectFresh(tab);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(tab.RotZ[i], kNumbers.lift[i]) << "a slip of the reset";
    EXPECT_EQ(tab.Yankle[i], kNumbers.lift[i]);
  }
}

TEST_F(TABTest, FollowsTheRulesForTargetsThatJumpAbout) {
  for (int hold : {1, 7, 40}) {
    body.setResponse(hold == 7 ? 0.6f : 1);  // obeying and lagging joints
    TAB fresh;
    fresh.execute(pointAt(0), 40);
    PairOracle oracle(PairOracle::kAround, kNumbers, kNumbers);
    const int ends = expectLikeOracle(
        body, fresh, fresh.basicWalkState, oracle, 40, 2000, hold, 73u + hold,
        [&](double angle) {
          fresh.vec = pointAt(angle);
          return body.world->getAngleTo(fresh.vec);
        },
        [&] { return fresh.execute(); },
        [&](bool side) { return side == kLeft ? fresh.ly : fresh.ry; }, [] {});
    EXPECT_GT(ends, 20);
  }
}

}  // namespace
