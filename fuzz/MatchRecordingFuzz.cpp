// Match recordings: whatever a file holds, its reader ends with cycles that make sense, and the
// film of them can be packed.

#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Film.h"
#include "Recording/RecordingReader.h"

namespace {

// Cycles beyond these are left out, so that one input takes a bounded time.
constexpr int kMaxCycles = 2000;

void demand(bool good) {
  if (!good) std::abort();
}

void check(const arena::RecordedCycle& cycle) {
  demand(cycle.ball.matrix().allFinite());
  demand(cycle.half == 1 || cycle.half == 2);
  for (const arena::RecordedRobot& robot : cycle.robots) {
    demand(robot.type >= 0 && robot.type < arena::kRobotTypeCount);
    demand(robot.torso.matrix().allFinite());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The reader takes packed and plain files alike; plain ones are found by mutation.
  const int file = memfd_create("recording", 0);
  demand(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size));
  try {
    arena::RecordingReader reader("/proc/self/fd/" + std::to_string(file));
    viewer::Film film("fuzz", 0.02, 100);
    arena::RecordedCycle cycle;
    for (int i = 0; i < kMaxCycles && reader.next(cycle); ++i) {
      check(cycle);
      film.append(cycle, reader.teamNames());
    }
    film.seal();
    demand(film.index().find('<') == std::string::npos);
  } catch (const arena::RecordingError&) {
  }
  close(file);
  return 0;
}
