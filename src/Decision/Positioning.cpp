#include "Decision/Positioning.h"

#include <cmath>
#include <cstddef>

namespace positioning {
namespace {

constexpr double kDeep = -5;  // x of the ball below which the own half is in need

// The last row of each table is for every number that has none of its own.
constexpr int kAnybodyElse = 0;

template <typename Row, std::size_t N>
const Row& rowOf(const Row (&rows)[N], int number) {
  for (const Row& row : rows) {
    if (row.number == number) return row;
  }
  return rows[N - 1];
}

// Where an attacker stands in relation to the ball, metres.
struct AttackPost {
  int number;
  int side;       // +1 the left lane, -1 the right one, 0 at the ball's own y
  double behind;  // behind a ball that is not deep in the own half
  double holdX;   // x for a ball that is
  bool keepsOwnY = false;
};
constexpr AttackPost kAttack[] = {
    {9, +1, 1, -6},
    {10, -1, 1, -6},
    {11, 0, 0, -5},
    {kAnybodyElse, 0, 0, -5, true},
};

struct HalfBackPost {
  int number;
  int side;     // as an attacker's
  double part;  // stands at this part of the way from the own goal line to the ball
};
constexpr HalfBackPost kHalfBack[] = {
    {7, +1, 1.875},
    {8, -1, 1.875},
    {kAnybodyElse, 0, 2.72},
};

struct DefencePost {
  int number;
  double holdX;     // x for a ball that is not deep in the own half
  double part;      // for one that is, as a half-back's
  double goalLine;  // x from which that way starts for a ball in the danger zone
};
constexpr DefencePost kDefence[] = {
    // numbers 4 and 5 stand further forward
    {4, -11.6, 3, 14.6},
    {5, -11.6, 3, 14.6},
    {kAnybodyElse, -13.6, 7.5, 14.8},
};

// How far a lane runs beside the ball, and how it is squeezed near the touch line.
struct LaneShape {
  double beside;   // metres beside the ball
  double from;     // |y| of the ball from which on the lane is squeezed
  double squeeze;  // divisor of what lies beyond
};
constexpr LaneShape kAttackShape{1.5, 7, 3};
constexpr LaneShape kHalfBackShape{1.6, 8, 2};
constexpr double kTouchLane = 9;

double laneY(double ballY, int side, const LaneShape& shape) {
  if (ballY * side > shape.from) {
    return (ballY - side * shape.from) / shape.squeeze + side * kTouchLane;
  }
  return ballY + side * shape.beside;
}

// The part of the way from the own goal line to the ball at which a line of players stands.
double ahead(double ballX, double part) {
  return (ballX + kHalfLength) / part - kHalfLength;
}

Vector onGround(double x, double y) {
  return Vector(static_cast<float>(x), static_cast<float>(y), 0);
}

}  // namespace

Vector attack(int number, Vector ball, Vector self) {
  const AttackPost& post = rowOf(kAttack, number);
  const double x = ball.getX() > kDeep ? ball.getX() - post.behind : post.holdX;
  const double y = post.keepsOwnY ? self.getY() : laneY(ball.getY(), post.side, kAttackShape);
  return onGround(x, y);
}

Vector halfBack(int number, Vector ball) {
  const HalfBackPost& post = rowOf(kHalfBack, number);
  double x = ahead(ball.getX(), post.part);
  // Folds the line at the half-way line on purpose: the point moves back towards the centre as the
  // ball goes further forward.
  if (ball.getX() > 0) x = -x;
  return onGround(x, laneY(ball.getY(), post.side, kHalfBackShape));
}

Vector defence(int number, Vector ball, Vector self) {
  const DefencePost& post = rowOf(kDefence, number);
  const double x = ball.getX() < kDeep ? ahead(ball.getX(), post.part) : post.holdX;
  return onGround(x, self.getY());
}

Vector cover(int number, Vector ball, Vector self, const Player (&team)[kPlayers]) {
  const DefencePost& post = rowOf(kDefence, number);
  const double x = (ball.getX() + kHalfLength) / post.part - post.goalLine;

  double mast = 9999;
  double doogh = 0;
  for (const Player& teammate : team) {
    const Vector pos =
        teammate.getPlayerNumber() == number ? self : teammate.getCalculatedPosition();
    const double gap = pos.getY() - ball.getY();
    if (std::fabs(gap) < mast) {
      mast = std::fabs(gap);
      doogh = gap;
    }
  }
  const double y = doogh < 0 ? self.getY() - mast : self.getY() + mast;
  return onGround(x, y);
}

bool isInDangerZone(Vector ball) {
  return ball.getX() < -11 && ball.getY() < 5 && ball.getY() > -5;
}

}  // namespace positioning
