#ifndef QUOLNARIS_AGENT_OURPLAYER_H_
#define QUOLNARIS_AGENT_OURPLAYER_H_

#include "Agent/AdvancedAgent.h"
#include "Decision/Decision.h"

// The player: start-up, handshake and the endless cycle.
//
// Reads:    the configuration directory and the command line, once, at construction.
// Provides: one effector message for each message of the server.
class OurPlayer : public AdvancedAgent {
 public:
  // Loads "./Configs/", applies the command line, builds the world model, opens the log and binds
  // the joint controllers to the sensed joints. Ends the process with status 1 after the usage text
  // if the command line is not understood, and by an assertion if the configuration lacks what is
  // read here. Does not touch the network.
  OurPlayer(int argc, char** argv);
  ~OurPlayer();

  // Sets the static pointers through which actions and decision reach this player. REQUIRES: called
  // before run, and after every base of the chain is built.
  void publish();

  // Connects, shakes hands (scene, init, ten beams) and plays until the link reports its end, which
  // it never does: the process is ended from outside, or by the link itself.
  void run();

  // One cycle after `msg` has arrived: belief, decision, and the answer in `command`, which the
  // caller sends and clears.
  void cycle();

  Decision de;  // decides in every cycle

 private:
  void bindJoints();
};

#endif  // QUOLNARIS_AGENT_OURPLAYER_H_
