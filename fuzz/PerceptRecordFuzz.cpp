// A record of percepts: whatever a file of frames or answers holds, it is read or refused, and a
// player that can be brought back has a number that a team can have.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "FrameRecording.h"
#include "PlayerReplay.h"

namespace {

void demand(bool good) {
  if (!good) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    const std::vector<std::string> answers = parseRecording(bytes, "fuzz");
    for (const std::string& answer : answers) demand(answer.size() <= kLongestFrame);
    demand(firstDifference(answers, answers) == answers.size());
    const PlayerIdentity identity = identityOf(answers);
    demand(identity.number >= 1 && identity.number <= 11 && !identity.team.empty());
    demand(identity.type >= 0 && identity.type <= 4);
  } catch (const std::runtime_error&) {
    // Refused: RecordingError is one of these.
  }
  return 0;
}
