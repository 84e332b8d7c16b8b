#ifndef QUOLNARIS_COMMON_PLAYMODE_H_
#define QUOLNARIS_COMMON_PLAYMODE_H_

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "Common/Side.h"

namespace arena {

// The play modes; the values are their indices in the monitor stream. The side in a name has the
// kick or has scored.
enum class PlayMode {
  BeforeKickOff,
  KickOffLeft,
  KickOffRight,
  PlayOn,
  KickInLeft,
  KickInRight,
  CornerKickLeft,
  CornerKickRight,
  GoalKickLeft,
  GoalKickRight,
  OffsideLeft,
  OffsideRight,
  GameOver,
  GoalLeft,
  GoalRight,
  FreeKickLeft,
  FreeKickRight,
  DirectFreeKickLeft,
  DirectFreeKickRight,
  PassLeft,
  PassRight,
};

inline constexpr std::size_t kPlayModeCount = 21;

// What the two modes of the two sides have in common.
enum class ModeKind {
  BeforeKickOff,
  KickOff,
  PlayOn,
  KickIn,
  CornerKick,
  GoalKick,
  Offside,
  GameOver,
  Goal,
  FreeKick,
  DirectFreeKick,
  Pass,
};

struct ModeEntry {
  std::string_view name;  // as agents, trainers and monitors spell it
  ModeKind kind;
  Side side;
};

// By PlayMode.
inline constexpr std::array<ModeEntry, kPlayModeCount> kPlayModes = {{
    {"BeforeKickOff", ModeKind::BeforeKickOff, Side::None},
    {"KickOff_Left", ModeKind::KickOff, Side::Left},
    {"KickOff_Right", ModeKind::KickOff, Side::Right},
    {"PlayOn", ModeKind::PlayOn, Side::None},
    {"KickIn_Left", ModeKind::KickIn, Side::Left},
    {"KickIn_Right", ModeKind::KickIn, Side::Right},
    {"corner_kick_left", ModeKind::CornerKick, Side::Left},
    {"corner_kick_right", ModeKind::CornerKick, Side::Right},
    {"goal_kick_left", ModeKind::GoalKick, Side::Left},
    {"goal_kick_right", ModeKind::GoalKick, Side::Right},
    {"offside_left", ModeKind::Offside, Side::Left},
    {"offside_right", ModeKind::Offside, Side::Right},
    {"GameOver", ModeKind::GameOver, Side::None},
    {"Goal_Left", ModeKind::Goal, Side::Left},
    {"Goal_Right", ModeKind::Goal, Side::Right},
    {"free_kick_left", ModeKind::FreeKick, Side::Left},
    {"free_kick_right", ModeKind::FreeKick, Side::Right},
    {"direct_free_kick_left", ModeKind::DirectFreeKick, Side::Left},
    {"direct_free_kick_right", ModeKind::DirectFreeKick, Side::Right},
    {"pass_left", ModeKind::Pass, Side::Left},
    {"pass_right", ModeKind::Pass, Side::Right},
}};

inline constexpr const ModeEntry& entry(PlayMode mode) {
  return kPlayModes[static_cast<std::size_t>(mode)];
}
inline constexpr std::string_view nameOf(PlayMode mode) {
  return entry(mode).name;
}
inline constexpr ModeKind kindOf(PlayMode mode) {
  return entry(mode).kind;
}
inline constexpr Side sideOf(PlayMode mode) {
  return entry(mode).side;
}

// The mode of this kind and side. REQUIRES: it exists.
inline constexpr PlayMode modeOf(ModeKind kind, Side side = Side::None) {
  for (std::size_t i = 0; i < kPlayModeCount; ++i) {
    if (kPlayModes[i].kind == kind && kPlayModes[i].side == side) return static_cast<PlayMode>(i);
  }
  return PlayMode::BeforeKickOff;
}

// The mode that is spelled like this, case included; none if there is no such mode.
inline constexpr std::optional<PlayMode> modeByName(std::string_view name) {
  for (std::size_t i = 0; i < kPlayModeCount; ++i) {
    if (kPlayModes[i].name == name) return static_cast<PlayMode>(i);
  }
  return std::nullopt;
}

// While the game is paused no fouls are whistled, no joints are frozen and agents may beam.
inline constexpr bool isPaused(PlayMode mode) {
  return kindOf(mode) == ModeKind::BeforeKickOff || kindOf(mode) == ModeKind::Goal;
}

// Game time stands still in these modes.
inline constexpr bool stopsClock(PlayMode mode) {
  return mode == PlayMode::BeforeKickOff || mode == PlayMode::GameOver;
}

}  // namespace arena

#endif  // QUOLNARIS_COMMON_PLAYMODE_H_
