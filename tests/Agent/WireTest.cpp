// The whole program on the wire: the real binary against a fake server on the loopback.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/FakeServer.h"
#include "support/PlayerProcess.h"

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using support::FakeServer;
using support::PlayerDirectory;
using support::PlayerProcess;
using support::ProcessEnd;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int kHandshake = 12;  // messages: scene, init, ten beams

constexpr char kAgent[] = R"([Public]
UniformNumber = 3
TeamName = Quolnaris
Penalty = false
Type = 0
[Server]
HostName = 127.0.0.1
PlayerPort = 1
[NAO]
Rsg = scene rsg/agent/nao/nao_hetero.rsg
[AgentPost]
P = 3 2 2 2 2 1 1 1 0 0 0
)";

constexpr char kFormation[] = R"([Beam]
p1 = -14 0 0
p2 = -10 2 0
p3 = -9.5 -2.25 15
p4 = -1 0 0
p5 = -1 0 0
p6 = -1 0 0
p7 = -7 0.00001 -90.5
p8 = -1 0 0
p9 = -1 0 0
p10 = -10 -1 0
p11 = -11 1 0
[Penalty]
p1 = -14 0 0
p2 = -2 0 0
p3 = -3 -3 33
p4 = -4 0 0
p5 = -5 0 0
p6 = -6 0 0
p7 = -0.5 0 7
p8 = -8 0 0
p9 = -9 0 0
p10 = -10 0 0
p11 = -11 0 0
)";

// A small percept message, the `index`th since the start of the game's clock.
std::string percepts(int index) {
  char text[128];
  std::snprintf(text, sizeof text,
                "(time (now %.2f))(GS (sl 0) (sr 0) (t 0.00) (pm BeforeKickOff))"
                "(GYR (n torso) (rt 0.00 0.00 0.00))",
                30 + 0.02 * index);
  return text;
}

// Whether `message` starts with the terms of the 24 hinge slots, each a name and a number.
bool hasHingeTerms(const std::string& message) {
  std::istringstream in(message);
  for (int i = 0; i < 24; ++i) {
    char open = 0;
    char close = 0;
    std::string name;
    double speed = 0;
    if (!(in >> open >> name >> speed >> close) || open != '(' || close != ')') return false;
  }
  return true;
}

std::string usage() {
  return "Usage : " + PlayerProcess::program() +
         " [Options]\n"
         "Options :\n"
         "  --team teamname           : Set teamname to connect to server\n"
         "  --host hostname           : Set hostname to connect to server\n"
         "  --player-port portnum     : Set player port number to connect to server\n"
         "  --number pnum             : Set player number\n"
         "  --penalty boolean         : Penalthy Mode\n"
         "  --type NAO type Number    : Set NAO type\n"
         "\n";
}

// A directory with a known configuration, a server, and a player once it is started.
class WireTest : public testing::Test {
 protected:
  WireTest() {
    directory.setConfig("Agent", kAgent);
    directory.setConfig("Formation", kFormation);
  }

  // Starts the player with its server's address and `options`.
  void start(const std::vector<std::string>& options = {},
             const PlayerProcess::Environment& environment = {}) {
    std::vector<std::string> all = server.options();
    all.insert(all.end(), options.begin(), options.end());
    startWith(all, environment);
  }

  void startWith(const std::vector<std::string>& options,
                 const PlayerProcess::Environment& environment = {}) {
    player = std::make_unique<PlayerProcess>(directory.path(), options, environment);
  }

  // Starts the player and takes its connection.
  void connect(const std::vector<std::string>& options = {}) {
    start(options);
    server.accept();
  }

  void sendPercepts() { server.send(percepts(framesSent++)); }

  // Takes the messages of the handshake, and answers each with a frame.
  std::vector<std::string> shakeHands() {
    std::vector<std::string> messages;
    for (int i = 0; i < kHandshake; ++i) {
      messages.push_back(server.receive());
      sendPercepts();
    }
    return messages;
  }

  std::string answerToPercepts() {
    sendPercepts();
    return server.receive();
  }

  void expectAbort(const std::string& words) {
    const ProcessEnd end = player->wait();
    EXPECT_EQ(end.signal, SIGABRT);
    EXPECT_THAT(player->standardError(), HasSubstr(words));
  }

  PlayerDirectory directory;
  FakeServer server;
  std::unique_ptr<PlayerProcess> player;
  int framesSent = 0;
};

// ------------------------------------------------------------------------------------- handshake

TEST_F(WireTest, HandshakeIsSceneInitAndTenBeams) {
  connect();
  std::vector<std::string> expected = {"(scene rsg/agent/nao/nao_hetero.rsg 0)",
                                       "(init (unum 3 ) (teamname Quolnaris))"};
  expected.insert(expected.end(), 10, "(beam -9.5 -2.25 15)");
  EXPECT_EQ(shakeHands(), expected);
  EXPECT_EQ(player->standardOutput(),
            "connecting to TCP 127.0.0.1:" + std::to_string(server.port()) + "\n");
  EXPECT_EQ(player->standardError(), "");
}

TEST_F(WireTest, HandshakeWaitsForAFrameAfterEachMessage) {
  connect();
  for (int i = 0; i < kHandshake; ++i) {
    server.receive();
    EXPECT_TRUE(server.isQuietFor(20ms)) << "after message " << i + 1;
    sendPercepts();
  }
}

TEST_F(WireTest, TwelfthFrameGetsNoMessageOfItsOwn) {
  connect();
  shakeHands();
  EXPECT_TRUE(server.isQuietFor(200ms));
  EXPECT_TRUE(hasHingeTerms(answerToPercepts()));
}

TEST_F(WireTest, EveryFrameAfterTheHandshakeGetsOneMessage) {
  connect();
  shakeHands();
  for (int i = 0; i < 50; ++i) EXPECT_TRUE(hasHingeTerms(answerToPercepts())) << i;
  EXPECT_TRUE(server.isQuietFor(100ms));
}

TEST_F(WireTest, FramesThatComeAtOnceGetOneMessageEach) {
  connect();
  shakeHands();
  std::string frames;
  for (int i = 0; i < 20; ++i) frames += FakeServer::frame(percepts(framesSent++));
  server.sendRaw(frames);
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(hasHingeTerms(server.receive())) << i;
  EXPECT_TRUE(server.isQuietFor(100ms));
}

TEST_F(WireTest, TenBeamsAreSentEvenIntoARunningGame) {
  connect();
  std::vector<std::string> messages;
  for (int i = 0; i < kHandshake; ++i) {
    messages.push_back(server.receive());
    server.send("(time (now 100.00))(GS (unum 3) (team left) (sl 0) (sr 0) (t 50.00) (pm PlayOn))");
  }
  EXPECT_EQ(std::vector<std::string>(messages.begin() + 2, messages.end()),
            std::vector<std::string>(10, "(beam -9.5 -2.25 15)"));
}

// ------------------------------------------------------------------------------------- framing

TEST_F(WireTest, FrameMayComeInPieces) {
  connect();
  shakeHands();
  for (const std::size_t cut : {1, 2, 3, 4, 5, 20}) {
    const std::string frame = FakeServer::frame(percepts(framesSent++));
    server.sendRaw(frame.substr(0, cut));
    EXPECT_TRUE(server.isQuietFor(20ms)) << cut;
    server.sendRaw(frame.substr(cut));
    EXPECT_TRUE(hasHingeTerms(server.receive())) << cut;
  }
}

TEST_F(WireTest, EmptyFrameIsAFrame) {
  connect();
  shakeHands();
  server.send("");
  EXPECT_TRUE(hasHingeTerms(server.receive()));
}

TEST_F(WireTest, FrameWithANulIsOneFrame) {
  connect();
  shakeHands();
  server.send("(time (now 40.00))\0(GS (pm PlayOn))"s);
  EXPECT_TRUE(hasHingeTerms(server.receive()));
  EXPECT_TRUE(hasHingeTerms(answerToPercepts()));
}

TEST_F(WireTest, LongestFrameIsAccepted) {
  connect();
  shakeHands();
  const std::string start = percepts(framesSent++);
  server.send(start + std::string(16380 - start.size(), ' '));
  EXPECT_TRUE(hasHingeTerms(server.receive()));
}

TEST_F(WireTest, LongerFrameAborts) {
  connect();
  shakeHands();
  server.send(std::string(16381, ' '));
  expectAbort("message too long; aborting\n");
}

TEST_F(WireTest, GarbageIsAnsweredAsWell) {
  connect();
  shakeHands();
  for (const std::string& garbage :
       {")))((("s, std::string(16380, '('), std::string(16380, ')'), std::string(16380, 'x'),
        "(See (B (pol"s, "(HJ (n hj1) (ax nan))(HJ (n) (ax))"s, "\xff\xfe(\x01)"s,
        "(time (now 1e99))(GS (t -1) (pm) (unum 99999))"s}) {
    server.send(garbage);
    EXPECT_NE(server.receive(), "") << garbage.substr(0, 20);
  }
}

// ------------------------------------------------------------------------------------- options

TEST_F(WireTest, NumberChoosesInitBeamAndLog) {
  connect({"--number", "7"});
  const std::vector<std::string> messages = shakeHands();
  EXPECT_EQ(messages[1], "(init (unum 7 ) (teamname Quolnaris))");
  EXPECT_EQ(messages[2], "(beam -7 1e-05 -90.5)");
  EXPECT_TRUE(directory.has("Logs/Agent7.log"));
  EXPECT_FALSE(directory.has("Logs/Agent3.log"));
}

TEST_F(WireTest, NumbersFromTenOnGiveOddLogNames) {
  connect({"--number", "10"});
  EXPECT_EQ(shakeHands()[2], "(beam -10 -1 0)");
  EXPECT_TRUE(directory.has("Logs/Agent:.log"));
  connect({"--number", "11"});
  EXPECT_EQ(shakeHands()[2], "(beam -11 1 0)");
  EXPECT_TRUE(directory.has("Logs/Agent;.log"));
}

TEST_F(WireTest, TeamAndNameChooseTheTeam) {
  connect({"--team", "Robins"});
  EXPECT_EQ(shakeHands()[1], "(init (unum 3 ) (teamname Robins))");
  connect({"--name", "Wrens"});
  EXPECT_EQ(shakeHands()[1], "(init (unum 3 ) (teamname Wrens))");
}

TEST_F(WireTest, TypeChoosesTheRobot) {
  connect({"--type", "4"});
  EXPECT_EQ(shakeHands()[0], "(scene rsg/agent/nao/nao_hetero.rsg 4)");
}

TEST_F(WireTest, PenaltyChoosesTheOtherPlaces) {
  connect({"--penalty", "1"});
  EXPECT_EQ(shakeHands()[11], "(beam -3 -3 33)");
  connect({"--penalty", "true", "--number", "7"});
  EXPECT_EQ(shakeHands()[2], "(beam -0.5 0 7)");
  connect({"--penalty", "false"});
  EXPECT_EQ(shakeHands()[2], "(beam -9.5 -2.25 15)");
}

TEST_F(WireTest, PenaltyNeedsABoolean) {
  start({"--penalty", "maybe"});
  server.accept();
  try {
    shakeHands();
    ADD_FAILURE() << "the handshake went through";
  } catch (const std::runtime_error&) {
    expectAbort("Assertion `tmp == \"true\" || tmp == \"1\" || tmp == \"false\" || tmp == \"0\"'");
  }
}

TEST_F(WireTest, HostAndPortComeFromTheConfigurationToo) {
  directory.editConfig("Agent", "PlayerPort = 1\n",
                       "PlayerPort = " + std::to_string(server.port()) + "\n");
  startWith({});
  server.accept();
  EXPECT_EQ(shakeHands().size(), static_cast<std::size_t>(kHandshake));
}

TEST_F(WireTest, HostMayBeAName) {
  startWith({"--host", "localhost", "--player-port", std::to_string(server.port())});
  server.accept();
  EXPECT_EQ(shakeHands().size(), static_cast<std::size_t>(kHandshake));
}

struct BadCommandLine {
  const char* description;
  std::vector<std::string> options;
};

TEST_F(WireTest, BadOptionsGiveTheUsageTextAndStatusOne) {
  const BadCommandLine lines[] = {
      {"unknown option", {"--help", "me"}},
      {"unknown option without a value", {"--help"}},
      {"option without a value", {"--number"}},
      {"trailing option", {"--number", "7", "--team"}},
      {"unknown option behind a good one", {"--number", "7", "-n", "8"}},
      {"bare word", {"7"}},
  };
  for (const BadCommandLine& line : lines) {
    startWith(line.options);
    const ProcessEnd end = player->wait();
    EXPECT_TRUE(end.exited) << line.description;
    EXPECT_EQ(end.code, 1) << line.description;
    EXPECT_EQ(player->standardOutput(), usage()) << line.description;
    EXPECT_EQ(player->standardError(), "") << line.description;
  }
  EXPECT_TRUE(std::filesystem::is_empty(directory.path() / "Logs"));
}

// ------------------------------------------------------------------------------------- files

TEST_F(WireTest, ServerAndAgentFilesAreEmptiedAtEveryStart) {
  directory.write("server.txt", "old");
  connect();
  shakeHands();
  answerToPercepts();
  EXPECT_EQ(directory.read("server.txt"), "");
  EXPECT_EQ(directory.read("agent.txt"), "");
}

TEST_F(WireTest, ServerAndAgentFilesAreMadeEvenForABadCommandLine) {
  startWith({"--help"});
  player->wait();
  EXPECT_EQ(directory.read("server.txt"), "");
  EXPECT_EQ(directory.read("agent.txt"), "");
}

TEST_F(WireTest, RunsWithoutADirectoryForLogs) {
  std::filesystem::remove(directory.path() / "Logs");
  connect();
  shakeHands();
  EXPECT_TRUE(hasHingeTerms(answerToPercepts()));
  EXPECT_FALSE(directory.has("Logs"));
}

TEST_F(WireTest, MissingDirectoryOfConfigurationIsFatal) {
  std::filesystem::remove_all(directory.path() / "Configs");
  start();
  const ProcessEnd end = player->wait();
  EXPECT_TRUE(end.signal != 0 || end.code != 0);
  EXPECT_EQ(player->standardOutput(), "");
}

// ------------------------------------------------------------------- faults of the configuration

TEST_F(WireTest, MissingKeyAbortsBeforeAnyConnection) {
  directory.editConfig("Agent", "UniformNumber = 3\n", "");
  start();
  expectAbort("Assertion `it != values.end()' failed");
  EXPECT_THAT(player->standardError(), StartsWith("UniformNumber"));
  EXPECT_EQ(player->standardOutput(), "");
}

TEST_F(WireTest, MissingGroupAborts) {
  directory.editConfig("Agent", "[Server]", "[Sever]");
  start();  // its options ask for the group
  expectAbort("Assertion `it != groups.end()' failed");
}

TEST_F(WireTest, MissingFileAborts) {
  std::filesystem::remove(directory.path() / "Configs/Agent.conf");
  start();
  expectAbort("Assertion `it != files.end()' failed");
}

TEST_F(WireTest, MissingFormationAbortsAtTheFirstBeam) {
  std::filesystem::remove(directory.path() / "Configs/Formation.conf");
  start();
  server.accept();
  EXPECT_THROW(shakeHands(), std::runtime_error);
  expectAbort("Assertion `it != files.end()' failed");
}

TEST_F(WireTest, WordForANumberAborts) {
  start({"--number", "seven"});
  expectAbort("Assertion `end != value.c_str()' failed");
}

TEST_F(WireTest, BadLineAborts) {
  directory.write("Configs/Extra.conf", " # an indented comment\n");
  start();
  expectAbort("Assertion `qpos != string::npos && qpos < cpos' failed");
}

TEST_F(WireTest, UnclosedSectionHeaderAborts) {
  directory.write("Configs/Extra.conf", "[Public\n");
  start();
  expectAbort("Assertion `line[ve] == ']'' failed");
}

TEST_F(WireTest, LineWithoutAKeyAborts) {
  directory.write("Configs/Extra.conf", "= 1\n");
  start();
  expectAbort("Assertion `name != \"\"' failed");
}

TEST_F(WireTest, BackupOfAFileThatIsGoneAborts) {
  directory.write("Configs/Extra.conf.bak", "a = 1\n");
  start();
  expectAbort("Assertion `fin' failed");
}

TEST_F(WireTest, KeyWithoutAValueEndsTheProcess) {
  directory.write("Configs/Extra.conf", "a =\n");
  start();
  expectAbort("basic_string::substr");
}

// ------------------------------------------------------------------------- faults of the
// connection

TEST_F(WireTest, RefusedConnectionEndsTheProcessAtTheFirstSend) {
  server.stopListening();
  start();
  EXPECT_EQ(player->wait().signal, SIGPIPE);
  EXPECT_EQ(player->standardError(), "");
}

TEST_F(WireTest, UnresolvableHostEndsTheProcess) {
  startWith({"--host", std::string(80, 'x') + ".invalid"});
  expectAbort("HostNotFound");
}

TEST_F(WireTest, SendIntoABrokenConnectionEndsTheProcess) {
  connect();
  shakeHands();
  // The player meets the frames and the end of the connection at once: it still reads the frames,
  // and no one is there for its answers.
  kill(player->id(), SIGSTOP);
  for (int i = 0; i < 20; ++i) sendPercepts();
  server.closeConnection();
  kill(player->id(), SIGCONT);
  EXPECT_EQ(player->wait().signal, SIGPIPE);
  EXPECT_EQ(player->standardError(), "");
}

TEST_F(WireTest, OrderlyCloseLeavesThePlayerSpinning) {
  connect();
  shakeHands();
  const double before = support::processorTime(player->id());
  server.closeConnection();
  const auto deadline = std::chrono::steady_clock::now() + 60s;
  while (support::processorTime(player->id()) < before + 0.2 &&
         std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_GE(support::processorTime(player->id()), before + 0.2);
  EXPECT_TRUE(player->isRunning());
}

TEST_F(WireTest, SilenceOfSixtySecondsAborts) {
  start({}, {{"LD_PRELOAD", QUOLNARIS_BIN_DIR "/libquick_select.so"},
             {"ASAN_OPTIONS", "verify_asan_link_order=0"}});
  server.accept();
  EXPECT_THAT(server.receive(), StartsWith("(scene "));  // and never a word from the server
  expectAbort("(selectInput) select failed ");
  EXPECT_THAT(player->standardError(), EndsWith("\n"));
}

}  // namespace
