#include "Physics/RobotBody.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

#include "Common/Units.h"
#include "Physics/Constants.h"
#include "Physics/EngineVectors.h"

namespace arena {
namespace {

constexpr double kMotorTorque = 10.0;
constexpr double kMotorCfm = 1e-8;
constexpr double kStopErp = 0.8;
constexpr double kStopCfm = 1e-8;
constexpr double kStopBounce = 1.0;
constexpr double kFudgeFactor = 1e-5;
constexpr float kDrag = 0.01f;  // N per m/s, and N·m per rad/s

template <typename Derived>
auto rounded(const Eigen::MatrixBase<Derived>& m) {
  return m.template cast<float>().template cast<double>().eval();
}

// a * b, the shift summed up from that of `a` on, column by column: the order shows in last bits.
Eigen::Isometry3f chained(const Eigen::Isometry3f& a, const Eigen::Isometry3f& b) {
  Eigen::Isometry3f result = a;
  for (int k = 0; k < 3; ++k) result.translation() += a.linear().col(k) * b.translation()[k];
  result.linear() = a.linear() * b.linear();
  return result;
}

void setPose(dBodyID body, const Eigen::Isometry3f& pose) {
  const auto& r = pose.linear();
  const auto& p = pose.translation();
  const dMatrix3 rotation{r(0, 0), r(0, 1), r(0, 2), 0.0,     r(1, 0), r(1, 1),
                          r(1, 2), 0.0,     r(2, 0), r(2, 1), r(2, 2), 0.0};
  dBodySetPosition(body, p.x(), p.y(), p.z());
  dBodySetRotation(body, rotation);
}

dMass massOf(const BodySpec& spec) {
  dMass mass;
  switch (spec.shape) {
    case ShapeKind::Box:
      dMassSetBoxTotal(&mass, single(spec.mass), single(spec.size[0]), single(spec.size[1]),
                       single(spec.size[2]));
      break;
    case ShapeKind::Sphere:
      dMassSetSphereTotal(&mass, single(spec.mass), single(spec.size[0]));
      break;
    case ShapeKind::Capsule:
      dMassSetCapsuleTotal(&mass, single(spec.mass), 3, single(spec.size[0]), single(spec.size[1]));
      break;
  }
  return mass;
}

dGeomID makeGeom(dSpaceID space, const BodySpec& spec) {
  switch (spec.shape) {
    case ShapeKind::Box:
      return dCreateBox(space, single(spec.size[0]), single(spec.size[1]), single(spec.size[2]));
    case ShapeKind::Sphere:
      return dCreateSphere(space, single(spec.size[0]));
    case ShapeKind::Capsule:
      break;
  }
  return dCreateCapsule(space, single(spec.size[0]), single(spec.size[1]));
}

}  // namespace

RobotBody::RobotBody(dWorldID world, dSpaceID space, int handle, const RobotModel& model,
                     const Eigen::Vector3d& place)
    : handle_(handle), model_(model), space_(dHashSpaceCreate(space)) {
  dSpaceSetCleanup(space_, 1);
  dGeomSetCategoryBits(reinterpret_cast<dGeomID>(space_), kRobotBit);
  dGeomSetCollideBits(reinterpret_cast<dGeomID>(space_), ~kSensorBit);
  tags_.reserve(model_.bodies.size());
  for (const BodySpec& spec : model_.bodies) buildBody(world, spec, place);
  for (const JointSpec& spec : model_.joints) buildJoint(world, spec);
}

RobotBody::~RobotBody() {
  for (dJointID joint : joints_) dJointDestroy(joint);
  dSpaceDestroy(space_);
  for (dBodyID body : bodies_) dBodyDestroy(body);
}

void RobotBody::buildBody(dWorldID world, const BodySpec& spec, const Eigen::Vector3d& place) {
  const int index = static_cast<int>(bodies_.size());
  const dBodyID body = dBodyCreate(world);
  bodies_.push_back(body);
  const dMass mass = massOf(spec);
  dBodySetMass(body, &mass);
  dBodySetPosition(body, single(place.x() + spec.position[0]), single(place.y() + spec.position[1]),
                   single(place.z() + spec.position[2]));
  if (!spec.sensor.empty()) feet_.push_back({index, {}, {}});
  if (!spec.collider) return;
  const dGeomID geom = makeGeom(space_, spec);
  tags_.push_back({GeomTag::Kind::Robot, this, index});
  dGeomSetData(geom, &tags_.back());
  dGeomSetBody(geom, body);
  dGeomSetCategoryBits(geom, kRobotBit);
  dGeomSetCollideBits(geom, ~kSensorBit);
}

void RobotBody::buildJoint(dWorldID world, const JointSpec& spec) {
  const dJointID joint = dJointCreateHinge(world, nullptr);
  joints_.push_back(joint);
  dJointAttach(joint, bodies_[spec.child], bodies_[spec.parent]);
  const Triple& centre = model_.bodies[spec.child].position;
  std::array<double, 3> anchor;
  for (int i = 0; i < 3; ++i) {
    anchor[i] =
        single(dBodyGetPosition(bodies_[spec.child])[i] + single(spec.anchor[i] - centre[i]));
  }
  dJointSetHingeAnchor(joint, anchor[0], anchor[1], anchor[2]);
  dJointSetHingeAxis(joint, single(spec.axis[0]), single(spec.axis[1]), single(spec.axis[2]));
  const std::pair<int, double> parameters[] = {
      {dParamFMax, kMotorTorque},        {dParamVel, 0.0},          {dParamCFM, kMotorCfm},
      {dParamStopERP, kStopErp},         {dParamStopCFM, kStopCfm}, {dParamBounce, kStopBounce},
      {dParamFudgeFactor, kFudgeFactor}, {dParamLoStop, spec.low},  {dParamHiStop, spec.high},
  };
  for (const auto& [parameter, value] : parameters) {
    dJointSetHingeParam(joint, parameter, single(value));
  }
}

Eigen::Isometry3d RobotBody::pose(int body) const {
  Eigen::Isometry3d result = Eigen::Isometry3d::Identity();
  result.linear() = matrixOf(dBodyGetRotation(bodies_[body]));
  result.translation() = vectorOf(dBodyGetPosition(bodies_[body]));
  return result;
}

Eigen::Vector3d RobotBody::torsoVelocity() const {
  return vectorOf(dBodyGetLinearVel(bodies_.front()));
}

double RobotBody::jointAngle(int joint) const {
  return dJointGetHingeAngle(joints_[joint]);
}

bool RobotBody::asleep() const {
  return dBodyIsEnabled(bodies_.front()) == 0;
}

void RobotBody::setJointSpeed(int joint, double speed) {
  const JointSpec& spec = model_.joints[joint];
  if (std::isnan(speed)) speed = 0.0;
  const bool wakes = speed != 0.0;
  const double limited =
      frozen_[static_cast<int>(spec.limb)] ? 0.0 : std::clamp(speed, -spec.maxSpeed, spec.maxSpeed);
  const double angle = jointAngle(joint);
  if (angle > spec.low && angle < spec.high) {
    dJointSetHingeParam(joints_[joint], dParamVel, single(limited));
  }
  const dBodyID child = bodies_[spec.child];
  if (wakes && !dBodyIsEnabled(child)) dBodyEnable(child);
}

RobotBody::State RobotBody::state() const {
  State result{{}, {}, lastVelocity_, accelerometer_};
  for (dBodyID body : bodies_) {
    State::BodyState part;
    std::copy_n(dBodyGetPosition(body), 3, part.position.begin());
    std::copy_n(dBodyGetQuaternion(body), 4, part.rotation.begin());
    std::copy_n(dBodyGetLinearVel(body), 3, part.velocity.begin());
    std::copy_n(dBodyGetAngularVel(body), 3, part.spin.begin());
    result.bodies.push_back(part);
  }
  for (dJointID joint : joints_) {
    result.motorSpeeds.push_back(dJointGetHingeParam(joint, dParamVel));
  }
  return result;
}

void RobotBody::setState(const State& state) {
  assert(state.bodies.size() == bodies_.size() && state.motorSpeeds.size() == joints_.size());
  for (std::size_t i = 0; i < bodies_.size(); ++i) {
    const auto& [p, q, v, w] = state.bodies[i];
    const dQuaternion rotation{q[0], q[1], q[2], q[3]};
    dBodySetPosition(bodies_[i], p[0], p[1], p[2]);
    dBodySetQuaternion(bodies_[i], rotation);
    dBodySetLinearVel(bodies_[i], v[0], v[1], v[2]);
    dBodySetAngularVel(bodies_[i], w[0], w[1], w[2]);
  }
  for (std::size_t i = 0; i < joints_.size(); ++i) {
    dJointSetHingeParam(joints_[i], dParamVel, state.motorSpeeds[i]);
  }
  lastVelocity_ = state.lastVelocity;
  accelerometer_ = state.accelerometer;
}

void RobotBody::stopAll() {
  for (dBodyID body : bodies_) {
    dBodySetLinearVel(body, 0.0, 0.0, 0.0);
    dBodySetAngularVel(body, 0.0, 0.0, 0.0);
  }
}

void RobotBody::moveTo(const Eigen::Vector3d& place) {
  const Eigen::Vector3d shift = place - vectorOf(dBodyGetPosition(bodies_.front()));
  for (dBodyID body : bodies_) {
    const Eigen::Vector3d to = rounded(vectorOf(dBodyGetPosition(body)) + shift);
    dBodySetPosition(body, to.x(), to.y(), to.z());
  }
  stopAll();
}

// Computed in single precision, each part by way of the torso's frame, like the league's server:
// on the far side of the pitch that moves parts against each other by half a micrometre.
void RobotBody::placeUpright(const Eigen::Vector3d& place, double yaw) {
  Eigen::Isometry3f to = Eigen::Isometry3f::Identity();
  to.linear() = Eigen::AngleAxisf(static_cast<float>(yaw), Eigen::Vector3f::UnitZ()).matrix();
  to.translation() = place.cast<float>();
  const Eigen::Isometry3f torsoFromWorld = torsoPose().cast<float>().inverse();
  for (std::size_t i = 0; i < bodies_.size(); ++i) {
    const Eigen::Isometry3f body = pose(static_cast<int>(i)).cast<float>();
    setPose(bodies_[i], i == 0 ? to : chained(to, chained(torsoFromWorld, body)));
  }
  stopAll();
}

void RobotBody::sampleAccelerometer() {
  const Eigen::Vector3d velocity = torsoVelocity();
  const Eigen::Vector3d felt = (velocity - lastVelocity_) / single(kStepSeconds) +
                               Eigen::Vector3d(0.0, 0.0, single(kGravity));
  accelerometer_ = matrixOf(dBodyGetRotation(bodies_.front())).transpose() * felt;
  lastVelocity_ = velocity;
}

void RobotBody::applyDrag() {
  for (dBodyID body : bodies_) {
    const Eigen::Vector3f force = -kDrag * vectorOf(dBodyGetLinearVel(body)).cast<float>();
    const Eigen::Vector3f torque = -kDrag * vectorOf(dBodyGetAngularVel(body)).cast<float>();
    dBodyAddForce(body, force.x(), force.y(), force.z());
    dBodyAddTorque(body, torque.x(), torque.y(), torque.z());
  }
}

void RobotBody::clearFootContacts() {
  for (FootSensor& foot : feet_) foot.contacts.clear();
}

void RobotBody::addFootContact(int body, const dReal* point, const dReal* force) {
  for (FootSensor& foot : feet_) {
    if (foot.body == body) foot.contacts.push_back({vectorOf(point), vectorOf(force)});
  }
}

void RobotBody::updateFootSensors() {
  for (FootSensor& foot : feet_) {
    foot.reading.contact = !foot.contacts.empty();
    Eigen::Vector3d point = Eigen::Vector3d::Zero();
    Eigen::Vector3d force = Eigen::Vector3d::Zero();
    double weight = 0.0;
    for (const FootContact& contact : foot.contacts) {
      const double size = contact.force.norm();
      point += size * contact.point;
      force += contact.force;
      weight += size;
    }
    // A sleeping robot is not stepped, so its contacts carry no force: the last reading stays.
    if (weight <= 0.0) continue;
    const Eigen::Isometry3d inverse = pose(foot.body).inverse();
    foot.reading.point = inverse * (point / weight);
    foot.reading.force = inverse.linear() * force;
  }
}

Eigen::Vector3d RobotBody::gyro() const {
  const Eigen::Vector3d world = vectorOf(dBodyGetAngularVel(bodies_.front()));
  return matrixOf(dBodyGetRotation(bodies_.front())).transpose() * world * kDegreesPerRadian;
}

const FootForce& RobotBody::footForce(int body) const {
  const auto found = std::find_if(feet_.begin(), feet_.end(),
                                  [body](const FootSensor& foot) { return foot.body == body; });
  assert(found != feet_.end());
  return found->reading;
}

}  // namespace arena
