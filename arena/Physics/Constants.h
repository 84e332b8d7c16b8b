#ifndef QUOLNARIS_PHYSICS_CONSTANTS_H_
#define QUOLNARIS_PHYSICS_CONSTANTS_H_

namespace arena {

inline constexpr double kGravity = 9.81;  // m/s²

// The league's server keeps poses, masses, joint parameters and forces in single precision and
// hands them to a physics engine that computes in double precision. Standing and walking amplify
// such differences within seconds, so what it rounds is rounded here too.
inline double single(double value) {
  return static_cast<double>(static_cast<float>(value));
}

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_CONSTANTS_H_
