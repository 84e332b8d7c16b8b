#include "Match/Match.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Common/Pitch.h"
#include "Common/Units.h"
#include "Physics/Constants.h"

namespace arena {
namespace {

const Eigen::Vector3d kRefusedPlace{0.0, 0.0, 10.0};
constexpr double kBeamPlaceNoise = 0.05;  // m, each axis
constexpr double kBeamTurnNoise = 10.0;   // degrees
constexpr int kCyclesPerPicture = 3;
// An agent may be odd in this many ways before the log falls silent about it.
constexpr std::size_t kMaxWarnings = 16;
constexpr std::size_t kMaxWarningLength = 80;

// World yaw of a player who faces the opponents' goal, degrees.
double forwardYaw(Side side) {
  return side == Side::Left ? -90.0 : 90.0;
}

}  // namespace

Match::Match(const MatchOptions& options)
    : options_(options),
      workers_(options.threads),
      world_(&workers_),
      referee_(world_, RefereeOptions{.halfTime = options.halfTime,
                                      .autoKickOff = options.autoKickOff,
                                      .coinToss = options.coinToss,
                                      .changeSides = options.changeSides,
                                      .seed = options.seed}),
      trainer_(world_, referee_) {
  world_.snapshot(time_, scene_);
}

Match::AgentId Match::connect() {
  const VisionOptions vision{options_.noise, options_.groundTruth};
  agents_.push_back(std::make_unique<Agent>(
      nextId_, Vision(vision, Random(options_.seed, "camera"), Random(options_.seed, "vision")),
      Random(options_.seed, "beam")));
  return nextId_++;
}

void Match::disconnect(AgentId id) {
  Agent* agent = find(id);
  if (agent == nullptr) return;
  agent->connected = false;
  // Without a robot there is nothing that must wait for a step, and there may be none for long.
  if (!agent->built) {
    std::erase_if(agents_, [agent](const auto& other) { return other.get() == agent; });
  }
}

Match::Agent* Match::find(AgentId id) {
  const auto found = std::find_if(agents_.begin(), agents_.end(),
                                  [id](const auto& agent) { return agent->id == id; });
  return found == agents_.end() ? nullptr : found->get();
}

const Match::Agent* Match::find(AgentId id) const {
  return const_cast<Match*>(this)->find(id);
}

bool Match::hasScene(AgentId id) const {
  const Agent* agent = find(id);
  return agent != nullptr && (agent->scene || agent->built);
}

Match::Calls Match::calls(AgentId id) const {
  const Agent* agent = find(id);
  return agent == nullptr ? Calls{} : agent->calls;
}

const std::string& Match::percept(AgentId id) const {
  static const std::string nothing;
  const Agent* agent = find(id);
  return agent == nullptr ? nothing : agent->percept;
}

std::vector<Match::AgentId> Match::agents() const {
  std::vector<AgentId> ids;
  for (const auto& agent : agents_) {
    if (agent->connected) ids.push_back(agent->id);
  }
  return ids;
}

void Match::warn(Agent& agent, std::string_view what) {
  if (agent.warned.size() >= kMaxWarnings || agent.warned.contains(what)) return;
  agent.warned.emplace(what);
  options_.log("agent " + std::to_string(agent.id) + ": " +
               std::string(what.substr(0, kMaxWarningLength)));
}

void Match::receive(AgentId id, std::string_view frame) {
  Agent* agent = find(id);
  if (agent == nullptr || !agent->connected) return;
  RobotBody* robot = robotOf(*agent);
  if (agent->built && (!agent->sensing || robot == nullptr)) return;
  const AgentMessage& message = messages_.read(frame, agent->built ? &robot->model() : nullptr);
  for (const std::string& complaint : message.complaints) warn(*agent, complaint);
  if (message.scene) {
    agent->scene = message.scene;
    if (!options_.realTime) agent->cycles = 1;
  }
  if (message.init) agent->init = message.init;
  if (message.beam) agent->beam = message.beam;
  if (message.pass) agent->pass = true;
  for (const auto& [joint, speed] : message.speeds) robot->setJointSpeed(joint, speed);
  for (const std::string& text : message.says) say(*agent, text);
}

void Match::say(Agent& agent, const std::string& text) {
  // One voice is heard once per cycle.
  if (agent.side == Side::None || agent.hearing.spoke()) return;
  const Utterance utterance{agent.id, agent.side, robotOf(agent)->torsoPose().translation(), text};
  for (const auto& hearer : agents_) {
    const RobotBody* robot = robotOf(*hearer);
    if (robot == nullptr) continue;
    hearer->hearing.hear(utterance, hearer->id, hearer->side, robot->torsoPose().translation());
  }
}

void Match::step() {
  std::optional<Workers::Shift> shift;
  if (world_.physics().worthWorkers()) shift.emplace(workers_);
  trainer_.apply();
  world_.setAgentCount(static_cast<int>(
      std::count_if(agents_.begin(), agents_.end(), [](const auto& a) { return a->connected; })));
  for (const auto& agent : agents_) {
    agent->sensing = agent->built;
  }
  buildRobots();
  admitPlayers();
  world_.physics().sampleAccelerometers();
  carryOutActions();
  world_.physics().step();
  world_.refresh();
  time_ += static_cast<float>(kStepSeconds);
  world_.snapshot(time_, scene_);
  referee_.step();
  if (referee_.game().sidesChanged != sidesChanged_) changeSides();
  removeDisconnected();
  makePercepts();
}

void Match::buildRobots() {
  for (const auto& agent : agents_) {
    if (!agent->scene || agent->built || !agent->connected) continue;
    world_.addRobot(agent->id, *agent->scene);
    agent->built = true;
  }
}

// Those who ask in the same cycle are taken in by team name and number, whoever was faster.
void Match::admitPlayers() {
  std::vector<Agent*> candidates;
  for (const auto& agent : agents_) {
    if (agent->init && robotOf(*agent) != nullptr) candidates.push_back(agent.get());
  }
  std::stable_sort(candidates.begin(), candidates.end(), [](const Agent* a, const Agent* b) {
    return std::tie(a->init->team, a->init->number) < std::tie(b->init->team, b->init->number);
  });
  for (Agent* agent : candidates) admit(*agent);
}

// A player who asks again is moved like a new one: to the next start place with a new number, while
// the old number stays taken, or, refused, to where the refused fall.
void Match::admit(Agent& agent) {
  const AgentMessage::Init init = *agent.init;
  agent.init.reset();
  if (agent.side != Side::None) warn(agent, "init of a player that has its place");
  const auto player = roster_.admit(init.team, init.number, *agent.scene);
  if (!player) {
    warn(agent, "init refused for number " + std::to_string(init.number) + " of team " +
                    init.team.substr(0, kMaxWarningLength / 2));
    world_.moveRobot(agent.id, kRefusedPlace);
    return;
  }
  agent.side = player->side;
  agent.number = player->number;
  agent.announce = true;
  referee_.setTeamName(player->side, init.team);
  seed(agent, init.team + " " + std::to_string(player->number));
  world_.enlist(agent.id, player->side, player->number);
  world_.placeUpright(agent.id, {player->start.x(), player->start.y(), kDropHeight},
                      forwardYaw(player->side));
  const auto at = std::find_if(agents_.begin(), agents_.end(),
                               [&agent](const auto& other) { return other.get() == &agent; });
  std::rotate(at, at + 1, agents_.end());
}

// From now on its random numbers are its own, whenever and in which order the players came.
void Match::seed(Agent& agent, const std::string& name) {
  agent.vision =
      Vision({options_.noise, options_.groundTruth}, Random(options_.seed, "camera " + name),
             Random(options_.seed, "vision " + name));
  agent.beamNoise = Random(options_.seed, "beam " + name);
}

void Match::carryOutActions() {
  for (const auto& agent : agents_) {
    if (agent->beam) carryOutBeam(*agent);
    if (agent->pass && agent->side != Side::None) referee_.requestPass(agent->id);
    agent->beam.reset();
    agent->pass = false;
  }
}

void Match::carryOutBeam(Agent& agent) {
  if (agent.side == Side::None || !referee_.beamAllowed() || robotOf(agent) == nullptr) return;
  AgentMessage::Beam beam = *agent.beam;
  if (options_.noise) {
    beam.x += agent.beamNoise.uniform(-kBeamPlaceNoise, kBeamPlaceNoise);
    beam.y += agent.beamNoise.uniform(-kBeamPlaceNoise, kBeamPlaceNoise);
    beam.turn += agent.beamNoise.uniform(-kBeamTurnNoise, kBeamTurnNoise);
  }
  const double turn = agent.side == Side::Left ? 1.0 : -1.0;
  const double x = turn * std::clamp(beam.x, -kHalfLength, 0.0);
  const double y = turn * std::clamp(beam.y, -kHalfWidth, kHalfWidth);
  world_.placeUpright(agent.id, {x, y, kDropHeight},
                      forwardYaw(agent.side) + std::remainder(beam.turn, 360.0));
  referee_.noteBeam(agent.id);
}

// Follows the referee, who has changed the teams' sides in this step. Nobody is told: agents see it
// by the score and hear and see the teams' names as before.
void Match::changeSides() {
  sidesChanged_ = referee_.game().sidesChanged;
  roster_.changeSides();
  for (const auto& agent : agents_) {
    agent->side = opponent(agent->side);
    agent->hearing.changeSides();
  }
  for (SceneRobot& robot : scene_.robots) robot.side = opponent(robot.side);
}

// A robot that the trainer has removed is as gone as one whose agent has left.
void Match::removeDisconnected() {
  for (const auto& agent : agents_) {
    const bool gone = agent->built && robotOf(*agent) == nullptr;
    if (agent->connected && !gone) continue;
    if (agent->side != Side::None) roster_.release(agent->side, agent->number, *agent->scene);
    agent->side = Side::None;
    world_.removeRobot(agent->id);
  }
  std::erase_if(agents_, [](const auto& agent) { return !agent->connected; });
}

std::array<std::string, 2> Match::teamNames() const {
  return {roster_.teamName(Side::Left), roster_.teamName(Side::Right)};
}

void Match::makePercepts() {
  const std::array<std::string, 2> names = teamNames();
  const Surroundings surroundings{scene_, referee_.game(), names};
  // Each touches what is its agent's alone.
  workers_.run(agents_.size(), [&](std::size_t i) { makePercept(*agents_[i], surroundings); });
}

void Match::makePercept(Agent& agent, const Surroundings& surroundings) const {
  const bool picture = ++agent.cycles % kCyclesPerPicture == 0;
  const RobotBody* robot = robotOf(agent);
  if (!agent.sensing || robot == nullptr) return;
  agent.calls = {agent.hearing.spoke(), agent.hearing.heard()};
  const Shirt shirt{agent.side, agent.number};
  agent.percept.clear();
  writePercept(surroundings, *robot, agent.announce ? &shirt : nullptr, agent.hearing,
               picture ? &agent.vision : nullptr, agent.percept);
  agent.announce = false;
  agent.hearing.nextCycle();
}

}  // namespace arena
