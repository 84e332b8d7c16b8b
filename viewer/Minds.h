#ifndef QUOLNARIS_VIEWER_MINDS_H_
#define QUOLNARIS_VIEWER_MINDS_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Page.h"

namespace viewer {

// What players believed, brought back from their recorded frames by the program `recall`: one run
// for each player that is asked for, since a process can be one player only.
class Minds {
 public:
  struct Options {
    std::string record;   // directory that arena --record-percepts has written; empty: none
    std::string program;  // recall
    std::string configs;  // the players' configuration
  };
  struct State {
    enum class Kind { Unknown, Working, Ready, Failed };
    Kind kind = Kind::Unknown;
    std::string content;  // of a ready one the packed mind, of a failed one the reason
  };

  // Throws std::runtime_error if the directory is no such record.
  explicit Minds(Options options);
  ~Minds();
  Minds(const Minds&) = delete;
  Minds& operator=(const Minds&) = delete;

  // The players that can be asked for: "left/7".
  const std::vector<std::string>& players() const { return players_; }
  // What is known of a player now; begins to bring it back, if nobody has asked before.
  State ask(const std::string& player);
  // The same, waiting for it.
  State wait(const std::string& player);

 private:
  struct Work;

  std::shared_ptr<Work> work(const std::string& player);

  Options options_;
  std::vector<std::string> players_;
  std::map<std::string, std::shared_ptr<Work>> works_;
};

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_MINDS_H_
