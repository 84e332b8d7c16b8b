#include "Referee/Charging.h"

#include <array>
#include <cmath>

#include "Referee/Rules.h"

namespace arena {

namespace {

// Unsigned angle between two directions, degrees; 0 if one of them has no length.
double angleBetween(const Eigen::Vector2d& a, const Eigen::Vector2d& b) {
  const double cross = a.x() * b.y() - a.y() * b.x();
  return std::abs(std::atan2(cross, a.dot(b))) * kDegreesPerRadian;
}

}  // namespace

std::optional<int> chargingCulprit(const ChargingPlayer& first, const ChargingPlayer& second,
                                   const Eigen::Vector2d& contact, const Eigen::Vector2d& ball) {
  if ((contact - ball).norm() < kChargingBallContact) return std::nullopt;

  const std::array<const ChargingPlayer*, 2> players = {&first, &second};
  std::array<double, 2> speed;
  std::array<double, 2> ballDistance;
  std::array<double, 2> toOpponent;  // angle of the velocity, degrees
  std::array<double, 2> toBall;      // the same
  std::array<bool, 2> suspect;
  for (std::size_t i = 0; i < 2; ++i) {
    const ChargingPlayer& player = *players[i];
    speed[i] = player.velocity.norm();
    ballDistance[i] = (ball - player.place).norm();
    toOpponent[i] = angleBetween(player.velocity, players[1 - i]->place - player.place);
    toBall[i] = angleBetween(player.velocity, ball - player.place);
  }

  const bool ballNear =
      ballDistance[0] <= kChargingBallDistance || ballDistance[1] <= kChargingBallDistance;
  for (std::size_t i = 0; i < 2; ++i) {
    suspect[i] = !ballNear || (toBall[i] >= toOpponent[i] && toBall[i] >= kChargingBallAngle &&
                               speed[i] >= kChargingSpeed);
  }
  if (!suspect[0] && !suspect[1] &&
      std::abs(ballDistance[0] - ballDistance[1]) > kChargingDistanceMargin) {
    const std::size_t farther = ballDistance[0] > ballDistance[1] ? 0 : 1;
    suspect[farther] = std::abs(toOpponent[0] - toOpponent[1]) > kChargingAngleMargin ||
                       speed[1 - farther] < kChargingSpeed;
  }

  for (std::size_t i = 0; i < 2; ++i) {
    const Eigen::Vector2d target = (players[1 - i]->place + contact) / 2;
    const Eigen::Vector2d way = target - players[i]->place;
    const double impact = way.norm() > 0 ? players[i]->velocity.dot(way.normalized()) : 0.0;
    suspect[i] = suspect[i] && speed[i] >= kChargingSpeed && impact >= kChargingImpactSpeed;
  }
  if (suspect[0] == suspect[1]) return std::nullopt;
  return suspect[0] ? 0 : 1;
}

}  // namespace arena
