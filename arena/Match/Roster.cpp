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
  return std::accumulate(of_type.begin(), of_type.end(), 0);
}

bool Roster::Team::mayAdd(int type) const {
  if (players() >= kMaxNumber || of_type[type] >= kMaxOfOneType) return false;
  int types = 0;
  for (int other = 0; other < kRobotTypeCount; ++other) {
    if (of_type[other] > 0) ++types;
    if (other != type && of_type[type] + 1 + of_type[other] > kMaxOfTwoTypes) return false;
  }
  const int missing = std::max(0, kMinTypes - types);
  return of_type[type] == 0 || kMaxNumber - players() > missing;
}

Eigen::Vector2d Roster::Team::takeStart() {
  const Eigen::Vector2d result = next_start;
  next_start.y() -= kStartStepY;
  if (next_start.y() < kStartMinY)
    next_start += Eigen::Vector2d(kStartStepX, kStartY - next_start.y());
  return result;
}

Roster::Roster() {
  for (Side side : kBothSides)
    teams_[index(side)].next_start = {ownGoalSign(side) * kStartX, kStartY};
}

void Roster::changeSides() {
  std::swap(teams_[0], teams_[1]);
  std::swap(teams_[0].next_start, teams_[1].next_start);  // belongs to the side
}

Roster::Team* Roster::teamOf(std::string_view name) {
  for (Side side : kBothSides) {
    Team& team = teams_[index(side)];
    if (team.name.empty()) team.name = name;
    if (team.name == name) return &team;
  }
  return nullptr;
}

std::optional<Roster::Player> Roster::admit(std::string_view team_name, int number, int type) {
  assert(type >= 0 && type < kRobotTypeCount);
  if (!isPrintable(team_name) || number < 0 || number > kMaxNumber) return std::nullopt;
  Team* team = teamOf(team_name);
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
  ++team->of_type[type];
  return Player{team == &teams_[0] ? Side::Left : Side::Right, number, team->takeStart()};
}

void Roster::release(Side side, int number, int type) {
  Team& team = teams_[index(side)];
  team.used[number] = false;
  --team.of_type[type];
}

}  // namespace arena
