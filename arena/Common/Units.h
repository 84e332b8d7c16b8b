#ifndef QUOLNARIS_COMMON_UNITS_H_
#define QUOLNARIS_COMMON_UNITS_H_

#include <limits>
#include <numbers>

namespace arena {

// One cycle is one physics step.
inline constexpr double kStepSeconds = 0.02;
// The same in single precision, in which game time is summed.
inline constexpr float kCycle = static_cast<float>(kStepSeconds);

inline constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
inline constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;

// A game time before every other one, s.
inline constexpr float kNever = -std::numeric_limits<float>::infinity();

}  // namespace arena

#endif  // QUOLNARIS_COMMON_UNITS_H_
