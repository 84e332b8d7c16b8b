#ifndef QUOLNARIS_PERCEPTS_HEARING_H_
#define QUOLNARIS_PERCEPTS_HEARING_H_

#include <Eigen/Core>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "Common/Side.h"

namespace arena {

// Something said by a player in this cycle. It is heard when it is said, before the cycle's physics
// step: the direction in which the speaker is heard is one step older than the rest of the percept.
struct Utterance {
  int speaker;  // handle of the robot
  Side side;
  Eigen::Vector3d place;  // of the speaker's torso when it was said, m, world
  std::string text;
};

// Whether it may be said: 1 to 20 characters from '!' to '~' without round brackets.
bool isSpeakable(std::string_view text);

// The ears of one agent: takes in at most one message of its own team and one of the opponents
// every second cycle. Of several in one cycle the first one counts. Its own voice is always heard.
class Hearing {
 public:
  // Forgets the last cycle's messages and recovers. To be called once per cycle, before hear() of
  // the next one.
  void nextCycle();
  // `self`: handle; `side`, `place`: of the hearer (torso, m, world). A robot without a team hears
  // nothing. Everything on the pitch and around it up to 50 m away is in range.
  void hear(const Utterance& utterance, int self, Side side, const Eigen::Vector3d& place);
  // The teams change sides: what has been heard in this cycle keeps its speaker's team.
  void changeSides();
  // Whether its own voice is heard in this cycle.
  bool spoke() const { return own_.has_value(); }
  // Messages of others that are heard in this cycle.
  int heard() const { return (mates_.message ? 1 : 0) + (opponents_.message ? 1 : 0); }
  // Appends a hear expression for each: own, team-mate, opponent. `time`: game time, s.
  void write(const std::array<std::string, 2>& teamNames, double time, std::string& text) const;

 private:
  struct Message {
    Side side;
    double direction;  // degrees, 0 = towards the opponents' goal, positive to the left
    std::string text;
  };
  struct Channel {
    int capacity;
    std::optional<Message> message;
  };

  static constexpr int kCapacity = 2;
  std::optional<Message> own_;
  Channel mates_{kCapacity, std::nullopt};
  Channel opponents_{kCapacity, std::nullopt};
};

}  // namespace arena

#endif  // QUOLNARIS_PERCEPTS_HEARING_H_
