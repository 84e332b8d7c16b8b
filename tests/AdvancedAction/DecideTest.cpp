#include "AdvancedAction/Decide.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/OmniBackWalk.h"
#include "BasicAction/OmniSideWalk.h"
#include "Decision/Actions.h"
#include "support/TestPlayer.h"

namespace {

using support::TestPlayer;

TEST(DecideConstructionTest, StartValues) {
  Decide action;
  action.cycle = action.findstate = action.decideState = 9;
  action.h = action.bestTime = 9;
  action.ch = false;
  action.lastPos = Vector(1, 1, 1);
  action.resetVars();
  for (const Decide& a : {action, Decide()}) {
    EXPECT_EQ(a.cycle, 0);
    EXPECT_EQ(a.findstate, 0);
    EXPECT_EQ(a.h, -1);
    EXPECT_EQ(a.bestTime, 60000);
    EXPECT_EQ(a.decideState, 0);
    EXPECT_TRUE(a.ch);
    EXPECT_EQ(a.lastPos, Vector(20, 20, 0));
  }
}

double wrap(double a) {
  a = std::remainder(a, 360);
  return a;
}

double deg(double y, double x) {
  return std::atan2(y, x) * 180 / M_PI;
}

// The seven times in cycles, in one formula per way.
std::vector<double> times(double x, double y, double heading, Vector to, Vector face) {
  const double dx = to.getX() - x, dy = to.getY() - y;
  const double d = std::hypot(dx, dy);
  const double theta = wrap(deg(dy, dx) - heading);
  const double look = deg(face.getY() - y, face.getX() - x);
  const auto off = [&](double direction) { return std::fabs(wrap(direction - look)) / 1.2; };
  const auto turn = [&](double target) { return std::fabs(wrap(theta - target)) / 1.2; };
  const double way = deg(dy, dx);
  // In the frame turned by the bearing of +x, which is minus the heading.
  const double phi = -heading * M_PI / 180;
  const double bx = dx * std::cos(phi) + dy * std::sin(phi);
  const double by = -dx * std::sin(phi) + dy * std::cos(phi);
  const auto longest = [&](double rot, double sr, double sx, double sy) {
    return std::max({std::fabs(rot / sr), std::fabs(bx / sx), std::fabs(by / sy)});
  };
  const double across = way - 90;  // the way back (-dx, -dy), turned to the left: (dy, -dx)
  return {turn(90) + 50 + d / 0.00876 + off(across),
          turn(-90) + 50 + d / 0.00876 + (180 / 1.2 - off(across)),
          std::fabs(theta) / 1.2 + 50 + d / 0.016 + off(way),
          turn(180) + 50 + d / 0.0125 + off(way + 180),
          longest(90 - std::fabs(theta), 0.6625, 0.00875, 0.00876) +
              off(theta < 0 ? across + 180 : across),
          longest(theta, 0.3, 0.016, 0.006) + off(way),
          longest(theta, 0.32, 0.004, 0.00512) + off(way + 180)};
}

constexpr int kStateOf[7] = {7, 7, 3, 9, 1, 2, 6};

PLAYER_TEST(DecideTest, TakesTheQuickestAllowedWay) {
  TestPlayer p(5);
  std::mt19937 random(7);
  const auto draw = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  int seen[10] = {};
  for (int i = 0; i < 3000; ++i) {
    const double x = draw(-14.5, 10), y = draw(-8, 8), heading = draw(-179, 179);
    const double range = draw(0, 1) < 0.5 ? 2 : 10;
    const Vector to(static_cast<float>(x + draw(-range, range)),
                    static_cast<float>(y + draw(-range, range)), 0);
    const Vector face(static_cast<float>(draw(-15, 15)), static_cast<float>(draw(-9, 9)), 0);
    p.me(x, y, heading);
    p.arm();
    if (std::hypot(to.getX() - x, to.getY() - y) < 0.1) continue;
    p.player.decide->find(to, face, 20, 0.01);

    std::vector<double> time = times(x, y, heading, to, face);
    const bool nearGoal = std::hypot(x + 15, y) <= 3;
    std::vector<double> allowed;
    for (int way = 0; way < 7; ++way) {
      if (way == 0 || way == 4 || (nearGoal && (way == 3 || way == 6))) continue;
      allowed.push_back(time[static_cast<std::size_t>(way)]);
    }
    std::sort(allowed.begin(), allowed.end());
    if (allowed[1] - allowed[0] < 0.1) continue;
    const auto best = std::find(time.begin(), time.end(), allowed[0]) - time.begin();
    ASSERT_EQ(p.player.decide->decideState, kStateOf[best]) << i;
    ASSERT_NEAR(p.player.decide->bestTime, allowed[0], 0.05) << i;
    ++seen[p.player.decide->decideState];
    // A turn to the side is a turn to the right-hand way: the left one is never taken.
    if (best == 1) {
      EXPECT_EQ(p.player.turn->finalAngle, -90);
    }
  }
  for (int state : {2, 3, 6, 7, 9}) EXPECT_GT(seen[state], 5) << state;
}

// By hand: straight ahead at 4 m, facing on: omni forward takes 4 / 0.016 = 250 cycles, turn and
// walk 50 more.
PLAYER_TEST(DecideTest, StraightAheadIsWalkedAtOnce) {
  TestPlayer p(5);
  p.me(0, 0);
  p.arm();
  EXPECT_FALSE(p.player.decide->find(Vector(4, 0, 0), Vector(15, 0, 0), 20, 0.5));
  EXPECT_EQ(p.player.decide->decideState, 2);
  EXPECT_NEAR(p.player.decide->bestTime, 250, 1e-3);
  EXPECT_EQ(p.player.walk->v, Vector(4, 0, 0));
  EXPECT_EQ(p.player.walk->Speed, 1);
  EXPECT_EQ(p.player.walk->Error, 20);
  EXPECT_EQ(p.player.decide->cycle, 1);
  EXPECT_EQ(p.player.decide->lastPos, Vector(4, 0, 0));
}

PLAYER_TEST(DecideTest, EachStateAsksForItsMotion) {
  TestPlayer p(5);
  p.me(0, 0);
  const Vector to(4, 1, 0);
  const Vector face(15, 0, 0);
  const auto run = [&](int state) {
    p.arm();
    p.player.decide->lastPos = to;  // no new choice
    p.player.decide->decideState = state;
    return p.player.decide->find(to, face, 20, 0.5);
  };
  EXPECT_FALSE(run(0));
  EXPECT_EQ(p.player.walk->type, AT_NONE);
  EXPECT_FALSE(p.askedToTurn());
  EXPECT_FALSE(run(1));
  EXPECT_EQ(p.player.walk->type, AT_OMNISIDEWALK);
  EXPECT_EQ(p.player.walk->prePos, to);
  EXPECT_EQ(p.player.walk->preError, 25);
  for (int state : {2, 4}) {
    EXPECT_FALSE(run(state));
    EXPECT_EQ(p.player.walk->type, AT_OMNIWALK);
    EXPECT_EQ(p.player.walk->v, to);
  }
  for (int state : {5, 6}) {
    EXPECT_FALSE(run(state));
    EXPECT_EQ(p.player.walk->type, AT_OMNIBACKWALK);
    EXPECT_EQ(p.player.walk->prePos, to);
    EXPECT_EQ(p.player.walk->preError, 20);
    EXPECT_FLOAT_EQ(p.player.walk->prespeedOB, 0.8f);
  }
  const std::pair<int, double> turns[] = {{3, 0}, {9, 180}};
  for (const auto& [state, final] : turns) {
    EXPECT_FALSE(run(state));
    EXPECT_EQ(p.player.turn->v, to);
    EXPECT_EQ(p.player.turn->error, 10);
    EXPECT_EQ(p.player.turn->finalAngle, final);
    EXPECT_EQ(p.player.decide->decideState, state);
  }
  EXPECT_FALSE(run(10));
}

PLAYER_TEST(DecideTest, AFinishedTurnLeadsToItsWalk) {
  TestPlayer p(5);
  const Vector to(4, 0, 0);
  // State, next state, heading that the turn ends at: state 7 wants the target at +90 by default.
  const std::tuple<int, int, double> rows[] = {{3, 2, 0}, {7, 1, -90}, {9, 6, 180}};
  for (const auto& [state, next, heading] : rows) {
    SCOPED_TRACE(state);
    p.me(0, 0, heading);
    p.arm();
    p.player.decide->lastPos = to;
    p.player.decide->decideState = state;
    p.player.decide->bestTime = 5;
    p.until([&] {
      p.player.decide->find(to, Vector(15, 0, 0), 20, 0.5);
      return p.player.decide->decideState != state;
    });
    EXPECT_EQ(p.player.decide->decideState, next);
    EXPECT_FALSE(p.player.decide->ch);
    EXPECT_EQ(p.player.decide->bestTime, 60000);
  }
}

PLAYER_TEST(DecideTest, ArrivedItTurnsToTheFacePoint) {
  TestPlayer p(5);
  p.me(4, 0);
  const Vector to(4.2f, 0, 0);
  const Vector face(15, 0, 0);
  p.arm();
  p.player.decide->lastPos = to;
  EXPECT_FALSE(p.player.decide->find(to, face, 20, 0.5));
  EXPECT_EQ(p.player.decide->decideState, 8);
  EXPECT_EQ(p.player.turn->v, face);
  EXPECT_EQ(p.player.turn->error, 15);
  p.until([&] { return p.player.decide->find(to, face, 20, 0.5); });
  EXPECT_EQ(p.player.decide->decideState, 8);
}

// The arrival distance is a ground distance, and strict.
PLAYER_TEST(DecideTest, ArrivesOnTheGround) {
  TestPlayer p(5);
  p.me(4, 0);
  const Vector to(4.5f, 0, 0);
  p.arm();
  p.player.decide->lastPos = to;
  p.player.decide->find(to, Vector(15, 0, 0), 20, 0.5);
  EXPECT_EQ(p.player.decide->decideState, 0);
  p.player.decide->find(to, Vector(15, 0, 0), 20, 0.51);
  EXPECT_EQ(p.player.decide->decideState, 8);
}

PLAYER_TEST(DecideTest, ANewChoiceOverridesAnArrivalInTheSameCycle) {
  TestPlayer p(5);
  p.me(4, 0);
  p.arm();  // the last target lies off the pitch
  p.player.decide->find(Vector(4.2f, 0, 0), Vector(15, 0, 0), 20, 0.5);
  EXPECT_NE(p.player.decide->decideState, 8);
  p.player.decide->find(Vector(4.2f, 0, 0), Vector(15, 0, 0), 20, 0.5);
  EXPECT_EQ(p.player.decide->decideState, 8);
}

PLAYER_TEST(DecideTest, AChoiceStandsUntilTheTargetJumpsMoreThanHalfAMetre) {
  TestPlayer p(5);
  p.me(0, 0);
  p.arm();
  p.player.decide->find(Vector(4, 0, 0), Vector(15, 0, 0), 20, 0.5);
  ASSERT_EQ(p.player.decide->decideState, 2);
  p.player.decide->decideState = 1;
  p.player.decide->find(Vector(4.5f, 0, 0), Vector(15, 0, 0), 20, 0.5);
  EXPECT_EQ(p.player.decide->decideState, 1);
  // Each step is measured from the last call's target.
  p.player.decide->find(Vector(5, 0, 0), Vector(15, 0, 0), 20, 0.5);
  EXPECT_EQ(p.player.decide->decideState, 1);
  p.player.decide->find(Vector(5.6f, 0, 0), Vector(15, 0, 0), 20, 0.5);
  EXPECT_EQ(p.player.decide->decideState, 2);
}

PLAYER_TEST(DecideTest, TheCounterRunsToItsPeriod) {
  TestPlayer p(5);
  p.me(0, 0);
  p.arm();
  for (int expected : {1, 2, 3, 1, 2, 3, 1}) {
    p.player.decide->find(Vector(4, 0, 0), Vector(15, 0, 0), 3, 0.5);
    EXPECT_EQ(p.player.decide->cycle, expected);
  }
}

// 1 m behind, facing on: backward takes 1 / 0.004 = 250 cycles without a turn.
PLAYER_TEST(DecideTest, NobodyChoosesToWalkBackwardNearItsOwnGoal) {
  TestPlayer p(5);
  const auto state = [&](double x) {
    p.me(x, 0);
    p.arm();
    p.player.decide->find(Vector(static_cast<float>(x - 0.6), 0, 0), Vector(15, 0, 0), 20, 0.1);
    return p.player.decide->decideState;
  };
  EXPECT_EQ(state(-11.9), 9);
  EXPECT_NE(state(-12.1), 9);
  EXPECT_NE(state(-12.1), 6);
  // One chosen before stays.
  p.player.decide->decideState = 6;
  p.player.decide->find(p.player.decide->lastPos, Vector(15, 0, 0), 20, 0.1);
  EXPECT_EQ(p.player.decide->decideState, 6);
}

// Straight behind, to face forward again, near its own goal: stepping there costs the same to
// either side (75 to turn, 50, 1 / 0.00876, 75 to turn back) and less than walking forward there
// (350 and 1 / 0.016). The way to the left is never taken as the least, but it is the first that
// equals it.
PLAYER_TEST(DecideTest, TheWayToTheLeftIsChosenByEqualityAlone) {
  TestPlayer p(5);
  p.me(-13, 0);
  p.arm();
  p.player.decide->find(Vector(-14, 0, 0), Vector(15, 0, 0), 20, 0.1);
  EXPECT_EQ(p.player.decide->decideState, 7);
  EXPECT_NEAR(p.player.decide->bestTime, 200 + 1 / 0.00876, 1e-2);
  EXPECT_EQ(p.player.turn->finalAngle, 90);
}

PLAYER_TEST(DecideTest, AnImpossiblyFarTargetChangesNothing) {
  TestPlayer p(5);
  p.me(0, 0);
  p.arm();
  p.player.decide->decideState = 6;
  p.player.decide->find(Vector(2000, 0, 0), Vector(15, 0, 0), 20, 0.5);
  EXPECT_EQ(p.player.decide->decideState, 6);
  EXPECT_EQ(p.player.decide->bestTime, 60000);
  p.player.decide->find(Vector(NAN, 0, 0), Vector(15, 0, 0), 20, 0.5);
  EXPECT_EQ(p.player.decide->decideState, 6);
}

PLAYER_TEST(DecideTest, AResetOfAllActionsLeavesTheChoice) {
  TestPlayer p(5);
  p.player.decide->decideState = 6;
  p.player.decide->lastPos = Vector(1, 2, 0);
  p.player.resetAllVars();
  EXPECT_EQ(p.player.decide->decideState, 6);
  EXPECT_EQ(p.player.decide->lastPos, Vector(1, 2, 0));
}

PLAYER_TEST(DecideTest, EndStopsAllMotionBehindTheTarget) {
  TestPlayer p(5);
  const auto stops = [&](double behind) {
    p.me(0, 0);
    p.arm();
    p.player.actions->preAction = true;
    p.player.goToPoint->st = 1;
    EXPECT_FALSE(p.player.decide->end(Vector(static_cast<float>(-behind), 0, 0), Vector(15, 0, 0)));
    return p.player.goToPoint->st == 0;
  };
  EXPECT_FALSE(stops(-2.01));
  EXPECT_TRUE(stops(-2));
  EXPECT_TRUE(stops(-1.5));
  EXPECT_FALSE(stops(-1.49));
}

// Straight ahead of a body that faces the goal: 3 / 0.016.
PLAYER_TEST(DecideTest, FastEstimatesByTheCompass) {
  TestPlayer p(5);
  p.numberEverybody();
  p.world.ourSide = SIDE_LEFT;
  p.me(0, 0);
  EXPECT_NEAR(p.player.decide->fast(Vector(3, 0, 0)), 187.5, 1e-2);
  // Behind: turn on the spot and walk, 150 + 50 + 187.5, beats omni backward, 750, and turning
  // round and walking backward without a turn: 0 + 50 + 240.
  EXPECT_NEAR(p.player.decide->fast(Vector(-3, 0, 0)), 290, 1e-2);
}

}  // namespace
