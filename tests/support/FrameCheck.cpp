#include "support/FrameCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace support {

namespace {

using Limb = FakeBody::Limb;

constexpr float kJustOutside = 0.5f;
constexpr float kJustInside = 0.25f;
constexpr float kMaxPerCycle = 6;

template <typename Keep>
CommandList select(Keep keep, float value, float gain, float error) {
  CommandList list;
  for (const FakeBody::Hinge& hinge : FakeBody::hinges()) {
    if (keep(hinge)) list.push_back({hinge, value, gain, error});
  }
  return list;
}

}  // namespace

JointCommand legCommand(int joint, bool side, float value, float gain, float error) {
  return {{Limb::kLeg, side, joint}, value, gain, error};
}

JointCommand handCommand(int joint, bool side, float value, float gain, float error) {
  return {{Limb::kHand, side, joint}, value, gain, error};
}

JointCommand headCommand(int joint, float value, float gain, float error) {
  return {{Limb::kHead, false, joint}, value, gain, error};
}

CommandList bothLegs(int joint, float value, float gain, float error) {
  return {legCommand(joint, true, value, gain, error),
          legCommand(joint, false, value, gain, error)};
}

CommandList bothHands(int joint, float value, float gain, float error) {
  return {handCommand(joint, true, value, gain, error),
          handCommand(joint, false, value, gain, error)};
}

CommandList allOfBothLegs(float value, float gain, float error) {
  return select([](const FakeBody::Hinge& h) { return h.limb == Limb::kLeg; }, value, gain, error);
}

CommandList allOfBothHands(float value, float gain, float error) {
  return select([](const FakeBody::Hinge& h) { return h.limb == Limb::kHand; }, value, gain, error);
}

CommandList wholeHead(float value, float gain, float error) {
  return select([](const FakeBody::Hinge& h) { return h.limb == Limb::kHead; }, value, gain, error);
}

CommandList wholeBody(float value, float gain, float error) {
  return select([](const FakeBody::Hinge&) { return true; }, value, gain, error);
}

CommandList solvedLeg(bool side, const double* theta, float gain, float error) {
  CommandList list;
  for (int joint = 1; joint <= 6; ++joint) {
    list.push_back(legCommand(joint, side, static_cast<float>(theta[joint]), gain, error));
  }
  return list;
}

CommandList operator+(CommandList a, const CommandList& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

void placeInside(FakeBody& body, const CommandList& commands) {
  for (const JointCommand& c : commands) {
    body.place(c.hinge, std::isnan(c.value) ? 0 : c.value - (c.error - kJustInside));
  }
}

void placeOutside(FakeBody& body, const CommandList& commands) {
  for (const JointCommand& c : commands) {
    body.place(c.hinge, std::isnan(c.value) ? 0 : c.value - (c.error + kJustOutside));
  }
}

void expectDriven(FakeBody& body, const CommandList& commands) {
  for (const FakeBody::Hinge& hinge : FakeBody::hinges()) {
    SCOPED_TRACE(FakeBody::name(hinge));
    const auto c = std::find_if(commands.begin(), commands.end(), [&](const JointCommand& command) {
      return command.hinge == hinge;
    });
    if (c == commands.end()) {
      EXPECT_FALSE(body.commanded(hinge));
      continue;
    }
    EXPECT_TRUE(body.commanded(hinge));
    if (std::isnan(c->value)) {
      EXPECT_EQ(body.controller(hinge).Angle, 0);
      continue;
    }
    EXPECT_FLOAT_EQ(body.target(hinge), c->value);
    const float travel = c->gain / 100 * (c->error + kJustOutside);
    EXPECT_NEAR(body.controller(hinge).Angle, std::min(travel, kMaxPerCycle), 1e-4);
  }
}

void checkFrame(FakeBody& body, const Frame& frame) {
  {
    SCOPED_TRACE("all joints outside their tolerance");
    frame.enter();
    placeOutside(body, frame.commands);
    body.markCommands();
    frame.step();
    EXPECT_FALSE(frame.left());
    expectDriven(body, frame.commands);
  }
  for (const JointCommand& late : frame.commands) {
    if (std::isnan(late.value)) continue;  // always counts as arrived
    SCOPED_TRACE("only " + FakeBody::name(late.hinge) + " outside its tolerance");
    frame.enter();
    placeInside(body, frame.commands);
    placeOutside(body, {late});
    body.markCommands();
    frame.step();
    EXPECT_FALSE(frame.left());
    for (const JointCommand& c : frame.commands) {
      EXPECT_TRUE(body.commanded(c.hinge)) << FakeBody::name(c.hinge);
    }
  }
  SCOPED_TRACE("all joints inside their tolerance");
  frame.enter();
  placeInside(body, frame.commands);
  body.markCommands();
  frame.step();
  EXPECT_TRUE(frame.left());
  for (const JointCommand& c : frame.commands) {
    EXPECT_EQ(body.controller(c.hinge).Angle, 0) << FakeBody::name(c.hinge);
  }
}

}  // namespace support
