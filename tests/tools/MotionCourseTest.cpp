// A row of points that a robot walks to.
#include "MotionCourse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr MotionPoint kStart = {-8, 0, 0};

// A robot that goes straight to each point at 1 m/s; counts the cycles in which it stops.
int walk(MotionCourse& course, int most = 100000) {
  MotionPoint at = kStart;
  int stops = 0;
  for (int i = 0; i < most && !course.done(); ++i) {
    if (course.stops()) {
      ++stops;
    } else {
      const double dx = course.target().x - at.x;
      const double dy = course.target().y - at.y;
      const double away = std::hypot(dx, dy);
      at.x += 0.02 * dx / away;
      at.y += 0.02 * dy / away;
    }
    course.observe(at, 0);
  }
  return stops;
}

double length(const MotionCourse& course) {
  double sum = 0;
  MotionPoint from = kStart;
  for (const MotionPoint& p : course.points()) {
    sum += std::hypot(p.x - from.x, p.y - from.y);
    from = p;
  }
  return sum;
}

TEST(MotionCourseTest, EverySeedDrawsItsOwnPointsOnThePitch) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    const MotionCourse course(seed, kStart, {});
    EXPECT_EQ(course.points().size(), 9U);
    MotionPoint from = kStart;
    for (const MotionPoint& p : course.points()) {
      EXPECT_LE(std::abs(p.x), 15) << seed;
      EXPECT_LE(std::abs(p.y), 10) << seed;
      const double leg = std::hypot(p.x - from.x, p.y - from.y);
      EXPECT_GE(leg, 1.49);
      EXPECT_LE(leg, 4.01);
      from = p;
    }
  }
  EXPECT_NE(MotionCourse(1, kStart, {}).points()[0].x, MotionCourse(2, kStart, {}).points()[0].x);
  EXPECT_EQ(MotionCourse(1, kStart, {}).points()[8].x, MotionCourse(1, kStart, {}).points()[8].x);
}

TEST(MotionCourseTest, AStraightWalkerReachesAllAndStopsAtEverySecond) {
  MotionCourse course(7, kStart, {});
  EXPECT_EQ(walk(course), 4 * MotionCourse::kStop);
  const CourseSummary sum = course.summary();
  EXPECT_EQ(sum.points, 9);
  EXPECT_NEAR(sum.metres, length(course), 1e-6);
  EXPECT_LT(sum.way, sum.metres);  // it cuts the corners
  EXPECT_NEAR(sum.seconds, sum.way + 4 * MotionCourse::kStop * 0.02, 2);
}

TEST(MotionCourseTest, WithoutStopsItIsWalkedInOneGo) {
  MotionCourse course(7, kStart, {.stops = false});
  EXPECT_EQ(walk(course), 0);
  EXPECT_EQ(course.summary().points, 9);
}

TEST(MotionCourseTest, APointIsReachedFromWithinTheReach) {
  const MotionCourse::Rules rules = {.reach = 0.15, .stops = false};
  MotionCourse course(7, kStart, rules);
  const MotionPoint first = course.points()[0];
  course.observe({first.x + 0.16, first.y, 0}, 0);
  EXPECT_EQ(course.summary().points, 0);
  course.observe({first.x, first.y - 0.14, 0}, 0);
  EXPECT_EQ(course.summary().points, 1);
}

TEST(MotionCourseTest, APartOfALegCounts) {
  MotionCourse course(7, kStart, {});
  walk(course, 40);
  EXPECT_EQ(course.summary().points, 0);
  EXPECT_NEAR(course.summary().metres, 0.8, 0.01);
}

TEST(MotionCourseTest, FallsAreToldByWhatTheRobotDid) {
  MotionCourse course(7, kStart, {});
  const auto fall = [&course](const MotionPoint& at) {
    course.observe(at, 80);
    course.observe(at, 0);
  };
  const MotionPoint start = kStart;
  course.observe(start, 0);
  fall(start);  // has just begun
  for (int i = 0; i <= MotionCourse::kStart; ++i) course.observe(start, 0);
  fall(start);  // well under way
  for (const std::size_t point : {0, 1}) course.observe(course.points()[point], 0);
  ASSERT_TRUE(course.stops());
  fall(course.points()[1]);
  const CourseSummary sum = course.summary();
  EXPECT_EQ(sum.fallsStarting, 1);
  EXPECT_EQ(sum.fallsWalking, 1);
  EXPECT_EQ(sum.fallsStopping, 1);
}

TEST(MotionCourseTest, TheLineHasAValueForEachColumn) {
  const std::string header = courseHeader();
  const std::string line = courseLine(2, 5, CourseSummary{});
  EXPECT_EQ(std::count(header.begin(), header.end(), ','),
            std::count(line.begin(), line.end(), ','));
}

}  // namespace
