#ifndef QUOLNARIS_COMMON_SIDE_H_
#define QUOLNARIS_COMMON_SIDE_H_

#include <cstddef>

namespace arena {

// The half of the pitch that a team defends: left at negative x, right at positive x.
// None: a robot whose team and number have not been accepted (yet), or "nobody".
enum class Side { Left = 0, Right = 1, None = 2 };

// Both sides, for loops. Arrays indexed by side have two elements.
inline constexpr Side kBothSides[] = {Side::Left, Side::Right};

inline constexpr std::size_t index(Side side) {
  return static_cast<std::size_t>(side);
}

inline constexpr Side opponent(Side side) {
  if (side == Side::None) return Side::None;
  return side == Side::Left ? Side::Right : Side::Left;
}

// The sign of x of the goal that the side defends: -1 left, +1 right. REQUIRES a real side.
inline constexpr double ownGoalSign(Side side) {
  return side == Side::Left ? -1.0 : 1.0;
}

}  // namespace arena

#endif  // QUOLNARIS_COMMON_SIDE_H_
