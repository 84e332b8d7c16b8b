// Drives one motion of the player's own code against a running server and reports what it did.

#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "Agent/OurPlayer.h"
#include "BasicAction/Dive.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "FramedLink.h"
#include "Kinematics/ForwardKinematic.h"
#include "MotionCourse.h"
#include "MotionPicture.h"
#include "MotionRecord.h"

namespace {

constexpr double kDegree = 3.141592653589793 / 180;
constexpr int kBeams = 10;
constexpr int kPatience = 1500;   // cycles that the trainer's word may take to show
constexpr int kSettle = 50;       // cycles to stand still with straight joints before the start
constexpr int kFigureEvery = 10;  // cycles between two stick figures, at least
constexpr std::size_t kMaxFigures = 60;
constexpr const char* kTeam = "Motion";
// The motion that is none of a single kind, and from which bearing on its walk turns, degrees: as
// the walk to the ball in play on.
constexpr const char* kCourse = "course";
constexpr double kCourseError = 3;

// Where the run starts and where the ball waits out of the way, metres.
constexpr double kStartX = -8;
constexpr double kStartY = 0;
constexpr double kAwayX = 0;
constexpr double kAwayY = -9;
// Above the ground, just so that the feet of every robot type clear it.
constexpr double kStartZ = 0.4;

struct Options {
  std::string motion;
  std::string host = "127.0.0.1";
  std::uint16_t agentPort = 3100;
  std::uint16_t trainerPort = 3200;
  int type = 0;
  int number = 1;
  double seconds = 8;
  double lead = 2.5;
  double angle = 120;
  double speed = 1;
  double ballAhead = 0.155;
  double ballAside = 0.04;
  double noise = 0;
  std::uint32_t seed = 1;
  std::string trace;
  std::string svg;
  bool csv = false;
  bool list = false;
};

// The trainer's side of the server: says what the referee shall do. Without one, everything happens
// where the server puts the robot.
class Trainer {
 public:
  Trainer(const std::string& host, std::uint16_t port) : link_(host, port) {}

  // Is sent ahead of the player's next answer: what a trainer says between two cycles is heard in
  // the one or the other, as it happens.
  void say(const std::string& command) { waiting_.push_back(command); }

  void send() {
    for (const std::string& command : waiting_) link_.send(command);
    waiting_.clear();
  }

  // Throws away what the server tells its viewers, so that it does not pile up.
  void drain() { link_.drain(); }

 private:
  FramedLink link_;
  std::vector<std::string> waiting_;
};

// What the robot is, wherever the knowledge comes from.
struct Place {
  MotionPoint torso;
  double heading = 0;
};

// The player's code with the decision taken out: each cycle does one motion.
class MotionPlayer : public OurPlayer {
 public:
  // One cycle of the motion; true once it is complete, for motions that have an end.
  using Motion = std::function<bool(MotionPlayer&)>;

  MotionPlayer(int argc, char** argv, Trainer* trainer, double noise, std::uint32_t seed)
      : OurPlayer(argc, argv), trainer_(trainer), random_(seed), noise_(noise) {
    publish();
  }

  void shakeHands() {
    initConnection();
    sendRsg();
    sendInit();
    for (int i = 0; i < kBeams; ++i) sendBeam();
  }

  // One cycle of the server: takes its message, lets `act` command the joints, answers.
  void turnCycle(const std::function<void()>& act) {
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

  void rest(int cycles) {
    for (int i = 0; i < cycles; ++i) turnCycle([&] { setAll(0, 50, 3); });
  }

  // Rests until `there` holds; false if it does not come to that.
  bool restUntil(const std::function<bool()>& there) {
    for (int i = 0; i < kPatience; ++i) {
      if (there()) return true;
      rest(1);
    }
    return false;
  }

  bool knowsTruth() const { return truth_.has_value(); }
  const std::optional<MotionPoint>& ball() const { return ball_; }

  Place place() const {
    if (truth_) return {*truth_, orientation_.heading()};
    const Vector believed = WM->getAgentPosition();
    return {{believed.x, believed.y, 0}, orientation_.heading()};
  }

  double tilt() const { return orientation_.tilt(); }

  // One cycle as in play on: stands up when it lies, otherwise looks around and does `act`.
  void playCycle(const std::function<void()>& act) {
    turnCycle([&] {
      if (!WM->isFall() && de.checkstandup) {
        seeBall->SeeAll();
        act();
      } else {
        de.checkstandup = de.standup();
      }
    });
  }

  // To be said when the robot is known to stand and to look at the opponent's goal.
  void standsUpright() { orientation_.setUpright(0); }

  MotionSample sample(int cycle, bool withFigure) {
    MotionSample s;
    s.cycle = cycle;
    const Place here = place();
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

 private:
  // Adds the joint error, with which no two runs are the same.
  void disturb() {
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
  void readOrientation() {
    if (const auto rates = readTerm(msg, "rt", 3)) {
      orientation_.turn((*rates)[1], -(*rates)[0], (*rates)[2]);
    }
  }

  // The server tells where the head is; the torso follows from the neck.
  void readTruth() {
    if (const auto at = readTerm(msg, "ballpos", 3)) {
      ball_ = MotionPoint{(*at)[0], (*at)[1], (*at)[2]};
    }
    if (const auto head = readTerm(msg, "mypos", 3)) {
      const MotionPoint neck = orientation_.toPitch({0, 0, kHeadAboveTorso});
      truth_ = MotionPoint{(*head)[0] - neck.x, (*head)[1] - neck.y, (*head)[2] - neck.z};
    }
  }

  MotionPoint upright(const MotionPoint& p) const { return orientation_.toUpright(p); }

  MotionPoint upright(const Matrix<4, 4>& position) const {
    return upright({position.get(0, 3), position.get(1, 3), position.get(2, 3)});
  }

  StickFigure figure() {
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

  static double lowest(const StickFigure& f) {
    double z = f.head.z;
    for (int side : {0, 1}) {
      for (const MotionPoint& p : f.arm[side]) z = std::min(z, p.z);
      for (const MotionPoint& p : f.leg[side]) z = std::min(z, p.z);
    }
    return z;
  }

  // The head's centre in the torso's frame, metres: 90 mm to the neck and 65 mm on.
  static constexpr double kHeadAboveTorso = 0.155;
  // The sole under the ankle, and how far it reaches back and forth.
  static constexpr double kSole = 0.055;
  static constexpr double kHeel = 0.05;
  static constexpr double kToe = 0.11;

  Trainer* trainer_;
  std::mt19937 random_;
  std::normal_distribution<double> error_;
  double noise_;
  TorsoOrientation orientation_;
  std::optional<MotionPoint> truth_;
  std::optional<MotionPoint> ball_;
};

// A motion by name: what it needs before, what it does each cycle.
struct MotionKind {
  const char* name;
  const char* help;
  enum class Start { kStanding, kBallAtFoot, kBallAhead, kOnTheFront, kOnTheBack } start;
  MotionPlayer::Motion step;
};

Vector ahead(const Place& start, double angle, double distance) {
  const double bearing = (start.heading + angle) * kDegree;
  return Vector(static_cast<float>(start.torso.x + distance * std::cos(bearing)),
                static_cast<float>(start.torso.y + distance * std::sin(bearing)), 0);
}

// All motions. `start` holds the place from which the run begins, once it has begun.
std::vector<MotionKind> allMotions(const Options& options, const Place& start) {
  using Start = MotionKind::Start;
  // A gait goes on for as long as it is asked for; everything else ends with its true result.
  const auto gait = [](auto request) {
    return [request](MotionPlayer& p) {
      p.actions->ChangeAction(request(*p.walk));
      p.setAllHead(0, 50, 1);
      return false;
    };
  };
  const auto stance = [](int state) {
    return [state](MotionPlayer& p) { return p.reset->execute(state, 10, 5)->init(); };
  };
  const auto kick = [](auto request) {
    return [request](MotionPlayer& p) { return p.actions->ChangeAction(request(*p.kick)); };
  };
  const auto dive = [](int side) {
    return [side](MotionPlayer& p) {
      return p.actions->ChangeAction(p.dive->execute(side, 50, true));
    };
  };
  const float speed = static_cast<float>(options.speed);
  const auto far = [&start](double angle) { return ahead(start, angle, 30); };
  return {
      {"reset", "the neutral stance, by a request", Start::kStanding,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.reset->execute(1, 10, 5)); }},
      {"stance0", "the fixed stance", Start::kStanding, stance(0)},
      {"stance2", "the stance with the torso of the back gait", Start::kStanding, stance(2)},
      {"stance3", "the stance of the forward gait", Start::kStanding, stance(3)},
      {"forwalk", "the plain forward gait", Start::kStanding,
       gait([](Walk& w) { return w.forWalk(1, 60, true, true); })},
      {"backwalk", "the plain back gait", Start::kStanding,
       gait([](Walk& w) { return w.backWalk(-1, 1); })},
      {"side-left", "the side gait with gain +1", Start::kStanding,
       gait([](Walk& w) { return w.sideWalk(1); })},
      {"side-right", "the side gait with gain -1", Start::kStanding,
       gait([](Walk& w) { return w.sideWalk(-1); })},
      {"omni", "the omnidirectional gait, straight ahead, at --speed", Start::kStanding,
       gait([=](Walk& w) { return w.omniWalk(far(0), speed, 10, 0); })},
      {"omni-stop", "the omnidirectional gait for 4 s at --speed, then to the neutral stance",
       Start::kStanding,
       [=, cycle = 0](MotionPlayer& p) mutable {
         p.setAllHead(0, 50, 1);
         if (++cycle <= 200) {
           p.actions->ChangeAction(p.walk->omniWalk(far(0), speed, 10, 0));
           return false;
         }
         const bool arrived = p.actions->ChangeAction(p.reset->execute(1, 10, 5));
         return arrived && p.actions->NowAction.actionType == AT_RESET;
       }},
      {"omni-long", "its long-stride variant, at --speed", Start::kStanding,
       gait([=](Walk& w) { return w.omniWalk(far(0), speed, 10, 1); })},
      {"omni-curve", "the omnidirectional gait to a point at --angle", Start::kStanding,
       gait([=](Walk& w) { return w.omniWalk(far(options.angle), speed, 10, 0); })},
      {"omni-back", "the omni back gait, at --speed", Start::kStanding,
       gait([=](Walk& w) { return w.omniBackWalk(far(180), 10, speed); })},
      {"omni-left", "the omni side gait to the left", Start::kStanding,
       gait([=](Walk& w) { return w.omniSideWalk(far(90), 10); })},
      {"omni-right", "the omni side gait to the right", Start::kStanding,
       gait([=](Walk& w) { return w.omniSideWalk(far(-90), 10); })},
      {"turn", "turning towards a point at --angle", Start::kStanding,
       [=](MotionPlayer& p) {
         p.setAllHead(0, 50, 1);
         const bool fresh = p.actions->NowAction.actionType != AT_TURN;
         // The first call of a turn counts as done, as the request's parameters are reset by it.
         return p.actions->ChangeAction(p.turn->execute(far(options.angle), 10, 0)) && !fresh;
       }},
      {"around-ball", "turning around a ball 0.22 m ahead until a point at --angle is ahead",
       Start::kBallAhead,
       [=](MotionPlayer& p) {
         p.setAllHead(0, 50, 1);
         return p.actions->ChangeAction(p.turnAroundBall->execute(far(options.angle), 10));
       }},
      {"kick", "the kick in play of this robot type, right foot", Start::kBallAtFoot,
       kick([](Kick& k) { return k.execute(true); })},
      {"kick-right", "the kick in daily use, right foot", Start::kBallAtFoot,
       kick([](Kick& k) { return k.unstable(true); })},
      {"kick-left", "the same with the left foot", Start::kBallAtFoot,
       kick([](Kick& k) { return k.unstable(false); })},
      {"kick-strong", "the stronger right kick", Start::kBallAtFoot,
       kick([](Kick& k) { return k.unstable1(true); })},
      {"stand-up-front", "standing up from the front", Start::kOnTheFront,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.standUp->front()); }},
      {"stand-up-back", "standing up from the back", Start::kOnTheBack,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.standUp->back()); }},
      {"flip", "rolling from the front on to the back", Start::kOnTheFront,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.standUp->flip()); }},
      {"dive-front", "the front dive with spread legs", Start::kStanding, dive(0)},
      {"dive-left", "the dive with -1", Start::kStanding, dive(-1)},
      {"dive-right", "the dive with +1", Start::kStanding, dive(1)},
      {"dive-block", "the short block", Start::kStanding, dive(2)},
      {"head", "the sweep of the head in the neutral stance", Start::kStanding,
       [](MotionPlayer& p) {
         p.reset->execute(1, 10, 5)->init();
         p.seeBall->SeeAll();
         return false;
       }},
  };
}

// Throws where there is none of that name.
MotionKind findMotion(const Options& options, const Place& start) {
  for (const MotionKind& kind : allMotions(options, start)) {
    if (options.motion == kind.name) return kind;
  }
  throw std::runtime_error("there is no motion named " + options.motion);
}

std::string text(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof(buffer), "%.3f", value);
  return buffer;
}

// A ball at rest on the ground.
std::string ballAt(double x, double y) {
  return "(ball (pos " + text(x) + " " + text(y) + " 0.042)(vel 0 0 0))";
}

class Run {
 public:
  Run(const Options& options, MotionPlayer& player, Trainer* trainer)
      : options_(options), player_(player), trainer_(trainer) {}

  // Walks along a course with the long stride, as play on walks to the ball.
  std::vector<MotionSample> walkCourse(CourseSummary& summary) {
    player_.shakeHands();
    comeToTheStart();
    start_ = player_.place();
    MotionCourse course(options_.seed, start_.torso);
    std::vector<MotionSample> samples = {player_.sample(0, true)};
    const int cycles = static_cast<int>(std::lround(options_.seconds * 50));
    for (int cycle = 1; cycle <= cycles && !course.done(); ++cycle) {
      player_.playCycle([&] { stepAlong(course); });
      samples.push_back(player_.sample(cycle, false));
      course.observe(samples.back().torso, samples.back().tilt);
    }
    summary = course.summary();
    return samples;
  }

  std::vector<MotionSample> operator()() {
    const MotionKind motion = findMotion(options_, start_);
    player_.shakeHands();
    comeToTheStart();
    prepare(motion.start);
    start_ = player_.place();
    return drive(motion);
  }

 private:
  void stepAlong(const MotionCourse& course) {
    if (course.stops()) {
      player_.actions->ChangeAction(player_.reset->execute(1, 10, 5));
      return;
    }
    const Vector target(static_cast<float>(course.target().x),
                        static_cast<float>(course.target().y), 0);
    const auto speed = static_cast<float>(options_.speed);
    player_.actions->ChangeAction(player_.walk->omniWalk(target, speed, kCourseError, 1));
  }

  // Upright at the start of the run, facing the opponent's goal, with the game on: before the
  // kick-off the player takes itself to face the goal whatever it does.
  void comeToTheStart() {
    if (trainer_ == nullptr) {
      player_.rest(kSettle);
      return;
    }
    player_.rest(10);  // the last beam may still be on its way
    trainer_->say("(agent (unum " + std::to_string(options_.number) + ")(team Left)(move " +
                  text(kStartX) + " " + text(kStartY) + " " + text(kStartZ) + " -90))");
    if (!player_.restUntil([&] {
          const MotionPoint& at = player_.place().torso;
          return !player_.knowsTruth() || std::hypot(at.x - kStartX, at.y - kStartY) < 0.1;
        })) {
      throw std::runtime_error("the robot does not come to where the trainer wants it");
    }
    player_.standsUpright();
    player_.rest(kSettle);
    trainer_->say("(playMode PlayOn)");
    if (!player_.restUntil([&] { return player_.WM->playMode == PM_PLAY_ON; })) {
      throw std::runtime_error("the server does not heed the trainer");
    }
    trainer_->say(ballAt(kAwayX, kAwayY));
    player_.rest(kSettle);
  }

  void prepare(MotionKind::Start start) {
    switch (start) {
      case MotionKind::Start::kStanding:
        return;
      case MotionKind::Start::kBallAhead:
        return putBall(0.22, 0);
      case MotionKind::Start::kBallAtFoot: {
        const bool right = options_.motion != "kick-left";
        return putBall(options_.ballAhead, right ? -options_.ballAside : options_.ballAside);
      }
      case MotionKind::Start::kOnTheFront:
        return lieDown(FALL_FRONT);
      case MotionKind::Start::kOnTheBack:
        return lieDown(FALL_BACK);
    }
  }

  // Metres ahead of the torso and to the left of it.
  void putBall(double forward, double left) {
    if (trainer_ == nullptr) return;
    const Place here = player_.place();
    const double c = std::cos(here.heading * kDegree);
    const double s = std::sin(here.heading * kDegree);
    const double x = here.torso.x + forward * c - left * s;
    const double y = here.torso.y + forward * s + left * c;
    trainer_->say(ballAt(x, y));
    if (!player_.restUntil([&] {
          const auto& ball = player_.ball();
          return !ball || std::hypot(ball->x - x, ball->y - y) < 0.03;
        })) {
      throw std::runtime_error("the ball does not come to where the trainer wants it");
    }
    player_.rest(10);
  }

  // From the neutral stance, as after a gait, tips the robot over with its ankles and lets it lie.
  void lieDown(FallOrientation side) {
    bool standing = false;
    for (int i = 0; i < 200 && !standing; ++i) {
      player_.turnCycle([&] { standing = player_.reset->execute(1, 10, 5)->init(); });
    }
    const float ankle = side == FALL_FRONT ? 70 : -44;
    for (int i = 0; i < 200 && player_.tilt() < 75; ++i) {
      player_.turnCycle([&] { player_.setBothLeg(5, ankle, 100, 1); });
    }
    for (int i = 0; i < 75; ++i) player_.turnCycle([] {});
    player_.WM->isFall();
    if (player_.WM->fall != side) std::cerr << "motion: the robot does not lie as it should\n";
  }

  std::vector<MotionSample> drive(const MotionKind& motion) {
    const int cycles = static_cast<int>(std::lround(options_.seconds * 50));
    const int every = std::max(kFigureEvery, cycles / static_cast<int>(kMaxFigures) + 1);
    std::vector<MotionSample> samples;
    samples.push_back(player_.sample(0, true));
    bool ended = false;
    for (int cycle = 1; cycle <= cycles; ++cycle) {
      player_.turnCycle([&] {
        // A motion that is complete is held, not asked for again.
        if (!ended) ended = motion.step(player_);
      });
      samples.push_back(player_.sample(cycle, cycle % every == 0));
      samples.back().result = player_.actions->preAction;
      samples.back().ended = ended;
    }
    return samples;
  }

  const Options& options_;
  MotionPlayer& player_;
  Trainer* trainer_;
  Place start_;
};

void writeFile(const std::string& path, const std::string& content) {
  std::ofstream out(path);
  out << content;
  if (!out) throw std::runtime_error("cannot write " + path);
}

void tell(const Options& options, bool truth, const MotionSummary& s) {
  std::printf("%s, robot type %d, %.1f s (%s)\n", options.motion.c_str(), options.type, s.seconds,
              truth ? "ground truth" : "as believed");
  std::printf("  way      %.2f m: %+.2f m ahead, %+.2f m to the left\n", s.distance, s.forward,
              s.left);
  std::printf("  speed    %+.2f m/s ahead, %+.2f m/s to the left, %+.1f deg/s\n", s.forwardSpeed,
              s.leftSpeed, s.turnRate);
  std::printf("  turned   %+.1f deg\n", s.turned);
  if (s.cyclesToEnd >= 0) std::printf("  complete after %d cycles\n", s.cyclesToEnd);
  std::printf("  falls    %d", s.falls);
  if (s.firstFall >= 0) std::printf(", the first after %.2f s", s.firstFall * 0.02);
  std::printf("; tilted %.0f deg at the end\n", s.endTilt);
  if (s.ballDistance > 0) {
    std::printf("  ball     %.2f m away, at %+.1f deg\n", s.ballDistance, s.ballDirection);
  }
}

void list(const Options& options) {
  for (const MotionKind& kind : allMotions(options, Place())) {
    std::printf("%-16s %s\n", kind.name, kind.help);
  }
  std::printf(
      "%-16s %s\n", kCourse,
      "the long stride at --speed (play on: 0.3) along a row of points drawn by --seed, with "
      "stops and starts; needs the ground truth");
}

// The command line of the player's own start.
std::unique_ptr<MotionPlayer> makePlayer(const Options& options, Trainer* trainer) {
  std::vector<std::string> words = {"motion",
                                    "--host",
                                    options.host,
                                    "--player-port",
                                    std::to_string(options.agentPort),
                                    "--team",
                                    kTeam,
                                    "--number",
                                    std::to_string(options.number),
                                    "--type",
                                    std::to_string(options.type)};
  std::vector<char*> argv;
  argv.reserve(words.size());
  for (std::string& word : words) argv.push_back(word.data());
  return std::make_unique<MotionPlayer>(static_cast<int>(argv.size()), argv.data(), trainer,
                                        options.noise, options.seed);
}

void tellCourse(const Options& options, const CourseSummary& s) {
  if (options.csv) {
    std::cout << courseHeader() << courseLine(options.type, options.seed, s);
    return;
  }
  std::printf("course %u, robot type %d: %d points in %.1f s\n", options.seed, options.type,
              s.points, s.seconds);
  std::printf("  way      %.2f m of the course, %.2f m walked\n", s.metres, s.way);
  std::printf("  falls    %d walking, %d at stops, %d at starts\n", s.fallsWalking, s.fallsStopping,
              s.fallsStarting);
}

void run(const Options& options) {
  const bool isCourse = options.motion == kCourse;
  if (!isCourse) findMotion(options, Place());  // before anything is connected
  std::unique_ptr<Trainer> trainer;
  if (options.trainerPort != 0) {
    trainer = std::make_unique<Trainer>(options.host, options.trainerPort);
  }
  const auto player = makePlayer(options, trainer.get());
  // Kicks, stand-ups and dives print their own lines; they must not mix with the report.
  std::cout.setstate(std::ios_base::failbit);
  CourseSummary course;
  Run drive(options, *player, trainer.get());
  const std::vector<MotionSample> samples = isCourse ? drive.walkCourse(course) : drive();
  std::cout.clear();

  const bool truth = player->knowsTruth();
  const MotionSummary summary =
      summarize(samples, static_cast<int>(std::lround(options.lead * 50)));
  if (isCourse) {
    if (!truth) throw std::runtime_error("a course needs a server that tells the ground truth");
    tellCourse(options, course);
  } else if (options.csv) {
    std::cout << summaryHeader()
              << summaryLine(options.motion, options.type, options.seed, truth, summary);
  } else {
    tell(options, truth, summary);
  }
  if (!options.trace.empty()) writeFile(options.trace, traceCsv(samples));
  if (!options.svg.empty()) {
    char subtitle[160];
    std::snprintf(subtitle, sizeof(subtitle),
                  "robot type %d, %.1f s, %+.2f m/s ahead, %+.2f m/s to the left, %+.1f deg/s, "
                  "%d falls",
                  options.type, summary.seconds, summary.forwardSpeed, summary.leftSpeed,
                  summary.turnRate, summary.falls);
    writeFile(options.svg, motionPicture(samples, options.motion, subtitle));
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app(
      "Drives one motion of the player's own code, as a single robot against a running server, and "
      "reports how far, how fast and how steadily it went. Reads the configuration from "
      "\"./Configs/\", as the player does. With a server that tells the ground truth the report "
      "goes by it, otherwise by what the player believes.");
  app.add_option("motion", options.motion, "What to do; --list names them all");
  app.add_flag("--list", options.list, "List the motions and end");
  app.add_option("--host", options.host, "The server")->capture_default_str();
  app.add_option("--agent-port", options.agentPort, "Its port for players")->capture_default_str();
  app.add_option("--trainer-port", options.trainerPort,
                 "Its port for trainers, which places robot and ball and starts the game; 0: do "
                 "without")
      ->capture_default_str();
  app.add_option("--type", options.type, "Robot type")
      ->check(CLI::Range(0, 4))
      ->capture_default_str();
  app.add_option("--number", options.number, "Uniform number")
      ->check(CLI::Range(1, 11))
      ->capture_default_str();
  app.add_option("--seconds", options.seconds, "How long to go on, seconds of play")
      ->check(CLI::Range(0.02, 600.0))
      ->capture_default_str();
  app.add_option("--lead", options.lead,
                 "Seconds at the start that the speeds leave out: the stance and the ramp")
      ->check(CLI::Range(0.0, 600.0))
      ->capture_default_str();
  app.add_option("--angle", options.angle, "Bearing of the target of turns and curves, degrees")
      ->check(CLI::Range(-180.0, 180.0))
      ->capture_default_str();
  app.add_option("--speed", options.speed, "Where the ramp of the omni gaits stops")
      ->check(CLI::Range(0.0, 2.0))
      ->capture_default_str();
  app.add_option("--ball-ahead", options.ballAhead, "Kicks: the ball ahead of the torso, metres")
      ->capture_default_str();
  app.add_option("--ball-aside", options.ballAside,
                 "Kicks: the ball to the kicking side of the torso, metres")
      ->capture_default_str();
  app.add_option("--noise", options.noise,
                 "Standard deviation of an error on each joint's speed, rad/s: runs that differ")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
  app.add_option("--seed", options.seed, "Of that error")->capture_default_str();
  app.add_flag("--csv", options.csv, "Report as one line of values under one of names");
  app.add_option("--trace", options.trace, "Write each cycle to this file, as CSV");
  app.add_option("--svg", options.svg, "Draw the motion to this file");
  CLI11_PARSE(app, argc, argv);

  if (options.list) {
    list(options);
    return 0;
  }
  if (options.motion.empty()) {
    std::cerr << "motion: name a motion; --list names them all\n";
    return 1;
  }
  try {
    run(options);
  } catch (const std::exception& error) {
    std::cerr << "motion: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
