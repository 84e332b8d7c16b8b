#ifndef QUOLNARIS_TESTS_SUPPORT_PROCESS_H_
#define QUOLNARIS_TESTS_SUPPORT_PROCESS_H_

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/TempDirectory.h"

namespace support {

// How a process ended: by `exit(code)`, or by a signal.
struct ProcessEnd {
  bool exited;
  int code;    // of the exit; -1 if it was a signal
  int signal;  // 0 if it was an exit
};

// A program of this build, running in a directory of the test's choice. Its output goes to files,
// so that it never blocks. A process that still runs is killed with this object.
class Process {
 public:
  using Environment = std::map<std::string, std::string>;

  // Starts the program `name` of this build with `options` in the directory `where`; `extra` is
  // added to the environment.
  Process(const std::string& name, const std::filesystem::path& where,
          const std::vector<std::string>& options, const Environment& extra = {});
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  // The path that the program `name` of this build is started by, its argv[0].
  static std::string pathOf(const std::string& name);

  pid_t id() const { return pid; }

  // Whether the process has not ended yet.
  bool isRunning();

  // Waits for the end; throws std::runtime_error if it does not come within 60 seconds.
  ProcessEnd wait();

  // Kills the process and waits for its end.
  void kill();

  // What the process has written so far.
  std::string standardOutput() const { return output.read("stdout"); }
  std::string standardError() const { return output.read("stderr"); }

 private:
  bool reap(bool block);

  TempDirectory output;
  pid_t pid;
  bool ended = false;
  int status = 0;
};

// Processor time that a running process has used, in seconds.
double processorTime(pid_t pid);

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_PROCESS_H_
