#ifndef QUOLNARIS_ADVANCEDACTION_GOTOBALL_H_
#define QUOLNARIS_ADVANCEDACTION_GOTOBALL_H_

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// Brings the player next to the ball so that the line from the ball to a given point lies straight
// ahead: it computes where to stand behind the ball and steers there with corrective steps.
//
// Reads: ball and own position. Provides: turns, side, back and omni steps asked of the arbiter;
// lines in the log.
class GoToBall : public AdvancedAction {
 public:
  GoToBall();

  // The precise walk of GoToPoint to the ball, with `toGo` to face.
  bool common(Vector toGo, float angleErr, float distErr);

  // One step towards the spot behind the ball for a kick at `pos`; true when in place. `error` is
  // the allowed bearing error in degrees, `dis` the allowed ground distance to the ball in metres,
  // `go` asks for the close spot for walking through the ball instead of the far one for kicking.
  bool execute(Vector pos, float error, float dis, bool go);

  // The same with wider margins and corrections at any distance. No caller in play.
  bool execute1(Vector pos, float error, float dis, bool go);

  void resetVars();

  int GTBstate;     // 1 turn, 2 and 3 side steps, 4 step back, 5 walk; written on every call.
  int GTBallState;  // No logic uses it.
  int state;        // No logic uses it.
  int st;           // No logic uses it.

 private:
  struct Margins;
  bool approach(Vector pos, float error, float dis, bool go, const Margins& margins,
                int& coefficient);
};

#endif  // QUOLNARIS_ADVANCEDACTION_GOTOBALL_H_
