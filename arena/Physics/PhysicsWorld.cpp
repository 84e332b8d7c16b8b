#include "Physics/PhysicsWorld.h"

#include <algorithm>
#include <cassert>
#include <cstdarg>

#include "Common/Pitch.h"
#include "Common/Units.h"
#include "Physics/Constants.h"
#include "Physics/EngineVectors.h"
#include "Physics/StepThreads.h"
#include "Physics/Surface.h"

namespace arena {
namespace {

// Sharing fewer robots that are awake out takes longer than it saves.
constexpr std::ptrdiff_t kRobotsWorthWorkers = 3;
constexpr double kWorldCfm = 1e-5;
constexpr double kContactSurfaceLayer = 0.001;  // m
constexpr int kMaxContacts = 4;                 // per pair of shapes
constexpr float kBallDrag = 0.01f;              // N per m/s
constexpr float kBallSpinDrag = 5e-5f;          // N·m per rad/s
const dMatrix3 kHalfTurn{-1.0, 0.0, 0.0, 0.0, 0.0, -1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0};
const Eigen::Vector3d kBallStart{0.0, 0.0, kBallRadius};
const Eigen::Vector3d kRobotStart{0.0, -1.0, 1.5};

// The engine remarks on standard error when robots wedge into each other; it then goes on with
// slightly softer contacts, which is no news for anybody.
void ignoreRemark(int, const char*, va_list) {}

void startEngine() {
  static const bool started = [] {
    dSetMessageHandler(ignoreRemark);
    return dInitODE2(0) != 0;
  }();
  assert(started);
  (void)started;
}

// Farther away nothing can come by honest motion.
bool isSane(const Eigen::Vector3d& place) {
  constexpr double kFarAway = 1e4;  // m
  return place.allFinite() && place.cwiseAbs().maxCoeff() < kFarAway;
}

const Surface& surfaceOf(GeomTag::Kind kind) {
  switch (kind) {
    case GeomTag::Kind::Ground:
      return kGroundSurface;
    case GeomTag::Kind::Ball:
      return kBallSurface;
    case GeomTag::Kind::Robot:
      return kRobotSurface;
    default:
      return kWallSurface;
  }
}

bool isSensor(const GeomTag& tag) {
  return tag.kind == GeomTag::Kind::LeftGoalSensor || tag.kind == GeomTag::Kind::RightGoalSensor;
}

}  // namespace

PhysicsWorld::PhysicsWorld(Workers* workers)
    : workers_(workers != nullptr && workers->threads() > 1 ? workers : nullptr) {
  startEngine();
  world_ = dWorldCreate();
  space_ = dHashSpaceCreate(nullptr);
  if (workers_ != nullptr) order_.emplace(space_);
  contactGroup_ = dJointGroupCreate(0);
  dWorldSetGravity(world_, 0.0, 0.0, single(-kGravity));
  dWorldSetCFM(world_, single(kWorldCfm));
  dWorldSetContactSurfaceLayer(world_, single(kContactSurfaceLayer));
  dWorldSetAutoDisableFlag(world_, 1);

  const dGeomID ground = dCreatePlane(space_, 0.0, 0.0, 1.0, 0.0);
  dGeomSetData(ground, &groundTag_);
  dGeomSetCategoryBits(ground, kStaticBit);
  dGeomSetCollideBits(ground, kRobotBit | kBallBit);
  buildGoal(Side::Left);
  buildGoal(Side::Right);
  for (const StaticBox& wall : kOuterWalls) {
    buildStaticBox(space_, wall.centre.data(), wall.size.data(), &wallTag_, kStaticBit,
                   kRobotBit | kBallBit, false);
  }

  ball_ = dBodyCreate(world_);
  dMass mass;
  dMassSetSphereTotal(&mass, kBallMass, kBallRadius);
  dBodySetMass(ball_, &mass);
  dBodySetPosition(ball_, kBallStart.x(), kBallStart.y(), kBallStart.z());
  const dGeomID ball = dCreateSphere(space_, kBallRadius);
  dGeomSetData(ball, &ballTag_);
  dGeomSetBody(ball, ball_);
  dGeomSetCategoryBits(ball, kBallBit);
  if (order_) order_->add(ball, {&ball_, 1});
}

PhysicsWorld::~PhysicsWorld() {
  robots_.clear();
  dJointGroupDestroy(contactGroup_);
  dSpaceDestroy(space_);
  dWorldDestroy(world_);
}

void PhysicsWorld::buildStaticBox(dSpaceID space, const double* centre, const double* size,
                                  GeomTag* tag, unsigned long category, unsigned long collide,
                                  bool turned) {
  const dGeomID box = dCreateBox(space, size[0], size[1], size[2]);
  dGeomSetPosition(box, centre[0], centre[1], centre[2]);
  if (turned) dGeomSetRotation(box, kHalfTurn);
  dGeomSetData(box, tag);
  dGeomSetCategoryBits(box, category);
  dGeomSetCollideBits(box, collide);
}

void PhysicsWorld::buildGoal(Side side) {
  const double turn = side == Side::Left ? 1.0 : -1.0;
  const auto mirrored = [turn](const StaticBox& box) {
    return StaticBox{{turn * box.centre[0], turn * box.centre[1], box.centre[2]}, box.size};
  };
  const dSpaceID space = dHashSpaceCreate(space_);
  dSpaceSetCleanup(space, 1);
  dGeomSetCategoryBits(reinterpret_cast<dGeomID>(space), kStaticBit);
  dGeomSetCollideBits(reinterpret_cast<dGeomID>(space), kRobotBit | kBallBit);
  for (const StaticBox& part : kLeftGoalParts) {
    const StaticBox box = mirrored(part);
    buildStaticBox(space, box.centre.data(), box.size.data(), &wallTag_, kStaticBit,
                   kRobotBit | kBallBit, side == Side::Right);
  }
  const StaticBox box = mirrored(kLeftGoalSensor);
  buildStaticBox(space, box.centre.data(), box.size.data(),
                 side == Side::Left ? &leftSensorTag_ : &rightSensorTag_, kSensorBit, kBallBit,
                 side == Side::Right);
}

RobotBody& PhysicsWorld::addRobot(RobotHandle handle, int type) {
  assert(robot(handle) == nullptr);
  robots_.push_back(buildRobot(handle, type));
  return *robots_.back();
}

std::unique_ptr<RobotBody> PhysicsWorld::buildRobot(RobotHandle handle, int type) {
  auto robot = std::make_unique<RobotBody>(world_, space_, handle, robotModel(type), kRobotStart);
  if (order_) order_->add(robot->part(), robot->bodies());
  return robot;
}

void PhysicsWorld::removeRobot(RobotHandle handle) {
  const RobotBody* const gone = robot(handle);
  if (gone != nullptr && order_) order_->remove(gone->part());
  std::erase_if(robots_, [handle](const auto& robot) { return robot->handle() == handle; });
  // Nothing may be reported about a robot that is gone.
  std::erase_if(ballContacts_, [handle](const BallContact& c) { return c.robot == handle; });
  std::erase_if(robotContacts_, [handle](const RobotContact& c) {
    return c.first == handle || c.second == handle;
  });
}

RobotBody& PhysicsWorld::renewRobot(RobotHandle handle) {
  const RobotBody* old = robot(handle);
  assert(old != nullptr);
  const RobotBody::State state = old->state();
  const int type = old->model().type;
  removeRobot(handle);
  RobotBody& renewed = addRobot(handle, type);
  renewed.setState(state);
  return renewed;
}

RobotBody* PhysicsWorld::robot(RobotHandle handle) const {
  for (const auto& robot : robots_) {
    if (robot->handle() == handle) return robot.get();
  }
  return nullptr;
}

Eigen::Vector3d PhysicsWorld::ballPosition() const {
  return vectorOf(dBodyGetPosition(ball_));
}

Eigen::Vector3d PhysicsWorld::ballVelocity() const {
  return vectorOf(dBodyGetLinearVel(ball_));
}

Eigen::Vector3d PhysicsWorld::ballSpin() const {
  return vectorOf(dBodyGetAngularVel(ball_));
}

Eigen::Matrix3d PhysicsWorld::ballRotation() const {
  const dReal* r = dBodyGetRotation(ball_);
  Eigen::Matrix3d m;
  m << r[0], r[1], r[2],  //
      r[4], r[5], r[6],   //
      r[8], r[9], r[10];
  return m;
}

void PhysicsWorld::setBallPosition(const Eigen::Vector3d& position) {
  dBodySetPosition(ball_, position.x(), position.y(), position.z());
  dBodyEnable(ball_);
}

void PhysicsWorld::setBallVelocity(const Eigen::Vector3d& velocity) {
  dBodySetLinearVel(ball_, velocity.x(), velocity.y(), velocity.z());
  dBodySetAngularVel(ball_, 0.0, 0.0, 0.0);
  dBodyEnable(ball_);
}

void PhysicsWorld::applyBallDrag() {
  const Eigen::Vector3f force = -kBallDrag * ballVelocity().cast<float>();
  const Eigen::Vector3f torque = -kBallSpinDrag * ballSpin().cast<float>();
  dBodyAddForce(ball_, force.x(), force.y(), force.z());
  dBodyAddTorque(ball_, torque.x(), torque.y(), torque.z());
}

void PhysicsWorld::sampleAccelerometers() {
  for (const auto& robot : robots_) robot->sampleAccelerometer();
}

void PhysicsWorld::step() {
  ballContacts_.clear();
  robotContacts_.clear();
  pending_.clear();
  goalHit_ = {};
  for (const auto& robot : robots_) {
    robot->clearFootContacts();
    robot->applyDrag();
  }
  applyBallDrag();
  if (order_) order_->begin();
  dSpaceCollide(space_, this, &PhysicsWorld::nearCallback);
  chooseWorkers();
  dWorldStep(world_, single(kStepSeconds));
  if (shared_) order_->end();
  readFootForces();
  dJointGroupEmpty(contactGroup_);
  rescueTheLost();
}

bool PhysicsWorld::worthWorkers() const {
  const auto awake = std::count_if(robots_.begin(), robots_.end(),
                                   [](const auto& robot) { return !robot->asleep(); });
  return workers_ != nullptr && awake >= kRobotsWorthWorkers;
}

void PhysicsWorld::chooseWorkers() {
  const bool shared = worthWorkers();
  if (shared && !shared_) stepByWorkers(world_, *workers_);
  if (!shared && shared_) stepByCaller(world_);
  shared_ = shared;
}

// Numbers that have run away, after impossible placements say, would never come back and would
// stop the collision space from working: the robot is built anew, the ball goes to the middle.
void PhysicsWorld::rescueTheLost() {
  std::vector<std::pair<RobotHandle, int>> lost;
  for (const auto& robot : robots_) {
    for (std::size_t i = 0; i < robot->model().bodies.size(); ++i) {
      if (isSane(robot->pose(static_cast<int>(i)).translation())) continue;
      lost.emplace_back(robot->handle(), robot->model().type);
      break;
    }
  }
  for (const auto& [handle, type] : lost) {
    const auto old = std::find_if(robots_.begin(), robots_.end(),
                                  [h = handle](const auto& r) { return r->handle() == h; });
    if (order_) order_->remove((*old)->part());
    *old = buildRobot(handle, type);
  }
  if (!isSane(ballPosition()) || !ballVelocity().allFinite()) {
    setBallPosition(kBallStart);
    setBallVelocity(Eigen::Vector3d::Zero());
  }
}

void PhysicsWorld::nearCallback(void* self, dGeomID first, dGeomID second) {
  if (dGeomIsSpace(first) || dGeomIsSpace(second)) {
    // Parts of one robot never meet: a space is never collided with itself.
    dSpaceCollide2(first, second, self, &PhysicsWorld::nearCallback);
    return;
  }
  static_cast<PhysicsWorld*>(self)->collide(first, second);
}

void PhysicsWorld::collide(dGeomID first, dGeomID second) {
  const GeomTag& firstTag = *static_cast<const GeomTag*>(dGeomGetData(first));
  const GeomTag& secondTag = *static_cast<const GeomTag*>(dGeomGetData(second));
  if (firstTag.robot != nullptr && secondTag.robot != nullptr && firstTag.robot->newcomer() &&
      secondTag.robot->newcomer()) {
    return;
  }
  std::array<dContact, kMaxContacts> contacts;
  const int count = dCollide(first, second, kMaxContacts, &contacts[0].geom, sizeof(dContact));
  if (count == 0) return;
  recordContacts(firstTag, secondTag, contacts.data(), count);
  if (isSensor(firstTag) || isSensor(secondTag)) return;

  const dBodyID firstBody = dGeomGetBody(first);
  const dBodyID secondBody = dGeomGetBody(second);
  if (order_ && firstBody != nullptr && secondBody != nullptr) {
    StepOrder::touch(firstBody, secondBody);
  }
  const dSurfaceParameters surface =
      mixSurfaces(surfaceOf(firstTag.kind), surfaceOf(secondTag.kind));
  // Feet feel what they stand on or kick against, but not the ball. Between two robots the first of
  // the pair alone feels the force.
  const bool ball = firstTag.kind == GeomTag::Kind::Ball || secondTag.kind == GeomTag::Kind::Ball;
  const bool firstSenses = firstTag.kind == GeomTag::Kind::Robot;
  const GeomTag& tag = firstSenses ? firstTag : secondTag;
  const bool senses = !ball && tag.kind == GeomTag::Kind::Robot &&
                      !tag.robot->model().bodies[tag.body].sensor.empty();
  for (int i = 0; i < count; ++i) {
    contacts[i].surface = surface;
    const dJointID joint = dJointCreateContact(world_, contactGroup_, &contacts[i]);
    dJointAttach(joint, firstBody, secondBody);
    if (!senses) continue;
    if (pending_.size() == feedbacks_.size()) {
      feedbacks_.push_back(std::make_unique<dJointFeedback>());
    }
    dJointFeedback* feedback = feedbacks_[pending_.size()].get();
    *feedback = {};
    dJointSetFeedback(joint, feedback);
    PendingFootForce pending{
        tag.robot, tag.body, {}, feedback, firstSenses ? firstBody : secondBody, joint};
    std::copy_n(contacts[i].geom.pos, 3, pending.point);
    pending_.push_back(pending);
  }
}

void PhysicsWorld::recordContacts(const GeomTag& first, const GeomTag& second,
                                  const dContact* contacts, int count) {
  using Kind = GeomTag::Kind;
  for (const auto& [a, b] : {std::pair(&first, &second), std::pair(&second, &first)}) {
    if (a->kind == Kind::LeftGoalSensor) goalHit_[index(Side::Left)] = true;
    if (a->kind == Kind::RightGoalSensor) goalHit_[index(Side::Right)] = true;
    if (a->kind != Kind::Robot || b->kind != Kind::Ball) continue;
    for (int i = 0; i < count; ++i) {
      ballContacts_.push_back({a->robot->handle(), vectorOf(contacts[i].geom.pos)});
    }
  }
  if (first.kind != Kind::Robot || second.kind != Kind::Robot) return;
  for (int i = 0; i < count; ++i) {
    robotContacts_.push_back({first.robot->handle(), second.robot->handle(),
                              first.robot->model().bodies[first.body].body,
                              second.robot->model().bodies[second.body].body,
                              vectorOf(contacts[i].geom.pos)});
  }
}

void PhysicsWorld::readFootForces() {
  for (const PendingFootForce& pending : pending_) {
    const bool isFirst = dJointGetBody(pending.joint, 0) == pending.on;
    pending.robot->addFootContact(pending.body, pending.point,
                                  isFirst ? pending.feedback->f1 : pending.feedback->f2);
  }
  for (const auto& robot : robots_) robot->updateFootSensors();
}

}  // namespace arena
