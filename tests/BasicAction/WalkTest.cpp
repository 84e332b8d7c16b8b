#include "BasicAction/Walk.h"

#include <gtest/gtest.h>

#include "BasicAction/BackWalk.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/OmniBackWalk.h"
#include "BasicAction/OmniSideWalk.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/SideWalk.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"

namespace {

using support::FakeBody;

const Vector kPoint(1, 2, 3);

TEST(WalkTest, OwnsSixGaits) {
  const Walk walk;
  EXPECT_NE(walk._forWalk, nullptr);
  EXPECT_NE(walk._backWalk, nullptr);
  EXPECT_NE(walk._sideWalk, nullptr);
  EXPECT_NE(walk._omniWalk, nullptr);
  EXPECT_NE(walk._omniBackWalk, nullptr);
  EXPECT_NE(walk._omniSideWalk, nullptr);
  EXPECT_EQ(walk.type, AT_NONE);
}

TEST(WalkTest, ForWalkIsStoredAndRemembered) {
  Walk walk;
  EXPECT_EQ(walk.forWalk(0.5, 33.9f, true, true), &walk);
  EXPECT_EQ(walk.type, AT_FORWALK);
  EXPECT_EQ(walk.preForGain, 0.5);
  EXPECT_EQ(walk.prespeedF, 33.9f);
  EXPECT_TRUE(walk.preSide);
  EXPECT_TRUE(walk.preStart);
  EXPECT_EQ(walk._forWalk->gain, 0.5);
  EXPECT_TRUE(walk._forWalk->side);
  EXPECT_EQ(walk._forWalk->sp, 33);
  walk.forWalk(2, 1, false, false);
  EXPECT_FALSE(walk.preSide);
  EXPECT_FALSE(walk.preStart);
  EXPECT_FALSE(walk._forWalk->side);
}

TEST(WalkTest, TheSpeedOfForWalkLastsUntilTheNextCycleOnly) {
  FakeBody body;
  Walk walk;
  walk.forWalk(1, 99, true, true);
  EXPECT_EQ(walk._forWalk->sp, 99);
  body.nextCycle();
  walk.forWalk();
  EXPECT_EQ(walk._forWalk->sp, 47);
}

TEST(WalkTest, TheSignOfTheSideGainPicksTheType) {
  Walk walk;
  EXPECT_EQ(walk.sideWalk(-0.5), &walk);
  EXPECT_EQ(walk.type, AT_SIDEWALK_LEFT);
  EXPECT_EQ(walk.preSideGain, -0.5);
  EXPECT_EQ(walk.Gain, -0.5);
  EXPECT_EQ(walk._sideWalk->gain, -0.5);
  walk.sideWalk(0);
  EXPECT_EQ(walk.type, AT_SIDEWALK_RIGHT);
  walk.sideWalk(2);
  EXPECT_EQ(walk.type, AT_SIDEWALK_RIGHT);
  EXPECT_EQ(walk._sideWalk->gain, 2);
}

TEST(WalkTest, NothingOfABackWalkRequestReachesTheGait) {
  Walk walk;
  EXPECT_EQ(walk.backWalk(-1, 0.25), &walk);
  EXPECT_EQ(walk.type, AT_BACKWALK);
  EXPECT_EQ(walk.preBackGain, -1);
  EXPECT_EQ(walk.Gain, -1);
  EXPECT_EQ(walk.Speed, 0.25);
  EXPECT_EQ(walk.prespeedB, 0.25);
  EXPECT_EQ(walk._backWalk->gain, 1);
  EXPECT_EQ(walk._backWalk->speed, 1);
}

TEST(WalkTest, OmniWalkIsStoredAndRemembered) {
  Walk walk;
  EXPECT_EQ(walk.omniWalk(kPoint, 0.75, 12.5, 1), &walk);
  EXPECT_EQ(walk.type, AT_OMNIWALK);
  EXPECT_EQ(walk.v, kPoint);
  EXPECT_EQ(walk.prePosition, kPoint);
  EXPECT_EQ(walk.Error, 12.5);
  EXPECT_EQ(walk.preError, 12.5);
  EXPECT_EQ(walk.Speed, 0.75);
  EXPECT_EQ(walk.prespeedOW, 0.75);
  EXPECT_EQ(walk._omniWalk->v, kPoint);
  EXPECT_EQ(walk._omniWalk->actionType, 1);
  EXPECT_EQ(walk._omniWalk->error, 12.5);
  EXPECT_EQ(walk._omniWalk->speed, 0.75);
  EXPECT_EQ(walk.prePos, Vector()) << "the target of the other two omni gaits";
  EXPECT_EQ(walk.point, Vector());
  EXPECT_EQ(walk.error, 0);
}

// The arbiter re-issues these two from prePosition, so the last forward target stays there.
TEST(WalkTest, OmniBackAndSideWalkRememberTheirTargetsElsewhere) {
  Walk walk;
  const Vector forward(9, 9, 0);
  walk.omniWalk(forward, 1, 10, 0);

  EXPECT_EQ(walk.omniBackWalk(kPoint, 7.5, 0.5), &walk);
  EXPECT_EQ(walk.type, AT_OMNIBACKWALK);
  EXPECT_EQ(walk.prePosition, forward);
  EXPECT_EQ(walk.v, forward);
  EXPECT_EQ(walk.prePos, kPoint);
  EXPECT_EQ(walk.point, kPoint);
  EXPECT_EQ(walk.preError, 7.5);
  EXPECT_EQ(walk.error, 7.5);
  EXPECT_EQ(walk.Error, 10) << "omniWalk's own";
  EXPECT_EQ(walk.Speed, 0.5);
  EXPECT_EQ(walk.prespeedOB, 0.5);
  EXPECT_EQ(walk.prespeedOW, 1);
  EXPECT_EQ(walk._omniBackWalk->v, kPoint);
  EXPECT_EQ(walk._omniBackWalk->error, 7.5);
  EXPECT_EQ(walk._omniBackWalk->speed, 0.5);

  const Vector side(4, 5, 6);
  EXPECT_EQ(walk.omniSideWalk(side, 22), &walk);
  EXPECT_EQ(walk.type, AT_OMNISIDEWALK);
  EXPECT_EQ(walk.prePosition, forward);
  EXPECT_EQ(walk.prePos, side);
  EXPECT_EQ(walk.point, side);
  EXPECT_EQ(walk.preError, 22);
  EXPECT_EQ(walk.error, 22);
  EXPECT_EQ(walk.Speed, 0.5) << "the side gait has no speed";
  EXPECT_EQ(walk._omniSideWalk->v, side);
  EXPECT_EQ(walk._omniSideWalk->error, 22);
}

TEST(WalkTest, EachRunnerRunsItsOwnGait) {
  FakeBody body;
  body.stand(Vector(0, 0, 0), 0);
  Walk& walk = *body.agent.walk;
  walk.omniWalk(kPoint, 1, 10, 0);
  walk.omniBackWalk(kPoint, 10, 1);
  walk.omniSideWalk(kPoint, 10);
  bool (Walk::*const runners[])() = {&Walk::forWalk,  &Walk::backWalk,     &Walk::sideWalk,
                                     &Walk::omniWalk, &Walk::omniBackWalk, &Walk::omniSideWalk};
  const auto sequences = [&] {
    return std::vector<int>{walk._forWalk->basicWalkState,      walk._backWalk->basicWalkState,
                            walk._sideWalk->basicWalkState,     walk._omniWalk->basicWalkState,
                            walk._omniBackWalk->basicWalkState, walk._omniSideWalk->basicWalkState};
  };
  for (std::size_t gait = 0; gait < 6; ++gait) {
    SCOPED_TRACE(gait);
    const std::vector<int> before = sequences();
    const auto run = [&] { return (walk.*runners[gait])(); };
    for (int cycle = 0; cycle < 1000 && sequences() == before; ++cycle) {
      body.nextCycle();
      EXPECT_FALSE(run());
    }
    for (std::size_t other = 0; other < 6; ++other) {
      EXPECT_EQ(sequences()[other] != before[other], other == gait);
    }
    // Its first step: four phases.
    const bool endsTrue = gait < 2;
    for (int phase = 0; phase < 4; ++phase) {
      body.nextCycle();
      EXPECT_EQ(run(), phase == 3 && endsTrue);
    }
  }
}

// A stop of all actions leaves the gaits in the middle of their step.
TEST(WalkTest, ItsResetTouchesNoGait) {
  Walk walk;
  walk._omniWalk->state = 2;
  walk._omniWalk->basicWalkState = 5;
  walk.omniWalk(kPoint, 1, 10, 0);
  walk.resetVars();
  EXPECT_EQ(walk._omniWalk->state, 2);
  EXPECT_EQ(walk._omniWalk->basicWalkState, 5);
  EXPECT_EQ(walk.type, AT_OMNIWALK);
  EXPECT_EQ(walk.prePosition, kPoint);
}

}  // namespace
