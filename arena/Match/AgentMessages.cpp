#include "Match/AgentMessages.h"

#include <array>
#include <cmath>
#include <unordered_map>

#include "Percepts/Hearing.h"

namespace arena {
namespace {

using Node = SExpression::Node;

constexpr std::string_view kTypedScene = "rsg/agent/nao/nao_hetero.rsg";
constexpr std::string_view kStandardScene = "rsg/agent/nao/nao.rsg";

void readScene(Node term, AgentMessage& message) {
  const std::string_view file = term.child(1).text();
  if (file == kStandardScene) {
    message.scene = 0;
  } else if (file == kTypedScene) {
    const int type = term.child(2).integer();
    if (type >= 0 && type < kRobotTypeCount) {
      message.scene = type;
    } else {
      message.complaints.push_back("scene with an unknown robot type");
    }
  } else {
    message.complaints.push_back("unknown scene " + std::string(file));
  }
}

void readInit(Node term, AgentMessage& message) {
  const Node team = term.find("teamname");
  if (!team) return;
  if (!SExpression::isPlainAtom(team.child(1).text())) {
    message.complaints.push_back("init with a team name that cannot be repeated in percepts");
    return;
  }
  message.init =
      AgentMessage::Init{term.find("unum").child(1).integer(), std::string(team.child(1).text())};
}

void readBeam(Node term, AgentMessage& message) {
  std::array<double, 3> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const Node number = term.child(i + 1);
    if (!number || !number.isAtom()) return;
    numbers[i] = number.number();
    if (!std::isfinite(numbers[i])) {
      message.complaints.push_back("beam to a place that is not finite");
      return;
    }
  }
  message.beam = AgentMessage::Beam{numbers[0], numbers[1], numbers[2]};
}

// Only the first atom is said, whatever follows it.
void readSay(Node term, AgentMessage& message) {
  const std::string_view text = term.child(1).text();
  if (isSpeakable(text)) message.says.emplace_back(text);
}

void readPass(Node, AgentMessage& message) {
  message.pass = true;
}

// Marks the end of a message, or comes too late to mean anything.
void passOver(Node, AgentMessage&) {}

// What an agent with a robot may send beside the speeds of its hinges.
struct Effector {
  std::string_view name;
  void (*read)(Node term, AgentMessage& message);
};
constexpr Effector kEffectors[] = {
    {"syn", passOver},  {"scene", passOver}, {"init", readInit},
    {"beam", readBeam}, {"say", readSay},    {"pass", readPass},
};

// The hinge that the effector moves; -1 if the model has none of this name.
int jointIndex(const RobotModel& model, std::string_view effector) {
  using Index = std::unordered_map<std::string_view, int>;
  static const auto indices = [] {
    std::array<Index, kRobotTypeCount> result;
    for (int type = 0; type < kRobotTypeCount; ++type) {
      const auto& joints = robotModel(type).joints;
      for (std::size_t i = 0; i < joints.size(); ++i) {
        result[type].emplace(joints[i].effector, static_cast<int>(i));
      }
    }
    return result;
  }();
  const Index& index = indices[model.type];
  const auto found = index.find(effector);
  return found == index.end() ? -1 : found->second;
}

void readTerm(Node term, const RobotModel& model, AgentMessage& message) {
  const std::string_view name = term.name();
  if (const int joint = jointIndex(model, name); joint >= 0) {
    const Node speed = term.child(1);
    if (speed && speed.isAtom()) message.speeds.push_back({joint, speed.number()});
    return;
  }
  for (const Effector& effector : kEffectors) {
    if (effector.name == name) {
      effector.read(term, message);
      return;
    }
  }
  // Players may move their toes whatever robot they were given.
  if (jointIndex(robotModel(kTypeWithToes), name) >= 0) return;
  message.complaints.push_back("unknown effector " + std::string(name));
}

}  // namespace

const AgentMessage& AgentMessages::read(std::string_view frame, const RobotModel* model) {
  message_ = AgentMessage{};
  if (expression_.read(frame) != SExpression::Status::Complete) {
    message_.complaints.push_back("message that is not a list of expressions");
  }
  for (const Node term : expression_) {
    if (model != nullptr) {
      readTerm(term, *model, message_);
    } else if (term.name() == "scene") {
      readScene(term, message_);
    }
  }
  return message_;
}

}  // namespace arena
