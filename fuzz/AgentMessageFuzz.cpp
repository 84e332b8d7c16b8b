// Messages of agents: two players in a match, one of which sends the input.
//
// The input is split into frames at line feeds; after each frame the match goes on for one cycle.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Match/Match.h"

namespace {

// Frames beyond these are left out, so that one input takes a bounded time.
constexpr int kMaxFrames = 24;

void demand(bool good) {
  if (!good) std::abort();
}

// The percepts must stay expressions whatever is sent.
void checkPercepts(const arena::Match& match) {
  arena::SExpression reader;
  for (const auto agent : match.agents()) {
    demand(reader.read(match.percept(agent)) == arena::SExpression::Status::Complete);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  arena::MatchOptions options;
  options.seed = 1;
  arena::Match match(options);
  const auto sender = match.connect();
  const auto other = match.connect();
  match.receive(other, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  match.step();
  match.step();
  match.receive(other, "(init (unum 2)(teamname Beta))");
  match.step();

  std::string_view rest(reinterpret_cast<const char*>(data), size);
  for (int frame = 0; frame < kMaxFrames && !rest.empty(); ++frame) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    match.receive(sender, rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    match.step();
    checkPercepts(match);
  }
  match.disconnect(sender);
  match.step();
  demand(match.agents().size() == 1);
  return 0;
}
