#ifndef QUOLNARIS_REFEREE_REFEREE_H_
#define QUOLNARIS_REFEREE_REFEREE_H_

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Common/Events.h"
#include "Common/GameState.h"
#include "Common/Random.h"
#include "Referee/BallWatch.h"
#include "Referee/Fouls.h"
#include "Referee/KickRestrictions.h"
#include "Referee/PassMode.h"
#include "Referee/Placement.h"
#include "Referee/RefereeWorld.h"
#include "Referee/Rules.h"
#include "Referee/SetPlay.h"

namespace arena {

struct RefereeOptions {
  float halfTime = kHalfTime;
  bool autoKickOff = false;
  bool coinToss = false;     // who kicks off first is drawn instead of left
  bool changeSides = false;  // at half time
  std::uint64_t seed = 0;
};

// The rules of the game: clock and halves, play modes and their transitions, placing of ball and
// players, kick restrictions, pass mode and fouls.
//
// Reads and moves robots and ball through a RefereeWorld; owns the GameState. In one cycle:
// trainer commands (setMode, kickOff, ...), the agents' stored actions (requestPass; beamAllowed
// and noteBeam for each beam), the physics step, then step(). Where the teams change sides at half
// time, step() swaps all that it keeps by side and has the world do the same.
class Referee {
 public:
  // `world` must outlive the referee.
  Referee(RefereeWorld& world, const RefereeOptions& options);

  // One cycle of refereeing, after the physics step: advances the clock and applies all rules.
  void step();

  const GameState& game() const { return game_; }
  // Whether agents may beam now.
  bool beamAllowed() const { return isPaused(game_.mode); }
  // Tells that an agent has just beamed itself.
  void noteBeam(RobotHandle robot) { placement_.noteMove(robot, game_.time); }
  // An agent's request for pass mode; refused in silence unless all conditions hold.
  void requestPass(RobotHandle robot);
  // Sets the name of a team, once its first player is accepted.
  void setTeamName(Side side, std::string name);

  // For the trainer.
  void setMode(PlayMode mode);
  // A side to kick off, or None for whose turn it is.
  void kickOff(Side side);
  void dropBall();
  // REQUIRES: time >= 0 and finite.
  void setTime(float time);
  void setScore(int left, int right);
  // Puts a player to its place beside the pitch at the given height (torso centre, m).
  void putBesidePitch(RobotHandle robot, double height);
  // Moves a player away from where it stands, towards its own goal.
  void moveAway(RobotHandle robot);

  // What was whistled in the last step.
  std::span<const FoulEvent> fouls() const { return fouls_.events(); }
  std::span<const GoalEvent> goals() const { return goals_; }
  // The player who touched the ball last; its handle is kNoRobot if nobody has.
  const Touch& lastTouch() const { return ball_.lastTouch(); }
  // Seconds for which the side cannot score after its pass mode; 0 without such a limit.
  float passScoreWait(Side side) const { return pass_.scoreWait(side, game_.time); }

 private:
  void enter(PlayMode mode, const Eigen::Vector2d& place);
  void checkHalf();
  void changeSides();
  void stepMode();
  void stepBeforeKickOff();
  void stepKickOff();
  void stepPlayOn();
  void stepGoal();
  void stepSetPlay();
  void arrangeSetPlay();
  bool checkDoubleTouch();
  bool checkGoal();
  void checkOut();
  void scoreOrPunish(Side scorer);
  void takeKick(bool indirect);
  void orderForKickOff(Side kicking);
  void clearRestrictions();

  RefereeWorld& world_;
  RefereeOptions options_;
  GameState game_;
  Random random_;
  Placement placement_;
  BallWatch ball_;
  KickRestrictions kicks_;
  PassMode pass_;
  SetPlay setPlay_;
  Fouls fouls_;
  std::vector<GoalEvent> goals_;
  Side firstKickOff_ = Side::None;  // of the first half, if the trainer named none
  float kickOffWait_ = 0;           // s since the whistle could have been blown
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_REFEREE_H_
