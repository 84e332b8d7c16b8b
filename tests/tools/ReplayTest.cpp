// The program replay, with a player of the test's own or with the real one on the other end.

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "FrameRecording.h"
#include "FramedLink.h"
#include "support/PlayerProcess.h"
#include "support/Process.h"
#include "support/TempDirectory.h"

namespace {

// A recording of frames "(f 1)" to "(f N)".
std::string recording(int frames) {
  std::string bytes;
  for (int k = 1; k <= frames; ++k) bytes += framed("(f " + std::to_string(k) + ")");
  return bytes;
}

// The far side of replay.
class Client : public FramedLink {
 public:
  explicit Client(int port) : FramedLink("127.0.0.1", static_cast<std::uint16_t>(port)) {}
  bool isQuiet() const {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return !hasData();
  }
};

class ReplayTest : public ::testing::Test {
 protected:
  // Starts replay on a free port and returns the port.
  int start(support::Process& replay) {
    const std::regex port("port ([0-9]+)");
    for (int i = 0; i < 1000; ++i) {
      const std::string text = replay.standardError();
      std::smatch match;
      if (std::regex_search(text, match, port) && text.find('\n') != std::string::npos) {
        return std::stoi(match[1]);
      }
      if (!replay.isRunning()) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("replay does not listen: " + replay.standardError());
  }

  support::TempDirectory directory;
};

TEST_F(ReplayTest, FrameKGoesOutAsSoonAsOneLessMessagesHaveComeIn) {
  directory.write("r.frames", recording(14));
  support::Process replay("replay", directory.path(),
                          {"r.frames", "--port", "0", "--answers", "answers"});
  Client client(start(replay));
  EXPECT_TRUE(client.isQuiet());  // no frame before the scene message
  client.send("(scene)");
  EXPECT_EQ(client.receive(), "(f 1)");
  EXPECT_EQ(client.receive(), "(f 2)");
  EXPECT_TRUE(client.isQuiet());
  for (int k = 3; k <= 13; ++k) {
    client.send("(m " + std::to_string(k - 1) + ")");
    EXPECT_EQ(client.receive(), "(f " + std::to_string(k) + ")");
  }
  EXPECT_TRUE(client.isQuiet());
  client.send("(m 13)");
  EXPECT_EQ(client.receive(), "(f 14)");
  client.send("(m 14)");
  const support::ProcessEnd end = replay.wait();
  EXPECT_TRUE(end.exited);
  EXPECT_EQ(end.code, 0);

  const std::vector<std::string> answers = readRecording((directory.path() / "answers").string());
  ASSERT_EQ(answers.size(), 14U);
  EXPECT_EQ(answers.front(), "(scene)");
  EXPECT_EQ(answers.back(), "(m 14)");
  EXPECT_NE(replay.standardOutput().find("frames sent        14"), std::string::npos);
  EXPECT_NE(replay.standardOutput().find("answers received   14"), std::string::npos);
  EXPECT_NE(replay.standardOutput().find("median"), std::string::npos);
}

TEST_F(ReplayTest, ARecordingShorterThanTheHandshakeEnds) {
  directory.write("r.frames", recording(2));
  support::Process replay("replay", directory.path(), {"r.frames", "--port", "0"});
  Client client(start(replay));
  client.send("(scene)");
  client.send("(init)");
  EXPECT_EQ(client.receive(), "(f 1)");
  EXPECT_EQ(client.receive(), "(f 2)");
  EXPECT_EQ(replay.wait().code, 0);
  EXPECT_EQ(replay.standardOutput().find("median"), std::string::npos);
}

TEST_F(ReplayTest, FramesAndPassesBoundTheRun) {
  directory.write("r.frames", recording(9));
  support::Process replay("replay", directory.path(),
                          {"r.frames", "--port", "0", "--frames", "2", "--passes", "2"});
  Client client(start(replay));
  for (int i = 0; i < 4; ++i) client.send("(m)");
  for (const char* expected : {"(f 1)", "(f 2)", "(f 1)", "(f 2)"}) {
    EXPECT_EQ(client.receive(), expected);
  }
  EXPECT_EQ(replay.wait().code, 0);
}

TEST_F(ReplayTest, APlayerThatGoesAwayIsReported) {
  directory.write("r.frames", recording(20));
  support::Process replay("replay", directory.path(), {"r.frames", "--port", "0"});
  {
    Client client(start(replay));
    client.send("(scene)");
    client.receive();
  }
  EXPECT_EQ(replay.wait().code, 1);
  EXPECT_NE(replay.standardError().find("the player went away"), std::string::npos);
}

TEST_F(ReplayTest, ASilentPlayerIsReported) {
  directory.write("r.frames", recording(20));
  support::Process replay("replay", directory.path(),
                          {"r.frames", "--port", "0", "--patience", "0.2"});
  Client client(start(replay));
  EXPECT_EQ(replay.wait().code, 1);
  EXPECT_NE(replay.standardError().find("silent for too long"), std::string::npos);
}

TEST_F(ReplayTest, AnAbsurdLengthIsReported) {
  directory.write("r.frames", recording(20));
  support::Process replay("replay", directory.path(), {"r.frames", "--port", "0"});
  Client client(start(replay));
  client.sendRaw(frameHead(0xffffffffU));
  EXPECT_EQ(replay.wait().code, 1);
  EXPECT_NE(replay.standardError().find("announced a message of"), std::string::npos);
}

TEST_F(ReplayTest, NobodyConnectingIsReported) {
  directory.write("r.frames", recording(2));
  support::Process replay("replay", directory.path(),
                          {"r.frames", "--port", "0", "--patience", "0.2"});
  EXPECT_EQ(replay.wait().code, 1);
  EXPECT_NE(replay.standardError().find("no player connected"), std::string::npos);
}

TEST_F(ReplayTest, AMissingOrBrokenRecordingIsReported) {
  support::Process missing("replay", directory.path(), {"nowhere.frames"});
  EXPECT_NE(missing.wait().code, 0);
  directory.write("cut.frames", std::string("\0\0\0\x09(f", 6));
  support::Process broken("replay", directory.path(), {"cut.frames", "--port", "0"});
  EXPECT_EQ(broken.wait().code, 1);
  EXPECT_NE(broken.standardError().find("cut.frames"), std::string::npos);
}

TEST_F(ReplayTest, HelpTellsEveryOption) {
  support::Process replay("replay", directory.path(), {"--help"});
  EXPECT_EQ(replay.wait().code, 0);
  for (const char* option : {"--port", "--bind", "--answers", "--frames", "--passes", "--rate",
                             "--patience", "--quiet"}) {
    EXPECT_NE(replay.standardOutput().find(option), std::string::npos) << option;
  }
}

// The whole chain, live: a compressed recording, the real player, one answer to each frame.
TEST_F(ReplayTest, TheRealPlayerAnswersAWholeRecording) {
  const std::string file =
      std::string(QUOLNARIS_SOURCE_DIR) + "/tests/data/recordings/solo-c-left-9.frames.gz";
  const std::size_t frames = readRecording(file).size();
  support::Process replay("replay", directory.path(),
                          {file, "--port", "0", "--answers", "answers", "--quiet"});
  const support::PlayerDirectory home;
  support::PlayerProcess player(home.path(),
                                {"--player-port", std::to_string(start(replay)), "--number", "9"});
  EXPECT_EQ(replay.wait().code, 0) << replay.standardError();
  const std::vector<std::string> answers = readRecording((directory.path() / "answers").string());
  ASSERT_EQ(answers.size(), frames);
  EXPECT_EQ(answers[0], "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  EXPECT_EQ(answers[1], "(init (unum 9 ) (teamname Quolnaris))");
  for (std::size_t k = 2; k < 12; ++k) EXPECT_EQ(answers[k].substr(0, 6), "(beam ");
  for (std::size_t k = 12; k < frames; ++k) {
    ASSERT_NE(answers[k].find("(lae1 "), std::string::npos) << k;
    ASSERT_NE(answers[k].find("(he2 "), std::string::npos) << k;
  }
}

}  // namespace
