#ifndef QUOLNARIS_TESTS_KINEMATICS_ROBOTTYPE_H_
#define QUOLNARIS_TESTS_KINEMATICS_ROBOTTYPE_H_

#include <string>

#include "support/ConfigSandbox.h"

// Configures the robot type for as long as it lives.
class RobotType {
 public:
  explicit RobotType(int type)
      : sandbox({{"Agent", "[Public]\nType = " + std::to_string(type) + "\n"}}) {}

 private:
  support::ConfigSandbox sandbox;
};

#endif  // QUOLNARIS_TESTS_KINEMATICS_ROBOTTYPE_H_
