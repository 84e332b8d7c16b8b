// The command line of the program.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "Recording/RecordingReader.h"
#include "arena/Support/LiveArena.h"
#include "support/Process.h"
#include "support/TempDirectory.h"

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
       {"--agent-port", "--monitor-port", "--bind", "--real-time", "--lose", "--agent-timeout",
        "--seed", "--duration", "--half-time", "--auto-kick-off", "--coin-toss", "--change-sides",
        "--wait-agents", "--threads", "--no-noise", "--ground-truth", "--record", "--report",
        "--quiet"}) {
    EXPECT_NE(outcome.output.find(option), std::string::npos) << option;
  }
}

TEST(MainTest, RefusesOptionsItDoesNotKnow) {
  EXPECT_NE(runArena("--no-such-option").status, 0);
  EXPECT_NE(runArena("--agent-timeout -1").status, 0);
}

TEST(MainTest, RefusesNumbersThatMakeNoSense) {
  for (const char* wrong : {"--duration nan",
                            "--duration inf",
                            "--duration=-1",
                            "--duration 1e300",
                            "--half-time nan",
                            "--half-time 0",
                            "--agent-timeout nan",
                            "--agent-timeout 0",
                            "--agent-timeout 1x",
                            "--seed=-1",
                            "--seed 18446744073709551616",
                            "--seed 1e3",
                            "--wait-agents=-1",
                            "--wait-agents 65",
                            "--threads 0",
                            "--threads 65",
                            "--agent-port 65536",
                            "--monitor-port=-1",
                            "--real-time --lose 100.1",
                            "--real-time --lose=-1",
                            "--real-time --lose nan"}) {
    const Outcome outcome = runArena(std::string(wrong) + " --bind nowhere");
    EXPECT_NE(outcome.status, 0) << wrong;
    EXPECT_NE(outcome.output.find(" is no "), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find("nowhere"), std::string::npos) << wrong << " was accepted";
    EXPECT_LT(outcome.output.size(), 200u) << outcome.output;
  }
}

TEST(MainTest, LosesNothingInLockstep) {
  const Outcome outcome = runArena("--lose 1 --bind nowhere");
  EXPECT_NE(outcome.status, 0);
  EXPECT_NE(outcome.output.find("--lose requires --real-time"), std::string::npos)
      << outcome.output;
}

TEST(MainTest, TakesEverySeed) {
  for (const char* good : {"0", "007", "18446744073709551615"}) {
    const Outcome outcome = runArena("--bind nowhere --seed " + std::string(good));
    EXPECT_NE(outcome.output.find("'nowhere': that is no IP address"), std::string::npos) << good;
  }
}

TEST(MainTest, SaysWhichPortIsTakenAndLeavesTheFilesOfTheOther) {
  Arena arena;
  const support::TempDirectory directory;
  const std::string recording = directory.write("match.rec", "of the other").string();
  const Outcome outcome = runArena("--monitor-port 0 --agent-port " +
                                   std::to_string(arena.agents()) + " --record " + recording);
  EXPECT_NE(outcome.status, 0);
  EXPECT_EQ(outcome.output, "arena: cannot listen for agents at 127.0.0.1 port " +
                                std::to_string(arena.agents()) + ": Address already in use\n");
  EXPECT_EQ(directory.read("match.rec"), "of the other");
}

TEST(MainTest, FindsOutAtTheStartWhatItCannotWrite) {
  for (const char* option : {"--report", "--record"}) {
    const Outcome outcome =
        runArena("--agent-port 0 --monitor-port 0 " + std::string(option) + " /nonexistent/file");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("/nonexistent/file: No such file or directory"),
              std::string::npos)
        << outcome.output;
  }
}

// The program with clients.
class LiveMainTest : public testing::Test {
 protected:
  explicit LiveMainTest(const std::vector<std::string>& more = {})
      : arena("arena", directory.path(), options(more)) {
    const std::regex ports("agents at port ([0-9]+), monitors at port ([0-9]+)\n");
    std::smatch match;
    std::string text;
    while (!std::regex_search(text = arena.standardError(), match, ports)) {
      if (!arena.isRunning()) throw std::runtime_error("no arena: " + text);
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    agents = static_cast<unsigned short>(std::stoi(match[1]));
    monitors = static_cast<unsigned short>(std::stoi(match[2]));
  }
  static std::vector<std::string> options(const std::vector<std::string>& more) {
    std::vector<std::string> all = {"--agent-port", "0",         "--monitor-port", "0",
                                    "--record",     "match.rec", "--report",       "report.json"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  struct Read {
    int cycles = 0;
    bool complete = false;
  };
  Read readRecording() const {
    RecordingReader reader((directory.path() / "match.rec").string());
    RecordedCycle cycle;
    Read read;
    while (reader.next(cycle)) ++read.cycles;
    read.complete = reader.complete();
    return read;
  }
  // Waits until the program has said this.
  bool says(const std::string& part) {
    for (int i = 0; i < 2000; ++i) {
      if (arena.standardError().find(part) != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
  }

  support::TempDirectory directory;
  support::Process arena;
  unsigned short agents = 0;
  unsigned short monitors = 0;
};

TEST_F(LiveMainTest, EndsInOrderWhenItsTerminalHangsUp) {
  Player player(agents, 1, "Alpha");
  ASSERT_TRUE(player.play(20));
  ::kill(arena.id(), SIGHUP);
  const support::ProcessEnd end = arena.wait();
  EXPECT_TRUE(end.exited);
  EXPECT_EQ(end.code, 0);
  EXPECT_TRUE(readRecording().complete);
  EXPECT_NE(directory.read("report.json").find("\"cycles\""), std::string::npos);
}

// As it is with nohup.
class DeafLiveMainTest : public LiveMainTest {
 protected:
  // The disposition is inherited by what is started.
  struct Deaf {
    Deaf() { std::signal(SIGHUP, SIG_IGN); }
  };
  explicit DeafLiveMainTest(Deaf = {}) { std::signal(SIGHUP, SIG_DFL); }
};

TEST_F(DeafLiveMainTest, GoesOnAfterAHangUpThatItIsToIgnore) {
  Player player(agents, 1, "Alpha");
  ::kill(arena.id(), SIGHUP);
  EXPECT_TRUE(player.play(100));
  ::kill(arena.id(), SIGTERM);
  EXPECT_EQ(arena.wait().code, 0);
}

TEST_F(LiveMainTest, HasARecordingFromTheStart) {
  ::kill(arena.id(), SIGKILL);
  arena.wait();
  const Read read = readRecording();
  EXPECT_EQ(read.cycles, 0);
  EXPECT_FALSE(read.complete);
}

// Whether cycles go on or not when it is killed.
TEST_F(LiveMainTest, LeavesWhatItHadRecordedUntilASecondBeforeItIsKilled) {
  Player player(agents, 1, "Alpha");
  ASSERT_TRUE(player.play(500));
  std::this_thread::sleep_for(std::chrono::milliseconds(1000));
  ::kill(arena.id(), SIGKILL);
  arena.wait();
  const Read read = readRecording();
  EXPECT_GE(read.cycles, 500);
  EXPECT_FALSE(read.complete);
}

TEST_F(LiveMainTest, EscapesAndCutsWhatClientsSay) {
  Player player(agents, 1, "Alpha");
  player.play(3, "('\x1b]0;title\x07\x1b[2J' 1)(\x9b\x31m 1)");
  Player(agents, 2, std::string(5000, 'N')).play(3);
  EXPECT_TRUE(says("\\x1b]0;title\\x07\\x1b[2J"));
  EXPECT_TRUE(says("\\x9b1m"));
  player.play(50);
  const std::string text = arena.standardError();
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
  EXPECT_EQ(text.find('\x9b'), std::string::npos);
  EXPECT_EQ(text.find(std::string(300, 'N')), std::string::npos);
}

TEST_F(LiveMainTest, CountsWhatComesOverAndOver) {
  for (int i = 0; i < 55; ++i) {
    Client rude(agents);
    rude.sendRaw(frameHead(0xffffffffU));
    EXPECT_FALSE(rude.receive());
  }
  EXPECT_TRUE(says("(10 times)"));
  ::kill(arena.id(), SIGTERM);
  arena.wait();
  const std::string text = arena.standardError();
  EXPECT_NE(text.find("longer than allowed) (55 times)"), std::string::npos) << text;
  EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 8) << text;
}

TEST_F(LiveMainTest, PlaysOnAtFullSpeedWithItsDescriptorsUsedUp) {
  Player player(agents, 1, "Alpha");
  ASSERT_TRUE(player.play(20));
  const rlimit few{16, 16};
  ASSERT_EQ(::prlimit(arena.id(), RLIMIT_NOFILE, &few, nullptr), 0);
  std::vector<std::unique_ptr<Client>> crowd;
  for (int i = 0; i < 20; ++i) {
    crowd.push_back(std::make_unique<Client>(i % 2 == 0 ? agents : monitors));
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(player.play(2000));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_TRUE(says("cannot be let in: Too many open files"));
  const double before = support::processorTime(arena.id());
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_LT(support::processorTime(arena.id()) - before, 0.1) << "it tries without a pause";
  // With room again, who waits is let in.
  crowd.clear();
  EXPECT_TRUE(Player(agents, 2, "Alpha").first);
  ::kill(arena.id(), SIGTERM);
  EXPECT_EQ(arena.wait().code, 0);
  EXPECT_FALSE(directory.read("report.json").empty());
}

}  // namespace
}  // namespace arena
