#include "Referee/Posture.h"

#include <cmath>

#include "Referee/Rules.h"

namespace arena {

namespace {

int cycles(float seconds) {
  return static_cast<int>(std::lround(seconds / kCycle));
}

}  // namespace

void Posture::update(double height, double y) {
  if (height >= kStandingHeight) {
    lying_ = 0;
    if (++upright_ > cycles(kStandingTime)) notStanding_ = 0;
    return;
  }
  upright_ = 0;
  if (std::abs(y) >= kIncapableY) return;
  ++notStanding_;
  if (height < kLyingHeight) ++lying_;
}

bool Posture::incapable(bool goalie) const {
  return lying_ > cycles(goalie ? kGoalieLyingLimit : kLyingLimit) ||
         notStanding_ > cycles(goalie ? kGoalieNotStandingLimit : kNotStandingLimit);
}

}  // namespace arena
