// Trainer commands against a match of two players and a viewer.
//
// The input is split into frames at line feeds; after each frame the match goes on for one cycle.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Match/Match.h"
#include "Monitor/MonitorStream.h"

namespace {

// Frames beyond these are left out, so that one input takes a bounded time.
constexpr int kMaxFrames = 24;

void demand(bool good) {
  if (!good) std::abort();
}

arena::Match::AgentId addPlayer(arena::Match& match, const char* init) {
  const auto agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  match.step();
  match.step();
  match.receive(agent, init);
  match.step();
  return agent;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  arena::MatchOptions options;
  options.seed = 1;
  arena::Match match(options);
  addPlayer(match, "(init (unum 1)(teamname Alpha))");
  addPlayer(match, "(init (unum 2)(teamname Beta))");
  arena::MonitorStream stream;
  arena::SExpression reader;

  std::string_view rest(reinterpret_cast<const char*>(data), size);
  for (int frame = 0; frame < kMaxFrames && !rest.empty(); ++frame) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    match.trainer().receive(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    match.step();
    const arena::GameState& game = match.game();
    demand(std::isfinite(game.time) && game.time >= 0);
    demand(game.score[0] >= 0 && game.score[1] >= 0);
    demand(game.half == 1 || game.half == 2);
    demand(match.scene().ball.matrix().allFinite());
    stream.noteFouls(match.referee().fouls());
    const std::string message = stream.next(match.scene(), game, {0, 0});
    demand(reader.read(message) == arena::SExpression::Status::Complete && reader.size() == 3);
  }
  return 0;
}
