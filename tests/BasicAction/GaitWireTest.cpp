// The gaits between the two texts of the wire: sensed hinges go in as percepts, speeds come out as
// one effector message per cycle.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <sstream>
#include <string>

#include "BasicAction/ForWalk.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Command/Command.h"
#include "Kinematics/InverseKinematic.h"
#include "support/FakeBody.h"
#include "support/GaitCheck.h"

namespace {

using support::FakeBody;
using support::Feet;
using support::GaitNumbers;
using support::LegTargets;
using support::legTargets;
using support::pointAt;

constexpr float kMaxSpeed = 6;

class GaitWireTest : public ::testing::Test {
 protected:
  GaitWireTest() {
    for (const auto& hinge : FakeBody::hinges()) sensed[FakeBody::name(hinge)] = 0;
    body.stand(Vector(0, 0, 0), 0);
  }

  // One cycle: percepts in, `action` runs, effector message out. The hinges then move by what was
  // commanded in the cycle before, as the server's do, and are sensed with two decimals.
  bool cycle(const std::function<bool()>& action) {
    time += 0.02;
    char number[64];
    std::snprintf(number, sizeof number, "(time (now %.2f))(GS (t %.2f) (pm PlayOn))", time, time);
    std::string percept = number;
    percept += "(GYR (n torso) (rt 0.00 0.00 0.00))(ACC (n torso) (a 0.00 0.00 9.81))";
    for (const auto& [name, angle] : sensed) {
      std::snprintf(number, sizeof number, "(HJ (n %s) (ax %.2f))", name.c_str(), angle);
      percept += number;
    }
    body.world->update(percept);
    body.agent.bControl.adjustJoints();
    const bool result = action();
    body.agent.bControl.makeCommand(body.agent.command);
    body.agent.command->setFinal();
    last = now;
    now = termsOf(body.agent.command->getFinal());
    body.agent.command->clear();
    previous = sensed;
    for (auto& [name, angle] : sensed) angle = std::round((angle + last[name]) * 100) / 100;
    return result;
  }

  static std::map<std::string, double> termsOf(const std::string& message) {
    std::map<std::string, double> terms;
    std::istringstream text(message);
    std::string name;
    char bracket;
    double speed;
    while (text >> bracket >> name >> speed) {
      EXPECT_EQ(bracket, '(');
      EXPECT_TRUE(terms.emplace(name, speed).second) << name << " comes twice";
      EXPECT_TRUE(text >> bracket && bracket == ')');
    }
    EXPECT_EQ(terms.size(), 24u) << message;
    for (const auto& [hinge, value] : terms) EXPECT_LE(std::fabs(value), kMaxSpeed) << hinge;
    return terms;
  }

  FakeBody body;
  double time = 0;
  std::map<std::string, double> sensed;    // for the next percept
  std::map<std::string, double> previous;  // of the last percept
  std::map<std::string, double> last;      // speeds of the message before the last
  std::map<std::string, double> now;       // speeds of the last message
};

// forWalk as ForWalkTest works it out, all the way to the speeds in the message.
TEST_F(GaitWireTest, TheForwardGaitsSpeedsFollowFromSensedAnglesAndKeyFrames) {
  const GaitNumbers numbers = {
      .torso = {15, -5, -35}, .stride = {10, 40, 60, 20}, .lift = {25, 12.5, -12.5, -25}};
  ForWalk gait;
  int stance = 0;
  while (gait.basicWalkState == 0 && stance < 1000) {
    EXPECT_FALSE(cycle([&] { return gait.execute(); }));
    ++stance;
  }
  ASSERT_LT(stance, 1000);

  Feet feet;
  for (int step = 0; step < 60; ++step) {
    const bool leg = step % 2 == 0 ? kRight : kLeft;
    double height = 0;
    for (int phase = 0; phase < 4; ++phase) {
      SCOPED_TRACE("step " + std::to_string(step) + ", phase " + std::to_string(phase));
      EXPECT_EQ(cycle([&] { return gait.execute(); }), phase == 3);
      feet.place[leg] += (step == 0 ? 0.5 : 1) * numbers.stride[phase];
      height += numbers.lift[phase];
      const LegTargets targets = legTargets(numbers, feet, leg, kLeft, height);
      for (bool side : {kLeft, kRight}) {
        double theta[7];
        InverseKinematic().legSolverWith1(targets.torso, targets.ankle[side], theta, side, 0);
        for (int joint = 1; joint <= 6; ++joint) {
          const std::string name = FakeBody::name({FakeBody::Limb::kLeg, side, joint});
          const double rest = theta[joint] - (last[name] + previous[name]);
          EXPECT_NEAR(now[name], std::clamp(0.47 * rest, -6.0, 6.0), 2e-3) << name;
        }
        EXPECT_EQ(now[side ? "rle7" : "lle7"], 0);
      }
    }
  }
}

TEST_F(GaitWireTest, EveryGaitAndTurnAnswersEveryPerceptWithOneWholeMessage) {
  Walk& walk = *body.agent.walk;
  Turn& turn = *body.agent.turn;
  TAB& tab = *body.agent.turnAroundBall;
  const Vector target = pointAt(70);
  walk.omniWalk(target, 1, 10, 0);
  walk.omniBackWalk(target, 10, 1);
  walk.omniSideWalk(target, 10);
  turn.execute(target, 10, 0);
  tab.execute(target, 10);
  const std::function<bool()> actions[] = {
      [&] { return walk.forWalk(); },      [&] { return walk.backWalk(); },
      [&] { return walk.sideWalk(); },     [&] { return walk.omniWalk(); },
      [&] { return walk.omniBackWalk(); }, [&] { return walk.omniSideWalk(); },
      [&] { return turn.execute(); },      [&] { return tab.execute(); }};
  for (const auto& action : actions) {
    double travel = 0;
    for (int i = 0; i < 400; ++i) {
      cycle(action);
      for (const auto& [name, speed] : now) {
        if (name[1] == 'l') travel += std::fabs(speed);
      }
    }
    EXPECT_GT(travel, 1000) << "the legs move";
  }
}

}  // namespace
