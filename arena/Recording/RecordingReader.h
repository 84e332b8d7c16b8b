#ifndef QUOLNARIS_RECORDING_RECORDINGREADER_H_
#define QUOLNARIS_RECORDING_RECORDINGREADER_H_

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "Recording/RecordedCycle.h"
#include "Recording/RecordingFormat.h"

namespace arena {

// The file is no recording, or a damaged one.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads a match recording from its beginning to its end.
class RecordingReader {
 public:
  // Throws RecordingError if the file cannot be read or does not begin like a recording.
  explicit RecordingReader(const std::string& path);
  ~RecordingReader();
  RecordingReader(const RecordingReader&) = delete;
  RecordingReader& operator=(const RecordingReader&) = delete;

  // Reads the next cycle; false after the last one. A recording that was cut off, by a crash say,
  // ends with its last complete cycle. Throws RecordingError where the content makes no sense.
  bool next(RecordedCycle& cycle);
  // Names of the teams by side, as far as they are known at the place of reading.
  const std::array<std::string, 2>& teamNames() const { return teamNames_; }
  // Whether the end was reached and the recording had been closed in order.
  bool complete() const { return complete_; }

 private:
  struct EndOfFile {};
  struct Robot {
    Side side;
    int number;
    int type;
    RecordedRobotNumbers last{};
  };

  std::uint8_t byte();
  std::uint64_t unsignedNumber();
  std::int64_t signedNumber();
  Side side(bool orNone);
  int small(int low, int high, const char* what);
  void readTeam();
  void readRoster();
  void readCycle(RecordedCycle& cycle);
  bool readEvent(RecordedCycle& cycle);
  bool peek(std::uint8_t& value);

  void* file_;  // gzFile
  std::array<std::string, 2> teamNames_;
  std::vector<Robot> roster_;
  RecordedPose lastBall_{};
  bool ended_ = false;
  bool complete_ = false;
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_RECORDINGREADER_H_
