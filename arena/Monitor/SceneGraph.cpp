#include "Monitor/SceneGraph.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "Common/DecimalText.h"
#include "Common/Pitch.h"
#include "Referee/Rules.h"

namespace arena {

namespace {

constexpr float kTransformChange = 0.005f;

using Isometry = Eigen::Isometry3d;

Isometry at(const Eigen::Vector3d& place) {
  Isometry pose = Isometry::Identity();
  pose.translation() = place;
  return pose;
}

Isometry withAxes(const Eigen::Vector3d& x, const Eigen::Vector3d& y, const Eigen::Vector3d& z,
                  const Eigen::Vector3d& place) {
  Isometry pose = at(place);
  pose.linear().col(0) = x;
  pose.linear().col(1) = y;
  pose.linear().col(2) = z;
  return pose;
}

// Meshes that were drawn with y up and the front along z are stood up by this.
Isometry meshUpright() {
  return withAxes({-1, 0, 0}, {0, 0, 1}, {0, 1, 0}, Eigen::Vector3d::Zero());
}

// Where the goal meshes lie in the frame of a goal, whose centre is its origin.
Isometry goalMesh() {
  return withAxes({0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0.3, 0, -0.4});
}

constexpr Eigen::Index kColumns = 4;

std::string scale(double x, double y, double z) {
  std::string text = "(sSc";
  for (const double factor : {x, y, z}) {
    text += ' ';
    appendNumber(text, factor);
  }
  return text + ')';
}

std::string mesh(std::string_view file, const std::string& scaling, std::string_view materials,
                 bool transparent = false) {
  std::string text = "(setVisible 1)";
  if (transparent) text += "(setTransparent)";
  text.append("(load ").append(file).append(")").append(scaling);
  return text.append("(resetMaterials ").append(materials).append(")");
}

std::string primitive(std::string_view shape, const std::string& scaling,
                      std::string_view material) {
  std::string text = "(setVisible 1)(load ";
  text.append(shape).append(")").append(scaling);
  return text.append("(sMat ").append(material).append(")");
}

constexpr std::string_view kLights[] = {
    "(setDiffuse 1 1 1 1)(setAmbient 0.8 0.8 0.8 1)(setSpecular 0.1 0.1 0.1 1)",
    "(setDiffuse 1 1 1 1)(setAmbient 0 0 0 1)(setSpecular 0.1 0.1 0.1 1)",
};

// The visible part of a body. In mesh files '#' is the digit of the type; in materials 'T' stands
// for the type's colour, 'team' for the team's, 'num' for the number.
struct Look {
  Body body;
  std::string_view file;  // of a mesh; empty for a primitive
  double scale;
  std::string_view materials;
  std::string_view type4Materials;
  bool upright = false;  // stands below the extra transform
};

constexpr Look kLooks[] = {
    {Body::Torso, "models/naobody#.obj", 0.1, "team team naowhite naowhite naowhite num T",
     "team team naowhite naowhite naowhite num team", true},
    {Body::Head, "models/naohead.obj", 0.1, "naowhite naoblack naogrey team", "", true},
    {Body::RightUpperArm, "models/rupperarm#.obj", 0.07, "T team naowhite", "team team naowhite"},
    {Body::LeftUpperArm, "models/lupperarm#.obj", 0.07, "T team naowhite", "team team naowhite"},
    {Body::RightLowerArm, "models/rlowerarm.obj", 0.05, "team naowhite", ""},
    {Body::LeftLowerArm, "models/llowerarm.obj", 0.05, "team naowhite", ""},
    {Body::RightThigh, "models/rthigh.obj", 0.07, "naowhite num team", ""},
    {Body::LeftThigh, "models/lthigh.obj", 0.07, "naowhite team", ""},
    {Body::RightShank, "models/rshank#.obj", 0.08, "team naowhite T", "team naowhite team"},
    {Body::LeftShank, "models/lshank#.obj", 0.08, "team naowhite T", "team naowhite team"},
    {Body::RightFoot, "models/rfoot.obj", 0.08, "team naowhite", ""},
    {Body::LeftFoot, "models/lfoot.obj", 0.08, "team naowhite", ""},
    {Body::RightToe, "models/rfoot.obj", 0.08, "team naowhite", ""},
    {Body::LeftToe, "models/lfoot.obj", 0.08, "team naowhite", ""},
};

const Look* lookOf(Body body) {
  for (const Look& look : kLooks) {
    if (look.body == body) return &look;
  }
  return nullptr;
}

std::string materialName(std::string_view word, const SceneRobot& robot) {
  if (word == "T") return "matType" + std::to_string(robot.type);
  if (word == "team") {
    return robot.side == Side::None ? "matTeam" : robot.side == Side::Left ? "matLeft" : "matRight";
  }
  if (word == "num") {
    return robot.side == Side::None ? "matNum" : "matNum" + std::to_string(robot.number);
  }
  return std::string(word);
}

std::string materialList(std::string_view words, const SceneRobot& robot) {
  std::string text;
  while (!words.empty()) {
    const std::size_t blank = std::min(words.find(' '), words.size());
    if (!text.empty()) text += ' ';
    text += materialName(words.substr(0, blank), robot);
    words.remove_prefix(std::min(blank + 1, words.size()));
  }
  return text;
}

std::string scaleOf(const Look& look, int type) {
  const bool foot = look.body == Body::RightFoot || look.body == Body::LeftFoot;
  const bool toe = look.body == Body::RightToe || look.body == Body::LeftToe;
  if (type == 4 && foot) return scale(0.08, 0.0622412, 0.08);
  if (toe) return scale(0.08, 0.0228258, 0.04);
  return scale(look.scale, look.scale, look.scale);
}

std::string fileOf(const Look& look, int type) {
  std::string file(look.file);
  const std::size_t mark = file.find('#');
  if (mark != std::string::npos) file.replace(mark, 1, std::to_string(type));
  return file;
}

std::string description(const Look& look, const SceneRobot& robot) {
  const bool special = robot.type == 4 && !look.type4Materials.empty();
  return mesh(fileOf(look, robot.type), scaleOf(look, robot.type),
              materialList(special ? look.type4Materials : look.materials, robot));
}

}  // namespace

namespace {

constexpr int kDigits = 6;
// Here fixed notation is the shorter one, with at most nine decimals.
constexpr double kLeastFixed = 1e-4;
constexpr double kMostFixed = 999'999;
constexpr std::array<double, 10> kPowersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

// The number of decimals with which a number of that range has six digits that count.
std::size_t decimalsOf(double size) {
  std::size_t decimals = 0;
  while (size * kPowersOfTen[decimals] < kPowersOfTen[kDigits - 1]) ++decimals;
  return decimals;
}

}  // namespace

void appendNumber(std::string& text, double number) {
  const double size = std::abs(number);
  if (size == 0 || size == 1) {
    return appendFixed(text, std::signbit(number), static_cast<std::uint32_t>(size), 0);
  }
  if (size >= kLeastFixed && size < kMostFixed) {
    std::size_t decimals = decimalsOf(size);
    if (auto whole = nearestWhole(size * kPowersOfTen[decimals])) {
      for (; decimals > 0 && *whole % 10 == 0; --decimals) *whole /= 10;
      return appendFixed(text, std::signbit(number), *whole, static_cast<int>(decimals));
    }
  }
  char digits[32];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, kDigits);
  text.append(digits, end.ptr);
}

SceneGraph::SceneGraph(const Scene& scene) {
  for (const std::string_view light : kLights) addLeaf(Kind::Light, std::string(light));
  addPitch();
  addBall();
  for (std::size_t i = 0; i < scene.robots.size(); ++i) addRobot(scene.robots[i], i);
}

std::size_t SceneGraph::open(Node node) {
  nodes_.push_back(std::move(node));
  nodes_.back().end = nodes_.size();
  return nodes_.size() - 1;
}

std::size_t SceneGraph::openTransform(const Isometry& pose) {
  Node node;
  for (Eigen::Index column = 0; column < kColumns; ++column) {
    for (Eigen::Index row = 0; row < 4; ++row) {
      node.sent[static_cast<std::size_t>(4 * column + row)] =
          static_cast<float>(pose.matrix()(row, column));
    }
  }
  return open(std::move(node));
}

void SceneGraph::addLeaf(Kind kind, std::string attributes) {
  Node node;
  node.kind = kind;
  node.attributes = std::move(attributes);
  open(std::move(node));
}

void SceneGraph::addEmptyTransform(const Eigen::Vector3d& place) {
  openTransform(at(place));
}

void SceneGraph::addPitch() {
  const std::size_t field = openTransform(meshUpright());
  addLeaf(Kind::StaticMesh,
          mesh("models/naosoccerfield.obj", scale(2.5, 1, 2.5), "naowhite naogrey"));
  close(field);
  const std::size_t sky = openTransform(meshUpright());
  addLeaf(Kind::StaticMesh, mesh("models/skybox.obj", scale(10, 10, 10), "naowhite"));
  close(sky);

  for (const Side side : kBothSides) {
    Isometry pose = at({ownGoalSign(side) * (kHalfLength + kGoalDepth / 2), 0, kGoalHeight / 2});
    if (side == Side::Right) pose.linear() = Eigen::Vector3d(-1, -1, 1).asDiagonal();
    const std::size_t goal = openTransform(pose);
    const std::size_t inner = openTransform(goalMesh());
    addLeaf(Kind::StaticMesh,
            mesh(side == Side::Left ? "models/leftsoccergoal.obj" : "models/rightsoccergoal.obj",
                 scale(2.18, 0.88, 0.68), "naowhite naogrey", true));
    close(inner);
    close(goal);
  }

  for (const StaticBox& wall : kOuterWalls) {
    const auto& [x, y, z] = wall.centre;
    const auto& [width, depth, height] = wall.size;
    const std::size_t box = openTransform(at({x, y, z}));
    addLeaf(Kind::SingleMaterial, primitive("StdUnitBox", scale(width, depth, height), "naogrey"));
    close(box);
  }

  for (const double x : {-kHalfLength, kHalfLength}) {
    for (const double y : {kHalfWidth, -kHalfWidth}) addEmptyTransform({x, y, 0});
  }
  // The 11 straight lines and the 10 pieces of the centre circle.
  constexpr int kLines = 21;
  for (int i = 0; i < kLines; ++i) addEmptyTransform(Eigen::Vector3d::Zero());
}

void SceneGraph::addBall() {
  const std::size_t ball = openTransform(at({0, 0, kBallRadius}));
  nodes_[ball].source = Node::Source::Ball;
  addLeaf(Kind::StaticMesh,
          mesh("models/soccerball.obj", scale(kBallRadius, kBallRadius, kBallRadius),
               "naowhite naoblack"));
  close(ball);
}

void SceneGraph::addRobot(const SceneRobot& robot, std::size_t position) {
  const std::size_t top = openTransform(Isometry::Identity());
  for (std::size_t i = 0; i < kBodyCount; ++i) {
    const Body body = static_cast<Body>(i);
    if (!hasBody(robot.type, body)) continue;
    const std::size_t transform = openTransform(Isometry::Identity());
    nodes_[transform].source = Node::Source::Body;
    nodes_[transform].robot = position;
    nodes_[transform].body = body;
    const Look* look = lookOf(body);
    if (!look && body == Body::Neck) {
      addLeaf(Kind::SingleMaterial, primitive("StdCapsule 0.015 0.08", scale(1, 1, 1), "naogrey"));
    } else if (!look) {
      addLeaf(Kind::SingleMaterial, primitive("StdUnitSphere", scale(0.01, 0.01, 0.01), "naogrey"));
    } else if (look->upright) {
      const std::size_t extra = openTransform(meshUpright());
      addLeaf(Kind::StaticMesh, description(*look, robot));
      close(extra);
    } else {
      addLeaf(Kind::StaticMesh, description(*look, robot));
    }
    close(transform);
  }
  close(top);
}

SceneGraph::Matrix SceneGraph::current(const Node& node, const Scene& scene) const {
  if (node.source == Node::Source::Fixed) return node.sent;
  const Isometry& pose =
      node.source == Node::Source::Ball ? scene.ball : scene.robots[node.robot].pose(node.body);
  Matrix matrix{};
  for (Eigen::Index column = 0; column < kColumns; ++column) {
    for (Eigen::Index row = 0; row < 3; ++row) {
      matrix[static_cast<std::size_t>(4 * column + row)] =
          static_cast<float>(pose.matrix()(row, column));
    }
  }
  matrix[15] = 1;
  return matrix;
}

namespace {

void appendTransform(std::string& text, const std::array<float, 16>& matrix) {
  text += "(SLT";
  for (const float number : matrix) {
    text += ' ';
    appendNumber(text, static_cast<double>(number));
  }
  text += ')';
}

bool differs(const std::array<float, 16>& a, const std::array<float, 16>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!(std::abs(a[i] - b[i]) <= kTransformChange)) return true;
  }
  return false;
}

}  // namespace

// Appends the tree; visit(node, text) writes what stands in a node before its children.
template <class Visit>
void SceneGraph::write(std::string& text, Visit visit) {
  std::vector<std::size_t> open;
  text += '(';
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    text += "(nd";
    visit(nodes_[i], text);
    open.push_back(nodes_[i].end);
    while (!open.empty() && open.back() == i + 1) {
      text += ')';
      open.pop_back();
    }
  }
  text += ')';
}

void SceneGraph::writeFull(const Scene& scene, std::string& text) {
  write(text, [&](Node& node, std::string& out) {
    switch (node.kind) {
      case Kind::Transform:
        node.sent = current(node, scene);
        out += " TRF ";
        return appendTransform(out, node.sent);
      case Kind::StaticMesh:
        out.append(" StaticMesh ").append(node.attributes);
        return;
      case Kind::SingleMaterial:
        out.append(" SMN ").append(node.attributes);
        return;
      case Kind::Light:
        out.append(" Light ").append(node.attributes);
        return;
    }
  });
}

void SceneGraph::writePartial(const Scene& scene, std::string& text) {
  write(text, [&](Node& node, std::string& out) {
    if (node.kind == Kind::StaticMesh) out += " StaticMesh";
    if (node.kind == Kind::SingleMaterial) out += " SMN";
    if (node.kind != Kind::Transform) return;
    const Matrix matrix = current(node, scene);
    if (node.source == Node::Source::Fixed || !differs(matrix, node.sent)) return;
    node.sent = matrix;
    out += ' ';
    appendTransform(out, matrix);
  });
}

}  // namespace arena
