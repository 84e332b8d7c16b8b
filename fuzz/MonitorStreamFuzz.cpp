// What a monitor port may send: the input is split into messages at line feeds.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Film.h"
#include "StreamReader.h"

namespace {

constexpr int kMaxMessages = 32;

void demand(bool good) {
  if (!good) std::abort();
}

void check(const arena::RecordedCycle& cycle) {
  demand(std::isfinite(cycle.time) && cycle.ball.matrix().allFinite());
  demand(cycle.half == 1 || cycle.half == 2);
  demand(cycle.score[0] >= 0 && cycle.score[1] >= 0);
  for (const arena::RecordedRobot& robot : cycle.robots) {
    demand(robot.number >= 1 && robot.number <= 11 && robot.side != arena::Side::None);
    demand(robot.type >= 0 && robot.type < arena::kRobotTypeCount);
    demand(robot.torso.matrix().allFinite());
    for (const float angle : robot.joints) demand(std::isfinite(angle));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  viewer::StreamReader reader;
  viewer::Film film("fuzz", 0.04, 8);
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  for (int i = 0; i < kMaxMessages && !rest.empty(); ++i) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    try {
      reader.read(rest.substr(0, end));
      check(reader.cycle());
      film.setPitch(reader.pitch());
      film.append(reader.cycle(), reader.teams());
    } catch (const viewer::StreamError&) {
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  film.seal();
  // An index takes longer than all else; of what the stream says it holds the marks and the names.
  for (const viewer::Mark& mark : film.marks()) viewer::Film::markEntry(mark);
  return 0;
}
