#include "BasicAction/Kick.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BasicAction/Reset.h"
#include "Kinematics/InverseKinematic.h"
#include "WorldModel/Ball.h"
#include "support/FakeBody.h"
#include "support/FrameCheck.h"

namespace {

using support::checkFrame;
using support::CommandList;
using support::expectDriven;
using support::FakeBody;
using support::Frame;
using support::handCommand;
using support::headCommand;
using support::JointCommand;
using support::legCommand;
using support::placeInside;
using support::placeOutside;
using support::solvedLeg;
using support::wholeBody;

using Solver = bool (BasicAgent::*)(Vector, Vector, double*, bool, double, double, double);

class KickTest : public ::testing::Test {
 protected:
  void setType(int type) { FakeBody::configure("Agent", "Public", "Type", std::to_string(type)); }

  // The twelve commands of a pose, from the given points and not from the action.
  CommandList pose(Solver solver, bool side, Vector torso, Vector ankleSide, Vector ankleOther,
                   float gain, float error) {
    double sideLeg[7] = {}, otherLeg[7] = {};
    (body.agent.*solver)(torso, ankleSide, sideLeg, side, 0, 0, 0);
    (body.agent.*solver)(torso, ankleOther, otherLeg, !side, 0, 0, 0);
    return solvedLeg(side, sideLeg, gain, error) + solvedLeg(!side, otherLeg, gain, error);
  }

  void checkUnstable(int frame, bool side, const CommandList& commands, int next) {
    SCOPED_TRACE("unstable, frame " + std::to_string(frame) + (side ? ", right" : ", left"));
    ::testing::internal::CaptureStdout();
    checkFrame(body, {[&, frame, side] {
                        kick.side = side;
                        kick.stableState = frame;
                      },
                      [&] { EXPECT_FALSE(kick.unstable()); },
                      [&, frame] { return kick.stableState != frame; }, commands});
    printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(kick.stableState, next);
    EXPECT_EQ(kick.otherside, !side);
  }

  void checkUnstable1(int frame, const CommandList& commands, int next) {
    SCOPED_TRACE("unstable1, frame " + std::to_string(frame));
    checkFrame(
        body, {[&, frame] { kick.unStableState1 = frame; }, [&] { EXPECT_FALSE(kick.unstable1()); },
               [&, frame] { return kick.unStableState1 != frame; }, commands});
    EXPECT_EQ(kick.unStableState1, next);
  }

  // Commands that are sent one after the other, each waiting for the one before.
  void checkChain(const CommandList& order, const std::function<void()>& step,
                  const std::function<bool()>& left) {
    CommandList issued;
    for (const JointCommand& next : order) {
      placeInside(body, issued);
      placeOutside(body, {next});
      body.markCommands();
      step();
      EXPECT_FALSE(left());
      issued.push_back(next);
      for (const FakeBody::Hinge& hinge : FakeBody::hinges()) {
        bool expected = false;
        for (const JointCommand& c : issued) expected |= c.hinge == hinge;
        EXPECT_EQ(body.commanded(hinge), expected) << FakeBody::name(hinge);
      }
      EXPECT_FLOAT_EQ(body.target(next.hinge), next.value);
      EXPECT_NEAR(body.controller(next.hinge).Angle, next.gain / 100 * (next.error + 0.5), 1e-4);
    }
    placeInside(body, issued);
    step();
    EXPECT_TRUE(left());
  }

  FakeBody body;
  Kick& kick = *body.agent.kick;
  std::string printed;
};

constexpr Solver kClosed = &BasicAgent::solveIkLeg;
constexpr Solver kChain = &BasicAgent::solveIkLeg1;

TEST_F(KickTest, StartState) {
  EXPECT_EQ(kick.stableState, 0);
  EXPECT_EQ(kick.unStableState1, 0);
  EXPECT_EQ(kick.sideState, 1);
  EXPECT_EQ(kick.gtside, 1);
  EXPECT_EQ(kick.l, 0);
  EXPECT_TRUE(kick.side);
  EXPECT_FALSE(kick.otherside);
}

TEST_F(KickTest, SettersStoreTheRequest) {
  EXPECT_EQ(kick.unstable(false), &kick);
  EXPECT_EQ(kick.type, AT_UNSTABLE_KICK);
  EXPECT_FALSE(kick.side);
  EXPECT_EQ(kick.unstable1(true), &kick);
  EXPECT_EQ(kick.type, AT_UNSTABLE1_KICK);
  EXPECT_TRUE(kick.side);
  EXPECT_EQ(kick.execute(false), &kick);
  EXPECT_EQ(kick.type, AT_KICK);
  EXPECT_FALSE(kick.side);
}

TEST_F(KickTest, DetectKickAlwaysTakesTheCloseMoods) {
  for (Vector ball : {Vector(0, 0, 0), Vector(3, 1, 0), Vector(-9, 5, 0)}) {
    body.world->ball->setGlobalPosition(ball);
    KickMood km = DISTANT_X, k = DISTANT_Y;
    kick.detectkick(km, k);
    EXPECT_EQ(km, CLOSE_X);
    EXPECT_EQ(k, CLOSE_Y);
  }
}

TEST_F(KickTest, FootIsTheOneOnTheBallsSide) {
  body.stand(Vector(1, 1, 0), 90);
  body.world->ball->setGlobalPosition(Vector(-1, 2, 0));  // to the left
  EXPECT_FALSE(kick.detectFoot());
  EXPECT_FALSE(kick.side);
  body.world->ball->setGlobalPosition(Vector(3, 2, 0));  // to the right
  EXPECT_TRUE(kick.detectFoot());
  EXPECT_TRUE(kick.side);
}

TEST_F(KickTest, ABallStraightAheadGivesFalseAndKeepsTheSide) {
  body.stand(Vector(0, 0, 0), 0);
  body.world->ball->setGlobalPosition(Vector(2, 0, 0));
  for (bool before : {true, false}) {
    kick.side = before;
    EXPECT_FALSE(kick.detectFoot());
    EXPECT_EQ(kick.side, before);
  }
}

TEST_F(KickTest, LooksDownAtABallNearerThanAMetre) {
  const CommandList down = {headCommand(2, -45, 90, 3)};
  body.stand(Vector(1, 0, 0), 0);
  body.world->ball->setGlobalPosition(Vector(2, 0, 5));  // exactly a metre on the ground
  body.markCommands();
  kick.detectFoot();
  EXPECT_FALSE(body.commanded(down[0].hinge));
  body.world->ball->setGlobalPosition(Vector(1.99f, 0, 5));
  placeOutside(body, down);
  body.markCommands();
  kick.detectFoot();
  expectDriven(body, down);
}

// --- unstable ---

TEST_F(KickTest, FirstAndLastFrameSetTheResetsParametersAndMoveNothing) {
  Reset& reset = *body.agent.reset;
  for (int frame : {0, 17}) {
    reset.execute(3, 1, 1);
    kick.stableState = frame;
    body.markCommands();
    EXPECT_EQ(kick.unstable(), frame == 17);
    EXPECT_EQ(kick.stableState, frame == 17 ? 0 : 100);
    EXPECT_EQ(reset.State, 0);
    EXPECT_EQ(reset.Speed, 10);
    EXPECT_EQ(reset.SP, 5);
    for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
  }
  // After a finished kick the next one starts with the straightening.
  EXPECT_FALSE(kick.unstable());
  EXPECT_EQ(kick.stableState, 100);
}

TEST_F(KickTest, StraightensTheWholeBody) {
  checkUnstable(100, kRight, wholeBody(0, 5, 3), 1);
}

TEST_F(KickTest, PosesOfBothFeet) {
  for (bool side : {kRight, kLeft}) {
    const float s = side ? 1 : -1;
    const auto check = [&](int frame, Vector torso, Vector ankleSide, Vector ankleOther,
                           float gain) {
      checkUnstable(frame, side, pose(kClosed, side, torso, ankleSide, ankleOther, gain, 3),
                    frame + 1);
      EXPECT_EQ(kick.torso, torso);
      EXPECT_EQ(kick.ankle[side], ankleSide);
      EXPECT_EQ(kick.ankle[!side], ankleOther);
    };
    check(1, Vector(30, -35 * s, -25), Vector(0, 0, 0), Vector(0, 0, 15), 25);
    check(2, Vector(30, -55 * s, -25), Vector(0, 0, 0), Vector(0, 0, 30), 25);
    check(3, Vector(30, 0, -25), Vector(0, 0, 0), Vector(100, 0, 0), 50);
    check(4, Vector(85, 20 * s, -25), Vector(0, 0, 15), Vector(100, 0, 0), 40);
    check(5, Vector(85, 40 * s, -25), Vector(0, 0, 25), Vector(100, 0, 0), 40);
  }
}

TEST_F(KickTest, SingleJointFrames) {
  for (bool side : {kRight, kLeft}) {
    checkUnstable(6, side, {legCommand(4, side, -132, 30, 2)}, 7);
    checkUnstable(8, side, {legCommand(3, !side, 30, 90, 2)}, 9);
    checkUnstable(11, side, {legCommand(3, !side, 40, 10, 2)}, 12);

    kick.stableState = 14;
    body.markCommands();
    EXPECT_FALSE(kick.unstable());
    EXPECT_EQ(kick.stableState, 15);
    for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
  }
}

TEST_F(KickTest, DrawsTheHipBackThenTheAnkle) {
  for (bool side : {kRight, kLeft}) {
    kick.side = side;
    kick.stableState = 7;
    checkChain(
        {legCommand(3, side, -25, 40, 2), legCommand(5, side, -40, 40, 2)},
        [&] { EXPECT_FALSE(kick.unstable()); }, [&] { return kick.stableState != 7; });
    EXPECT_EQ(kick.stableState, 8);
  }
}

TEST_F(KickTest, Strikes) {
  for (bool side : {kRight, kLeft}) {
    const float s = side ? 1 : -1;
    const auto check = [&](int frame, Vector ankleSide, float speed, float hip, bool level,
                           int next) {
      double theta[7];
      InverseKinematic().legSolver(Vector(0, 0, 0), ankleSide, theta);
      const float roll = level ? 0 : static_cast<float>(theta[2]);
      const float ankleRoll = level ? 0 : static_cast<float>(theta[6]);
      checkUnstable(frame, side,
                    {legCommand(2, side, roll, 40, 3), legCommand(6, side, ankleRoll, 40, 3),
                     legCommand(1, side, 0, speed, 5), legCommand(1, !side, 0.01f, speed, 5),
                     legCommand(2, !side, 0, speed, 5), legCommand(3, side, hip, speed, 5),
                     legCommand(3, !side, -25, speed, 5), legCommand(4, side, 0.18f, speed, 5),
                     legCommand(4, !side, -60, speed, 5), legCommand(5, side, 40, speed, 5),
                     legCommand(5, !side, -30, speed, 5), legCommand(6, !side, 0, speed, 5)},
                    next);
      EXPECT_EQ(printed, "FFFFFFFFFFFFFFFFFFFF\n");  // once, when the frame ends
      EXPECT_EQ(kick.torso, Vector(0, 0, 0));
      EXPECT_EQ(kick.ankle[side], ankleSide);
      EXPECT_EQ(kick.ankle[!side], Vector(0, 0, 0));
    };
    check(9, Vector(207, 2 * s, 250), 100, 100, false, 17);
    check(10, Vector(207, 45 * s, 250), 100, 100, false, 17);
    check(12, Vector(209, 2 * s, 205), 40, 90, false, 17);
    check(13, Vector(209, 45 * s, 205), 40, 90, false, 17);
    check(15, Vector(208, 2 * s, 240), 40, 90, true, 1700);
    check(16, Vector(208, 45 * s, 240), 40, 100, false, 17);
  }
}

TEST_F(KickTest, AFrameThatNobodyHandlesNeverEnds) {
  kick.stableState = 1700;
  for (int cycle = 0; cycle < 300; ++cycle) {
    body.markCommands();
    EXPECT_FALSE(kick.unstable());
    EXPECT_EQ(kick.stableState, 1700);
    for (const auto& hinge : FakeBody::hinges()) ASSERT_FALSE(body.commanded(hinge));
    body.nextCycle();
  }
  kick.resetVars();
  EXPECT_EQ(kick.stableState, 0);
}

TEST_F(KickTest, TheWaitingFrameEndsAfterAHundredCycles) {
  kick.stableState = 0;
  kick.unstable();  // a frame change clears the count
  kick.stableState = 200;
  for (int cycle = 1; cycle <= 100; ++cycle) {
    kick.unstable();
    ASSERT_EQ(kick.stableState, 200) << cycle;
  }
  EXPECT_FALSE(kick.unstable());
  EXPECT_EQ(kick.stableState, 0);
}

TEST_F(KickTest, FramesOfAWholeKickOnAnObeyingBody) {
  for (bool side : {kRight, kLeft}) {
    kick.resetVars();
    kick.unstable(side);
    std::vector<int> frames = {kick.stableState};
    ::testing::internal::CaptureStdout();
    int cycles = 1;
    while (!kick.unstable()) {
      if (frames.back() != kick.stableState) frames.push_back(kick.stableState);
      body.nextCycle();
      ASSERT_LT(++cycles, 1000);
    }
    printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(frames, (std::vector<int>{0, 100, 1, 2, 3, 4, 5, 6, 7, 8, 9, 17}));
    EXPECT_EQ(printed, "FFFFFFFFFFFFFFFFFFFF\n");
  }
}

TEST_F(KickTest, AJointThatDoesNotArriveHoldsTheFrame) {
  kick.stableState = 6;
  body.setResponse(0);
  for (int cycle = 0; cycle < 500; ++cycle) {
    EXPECT_FALSE(kick.unstable());
    body.nextCycle();
  }
  EXPECT_EQ(kick.stableState, 6);
}

TEST_F(KickTest, TheKickInPlayGoesByTheRobotType) {
  for (int type = 0; type <= 4; ++type) {
    setType(type);
    kick.resetVars();
    kick.torso = Vector(0, 0, 0);
    kick.execute(CLOSE_X, CLOSE_Y);
    // unstable leaves its first frame at once; the first frame of unstable1 is a pose.
    EXPECT_EQ(kick.stableState, type == 2 ? 0 : 100) << type;
    EXPECT_EQ(kick.torso == Vector(40, -42, -10), type == 2) << type;
  }
}

// --- unstable1 ---

TEST_F(KickTest, StrongKickPoses) {
  for (int type : {0, 2}) {
    setType(type);
    const auto check = [&](int frame, Vector ankleSide, Vector ankleOther, Vector torso) {
      checkUnstable1(frame, pose(kChain, kRight, torso, ankleSide, ankleOther, 50, 3), frame + 1);
    };
    check(0, Vector(0, 0, 0), Vector(0, 0, 30), Vector(40, -42, -10));
    check(1, Vector(0, 0, 0), Vector(125, 0, 30), Vector(10, -42, -10));
    check(2, Vector(0, 0, 0), Vector(125, 0, 0), Vector(110, 0, -35));
    check(3, Vector(0, 0, 20), Vector(125, 0, 0), Vector(type == 2 ? 115 : 110, 48, -35));
  }
}

TEST_F(KickTest, StrongKickDrawsBack) {
  checkUnstable1(4, {legCommand(4, kRight, -130, 30, 2)}, 5);
  kick.unStableState1 = 5;
  checkChain(
      {legCommand(3, kRight, -25, 40, 2), legCommand(5, kRight, -40, 40, 2),
       handCommand(1, kLeft, -90, 40, 2), handCommand(1, kRight, -90, 40, 2)},
      [&] { EXPECT_FALSE(kick.unstable1()); }, [&] { return kick.unStableState1 != 5; });
  EXPECT_EQ(kick.unStableState1, 6);
}

TEST_F(KickTest, StrongKickNamesItsLegsWhateverTheSide) {
  kick.side = false;
  checkUnstable1(4, {legCommand(4, kRight, -130, 30, 2)}, 5);
}

TEST_F(KickTest, StrongKickSwingsTheSupportHip) {
  setType(0);
  checkUnstable1(6, {legCommand(3, kLeft, 68, 10, 2)}, 7);
}

TEST_F(KickTest, StrongKickOfTypeTwoHoldsItsPoseBeforeItSwingsTheHip) {
  setType(2);
  CommandList held =
      pose(kChain, kRight, Vector(115, 48, -35), Vector(0, 0, 20), Vector(125, 0, 0), 50, 3);
  std::erase_if(held, [](const JointCommand& c) { return c.hinge.joint == 3; });
  ASSERT_EQ(held.size(), 10u);
  const JointCommand swing = legCommand(3, kLeft, 68, 10, 2);

  kick.unStableState1 = 6;
  placeOutside(body, held + CommandList{swing});
  body.markCommands();
  EXPECT_FALSE(kick.unstable1());
  expectDriven(body, held);  // the swing waits

  placeInside(body, held);
  placeOutside(body, {held[4], swing});
  body.markCommands();
  EXPECT_FALSE(kick.unstable1());
  EXPECT_FALSE(body.commanded(swing.hinge));

  placeInside(body, held);
  placeOutside(body, {swing});
  body.markCommands();
  EXPECT_FALSE(kick.unstable1());
  EXPECT_TRUE(body.commanded(swing.hinge));
  EXPECT_EQ(kick.unStableState1, 6);

  placeInside(body, held + CommandList{swing});
  EXPECT_FALSE(kick.unstable1());
  EXPECT_EQ(kick.unStableState1, 7);
}

// The strike's targets, count by count. The second target of the support leg lies out of reach, so
// that its angles stay those of the first solve with their overrides.
TEST_F(KickTest, StrongKickStrikeByItsCount) {
  double side[7] = {}, other[7] = {}, reached[7] = {};
  const Vector torso(-35, 45, -20);
  ASSERT_TRUE(body.agent.solveIkLeg1(torso, Vector(100, 0, 40), side, kRight, 0, 0, 0));
  ASSERT_TRUE(body.agent.solveIkLeg1(torso, Vector(-20, 0, 10), other, kLeft, 0, 0, 0));
  ASSERT_FALSE(body.agent.solveIkLeg1(torso, Vector(100, 0, 15), reached, kLeft, 0, 0, 0));
  ASSERT_FALSE(body.agent.solveIkLeg1(torso, Vector(100, 0, 0), reached, kLeft, 0, 0, 0));

  for (int l = 1; l <= 15; ++l) {
    SCOPED_TRACE("count " + std::to_string(l));
    double s[7], o[7];
    std::copy(side, side + 7, s);
    std::copy(other, other + 7, o);
    s[2] = l > 9 && l <= 11 ? side[2] : 0;
    if (l > 6) s[4] = l > 9 ? 0 : -15;
    if (l > 4) s[5] = l > 11 ? -40 : l > 9 ? -35 : -30;
    o[2] = 0;
    if (l > 3) o[3] = 10;
    o[5] = l > 9 ? -25 : l > 4 ? -18 : 0;

    const CommandList commands = solvedLeg(kRight, s, 100, 3) + solvedLeg(kLeft, o, 100, 3);
    kick.unStableState1 = 7;
    kick.l = l - 1;
    placeOutside(body, commands);
    body.markCommands();
    EXPECT_FALSE(kick.unstable1());
    EXPECT_EQ(kick.l, l);
    EXPECT_EQ(kick.unStableState1, 7);
    expectDriven(body, commands);
    EXPECT_EQ(kick.torso, torso);
    EXPECT_EQ(kick.ankle[kRight], Vector(100, 0, 40));
    EXPECT_EQ(kick.ankle[kLeft], l > 11  ? Vector(100, 0, 0)
                                 : l > 9 ? Vector(100, 0, 15)
                                         : Vector(-20, 0, 10));

    placeInside(body, commands);
    kick.l = l - 1;
    EXPECT_FALSE(kick.unstable1());
    EXPECT_EQ(kick.unStableState1, 80);
  }
}

TEST_F(KickTest, StrongKickNeverEndsByItself) {
  kick.unStableState1 = 80;
  for (int cycle = 0; cycle < 300; ++cycle) {
    body.markCommands();
    EXPECT_FALSE(kick.unstable1());
    for (const auto& hinge : FakeBody::hinges()) ASSERT_FALSE(body.commanded(hinge));
    body.nextCycle();
  }
  EXPECT_EQ(kick.unStableState1, 80);
  kick.resetVars();
  EXPECT_EQ(kick.unStableState1, 0);
}

TEST_F(KickTest, StrongKickKeepsItsCountThroughAReset) {
  kick.l = 14;
  kick.resetVars();
  EXPECT_EQ(kick.l, 14);
  kick.unStableState1 = 7;
  kick.unstable1();
  EXPECT_EQ(kick.l, 15);
}

TEST_F(KickTest, StrongKickHasAnEndThatNothingLeadsTo) {
  kick.unStableState1 = 8;
  body.markCommands();
  EXPECT_TRUE(kick.unstable1());
  EXPECT_EQ(kick.unStableState1, 1);
  EXPECT_EQ(body.agent.reset->State, 0);
  EXPECT_EQ(body.agent.reset->Speed, 10);
  EXPECT_EQ(body.agent.reset->SP, 5);
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
}

TEST_F(KickTest, FramesOfAStrongKickOnAnObeyingBody) {
  for (int type : {0, 2}) {
    setType(type);
    kick.resetVars();
    body.placeAll(0);
    std::vector<int> frames = {kick.unStableState1};
    for (int cycle = 0; cycle < 600 && frames.back() != 80; ++cycle) {
      EXPECT_FALSE(kick.unstable1());
      if (frames.back() != kick.unStableState1) frames.push_back(kick.unStableState1);
      body.nextCycle();
    }
    EXPECT_EQ(frames, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 80}));
  }
}

TEST_F(KickTest, StrongKickDoesNotChooseTheSupportLeg) {
  kick.side = true;
  kick.otherside = true;
  kick.unstable1();
  EXPECT_TRUE(kick.otherside);
  // Both names mean the right leg then, and the support leg's target holds.
  EXPECT_EQ(kick.ankle[kRight], Vector(0, 0, 30));
}

// --- the sequences without a caller ---

TEST_F(KickTest, StepAsideFollowsItsTable) {
  for (bool side : {kRight, kLeft}) {
    const float s = side ? 1 : -1;
    const auto check = [&](int frame, Vector torso, Vector ankleSide, Vector ankleOther) {
      SCOPED_TRACE("frame " + std::to_string(frame));
      bool ended = false;
      checkFrame(body,
                 {[&, frame, side] {
                    kick.side = side;
                    kick.gtside = frame;
                  },
                  [&] { ended = kick.gotoside(); }, [&, frame] { return kick.gtside != frame; },
                  pose(kClosed, side, torso, ankleSide, ankleOther, 25, 3)});
      EXPECT_EQ(ended, frame == 9);
      EXPECT_EQ(kick.gtside, frame == 9 ? 1 : frame + 1);
      EXPECT_EQ(kick.otherside, !side);
    };
    const Vector ahead(100, 0, 0), up(0, 0, 25);
    check(1, Vector(30, -35 * s, -25), Vector(0, 0, 0), Vector(0, 0, 15));
    check(2, Vector(30, -55 * s, -25), Vector(0, 0, 0), Vector(0, 0, 30));
    check(3, Vector(30, 0, -25), Vector(0, 0, 0), ahead);
    check(4, Vector(85, 20 * s, -25), up, ahead);
    check(5, Vector(85, 40 * s, -25), up, ahead);
    check(6, Vector(85, 40 * s, -25), up, ahead);
    check(7, Vector(85, 40 * s, -25), Vector(100, 0, 25), ahead);
    check(9, Vector(85, 80 * s, -25), Vector(140, -80, 25), ahead);
  }
}

TEST_F(KickTest, StepAsideSpreadsTheLegOverItsPoseAndStaysThere) {
  kick.side = true;
  kick.gtside = 8;
  // The pose comes first, and the spread overrides its joints 2 and 6 in the same cycle.
  EXPECT_FALSE(kick.gotoside());
  EXPECT_FLOAT_EQ(body.leg(kRight, 2).preValue, -45);
  EXPECT_FLOAT_EQ(body.leg(kRight, 6).preValue, 45);
  EXPECT_EQ(body.leg(kRight, 2).Angle, -6);
  EXPECT_EQ(kick.torso, Vector(85, 80, -25));
  EXPECT_EQ(kick.ankle[kRight], Vector(180, 0, 25));
  EXPECT_EQ(kick.ankle[kLeft], Vector(100, 0, 0));

  // The pose asks the same two joints for other angles, more than both tolerances away.
  for (int cycle = 0; cycle < 400; ++cycle) {
    body.nextCycle();
    EXPECT_FALSE(kick.gotoside());
  }
  EXPECT_EQ(kick.gtside, 8);
  EXPECT_NEAR(body.angle({FakeBody::Limb::kLeg, kRight, 2}), -45, 3);
}

TEST_F(KickTest, SideKickFollowsItsTable) {
  for (bool side : {kRight, kLeft}) {
    bool ended = false;
    const auto frame = [&](int number, Vector torso, Vector ankleOther) {
      return Frame{[&, number, side] {
                     kick.side = side;
                     kick.sideState = number;
                   },
                   [&] { ended = kick.sideKick(); },
                   [&, number] { return kick.sideState != number; },
                   pose(kClosed, side, torso, Vector(0, 0, 0), ankleOther, 100, 3)};
    };
    checkFrame(body, frame(1, Vector(-10, -35, -20), Vector(0, 60, 30)));
    EXPECT_FALSE(ended);
    EXPECT_EQ(kick.sideState, 2);
    ::testing::internal::CaptureStdout();
    checkFrame(body, frame(2, Vector(-10, -40, -20), Vector(0, 0, 0)));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              side ? "FFFFFFFFFFFFFFFFFFFF\n" : "LLLLLLLLLLLLLLLLLLLLL\n");
    EXPECT_TRUE(ended);
    EXPECT_EQ(kick.sideState, 1);
    EXPECT_EQ(kick.otherside, !side);
  }
}

TEST_F(KickTest, ResetVars) {
  kick.kickstate = kick.standupstate = kick.stableState = kick.unStableState1 = 9;
  kick.sideState = 2;
  kick.gtside = 4;
  kick.side = false;
  kick.otherside = true;
  kick.resetVars();
  EXPECT_EQ(kick.kickstate, 1);
  EXPECT_EQ(kick.standupstate, 1);
  EXPECT_EQ(kick.stableState, 0);
  EXPECT_EQ(kick.unStableState1, 0);
  EXPECT_TRUE(kick.side);
  EXPECT_FALSE(kick.otherside);
  EXPECT_EQ(kick.sideState, 2);
  EXPECT_EQ(kick.gtside, 4);
}

}  // namespace
