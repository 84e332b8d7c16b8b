#include "BasicAction/Turn.h"

#include <gtest/gtest.h>

#include <limits>

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

// Turn, as it stands.
constexpr GaitNumbers kNumbers = {.torso = {21, 2, -63},
                                  .stride = {8, 4, -4, -8},
                                  .lift = {18, -2, 3, -19},
                                  .yaw = {3, -19, -3, -2},
                                  .sideways = true};

// 62.5, cut; a tenth of it cut again for the first step; eight times that for the others.
constexpr float kFirst = 6;
constexpr float kLater = 48;

constexpr double kLeftGain = 0.05f;

class TurnTest : public ::testing::Test {
 protected:
  TurnTest() {
    body.stand(Vector(0, 0, 0), 0);
    request(60);
  }
  void request(double angle, double error = 10, double finalAngle = 0) {
    EXPECT_EQ(turn.execute(pointAt(angle), error, finalAngle), &turn);
  }
  void aim(double angle) { turn.v = pointAt(angle); }
  bool execute() { return turn.execute(); }
  void start() {
    takeStance(body, turn.basicTurnState, [this] { return execute(); });
  }
  void expect(const GaitStep& step) {
    expectStep(
        body, turn, turn.basicTurnState, [this] { return execute(); }, kNumbers, step, feet);
  }
  void expectRestingCycle(bool result, int next) {
    body.nextCycle();
    body.markCommands();
    EXPECT_EQ(turn.execute(), result);
    expectNoLegCommand(body);
    EXPECT_EQ(turn.basicTurnState, next);
  }

  FakeBody body;
  Turn turn;
  Feet feet;
};

TEST_F(TurnTest, ARequestIsStoredAndUnlatchesTheResult) {
  Turn fresh;
  EXPECT_EQ(fresh.type, AT_NONE);
  EXPECT_EQ(fresh.ak, 1);
  EXPECT_EQ(fresh.execute(Vector(1, 2, 3), 4.5, 90), &fresh);
  EXPECT_EQ(fresh.v, Vector(1, 2, 3));
  EXPECT_EQ(fresh.error, 4.5);
  EXPECT_EQ(fresh.finalAngle, 90);
  EXPECT_EQ(fresh.type, AT_TURN);
  EXPECT_EQ(fresh.ak, 0);
}

TEST_F(TurnTest, StartsFromTheFixedStance) {
  body.nextCycle();
  EXPECT_FALSE(turn.execute());
  const Reset& reset = *body.agent.reset;
  EXPECT_EQ(reset.State, 0);
  EXPECT_EQ(reset.Speed, 10);
  EXPECT_EQ(reset.SP, 5);
  start();
  EXPECT_EQ(turn.basicTurnState, 2);
}

TEST_F(TurnTest, ToTheRightItStepsInPlaceAndTheRightLegRotates) {
  request(-60);
  start();
  EXPECT_FALSE(turn.side);
  EXPECT_TRUE(turn.otherside);
  EXPECT_TRUE(turn.rotSide);
  expect({2, kRight, kRight, 0, 0, kFirst, false, 3});
  expect({3, kLeft, kRight, 0, 0, kLater, false, 5});
  for (int pair = 0; pair < 40; ++pair) {
    expect({5, kRight, kRight, +1, 0, kLater, false, 4});
    EXPECT_EQ(turn.rotate, -21);
    EXPECT_EQ(turn._sideOmni, kLeft);
    EXPECT_EQ(turn._othersideOmni, kRight);
    expect({4, kLeft, kRight, -1, 0, kLater, false, 5});
    EXPECT_EQ(turn.rotate, 0);
  }
  EXPECT_EQ(turn.ry, 0);
  EXPECT_EQ(turn.ly, 0);
  EXPECT_EQ(turn.count, 82);
}

// The first choice makes the right leg the rotating one for either direction; the first unwinding
// step hands over to the left one. The turning step that was loaded just before is then never
// unwound, and the yaw swings between one and two turning steps' sum instead of 0 and one.
TEST_F(TurnTest, ToTheLeftItTakesAPartOfTheSidewaysIncrementsAndHandsOverToTheLeftLeg) {
  start();
  EXPECT_TRUE(turn.side);
  EXPECT_FALSE(turn.otherside);
  EXPECT_TRUE(turn.rotSide);
  expect({2, kLeft, kRight, 0, kLeftGain, kFirst, false, 3});
  EXPECT_FALSE(turn.OTurn);
  expect({3, kRight, kRight, 0, kLeftGain, kLater, false, 6});
  expect({6, kLeft, kRight, 0, kLeftGain, kLater, false, 3});
  EXPECT_TRUE(turn.OTurn);
  expect({3, kRight, kLeft, +1, kLeftGain, kLater, false, 5});
  EXPECT_FALSE(turn.rotSide);
  EXPECT_TRUE(turn.rotOtherSide);
  for (int pair = 0; pair < 40; ++pair) {
    expect({5, kLeft, kLeft, +1, kLeftGain, kLater, false, 4});
    EXPECT_EQ(turn.rotate, -42);
    expect({4, kRight, kLeft, -1, kLeftGain, kLater, false, 5});
    EXPECT_EQ(turn.rotate, -21);
  }
}

TEST_F(TurnTest, WithinTheErrorFromTheStartItPassesTheStanceAndStraightSteps) {
  request(-9);
  start();
  expect({2, kRight, kRight, 0, 0, kFirst, false, 3});
  expect({3, kLeft, kRight, 0, 0, kLater, true, 40});

  turn.resetVars();
  feet = {};
  request(9);
  start();
  expect({2, kLeft, kRight, 0, kLeftGain, kFirst, false, 3});
  expect({3, kRight, kRight, 0, kLeftGain, kLater, false, 6});
  expect({6, kLeft, kRight, 0, kLeftGain, kLater, true, 30});
}

TEST_F(TurnTest, EndsOnlyAtADecisionForTheRotatingLeg) {
  request(-60);
  start();
  expect({2, kRight, kRight, 0, 0, kFirst, false, 3});
  expect({3, kLeft, kRight, 0, 0, kLater, false, 5});
  aim(-5);
  expect({5, kRight, kRight, +1, 0, kLater, false, 4});
  expect({4, kLeft, kRight, -1, 0, kLater, true, 40});
  EXPECT_EQ(turn.rotate, 0);
  for (double yaw : turn.RotZ) EXPECT_EQ(yaw, 0);
}

TEST_F(TurnTest, ReportsDoneWithoutMovingUntilTheNextRequest) {
  request(-5);
  start();
  expect({2, kRight, kRight, 0, 0, kFirst, false, 3});
  expect({3, kLeft, kRight, 0, 0, kLater, true, 40});
  for (int cycle = 0; cycle < 20; ++cycle) expectRestingCycle(true, 40);
  aim(-60);
  expectRestingCycle(true, 40);

  request(-5);
  expectRestingCycle(true, 40);  // the decision runs at once, with no step taken
  request(-60);
  expectRestingCycle(false, 5);
  expect({5, kRight, kRight, +1, 0, kLater, false, 4});
}

// The arbiter resets a turn that follows another action after the request is stored.
TEST_F(TurnTest, AResetAfterTheRequestMakesTheFirstCallReportDoneAndMoveNothing) {
  request(60);
  turn.resetVars();
  expectRestingCycle(true, 1);
  EXPECT_EQ(turn.v, Vector());
  request(60);
  body.nextCycle();
  EXPECT_FALSE(turn.execute());
}

TEST_F(TurnTest, TheFinalAngleShiftsTheBearing) {
  request(60, 10, 90);  // 30 degrees too far right
  start();
  EXPECT_FALSE(turn.side);
  EXPECT_NEAR(turn.angle, 30, 1e-4);
  request(-170, 10, 180);  // 10 degrees too far left, across the back
  body.nextCycle();
  turn.execute();
  EXPECT_TRUE(turn.side);
  EXPECT_NEAR(turn.angle, 10, 1e-4);
}

TEST_F(TurnTest, AnAngleOfZeroCountsAsRight) {
  request(0);
  start();
  EXPECT_FALSE(turn.side);
  EXPECT_TRUE(turn.otherside);
  EXPECT_TRUE(turn.rotSide) << "as the reset left it";
  EXPECT_EQ(turn.Gain, 0);
}

TEST_F(TurnTest, OnceUnwoundTheRotatingLegFollowsTheSignInEveryCycle) {
  request(-60);
  start();
  expect({2, kRight, kRight, 0, 0, kFirst, false, 3});
  expect({3, kLeft, kRight, 0, 0, kLater, false, 5});
  expect({5, kRight, kRight, +1, 0, kLater, false, 4});
  aim(60);
  body.nextCycle();
  turn.execute();
  EXPECT_TRUE(turn.rotSide) << "not before an unwinding step has ended";
  aim(-60);
  for (int phase = 1; phase < 4; ++phase) {
    body.nextCycle();
    turn.execute();
  }
  EXPECT_TRUE(turn.OTurn);
  for (double angle : {60.0, -60.0, 60.0, 0.0}) {
    aim(angle);
    body.nextCycle();
    turn.execute();
    EXPECT_EQ(turn.rotSide, !(angle > 0));
    EXPECT_EQ(turn.rotOtherSide, angle > 0);
  }
}

TEST_F(TurnTest, AnAngleThatIsNotANumberGoesOnTurning) {
  request(-60);
  start();
  expect({2, kRight, kRight, 0, 0, kFirst, false, 3});
  turn.v = Vector(std::numeric_limits<float>::quiet_NaN(), 0, 0);
  expect({3, kLeft, kRight, 0, 0, kLater, false, 5});
  EXPECT_EQ(turn.RotZ[1], -19);
}

TEST_F(TurnTest, TheFirstSpeedReturnsAtEveryNewStart) {
  start();
  expect({2, kLeft, kRight, 0, kLeftGain, kFirst, false, 3});
  expect({3, kRight, kRight, 0, kLeftGain, kLater, false, 6});
  turn.resetVars();
  feet = {};
  request(60);
  start();
  expect({2, kLeft, kRight, 0, kLeftGain, kFirst, false, 3});
}

TEST_F(TurnTest, EndStepPutsTheFeetSideBySide) {
  turn.side = true;
  turn.otherside = false;
  turn.rotSide = false;
  turn.rotate = 9;
  turn.RotZ[0] = 4;
  turn.sp = 6;
  turn.Gain = 0.5;
  body.nextCycle();
  EXPECT_FALSE(turn.endStep());
  EXPECT_FALSE(turn.side);
  EXPECT_FALSE(turn.otherside) << "stays";
  EXPECT_EQ(turn.rotate, 0);
  EXPECT_EQ(turn.RotZ[0], 0);
  EXPECT_EQ(turn.Zankle[0], 18);
  EXPECT_EQ(turn.ly, 4) << "the leg that steps is otherside";

  turn.rotSide = true;
  turn.endStep();
  EXPECT_TRUE(turn.side);
  EXPECT_TRUE(turn.otherside) << "both name the right leg then";
  EXPECT_EQ(turn.ry, 2);
  turn.endStep();
  EXPECT_TRUE(turn.endStep()) << "the fourth phase";
}

// Nothing reads the speed anew between these calls, and each raises it; no int holds it for long.
TEST_F(TurnTest, EndStepAfterTheFirstStepRaisesItsSpeedUpToTheEndOfTheRange) {
  turn.count = 1;
  turn.sp = 6;
  for (int speed : {48, 384, 3072}) {
    turn.endStep();
    EXPECT_EQ(turn.sp, speed);
  }
  for (int call = 0; call < 20; ++call) turn.endStep();
  EXPECT_EQ(turn.sp, std::numeric_limits<int>::min());
}

TEST_F(TurnTest, ResetGivesTheValuesOfConstruction) {
  const auto expectFresh = [](const Turn& t) {
    EXPECT_EQ(t.basicTurnState, 1);
    EXPECT_EQ(t.state, 0);
    EXPECT_EQ(t.state2, 0);
    for (double value : {t.ry, t.ly, t.rotate, t.endStepVal, t.dist, t.finalAngle, t.angle, t.z,
                         t.sy, t.Xtorso, t.Ytorso, t.Ztorso}) {
      EXPECT_EQ(value, 0);
    }
    EXPECT_EQ(t.count, 0);
    EXPECT_EQ(t.ak, 1);
    EXPECT_EQ(t.sp, 60);
    EXPECT_EQ(t.sp1, 60);
    EXPECT_EQ(t.a[0], 0);
    EXPECT_EQ(t.a[1], 0);
    EXPECT_EQ(t.d, 1);
    for (bool flag : {t.side, t.rotSide, t._sideOmni, t.sideEnd}) EXPECT_TRUE(flag);
    for (bool flag : {t.otherside, t.OTurn, t.rotOtherSide, t._othersideOmni}) EXPECT_FALSE(flag);
    for (const Vector& vector : {t.torso, t.ankle[0], t.ankle[1], t.myself_pos, t.v}) {
      EXPECT_EQ(vector, Vector());
    }
    EXPECT_EQ(t.Gain, 1);
    EXPECT_EQ(t.error, 1);
  };
  expectFresh(Turn());
  body.stand(Vector(1, 2, 0), 0);
  request(-60, 10, 90);
  start();
  for (int cycle = 0; cycle < 17; ++cycle) {
    body.nextCycle();
    turn.execute();
  }
  turn.state2 = 4;
  turn.resetVars();
  expectFresh(turn);
}

TEST_F(TurnTest, AnUnwindingStepIsChosenInPhaseZeroOnly) {
  for (int choice : {30, 40}) {
    request(choice == 30 ? 60 : -60);
    turn.rotSide = kLeft;  // the right leg steps next, in either state
    turn.basicTurnState = choice;
    turn.state = 2;
    expectRestingCycle(false, choice);
    turn.state = 0;
    expectRestingCycle(false, choice == 30 ? 4 : 6);
  }
}

// A slip of the reset; the opening step loads all three lists again before it uses them.
TEST_F(TurnTest, ResetCopiesTheLiftIntoYawAndStride) {
  start();
  turn.resetVars();
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(turn.Zankle[i], kNumbers.lift[i]);
    EXPECT_EQ(turn.RotZ[i], kNumbers.lift[i]);
    EXPECT_EQ(turn.Yankle[i], kNumbers.lift[i]);
  }
  request(60);
  start();
  expect({2, kLeft, kRight, 0, kLeftGain, kFirst, false, 3});
}

TEST_F(TurnTest, FollowsTheRulesForTargetsThatJumpAbout) {
  for (int hold : {1, 7, 40}) {
    body.setResponse(hold == 7 ? 0.6f : 1);  // obeying and lagging joints
    turn.resetVars();
    request(0, 40);
    PairOracle oracle(PairOracle::kTurn, kNumbers, kNumbers);
    double now = 0;
    const int ends = expectLikeOracle(
        body, turn, turn.basicTurnState, oracle, 40, 2000, hold, 51u + hold,
        [&](double angle) {
          now = angle;
          aim(angle);
          return body.world->getAngleTo(turn.v);
        },
        [this] { return execute(); },
        [this](bool side) { return side == kLeft ? turn.ly : turn.ry; }, [&] { request(now, 40); });
    EXPECT_GT(ends, 20);
  }
}

}  // namespace
