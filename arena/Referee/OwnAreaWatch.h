#ifndef QUOLNARIS_REFEREE_OWNAREAWATCH_H_
#define QUOLNARIS_REFEREE_OWNAREAWATCH_H_

#include <Eigen/Core>
#include <span>

#include "Referee/PerRobot.h"
#include "Referee/RefereeWorld.h"

namespace arena {

// Watches in which order the players of a team entered their own penalty area.
class OwnAreaWatch {
 public:
  // REQUIRES: called once in each cycle of play. Players who enter in the same cycle rank in the
  // order given.
  void update(std::span<const RobotView> players);
  // Who of the side is one too many in its area: the field player that entered last or, if the
  // goalie did, the field player farthest from the middle of the goal. kNoRobot if there are not
  // too many.
  RobotHandle offender(Side side, std::span<const RobotView> players) const;
  void clear() { entered_.clear(); }

 private:
  PerRobot<long> entered_;  // rank of entering; 0 for a player outside
  long lastRank_ = 0;
};

// The place 0.4 m outside the nearest edge of the side's penalty area.
Eigen::Vector2d outsideOwnArea(Side side, const Eigen::Vector2d& place);

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_OWNAREAWATCH_H_
