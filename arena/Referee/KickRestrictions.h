#ifndef QUOLNARIS_REFEREE_KICKRESTRICTIONS_H_
#define QUOLNARIS_REFEREE_KICKRESTRICTIONS_H_

#include <Eigen/Core>
#include <optional>
#include <span>

#include "Common/Side.h"
#include "Referee/BallWatch.h"

namespace arena {

// What becomes of a ball in a goal.
enum class GoalVerdict { Goal, GoalKickForDefenders, CornerForAttackers };

// What the last kick from a set play still forbids: its taker to touch the ball again, a goal
// straight from it, and a goal of the kick-off team before the ball has really been played.
class KickRestrictions {
 public:
  void clear() { *this = KickRestrictions(); }

  // A set play has been taken by this touch. An indirect kick must not go straight into the
  // opponents' goal, no kick into one's own.
  void take(const Touch& taker, bool indirect);
  // The kick-off team cannot score until an opponent has touched the ball, or one of its own
  // players while the ball was more than 2 m from the middle of the pitch.
  void limitKickOff(Side side) { kickOffSide_ = side; }

  // REQUIRES: called in every cycle of open play with the touches of the cycle and the place of
  // the ball (m, world). Returns the side of a player who has played the ball twice, if one has.
  std::optional<Side> observe(std::span<const Touch> touches, const Eigen::Vector2d& ball);

  // Judges a ball that `scorer` would get a goal for. With few agents what goes straight from a
  // kick is free.
  GoalVerdict judge(Side scorer, bool fewAgents) const;

  // Whether the side is still under the kick-off limit.
  bool kickOffLimited(Side side) const { return kickOffSide_ == side; }

 private:
  Touch taker_;  // of the last kick; nobody if no restriction of it is left
  bool indirect_ = false;
  Side kickOffSide_ = Side::None;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_KICKRESTRICTIONS_H_
