#ifndef QUOLNARIS_COMMON_PITCH_H_
#define QUOLNARIS_COMMON_PITCH_H_

#include <array>

namespace arena {

// The measures of pitch and ball in metres and kilograms. World frame: origin at the pitch centre,
// left goal at negative x, y to the left seen from the left team, z up.

inline constexpr double kFieldLength = 30.0;
inline constexpr double kFieldWidth = 20.0;
inline constexpr double kFieldHeight = 40.0;
inline constexpr double kHalfLength = kFieldLength / 2;
inline constexpr double kHalfWidth = kFieldWidth / 2;
inline constexpr double kGoalWidth = 2.1;
inline constexpr double kGoalDepth = 0.6;
inline constexpr double kGoalHeight = 0.8;
inline constexpr double kPenaltyLength = 1.8;
inline constexpr double kPenaltyWidth = 6.0;
inline constexpr double kBallRadius = 0.042;
inline constexpr double kBallMass = 0.026;

// The height at which new, beamed and moved players are let go.
inline constexpr double kDropHeight = 0.4;

// A box with its edges along the world axes.
struct StaticBox {
  std::array<double, 3> centre;
  std::array<double, 3> size;
};

// The walls around the pitch; they reach as far below the ground as above it.
inline constexpr std::array<StaticBox, 4> kOuterWalls{{
    {{-24.99, 0.0, 0.0}, {1.0, 51.0, 1.0}},
    {{24.99, 0.0, 0.0}, {1.0, 51.0, 1.0}},
    {{0.0, -25.0, 0.0}, {50.98, 1.0, 1.0}},
    {{0.0, 25.0, 0.0}, {50.98, 1.0, 1.0}},
}};

// The solid parts of the left goal: two side panels, back wall, roof. The right goal is the same
// turned by 180 degrees about z.
inline constexpr std::array<StaticBox, 4> kLeftGoalParts{{
    {{-15.3, 1.07, 0.4}, {0.6, 0.04, 0.8}},
    {{-15.3, -1.07, 0.4}, {0.6, 0.04, 0.8}},
    {{-15.58, 0.0, 0.4}, {0.04, 2.1, 0.8}},
    {{-15.3, 0.0, 0.82}, {0.6, 2.18, 0.04}},
}};

// The volume that registers a ball in the left goal; it exerts no force.
inline constexpr StaticBox kLeftGoalSensor{{-15.3, 0.0, 0.4}, {0.516, 2.016, 0.8}};

}  // namespace arena

#endif  // QUOLNARIS_COMMON_PITCH_H_
