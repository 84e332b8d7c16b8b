#include "Fidelity/TraceReplay.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "Common/Units.h"
#include "Match/Match.h"

namespace arena {
namespace {

constexpr int kStepsBeforeInit = 4;
constexpr int kSettleSteps = 150;
// Steps from the start of play to the first row, and from the trainer's other commands.
constexpr int kStepsOfPlay = 5;
constexpr int kStepsOfPlayWithSetup = 9;
constexpr int kStepsAfterSetup = 3;

// How long the recorded robot stood at its start place and how often it was then beamed is not
// recorded. Its stance tells, in micrometres with long legs or toes.
struct Arrival {
  int stepsAtStart;
  int beams;
};
constexpr std::array<Arrival, kRobotTypeCount> kArrivals{{{2, 1}, {0, 4}, {2, 3}, {5, 4}, {5, 7}}};

// m, by robot type. That of type 0 was found on its tread, the recording that feels it most, and
// holds for the others of the type. No such ground is known for another type.
constexpr std::array<double, kRobotTypeCount> kNudges{-2.5386157e-8, 0.0, 0.0, 0.0, 0.0};

// As many digits as the recording has.
std::string shortest(double value) {
  std::array<char, 32> text;
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end};
}

std::string numbers(const Eigen::Vector3d& v) {
  return shortest(v.x()) + ' ' + shortest(v.y()) + ' ' + shortest(v.z());
}

// The recorded agent in a match of its own.
class Replay {
 public:
  Replay(const Trace& trace, double nudge)
      : trace_(trace), match_(MatchOptions{.noise = false}), agent_(match_.connect()) {
    const Arrival& arrival = kArrivals.at(trace.type);
    match_.receive(agent_,
                   "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(trace.type) + ")");
    steps(kStepsBeforeInit);
    match_.receive(agent_, "(init (unum 1)(teamname Recorded))");
    steps(arrival.stepsAtStart);
    for (int i = 0; i < arrival.beams; ++i) {
      match_.receive(agent_, "(beam -3 0 0)");
      match_.step();
    }
    steps(kSettleSteps);
    pushTorso(nudge);
    setUp();
  }

  std::vector<TraceRow> run() {
    std::vector<TraceRow> rows;
    for (std::size_t k = 0; k < trace_.rows.size(); ++k) {
      if (k > 1) match_.receive(agent_, answer(trace_.rows[k - 2]));
      if (k > 0) match_.step();
      rows.push_back(sense(trace_.rows[k]));
    }
    return rows;
  }

 private:
  void steps(int count) {
    for (int i = 0; i < count; ++i) match_.step();
  }

  // It faces along x.
  void pushTorso(double forward) {
    RobotBody& robot = *match_.world().physics().robot(agent_);
    RobotBody::State state = robot.state();
    state.bodies.front().position[0] += forward;
    robot.setState(state);
  }

  void setUp() {
    match_.trainer().receive("(playMode PlayOn)");
    const TraceSetup& setup = trace_.setup;
    std::string command;
    if (setup.ballPosition) {
      command = "(ball (pos " + numbers(*setup.ballPosition) + ")";
      if (setup.ballVelocity) command += "(vel " + numbers(*setup.ballVelocity) + ")";
      command += ")";
    } else if (setup.robotPosition) {
      command = "(agent (unum 1)(team Left)(pos " + numbers(*setup.robotPosition) + "))";
    } else {
      steps(kStepsOfPlay);
      return;
    }
    steps(kStepsOfPlayWithSetup - kStepsAfterSetup);
    match_.trainer().receive(command);
    steps(kStepsAfterSetup);
  }

  std::string answer(const TraceRow& row) const {
    const RobotModel& model = robotModel(trace_.type);
    std::string text;
    for (std::size_t i = 0; i < row.command.size(); ++i) {
      if (!row.command[i]) continue;
      text += '(' + model.joints[i].effector + ' ' + shortest(*row.command[i]) + ')';
    }
    return text;
  }

  TraceRow sense(const TraceRow& recorded) {
    const RobotBody& robot = *match_.world().physics().robot(agent_);
    TraceRow row;
    row.time = recorded.time;
    row.command = recorded.command;
    for (std::size_t i = 0; i < robot.model().joints.size(); ++i) {
      row.angle.push_back(robot.jointAngle(static_cast<int>(i)) / kRadiansPerDegree);
    }
    row.gyro = robot.gyro();
    row.accelerometer = robot.accelerometer();
    row.feet = {foot(robot, Body::RightFoot), foot(robot, Body::LeftFoot)};
    const Scene& scene = match_.scene();
    row.truth = TraceRow::Truth{scene.robots.front().pose(Body::Torso), scene.ball.translation()};
    row.fallen = touchesGround(robot);
    return row;
  }

  static std::optional<TraceRow::Foot> foot(const RobotBody& robot, Body body) {
    const FootForce& reading = robot.footForce(robot.model().indexOf(body));
    if (!reading.contact) return std::nullopt;
    return TraceRow::Foot{reading.point, reading.force};
  }

  // Whether a box other than those of the feet reaches the ground.
  static bool touchesGround(const RobotBody& robot) {
    const auto& bodies = robot.model().bodies;
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      if (!bodies[i].collider || !bodies[i].sensor.empty()) continue;
      if (bodies[i].shape != ShapeKind::Box) continue;
      const Eigen::Isometry3d pose = robot.pose(static_cast<int>(i));
      const auto& size = bodies[i].size;
      const Eigen::Vector3d half(size[0] / 2, size[1] / 2, size[2] / 2);
      const double reach = pose.linear().row(2).cwiseAbs().dot(half);
      if (pose.translation().z() - reach <= 0.0) return true;
    }
    return false;
  }

  const Trace& trace_;
  Match match_;
  Match::AgentId agent_;
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

double nudgeOf(int type) {
  return kNudges.at(static_cast<std::size_t>(type));
}

std::vector<TraceRow> replayTrace(const Trace& trace, double nudge) {
  return Replay(trace, nudge).run();
}

std::size_t firstFallContact(const std::vector<TraceRow>& rows) {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [](const auto& row) { return row.fallen; });
  return static_cast<std::size_t>(found - rows.begin());
}

bool withinTolerance(const TraceDifference& d) {
  return d.angle <= 0.1 && d.torso <= 0.002 && d.gyro <= 2.0 && d.accelerometer <= 0.05 &&
         d.footForce <= 0.05 && d.ball <= 0.01;
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
  double ballError = 0.0;
  std::optional<Eigen::Vector3d> lastBall;
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
    ballError = std::max(ballError, (a.truth->ball - b.truth->ball).norm());
    if (lastBall) travelled += (a.truth->ball - *lastBall).norm();
    lastBall = a.truth->ball;
  }

  TraceDifference result;
  result.rows = end;
  for (const Channel& channel : angles) {
    result.angle = std::max(result.angle, channel.rms());
    result.angleMax = std::max(result.angleMax, channel.max());
  }
  result.torso = torso.rms();
  result.torsoMax = torso.max();
  result.gyro = worstRms(gyro);
  result.accelerometer = worstRms(accelerometer) / rangeOf(accelerometer, 9.81);
  result.footForce = worstRms(force) / rangeOf(force, 22.6);
  // A ball that only settles on the ground travels a millimetre.
  if (travelled > 0.01) result.ball = ballError / travelled;
  return result;
}

}  // namespace arena
