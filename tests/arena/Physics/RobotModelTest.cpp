#include "Physics/RobotModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace arena {
namespace {

double totalMass(const RobotModel& model) {
  return std::accumulate(model.bodies.begin(), model.bodies.end(), 0.0,
                         [](double sum, const BodySpec& body) { return sum + body.mass; });
}

Triple centreOfMass(const RobotModel& model) {
  Triple sum{};
  for (const BodySpec& body : model.bodies) {
    for (int i = 0; i < 3; ++i) sum[i] += body.mass * body.position[i];
  }
  for (double& value : sum) value /= totalMass(model);
  return sum;
}

class RobotModelEveryTypeTest : public testing::TestWithParam<int> {
 protected:
  const RobotModel& model = robotModel(GetParam());
};

TEST_P(RobotModelEveryTypeTest, HasTheSameMass) {
  EXPECT_NEAR(totalMass(model), 4.6071, 1e-9);
}

TEST_P(RobotModelEveryTypeTest, HasTheExpectedNumbersOfBodiesAndHinges) {
  const bool toes = GetParam() == 4;
  EXPECT_EQ(model.bodies.size(), toes ? 25u : 23u);
  EXPECT_EQ(model.joints.size(), toes ? 24u : 22u);
}

TEST_P(RobotModelEveryTypeTest, NamesEveryHingeInTheOrderOfThePercepts) {
  std::vector<std::string> expected{"hj1", "hj2"};
  for (const char* limb : {"raj", "laj", "rlj", "llj"}) {
    const int count = limb[1] == 'a' ? 4 : (GetParam() == 4 ? 7 : 6);
    for (int i = 1; i <= count; ++i) expected.push_back(limb + std::to_string(i));
  }
  std::vector<std::string> names;
  for (const JointSpec& joint : model.joints) names.push_back(joint.perceptor);
  EXPECT_EQ(names, expected);
}

TEST_P(RobotModelEveryTypeTest, NamesItsBodiesInTheOrderOfBody) {
  for (std::size_t i = 1; i < model.bodies.size(); ++i) {
    EXPECT_LT(model.bodies[i - 1].body, model.bodies[i].body);
  }
}

TEST_P(RobotModelEveryTypeTest, MirrorsTheLeftSide) {
  for (const BodySpec& right : model.bodies) {
    const std::string name(kBodyNames[static_cast<int>(right.body)]);
    if (name[0] != 'r') continue;
    const auto left = std::find_if(model.bodies.begin(), model.bodies.end(), [&](const auto& body) {
      return kBodyNames[static_cast<int>(body.body)] == "l" + name.substr(1);
    });
    ASSERT_NE(left, model.bodies.end()) << name;
    EXPECT_DOUBLE_EQ(right.position[0], -left->position[0]) << name;
    EXPECT_DOUBLE_EQ(right.position[1], left->position[1]) << name;
    EXPECT_DOUBLE_EQ(right.position[2], left->position[2]) << name;
    EXPECT_EQ(right.collider, left->collider) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(RobotModel, RobotModelEveryTypeTest, testing::Range(0, kRobotTypeCount));

TEST(RobotModelTest, PutsTheSolesWhereTheLegLengthsSay) {
  const std::array<double, 5> sole{0.385, 0.42164, 0.385, 0.440736848, 0.385};
  for (int type = 0; type < kRobotTypeCount; ++type) {
    const RobotModel& model = robotModel(type);
    const BodySpec& foot = model.bodies[model.indexOf(Body::RightFoot)];
    EXPECT_NEAR(foot.position[2] - foot.size[2] / 2.0, -sole[type], 1e-12) << type;
  }
}

TEST(RobotModelTest, HasTheCentreOfMassOfEachType) {
  const std::array<std::array<double, 2>, 5> expected{{{0.0163, -0.0788},
                                                       {0.0200, -0.0880},
                                                       {0.0163, -0.0788},
                                                       {0.0220, -0.0927},
                                                       {0.0155, -0.0789}}};
  for (int type = 0; type < kRobotTypeCount; ++type) {
    const Triple centre = centreOfMass(robotModel(type));
    EXPECT_NEAR(centre[0], 0.0, 1e-12) << type;
    EXPECT_NEAR(centre[1], expected[type][0], 6e-5) << type;
    EXPECT_NEAR(centre[2], expected[type][1], 6e-5) << type;
  }
}

TEST(RobotModelTest, MirrorsTheRangesOfJointsThatTurnSideways) {
  struct Range {
    const char* effector;
    double low;
    double high;
  };
  const std::array<Range, 23> ranges{{
      {"he1", -120, 120}, {"he2", -45, 45},  {"rae1", -120, 120}, {"lae1", -120, 120},
      {"rae2", -95, 1},   {"lae2", -1, 95},  {"rae3", -120, 120}, {"lae3", -120, 120},
      {"rae4", -1, 90},   {"lae4", -90, 1},  {"rle1", -90, 1},    {"lle1", -90, 1},
      {"rle2", -45, 25},  {"lle2", -25, 45}, {"rle3", -25, 100},  {"lle3", -25, 100},
      {"rle4", -130, 1},  {"lle4", -130, 1}, {"rle5", -45, 75},   {"lle5", -45, 75},
      {"rle6", -25, 45},  {"lle6", -45, 25}, {"rle7", -1, 70},
  }};
  const RobotModel& model = robotModel(4);
  for (const Range& range : ranges) {
    const int index = model.jointByEffector(range.effector);
    ASSERT_GE(index, 0) << range.effector;
    EXPECT_NEAR(model.joints[index].low * 180.0 / M_PI, range.low, 1e-9) << range.effector;
    EXPECT_NEAR(model.joints[index].high * 180.0 / M_PI, range.high, 1e-9) << range.effector;
  }
}

TEST(RobotModelTest, GivesOnlyTheFastAnkleTypeOtherSpeeds) {
  for (int type = 0; type < kRobotTypeCount; ++type) {
    for (const JointSpec& joint : robotModel(type).joints) {
      double expected = 6.139545;
      if (type == 2 && joint.effector.substr(1) == "le5") expected = 8.80667;
      if (type == 2 && joint.effector.substr(1) == "le6") expected = 3.47234;
      EXPECT_NEAR(joint.maxSpeed, expected, 1e-6) << type << ' ' << joint.effector;
    }
  }
}

TEST(RobotModelTest, LevelsFootAndToeOfTheToeType) {
  const RobotModel& model = robotModel(4);
  const BodySpec& foot = model.bodies[model.indexOf(Body::LeftFoot)];
  const BodySpec& toe = model.bodies[model.indexOf(Body::LeftToe)];
  EXPECT_NEAR(foot.position[2] - foot.size[2] / 2, toe.position[2] - toe.size[2] / 2, 1e-12);
  EXPECT_NEAR(toe.position[1] - foot.position[1], 0.08, 1e-12);
  EXPECT_NEAR(foot.mass, 0.177801465, 1e-9);
  EXPECT_NEAR(toe.mass, 0.022198535, 1e-9);
}

TEST(RobotModelTest, KnowsNoToeJointsOnOtherTypes) {
  EXPECT_EQ(robotModel(0).jointByEffector("lle7"), -1);
  EXPECT_EQ(robotModel(0).jointByEffector(""), -1);
}

}  // namespace
}  // namespace arena
