#include "Percepts/Percept.h"

#include <algorithm>

#include "Percepts/BodyPercepts.h"

namespace arena {

void writePercept(const Surroundings& surroundings, const RobotBody& robot, const Shirt* shirt,
                  const Hearing& hearing, Vision* vision, std::string& text) {
  const auto& [scene, game, teamNames] = surroundings;
  writeTime(static_cast<float>(scene.time), text);
  writeGameState(game, shirt, text);
  hearing.write(teamNames, game.time, text);
  writeTorsoSensors(robot, text);
  writeJoints(robot, 0, kHeadJoints, text);
  if (vision != nullptr) {
    const auto self =
        std::find_if(scene.robots.begin(), scene.robots.end(),
                     [&robot](const SceneRobot& r) { return r.handle == robot.handle(); });
    vision->write(scene, static_cast<std::size_t>(self - scene.robots.begin()), teamNames, text);
  }
  writeJoints(robot, kHeadJoints, robot.model().joints.size(), text);
}

}  // namespace arena
