#ifndef QUOLNARIS_COMMON_GAMESTATE_H_
#define QUOLNARIS_COMMON_GAMESTATE_H_

#include <array>
#include <string>

#include "Common/PlayMode.h"
#include "Common/Side.h"

namespace arena {

// What everybody may know of the game: percepts, monitors and recordings print it.
struct GameState {
  PlayMode mode = PlayMode::BeforeKickOff;
  // Seconds. A single-precision sum of 0.02 like the league's: it lags by 0.006 s after 300 s, and
  // every limit in the rules is compared with it.
  float time = 0;
  float modeStart = 0;                   // game time at which the mode was entered
  int half = 1;                          // 1 or 2
  bool sidesChanged = false;             // whether each team plays on the other's first side
  std::array<int, 2> score = {0, 0};     // by Side
  std::array<std::string, 2> teamNames;  // by Side; empty until the first init of the team

  float modeAge() const { return time - modeStart; }
};

}  // namespace arena

#endif  // QUOLNARIS_COMMON_GAMESTATE_H_
