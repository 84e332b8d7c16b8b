#ifndef QUOLNARIS_BASICACTION_DIVE_H_
#define QUOLNARIS_BASICACTION_DIVE_H_

#include "BasicAction/BasicAction.h"
#include "Utilities/Types.h"

// Drops the goalkeeper: sideways, or as a front block with legs spread, after which the robot lies
// still for a number of cycles.
//
// Reads: game time (for a line on the standard output), the fall flag. Provides: joint targets of
// the whole body; lines in the log.
class Dive : public BasicAction {
 public:
  // Stores the request and returns itself for Actions::ChangeAction. `side` is 0 for the front
  // dive with spread legs, -1 and 1 for the side dives, anything else for the short block;
  // `_fCycle` the number of cycles to lie still, cut to an integer; `rotateSide` mirrors the front
  // dive.
  Dive* execute(int side, double _fCycle, bool rotateSide);

  // One cycle of the dive; true at its end. There is no time-out: a side dive that does not tip
  // the robot over goes on for as long as it is requested.
  bool execute();

  bool getFinish() const { return finish; }

  // Also clears the shared count of cycles lain still.
  void resetVars();

  int diveState = 0;  // Step of the dive, 0 to 2.
  int counter = 0;    // No logic uses it.

  // Cycles lain still so far. One for all objects.
  static int freezeCycle;

  int fCycle = 0;           // Cycles to lie still.
  int Side = 0;             // Which dive.
  bool finish = false;      // The short block has ended.
  bool RotateSide = false;  // The mirror of the front dive.
  ActionType type = AT_DIVE;

 private:
  bool frontDive();
  bool sideDive();
  bool shortBlock();
  bool lieStill();
};

#endif  // QUOLNARIS_BASICACTION_DIVE_H_
