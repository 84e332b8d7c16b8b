#include "FrameRecording.h"

#include <zlib.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "FramedLink.h"

namespace {

// The uncompressed size up to which a file is read, so that a tiny compressed one can't eat the
// memory: hours of play stay far below.
constexpr std::size_t kLargestFile = std::size_t{1} << 30;

bool readRobot(std::istringstream& in, TrueRobot& robot) {
  std::string name;
  if (!(in >> name >> robot.x >> robot.y >> robot.z >> robot.heading >> robot.up)) return false;
  robot.side = name[0];
  const auto [end, error] =
      std::from_chars(name.data() + 1, name.data() + name.size(), robot.number);
  return (robot.side == 'L' || robot.side == 'R' || robot.side == '?') && error == std::errc() &&
         end == name.data() + name.size();
}

bool readLine(const std::string& text, TruthLine& line) {
  std::istringstream in(text);
  long index;
  if (!(in >> index >> line.time >> line.mode >> line.score >> line.ballX >> line.ballY >>
        line.ballZ)) {
    return false;
  }
  for (std::string bar; in >> bar;) {
    if (bar != "|" || !readRobot(in, line.robots.emplace_back())) return false;
  }
  return true;
}

}  // namespace

const TrueRobot* TruthLine::find(char side, int number) const {
  for (const TrueRobot& robot : robots) {
    if (robot.side == side && robot.number == number) return &robot;
  }
  return nullptr;
}

std::string readFile(const std::string& path) {
  errno = 0;
  // Reads plain files as they are.
  const gzFile file = gzopen(path.c_str(), "rb");
  if (file == nullptr) {
    throw RecordingError("can't open " + path + ": " +
                         (errno != 0 ? std::strerror(errno) : "out of memory"));
  }
  std::string content;
  char block[1 << 16];
  int count;
  while ((count = gzread(file, block, sizeof(block))) > 0 && content.size() < kLargestFile) {
    content.append(block, static_cast<std::size_t>(count));
  }
  int error = Z_OK;
  const std::string message = gzerror(file, &error);
  const int closed = gzclose(file);
  if (count > 0) throw RecordingError(path + ": too large");
  if (count < 0 || closed != Z_OK) {
    const bool system = error == Z_ERRNO;
    throw RecordingError("can't read " + path + ": " +
                         (system            ? std::strerror(errno)
                          : message.empty() ? std::string("the compressed data is cut off")
                                            : message));
  }
  return content;
}

std::vector<std::string> readRecording(const std::string& path) {
  return parseRecording(readFile(path), path);
}

std::vector<std::string> parseRecording(std::string_view bytes, const std::string& name) {
  std::vector<std::string> frames;
  while (!bytes.empty()) {
    const std::string place = name + ": frame " + std::to_string(frames.size() + 1);
    if (bytes.size() < kFrameHead) throw RecordingError(place + " is cut off in its length");
    const std::uint32_t length = frameLength(bytes);
    if (length > kLongestFrame) {
      throw RecordingError(place + " is said to be " + std::to_string(length) +
                           " bytes long, more than the link takes; is this a recording?");
    }
    bytes.remove_prefix(kFrameHead);
    if (bytes.size() < length) {
      throw RecordingError(place + " is cut off: " + std::to_string(bytes.size()) + " of " +
                           std::to_string(length) + " bytes");
    }
    frames.emplace_back(bytes.substr(0, length));
    bytes.remove_prefix(length);
  }
  return frames;
}

std::vector<TruthLine> readTruth(const std::string& path) {
  return parseTruth(readFile(path), path);
}

std::vector<TruthLine> parseTruth(std::string_view text, const std::string& name) {
  std::vector<TruthLine> lines;
  std::istringstream in{std::string(text)};
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    if (!readLine(line, lines.emplace_back())) {
      throw RecordingError(name + ": line " + std::to_string(number) +
                           " is no line of ground truth");
    }
  }
  return lines;
}
