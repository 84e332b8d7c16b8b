#ifndef QUOLNARIS_AGENT_BODYCONTROLLER_H_
#define QUOLNARIS_AGENT_BODYCONTROLLER_H_

#include "Agent/JointController.h"
#include "Command/Command.h"
#include "Mathematics/Matrix.h"

class WorldModel;

// The controllers of the robot's 24 hinge slots.
//
// Reads:    the sensed joints to which its controllers are bound; Agent/Public/Type.
// Provides: one effector term for each hinge slot and cycle.
//
// A side index is 0 for left and 1 for right (a `bool side`: false left, true right). Joint numbers
// start at 1 within a limb: head 1 to 2, arm 1 to 4, leg 1 to 7 (hip yaw-pitch, hip roll, hip
// pitch, knee pitch, ankle pitch, ankle roll, toe). The seventh leg slot exists for every robot
// type; a server ignores it where the robot has no toe. Numbers are not validated.
class BodyController {
 public:
  // Limit of the value sent per cycle, for every joint of every robot type in play.
  static constexpr float kMaxAngle = 6;

  void setWorldModel(WorldModel* w) { WM = w; }

  // Drives one joint by JointController::setAngle. jointType: 0 head, 1 arm, 2 leg. A leg joint is
  // driven only where the robot of type 2 has a speed limit of its own (both ankle joints); every
  // other leg joint, and every other jointType, is left alone and counts as arrived. The motion
  // code does not come this way: it drives the controllers directly, with kMaxAngle.
  bool setJoint(int jointType, int jointNo, bool side, float value, float gain, float error);

  // Drives any joint of head, arms and legs by JointController::fastSetAngle. Always true.
  bool fastSetJoint(int jointType, int jointNo, bool side, float value);

  // Sends a value to any joint of head, arms and legs by JointController::rotateAngle; its result,
  // and true for another jointType.
  bool rotateJoint(int jointType, int jointNo, bool side, float value);

  // Appends the terms of all 24 slots to `command`: arms joint by joint, left before right, then
  // legs likewise, then the head. REQUIRES: all controllers are bound.
  void makeCommand(Command* command);

  // Start of a cycle: JointController::adjustAngles on every controller.
  void adjustJoints();

  WorldModel* WM = nullptr;  // not owned
  JointController handController[2][kHandJoints];
  JointController legController[2][kLegJoints];
  JointController headController[kHeadJoints];
  Matrix<4, 4> hand[2];  // target pose store of the arms, by side
  Matrix<4, 4> leg[2];   // target pose store of the legs, by side

 private:
  JointController* find(int jointType, int jointNo, bool side);
};

#endif  // QUOLNARIS_AGENT_BODYCONTROLLER_H_
