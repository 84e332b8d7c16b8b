#ifndef QUOLNARIS_RECORDING_RECORDINGFORMAT_H_
#define QUOLNARIS_RECORDING_RECORDINGFORMAT_H_

#include <array>
#include <cstdint>
#include <string_view>

#include "Common/Scene.h"

namespace arena {

// What writer and reader of match recordings share; docs/recording-format.md describes the file.

inline constexpr std::string_view kRecordingMagic = "QNRMATCH";
inline constexpr std::uint8_t kRecordingVersion = 1;

// The first byte of each block.
enum class RecordingBlock : std::uint8_t {
  Team = 'T',
  Roster = 'R',
  Cycle = 'C',
  Goal = 'G',
  Foul = 'F',
  End = 'E',
};

// Units of the stored integers.
inline constexpr double kRecordedLength = 1e-4;      // m
inline constexpr double kRecordedQuaternion = 1e-4;  // of a unit quaternion's component
inline constexpr double kRecordedAngle = 1e-2;       // degrees

// The integers of a pose: x y z of its place, then w x y z of its rotation.
inline constexpr std::size_t kPoseNumbers = 7;
inline constexpr std::size_t kRobotNumbers = kPoseNumbers + kMaxJoints;
using RecordedPose = std::array<std::int64_t, kPoseNumbers>;
using RecordedRobotNumbers = std::array<std::int64_t, kRobotNumbers>;

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_RECORDINGFORMAT_H_
