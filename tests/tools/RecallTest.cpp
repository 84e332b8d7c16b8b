// The program recall, with a match of the arena.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <thread>

#include "support/Process.h"
#include "support/TempDirectory.h"

namespace support {
namespace {

namespace fs = std::filesystem;

const fs::path kConfigs = fs::path(QUOLNARIS_SOURCE_DIR) / "Configs";

std::string portOf(const Process& arena) {
  const std::regex pattern("agents at port ([0-9]+)");
  for (int i = 0; i < 300; ++i) {
    std::smatch found;
    const std::string text = arena.standardError();
    if (std::regex_search(text, found, pattern)) return found[1];
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  throw std::runtime_error("the arena did not open a port");
}

// A few seconds of one player on the pitch.
class RecallTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory_symlink(kConfigs, directory.path() / "Configs");
    Process arena("arena", directory.path(),
                  {"--agent-port", "0", "--monitor-port", "0", "--wait-agents", "1",
                   "--auto-kick-off", "--duration", "4", "--record-percepts", "percepts"});
    Process player("quolnaris", directory.path(),
                   {"--player-port", portOf(arena), "--number", "9", "--type", "2"});
    ASSERT_EQ(arena.wait().code, 0) << arena.standardError();
    player.kill();
  }
  ProcessEnd recall(const std::vector<std::string>& options) {
    std::vector<std::string> all = {"percepts"};
    all.insert(all.end(), options.begin(), options.end());
    Process process("recall", directory.path(), all);
    const ProcessEnd end = process.wait();
    told = process.standardOutput() + process.standardError();
    return end;
  }

  TempDirectory directory;
  std::string told;
};

TEST_F(RecallTest, AnswersComeOutByteForByte) {
  EXPECT_EQ(recall({"--list"}).code, 0);
  EXPECT_EQ(told, "left/9\n");
  EXPECT_EQ(recall({"--player", "left/9", "--output", "mind", "--csv", "mind.csv"}).code, 0);
  EXPECT_NE(told.find("byte for byte"), std::string::npos) << told;
  EXPECT_GT(fs::file_size(directory.path() / "mind"), 1000u);
  std::ifstream table(directory.path() / "mind.csv");
  std::string heading;
  std::getline(table, heading);
  EXPECT_NE(heading.find("self.x,self.y,self.heading"), std::string::npos);
  EXPECT_NE(heading.find("rlj6"), std::string::npos);
}

TEST_F(RecallTest, AnotherConfigurationIsFoundOut) {
  fs::copy(kConfigs, directory.path() / "Other");
  std::ofstream(directory.path() / "Other" / "Formation.conf", std::ios::app)
      << "\n[Beam]\np9 = -3 3 0\n";
  EXPECT_EQ(recall({"--player", "left/9", "--configs", "Other"}).code, 2);
  EXPECT_NE(told.find("differ from the record's from answer "), std::string::npos) << told;
}

TEST_F(RecallTest, SaysWhatIsMissing) {
  EXPECT_EQ(recall({"--player", "right/3"}).code, 1);
  EXPECT_NE(told.find("no player right/3"), std::string::npos) << told;
  EXPECT_EQ(recall({}).code, 1);
  EXPECT_EQ(recall({"--player", "left/9", "--configs", "nowhere"}).code, 1);
  EXPECT_NE(told.find("no directory nowhere"), std::string::npos) << told;
  std::ofstream(directory.path() / "percepts" / "agents.json") << "{";
  EXPECT_EQ(recall({"--list"}).code, 1);
  EXPECT_NE(told.find("damaged"), std::string::npos) << told;
}

}  // namespace
}  // namespace support
