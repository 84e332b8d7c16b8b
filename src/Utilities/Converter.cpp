#include "Utilities/Converter.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr double kPi = 3.1415926;  // short on purpose, see the header

}  // namespace

const char* const PlayModeNames[18] = {"BeforeKickOff",
                                       "KickOff_Left",
                                       "KickOff_Right",
                                       "PlayOn",
                                       "KickIn_Left",
                                       "KickIn_Right",
                                       "corner_kick_left",
                                       "corner_kick_right",
                                       "goal_kick_left",
                                       "goal_kick_right",
                                       "offside_left",
                                       "offside_right",
                                       "quit",
                                       "Goal_Left",
                                       "Goal_Right",
                                       "free_kick_left",
                                       "free_kick_right",
                                       "illegal"};

const char* const SideNames[4] = {"our", "left", "right", "illegal"};

double Converter::sinDeg(double a) {
  return std::sin(a * kPi / 180.0);
}

double Converter::cosDeg(double a) {
  return std::cos(a * kPi / 180.0);
}

double Converter::atan2Deg(double y, double x) {
  return std::atan2(y, x) * 180.0 / kPi;
}

int integerPart(double value) {
  using Limits = std::numeric_limits<int>;
  const bool fits = value > Limits::min() - 1.0 && value < Limits::max() + 1.0;
  return fits ? static_cast<int>(value) : Limits::min();
}

const char* getPlayModeStr(PlayMode mode) {
  return PlayModeNames[mode];
}

PlayMode getPlayModeFormStr(const char* text) {
  for (int i = PM_BEFORE_KICK_OFF; i < PM_ILLEGAL; ++i) {
    if (std::strncmp(text, PlayModeNames[i], std::strlen(PlayModeNames[i])) == 0) {
      return static_cast<PlayMode>(i);
    }
  }
  return PM_ILLEGAL;
}

const char* getSideStr(TeamSide side) {
  return SideNames[side];
}

TeamSide getSideFromStr(const char* text) {
  switch (text[0]) {
    case 'l':
      return SIDE_LEFT;
    case 'r':
      return SIDE_RIGHT;
    default:
      return SIDE_ILLEGAL;
  }
}
