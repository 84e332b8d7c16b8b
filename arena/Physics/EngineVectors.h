#ifndef QUOLNARIS_PHYSICS_ENGINEVECTORS_H_
#define QUOLNARIS_PHYSICS_ENGINEVECTORS_H_

#include <ode/ode.h>

#include <Eigen/Geometry>

namespace arena {

// The three numbers of a place, a velocity or a force as the engine keeps them.
inline Eigen::Vector3d vectorOf(const dReal* v) {
  return {v[0], v[1], v[2]};
}

// A rotation as the engine keeps it: three rows of four, the fourth unused.
inline Eigen::Matrix3d matrixOf(const dReal* r) {
  Eigen::Matrix3d m;
  m << r[0], r[1], r[2],  //
      r[4], r[5], r[6],   //
      r[8], r[9], r[10];
  return m;
}

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_ENGINEVECTORS_H_
