#include "Decision/Actions.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "AdvancedAction/Decide.h"
#include "AdvancedAction/GoToBall.h"
#include "AdvancedAction/GoToGoal.h"
#include "AdvancedAction/GoToKick.h"
#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/BackWalk.h"
#include "BasicAction/Dive.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/Kick.h"
#include "BasicAction/OmniBackWalk.h"
#include "BasicAction/OmniSideWalk.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SideWalk.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Kinematics/InverseKinematic.h"
#include "support/FakeBody.h"
#include "support/FrameCheck.h"

namespace {

using support::CommandList;
using support::expectDriven;
using support::FakeBody;
using support::placeOutside;
using support::wholeBody;

// A mark in Reset::State that no action writes: it is gone once an end step ran.
constexpr int kNoEndStep = 77;

class ActionsTest : public ::testing::Test {
 protected:
  void given(ActionType running, bool preAction, bool endStepIsRequired) {
    actions.NowAction.actionType = running;
    actions.preAction = preAction;
    actions.endStepIsRequired = endStepIsRequired;
    reset.execute(kNoEndStep, 1, 1);
  }

  bool endStepRan() const { return reset.State == 1 && reset.Speed == 10 && reset.SP == 5; }

  // The forward gait as R, within its second step: phase 1 of 0 to 3.
  void walkForwardMidStep() {
    walk.forWalk(1, 60, kRight, false);
    walk._forWalk->basicWalkState = 2;
    walk._forWalk->state = 1;
  }
  int forwardPhase() const { return walk._forWalk->state; }

  // Puts all joints where the neutral stance has them, or the one with another hip target.
  void reachNeutralStance() { reachStance(Vector(20, -5, -35)); }
  void reachStance(Vector hip) {
    double angles[7];
    InverseKinematic().legSolver(hip, Vector(0, 0, 0), angles);
    body.placeAll(0);
    for (bool side : {kLeft, kRight}) {
      body.place({FakeBody::Limb::kHand, side, 1}, -90);
      body.place({FakeBody::Limb::kHand, side, 3}, side ? 90 : -90);
      for (int joint = 2; joint <= 5; ++joint) {
        body.place({FakeBody::Limb::kLeg, side, joint}, static_cast<float>(angles[joint]));
      }
    }
  }

  FakeBody body;
  Agent& agent = body.agent;
  Actions& actions = *agent.actions;
  Walk& walk = *agent.walk;
  Turn& turn = *agent.turn;
  TAB& tab = *agent.turnAroundBall;
  Kick& kick = *agent.kick;
  Reset& reset = *agent.reset;
  Dive& dive = *agent.dive;
  StandUp& standUp = *agent.standUp;
};

// One kind of request: how to make it, how to tell that its target was reset, and that it ran.
struct Request {
  const char* name;
  ActionType type;
  bool isWalk;
  std::function<bool()> ask;
  std::function<void()> spoil;  // fills a field that resetVars clears, and one that running moves
  std::function<bool()> wasReset;
  std::function<bool()> ran;
};

class ActionsRequestTest : public ActionsTest {
 protected:
  // Away from the pitch centre, to which the parameters of a turn are reset.
  void SetUp() override { body.stand(Vector(1, -2, 0), 0); }

  std::vector<Request> requests() {
    const Vector far(5, 5, 0);
    return {
        {"turn", AT_TURN, false,
         [=, this] { return actions.ChangeAction(turn.execute(far, 5, 0)); },
         [this] {
           turn.count = 9;
           turn.angle = -1;
         },
         [this] { return turn.count == 0; }, [this] { return turn.angle > 0; }},
        {"kick", AT_UNSTABLE_KICK, false,
         [this] { return actions.ChangeAction(kick.unstable(kRight)); },
         [this] {
           kick.stableState = 1700;
           kick.otherside = true;
         },
         [this] { return kick.stableState != 1700; }, [this] { return !kick.otherside; }},
        {"reset", AT_RESET, false, [this] { return actions.ChangeAction(reset.execute(0, 4, 4)); },
         [this] { reset.resetCounter = 9; }, [this] { return reset.resetCounter == 0; },
         [this] { return reset.State == 1; }},
        {"dive", AT_DIVE, false, [this] { return actions.ChangeAction(dive.execute(0, 50, true)); },
         [this] {
           dive.finish = true;
           body.takeLog();
         },
         [this] { return !dive.finish; },
         [this] { return body.takeLog().find("return false") != std::string::npos; }},
        {"walk", AT_OMNIWALK, true,
         [=, this] { return actions.ChangeAction(walk.omniWalk(far, 1, 5, 0)); },
         [this] {
           walk._omniWalk->rx = 50;
           walk._omniWalk->basicWalkState = 3;  // within a step: no stance of its own
           body.takeLog();
         },
         [this] { return walk._omniWalk->rx == 0; },
         [this] { return body.takeLog().find("omniwalk !!") != std::string::npos; }},
    };
  }
};

TEST_F(ActionsTest, StartState) {
  EXPECT_TRUE(actions.preAction);
  EXPECT_FALSE(actions.endStepIsRequired);
  EXPECT_FALSE(actions.checkEnd);
  EXPECT_EQ(actions.NowAction.actionType, AT_NONE);
  EXPECT_EQ(actions.getNowAction().actionType, AT_NONE);
  EXPECT_EQ(actions.getFormerAction().actionType, AT_NONE);
  EXPECT_EQ(actions.e, 0);
  EXPECT_EQ(actions.p, 0);
  EXPECT_TRUE(actions.k);
}

TEST_F(ActionsRequestTest, TheFirstRequestRunsAtOnceWithoutAnEndStep) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    given(AT_NONE, true, false);
    r.spoil();
    r.ask();
    EXPECT_TRUE(r.wasReset());
    EXPECT_TRUE(r.ran());
    EXPECT_EQ(actions.NowAction.actionType, r.type);
    EXPECT_EQ(actions.at, r.type);
  }
}

// --- The state table, row by row ---

TEST_F(ActionsRequestTest, MayNotBeLeftAndDifferentTheRunningActionGoesOn) {
  for (bool endStepIsRequired : {false, true}) {
    for (const Request& r : requests()) {
      SCOPED_TRACE(r.name);
      walkForwardMidStep();
      given(AT_FORWALK, false, endStepIsRequired);
      r.spoil();
      EXPECT_FALSE(r.ask());
      EXPECT_EQ(forwardPhase(), 2);
      EXPECT_FALSE(r.wasReset());
      if (r.type != AT_RESET) {
        EXPECT_FALSE(r.ran());
        EXPECT_EQ(reset.State, kNoEndStep);
      }
      EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
      EXPECT_FALSE(actions.preAction);
      EXPECT_TRUE(actions.endStepIsRequired);  // the gait demands it in every cycle
    }
  }
}

TEST_F(ActionsRequestTest, MayNotBeLeftAndTheSameGoesOn) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    given(r.type, false, false);
    r.spoil();
    r.ask();
    EXPECT_FALSE(r.wasReset());
    EXPECT_TRUE(r.ran() || r.type == AT_UNSTABLE_KICK);  // spoiled into the frame without an end
    EXPECT_EQ(actions.NowAction.actionType, r.type);
  }
}

TEST_F(ActionsRequestTest, MayNotBeLeftAndTheSameWithAnEndStepDue) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    given(r.type, false, true);
    actions.at = r.type;
    r.spoil();
    EXPECT_FALSE(r.ask());
    EXPECT_FALSE(r.wasReset());
    if (r.isWalk) {
      EXPECT_TRUE(r.ran());
      EXPECT_EQ(reset.State, kNoEndStep);
    } else {
      EXPECT_TRUE(endStepRan());
      if (r.type != AT_RESET) {
        EXPECT_FALSE(r.ran());
      }
    }
  }
}

TEST_F(ActionsRequestTest, MayBeLeftAndDifferentIsResetAndStarts) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    walkForwardMidStep();
    given(AT_FORWALK, true, false);
    r.spoil();
    r.ask();
    EXPECT_TRUE(r.wasReset());
    EXPECT_TRUE(r.ran());
    EXPECT_EQ(actions.NowAction.actionType, r.type);
    EXPECT_EQ(actions.at, r.type);
    // A walk request starts all gaits afresh; the others leave them.
    EXPECT_EQ(forwardPhase(), r.isWalk ? 0 : 1);
  }
}

TEST_F(ActionsRequestTest, MayBeLeftAndTheSameGoesOn) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    given(r.type, true, false);
    r.spoil();
    r.ask();
    EXPECT_FALSE(r.wasReset());
    EXPECT_TRUE(r.ran() || r.type == AT_UNSTABLE_KICK);
  }
}

TEST_F(ActionsRequestTest, MayBeLeftAndDifferentWithAnEndStepDueTakesTheEndStepFirst) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    body.placeAll(0);
    given(AT_FORWALK, true, true);
    actions.at = AT_FORWALK;
    r.spoil();
    // Reset and dive pass on that the gait may be left; the others yield false.
    EXPECT_EQ(r.ask(), r.type == AT_RESET || r.type == AT_DIVE);
    EXPECT_TRUE(endStepRan());
    EXPECT_FALSE(r.wasReset());
    EXPECT_TRUE(actions.endStepIsRequired);
    EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);

    // The call in which the stance is reached is still the end step's.
    reachNeutralStance();
    EXPECT_EQ(r.ask(), r.type == AT_RESET || r.type == AT_DIVE);
    EXPECT_FALSE(actions.endStepIsRequired);
    EXPECT_FALSE(r.wasReset());
    EXPECT_TRUE(actions.preAction);

    // The next one starts the action.
    r.ask();
    EXPECT_TRUE(r.wasReset());
    EXPECT_TRUE(r.ran());
    EXPECT_EQ(actions.NowAction.actionType, r.type);
  }
}

TEST_F(ActionsRequestTest, MayBeLeftAndTheSameWithAnEndStepDue) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    body.placeAll(0);
    given(r.type, true, true);
    actions.at = r.type;
    r.spoil();
    r.ask();
    EXPECT_FALSE(r.wasReset());
    if (r.isWalk) {
      EXPECT_TRUE(r.ran());  // the gait flows on from step to step
      EXPECT_EQ(reset.State, kNoEndStep);
    } else {
      EXPECT_TRUE(endStepRan());
      if (r.type != AT_RESET) {
        EXPECT_FALSE(r.ran());
      }
    }
  }
}

TEST_F(ActionsRequestTest, CheckEndIsASecondReasonForAnEndStep) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    body.placeAll(0);
    given(r.type, true, false);
    actions.at = r.type;
    actions.checkEnd = true;
    r.spoil();
    EXPECT_EQ(r.ask(), r.type == AT_RESET || r.type == AT_DIVE);
    EXPECT_TRUE(endStepRan());
    if (r.type != AT_RESET) {
      EXPECT_FALSE(r.ran());
    }
    actions.checkEnd = false;
  }
}

// --- Results ---

// What each request yields in the very call in which the re-issued gait ends its step.
TEST_F(ActionsRequestTest, ResultWhenTheReissuedGaitEndsItsStep) {
  for (const Request& r : requests()) {
    SCOPED_TRACE(r.name);
    walkForwardMidStep();
    walk._forWalk->state = 3;
    given(AT_FORWALK, false, true);
    const bool kickOrTab = r.type == AT_UNSTABLE_KICK;
    EXPECT_EQ(r.ask(), !kickOrTab);
    EXPECT_TRUE(actions.preAction);
    EXPECT_EQ(forwardPhase(), 0);
  }
  walkForwardMidStep();
  walk._forWalk->state = 3;
  given(AT_FORWALK, false, true);
  EXPECT_FALSE(actions.ChangeAction(tab.execute(Vector(1, 1, 0), 5)));
  EXPECT_TRUE(actions.preAction);
}

// A re-issued reset, dive or stand-up does not set the flag that lets its result through.
TEST_F(ActionsRequestTest, ResultOfAReissuedResetReachesOnlyResetAndDive) {
  for (const Request& r : requests()) {
    if (r.type == AT_RESET) continue;
    SCOPED_TRACE(r.name);
    reachNeutralStance();
    given(AT_RESET, false, false);
    EXPECT_EQ(r.ask(), r.type == AT_DIVE);
    EXPECT_TRUE(actions.preAction);
  }
}

// The flag across the recursion, pair by pair: a running gait, turn, kick or turn around the ball
// lets its result through to a turn or gait request, a running reset, dive or stand-up does not.
// Kick and turn around the ball never pass on a result that is not their own; reset and dive always
// do.
TEST_F(ActionsRequestTest, ResultsAcrossTheRecursionPairByPair) {
  struct Running {
    const char* name;
    ActionType type;
    bool passesOn;
    std::function<void()> readyToEnd;
  };
  const Running running[] = {
      {"forward gait", AT_FORWALK, true,
       [&] {
         walkForwardMidStep();
         walk._forWalk->state = 3;
       }},
      {"turn", AT_TURN, true,
       [&] {
         turn.type = AT_TURN;
         turn.ak = 1;
       }},
      {"kick", AT_UNSTABLE_KICK, true,
       [&] {
         kick.unstable(kRight);
         kick.stableState = 17;
       }},
      {"turn around the ball", AT_TURN_AROUND_BALL, true,
       [&] {
         tab.execute(Vector(9, 9, 0), 360);
         tab.basicWalkState = 30;
       }},
      {"reset", AT_RESET, false, [&] { reachNeutralStance(); }},
      {"dive", AT_DIVE, false,
       [&] {
         dive.execute(0, 0, false);
         dive.diveState = 2;
       }},
      {"stand-up", AT_FLIP, false,
       [&] {
         standUp.flip();
         standUp.flipState = 1;
       }},
  };
  const auto asksTab = [this] { return actions.ChangeAction(tab.execute(Vector(9, 9, 0), 360)); };
  for (const Running& r : running) {
    std::vector<Request> all = requests();
    all.push_back({"turn around the ball", AT_TURN_AROUND_BALL, false, asksTab, [] {},
                   [] { return false; }, [] { return false; }});
    for (const Request& t : all) {
      if (t.type == r.type) continue;
      SCOPED_TRACE(std::string(t.name) + " asked for during " + r.name);
      given(r.type, false, false);
      r.readyToEnd();
      const bool own = t.type == AT_RESET || t.type == AT_DIVE;
      const bool never = t.type == AT_UNSTABLE_KICK || t.type == AT_TURN_AROUND_BALL;
      EXPECT_EQ(t.ask(), own || (!never && r.passesOn));
      EXPECT_TRUE(actions.preAction);
      EXPECT_EQ(actions.NowAction.actionType, r.type);
    }
  }
}

TEST_F(ActionsTest, AFinishedKickYieldsTrueToItsCaller) {
  given(AT_UNSTABLE_KICK, false, false);
  kick.stableState = 17;
  EXPECT_TRUE(actions.ChangeAction(kick.unstable(kRight)));
  EXPECT_TRUE(actions.preAction);
}

TEST_F(ActionsTest, KickTypesRunTheirSequences) {
  given(AT_NONE, true, false);
  actions.ChangeAction(kick.unstable(kRight));
  EXPECT_EQ(kick.stableState, 100);

  given(AT_NONE, true, false);
  actions.ChangeAction(kick.unstable1(kRight));
  EXPECT_EQ(kick.torso, Vector(40, -42, -10));

  for (int type : {0, 2}) {
    FakeBody::configure("Agent", "Public", "Type", std::to_string(type));
    kick.torso = Vector(0, 0, 0);
    given(AT_NONE, true, false);
    actions.ChangeAction(kick.execute(kRight));
    EXPECT_EQ(kick.torso, type == 2 ? Vector(40, -42, -10) : Vector(0, 0, 0));
    EXPECT_EQ(kick.stableState, type == 2 ? 0 : 100);
  }
}

TEST_F(ActionsTest, AnUnknownKickTypeRunsNothing) {
  given(AT_NONE, true, false);
  kick.type = AT_SIDE_KICK;
  body.markCommands();
  EXPECT_TRUE(actions.ChangeAction(&kick));
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
  EXPECT_EQ(actions.NowAction.actionType, AT_SIDE_KICK);
}

TEST_F(ActionsTest, ARequestedResetAlwaysRunsToTheNeutralStance) {
  given(AT_NONE, true, false);
  EXPECT_FALSE(actions.ChangeAction(reset.execute(0, 4, 4)));
  EXPECT_EQ(reset.State, 1);
  EXPECT_EQ(reset.Speed, 10);
  EXPECT_EQ(reset.SP, 5);
  EXPECT_EQ(reset.heap, Vector(20, -5, -35));
}

// The reset of a new target follows its setter and wipes the parameters for this one call: the
// turn counts as done, and commands nothing.
TEST_F(ActionsTest, FirstCallOfANewTurnYieldsTrueAndMovesNothing) {
  given(AT_NONE, true, false);
  const Vector target(-5, 3, 0);
  body.markCommands();
  EXPECT_TRUE(actions.ChangeAction(turn.execute(target, 5, 10)));
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
  EXPECT_EQ(turn.v, Vector(0, 0, 0));
  // The second call turns.
  EXPECT_FALSE(actions.ChangeAction(turn.execute(target, 5, 10)));
  EXPECT_TRUE(body.commanded({FakeBody::Limb::kLeg, kRight, 3}));
}

// Likewise the first call of a left kick runs as a right one; its first frame moves nothing.
TEST_F(ActionsTest, FirstCallOfANewKickForgetsItsSide) {
  given(AT_NONE, true, false);
  actions.ChangeAction(kick.unstable(kLeft));
  EXPECT_TRUE(kick.side);
  EXPECT_EQ(kick.stableState, 100);
  actions.ChangeAction(kick.unstable(kLeft));
  EXPECT_FALSE(kick.side);
}

// Likewise the first call of a new plain gait runs with the gain and the side of construction. A
// side gait to the left that finds the body in its stance so takes the opening leg of one to the
// right.
TEST_F(ActionsTest, FirstCallOfANewPlainGaitForgetsItsGainAndSide) {
  given(AT_NONE, true, false);
  reachStance(Vector(50, 0, -60));
  EXPECT_FALSE(actions.ChangeAction(walk.sideWalk(-0.5f)));
  EXPECT_EQ(actions.NowAction.actionType, AT_SIDEWALK_LEFT);
  EXPECT_EQ(walk._sideWalk->gain, 1);
  EXPECT_EQ(walk._sideWalk->basicWalkState, 1);
  EXPECT_FALSE(actions.ChangeAction(walk.sideWalk(-0.5f)));
  EXPECT_EQ(walk._sideWalk->gain, -0.5f);
  EXPECT_NE(walk._sideWalk->ly, 0);

  given(AT_NONE, true, false);
  actions.ChangeAction(walk.forWalk(0.5f, 60, kLeft, false));
  EXPECT_EQ(walk._forWalk->gain, 1);
  EXPECT_TRUE(walk._forWalk->side);
  actions.ChangeAction(walk.forWalk(0.5f, 60, kLeft, false));
  EXPECT_EQ(walk._forWalk->gain, 0.5f);
  EXPECT_FALSE(walk._forWalk->side);
}

// Of the omni gaits only the back gait's reset reaches what its request has set, and not its
// target.
TEST_F(ActionsTest, FirstCallOfANewOmniGaitForgetsErrorAndSpeedOfTheBackGaitAlone) {
  const Vector far(9, 3, 0);
  given(AT_NONE, true, false);
  actions.ChangeAction(walk.omniBackWalk(far, 7, 0.5f));
  EXPECT_EQ(walk._omniBackWalk->error, 2);
  EXPECT_EQ(walk._omniBackWalk->speed, 1);
  EXPECT_EQ(walk._omniBackWalk->v, far);
  actions.ChangeAction(walk.omniBackWalk(far, 7, 0.5f));
  EXPECT_EQ(walk._omniBackWalk->error, 7);
  EXPECT_EQ(walk._omniBackWalk->speed, 0.5);

  given(AT_NONE, true, false);
  actions.ChangeAction(walk.omniWalk(far, 0.5f, 7, 1));
  EXPECT_EQ(walk._omniWalk->error, 7);
  EXPECT_EQ(walk._omniWalk->speed, 0.5);
  EXPECT_EQ(walk._omniWalk->actionType, 1);
  EXPECT_EQ(walk._omniWalk->v, far);

  given(AT_NONE, true, false);
  actions.ChangeAction(walk.omniSideWalk(far, 7));
  EXPECT_EQ(walk._omniSideWalk->error, 7);
  EXPECT_EQ(walk._omniSideWalk->v, far);
}

// The reset of a dive leaves its request alone.
TEST_F(ActionsTest, FirstCallOfANewDiveKeepsItsRequest) {
  given(AT_NONE, true, false);
  actions.ChangeAction(dive.execute(-1, 30, true));
  EXPECT_EQ(dive.Side, -1);
  EXPECT_EQ(dive.fCycle, 30);
  EXPECT_TRUE(dive.RotateSide);
}

TEST_F(ActionsTest, TurnAroundBallIsNeverReset) {
  given(AT_NONE, true, false);
  tab.basicWalkState = 40;
  tab.count = 6;
  tab.ry = 12;
  actions.ChangeAction(tab.execute(Vector(5, 5, 0), 5));
  EXPECT_EQ(tab.count, 6);
  EXPECT_EQ(tab.ry, 12);
  EXPECT_NE(tab.basicWalkState, 1);
  EXPECT_EQ(actions.NowAction.actionType, AT_TURN_AROUND_BALL);
  EXPECT_EQ(actions.at, AT_TURN_AROUND_BALL);
}

TEST_F(ActionsTest, TurnAroundBallFollowsTheStateTable) {
  // Not to be left: the gait goes on.
  walkForwardMidStep();
  given(AT_FORWALK, false, true);
  EXPECT_FALSE(actions.ChangeAction(tab.execute(Vector(5, 5, 0), 5)));
  EXPECT_EQ(forwardPhase(), 2);
  EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
  // An end step due.
  given(AT_FORWALK, true, true);
  EXPECT_FALSE(actions.ChangeAction(tab.execute(Vector(5, 5, 0), 5)));
  EXPECT_TRUE(endStepRan());
  EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
  // An end step due although the turn itself runs.
  given(AT_TURN_AROUND_BALL, false, true);
  EXPECT_FALSE(actions.ChangeAction(tab.execute(Vector(5, 5, 0), 5)));
  EXPECT_TRUE(endStepRan());
  // None due.
  given(AT_TURN_AROUND_BALL, false, false);
  body.takeLog();
  actions.ChangeAction(tab.execute(Vector(5, 5, 0), 5));
  EXPECT_NE(body.takeLog().find("turn Arond ball execute"), std::string::npos);
}

// --- Gaits ---

struct GaitCase {
  const char* name;
  ActionType type;
  std::function<Walk*(Walk&)> set;
  std::function<void(Walk&)>
      endNextCycle;  // puts the gait into the last phase of a step that counts
  bool demandsEndStep;
  bool forgetsItself;  // `at` becomes AT_NONE after a true result
};

std::vector<GaitCase> gaitCases() {
  const Vector far(9, 3, 0);
  const auto plain = [](auto* gait) {
    gait->basicWalkState = 2;
    gait->state = 3;
  };
  // An unwinding step of an omni gait: the other leg rotates at the next decision.
  const auto omni = [](auto* gait) {
    gait->basicWalkState = 3;
    gait->state = 3;
    gait->side = true;
    gait->otherside = false;
    gait->rotSide = true;
    gait->rotOtherSide = false;
  };
  return {
      {"forward", AT_FORWALK, [](Walk& w) { return w.forWalk(1, 60, kRight, false); },
       [=](Walk& w) { plain(w._forWalk); }, true, false},
      {"back", AT_BACKWALK, [](Walk& w) { return w.backWalk(-1, 1); },
       [=](Walk& w) { plain(w._backWalk); }, true, false},
      {"side, right", AT_SIDEWALK_RIGHT, [](Walk& w) { return w.sideWalk(1); },
       [=](Walk& w) { plain(w._sideWalk); }, false, false},
      {"side, left", AT_SIDEWALK_LEFT, [](Walk& w) { return w.sideWalk(-1); },
       [](Walk& w) {
         w._sideWalk->basicWalkState = 1;
         w._sideWalk->state = 3;
       },
       false, false},
      {"omni", AT_OMNIWALK, [=](Walk& w) { return w.omniWalk(far, 1, 5, 0); },
       [=](Walk& w) { omni(w._omniWalk); }, true, true},
      {"omni back", AT_OMNIBACKWALK, [=](Walk& w) { return w.omniBackWalk(far, 5, 1); },
       [=](Walk& w) { omni(w._omniBackWalk); }, true, true},
      {"omni side", AT_OMNISIDEWALK, [=](Walk& w) { return w.omniSideWalk(far, 5); },
       [=](Walk& w) { omni(w._omniSideWalk); }, false, true},
  };
}

TEST_F(ActionsTest, GaitsDemandTheirEndStep) {
  for (const GaitCase& g : gaitCases()) {
    SCOPED_TRACE(g.name);
    given(AT_NONE, true, false);
    EXPECT_FALSE(actions.ChangeAction(g.set(walk)));
    EXPECT_EQ(actions.NowAction.actionType, g.type);
    EXPECT_EQ(actions.at, g.type);
    EXPECT_EQ(actions.endStepIsRequired, g.demandsEndStep);
  }
}

TEST_F(ActionsTest, OmniGaitsForgetTheirTypeWithTheirTrueResult) {
  for (const GaitCase& g : gaitCases()) {
    SCOPED_TRACE(g.name);
    given(g.type, true, false);
    g.set(walk);
    g.endNextCycle(walk);
    EXPECT_TRUE(actions.ChangeAction(g.set(walk)));
    EXPECT_TRUE(actions.preAction);
    EXPECT_EQ(actions.at, g.forgetsItself ? AT_NONE : g.type);
    EXPECT_EQ(actions.NowAction.actionType, g.type);
    if (!g.demandsEndStep) continue;

    // After the end step the omni gaits count as different, the plain ones do not.
    reachNeutralStance();
    EXPECT_TRUE(actions.endStep());
    EXPECT_EQ(actions.NowAction.actionType, g.forgetsItself ? AT_NONE : g.type);
  }
}

TEST_F(ActionsTest, AWalkRequestThatDiffersStartsAllGaitsAfresh) {
  walk._omniWalk->lx = walk._omniSideWalk->ly = walk._omniBackWalk->lx = walk._sideWalk->ly =
      walk._backWalk->lx = walk._forWalk->lx = 30;
  given(AT_FORWALK, true, false);
  actions.ChangeAction(walk.forWalk(1, 60, kRight, false));
  EXPECT_EQ(walk._forWalk->lx, 30);  // the same: nothing is reset
  actions.preAction = true;
  actions.endStepIsRequired = false;
  actions.ChangeAction(walk.backWalk(1, 1));
  EXPECT_EQ(walk._omniWalk->lx, 0);
  EXPECT_EQ(walk._omniSideWalk->ly, 0);
  EXPECT_EQ(walk._omniBackWalk->lx, 0);
  EXPECT_EQ(walk._sideWalk->ly, 0);
  EXPECT_EQ(walk._backWalk->lx, 0);
  EXPECT_EQ(walk._forWalk->lx, 0);
}

TEST_F(ActionsTest, EveryWalkRequestWritesTheEndStepBookkeeping) {
  const auto fill = [&] {
    actions.con = actions.endStepVal = actions.spd = actions.stepTime = 9;
    actions.side = actions.es[0] = actions.es[1] = actions.es[2] = true;
    actions.f = actions.state = actions.e = actions.p = 9;
    actions.k = false;
  };
  const auto expectWritten = [&] {
    EXPECT_EQ(actions.con, 0.05);
    EXPECT_FALSE(actions.side);
    for (bool es : actions.es) EXPECT_FALSE(es);
    EXPECT_EQ(actions.endStepVal, 0.5);
    EXPECT_EQ(actions.f, 0);
    EXPECT_EQ(actions.state, 1);
    EXPECT_EQ(actions.spd, 1.0);
    EXPECT_EQ(actions.stepTime, 0);
    EXPECT_EQ(actions.e, 0);
    EXPECT_EQ(actions.p, 0);
    EXPECT_TRUE(actions.k);
  };
  fill();
  actions.resetVarsEndStep();
  expectWritten();
  fill();
  given(AT_NONE, true, false);
  actions.ChangeAction(walk.forWalk(1, 60, kRight, false));
  expectWritten();
}

// --- endStep ---

TEST_F(ActionsTest, EndStepChangesNothingUntilTheStanceIsReached) {
  given(AT_OMNIWALK, true, true);
  actions.at = AT_NONE;
  body.placeAll(0);
  for (int cycle = 0; cycle < 5; ++cycle) {
    EXPECT_FALSE(actions.endStep());
    EXPECT_TRUE(actions.endStepIsRequired);
    EXPECT_EQ(actions.NowAction.actionType, AT_OMNIWALK);
    EXPECT_EQ(actions.p, 0);
    body.nextCycle();
  }
}

TEST_F(ActionsTest, EndStepOnArrival) {
  given(AT_OMNIWALK, true, true);
  actions.at = AT_NONE;
  actions.checkEnd = true;
  actions.e = 4;
  reachNeutralStance();
  EXPECT_TRUE(actions.endStep());
  EXPECT_EQ(actions.p, 1);
  EXPECT_EQ(actions.spd, 0);
  EXPECT_EQ(actions.e, 0);
  EXPECT_FALSE(actions.checkEnd);
  EXPECT_FALSE(actions.endStepIsRequired);
  EXPECT_EQ(actions.NowAction.actionType, AT_NONE);
  EXPECT_EQ(actions.state, 1000);
  EXPECT_TRUE(actions.preAction);
}

template <typename OmniGait>
void fillDoubles(OmniGait* gait) {
  for (int i = 0; i < 4; ++i) gait->RotZ[i] = gait->Xankle[i] = gait->Zankle[i] = 3;
  gait->Xtorso = gait->Ytorso = gait->Ztorso = 3;
}

template <typename OmniGait>
void expectTenCleared(const OmniGait* gait) {
  for (int i = 0; i < 4; ++i) EXPECT_EQ(gait->RotZ[i], 0);
  EXPECT_EQ(gait->Xtorso, 0);
  EXPECT_EQ(gait->Ytorso, 0);
  EXPECT_EQ(gait->Ztorso, 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(gait->Xankle[i], 0);
  EXPECT_EQ(gait->Xankle[3], 3);  // the eleventh and what follows stay
  for (int i = 0; i < 4; ++i) EXPECT_EQ(gait->Zankle[i], 3);
}

TEST_F(ActionsTest, EndStepClearsTenConsecutiveDoublesOfTwoOmniGaits) {
  fillDoubles(walk._omniWalk);
  fillDoubles(walk._omniBackWalk);
  for (double& rotZ : walk._omniSideWalk->RotZ) rotZ = 3;
  given(AT_OMNIWALK, true, true);
  actions.endStep();  // not yet there
  EXPECT_EQ(walk._omniWalk->RotZ[0], 3);
  reachNeutralStance();
  EXPECT_TRUE(actions.endStep());
  expectTenCleared(walk._omniWalk);
  expectTenCleared(walk._omniBackWalk);
  for (double rotZ : walk._omniSideWalk->RotZ) EXPECT_EQ(rotZ, 3);
}

TEST_F(ActionsTest, ATurnThatRunsTakesADueEndStepFirst) {
  const Vector target(-5, 1, 0);
  given(AT_TURN, false, true);
  actions.at = AT_TURN;
  body.placeAll(0);
  turn.execute(target, 5, 0);
  const int before = turn.basicTurnState;
  int cycles = 0;
  while (actions.endStepIsRequired) {
    EXPECT_FALSE(actions.ChangeAction(turn.execute(target, 5, 0)));
    EXPECT_EQ(turn.basicTurnState, before);
    body.nextCycle();
    ASSERT_LT(++cycles, 200);
  }
  EXPECT_GT(cycles, 20);
  // From here on the turn turns, and never demands an end step itself.
  for (int cycle = 0; cycle < 200; ++cycle) {
    actions.ChangeAction(turn.execute(target, 5, 0));
    EXPECT_FALSE(actions.endStepIsRequired);
    body.nextCycle();
  }
  EXPECT_GT(turn.count, 1);
}

// --- Stand-up ---

TEST_F(ActionsTest, AStandUpTakesOverInMidStep) {
  const std::function<StandUp*()> setters[] = {[&] { return standUp.front(); },
                                               [&] { return standUp.back(); },
                                               [&] { return standUp.flip(); }};
  for (const auto& set : setters) {
    walkForwardMidStep();
    walk._forWalk->lx = 40;
    given(AT_FORWALK, false, true);
    actions.checkEnd = true;
    standUp.counter = 30;
    standUp.standUpBState = 4;
    body.placeAll(10);
    body.markCommands();
    EXPECT_FALSE(actions.ChangeAction(set()));
    EXPECT_FALSE(actions.endStepIsRequired);
    EXPECT_FALSE(actions.checkEnd);
    EXPECT_FALSE(actions.preAction);
    EXPECT_EQ(actions.NowAction.actionType, standUp.type);
    EXPECT_EQ(actions.at, standUp.type);
    EXPECT_EQ(standUp.standUpBState, 0);
    EXPECT_EQ(standUp.counter, 0);
    EXPECT_EQ(walk._forWalk->lx, 0);
    EXPECT_EQ(walk._forWalk->basicWalkState, 0);
    EXPECT_TRUE(body.commanded({FakeBody::Limb::kLeg, kRight, 1}));
  }
}

TEST_F(ActionsTest, EveryCycleOfAStandUpResetsAllMotionState) {
  given(AT_STANDUP_BACK, false, false);
  standUp.standUpBState = 2;
  walk._omniWalk->lx = walk._omniSideWalk->ly = walk._omniBackWalk->lx = walk._sideWalk->ly =
      walk._backWalk->lx = walk._forWalk->lx = 30;
  turn.count = 5;
  turn.ak = 0;
  agent.decide->decideState = 6;
  kick.stableState = 5;
  tab.count = 5;
  actions.ChangeAction(standUp.back());
  EXPECT_EQ(standUp.standUpBState, 2);  // the same action: it goes on
  EXPECT_EQ(walk._omniWalk->lx, 0);
  EXPECT_EQ(walk._omniSideWalk->ly, 0);
  EXPECT_EQ(walk._omniBackWalk->lx, 0);
  EXPECT_EQ(walk._sideWalk->ly, 0);
  EXPECT_EQ(walk._backWalk->lx, 0);
  EXPECT_EQ(walk._forWalk->lx, 0);
  EXPECT_EQ(turn.count, 0);
  EXPECT_EQ(turn.ak, 1);
  EXPECT_NE(agent.decide->decideState, 6);
  EXPECT_EQ(kick.stableState, 5);  // kick and turn around the ball are no part of it
  EXPECT_EQ(tab.count, 5);
}

TEST_F(ActionsTest, AChangedStandUpRestartsButTheFrontSequenceResumes) {
  given(AT_STANDUP_FRONT, false, false);
  standUp.front();
  standUp.standUpFState = 3;
  standUp.standUpBState = 4;
  body.placeAll(10);
  actions.ChangeAction(standUp.back());
  EXPECT_EQ(standUp.standUpFState, 3);
  EXPECT_EQ(standUp.standUpBState, 0);
  EXPECT_EQ(actions.NowAction.actionType, AT_STANDUP_BACK);
}

TEST_F(ActionsTest, AFlipGoesOnAsABackStandUpOfTheSameObject) {
  given(AT_FLIP, false, false);
  standUp.flip();
  standUp.flipState = 1;
  EXPECT_TRUE(actions.ChangeAction(&standUp));
  EXPECT_EQ(actions.NowAction.actionType, AT_FLIP);
  EXPECT_EQ(standUp.type, AT_STANDUP_BACK);
  actions.ChangeAction(&standUp);
  EXPECT_EQ(actions.NowAction.actionType, AT_STANDUP_BACK);
}

TEST_F(ActionsTest, AStandUpIsFinishedBeforeAnyOtherAction) {
  given(AT_STANDUP_FRONT, false, false);
  standUp.front();
  standUp.standUpFState = 2;
  for (int call = 1; call <= 3; ++call) {
    EXPECT_FALSE(actions.ChangeAction(walk.omniWalk(Vector(1, 1, 0), 1, 5, 0)));
    EXPECT_EQ(standUp.counter, call);
    EXPECT_EQ(actions.NowAction.actionType, AT_STANDUP_FRONT);
  }
}

// --- decideChangeAction ---

class ActionsReissueTest : public ActionsTest {
 protected:
  // Asks for something else while `running` must go on.
  void goOn(ActionType running) {
    given(running, false, false);
    actions.ChangeAction(&reset);
    EXPECT_EQ(actions.NowAction.actionType, running);
  }
};

TEST_F(ActionsReissueTest, ForwardGaitWithItsRememberedParameters) {
  walkForwardMidStep();
  walk.forWalk(0.5f, 33, kLeft, true);
  walk.sideWalk(1);  // another request in between
  walk._forWalk->gain = 9;
  walk._forWalk->side = true;
  goOn(AT_FORWALK);
  EXPECT_EQ(walk.type, AT_FORWALK);
  EXPECT_EQ(walk._forWalk->gain, 0.5f);
  EXPECT_FALSE(walk._forWalk->side);
  EXPECT_EQ(walk.preForGain, 0.5f);
  EXPECT_EQ(walk.prespeedF, 33);
  EXPECT_FALSE(walk.preSide);
  EXPECT_TRUE(walk.preStart);
  EXPECT_EQ(forwardPhase(), 2);
}

TEST_F(ActionsReissueTest, BackGait) {
  walk.backWalk(-1, 0.7f);
  walk._backWalk->basicWalkState = 2;
  goOn(AT_BACKWALK);
  EXPECT_EQ(walk.type, AT_BACKWALK);
  EXPECT_EQ(walk.preBackGain, -1);
  EXPECT_EQ(walk.prespeedB, 0.7f);
  EXPECT_EQ(walk._backWalk->state, 1);
}

TEST_F(ActionsReissueTest, SideGait) {
  walk.sideWalk(-0.5f);
  walk._sideWalk->basicWalkState = 1;
  goOn(AT_SIDEWALK_LEFT);
  EXPECT_EQ(walk.type, AT_SIDEWALK_LEFT);
  EXPECT_EQ(walk._sideWalk->gain, -0.5f);
  EXPECT_EQ(walk._sideWalk->state, 1);
}

// The setter has already stored the other way when the step must be finished: the step goes on as
// the type that began it, with the new sign, and the type changes when it has ended.
TEST_F(ActionsReissueTest, ASideGaitAskedForTheOtherWayInMidStep) {
  for (float gain : {1.0f, -1.0f}) {
    const ActionType running = gain > 0 ? AT_SIDEWALK_RIGHT : AT_SIDEWALK_LEFT;
    const ActionType asked = gain > 0 ? AT_SIDEWALK_LEFT : AT_SIDEWALK_RIGHT;
    walk._sideWalk->resetVars();
    walk.sideWalk(gain);
    walk._sideWalk->basicWalkState = 1;
    walk._sideWalk->state = 0;
    given(running, false, false);
    int calls = 0;
    while (actions.NowAction.actionType == running) {
      const int phase = walk._sideWalk->state;
      actions.ChangeAction(walk.sideWalk(-gain));
      ASSERT_LT(++calls, 20);
      if (actions.NowAction.actionType != running) break;
      EXPECT_EQ(walk._sideWalk->gain, -gain);
      EXPECT_EQ(walk._sideWalk->state, (phase + 1) % 4);
      EXPECT_EQ(walk.type, running);
    }
    EXPECT_EQ(actions.NowAction.actionType, asked);
    EXPECT_EQ(walk._sideWalk->basicWalkState, 0);  // a different action: it starts afresh
    // With the new gain of -1 the gait may be left after the step of the left leg, with +1 only
    // after the closing step of the right leg.
    EXPECT_EQ(calls, gain > 0 ? 5 : 9);
  }
}

TEST_F(ActionsReissueTest, OmniGait) {
  const Vector target(4, 1, 0);
  walk.omniWalk(target, 0.8f, 12, 1);
  walk.omniBackWalk(Vector(-9, -9, 0), 3, 0.1f);  // writes preError, but not the target
  walk._omniWalk->v = Vector(0, 0, 0);
  goOn(AT_OMNIWALK);
  EXPECT_EQ(walk.type, AT_OMNIWALK);
  EXPECT_EQ(walk._omniWalk->v, target);
  EXPECT_FLOAT_EQ(static_cast<float>(walk._omniWalk->speed), 0.8f);
  EXPECT_EQ(walk._omniWalk->error, 3);
  EXPECT_EQ(walk._omniWalk->actionType, 0);  // falls back to the normal walk
}

TEST_F(ActionsReissueTest, BackOmniGaitTakesSpeedForErrorAndErrorForSpeed) {
  walk.omniWalk(Vector(4, 1, 0), 1, 5, 0);
  walk.omniBackWalk(Vector(-6, 2, 0), 10, 0.75f);
  goOn(AT_OMNIBACKWALK);
  EXPECT_EQ(walk.type, AT_OMNIBACKWALK);
  EXPECT_EQ(walk._omniBackWalk->error, 0.75);
  EXPECT_EQ(walk._omniBackWalk->speed, 10);
  // Towards the forward gait's target, not its own.
  EXPECT_EQ(walk._omniBackWalk->v, Vector(4, 1, 0));
  EXPECT_EQ(walk.prePos, Vector(4, 1, 0));
  // The exchange is remembered: the next re-issue turns it round again.
  EXPECT_EQ(walk.preError, 0.75);
  EXPECT_EQ(walk.prespeedOB, 10);
  goOn(AT_OMNIBACKWALK);
  EXPECT_EQ(walk._omniBackWalk->error, 10);
  EXPECT_EQ(walk._omniBackWalk->speed, 0.75);
}

TEST_F(ActionsReissueTest, SideOmniGaitGoesTowardsTheForwardGaitsTarget) {
  walk.omniWalk(Vector(4, 1, 0), 1, 5, 0);
  walk.omniSideWalk(Vector(-6, 2, 0), 8);
  goOn(AT_OMNISIDEWALK);
  EXPECT_EQ(walk.type, AT_OMNISIDEWALK);
  EXPECT_EQ(walk._omniSideWalk->v, Vector(4, 1, 0));
  EXPECT_EQ(walk._omniSideWalk->error, 8);
}

TEST_F(ActionsReissueTest, TurnWithItsOwnParameters) {
  turn.execute(Vector(3, 3, 0), 4, 20);
  goOn(AT_TURN);
  EXPECT_EQ(turn.v, Vector(3, 3, 0));
  EXPECT_EQ(turn.error, 4);
  EXPECT_EQ(turn.finalAngle, 20);
}

TEST_F(ActionsReissueTest, Reset) {
  given(AT_RESET, false, false);
  actions.ChangeAction(kick.unstable(kRight));
  EXPECT_EQ(actions.NowAction.actionType, AT_RESET);
  EXPECT_TRUE(endStepRan());
}

TEST_F(ActionsReissueTest, DiveTakesItsMirrorForItsCycles) {
  for (bool rotateSide : {false, true}) {
    dive.execute(0, 400, rotateSide);
    dive.diveState = 0;
    goOn(AT_DIVE);
    EXPECT_EQ(dive.fCycle, rotateSide ? 1 : 0);
    EXPECT_TRUE(dive.RotateSide);
    EXPECT_EQ(dive.Side, 0);
  }
}

TEST_F(ActionsReissueTest, AReissuedDiveEndsAsSoonAsItLies) {
  dive.execute(0, 400, false);
  dive.diveState = 2;
  Dive::freezeCycle = 0;
  given(AT_DIVE, false, false);
  EXPECT_TRUE(actions.ChangeAction(&reset));
  EXPECT_TRUE(actions.preAction);
}

TEST_F(ActionsReissueTest, Kick) {
  kick.unstable(kRight);
  kick.stableState = 6;
  body.place({FakeBody::Limb::kLeg, kRight, 4}, -132);
  goOn(AT_UNSTABLE_KICK);
  EXPECT_EQ(kick.stableState, 7);
}

// Another kick has been asked for: the running one is no longer the kick's type, so nothing runs,
// and the running one counts as ready to be left.
TEST_F(ActionsReissueTest, AKickOfAnotherTypeIsNotReissued) {
  kick.unstable1(kRight);
  kick.stableState = 6;
  given(AT_UNSTABLE_KICK, false, false);
  body.markCommands();
  EXPECT_FALSE(actions.ChangeAction(&kick));
  for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
  EXPECT_TRUE(actions.preAction);
  EXPECT_EQ(actions.NowAction.actionType, AT_UNSTABLE_KICK);
  actions.ChangeAction(&kick);
  EXPECT_EQ(actions.NowAction.actionType, AT_UNSTABLE1_KICK);
}

TEST_F(ActionsReissueTest, TurnAroundBall) {
  tab.execute(Vector(5, 5, 0), 5);
  body.takeLog();
  goOn(AT_TURN_AROUND_BALL);
  EXPECT_NE(body.takeLog().find("turn Arond ball execute"), std::string::npos);
}

TEST_F(ActionsReissueTest, StandUp) {
  standUp.back();
  standUp.standUpBState = 3;
  body.placeAll(0);
  goOn(AT_STANDUP_BACK);
  EXPECT_EQ(standUp.standUpBState, 4);
}

TEST_F(ActionsReissueTest, ATypeThatNamesNoActionRunsNothing) {
  // AT_NONE names none either, although it is the type of actions that nobody has asked for yet.
  for (ActionType type : {AT_NONE, AT_ALL, AT_GO_TO_POINT, AT_WALK, AT_STABLE_KICK, AT_ENDSTEP}) {
    given(type, false, false);
    body.markCommands();
    EXPECT_EQ(actions.decideChangeAction(), type != AT_NONE);
    for (const auto& hinge : FakeBody::hinges()) EXPECT_FALSE(body.commanded(hinge));
    EXPECT_EQ(actions.NowAction.actionType, type);
  }
}

// --- Whole sequences ---

// Walk, kick, walk: the remaining cycles of the step, the end step, the kick from its first frame,
// and the gait from its stance.
TEST_F(ActionsTest, SwitchFromWalkToKickToWalk) {
  const auto askWalk = [&] { return actions.ChangeAction(walk.forWalk(1, 60, kRight, false)); };
  const auto askKick = [&] { return actions.ChangeAction(kick.unstable(kRight)); };

  // Start the gait and walk two phases into its third step.
  int cycles = 0;
  while (walk._forWalk->basicWalkState != 3 || walk._forWalk->state != 2) {
    askWalk();
    body.nextCycle();
    ASSERT_LT(++cycles, 400);
  }
  EXPECT_TRUE(actions.endStepIsRequired);

  // Two more cycles end the step under re-issue.
  for (int phase : {3, 0}) {
    EXPECT_FALSE(askKick());
    EXPECT_EQ(walk._forWalk->state, phase);
    EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
    body.nextCycle();
  }
  EXPECT_TRUE(actions.preAction);

  // The end step, until every joint has reached the neutral stance.
  const int stepsTaken = walk._forWalk->basicWalkState;
  int endStepCycles = 0;
  while (actions.endStepIsRequired) {
    EXPECT_FALSE(askKick());
    EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
    EXPECT_EQ(kick.stableState, 0);
    body.nextCycle();
    ASSERT_LT(++endStepCycles, 200);
  }
  EXPECT_GT(endStepCycles, 5);
  EXPECT_EQ(walk._forWalk->basicWalkState, stepsTaken);

  // The kick.
  kick.stableState = 9;
  EXPECT_FALSE(askKick());
  EXPECT_EQ(actions.NowAction.actionType, AT_UNSTABLE_KICK);
  EXPECT_EQ(kick.stableState, 100);  // reset, and its first frame done
  ::testing::internal::CaptureStdout();
  cycles = 0;
  bool kicked = false;
  while (!kicked && cycles < 1000) {
    body.nextCycle();
    kicked = askKick();
    ++cycles;
  }
  ::testing::internal::GetCapturedStdout();
  ASSERT_TRUE(kicked);

  // No end step follows a kick; the gait starts with its stance.
  EXPECT_FALSE(askWalk());
  EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
  EXPECT_EQ(reset.State, 3);
  EXPECT_EQ(walk._forWalk->basicWalkState, 0);
}

TEST_F(ActionsTest, AKickCannotBeLeftForAWalk) {
  given(AT_UNSTABLE_KICK, false, false);
  kick.unstable(kRight);
  kick.stableState = 6;
  for (int cycle = 0; cycle < 100 && kick.stableState == 6; ++cycle) {
    EXPECT_FALSE(actions.ChangeAction(walk.omniWalk(Vector(1, 1, 0), 1, 5, 0)));
    EXPECT_EQ(actions.NowAction.actionType, AT_UNSTABLE_KICK);
    body.nextCycle();
  }
  EXPECT_EQ(kick.stableState, 7);
}

TEST_F(ActionsTest, AKickFollowsASideGaitWithoutAnEndStep) {
  const auto askSide = [&] { return actions.ChangeAction(walk.sideWalk(1)); };
  int cycles = 0;
  while (!askSide()) {
    body.nextCycle();
    ASSERT_LT(++cycles, 400);
  }
  body.nextCycle();
  EXPECT_FALSE(actions.endStepIsRequired);
  EXPECT_FALSE(actions.ChangeAction(kick.unstable(kRight)));
  EXPECT_EQ(actions.NowAction.actionType, AT_UNSTABLE_KICK);
  EXPECT_EQ(kick.stableState, 100);
}

// Tactical actions skip the neutral stance by clearing the flag themselves.
TEST_F(ActionsTest, AClearedDemandLetsTheNextActionFollowTheGaitAtOnce) {
  given(AT_OMNIWALK, true, true);
  actions.endStepIsRequired = false;
  EXPECT_FALSE(actions.ChangeAction(kick.unstable(kRight)));
  EXPECT_EQ(actions.NowAction.actionType, AT_UNSTABLE_KICK);
  EXPECT_EQ(kick.stableState, 100);
}

TEST_F(ActionsTest, AnOmniGaitRestartsAfterItsEndStep) {
  const Vector target(10, 0, 0);
  const auto ask = [&] { return actions.ChangeAction(walk.omniWalk(target, 1, 10, 0)); };
  int cycles = 0, results = 0;
  while (results < 3) {
    results += ask() ? 1 : 0;
    body.nextCycle();
    ASSERT_LT(++cycles, 600);
  }
  EXPECT_GT(walk._omniWalk->p, 0.3);
  cycles = 0;
  while (!actions.endStep()) {
    body.nextCycle();
    ASSERT_LT(++cycles, 200);
  }
  EXPECT_EQ(actions.NowAction.actionType, AT_NONE);
  ask();
  EXPECT_EQ(walk._omniWalk->p, 0.1);  // the ramp starts again
}

TEST_F(ActionsTest, StopActionStopsEverythingAtOnce) {
  walkForwardMidStep();
  given(AT_FORWALK, false, true);
  actions.at = AT_FORWALK;
  kick.stableState = 5;
  dive.diveState = 2;
  turn.count = 5;
  reset.resetCounter = 3;
  const CommandList commands = wholeBody(0, 50, 3);
  placeOutside(body, commands);
  body.markCommands();
  EXPECT_TRUE(actions.stopAction(nullptr));
  expectDriven(body, commands);
  EXPECT_TRUE(actions.preAction);
  EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
  EXPECT_TRUE(actions.endStepIsRequired);
  EXPECT_EQ(kick.stableState, 0);
  EXPECT_EQ(dive.diveState, 0);
  EXPECT_EQ(turn.count, 0);
  EXPECT_EQ(reset.resetCounter, 0);
  EXPECT_EQ(forwardPhase(), 1);  // the gaits keep their state

  // The next request of another type starts, once the due end step is made.
  reachNeutralStance();
  actions.ChangeAction(kick.unstable(kRight));
  EXPECT_EQ(actions.NowAction.actionType, AT_FORWALK);
  actions.ChangeAction(kick.unstable(kRight));
  EXPECT_EQ(actions.NowAction.actionType, AT_UNSTABLE_KICK);
}

TEST_F(ActionsTest, ResetAllVarsResetsTheTacticalStatesToo) {
  agent.goToBall->GTBallState = agent.goToBall->state = agent.goToBall->st = 4;
  agent.goToBall->GTBstate = 4;
  agent.goToPoint->stateFineApproach = 4;
  agent.goToGoal->GTGstate = 4;
  standUp.standUpBState = 3;
  tab.count = 3;
  agent.resetAllVars();
  EXPECT_EQ(agent.goToBall->GTBallState, 0);
  EXPECT_EQ(agent.goToBall->state, 0);
  EXPECT_EQ(agent.goToBall->st, 0);
  EXPECT_EQ(agent.goToBall->GTBstate, 1);
  EXPECT_EQ(agent.goToPoint->stateFineApproach, 1);
  EXPECT_EQ(agent.goToGoal->GTGstate, 1);
  EXPECT_EQ(standUp.standUpBState, 3);
  EXPECT_EQ(tab.count, 3);
}

}  // namespace
