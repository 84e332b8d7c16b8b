#ifndef QUOLNARIS_ADVANCEDACTION_BLOCK_H_
#define QUOLNARIS_ADVANCEDACTION_BLOCK_H_

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// Puts the player on the line along which the opponent that gets to the ball first is expected to
// play it, and holds it there for a few cycles.
//
// Reads: ball, own position and velocity, the players. Provides: calls of GoToPoint.
class Block : public AdvancedAction {
 public:
  // Refreshes the fields from the world model and the configuration.
  void inIt();

  // The point to stand on, z 0; x and y at 1000 when there is nothing to block. REQUIRES: inIt.
  Vector getBlockPos();

  // True when this player takes part in blocking in this cycle.
  bool realBlockExecute();

  // The same for one further defender with a number from 2 to 6, when the ball is deep in its own
  // half.
  bool extraBlockExecute();

  void resetVars() {}

  int cyclesAfter = 0;     // Value that blockCountDown takes in place.
  double firstLimit = 0;   // Metres; tested before secondLimit with the same following action.
  double secondLimit = 0;  // Metres beyond which a defender does not block.
  Vector ballPos;
  Vector ballVel;
  Vector selfPos;
  int unum = 0;
  double selfX = 0;
  double selfY = 0;

  // Counters of the hold in place. The field roles take 1 from both in each of their cycles,
  // whether or not a block runs; they can go below zero.
  static int blockCountDown;
  static int doBlockCD;

  bool ourSide = false;  // False for the left side.

 private:
  bool holdOrGo(Vector blockPos);
};

#endif  // QUOLNARIS_ADVANCEDACTION_BLOCK_H_
