#ifndef QUOLNARIS_VIEWER_STREAMREADER_H_
#define QUOLNARIS_VIEWER_STREAMREADER_H_

#include <Eigen/Core>
#include <array>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "Film.h"
#include "Recording/RecordedCycle.h"
#include "Wire/SExpression.h"

namespace viewer {

// A message that makes no sense, or a partial one that does not fit to what came before.
class StreamError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the messages of a monitor port, of the arena's or the league's server: full ones
// ((RSG 0 1)) and partial ones ((RDS 0 1)), and gives what they show in the form of a recording:
// torso and hinge angles, taken from where the parts are.
//
// A robot is a branch of the tree with a mesh whose materials name its team and number. Its parts
// are known by their order and mesh files; a part that cannot be found leaves its hinge at 0.
class StreamReader {
 public:
  // Takes the next message. Throws StreamError; after that, only a full message is understood.
  void read(std::string_view message);
  // Forgets everything, as at a new connection.
  void restart() { *this = StreamReader(); }

  // What the messages read so far show. The events are those of the last message.
  const arena::RecordedCycle& cycle() const { return cycle_; }
  const std::array<std::string, 2>& teams() const { return teams_; }
  const PitchMeasures& pitch() const { return pitch_; }

 private:
  using Term = arena::SExpression::Node;

  struct Node {
    int parent = -1;
    std::vector<int> children;
    bool transform = false;
    Eigen::Matrix4d matrix = Eigen::Matrix4d::Identity();  // parent from node
    std::string mesh;                                      // file; empty for others
    std::vector<std::string> materials;
  };
  // Where a robot's parts are: indices of nodes.
  struct Robot {
    arena::Side side;
    int number;
    int type;
    std::vector<int> parts;  // by index in the robot's model; -1: not found
  };

  void readTerm(Term term);
  void readFoul(Term term);
  void readScore(arena::Side side, int value);
  void readMatrix(Node& node, Term list);
  void readNodes(Term list, int parent, std::size_t firstTerm);
  void updateNodes(Term list, int node, std::size_t firstTerm);
  void findBall();
  void findRobots();
  void findRobot(int branch);
  void collect(int node, std::vector<int>& found) const;
  std::vector<int> partsOf(int branch, int type) const;
  int meshBelow(int node) const;
  Eigen::Isometry3d world(int node) const;
  void place();

  arena::SExpression expression_;
  bool synchronous_ = false;  // a full message has come, and all was well since
  bool scored_ = false;       // a score has been told
  std::vector<Node> nodes_;   // [0] is the root
  int ball_ = -1;
  std::vector<Robot> robots_;
  std::vector<std::string> modes_;
  arena::RecordedCycle cycle_;
  std::array<std::string, 2> teams_;
  PitchMeasures pitch_ = kLeaguePitch;
  std::map<std::tuple<int, int, int>, float> fouls_;  // type, team, number: when last told
};

// The angle in degrees by which `child` is turned against `parent` about `axis` (any length).
double hingeAngle(const Eigen::Matrix3d& parent, const Eigen::Matrix3d& child,
                  const std::array<double, 3>& axis);

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_STREAMREADER_H_
