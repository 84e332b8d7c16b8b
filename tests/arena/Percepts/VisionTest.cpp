#include "Percepts/Vision.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <regex>
#include <vector>

namespace arena {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
const std::array<std::string, 2> kNames{"Alpha", "Beta"};

// A robot whose torso and head look along +x turned by `turn` degrees to the left.
SceneRobot robotAt(double x, double y, double turn, Side side, int number) {
  SceneRobot robot;
  robot.handle = number + (side == Side::Right ? 100 : 0);
  robot.side = side;
  robot.number = number;
  const Eigen::Matrix3d rotation =
      Eigen::AngleAxisd((turn - 90.0) * kDegree, Eigen::Vector3d::UnitZ()).toRotationMatrix();
  const auto place = [&](Body body, double right, double front, double up) {
    robot.pose(body).setIdentity();
    robot.pose(body).linear() = rotation;
    robot.pose(body).translation() =
        Eigen::Vector3d(x, y, 0.385) + rotation * Eigen::Vector3d(right, front, up);
  };
  for (std::size_t i = 0; i < kBodyCount; ++i) place(static_cast<Body>(i), 0.0, 0.0, 0.0);
  place(Body::Head, 0.0, 0.0, 0.155);
  place(Body::RightLowerArm, 0.098, 0.14, 0.084);
  place(Body::LeftLowerArm, -0.098, 0.14, 0.084);
  place(Body::RightFoot, 0.055, 0.02, -0.375);
  place(Body::LeftFoot, -0.055, 0.02, -0.375);
  return robot;
}

class VisionTest : public testing::Test {
 protected:
  std::string see(bool noise = false, bool truth = false) {
    Vision vision({noise, truth}, Random(1, "camera"), Random(1, "vision"));
    std::string text;
    vision.write(scene, 0, kNames, text);
    return text;
  }
  static std::vector<std::string> all(const std::string& text, const std::string& form) {
    const std::regex regex(form);
    std::vector<std::string> found;
    for (auto it = std::sregex_iterator(text.begin(), text.end(), regex);
         it != std::sregex_iterator(); ++it) {
      found.push_back(it->str(1));
    }
    return found;
  }

  Scene scene;
};

TEST(VisionPolarTest, MeasuresAnglesFromTheOpticalAxis) {
  EXPECT_NEAR(polarOf({0.0, 2.0, 0.0}).horizontal, 0.0, 1e-12);
  EXPECT_NEAR(polarOf({-2.0, 2.0, 0.0}).horizontal, 45.0, 1e-12);  // left is positive
  EXPECT_NEAR(polarOf({2.0, 2.0, 0.0}).horizontal, -45.0, 1e-12);
  EXPECT_NEAR(polarOf({3.0, 4.0, 5.0}).vertical, 45.0, 1e-12);  // over the ground distance
  EXPECT_NEAR(polarOf({3.0, 4.0, 12.0}).distance, 13.0, 1e-12);
  EXPECT_NEAR(std::abs(polarOf({0.0, -1.0, 0.0}).horizontal), 180.0, 1e-12);
}

TEST(VisionPolarTest, IsInViewWithinSixtyDegreesAndBeyondTenCentimetres) {
  EXPECT_TRUE(inView({0.11, 60.0, -60.0}));
  EXPECT_FALSE(inView({0.10, 0.0, 0.0}));
  EXPECT_FALSE(inView({5.0, 60.01, 0.0}));
  EXPECT_FALSE(inView({5.0, 0.0, -60.01}));
  EXPECT_TRUE(inView({1000.0, 0.0, 0.0}));
}

TEST(VisionPolarTest, TellsOfAPointWhatItsAnglesTell) {
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  const auto agrees = [](const Eigen::Vector3d& point) {
    return pointInView(point) == inView(polarOf(point));
  };
  int seen = 0;
  for (int i = 0; i < 100000; ++i) {
    const Eigen::Vector3d point =
        Eigen::Vector3d(uniform(engine), uniform(engine), uniform(engine)) *
        std::pow(10.0, i % 4 - 1);
    ASSERT_TRUE(agrees(point)) << point.transpose();
    if (pointInView(point)) ++seen;
    // At the limits and by some last digits beside them.
    const double beside = 1.0 + uniform(engine) * std::pow(10.0, -(i % 16));
    const double y = std::abs(point.y());
    const double right = std::numbers::sqrt3 * y * beside;
    for (const double x : {right, -right}) {
      const double up = std::sqrt(3.0) * std::hypot(x / 2, y) * beside;
      ASSERT_TRUE(agrees({x, y, point.z()})) << point.transpose() << ' ' << beside;
      ASSERT_TRUE(agrees({x / 2, y, up})) << point.transpose() << ' ' << beside;
      ASSERT_TRUE(agrees({x / 2, y, -up})) << point.transpose() << ' ' << beside;
    }
    ASSERT_TRUE(agrees(point.normalized() * 0.1 * beside));
  }
  EXPECT_GT(seen, 10000);
  EXPECT_LT(seen, 90000);
  EXPECT_TRUE(agrees(Eigen::Vector3d::Zero()));
}

TEST_F(VisionTest, ReportsWhatIsAheadInTheFixedOrder) {
  scene.robots.push_back(robotAt(-5.0, 0.0, 0.0, Side::Left, 3));
  scene.ball.translation() = Eigen::Vector3d(0.0, 0.0, 0.042);
  const std::string text = see();
  EXPECT_EQ(text.substr(0, 5), "(See ");
  const std::vector<std::string> names =
      all(text, R"(\((G1L|G2L|G2R|G1R|F1L|F2L|F1R|F2R|B) \(pol)");
  EXPECT_EQ(names, (std::vector<std::string>{"G2R", "G1R", "F1R", "F2R", "B"}));
  EXPECT_NE(text.find("(G2R (pol 20.03 -3.01 0.74))"), std::string::npos) << text;
  EXPECT_NE(text.find("(G1R (pol 20.03 3.01 0.74))"), std::string::npos) << text;
  EXPECT_TRUE(std::regex_search(text, std::regex(R"(\(B \(pol 5\.02 -?0\.00 -5\.69\)\))"))) << text;
}

TEST_F(VisionTest, SeesItsOwnForearmsButNotItsHead) {
  scene.robots.push_back(robotAt(-5.0, 0.0, 0.0, Side::Left, 3));
  scene.ball.translation() = Eigen::Vector3d(-9.0, 0.0, 0.042);
  const std::string text = see();
  EXPECT_NE(text.find("(P (team Alpha) (id 3) (rlowerarm (pol 0.19 -34.99 -22.56)) "
                      "(llowerarm (pol 0.19 34.99 -22.56)))"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("(B "), std::string::npos);
}

TEST_F(VisionTest, ListsThePartsOfOthersThatAreInView) {
  scene.robots.push_back(robotAt(0.0, 0.0, 0.0, Side::Left, 3));
  scene.robots.push_back(robotAt(4.0, 0.5, 180.0, Side::Right, 11));
  scene.robots.push_back(robotAt(-3.0, 0.0, 0.0, Side::Left, 7));   // behind
  scene.robots.push_back(robotAt(3.0, -1.0, 0.0, Side::None, 0));   // no team yet
  scene.robots.push_back(robotAt(0.25, 0.0, 0.0, Side::Right, 2));  // feet below the window
  scene.ball.translation() = Eigen::Vector3d(-9.0, 0.0, 0.042);
  const std::string text = see();
  EXPECT_EQ(all(text, R"(\(P \(team (\w+ *\) \(id \d+)\))"),
            (std::vector<std::string>{"Alpha) (id 3", "Beta) (id 11", "Beta) (id 2"}));
  EXPECT_EQ(all(text.substr(text.find("(id 11)")), R"(\(([a-z]+) \(pol)").front(), "head");
  const std::string near = text.substr(text.find("(id 2)"), text.find("(L ") - text.find("(id 2)"));
  EXPECT_EQ(near.find("foot"), std::string::npos) << near;
}

TEST_F(VisionTest, WritesAnEmptyView) {
  // Looking straight up from beyond everything.
  SceneRobot robot = robotAt(0.0, 0.0, 0.0, Side::None, 0);
  robot.pose(Body::Head).linear() =
      Eigen::AngleAxisd(90.0 * kDegree, Eigen::Vector3d::UnitX()).toRotationMatrix();
  scene.robots.push_back(robot);
  scene.ball.translation() = Eigen::Vector3d(0.0, 0.0, 0.042);
  EXPECT_EQ(see(), "(See )");
}

TEST_F(VisionTest, AddsTheTruthBeforeTheLinesAndTurnsItForTheRightTeam) {
  scene.robots.push_back(robotAt(5.0, 2.0, 170.0, Side::Right, 4));
  scene.ball.translation() = Eigen::Vector3d(1.0, -2.0, 0.042);
  const std::string text = see(false, true);
  const std::string truth =
      "(mypos -5.00 -2.00 0.54) (myorien -10.00) (ballpos -1.00 2.00 0.04) (L ";
  EXPECT_NE(text.find(truth), std::string::npos) << text;
  EXPECT_EQ(see().find("mypos"), std::string::npos);
}

TEST_F(VisionTest, SpreadsItsReadingsAsTheLeagueDoes) {
  scene.robots.push_back(robotAt(-5.0, 0.0, 0.0, Side::Left, 3));
  scene.ball.translation() = Eigen::Vector3d(0.0, 0.0, 0.042);
  Vision vision({true, false}, Random(3, "camera"), Random(3, "vision"));
  const Eigen::Vector3d offset = vision.offset();
  EXPECT_LE(offset.cwiseAbs().maxCoeff(), 0.005);
  EXPECT_GT(offset.norm(), 0.0);
  // The flag F1R, world (15, 10, 0), seen from (-5, 0, 0.54) along +x.
  const Polar exact = polarOf(Eigen::Vector3d(-10.0, 20.0, -0.54) + offset);
  constexpr int kCount = 6000;
  Eigen::Array3d sum = Eigen::Array3d::Zero();
  Eigen::Array3d squares = Eigen::Array3d::Zero();
  const std::regex form(R"(\(F1R \(pol ([-0-9.]+) ([-0-9.]+) ([-0-9.]+)\)\))");
  for (int i = 0; i < kCount; ++i) {
    std::string text;
    vision.write(scene, 0, kNames, text);
    std::smatch match;
    ASSERT_TRUE(std::regex_search(text, match, form));
    const Eigen::Array3d error(std::stod(match[1]) / exact.distance - 1.0,
                               std::stod(match[2]) - exact.horizontal,
                               std::stod(match[3]) - exact.vertical);
    sum += error;
    squares += error * error;
  }
  const Eigen::Array3d mean = sum / kCount;
  const Eigen::Array3d sigma = (squares / kCount - mean * mean).sqrt();
  EXPECT_NEAR(mean[0], 0.0, 6e-5);
  EXPECT_NEAR(mean[1], 0.0, 0.008);
  EXPECT_NEAR(mean[2], 0.0, 0.007);
  EXPECT_NEAR(sigma[0], 0.000965, 6e-5);
  EXPECT_NEAR(sigma[1], 0.1480, 0.006);
  EXPECT_NEAR(sigma[2], 0.1225, 0.005);
}

// ----------------------------------------------------------------------------------------- lines

TEST(VisionClippingTest, KeepsALineBetweenTwoVisibleEnds) {
  const auto piece = clipLine({-1.0, 3.0, -0.5}, {1.0, 3.0, -0.5});
  ASSERT_TRUE(piece);
  EXPECT_EQ(piece->first, Eigen::Vector3d(-1.0, 3.0, -0.5));
  EXPECT_EQ(piece->second, Eigen::Vector3d(1.0, 3.0, -0.5));
}

TEST(VisionClippingTest, CutsAtTheSideAndKeepsTheOrderOfTheEnds) {
  const auto right = clipLine({0.0, 3.0, -0.5}, {20.0, 3.0, -0.5});
  ASSERT_TRUE(right);
  EXPECT_EQ(right->first, Eigen::Vector3d(0.0, 3.0, -0.5));
  EXPECT_NEAR(polarOf(right->second).horizontal, -60.0, 1e-3);
  const auto reverse = clipLine({20.0, 3.0, -0.5}, {0.0, 3.0, -0.5});
  ASSERT_TRUE(reverse);
  EXPECT_NEAR(polarOf(reverse->first).horizontal, -60.0, 1e-3);
  EXPECT_EQ(reverse->second, Eigen::Vector3d(0.0, 3.0, -0.5));
}

TEST(VisionClippingTest, ReportsTheLeftOfTwoSideCutsFirst) {
  for (const double sign : {1.0, -1.0}) {
    const auto piece = clipLine({-20.0 * sign, 3.0, -0.5}, {20.0 * sign, 3.0, -0.5});
    ASSERT_TRUE(piece);
    EXPECT_NEAR(polarOf(piece->first).horizontal, 60.0, 1e-3);
    EXPECT_NEAR(polarOf(piece->second).horizontal, -60.0, 1e-3);
  }
}

TEST(VisionClippingTest, DropsWhatLiesOutside) {
  EXPECT_FALSE(clipLine({-1.0, -3.0, -0.5}, {1.0, -3.0, -0.5}));
  EXPECT_FALSE(clipLine({9.0, 3.0, -0.5}, {20.0, 3.0, -0.5}));
}

TEST(VisionClippingTest, DropsAPieceThatLeavesThroughTheNearPlaneAlone) {
  EXPECT_FALSE(clipLine({0.0, 3.0, 0.0}, {0.0, -3.0, 0.0}));
}

// In the league's recordings about as many are missing, near ones and far ones alike.
TEST(VisionClippingTest, LosesOneInFiveCutsAtTopAndBottomAndNoneAtTheSides) {
  for (const double scale : {0.3, 3.0, 12.0}) {
    for (const double up : {1.0, -1.0}) {
      Random random(5, "lines");
      constexpr int kLines = 4000;
      int lost = 0;
      for (int i = 0; i < kLines; ++i) {
        const auto place = [&](double y, double height) -> Eigen::Vector3d {
          return Eigen::Vector3d(random.uniform(-0.5, 0.5), y * random.uniform(1.0, 2.0),
                                 up * height * random.uniform(1.0, 2.0)) *
                 scale;
        };
        const Eigen::Vector3d inside = place(2.0, 0.1);
        const Eigen::Vector3d outside = place(0.6, 4.0);
        if (!clipLine(inside, outside)) ++lost;
        const Eigen::Vector3d beside = inside + Eigen::Vector3d(20.0 * scale, 0.0, 0.0);
        EXPECT_TRUE(clipLine(inside, beside));
      }
      EXPECT_NEAR(static_cast<double>(lost) / kLines, 0.2, 0.04) << scale << ' ' << up;
    }
  }
}

}  // namespace
}  // namespace arena
