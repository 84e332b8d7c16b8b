#ifndef QUOLNARIS_NET_ARENASERVER_H_
#define QUOLNARIS_NET_ARENASERVER_H_

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Match/Match.h"
#include "Monitor/MonitorStream.h"
#include "Net/FramedConnection.h"

namespace arena {

struct ServerOptions {
  std::string bind = "127.0.0.1";
  unsigned short agentPort = 3100;    // 0: any free one
  unsigned short monitorPort = 3200;  // 0: any free one
  bool realTime = false;              // 50 Hz by the wall clock instead of lockstep
  double agentTimeout = 2.0;          // s of silence, after which lockstep goes on without an agent
  int waitAgents = 0;                 // the first cycle waits for so many agents with a scene
  double duration = 0.0;              // s of game time, after which it ends; 0: never
  bool handleSignals = false;         // interrupt and terminate end the run in order
};

// The arena on the network: agents at one port, trainers and monitors at another, and the clock.
//
// Lockstep: an agent's first message that asks for a robot is its message 1. Its frame k goes out
// as soon as k - 1 messages have arrived from it, and in the cycle in which it is given frame k
// exactly its messages 1 to k - 1 have been applied. The next cycle begins when every agent may
// get its frame. Not waited for: agents without a scene, and those silent for longer than the
// time-out. Real time: a cycle every 20 ms, with all messages that have arrived by then; an overrun
// is not caught up. In both, the clock stands as long as there is no agent with a scene.
class ArenaServer {
 public:
  // What an observer is told after each cycle.
  struct CycleReport {
    // Agents whose answer was missing when the cycle began.
    std::vector<Match::AgentId> late;
  };
  using Observer = std::function<void(const CycleReport&)>;
  // Told of every frame given to an agent and of every message of an agent that is applied.
  struct Wiretap {
    std::function<void(Match::AgentId agent, std::string_view text)> given;
    std::function<void(Match::AgentId agent, std::string_view text)> applied;
  };

  // Opens both ports. Throws boost::system::system_error if that fails. `match` must outlive it.
  ArenaServer(Match& match, const ServerOptions& options,
              std::function<void(const std::string&)> log);
  ~ArenaServer();

  unsigned short agentPort() const;
  unsigned short monitorPort() const;
  void setObserver(Observer observer) { observer_ = std::move(observer); }

  void setWiretap(Wiretap wiretap) { wiretap_ = std::move(wiretap); }

  // Plays until the duration is over, a trainer asks for the end, or stop().
  void run();
  // From any thread.
  void stop();

 private:
  using Clock = std::chrono::steady_clock;
  using Tcp = boost::asio::ip::tcp;

  struct AgentSession {
    Match::AgentId id;
    std::shared_ptr<FramedConnection> connection;
    long applied = 0;      // messages handed to the match; the one with the scene is the first
    long given = 0;        // frames given to the agent
    std::size_t seen = 0;  // messages waiting when it was last looked at
    Clock::time_point waitingSince;  // last sign of life, or last frame given to it
    bool silent = false;             // timed out: not waited for until it speaks again
    bool toldSilent = false;         // that has been logged
    bool toldSlow = false;           // that it loses frames by not reading, too
  };
  struct MonitorSession {
    std::shared_ptr<FramedConnection> connection;
    MonitorStream stream;
    bool toldSlow = false;  // that it loses messages by not reading has been logged
  };

  Tcp::acceptor open(unsigned short port);
  void acceptAgent();
  void acceptMonitor();
  void onAgentEvent(AgentSession& session);
  void onMonitorEvent(MonitorSession& session);

  bool clockRuns() const;
  bool frameDue(const AgentSession& session) const;
  bool answered(const AgentSession& session) const;
  bool everybodyReady();
  void listen();
  void waitForAgents();
  void waitForTick();

  void cycle();
  void removeEnded();
  void closeAll();
  void apply(AgentSession& session);
  void handOver();
  void sendPercepts();
  void sendMonitors();
  std::array<float, 2> passWait() const;

  Match& match_;
  ServerOptions options_;
  std::function<void(const std::string&)> log_;
  boost::asio::io_context io_;
  Tcp::acceptor agentAcceptor_;
  Tcp::acceptor monitorAcceptor_;
  boost::asio::signal_set signals_;
  std::list<AgentSession> agents_;
  std::list<MonitorSession> monitors_;
  Observer observer_;
  Wiretap wiretap_;
  CycleReport report_;
  long cycles_ = 0;
  bool begun_ = false;
  bool stopping_ = false;
  Clock::time_point lastTick_;
};

}  // namespace arena

#endif  // QUOLNARIS_NET_ARENASERVER_H_
