#ifndef QUOLNARIS_REFEREE_FOULS_H_
#define QUOLNARIS_REFEREE_FOULS_H_

#include <Eigen/Core>
#include <array>
#include <span>
#include <utility>
#include <vector>

#include "Common/Events.h"
#include "Common/Random.h"
#include "Referee/BallWatch.h"
#include "Referee/OwnAreaWatch.h"
#include "Referee/PerRobot.h"
#include "Referee/Placement.h"
#include "Referee/Posture.h"
#include "Referee/RefereeWorld.h"
#include "Referee/SelfCollision.h"
#include "Referee/Touching.h"

namespace arena {

// Watches for fouls and carries out their consequences. No free kick comes of a foul.
//
// In one cycle: beginCycle always, then play or pause. In play, in this order: charging,
// self-collision, for each player in random order illegal defence and incapability, touching.
// Charging and incapability cost the standard penalty: the player is lifted above his place for
// 0.5 s and then put beside the pitch. A player who is being lifted is ignored by all checks.
class Fouls {
 public:
  // All references must outlive the object.
  Fouls(RefereeWorld& world, Placement& placement, Random& random);

  // Takes note of the players' velocities and touches of the ball. `time`: game time, s.
  void beginCycle(std::span<const Touch> touches, float time);
  void play(float time);
  // Nothing is a foul: frozen joints are released and those being lifted let go.
  void pause();

  // Of this cycle, in order of whistling.
  std::span<const FoulEvent> events() const { return events_; }

 private:
  struct Player {
    std::array<Eigen::Vector2d, 3> velocities{Eigen::Vector2d::Zero(), Eigen::Vector2d::Zero(),
                                              Eigen::Vector2d::Zero()};  // of the last steps, m/s
    std::size_t newest = 0;
    float immuneTime = kNever;  // last touch of the ball, or passed on by another
    Posture posture;
    LimbFreezer limbs;
    bool penalised = false;
    FoulType penalty = FoulType::Incapable;
    float penaltyTime = 0;
    int penaltyCycles = 0;
    Eigen::Vector2d penaltyPlace = Eigen::Vector2d::Zero();

    Eigen::Vector2d meanVelocity() const {
      return (velocities[0] + velocities[1] + velocities[2]) / 3.0;
    }
  };
  struct RecentContact {
    RobotHandle left = kNoRobot;
    RobotHandle right = kNoRobot;
    float time = kNever;
  };

  std::vector<RobotView> freePlayers();
  void checkCharging(float time);
  bool chargingFoul(const RobotView& left, const RobotView& right, const Eigen::Vector2d& contact,
                    float time);
  void noteContact(RobotHandle left, RobotHandle right, float time);
  void checkSelfCollision(float time);
  void checkPlayers(float time);
  void checkTouching(float time);
  void penalise(const RobotView& robot, FoulType type, float time);
  void carryOut(RobotHandle robot, float time);
  void whistle(const RobotView& robot, FoulType type, bool first);

  RefereeWorld& world_;
  Placement& placement_;
  Random& random_;
  PerRobot<Player> players_;
  OwnAreaWatch ownArea_;
  TouchingGroups touching_;
  std::vector<RecentContact> recent_;  // contacts of opponents that were no foul
  std::vector<FoulEvent> events_;
  int lastIndex_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_FOULS_H_
