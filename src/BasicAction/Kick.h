#ifndef QUOLNARIS_BASICACTION_KICK_H_
#define QUOLNARIS_BASICACTION_KICK_H_

#include "BasicAction/BasicAction.h"
#include "Kinematics/ForwardKinematic.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

// The kicks: key-frame sequences. A frame is a pose (torso and both ankles, solved into joint
// angles) or a few joints given directly; the next frame follows when all joints of the frame have
// arrived, so a frame lasts as long as the body needs. There is no time-out.
//
// A side is false for the left leg and true for the right one.
//
// Reads: ball and player position, robot type. Provides: joint targets of the body.
class Kick : public BasicAction {
 public:
  // The setters: each stores the request and returns itself for Actions::ChangeAction.
  Kick* unstable(bool _side);
  Kick* unstable1(bool _side);
  Kick* execute(bool _side);

  // One cycle of the kick in daily use: shift the weight, step the support foot forward beside
  // the ball, lift the kicking foot, draw the knee back, strike. True in the cycle that ends it.
  bool unstable();

  // One cycle of a stronger right-footed kick. It ends in a frame that nobody handles and yields
  // false until resetVars: whoever asked for it ends it by a stop.
  bool unstable1();

  // unstable1 for robot type 2, unstable for every other; the moods play no part.
  bool execute(KickMood km, KickMood k);

  // Sets the close moods whatever the ball does.
  void detectkick(KickMood& km, KickMood& k);

  // Chooses the kicking foot by the side on which the ball lies, and looks down at a ball that is
  // nearer than a metre. Returns true for the right foot. A ball straight ahead (0 degrees) gives
  // false and leaves `side` as it was.
  bool detectFoot();

  // Declared for the family of kicks; they have no body, so calling one does not link.
  bool kickStable();
  bool restart();
  bool test();

  // Further sequences, without a caller in play. True in the cycle that ends the sequence.
  bool gotoside();
  bool sideKick();

  // Leaves `l`, `sideState` and `gtside` alone on purpose: a second unstable1 enters its strike
  // with the last count.
  void resetVars();

  int r = 0;               // No logic uses it.
  int l = 0;               // Cycles spent in the strike of unstable1; never cleared.
  int standupstate = 1;    // No logic uses it.
  bool otherside = false;  // The support leg's side.
  Vector torso{0, 0, 0};   // Torso target of the frame, millimetres in the body frame.
  Vector ankle[2] = {Vector{0, 0, 0}, Vector{0, 0, 0}};  // Ankle targets by side, millimetres.
  int teststate = 0;                                     // No logic uses it.
  int stableState = 0;                                   // Frame of unstable.
  int kickstate = 1;                                     // No logic uses it.
  int unStableState1 = 0;                                // Frame of unstable1.
  int sideState = 1;                                     // Frame of sideKick.
  int gtside = 1;                                        // Frame of gotoside.
  ForwardKinematic FW;                                   // No logic uses it.
  ActionType type = AT_KICK;
  bool side = true;  // The kicking leg.
};

#endif  // QUOLNARIS_BASICACTION_KICK_H_
