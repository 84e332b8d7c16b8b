#ifndef QUOLNARIS_REFEREE_PLACEMENT_H_
#define QUOLNARIS_REFEREE_PLACEMENT_H_

#include <Eigen/Geometry>

#include "Common/Units.h"
#include "Referee/PerRobot.h"
#include "Referee/RefereeWorld.h"

namespace arena {

// Moves players to where the rules want them, and searches a free place for each of them.
//
// All places are in the world frame, metres; all times are game time, seconds. Moving keeps pose,
// heading and height and zeroes the velocities.
class Placement {
 public:
  explicit Placement(RefereeWorld& world) : world_(world) {}

  // The box around a robot: its colliders and the flat box of +-0.2 m in the torso's x and y that
  // stands for its visible shape, turned with the torso.
  Eigen::AlignedBox3d bounds(const RobotView& robot) const;
  // The rectangle over the centres of its colliders.
  Eigen::AlignedBox2d centres(const RobotView& robot) const;

  // Players of the team whose bounds meet the sphere that lies on the ground around `centre` are
  // put 2.5 m from the centre towards their own goal line, with their own y; if that is behind the
  // line, they keep their x and get a y 2.5 m nearer to the middle than the centre.
  void keepOutOfCircle(Side team, const Eigen::Vector2d& centre, double radius, float time);
  // Players of the team whose centres meet the rectangle are put 2.5 m beyond its edge, towards
  // their own goal line.
  void keepOutOfRectangle(Side team, const Eigen::AlignedBox2d& area, float time);
  // Puts everybody of the team into its own half, unless he may stay `insideCircle` of this radius
  // around the middle of the pitch (0: nobody may).
  void keepInOwnHalf(Side team, double insideCircle, float time);
  // Players of the team whose torso is nearer to the centre than `radius`, horizontally, are moved
  // straight away from it to the distance radius + pad.
  void repel(Side team, const Eigen::Vector2d& centre, double radius, double pad, float time);

  // Puts the robot to the place or, if that is unsafe, to the safe place found first on a grid of
  // 0.4 m around it. Places nearer to where the robot stands than the wanted one are left out, for
  // he is to go at least that far; of the others the nearest to where he stands comes first, so
  // that a player moved along x is shifted along y, and the other way round. Distances count in
  // whole steps of the grid; among equal ones the place towards the middle of the pitch wins. The
  // search never leads across a goal line. `awayFromBall`: places near the ball are unsafe. The
  // height of the place is kept.
  void put(const RobotView& robot, const Eigen::Vector3d& place, bool awayFromBall, float time);
  // Where a penalised player is put, on the side away from the ball.
  Eigen::Vector3d besidePitch(Side side, int number, double height) const;

  // While a robot is held the keep-out rules leave it alone.
  void hold(RobotHandle robot, bool held) { records_[robot].held = held; }
  // Remembers that the robot was moved, or has beamed itself.
  void noteMove(RobotHandle robot, float time) { records_[robot].moved = time; }
  // When it was; kNever before.
  float lastMove(RobotHandle robot) const { return records_.get(robot).moved; }
  void forgetGone() { records_.keep(world_.robots()); }

 private:
  struct Record {
    float moved = kNever;
    bool held = false;
  };

  // Calls act(robot) for every robot of the team that is not held.
  template <class Action>
  void forTeam(Side team, Action act);
  bool isSafe(const RobotView& robot, const Eigen::Vector3d& place, bool awayFromBall) const;

  RefereeWorld& world_;
  PerRobot<Record> records_;
};

// The penalty area of a side, lines included.
Eigen::AlignedBox2d penaltyArea(Side side);
// The half that a side defends, with the margin beyond the lines in which it still counts.
Eigen::AlignedBox2d ownHalf(Side side);

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_PLACEMENT_H_
