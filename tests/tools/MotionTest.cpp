// The program `motion` and the practice arena: the player's motions on real physics, with the
// shipped configuration. The bounds leave room for other gait values.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/PlayerProcess.h"
#include "support/Process.h"

namespace {

class MotionTest : public ::testing::Test {
 protected:
  // The ports of a fresh arena: agents, monitors.
  static std::pair<std::string, std::string> start(support::Process& arena) {
    const std::string agents = "agents at port ";
    const std::string monitors = ", monitors at port ";
    for (int i = 0; i < 1000; ++i) {
      const std::string text = arena.standardError();
      const std::size_t first = text.find(agents);
      const std::size_t second = text.find(monitors);
      const std::size_t end = text.find('\n', first);
      if (first != std::string::npos && end != std::string::npos) {
        const std::size_t from = first + agents.size();
        const std::size_t to = second + monitors.size();
        return {text.substr(from, second - from), text.substr(to, end - to)};
      }
      if (!arena.isRunning()) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("the arena does not listen: " + arena.standardError());
  }

  // The summary of one motion, by column.
  std::map<std::string, std::string> drive(std::vector<std::string> options) {
    support::Process arena(
        "arena", directory.path(),
        {"--agent-port", "0", "--monitor-port", "0", "--ground-truth", "--seed", "1"});
    const auto [agents, monitors] = start(arena);
    options.insert(options.end(), {"--csv", "--agent-port", agents, "--trainer-port", monitors});
    // A player keeps its link and its actions to the end of the process, which is no leak.
    support::Process motion("motion", directory.path(), options,
                            {{"ASAN_OPTIONS", "detect_leaks=0"}});
    EXPECT_EQ(motion.wait().code, 0) << motion.standardError();
    arena.kill();

    std::istringstream lines(motion.standardOutput());
    std::string header, values, name, value;
    std::getline(lines, header);
    std::getline(lines, values);
    std::istringstream names(header), cells(values);
    std::map<std::string, std::string> summary;
    while (std::getline(names, name, ',') && std::getline(cells, value, ',')) summary[name] = value;
    return summary;
  }

  support::PlayerDirectory directory;
};

TEST_F(MotionTest, TheNeutralStanceIsReachedInAboutASecond) {
  auto reset = drive({"reset", "--seconds", "3"});
  EXPECT_EQ(reset["source"], "truth");
  EXPECT_EQ(reset["falls"], "0");
  EXPECT_GE(std::stoi(reset["cycles_to_end"]), 45);
  EXPECT_LE(std::stoi(reset["cycles_to_end"]), 70);
}

TEST_F(MotionTest, TheOmnidirectionalGaitWalksStraightAndStaysOnItsFeet) {
  auto walk = drive({"omni", "--seconds", "7", "--svg", "omni.svg", "--trace", "omni.csv"});
  EXPECT_EQ(walk["falls"], "0");
  EXPECT_GT(std::stod(walk["forward_speed"]), 0.4);
  EXPECT_LT(std::abs(std::stod(walk["left_speed"])), 0.1);
  EXPECT_LT(std::abs(std::stod(walk["turned"])), 20);
  EXPECT_NE(directory.read("omni.svg").find("</svg>"), std::string::npos);
  // A line of names, and one for the start and for each of the 350 cycles.
  const std::string trace = directory.read("omni.csv");
  EXPECT_EQ(std::count(trace.begin(), trace.end(), '\n'), 352);
}

TEST_F(MotionTest, TheSideGaitWithAPositiveGainWalksToTheLeft) {
  EXPECT_GT(std::stod(drive({"side-left", "--seconds", "5"})["left_speed"]), 0.3);
}

TEST_F(MotionTest, TheOmniBackGaitWalksBackwards) {
  EXPECT_LT(std::stod(drive({"omni-back", "--speed", "0.8", "--seconds", "5"})["forward_speed"]),
            -0.25);
}

TEST_F(MotionTest, ATurnReportsItsEndNearItsTarget) {
  auto turn = drive({"turn", "--angle", "-90", "--lead", "1.2", "--seconds", "6"});
  EXPECT_EQ(turn["falls"], "0");
  EXPECT_GT(std::stoi(turn["cycles_to_end"]), 60);
  EXPECT_NEAR(std::stod(turn["turned"]), -90, 40);
}

TEST_F(MotionTest, TheRobotStandsUpFromItsFront) {
  auto standUp = drive({"stand-up-front", "--seconds", "5"});
  EXPECT_GT(std::stoi(standUp["cycles_to_end"]), 100);
  EXPECT_LT(std::stod(standUp["end_tilt"]), 30);
}

TEST_F(MotionTest, AnUnknownMotionEndsWithAMessage) {
  support::Process motion("motion", directory.path(), {"hop"});
  EXPECT_EQ(motion.wait().code, 1);
  EXPECT_NE(motion.standardError().find("no motion named hop"), std::string::npos);
}

TEST_F(MotionTest, WithoutAServerItEndsWithAMessage) {
  support::Process motion("motion", directory.path(), {"omni", "--trainer-port", "1"});
  EXPECT_EQ(motion.wait().code, 1);
  EXPECT_EQ(motion.standardError().substr(0, 8), "motion: ");
}

TEST_F(MotionTest, ListsItsMotionsWithoutAServer) {
  support::Process motion("motion", directory.path(), {"--list"});
  EXPECT_EQ(motion.wait().code, 0);
  for (const char* name : {"omni", "kick-strong", "stand-up-back", "dive-front", "head"}) {
    EXPECT_NE(motion.standardOutput().find(name), std::string::npos) << name;
  }
}

}  // namespace
