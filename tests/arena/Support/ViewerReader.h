#ifndef QUOLNARIS_TESTS_ARENA_VIEWERREADER_H_
#define QUOLNARIS_TESTS_ARENA_VIEWERREADER_H_

#include <Eigen/Geometry>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Reads the monitor stream as the league's common viewer does, but complains about everything that
// viewer would silently misread: nodes of partial messages are matched by their position, so their
// number and kinds must be those of the last full message.
class ViewerReader {
 public:
  struct Node {
    std::string kind;  // TRF, StaticMesh, SMN, Light
    Eigen::Matrix4d transform = Eigen::Matrix4d::Identity();
    std::string file;  // of a mesh or the name of a primitive
    std::vector<std::string> materials;
    bool visible = false;
    bool transparent = false;
    Eigen::Vector3d scale = Eigen::Vector3d::Zero();
    std::vector<Node> children;
  };
  struct Found {
    const Node* node = nullptr;
    Eigen::Matrix4d pose = Eigen::Matrix4d::Identity();  // world from node, without its scale
    std::size_t branch = 0;                              // position of the top level node
  };
  struct Foul {
    int index, type, team, unum;
  };

  // Takes a message; throws std::runtime_error that says what is wrong with it.
  void read(std::string_view message);

  bool lastWasFull() const { return lastWasFull_; }
  bool lastHad(const std::string& name) const { return last_.count(name) > 0; }
  // The newest value of a term of the first list; throws if there was none.
  std::string term(const std::string& name) const;
  double number(const std::string& name) const { return std::stod(term(name)); }
  // The text of play_modes entry number play_mode.
  std::string playMode() const;
  const std::vector<Foul>& fouls() const { return fouls_; }  // of the last message
  const std::vector<Node>& nodes() const { return nodes_; }
  // How many transforms the last message carried.
  int transforms() const { return transforms_; }

  // By the viewer's rules: the first mesh whose file ends in soccerball.obj.
  std::optional<Found> ball() const;
  // The first mesh with both materials of a robot of the left or right team.
  std::optional<Found> robot(bool left, int number) const;
  // The first mesh in the branch whose file contains the text.
  std::optional<Found> inBranch(std::size_t branch, const std::string& text) const;

 private:
  std::map<std::string, std::vector<std::string>> terms_;
  std::map<std::string, int> last_;
  std::vector<Foul> fouls_;
  std::vector<Node> nodes_;
  bool lastWasFull_ = false;
  int transforms_ = 0;
};

#endif  // QUOLNARIS_TESTS_ARENA_VIEWERREADER_H_
