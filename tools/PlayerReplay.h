#ifndef QUOLNARIS_TOOLS_PLAYERREPLAY_H_
#define QUOLNARIS_TOOLS_PLAYERREPLAY_H_

#include <functional>
#include <string>
#include <vector>

#include "Agent/OurPlayer.h"

// Who a recorded player was, as its first two messages tell it.
struct PlayerIdentity {
  std::string team;
  int number = 0;  // 1 to 11
  int type = 0;    // 0 to 4
};

// Reads it from what the player answered. Throws std::runtime_error if that is no player's talk.
PlayerIdentity identityOf(const std::vector<std::string>& answers);

// Plays recorded frames to the player's own code once more, in this process, and collects its
// answers: the player is deterministic, so that they come out as they were.
//
// REQUIRES: at most one in a process, since the player's code holds state for one player alone; the
// working directory holds Configs/. Throws std::runtime_error if no link can be made.
//
// `watch` is called after each frame that the player has taken in, with the frame's number from 0;
// `decided` tells whether it was a cycle of play (the frames of the handshake, and those which a
// decision takes in by itself, are not).
struct Replayed {
  std::size_t frame = 0;
  bool decided = false;
};
using ReplayWatch = std::function<void(OurPlayer& player, const Replayed& state)>;

std::vector<std::string> replayPlayer(const PlayerIdentity& identity,
                                      const std::vector<std::string>& frames,
                                      const ReplayWatch& watch);

// The number of the first answer that differs; that of the last + 1 if none does. Answers to frames
// beyond the record are not compared.
std::size_t firstDifference(const std::vector<std::string>& recorded,
                            const std::vector<std::string>& replayed);

#endif  // QUOLNARIS_TOOLS_PLAYERREPLAY_H_
