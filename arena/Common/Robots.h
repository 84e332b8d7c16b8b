#ifndef QUOLNARIS_COMMON_ROBOTS_H_
#define QUOLNARIS_COMMON_ROBOTS_H_

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace arena {

// Names one robot from its connection to its removal; never used again for another one.
using RobotHandle = int;
inline constexpr RobotHandle kNoRobot = -1;

// Robot types are numbered from 0. Type 4 has toes.
inline constexpr int kRobotTypeCount = 5;
inline constexpr int kTypeWithToes = 4;

// Hinges of the type that has the most.
inline constexpr std::size_t kMaxJoints = 24;
inline constexpr std::size_t jointCount(int type) {
  return type == kTypeWithToes ? kMaxJoints : kMaxJoints - 2;
}

// Every rigid body of a robot, in the order in which the bodies are created and shown on the
// monitor. The toes exist in type 4 alone.
enum class Body {
  Torso,
  Neck,
  Head,
  RightShoulder,
  RightUpperArm,
  RightElbow,
  RightLowerArm,
  LeftShoulder,
  LeftUpperArm,
  LeftElbow,
  LeftLowerArm,
  RightHip1,
  RightHip2,
  RightThigh,
  RightShank,
  RightAnkle,
  RightFoot,
  RightToe,
  LeftHip1,
  LeftHip2,
  LeftThigh,
  LeftShank,
  LeftAnkle,
  LeftFoot,
  LeftToe,
};

inline constexpr std::size_t kBodyCount = 25;

inline constexpr bool hasBody(int type, Body body) {
  return type == kTypeWithToes || (body != Body::RightToe && body != Body::LeftToe);
}

// Names by Body.
inline constexpr std::array<std::string_view, kBodyCount> kBodyNames = {
    "body",      "neck",      "head",   "rshoulder", "rupperarm", "relbow", "rlowerarm",
    "lshoulder", "lupperarm", "lelbow", "llowerarm", "rhip1",     "rhip2",  "rthigh",
    "rshank",    "rankle",    "rfoot",  "rtoe",      "lhip1",     "lhip2",  "lthigh",
    "lshank",    "lankle",    "lfoot",  "ltoe"};

// The groups of joints that are frozen together.
enum class Limb { Head, RightArm, LeftArm, RightLeg, LeftLeg };

inline constexpr Limb kAllLimbs[] = {Limb::Head, Limb::RightArm, Limb::LeftArm, Limb::RightLeg,
                                     Limb::LeftLeg};

// The limb that a body belongs to; none for the torso.
inline constexpr std::optional<Limb> limbOf(Body body) {
  if (body == Body::Torso) return std::nullopt;
  if (body <= Body::Head) return Limb::Head;
  if (body <= Body::RightLowerArm) return Limb::RightArm;
  if (body <= Body::LeftLowerArm) return Limb::LeftArm;
  return body <= Body::RightToe ? Limb::RightLeg : Limb::LeftLeg;
}

}  // namespace arena

#endif  // QUOLNARIS_COMMON_ROBOTS_H_
