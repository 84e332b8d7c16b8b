// Who is to blame for a collision.
#include "Referee/Charging.h"

#include <gtest/gtest.h>

namespace arena {
namespace {

struct ChargingCase {
  const char* what;
  ChargingPlayer first, second;
  Eigen::Vector2d contact, ball;
  std::optional<int> culprit;
};

TEST(ChargingTest, JudgesByBallOpponentAndSpeed) {
  const Eigen::Vector2d far(10, 10);
  const ChargingCase cases[] = {
      {"away from the ball the faster one",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       far,
       0},
      {"the second as well", {{0, 0}, {0, 0}}, {{0.4, 0}, {-0.6, 0}}, {0.2, 0}, far, 1},
      {"too slow", {{0, 0}, {0.39, 0}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, std::nullopt},
      {"both run", {{0, 0}, {0.6, 0}}, {{0.4, 0}, {-0.6, 0}}, {0.2, 0}, far, std::nullopt},
      {"passes by", {{0, 0}, {0, 0.6}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, std::nullopt},
      // Component towards the middle of opponent and contact: 0.7 cos 75 deg = 0.181 m/s.
      {"grazes", {{0, 0}, {0.1812, 0.6761}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, std::nullopt},
      // 0.7 cos 70 deg = 0.239 m/s.
      {"hits at a flat angle", {{0, 0}, {0.2394, 0.6578}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, far, 0},
      {"contact at the ball",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.2, 0.09},
       std::nullopt},
      {"contact just off the ball, who runs past it at 45 degrees",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.12, 0.12},
       0},
      // The ball lies equally far from both, 29 and 31 degrees off the rammer's way.
      {"ball 29 degrees off",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.2, 0.1109},
       std::nullopt},
      {"ball 31 degrees off", {{0, 0}, {0.6, 0}}, {{0.4, 0}, {0, 0}}, {0.2, 0}, {0.2, 0.1202}, 0},
      // The way leads 30 degrees from the opponent and 26 degrees from the ball.
      {"goes for the ball",
       {{0, 0}, {0.5196, 0.3}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0},
       {0.2, 0.3},
       std::nullopt},
      // Nobody is suspect at first; the second is nearer to the ball and slow, the first is blamed.
      {"farther from the ball against a slow one",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0.1}},
       {0.2, 0},
       {0.9, 0},
       0},
      // The nearer one goes for the ball, 90 degrees from the opponent. The farther one, going 80
      // degrees from him, goes for it too; at 70 degrees he is taken to ram.
      {"both go for the ball",
       {{0, 0}, {0.1042, 0.5909}},
       {{0.4, 0}, {0, 0.6}},
       {0.2, 0},
       {0.4, 0.6},
       std::nullopt},
      {"one goes for the ball",
       {{0, 0}, {0.2052, 0.5638}},
       {{0.4, 0}, {0, 0.6}},
       {0.2, 0},
       {0.4, 0.6},
       0},
      {"runs away from the ball into the other",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {-0.6, 0}},
       {0.2, 0},
       {0.9, 0},
       1},
      // The nearer one runs away at 0.5 m/s (180 degrees off), the farther one rams (0 degrees).
      {"farther one rams the runner",
       {{0, 0}, {0.8, 0}},
       {{0.4, 0}, {0.5, 0}},
       {0.2, 0},
       {0.9, 0},
       0},
      {"equally far from the ball",
       {{0, 0}, {0.6, 0}},
       {{0.4, 0}, {0, 0}},
       {0.2, 0.0},
       {0.22, 0.115},
       std::nullopt},
  };
  for (const ChargingCase& c : cases) {
    EXPECT_EQ(chargingCulprit(c.first, c.second, c.contact, c.ball), c.culprit) << c.what;
    // The order of the two does not matter.
    const auto swapped = chargingCulprit(c.second, c.first, c.contact, c.ball);
    EXPECT_EQ(swapped.has_value(), c.culprit.has_value()) << c.what;
    if (swapped && c.culprit) {
      EXPECT_EQ(*swapped, 1 - *c.culprit) << c.what;
    }
  }
}

}  // namespace
}  // namespace arena
