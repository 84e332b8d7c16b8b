#ifndef QUOLNARIS_WORLDMODEL_OBJECT_H_
#define QUOLNARIS_WORLDMODEL_OBJECT_H_

#include "Mathematics/Matrix.h"
#include "Mathematics/Vector.h"
#include "WorldModel/Game.h"

// Anything with a position on the pitch. One object carries its position in four frames side by
// side; a sighting enters in the camera frame and is carried from each frame to the next:
//
//   CameraPosition    the server's polar sighting made cartesian, camera frame
//   BodyPosition      after the neck rotation, torso frame
//   RelativePosition  after the torso orientation: axes parallel to the pitch, origin at the agent
//   GlobalPosition    plus the agent's own position: pitch frame
//   RealPosition      a position known beforehand, as a landmark's: pitch frame
//
// All lengths are metres. In the pitch frame the own goal lies at negative x for either side.
class Object {
 public:
  // All positions zero, never seen (LastTimeSeen kNeverSeen, so that it is not "seen now" at time
  // 0).
  Object() = default;

  // Also keeps the old global position as the previous one.
  void setGlobalPosition(Vector position) {
    PreviousPosition2 = GlobalPosition;
    GlobalPosition = position;
  }
  Vector getGlobalPosition() const { return GlobalPosition; }

  void setBodyPosition(Vector position) { BodyPosition = position; }
  Vector getBodyPosition() const { return BodyPosition; }

  void setRealPosition(Vector position) { RealPosition = position; }
  Vector getRealPosition() const { return RealPosition; }

  void setRelativePosition(Vector position) { RelativePosition = position; }
  Vector getRelativePosition() const { return RelativePosition; }

  void setCameraPosition(Vector position) { CameraPosition = position; }
  Vector getCameraPosition() const { return CameraPosition; }

  // Metres per sighting, scaled as WorldModel::updateBallVelocity says; not metres per second.
  void setVelocity(Vector velocity) { Velocity = velocity; }
  Vector getVelocity() const { return Velocity; }

  // Game time in seconds. An object is seen now when this equals WorldModel::gameTime exactly.
  void setLastTimeSeen(float time) { LastTimeSeen = time; }
  float getLastTimeSeen() const { return LastTimeSeen; }

  // The global position before the last change of it.
  void setPreviousPosition(Vector position) { PreviousPosition2 = position; }
  Vector getPreviousPosition() const { return PreviousPosition2; }

  // BodyPosition := neckRotation * CameraPosition. Pure rotation, camera to torso frame.
  void calculateBodyPosition(const Matrix<4, 4>& neckRotation);
  // RelativePosition := torsoRotation * BodyPosition. Pure rotation, torso to pitch-parallel frame.
  void calculateRelativePosition(const Matrix<4, 4>& torsoRotation);
  // GlobalPosition := me + RelativePosition, with `me` the agent's position in the pitch frame.
  void calculateGlobalPosition(const Vector& me);

  Vector RealPosition;
  Vector CameraPosition;
  Vector RelativePosition;
  Vector PreviousPosition2;
  Vector BodyPosition;
  Vector GlobalPosition;
  Vector Velocity;
  float LastTimeSeen = kNeverSeen;
  int dks = 0;  // carried, read by nobody

  // Carried along by copies only; a Player hides them behind fields of its own.
  Vector leftLowerArmPosition;
  Vector rightLowerArmPosition;
  Vector leftFootPosition;
  Vector rightFootPosition;
  Vector headPosition;
  float leftLowerArmLastTimeSeen = 0.0f;
  float rightLowerArmLastTimeSeen = 0.0f;
  float leftFootLastTimeSeen = 0.0f;
  float rightFootLastTimeSeen = 0.0f;
  float headLastTimeSeen = 0.0f;
};

#endif  // QUOLNARIS_WORLDMODEL_OBJECT_H_
