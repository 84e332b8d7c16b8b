#include "Agent/BodyController.h"

#include "Utilities/Config.h"

namespace {

enum JointType { kHead = 0, kHand = 1, kLeg = 2 };

// The ankles of robot type 2 turn at other speeds than all other joints, degrees per cycle.
struct AnkleLimit {
  int jointNo;
  float max;
};
constexpr int kTypeWithAnkleLimits = 2;
constexpr AnkleLimit kAnkleLimits[] = {{5, 8.80667F}, {6, 3.47234F}};

}  // namespace

JointController* BodyController::find(int jointType, int jointNo, bool side) {
  switch (jointType) {
    case kHead:
      return &headController[jointNo - 1];
    case kHand:
      return &handController[side][jointNo - 1];
    case kLeg:
      return &legController[side][jointNo - 1];
    default:
      return nullptr;
  }
}

bool BodyController::setJoint(int jointType, int jointNo, bool side, float value, float gain,
                              float error) {
  if (jointType == kHead || jointType == kHand) {
    return find(jointType, jointNo, side)->setAngle(value, gain, error, kMaxAngle);
  }
  if (jointType != kLeg) return true;
  for (const AnkleLimit& ankle : kAnkleLimits) {
    if (jointNo == ankle.jointNo &&
        config["Agent"]["Public"]["Type"].asInt() == kTypeWithAnkleLimits) {
      return find(jointType, jointNo, side)->setAngle(value, gain, error, ankle.max);
    }
  }
  return true;
}

bool BodyController::fastSetJoint(int jointType, int jointNo, bool side, float value) {
  JointController* controller = find(jointType, jointNo, side);
  if (controller != nullptr) controller->fastSetAngle(value, kMaxAngle);
  return true;
}

bool BodyController::rotateJoint(int jointType, int jointNo, bool side, float value) {
  JointController* controller = find(jointType, jointNo, side);
  return controller == nullptr || controller->rotateAngle(value, kMaxAngle);
}

void BodyController::makeCommand(Command* command) {
  const auto add = [command](const JointController& controller) {
    command->addJoint(controller.joint->getName(), controller.Angle);
  };
  for (int i = 0; i < kHandJoints; ++i) {
    add(handController[0][i]);
    add(handController[1][i]);
  }
  for (int i = 0; i < kLegJoints; ++i) {
    add(legController[0][i]);
    add(legController[1][i]);
  }
  for (const JointController& controller : headController) add(controller);
}

void BodyController::adjustJoints() {
  for (int side = 0; side < 2; ++side) {
    for (JointController& controller : handController[side]) controller.adjustAngles();
    for (JointController& controller : legController[side]) controller.adjustAngles();
  }
  for (JointController& controller : headController) controller.adjustAngles();
}
