#include "Percepts/Vision.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <string_view>
#include <vector>

#include "Common/Units.h"
#include "Percepts/PerceptText.h"

namespace arena {
namespace {

constexpr double kMinDistance = 0.1;         // m
constexpr double kHalfOpening = 60.0;        // degrees, horizontally and vertically
constexpr double kCameraOffset = 0.005;      // m, each axis
constexpr double kDistanceSigma = 0.0965;    // percent of the distance
constexpr double kHorizontalSigma = 0.1480;  // degrees
constexpr double kVerticalSigma = 0.1225;    // degrees
// tan(60 degrees): half the width and height of the window at distance 1.
constexpr double kTanHalfOpening = std::numbers::sqrt3;
constexpr float kWindow = static_cast<float>(kTanHalfOpening);
// Whatever is nearer to a limit than this part of its distance is told by its angles: rounding
// moves them by much less.
constexpr double kNearLimit = 1e-9;

struct Mark {
  std::string_view name;
  std::array<double, 3> place;
};

constexpr std::array<Mark, 8> kMarks{{
    {"G1L", {-15.0, 1.05, 0.8}},
    {"G2L", {-15.0, -1.05, 0.8}},
    {"G2R", {15.0, -1.05, 0.8}},
    {"G1R", {15.0, 1.05, 0.8}},
    {"F1L", {-15.0, 10.0, 0.0}},
    {"F2L", {-15.0, -10.0, 0.0}},
    {"F1R", {15.0, 10.0, 0.0}},
    {"F2R", {15.0, -10.0, 0.0}},
}};

struct FieldLine {
  std::array<double, 2> begin;
  std::array<double, 2> end;
};

constexpr std::array<FieldLine, 11> kStraightLines{{
    {{0.0, -10.0}, {0.0, 10.0}},
    {{15.0, -10.0}, {15.0, 10.0}},
    {{-15.0, -10.0}, {-15.0, 10.0}},
    {{15.0, 10.0}, {-15.0, 10.0}},
    {{15.0, -10.0}, {-15.0, -10.0}},
    {{13.2, 3.0}, {13.2, -3.0}},
    {{13.2, 3.0}, {15.0, 3.0}},
    {{13.2, -3.0}, {15.0, -3.0}},
    {{-13.2, 3.0}, {-13.2, -3.0}},
    {{-13.2, 3.0}, {-15.0, 3.0}},
    {{-13.2, -3.0}, {-15.0, -3.0}},
}};

constexpr int kCircleSides = 10;
constexpr double kCircleRadius = 2.0;

constexpr std::array<std::pair<std::string_view, Body>, 5> kVisibleParts{{
    {"head", Body::Head},
    {"rlowerarm", Body::RightLowerArm},
    {"llowerarm", Body::LeftLowerArm},
    {"rfoot", Body::RightFoot},
    {"lfoot", Body::LeftFoot},
}};

// Begin and end of every line, world frame, in the order in which they are reported.
const std::vector<std::pair<Eigen::Vector3d, Eigen::Vector3d>>& fieldLines() {
  static const auto lines = [] {
    std::vector<std::pair<Eigen::Vector3d, Eigen::Vector3d>> result;
    result.reserve(std::size(kStraightLines) + kCircleSides);
    for (const FieldLine& line : kStraightLines) {
      result.emplace_back(Eigen::Vector3d(line.begin[0], line.begin[1], 0.0),
                          Eigen::Vector3d(line.end[0], line.end[1], 0.0));
    }
    const auto vertex = [](int i) -> Eigen::Vector3d {
      const double angle = 2.0 * std::numbers::pi * i / kCircleSides;
      return {kCircleRadius * std::cos(angle), kCircleRadius * std::sin(angle), 0.0};
    };
    for (int i = 0; i < kCircleSides; ++i) result.emplace_back(vertex(i), vertex(i + 1));
    return result;
  }();
  return lines;
}

// A side of the pyramid: points with distance(p) >= 0 lie on its inner side.
struct WindowSide {
  float x;
  float z;
  float distance(const Eigen::Vector3f& p) const { return kWindow * p.y() - x * p.x() - z * p.z(); }
};

// Top, bottom, left, right.
constexpr std::array<WindowSide, 4> kWindowSides{{{0, 1}, {0, -1}, {-1, 0}, {1, 0}}};
constexpr std::size_t kFirstUprightSide = 2;
// The league's server checks its cuts at top and bottom again and loses those that rounding has put
// outside: about one in five, near and far. Which ones depends on the last bits of its poses.
// Beyond this part of the window's height a cut is lost here, which in single precision gives that
// share in the views that have been recorded.
constexpr float kLostCut = 0.75f * std::numeric_limits<float>::epsilon();

}  // namespace

Polar polarOf(const Eigen::Vector3d& p) {
  const double ground = std::hypot(p.x(), p.y());
  Polar polar;
  polar.distance = p.norm();
  // Of the optical axis, which is y: atan2(y, x) - 90 degrees.
  polar.horizontal = std::atan2(-p.x(), p.y()) * kDegreesPerRadian;
  polar.vertical = std::atan2(p.z(), ground) * kDegreesPerRadian;
  return polar;
}

bool inView(const Polar& polar) {
  return polar.distance > kMinDistance && std::abs(polar.horizontal) <= kHalfOpening &&
         std::abs(polar.vertical) <= kHalfOpening;
}

bool pointInView(const Eigen::Vector3d& p) {
  const double ground = p.x() * p.x() + p.y() * p.y();
  const double height = p.z() * p.z();
  // How far inside, and what is too little to tell.
  const std::array<std::pair<double, double>, 3> limits{{
      {ground + height - kMinDistance * kMinDistance, ground + height + kMinDistance},
      {kTanHalfOpening * p.y() - std::abs(p.x()), std::abs(p.x()) + std::abs(p.y())},
      {kTanHalfOpening * kTanHalfOpening * ground - height, ground + height},
  }};
  bool inside = true;
  for (const auto& [margin, size] : limits) {
    if (margin < -kNearLimit * size) return false;
    if (!(margin > kNearLimit * size)) inside = false;
  }
  return inside || inView(polarOf(p));
}

std::optional<std::pair<Eigen::Vector3d, Eigen::Vector3d>> clipLine(const Eigen::Vector3d& begin,
                                                                    const Eigen::Vector3d& end) {
  if (pointInView(begin) && pointInView(end)) return std::pair(begin, end);

  const Eigen::Vector3f a = begin.cast<float>();
  const Eigen::Vector3f b = end.cast<float>();
  const auto inside = [](const Eigen::Vector3f& p) {
    if (p.y() < static_cast<float>(kMinDistance)) return false;
    for (const WindowSide& side : kWindowSides) {
      if (side.distance(p) < 0.0f) return false;
    }
    return true;
  };

  std::array<Eigen::Vector3f, 2> cuts;
  std::size_t count = 0;
  for (std::size_t i = 0; i < kWindowSides.size() && count < cuts.size(); ++i) {
    const WindowSide& side = kWindowSides[i];
    const float da = side.distance(a);
    const float db = side.distance(b);
    if ((da < 0.0f) == (db < 0.0f)) continue;
    const Eigen::Vector3f cut = a + (b - a) * (da / (da - db));
    if (cut.y() < static_cast<float>(kMinDistance)) continue;
    bool inWindow = i >= kFirstUprightSide || side.distance(cut) >= -kLostCut * kWindow * cut.y();
    for (std::size_t j = 0; j < kWindowSides.size(); ++j) {
      if (j != i && kWindowSides[j].distance(cut) < 0.0f) inWindow = false;
    }
    if (inWindow) cuts[count++] = cut;
  }
  if (count == 0) return std::nullopt;
  const auto point = [](const Eigen::Vector3f& p) -> Eigen::Vector3d { return p.cast<double>(); };
  if (inside(a)) return std::pair(begin, point(cuts[0]));
  if (inside(b)) return std::pair(point(cuts[0]), end);
  if (count == 2) return std::pair(point(cuts[0]), point(cuts[1]));
  return std::nullopt;
}

Vision::Vision(const VisionOptions& options, Random camera, Random noise)
    : options_(options), noise_(noise) {
  if (!options_.noise) return;
  for (int i = 0; i < 3; ++i) offset_[i] = camera.uniform(-kCameraOffset, kCameraOffset);
}

void Vision::write(const Scene& scene, std::size_t self,
                   const std::array<std::string, 2>& teamNames, std::string& text) {
  const Eigen::Isometry3d& head = scene.robots[self].pose(Body::Head);
  rotation_ = head.linear().transpose();
  shift_ = offset_ - rotation_ * head.translation();

  text += "(See ";
  const std::size_t start = text.size();
  writeObjects(scene, text);
  for (const SceneRobot& robot : scene.robots) {
    if (robot.side != Side::None) writePlayer(robot, teamNames[index(robot.side)], text);
  }
  if (options_.groundTruth) writeGroundTruth(scene, scene.robots[self], text);
  writeLines(text);
  // Every entry is followed by a space; the last one by the bracket.
  if (text.size() > start) text.pop_back();
  text += ')';
}

void Vision::writePolar(const Polar& exact, std::string& text) {
  Polar polar = exact;
  if (options_.noise) {
    polar.distance *= 1.0 + noise_.normal(0.0, kDistanceSigma) / 100.0;
    polar.horizontal += noise_.normal(0.0, kHorizontalSigma);
    polar.vertical += noise_.normal(0.0, kVerticalSigma);
  }
  text += "(pol ";
  appendReal(text, polar.distance);
  text += ' ';
  appendReal(text, polar.horizontal);
  text += ' ';
  appendReal(text, polar.vertical);
  text += ')';
}

bool Vision::writeIfSeen(std::string_view name, const Eigen::Vector3d& world, std::string& text) {
  const Eigen::Vector3d point = toCamera(world);
  if (!pointInView(point)) return false;
  text += '(';
  text += name;
  text += ' ';
  writePolar(polarOf(point), text);
  text += ") ";
  return true;
}

void Vision::writeObjects(const Scene& scene, std::string& text) {
  for (const Mark& mark : kMarks) {
    writeIfSeen(mark.name, {mark.place[0], mark.place[1], mark.place[2]}, text);
  }
  writeIfSeen("B", scene.ball.translation(), text);
}

void Vision::writePlayer(const SceneRobot& robot, const std::string& team, std::string& text) {
  const std::size_t start = text.size();
  text += "(P (team ";
  text += team;
  text += ") (id ";
  appendInteger(text, robot.number);
  text += ") ";
  bool seen = false;
  for (const auto& [name, body] : kVisibleParts) {
    if (writeIfSeen(name, robot.pose(body).translation(), text)) seen = true;
  }
  if (!seen) {
    text.resize(start);
    return;
  }
  text.back() = ')';
  text += ' ';
}

void Vision::writeGroundTruth(const Scene& scene, const SceneRobot& self, std::string& text) const {
  const double turn = self.side == Side::Right ? -1.0 : 1.0;
  const Eigen::Vector3d turned(turn, turn, 1.0);
  const Eigen::Isometry3d& head = self.pose(Body::Head);
  text += "(mypos ";
  appendReals(text, head.translation().cwiseProduct(turned));
  text += ") (myorien ";
  const Eigen::Vector3d front = head.linear().col(1) * turn;
  appendReal(text, std::atan2(front.y(), front.x()) * kDegreesPerRadian);
  text += ") (ballpos ";
  appendReals(text, scene.ball.translation().cwiseProduct(turned));
  text += ") ";
}

void Vision::writeLines(std::string& text) {
  for (const auto& [begin, end] : fieldLines()) {
    const auto piece = clipLine(toCamera(begin), toCamera(end));
    if (!piece) continue;
    text += "(L ";
    writePolar(polarOf(piece->first), text);
    text += ' ';
    writePolar(polarOf(piece->second), text);
    text += ") ";
  }
}

}  // namespace arena
