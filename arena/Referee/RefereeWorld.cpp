#include "Referee/RefereeWorld.h"

namespace arena {

const RobotView* RefereeWorld::find(RobotHandle robot) const {
  for (const RobotView& view : robots()) {
    if (view.handle == robot) return &view;
  }
  return nullptr;
}

const RobotView* RefereeWorld::find(Side side, int number) const {
  for (const RobotView& view : robots()) {
    if (view.side == side && view.number == number) return &view;
  }
  return nullptr;
}

}  // namespace arena
