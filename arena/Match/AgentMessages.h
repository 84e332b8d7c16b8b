#ifndef QUOLNARIS_MATCH_AGENTMESSAGES_H_
#define QUOLNARIS_MATCH_AGENTMESSAGES_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Physics/RobotModel.h"
#include "Wire/SExpression.h"

namespace arena {

// What one message of an agent asks for. Of several terms of one kind the last one counts, of hinge
// speeds the last one for each hinge.
struct AgentMessage {
  struct Init {
    int number = 0;
    std::string team;  // can be repeated in percepts as it is
  };
  struct Beam {
    double x = 0.0;  // m, the team's coordinates
    double y = 0.0;
    double turn = 0.0;  // degrees; all three are finite
  };
  struct JointSpeed {
    int joint = 0;       // index into the robot's joints
    double speed = 0.0;  // rad/s, as it was sent: also infinite or not a number
  };

  std::optional<int> scene;  // robot type, 0 to 4
  std::optional<Init> init;
  std::optional<Beam> beam;
  bool pass = false;
  std::vector<JointSpeed> speeds;  // in the order of the terms
  std::vector<std::string> says;   // speakable texts, likewise
  // What could not be understood, each in words for the log, with text of the agent in it.
  std::vector<std::string> complaints;
};

// Reads agents' messages. What it does not understand it leaves out and complains about.
class AgentMessages {
 public:
  // `model`: that of the agent's robot, which knows the names of its hinges. Null: the agent has no
  // robot yet; without a body it can only ask for one, and everything else is passed over. The
  // result is good until the next call.
  const AgentMessage& read(std::string_view frame, const RobotModel* model);

 private:
  SExpression expression_;
  AgentMessage message_;
};

}  // namespace arena

#endif  // QUOLNARIS_MATCH_AGENTMESSAGES_H_
