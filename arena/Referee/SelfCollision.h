#ifndef QUOLNARIS_REFEREE_SELFCOLLISION_H_
#define QUOLNARIS_REFEREE_SELFCOLLISION_H_

#include <array>
#include <cstddef>
#include <span>

#include "Common/Robots.h"
#include "Referee/RefereeWorld.h"

namespace arena {

inline constexpr std::size_t kLimbCount = std::size(kAllLimbs);

// Which limbs (by Limb) take part in something.
using LimbSet = std::array<bool, kLimbCount>;

// Whether two boxes overlap by more than `depth` (m) on every axis of the separating axis test
// (S. Gottschalk et al., OBBTree, SIGGRAPH 1996). The nine axes that are cross products of edges
// are not normalised: boxes with a pair of nearly parallel edges therefore never count. That is
// how the league measures, so it must stay.
bool boxesOverlap(const ColliderView& first, const ColliderView& second, double depth);

// Whether the referee tests these two bodies of one robot: not neighbours that touch by design.
bool mayCollide(Body first, Body second);

// The limbs whose boxes reach into another box of the robot. The torso is part of no limb, so a
// limb in the torso is alone.
LimbSet collidingLimbs(std::span<const ColliderView> colliders);

// The freezing of one robot's limbs: for 1 s of game time after a collision, and not again during
// 2 s after that.
class LimbFreezer {
 public:
  // Releases limbs whose time is over and freezes the colliding ones that may be frozen. Returns
  // whether a limb was frozen now. Times in seconds of game time.
  bool update(const LimbSet& colliding, float time, RobotHandle robot, RefereeWorld& world);
  // Releases everything and forgets the past.
  void release(RobotHandle robot, RefereeWorld& world);

 private:
  enum class Phase { Free, Frozen, Immune };
  struct State {
    Phase phase = Phase::Free;
    float since = 0;
  };
  std::array<State, kLimbCount> limbs_;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_SELFCOLLISION_H_
