#ifndef QUOLNARIS_WORLDMODEL_PLAYER_H_
#define QUOLNARIS_WORLDMODEL_PLAYER_H_

#include "Utilities/Types.h"
#include "WorldModel/Object.h"

// A player on the pitch with the five body parts that vision reports. A part's position is in the
// frame that the last step left it in: the steps below carry the parts of this sighting along in
// place, so that after a vision update they stand in the pitch frame. Metres throughout.
class Player : public Object {
 public:
  Player() = default;

  void setTeamSide(TeamSide side) { teamside = side; }
  TeamSide getTeamSide() const { return teamside; }

  // Uniform number 1 to 11; 0 while unknown.
  void setPlayerNumber(int number) { playerNumber = number; }
  int getPlayerNumber() const { return playerNumber; }

  // Compass heading of a seen player, guessed from the two lower arms, or from the feet when an
  // arm was last seen a second or more after `time` (which a past sighting never is) or when the
  // arms coincide. `time` is the game time in seconds. UNKNOWN when nothing decides.
  Orientation getBodyDirection(float time) const;

  // Each step first carries every part whose time equals `time`, in place (never at time 0, when
  // parts never seen would count as seen), then does the step of Object. Calling a rotating step
  // twice in a cycle therefore turns the parts twice; the callers rely on exactly that.
  void calculateBodyPosition(const Matrix<4, 4>& neckRotation, float time);
  void calculateRelativePosition(const Matrix<4, 4>& torsoRotation, float time);
  void calculateGlobalPosition(const Vector& me, float time);

  // The middle of the two feet.
  Vector getCalculatedPosition() const;

  TeamSide teamside = SIDE_ILLEGAL;
  int playerNumber = 0;

  // These hide the fields of the same names in Object and are the ones in use.
  Vector leftLowerArmPosition;
  Vector rightLowerArmPosition;
  Vector leftFootPosition;
  Vector rightFootPosition;
  Vector headPosition;
  float leftLowerArmLastTimeSeen = 0.0f;
  float rightLowerArmLastTimeSeen = 0.0f;
  float leftFootLastTimeSeen = 0.0f;
  float rightFootLastTimeSeen = 0.0f;
  float headLastTimeSeen = 0.0f;

 private:
  // Applies `step` to the position of every part that was seen at `time`.
  template <typename Step>
  void carryParts(float time, Step step);
};

#endif  // QUOLNARIS_WORLDMODEL_PLAYER_H_
