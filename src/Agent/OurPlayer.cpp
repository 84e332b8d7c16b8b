#include "Agent/OurPlayer.h"

#include <cstdlib>

#include "BasicAction/BasicAction.h"
#include "BasicAction/FeedBack.h"
#include "Decision/Actions.h"
#include "Decision/Decision.h"
#include "Utilities/Config.h"
#include "Utilities/Logger.h"
#include "Utilities/Say.h"

namespace {

// Beam messages of the handshake. Their answers also give the world model time to learn side,
// number and landmarks before the first decision.
constexpr int kBeams = 10;

}  // namespace

OurPlayer::OurPlayer(int argc, char** argv) {
  config.addFiles();
  if (!config["Agent"].setByArguments(argc, argv)) std::exit(1);

  WM = new WorldModel;
  logger.add("Agent", config["Agent"]["Public"]["UniformNumber"].asInt(), &WM->getTimer());

  bControl.setWorldModel(WM);
  bindJoints();
}

OurPlayer::~OurPlayer() {
  delete WM;
}

void OurPlayer::publish() {
  BasicAction::agent = this;
  Actions::agent = this;
  FeedBack::agent = this;
  Decision::advancedAgent = this;
  Say::advancedAgent = this;
}

void OurPlayer::run() {
  config["Agent"]["Public"]["UniformNumber"].asInt();  // a player without a number does not start

  initConnection();
  if (!rsgCheck) sendRsg();
  if (!initCheck) sendInit();
  while (beamCounter++ < kBeams) sendBeam();

  while (connection->getMessage(msg)) {
    cycle();
    connection->sendMessage(command->getFinal());
    command->clear();
  }
}

void OurPlayer::cycle() {
  WM->update(msg);
  bControl.adjustJoints();
  de.decision();
  bControl.makeCommand(command);
  command->setFinal();
}

void OurPlayer::bindJoints() {
  for (int side = 0; side < 2; ++side) {
    for (int i = 1; i <= kHandJoints; ++i) {
      bControl.handController[side][i - 1].joint = WM->getHandJoint(i, side);
    }
    for (int i = 1; i <= kLegJoints; ++i) {
      bControl.legController[side][i - 1].joint = WM->getLegJoint(i, side);
    }
  }
  for (int i = 1; i <= kHeadJoints; ++i) {
    bControl.headController[i - 1].joint = WM->getHeadJoint(i);
  }
}
