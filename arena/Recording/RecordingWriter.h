#ifndef QUOLNARIS_RECORDING_RECORDINGWRITER_H_
#define QUOLNARIS_RECORDING_RECORDINGWRITER_H_

#include <chrono>
#include <cstdint>
#include <span>
#include <string>

#include "Common/Events.h"
#include "Common/GameState.h"
#include "Common/Scene.h"
#include "Recording/RecordingEncoder.h"

namespace arena {

// Writes a match to a compact file: every cycle's poses and joint angles, the state of the game,
// goals and fouls. Should the program be killed, the file holds what was written until a second
// before.
class RecordingWriter {
 public:
  // The file has its beginning at once. Throws std::runtime_error if it cannot be created.
  explicit RecordingWriter(const std::string& path);
  ~RecordingWriter();
  RecordingWriter(const RecordingWriter&) = delete;
  RecordingWriter& operator=(const RecordingWriter&) = delete;

  // Writes one cycle; robots without a team are left out.
  void write(const Scene& scene, const GameState& game, std::span<const GoalEvent> goals,
             std::span<const FoulEvent> fouls);
  // Hands on to the system what has waited for longer than half a second. To be called now and then
  // while nothing is written; write() does it by itself.
  void keepFresh();
  // Ends the file in order. Returns whether all of it could be written, here and before.
  bool close();

 private:
  // Gives the buffer to the compression.
  void compress();
  // The same, and all that is compressed to the system.
  void flush();

  using Clock = std::chrono::steady_clock;

  void* file_;  // gzFile
  bool good_ = true;
  bool fresh_ = true;  // nothing waits
  Clock::time_point flushed_;
  std::string buffer_;
  RecordingEncoder encoder_;
  std::uint64_t cycles_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_RECORDINGWRITER_H_
