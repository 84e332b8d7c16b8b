#include "Monitor/MonitorStream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

#include "arena/Support/FakeWorld.h"
#include "arena/Support/ViewerReader.h"

namespace arena {
namespace {

SceneRobot standing(int handle, Side side, int number, int type, double x, double y) {
  SceneRobot robot;
  robot.handle = handle;
  robot.side = side;
  robot.number = number;
  robot.type = type;
  for (std::size_t i = 0; i < kBodyCount; ++i) {
    robot.bodies[i] = poseAt(x, y, 0.4 - 0.01 * static_cast<double>(i), -90);
  }
  return robot;
}

class MonitorStreamTest : public testing::Test {
 protected:
  MonitorStreamTest() {
    scene.ball = poseAt(1, 2, 0.042);
    scene.robots = {standing(5, Side::Left, 3, 0, -3, 1), standing(7, Side::Right, 11, 4, 4, -2),
                    standing(9, Side::None, 0, 2, 0, -1)};
    game.teamNames = {"Alpha", "Beta"};
    game.time = 12.34f;
  }
  std::string next() {
    const std::string message = stream.next(scene, game, wait);
    reader.read(message);
    return message;
  }
  Scene scene;
  GameState game;
  std::array<float, 2> wait = {0, 0};
  MonitorStream stream;
  ViewerReader reader;
};

TEST_F(MonitorStreamTest, FirstMessageIsFullAndBeginsWithTheEnvironment) {
  const std::string message = next();
  EXPECT_TRUE(reader.lastWasFull());
  EXPECT_EQ(
      message.substr(0, message.find("(RSG")),
      "((FieldLength 30)(FieldWidth 20)(FieldHeight 40)(GoalWidth 2.1)(GoalDepth 0.6)"
      "(GoalHeight 0.8)(BorderSize 0)(FreeKickDistance 2)(WaitBeforeKickOff 30)(AgentRadius 0.4)"
      "(BallRadius 0.042)(BallMass 0.026)(RuleGoalPauseTime 3)(RuleKickInPauseTime 1)"
      "(RuleHalfTime 300)(PassModeMinOppBallDist 1)(PassModeDuration 4)"
      "(play_modes BeforeKickOff KickOff_Left KickOff_Right PlayOn KickIn_Left KickIn_Right "
      "corner_kick_left corner_kick_right goal_kick_left goal_kick_right offside_left "
      "offside_right GameOver Goal_Left Goal_Right free_kick_left free_kick_right "
      "direct_free_kick_left direct_free_kick_right pass_left pass_right)"
      "(time 12.34)(team_left Alpha)(team_right Beta)(half 1)(score_left 0)(score_right 0)"
      "(play_mode 0))");
  EXPECT_NE(message.find("(RSG 0 1)((nd Light "), std::string::npos);
}

TEST_F(MonitorStreamTest, PartialMessageCarriesTheTimeAndWhatHasChanged) {
  next();
  std::string message = next();
  EXPECT_FALSE(reader.lastWasFull());
  EXPECT_EQ(message.substr(0, message.find("((nd")), "((time 12.34))(RDS 0 1)");
  game.mode = PlayMode::PlayOn;
  game.score = {0, 2};
  game.half = 2;
  message = next();
  EXPECT_EQ(message.substr(0, message.find("(RDS")),
            "((time 12.34)(half 2)(score_right 2)(play_mode 3))");
  message = next();
  EXPECT_EQ(message.substr(0, message.find("(RDS")), "((time 12.34))");
}

TEST_F(MonitorStreamTest, TeamNamesComeWhenTheyAreNew) {
  game.teamNames = {"", ""};
  next();
  EXPECT_FALSE(reader.lastHad("team_left"));
  game.teamNames[0] = "Alpha";
  next();
  EXPECT_TRUE(reader.lastHad("team_left"));
  EXPECT_FALSE(reader.lastHad("team_right"));
  next();
  EXPECT_FALSE(reader.lastHad("team_left"));
}

TEST_F(MonitorStreamTest, TeamNamesCannotBreakTheExpression) {
  game.teamNames = {"a (b)\"c;'\\d", "x"};
  next();
  EXPECT_EQ(reader.term("team_left"), "a__b__c___d");
}

TEST_F(MonitorStreamTest, PassLimitsAreShownDuringPlayOnAlone) {
  wait = {0, 7.5};
  game.mode = PlayMode::PlayOn;
  next();
  EXPECT_FALSE(reader.lastHad("pass_mode_score_wait_left"));
  EXPECT_EQ(reader.term("pass_mode_score_wait_right"), "7.5");
  next();
  EXPECT_TRUE(reader.lastHad("pass_mode_score_wait_right"));
  game.mode = PlayMode::PassLeft;
  next();
  EXPECT_FALSE(reader.lastHad("pass_mode_score_wait_right"));
}

TEST_F(MonitorStreamTest, FoulsGoOutOnceWithTheNextMessage) {
  next();
  const FoulEvent fouls[] = {{17, FoulType::Charging, Side::Right, 9, true},
                             {18, FoulType::SelfCollision, Side::Left, 2, true}};
  stream.noteFouls(fouls);
  const std::string message = next();
  EXPECT_NE(message.find("(foul 17 6 2 9)(foul 18 7 1 2)"), std::string::npos);
  next();
  EXPECT_TRUE(reader.fouls().empty());
}

TEST_F(MonitorStreamTest, FoulsWithoutViewersStayBounded) {
  const FoulEvent foul{1, FoulType::Charging, Side::Right, 9, true};
  for (int i = 0; i < 100000; ++i) stream.noteFouls({&foul, 1});
  next();
  EXPECT_LE(reader.fouls().size(), 256u);
}

TEST_F(MonitorStreamTest, ViewerFindsBallAndRobotsAtTheirPlaces) {
  next();
  const auto ball = reader.ball();
  ASSERT_TRUE(ball);
  EXPECT_TRUE(ball->node->visible);
  EXPECT_TRUE(ball->node->scale.isApprox(Eigen::Vector3d::Constant(0.042)));
  EXPECT_NEAR(ball->pose(0, 3), 1, 1e-5);
  EXPECT_NEAR(ball->pose(1, 3), 2, 1e-5);
  const auto left = reader.robot(true, 3);
  ASSERT_TRUE(left);
  EXPECT_EQ(left->node->file, "models/naobody0.obj");
  EXPECT_NEAR(left->pose(0, 3), -3, 1e-5);
  const auto right = reader.robot(false, 11);
  ASSERT_TRUE(right);
  EXPECT_EQ(right->node->file, "models/naobody4.obj");
  EXPECT_NE(left->branch, right->branch);
  EXPECT_FALSE(reader.robot(true, 4));
  EXPECT_FALSE(reader.robot(false, 3));
  // The front of the body mesh is its local z axis; a torso with yaw -90 faces +x.
  EXPECT_NEAR(left->pose(0, 2), 1, 1e-5);
  const auto head = reader.inBranch(left->branch, "head.obj");
  ASSERT_TRUE(head);
  EXPECT_NEAR(head->pose(0, 2), 1, 1e-5);
}

TEST_F(MonitorStreamTest, TopLevelNodesComeInTheLeaguesOrder) {
  next();
  const auto& nodes = reader.nodes();
  ASSERT_EQ(nodes.size(), 2u + 2 + 2 + 4 + 4 + 21 + 1 + 3);
  EXPECT_EQ(nodes[0].kind, "Light");
  EXPECT_EQ(nodes[1].kind, "Light");
  EXPECT_EQ(nodes[2].children[0].file, "models/naosoccerfield.obj");
  EXPECT_NE(nodes[3].children[0].file.find("skybox.obj"), std::string::npos);
  EXPECT_EQ(nodes[4].children[0].children[0].file, "models/leftsoccergoal.obj");
  EXPECT_EQ(nodes[5].children[0].children[0].file, "models/rightsoccergoal.obj");
  EXPECT_TRUE(nodes[5].children[0].children[0].transparent);
  for (std::size_t i = 6; i < 10; ++i) EXPECT_EQ(nodes[i].children[0].file, "StdUnitBox");
  for (std::size_t i = 10; i < 35; ++i) EXPECT_TRUE(nodes[i].children.empty());
  EXPECT_EQ(nodes[35].children[0].file, "models/soccerball.obj");
  // Left goal: centre (-15.3, 0, 0.4), mesh 0.3 in front of it and on the ground.
  const Eigen::Matrix4d goal = nodes[4].transform * nodes[4].children[0].transform;
  EXPECT_NEAR(goal(0, 3), -15.0, 1e-5);
  EXPECT_NEAR(goal(2, 3), 0.0, 1e-5);
  const Eigen::Matrix4d right = nodes[5].transform * nodes[5].children[0].transform;
  EXPECT_NEAR(right(0, 3), 15.0, 1e-5);
}

TEST_F(MonitorStreamTest, RobotsShowOneTransformForEachBody) {
  next();
  const auto& nodes = reader.nodes();
  EXPECT_EQ(nodes[36].children.size(), 23u);
  EXPECT_EQ(nodes[37].children.size(), 25u);  // type 4 has toes
  EXPECT_TRUE(nodes[36].transform.isIdentity());
}

TEST_F(MonitorStreamTest, MaterialsFollowTypeTeamAndNumber) {
  next();
  const auto materials = [&](std::size_t branch, const std::string& file) {
    std::string text;
    for (const std::string& material : reader.inBranch(branch, file)->node->materials) {
      text += material + " ";
    }
    return text;
  };
  const std::size_t first = reader.robot(true, 3)->branch;
  EXPECT_EQ(materials(first, "naobody0"),
            "matLeft matLeft naowhite naowhite naowhite matNum3 matType0 ");
  EXPECT_EQ(materials(first, "naohead"), "naowhite naoblack naogrey matLeft ");
  EXPECT_EQ(materials(first, "rupperarm0"), "matType0 matLeft naowhite ");
  EXPECT_EQ(materials(first, "llowerarm"), "matLeft naowhite ");
  EXPECT_EQ(materials(first, "rthigh"), "naowhite matNum3 matLeft ");
  EXPECT_EQ(materials(first, "lthigh"), "naowhite matLeft ");
  EXPECT_EQ(materials(first, "lshank0"), "matLeft naowhite matType0 ");
  EXPECT_EQ(materials(first, "rfoot"), "matLeft naowhite ");
  const std::size_t second = reader.robot(false, 11)->branch;
  EXPECT_EQ(materials(second, "naobody4"),
            "matRight matRight naowhite naowhite naowhite matNum11 matRight ");
  EXPECT_EQ(materials(second, "lupperarm4"), "matRight matRight naowhite ");
  EXPECT_EQ(materials(second, "rshank4"), "matRight naowhite matRight ");
  EXPECT_EQ(materials(second + 1, "naobody2"),
            "matTeam matTeam naowhite naowhite naowhite matNum matType2 ");
}

TEST_F(MonitorStreamTest, ScalesFollowTheType) {
  next();
  const auto scale = [&](std::size_t branch, const std::string& file) {
    return reader.inBranch(branch, file)->node->scale;
  };
  const std::size_t first = reader.robot(true, 3)->branch;
  EXPECT_TRUE(scale(first, "naobody").isApprox(Eigen::Vector3d::Constant(0.1)));
  EXPECT_TRUE(scale(first, "upperarm").isApprox(Eigen::Vector3d::Constant(0.07)));
  EXPECT_TRUE(scale(first, "lowerarm").isApprox(Eigen::Vector3d::Constant(0.05)));
  EXPECT_TRUE(scale(first, "rfoot").isApprox(Eigen::Vector3d::Constant(0.08)));
  const std::size_t second = reader.robot(false, 11)->branch;
  EXPECT_TRUE(scale(second, "rfoot").isApprox(Eigen::Vector3d(0.08, 0.0622412, 0.08)));
}

TEST_F(MonitorStreamTest, TransformsAreSentAgainAfterAChangeOfMoreThanFiveThousandths) {
  next();
  scene.ball.translation().x() += 0.004;
  next();
  EXPECT_EQ(reader.transforms(), 0);
  scene.ball.translation().x() += 0.002;  // 0.006 since it was sent
  next();
  EXPECT_EQ(reader.transforms(), 1);
  EXPECT_NEAR(reader.ball()->pose(0, 3), 1.006, 1e-5);
  scene.robots[1].pose(Body::LeftToe).translation().z() += 0.01;
  scene.robots[0].pose(Body::LeftToe).translation().z() += 0.01;  // type 0 has none
  next();
  EXPECT_EQ(reader.transforms(), 1);
}

TEST_F(MonitorStreamTest, NewRobotsTeamsAndRequestsGiveFullMessages) {
  next();
  scene.robots.push_back(standing(12, Side::None, 0, 1, 0, -1));
  next();
  EXPECT_TRUE(reader.lastWasFull());
  next();
  EXPECT_FALSE(reader.lastWasFull());
  scene.robots.back().side = Side::Left;
  scene.robots.back().number = 1;
  next();
  EXPECT_TRUE(reader.lastWasFull());
  EXPECT_TRUE(reader.robot(true, 1));
  scene.robots.erase(scene.robots.begin());
  next();
  EXPECT_TRUE(reader.lastWasFull());
  EXPECT_FALSE(reader.robot(true, 3));
  stream.requestFull();
  next();
  EXPECT_TRUE(reader.lastWasFull());
  next();
  EXPECT_FALSE(reader.lastWasFull());
}

TEST_F(MonitorStreamTest, AViewerWhoIsPassedOverIsToldLaterWhatHasChanged) {
  next();
  // What happens to the others' streams meanwhile does not count.
  MonitorStream others;
  others.next(scene, game, wait);
  scene.ball.translation().x() += 0.1;
  game.mode = PlayMode::PlayOn;
  others.next(scene, game, wait);
  others.next(scene, game, wait);
  next();
  EXPECT_FALSE(reader.lastWasFull());
  EXPECT_NEAR(reader.ball()->pose(0, 3), 1.1, 1e-5);
  EXPECT_EQ(reader.playMode(), "PlayOn");
}

TEST_F(MonitorStreamTest, AViewerIsNeverWrongByMoreThanFiveThousandths) {
  // A viewer who connects between two messages of the others, while the ball is away for a moment.
  next();
  scene.ball.translation().x() += 0.5;
  MonitorStream late;
  ViewerReader lateReader;
  lateReader.read(late.next(scene, game, wait));
  EXPECT_TRUE(lateReader.lastWasFull());
  scene.ball.translation().x() -= 0.5;
  next();
  EXPECT_EQ(reader.transforms(), 0);
  lateReader.read(late.next(scene, game, wait));
  EXPECT_FALSE(lateReader.lastWasFull());
  EXPECT_NEAR(lateReader.ball()->pose(0, 3), 1, 1e-5);
}

TEST_F(MonitorStreamTest, WholeNumbersAreWrittenInFull) {
  game.score = {1234567, 20000000};
  next();
  EXPECT_EQ(reader.term("score_left"), "1234567");
  EXPECT_EQ(reader.term("score_right"), "20000000");
}

TEST(MonitorStreamAppendNumberTest, WritesUpToSixSignificantDigits) {
  const std::pair<double, const char*> cases[] = {{0, "0"},
                                                  {1, "1"},
                                                  {-0.5, "-0.5"},
                                                  {0.042, "0.042"},
                                                  {12.3456789, "12.3457"},
                                                  {123456, "123456"},
                                                  {1234567, "1.23457e+06"},
                                                  {0.00001, "1e-05"},
                                                  {0.0001, "0.0001"}};
  for (const auto& [value, text] : cases) {
    std::string out;
    appendNumber(out, value);
    EXPECT_EQ(out, text);
  }
}

TEST(MonitorStreamAppendNumberTest, AgreesWithTheCLibraryOnManyNumbers) {
  const auto agrees = [](double value) {
    std::string out;
    appendNumber(out, value);
    char printed[32];
    std::snprintf(printed, sizeof printed, "%g", value);
    return testing::AssertionResult(out == printed) << out << " instead of " << printed;
  };
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (int i = 0; i < 40000; ++i) {
    const double value = uniform(engine) * std::pow(10.0, i % 13 - 5);
    ASSERT_TRUE(agrees(value));
    ASSERT_TRUE(agrees(static_cast<double>(static_cast<float>(value))));
    // Ties, and powers of ten from both sides.
    ASSERT_TRUE(agrees((i + 0.5) / 8));
    const double power = std::pow(10.0, i % 13 - 5);
    ASSERT_TRUE(agrees(power * (1 + uniform(engine) * std::pow(10.0, -(i % 17)))));
  }
  for (const double value : {-0.0, -1.0, 999999.0, 999999.4999, 999999.5, 1e-4, 99999.95, 2.5e-5}) {
    ASSERT_TRUE(agrees(value));
  }
}

}  // namespace
}  // namespace arena
