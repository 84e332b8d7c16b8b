#include "Recording/RecordingReader.h"

#include <zlib.h>

#include <bit>
#include <cstdint>

namespace arena {

namespace {

constexpr std::size_t kMaxRoster = 64;
constexpr std::size_t kMaxName = 4096;
constexpr int kMaxScore = 1'000'000;

template <class Numbers>
Eigen::Isometry3d poseOf(const Numbers& numbers) {
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  const auto part = [&numbers](std::size_t i, double unit) {
    return static_cast<double>(numbers[i]) * unit;
  };
  pose.translation() << part(0, kRecordedLength), part(1, kRecordedLength),
      part(2, kRecordedLength);
  Eigen::Quaterniond turn(part(3, 1.0), part(4, 1.0), part(5, 1.0), part(6, 1.0));
  if (turn.norm() > 0) pose.linear() = turn.normalized().toRotationMatrix();
  return pose;
}

// Adds a difference as the writer took it: numbers wrap instead of overflowing.
void advance(std::int64_t& number, std::int64_t difference) {
  number = static_cast<std::int64_t>(static_cast<std::uint64_t>(number) +
                                     static_cast<std::uint64_t>(difference));
}

}  // namespace

RecordingReader::RecordingReader(const std::string& path) : file_(gzopen(path.c_str(), "rb")) {
  if (!file_) throw RecordingError("cannot read the recording " + path);
  const auto fail = [this](const std::string& message) {
    gzclose(static_cast<gzFile>(file_));
    throw RecordingError(message);
  };
  std::string magic(kRecordingMagic.size(), '\0');
  const int size = static_cast<int>(magic.size());
  const int got = gzread(static_cast<gzFile>(file_), magic.data(), static_cast<unsigned>(size));
  if (got != size || magic != kRecordingMagic) fail(path + " is no match recording");
  const int version = gzgetc(static_cast<gzFile>(file_));
  if (version != kRecordingVersion) {
    fail(path + " has version " + std::to_string(version) + ", known is " +
         std::to_string(kRecordingVersion));
  }
}

RecordingReader::~RecordingReader() {
  gzclose(static_cast<gzFile>(file_));
}

std::uint8_t RecordingReader::byte() {
  const int value = gzgetc(static_cast<gzFile>(file_));
  if (value < 0) throw EndOfFile();
  return static_cast<std::uint8_t>(value);
}

bool RecordingReader::peek(std::uint8_t& value) {
  const int got = gzgetc(static_cast<gzFile>(file_));
  if (got < 0) return false;
  gzungetc(got, static_cast<gzFile>(file_));
  value = static_cast<std::uint8_t>(got);
  return true;
}

std::uint64_t RecordingReader::unsignedNumber() {
  std::uint64_t value = 0;
  for (int shift = 0; shift < 64; shift += 7) {
    const std::uint8_t part = byte();
    value |= static_cast<std::uint64_t>(part & 0x7f) << shift;
    if ((part & 0x80) == 0) return value;
  }
  throw RecordingError("a number in the recording is too long");
}

std::int64_t RecordingReader::signedNumber() {
  const std::uint64_t value = unsignedNumber();
  return static_cast<std::int64_t>((value >> 1) ^ (~(value & 1) + 1));
}

int RecordingReader::small(int low, int high, const char* what) {
  const int value = byte();
  if (value < low || value > high) {
    throw RecordingError("the recording holds an impossible " + std::string(what));
  }
  return value;
}

Side RecordingReader::side(bool orNone) {
  return static_cast<Side>(small(0, orNone ? 2 : 1, "side"));
}

void RecordingReader::readTeam() {
  const Side team = side(false);
  const std::uint64_t size = unsignedNumber();
  if (size > kMaxName) throw RecordingError("the recording holds an impossible team name");
  std::string name;
  for (std::uint64_t i = 0; i < size; ++i) name.push_back(static_cast<char>(byte()));
  teamNames_[index(team)] = name;
}

void RecordingReader::readRoster() {
  const std::uint64_t count = unsignedNumber();
  if (count > kMaxRoster) throw RecordingError("the recording holds too many robots");
  std::vector<Robot> roster;
  for (std::uint64_t i = 0; i < count; ++i) {
    const Side team = side(false);
    const int number = small(0, 255, "number");
    const int type = small(0, 4, "robot type");
    roster.push_back({team, number, type, {}});
  }
  roster_ = std::move(roster);
}

void RecordingReader::readCycle(RecordedCycle& cycle) {
  std::uint32_t bits = 0;
  for (int shift = 0; shift < 32; shift += 8) bits |= static_cast<std::uint32_t>(byte()) << shift;
  cycle.time = std::bit_cast<float>(bits);
  cycle.mode = static_cast<PlayMode>(small(0, static_cast<int>(kPlayModeCount) - 1, "play mode"));
  cycle.half = small(1, 2, "half");
  for (int& score : cycle.score) {
    const std::uint64_t value = unsignedNumber();
    if (value > kMaxScore) throw RecordingError("the recording holds an impossible score");
    score = static_cast<int>(value);
  }
  for (std::int64_t& number : lastBall_) advance(number, signedNumber());
  cycle.ball = poseOf(lastBall_);
  cycle.robots.clear();
  for (Robot& robot : roster_) {
    const std::size_t joints = jointCount(robot.type);
    for (std::size_t i = 0; i < kPoseNumbers + joints; ++i) advance(robot.last[i], signedNumber());
    RecordedRobot& shown = cycle.robots.emplace_back();
    shown.side = robot.side;
    shown.number = robot.number;
    shown.type = robot.type;
    shown.torso = poseOf(robot.last);
    for (std::size_t j = 0; j < joints; ++j) {
      shown.joints[j] =
          static_cast<float>(static_cast<double>(robot.last[kPoseNumbers + j]) * kRecordedAngle);
    }
  }
}

// Reads the goal or foul that comes next; false if something else does.
bool RecordingReader::readEvent(RecordedCycle& cycle) {
  std::uint8_t kind = 0;
  if (!peek(kind)) return false;
  if (kind == static_cast<std::uint8_t>(RecordingBlock::Goal)) {
    byte();
    GoalEvent goal;
    goal.side = side(false);
    goal.scorerSide = side(true);
    goal.scorer = byte();
    goal.time = cycle.time;
    cycle.goals.push_back(goal);
    return true;
  }
  if (kind == static_cast<std::uint8_t>(RecordingBlock::Foul)) {
    byte();
    RecordedFoul foul;
    foul.type = static_cast<FoulType>(small(0, static_cast<int>(FoulType::SelfCollision), "foul"));
    foul.side = side(false);
    foul.number = byte();
    cycle.fouls.push_back(foul);
    return true;
  }
  return false;
}

bool RecordingReader::next(RecordedCycle& cycle) {
  if (ended_) return false;
  bool haveCycle = false;
  try {
    while (!haveCycle) {
      switch (static_cast<RecordingBlock>(byte())) {
        case RecordingBlock::Team:
          readTeam();
          break;
        case RecordingBlock::Roster:
          readRoster();
          break;
        case RecordingBlock::Cycle:
          cycle.goals.clear();
          cycle.fouls.clear();
          readCycle(cycle);
          haveCycle = true;
          break;
        case RecordingBlock::End:
          unsignedNumber();
          ended_ = complete_ = true;
          return false;
        default:
          throw RecordingError("the recording is damaged");
      }
    }
    while (readEvent(cycle)) {
    }
  } catch (const EndOfFile&) {
    ended_ = true;
  }
  return haveCycle;
}

}  // namespace arena
