#include "Referee/Touching.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "Referee/Rules.h"

namespace arena {

namespace {

bool isFoot(Body body) {
  return body == Body::RightFoot || body == Body::LeftFoot || body == Body::RightToe ||
         body == Body::LeftToe;
}

// Disjoint sets of the numbers below a count.
class Groups {
 public:
  explicit Groups(std::size_t count) : parent_(count) {
    std::iota(parent_.begin(), parent_.end(), std::size_t{0});
  }
  std::size_t of(std::size_t member) const {
    while (parent_[member] != member) member = parent_[member];
    return member;
  }
  void join(std::size_t a, std::size_t b) { parent_[of(a)] = of(b); }

 private:
  std::vector<std::size_t> parent_;
};

}  // namespace

std::vector<TouchingGroups::Offence> TouchingGroups::update(std::span<const RobotView> players,
                                                            std::span<const RobotContact> contacts,
                                                            Random& random) {
  const auto position = [players](RobotHandle robot) {
    const auto found = std::find_if(players.begin(), players.end(), [robot](const RobotView& view) {
      return view.handle == robot;
    });
    return static_cast<std::size_t>(found - players.begin());
  };
  Groups groups(players.size());
  std::vector<bool> touching(players.size(), false);
  for (const RobotContact& contact : contacts) {
    if (isFoot(contact.firstBody) && isFoot(contact.secondBody)) continue;
    const std::size_t a = position(contact.first);
    const std::size_t b = position(contact.second);
    if (a == players.size() || b == players.size()) continue;
    groups.join(a, b);
    touching[a] = touching[b] = true;
  }

  joined_.keep(players);
  std::vector<std::size_t> fresh;
  for (std::size_t i = 0; i < players.size(); ++i) {
    long& rank = joined_[players[i].handle];
    if (!touching[i]) {
      rank = 0;
    } else if (rank == 0) {
      fresh.push_back(i);
    }
  }
  random.shuffle(fresh);
  for (const std::size_t i : fresh) joined_[players[i].handle] = ++lastRank_;

  std::vector<Offence> offences;
  for (std::size_t root = 0; root < players.size(); ++root) {
    std::vector<std::size_t> members;
    for (std::size_t i = 0; i < players.size(); ++i) {
      if (groups.of(i) == root) members.push_back(i);
    }
    if (members.size() <= static_cast<std::size_t>(kMaxTouching)) continue;
    std::sort(members.begin(), members.end(), [&](std::size_t a, std::size_t b) {
      return joined_[players[a].handle] > joined_[players[b].handle];
    });
    std::array<int, 3> count{};
    Eigen::Vector2d sum = Eigen::Vector2d::Zero();
    for (const std::size_t member : members) {
      ++count[index(players[member].side)];
      sum += players[member].torso.translation().head<2>();
    }
    Side team = players[members.front()].side;
    if (count[index(team)] < count[index(opponent(team))]) team = opponent(team);
    const auto culprit = std::find_if(members.begin(), members.end(), [&](std::size_t member) {
      return players[member].side == team && players[member].number != kGoalieNumber;
    });
    if (culprit != members.end()) {
      offences.push_back({players[*culprit].handle, sum / static_cast<double>(members.size())});
    }
  }
  return offences;
}

}  // namespace arena
