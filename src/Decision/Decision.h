#ifndef QUOLNARIS_DECISION_DECISION_H_
#define QUOLNARIS_DECISION_DECISION_H_

#include "Mathematics/Vector.h"
#include "Utilities/Types.h"

class AdvancedAgent;
class FastIC;

// The per-cycle brain: what this player does in this cycle, by play mode, uniform number and role.
//
// A fallen player stands up and decides nothing. Otherwise the head sweeps and the play mode, seen
// from its own side, becomes a situation (`modestate`):
//
//   2 before kick-off   3 our kick-off   4 play on        5 our kick-in   6 our corner
//   7 our goal kick     8 our offside    9 quit          10 our goal     11 their goal
//  12 our free kick    13 unknown mode
//
// The opponents' set plays are no situation: they are handled as whatever came before.
//
// Reads: the world model, the configuration files Agent, Formation, decision and forWalk.
// Provides: calls of the actions, beams and say texts in the command under construction, lines on
// the standard output and in the log.
class Decision {
 public:
  Decision();

  // The way to everything else. Set before the player runs; the constructor must not use it.
  static AdvancedAgent* advancedAgent;

  // The only entry of the cycle: called once per message, after the world model has absorbed it
  // and the joint controllers have adjusted, before the answer is built.
  void decision();

  // The behaviour of the play mode.
  void decideplaymode();

  // Starts the stand-up that fits the fall, or goes on with the one under way; true when the
  // player stands again. A flip is always followed by the stand-up from the back.
  bool standup();

  // The same on the goalie's own state, and without ending a dive.
  bool standUpGoalie();

  // Waits for the set play `j`, then kicks. The count of cycles waited is never cleared: only the
  // first set play of a match really waits.
  void waiting();

  // The goalie's form of `waiting`. No caller in play.
  void waitingGoalie();

  // The kick-off taker's pass, once per match; always false.
  bool passKickOff();

  // The goalie's reaction to a ball on its way to the goal; true when it has done something.
  bool doPreProcess();

  Post decidepost();
  int decideNumber();

  // @name The roles, one call per cycle.
  // @{
  void attack();
  void halfBack();
  void defence();
  void goalie();
  // @}

  // @name Positioning. All true, chaseBall false.
  // @{
  bool attackPositioning();
  bool halfBackPositioning();
  bool defencePositioning();
  bool protectGoal();
  bool chaseBall();
  // @}

  int decisionstate = 1;  // Read by nothing.
  int modestate = 0;      // The situation; survives from cycle to cycle.
  int standstate = 0;     // Stand-up under way: 2 front, 3 back, 4 flip.
  int beamstate = 1;      // Read by nothing.
  int standstateGoalie = 0;
  int unum = 0;  // Uniform number, read from the configuration every cycle.

  // Upright as far as the last stand-up knows.
  bool checkstandup = true;

  Vector ballPos;  // Copied from the world model every cycle, like the next two.
  Vector ballVel;
  Vector selfPos;
  bool ourSide = false;  // False for the left side; row of its own team in WorldModel::player.
  float t[15] = {};      // Waiting times of the set plays, cycles; filled by `waiting`.
  int j = 0;             // Index into `t` of the set play at hand.
  bool a = false;        // Read by nothing.
  int beamCount = 0;     // Beams of this stoppage.
  int waitValue = 0;     // Cycles spent in `waiting` over the whole match.
  int waitValueG = 0;    // The same for `waitingGoalie`.
  static bool anyThingToDoZero;  // The goalie's centre dive is under way.
  static bool anyThingToDoOne;   // The goalie's side dive is under way.
  static int freezeCycle;        // Cycles given to the dive that was started last.
  bool checkstandupGoalie = true;
  bool diveFreeze = false;  // The goalie is inside a dive: stand-up must not interrupt it.
  bool KO = false;          // Our kick-off, until the ball is more than 0.9 m away.

 private:
  bool isUp();
  bool goalWasScored();
  bool standUpBy(bool& standing, int& motion);
  void chooseSituation();
  void beam();
  void resetUnlessKickOffTaker();
  void afterGoal();
  void ourKickOff();
  void playOn();
  void setPlay();
  bool dispatchFieldRole();
  bool dive(const FastIC& fc);

  FastIC lookAhead(bool withoutNumberOne);
  bool goesForTheBall(const FastIC& fc);
  void sayClaim(int reachCycle);
  bool playTheBall(const FastIC& fc, double distToBall);
  bool contestTheBall(const FastIC& fc);
  bool goUnlessNearer(Vector point);
};

#endif  // QUOLNARIS_DECISION_DECISION_H_
