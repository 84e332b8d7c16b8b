#include "Agent/Robot.h"

#include <cassert>

#include "Utilities/Config.h"

Robot::Robot() : command(new Command) {}

bool Robot::initConnection() {
  ConfigGroup& server = config["Agent"]["Server"];
  connection = new Connection(server["HostName"].asString(), server["PlayerPort"].asInt());
  return connection->init();
}

void Robot::sendRsg() {
  command->setRSG();
  exchange();
  rsgCheck = true;
}

void Robot::sendInit() {
  ConfigGroup& self = config["Agent"]["Public"];
  command->setInitial(self["TeamName"].asString(), self["UniformNumber"].asInt());
  exchange();
  initCheck = true;
}

void Robot::sendBeam() {
  command->setBeam(startPlace());
  exchange();
}

Vector Robot::startPlace() const {
  ConfigGroup& self = config["Agent"]["Public"];
  const std::string key = "p" + std::to_string(self["UniformNumber"].asInt());
  const char* group = self["Penalty"].asBool() ? "Penalty" : "Beam";
  const ConfigValue& place = config["Formation"][group][key];
  assert(place.size() > 2);
  return Vector(place[0].asFloat(), place[1].asFloat(), place[2].asFloat());
}

void Robot::exchange() {
  command->setFinal();
  connection->sendMessage(command->getFinal());
  command->clear();
  connection->getMessage(msg);
  WM->update(msg);
}
