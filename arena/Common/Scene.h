#ifndef QUOLNARIS_COMMON_SCENE_H_
#define QUOLNARIS_COMMON_SCENE_H_

#include <Eigen/Geometry>
#include <array>
#include <vector>

#include "Common/Robots.h"
#include "Common/Side.h"

namespace arena {

// One robot as it is shown: the poses after a physics step, before the referee moves anything.
struct SceneRobot {
  int handle = -1;         // of the RefereeWorld
  Side side = Side::None;  // None until its init has been accepted
  int number = 0;          // 1 to 11; 0 until then
  int type = 0;            // 0 to 4
  // World from body, by Body. Toes are ignored unless the type is 4.
  std::array<Eigen::Isometry3d, kBodyCount> bodies;
  // Hinge angles in degrees, in the order of the percepts: head 2, right arm 4, left arm 4, right
  // leg 6 (type 4: 7), left leg likewise; the rest is unused.
  std::array<float, kMaxJoints> joints{};

  const Eigen::Isometry3d& pose(Body body) const { return bodies[static_cast<std::size_t>(body)]; }
  Eigen::Isometry3d& pose(Body body) { return bodies[static_cast<std::size_t>(body)]; }
};

// What monitors and recordings show of one cycle.
struct Scene {
  double time = 0;                                         // simulation time, s
  Eigen::Isometry3d ball = Eigen::Isometry3d::Identity();  // world from ball
  std::vector<SceneRobot> robots;                          // in order of connection
};

}  // namespace arena

#endif  // QUOLNARIS_COMMON_SCENE_H_
