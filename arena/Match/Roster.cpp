#include "Match/Roster.h"

#include <algorithm>
#include <cassert>
#include <numeric>

namespace arena {
namespace {

constexpr double kStartX = 14.2;
constexpr double kStartY = 9.2;
constexpr double kStartStepX = 0.8;
constexpr double kStartStepY = 1.2;
constexpr double kStartMinY = -10.0;

// A name stands unquoted in percepts, so it must be one plain atom.
bool isPrintable(std::string_view name) {
  const auto plain = [](char c) {
    return c > ' ' && c <= '~' && std::string_view("()\"'\\;").find(c) == std::string_view::npos;
  };
  return !name.empty() && name.size() <= Roster::kMaxNameLength &&
         std::all_of(name.begin(), name.end(), plain);
}

}  // namespace

int Roster::Team::players() const {
  return std::accumulate(ofType.begin(), ofType.end(), 0);
}

bool Roster::Team::mayAdd(int type) const {
  if (players() >= kMaxNumber || ofType[type] >= kMaxOfOneType) return false;
  int types = 0;
  for (int other = 0; other < kRobotTypeCount; ++other) {
    if (ofType[other] > 0) ++types;
    if (other != type && ofType[type] + 1 + ofType[other] > kMaxOfTwoTypes) return false;
  }
  const int missing = std::max(0, kMinTypes - types);
  return ofType[type] == 0 || kMaxNumber - players() > missing;
}

Eigen::Vector2d Roster::Team::takeStart() {
  Eigen::Vector2d result = nextStart;
  nextStart.y() -= kStartStepY;
  if (nextStart.y() < kStartMinY) {
    nextStart += Eigen::Vector2d(kStartStepX, kStartY - nextStart.y());
  }
  return result;
}

Roster::Roster() {
  for (Side side : kBothSides) {
    teams_[index(side)].nextStart = {ownGoalSign(side) * kStartX, kStartY};
  }
}

void Roster::changeSides() {
  std::swap(teams_[0], teams_[1]);
  std::swap(teams_[0].nextStart, teams_[1].nextStart);  // belongs to the side
}

Roster::Team* Roster::teamOf(std::string_view name) {
  for (Side side : kBothSides) {
    Team& team = teams_[index(side)];
    if (team.name.empty()) team.name = name;
    if (team.name == name) return &team;
  }
  return nullptr;
}

std::optional<Roster::Player> Roster::admit(std::string_view teamName, int number, int type) {
  assert(type >= 0 && type < kRobotTypeCount);
  if (!isPrintable(teamName) || number < 0 || number > kMaxNumber) return std::nullopt;
  Team* team = teamOf(teamName);
  if (team == nullptr) return std::nullopt;
  if (number == 0) {
    const auto free = std::find(team->used.begin() + 1, team->used.end(), false);
    if (free == team->used.end()) return std::nullopt;
    number = static_cast<int>(free - team->used.begin());
  }
  if (team->used[number]) return std::nullopt;
  // A refusal for the type leaves the number taken: that is how the league's server does it.
  team->used[number] = true;
  if (!team->mayAdd(type)) return std::nullopt;
  ++team->ofType[type];
  return Player{team == &teams_[0] ? Side::Left : Side::Right, number, team->takeStart()};
}

void Roster::release(Side side, int number, int type) {
  Team& team = teams_[index(side)];
  team.used[number] = false;
  --team.ofType[type];
}

}  // namespace arena
