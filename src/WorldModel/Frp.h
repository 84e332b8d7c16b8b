#ifndef QUOLNARIS_WORLDMODEL_FRP_H_
#define QUOLNARIS_WORLDMODEL_FRP_H_

#include "Mathematics/Vector.h"
#include "Utilities/Types.h"
#include "WorldModel/Game.h"

// A reading of one foot's force sensor. A foot without contact gets no reading, so whoever reads
// this compares getLastTimeSensed with the game time.
class FRP {
 public:
  Vector getCenter() const { return center; }                  // contact point, metres, foot frame
  Vector getForce() const { return force; }                    // newtons, foot frame
  double getLastTimeSensed() const { return lastTimeSensed; }  // game time, seconds
  TFRP getTFRP() const { return type; }

  // The setters always return true.
  bool setForce(Vector value) {
    force = value;
    return true;
  }
  bool setCenter(Vector value) {
    center = value;
    return true;
  }
  bool setLastTimeSensed(double time) {
    lastTimeSensed = time;
    return true;
  }

  TFRP type = FRP_ILLEGAL;  // the parser leaves it: the foot is told by where the reading is kept
  double lastTimeSensed = kNeverSeen;
  Vector center;
  Vector force;
};

#endif  // QUOLNARIS_WORLDMODEL_FRP_H_
