#ifndef QUOLNARIS_AGENT_ROBOT_H_
#define QUOLNARIS_AGENT_ROBOT_H_

#include <string>

#include "Command/Command.h"
#include "Connection/Connection.h"
#include "Mathematics/Vector.h"
#include "WorldModel/WorldModel.h"

// The server side of the player: the link, the message under construction and the handshake.
//
// Reads:    Agent/Server/{HostName, PlayerPort}, Agent/Public/{TeamName, UniformNumber, Penalty},
//           Formation/{Beam, Penalty}/p<uniform number>.
// Provides: the scene, init and beam messages; every message received goes into WM.
//
// Each handshake step sends one message and then takes exactly one message from the server,
// whatever it says.
class Robot {
 public:
  Robot();

  // Opens the link to the configured server. The result is Connection::init()'s, which is true even
  // when the server refused: that shows at the first send.
  bool initConnection();

  // The scene message, which makes the server build the robot; sets rsgCheck.
  void sendRsg();

  // The init message, which makes the robot a member of its team; sets initCheck.
  void sendInit();

  // One beam message to startPlace().
  void sendBeam();

  // Declared for the family of messages; it has no body, so calling it does not link. The joints go
  // out with the answer of each cycle.
  void sendJoints();

  // The configured start of the own number: x, y in metres in the frame of the own team, z the
  // heading in degrees. In penalty mode it comes from the group "Penalty". Asserts that the
  // configuration gives three numbers.
  Vector startPlace() const;

  WorldModel* WM = nullptr;  // built and deleted by OurPlayer
  Command* command;          // lives to the end of the process
  bool rsgCheck = false;
  bool initCheck = false;
  bool beamCheck = false;  // read and written by nobody
  int beamCounter = 0;
  std::string msg;                   // the last message received
  Connection* connection = nullptr;  // lives to the end of the process

 private:
  // Sends what `command` holds, empties it, and lets WM absorb one message of the server.
  void exchange();
};

#endif  // QUOLNARIS_AGENT_ROBOT_H_
