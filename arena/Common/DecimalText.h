#ifndef QUOLNARIS_COMMON_DECIMALTEXT_H_
#define QUOLNARIS_COMMON_DECIMALTEXT_H_

#include <array>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

namespace arena {

// Both are written out here because percepts and monitors take them thousands of times a cycle.

// The whole number nearest to one that was found with a rounding or two. None if it is negative,
// 10,000,000 or more, undefined, or so close to a tie that those may have decided.
inline std::optional<std::uint32_t> nearestWhole(double number) {
  // Up to here the rest is exact enough in a double to tell a tie from its neighbours.
  constexpr double kLimit = 1e7;
  constexpr double kTieMargin = 1e-6;
  if (!(number >= 0.0 && number < kLimit)) return std::nullopt;
  const auto whole = static_cast<std::uint32_t>(number);
  const double rest = number - whole;
  if (std::abs(rest - 0.5) < kTieMargin) return std::nullopt;
  return rest > 0.5 ? whole + 1 : whole;
}

// Appends whole / 10^decimals in fixed notation with so many decimals, and a minus sign before it
// if negative. REQUIRES 0 <= decimals <= 9.
inline void appendFixed(std::string& text, bool negative, std::uint32_t whole, int decimals) {
  assert(decimals >= 0 && decimals <= 9);
  std::array<char, 16> digits;
  char* const end = digits.data() + digits.size();
  char* at = end;
  const auto write = [&] {
    *--at = static_cast<char>('0' + whole % 10);
    whole /= 10;
  };
  for (int i = 0; i < decimals; ++i) write();
  if (decimals > 0) *--at = '.';
  do {
    write();
  } while (whole > 0);
  if (negative) *--at = '-';
  text.append(at, static_cast<std::size_t>(end - at));
}

}  // namespace arena

#endif  // QUOLNARIS_COMMON_DECIMALTEXT_H_
