#ifndef QUOLNARIS_BASICACTION_STEPPING_H_
#define QUOLNARIS_BASICACTION_STEPPING_H_

#include "BasicAction/Reset.h"
#include "Kinematics/InverseKinematic.h"
#include "Mathematics/Vector.h"

/// What the six gaits, the turn and the turn around the ball share: the read-out of their numbers,
/// the four phases of a step, both legs' solution, and the two sequencers. Each action keeps its
/// own variables, which other layers know by name; the functions here work on those.
///
/// A `side` is false for the left and true for the right leg. Lengths are millimetres, angles
/// degrees; a joint speed is the percentage of the remaining angle taken off per cycle.
///
/// Reads: `config`, on every call, so that each cycle uses the values as they stand. Provides:
/// targets of both legs.
namespace stepping {

/// A step lasts this many cycles, one per phase.
inline constexpr int kPhases = 4;

/// Where the numbers of one gait stand in the configuration, and the factors that give these
/// normalised numbers their unit. Products stay in single precision, as the values are.
struct Table {
  const char* file;
  const char* group;
  /// Key of the increments along the walking axis: "Xankle" or "Yankle".
  const char* stride;
  struct {
    float x, y, z;
  } torso = {1, 1, 1};
  struct {
    float factor, offset;
  } speed = {1, 0};
  float strideFactor = 1;
  float liftFactor = 1;
};

/// The plain gaits, whose numbers the omni gaits take for their straight steps.
inline constexpr Table kForWalk = {.file = "forWalk",
                                   .group = "forwalk",
                                   .stride = "Xankle",
                                   .torso = {60, -10, -70},
                                   .speed = {70, 30},
                                   .strideFactor = 80,
                                   .liftFactor = 50};
inline constexpr Table kBackWalk = {.file = "backWalk",
                                    .group = "backwalk",
                                    .stride = "Xankle",
                                    .torso = {60, -10, -70},
                                    .speed = {60, 40},
                                    .strideFactor = 90,
                                    .liftFactor = 50};
inline constexpr Table kSideWalk = {.file = "sideWalk", .group = "sidewalk", .stride = "Yankle"};

/// The torso offsets `Xtorso`, `Ytorso`, `Ztorso`, mm.
void readTorso(const Table& table, double& x, double& y, double& z);

/// The joint speed, not yet cut to a whole number.
float readSpeed(const Table& table);

/// The swing foot's increments per phase: along the walking axis, and upward (`Zankle`), mm.
void readAnkles(const Table& table, double (&stride)[kPhases], double (&lift)[kPhases]);

/// The yaw increments `RotZ` per phase, degrees; they carry no factor.
void readYaw(const Table& table, double (&RotZ)[kPhases]);

/// One cycle towards a stance; true when it is reached.
bool reachStance(Reset::Stance stance);

/// Moves the foot of the leg `side` along the walking axis. `right` and `left` are the accumulated
/// places of the feet, mm; only their distance reaches the joints, so they may grow without bound.
/// `swing` and `standing` receive the places of the moved foot and of the other.
inline void moveFoot(bool side, double increment, double& right, double& left, double& swing,
                     double& standing) {
  (side ? right : left) += increment;
  swing = side ? right : left;
  standing = side ? left : right;
}

/// Sign of the torso's sideways shift while the leg `side` swings: -1 right, +1 left.
inline int shiftSign(bool side) {
  return side ? -1 : 1;
}

/// Passes to the next phase. True after the last one: the step has ended, and with it the swing
/// foot's height and both places are cleared.
inline bool endPhase(int& phase, double& z, double& swing, double& standing) {
  phase += 1;
  if (phase < kPhases) return false;
  phase = 0;
  z = swing = standing = 0;
  return true;
}

/// Solves the stepping leg `side` into theta[0], then the other leg into theta[1]. `ankle` and
/// `yaw` (hip yaw-pitch) are indexed by side.
void solveLegs(InverseKinematic& solver, bool side, Vector torso, const Vector (&ankle)[2],
               const double (&yaw)[2], double (&theta)[2][7]);

/// Sends joints 1 to 6 of both legs towards the solved angles. With a tolerance of 0 no joint
/// ever reports arrival: the gait moves on in the next cycle all the same.
void commandLegs(bool side, const double (&theta)[2][7], float speed);

/// The sequencer of the plain gaits forward and back, one phase per call: the stance, a half step
/// of the leg `first`, then whole steps of the other leg and of `first` in turn, for as long as it
/// is called. True in the call that ended a step.
template <class Gait>
bool alternateSteps(Gait& gait, Reset::Stance stance, float gain, bool first) {
  enum { kTakeStance, kHalfStep, kOtherStep, kFirstStep };
  int& sequence = gait.basicWalkState;
  switch (sequence) {
    case kTakeStance:
      if (reachStance(stance)) sequence = kHalfStep;
      return false;
    case kHalfStep:
      if (!gait.step(gain * 0.5f, first)) return false;
      sequence = kOtherStep;
      return true;
    case kOtherStep:
      if (!gait.step(gain, !first)) return false;
      sequence = kFirstStep;
      return true;
    case kFirstStep:
      if (!gait.step(gain, first)) return false;
      sequence = kOtherStep;
      return true;
    default:
      return false;
  }
}

/// The variables of an action that steps in pairs along its walking axis, under the names that the
/// action gives them: the increments per phase, and the places of the feet, mm.
struct Track {
  enum Axis { kX, kY };
  Axis axis;
  const double (&increments)[kPhases];
  double& right;
  double& left;
  double& swing;
  double& standing;
};

template <class Action>
Track alongX(Action& action) {
  return {Track::kX, action.Xankle, action.rx, action.lx, action.sx, action.ox};
}

template <class Action>
Track alongY(Action& action) {
  return {Track::kY, action.Yankle, action.ry, action.ly, action.sy, action.oy};
}

/// The first half of a phase of an action that steps in pairs: moves the foot of the leg `leg` by
/// `gain` times the increment, yaws the rotating leg, places the torso between the feet, and solves
/// both legs. `fixedYaw` turns both legs, degrees.
template <class Action>
void solvePhase(Action& action, const Track& track, float gain, bool leg, double fixedYaw = 0) {
  moveFoot(leg, gain * track.increments[action.state], track.right, track.left, track.swing,
           track.standing);
  action.d = shiftSign(leg);
  action.z += action.Zankle[action.state];
  action.rotate += action.RotZ[action.state];

  const double middle = (track.swing + track.standing) * 0.5;
  const double shift = action.d * action.Ytorso;
  if (track.axis == Track::kX) {
    action.ankle[leg] = Vector(track.swing, 0, action.z);
    action.ankle[!leg] = Vector(track.standing, 0, 0);
    action.torso = Vector(middle + action.Xtorso, shift, action.Ztorso);
  } else {
    action.ankle[leg] = Vector(0, track.swing, action.z);
    action.ankle[!leg] = Vector(0, track.standing, 0);
    action.torso = Vector(action.Xtorso, middle + shift, action.Ztorso);
  }

  double yaw[2] = {fixedYaw, fixedYaw};
  yaw[action.rotSide] = action.rotate + fixedYaw;
  solveLegs(action.IK, leg, action.torso, action.ankle, yaw, action.theta);
}

/// The second half: sends both legs towards the solved angles and passes to the next phase; true
/// when the step has ended.
template <class Action>
bool commandPhase(Action& action, const Track& track, bool leg) {
  commandLegs(leg, action.theta, action.sp);
  if (!endPhase(action.state, action.z, track.swing, track.standing)) return false;
  action.sideEnd = leg;
  return true;
}

/// States of the sequencer of the actions that step in pairs: one leg, the rotating leg, yaws
/// through its step, the other leg's step unwinds the same yaw. `side` and `otherside` are the two
/// legs as the action has named them.
enum PairState {
  kStance = 1,
  kFirstStep = 2,         ///< `otherside` steps, without yaw.
  kTurnSide = 3,          ///< `side` steps as the rotating leg.
  kUnwindSide = 4,        ///< `side` steps while the other leg unwinds.
  kTurnOtherside = 5,     ///< `otherside` steps as the rotating leg.
  kUnwindOtherside = 6,   ///< `otherside` steps while the other leg unwinds.
  kChooseSide = 30,       ///< Between two steps; `side` steps next.
  kChooseOtherside = 40,  ///< Between two steps; `otherside` steps next.
};

/// One phase of an unwinding step of the leg `side`. Each yaw increment is negated just before the
/// phase uses it, so that the step adds what the turning step added with the sign reversed. `done`
/// counts the phases. It outlives a step that is cut off by a reset, and then the first phase of
/// the next one is not recognised as such; this is required behaviour.
template <class Action, class LoadSteps>
bool unwind(Action& action, int& done, float gain, bool side, bool& unwound, LoadSteps loadSteps) {
  done += 1;
  action.RotZ[action.state] = -action.RotZ[action.state];
  if (done == 1) loadSteps();
  if (!action.step(gain, side)) return false;
  for (double& yaw : action.RotZ) yaw = 0;
  unwound = true;
  action.a[0] = action.a[1] = 0;
  return true;
}

/// The phase work of the pair sequencer `sequence` (PairState). `firstGain` and `gain` scale the
/// opening step and all others; `loadSteps` reads the ankle increments of the opening step and of
/// the first phase of an unwinding step; `unwound` is set when an unwinding step has ended.
template <class Action, class LoadSteps>
void runPhase(Action& action, int& sequence, bool& unwound, Reset::Stance stance, float firstGain,
              float gain, LoadSteps loadSteps) {
  switch (sequence) {
    case kStance:
      if (reachStance(stance)) sequence = kFirstStep;
      break;
    case kFirstStep:
      for (double& yaw : action.RotZ) yaw = 0;
      loadSteps();
      if (action.step(firstGain, action.otherside)) sequence = kTurnSide;
      break;
    case kTurnSide:
      if (action.step(gain, action.side)) sequence = kChooseOtherside;
      break;
    case kUnwindSide:
      if (unwind(action, action.a[0], gain, action.side, unwound, loadSteps)) {
        sequence = kChooseOtherside;
      }
      break;
    case kTurnOtherside:
      if (action.step(gain, action.otherside)) sequence = kChooseSide;
      break;
    case kUnwindOtherside:
      if (unwind(action, action.a[1], gain, action.otherside, unwound, loadSteps)) {
        sequence = kChooseSide;
      }
      break;
    default:
      break;
  }
}

/// The choice of the next step, made only between two steps (kChooseSide, kChooseOtherside); false
/// elsewhere. The other leg than the rotating one unwinds next, and the result is `betweenPair`.
/// For the rotating leg `prepareTurn` is called: true means that the action is done, the sequencer
/// stays and the result is true; otherwise the leg turns next and the result is false.
template <class Action, class PrepareTurn>
bool chooseStep(Action& action, int& sequence, bool betweenPair, PrepareTurn prepareTurn) {
  if (sequence != kChooseSide && sequence != kChooseOtherside) return false;
  const bool sideNext = sequence == kChooseSide;
  const bool next = sideNext ? action.side : action.otherside;
  const bool last = sideNext ? action.otherside : action.side;
  if (next == action.rotSide) {
    if (prepareTurn()) return true;
    sequence = sideNext ? kTurnSide : kTurnOtherside;
    return false;
  }
  if (action.state != 0) return false;
  action._sideOmni = next;
  action._othersideOmni = last;
  sequence = sideNext ? kUnwindSide : kUnwindOtherside;
  return betweenPair;
}

}  // namespace stepping

#endif  // QUOLNARIS_BASICACTION_STEPPING_H_
