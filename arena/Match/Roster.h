#ifndef QUOLNARIS_MATCH_ROSTER_H_
#define QUOLNARIS_MATCH_ROSTER_H_

#include <Eigen/Core>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "Common/Side.h"
#include "Physics/RobotModel.h"

namespace arena {

// Who plays where: team names, uniform numbers and robot types, and the place beside which each new
// player starts.
class Roster {
 public:
  static constexpr int kMaxNumber = 11;
  static constexpr int kMaxOfOneType = 7;
  static constexpr int kMaxOfTwoTypes = 9;
  static constexpr int kMinTypes = 3;
  static constexpr std::size_t kMaxNameLength = 64;

  Roster();

  struct Player {
    Side side = Side::None;
    int number = 0;
    Eigen::Vector2d start = Eigen::Vector2d::Zero();  // m, world
  };

  // Takes in a player. The first team name seen plays left, the second right. Number 0 asks for the
  // lowest free one. `type`: 0 to 4. Refused (nullopt): a name that cannot be printed in a percept,
  // a third team, a number out of range or in use, and a robot type too many; the latter leaves the
  // number marked as used.
  std::optional<Player> admit(std::string_view team, int number, int type);
  // Frees the number and the type of a player that was admitted.
  void release(Side side, int number, int type);

  // Each team with all that is its own now plays on the other side. New players start on the side
  // where their team then plays.
  void changeSides();

  // Empty until the team's first player.
  const std::string& teamName(Side side) const { return teams_[index(side)].name; }

 private:
  struct Team {
    std::string name;
    std::array<bool, kMaxNumber + 1> used{};    // by number
    std::array<int, kRobotTypeCount> ofType{};  // players by robot type
    Eigen::Vector2d nextStart = Eigen::Vector2d::Zero();

    int players() const;
    bool mayAdd(int type) const;
    Eigen::Vector2d takeStart();
  };

  Team* teamOf(std::string_view name);

  std::array<Team, 2> teams_{};
};

}  // namespace arena

#endif  // QUOLNARIS_MATCH_ROSTER_H_
