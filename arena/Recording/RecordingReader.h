#ifndef QUOLNARIS_RECORDING_RECORDINGREADER_H_
#define QUOLNARIS_RECORDING_RECORDINGREADER_H_

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "Common/Events.h"
#include "Common/PlayMode.h"
#include "Common/Scene.h"
#include "Recording/RecordingFormat.h"

namespace arena {

// The file is no recording, or a damaged one.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct RecordedRobot {
  Side side = Side::Left;
  int number = 0;
  int type = 0;
  Eigen::Isometry3d torso = Eigen::Isometry3d::Identity();  // world from torso
  std::array<float, kMaxJoints> joints{};                   // degrees; jointCount(type) of them
};

struct RecordedFoul {
  FoulType type = FoulType::Touching;
  Side side = Side::Left;
  int number = 0;
};

struct RecordedCycle {
  float time = 0;  // game time, s
  PlayMode mode = PlayMode::BeforeKickOff;
  int half = 1;
  std::array<int, 2> score = {0, 0};                       // by Side
  Eigen::Isometry3d ball = Eigen::Isometry3d::Identity();  // world from ball
  std::vector<RecordedRobot> robots;                       // in order of connection
  std::vector<GoalEvent> goals;                            // of this cycle
  std::vector<RecordedFoul> fouls;                         // the same
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
