#include "Recording/RecordingWriter.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace arena {

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;
// Twice as often as promised: a cycle may take its time.
constexpr std::chrono::milliseconds kFlushInterval{500};

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

}  // namespace

RecordingWriter::RecordingWriter(const std::string& path) : file_(gzopen(path.c_str(), "wb3")) {
  if (!file_) {
    throw std::runtime_error("cannot write the recording " + path + ": " + std::strerror(errno));
  }
  buffer_ = kRecordingMagic;
  byte(kRecordingVersion);
  flush();
}

RecordingWriter::~RecordingWriter() {
  close();
}

void RecordingWriter::unsignedNumber(std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) byte((value & 0x7f) | 0x80);
  byte(value);
}

void RecordingWriter::signedNumber(std::int64_t value) {
  unsignedNumber((static_cast<std::uint64_t>(value) << 1) ^
                 static_cast<std::uint64_t>(value >> 63));
}

void RecordingWriter::text(std::string_view value) {
  unsignedNumber(value.size());
  buffer_ += value;
}

void RecordingWriter::time(float seconds) {
  const auto bits = std::bit_cast<std::uint32_t>(seconds);
  for (int shift = 0; shift < 32; shift += 8) byte(bits >> shift);
}

void RecordingWriter::writeTeams(const GameState& game) {
  for (const Side side : kBothSides) {
    const std::string& name = game.teamNames[index(side)];
    if (name == teamNames_[index(side)]) continue;
    teamNames_[index(side)] = name;
    block(RecordingBlock::Team);
    byte(index(side));
    text(name);
  }
}

void RecordingWriter::writeRoster(std::span<const SceneRobot* const> robots) {
  const bool same =
      std::equal(robots.begin(), robots.end(), roster_.begin(), roster_.end(),
                 [](const SceneRobot* robot, const Robot& known) { return known.sameAs(*robot); });
  if (same) return;
  roster_.clear();
  block(RecordingBlock::Roster);
  unsignedNumber(robots.size());
  for (const SceneRobot* robot : robots) {
    roster_.push_back({robot->handle, robot->side, robot->number, robot->type, {}});
    byte(index(robot->side));
    byte(static_cast<std::uint64_t>(robot->number));
    byte(static_cast<std::uint64_t>(robot->type));
  }
}

void RecordingWriter::write(const Scene& scene, const GameState& game,
                            std::span<const GoalEvent> goals, std::span<const FoulEvent> fouls) {
  std::vector<const SceneRobot*> robots;
  for (const SceneRobot& robot : scene.robots) {
    if (robot.side != Side::None) robots.push_back(&robot);
  }
  writeTeams(game);
  writeRoster(robots);

  block(RecordingBlock::Cycle);
  time(game.time);
  byte(static_cast<std::uint64_t>(game.mode));
  byte(static_cast<std::uint64_t>(game.half));
  for (const int score : game.score) unsignedNumber(static_cast<std::uint64_t>(score));
  RecordedPose ball{};
  storePose(scene.ball, ball);
  for (std::size_t i = 0; i < ball.size(); ++i) signedNumber(ball[i] - lastBall_[i]);
  lastBall_ = ball;
  for (std::size_t r = 0; r < robots.size(); ++r) {
    RecordedRobotNumbers numbers{};
    storePose(robots[r]->pose(Body::Torso), numbers);
    const std::size_t joints = jointCount(robots[r]->type);
    for (std::size_t j = 0; j < joints; ++j) {
      numbers[kPoseNumbers + j] = stored(static_cast<double>(robots[r]->joints[j]), kRecordedAngle);
    }
    for (std::size_t i = 0; i < kPoseNumbers + joints; ++i) {
      signedNumber(numbers[i] - roster_[r].last[i]);
    }
    roster_[r].last = numbers;
  }
  for (const GoalEvent& goal : goals) {
    block(RecordingBlock::Goal);
    byte(index(goal.side));
    byte(index(goal.scorerSide));
    byte(static_cast<std::uint64_t>(goal.scorer));
  }
  for (const FoulEvent& foul : fouls) {
    if (!foul.first) continue;
    block(RecordingBlock::Foul);
    byte(static_cast<std::uint64_t>(foul.type));
    byte(index(foul.side));
    byte(static_cast<std::uint64_t>(foul.number));
  }
  ++cycles_;
  fresh_ = false;
  if (buffer_.size() >= kBufferSize) compress();
  keepFresh();
}

void RecordingWriter::keepFresh() {
  if (!fresh_ && Clock::now() - flushed_ >= kFlushInterval) flush();
}

void RecordingWriter::compress() {
  const auto size = static_cast<unsigned>(buffer_.size());
  if (size > 0 &&
      gzwrite(static_cast<gzFile>(file_), buffer_.data(), size) != static_cast<int>(size)) {
    good_ = false;
  }
  buffer_.clear();
}

void RecordingWriter::flush() {
  compress();
  if (gzflush(static_cast<gzFile>(file_), Z_SYNC_FLUSH) != Z_OK) good_ = false;
  fresh_ = true;
  flushed_ = Clock::now();
}

bool RecordingWriter::close() {
  if (!file_) return good_;
  block(RecordingBlock::End);
  unsignedNumber(cycles_);
  compress();
  if (gzclose(static_cast<gzFile>(file_)) != Z_OK) good_ = false;
  file_ = nullptr;
  return good_;
}

}  // namespace arena
