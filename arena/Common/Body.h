#ifndef QUOLNARIS_COMMON_BODY_H_
#define QUOLNARIS_COMMON_BODY_H_

#include <array>
#include <cstddef>
#include <string_view>

namespace arena {

// Every rigid body of a robot, in the order in which the bodies are created and shown on the
// monitor. The toes exist in type 4 alone.
enum class Body {
  kTorso,
  kNeck,
  kHead,
  kRightShoulder,
  kRightUpperArm,
  kRightElbow,
  kRightLowerArm,
  kLeftShoulder,
  kLeftUpperArm,
  kLeftElbow,
  kLeftLowerArm,
  kRightHip1,
  kRightHip2,
  kRightThigh,
  kRightShank,
  kRightAnkle,
  kRightFoot,
  kRightToe,
  kLeftHip1,
  kLeftHip2,
  kLeftThigh,
  kLeftShank,
  kLeftAnkle,
  kLeftFoot,
  kLeftToe,
};

inline constexpr std::size_t kBodyCount = 25;

// Names by Body.
inline constexpr std::array<std::string_view, kBodyCount> kBodyNames = {
    "body",      "neck",      "head",   "rshoulder", "rupperarm", "relbow", "rlowerarm",
    "lshoulder", "lupperarm", "lelbow", "llowerarm", "rhip1",     "rhip2",  "rthigh",
    "rshank",    "rankle",    "rfoot",  "rtoe",      "lhip1",     "lhip2",  "lthigh",
    "lshank",    "lankle",    "lfoot",  "ltoe"};

// The parts whose joints the referee freezes together. The torso and the head have no such joints.
enum class Limb { kNone, kRightArm, kLeftArm, kRightLeg, kLeftLeg };

inline constexpr Limb limbOf(Body body) {
  if (body <= Body::kHead) return Limb::kNone;
  if (body <= Body::kRightLowerArm) return Limb::kRightArm;
  if (body <= Body::kLeftLowerArm) return Limb::kLeftArm;
  return body <= Body::kRightToe ? Limb::kRightLeg : Limb::kLeftLeg;
}

}  // namespace arena

#endif  // QUOLNARIS_COMMON_BODY_H_
