#ifndef QUOLNARIS_MATCH_MATCH_H_
#define QUOLNARIS_MATCH_MATCH_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Common/Random.h"
#include "Common/Scene.h"
#include "Common/Workers.h"
#include "Match/AgentMessages.h"
#include "Match/MatchWorld.h"
#include "Match/Roster.h"
#include "Percepts/Hearing.h"
#include "Percepts/Percept.h"
#include "Percepts/Vision.h"
#include "Referee/Referee.h"
#include "Trainer/Trainer.h"

namespace arena {

struct MatchOptions {
  std::uint64_t seed = 0;
  float halfTime = kHalfTime;
  bool autoKickOff = false;
  bool coinToss = false;     // who kicks off first is drawn unless the trainer names a side
  bool changeSides = false;  // at half time
  bool noise = true;         // of vision, camera offset and beam
  bool groundTruth = false;  // mypos, myorien and ballpos terms
  // An agent's pictures are counted from its connection. In lockstep it is chance in which cycle
  // somebody connects; there they are counted from its scene message.
  bool realTime = false;
  // That work on a cycle side by side, the caller of Match::step among them; at least 1. Percepts
  // do not depend on their number.
  int threads = 1;
  std::function<void(const std::string&)> log = [](const std::string&) {};
};

// One match without its network: agents' messages in, percept messages out.
//
// In each cycle the owner first hands over what has arrived (receive, trainer().receive), then
// sends out percept() of every agent, which describes the state after the step before, then calls
// step(). Given the same calls in the same order it gives the same percepts.
class Match {
 public:
  using AgentId = RobotHandle;

  explicit Match(const MatchOptions& options);

  // A new agent; it has no robot until it has sent a scene message. Ids are never used again.
  AgentId connect();
  // The agent's robot leaves the pitch in the next step.
  void disconnect(AgentId agent);

  // Reads one message of the agent. Hinge velocities and what is said take effect at once; scene,
  // init, beam and pass are carried out in the next step, the last one of each kind. Anything that
  // cannot be understood is ignored, and so is all but the scene until the robot has been there for
  // a whole cycle, which is when the first percept is made. Unknown agents: no effect.
  void receive(AgentId agent, std::string_view frame);

  // What the agent said and heard in the last cycle; its own voice does not count as heard.
  struct Calls {
    bool said = false;
    int heard = 0;
  };
  Calls calls(AgentId agent) const;

  // Whether the agent has asked for its robot.
  bool hasScene(AgentId agent) const;
  // The message for this cycle; empty as long as there is none. An agent whose robot was taken away
  // is given its last message for ever.
  const std::string& percept(AgentId agent) const;

  void step();

  // The agents, in the order in which their messages are to be handed over: first those without a
  // team by connection, then the players by their acceptance into a team.
  std::vector<AgentId> agents() const;

  // Seconds since the start.
  double time() const { return time_; }
  float halfTime() const { return options_.halfTime; }
  const GameState& game() const { return referee_.game(); }
  Referee& referee() { return referee_; }
  const Referee& referee() const { return referee_; }
  Trainer& trainer() { return trainer_; }
  MatchWorld& world() { return world_; }
  // The match's threads, for what can be done side by side between two steps.
  Workers& workers() { return workers_; }
  // Everything after the last physics step, before the referee moved anything.
  const Scene& scene() const { return scene_; }

 private:
  struct Agent {
    Agent(AgentId agentId, Vision eyes, Random noise)
        : id(agentId), vision(std::move(eyes)), beamNoise(noise) {}

    AgentId id;
    bool connected = true;
    std::optional<int> scene;  // robot type asked for
    bool built = false;
    bool sensing = false;  // from the cycle after the building: percepts are made, effectors work
    std::optional<AgentMessage::Init> init;
    std::optional<AgentMessage::Beam> beam;
    bool pass = false;

    Side side = Side::None;
    int number = 0;
    bool announce = false;  // the next game state tells side and number
    int cycles = 1;         // percepts due since it is counted, with that of the connection
    Vision vision;
    Random beamNoise;
    Hearing hearing;
    Calls calls;
    std::string percept;
    std::set<std::string, std::less<>> warned;  // what has been logged about it
  };

  Agent* find(AgentId id);
  const Agent* find(AgentId id) const;
  RobotBody* robotOf(const Agent& agent) const { return world_.physics().robot(agent.id); }

  void say(Agent& agent, const std::string& text);
  void warn(Agent& agent, std::string_view what);

  void buildRobots();
  void admitPlayers();
  void admit(Agent& agent);
  void seed(Agent& agent, const std::string& name);
  void carryOutActions();
  void carryOutBeam(Agent& agent);
  void changeSides();
  void removeDisconnected();
  void makePercepts();
  void makePercept(Agent& agent, const Surroundings& surroundings) const;
  std::array<std::string, 2> teamNames() const;

  MatchOptions options_;
  Workers workers_;
  MatchWorld world_;
  Referee referee_;
  Trainer trainer_;
  Roster roster_;
  std::vector<std::unique_ptr<Agent>> agents_;
  AgentId nextId_ = 1;
  AgentMessages messages_;
  Scene scene_;
  bool sidesChanged_ = false;
  float time_ = 0.0f;  // single precision, like the game's clock
};

}  // namespace arena

#endif  // QUOLNARIS_MATCH_MATCH_H_
