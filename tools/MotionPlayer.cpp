#include "MotionPlayer.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "BasicAction/SeeBall.h"
#include "Kinematics/ForwardKinematic.h"

namespace {

constexpr double kDegree = 3.141592653589793 / 180;
constexpr int kBeams = 10;
constexpr int kPatience = 1500;  // cycles that the trainer's word may take to show

// The head's centre in the torso's frame, metres: 90 mm to the neck and 65 mm on.
constexpr double kHeadAboveTorso = 0.155;
// The sole under the ankle, and how far it reaches back and forth, metres.
constexpr double kSole = 0.055;
constexpr double kHeel = 0.05;
constexpr double kToe = 0.11;

// Height of the lowest point, metres.
double lowest(const StickFigure& f) {
  double z = f.head.z;
  for (int side : {0, 1}) {
    for (const MotionPoint& p : f.arm[side]) z = std::min(z, p.z);
    for (const MotionPoint& p : f.leg[side]) z = std::min(z, p.z);
  }
  return z;
}

}  // namespace

MotionPlayer::MotionPlayer(int argc, char** argv, MotionTrainer* trainer, double noise,
                           std::uint32_t seed)
    : OurPlayer(argc, argv), trainer_(trainer), random_(seed), noise_(noise) {
  publish();
}

void MotionPlayer::shakeHands() {
  initConnection();
  sendRsg();
  sendInit();
  for (int i = 0; i < kBeams; ++i) sendBeam();
}

void MotionPlayer::turnCycle(const std::function<void()>& act) {
  if (!connection->getMessage(msg)) throw std::runtime_error("the server has gone");
  WM->update(msg);
  readOrientation();
  readTruth();
  bControl.adjustJoints();
  act();
  disturb();
  bControl.makeCommand(command);
  command->setFinal();
  if (trainer_ != nullptr) trainer_->send();
  connection->sendMessage(command->getFinal());
  command->clear();
  if (trainer_ != nullptr) trainer_->drain();
}

void MotionPlayer::rest(int cycles) {
  for (int i = 0; i < cycles; ++i) turnCycle([&] { setAll(0, 50, 3); });
}

bool MotionPlayer::restUntil(const std::function<bool()>& there) {
  for (int i = 0; i < kPatience; ++i) {
    if (there()) return true;
    rest(1);
  }
  return false;
}

void MotionPlayer::playCycle(const std::function<void()>& act) {
  turnCycle([&] {
    if (!WM->isFall() && de.checkstandup) {
      seeBall->SeeAll();
      act();
    } else {
      de.checkstandup = de.standup();
    }
  });
}

MotionPlace MotionPlayer::place() const {
  if (truth_) return {*truth_, orientation_.heading()};
  const Vector believed = WM->getAgentPosition();
  return {{believed.x, believed.y, 0}, orientation_.heading()};
}

MotionSample MotionPlayer::sample(int cycle, bool withFigure) {
  MotionSample s;
  s.cycle = cycle;
  const MotionPlace here = place();
  s.torso = here.torso;
  s.heading = here.heading;
  s.tilt = tilt();
  s.ball = ball_;
  if (withFigure) {
    s.figure = figure();
    // Without the truth, the figure stands on its lowest point.
    if (!truth_) s.torso.z = -lowest(*s.figure);
  }
  return s;
}

// Adds the joint error, with which no two runs are the same.
void MotionPlayer::disturb() {
  if (noise_ == 0) return;
  const auto shake = [this](JointController& joint) {
    joint.Angle += static_cast<float>(noise_ * error_(random_));
  };
  for (int side : {0, 1}) {
    for (JointController& joint : bControl.handController[side]) shake(joint);
    for (JointController& joint : bControl.legController[side]) shake(joint);
  }
  for (JointController& joint : bControl.headController) shake(joint);
}

// The sensor's x points to the right and its y ahead.
void MotionPlayer::readOrientation() {
  if (const auto rates = readTerm(msg, "rt", 3)) {
    orientation_.turn((*rates)[1], -(*rates)[0], (*rates)[2]);
  }
}

// The server tells where the head is; the torso follows from the neck.
void MotionPlayer::readTruth() {
  if (const auto at = readTerm(msg, "ballpos", 3)) {
    ball_ = MotionPoint{(*at)[0], (*at)[1], (*at)[2]};
  }
  if (const auto head = readTerm(msg, "mypos", 3)) {
    const MotionPoint neck = orientation_.toPitch({0, 0, kHeadAboveTorso});
    truth_ = MotionPoint{(*head)[0] - neck.x, (*head)[1] - neck.y, (*head)[2] - neck.z};
  }
}

MotionPoint MotionPlayer::upright(const Matrix<4, 4>& position) const {
  return upright({position.get(0, 3), position.get(1, 3), position.get(2, 3)});
}

StickFigure MotionPlayer::figure() {
  findCOM();  // brings fwd to the sensed pose
  StickFigure f;
  f.head = upright(fwd.headCenter);
  for (int side : {0, 1}) {
    const bool right = side == 1;
    // The upper arm hangs from a point 98 mm beside the torso and 75 mm above its centre.
    f.arm[side][0] = upright({0, right ? -0.098 : 0.098, 0.075});
    f.arm[side][1] = upright(right ? fwd.rightUpArm : fwd.leftUpArm);
    f.arm[side][2] = upright(right ? fwd.rightHand : fwd.leftHand);
    f.leg[side][0] = upright(right ? fwd.rightthigh : fwd.leftthigh);
    f.leg[side][1] = upright(right ? fwd.rightKnee : fwd.leftKnee);
    const Matrix<4, 4>& ankle = right ? fwd.rightankle : fwd.leftankle;
    f.leg[side][2] = upright(ankle);
    // Heel and toe: on the sole, tipped by the sum of the leg's pitches; roll and yaw are small.
    double toeUp = 0;
    for (int joint : {3, 4, 5}) toeUp += WM->getLegJoint(joint, side)->getAngle() * kDegree;
    const auto onSole = [&](double ahead) {
      return upright({ankle.get(0, 3) + ahead * std::cos(toeUp) + kSole * std::sin(toeUp),
                      ankle.get(1, 3),
                      ankle.get(2, 3) + ahead * std::sin(toeUp) - kSole * std::cos(toeUp)});
    };
    f.leg[side][3] = onSole(-kHeel);
    f.leg[side][4] = onSole(kToe);
  }
  return f;
}
