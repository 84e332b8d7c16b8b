#ifndef QUOLNARIS_WORLDMODEL_FIELDLINE_H_
#define QUOLNARIS_WORLDMODEL_FIELDLINE_H_

#include "Utilities/Types.h"
#include "WorldModel/Object.h"

// A line of the pitch, or the piece of it in view, by its two end points.
class FieldLine {
 public:
  void setFirstPoint(const Object& point) { FirstPoint = point; }
  void setSecondPoint(const Object& point) { SecondPoint = point; }
  const Object& getFirstPoint() const { return FirstPoint; }
  const Object& getSecondPoint() const { return SecondPoint; }

  // The steps of Object, applied to both points.
  void calculateBody(const Matrix<4, 4>& neckRotation);
  void calculateRelative(const Matrix<4, 4>& torsoRotation);
  void calculateGlobal(const Vector& me);

  // Classifies the line by its direction in the pitch-parallel frame: LINE_HORIZONTAL runs along
  // the pitch's x axis, LINE_VERTICAL along y, anything else (a line of no length too) is
  // LINE_NONE. Only as good as the orientation that the relative positions were made with.
  void calculateSlope();
  // Classifies anew while the line is LINE_NONE; a class once found is kept.
  const LineSlopeType& getSlope();

  Object FirstPoint;
  Object SecondPoint;
  LineSlopeType lineSlope = LINE_NONE;
};

#endif  // QUOLNARIS_WORLDMODEL_FIELDLINE_H_
