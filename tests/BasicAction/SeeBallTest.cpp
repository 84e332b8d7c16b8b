#include "BasicAction/SeeBall.h"

#include <gtest/gtest.h>

#include "WorldModel/Ball.h"
#include "support/FakeBody.h"
#include "support/FrameCheck.h"

namespace {

using support::checkFrame;
using support::CommandList;
using support::FakeBody;
using support::headCommand;
using support::JointCommand;
using support::placeInside;
using support::placeOutside;

constexpr int kPan = 1;
constexpr int kTilt = 2;

class SeeBallTest : public ::testing::Test {
 protected:
  void seeBallAgo(float seconds) {
    body.world->gameTime = 10;
    body.world->ball->setLastTimeSeen(10 - seconds);
  }

  FakeBody body;
  SeeBall& seeBall = *body.agent.seeBall;
};

TEST_F(SeeBallTest, StartState) {
  EXPECT_EQ(seeBall.state, 0);
  EXPECT_EQ(seeBall.s, 1);
  EXPECT_EQ(seeBall.d, -80);
  EXPECT_EQ(seeBall.lookDown, 0);
  EXPECT_EQ(SeeBall::aroundState, 0);
}

TEST_F(SeeBallTest, SeenIsWithinTwelveHundredths) {
  seeBallAgo(0);
  EXPECT_TRUE(seeBall.seen());
  seeBallAgo(0.1f);
  EXPECT_TRUE(seeBall.seen());
  seeBallAgo(0.14f);
  EXPECT_FALSE(seeBall.seen());
}

TEST_F(SeeBallTest, SeenSubtractsInSinglePrecision) {
  // The exact difference of these two is above 0.12; in single precision it rounds to below it.
  const float now = 0.121004f, last = 0.00100400008f;
  ASSERT_GT(static_cast<double>(now) - static_cast<double>(last), 0.12);
  body.world->gameTime = now;
  body.world->ball->setLastTimeSeen(last);
  EXPECT_TRUE(seeBall.seen());
}

TEST_F(SeeBallTest, SweepLevelsTheTiltThenPansToBothEnds) {
  const JointCommand commands[] = {headCommand(kTilt, 0, 70, 5), headCommand(kPan, 120, 70, 5)};
  for (int state : {0, 1}) {
    SCOPED_TRACE(state);
    checkFrame(body, {[&, state] { SeeBall::aroundState = state; },
                      [&] { seeBall.SeeAll(); },
                      [&, state] { return SeeBall::aroundState == state + 1; },
                      {commands[state]}});
  }
  seeBallAgo(0);
  checkFrame(body, {[&] { SeeBall::aroundState = 2; },
                    [&] { seeBall.SeeAll(); },
                    [&] { return SeeBall::aroundState == 1; },
                    {headCommand(kPan, -120, 70, 5)}});
  EXPECT_EQ(seeBall.lookDown, 0);
}

TEST_F(SeeBallTest, WithTheBallLostTheNextSweepIsTiltedDown) {
  seeBallAgo(1);
  const CommandList both = {headCommand(kPan, -120, 70, 5), headCommand(kTilt, -45, 70, 5)};
  SeeBall::aroundState = 2;
  placeInside(body, both);
  placeOutside(body, {both[1]});
  for (int cycle = 0; cycle < 3; ++cycle) {
    // The pan has arrived, the tilt has not: both are commanded in each cycle.
    body.markCommands();
    seeBall.SeeAll();
    EXPECT_TRUE(body.commanded(both[0].hinge));
    EXPECT_TRUE(body.commanded(both[1].hinge));
    EXPECT_FLOAT_EQ(body.target(both[1].hinge), -45);
    EXPECT_EQ(SeeBall::aroundState, 2);
  }
  placeInside(body, both);
  seeBall.SeeAll();
  EXPECT_EQ(SeeBall::aroundState, 1);
  EXPECT_EQ(seeBall.lookDown, 1);
}

TEST_F(SeeBallTest, AfterADownwardSweepTheTiltIsLevelledAgain) {
  seeBallAgo(1);
  seeBall.lookDown = 1;
  SeeBall::aroundState = 2;
  placeInside(body, {headCommand(kPan, -120, 70, 5)});
  body.markCommands();
  seeBall.SeeAll();
  EXPECT_EQ(SeeBall::aroundState, 0);
  EXPECT_EQ(seeBall.lookDown, 0);
  EXPECT_FALSE(body.commanded({FakeBody::Limb::kHead, false, kTilt}));
}

TEST_F(SeeBallTest, ThePanComesFirstAtTheEndOfASweep) {
  seeBallAgo(1);
  SeeBall::aroundState = 2;
  placeOutside(body, {headCommand(kPan, -120, 70, 5)});
  body.markCommands();
  seeBall.SeeAll();
  EXPECT_FALSE(body.commanded({FakeBody::Limb::kHead, false, kTilt}));
  EXPECT_EQ(SeeBall::aroundState, 2);
}

TEST_F(SeeBallTest, TheStepOfTheSweepIsSharedByAllObjects) {
  SeeBall other;
  SeeBall::aroundState = 0;
  placeInside(body, {headCommand(kTilt, 0, 70, 5)});
  seeBall.SeeAll();
  placeInside(body, {headCommand(kPan, 120, 70, 5)});
  other.SeeAll();
  EXPECT_EQ(SeeBall::aroundState, 2);
}

TEST_F(SeeBallTest, OnAnObeyingBodyEverySecondSweepLooksDown) {
  seeBallAgo(100);
  std::vector<int> tilts;  // the tilt at the end of each sweep to the right
  int before = 0;
  for (int cycle = 0; cycle < 1000; ++cycle) {
    seeBall.SeeAll();
    const bool sweepEnded = before == 2 && SeeBall::aroundState != 2;
    if (sweepEnded) tilts.push_back(seeBall.lookDown);
    before = SeeBall::aroundState;
    body.nextCycle();
  }
  ASSERT_GE(tilts.size(), 6u);
  for (std::size_t i = 0; i < tilts.size(); ++i) EXPECT_EQ(tilts[i], i % 2 == 0 ? 1 : 0);
}

TEST_F(SeeBallTest, SlowSearchFollowsItsTable) {
  const int d = -80;
  const CommandList table = {
      headCommand(kPan, 0, 7, 5),  headCommand(kTilt, -40, 7, 5), headCommand(kTilt, 0, 7, 5),
      headCommand(kPan, d, 7, 5),  headCommand(kTilt, -40, 7, 5), headCommand(kTilt, 0, 7, 5),
      headCommand(kPan, -d, 7, 5), headCommand(kTilt, -40, 7, 5), headCommand(kTilt, 0, 7, 5)};
  for (int state = 0; state < 8; ++state) {
    SCOPED_TRACE(state);
    checkFrame(body, {[&, state] { seeBall.state = state; },
                      [&] { seeBall.lookForBall(); },
                      [&, state] { return seeBall.state == state + 1; },
                      {table[static_cast<std::size_t>(state)]}});
  }
  checkFrame(body, {[&] { seeBall.state = 8; },
                    [&] { seeBall.lookForBall(); },
                    [&] { return seeBall.state == 0; },
                    {table[8]}});
}

TEST_F(SeeBallTest, SlowSearchSwaysItsAmplitude) {
  for (int expected : {-120, -80, -120, -80}) {
    seeBall.state = 8;
    placeInside(body, {headCommand(kTilt, 0, 7, 5)});
    seeBall.lookForBall();
    EXPECT_EQ(seeBall.d, expected);
  }
}

}  // namespace
