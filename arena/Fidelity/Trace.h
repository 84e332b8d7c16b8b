#ifndef QUOLNARIS_FIDELITY_TRACE_H_
#define QUOLNARIS_FIDELITY_TRACE_H_

#include <Eigen/Geometry>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace arena {

// One cycle of one robot alone on the pitch with the ball: what it sensed, where it truly was, and
// what it answered.
struct TraceRow {
  struct Foot {
    Eigen::Vector3d point;  // m, foot frame
    Eigen::Vector3d force;  // N, foot frame
  };
  struct Truth {
    Eigen::Isometry3d torso;  // world from torso
    Eigen::Vector3d ball;     // m, world
  };

  double time = 0.0;                           // game time, s
  std::vector<std::optional<double>> command;  // rad/s by joint; empty: no term, old speed holds
  std::vector<std::optional<double>> angle;    // degrees by joint; empty: not recorded
  Eigen::Vector3d gyro = Eigen::Vector3d::Zero();
  Eigen::Vector3d accelerometer = Eigen::Vector3d::Zero();
  std::array<std::optional<Foot>, 2> feet;  // right, left; empty: no term in the percept
  std::optional<Truth> truth;
  bool fallen = false;  // replayed rows alone: a part other than the feet is at the ground
};

// What a trainer did a moment before the first row.
struct TraceSetup {
  std::optional<Eigen::Vector3d> ballPosition;
  std::optional<Eigen::Vector3d> ballVelocity;
  std::optional<Eigen::Vector3d> robotPosition;  // moved while asleep; else it stands at (-3, 0)
};

struct Trace {
  std::string name;
  int type = 0;
  TraceSetup setup;
  std::vector<TraceRow> rows;
};

// Reads a recording, plain or gzip-compressed CSV: a first line
//   # robot type 0; setup: beam -3 0 0
// (or trainer commands in place of the beam), a line of column names, one line per cycle. Columns
// are found by name, those of the joints as cmd_rle3, ang_rle3. The reply to row k acts in the
// step that leads to row k + 2.
// Throws std::runtime_error for a file that cannot be read or is not of this form.
Trace readTrace(const std::string& path);

}  // namespace arena

#endif  // QUOLNARIS_FIDELITY_TRACE_H_
