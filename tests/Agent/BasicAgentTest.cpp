#include "Agent/BasicAgent.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "Kinematics/InverseKinematic.h"
#include "support/ConfigSandbox.h"

namespace {

// A body without a server: bound to the joints of a world model of its own.
class BasicAgentTest : public ::testing::Test {
 protected:
  void SetUp() override {
    sandbox.loadDeployment();
    sandbox.set("Agent", "Public", "Type", "0");
    agent.WM = new WorldModel;
    BodyController& body = agent.bControl;
    for (int side = 0; side < 2; ++side) {
      for (int i = 0; i < 4; ++i) {
        body.handController[side][i].joint = agent.WM->getHandJoint(i + 1, side);
      }
      for (int i = 0; i < 7; ++i) {
        body.legController[side][i].joint = agent.WM->getLegJoint(i + 1, side);
      }
    }
    for (int i = 0; i < 2; ++i) body.headController[i].joint = agent.WM->getHeadJoint(i + 1);
  }
  void TearDown() override {
    delete agent.WM;
    delete agent.command;  // the player keeps it to the end of its process
  }

  // Every controller, for groups that must drive all and nothing else.
  std::vector<JointController*> all() {
    std::vector<JointController*> list;
    for (int side = 0; side < 2; ++side) {
      for (JointController& c : agent.bControl.handController[side]) list.push_back(&c);
      for (JointController& c : agent.bControl.legController[side]) list.push_back(&c);
    }
    for (JointController& c : agent.bControl.headController) list.push_back(&c);
    return list;
  }
  int driven() {
    int n = 0;
    for (JointController* c : all()) n += c->Angle != 0 ? 1 : 0;
    return n;
  }

  void parse(const std::string& text) { agent.WM->update(text); }

  support::ConfigSandbox sandbox;
  BasicAgent agent;
};

TEST_F(BasicAgentTest, SingleJointCommandsReachTheNamedJoint) {
  EXPECT_FALSE(agent.setLeg(4, true, -60, 100, 1));
  EXPECT_EQ(agent.bControl.legController[1][3].Angle, -6);
  EXPECT_FALSE(agent.setHand(2, false, 3, 100, 1));
  EXPECT_EQ(agent.bControl.handController[0][1].Angle, 3);
  EXPECT_FALSE(agent.setHead(1, 4, 50, 1));
  EXPECT_EQ(agent.bControl.headController[0].Angle, 2);
  EXPECT_EQ(driven(), 3);
  EXPECT_TRUE(agent.setHead(2, 0.5, 50, 1));
}

TEST_F(BasicAgentTest, TheLimitIsSixAlsoForTheAnklesOfTypeTwo) {
  sandbox.set("Agent", "Public", "Type", "2");
  agent.setLeg(5, false, 90, 100, 1);
  agent.setLeg(6, true, -90, 100, 1);
  EXPECT_EQ(agent.bControl.legController[0][4].Angle, 6);
  EXPECT_EQ(agent.bControl.legController[1][5].Angle, -6);
}

TEST_F(BasicAgentTest, FastFormsSendTheSameAndReportArrival) {
  EXPECT_TRUE(agent.fastSetLeg(3, true, 40, 10, 1));
  EXPECT_EQ(agent.bControl.legController[1][2].Angle, 4);
  EXPECT_TRUE(agent.fastSetHand(3, false, 40, 10, 1));
  EXPECT_EQ(agent.bControl.handController[0][2].Angle, 4);
  EXPECT_TRUE(agent.fastSetHead(2, 40, 10, 1));
  EXPECT_EQ(agent.bControl.headController[1].Angle, 4);
  // setAngle, not fastSetAngle: within the tolerance nothing is commanded.
  EXPECT_TRUE(agent.fastSetLeg(3, true, 0.5, 10, 1));
  EXPECT_EQ(agent.bControl.legController[1][2].Angle, 0);
}

TEST_F(BasicAgentTest, RotateFormsSendTheValueAsItIs) {
  EXPECT_FALSE(agent.rotateLeg(7, false, 9));
  EXPECT_EQ(agent.bControl.legController[0][6].Angle, 9);
  EXPECT_TRUE(agent.rotateHand(1, true, -6));
  EXPECT_EQ(agent.bControl.handController[1][0].Angle, -6);
  EXPECT_TRUE(agent.rotateHead(2, 1));
  EXPECT_EQ(agent.bControl.headController[1].Angle, 1);
}

TEST_F(BasicAgentTest, BothSidesAreDrivenAlsoWhenOneHasArrived) {
  agent.bControl.legController[0][2].currentAngle = 30;
  EXPECT_FALSE(agent.setBothLeg(3, 30, 10, 1));
  EXPECT_EQ(agent.bControl.legController[1][2].Angle, 3);
  EXPECT_EQ(agent.bControl.legController[0][2].Angle, 0);

  agent.bControl.legController[0][2].currentAngle = 0;
  agent.bControl.legController[1][2].currentAngle = 30;
  EXPECT_FALSE(agent.setBothLeg(3, 30, 10, 1));
  EXPECT_EQ(agent.bControl.legController[1][2].Angle, 0);
  EXPECT_EQ(agent.bControl.legController[0][2].Angle, 3);

  agent.bControl.legController[0][2].currentAngle = 30;
  EXPECT_TRUE(agent.setBothLeg(3, 30, 10, 1));

  agent.bControl.handController[1][0].currentAngle = -90;
  EXPECT_FALSE(agent.setBothHand(1, -90, 10, 1));
  EXPECT_EQ(agent.bControl.handController[0][0].Angle, -6);
  agent.bControl.handController[0][0].currentAngle = -90;
  EXPECT_TRUE(agent.setBothHand(1, -90, 10, 1));
}

struct Group {
  const char* name;
  int joints;
  bool (*set)(BasicAgent&);
};

class BasicAgentGroupTest : public BasicAgentTest, public ::testing::WithParamInterface<Group> {};

// The first joint of the body that a group holds has arrived; all others must be driven all the
// same.
TEST_P(BasicAgentGroupTest, DrivesEveryJointOfTheGroupAndNoOther) {
  EXPECT_FALSE(GetParam().set(agent));
  EXPECT_EQ(driven(), GetParam().joints);

  std::vector<JointController*> members;
  for (JointController* c : all()) {
    if (c->Angle != 0) members.push_back(c);
  }
  members.front()->currentAngle = 20;
  EXPECT_FALSE(GetParam().set(agent));
  EXPECT_EQ(driven(), GetParam().joints - 1);
  members.front()->currentAngle = 0;
  members.back()->currentAngle = 20;
  EXPECT_FALSE(GetParam().set(agent));
  EXPECT_EQ(driven(), GetParam().joints - 1);
  for (JointController* c : members) c->currentAngle = 20;
  EXPECT_TRUE(GetParam().set(agent));
  EXPECT_EQ(driven(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    AllGroups, BasicAgentGroupTest,
    ::testing::Values(
        Group{"LeftLeg", 7, [](BasicAgent& a) { return a.setAllLeg(false, 20, 10, 1); }},
        Group{"RightLeg", 7, [](BasicAgent& a) { return a.setAllLeg(true, 20, 10, 1); }},
        Group{"LeftHand", 4, [](BasicAgent& a) { return a.setAllHand(false, 20, 10, 1); }},
        Group{"RightHand", 4, [](BasicAgent& a) { return a.setAllHand(true, 20, 10, 1); }},
        Group{"BothLegs", 14, [](BasicAgent& a) { return a.setAllBothLeg(20, 10, 1); }},
        Group{"BothHands", 8, [](BasicAgent& a) { return a.setAllBothHand(20, 10, 1); }},
        Group{"Head", 2, [](BasicAgent& a) { return a.setAllHead(20, 10, 1); }},
        Group{"All", 24, [](BasicAgent& a) { return a.setAll(20, 10, 1); }}),
    [](const auto& group) { return group.param.name; });

TEST_F(BasicAgentTest, APositionGoesIntoTheTranslationColumnOfTheStore) {
  agent.setHandPosition(true, Vector(0.1F, 0.2F, 0.3F));
  EXPECT_FLOAT_EQ(agent.bControl.hand[1](0, 3), 0.1F);
  EXPECT_FLOAT_EQ(agent.bControl.hand[1](1, 3), 0.2F);
  EXPECT_FLOAT_EQ(agent.bControl.hand[1](2, 3), 0.3F);
  agent.setLegPosition(false, Vector(1, 2, 3));
  EXPECT_EQ(agent.bControl.leg[0](2, 3), 3);
  EXPECT_EQ(agent.bControl.leg[1](2, 3), 0);
}

TEST_F(BasicAgentTest, ARotationGoesIntoTheUpperLeftBlockOfTheStore) {
  Matrix<4, 4> m;
  for (int row = 0; row < 4; ++row) {
    for (int col = 0; col < 4; ++col) m(row, col) = 10 * row + col + 1;
  }
  agent.setLegPosition(true, Vector(7, 8, 9));
  agent.setLegRotation(true, m);
  agent.setHandRotation(false, m);
  for (int row = 0; row < 3; ++row) {
    for (int col = 0; col < 3; ++col) {
      EXPECT_EQ(agent.bControl.leg[1](row, col), 10 * row + col + 1);
      EXPECT_EQ(agent.bControl.hand[0](row, col), 10 * row + col + 1);
    }
  }
  EXPECT_EQ(agent.bControl.leg[1](0, 3), 7);
  EXPECT_EQ(agent.bControl.leg[1](3, 0), 0);
}

TEST_F(BasicAgentTest, TheClosedFormBridgeIgnoresSideAndRotations) {
  double plain[7];
  double bridged[7];
  InverseKinematic().legSolver(Vector(30, -35, -25), Vector(0, 0, 15), plain);
  for (bool side : {false, true}) {
    EXPECT_TRUE(agent.solveIkLeg(Vector(30, -35, -25), Vector(0, 0, 15), bridged, side, 1, 2, 3));
    for (int i = 0; i < 7; ++i) EXPECT_EQ(bridged[i], plain[i]) << i;
  }
}

TEST_F(BasicAgentTest, TheChainBridgeReportsAnUnreachableTarget) {
  double theta[7] = {1, 2, 3, 4, 5, 6, 7};
  EXPECT_FALSE(agent.solveIkLeg1(Vector(), Vector(500, 0, 0), theta, true, 0, 0, 0));
  for (int i = 0; i < 7; ++i) EXPECT_EQ(theta[i], i + 1);
  EXPECT_TRUE(agent.solveIkLeg1(Vector(0, 0, -20), Vector(), theta, true, 0, 0, 0));
  EXPECT_EQ(theta[0], 1);   // not a joint, left alone
  EXPECT_LT(theta[4], -1);  // a lower torso bends the knee
}

TEST_F(BasicAgentTest, TheChainBridgeIsTheChainSolverOfItsSideWithItsRotations) {
  const Vector torso(10, -5, -40), ankle(-5, 10, 5);
  const std::vector<double> anyPose(6, 0.0);
  for (bool side : {false, true}) {
    double direct[7] = {};
    double bridged[7] = {};
    ASSERT_TRUE(
        InverseKinematic().legSolver(torso, ankle, direct, side, anyPose, 0.05, -0.1, 0.15));
    ASSERT_TRUE(agent.solveIkLeg1(torso, ankle, bridged, side, 0.05, -0.1, 0.15));
    for (int i = 0; i < 7; ++i) EXPECT_EQ(bridged[i], direct[i]) << side << ' ' << i;
  }
}

// Centre of mass by hand: mass times position of the parts, the torso at the origin.
TEST_F(BasicAgentTest, CentreOfMassWeighsTheElevenParts) {
  parse(
      "(HJ (n rlj3) (ax 30.00))(HJ (n rlj4) (ax -50.00))(HJ (n llj2) (ax 10.00))"
      "(HJ (n raj1) (ax -90.00))(HJ (n laj2) (ax 20.00))(HJ (n hj1) (ax 40.00))");
  const Vector com = agent.findCOM();
  const struct {
    Matrix<4, 4>* m;
    double grams;
  } parts[] = {
      {&agent.fwd.rightUpLeg, 490}, {&agent.fwd.leftUpLeg, 490}, {&agent.fwd.rightLoLeg, 350},
      {&agent.fwd.leftLoLeg, 350},  {&agent.fwd.rightFoot, 200}, {&agent.fwd.leftFoot, 200},
      {&agent.fwd.rightUpArm, 220}, {&agent.fwd.leftUpArm, 220}, {&agent.fwd.rightLoArm, 235},
      {&agent.fwd.leftLoArm, 235},  {&agent.fwd.headCenter, 400}};
  double sum[3] = {};
  for (const auto& part : parts) {
    for (int i = 0; i < 3; ++i) sum[i] += (*part.m)(i, 3) * part.grams / 4607.1;
  }
  EXPECT_NEAR(com.x, sum[0], 1e-6);
  EXPECT_NEAR(com.y, sum[1], 1e-6);
  EXPECT_NEAR(com.z, sum[2], 1e-6);
}

TEST_F(BasicAgentTest, CentreOfMassOfTheZeroPoseLiesBelowTheTorsoOnTheMiddlePlane) {
  const Vector com = agent.findCOM();
  EXPECT_NEAR(com.y, 0, 1e-4);
  EXPECT_LT(com.z, -0.05);
  EXPECT_GT(com.z, -0.1);
}

TEST_F(BasicAgentTest, CentreOfMassReadsSensedAnglesNotCommands) {
  const Vector before = agent.findCOM();
  agent.bControl.legController[1][2].currentAngle = 40;
  agent.bControl.legController[1][2].Angle = 6;
  EXPECT_TRUE(agent.findCOM() == before);
  agent.bControl.legController[1][2].joint->setAngle(40);
  EXPECT_FALSE(agent.findCOM() == before);
}

TEST_F(BasicAgentTest, FeetUnderTheBodyAreNowhereInParticular) {
  parse("(ACC (n torso) (a 0 0 9.8))");
  EXPECT_EQ(agent.isInCOM(), NONE);
}

TEST_F(BasicAgentTest, SwungLegsLieInFrontOrBehind) {
  for (int i = 0; i < 2; ++i) agent.bControl.legController[i][2].joint->setAngle(50);
  EXPECT_EQ(agent.isInCOM(), FRONT);
  for (int i = 0; i < 2; ++i) agent.bControl.legController[i][2].joint->setAngle(-50);
  EXPECT_EQ(agent.isInCOM(), BACK);
}

TEST_F(BasicAgentTest, SpreadLegsLieToTheRightFirst) {
  // Outward is negative on the right and positive on the left: level feet, both wide. Right is
  // tested before left.
  agent.bControl.legController[1][1].joint->setAngle(-20);
  agent.bControl.legController[0][1].joint->setAngle(20);
  EXPECT_EQ(agent.isInCOM(), RIGHT);
}

TEST_F(BasicAgentTest, TheHigherFootAloneCounts) {
  // The right leg swings far forward and up: it is the higher foot, and lies in front.
  agent.bControl.legController[1][2].joint->setAngle(60);
  EXPECT_EQ(agent.isInCOM(), FRONT);
  // The left leg swings backward and up beside a right leg straight down: the left one counts.
  agent.bControl.legController[1][2].joint->setAngle(0);
  agent.bControl.legController[0][2].joint->setAngle(-60);
  EXPECT_EQ(agent.isInCOM(), BACK);
}

TEST_F(BasicAgentTest, LevelFeetMustBothLieInFrontOrBehind) {
  // One foot 0.14 in front of the hip and the other as far behind, at one height: a straight leg
  // from hip to sole leans forward by 2.6 degrees at angle 0.
  for (int front : {0, 1}) {
    agent.bControl.legController[front][2].joint->setAngle(38);
    agent.bControl.legController[1 - front][2].joint->setAngle(-43.2F);
    EXPECT_EQ(agent.isInCOM(), NONE);
    ASSERT_NEAR(agent.fwd.leftLeg(2, 3), agent.fwd.rightLeg(2, 3), 0.001);
    ASSERT_GT(agent.fwd.leftLeg(0, 3) * (front == 0 ? 1 : -1), 0.12);
  }
}

TEST_F(BasicAgentTest, EachOfTwoLevelFeetTellsItsOwnSide) {
  agent.bControl.legController[0][1].joint->setAngle(5);
  EXPECT_EQ(agent.isInCOM(), LEFT);
  ASSERT_NEAR(agent.fwd.leftLeg(2, 3), agent.fwd.rightLeg(2, 3), 0.005);
  agent.bControl.legController[0][1].joint->setAngle(0);
  agent.bControl.legController[1][1].joint->setAngle(-5);
  EXPECT_EQ(agent.isInCOM(), RIGHT);
}

TEST_F(BasicAgentTest, TheHigherFootTellsBothSides) {
  const auto verdict = [this](bool side, float roll) {
    for (int i = 0; i < 2; ++i) agent.bControl.legController[i][1].joint->setAngle(0);
    agent.bControl.legController[side][1].joint->setAngle(roll);
    return agent.isInCOM();
  };
  EXPECT_EQ(verdict(false, 20), LEFT);
  EXPECT_EQ(verdict(true, -20), RIGHT);
  EXPECT_EQ(verdict(false, -45), RIGHT) << "the left foot, crossed over";
  EXPECT_EQ(verdict(true, 45), LEFT) << "the right foot, crossed over";
}

TEST_F(BasicAgentTest, InFrontWinsOverAside) {
  agent.bControl.legController[0][1].joint->setAngle(30);
  EXPECT_EQ(agent.isInCOM(), LEFT);
  agent.bControl.legController[0][2].joint->setAngle(60);
  EXPECT_EQ(agent.isInCOM(), FRONT);
}

TEST_F(BasicAgentTest, FeetAreLevelUpToFiveMillimetres) {
  // The outer foot alone tells a side, and is the lower one: it counts as long as both do.
  int level = 0, uneven = 0;
  for (bool outer : {false, true}) {
    const float outward = outer ? -1 : 1;
    agent.bControl.legController[outer][1].joint->setAngle(5 * outward);
    for (int i = 0; i <= 1500; ++i) {
      const float inward = 12.5F + 0.001F * static_cast<float>(i);
      agent.bControl.legController[!outer][1].joint->setAngle(inward * outward);
      const COMD verdict = agent.isInCOM();
      const double a = agent.fwd.leftLeg(2, 3) - agent.fwd.rightLeg(2, 3);
      const bool both = std::fabs(a) <= 0.005;
      ASSERT_EQ(verdict, !both ? NONE : outer ? RIGHT : LEFT) << a;
      ++(both ? level : uneven);
    }
    agent.bControl.legController[!outer][1].joint->setAngle(0);
    agent.bControl.legController[outer][1].joint->setAngle(0);
  }
  EXPECT_GT(level, 200);
  EXPECT_GT(uneven, 200);
}

TEST_F(BasicAgentTest, FeetAreInFrontBehindOrAsideFromTheirDistancesOn) {
  const auto sweep = [this](int joint, int side, COMD low, COMD high, double reach, int column) {
    int counts[3] = {};
    for (float angle = -60; angle <= 60; angle += 0.05F) {
      for (int i = 0; i < 2; ++i) {
        const bool still = side != 2 && i != side;
        agent.bControl.legController[i][joint].joint->setAngle(still ? 0 : angle);
      }
      const COMD verdict = agent.isInCOM();
      const Vector com = agent.findCOM();
      Matrix<4, 4>& foot = side == 0 ? agent.fwd.leftLeg : agent.fwd.rightLeg;
      const double d = foot(column, 3) - (column == 0 ? com.x : com.y);
      if (std::fabs(std::fabs(d) - reach) < 1e-6) continue;
      if (side != 2 && std::fabs(agent.fwd.leftLeg(2, 3) - agent.fwd.rightLeg(2, 3)) < 0.0051) {
        continue;  // level feet, of which the other one may count
      }
      ASSERT_EQ(verdict, d < -reach ? low : d > reach ? high : NONE) << angle << ' ' << d;
      ++counts[d < -reach ? 0 : d > reach ? 2 : 1];
    }
    for (int i = 0; i < 2; ++i) agent.bControl.legController[i][joint].joint->setAngle(0);
    for (int count : counts) EXPECT_GT(count, 20) << "joint " << joint << " side " << side;
  };
  sweep(2, 2, BACK, FRONT, 0.1, 0);   // both legs swung
  sweep(1, 0, RIGHT, LEFT, 0.06, 1);  // the left leg raised aside
  sweep(1, 1, RIGHT, LEFT, 0.06, 1);  // the right one
}

TEST_F(BasicAgentTest, AFallWinsOverEveryPose) {
  for (int i = 0; i < 2; ++i) agent.bControl.legController[i][2].joint->setAngle(50);
  for (int i = 0; i < 100; ++i) parse("(ACC (n torso) (a 9.8 0 0))");
  EXPECT_EQ(agent.isInCOM(), FALL);
}

}  // namespace
