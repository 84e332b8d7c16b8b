#include "Percepts/BodyPercepts.h"

#include "Common/Units.h"
#include "Percepts/PerceptText.h"

namespace arena {
namespace {

void writeFoot(const RobotBody& robot, int body, std::string& text) {
  const std::string& sensor = robot.model().bodies[body].sensor;
  if (sensor.empty()) return;
  const FootForce& reading = robot.footForce(body);
  if (!reading.contact) return;
  text += "(FRP (n ";
  text += sensor;
  text += ") (c ";
  appendReals(text, reading.point);
  text += ") (f ";
  appendReals(text, reading.force);
  text += "))";
}

}  // namespace

void writeTorsoSensors(const RobotBody& robot, std::string& text) {
  text += "(GYR (n torso) (rt ";
  appendReals(text, robot.gyro());
  text += "))(ACC (n torso) (a ";
  appendReals(text, robot.accelerometer());
  text += "))";
}

void writeJoints(const RobotBody& robot, std::size_t begin, std::size_t end, std::string& text) {
  for (std::size_t i = begin; i < end; ++i) {
    const JointSpec& joint = robot.model().joints[i];
    writeFoot(robot, joint.child, text);
    text += "(HJ (n ";
    text += joint.perceptor;
    text += ") (ax ";
    appendReal(text, robot.jointAngle(static_cast<int>(i)) * kDegreesPerRadian);
    text += "))";
  }
}

}  // namespace arena
