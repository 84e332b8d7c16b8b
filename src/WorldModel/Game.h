#ifndef QUOLNARIS_WORLDMODEL_GAME_H_
#define QUOLNARIS_WORLDMODEL_GAME_H_

#include "Mathematics/Vector.h"

// The numbers of the game that many rooms go by.

inline constexpr int kTeams = 2;
inline constexpr int kPlayers = 11;  // of a team
inline constexpr int kFlags = 8;     // landmarks: four corner flags, four goal posts

// The pitch, metres. A whole number, so that sums with it stay in the precision of the other part.
inline constexpr int kHalfLength = 15;

// The middles of the goals, pitch frame; the same on both sides of the game.
inline constexpr Vector kOtherGoal(kHalfLength, 0, 0);
inline constexpr Vector kOwnGoal(-kHalfLength, 0, 0);

inline constexpr int kCyclesPerSecond = 50;
inline constexpr float kCycle = 1.0f / kCyclesPerSecond;  // seconds

// The game time, in seconds, of the last sighting of what has not been seen yet.
inline constexpr int kNeverSeen = -1000;

#endif  // QUOLNARIS_WORLDMODEL_GAME_H_
