// The command line of the program.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "arena/Support/LiveArena.h"

namespace arena {
namespace {

struct Outcome {
  int status;
  std::string output;
};

Outcome runArena(const std::string& arguments) {
  const std::string command = std::string(QUOLNARIS_BIN_DIR "/arena ") + arguments + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  Outcome outcome{-1, {}};
  if (pipe == nullptr) return outcome;
  char buffer[4096];
  std::size_t count = 0;
  while ((count = fread(buffer, 1, sizeof(buffer), pipe)) > 0) outcome.output.append(buffer, count);
  outcome.status = WEXITSTATUS(pclose(pipe));
  return outcome;
}

TEST(MainTest, ExplainsEveryOption) {
  const Outcome outcome = runArena("--help");
  EXPECT_EQ(outcome.status, 0);
  for (const char* option :
       {"--agent-port", "--monitor-port", "--bind", "--real-time", "--agent-timeout", "--seed",
        "--duration", "--half-time", "--auto-kick-off", "--coin-toss", "--change-sides",
        "--wait-agents", "--no-noise", "--ground-truth", "--record", "--report", "--quiet"}) {
    EXPECT_NE(outcome.output.find(option), std::string::npos) << option;
  }
}

TEST(MainTest, RefusesOptionsItDoesNotKnow) {
  EXPECT_NE(runArena("--no-such-option").status, 0);
  EXPECT_NE(runArena("--agent-timeout -1").status, 0);
}

TEST(MainTest, SaysWhenAPortIsTaken) {
  Arena arena;
  const Outcome outcome =
      runArena("--monitor-port 0 --agent-port " + std::to_string(arena.agents()));
  EXPECT_NE(outcome.status, 0);
  EXPECT_NE(outcome.output.find("arena: "), std::string::npos);
}

}  // namespace
}  // namespace arena
