#ifndef QUOLNARIS_MONITOR_SCENEGRAPH_H_
#define QUOLNARIS_MONITOR_SCENEGRAPH_H_

#include <array>
#include <string>
#include <vector>

#include "Common/Scene.h"

namespace arena {

// Appends a number as the stream spells it: up to six significant digits, the shortest of fixed
// and scientific notation.
void appendNumber(std::string& text, double number);

// The tree of lights, meshes and transforms that viewers draw, in the league's order: 2 lights,
// field, sky, 2 goals, 4 walls, 4 flags, 21 lines, ball, then one node for each robot.
class SceneGraph {
 public:
  SceneGraph() = default;
  // The tree of a scene. It fits every later scene with the same robots in the same roles.
  explicit SceneGraph(const Scene& scene);

  // Appends the list of all nodes, with every attribute; remembers the transforms as sent.
  void writeFull(const Scene& scene, std::string& text);
  // Appends the same list with the transforms that differ from what was sent last, in one of
  // their numbers by more than 0.005. REQUIRES: the robots of the scene are those of the tree.
  void writePartial(const Scene& scene, std::string& text);

 private:
  using Matrix = std::array<float, 16>;  // column after column

  enum class Kind { Transform, StaticMesh, SingleMaterial, Light };
  // Nodes lie in depth-first order; `end` is the position after the last descendant.
  struct Node {
    Kind kind = Kind::Transform;
    std::size_t end = 0;
    // Of a transform: which pose it follows.
    enum class Source { Fixed, Ball, Body } source = Source::Fixed;
    std::size_t robot = 0;  // position in the scene
    Body body = Body::Torso;
    Matrix sent{};           // as sent last
    std::string attributes;  // of the others: what follows the name in the full form
  };

  std::size_t open(Node node);
  void close(std::size_t position) { nodes_[position].end = nodes_.size(); }
  std::size_t openTransform(const Eigen::Isometry3d& pose);
  void addLeaf(Kind kind, std::string attributes);
  void addEmptyTransform(const Eigen::Vector3d& place);
  void addPitch();
  void addBall();
  void addRobot(const SceneRobot& robot, std::size_t position);
  Matrix current(const Node& node, const Scene& scene) const;
  template <class Visit>
  void write(std::string& text, Visit visit);

  std::vector<Node> nodes_;
};

}  // namespace arena

#endif  // QUOLNARIS_MONITOR_SCENEGRAPH_H_
