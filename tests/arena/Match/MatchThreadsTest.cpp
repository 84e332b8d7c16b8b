// What comes out of a match does not depend on how many threads work on it.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "Match/Match.h"
#include "Monitor/MonitorStream.h"

namespace arena {
namespace {

// A match of 22 in pairs: they kick about themselves, hold on to each other and fall; one leaves
// and comes back, one is taken away.
class Crowd {
 public:
  explicit Crowd(int threads) : match_(optionsWith(threads)) {
    for (int i = 0; i < 22; ++i) connect(i);
    match_.step();
    match_.step();
    for (int i = 0; i < 22; ++i) join(i);
    match_.step();
    for (int i = 0; i < 22; ++i) place(i);
    match_.trainer().receive("(playMode PlayOn)");
  }

  // Everything that agents and monitors were sent, as a hash, and how often robots touched.
  struct Outcome {
    std::size_t hash = 0;
    std::size_t contacts = 0;
  };
  Outcome play(int cycles) {
    for (int cycle = 0; cycle < cycles; ++cycle) {
      if (cycle == 20) match_.disconnect(agents_[4]);
      if (cycle == 25) match_.trainer().receive("(kill (unum 3)(team Right))");
      if (cycle == 30) connect(4);
      if (cycle == 35) join(4);
      if (cycle == 36) place(4);
      for (const Match::AgentId agent : agents_) act(agent, cycle);
      match_.step();
      note();
    }
    return outcome_;
  }
  // All stand about until they sleep; then more and more of them move.
  Outcome wakeUp() {
    for (int cycle = 0; cycle < 150; ++cycle) {
      match_.step();
      note();
    }
    asleep_ = sleepers();
    for (int cycle = 0; cycle < 60; ++cycle) {
      for (int i = 0; i < std::min(22, cycle / 5); ++i) act(agents_[i], cycle);
      match_.step();
      note();
    }
    return outcome_;
  }
  // Before the first one moved.
  long asleep() const { return asleep_; }

 private:
  static MatchOptions optionsWith(int threads) {
    MatchOptions options;
    options.seed = 5;
    options.threads = threads;
    return options;
  }
  void connect(int i) {
    const Match::AgentId agent = match_.connect();
    if (static_cast<std::size_t>(i) < agents_.size()) {
      agents_[i] = agent;
    } else {
      agents_.push_back(agent);
    }
    const int types[] = {0, 2, 4};
    match_.receive(agent,
                   "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(types[i / 2 % 3]) + ")");
  }
  void join(int i) {
    match_.receive(agents_[i], "(init (unum " + std::to_string(i / 2 + 1) + ")(teamname " +
                                   (i % 2 == 0 ? "Alpha" : "Beta") + "))");
  }
  // Pairs so close that their arms meet.
  void place(int i) {
    match_.trainer().receive("(agent (unum " + std::to_string(i / 2 + 1) + ")(team " +
                             (i % 2 == 0 ? "Left" : "Right") + ")(pos " +
                             std::to_string(-8 + 1.5 * (i / 2)) + ' ' +
                             std::to_string(0.28 * (i % 2)) + " 0.4))");
  }
  void act(Match::AgentId agent, int cycle) {
    const int swing = (cycle / 10 + agent) % 2 == 0 ? 1 : -1;
    match_.receive(agent, "(lae1 " + std::to_string(4 * swing) + ")(rae2 " +
                              std::to_string(-3 * swing) + ")(lle3 " + std::to_string(5 * swing) +
                              ")(rle4 " + std::to_string(-4 * swing) + ")(say c" +
                              std::to_string(cycle) + ")");
  }
  long sleepers() {
    const auto& robots = match_.world().physics().robots();
    return std::count_if(robots.begin(), robots.end(),
                         [](const auto& robot) { return robot->asleep(); });
  }
  void note() {
    outcome_.contacts += match_.world().robotContacts().size();
    std::string sent = monitor_.next(match_.scene(), match_.game(), {});
    for (const Match::AgentId agent : match_.agents()) sent += match_.percept(agent);
    outcome_.hash = outcome_.hash * 31 + std::hash<std::string>()(sent);
  }

  Match match_;
  MonitorStream monitor_;
  std::vector<Match::AgentId> agents_;
  Outcome outcome_;
  long asleep_ = 0;
};

TEST(MatchThreadsTest, ACrowdMovesTheSameWithAnyNumberOfThreads) {
  constexpr int kCycles = 80;
  const Crowd::Outcome alone = Crowd(1).play(kCycles);
  EXPECT_GT(alone.contacts, 300u);
  EXPECT_NE(alone.hash, Crowd(1).play(kCycles - 1).hash);
  for (const int threads : {2, 3, 8}) {
    const Crowd::Outcome shared = Crowd(threads).play(kCycles);
    EXPECT_EQ(shared.hash, alone.hash) << threads << " threads";
    EXPECT_EQ(shared.contacts, alone.contacts) << threads << " threads";
  }
}

// Few robots that are awake are stepped by one thread, whatever the number of threads.
TEST(MatchThreadsTest, ACrowdWakesUpTheSameWithAnyNumberOfThreads) {
  Crowd one(1);
  const Crowd::Outcome alone = one.wakeUp();
  EXPECT_GE(one.asleep(), 20);
  for (const int threads : {2, 3, 8}) {
    const Crowd::Outcome shared = Crowd(threads).wakeUp();
    EXPECT_EQ(shared.hash, alone.hash) << threads << " threads";
    EXPECT_EQ(shared.contacts, alone.contacts) << threads << " threads";
  }
}

}  // namespace
}  // namespace arena
