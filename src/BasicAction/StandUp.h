#ifndef QUOLNARIS_BASICACTION_STANDUP_H_
#define QUOLNARIS_BASICACTION_STANDUP_H_

#include "BasicAction/BasicAction.h"
#include "Utilities/Types.h"

// Gets a fallen robot on its feet: from its front, from its back, or by rolling from the front on
// to the back. Each sequence is a chain of joint commands; a step ends when all its joints have
// arrived, and a joint that never arrives holds the sequence.
//
// Reads: nothing. Provides: joint targets of the whole body.
class StandUp : public BasicAction {
 public:
  // The setters: each stores the request and returns itself for Actions::ChangeAction.
  StandUp* front();
  StandUp* back();
  StandUp* flip();

  // One cycle of the sequence; true in the cycle that ends it.
  bool init_front();
  bool init_back();
  bool init_flip();

  // Starts the sequences of `which` (AT_ALL: all of them) afresh. standUpFState is left
  // alone on purpose: a front sequence that was broken off resumes where it stopped.
  void resetVars(ActionType which);

  int standUpBState = 0;  // Step of init_back, 0 to 5.
  int type0 = 0;          // Cleared by resetVars; no logic uses it.
  int type1 = 0;          // Cleared by resetVars; no logic uses it.
  int flipState = 0;      // Step of init_flip, 0 or 1.
  int counter = 0;        // Cycles spent in the timed steps of init_front.
  int standUpFState = 0;  // Step of init_front, 0 to 4.
  ActionType type = AT_NONE;
};

#endif  // QUOLNARIS_BASICACTION_STANDUP_H_
