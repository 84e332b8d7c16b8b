#ifndef QUOLNARIS_WIRE_PRINTABLE_H_
#define QUOLNARIS_WIRE_PRINTABLE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace arena {

// Text that came from outside, as it may stand in one line on a terminal: every byte that is no
// printable ASCII character becomes \xNN, a backslash \\. What would make it longer than `limit`
// is left out, and " ..." tells so.
std::string printable(std::string_view text, std::size_t limit);

}  // namespace arena

#endif  // QUOLNARIS_WIRE_PRINTABLE_H_
