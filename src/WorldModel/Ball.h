#ifndef QUOLNARIS_WORLDMODEL_BALL_H_
#define QUOLNARIS_WORLDMODEL_BALL_H_

#include "WorldModel/Object.h"

// The ball. Until it first gets a global position its previous one is its radius above the centre
// spot; from then on the previous position is the one before the last, which begins as zero.
class Ball : public Object {
 public:
  Ball() {
    PreviousPosition2 = Vector(0.0f, 0.0f, 0.04f);
    dks = 1;
  }

  // Ground truth in the pitch frame, where the server is set to tell it; never used to play.
  void setServerBallPos(Vector position) { serverBallPos = position; }
  Vector getServerBallPos() const { return serverBallPos; }

  Vector serverBallPos;
};

#endif  // QUOLNARIS_WORLDMODEL_BALL_H_
