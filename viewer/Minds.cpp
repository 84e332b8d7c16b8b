#include "Minds.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace viewer {

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

std::vector<std::string> playersOf(const std::string& record) {
  const std::string text = contentOf(fs::path(record) / "agents.json");
  try {
    std::vector<std::string> players;
    const auto content = nlohmann::json::parse(text);
    for (const auto& agent : content.at("agents")) {
      const auto side = agent.at("side").get<std::string>();
      const int number = agent.at("number").get<int>();
      if ((side == "left" || side == "right") && number >= 1 && number <= 11) {
        players.push_back(side + "/" + std::to_string(number));
      }
    }
    return players;
  } catch (const nlohmann::json::exception&) {
    throw std::runtime_error(record + " is no directory that arena --record-percepts has written");
  }
}

// A directory that goes with this object.
class Scratch {
 public:
  Scratch() {
    std::string name = (fs::temp_directory_path() / "viewer-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary directory can be made");
    path_ = name;
  }
  ~Scratch() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  fs::path operator/(const char* name) const { return path_ / name; }

 private:
  fs::path path_;
};

// Starts a program whose output, both kinds, goes to `output`; -1 if it cannot be started.
pid_t start(const std::vector<std::string>& command, const fs::path& output) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  pid_t child = -1;
  const int error = posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? child : -1;
}

}  // namespace

struct Minds::Work {
  std::mutex mutex;
  State state{State::Kind::Working, {}};
  std::atomic<pid_t> child = -1;
  std::thread thread;

  void finish(State::Kind kind, std::string content) {
    const std::lock_guard lock(mutex);
    state = {kind, std::move(content)};
  }

  // In the thread.
  void run(const Options& options, const std::string& player) {
    try {
      const Scratch scratch;
      const fs::path mind = scratch / "mind";
      const fs::path output = scratch / "output";
      const pid_t process = start({options.program, options.record, "--player", player, "--configs",
                                   options.configs, "--output", mind.string()},
                                  output);
      if (process < 0) return finish(State::Kind::Failed, "cannot start " + options.program);
      child = process;
      int status = 0;
      waitpid(process, &status, 0);
      child = -1;
      // Answers that differ are told within the mind itself.
      if (fs::exists(mind)) return finish(State::Kind::Ready, contentOf(mind));
      finish(State::Kind::Failed, contentOf(output));
    } catch (const std::exception& error) {
      finish(State::Kind::Failed, error.what());
    }
  }
};

Minds::Minds(Options options) : options_(std::move(options)) {
  if (!options_.record.empty()) players_ = playersOf(options_.record);
}

Minds::~Minds() {
  for (const auto& [player, work] : works_) {
    if (work->child > 0) kill(work->child, SIGKILL);
  }
  for (const auto& [player, work] : works_) {
    if (work->thread.joinable()) work->thread.join();
  }
}

std::shared_ptr<Minds::Work> Minds::work(const std::string& player) {
  std::shared_ptr<Work>& work = works_[player];
  if (!work) {
    work = std::make_shared<Work>();
    work->thread = std::thread([raw = work.get(), this, player] { raw->run(options_, player); });
  }
  return work;
}

Minds::State Minds::ask(const std::string& player) {
  if (std::find(players_.begin(), players_.end(), player) == players_.end()) return {};
  const std::shared_ptr<Work> asked = work(player);
  const std::lock_guard lock(asked->mutex);
  return asked->state;
}

Minds::State Minds::wait(const std::string& player) {
  State known = ask(player);
  if (known.kind == State::Kind::Unknown) return known;
  const std::shared_ptr<Work> asked = work(player);
  if (asked->thread.joinable()) asked->thread.join();
  return ask(player);
}

}  // namespace viewer
