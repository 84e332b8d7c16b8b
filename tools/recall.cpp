// Brings back what a player sensed, believed and decided in a match: feeds the frames that the
// arena has recorded to the player's own code once more, and compares its answers with the recorded
// ones.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "FrameRecording.h"
#include "MindRecord.h"
#include "PlayerReplay.h"

namespace {

namespace fs = std::filesystem;

struct Options {
  std::string record;
  std::string player;
  std::string configs = "Configs";
  std::string output;
  std::string csv;
  bool list = false;
};

struct RecordedAgent {
  int id = 0;
  std::string player;  // "left/7"
  long firstCycle = 0;
};

// The agents that had a team.
std::vector<RecordedAgent> agentsOf(const std::string& record) {
  std::ifstream file(fs::path(record) / "agents.json");
  if (!file) throw std::runtime_error("no agents.json in " + record);
  try {
    std::vector<RecordedAgent> agents;
    const auto content = nlohmann::json::parse(file);
    for (const auto& entry : content.at("agents")) {
      if (entry.at("number").get<int>() < 1) continue;
      agents.push_back({entry.at("agent").get<int>(),
                        entry.at("side").get<std::string>() + "/" +
                            std::to_string(entry.at("number").get<int>()),
                        entry.at("firstCycle").get<long>()});
    }
    return agents;
  } catch (const nlohmann::json::exception&) {
    throw std::runtime_error((fs::path(record) / "agents.json").string() + " is damaged");
  }
}

// Of several agents under one number the one that came last.
RecordedAgent agentOf(const Options& options) {
  RecordedAgent found;
  for (const RecordedAgent& agent : agentsOf(options.record)) {
    if (agent.player == options.player) found = agent;
  }
  if (found.player.empty()) {
    throw std::runtime_error("no player " + options.player + " in " + options.record +
                             "; --list tells which there are");
  }
  return found;
}

std::vector<std::string> streamOf(const Options& options, const RecordedAgent& agent,
                                  const char* kind) {
  return readRecording(
      (fs::path(options.record) / ("agent-" + std::to_string(agent.id) + "." + kind + ".gz"))
          .string());
}

// A working directory with the configuration and nothing else: the player reads ./Configs/ and
// writes a log where ./Logs/ is.
class PlayerDirectory {
 public:
  explicit PlayerDirectory(const std::string& configs) {
    if (!fs::is_directory(configs)) {
      throw std::runtime_error("no directory " + configs +
                               "; start this where Configs/ is or name it by --configs");
    }
    std::string name = (fs::temp_directory_path() / "recall-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary directory can be made");
    path_ = name;
    fs::create_directory_symlink(fs::absolute(configs), path_ / "Configs");
    before_ = fs::current_path();
    fs::current_path(path_);
  }
  ~PlayerDirectory() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
    fs::remove_all(path_, ignored);
  }
  PlayerDirectory(const PlayerDirectory&) = delete;
  PlayerDirectory& operator=(const PlayerDirectory&) = delete;

 private:
  fs::path path_;
  fs::path before_;
};

void write(const std::string& path, const std::string& content) {
  std::ofstream file(path, std::ios::binary);
  file << content;
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

std::string verdict(std::size_t difference, std::size_t compared) {
  if (difference == compared) {
    return "All " + std::to_string(compared) + " answers are those of the record, byte for byte.";
  }
  return "The answers differ from the record's from answer " + std::to_string(difference + 1) +
         " of " + std::to_string(compared) +
         " on: another player or configuration played then, and what follows was not believed so.";
}

// Whether all answers were the recorded ones.
bool run(const Options& options) {
  const RecordedAgent agent = agentOf(options);
  const std::vector<std::string> frames = streamOf(options, agent, "frames");
  const std::vector<std::string> recorded = streamOf(options, agent, "answers");
  if (frames.empty()) throw std::runtime_error(options.player + " was sent nothing");
  const PlayerIdentity identity = identityOf(recorded);

  MindRecord mind;
  std::vector<std::string> replayed;
  {
    const PlayerDirectory directory(options.configs);
    // The player talks on the standard output.
    std::streambuf* const output = std::cout.rdbuf(nullptr);
    replayed = replayPlayer(identity, frames, [&](OurPlayer& player, const Replayed& state) {
      mind.add(player, frames[state.frame], state.decided);
    });
    std::cout.rdbuf(output);
    std::cout.clear();
  }
  for (std::size_t i = 0; i < replayed.size(); ++i) mind.setAnswer(i, replayed[i]);
  const std::size_t difference = firstDifference(recorded, replayed);
  const std::size_t compared = std::min(recorded.size(), replayed.size());
  const bool same = difference == compared;
  const std::string told = verdict(difference, compared);
  // A frame shows what the cycle before it has left behind.
  const MindRecord::Summary summary{options.player, agent.firstCycle - 1, same, told};
  std::cout << options.player << " (" << identity.team << " " << identity.number << ", type "
            << identity.type << "): " << frames.size() << " frames. " << told << '\n';
  if (!options.output.empty()) write(options.output, mind.packed(summary));
  if (!options.csv.empty()) write(options.csv, mind.csv());
  return same;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{
      "Brings back what a player sensed, believed and decided in a match that was recorded by\n"
      "arena --record-percepts: its frames are fed to the player's own code once more. The player "
      "is\n"
      "deterministic, so its answers must be the recorded ones, byte for byte; status 2 and a line "
      "tell\nwhere they are not."};
  app.add_option("record", options.record, "directory of arena --record-percepts")->required();
  app.add_option("--player", options.player, "SIDE/NUMBER of the player, such as left/7");
  app.add_option("--configs", options.configs, "configuration that the player had")
      ->capture_default_str();
  app.add_option("--output", options.output, "write all of it to this file, for the viewer");
  app.add_option("--csv", options.csv, "write all of it to this file, as a table");
  app.add_flag("--list", options.list, "name the players of the record, and end");
  CLI11_PARSE(app, argc, argv);

  try {
    if (options.list) {
      for (const RecordedAgent& agent : agentsOf(options.record)) std::cout << agent.player << '\n';
      return 0;
    }
    if (options.player.empty()) throw std::runtime_error("name a player by --player; see --help");
    return run(options) ? 0 : 2;
  } catch (const std::exception& error) {
    std::cerr << "recall: " << error.what() << '\n';
    return 1;
  }
}
