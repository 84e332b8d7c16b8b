#include "MotionRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "MotionPicture.h"

namespace {

constexpr double kPi = 3.141592653589793;

// A robot that goes `forward` m/s ahead, `left` m/s aside and turns `rate` deg/s, from a heading.
std::vector<MotionSample> steady(int cycles, double heading, double forward, double left,
                                 double rate) {
  std::vector<MotionSample> samples;
  MotionSample s;
  s.heading = heading;
  for (int cycle = 0; cycle <= cycles; ++cycle) {
    s.cycle = cycle;
    samples.push_back(s);
    const double middle = (s.heading + rate * 0.01) * kPi / 180;
    s.torso.x += 0.02 * (forward * std::cos(middle) - left * std::sin(middle));
    s.torso.y += 0.02 * (forward * std::sin(middle) + left * std::cos(middle));
    s.heading = wrapDegrees(s.heading + rate * 0.02);
  }
  return samples;
}

TEST(MotionRecordTest, NothingRecordedSumsUpToNothing) {
  const MotionSummary s = summarize({}, 0);
  EXPECT_EQ(s.seconds, 0);
  EXPECT_EQ(s.cyclesToEnd, -1);
  EXPECT_EQ(s.firstFall, -1);
}

TEST(MotionRecordTest, ASteadyWalk) {
  const MotionSummary s = summarize(steady(200, 90, 0.5, -0.1, 0), 50);
  EXPECT_DOUBLE_EQ(s.seconds, 4);
  EXPECT_NEAR(s.forward, 2, 1e-9);
  EXPECT_NEAR(s.left, -0.4, 1e-9);
  EXPECT_NEAR(s.distance, std::hypot(2, 0.4), 1e-9);
  EXPECT_NEAR(s.forwardSpeed, 0.5, 1e-9);
  EXPECT_NEAR(s.leftSpeed, -0.1, 1e-9);
  EXPECT_NEAR(s.turnRate, 0, 1e-9);
  EXPECT_EQ(s.falls, 0);
}

TEST(MotionRecordTest, SpeedsFollowTheBodyThroughACurveAndCountWholeTurns) {
  const MotionSummary s = summarize(steady(500, 0, 0.6, 0.05, 90), 0);
  EXPECT_NEAR(s.forwardSpeed, 0.6, 1e-9);
  EXPECT_NEAR(s.leftSpeed, 0.05, 1e-9);
  EXPECT_NEAR(s.turned, 900, 1e-6);
  EXPECT_NEAR(s.turnRate, 90, 1e-9);
}

TEST(MotionRecordTest, TheLeadIsLeftOutOfTheSpeeds) {
  std::vector<MotionSample> samples = steady(50, 0, 0, 0, 0);
  for (MotionSample s : steady(50, 0, 0.4, 0, 0)) {
    s.cycle += 51;
    samples.push_back(s);
  }
  EXPECT_NEAR(summarize(samples, 51).forwardSpeed, 0.4, 1e-9);
  EXPECT_LT(summarize(samples, 0).forwardSpeed, 0.21);
}

TEST(MotionRecordTest, FallsAreCountedWithAGapBetweenLyingAndUpright) {
  std::vector<MotionSample> samples = steady(10, 0, 0, 0, 0);
  const double tilts[] = {0, 50, 61, 90, 50, 70, 29, 61, 20, 60, 40};
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i].tilt = tilts[i];
  const MotionSummary s = summarize(samples, 0);
  EXPECT_EQ(s.falls, 2);  // 50 and 70 after the first one are still the same fall; 60 is none
  EXPECT_EQ(s.firstFall, 2);
  EXPECT_EQ(s.endTilt, 40);
}

TEST(MotionRecordTest, WhoeverLiesAtTheStartHasNotFallen) {
  std::vector<MotionSample> samples = steady(3, 0, 0, 0, 0);
  samples[0].tilt = samples[1].tilt = 90;
  EXPECT_EQ(summarize(samples, 0).falls, 0);
}

TEST(MotionRecordTest, SpeedsEndWithTheFirstFallAndWithTheEndOfTheMotion) {
  std::vector<MotionSample> walk = steady(100, 0, 0.5, 0, 0);
  for (std::size_t i = 61; i < walk.size(); ++i) {
    walk[i].torso.x = walk[60].torso.x;  // lies still
    walk[i].tilt = 90;
  }
  EXPECT_NEAR(summarize(walk, 0).forwardSpeed, 0.5 * 60 / 61, 1e-9);

  std::vector<MotionSample> turn = steady(100, 0, 0, 0, 60);
  for (std::size_t i = 50; i < turn.size(); ++i) {
    turn[i].heading = turn[50].heading;
    turn[i].ended = true;
  }
  const MotionSummary s = summarize(turn, 0);
  EXPECT_EQ(s.cyclesToEnd, 50);
  EXPECT_NEAR(s.turnRate, 60, 1e-9);
}

TEST(MotionRecordTest, ResultsAreCounted) {
  std::vector<MotionSample> samples = steady(10, 0, 0, 0, 0);
  samples[3].result = samples[7].result = true;
  EXPECT_EQ(summarize(samples, 0).results, 2);
}

TEST(MotionRecordTest, TheBallsWayIsToldAgainstTheHeading) {
  std::vector<MotionSample> samples = steady(3, 90, 0, 0, 0);
  samples[1].ball = MotionPoint{1, 1, 0};
  samples[2].ball = MotionPoint{1, 3, 0};
  MotionSummary s = summarize(samples, 0);
  EXPECT_NEAR(s.ballDistance, 2, 1e-9);
  EXPECT_NEAR(s.ballDirection, 0, 1e-9);
  samples[2].ball = MotionPoint{-1, 1, 0};
  s = summarize(samples, 0);
  EXPECT_NEAR(s.ballDirection, 90, 1e-9);
  samples[2].ball = MotionPoint{1.01, 1, 0};
  EXPECT_EQ(summarize(samples, 0).ballDirection, 0);
}

TEST(MotionRecordTest, AnglesAreWrapped) {
  EXPECT_DOUBLE_EQ(wrapDegrees(190), -170);
  EXPECT_DOUBLE_EQ(wrapDegrees(-350), 10);
  EXPECT_DOUBLE_EQ(wrapDegrees(720), 0);
}

TEST(MotionRecordTest, OrientationFollowsTheTurningRates) {
  TorsoOrientation torso;
  torso.setUpright(30);
  EXPECT_DOUBLE_EQ(torso.heading(), 30);
  for (int i = 0; i < 50; ++i) torso.turn(0, 0, 60);  // a second to the left
  EXPECT_NEAR(torso.heading(), 90, 1e-9);
  EXPECT_NEAR(torso.tilt(), 0, 1e-5);
  for (int i = 0; i < 50; ++i) torso.turn(0, 50, 0);  // leans forward
  EXPECT_NEAR(torso.tilt(), 50, 1e-9);
  EXPECT_NEAR(torso.heading(), 90, 1e-9);
  const MotionPoint up = torso.toUpright({0, 0, 1});
  EXPECT_NEAR(up.x, std::sin(50 * kPi / 180), 1e-9);
  EXPECT_NEAR(up.y, 0, 1e-9);
  EXPECT_NEAR(up.z, std::cos(50 * kPi / 180), 1e-9);
  const MotionPoint pitch = torso.toPitch({0, 0, 1});
  EXPECT_NEAR(pitch.y, std::sin(50 * kPi / 180), 1e-9);
  EXPECT_NEAR(pitch.x, 0, 1e-9);
}

TEST(MotionRecordTest, ARobotThatLiesKeepsItsHeading) {
  TorsoOrientation torso;
  torso.setUpright(20);
  for (int i = 0; i < 50; ++i) torso.turn(0, 120, 0);  // on to its face and beyond
  EXPECT_NEAR(torso.tilt(), 120, 1e-9);
  EXPECT_NEAR(torso.heading(), 20, 1e-9);
  for (int i = 0; i < 50; ++i) torso.turn(0, -120, 0);
  EXPECT_NEAR(torso.tilt(), 0, 1e-5);
  EXPECT_NEAR(torso.heading(), 20, 1e-9);
}

TEST(MotionRecordTest, TermsAreReadFromAMessage) {
  const std::string message = "(See (mypos -1.50 2 0.53) (myorien -12.25) (B (pol 1 2 3)))";
  const auto place = readTerm(message, "mypos", 3);
  ASSERT_TRUE(place);
  EXPECT_EQ(*place, (std::vector<double>{-1.5, 2, 0.53}));
  EXPECT_EQ(readTerm(message, "myorien", 1)->front(), -12.25);
  EXPECT_FALSE(readTerm(message, "ballpos", 3));
  EXPECT_FALSE(readTerm(message, "myorien", 2));
  EXPECT_FALSE(readTerm("(mypos ", "mypos", 1));
}

TEST(MotionRecordTest, TraceHasALineForEachSample) {
  std::vector<MotionSample> samples = steady(1, 10, 1, 0, 0);
  samples[1].ball = MotionPoint{1, 2, 0.5};
  samples[1].result = true;
  EXPECT_EQ(traceCsv(samples),
            "cycle,x,y,z,heading,tilt,result,ended,ball_x,ball_y,ball_z\n"
            "0,0.0000,0.0000,0.0000,10.00,0.00,0,0,,,\n"
            "1,0.0197,0.0035,0.0000,10.00,0.00,1,0,1.000,2.000,0.500\n");
}

TEST(MotionRecordTest, SummaryLineHasAValueForEachColumn) {
  const auto commas = [](const std::string& text) {
    return std::count(text.begin(), text.end(), ',');
  };
  const std::string line = summaryLine("omni", 2, 5, true, summarize(steady(9, 0, 1, 0, 0), 0));
  EXPECT_EQ(commas(line), commas(summaryHeader()));
  EXPECT_EQ(line.substr(0, 15), "omni,2,5,truth,");
}

TEST(MotionPictureTest, DrawsAFigureForEachSampleThatHasOne) {
  std::vector<MotionSample> samples = steady(60, 0, 0.5, 0, 0);
  const std::string without = motionPicture(samples, "walk", "");
  samples[0].figure = StickFigure();
  samples[20].figure = StickFigure();
  const std::string with = motionPicture(samples, "walk", "");
  EXPECT_EQ(without.find("0.40 s"), std::string::npos);
  EXPECT_NE(with.find("0.00 s"), std::string::npos);
  EXPECT_NE(with.find("0.40 s"), std::string::npos);
  EXPECT_EQ(with.find("0.60 s"), std::string::npos);
  EXPECT_EQ(with.find("nan"), std::string::npos);
  EXPECT_EQ(with.substr(with.size() - 7), "</svg>\n");
}

TEST(MotionPictureTest, DrawsNothingFromNothing) {
  EXPECT_NE(motionPicture({}, "none", "").find("</svg>"), std::string::npos);
}

}  // namespace
