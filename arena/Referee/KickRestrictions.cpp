#include "Referee/KickRestrictions.h"

#include "Referee/Rules.h"

namespace arena {

void KickRestrictions::take(const Touch& taker, bool indirect) {
  taker_ = taker;
  indirect_ = indirect;
}

std::optional<Side> KickRestrictions::observe(std::span<const Touch> touches,
                                              const Eigen::Vector2d& ball) {
  bool takerAgain = false;
  bool another = false;
  for (const Touch& touch : touches) {
    if (kickOffSide_ != Side::None &&
        (touch.side != kickOffSide_ || ball.norm() > kFreeKickDistance)) {
      kickOffSide_ = Side::None;
    }
    if (touch.robot != taker_.robot) {
      another = true;
    } else if (touch.time - taker_.time > kKickContact) {
      takerAgain = true;
    }
  }
  if (taker_.robot == kNoRobot) return std::nullopt;
  const Side offender = taker_.side;
  // If somebody else touches in the same cycle, the kick has been played on.
  if (another || takerAgain) taker_ = Touch();
  if (takerAgain && !another) return offender;
  return std::nullopt;
}

GoalVerdict KickRestrictions::judge(Side scorer, bool fewAgents) const {
  if (kickOffSide_ == scorer) return GoalVerdict::GoalKickForDefenders;
  if (fewAgents || taker_.robot == kNoRobot) return GoalVerdict::Goal;
  if (taker_.side != scorer) return GoalVerdict::CornerForAttackers;
  return indirect_ ? GoalVerdict::GoalKickForDefenders : GoalVerdict::Goal;
}

}  // namespace arena
