#ifndef QUOLNARIS_PERCEPTS_GAMEPERCEPT_H_
#define QUOLNARIS_PERCEPTS_GAMEPERCEPT_H_

#include <string>

#include "Common/GameState.h"
#include "Common/Side.h"

namespace arena {

// A player's place in its team, as it is told once.
struct Shirt {
  Side side = Side::None;
  int number = 0;  // 1 to 11
};

// Appends the time expression; `time`: simulation time, s.
void writeTime(float time, std::string& text);

// Appends the game state expression; `shirt`: what the player is told about itself, or null.
void writeGameState(const GameState& game, const Shirt* shirt, std::string& text);

}  // namespace arena

#endif  // QUOLNARIS_PERCEPTS_GAMEPERCEPT_H_
