#include "support/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace support {

namespace {

constexpr std::chrono::seconds kPatience{60};
constexpr std::chrono::milliseconds kPause{2};

// Runs in the child; only calls that are safe between fork and exec.
[[noreturn]] void become(const char* where, char* const* argv, char* const* environment, int out,
                         int err) {
  if (chdir(where) == 0 && dup2(out, STDOUT_FILENO) != -1 && dup2(err, STDERR_FILENO) != -1) {
    execve(argv[0], argv, environment);
  }
  _exit(127);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

std::vector<std::string> environmentWith(const Process::Environment& extra) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) result.emplace_back(*entry);
  for (const auto& [name, value] : extra) result.push_back(name + "=" + value);
  return result;
}

int openFor(const std::filesystem::path& path) {
  return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

}  // namespace

Process::Process(const std::string& name, const std::filesystem::path& where,
                 const std::vector<std::string>& options, const Environment& extra) {
  std::vector<std::string> arguments = {pathOf(name)};
  arguments.insert(arguments.end(), options.begin(), options.end());
  std::vector<std::string> environment = environmentWith(extra);
  const std::vector<char*> argv = pointers(arguments);
  const std::vector<char*> envp = pointers(environment);
  const int out = openFor(output.path() / "stdout");
  const int err = openFor(output.path() / "stderr");

  pid = fork();
  if (pid == 0) become(where.c_str(), argv.data(), envp.data(), out, err);
  close(out);
  close(err);
  if (pid == -1) throw std::runtime_error("can't start the program");
}

Process::~Process() {
  kill();
}

std::string Process::pathOf(const std::string& name) {
  return std::string(QUOLNARIS_BIN_DIR) + "/" + name;
}

bool Process::reap(bool block) {
  if (!ended) ended = waitpid(pid, &status, block ? 0 : WNOHANG) == pid;
  return ended;
}

bool Process::isRunning() {
  return !reap(false);
}

ProcessEnd Process::wait() {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!reap(false)) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("the program did not end");
    }
    std::this_thread::sleep_for(kPause);
  }
  const bool exited = WIFEXITED(status);
  return {exited, exited ? WEXITSTATUS(status) : -1, exited ? 0 : WTERMSIG(status)};
}

void Process::kill() {
  if (reap(false)) return;
  ::kill(pid, SIGKILL);
  reap(true);
}

double processorTime(pid_t pid) {
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string line;
  std::getline(stat, line);
  // The name of the program, in parentheses, may hold blanks; the fields are counted behind it.
  std::istringstream fields(line.substr(line.rfind(')') + 1));
  std::string skipped;
  for (int i = 0; i < 11; ++i) fields >> skipped;
  double user = 0;
  double system = 0;
  fields >> user >> system;
  return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace support
