#include "Fidelity/Trace.h"

#include <zlib.h>

#include <charconv>
#include <filesystem>
#include <map>
#include <stdexcept>

#include "Physics/RobotModel.h"

namespace arena {
namespace {

std::string readFile(const std::string& path) {
  const gzFile file = gzopen(path.c_str(), "rb");
  if (file == nullptr) throw std::runtime_error("cannot open " + path);
  std::string text;
  std::array<char, 65536> buffer;
  int count = 0;
  while ((count = gzread(file, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), count);
  }
  gzclose(file);
  if (count < 0) throw std::runtime_error("cannot read " + path);
  return text;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::optional<double> number(std::string_view text) {
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// The three numbers of a term "PREFIX X Y Z)"; nothing where no such term stands.
std::optional<Eigen::Vector3d> vectorAfter(std::string_view text, const std::string& prefix) {
  const std::string start = prefix + " ";
  for (std::size_t at = text.find(start); at != std::string_view::npos; at = text.find(start, at)) {
    at += start.size();
    const std::size_t end = text.find(')', at);
    if (end == std::string_view::npos) return std::nullopt;
    const auto cells = split(text.substr(at, end - at), ' ');
    if (cells.size() != 3) continue;
    const auto x = number(cells[0]);
    const auto y = number(cells[1]);
    const auto z = number(cells[2]);
    if (x && y && z) return Eigen::Vector3d(*x, *y, *z);
  }
  return std::nullopt;
}

// The digit of "robot type N;" with N from 0 to 4.
std::optional<int> robotType(std::string_view text) {
  constexpr std::string_view kStart = "robot type ";
  const std::size_t at = text.find(kStart);
  if (at == std::string_view::npos || text.size() < at + kStart.size() + 2) return std::nullopt;
  const char digit = text[at + kStart.size()];
  if (digit < '0' || digit > '4' || text[at + kStart.size() + 1] != ';') return std::nullopt;
  return digit - '0';
}

// Looks cells of one line up by column name.
class Line {
 public:
  Line(const std::map<std::string, std::size_t, std::less<>>& columns,
       std::vector<std::string_view> cells)
      : columns_(columns), cells_(std::move(cells)) {}

  std::optional<double> optional(const std::string& column) const {
    const auto found = columns_.find(column);
    if (found == columns_.end() || found->second >= cells_.size()) return std::nullopt;
    return number(cells_[found->second]);
  }

  double required(const std::string& column) const {
    const auto value = optional(column);
    if (!value) throw std::runtime_error("no number in column " + column);
    return *value;
  }

  Eigen::Vector3d vector(const std::string& x, const std::string& y, const std::string& z) const {
    return {required(x), required(y), required(z)};
  }

 private:
  const std::map<std::string, std::size_t, std::less<>>& columns_;
  std::vector<std::string_view> cells_;
};

std::optional<TraceRow::Foot> readFoot(const Line& line, const std::string& name) {
  if (!line.optional(name + "_fx")) return std::nullopt;
  return TraceRow::Foot{line.vector(name + "_cx", name + "_cy", name + "_cz"),
                        line.vector(name + "_fx", name + "_fy", name + "_fz")};
}

std::optional<TraceRow::Truth> readTruth(const Line& line) {
  if (!line.optional("torso_x")) return std::nullopt;
  TraceRow::Truth truth{Eigen::Isometry3d::Identity(), line.vector("ball_x", "ball_y", "ball_z")};
  truth.torso.translation() = line.vector("torso_x", "torso_y", "torso_z");
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      truth.torso.linear()(i, j) = line.required("r" + std::to_string(i) + std::to_string(j));
    }
  }
  return truth;
}

TraceRow readRow(const Line& line, const RobotModel& model) {
  TraceRow row;
  row.time = line.required("t");
  for (const JointSpec& joint : model.joints) {
    row.command.push_back(line.optional("cmd_" + joint.effector));
    row.angle.push_back(line.optional("ang_" + joint.effector));
  }
  row.gyro = line.vector("gyr_x", "gyr_y", "gyr_z");
  row.accelerometer = line.vector("acc_x", "acc_y", "acc_z");
  row.feet = {readFoot(line, "rf"), readFoot(line, "lf")};
  row.truth = readTruth(line);
  return row;
}

}  // namespace

Trace readTrace(const std::string& path) {
  const std::string text = readFile(path);
  std::vector<std::string_view> lines = split(text, '\n');
  Trace trace;
  trace.name = std::filesystem::path(path).filename().string();
  trace.name = trace.name.substr(0, trace.name.find('.'));

  const std::string_view head = lines.front();
  const auto type = robotType(head);
  if (lines.size() < 3 || !type) throw std::runtime_error(path + " is not a recording");
  trace.type = *type;
  const bool ofRobot = head.find("(agent") != std::string_view::npos;
  const auto position = vectorAfter(head, "pos");
  (ofRobot ? trace.setup.robotPosition : trace.setup.ballPosition) = position;
  trace.setup.ballVelocity = vectorAfter(head, "vel");

  std::map<std::string, std::size_t, std::less<>> columns;
  for (const std::string_view& name : split(lines[1], ',')) {
    columns.emplace(name, columns.size());
  }
  const RobotModel& model = robotModel(trace.type);
  for (std::size_t i = 2; i < lines.size(); ++i) {
    if (lines[i].empty()) continue;
    trace.rows.push_back(readRow(Line(columns, split(lines[i], ',')), model));
  }
  return trace;
}

}  // namespace arena
