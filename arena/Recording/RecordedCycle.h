#ifndef QUOLNARIS_RECORDING_RECORDEDCYCLE_H_
#define QUOLNARIS_RECORDING_RECORDEDCYCLE_H_

#include <array>
#include <vector>

#include "Common/Events.h"
#include "Common/PlayMode.h"
#include "Common/Scene.h"

namespace arena {

// What a match recording holds of one cycle.

struct RecordedRobot {
  int handle = -1;  // tells robots with the same number apart while writing; not in the file
  Side side = Side::Left;
  int number = 0;
  int type = 0;
  Eigen::Isometry3d torso = Eigen::Isometry3d::Identity();  // world from torso
  std::array<float, kMaxJoints> joints{};                   // degrees; jointCount(type) of them
};

struct RecordedFoul {
  FoulType type = FoulType::Touching;
  Side side = Side::Left;
  int number = 0;
};

struct RecordedCycle {
  float time = 0;  // game time, s
  PlayMode mode = PlayMode::BeforeKickOff;
  int half = 1;
  std::array<int, 2> score = {0, 0};                       // by Side
  Eigen::Isometry3d ball = Eigen::Isometry3d::Identity();  // world from ball
  std::vector<RecordedRobot> robots;                       // in order of connection
  std::vector<GoalEvent> goals;                            // of this cycle
  std::vector<RecordedFoul> fouls;                         // the same
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_RECORDEDCYCLE_H_
