// The reader of expressions alone, without a match: what stands behind both ports, fast enough for
// a hundred million inputs.
//
// What has been read is written down plainly and read again; that must give the same.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Wire/SExpression.h"

namespace {

using arena::SExpression;

void demand(bool good) {
  if (!good) std::abort();
}

// Appends the node as it would be written without quotes, escapes and comments. Atoms that need
// those become a letter.
void write(SExpression::Node node, int depth, std::string& text) {
  if (node.isAtom()) {
    text += SExpression::isPlainAtom(node.text()) ? node.text() : "q";
    return;
  }
  demand(depth < SExpression::kMaxDepth);
  demand(node.text().empty() && node.number() == 0 && node.integer() == 0);
  text += '(';
  bool first = true;
  for (const SExpression::Node child : node) {
    if (!first) text += ' ';
    first = false;
    write(child, depth + 1, text);
  }
  text += ')';
}

// The values of a term as the arena asks for them.
void ask(SExpression::Node term) {
  const SExpression::Node value = term.child(1);
  const double number = value.number();
  const int integer = value.integer();
  // Where C's two readings of a small whole number meet.
  if (value.isAtom() && std::abs(number) < 1e6 && number == std::floor(number) &&
      value.text().find_first_not_of("0123456789-") == std::string_view::npos) {
    demand(static_cast<double>(integer) == number);
  }
  const SExpression::Node found = term.find("teamname");
  demand(!found || found.name() == "teamname");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Kept from input to input, like the readers of a match.
  static SExpression reader;
  static SExpression again;
  static std::string plain;
  static std::string twice;

  reader.read({reinterpret_cast<const char*>(data), size});
  plain.clear();
  for (const SExpression::Node list : reader) {
    demand(list.isList());
    ask(list);
    write(list, 0, plain);
  }
  demand(again.read(plain) == SExpression::Status::Complete && again.size() == reader.size());
  twice.clear();
  for (const SExpression::Node list : again) write(list, 0, twice);
  demand(plain == twice);
  return 0;
}
