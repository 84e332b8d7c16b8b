#include "MotionRecord.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace {

constexpr double kCycle = 0.02;  // seconds
constexpr double kDegree = 3.141592653589793 / 180;

std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

std::string format(const char* pattern, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, pattern);
  std::vsnprintf(text, sizeof(text), pattern, arguments);
  va_end(arguments);
  return text;
}

// The components of a displacement along a heading and to the left of it.
struct Along {
  double forward;
  double left;
};

Along along(double dx, double dy, double heading) {
  const double c = std::cos(heading * kDegree);
  const double s = std::sin(heading * kDegree);
  return {dx * c + dy * s, -dx * s + dy * c};
}

void countFalls(const std::vector<MotionSample>& samples, MotionSummary& summary) {
  bool lying = samples.front().tilt > kLyingTilt;
  for (const MotionSample& sample : samples) {
    if (lying) {
      lying = sample.tilt >= kUprightTilt;
    } else if (sample.tilt > kLyingTilt) {
      lying = true;
      ++summary.falls;
      if (summary.firstFall < 0) summary.firstFall = sample.cycle;
    }
  }
}

void measureSpeeds(const std::vector<MotionSample>& samples, int lead, MotionSummary& summary) {
  int end = samples.back().cycle;
  if (summary.firstFall >= 0) end = std::min(end, summary.firstFall);
  if (summary.cyclesToEnd >= 0) end = std::min(end, summary.cyclesToEnd);

  double forward = 0;
  double left = 0;
  double turned = 0;
  int cycles = 0;
  for (std::size_t i = 1; i < samples.size(); ++i) {
    const MotionSample& before = samples[i - 1];
    const MotionSample& now = samples[i];
    if (before.cycle < lead || now.cycle > end) continue;
    const double turn = wrapDegrees(now.heading - before.heading);
    const Along step = along(now.torso.x - before.torso.x, now.torso.y - before.torso.y,
                             before.heading + turn / 2);
    forward += step.forward;
    left += step.left;
    turned += turn;
    cycles += now.cycle - before.cycle;
  }
  if (cycles == 0) return;
  const double seconds = cycles * kCycle;
  summary.forwardSpeed = forward / seconds;
  summary.leftSpeed = left / seconds;
  summary.turnRate = turned / seconds;
}

void measureBall(const std::vector<MotionSample>& samples, MotionSummary& summary) {
  const auto told = [](const MotionSample& sample) { return sample.ball.has_value(); };
  const auto first = std::find_if(samples.begin(), samples.end(), told);
  if (first == samples.end()) return;
  const auto last = std::find_if(samples.rbegin(), samples.rend(), told);
  const double dx = last->ball->x - first->ball->x;
  const double dy = last->ball->y - first->ball->y;
  summary.ballDistance = std::hypot(dx, dy);
  // The direction of a ball that has hardly moved is noise.
  if (summary.ballDistance > 0.05) {
    summary.ballDirection = wrapDegrees(std::atan2(dy, dx) / kDegree - samples.front().heading);
  }
}

}  // namespace

double wrapDegrees(double angle) {
  return std::remainder(angle, 360.0);
}

MotionSummary summarize(const std::vector<MotionSample>& samples, int lead) {
  MotionSummary summary;
  if (samples.empty()) return summary;
  const MotionSample& first = samples.front();
  const MotionSample& last = samples.back();
  summary.seconds = (last.cycle - first.cycle) * kCycle;
  summary.endTilt = last.tilt;
  for (const MotionSample& sample : samples) {
    summary.results += sample.result ? 1 : 0;
    if (sample.ended && summary.cyclesToEnd < 0) summary.cyclesToEnd = sample.cycle;
  }
  const double dx = last.torso.x - first.torso.x;
  const double dy = last.torso.y - first.torso.y;
  const Along way = along(dx, dy, first.heading);
  summary.distance = std::hypot(dx, dy);
  summary.forward = way.forward;
  summary.left = way.left;
  for (std::size_t i = 1; i < samples.size(); ++i) {
    summary.turned += wrapDegrees(samples[i].heading - samples[i - 1].heading);
  }
  countFalls(samples, summary);
  measureSpeeds(samples, lead, summary);
  measureBall(samples, summary);
  return summary;
}

void TorsoOrientation::setUpright(double heading) {
  const double c = std::cos(heading * kDegree);
  const double s = std::sin(heading * kDegree);
  const double upright[3][3] = {{c, -s, 0}, {s, c, 0}, {0, 0, 1}};
  std::copy(&upright[0][0], &upright[0][0] + 9, &r_[0][0]);
  heading_ = heading;
}

void TorsoOrientation::turn(double x, double y, double z) {
  const double rate = std::sqrt(x * x + y * y + z * z);
  if (rate > 0) {
    // The rotation by the cycle's angle about the axis of the rates (Rodrigues' formula).
    const double angle = rate * kCycle * kDegree;
    const double axis[3] = {x / rate, y / rate, z / rate};
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double cross[3][3] = {
        {0, -axis[2], axis[1]}, {axis[2], 0, -axis[0]}, {-axis[1], axis[0], 0}};
    double turned[3][3];
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        turned[i][j] = 0;
        for (int k = 0; k < 3; ++k) {
          const double q = (k == j ? c : 0) + s * cross[k][j] + (1 - c) * axis[k] * axis[j];
          turned[i][j] += r_[i][k] * q;
        }
      }
    }
    std::copy(&turned[0][0], &turned[0][0] + 9, &r_[0][0]);
  }
  if (tilt() <= kLyingTilt) heading_ = std::atan2(r_[1][0], r_[0][0]) / kDegree;
}

MotionPoint TorsoOrientation::toPitch(const MotionPoint& p) const {
  return {r_[0][0] * p.x + r_[0][1] * p.y + r_[0][2] * p.z,
          r_[1][0] * p.x + r_[1][1] * p.y + r_[1][2] * p.z,
          r_[2][0] * p.x + r_[2][1] * p.y + r_[2][2] * p.z};
}

MotionPoint TorsoOrientation::toUpright(const MotionPoint& p) const {
  const MotionPoint q = toPitch(p);
  const Along ahead = along(q.x, q.y, heading_);
  return {ahead.forward, ahead.left, q.z};
}

double TorsoOrientation::tilt() const {
  return std::acos(std::clamp(r_[2][2], -1.0, 1.0)) / kDegree;
}

std::optional<std::vector<double>> readTerm(std::string_view message, std::string_view name,
                                            std::size_t count) {
  const std::string head = "(" + std::string(name) + " ";
  std::size_t at = message.find(head);
  if (at == std::string_view::npos) return std::nullopt;
  at += head.size();
  std::vector<double> numbers;
  while (numbers.size() < count) {
    while (at < message.size() && message[at] == ' ') ++at;
    double value = 0;
    const auto [end, error] =
        std::from_chars(message.data() + at, message.data() + message.size(), value);
    if (error != std::errc()) return std::nullopt;
    at = static_cast<std::size_t>(end - message.data());
    numbers.push_back(value);
  }
  return numbers;
}

std::string traceCsv(const std::vector<MotionSample>& samples) {
  std::string text = "cycle,x,y,z,heading,tilt,result,ended,ball_x,ball_y,ball_z\n";
  for (const MotionSample& s : samples) {
    text += format("%d,%.4f,%.4f,%.4f,%.2f,%.2f,%d,%d", s.cycle, s.torso.x, s.torso.y, s.torso.z,
                   s.heading, s.tilt, s.result ? 1 : 0, s.ended ? 1 : 0);
    text += s.ball ? format(",%.3f,%.3f,%.3f\n", s.ball->x, s.ball->y, s.ball->z) : ",,,\n";
  }
  return text;
}

std::string summaryHeader() {
  return "motion,type,seed,source,seconds,results,cycles_to_end,distance,forward,left,"
         "forward_speed,left_speed,turned,turn_rate,falls,first_fall,end_tilt,ball_distance,"
         "ball_direction\n";
}

std::string summaryLine(const std::string& motion, int type, unsigned seed, bool truth,
                        const MotionSummary& s) {
  return motion + "," + std::to_string(type) + "," + std::to_string(seed) + "," +
         (truth ? "truth" : "belief") +
         format(",%.2f,%d,%d,%.3f,%.3f,%.3f,%.3f,%.3f,%.1f,%.1f,%d,%d,%.1f,%.2f,%.1f\n", s.seconds,
                s.results, s.cyclesToEnd, s.distance, s.forward, s.left, s.forwardSpeed,
                s.leftSpeed, s.turned, s.turnRate, s.falls, s.firstFall, s.endTilt, s.ballDistance,
                s.ballDirection);
}
