// Any bytes as messages of the server, one in each line, into one world model: no crash, no access
// out of bounds, no undefined behaviour, and tables stay tables.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>

#include "Utilities/Config.h"
#include "WorldModel/WorldModel.h"

namespace {

void require(bool condition, const char* what) {
  if (condition) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

void configure() {
  for (const char* const file : {"Agent", "Formation", "WorldModel"}) config.add(file);
  config["Agent"].addGroup("Public");
  config["Agent"]["Public"].add("UniformNumber", "9");
  config["Agent"]["Public"].add("TeamName", "Quolnaris");
  config["Agent"].addGroup("AgentPost");
  config["Agent"]["AgentPost"].add("P", "3 2 2 2 2 1 1 1 0 0 0");
  config["Formation"].addGroup("Beam");
  config["Formation"]["Beam"].add("p9", "-2.5 3.5 0");
  config["WorldModel"].addGroup("FlagPosition");
  for (const auto& [key, position] : {std::pair{"f100", "-15 10 0"},
                                      {"f101", "-15 -10 0"},
                                      {"f110", "15 10 0"},
                                      {"f111", "15 -10 0"},
                                      {"f000", "-15 1.05 0.8"},
                                      {"f001", "-15 -1.05 0.8"},
                                      {"f010", "15 1.05 0.8"},
                                      {"f011", "15 -1.05 0.8"}}) {
    config["WorldModel"]["FlagPosition"].add(key, position);
  }
}

void check(WorldModel& model) {
  require(model.getPlayMode() >= PM_BEFORE_KICK_OFF && model.getPlayMode() <= PM_ILLEGAL, "mode");
  require(model.ourSide >= SIDE_LEFT && model.ourSide <= SIDE_ILLEGAL, "side");
  require(model.flagCounted >= 0 && model.flagCounted <= 8, "landmarks");
  require(model.s == 0 || model.s == 1, "row of players");
  require(model.setFlagCheck == model.isInit, "landmark table");
  require(!model.fastestIsFall, "heard fall");
  require(model.isFall() == (model.fall != FALL_NONE), "fall");
  require(model.getHeadJoint(2)->getName() == "he2", "joint names");
  model.getAngleTo(Vector(15, 0, 0));
  for (auto& team : model.player) {
    for (Player& player : team) player.getBodyDirection(model.gameTime);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  configure();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  WorldModel model;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
    model.update(std::string(line));
    check(model);
  }
  return 0;
}
