#ifndef QUOLNARIS_PERCEPTS_BODYPERCEPTS_H_
#define QUOLNARIS_PERCEPTS_BODYPERCEPTS_H_

#include <string>

#include "Physics/RobotBody.h"

namespace arena {

// The number of joints whose percepts stand before the See expression: those of the head.
inline constexpr std::size_t kHeadJoints = 2;

// Appends the gyro and accelerometer expressions.
void writeTorsoSensors(const RobotBody& robot, std::string& text);

// Appends the expressions of joints `begin` to `end` - 1: each hinge's angle, and before it the
// force on the foot or toe that hangs on it, if that touched anything in the last step.
void writeJoints(const RobotBody& robot, std::size_t begin, std::size_t end, std::string& text);

}  // namespace arena

#endif  // QUOLNARIS_PERCEPTS_BODYPERCEPTS_H_
