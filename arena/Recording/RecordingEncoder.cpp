#include "Recording/RecordingEncoder.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace arena {

namespace {

// Rounds to a stored integer. What the physics has blown up is held at a size that still fits.
std::int64_t stored(double value, double unit) {
  constexpr double kLargest = 1e12;
  if (!std::isfinite(value)) return 0;
  return std::llround(std::clamp(value / unit, -kLargest, kLargest));
}

template <class Numbers>
void storePose(const Eigen::Isometry3d& pose, Numbers& numbers) {
  for (Eigen::Index i = 0; i < 3; ++i) {
    numbers[static_cast<std::size_t>(i)] = stored(pose.translation()[i], kRecordedLength);
  }
  Eigen::Quaterniond turn(pose.linear());
  // Of the two quaternions of a rotation the one with positive w, so that nothing jumps needlessly.
  if (turn.w() < 0) turn.coeffs() = -turn.coeffs();
  const double parts[] = {turn.w(), turn.x(), turn.y(), turn.z()};
  for (std::size_t i = 0; i < 4; ++i) numbers[3 + i] = stored(parts[i], kRecordedQuaternion);
}

void appendBlock(std::string& bytes, RecordingBlock kind) {
  RecordingEncoder::appendByte(bytes, static_cast<std::uint8_t>(kind));
}

void appendTime(std::string& bytes, float seconds) {
  const auto bits = std::bit_cast<std::uint32_t>(seconds);
  for (int shift = 0; shift < 32; shift += 8) RecordingEncoder::appendByte(bytes, bits >> shift);
}

}  // namespace

void RecordingEncoder::appendUnsigned(std::string& bytes, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) appendByte(bytes, (value & 0x7f) | 0x80);
  appendByte(bytes, value);
}

void RecordingEncoder::appendSigned(std::string& bytes, std::int64_t value) {
  appendUnsigned(
      bytes, (static_cast<std::uint64_t>(value) << 1) ^ static_cast<std::uint64_t>(value >> 63));
}

void RecordingEncoder::encodeTeams(const TeamNames& teams, std::string& bytes) {
  for (const Side side : kBothSides) {
    const std::string& name = teams[index(side)];
    if (name == teams_[index(side)]) continue;
    teams_[index(side)] = name;
    appendBlock(bytes, RecordingBlock::Team);
    appendByte(bytes, index(side));
    appendUnsigned(bytes, name.size());
    bytes += name;
  }
}

void RecordingEncoder::encodeRoster(const std::vector<RecordedRobot>& robots, std::string& bytes) {
  const bool same = std::equal(
      robots.begin(), robots.end(), roster_.begin(), roster_.end(),
      [](const RecordedRobot& robot, const Robot& known) { return known.sameAs(robot); });
  if (same) return;
  roster_.clear();
  appendBlock(bytes, RecordingBlock::Roster);
  appendUnsigned(bytes, robots.size());
  for (const RecordedRobot& robot : robots) {
    roster_.push_back({robot.handle, robot.side, robot.number, robot.type, {}});
    appendByte(bytes, index(robot.side));
    appendByte(bytes, static_cast<std::uint64_t>(robot.number));
    appendByte(bytes, static_cast<std::uint64_t>(robot.type));
  }
}

void RecordingEncoder::encodeCycle(const RecordedCycle& cycle, std::string& bytes) {
  appendBlock(bytes, RecordingBlock::Cycle);
  appendTime(bytes, cycle.time);
  appendByte(bytes, static_cast<std::uint64_t>(cycle.mode));
  appendByte(bytes, static_cast<std::uint64_t>(cycle.half));
  for (const int score : cycle.score) appendUnsigned(bytes, static_cast<std::uint64_t>(score));
  RecordedPose ball{};
  storePose(cycle.ball, ball);
  for (std::size_t i = 0; i < ball.size(); ++i) appendSigned(bytes, ball[i] - ball_[i]);
  ball_ = ball;
  for (std::size_t r = 0; r < roster_.size(); ++r) {
    const RecordedRobot& robot = cycle.robots[r];
    RecordedRobotNumbers numbers{};
    storePose(robot.torso, numbers);
    const std::size_t joints = jointCount(robot.type);
    for (std::size_t j = 0; j < joints; ++j) {
      numbers[kPoseNumbers + j] = stored(static_cast<double>(robot.joints[j]), kRecordedAngle);
    }
    for (std::size_t i = 0; i < kPoseNumbers + joints; ++i) {
      appendSigned(bytes, numbers[i] - roster_[r].last[i]);
    }
    roster_[r].last = numbers;
  }
}

void RecordingEncoder::encode(const RecordedCycle& cycle, const TeamNames& teams,
                              std::string& bytes) {
  encodeTeams(teams, bytes);
  encodeRoster(cycle.robots, bytes);
  encodeCycle(cycle, bytes);
  for (const GoalEvent& goal : cycle.goals) {
    appendBlock(bytes, RecordingBlock::Goal);
    appendByte(bytes, index(goal.side));
    appendByte(bytes, index(goal.scorerSide));
    appendByte(bytes, static_cast<std::uint64_t>(goal.scorer));
  }
  for (const RecordedFoul& foul : cycle.fouls) {
    appendBlock(bytes, RecordingBlock::Foul);
    appendByte(bytes, static_cast<std::uint64_t>(foul.type));
    appendByte(bytes, index(foul.side));
    appendByte(bytes, static_cast<std::uint64_t>(foul.number));
  }
}

}  // namespace arena
