#include "WorldModel/Object.h"

void Object::calculateBodyPosition(const Matrix<4, 4>& neckRotation) {
  BodyPosition = neckRotation * CameraPosition;
}

void Object::calculateRelativePosition(const Matrix<4, 4>& torsoRotation) {
  RelativePosition = torsoRotation * BodyPosition;
}

void Object::calculateGlobalPosition(const Vector& me) {
  PreviousPosition2 = GlobalPosition;
  GlobalPosition = me + RelativePosition;
}
