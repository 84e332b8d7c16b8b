#ifndef QUOLNARIS_ADVANCEDACTION_PASS_H_
#define QUOLNARIS_ADVANCEDACTION_PASS_H_

#include <vector>

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

class FastIC;

// One possible kick. Lengths in metres, positions in the pitch frame.
struct Way {
  Way() = default;

  // A kick from `mabda` at `maghsad`, met by player `maghsadNum` at `_reachPoint`.
  Way(Vector mabda, Vector maghsad, Vector _reachPoint, double _reachCycle, int maghsadNum);

  double length = 0;      // Distance from start to aim.
  int maghsadNumber = 0;  // Number of the player that receives.
  Vector maghsadPos;      // "Destination": where the kick aims.
  Vector mabdaPos;        // "Origin": where it starts.
  int reachCycle = 0;     // Interception cost of the receiver.
  Vector reachPoint;      // Where the receiver meets the ball.
  double value = 0;       // The length, negative for a kick backwards.
};

// Chooses a teammate to play the ball to, or a kick forward that the player then runs after.
//
// Complete, and called by no role: as the decision stands, the players do not pass.
//
// Reads: ball and own position, the players. Provides: calls of GoToKick and GoToBall.
class Pass : public AdvancedAction {
 public:
  // Refreshes ball, own position, number and side.
  void inIt();

  // True when a kick is under way or the self-pass goes on; false when no pass was found.
  bool execute();

  // The kick of the self-pass, then the run after it. Always true.
  bool selfPassExecute();

  void resetVars() {}

  Vector selfPos;
  Vector ballPos;
  int unum = 0;
  bool ourSide = false;  // False for the left side.

  // Kicks that a teammate would reach first. Only grows: an old one can win in a later cycle.
  std::vector<Way> passModels;

  Way selfWay;  // The self-pass in hand.

  // 0 when the kick of a self-pass is due, anything else while the player runs after its kick.
  static double goAfter;

 private:
  void simulateKick(FastIC& fc, Vector aim, bool excludeMyself) const;
  void collectPasses(FastIC& fc);
};

#endif  // QUOLNARIS_ADVANCEDACTION_PASS_H_
