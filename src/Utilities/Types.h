#ifndef QUOLNARIS_UTILITIES_TYPES_H_
#define QUOLNARIS_UTILITIES_TYPES_H_

// The enumerations that several floors of the player share. All are unscoped, because they also
// serve as table indices and as numbers in configuration files; their values are fixed.

/// The half of the pitch that a team defends, as the server names it.
enum TeamSide { SIDE_LEFT = 0, SIDE_RIGHT = 1, SIDE_ILLEGAL = 2 };

/// A side of the own body, wherever a `bool side` names one.
inline constexpr bool kLeft = false;
inline constexpr bool kRight = true;

/// The play modes of the game; their names on the wire are `PlayModeNames` (Utilities/Converter.h).
enum PlayMode {
  PM_BEFORE_KICK_OFF = 0,
  PM_KICK_OFF_LEFT = 1,
  PM_KICK_OFF_RIGHT = 2,
  PM_PLAY_ON = 3,
  PM_KICK_IN_LEFT = 4,
  PM_KICK_IN_RIGHT = 5,
  PM_CORNER_KICK_LEFT = 6,
  PM_CORNER_KICK_RIGHT = 7,
  PM_GOAL_KICK_LEFT = 8,
  PM_GOAL_KICK_RIGHT = 9,
  PM_OFFSIDE_LEFT = 10,
  PM_OFFSIDE_RIGHT = 11,
  PM_QUIT = 12,
  PM_GOAL_LEFT = 13,
  PM_GOAL_RIGHT = 14,
  PM_FREE_KICK_LEFT = 15,
  PM_FREE_KICK_RIGHT = 16,
  PM_ILLEGAL = 17
};

/// The motion and tactical actions, as the action arbiter tells them apart.
enum ActionType {
  AT_NONE = 0,
  AT_ALL = 1,
  AT_GO_TO_POINT = 2,
  AT_GO_TO_KICK = 3,
  AT_GO_TO_GOAL = 4,
  AT_DRIBBLE = 5,
  AT_GOAL = 6,
  AT_GO_BEHINDE_BALL = 7,
  AT_WALK = 8,
  AT_FORWALK = 9,
  AT_BACKWALK = 10,
  AT_SIDEWALK_RIGHT = 11,
  AT_SIDEWALK_LEFT = 12,
  AT_ENDSTEP = 13,
  AT_OMNIWALK = 14,
  AT_OMNIBACKWALK = 15,
  AT_OMNISIDEWALK = 16,
  AT_OMNITURN = 17,
  AT_TURN = 18,
  AT_BASIC_TURN = 19,
  AT_TURN_BALL = 20,
  AT_TURN_TO_POINT = 21,
  AT_STABLE_KICK = 22,
  AT_KICK = 23,
  AT_UNSTABLE_KICK = 24,
  AT_UNSTABLE1_KICK = 25,
  AT_SIDE_KICK = 26,
  AT_AIRKICK = 27,
  AT_TURN_AROUND_BALL = 28,
  AT_RESET = 29,
  AT_STANDUP_RESET = 30,
  AT_STANDUP_FRONT = 31,
  AT_STANDUP_BACK = 32,
  AT_FLIP = 33,
  AT_DIVE = 34
};

/// The role of a player in the team.
enum Post { ATTACK = 0, HALF_BACK = 1, DEFENCE = 2, GOALIE = 3 };

/// The way a fallen robot lies.
enum FallOrientation {
  FALL_FRONT = 0,
  FALL_BACK = 1,
  FALL_RIGHT = 2,
  FALL_LEFT = 3,
  FALL_NONE = 4
};

/// A compass of the pitch frame: NORTH is +x, EAST is +y, WEST is -x, SOUTH is -y. WEST opposite to
/// NORTH is no slip of the pen: the code that reads these directions is written against it.
enum Orientation { SOUTH = 0, WEST = 1, NORTH = 2, EAST = 3, UNKNOWN = 4 };

/// How a seen field line runs in the pitch-parallel frame: along the x axis, along y, or neither.
enum LineSlopeType { LINE_HORIZONTAL = 0, LINE_VERTICAL = 1, LINE_NONE = 2 };

/// The force resistance sensors under the feet.
enum TFRP { FRP_LEFT_FOOT = 0, FRP_RIGHT_FOOT = 1, FRP_ILLEGAL = 2 };

/// How three numbers describe a vector, see the constructor of `Vector`.
enum CoordinateSystem { CARTESIAN = 0, SPHERICAL = 1 };

/// A direction of falling, as the centre of mass tells it.
enum COMD { NONE = 0, FALL = 1, FRONT = 2, BACK = 3, RIGHT = 4, LEFT = 5 };

/// How far a kick shall carry, and along which axis.
enum KickMood { CLOSE_X = 0, CLOSE_Y = 1, MEDIUM_X = 2, DISTANT_X = 3, DISTANT_Y = 4 };

/// Whether the robot is about to fall, and to which side.
enum IsNearFall {
  NONE2 = 0,
  FALL2 = 1,
  NEAR_FALL_RIGHT = 2,
  NEAR_FALL_LEFT = 3,
  NEAR_FALL_FRONT = 4,
  NEAR_FALL_BACK = 5
};

#endif  // QUOLNARIS_UTILITIES_TYPES_H_
