// Trainer commands and monitor stream through sockets, on a running arena.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "FramedLink.h"
#include "Match/Match.h"
#include "Net/ArenaServer.h"
#include "arena/Support/ViewerReader.h"

namespace arena {
namespace {

// A client whose frames must come.
class Link : public FramedLink {
 public:
  explicit Link(unsigned short port, int receiveBuffer = 0)
      : FramedLink("127.0.0.1", port, receiveBuffer) {}
};

class LiveTrainerTest : public testing::Test {
 protected:
  LiveTrainerTest() : match(exact()), server(match, anyPort(), [](const std::string&) {}) {
    thread = std::thread([this] {
      server.run();
      done = true;
    });
  }
  ~LiveTrainerTest() override {
    server.stop();
    thread.join();
  }
  static MatchOptions exact() {
    MatchOptions options;
    options.noise = false;
    return options;
  }
  static ServerOptions anyPort() {
    ServerOptions options;
    options.agentPort = options.monitorPort = 0;
    return options;
  }

  // A player that has been accepted.
  Link& addPlayer(const std::string& team, int number) {
    auto client = std::make_unique<Link>(server.agentPort());
    Link& agent = *client;
    agent.send("(scene rsg/agent/nao/nao_hetero.rsg 0)");
    // The others must go on answering, or the match stands until they are given up.
    while (!agent.hasData()) {
      for (const auto& other : agents) {
        if (other->hasData()) {
          other->receive();
          other->send("(syn)");
        }
      }
    }
    agents.push_back(std::move(client));
    agent.receive();
    agent.send("(init (unum " + std::to_string(number) + ")(teamname " + team + "))");
    cycles(4);
    return agent;
  }
  // Lets every agent answer so many frames.
  void cycles(int count) {
    for (int i = 0; i < count; ++i) {
      for (const auto& agent : agents) {
        heard = agent->receive();
        agent->send("(syn)");
      }
    }
  }
  // Goes on until the first agent's percept contains the text.
  bool hears(const std::string& text, int limit = kPatience) {
    for (int i = 0; i < limit; ++i) {
      cycles(1);
      if (heard.find(text) != std::string::npos) return true;
    }
    return false;
  }
  // Goes on until the viewer's picture after one of the messages fulfils the condition.
  template <class Condition>
  bool shows(Link& monitor, Condition condition, int limit = kPatience) {
    for (int i = 0; i < limit; ++i) {
      cycles(1);
      while (monitor.hasData()) {
        viewer.read(monitor.receive());
        if (condition()) return true;
      }
    }
    return false;
  }

  // Cycles for which something is waited for. The match runs on while a monitor's connection and
  // commands are still under way, many cycles in a millisecond.
  static constexpr int kPatience = 5000;

  Match match;
  ArenaServer server;
  std::atomic<bool> done = false;  // the server's run has ended
  std::thread thread;
  std::vector<std::unique_ptr<Link>> agents;
  std::string heard;  // the last percept received
  ViewerReader viewer;
};

TEST_F(LiveTrainerTest, CommandsChangeTheGame) {
  addPlayer("Alpha", 3);
  Link trainer(server.monitorPort());
  trainer.send("(init)");
  trainer.send("(kickOff Left)");
  EXPECT_TRUE(hears("(pm KickOff_Left)"));
  trainer.send("(playMode PlayOn)(score (left 3)(right 1))(time 77)");
  EXPECT_TRUE(hears("(sl 3) (sr 1) (t 77"));
  EXPECT_NE(heard.find("(pm PlayOn)"), std::string::npos);
  trainer.send("(dropBall)(playMode GameOver)");
  EXPECT_TRUE(hears("(pm GameOver)"));
}

TEST_F(LiveTrainerTest, ViewerGetsAFullMessageAtOnceAndThenFollows) {
  addPlayer("Alpha", 3);
  Link monitor(server.monitorPort());
  viewer.read(monitor.receive());
  EXPECT_TRUE(viewer.lastWasFull());
  EXPECT_EQ(viewer.term("team_left"), "Alpha");
  EXPECT_TRUE(viewer.robot(true, 3));
  monitor.send("(playMode PlayOn)(ball (pos 2 3 0.5)(vel 1 0 0))");
  monitor.send("(agent (unum 3)(team Left)(pos -4 -2 0.4))");
  EXPECT_TRUE(shows(monitor, [&] {
    return std::abs(viewer.ball()->pose(1, 3) - 3) < 0.01 && viewer.ball()->pose(0, 3) > 2.05;
  }));
  EXPECT_EQ(viewer.playMode(), "PlayOn");
  EXPECT_NEAR(viewer.robot(true, 3)->pose(0, 3), -4, 0.05);
  EXPECT_NEAR(viewer.robot(true, 3)->pose(1, 3), -2, 0.05);
  EXPECT_FALSE(viewer.lastWasFull());
  monitor.send("(agent (unum 3)(team Left)(move 1 1 0.4 90))");
  EXPECT_TRUE(shows(monitor, [&] { return viewer.robot(true, 3)->pose(0, 2) < -0.99; }));
}

TEST_F(LiveTrainerTest, MessagesComeEveryFourHundredthsOfASecond) {
  addPlayer("Alpha", 3);
  Link monitor(server.monitorPort());
  monitor.send("(playMode PlayOn)");
  ASSERT_TRUE(shows(monitor, [&] { return viewer.playMode() == "PlayOn"; }));
  double last = viewer.number("time");
  for (int i = 0; i < 20; ++i) {
    cycles(2);
    viewer.read(monitor.receive());
    EXPECT_NEAR(viewer.number("time") - last, 0.04, 0.001);
    last = viewer.number("time");
  }
}

TEST_F(LiveTrainerTest, PlayersComeAndGoOnTheViewersPitch) {
  addPlayer("Alpha", 3);
  Link monitor(server.monitorPort());
  addPlayer("Beta", 7);
  EXPECT_TRUE(shows(monitor, [&] { return viewer.robot(false, 7).has_value(); }));
  EXPECT_EQ(viewer.term("team_right"), "Beta");
  monitor.send("(kill (unum 7)(team Right))");
  EXPECT_TRUE(shows(monitor, [&] { return !viewer.robot(false, 7).has_value(); }));
  EXPECT_TRUE(viewer.robot(true, 3));
}

TEST_F(LiveTrainerTest, FullStateIsSentOnRequest) {
  addPlayer("Alpha", 3);
  Link monitor(server.monitorPort());
  ASSERT_TRUE(shows(monitor, [&] { return !viewer.lastWasFull(); }));
  monitor.send("(reqfullstate)");
  EXPECT_TRUE(shows(monitor, [&] { return viewer.lastWasFull(); }));
}

// The newest moment and picture count, whatever a viewer has missed.
TEST_F(LiveTrainerTest, AViewerWhoDoesNotReadForAWhileIsRightAfterwards) {
  for (const int number : {2, 3, 4, 5}) addPlayer("Alpha", number);
  Link trainer(server.monitorPort());
  Link lazy(server.monitorPort(), 4096);
  trainer.send("(playMode PlayOn)(score (left 0)(right 1))");
  ASSERT_TRUE(hears("(sr 1)"));
  // Full messages fill what lies between it and the server.
  for (int i = 0; i < 1000; ++i) {
    trainer.send("(reqfullstate)");
    cycles(2);
    while (trainer.hasData()) trainer.receive();
  }
  // None of this can have reached it.
  trainer.send("(playMode GameOver)(score (left 4)(right 2))(ball (pos 3 -4 0.042)(vel 0 0 0))");
  trainer.send("(kill (unum 3)(team Left))(agent (unum 5)(team Left)(move -7 6 0.4 0))");
  ASSERT_TRUE(hears("(sl 4) (sr 2)"));
  cycles(100);
  double gap = 0;
  std::string lastTime;
  ASSERT_TRUE(shows(lazy, [&] {
    if (!lastTime.empty()) gap = std::max(gap, viewer.number("time") - std::stod(lastTime));
    lastTime = viewer.term("time");
    return viewer.playMode() == "GameOver" && !viewer.lastWasFull();
  }));
  EXPECT_GT(gap, 1.0) << "nothing was missed";
  EXPECT_EQ(viewer.term("score_left"), "4");
  EXPECT_EQ(viewer.term("score_right"), "2");
  EXPECT_FALSE(viewer.robot(true, 3));
  EXPECT_NEAR(viewer.ball()->pose(0, 3), 3, 0.006);
  EXPECT_NEAR(viewer.ball()->pose(1, 3), -4, 0.006);
  ViewerReader prompt;
  Link fresh(server.monitorPort());
  prompt.read(fresh.receive());
  for (const int number : {2, 4, 5}) {
    EXPECT_LT(
        (viewer.robot(true, number)->pose - prompt.robot(true, number)->pose).cwiseAbs().maxCoeff(),
        0.0051)
        << number;
  }
}

// Each of the two has its own past, so what is news for the one is none for the other.
TEST_F(LiveTrainerTest, AViewerWhoConnectsInMidMatchIsSentWhatIsNewForHim) {
  addPlayer("Alpha", 3);
  Link early(server.monitorPort());
  early.send("(playMode PlayOn)(ball (pos -9 5 0.042)(vel 0.3 0.2 0))");
  ASSERT_TRUE(shows(early, [&] { return viewer.playMode() == "PlayOn"; }));
  for (int i = 0; i < 8; ++i) {
    cycles(7);
    Link late(server.monitorPort());
    ViewerReader lateViewer;
    lateViewer.read(late.receive());
    EXPECT_TRUE(lateViewer.lastWasFull());
    for (int message = 0; message < 10; ++message) {
      cycles(2);
      lateViewer.read(late.receive());
      EXPECT_FALSE(lateViewer.lastWasFull());
    }
    while (viewer.number("time") < lateViewer.number("time")) viewer.read(early.receive());
    EXPECT_LT((viewer.ball()->pose - lateViewer.ball()->pose).cwiseAbs().maxCoeff(), 0.0101);
  }
}

TEST_F(LiveTrainerTest, FoulsReachTheViewer) {
  for (const int number : {2, 3, 4, 5}) addPlayer("Alpha", number);
  Link monitor(server.monitorPort());
  monitor.send("(playMode PlayOn)");
  std::string places;
  for (int i = 0; i < 4; ++i) {
    places += "(agent (unum " + std::to_string(2 + i) + ")(team Left)(move -14 " +
              std::to_string(-2.4 + 1.6 * i) + " 0.4 -90))";
  }
  monitor.send(places);
  EXPECT_TRUE(shows(monitor, [&] {
    for (const ViewerReader::Foul& foul : viewer.fouls()) {
      if (foul.type == 2 && foul.team == 1) return true;
    }
    return false;
  }));
}

TEST_F(LiveTrainerTest, GoalReachesTheViewer) {
  addPlayer("Alpha", 3);
  Link monitor(server.monitorPort());
  monitor.send("(playMode PlayOn)(ball (pos 13 0 0.2)(vel 8 0 0))");
  EXPECT_TRUE(shows(monitor, [&] { return viewer.term("score_left") == "1"; }));
  EXPECT_EQ(viewer.playMode(), "Goal_Left");
  EXPECT_TRUE(shows(monitor, [&] { return viewer.playMode() == "KickOff_Right"; }));
}

TEST_F(LiveTrainerTest, GarbageFromAMonitorDoesNoHarm) {
  addPlayer("Alpha", 3);
  Link trainer(server.monitorPort());
  trainer.send(std::string("((((\0)))\x7f", 9));
  trainer.send(std::string(10000, '('));
  trainer.send("(ball (pos nan inf 1e999))(agent (unum 99)(team Left)(pos 0 0 0))");
  trainer.send("");
  trainer.send("(kickOff Right)");
  EXPECT_TRUE(hears("(pm KickOff_Right)"));
}

TEST_F(LiveTrainerTest, KillsimEndsTheServer) {
  addPlayer("Alpha", 3);
  Link trainer(server.monitorPort());
  trainer.send("(killsim)");
  while (!done) {
    if (agents[0]->hasData()) cycles(1);
    std::this_thread::yield();
  }
}

}  // namespace
}  // namespace arena
