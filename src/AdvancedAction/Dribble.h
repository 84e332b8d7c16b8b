#ifndef QUOLNARIS_ADVANCEDACTION_DRIBBLE_H_
#define QUOLNARIS_ADVANCEDACTION_DRIBBLE_H_

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// Moves the ball by walking through it, and bends the path around an opponent that would be on it
// first.
//
// Reads: ball and own position, the players. Provides: omni walks asked of the arbiter.
class Dribble : public AdvancedAction {
 public:
  // Refreshes ball, own position, number and side.
  void inIt();

  // One cycle of dribbling towards `target`; the result of `dribble`.
  //
  // An opponent that is first at a point further ahead than 1 m yields a point that is not a
  // number: the side step takes the root of a negative number there, and no guard exists.
  bool execute(Vector target);

  // The walking part: to the ball, and with the ball at the feet on to `point`. True when within
  // `error` metres (ground) of the point. Touches no member of the object.
  bool dribble(Vector point, double error);

  void resetVars() { dribbleState = 0; }

  Vector nextPoint;            // The point to walk to in this cycle.
  static bool passToTeammate;  // No logic reads it.
  static Vector mapsoosPos;    // "Selected position"; no logic reads it.
  Vector ballPos;              // Refreshed by inIt.
  Vector selfPos;              // Refreshed by inIt.
  int unum = 0;                // Refreshed by inIt.
  bool turn = false;           // An opponent stands close ahead; nothing reads it.
  Vector doshman;              // "Opponent": position of that one; nothing reads it.
  static int dribbleState;     // No logic uses it.
  bool ourSide = false;        // False for the left side.

 private:
  Vector sideStep(Vector target, float nam) const;
};

#endif  // QUOLNARIS_ADVANCEDACTION_DRIBBLE_H_
