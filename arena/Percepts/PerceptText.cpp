#include "Percepts/PerceptText.h"

#include <array>
#include <charconv>
#include <cmath>

#include "Common/DecimalText.h"

namespace arena {

void appendInteger(std::string& text, int value) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  text.append(digits.data(), end);
}

void appendReal(std::string& text, double value) {
  constexpr int kDecimals = 2;
  if (const auto hundredths = nearestWhole(std::abs(value) * 100.0)) {
    return appendFixed(text, std::signbit(value), *hundredths, kDecimals);
  }
  std::array<char, 512> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::fixed, kDecimals);
  text.append(digits.data(), end.ptr);
}

void appendReals(std::string& text, const Eigen::Vector3d& values) {
  appendReal(text, values.x());
  text += ' ';
  appendReal(text, values.y());
  text += ' ';
  appendReal(text, values.z());
}

}  // namespace arena
