#ifndef QUOLNARIS_PHYSICS_FIELD_H_
#define QUOLNARIS_PHYSICS_FIELD_H_

#include <array>

#include "Referee/Rules.h"

// The solid parts of the pitch, in metres: world frame, origin at the pitch centre, left goal at
// negative x. The measures that the rules share stand there.
namespace arena {

// A box with its edges along the world axes.
struct StaticBox {
  std::array<double, 3> centre;
  std::array<double, 3> size;
};

inline constexpr std::array<StaticBox, 4> kOuterWalls{{
    {{-24.99, 0.0, 0.0}, {1.0, 51.0, 1.0}},
    {{24.99, 0.0, 0.0}, {1.0, 51.0, 1.0}},
    {{0.0, 25.0, 0.0}, {50.98, 1.0, 1.0}},
    {{0.0, -25.0, 0.0}, {50.98, 1.0, 1.0}},
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

#endif  // QUOLNARIS_PHYSICS_FIELD_H_
