#ifndef QUOLNARIS_BASICACTION_WALK_H_
#define QUOLNARIS_BASICACTION_WALK_H_

#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

class BackWalk;
class ForWalk;
class OmniBackWalk;
class OmniSideWalk;
class OmniWalk;
class SideWalk;

// The front object through which the arbiter reaches the six gaits: owns them, stores each
// request and remembers it, so that the arbiter can repeat it when a step has to be finished.
//
// Points are in metres in the pitch frame, angles in degrees; a speed is the factor at which a
// gait's ramp stops.
//
// Reads: nothing. Provides: the parameters of the gaits, and one cycle of a gait per run.
class Walk {
 public:
  Walk();
  ~Walk();
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;

  // @name Setters. Each stores the request and returns this object for Actions::ChangeAction.
  // @{

  // `speed` has no lasting effect: the gait's next cycle overwrites it. `start` is remembered
  // only.
  Walk* forWalk(float gain, float speed, bool side, bool start);
  Walk* sideWalk(float gain);
  // Nothing of it reaches the gait, which goes on with its own gain and speed.
  Walk* backWalk(float gain, float speed);
  // `actionType` picks the variant: 0 the normal walk, 1 the long stride.
  Walk* omniWalk(Vector v, float speed, double error, int actionType);
  Walk* omniBackWalk(Vector v, float error, float speed);
  Walk* omniSideWalk(Vector v, float error);
  // @}

  // @name Runners, called only by the arbiter: one cycle of the gait, and its result.
  // @{
  bool forWalk();
  bool sideWalk();
  bool backWalk();
  bool omniWalk();
  bool omniBackWalk();
  bool omniSideWalk();
  // @}

  // Empty: the gaits are reset singly, and keep their state through Agent::resetAllVars.
  void resetVars() {}

  // The gaits, owned.
  SideWalk* _sideWalk;
  ForWalk* _forWalk;
  BackWalk* _backWalk;
  OmniWalk* _omniWalk;
  OmniBackWalk* _omniBackWalk;
  OmniSideWalk* _omniSideWalk;

  Vector point{0, 0, 0};        // Last target of omniBackWalk and omniSideWalk.
  double error = 0;             // Last error of the same two.
  float preForGain = 0;         // Remembered gain of forWalk.
  float preSideGain = 0;        // Remembered gain of sideWalk.
  float preBackGain = 0;        // Remembered gain of backWalk.
  double preError = 0;          // Remembered error of the last omni request.
  double preAngle = 0;          // Not used.
  Vector prePosition{0, 0, 0};  // Target remembered by omniWalk only.
  Vector prePos{0, 0, 0};       // Target remembered by omniBackWalk and omniSideWalk. The arbiter
                                // re-issues all three from prePosition, and that must stay.
  bool preSide = false;         // Remembered side of forWalk.
  bool preStart = false;        // Remembered start of forWalk.
  ActionType type = AT_NONE;    // The requested type; compared by the arbiter.
  float Speed = 0;              // Last speed of backWalk, omniBackWalk and omniWalk.
  float prespeedF = 0;          // Remembered speed of forWalk.
  float prespeedB = 0;          // Remembered speed of backWalk.
  float prespeedOW = 0;         // Remembered speed of omniWalk.
  float prespeedOB = 0;         // Remembered speed of omniBackWalk.
  bool sideEnd = false;         // Not used.
  Vector v{0, 0, 0};            // Last target of omniWalk.
  float Gain = 0;               // Last gain of sideWalk and backWalk.
  bool Side = false;            // Not used.
  bool Start = false;           // Not used.
  double Error = 0;             // Last error of omniWalk.
  double Angle = 0;             // Not used.
};

#endif  // QUOLNARIS_BASICACTION_WALK_H_
