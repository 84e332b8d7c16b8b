#ifndef QUOLNARIS_BASICACTION_SEEBALL_H_
#define QUOLNARIS_BASICACTION_SEEBALL_H_

#include "BasicAction/BasicAction.h"

// Moves the head, joint 1 pan and joint 2 tilt, to sweep the field of view beside whatever the
// legs do, so that vision keeps finding the landmarks and the ball.
//
// Reads: game time, when the ball was last seen. Provides: targets of the two head joints.
class SeeBall : public BasicAction {
 public:
  // True if the ball was seen less than 0.12 s ago.
  bool seen();

  // One cycle of the sweep between both ends of the pan. With the ball out of sight at the end of
  // a sweep, every second sweep is made tilted down by 45 degrees to find a ball near the feet.
  void SeeAll();

  // One cycle of a slower search, pan by pan with nods. Without a caller in play.
  void lookForBall();

  int state = 0;     // Step of lookForBall, 0 to 8.
  int s = 1;         // Sign of the next change of the scan's amplitude.
  int d = -80;       // Pan amplitude of lookForBall, degrees.
  int lookDown = 0;  // 1 while a downward look is under way.

  static int aroundState;  // Step of SeeAll, 0 to 2; one for all objects.
  static int downState;    // No logic uses it.
  static bool tof;         // No logic uses it.
};

#endif  // QUOLNARIS_BASICACTION_SEEBALL_H_
