#include "Trainer/Trainer.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace arena {

namespace {

using Node = SExpression::Node;

constexpr std::string_view kStop = "killsim";

// Where a robot is put beside the pitch on command: the torso's height, m.
constexpr double kRepositionHeight = 1.0;

std::optional<Side> sideByName(std::string_view name) {
  if (name == "Left") return Side::Left;
  if (name == "Right") return Side::Right;
  return std::nullopt;
}

// The number at a position of a list; none if there is no atom or it is out of bounds.
std::optional<double> numberAt(Node list, std::size_t position,
                               double limit = Trainer::kMaxNumber) {
  const Node node = list.child(position);
  if (!node || node.isList()) return std::nullopt;
  const double value = node.number();
  if (!(std::abs(value) <= limit)) return std::nullopt;
  return value;
}

// The three numbers after the name of a list.
std::optional<Eigen::Vector3d> vectorOf(Node list) {
  const auto x = numberAt(list, 1);
  const auto y = numberAt(list, 2);
  const auto z = numberAt(list, 3);
  if (!x || !y || !z) return std::nullopt;
  return Eigen::Vector3d(*x, *y, *z);
}

}  // namespace

const Trainer::Entry Trainer::kCommands[] = {
    {"kickOff", &Trainer::kickOff},
    {"playMode", &Trainer::playMode},
    {"dropBall", &Trainer::dropBall},
    {"ball", &Trainer::ball},
    {"agent", &Trainer::agent},
    {"kill", &Trainer::kill},
    {"repos", &Trainer::reposition},
    {"select", &Trainer::select},
    {"time", &Trainer::time},
    {"score", &Trainer::score},
    {"reqfullstate", &Trainer::requestFullState},
    {kStop, &Trainer::stop},
};

bool Trainer::receive(std::string_view frame) {
  expression_.read(frame);
  for (const Node command : expression_) {
    if (command.name() == kStop) stopReceived_ = true;
  }
  if (frames_.size() >= kMaxFrames || bytes_ + frame.size() > kMaxBytes) return false;
  frames_.emplace_back(frame);
  bytes_ += frame.size();
  return true;
}

void Trainer::apply() {
  conditions_.keep(world_.robots());
  for (const std::string& frame : std::exchange(frames_, {})) {
    expression_.read(frame);
    for (const Node command : expression_) {
      for (const Entry& entry : kCommands) {
        if (command.name() == entry.name) (this->*entry.command)(command);
      }
    }
  }
  bytes_ = 0;
}

bool Trainer::takeFullStateRequest() {
  return std::exchange(fullStateRequested_, false);
}

RobotHandle Trainer::named(Node command, RobotHandle otherwise) const {
  const Node number = command.find("unum");
  const Node team = command.find("team");
  if (!number && !team) return otherwise;
  if (!number || !team) return kNoRobot;
  const auto side = sideByName(team.child(1).text());
  if (!side) return kNoRobot;
  const RobotView* robot = world_.find(*side, number.child(1).integer());
  return robot ? robot->handle : kNoRobot;
}

void Trainer::kickOff(Node command) {
  const std::string_view name = command.child(1).text();
  if (const auto side = sideByName(name)) {
    referee_.kickOff(*side);
  } else if (name == "None") {
    referee_.kickOff(Side::None);
  }
}

void Trainer::playMode(Node command) {
  if (const auto mode = modeByName(command.child(1).text())) referee_.setMode(*mode);
}

void Trainer::dropBall(Node) {
  referee_.dropBall();
}

void Trainer::ball(Node command) {
  const auto position = vectorOf(command.find("pos"));
  const auto velocity = vectorOf(command.find("vel"));
  if (position || velocity) world_.setBall(position, velocity);
}

void Trainer::agent(Node command) {
  if (!command.find("unum") || !command.find("team")) {
    referee_.moveAway(selected_);
    return;
  }
  const RobotHandle robot = named(command, kNoRobot);
  if (robot == kNoRobot) return;
  for (const Node part : command) {
    if (part.name() == "pos") {
      if (const auto place = vectorOf(part)) world_.moveRobot(robot, *place);
    } else if (part.name() == "move") {
      const auto place = vectorOf(part);
      const auto yaw = numberAt(part, 4);
      if (place && yaw) world_.placeUpright(robot, *place, *yaw);
    } else if (part.name() == "battery") {
      if (const auto value = numberAt(part, 1)) conditions_[robot].battery = *value;
    } else if (part.name() == "temperature") {
      if (const auto value = numberAt(part, 1)) conditions_[robot].temperature = *value;
    }
  }
}

void Trainer::kill(Node command) {
  const RobotHandle robot = named(command, selected_);
  if (robot == kNoRobot) return;
  if (robot == selected_) selected_ = kNoRobot;
  world_.removeRobot(robot);
}

void Trainer::reposition(Node command) {
  referee_.putBesidePitch(named(command, selected_), kRepositionHeight);
}

void Trainer::select(Node command) {
  const Node number = command.find("unum");
  if (number) {
    selected_ = number.child(1).integer() < 0 ? kNoRobot : named(command, kNoRobot);
    return;
  }
  // The player after the selected one, in order of connection; the first one after the last.
  std::vector<RobotHandle> players;
  for (const RobotView& robot : world_.robots()) {
    if (robot.side != Side::None) players.push_back(robot.handle);
  }
  if (players.empty()) {
    selected_ = kNoRobot;
    return;
  }
  const auto now = std::find(players.begin(), players.end(), selected_);
  selected_ = now == players.end() || now + 1 == players.end() ? players.front() : *(now + 1);
}

void Trainer::time(Node command) {
  // Beyond this a game time of single precision would no longer advance by a cycle.
  constexpr double kLongestGame = 100000.0;
  const auto seconds = numberAt(command, 1, kLongestGame);
  if (seconds && *seconds >= 0) referee_.setTime(static_cast<float>(*seconds));
}

void Trainer::score(Node command) {
  std::array<int, 2> score = referee_.game().score;
  const std::pair<Side, std::string_view> parts[] = {{Side::Left, "left"}, {Side::Right, "right"}};
  for (const auto& [side, name] : parts) {
    if (const Node goals = command.find(name).child(1); goals && goals.isAtom()) {
      score[index(side)] = std::max(goals.integer(), 0);
    }
  }
  referee_.setScore(score[0], score[1]);
}

void Trainer::requestFullState(Node) {
  fullStateRequested_ = true;
}

void Trainer::stop(Node) {
  stopRequested_ = true;
}

}  // namespace arena
