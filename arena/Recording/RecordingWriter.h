#ifndef QUOLNARIS_RECORDING_RECORDINGWRITER_H_
#define QUOLNARIS_RECORDING_RECORDINGWRITER_H_

#include <cstdint>
#include <span>
#include <string>

#include "Common/Events.h"
#include "Common/GameState.h"
#include "Common/Scene.h"
#include "Recording/RecordingEncoder.h"

namespace arena {

// Writes a match to a compact file: every cycle's poses and joint angles, the state of the game,
// goals and fouls.
class RecordingWriter {
 public:
  // Throws std::runtime_error if the file cannot be created.
  explicit RecordingWriter(const std::string& path);
  ~RecordingWriter();
  RecordingWriter(const RecordingWriter&) = delete;
  RecordingWriter& operator=(const RecordingWriter&) = delete;

  // Writes one cycle; robots without a team are left out.
  void write(const Scene& scene, const GameState& game, std::span<const GoalEvent> goals,
             std::span<const FoulEvent> fouls);
  // Ends the file in order. Returns whether all of it could be written, here and before.
  bool close();

 private:
  void flush();

  void* file_;  // gzFile
  bool good_ = true;
  std::string buffer_;
  RecordingEncoder encoder_;
  std::uint64_t cycles_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_RECORDINGWRITER_H_
