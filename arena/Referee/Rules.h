#ifndef QUOLNARIS_REFEREE_RULES_H_
#define QUOLNARIS_REFEREE_RULES_H_

#include "Common/Pitch.h"
#include "Common/Units.h"

namespace arena {

// The numbers of the game. Metres, seconds, metres per second and degrees.

// Halves and kick-off.
inline constexpr float kHalfTime = 300.0f;
inline constexpr float kKickOffWait = 30.0f;  // before an automatic kick-off

// Set plays.
inline constexpr float kGoalPause = 3.0f;
inline constexpr float kSetPlayPause = 1.0f;
// A touch up to this age of the mode does not take the kick: the ball has just been placed.
inline constexpr float kSetPlayTouchAge = 1.03f;
inline constexpr float kSetPlayTimeOut = 15.0f;
inline constexpr double kFreeKickDistance = 2.0;
inline constexpr double kMoveDistance = 2.5;  // where players who stand too near are put
inline constexpr double kKickerDistance = 0.5;
inline constexpr double kGoalKickDistance = 1.0;
// Half way between the goal post and the corner.
inline constexpr double kCornerKickY = (kFieldWidth + kGoalWidth) / 4 - kBallRadius;
// The ball is out when all of it is across the line by this much.
inline constexpr double kOutMargin = 0.001;

// Moving players.
inline constexpr double kAgentRadius = 0.4;
inline constexpr int kPlaceAttempts = 100;
inline constexpr double kPlaceStep = 0.4;
inline constexpr double kPlaceBallDistance = 1.0;
// No player is put behind a goal line nearer to its middle than this.
inline constexpr double kBehindGoalY = kGoalWidth / 2 + kAgentRadius;
// How far beyond the lines players are still kept out of the other half.
inline constexpr double kHalfMargin = 10.0;

// Kick restrictions.
inline constexpr float kKickContact = 0.1f;
// With so many agents or fewer nobody could take part in what the restrictions ask for.
inline constexpr int kFewAgents = 2;
// A ball found deep in the goal counts if it was in the field at most this long ago.
inline constexpr float kGoalLookBack = 1.0f;

// Pass mode.
inline constexpr float kPassModeDuration = 4.0f;
inline constexpr float kPassModeInterval = 3.0f;
inline constexpr float kPassModeScoreWait = 10.0f;
inline constexpr double kPassModeBallSpeed = 0.05;
inline constexpr double kPassModePlayerDistance = 0.5;
inline constexpr double kPassModeOpponentDistance = 1.0;
inline constexpr double kPassModeOpponentPad = 0.1;
inline constexpr double kPassModeBallDistance = 1.0;

// Fouls.
inline constexpr int kGoalieNumber = 1;
inline constexpr int kMaxInOwnArea = 3;
inline constexpr int kMaxTouching = 2;
inline constexpr float kFoulHoldTime = 0.5f;
inline constexpr double kFoulHoldHeight = 1.0;
inline constexpr double kFoulHoldRise = 0.01;  // per cycle
inline constexpr double kLyingHeight = 0.15;
inline constexpr double kStandingHeight = 0.25;
inline constexpr float kLyingLimit = 15.0f;
inline constexpr float kGoalieLyingLimit = 30.0f;
inline constexpr float kNotStandingLimit = 30.0f;
inline constexpr float kGoalieNotStandingLimit = 60.0f;
inline constexpr float kStandingTime = 0.5f;  // after which a player counts as standing again
inline constexpr double kIncapableY = 10.1;   // beyond, nobody is counted as incapable

// Charging.
inline constexpr float kChargingMovedTime = 1.0f;
inline constexpr double kChargingBallDistance = 1.0;
inline constexpr double kChargingBallAngle = 30.0;
inline constexpr double kChargingSpeed = 0.4;
inline constexpr double kChargingImpactSpeed = 0.2;
inline constexpr double kChargingDistanceMargin = 0.05;
inline constexpr double kChargingAngleMargin = 15.0;
inline constexpr double kChargingBallContact = 0.1;
inline constexpr float kChargingImmunity = 1.0f;
inline constexpr float kChargingContactTime = 0.2f;

// Self-collision.
inline constexpr double kSelfCollisionOverlap = 0.04;
inline constexpr float kFreezeTime = 1.0f;
inline constexpr float kFreezeImmunity = 2.0f;

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_RULES_H_
