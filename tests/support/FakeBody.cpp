#include "support/FakeBody.h"

#include "AdvancedAction/Decide.h"
#include "AdvancedAction/GoToBall.h"
#include "AdvancedAction/GoToGoal.h"
#include "AdvancedAction/GoToKick.h"
#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/BasicAction.h"
#include "BasicAction/Dive.h"
#include "BasicAction/FeedBack.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/TAB.h"
#include "Command/Command.h"
#include "Decision/Actions.h"
#include "Mathematics/Matrix.h"
#include "Utilities/Config.h"
#include "Utilities/Logger.h"

namespace support {

namespace {

// No command of an action has this value.
constexpr float kMark = 1e6f;

struct Entry {
  const char* file;
  const char* group;
  const char* key;
  const char* text;
};

// A configuration of the tests' own, so that tuning the deployment breaks no test.
constexpr Entry kConfiguration[] = {
    {"Agent", "Public", "UniformNumber", "7"},
    {"Agent", "Public", "TeamName", "Testers"},
    {"Agent", "Public", "Penalty", "false"},
    {"Agent", "Public", "Type", "0"},
    {"Agent", "AgentPost", "P", "3 2 2 2 1 1 1 0 0 0 0"},
    {"Formation", "Beam", "p7", "-2 1 0"},
    {"Formation", "Penalty", "p7", "-2 1 0"},
    {"WorldModel", "FlagPosition", "f100", "-15 10 0"},
    {"WorldModel", "FlagPosition", "f101", "-15 -10 0"},
    {"WorldModel", "FlagPosition", "f110", "15 10 0"},
    {"WorldModel", "FlagPosition", "f111", "15 -10 0"},
    {"WorldModel", "FlagPosition", "f000", "-15 1.05 0.8"},
    {"WorldModel", "FlagPosition", "f001", "-15 -1.05 0.8"},
    {"WorldModel", "FlagPosition", "f010", "15 1.05 0.8"},
    {"WorldModel", "FlagPosition", "f011", "15 -1.05 0.8"},
    {"decision", "time", "t", "1 2 3 4 5 6 7 8"},
    {"forWalk", "forwalk", "Xtorso", "0.25"},
    {"forWalk", "forwalk", "Ytorso", "0.5"},
    {"forWalk", "forwalk", "Ztorso", "0.5"},
    {"forWalk", "forwalk", "speed", "0.25"},
    {"forWalk", "forwalk", "Xankle", "0.125 0.5 0.75 0.25"},
    {"forWalk", "forwalk", "Zankle", "0.5 0.25 -0.25 -0.5"},
    {"backWalk", "backwalk", "Xtorso", "0.5"},
    {"backWalk", "backwalk", "Ytorso", "0.25"},
    {"backWalk", "backwalk", "Ztorso", "0.25"},
    {"backWalk", "backwalk", "speed", "0.5"},
    {"backWalk", "backwalk", "Xankle", "0.25 0.375 0.25 0.125"},
    {"backWalk", "backwalk", "Zankle", "0.25 0.125 -0.125 -0.25"},
    {"sideWalk", "sidewalk", "Xtorso", "28"},
    {"sideWalk", "sidewalk", "Ytorso", "6"},
    {"sideWalk", "sidewalk", "Ztorso", "-66"},
    {"sideWalk", "sidewalk", "speed", "54.75"},
    {"sideWalk", "sidewalk", "Yankle", "-10 46 41 -7"},
    {"sideWalk", "sidewalk", "Zankle", "14 11 -11 -14"},
    {"omniWalk", "omniwalk", "Xtorso", "0.25"},
    {"omniWalk", "omniwalk", "Ytorso", "-0.25"},
    {"omniWalk", "omniwalk", "Ztorso", "0.625"},
    {"omniWalk", "omniwalk", "speed", "0.5"},
    {"omniWalk", "omniwalk", "Xankle", "-0.25 0.75 1 0.25"},
    {"omniWalk", "omniwalk", "Zankle", "0.75 0.25 0.125 -1.125"},
    {"omniWalk", "omniwalk", "RotZ", "-1 -2 -4 -1"},
    {"omniBackWalk", "omnibackwalk", "Xankle", "0.125 0.25 0.125 0.25"},
    {"omniBackWalk", "omnibackwalk", "Zankle", "0.125 0.25 -0.25 -0.125"},
    {"omniBackWalk", "omnibackwalk", "RotZ", "-3 -2 -1 -5"},
    {"omniSideWalk", "omnisidewalk", "Yankle", "-9 45 40 -6"},
    {"omniSideWalk", "omnisidewalk", "Zankle", "13 10 -10 -13"},
    {"omniSideWalk", "omnisidewalk", "RotZ", "-1 -3 -3 4"},
    {"Turn", "turn", "Xtorso", "21"},
    {"Turn", "turn", "Ytorso", "2"},
    {"Turn", "turn", "Ztorso", "-63"},
    {"Turn", "turn", "speed", "62.5"},
    {"Turn", "turn", "Yankle", "8 4 -4 -8"},
    {"Turn", "turn", "Zankle", "18 -2 3 -19"},
    {"Turn", "turn", "RotZ", "3 -19 -3 -2"},
    {"TAB", "TAB", "Xtorso", "54"},
    {"TAB", "TAB", "Ytorso", "3"},
    {"TAB", "TAB", "Ztorso", "-58"},
    {"TAB", "TAB", "speed", "55"},
    {"TAB", "TAB", "Yankle", "-12 22 24 2"},
    {"TAB", "TAB", "Zankle", "17 14 -17 -14"},
    {"TAB", "TAB", "RotZ", "-1 -9 -8 -6"},
};

std::vector<FakeBody::Hinge> allHinges() {
  using Limb = FakeBody::Limb;
  std::vector<FakeBody::Hinge> all;
  for (int joint = 1; joint <= kHeadJoints; ++joint) all.push_back({Limb::kHead, false, joint});
  for (bool side : {false, true}) {
    for (int joint = 1; joint <= kHandJoints; ++joint) all.push_back({Limb::kHand, side, joint});
    for (int joint = 1; joint <= kLegJoints; ++joint) all.push_back({Limb::kLeg, side, joint});
  }
  return all;
}

WorldModel* makeWorld() {
  for (const Entry& e : kConfiguration) FakeBody::configure(e.file, e.group, e.key, e.text);
  return new WorldModel;
}

}  // namespace

FakeBody::FakeBody() : world(makeWorld()), states(hinges().size()) {
  agent.WM = world;
  agent.bControl.setWorldModel(world);
  for (const Hinge& hinge : hinges()) {
    Joint*& joint = controller(hinge).joint;
    switch (hinge.limb) {
      case Limb::kHead:
        joint = world->getHeadJoint(hinge.joint);
        break;
      case Limb::kHand:
        joint = world->getHandJoint(hinge.joint, hinge.side);
        break;
      case Limb::kLeg:
        joint = world->getLegJoint(hinge.joint, hinge.side);
        break;
    }
  }
  BasicAction::agent = &agent;
  Actions::agent = &agent;
  FeedBack::agent = &agent;
  BasicAction::inAction = AT_NONE;
  Dive::freezeCycle = 0;
  SeeBall::aroundState = 0;
  Logger::logStreams->add("Agent", new LogStream(&log, nullptr));
}

FakeBody::~FakeBody() {
  Logger::logStreams->add("Agent", new LogNull);
  BasicAction::agent = nullptr;
  Actions::agent = nullptr;
  FeedBack::agent = nullptr;
  delete world;
  // What the player keeps to the end of its process, the tests' many bodies must not.
  delete agent.goToBall;
  delete agent.turnAroundBall;
  delete agent.actions;
  delete agent.decide;
  delete agent.goToPoint;
  delete agent.goToKick;
  delete agent.goToGoal;
  delete agent.command;
}

const std::vector<FakeBody::Hinge>& FakeBody::hinges() {
  static const std::vector<Hinge> all = allHinges();
  return all;
}

std::string FakeBody::name(const Hinge& hinge) {
  const std::string joint = std::to_string(hinge.joint);
  if (hinge.limb == Limb::kHead) return "he" + joint;
  return (hinge.side ? "r" : "l") + std::string(hinge.limb == Limb::kHand ? "ae" : "le") + joint;
}

JointController& FakeBody::controller(const Hinge& hinge) {
  switch (hinge.limb) {
    case Limb::kHead:
      return agent.bControl.headController[hinge.joint - 1];
    case Limb::kHand:
      return agent.bControl.handController[hinge.side][hinge.joint - 1];
    default:
      return agent.bControl.legController[hinge.side][hinge.joint - 1];
  }
}

std::size_t FakeBody::index(const Hinge& hinge) {
  constexpr std::size_t kHeads = 2, kHands = 4, kPerSide = 11;
  const std::size_t joint = static_cast<std::size_t>(hinge.joint - 1);
  if (hinge.limb == Limb::kHead) return joint;
  return kHeads + (hinge.side ? kPerSide : 0) + (hinge.limb == Limb::kLeg ? kHands : 0) + joint;
}

float FakeBody::angle(const Hinge& hinge) const {
  return states[index(hinge)].angle;
}

void FakeBody::sense(const Hinge& hinge) {
  controller(hinge).joint->setAngle(states[index(hinge)].angle);
}

void FakeBody::place(const Hinge& hinge, float degrees) {
  states[index(hinge)].angle = degrees;
  states[index(hinge)].underWay = 0;
  sense(hinge);
  JointController& c = controller(hinge);
  c.currentAngle = degrees;
  c.lastAngle = 0;
  c.Angle = 0;
  c.count = 0;
}

void FakeBody::placeAll(float degrees) {
  for (const Hinge& hinge : hinges()) place(hinge, degrees);
}

void FakeBody::setResponse(float fraction) {
  for (const Hinge& hinge : hinges()) setResponse(hinge, fraction);
}

void FakeBody::setResponse(const Hinge& hinge, float fraction) {
  states[index(hinge)].response = fraction;
}

void FakeBody::nextCycle() {
  for (const Hinge& hinge : hinges()) {
    State& state = states[index(hinge)];
    state.angle += state.underWay * state.response;
    const float command = controller(hinge).Angle;
    state.underWay = command == kMark ? 0 : command;
    controller(hinge).Angle = state.underWay;
    sense(hinge);
  }
  agent.bControl.adjustJoints();
  world->gameTime += kCycle;
}

void FakeBody::markCommands() {
  for (const Hinge& hinge : hinges()) controller(hinge).Angle = kMark;
}

bool FakeBody::commanded(const Hinge& hinge) {
  return controller(hinge).Angle != kMark;
}

void FakeBody::stand(Vector position, double heading) {
  world->mySelf->setGlobalPosition(position);
  Matrix<4, 4> rotation;
  rotation.rotationByZ(heading);
  world->mySelf->setGyroRotation(rotation);
}

std::string FakeBody::takeLog() {
  std::string text = log.str();
  log.str("");
  return text;
}

void FakeBody::configure(const std::string& file, const std::string& group, const std::string& key,
                         const std::string& text) {
  config.add(file);
  config[file].addGroup(group);
  config[file][group].add(key, text);
}

}  // namespace support
