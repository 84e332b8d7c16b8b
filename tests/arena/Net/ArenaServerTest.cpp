// The server on real connections: lockstep and real time, trainers, monitors and those who
// misbehave.
#include "Net/ArenaServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "arena/Support/LiveArena.h"

namespace arena {
namespace {

ServerOptions impatient() {
  ServerOptions options;
  options.agentTimeout = 0.2;
  return options;
}

// -------------------------------------------------------------------------------------- lockstep

TEST(ArenaServerLockstepTest, GivesTwoFramesForTheSceneAloneAndThenOneForEachMessage) {
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

TEST(ArenaServerLockstepTest, AppliesEarlyMessagesEachInItsOwnCycle) {
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

TEST(ArenaServerLockstepTest, DoesNotStallOnAHandshakeThatLeavesAFrameUnanswered) {
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

TEST(ArenaServerLockstepTest, WaitsForTheSlowestAgent) {
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

TEST(ArenaServerLockstepTest, GoesOnWithoutASilentAgentAndTakesItBack) {
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

// What is owed at the time-out is forgiven, so that it is not waited for again in each cycle.
TEST(ArenaServerLockstepTest, ForgivesAnAgentTheAnswersThatItHasMissed) {
  ServerOptions options;
  options.agentTimeout = 0.5;
  Arena arena(options);
  Player agent(arena.agents(), 1, "Alpha");
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(agent.receive());
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(agent.play(300));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  // And it is waited for.
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const long before = arena.cycles();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(arena.cycles(), before);
}

TEST(ArenaServerLockstepTest, LetsOthersPlayOnAtFullSpeedBesideAnAgentThatHasMissedAnswers) {
  ServerOptions options;
  options.agentTimeout = 0.5;
  Arena arena(options);
  Companion busy(arena.agents());
  Player agent(arena.agents(), 2, "Alpha");
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(agent.receive());
  const auto start = std::chrono::steady_clock::now();
  std::thread answering([&] { agent.play(1000); });
  EXPECT_TRUE(busy.follow(200));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  agent.shutDown();
  answering.join();
}

// An answer that was late leaves nothing behind: the agent is two frames ahead of its answers at
// most, as before.
TEST(ArenaServerLockstepTest, WaitsAsBeforeForAnAgentWhoseAnswerCameTooLate) {
  Arena arena(impatient());
  Player agent(arena.agents(), 1, "Alpha");
  // Answers what has come meanwhile; returns how much that was.
  const auto answer = [&agent] {
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    int frames = 0;
    for (; agent.hasData(); ++frames) agent.receive();
    for (int i = 0; i < frames; ++i) agent.send("(syn)");
    return frames;
  };
  for (int pause = 0; pause < 3; ++pause) {
    int batches = 0;
    while (answer() > 2) ASSERT_LT(++batches, 50);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(answer(), 2);
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
  }
  EXPECT_EQ(arena.logged("silent"), 1);
}

// Frames that it has lost by not reading are not expected to be answered.
TEST(ArenaServerLockstepTest, DoesNotWaitForAnswersToFramesThatWereDropped) {
  using Clock = std::chrono::steady_clock;
  ServerOptions options;
  options.agentTimeout = 1.0;
  Arena arena(options);
  Client agent(arena.agents(), 4096);
  agent.send("(scene rsg/agent/nao/nao.rsg)");
  for (int i = 0; i < 3000 && arena.logged("frames are dropped") == 0; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_EQ(arena.logged("frames are dropped"), 1);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  // It answers all that has got through, and then the match goes on with it without a pause.
  double last = 0;
  double jump = 0;
  for (int after = 0; after<200; after += jump> 0.1 ? 1 : 0) {
    const Clock::time_point asked = Clock::now();
    const auto frame = agent.receive();
    ASSERT_TRUE(frame);
    EXPECT_LT(Clock::now() - asked, std::chrono::milliseconds(700));
    const double time = std::stod(frame->substr(frame->find("now ") + 4));
    if (last > 0) jump = std::max(jump, time - last);
    last = time;
    agent.send("(syn)");
  }
}

TEST(ArenaServerLockstepTest, LetsTheClockStandWithoutAgents) {
  Arena arena;
  {
    Client mute(arena.agents());  // no scene: does not count
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(arena.cycles(), 0);
  }
  Player player(arena.agents(), 1, "Alpha");
  EXPECT_TRUE(contains(player.first, "(time (now 0.04))"));
}

TEST(ArenaServerLockstepTest, HoldsTheFirstCycleUntilEnoughAgentsHaveTheirScene) {
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

TEST(ArenaServerLockstepTest, EndsWhenTheGameHasLastedLongEnough) {
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

TEST(ArenaServerRealTimeTest, SendsFramesToAgentsThatDoNotAnswer) {
  ServerOptions options;
  options.realTime = true;
  Arena arena(options);
  Player player(arena.agents(), 1, "Alpha");
  for (int i = 0; i < 15; ++i) ASSERT_TRUE(player.receive());
}

// Of a frame, its time.
double secondsIn(const std::optional<std::string>& frame) {
  const std::string head = "(time (now ";
  const std::size_t at = frame ? frame->find(head) : std::string::npos;
  return at == std::string::npos ? NAN : std::stod(frame->substr(at + head.size()));
}

ServerOptions losing(double share) {
  ServerOptions options;
  options.realTime = true;
  options.lose = share;
  return options;
}

TEST(ArenaServerRealTimeTest, LosesNothingOfAnAgentsFirstMessagesAndThenAllIfAllIsLost) {
  Arena arena(losing(1.0));
  Player listener(arena.agents(), 1, "Alpha");
  Player talker(arena.agents(), 2, "Alpha");
  // Scene and init were two.
  ASSERT_TRUE(talker.play(ArenaServer::kNeverLost - 2, "(say kept)"));
  for (int i = 0; i < 10; ++i) {
    talker.send("(say lost)");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  // What was given before the last message of the first second came.
  while (talker.hasData()) ASSERT_TRUE(talker.receive());
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_FALSE(talker.hasData());
  int kept = 0;
  while (listener.hasData()) {
    const auto frame = listener.receive();
    kept += contains(frame, "kept");
    EXPECT_FALSE(contains(frame, "lost"));
  }
  EXPECT_GT(kept, 0);
}

TEST(ArenaServerRealTimeTest, LosesTheShareOfTheFramesThatItIsTold) {
  Arena arena(losing(0.3));
  Player player(arena.agents(), 1, "Alpha");
  for (int i = 0; i < ArenaServer::kNeverLost; ++i) {
    player.send("(syn)");
    ASSERT_TRUE(player.receive());
  }
  const double before = secondsIn(player.receive());
  constexpr int kFrames = 70;
  for (int i = 1; i < kFrames; ++i) ASSERT_TRUE(player.receive());
  // 100 cycles expected, with a standard deviation of 6.5.
  EXPECT_NEAR((secondsIn(player.receive()) - before) / 0.02, kFrames / 0.7, 28.0);
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
  agent.sendRaw(framed(scene).substr(0, 14));
  dawdle();
  agent.sendRaw(framed(scene).substr(14));
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

std::vector<std::string> playMatch(unsigned chance, int threads) {
  const std::vector<Role> roles{{1, "Alpha", 0}, {2, "Alpha", 4}, {3, "Alpha", 1},
                                {1, "Beta", 3},  {2, "Beta", 2},  {5, "Beta", 0}};
  ServerOptions options;
  options.waitAgents = static_cast<int>(roles.size());
  options.agentTimeout = 20.0;
  MatchOptions matchOptions;
  matchOptions.seed = 77;
  matchOptions.threads = threads;
  Arena arena(options, matchOptions);
  std::vector<std::string> streams(roles.size());
  std::vector<std::thread> players;
  for (std::size_t i = 0; i < roles.size(); ++i) {
    players.emplace_back([&, i] {
      streams[i] = playRole(arena.agents(), roles[i], 150, chance * 100 + static_cast<unsigned>(i));
    });
  }
  for (std::thread& player : players) player.join();
  return streams;
}

// With one thread what the players send is read after each step of the match, with three beside it.
TEST(ArenaServerRepeatabilityTest, GivesTheSamePerceptsWhoeverIsFaster) {
  const std::vector<std::string> once = playMatch(1, 1);
  const std::vector<std::string> again = playMatch(2, 1);
  const std::vector<std::string> beside = playMatch(3, 3);
  ASSERT_EQ(once.size(), again.size());
  for (std::size_t i = 0; i < once.size(); ++i) {
    EXPECT_GT(once[i].size(), 100000u);
    EXPECT_TRUE(once[i] == again[i]) << "player " << i;
    EXPECT_TRUE(once[i] == beside[i]) << "player " << i;
  }
}

// ------------------------------------------------------------------------------------ misbehaving

// A player beside misbehaving clients: expects its frames to go on.
class ArenaServerTest : public testing::Test {
 protected:
  void playOn(int frames = 30) { EXPECT_TRUE(player.follow(frames)); }

  Arena arena{impatient()};
  Companion player{arena.agents()};
};

TEST_F(ArenaServerTest, SurvivesAnOverlongFrame) {
  Client rude(arena.agents());
  rude.sendRaw(std::string("\x7f\xff\xff\xff", 4) + "(scene");
  playOn();
  EXPECT_FALSE(rude.receive());
  playOn();
  EXPECT_EQ(arena.logged("longer than allowed"), 1);
}

TEST_F(ArenaServerTest, SurvivesAnOverlongFrameOfAPlayer) {
  Player rude(arena.agents(), 2, "Alpha");
  rude.sendRaw(std::string("\xff\xff\xff\xff", 4));
  playOn(100);
  EXPECT_EQ(arena.logged("longer than allowed"), 1);
}

TEST_F(ArenaServerTest, SurvivesHalfFrames) {
  Client rude(arena.agents());
  rude.sendRaw(std::string("\0\0", 2));
  Client ruder(arena.agents());
  ruder.sendRaw(std::string("\0\0\0\x20(scene rsg", 14));
  playOn(60);
  rude.close();
  ruder.reset();
  playOn(60);
}

TEST_F(ArenaServerTest, SurvivesRubbish) {
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

TEST_F(ArenaServerTest, SurvivesAFloodOfSmallFrames) {
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

// Whoever sends without end has a share of what is read in a cycle taken, and no more.
TEST_F(ArenaServerTest, PlaysOnWhileAMonitorFloods) {
  Flood flood(arena.monitors(), "(select)");
  playOn(300);
}

TEST_F(ArenaServerTest, PlaysOnWhileAgentsWithoutASceneFlood) {
  Flood floods[] = {{arena.agents(), "(syn)"},
                    {arena.agents(), ""},
                    {arena.agents(), "(scene x)"},
                    {arena.agents(), std::string(60000, '(')}};
  playOn(300);
}

TEST_F(ArenaServerTest, PlaysOnWhileClientsComeAndGoWithoutEnd) {
  std::atomic<bool> done{false};
  std::thread door([&] {
    while (!done) Client(arena.agents()).reset();
  });
  playOn(300);
  done = true;
  door.join();
}

TEST_F(ArenaServerTest, HeedsATrainerWhileAnotherOneFloods) {
  Flood flood(arena.monitors(), "(select)");
  Client trainer(arena.monitors());
  trainer.send("(playMode PlayOn)");
  for (int i = 0; i < 2000 && !contains(player.last(), "PlayOn"); ++i) playOn(1);
  EXPECT_TRUE(contains(player.last(), "PlayOn"));
}

// More than is taken in one cycle.
TEST_F(ArenaServerTest, CarriesOutAllCommandsOfATrainerWhoLeavesAtOnce) {
  Client trainer(arena.monitors());
  std::string commands;
  for (int i = 1; i <= 1000; ++i) commands += framed("(score (left " + std::to_string(i) + "))");
  trainer.sendRaw(commands);
  trainer.close();
  for (int i = 0; i < 2000 && !contains(player.last(), "(sl 1000)"); ++i) playOn(1);
  EXPECT_TRUE(contains(player.last(), "(sl 1000)"));
}

// The sockets are served beside the match: whoever floods, comes and goes does it while that is
// calculated.
TEST(ArenaServerBesideTest, PlaysOnAndHeedsATrainerWhileAllOthersMisbehave) {
  MatchOptions matchOptions;
  matchOptions.threads = 3;
  Arena arena(impatient(), matchOptions);
  Companion player(arena.agents());
  ASSERT_TRUE(player.follow(10));
  std::vector<std::unique_ptr<Player>> silent;
  for (int number = 2; number <= 5; ++number) {
    silent.push_back(std::make_unique<Player>(arena.agents(), number, "Alpha"));
  }
  Flood floods[] = {{arena.agents(), "(syn)"},
                    {arena.agents(), std::string(60000, '(')},
                    {arena.monitors(), "(select)"}};
  std::atomic<bool> done{false};
  std::thread door([&] {
    while (!done) Client(arena.agents()).reset();
  });
  EXPECT_TRUE(player.follow(200));
  Client trainer(arena.monitors());
  trainer.send("(playMode PlayOn)");
  trainer.close();
  for (int i = 0; i < 2000 && !contains(player.last(), "PlayOn"); ++i)
    EXPECT_TRUE(player.follow(1));
  EXPECT_TRUE(contains(player.last(), "PlayOn"));
  done = true;
  door.join();
}

TEST(ArenaServerRealTimeTest, PlaysOnWhileAgentsAndMonitorsFlood) {
  ServerOptions options;
  options.realTime = true;
  Arena arena(options);
  Companion player(arena.agents());
  Player noisy(arena.agents(), 2, "Alpha");
  Flood floods[] = {{arena.monitors(), "(select)"},
                    {arena.agents(), "(syn)"},
                    {arena.agents(), "(syn)"},
                    {arena.agents(), "(syn)"},
                    {arena.agents(), "(syn)"}};
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(player.follow(50));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(ArenaServerTest, SurvivesAnAgentThatNeverReads) {
  Client rude(arena.agents());
  rude.send("(scene rsg/agent/nao/nao.rsg)");
  playOn(200);
  EXPECT_EQ(arena.logged("silent"), 1);
  rude.close();
  playOn(60);
}

TEST_F(ArenaServerTest, SurvivesAgentsThatVanishAtEveryStep) {
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

TEST_F(ArenaServerTest, SurvivesUnknownEffectorsInEveryFrame) {
  Player odd(arena.agents(), 2, "Alpha");
  EXPECT_TRUE(odd.play(60, "(lle9 1)(rle7 -1)(lle3 nan)(rle3 inf)(he1 -1e999)"));
  EXPECT_EQ(arena.logged("unknown effector lle9"), 1);
}

TEST_F(ArenaServerTest, TakesMoreAgentsThanFitAndAThirdTeam) {
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

TEST_F(ArenaServerTest, TurnsAwayACrowd) {
  std::vector<std::unique_ptr<Client>> crowd;
  for (int i = 0; i < 70; ++i) crowd.push_back(std::make_unique<Client>(arena.agents()));
  playOn();
  EXPECT_GE(arena.logged("too many connections"), 1);
}

// While the clock stands there is no cycle in which they would be let go.
TEST(ArenaServerStandingTest, ForgetsThoseWhoHaveLeft) {
  Arena arena;
  for (int i = 0; i < 3 * ArenaServer::kMaxAgents; ++i) {
    Client guest(arena.agents());
    if (i % 2 == 0) guest.send("(syn)");
  }
  for (int i = 0; i < 3 * ArenaServer::kMaxMonitors; ++i) Client guest(arena.monitors());
  Client monitor(arena.monitors());
  EXPECT_TRUE(contains(monitor.receive(), "RSG 0 1"));
  Player player(arena.agents(), 1, "Alpha");
  EXPECT_TRUE(player.play(5));
  EXPECT_EQ(arena.logged("too many connections"), 0);
}

TEST(ArenaServerStandingTest, HeedsTheEndBehindAFloodOfCommands) {
  Arena arena;
  Client trainer(arena.monitors());
  for (int i = 0; i < 10000; ++i) trainer.send("(select)");
  trainer.send("(killsim)");
  arena.join();
  EXPECT_EQ(arena.logged("more commands than can wait"), 1);
}

// Many connections at once, each with a word of its own before the scene.
TEST(ArenaServerStandingTest, ReadsWhatComesBeforeTheScene) {
  Arena arena;
  Client agent(arena.agents());
  for (int i = 0; i < 500; ++i) agent.send("(syn)");
  agent.send("(scene rsg/agent/nao/nao.rsg)");
  EXPECT_TRUE(contains(agent.receive(), "(time (now 0.04))"));
}

TEST_F(ArenaServerTest, SurvivesMonitorsThatDoNotRead) {
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

TEST_F(ArenaServerTest, SurvivesRubbishAtTheMonitorPort) {
  Client rude(arena.monitors());
  rude.send("(((");
  rude.send("(ball (pos nan inf 1))");
  rude.send("(playMode NoSuchMode)");
  rude.sendRaw(std::string("\xff\xff\xff\xff", 4));
  playOn();
  EXPECT_TRUE(contains(player.last(), "BeforeKickOff"));
}

// ------------------------------------------------------------------------------------------ ports

std::string refusal(const ServerOptions& options) {
  Match match{MatchOptions()};
  try {
    ArenaServer server(match, options, [](const std::string&) {});
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

TEST(ArenaServerPortTest, NamesThePlaceWhereItCannotListen) {
  Arena arena;
  ServerOptions options;
  options.agentPort = 0;
  options.monitorPort = arena.monitors();
  EXPECT_EQ(refusal(options), "cannot listen for monitors at 127.0.0.1 port " +
                                  std::to_string(arena.monitors()) + ": Address already in use");
  options.bind = "no-such-host";
  EXPECT_EQ(refusal(options), "cannot listen at 'no-such-host': that is no IP address");
}

// --------------------------------------------------------------------------------------- trainers

TEST_F(ArenaServerTest, TakesCommandsOfATrainer) {
  Client trainer(arena.monitors());
  trainer.send("(playMode PlayOn)(score (left 2)(right 1))");
  for (int i = 0; i < 500 && !contains(player.last(), "PlayOn"); ++i) playOn(1);
  EXPECT_TRUE(contains(player.last(), "(sl 2) (sr 1)"));
}

TEST_F(ArenaServerTest, GivesEachMonitorAFullMessageFirst) {
  Client monitor(arena.monitors());
  const auto first = monitor.receive();
  EXPECT_TRUE(contains(first, "(FieldLength 30)"));
  EXPECT_TRUE(contains(first, "(RSG 0 1)"));
  playOn(10);
  EXPECT_TRUE(contains(monitor.receive(), "(time "));
}

// What three monitors get while a player turns its head.
std::vector<std::string> watch(int threads) {
  MatchOptions options;
  options.threads = threads;
  Arena arena({}, options);
  std::vector<std::string> streams;
  std::vector<std::unique_ptr<Client>> monitors;
  for (int i = 0; i < 3; ++i) {
    monitors.push_back(std::make_unique<Client>(arena.monitors()));
    streams.push_back(monitors.back()->receive().value_or("nothing"));
  }
  Player player(arena.agents(), 1, "Alpha");
  EXPECT_TRUE(player.play(60, "(he1 1)"));
  for (std::size_t i = 0; i < monitors.size(); ++i) {
    for (int message = 0; message < 25; ++message) {
      streams[i] += monitors[i]->receive().value_or("nothing");
    }
  }
  return streams;
}

TEST(ArenaServerMonitorTest, GivesAllTheSameWithAnyNumberOfThreads) {
  const std::vector<std::string> alone = watch(1);
  EXPECT_GT(alone[0].size(), 20000u);
  EXPECT_EQ(alone[0].find("nothing"), std::string::npos);
  EXPECT_TRUE(alone[1] == alone[0]);
  EXPECT_TRUE(alone[2] == alone[0]);
  EXPECT_TRUE(watch(3) == alone);
}

TEST(ArenaServerTrainerTest, EndsTheArenaEvenWhileTheClockStands) {
  Arena arena;
  Client trainer(arena.monitors());
  trainer.send("(killsim)");
  arena.join();
}

TEST(ArenaServerTrainerTest, EndsTheArenaWhileItPlays) {
  Arena arena;
  Player player(arena.agents(), 1, "Alpha");
  ASSERT_TRUE(player.play(5));
  Client trainer(arena.monitors());
  trainer.send("(killsim)");
  while (player.play(1)) {
  }
  arena.join();
}

TEST(ArenaServerTrainerTest, EndsTheArenaAlthoughItsAgentsLeaveBeforeTheNextCycle) {
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

}  // namespace
}  // namespace arena
