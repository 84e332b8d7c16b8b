#include "Percepts/PerceptText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace arena {
namespace {

// Up to here hundredths are exact enough in a double to tell a tie from its neighbours.
constexpr double kFastLimit = 1e7;
// Distance from a tie, in hundredths, below which the general way decides.
constexpr double kTieMargin = 1e-6;

}  // namespace

void appendInteger(std::string& text, int value) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  text.append(digits.data(), end);
}

void appendReal(std::string& text, double value) {
  const double hundredths = std::abs(value) * 100.0;
  const double whole = std::floor(hundredths);
  const double rest = hundredths - whole;
  std::array<char, 512> digits;
  if (!(hundredths < kFastLimit) || std::abs(rest - 0.5) < kTieMargin) {
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed, 2);
    text.append(digits.data(), end.ptr);
    return;
  }
  auto number = static_cast<std::uint32_t>(whole) + (rest > 0.5 ? 1u : 0u);
  char* at = digits.data() + digits.size();
  char* const end = at;
  for (int i = 0; i < 2; ++i, number /= 10) *--at = static_cast<char>('0' + number % 10);
  *--at = '.';
  do {
    *--at = static_cast<char>('0' + number % 10);
    number /= 10;
  } while (number > 0);
  if (std::signbit(value)) *--at = '-';
  text.append(at, end);
}

void appendReals(std::string& text, const Eigen::Vector3d& values) {
  appendReal(text, values.x());
  text += ' ';
  appendReal(text, values.y());
  text += ' ';
  appendReal(text, values.z());
}

}  // namespace arena
