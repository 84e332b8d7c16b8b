#ifndef QUOLNARIS_PERCEPTS_PERCEPT_H_
#define QUOLNARIS_PERCEPTS_PERCEPT_H_

#include <array>
#include <string>

#include "Common/GameState.h"
#include "Common/Scene.h"
#include "Percepts/GamePercept.h"
#include "Percepts/Hearing.h"
#include "Percepts/Vision.h"
#include "Physics/RobotBody.h"

namespace arena {

// What is the same for all agents in a cycle.
struct Surroundings {
  const Scene& scene;
  const GameState& game;
  const std::array<std::string, 2>& teamNames;  // by Side
};

// Appends the whole percept of the agent that has this robot. `shirt`: what it is told about
// itself, or null. `vision`: null in cycles without a picture.
// REQUIRES that the robot is in the scene.
void writePercept(const Surroundings& surroundings, const RobotBody& robot, const Shirt* shirt,
                  const Hearing& hearing, Vision* vision, std::string& text);

}  // namespace arena

#endif  // QUOLNARIS_PERCEPTS_PERCEPT_H_
