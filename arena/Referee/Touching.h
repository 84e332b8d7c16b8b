#ifndef QUOLNARIS_REFEREE_TOUCHING_H_
#define QUOLNARIS_REFEREE_TOUCHING_H_

#include <Eigen/Core>
#include <span>
#include <vector>

#include "Common/Random.h"
#include "Referee/PerRobot.h"
#include "Referee/RefereeWorld.h"

namespace arena {

// Watches groups of robots that touch each other, both teams together. Contacts of feet alone do
// not make a group.
class TouchingGroups {
 public:
  struct Offence {
    RobotHandle robot = kNoRobot;
    Eigen::Vector2d groupCentre = Eigen::Vector2d::Zero();  // mean place of the group, m
  };

  // REQUIRES: called once in each cycle of play. `players` are those that take part in the rule.
  // Returns who has to leave each group of more than two: the one that joined last if its team
  // has at least as many members in the group as the other team, else the one of the other team
  // that joined last; never a goalie, but a team-mate of his. Players who joined in the same
  // cycle are ranked at random.
  std::vector<Offence> update(std::span<const RobotView> players,
                              std::span<const RobotContact> contacts, Random& random);
  void clear() { joined_.clear(); }

 private:
  PerRobot<long> joined_;  // rank of joining; 0 for a robot that touches nobody
  long lastRank_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_TOUCHING_H_
