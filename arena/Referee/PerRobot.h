#ifndef QUOLNARIS_REFEREE_PERROBOT_H_
#define QUOLNARIS_REFEREE_PERROBOT_H_

#include <algorithm>
#include <span>
#include <vector>

#include "Referee/RefereeWorld.h"

namespace arena {

// One value of T for each robot that was asked for. Linear search: there are at most 22 robots.
template <class T>
class PerRobot {
 public:
  // The value of the robot; a default one is made at the first call.
  T& operator[](RobotHandle robot) {
    for (Entry& entry : entries_) {
      if (entry.robot == robot) return entry.value;
    }
    return entries_.emplace_back(Entry{robot, T()}).value;
  }
  // The value of the robot, or a default one.
  T get(RobotHandle robot) const {
    for (const Entry& entry : entries_) {
      if (entry.robot == robot) return entry.value;
    }
    return T();
  }
  // Forgets all robots that are not in `present`.
  void keep(std::span<const RobotView> present) {
    std::erase_if(entries_, [&](const Entry& entry) {
      return std::none_of(present.begin(), present.end(),
                          [&](const RobotView& view) { return view.handle == entry.robot; });
    });
  }
  void clear() { entries_.clear(); }

 private:
  struct Entry {
    RobotHandle robot;
    T value;
  };
  std::vector<Entry> entries_;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_PERROBOT_H_
