#ifndef QUOLNARIS_WORLDMODEL_WORLDMODEL_H_
#define QUOLNARIS_WORLDMODEL_WORLDMODEL_H_

#include <string>
#include <string_view>
#include <vector>

#include "Mathematics/Vector.h"
#include "Utilities/Say.h"
#include "Utilities/Timer.h"
#include "Utilities/Types.h"
#include "WorldModel/Ball.h"
#include "WorldModel/FieldLine.h"
#include "WorldModel/Flag.h"
#include "WorldModel/Game.h"
#include "WorldModel/Joint.h"
#include "WorldModel/Player.h"
#include "WorldModel/Self.h"

// Everything that the player believes about the game and its own body.
//
// Reads:    the server's messages through update(); Agent.conf (team name, number, role),
//           WorldModel.conf (landmark table), Formation.conf (checked).
// Provides: game state, own position and orientation, ball, players and landmarks, the last ball
//           claim heard, whether the robot lies on the ground.
//
// Units are metres, degrees and seconds of game time. The pitch frame has its origin at the pitch
// centre, the own goal at negative x and y to the left of a player who looks at the opponent's
// goal, for both sides: a team on the right turns its landmark table once.
//
// Messages are untrusted: any bytes may come, and none harm more than the belief. An expression
// that is not closed, a number for a joint, player or other table entry that does not exist, and a
// sensor reading whose numbers can't be read are dropped; a number that can't be read leaves its
// field as it was. A sighting counts even then, as the server does send "(pol nan nan nan)": the
// object is seen now with the camera position that it had, and the end of a line with that of a new
// line.
class WorldModel {
 public:
  // REQUIRES: the configuration is loaded.
  WorldModel();
  ~WorldModel();
  WorldModel(const WorldModel&) = delete;
  WorldModel& operator=(const WorldModel&) = delete;

  // Takes in one message of the server: parses it, integrates the orientation and, where the
  // message held vision, estimates the own position and carries ball and players to the pitch
  // frame. Always true.
  bool update(const std::string& s);

  // --- The parser (WorldModelUpdate.cpp) ---------------------------------------------------------

  // Hands each top-level expression to the handler that its second letter chooses; stops at an
  // unknown letter and at anything that stands between expressions. Returns isNewCommand.
  bool parse(const std::string& s);

  // One expression each, with its parentheses.
  bool updateTime(std::string_view str);
  void updateGameState(std::string_view s);
  void updateGYR(std::string_view str);
  void updateACC(std::string_view s);
  void updateFRP(std::string_view s);
  void updateJoint(std::string_view s);
  // Remembers a ball claim of the own team. Always false.
  bool updateHear(std::string_view str);
  void updateVision(std::string_view s);

  // jointSide false is left. Joints count from 1, angles are degrees.
  void updateJoint(bool jointSide, bool isArm, int jointNo, double JointValue);
  void updateHeadJoint(int jointNo, double JointValue);

  // One object of a vision expression.
  void setVision(std::string_view str);
  // One term of a seen player, without its parentheses.
  void setPositions(std::string_view strt);
  // A sighting of a player: distance in metres, azimuth and elevation in degrees, camera frame.
  // `pbody`, the body part that was seen, makes no difference. Ignores ids outside 1 to 11.
  void setCameraPlayer(std::string_view tname, int id, std::string_view pbody, double a1, double a2,
                       double a3);
  // Both always true. Camera frame.
  bool addCameraBall(Vector vec);
  bool addCameraLine(Vector vec1, Vector vec2);
  // REQUIRES fno from 0 to 7.
  void updateCameraFlag(Vector vec, int fno);
  // The ball's displacement between its two last sightings, divided by 0.94. Metres per sighting.
  void updateBallVelocity();

  // --- From the camera to the pitch frame (WorldModel.cpp) ---------------------------------------

  // Each carries the objects seen now by one frame.
  void setBodyAllObjects();
  void setRelativeAllObjects();
  void setGlobalAllObjects();

  // Index of a landmark: `no` (0 or 1), + 2 at the right end, + 4 for a goal post.
  static int getFlagNumber(bool isFieldFlag, bool isRight, int no);

  // Fills the landmark table from the configuration, turned by 180 degrees for a team on the right;
  // final once the own number has been heard.
  void setFlags();

  // Estimates the own position from the landmarks in sight and blends it with the last one; then
  // carries ball and players to the pitch frame. Does neither without a landmark in sight.
  void localize();

  // Rebuilds the orientation from pairs of landmarks; false, and no change, without enough of them.
  bool correctRotation();
  // The unit vector from landmark b to landmark a in the torso frame, counted in `count`; zero,
  // uncounted, when one of them was seen a second or more in the future.
  Vector useFlags(int a, int b, int& count);

  // --- Questions ---------------------------------------------------------------------------------

  // True after more than 40 bad position estimates in a row, whatever the name says.
  bool isValidVision() const { return isValidPosition > 40; }

  // Whether the filtered accelerometer says that the robot lies down, and how: sets `fall`.
  bool isFall();

  // Within half a metre of `v` in x and in y. Pitch frame.
  bool isInBeamLocation(const Vector& v) const;

  // Signed bearing of a point of the pitch frame from the torso's forward axis, degrees, positive
  // to the left.
  double getAngleTo(Vector vec) const;

  // The own position in the pitch frame.
  const Vector& getAgentPosition() const { return mySelf->GlobalPosition; }
  PlayMode getPlayMode() const { return playMode; }
  const Timer& getTimer() const { return *timer; }
  Timer& setTimer() { return *timer; }

  // As in Self: joints count from 1, side 0 is left.
  Joint* getHandJoint(int jointNum, int jointSide) {
    return mySelf->getHandJoint(jointNum, jointSide);
  }
  Joint* getLegJoint(int jointNum, int jointSide) {
    return mySelf->getLegJoint(jointNum, jointSide);
  }
  Joint* getHeadJoint(int jointNum) { return mySelf->getHeadJoint(jointNum); }

  // --- State -------------------------------------------------------------------------------------

  Timer* timer;                      // owned
  bool isNewCommand = false;         // returned by parse, never set
  bool setFlagCheck = false;         // the landmark table is final
  bool visionThisCycle = false;      // the current message held vision
  Flag flag[kFlags];                 // see getFlagNumber
  std::vector<FieldLine> fieldLine;  // lines of the current message
  TeamSide ourSide = SIDE_ILLEGAL;
  int flagCounted = 0;  // landmarks used in the last position estimate
  PlayMode playMode = PM_BEFORE_KICK_OFF;
  int ourGoals = 0;
  int oppGoals = 0;
  int isValidPosition = 0;           // bad position estimates in a row
  bool isInit = false;               // the server has told the own number
  float gameTime = 0.0f;             // seconds; the one time base of the player
  FallOrientation fall = FALL_NONE;  // as the last isFall() found it
  Ball* ball;                        // owned
  Player player[kTeams][kPlayers];  // [0 own team, 1 opponents][uniform number - 1], on either side
  Self* mySelf;                     // owned
  std::string heards;               // emptied by every hear
  Say* say;                         // owned
  int s = 0;                        // row of `player` that the player being parsed belongs to

  // The last ball claim heard; it never ages.
  int fastestTeammateUnum = -1;
  int fastestReachCycle = 9999;  // cycles that the claimer needs
  bool fastestIsFall = false;
  double lastTimeHeard = -1.0;  // game time

 private:
  // Where the agent stands by each landmark, pitch frame, and the squared distance of the landmark
  // on the ground; zeros for the unseen.
  struct Estimates {
    Vector position[kFlags];
    float squaredDistance[kFlags] = {};
  };

  // --- The steps of localize ---

  // From the landmarks in sight, which it counts in flagCounted.
  Estimates estimateByLandmark();
  // By ascending distance; the unseen, at 0, come first.
  static void sortByDistance(Estimates& estimates);
  // The nearest landmark weighs most, as much as there are landmarks; the next one by one less. An
  // estimate of exactly the pitch centre looks like an unseen landmark and is passed over.
  static Vector weightedMean(const Estimates& estimates, int counted);
  // How far the estimates lie from their mean, on the ground, in sum. The index runs over landmark
  // numbers, not over the landmarks in sight: of three in sight only those among numbers 0 to 2 are
  // looked at. Recorded behaviour; takePosition depends on it.
  double disagreement(Vector mean) const;
  // Blends the estimate with the last position, the more of the last the larger the error, and
  // carries ball and players to the pitch frame.
  void takePosition(Vector mean, double errorLen);

  // One seen player of a vision expression.
  void setPlayer(std::string_view expression);
  // The player with that number; nullptr for a number outside 1 to 11.
  Player* seenPlayer(std::string_view team, int number);
  // The object is seen now, there in the camera frame.
  void storeSighting(Object& object, Vector cameraPosition);
  const std::string& ownTeamName();
  bool isSeenNow(const Object& object) const { return object.LastTimeSeen == gameTime; }

  std::string teamName;  // of the configuration; empty until first asked for
};

#endif  // QUOLNARIS_WORLDMODEL_WORLDMODEL_H_
