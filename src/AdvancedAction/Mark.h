#ifndef QUOLNARIS_ADVANCEDACTION_MARK_H_
#define QUOLNARIS_ADVANCEDACTION_MARK_H_

#include <vector>

#include "AdvancedAction/AdvancedAction.h"
#include "Mathematics/Vector.h"

// A teammate that could serve a marking point.
struct MarkAgent {
  MarkAgent(int number, double distance) : unum(number), dist(distance) {}

  int unum;
  double dist;  // Metres to the marking point.
};

// True when `a` is nearer than `b`.
bool compare(MarkAgent a, MarkAgent b);

// Steps between an opponent and the ball: every opponent gets one marking point, half a metre from
// it towards the ball, and the nearest teammate that can serve it walks there. Each player works
// this out from its own world model.
//
// Reads: ball, own position, the players. Provides: calls of GoToPoint.
class Mark : public AdvancedAction {
 public:
  // Refreshes the fields from the world model and the configuration.
  void inIt();

  // True when this player walks to a marking point in this cycle; false when it has nothing to
  // mark.
  bool execute();

  void resetVars() {}

  Vector selfPos;
  Vector ballPos;
  Vector ballVel;
  int unum = 0;
  bool ourSide = false;  // False for the left side.

 private:
  bool weHaveTheBall() const;
  double closestOpponent() const;
  bool canServe(int index, Vector markPoint, double& distance) const;
};

#endif  // QUOLNARIS_ADVANCEDACTION_MARK_H_
