#include "StreamReader.h"

#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "Physics/RobotModel.h"

namespace viewer {

namespace {

using arena::Side;

constexpr int kMaxNumber = 11;
// A foul that is told again within this time is the same one, s.
constexpr float kSameFoul = 1.0f;
constexpr std::size_t kMaxRobots = 64;
constexpr std::size_t kMaxModes = 256;
constexpr std::size_t kMaxName = 256;
constexpr int kMaxScore = 10'000;
constexpr double kLatest = 1e6;  // s of game time

struct Measure {
  std::string_view name;
  double PitchMeasures::*value;
};
constexpr Measure kMeasures[] = {
    {"FieldLength", &PitchMeasures::length},    {"FieldWidth", &PitchMeasures::width},
    {"GoalWidth", &PitchMeasures::goalWidth},   {"GoalDepth", &PitchMeasures::goalDepth},
    {"GoalHeight", &PitchMeasures::goalHeight}, {"FreeKickDistance", &PitchMeasures::circle},
};
constexpr double kLongestMeasure = 1000;  // m

// The mesh files of a robot's parts, without folder, type and ending.
struct PartMesh {
  std::string_view file;
  arena::Body body;
};
constexpr PartMesh kPartMeshes[] = {
    {"naobody", arena::Body::Torso},           {"naohead", arena::Body::Head},
    {"rupperarm", arena::Body::RightUpperArm}, {"lupperarm", arena::Body::LeftUpperArm},
    {"rlowerarm", arena::Body::RightLowerArm}, {"llowerarm", arena::Body::LeftLowerArm},
    {"rthigh", arena::Body::RightThigh},       {"lthigh", arena::Body::LeftThigh},
    {"rshank", arena::Body::RightShank},       {"lshank", arena::Body::LeftShank},
    {"rfoot", arena::Body::RightFoot},         {"lfoot", arena::Body::LeftFoot},
};
constexpr std::string_view kBallMesh = "soccerball.obj";
constexpr std::string_view kBodyMesh = "naobody";

std::string_view fileName(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

bool isPartMesh(std::string_view path, arena::Body body) {
  for (const PartMesh& mesh : kPartMeshes) {
    if (mesh.body == body && fileName(path).starts_with(mesh.file)) return true;
  }
  return false;
}

// The type that a torso's mesh tells; 0 if it tells none.
int typeOf(std::string_view path) {
  const std::string_view file = fileName(path);
  if (!file.starts_with(kBodyMesh) || file.size() <= kBodyMesh.size()) return 0;
  const int type = file[kBodyMesh.size()] - '0';
  return type >= 0 && type < arena::kRobotTypeCount ? type : 0;
}

Eigen::Isometry3d rigid(const Eigen::Matrix4d& matrix) {
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  pose.translation() = matrix.block<3, 1>(0, 3);
  Eigen::Quaterniond turn(Eigen::Matrix3d(matrix.block<3, 3>(0, 0)));
  if (turn.coeffs().allFinite() && turn.norm() > 0) {
    pose.linear() = turn.normalized().toRotationMatrix();
  }
  return pose;
}

}  // namespace

double hingeAngle(const Eigen::Matrix3d& parent, const Eigen::Matrix3d& child,
                  const std::array<double, 3>& axis) {
  const Eigen::Quaterniond turn(Eigen::Matrix3d(parent.transpose() * child));
  const Eigen::Vector3d direction = Eigen::Vector3d(axis[0], axis[1], axis[2]).normalized();
  const double angle = 2 * std::atan2(turn.vec().dot(direction), turn.w());
  return std::remainder(angle, 2 * std::numbers::pi) * 180 / std::numbers::pi;
}

void StreamReader::read(std::string_view message) {
  const bool wasSynchronous = synchronous_;
  synchronous_ = false;
  if (expression_.read(message) != arena::SExpression::Status::Complete) {
    throw StreamError("a monitor message cannot be read");
  }
  Term lists[3];
  std::size_t count = 0;
  for (const Term list : expression_) {
    if (count < 3) lists[count++] = list;
  }
  const std::string_view head = lists[1].name();
  if (count < 3 || (head != "RSG" && head != "RDS")) {
    throw StreamError("a monitor message has another form than the league's");
  }
  if (head == "RDS" && !wasSynchronous) {
    throw StreamError("a partial monitor message came without a full one before it");
  }

  cycle_.goals.clear();
  cycle_.fouls.clear();
  for (const Term term : lists[0]) readTerm(term);
  if (head == "RSG") {
    nodes_.assign(1, Node());
    nodes_[0].transform = true;
    readNodes(lists[2], 0, 0);
    findBall();
    findRobots();
  } else {
    updateNodes(lists[2], 0, 0);
  }
  place();
  synchronous_ = true;
}

void StreamReader::readTerm(Term term) {
  const std::string_view name = term.name();
  const Term value = term.child(1);
  const auto named = [](Term text) { return std::string(text.text().substr(0, kMaxName)); };
  if (name == "time") {
    const double time = value.number();
    if (std::fabs(time) < kLatest) cycle_.time = static_cast<float>(time);
  } else if (name == "team_left") {
    teams_[0] = named(value);
  } else if (name == "team_right") {
    teams_[1] = named(value);
  } else if (name == "half") {
    cycle_.half = std::clamp(value.integer(), 1, 2);
  } else if (name == "score_left") {
    readScore(Side::Left, value.integer());
  } else if (name == "score_right") {
    readScore(Side::Right, value.integer());
    scored_ = true;
  } else if (name == "play_modes") {
    modes_.clear();
    for (const Term mode : term) {
      if (modes_.size() == kMaxModes) break;
      modes_.push_back(named(mode));
    }
  } else if (name == "play_mode") {
    // The first word of the list of modes is its name.
    const auto at = static_cast<std::size_t>(std::max(value.integer(), 0));
    if (at + 1 < modes_.size()) {
      cycle_.mode = arena::modeByName(modes_[at + 1]).value_or(cycle_.mode);
    }
  } else if (name == "foul") {
    readFoul(term);
  } else {
    for (const Measure& measure : kMeasures) {
      if (name == measure.name && value.number() > 0 && value.number() < kLongestMeasure) {
        pitch_.*measure.value = value.number();
      }
    }
  }
}

void StreamReader::readScore(Side side, int value) {
  int& score = cycle_.score[arena::index(side)];
  const int now = std::clamp(value, 0, kMaxScore);
  if (scored_ && now == score + 1) cycle_.goals.push_back({side, cycle_.time, Side::None, 0});
  score = now;
}

void StreamReader::readFoul(Term term) {
  const int type = term.child(2).integer();
  const int team = term.child(3).integer();
  const int number = term.child(4).integer();
  const bool known = type >= 0 && type <= static_cast<int>(arena::FoulType::SelfCollision) &&
                     (team == 1 || team == 2) && number >= 1 && number <= kMaxNumber;
  if (!known) return;
  const auto [last, isNew] = fouls_.try_emplace({type, team, number}, cycle_.time);
  if (isNew || std::fabs(cycle_.time - last->second) > kSameFoul) {
    cycle_.fouls.push_back(
        {static_cast<arena::FoulType>(type), team == 1 ? Side::Left : Side::Right, number});
  }
  last->second = cycle_.time;
}

// Numbers that are none count as 0.
void StreamReader::readMatrix(Node& node, Term list) {
  std::size_t at = 0;
  for (const Term term : list) {
    if (at > 0 && at <= 16) {
      const double value = term.number();
      node.matrix(static_cast<Eigen::Index>((at - 1) % 4),
                  static_cast<Eigen::Index>((at - 1) / 4)) = std::isfinite(value) ? value : 0.0;
    }
    ++at;
  }
}

// Reads the terms of a node of a full message, from `firstTerm` on, into the node `parent`.
void StreamReader::readNodes(Term list, int parent, std::size_t firstTerm) {
  std::size_t at = 0;
  for (const Term term : list) {
    if (at++ < firstTerm || !term.isList()) continue;
    const std::string_view name = term.name();
    Node& node = nodes_[static_cast<std::size_t>(parent)];
    if (name == "SLT") {
      readMatrix(node, term);
    } else if (name == "load") {
      node.mesh = std::string(term.child(1).text());
    } else if (name == "resetMaterials") {
      for (const Term material : term) node.materials.emplace_back(material.text());
    } else if (name == "nd") {
      const int child = static_cast<int>(nodes_.size());
      node.children.push_back(child);
      Node& added = nodes_.emplace_back();
      added.parent = parent;
      added.transform = term.child(1).text() == "TRF";
      readNodes(term, child, 1);
    }
  }
}

// A partial message repeats the tree; nodes are matched by their places.
void StreamReader::updateNodes(Term list, int node, std::size_t firstTerm) {
  std::size_t at = 0;
  std::size_t child = 0;
  for (const Term term : list) {
    if (at++ < firstTerm || !term.isList()) continue;
    Node& known = nodes_[static_cast<std::size_t>(node)];
    if (term.name() == "SLT") readMatrix(known, term);
    if (term.name() != "nd") continue;
    if (child == known.children.size()) {
      throw StreamError("a partial monitor message does not fit to the full one before it");
    }
    updateNodes(term, known.children[child++], 1);
  }
}

void StreamReader::collect(int node, std::vector<int>& found) const {
  found.push_back(node);
  for (const int child : nodes_[static_cast<std::size_t>(node)].children) collect(child, found);
}

void StreamReader::findBall() {
  const auto ball = std::find_if(nodes_.begin(), nodes_.end(),
                                 [](const Node& node) { return fileName(node.mesh) == kBallMesh; });
  ball_ = ball == nodes_.end() ? -1 : static_cast<int>(ball - nodes_.begin());
}

void StreamReader::findRobots() {
  robots_.clear();
  for (const int branch : nodes_[0].children) {
    if (robots_.size() < kMaxRobots) findRobot(branch);
  }
}

// The torso's mesh names team and number.
void StreamReader::findRobot(int branch) {
  constexpr std::string_view kNumber = "matNum";
  std::vector<int> all;
  collect(branch, all);
  for (const int at : all) {
    const Node& node = nodes_[static_cast<std::size_t>(at)];
    int number = 0;
    Side side = Side::None;
    for (const std::string& material : node.materials) {
      if (material.starts_with(kNumber)) number = std::atoi(material.c_str() + kNumber.size());
      if (material == "matLeft") side = Side::Left;
      if (material == "matRight") side = Side::Right;
    }
    if (number < 1 || number > kMaxNumber || side == Side::None) continue;
    const int type = typeOf(node.mesh);
    robots_.push_back({side, number, type, partsOf(branch, type)});
    return;
  }
}

// The first mesh at or below a node, in the order of the tree; -1 if there is none.
int StreamReader::meshBelow(int node) const {
  std::vector<int> all;
  collect(node, all);
  for (const int at : all) {
    if (!nodes_[static_cast<std::size_t>(at)].mesh.empty()) return at;
  }
  return -1;
}

std::vector<int> StreamReader::partsOf(int branch, int type) const {
  const std::vector<arena::BodySpec>& bodies = arena::robotModel(type).bodies;
  std::vector<int> transforms;
  for (const int child : nodes_[static_cast<std::size_t>(branch)].children) {
    if (nodes_[static_cast<std::size_t>(child)].transform) transforms.push_back(child);
  }
  // In the order of the model, if the number is right; else what has a mesh is known by that.
  if (transforms.size() == bodies.size()) return transforms;
  std::vector<int> parts(bodies.size(), -1);
  for (const int transform : transforms) {
    const int mesh = meshBelow(transform);
    if (mesh < 0) continue;
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      if (parts[i] < 0 && isPartMesh(nodes_[static_cast<std::size_t>(mesh)].mesh, bodies[i].body)) {
        parts[i] = transform;
      }
    }
  }
  return parts;
}

Eigen::Isometry3d StreamReader::world(int node) const {
  Eigen::Matrix4d matrix = Eigen::Matrix4d::Identity();
  for (int at = node; at >= 0; at = nodes_[static_cast<std::size_t>(at)].parent) {
    matrix = nodes_[static_cast<std::size_t>(at)].matrix * matrix;
  }
  return rigid(matrix);
}

void StreamReader::place() {
  if (ball_ >= 0) cycle_.ball = world(ball_);
  cycle_.robots.clear();
  for (const Robot& robot : robots_) {
    const arena::RobotModel& model = arena::robotModel(robot.type);
    std::vector<Eigen::Isometry3d> poses;
    for (const int part : robot.parts) {
      poses.push_back(part < 0 ? Eigen::Isometry3d::Identity() : world(part));
    }
    arena::RecordedRobot& shown = cycle_.robots.emplace_back();
    shown.side = robot.side;
    shown.number = robot.number;
    shown.type = robot.type;
    shown.torso = poses[0];
    for (std::size_t j = 0; j < model.joints.size(); ++j) {
      const auto child = static_cast<std::size_t>(model.joints[j].child);
      const auto parent = static_cast<std::size_t>(model.joints[j].parent);
      if (robot.parts[child] < 0 || robot.parts[parent] < 0) continue;
      shown.joints[j] = static_cast<float>(
          hingeAngle(poses[parent].linear(), poses[child].linear(), model.joints[j].axis));
    }
  }
}

}  // namespace viewer
