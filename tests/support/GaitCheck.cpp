#include "support/GaitCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Agent/JointController.h"
#include "Kinematics/InverseKinematic.h"

namespace support {

LegTargets legTargets(const GaitNumbers& numbers, const Feet& feet, bool leg, bool rotating,
                      double height) {
  const double middle = (feet.place[kLeft] + feet.place[kRight]) / 2;
  const double shift = (leg == kRight ? -1 : 1) * numbers.torso[1];
  LegTargets targets;
  for (bool side : {kLeft, kRight}) {
    const double up = side == leg ? height : 0;
    targets.ankle[side] =
        numbers.sideways ? Vector(0, feet.place[side], up) : Vector(feet.place[side], 0, up);
    targets.yaw[side] = feet.fixedYaw + (side == rotating ? feet.yaw : 0);
  }
  targets.torso = numbers.sideways ? Vector(numbers.torso[0], middle + shift, numbers.torso[2])
                                   : Vector(middle + numbers.torso[0], shift, numbers.torso[2]);
  return targets;
}

void expectLegs(FakeBody& body, const LegTargets& targets, float speed) {
  for (bool side : {kLeft, kRight}) {
    double theta[7];
    InverseKinematic().legSolverWith1(targets.torso, targets.ankle[side], theta, side,
                                      targets.yaw[side]);
    for (int joint = 1; joint <= 6; ++joint) {
      SCOPED_TRACE(FakeBody::name({FakeBody::Limb::kLeg, side, joint}));
      const JointController& leg = body.leg(side, joint);
      if (std::isnan(theta[joint])) {  // out of reach: the joint stops
        EXPECT_EQ(leg.Angle, 0);
        continue;
      }
      EXPECT_NEAR(leg.preValue, theta[joint], 1e-3);
      const double rest = theta[joint] - (leg.lastAngle + leg.currentAngle);
      EXPECT_NEAR(leg.Angle, std::clamp(speed / 100 * rest, -6.0, 6.0), 1e-3);
    }
  }
}

void expectNoLegCommand(FakeBody& body) {
  for (bool side : {kLeft, kRight}) {
    for (int joint = 1; joint <= 7; ++joint) {
      EXPECT_FALSE(body.commanded({FakeBody::Limb::kLeg, side, joint}));
    }
  }
}

void expectLine(const std::string& text, const std::string& line) {
  EXPECT_NE(("\n" + text).find("\n" + line + "\n"), std::string::npos)
      << "no line \"" << line << "\" in:\n"
      << text;
}

Vector pointAt(double angle, double distance) {
  const double radians = angle * 3.14159265358979 / 180;
  return Vector(distance * std::cos(radians), distance * std::sin(radians), 0);
}

}  // namespace support
