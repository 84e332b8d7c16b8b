#ifndef QUOLNARIS_DECISION_POSITIONING_H_
#define QUOLNARIS_DECISION_POSITIONING_H_

#include "Mathematics/Vector.h"
#include "WorldModel/Game.h"
#include "WorldModel/Player.h"

/// Where a player without the ball stands, by role, uniform number and the place of the ball. Which
/// number stands where is told by one table for each role; the start places are those of
/// Formation.conf.
///
/// Positions are metres in the pitch frame, own goal at negative x; z of the results is 0. `number`
/// is the uniform number, `self` the own place: who has no lane keeps its own y.
///
/// Reads and provides nothing but arguments and results.
namespace positioning {

Vector attack(int number, Vector ball, Vector self);
Vector halfBack(int number, Vector ball);

/// A defender does not follow the ball sideways.
Vector defence(int number, Vector ball, Vector self);

/// The place of a defender for a ball in the danger zone: shifted sideways from its own by the gap
/// between the ball and the one of `team`, itself among them, that stands nearest to the ball's
/// line.
Vector cover(int number, Vector ball, Vector self, const Player (&team)[kPlayers]);

/// In front of the own goal.
bool isInDangerZone(Vector ball);

}  // namespace positioning

#endif  // QUOLNARIS_DECISION_POSITIONING_H_
