#ifndef QUOLNARIS_KINEMATICS_NAOKINEMATICS_H_
#define QUOLNARIS_KINEMATICS_NAOKINEMATICS_H_

// The NAO as Denavit-Hartenberg chains: where the ends of head, arms and legs are, the centre of
// mass, and the closed inverse solutions.
//
// Reads:    its arguments alone.
// Provides: transforms of limb ends, and for a leg that has to place its foot with an orientation
//           of its own (InverseKinematic's chain form) the joint angles.
//
// Units and frames: millimetres and radians. The torso frame has its origin at the torso centre,
// x forward, y to the left, z up. The pitch joints turn the other way than the server's.
//
// Joints in chain order. Head: HeadYaw, HeadPitch. Arm: ShoulderPitch, ShoulderRoll, ElbowYaw,
// ElbowRoll, EwristYaw. Leg: HipYawPitch, HipRoll, HipPitch, KneePitch, AnklePitch, AnkleRoll.
//
// Chains by name: "CameraTop", "CameraBot", "LeftArm" or "LeftHand", "RightArm" or "RightHand",
// "LeftLeg", "RightLeg".
//
// All operations share the scratch members: an object is not reentrant.

#include <array>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Kinematics/KMat.h"

// The transform of this class: rotation block A, translation B in millimetres.
using kmatTable = KMath::KMat::ATMatrix<double, 4>;

// A position in millimetres and the angles of Rz(angleZ) * Ry(angleY) * Rx(angleX) in radians.
struct FKvars {
  double pointX = 0, pointY = 0, pointZ = 0;
  double angleX = 0, angleY = 0, angleZ = 0;
};

class NAOKinematics {
 public:
  // Solutions of an inverse problem, each a list of joints in chain order. Empty: no solution.
  using Solutions = std::vector<std::vector<double>>;

  static constexpr double PI = 3.141592653589793;

  // The constants of the chains. Bases lead from the torso to the first joint of a limb, ends from
  // the last joint to the end point.
  // Head. TEndHead1 is the lower camera, TEndHead2 the upper one.
  const kmatTable TBaseHead = translation(0, 0, 126.5);
  const kmatTable TEndHead1 = translation(48.8, 0, 23.81);
  const kmatTable TEndHead2 = translation(53.9, 0, 67.9);
  const kmatTable RotHead = rotationXYZ(PI / 2, PI / 2, 0);
  // Arms.
  const kmatTable TBaseLArm = translation(0, 113, 100);
  const kmatTable TEndLArm = translation(55.95, 0, 0);
  const kmatTable RotLArm = rotationXYZ(PI / 2, 0, PI / 2);
  const kmatTable TBaseRArm = translation(0, -113, 100);
  const kmatTable TEndRArm = translation(-55.95, 0, 0);
  const kmatTable RotRArm = rotationXYZ(PI / 2, 0, PI / 2);
  const kmatTable RotRArmFix = rotationXYZ(0, 0, -PI);
  const kmatTable RotRArmFixInv = inverse(RotRArmFix);
  // Legs.
  const kmatTable TBaseLLeg = translation(0, 55, -115);
  const kmatTable TEndLLeg = translation(0, 0, -20);
  const kmatTable RotLLeg = rotationZYX(PI, -PI / 2, 0);
  const kmatTable RotFixLLeg = rotationXYZ(PI / 4, 0, 0);
  const kmatTable TBaseLLegInv = inverse(TBaseLLeg);
  const kmatTable TEndLLegInv = inverse(TEndLLeg);
  const kmatTable TBaseBRLeg = translation(0, -55, -115);
  const kmatTable TEndRLeg = translation(0, 0, -20);
  const kmatTable RotRLeg = rotationZYX(PI, -PI / 2, 0);
  const kmatTable RotFixRLeg = rotationXYZ(-PI / 4, 0, 0);
  const kmatTable TBaseRLegInv = inverse(TBaseBRLeg);
  const kmatTable TEndRLegInv = inverse(TEndRLeg);
  // What the inverse solutions of the arms need beside these.
  const kmatTable TBaseLArmInv = inverse(TBaseLArm);
  const kmatTable TBaseRArmInv = inverse(TBaseRArm);
  const kmatTable TEndAndRotLArmInv = inverse(product({&RotLArm, &TEndLArm}));
  const kmatTable TEndAndRotRArmInv = inverse(product({&RotRArm, &TEndRArm, &RotRArmFix}));
  const kmatTable TLArmOldR = rotationXYZ(0, 0, PI / 2);
  const kmatTable TRArmOldR = rotationXYZ(0, 0, PI / 2);
  const kmatTable TLArmOldEnd = translation(113.7, 0, 0);
  const kmatTable TRArmOldEnd = translation(-113.7, 0, 0);
  // Rotations from the frame of a joint to that in which the mass centre of its link is given.
  const kmatTable RotLHshouldP = rotationXYZ(PI / 2, 0, 0);
  const kmatTable RotLHshoulR = rotationXYZ(0, 0, PI / 2);
  const kmatTable RotLHelbowY = rotationXYZ(PI / 2, 0, PI / 2);
  const kmatTable RotLHelbowR = rotationXYZ(0, 0, PI / 2);
  const kmatTable RotRHshouldP = rotationXYZ(PI / 2, 0, 0);
  const kmatTable RotRHshoulR = rotationXYZ(0, 0, -PI / 2);
  const kmatTable RotRHelbowY = rotationXYZ(PI / 2, 0, -PI / 2);
  const kmatTable RotRHelbowR = rotationXYZ(0, 0, -PI / 2);
  const kmatTable RotRHwristY = rotationXYZ(PI / 2, 0, -PI / 2);
  const kmatTable RotLLhipYP = rotationXYZ(0, 3 * PI / 4, PI / 2);
  const kmatTable RotLLhipR = rotationXYZ(0, PI / 2, 0);
  const kmatTable RotLLallPitchs = rotationXYZ(0, PI / 2, PI / 2);
  const kmatTable RotRLhipYP = rotationXYZ(0, PI / 4, PI / 2);
  const kmatTable RotRLhipR = rotationXYZ(0, PI / 2, 0);
  const kmatTable RotRLallPitchs = rotationXYZ(0, PI / 2, PI / 2);

  // Each writes the transform of the limb's end in the torso frame to EndTransf.
  void forwardLeftHand(kmatTable& EndTransf, double ShoulderPitch, double ShoulderRoll,
                       double ElbowYaw, double ElbowRoll, double EwristYaw);
  void forwardRightHand(kmatTable& EndTransf, double ShoulderPitch, double ShoulderRoll,
                        double ElbowYaw, double ElbowRoll, double EwristYaw);
  void forwardLeftLeg(kmatTable& EndTransf, double HipYawPitch, double HipRoll, double HipPitch,
                      double KneePitch, double AnklePitch, double AnkleRoll);
  void forwardRightLeg(kmatTable& EndTransf, double HipYawPitch, double HipRoll, double HipPitch,
                       double KneePitch, double AnklePitch, double AnkleRoll);
  void forwardCamera(kmatTable& EndTransf, double HeadYaw, double HeadPitch, bool topCamera);

  // The chain of the given name. An unknown name gives a zero transform. REQUIRES as many joints as
  // a chain of a known name has; more are not looked at.
  void filterForward(kmatTable& Tmatrix, const std::string& WhatForward,
                     const std::vector<double>& joints);

  // The end of the chain stop, seen from the end of the chain start. The name "Torso" stands for
  // the torso itself, whose joints are not looked at. Throws SingularMatrixInvertionException when
  // the transform of start can't be inverted, as with joints that are not numbers.
  kmatTable forwardFromTo(const std::string& start, const std::string& stop,
                          const std::vector<double>& jointsStart,
                          const std::vector<double>& jointsEnd);
  // The same as position and angles.
  FKvars filterForwardFromTo(const std::string& start, const std::string& stop,
                             const std::vector<double>& jointsStart,
                             const std::vector<double>& jointsEnd);

  // The centre of mass in the torso frame; its angles are 0. The 24 joints are those of head, left
  // arm, left leg, right leg and right arm, in chain order. Any other number of them is reported on
  // standard output; too few give (0, 0, 0), of too many the first 24 count.
  FKvars calculateCenterOfMass(const std::vector<double>& allJoints);

  // Joint angles that bring the end of a limb to the target, given as a transform in the torso
  // frame or as a position and the angles of Rz(rz) * Ry(ry) * Rx(rx). Every solution lies within
  // the joint ranges and passes the forward chain, as far as ATMatrix::almostEqualTo can tell: the
  // position is checked, the rotation is not.
  //
  // inverseRightHand gives no solution for targets that the arm can reach: it takes the turn of the
  // hand away twice, and must go on to, since callers go by the empty list. A target whose rotation
  // is no number may throw SingularMatrixInvertionException.
  Solutions inverseLeftLeg(const kmatTable& targetPoint);
  Solutions inverseLeftLeg(double px, double py, double pz, double rx, double ry, double rz);
  Solutions inverseRightLeg(const kmatTable& targetPoint);
  Solutions inverseRightLeg(double px, double py, double pz, double rx, double ry, double rz);
  // The first solution of inverseRightLeg or inverseLeftLeg, without a list; false if there is
  // none, with joints as it was.
  using LegJoints = std::array<double, 6>;
  bool firstLegSolution(bool right, double px, double py, double pz, double rx, double ry,
                        double rz, LegJoints& joints);
  Solutions inverseLeftHand(const kmatTable& targetPoint);
  Solutions inverseLeftHand(double px, double py, double pz, double rx, double ry, double rz);
  Solutions inverseRightHand(const kmatTable& targetPoint);
  Solutions inverseRightHand(double px, double py, double pz, double rx, double ry, double rz);

  // Head joints that bring a camera to the target's position. withAngles asks for a solution by the
  // rotation instead, and gives none in any case: a look by rotation alone says nothing about the
  // camera's place, and callers count on the empty list.
  Solutions inverseHead(const kmatTable& targetPoint, bool withAngles, bool topCamera);
  Solutions inverseHead(double px, double py, double pz, double rx, double ry, double rz,
                        bool withAngles, bool topCamera);

 private:
  // A joint and its link by their modified Denavit-Hartenberg parameters (see
  // KMath::KMat::transformations::makeDHTransformation).
  struct Link {
    double a, alpha, d, theta;
  };
  struct LinkMass;
  struct LegSide;
  struct ArmSide;

  static kmatTable translation(double x, double y, double z);
  static kmatTable rotationXYZ(double x, double y, double z);
  static kmatTable rotationZYX(double z, double y, double x);
  static kmatTable inverse(const kmatTable& transform);
  static kmatTable product(std::initializer_list<const kmatTable*> factors);

  // The links of the limbs at the given joints, in chain order.
  static std::array<Link, 2> headLinks(const double* joints);
  static std::array<Link, 5> leftArmLinks(const double* joints);
  static std::array<Link, 5> rightArmLinks(const double* joints);
  static std::array<Link, 6> leftLegLinks(const double* joints);
  static std::array<Link, 6> rightLegLinks(const double* joints);

  void forwardChain(kmatTable& EndTransf, const kmatTable& limbBase, std::span<const Link> links,
                    std::initializer_list<const kmatTable*> end);
  void addMasses(kmatTable& sum, const kmatTable& limbBase, std::span<const Link> links,
                 std::span<const LinkMass> masses);

  // The chain of the given name, as filterForward.
  void forwardNamed(kmatTable& Tmatrix, std::string_view chain, std::span<const double> joints);

  // Takes the solutions, one after the other.
  using Taker = std::function<void(std::span<const double> joints)>;
  static Taker into(Solutions& solutions);

  // The steps of the leg solution, from the knee inward. theta is the solution as far as it is
  // known.
  LegSide legSide(bool right) const;
  void inverseLeg(const kmatTable& targetPoint, const LegSide& leg, const Taker& take);
  void solveAnklePitch(const LegSide& leg, LegJoints& theta, const Taker& take);
  void solveHipRoll(const LegSide& leg, LegJoints& theta, const Taker& take);
  void solveHipPitch(const LegSide& leg, LegJoints& theta, const Taker& take);

  // Likewise for the arm, from the elbow inward.
  using ArmJoints = std::array<double, 5>;
  Solutions inverseHand(const kmatTable& targetPoint, const ArmSide& arm);
  void solveElbowYaw(const ArmSide& arm, ArmJoints& theta, Solutions& solutions);
  void solveShoulderPitch(const ArmSide& arm, ArmJoints& theta, Solutions& solutions);

  // Hands the joints over if they bring the end of the named chain to Tinit.
  void takeIfReached(const char* chain, std::span<const double> joints, const Taker& take);

  // Scratch space of the forward chains: the factors and the product.
  kmatTable T1, T2, T3, T4, T5, T6, Tend;
  // Scratch space of the inverse solutions.
  kmatTable T, Tinit, base, Rot, Tstart, T4i, T5i, T6i, TtempTheta5, Ttemp, Ttemp2;
};

#endif  // QUOLNARIS_KINEMATICS_NAOKINEMATICS_H_
