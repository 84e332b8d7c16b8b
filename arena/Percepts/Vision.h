#ifndef QUOLNARIS_PERCEPTS_VISION_H_
#define QUOLNARIS_PERCEPTS_VISION_H_

#include <Eigen/Geometry>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Common/Random.h"
#include "Common/Scene.h"

namespace arena {

// A direction and distance in the camera frame (x right, y along the optical axis, z up).
struct Polar {
  double distance = 0.0;    // m
  double horizontal = 0.0;  // degrees, positive to the left of the axis, -180 to 180
  double vertical = 0.0;    // degrees, positive up
};

Polar polarOf(const Eigen::Vector3d& point);

// Whether a point is in view: farther than 0.1 m and within 60 degrees to each side, up and down.
// Nothing hides anything and there is no maximum distance.
bool inView(const Polar& polar);
// The same of a point in the camera frame, m; takes the angles only where they are near a limit.
bool pointInView(const Eigen::Vector3d& point);

// The piece of a line that is in view. `begin` and `end` are in the camera frame, m.
// If both ends are in view they are returned as they are. Otherwise the line is cut with the four
// sides of the pyramid that the image window spans; of two cuts the one at the side tested first
// (top, bottom, left, right) comes first. A piece that leaves the window only through the near
// plane is not seen, nor is one in five of those cut at top or bottom, by single-precision
// rounding.
std::optional<std::pair<Eigen::Vector3d, Eigen::Vector3d>> clipLine(const Eigen::Vector3d& begin,
                                                                    const Eigen::Vector3d& end);

struct VisionOptions {
  bool noise = true;
  bool groundTruth = false;  // mypos, myorien and ballpos terms
};

// The camera of one agent: writes the See expression.
class Vision {
 public:
  // `camera`, `noise`: generators of this agent. The camera offset is drawn once, here.
  Vision(const VisionOptions& options, Random camera, Random noise);

  // Appends "(See ...)" with what the robot at `self` in the scene sees.
  // `teamNames`: by Side. REQUIRES self < scene.robots.size().
  void write(const Scene& scene, std::size_t self, const std::array<std::string, 2>& teamNames,
             std::string& text);

  // Metres, camera frame.
  const Eigen::Vector3d& offset() const { return offset_; }

 private:
  Eigen::Vector3d toCamera(const Eigen::Vector3d& world) const {
    return rotation_ * world + shift_;
  }
  void writePolar(const Polar& polar, std::string& text);
  bool writeIfSeen(std::string_view name, const Eigen::Vector3d& world, std::string& text);
  void writeObjects(const Scene& scene, std::string& text);
  void writePlayer(const SceneRobot& robot, const std::string& team, std::string& text);
  void writeGroundTruth(const Scene& scene, const SceneRobot& self, std::string& text) const;
  void writeLines(std::string& text);

  VisionOptions options_;
  Random noise_;
  Eigen::Vector3d offset_ = Eigen::Vector3d::Zero();
  // World to camera, of the picture being written.
  Eigen::Matrix3d rotation_ = Eigen::Matrix3d::Identity();
  Eigen::Vector3d shift_ = Eigen::Vector3d::Zero();
};

}  // namespace arena

#endif  // QUOLNARIS_PERCEPTS_VISION_H_
