#ifndef QUOLNARIS_MONITOR_MONITORSTREAM_H_
#define QUOLNARIS_MONITOR_MONITORSTREAM_H_

#include <array>
#include <span>
#include <string>
#include <vector>

#include "Common/Events.h"
#include "Common/GameState.h"
#include "Common/Scene.h"
#include "Monitor/SceneGraph.h"
#include "Referee/Rules.h"

namespace arena {

// Writes the messages that one of the league's viewers reads: environment and game state, the head
// (RSG 0 1) or (RDS 0 1), and the scene graph.
//
// A full message describes everything. A partial one repeats the tree with what has changed since
// the last message of the stream; viewers match its nodes by their position. So every viewer needs
// a stream of its own: what has changed depends on the cycles whose messages he was sent.
class MonitorStream {
 public:
  // Every second cycle a message goes out.
  static constexpr int kCyclesPerMessage = 2;

  explicit MonitorStream(float halfTime = kHalfTime) : halfTime_(halfTime) {}

  // Takes note of what was whistled in a cycle; it goes out with the next message.
  void noteFouls(std::span<const FoulEvent> fouls);
  // The next message of the stream will be a full one.
  void requestFull() { fullRequested_ = true; }

  // The next message: full if it is the first one or was requested, or if robots have come, gone,
  // been given a team or changed sides since the last full one. `passWait`: seconds for which each
  // side (left, right) cannot score after its pass mode.
  std::string next(const Scene& scene, const GameState& game, std::array<float, 2> passWait);

 private:
  // What identifies a robot's part of the tree.
  struct RobotKey {
    int handle;
    Side side;
    int number;
    int type;
    bool operator==(const RobotKey&) const = default;
  };
  static std::vector<RobotKey> keysOf(const Scene& scene);

  float halfTime_;
  bool fullRequested_ = true;
  std::vector<RobotKey> keys_;  // of the last full message
  SceneGraph graph_;            // the same
  GameState sent_;              // state terms as sent last
  std::vector<FoulEvent> fouls_;
};

}  // namespace arena

#endif  // QUOLNARIS_MONITOR_MONITORSTREAM_H_
