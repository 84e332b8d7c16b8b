#include "Motions.h"

#include <cmath>
#include <stdexcept>

#include "BasicAction/Dive.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/SeeBall.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"

namespace {

constexpr double kDegree = 3.141592653589793 / 180;

Vector ahead(const MotionPlace& start, double angle, double distance) {
  const double bearing = (start.heading + angle) * kDegree;
  return Vector(static_cast<float>(start.torso.x + distance * std::cos(bearing)),
                static_cast<float>(start.torso.y + distance * std::sin(bearing)), 0);
}

}  // namespace

std::vector<MotionKind> allMotions(const MotionOptions& options, const MotionPlace& start) {
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
      {"reset", "the neutral stance, by a request", Start::Standing,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.reset->execute(1, 10, 5)); }},
      {"stance0", "the fixed stance", Start::Standing, stance(0)},
      {"stance2", "the stance with the torso of the back gait", Start::Standing, stance(2)},
      {"stance3", "the stance of the forward gait", Start::Standing, stance(3)},
      {"forwalk", "the plain forward gait", Start::Standing,
       gait([](Walk& w) { return w.forWalk(1, 60, true, true); })},
      {"backwalk", "the plain back gait", Start::Standing,
       gait([](Walk& w) { return w.backWalk(-1, 1); })},
      {"side-left", "the side gait with gain +1", Start::Standing,
       gait([](Walk& w) { return w.sideWalk(1); })},
      {"side-right", "the side gait with gain -1", Start::Standing,
       gait([](Walk& w) { return w.sideWalk(-1); })},
      {"omni", "the omnidirectional gait, straight ahead, at --speed", Start::Standing,
       gait([=](Walk& w) { return w.omniWalk(far(0), speed, 10, 0); })},
      {"omni-stop", "the omnidirectional gait for 4 s at --speed, then to the neutral stance",
       Start::Standing,
       [=, cycle = 0](MotionPlayer& p) mutable {
         p.setAllHead(0, 50, 1);
         if (++cycle <= 200) {
           p.actions->ChangeAction(p.walk->omniWalk(far(0), speed, 10, 0));
           return false;
         }
         const bool arrived = p.actions->ChangeAction(p.reset->execute(1, 10, 5));
         return arrived && p.actions->NowAction.actionType == AT_RESET;
       }},
      {"omni-long", "its long-stride variant, at --speed", Start::Standing,
       gait([=](Walk& w) { return w.omniWalk(far(0), speed, 10, 1); })},
      {"omni-curve", "the omnidirectional gait to a point at --angle", Start::Standing,
       gait([=](Walk& w) { return w.omniWalk(far(options.angle), speed, 10, 0); })},
      {"omni-long-curve", "the long stride to a point at --angle, at --speed", Start::Standing,
       gait([=](Walk& w) { return w.omniWalk(far(options.angle), speed, 10, 1); })},
      {"omni-back", "the omni back gait, at --speed", Start::Standing,
       gait([=](Walk& w) { return w.omniBackWalk(far(180), 10, speed); })},
      {"omni-left", "the omni side gait to the left", Start::Standing,
       gait([=](Walk& w) { return w.omniSideWalk(far(90), 10); })},
      {"omni-right", "the omni side gait to the right", Start::Standing,
       gait([=](Walk& w) { return w.omniSideWalk(far(-90), 10); })},
      {"turn", "turning towards a point at --angle", Start::Standing,
       [=](MotionPlayer& p) {
         p.setAllHead(0, 50, 1);
         const bool fresh = p.actions->NowAction.actionType != AT_TURN;
         // The first call of a turn counts as done, as the request's parameters are reset by it.
         return p.actions->ChangeAction(p.turn->execute(far(options.angle), 10, 0)) && !fresh;
       }},
      {"around-ball", "turning around a ball 0.22 m ahead until a point at --angle is ahead",
       Start::BallAhead,
       [=](MotionPlayer& p) {
         p.setAllHead(0, 50, 1);
         return p.actions->ChangeAction(p.turnAroundBall->execute(far(options.angle), 10));
       }},
      {"kick", "the kick in play of this robot type, right foot", Start::BallAtFoot,
       kick([](Kick& k) { return k.execute(true); })},
      {"kick-right", "the kick in daily use, right foot", Start::BallAtFoot,
       kick([](Kick& k) { return k.unstable(true); })},
      {"kick-left", "the same with the left foot", Start::BallAtFoot,
       kick([](Kick& k) { return k.unstable(false); })},
      {"kick-strong", "the stronger right kick", Start::BallAtFoot,
       kick([](Kick& k) { return k.unstable1(true); })},
      {"stand-up-front", "standing up from the front", Start::OnTheFront,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.standUp->front()); }},
      {"stand-up-back", "standing up from the back", Start::OnTheBack,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.standUp->back()); }},
      {"flip", "rolling from the front on to the back", Start::OnTheFront,
       [](MotionPlayer& p) { return p.actions->ChangeAction(p.standUp->flip()); }},
      {"dive-front", "the front dive with spread legs", Start::Standing, dive(0)},
      {"dive-left", "the dive with -1", Start::Standing, dive(-1)},
      {"dive-right", "the dive with +1", Start::Standing, dive(1)},
      {"dive-block", "the short block", Start::Standing, dive(2)},
      {"head", "the sweep of the head in the neutral stance", Start::Standing,
       [](MotionPlayer& p) {
         p.reset->execute(1, 10, 5)->init();
         p.seeBall->SeeAll();
         return false;
       }},
  };
}

MotionKind findMotion(const MotionOptions& options, const MotionPlace& start) {
  for (const MotionKind& kind : allMotions(options, start)) {
    if (options.motion == kind.name) return kind;
  }
  throw std::runtime_error("there is no motion named " + options.motion);
}
