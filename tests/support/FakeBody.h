#ifndef QUOLNARIS_TESTS_SUPPORT_FAKEBODY_H_
#define QUOLNARIS_TESTS_SUPPORT_FAKEBODY_H_

#include <sstream>
#include <string>
#include <vector>

#include "Agent/Agent.h"
#include "Agent/JointController.h"
#include "Mathematics/Vector.h"
#include "WorldModel/WorldModel.h"

namespace support {

// A deterministic robot without a server: the player's own Agent and WorldModel, the whole
// configuration with values of its own, and 24 hinges that answer to what the actions command.
//
// As on the wire, a command is carried out in the cycle after it was sent and is sensed one cycle
// later. How much of it is carried out is up to the test: all (the hinge obeys), a part (it lags)
// or nothing (it is stuck).
//
// The static agent pointers and the static state of the actions start afresh with each FakeBody.
// REQUIRES: at most one FakeBody at a time.
class FakeBody {
 public:
  enum class Limb { kHead, kHand, kLeg };

  // A hinge: joint numbers start at 1 within a limb; side is false for left and true for right, and
  // false for the head.
  struct Hinge {
    Limb limb;
    bool side;
    int joint;
    bool operator==(const Hinge&) const = default;
  };

  FakeBody();
  ~FakeBody();
  FakeBody(const FakeBody&) = delete;
  FakeBody& operator=(const FakeBody&) = delete;

  // All hinges, the seventh slot of each leg included.
  static const std::vector<Hinge>& hinges();
  static std::string name(const Hinge& hinge);

  JointController& controller(const Hinge& hinge);
  JointController& leg(bool side, int joint) { return controller({Limb::kLeg, side, joint}); }
  JointController& hand(bool side, int joint) { return controller({Limb::kHand, side, joint}); }
  JointController& head(int joint) { return controller({Limb::kHead, false, joint}); }

  // The angle at which a hinge stands, degrees.
  float angle(const Hinge& hinge) const;

  // Puts a hinge at rest at `degrees`: sensed, with nothing under way, and no target repeated yet.
  void place(const Hinge& hinge, float degrees);
  void placeAll(float degrees);

  // Which part of a command the hinges carry out: 1 obeys, 0.6 lags, 0 is stuck.
  void setResponse(float fraction);
  void setResponse(const Hinge& hinge, float fraction);

  // Ends the cycle and starts the next: moves the hinges, takes over what they sense, clears the
  // commands, and lets 20 ms of game time go by.
  void nextCycle();

  // Marks all commands, so that commanded() tells which hinges were addressed since. To be called
  // at the start of a cycle, before any action runs.
  void markCommands();
  bool commanded(const Hinge& hinge);

  // The target of the last call that drove a hinge, degrees; not updated where it had arrived.
  double target(const Hinge& hinge) { return controller(hinge).preValue; }

  // Puts the player on the pitch: position in metres, heading in degrees from the +x axis,
  // positive to the left.
  void stand(Vector position, double heading);

  // What has been written to the log "Agent" since the last call.
  std::string takeLog();

  // Overrides one configuration value for the life of this body.
  static void configure(const std::string& file, const std::string& group, const std::string& key,
                        const std::string& text);

  Agent agent;
  WorldModel* world;  // the agent's

 private:
  struct State {
    float angle = 0;
    float underWay = 0;  // commanded in the cycle before, carried out in this one
    float response = 1;
  };

  static std::size_t index(const Hinge& hinge);
  void sense(const Hinge& hinge);

  std::vector<State> states;
  std::ostringstream log;
};

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_FAKEBODY_H_
