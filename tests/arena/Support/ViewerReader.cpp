#include "arena/Support/ViewerReader.h"

#include <cstdlib>
#include <functional>
#include <set>
#include <stdexcept>

#include "Wire/SExpression.h"

namespace {

using arena::SExpression;
using Item = SExpression::Node;
using Node = ViewerReader::Node;

[[noreturn]] void complain(const std::string& what) {
  throw std::runtime_error(what);
}
void demand(bool good, const std::string& what) {
  if (!good) complain(what);
}

double numberOf(Item item) {
  demand(item && item.isAtom(), "a number is missing");
  const std::string text(item.text());
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  demand(end == text.c_str() + text.size() && !text.empty(), "no number: " + text);
  return value;
}

bool is(Item item, std::string_view name) {
  return item.isList() && item.name() == name;
}

Eigen::Matrix4d transformOf(Item slt) {
  demand(slt.size() == 17, "SLT without 16 numbers");
  Eigen::Matrix4d matrix;
  for (std::size_t i = 0; i < 16; ++i) {
    matrix(static_cast<Eigen::Index>(i % 4), static_cast<Eigen::Index>(i / 4)) =
        numberOf(slt.child(i + 1));
  }
  const Eigen::RowVector4d last(0, 0, 0, 1);
  demand(matrix.row(3).isApprox(last), "SLT whose last row is not 0 0 0 1");
  const Eigen::Matrix3d turn = matrix.topLeftCorner<3, 3>();
  demand((turn * turn.transpose()).isApprox(Eigen::Matrix3d::Identity(), 1e-3),
         "SLT that is no rotation");
  return matrix;
}

// Terms that partial messages carry when they are new.
const std::set<std::string> kSentOnChange = {"team_left",  "team_right",  "half",
                                             "score_left", "score_right", "play_mode"};
const std::set<std::string> kWholeNumbers = {"half", "score_left", "score_right", "play_mode"};

const std::set<std::string> kPrimitives = {"StdUnitBox", "StdUnitSphere", "StdUnitCylinder",
                                           "StdCapsule"};

Node fullNode(Item item);

void readMesh(Item item, Node& node) {
  // In this order: setVisible, perhaps setTransparent, load, sSc, materials.
  std::size_t at = 2;
  demand(is(item.child(at), "setVisible"), "mesh without setVisible");
  node.visible = numberOf(item.child(at++).child(1)) == 1;
  if (is(item.child(at), "setTransparent")) {
    node.transparent = true;
    ++at;
  }
  const Item load = item.child(at++);
  demand(is(load, "load"), "mesh without load");
  node.file = load.child(1).text();
  const Item scale = item.child(at++);
  demand(is(scale, "sSc") && scale.size() == 4, "mesh without sSc");
  for (std::size_t i = 0; i < 3; ++i) {
    node.scale[static_cast<Eigen::Index>(i)] = numberOf(scale.child(i + 1));
  }
  const Item materials = item.child(at++);
  const bool primitive = node.kind == "SMN";
  demand(is(materials, primitive ? "sMat" : "resetMaterials"), "mesh without materials");
  for (std::size_t i = 1; i < materials.size(); ++i) {
    node.materials.emplace_back(materials.child(i).text());
  }
  demand(!node.materials.empty(), "mesh with an empty list of materials");
  if (primitive) {
    demand(kPrimitives.count(node.file) == 1, "unknown primitive " + node.file);
    const bool sized = node.file == "StdUnitCylinder" || node.file == "StdCapsule";
    demand(load.size() == (sized ? 4u : 2u), "primitive with wrong parameters");
    demand(node.materials.size() == 1, "primitive without exactly one material");
  } else {
    demand(load.size() == 2 && node.file.size() > 4 &&
               node.file.compare(node.file.size() - 4, 4, ".obj") == 0,
           "mesh file is no .obj: " + node.file);
  }
  demand(at == item.size(), "mesh with unknown parts");
}

Node fullNode(Item item) {
  demand(is(item, "nd"), "a node must begin with nd");
  Node node;
  node.kind = item.child(1).text();
  if (node.kind == "TRF") {
    demand(is(item.child(2), "SLT"), "the first child of a TRF must be its SLT");
    node.transform = transformOf(item.child(2));
    for (std::size_t i = 3; i < item.size(); ++i) node.children.push_back(fullNode(item.child(i)));
  } else if (node.kind == "StaticMesh" || node.kind == "SMN") {
    readMesh(item, node);
  } else if (node.kind == "Light") {
    for (std::size_t i = 2; i < item.size(); ++i) {
      demand(item.child(i).size() == 5, "light colour without four numbers");
    }
  } else {
    complain("unknown node kind " + node.kind);
  }
  return node;
}

void partialNode(Item item, Node& node, int& transforms) {
  demand(is(item, "nd"), "a node must begin with nd");
  std::size_t at = 1;
  if (node.kind == "TRF") {
    if (is(item.child(at), "SLT")) {
      const Eigen::Matrix4d fresh = transformOf(item.child(at++));
      // Up to 0.005, seen through six digits.
      demand((fresh - node.transform).cwiseAbs().maxCoeff() > 0.0049,
             "transform sent again although it has hardly changed");
      node.transform = fresh;
      ++transforms;
    }
    demand(item.size() - at == node.children.size(), "transform with another number of children");
    for (Node& child : node.children) partialNode(item.child(at++), child, transforms);
    return;
  }
  if (node.kind == "Light") {
    demand(item.size() == 1, "light with content in a partial message");
    return;
  }
  demand(item.child(at).isAtom() && item.child(at).text() == node.kind,
         "a " + node.kind + " was expected");
  ++at;
  if (is(item.child(at), "setVisible")) node.visible = numberOf(item.child(at++).child(1)) == 1;
  demand(at == item.size(), "mesh with content in a partial message");
}

}  // namespace

void ViewerReader::read(std::string_view message) {
  SExpression expression;
  demand(expression.read(message) == SExpression::Status::Complete, "the message is not complete");
  demand(expression.size() == 3, "a message has three lists");
  demand(message.find(")(") != std::string_view::npos, "lists follow each other without blanks");
  auto list = expression.begin();
  const Item state = *list;
  const Item head = *++list;
  const Item tree = *++list;

  demand(state.size() > 0, "the first list is empty");
  demand(state.child(0).isList(), "the first list must begin with a list");
  demand(state.child(0).name() != "RSMP", "RSMP selects another protocol");
  last_.clear();
  fouls_.clear();
  for (const Item term : state) {
    demand(term.isList() && term.size() >= 2, "a term needs a name and a value");
    const std::string name(term.name());
    ++last_[name];
    if (name == "foul") {
      demand(term.size() == 5, "foul without four numbers");
      fouls_.push_back({term.child(1).integer(), term.child(2).integer(), term.child(3).integer(),
                        term.child(4).integer()});
      continue;
    }
    demand(last_[name] == 1, "term " + name + " twice");
    std::vector<std::string> values;
    for (std::size_t i = 1; i < term.size(); ++i) values.emplace_back(term.child(i).text());
    const bool needed = head.name() == "RSG" || kSentOnChange.count(name) == 0 ||
                        terms_.count(name) == 0 || terms_[name] != values;
    demand(needed, "term " + name + " sent again although it has not changed");
    if (kWholeNumbers.count(name) > 0) {
      demand(std::to_string(term.child(1).integer()) == values[0], "no whole number: " + values[0]);
    }
    terms_[name] = values;
    demand(name != "play_mode" || terms_.count("play_modes") == 1, "play_mode before play_modes");
  }

  demand(head.size() == 3 && numberOf(head.child(1)) == 0 && numberOf(head.child(2)) == 1,
         "the head must carry version 0 1");
  lastWasFull_ = head.name() == "RSG";
  transforms_ = 0;
  if (lastWasFull_) {
    nodes_.clear();
    for (const Item item : tree) nodes_.push_back(fullNode(item));
  } else {
    demand(head.name() == "RDS", "unknown head");
    demand(tree.size() == nodes_.size(), "another number of top level nodes");
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      partialNode(tree.child(i), nodes_[i], transforms_);
    }
  }
  // No two robots may share a top level node.
  std::map<std::size_t, std::string> owners;
  for (const bool left : {true, false}) {
    for (int number = 1; number <= 11; ++number) {
      if (const auto found = robot(left, number)) {
        const std::string name = (left ? "left " : "right ") + std::to_string(number);
        const auto [owner, fresh] = owners.emplace(found->branch, name);
        demand(fresh, name + " shares a branch with " + owner->second);
      }
    }
  }
}

std::string ViewerReader::term(const std::string& name) const {
  const auto found = terms_.find(name);
  if (found == terms_.end()) complain("no term " + name);
  return found->second.at(0);
}

std::string ViewerReader::playMode() const {
  return terms_.at("play_modes").at(static_cast<std::size_t>(number("play_mode")));
}

namespace {

using Test = std::function<bool(const Node&)>;

bool search(const Node& node, const Eigen::Matrix4d& outer, const Test& test,
            ViewerReader::Found& found) {
  const Eigen::Matrix4d pose = outer * node.transform;
  if (test(node)) {
    found.node = &node;
    found.pose = pose;
    return true;
  }
  for (const Node& child : node.children) {
    if (search(child, pose, test, found)) return true;
  }
  return false;
}

std::optional<ViewerReader::Found> search(const std::vector<Node>& nodes, const Test& test) {
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    ViewerReader::Found found;
    found.branch = i;
    if (search(nodes[i], Eigen::Matrix4d::Identity(), test, found)) return found;
  }
  return std::nullopt;
}

bool has(const Node& node, const std::string& material) {
  for (const std::string& known : node.materials) {
    if (known == material) return true;
  }
  return false;
}

}  // namespace

std::optional<ViewerReader::Found> ViewerReader::ball() const {
  return search(nodes_, [](const Node& node) {
    const std::string end = "soccerball.obj";
    return node.kind == "StaticMesh" && node.file.size() >= end.size() &&
           node.file.compare(node.file.size() - end.size(), end.size(), end) == 0;
  });
}

std::optional<ViewerReader::Found> ViewerReader::robot(bool left, int number) const {
  return search(nodes_, [&](const Node& node) {
    return node.kind == "StaticMesh" && has(node, left ? "matLeft" : "matRight") &&
           has(node, "matNum" + std::to_string(number));
  });
}

std::optional<ViewerReader::Found> ViewerReader::inBranch(std::size_t branch,
                                                          const std::string& text) const {
  Found found;
  found.branch = branch;
  const auto matches = [&text](const Node& node) {
    return node.kind == "StaticMesh" && node.file.find(text) != std::string::npos;
  };
  if (!search(nodes_.at(branch), Eigen::Matrix4d::Identity(), matches, found)) return std::nullopt;
  return found;
}
