#include "Agent/BodyController.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Kinematics/RobotType.h"

namespace {

// A controller bound to joints of its own, each sensed at 10 degrees.
class BodyControllerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 4; ++i) {
      bind(body.handController[0][i], "lae" + std::to_string(i + 1));
      bind(body.handController[1][i], "rae" + std::to_string(i + 1));
    }
    for (int i = 0; i < 7; ++i) {
      bind(body.legController[0][i], "lle" + std::to_string(i + 1));
      bind(body.legController[1][i], "rle" + std::to_string(i + 1));
    }
    for (int i = 0; i < 2; ++i) bind(body.headController[i], "he" + std::to_string(i + 1));
    body.adjustJoints();
  }

  void bind(JointController& controller, const std::string& name) {
    joints[used] = Joint(name, 10);
    controller.joint = &joints[used++];
  }

  BodyController body;
  Joint joints[24];
  int used = 0;
};

// The order of the message, written out.
const std::vector<std::string> kOrder = {
    "lae1", "rae1", "lae2", "rae2", "lae3", "rae3", "lae4", "rae4", "lle1", "rle1", "lle2", "rle2",
    "lle3", "rle3", "lle4", "rle4", "lle5", "rle5", "lle6", "rle6", "lle7", "rle7", "he1",  "he2"};

TEST_F(BodyControllerTest, SendsAllTwentyFourHingesInOrderAlsoAtZero) {
  Command command;
  body.makeCommand(&command);
  command.setFinal();
  std::string expected;
  for (const std::string& name : kOrder) expected += "(" + name + " 0)";
  EXPECT_EQ(command.getFinal(), expected);
}

TEST_F(BodyControllerTest, SendsTheValuesAsTheyStand) {
  body.handController[0][0].Angle = 1.5F;
  body.legController[1][6].Angle = -6;
  body.headController[1].Angle = 1e-5F;
  Command command;
  body.makeCommand(&command);
  command.setFinal();
  const std::string text = command.getFinal();
  EXPECT_EQ(text.find("(lae1 1.5)"), 0U);
  EXPECT_NE(text.find("(rle7 -6)(he1 0)(he2 1e-05)"), std::string::npos);
}

TEST_F(BodyControllerTest, AnUntouchedJointIsSentAsZeroInTheNextCycle) {
  body.rotateJoint(1, 1, false, 3);
  body.adjustJoints();
  EXPECT_EQ(body.handController[0][0].Angle, 0);
  EXPECT_EQ(body.handController[0][0].lastAngle, 3);
}

TEST_F(BodyControllerTest, RefreshesAllTwentyFourControllers) {
  for (Joint& joint : joints) joint.setAngle(-4);
  body.adjustJoints();
  for (int side = 0; side < 2; ++side) {
    for (const JointController& c : body.handController[side]) EXPECT_EQ(c.currentAngle, -4);
    for (const JointController& c : body.legController[side]) EXPECT_EQ(c.currentAngle, -4);
  }
  for (const JointController& c : body.headController) EXPECT_EQ(c.currentAngle, -4);
}

TEST_F(BodyControllerTest, SetJointDrivesHeadAndArmsWithTheCommonLimit) {
  const RobotType standard(0);
  EXPECT_FALSE(body.setJoint(0, 2, false, 90, 100, 1));
  EXPECT_EQ(body.headController[1].Angle, 6);
  EXPECT_FALSE(body.setJoint(1, 3, true, 12, 100, 1));
  EXPECT_EQ(body.handController[1][2].Angle, 2);
  EXPECT_TRUE(body.setJoint(1, 3, false, 10.5, 100, 1));
  EXPECT_EQ(body.handController[0][2].Angle, 0);
}

TEST_F(BodyControllerTest, SetJointLeavesTheLegsOfOtherTypesAlone) {
  for (int type : {0, 1, 3, 4}) {
    const RobotType configured(type);
    for (int jointNo = 1; jointNo <= 7; ++jointNo) {
      EXPECT_TRUE(body.setJoint(2, jointNo, true, 90, 100, 1)) << type << " " << jointNo;
      EXPECT_EQ(body.legController[1][jointNo - 1].Angle, 0);
    }
  }
}

TEST_F(BodyControllerTest, SetJointDrivesTheAnklesOfTypeTwoWithTheirOwnLimits) {
  const RobotType two(2);
  EXPECT_FALSE(body.setJoint(2, 5, false, 90, 100, 1));
  EXPECT_EQ(body.legController[0][4].Angle, 8.80667F);
  EXPECT_FALSE(body.setJoint(2, 6, true, -90, 100, 1));
  EXPECT_EQ(body.legController[1][5].Angle, -3.47234F);
  for (int jointNo : {1, 2, 3, 4, 7}) {
    EXPECT_TRUE(body.setJoint(2, jointNo, false, 90, 100, 1));
    EXPECT_EQ(body.legController[0][jointNo - 1].Angle, 0);
  }
}

TEST_F(BodyControllerTest, SetJointOfAnotherTypeDoesNothing) {
  EXPECT_TRUE(body.setJoint(3, 1, false, 90, 100, 1));
  EXPECT_TRUE(body.setJoint(-1, 1, false, 90, 100, 1));
}

TEST_F(BodyControllerTest, FastSetJointReachesEveryJointWithTheCommonLimit) {
  const RobotType two(2);
  EXPECT_TRUE(body.fastSetJoint(0, 1, false, -90));
  EXPECT_EQ(body.headController[0].Angle, -6);
  EXPECT_TRUE(body.fastSetJoint(1, 4, true, 11));
  EXPECT_EQ(body.handController[1][3].Angle, 1);
  EXPECT_TRUE(body.fastSetJoint(2, 5, false, 90));
  EXPECT_EQ(body.legController[0][4].Angle, 6);
  EXPECT_TRUE(body.fastSetJoint(2, 7, true, 90));
  EXPECT_EQ(body.legController[1][6].Angle, 6);
  EXPECT_TRUE(body.fastSetJoint(3, 1, false, 90));
}

TEST_F(BodyControllerTest, RotateJointSendsTheValueUnclipped) {
  EXPECT_FALSE(body.rotateJoint(0, 2, false, 9));
  EXPECT_EQ(body.headController[1].Angle, 9);
  EXPECT_TRUE(body.rotateJoint(1, 1, false, -6));
  EXPECT_EQ(body.handController[0][0].Angle, -6);
  EXPECT_TRUE(body.rotateJoint(2, 7, true, 5));
  EXPECT_EQ(body.legController[1][6].Angle, 5);
  EXPECT_TRUE(body.rotateJoint(3, 1, false, 9));
}

}  // namespace
