#include "Recording/RecordingWriter.h"

#include <zlib.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace arena {

namespace {

constexpr std::size_t kBufferSize = 65536;
// Twice as often as promised: a cycle may take its time.
constexpr std::chrono::milliseconds kFlushInterval{500};

RecordedCycle recorded(const Scene& scene, const GameState& game, std::span<const GoalEvent> goals,
                       std::span<const FoulEvent> fouls) {
  RecordedCycle cycle;
  cycle.time = game.time;
  cycle.mode = game.mode;
  cycle.half = game.half;
  cycle.score = game.score;
  cycle.ball = scene.ball;
  for (const SceneRobot& robot : scene.robots) {
    if (robot.side != Side::None) {
      cycle.robots.push_back({robot.handle, robot.side, robot.number, robot.type,
                              robot.pose(Body::Torso), robot.joints});
    }
  }
  cycle.goals.assign(goals.begin(), goals.end());
  for (const FoulEvent& foul : fouls) {
    if (foul.first) cycle.fouls.push_back({foul.type, foul.side, foul.number});
  }
  return cycle;
}

}  // namespace

RecordingWriter::RecordingWriter(const std::string& path) : file_(gzopen(path.c_str(), "wb3")) {
  if (!file_) {
    throw std::runtime_error("cannot write the recording " + path + ": " + std::strerror(errno));
  }
  buffer_ = kRecordingMagic;
  RecordingEncoder::appendByte(buffer_, kRecordingVersion);
  flush();
}

RecordingWriter::~RecordingWriter() {
  close();
}

void RecordingWriter::write(const Scene& scene, const GameState& game,
                            std::span<const GoalEvent> goals, std::span<const FoulEvent> fouls) {
  encoder_.encode(recorded(scene, game, goals, fouls), game.teamNames, buffer_);
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
  RecordingEncoder::appendByte(buffer_, static_cast<std::uint8_t>(RecordingBlock::End));
  RecordingEncoder::appendUnsigned(buffer_, cycles_);
  compress();
  if (gzclose(static_cast<gzFile>(file_)) != Z_OK) good_ = false;
  file_ = nullptr;
  return good_;
}

}  // namespace arena
