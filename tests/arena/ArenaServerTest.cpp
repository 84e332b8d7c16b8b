// The arena through its sockets: lockstep, real time, repeatability, and clients that misbehave.

#include "Net/ArenaServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <cstdio>
#include <mutex>
#include <optional>
#include <random>
#include <thread>

namespace arena {
namespace {

using Tcp = boost::asio::ip::tcp;

// A blocking client of either port. A receive that gets nothing for ten seconds gives nullopt.
class Client {
 public:
  explicit Client(unsigned short port) : socket_(io_) {
    socket_.connect({boost::asio::ip::make_address("127.0.0.1"), port});
    socket_.set_option(Tcp::no_delay(true));
    const timeval patience{10, 0};
    setsockopt(socket_.native_handle(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
  }

  void sendRaw(std::string_view bytes) {
    boost::system::error_code ignored;
    boost::asio::write(socket_, boost::asio::buffer(bytes), ignored);
  }
  void send(std::string_view text) {
    const auto prefix = framePrefix(text.size());
    std::string bytes(prefix.begin(), prefix.end());
    bytes += text;
    sendRaw(bytes);
  }
  std::optional<std::string> receive() {
    unsigned char prefix[4];
    if (!read(prefix, 4)) return std::nullopt;
    std::string text(std::size_t{prefix[0]} << 24 | prefix[1] << 16 | prefix[2] << 8 | prefix[3],
                     '\0');
    if (!read(text.data(), text.size())) return std::nullopt;
    return text;
  }
  void close() { socket_.close(); }
  // Closes so that the other side sees an error instead of an end.
  void reset() {
    socket_.set_option(boost::asio::socket_base::linger(true, 0));
    socket_.close();
  }

 private:
  bool read(void* to, std::size_t count) {
    auto* at = static_cast<char*>(to);
    while (count > 0) {
      const ssize_t got = recv(socket_.native_handle(), at, count, 0);
      if (got <= 0) return false;
      at += got;
      count -= static_cast<std::size_t>(got);
    }
    return true;
  }

  boost::asio::io_context io_;
  Tcp::socket socket_;
};

// A player: connected, with its scene and init sent as a player does.
class Player : public Client {
 public:
  Player(unsigned short port, int number, const std::string& team, int type = 0) : Client(port) {
    send("(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")");
    first = receive();
    send("(init (unum " + std::to_string(number) + ")(teamname " + team + "))");
  }
  // Receives `count` frames and answers each.
  bool play(int count, const std::string& answer = "(syn)") {
    for (int i = 0; i < count; ++i) {
      last = receive();
      if (!last) return false;
      send(answer);
    }
    return true;
  }

  std::optional<std::string> first;
  std::optional<std::string> last;
};

bool contains(const std::optional<std::string>& text, const std::string& part) {
  return text && text->find(part) != std::string::npos;
}

// An arena at free ports that runs in a thread of its own.
class Arena {
 public:
  explicit Arena(ServerOptions serverOptions = {}, MatchOptions matchOptions = {})
      : match_(prepared(std::move(matchOptions))),
        server_(match_, atFreePorts(std::move(serverOptions)),
                [this](const std::string& line) { note(line); }) {
    server_.setObserver([this](const ArenaServer::CycleReport&) { ++cycles_; });
    thread_ = std::thread([this] { server_.run(); });
  }
  ~Arena() {
    server_.stop();
    join();
  }

  unsigned short agents() const { return server_.agentPort(); }
  unsigned short monitors() const { return server_.monitorPort(); }
  long cycles() const { return cycles_; }
  void join() {
    if (thread_.joinable()) thread_.join();
  }
  int logged(const std::string& part) {
    const std::lock_guard<std::mutex> lock(mutex_);
    int count = 0;
    for (const std::string& line : log_) count += line.find(part) != std::string::npos;
    return count;
  }

 private:
  MatchOptions prepared(MatchOptions options) {
    options.log = [this](const std::string& line) { note(line); };
    return options;
  }
  static ServerOptions atFreePorts(ServerOptions options) {
    options.agentPort = 0;
    options.monitorPort = 0;
    return options;
  }
  void note(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mutex_);
    log_.push_back(line);
  }

  std::mutex mutex_;
  std::vector<std::string> log_;
  std::atomic<long> cycles_{0};
  Match match_;
  ArenaServer server_;
  std::thread thread_;
};

ServerOptions impatient() {
  ServerOptions options;
  options.agentTimeout = 0.2;
  return options;
}

// -------------------------------------------------------------------------------------- lockstep

TEST(Lockstep, GivesTwoFramesForTheSceneAloneAndThenOneForEachMessage) {
  Arena arena;
  Client agent(arena.agents());
  agent.send("(scene rsg/agent/nao/nao.rsg)");
  EXPECT_TRUE(contains(agent.receive(), "(time (now 0.04))"));  // frame 1
  EXPECT_TRUE(contains(agent.receive(), "(time (now 0.06))"));  // frame 2
  // Frame 3 waits for message 2; what that did shows in frame 4.
  agent.send("(init (unum 4)(teamname Alpha))");
  const auto third = agent.receive();
  EXPECT_TRUE(contains(third, "(time (now 0.08))"));
  EXPECT_FALSE(contains(third, "unum"));
  agent.send("(syn)");
  EXPECT_TRUE(contains(agent.receive(), "(GS (unum 4) (team left)"));
}

TEST(Lockstep, AppliesEarlyMessagesEachInItsOwnCycle) {
  Arena arena;
  Client agent(arena.agents());
  agent.send("(scene rsg/agent/nao/nao.rsg)");
  // Messages 2 to 4 at once: each turns the head on, and message 5 stops it.
  for (const char* message : {"(he1 1)", "(he1 2)", "(he1 3)", "(he1 0)", "(syn)", "(syn)"}) {
    agent.send(message);
  }
  const auto angleIn = [](const std::optional<std::string>& frame) {
    const std::size_t at = frame->find("hj1) (ax ") + 9;
    return std::stod(frame->substr(at));
  };
  std::vector<double> angles;
  for (int frame = 1; frame <= 8; ++frame) {
    const auto text = agent.receive();
    ASSERT_TRUE(text);
    angles.push_back(angleIn(text));
  }
  // Message n is applied when frame n + 1 is given, and shows in frame n + 2: steps of v * 0.02.
  const double degree = 180.0 / M_PI;
  EXPECT_NEAR(angles[2], 0.0, 0.02);
  EXPECT_NEAR(angles[3], 0.02 * degree, 0.02);
  EXPECT_NEAR(angles[4], 0.06 * degree, 0.02);
  EXPECT_NEAR(angles[5], 0.12 * degree, 0.02);
  EXPECT_NEAR(angles[6], 0.12 * degree, 0.02);
}

TEST(Lockstep, DoesNotStallOnAHandshakeThatLeavesAFrameUnanswered) {
  Arena arena;
  Client agent(arena.agents());
  std::string messages[] = {"(scene rsg/agent/nao/nao.rsg)", "(init (unum 1)(teamname Alpha))"};
  for (const std::string& message : messages) {
    agent.send(message);
    ASSERT_TRUE(agent.receive());
  }
  for (int i = 0; i < 10; ++i) {
    agent.send("(beam -3 0 0)");
    ASSERT_TRUE(agent.receive());
  }
  // Frame 12 has not been answered, and frame 13 comes all the same.
  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(agent.receive());
    agent.send("(syn)");
  }
}

// A player that answers every frame in a thread of its own.
class Companion {
 public:
  explicit Companion(unsigned short port, int number = 1) : player_(port, number, "Alpha") {
    thread_ = std::thread([this] {
      while (!stopping_ && player_.play(1)) {
        const std::lock_guard<std::mutex> lock(mutex_);
        last_ = *player_.last;
        ++frames_;
      }
    });
  }
  ~Companion() {
    stopping_ = true;
    thread_.join();
  }

  // Waits until it has received so many more frames. Returns whether they came.
  bool follow(int frames) {
    const long goal = frames_ + frames;
    for (int i = 0; i < 20000 && frames_ < goal; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return frames_ >= goal;
  }
  std::string last() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return last_;
  }

 private:
  Player player_;
  std::atomic<bool> stopping_{false};
  std::atomic<long> frames_{0};
  std::mutex mutex_;
  std::string last_;
  std::thread thread_;
};

TEST(Lockstep, WaitsForTheSlowestAgent) {
  Arena arena;
  Companion fast(arena.agents());
  Player slow(arena.agents(), 2, "Alpha");
  for (int i = 0; i < 30; ++i) {
    ASSERT_TRUE(slow.receive());
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    slow.send("(syn)");
  }
  EXPECT_EQ(arena.logged("silent"), 0);
  slow.close();
  EXPECT_TRUE(fast.follow(3));
}

TEST(Lockstep, GoesOnWithoutASilentAgentAndTakesItBack) {
  Arena arena(impatient());
  Companion busy(arena.agents());
  Player silent(arena.agents(), 2, "Alpha");
  ASSERT_TRUE(busy.follow(60));
  EXPECT_EQ(arena.logged("silent"), 1);
  // It still gets its frames, and is waited for again once it speaks.
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(silent.receive());
  silent.send("(syn)");
  ASSERT_TRUE(busy.follow(60));
}

TEST(Lockstep, LetsTheClockStandWithoutAgents) {
  Arena arena;
  {
    Client mute(arena.agents());  // no scene: does not count
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(arena.cycles(), 0);
  }
  Player player(arena.agents(), 1, "Alpha");
  EXPECT_TRUE(contains(player.first, "(time (now 0.04))"));
}

TEST(Lockstep, HoldsTheFirstCycleUntilEnoughAgentsHaveTheirScene) {
  ServerOptions options;
  options.waitAgents = 2;
  Arena arena(options);
  Client first(arena.agents());
  first.send("(scene rsg/agent/nao/nao.rsg)");
  Client second(arena.agents());
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(arena.cycles(), 0);
  second.send("(scene rsg/agent/nao/nao.rsg)");
  EXPECT_TRUE(contains(first.receive(), "(time (now 0.04))"));
  EXPECT_TRUE(contains(second.receive(), "(time (now 0.04))"));
}

TEST(Lockstep, EndsWhenTheGameHasLastedLongEnough) {
  ServerOptions options;
  options.duration = 0.4;
  Arena arena(options);
  Player player(arena.agents(), 1, "Alpha");
  Client trainer(arena.monitors());
  trainer.send("(playMode PlayOn)");
  while (player.play(1)) {
  }
  arena.join();
  EXPECT_GE(arena.cycles(), 20);
}

TEST(RealTime, SendsFramesToAgentsThatDoNotAnswer) {
  ServerOptions options;
  options.realTime = true;
  Arena arena(options);
  Player player(arena.agents(), 1, "Alpha");
  for (int i = 0; i < 15; ++i) ASSERT_TRUE(player.receive());
}

// --------------------------------------------------------------------------------- repeatability

struct Role {
  int number;
  std::string team;
  int type;
};

// Plays `frames` frames. The answers depend on what was received, delays do not.
std::string playRole(unsigned short port, const Role& role, int frames, unsigned chance) {
  std::mt19937 luck(chance);
  const auto dawdle = [&luck] {
    if (luck() % 4 == 0) std::this_thread::sleep_for(std::chrono::microseconds(luck() % 3000));
  };
  std::this_thread::sleep_for(std::chrono::milliseconds(luck() % 30));
  Client agent(port);
  dawdle();
  const std::string scene =
      "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(role.type) + ")";
  const auto prefix = framePrefix(scene.size());
  agent.sendRaw(std::string(prefix.begin(), prefix.end()) + scene.substr(0, 10));
  dawdle();
  agent.sendRaw(scene.substr(10));
  std::string stream;
  for (int frame = 1; frame <= frames; ++frame) {
    const auto text = agent.receive();
    if (!text) return "broken";
    stream += *text;
    dawdle();
    if (frame == 1) {
      agent.send("(init (unum " + std::to_string(role.number) + ")(teamname " + role.team + "))");
    } else if (frame < 8) {
      agent.send("(beam -" + std::to_string(role.number) + ".5 " + std::to_string(role.type) +
                 " 0)");
    } else {
      const auto sum = static_cast<double>(std::hash<std::string>{}(*text) % 1000) / 250.0 - 2.0;
      agent.send("(rle3 " + std::to_string(sum) + ")(lle4 " + std::to_string(-sum) + ")(rae1 " +
                 std::to_string(2 * sum) + ")(he1 1)(say " + role.team + std::to_string(frame) +
                 ")");
    }
  }
  return stream;
}

std::vector<std::string> playMatch(unsigned chance) {
  const std::vector<Role> roles{{1, "Alpha", 0}, {2, "Alpha", 4}, {3, "Alpha", 1},
                                {1, "Beta", 3},  {2, "Beta", 2},  {5, "Beta", 0}};
  ServerOptions options;
  options.waitAgents = static_cast<int>(roles.size());
  options.agentTimeout = 20.0;
  MatchOptions matchOptions;
  matchOptions.seed = 77;
  Arena arena(options, matchOptions);
  std::vector<std::string> streams(roles.size());
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < roles.size(); ++i) {
    threads.emplace_back([&, i] {
      streams[i] = playRole(arena.agents(), roles[i], 150, chance * 100 + static_cast<unsigned>(i));
    });
  }
  for (std::thread& thread : threads) thread.join();
  return streams;
}

TEST(Repeatability, GivesTheSamePerceptsWhoeverIsFaster) {
  const std::vector<std::string> once = playMatch(1);
  const std::vector<std::string> again = playMatch(2);
  ASSERT_EQ(once.size(), again.size());
  for (std::size_t i = 0; i < once.size(); ++i) {
    EXPECT_GT(once[i].size(), 100000u);
    EXPECT_TRUE(once[i] == again[i]) << "player " << i;
  }
}

// ------------------------------------------------------------------------------------ misbehaving

// A player beside misbehaving clients: expects its frames to go on.
class Bystander : public testing::Test {
 protected:
  void playOn(int frames = 30) { EXPECT_TRUE(player.follow(frames)); }

  Arena arena{impatient()};
  Companion player{arena.agents()};
};

TEST_F(Bystander, SurvivesAnOverlongFrame) {
  Client rude(arena.agents());
  rude.sendRaw(std::string("\x7f\xff\xff\xff", 4) + "(scene");
  playOn();
  EXPECT_FALSE(rude.receive());
  playOn();
  EXPECT_EQ(arena.logged("longer than allowed"), 1);
}

TEST_F(Bystander, SurvivesAnOverlongFrameOfAPlayer) {
  Player rude(arena.agents(), 2, "Alpha");
  rude.sendRaw(std::string("\xff\xff\xff\xff", 4));
  playOn(100);
  EXPECT_EQ(arena.logged("longer than allowed"), 1);
}

TEST_F(Bystander, SurvivesHalfFrames) {
  Client rude(arena.agents());
  rude.sendRaw(std::string("\0\0", 2));
  Client ruder(arena.agents());
  ruder.sendRaw(std::string("\0\0\0\x20(scene rsg", 14));
  playOn(60);
  rude.close();
  ruder.reset();
  playOn(60);
}

TEST_F(Bystander, SurvivesRubbish) {
  std::mt19937 engine(9);
  Client rude(arena.agents());
  rude.send("(scene rsg/agent/nao/nao.rsg)");
  for (int i = 0; i < 60; ++i) {
    std::string rubbish(engine() % 300, '\0');
    for (char& c : rubbish) c = static_cast<char>(engine());
    rude.send(rubbish);
  }
  playOn(80);
}

TEST_F(Bystander, SurvivesAFloodOfSmallFrames) {
  Client rude(arena.agents());
  rude.send("(scene rsg/agent/nao/nao.rsg)");
  std::atomic<bool> done{false};
  std::thread flood([&] {
    std::string many;
    for (int i = 0; i < 1000; ++i) many += std::string("\0\0\0\x05(syn)", 9);
    for (int i = 0; i < 20 && !done; ++i) rude.sendRaw(many);
  });
  playOn(120);
  done = true;
  rude.reset();
  flood.join();
  playOn();
}

TEST_F(Bystander, SurvivesAnAgentThatNeverReads) {
  Client rude(arena.agents());
  rude.send("(scene rsg/agent/nao/nao.rsg)");
  playOn(200);
  EXPECT_EQ(arena.logged("silent"), 1);
  rude.close();
  playOn(60);
}

TEST_F(Bystander, SurvivesAgentsThatVanishAtEveryStep) {
  for (int step = 0; step < 6; ++step) {
    for (const bool hard : {false, true}) {
      Client guest(arena.agents());
      if (step >= 1) guest.send("(scene rsg/agent/nao/nao_hetero.rsg 1)");
      if (step >= 2) {
        playOn(3);
        guest.receive();
      }
      if (step >= 3) guest.send("(init (unum 9)(teamname Guests))");
      if (step >= 4) {
        playOn(3);
        guest.receive();
      }
      if (step >= 5) guest.send("(beam -1 1 0)(he1 1)");
      hard ? guest.reset() : guest.close();
      playOn(6);
    }
  }
  // The number is free again.
  Player again(arena.agents(), 9, "Guests");
  EXPECT_TRUE(again.play(3));
  EXPECT_TRUE(contains(again.last, "(unum 9) (team right)")) << *again.last;
}

TEST_F(Bystander, SurvivesUnknownEffectorsInEveryFrame) {
  Player odd(arena.agents(), 2, "Alpha");
  EXPECT_TRUE(odd.play(60, "(lle7 1)(rle7 -1)(lle3 nan)(rle3 inf)(he1 -1e999)"));
  EXPECT_EQ(arena.logged("unknown effector lle7"), 1);
}

TEST_F(Bystander, TakesMoreAgentsThanFitAndAThirdTeam) {
  std::vector<std::unique_ptr<Client>> crowd;
  for (int i = 0; i < 26; ++i) {
    crowd.push_back(std::make_unique<Client>(arena.agents()));
    crowd.back()->send("(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(i % 5) + ")");
    const char* team = i % 3 == 0 ? "Beta" : (i % 3 == 1 ? "Alpha" : "Gamma");
    crowd.back()->send("(init (unum " + std::to_string(i % 14) + ")(teamname " + team + "))");
  }
  playOn(40);
  EXPECT_GE(arena.logged("of team Gamma"), 8);
  EXPECT_GE(arena.logged("init refused"), 8);
}

TEST_F(Bystander, TurnsAwayACrowd) {
  std::vector<std::unique_ptr<Client>> crowd;
  for (int i = 0; i < 70; ++i) crowd.push_back(std::make_unique<Client>(arena.agents()));
  playOn();
  EXPECT_GE(arena.logged("too many connections"), 1);
}

TEST_F(Bystander, SurvivesMonitorsThatDoNotRead) {
  Client blind(arena.monitors());
  Client watching(arena.monitors());
  EXPECT_TRUE(contains(watching.receive(), "RSG 0 1"));
  std::thread reading([&] {
    while (watching.receive()) {
    }
  });
  playOn(400);
  watching.close();
  reading.join();
  playOn();
}

TEST_F(Bystander, SurvivesRubbishAtTheMonitorPort) {
  Client rude(arena.monitors());
  rude.send("(((");
  rude.send("(ball (pos nan inf 1))");
  rude.send("(playMode NoSuchMode)");
  rude.sendRaw(std::string("\xff\xff\xff\xff", 4));
  playOn();
  EXPECT_TRUE(contains(player.last(), "BeforeKickOff"));
}

// --------------------------------------------------------------------------------------- trainers

TEST_F(Bystander, TakesCommandsOfATrainer) {
  Client trainer(arena.monitors());
  trainer.send("(playMode PlayOn)(score (left 2)(right 1))");
  for (int i = 0; i < 500 && !contains(player.last(), "PlayOn"); ++i) playOn(1);
  EXPECT_TRUE(contains(player.last(), "(sl 2) (sr 1)"));
}

TEST_F(Bystander, GivesEachMonitorAFullMessageFirst) {
  Client monitor(arena.monitors());
  const auto first = monitor.receive();
  EXPECT_TRUE(contains(first, "(FieldLength 30)"));
  EXPECT_TRUE(contains(first, "(RSG 0 1)"));
  playOn(10);
  EXPECT_TRUE(contains(monitor.receive(), "(time "));
}

TEST(Trainer, EndsTheArenaEvenWhileTheClockStands) {
  Arena arena;
  Client trainer(arena.monitors());
  trainer.send("(killsim)");
  arena.join();
}

TEST(Trainer, EndsTheArenaWhileItPlays) {
  Arena arena;
  Player player(arena.agents(), 1, "Alpha");
  ASSERT_TRUE(player.play(5));
  Client trainer(arena.monitors());
  trainer.send("(killsim)");
  while (player.play(1)) {
  }
  arena.join();
}

TEST(Trainer, EndsTheArenaAlthoughItsAgentsLeaveBeforeTheNextCycle) {
  Arena arena;
  Player player(arena.agents(), 1, "Alpha");
  ASSERT_TRUE(player.play(5));
  // The arena waits for two answers that never come; meanwhile the command arrives.
  ASSERT_TRUE(player.receive());
  ASSERT_TRUE(player.receive());
  Client trainer(arena.monitors());
  ASSERT_TRUE(trainer.receive());
  trainer.send("(killsim)");
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  player.close();
  arena.join();
}

// ---------------------------------------------------------------------------------------- program

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

TEST(Program, ExplainsEveryOption) {
  const Outcome outcome = runArena("--help");
  EXPECT_EQ(outcome.status, 0);
  for (const char* option :
       {"--agent-port", "--monitor-port", "--bind", "--real-time", "--agent-timeout", "--seed",
        "--duration", "--half-time", "--auto-kick-off", "--coin-toss", "--change-sides",
        "--wait-agents", "--no-noise", "--ground-truth", "--record", "--report", "--quiet"}) {
    EXPECT_NE(outcome.output.find(option), std::string::npos) << option;
  }
}

TEST(Program, RefusesOptionsItDoesNotKnow) {
  EXPECT_NE(runArena("--no-such-option").status, 0);
  EXPECT_NE(runArena("--agent-timeout -1").status, 0);
}

TEST(Program, SaysWhenAPortIsTaken) {
  Arena arena;
  const Outcome outcome =
      runArena("--monitor-port 0 --agent-port " + std::to_string(arena.agents()));
  EXPECT_NE(outcome.status, 0);
  EXPECT_NE(outcome.output.find("arena: "), std::string::npos);
}

}  // namespace
}  // namespace arena
