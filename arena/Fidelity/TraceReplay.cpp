#include "Fidelity/TraceReplay.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Physics/Field.h"
#include "Physics/PhysicsWorld.h"

namespace arena {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
const Eigen::Vector3d kBeamPlace{-3.0, 0.0, 0.4};
constexpr double kFacingRight = -90.0 * kDegree;
constexpr int kSettleSteps = 150;
// Steps between the start of play (or the trainer's command) and the first row.
constexpr int kStepsBeforePlay = 5;
constexpr int kStepsAfterSetup = 3;
constexpr int kRobot = 1;

class Replay {
 public:
  explicit Replay(const Trace& trace) : trace_(trace), robot_(world_.addRobot(kRobot, trace.type)) {
    robot_.placeUpright(kBeamPlace, kFacingRight);
    for (int i = 0; i < kSettleSteps; ++i) {
      holdBall();
      step();
    }
    holdBall();
    setUp();
  }

  std::vector<TraceRow> run() {
    std::vector<TraceRow> rows;
    for (std::size_t k = 0; k < trace_.rows.size(); ++k) {
      if (k > 0) {
        if (k > 1) apply(trace_.rows[k - 2]);
        step();
      }
      rows.push_back(sense(trace_.rows[k]));
    }
    return rows;
  }

 private:
  void holdBall() {
    world_.setBallPosition({0.0, 0.0, kBallRadius});
    world_.setBallVelocity(Eigen::Vector3d::Zero());
  }

  void setUp() {
    const TraceSetup& setup = trace_.setup;
    int steps = kStepsBeforePlay;
    if (setup.ball_position) {
      world_.setBallPosition(*setup.ball_position);
      steps = kStepsAfterSetup;
    }
    if (setup.ball_velocity) world_.setBallVelocity(*setup.ball_velocity);
    if (setup.robot_position) robot_.moveTo(*setup.robot_position);
    for (int i = 0; i < steps; ++i) step();
  }

  void step() {
    world_.sampleAccelerometers();
    world_.step();
  }

  void apply(const TraceRow& row) {
    for (std::size_t i = 0; i < row.command.size(); ++i) {
      if (row.command[i]) robot_.setJointSpeed(static_cast<int>(i), *row.command[i]);
    }
  }

  TraceRow sense(const TraceRow& recorded) const {
    TraceRow row;
    row.time = recorded.time;
    row.command = recorded.command;
    const RobotModel& model = robot_.model();
    for (std::size_t i = 0; i < model.joints.size(); ++i) {
      row.angle.push_back(robot_.jointAngle(static_cast<int>(i)) / kDegree);
    }
    row.gyro = robot_.gyro();
    row.accelerometer = robot_.accelerometer();
    row.feet = {foot(Body::RightFoot), foot(Body::LeftFoot)};
    row.truth = TraceRow::Truth{robot_.torsoPose(), world_.ballPosition()};
    return row;
  }

  std::optional<TraceRow::Foot> foot(Body body) const {
    const FootForce& reading = robot_.footForce(robot_.model().indexOf(body));
    if (!reading.contact) return std::nullopt;
    return TraceRow::Foot{reading.point, reading.force};
  }

  const Trace& trace_;
  PhysicsWorld world_;
  RobotBody& robot_;
};

// Root mean square of the differences of one channel, and the range of the recorded values.
class Channel {
 public:
  void add(double recorded, double replayed) {
    const double difference = replayed - recorded;
    sum_ += difference * difference;
    max_ = std::max(max_, std::abs(difference));
    low_ = std::min(low_, recorded);
    high_ = std::max(high_, recorded);
    ++count_;
  }
  double rms() const { return count_ == 0 ? 0.0 : std::sqrt(sum_ / count_); }
  double max() const { return max_; }
  double range() const { return count_ == 0 ? 0.0 : high_ - low_; }

 private:
  double sum_ = 0.0;
  double max_ = 0.0;
  double low_ = 1e30;
  double high_ = -1e30;
  int count_ = 0;
};

template <std::size_t n>
double worstRms(const std::array<Channel, n>& channels) {
  double worst = 0.0;
  for (const Channel& channel : channels) worst = std::max(worst, channel.rms());
  return worst;
}

// The sensor's range in this recording, at least that of standing up from free fall.
template <std::size_t n>
double rangeOf(const std::array<Channel, n>& channels, double least) {
  double range = least;
  for (const Channel& channel : channels) range = std::max(range, channel.range());
  return range;
}

Eigen::Vector3d forceOf(const std::optional<TraceRow::Foot>& foot) {
  return foot ? foot->force : Eigen::Vector3d::Zero();
}

}  // namespace

std::vector<TraceRow> replayTrace(const Trace& trace) {
  return Replay(trace).run();
}

TraceDifference compareTrace(const Trace& recorded, const std::vector<TraceRow>& replayed,
                             std::size_t end) {
  end = std::min({end, recorded.rows.size(), replayed.size()});
  std::vector<Channel> angles(recorded.rows.front().angle.size());
  std::array<Channel, 3> gyro;
  std::array<Channel, 3> accelerometer;
  std::array<Channel, 6> force;
  Channel torso;
  double travelled = 0.0;
  double ball_error = 0.0;
  std::optional<Eigen::Vector3d> last_ball;
  for (std::size_t k = 0; k < end; ++k) {
    const TraceRow& a = recorded.rows[k];
    const TraceRow& b = replayed[k];
    for (std::size_t i = 0; i < angles.size(); ++i) {
      if (a.angle[i]) angles[i].add(*a.angle[i], b.angle[i].value());
    }
    for (int i = 0; i < 3; ++i) {
      gyro[i].add(a.gyro[i], b.gyro[i]);
      accelerometer[i].add(a.accelerometer[i], b.accelerometer[i]);
      for (int foot = 0; foot < 2; ++foot) {
        force[3 * foot + i].add(forceOf(a.feet[foot])[i], forceOf(b.feet[foot])[i]);
      }
    }
    if (!a.truth || !b.truth) continue;
    torso.add(0.0, (a.truth->torso.translation() - b.truth->torso.translation()).norm());
    ball_error = std::max(ball_error, (a.truth->ball - b.truth->ball).norm());
    if (last_ball) travelled += (a.truth->ball - *last_ball).norm();
    last_ball = a.truth->ball;
  }

  TraceDifference result;
  result.rows = end;
  for (const Channel& channel : angles) {
    result.angle = std::max(result.angle, channel.rms());
    result.angle_max = std::max(result.angle_max, channel.max());
  }
  result.torso = torso.rms();
  result.torso_max = torso.max();
  result.gyro = worstRms(gyro);
  result.accelerometer = worstRms(accelerometer) / rangeOf(accelerometer, 9.81);
  result.foot_force = worstRms(force) / rangeOf(force, 22.6);
  // A ball that only settles on the ground travels a millimetre.
  if (travelled > 0.01) result.ball = ball_error / travelled;
  return result;
}

}  // namespace arena
