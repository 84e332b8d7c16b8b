#ifndef QUOLNARIS_REFEREE_CHARGING_H_
#define QUOLNARIS_REFEREE_CHARGING_H_

#include <Eigen/Core>
#include <optional>

namespace arena {

// One of two opponents in contact. All quantities horizontal, world frame.
struct ChargingPlayer {
  Eigen::Vector2d place = Eigen::Vector2d::Zero();     // of the torso, m
  Eigen::Vector2d velocity = Eigen::Vector2d::Zero();  // mean of the last three steps, m/s
};

// Which of the two runs into the other: 0 first, 1 second, none if neither can be blamed.
// `contact`: mean of their contact points; `ball`: centre of the ball; both m, world.
std::optional<int> chargingCulprit(const ChargingPlayer& first, const ChargingPlayer& second,
                                   const Eigen::Vector2d& contact, const Eigen::Vector2d& ball);

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_CHARGING_H_
