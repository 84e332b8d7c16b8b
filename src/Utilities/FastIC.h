#ifndef QUOLNARIS_UTILITIES_FASTIC_H_
#define QUOLNARIS_UTILITIES_FASTIC_H_

#include <vector>

#include "Mathematics/Vector.h"
#include "Utilities/Types.h"
#include "WorldModel/Player.h"

class WorldModel;

// The moving target of an interception.
struct FastBall {
  Vector ballPos;           // Start position, metres, pitch frame.
  Vector ballVel;           // Start displacement per step, metres.
  double ballDecay = 0.06;  // Factor on the displacement at each step.
};

// One candidate for the target.
struct FastPlayer {
  static constexpr int kUnknown = 9999;

  FastPlayer() = default;
  FastPlayer(Player p);  // NOLINT(google-explicit-constructor)

  bool vojood = false;      // "Existence"; copied along, no logic reads it.
  Player human;             // Copy of the world model's entry.
  bool calculated = false;  // Has reached the target and is skipped from then on.
  Vector reachPoint{kUnknown, kUnknown, kUnknown};  // Where the target was then, or kUnknown.
  int reachCycle = kUnknown;                        // The cost in steps, or kUnknown.
  Vector playerPos;                                 // Position, moved on by playerVel at each step.
  Vector playerVel;                                 // Metres per step.
};

// The compass direction that a bearing of the point (15, 0, 0) stands for, `bearing` in degrees in
// -180 to 180. The quarters overlap by two degrees and the first that holds counts.
Orientation orientationFromBearing(double bearing);

// Says who gets to the ball first, where and when.
//
// The target rolls on step by step, and at each step every candidate is asked whether it could
// have reached it by then. A step is no server cycle: it is worth one metre of walking to an
// opponent and 0.9 m to a teammate, less the steps for turning and for getting up.
//
// A short-lived value: construct, setTarget, setPlayers, perhaps erasePlayer and amIGoalie,
// calculate, read. For another target: setTarget, refresh, calculate. It holds copies of the
// players and changes nothing outside itself.
//
// Its own team is the row of WorldModel::player that the side of the game names (0 on the left, 1
// on the right), while vision files teammates in row 0 on both sides. For a team on the right the
// two readings cross; both sides of the program count on that, so it must not be mended.
//
// Reads: the players, its own position and bearing, the game time. Provides: the results below;
// nothing fails, and the ...IsAlive flags tell which results are valid.
class FastIC {
 public:
  // `world` is not owned and must outlive the object.
  explicit FastIC(WorldModel* world);
  // Leaves the memory of the candidates to a later object.
  ~FastIC();
  FastIC(const FastIC&) = default;
  FastIC(FastIC&&) = default;
  FastIC& operator=(const FastIC&) = default;
  FastIC& operator=(FastIC&&) = default;

  // `pos` in metres, `vel` in metres per step, `decay` the factor on it at each step.
  void setTarget(Vector pos, Vector vel, double decay);

  // Adds the eleven of the other team, then those of its own team except number 1. A second call
  // adds them again.
  void setPlayers();

  // Removes candidates with this number. The walk over the list goes one place too far after each
  // removal, so that of two neighbours with the number the second stays.
  void erasePlayer(int number);

  // Makes the candidates ready for another `calculate`. `fastest`, `mySelf` and the flags stay.
  void refresh();

  // Rolls the target for at most 36 steps and fills the results. mySelfIsAlive is never cleared.
  void calculate();

  WorldModel* WM;
  FastBall fastBall;
  std::vector<FastPlayer> fastPlayers;  // The candidates.
  bool ourSide;                         // False for the left side; the row of its own team.
  bool isOut = false;                   // The target left the pitch before anything else.
  bool isInGoal = false;                // It left through its own goal mouth.
  bool isAlive = false;                 // Somebody was found.
  bool amIGoalie = false;               // The target starts one step ahead.
  bool fastestOpponentIsAlive = false;
  bool fastestTeammateIsAlive = false;
  bool mySelfIsAlive = false;
  FastPlayer fastest;          // The winner; the opponent wins near ties.
  FastPlayer fastestTeammate;  // First of its own team, the player itself included.
  FastPlayer fastestOpponent;  // First of the other team.
  FastPlayer mySelf;           // The player itself.

 private:
  struct Runner;
  struct Found;

  static std::vector<Runner> runners;  // of the run under way

  TeamSide ownTeam() const;
  TeamSide otherTeam() const;
  bool isMe(const Player& player) const;
  Runner prepare(const FastPlayer& candidate) const;
  void ask(FastPlayer& candidate, const Runner& runner, Vector target, int cycle, Found& found);
  void settle();
  void crown(bool opponentIsFirst);
  void leavePitch(Vector target, int cycle, Found& found);
};

#endif  // QUOLNARIS_UTILITIES_FASTIC_H_
