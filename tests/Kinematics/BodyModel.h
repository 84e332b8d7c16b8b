#ifndef QUOLNARIS_TESTS_KINEMATICS_BODYMODEL_H_
#define QUOLNARIS_TESTS_KINEMATICS_BODYMODEL_H_

// The robot as a doll of pin joints, for checking the chain kinematics: each limb is a list of
// turns about axes given in the torso's directions and of shifts, as one would measure them on the
// straight standing robot. Millimetres and radians. Nothing here knows Denavit-Hartenberg rows.

#include <Eigen/Geometry>
#include <cmath>
#include <string>
#include <vector>

#include "Kinematics/KMat.h"

namespace body {

using Pose = Eigen::Isometry3d;
using Axis = Eigen::Vector3d;

inline Pose shift(double x, double y, double z) {
  Pose p = Pose::Identity();
  p.translation() = Eigen::Vector3d(x, y, z);
  return p;
}

inline Pose turn(double angle, const Axis& axis) {
  Pose p = Pose::Identity();
  p.linear() = Eigen::AngleAxisd(angle, axis.normalized()).toRotationMatrix();
  return p;
}

inline const Axis kX(1, 0, 0);
inline const Axis kY(0, 1, 0);
inline const Axis kZ(0, 0, 1);

// The frames behind each joint of a leg in chain order, each turned with its link and parallel to
// the torso when all joints are 0. side is 1 for left and -1 for right. The hip yaw-pitch axis
// slants by 45 degrees outward and down, or in and up.
inline std::vector<Pose> leg(double side, const std::vector<double>& q) {
  std::vector<Pose> frames;
  Pose p = shift(0, side * 55, -115) * turn(q[0], Axis(0, 1, -side));
  frames.push_back(p);
  frames.push_back(p = p * turn(q[1], kX));
  frames.push_back(p = p * turn(q[2], kY));
  frames.push_back(p = p * shift(0, 0, -120) * turn(q[3], kY));
  frames.push_back(p = p * shift(0, 0, -100) * turn(q[4], kY));
  frames.push_back(p = p * turn(q[5], kX));
  return frames;
}

inline std::vector<Pose> arm(double side, const std::vector<double>& q) {
  std::vector<Pose> frames;
  Pose p = shift(0, side * 113, 100) * turn(q[0], kY);
  frames.push_back(p);
  frames.push_back(p = p * turn(q[1], kZ));
  // Elbow yaw and wrist turn the left-handed way round, on both arms.
  frames.push_back(p = p * shift(105, 0, 0) * turn(-q[2], kX));
  frames.push_back(p = p * turn(q[3], kZ));
  frames.push_back(p = p * shift(57.75, 0, 0) * turn(-q[4], kX));
  return frames;
}

inline std::vector<Pose> head(const std::vector<double>& q) {
  std::vector<Pose> frames;
  Pose p = shift(0, 0, 126.5) * turn(q[0], kZ);
  frames.push_back(p);
  frames.push_back(p = p * turn(q[1], kY));
  return frames;
}

// The end point of the chain of the given name.
inline Pose end(const std::string& chain, const std::vector<double>& q) {
  if (chain == "LeftLeg") return leg(1, q).back() * shift(0, 0, -20);
  if (chain == "RightLeg") return leg(-1, q).back() * shift(0, 0, -20);
  if (chain == "LeftHand" || chain == "LeftArm") return arm(1, q).back() * shift(55.95, 0, 0);
  if (chain == "RightHand" || chain == "RightArm") return arm(-1, q).back() * shift(55.95, 0, 0);
  if (chain == "CameraTop") return head(q).back() * shift(53.9, 0, 67.9);
  if (chain == "CameraBot") return head(q).back() * shift(48.8, 0, 23.81);
  return Pose::Identity();  // the torso
}

inline Eigen::Matrix4d values(const KMath::KMat::ATMatrix<double, 4>& t) {
  Eigen::Matrix4d m;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) m(i, j) = t.read(i, j);
  }
  return m;
}

inline double difference(const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
  return (a - b).cwiseAbs().maxCoeff();
}

}  // namespace body

#endif  // QUOLNARIS_TESTS_KINEMATICS_BODYMODEL_H_
