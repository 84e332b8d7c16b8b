#ifndef QUOLNARIS_REFEREE_EVENTS_H_
#define QUOLNARIS_REFEREE_EVENTS_H_

#include "Common/Side.h"
#include "Referee/RefereeWorld.h"

namespace arena {

// What the referee has whistled in one cycle, for monitors, recordings and reports.

// The values are the types in the monitor stream.
enum class FoulType {
  Crowding,
  Touching,
  IllegalDefence,
  IllegalAttack,
  Incapable,
  KickOff,
  Charging,
  SelfCollision,
};

struct FoulEvent {
  int index = 0;  // running number since the start of the game
  FoulType type = FoulType::Touching;
  Side side = Side::None;
  int number = 0;
  // False for the entries that follow the first one in each cycle in which a player is lifted.
  bool first = true;
};

struct GoalEvent {
  Side side = Side::None;        // who gets the goal
  float time = 0;                // game time, s
  Side scorerSide = Side::None;  // the last toucher; None if nobody had touched the ball
  int scorer = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_EVENTS_H_
