#ifndef QUOLNARIS_RECORDING_RECORDINGENCODER_H_
#define QUOLNARIS_RECORDING_RECORDINGENCODER_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Recording/RecordedCycle.h"
#include "Recording/RecordingFormat.h"

namespace arena {

// Puts cycles into the blocks of a match recording, without the file around them.
//
// Blocks of teams and robots stand where something about them has changed. After restart() the next
// cycle is written with everything and as differences from nothing, so that reading can begin
// there.
class RecordingEncoder {
 public:
  using TeamNames = std::array<std::string, 2>;

  // Appends the blocks of one cycle with its events.
  void encode(const RecordedCycle& cycle, const TeamNames& teams, std::string& bytes);
  void restart() { *this = RecordingEncoder(); }

  // The numbers of the format.
  static void appendByte(std::string& bytes, std::uint64_t value) {
    bytes.push_back(static_cast<char>(value & 0xff));
  }
  static void appendUnsigned(std::string& bytes, std::uint64_t value);
  static void appendSigned(std::string& bytes, std::int64_t value);

 private:
  struct Robot {
    int handle;
    Side side;
    int number;
    int type;
    RecordedRobotNumbers last{};
    bool sameAs(const RecordedRobot& robot) const {
      return handle == robot.handle && side == robot.side && number == robot.number &&
             type == robot.type;
    }
  };

  void encodeTeams(const TeamNames& teams, std::string& bytes);
  void encodeRoster(const std::vector<RecordedRobot>& robots, std::string& bytes);
  void encodeCycle(const RecordedCycle& cycle, std::string& bytes);

  TeamNames teams_;
  std::vector<Robot> roster_;
  RecordedPose ball_{};
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_RECORDINGENCODER_H_
