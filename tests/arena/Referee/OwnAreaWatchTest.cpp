// Where players go who are too many in their own area.
#include "Referee/OwnAreaWatch.h"

#include <gtest/gtest.h>

namespace arena {
namespace {

TEST(OwnAreaWatchTest, NearestEdgeDecides) {
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-13.3, 0}).isApprox(Eigen::Vector2d(-12.8, 0)));
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-14, 2.8}).isApprox(Eigen::Vector2d(-14, 3.4)));
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-14, -2.8}).isApprox(Eigen::Vector2d(-14, -3.4)));
  EXPECT_TRUE(outsideOwnArea(Side::Left, {-14.9, 2}).isApprox(Eigen::Vector2d(-15.4, 2)));
  EXPECT_TRUE(outsideOwnArea(Side::Right, {13.3, 0}).isApprox(Eigen::Vector2d(12.8, 0)));
}

}  // namespace
}  // namespace arena
