#ifndef QUOLNARIS_RECORDING_RECORDINGWRITER_H_
#define QUOLNARIS_RECORDING_RECORDINGWRITER_H_

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Common/Events.h"
#include "Common/GameState.h"
#include "Common/Scene.h"
#include "Recording/RecordingFormat.h"

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
  struct Robot {
    int handle;
    Side side;
    int number;
    int type;
    RecordedRobotNumbers last{};
    bool sameAs(const SceneRobot& robot) const {
      return handle == robot.handle && side == robot.side && number == robot.number &&
             type == robot.type;
    }
  };

  void writeTeams(const GameState& game);
  void writeRoster(std::span<const SceneRobot* const> robots);
  void byte(std::uint64_t value) { buffer_.push_back(static_cast<char>(value & 0xff)); }
  void unsignedNumber(std::uint64_t value);
  void signedNumber(std::int64_t value);
  void block(RecordingBlock kind) { byte(static_cast<std::uint8_t>(kind)); }
  void text(std::string_view value);
  void time(float seconds);
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
  std::array<std::string, 2> teamNames_;
  std::vector<Robot> roster_;
  RecordedPose lastBall_{};
  std::uint64_t cycles_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_RECORDINGWRITER_H_
