#include "Wire/Printable.h"

namespace arena {
namespace {

std::string escaped(char c) {
  constexpr std::string_view kHexDigits = "0123456789abcdef";
  if (c == '\\') return "\\\\";
  if (c >= ' ' && c <= '~') return {c};
  const auto byte = static_cast<unsigned char>(c);
  return {'\\', 'x', kHexDigits[byte >> 4], kHexDigits[byte & 0xf]};
}

}  // namespace

std::string printable(std::string_view text, std::size_t limit) {
  std::string result;
  for (const char c : text) {
    const std::string part = escaped(c);
    if (result.size() + part.size() > limit) return result + " ...";
    result += part;
  }
  return result;
}

}  // namespace arena
