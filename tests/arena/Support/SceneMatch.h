#ifndef QUOLNARIS_TESTS_ARENA_SUPPORT_SCENEMATCH_H_
#define QUOLNARIS_TESTS_ARENA_SUPPORT_SCENEMATCH_H_

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Match/Match.h"

namespace arena {

// The file of tests/data/scenes with this name. Throws std::runtime_error if it cannot be read.
nlohmann::json readScenes(const std::string& file);

// The match in which the scenes of tests/data/scenes are played: two teams of four robots of type 0
// at the places that their README tells, asleep, without any noise.
//
// Players are named by side and number: L1 to L4, R1 to R4.
class SceneMatch {
 public:
  // A time in which neither mode nor score changed.
  struct Stretch {
    PlayMode mode = PlayMode::BeforeKickOff;
    std::array<int, 2> score{};
    float since = 0.0f;                              // game time of its first cycle, s
    Eigen::Vector3d ball = Eigen::Vector3d::Zero();  // what a viewer saw in its last cycle, m
    std::map<std::string, Eigen::Vector3d> players;  // torso centres, likewise
  };

  SceneMatch();

  // What a scene asks for. A command acts in the next cycle, what an agent says once as well.
  void command(std::string_view text) { match_.trainer().receive(text); }
  void say(const std::string& player, std::string_view text);
  // Throws the ball at the player, from half a metre in front of him.
  void hit(const std::string& player);
  void cycles(int count);

  // What has been since the start or the last call of this, in order.
  std::vector<Stretch> takeStretches();
  // Where the torso is; none if the robot is gone.
  std::optional<Eigen::Vector3d> place(const std::string& player);

 private:
  void join(Side side, int number);
  void observe();
  const RobotView* find(const std::string& player);

  Match match_;
  std::map<std::string, Match::AgentId> agents_;
  std::vector<Stretch> stretches_;
};

}  // namespace arena

#endif  // QUOLNARIS_TESTS_ARENA_SUPPORT_SCENEMATCH_H_
