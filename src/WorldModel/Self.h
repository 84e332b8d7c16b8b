#ifndef QUOLNARIS_WORLDMODEL_SELF_H_
#define QUOLNARIS_WORLDMODEL_SELF_H_

#include <vector>

#include "Mathematics/Matrix.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"
#include "WorldModel/FieldLine.h"
#include "WorldModel/Frp.h"
#include "WorldModel/Joint.h"
#include "WorldModel/Player.h"

// The agent's own body as the sensors report it: joint angles, foot forces, accelerometer, gyro,
// and the orientation that follows from them.
//
// Reads:    Agent.conf (uniform number, role), Formation.conf (start heading, checked only).
// Provides: joints for the controllers, the rotations camera -> torso (`neck`) and
//           torso -> pitch-parallel (`gyro`, `body`).
class Self : public Player {
 public:
  // Names the 22 joints, sets every rotation to identity, reads number and role.
  // REQUIRES: the configuration is loaded and lists a role for the number (asserted).
  Self();

  // Joints count from 1 within a limb: 1 to 4 of an arm, 1 to 7 of a leg, 1 to 2 of the head.
  // `jointSide` is 0 (false) for left and 1 (true) for right. Angles are degrees as sensed.
  // REQUIRES of the get forms: an existing joint. The set forms ignore one that does not exist,
  // since their numbers come from the wire.
  Joint* getHandJoint(int jointNo, int jointSide);
  Joint* getLegJoint(int jointNo, int jointSide);
  Joint* getHeadJoint(int jointNo);
  void setHandJoint(int jointNo, int jointSide, float angle);
  void setLegJoint(int jointNo, int jointSide, float angle);
  void setHeadJoint(int jointNo, float angle);

  void setLeftFRP(const FRP& frp) { leftFRP = frp; }
  const FRP& getLeftFRP() const { return leftFRP; }
  void setRightFRP(const FRP& frp) { rightFRP = frp; }
  const FRP& getRightFRP() const { return rightFRP; }

  // Degrees turned in this cycle, about the sensor's own axes.
  void setGyrVector(Vector rate) { gyrVector = rate; }
  Vector getGyrVector() const { return gyrVector; }

  // m/s^2, torso frame as the sensor has it, after the low-pass filter.
  void setAccellerator(Vector value) { accellerator = value; }
  Vector getAccellerator() const { return accellerator; }

  // Ground truth in the pitch frame, where the server is set to tell it; never used to play.
  void setServerMypos(Vector position) { serverMypos = position; }
  Vector getServerMypos() const { return serverMypos; }

  // The setters copy the elements; the getters' results must not be kept across an update.
  void setGyroRotation(const Matrix<4, 4>& rotation) { gyro = rotation; }
  const Matrix<4, 4>& getGyroRotation() const { return gyro; }
  void setBodyRotation(const Matrix<4, 4>& rotation) { body = rotation; }
  const Matrix<4, 4>& getBodyRotation() const { return body; }
  void setNeckRotation(const Matrix<4, 4>& rotation) { neck = rotation; }
  const Matrix<4, 4>& getNeckRotation() const { return neck; }
  void setVisionRotation(const Matrix<4, 4>& rotation) { vision = rotation; }
  const Matrix<4, 4>& getVisionRotation() const { return vision; }
  void setTorsoTurn(const Matrix<4, 4>& rotation) { torsoTurn = rotation; }
  const Matrix<4, 4>& getTorsoTurn() const { return torsoTurn; }
  const Matrix<4, 4>& getHeadToNeck() const { return headToNeck; }
  const Matrix<4, 4>& getNeckToGyro() const { return neckToGyro; }

  // The role from the configuration.
  Post getAgentPost() const { return agentPost; }
  // The uniform number from the configuration; Player::getPlayerNumber is the server's word for it.
  int getAgentNum() const { return playerNumber; }
  void setPlayerPost(int post) { playerPost = post; }
  int getPlayerPost() const { return playerPost; }

  // Once per message: gyro integration, then the neck rotation.
  void preProc();

  // gyro := gyro * R, with R the rotation of this cycle. Always true.
  bool calculateGyroRotation();
  // neck := the rotation camera -> torso for the sensed head joints. Always true.
  bool calculateNeckRotation();
  // With a line in sight, body := gyro; without one body stays. Classifies the lines on the way.
  // Always false.
  bool calculateBodyRotation(std::vector<FieldLine>& line);

  // gyro and vision become identity: facing +x.
  void reset();

  // Role by number 0 to 3; DEFENCE for any other, unlike the constructor, which takes ATTACK.
  Post calculatePost(int p) const;
  void changePost() {}

  // The agent's position by one landmark: flagreal - body * flagcam, pitch frame.
  const Vector localize(const Vector& flagcam, const Vector& flagreal) const;

  Joint handJoints[2][kHandJoints];  // [side][joint - 1]
  Joint legJoints[2][kLegJoints];    // [side][joint - 1]
  Joint headJoints[kHeadJoints];
  FRP leftFRP;
  FRP rightFRP;
  Vector gyrVector;
  Vector accellerator;
  Vector serverMypos;
  Matrix<4, 4> vision;      // identity, of no effect
  Matrix<4, 4> gyro;        // torso -> pitch-parallel, by integration
  Matrix<4, 4> neck;        // camera -> torso
  Matrix<4, 4> body;        // torso -> pitch-parallel, as vision uses it
  Matrix<4, 4> torsoTurn;   // identity, of no effect
  Matrix<4, 4> headToNeck;  // translation, which a Matrix does not apply to a Vector
  Matrix<4, 4> neckToGyro;
  int playerPost = 0;
  bool visioncheck = false;  // unused
  Post agentPost = ATTACK;
  int playerNumber = 0;  // hides Player::playerNumber, which the server's word sets
  Vector gyrAngle;       // running sum of the gyro samples, degrees; read by nobody

 private:
  bool startHeadingChecked = false;
};

#endif  // QUOLNARIS_WORLDMODEL_SELF_H_
