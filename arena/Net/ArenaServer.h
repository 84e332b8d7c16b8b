#ifndef QUOLNARIS_NET_ARENASERVER_H_
#define QUOLNARIS_NET_ARENASERVER_H_

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Common/Random.h"
#include "Match/Match.h"
#include "Monitor/MonitorStream.h"
#include "Net/EventThread.h"
#include "Net/FramedConnection.h"

namespace arena {

struct ServerOptions {
  std::string bind = "127.0.0.1";
  unsigned short agentPort = 3100;    // 0: any free one
  unsigned short monitorPort = 3200;  // 0: any free one
  bool realTime = false;              // 50 Hz by the wall clock instead of lockstep
  double agentTimeout = 2.0;          // s of silence, after which lockstep goes on without an agent
  int waitAgents = 0;                 // the first cycle waits for so many agents with a scene
  double lose = 0.0;                  // real time: share of frames and messages lost, 0 to 1
  std::uint64_t seed = 0;             // of what gets lost
  double duration = 0.0;              // s of game time, after which it ends; 0: never
  bool handleSignals = false;         // interrupt, terminate and hang-up end the run in order
};

// The arena on the network: agents at one port, trainers and monitors at another, and the clock.
//
// Lockstep: an agent's first message that asks for a robot is its message 1. Its frame k goes out
// as soon as k - 1 messages have arrived from it, and in the cycle in which it is given frame k
// exactly its messages 1 to k - 1 have been applied. The next cycle begins when every agent may
// get its frame. Not waited for: agents without a scene, and those silent for longer than the
// time-out; what those still owe then is forgiven: they are waited for again from their next
// message on. Frames that an agent loses because it does not read are no frames in this sense. Real
// time: a cycle every 20 ms, with all messages that have arrived by then; an overrun is not caught
// up; and for practice frames and messages can get lost on the way, drawn one by one, as on a poor
// network, but for an agent's first kNeverLost messages and what it is given meanwhile. In both,
// the clock stands as long as there is no agent with a scene.
//
// Nobody can stop it: of what a connection sends, only a share is taken in each cycle, and the rest
// waits where it is, in the end at the sender.
class ArenaServer {
 public:
  // Far more than two teams with their substitutes; keeps memory bounded.
  static constexpr int kMaxAgents = 64;
  static constexpr int kMaxMonitors = 32;
  // One second: enough to come into the team.
  static constexpr long kNeverLost = 50;

  // What an observer is told after each cycle.
  struct CycleReport {
    // Agents whose answer was missing when the cycle began.
    std::vector<Match::AgentId> late;
  };
  using Observer = std::function<void(const CycleReport&)>;
  // Told of every frame given to an agent (empty for one that was lost, or dropped since the agent
  // does not read)
  // and of every message of an agent that is applied.
  struct Wiretap {
    std::function<void(Match::AgentId agent, std::string_view text)> given;
    std::function<void(Match::AgentId agent, std::string_view text)> applied;
  };

  // Opens both ports. Throws std::runtime_error with address and port if that fails. `match` must
  // outlive it.
  ArenaServer(Match& match, const ServerOptions& options,
              std::function<void(const std::string&)> log);
  ~ArenaServer();

  unsigned short agentPort() const;
  unsigned short monitorPort() const;
  void setObserver(Observer observer) { observer_ = std::move(observer); }
  // To be called while the arena waits for something, at least every 20 ms.
  void setIdler(std::function<void()> idler) { idler_ = std::move(idler); }

  void setWiretap(Wiretap wiretap) { wiretap_ = std::move(wiretap); }

  // Plays until the duration is over, a trainer asks for the end, or stop().
  void run();
  // From any thread.
  void stop();

 private:
  using Clock = std::chrono::steady_clock;
  using Tcp = boost::asio::ip::tcp;

  // Where clients of one kind come in.
  struct Door {
    Door(boost::asio::io_context& io, const char* kind) : who(kind), acceptor(io), pause(io) {}

    const char* who;
    Tcp::acceptor acceptor;
    boost::asio::steady_timer pause;  // after a failure
    std::function<void(Tcp::socket)> enter;
  };
  // Of a connection's frames, in one cycle.
  struct Share {
    std::size_t frames = 0;
    std::size_t bytes = 0;
  };
  struct AgentSession {
    Match::AgentId id;
    std::shared_ptr<FramedConnection> connection;
    bool heard = false;  // something has arrived, or it has ended
    Share used;          // by what came before its scene
    long applied = 0;    // messages handed to the match; the one with the scene is the first
    long given = 0;      // frames given to the agent
    long forgiven =
        0;  // messages that it owes and that are not waited for, at most given - applied
    Clock::time_point waitingSince;  // last sign of life, or last frame given to it
    bool silent = false;             // timed out: not waited for until it speaks again
    bool timedOut = false;           // since the last cycle
    bool toldSilent = false;         // that has been logged
    bool toldSlow = false;           // that it loses frames by not reading, too
  };
  struct MonitorSession {
    std::shared_ptr<FramedConnection> connection;
    MonitorStream stream;
    bool heard = false;
    Share used;
    bool toldSlow = false;      // that it loses messages by not reading has been logged
    bool toldDropping = false;  // that commands of it are lost, too
  };

  static bool within(const Share& used, const Share& limit);
  // Takes the next frame out of the share.
  static std::string take(FramedConnection& connection, Share& used);

  void open(Door& door, unsigned short port);
  void accept(Door& door);
  void addAgent(Tcp::socket socket);
  void addMonitor(Tcp::socket socket);
  // What a session has been heard of since the last time.
  void dealWith(AgentSession& session);
  void dealWith(MonitorSession& session);
  // Without a robot nothing is answered: what comes is read as soon as the share allows.
  void readForScene(AgentSession& session);
  // Lockstep: hands over answers whose cycle has passed. There may be more of them than can wait.
  void catchUp(AgentSession& session);
  void readCommands(MonitorSession& session);
  void renewShares();

  bool clockRuns() const;
  bool frameDue(const AgentSession& session) const;
  static long received(const AgentSession& session);
  static bool answered(const AgentSession& session);
  bool everybodyReady();
  void pollEvents();
  void listen();
  void waitForAgents();
  void waitForTick();

  void cycle();
  // Calculates the match, with the sockets served beside if that is worth a thread.
  void stepMatch();
  void stepBesideSockets();
  // Does it at once, or after the calculation that is under way.
  void onceStill(std::function<void()> deed);
  void removeEnded();
  void closeAll();
  // Hands a message to the match.
  void apply(const AgentSession& session, const std::string& message);
  // Draws for a frame to the agent or a message of it whether it gets lost.
  bool getsLost(const AgentSession& session);
  void handOver();
  void sendPercepts();
  void noteSent(AgentSession& session, bool sent);
  void sendMonitors();
  std::array<float, 2> passWait() const;

  Match& match_;
  ServerOptions options_;
  Random losses_;
  std::function<void(const std::string&)> log_;
  boost::asio::io_context io_;
  std::optional<EventThread> eventThread_;
  bool calculating_ = false;  // the sockets are served beside it
  std::vector<std::function<void()>> deferred_;
  Door agentDoor_{io_, "agent"};
  Door monitorDoor_{io_, "monitor"};
  boost::asio::signal_set signals_;
  std::list<AgentSession> agents_;
  std::list<MonitorSession> monitors_;
  Observer observer_;
  Wiretap wiretap_;
  std::function<void()> idler_;
  CycleReport report_;
  long cycles_ = 0;
  bool toldSlowStep_ = false;
  bool begun_ = false;
  bool stopping_ = false;
  Clock::time_point lastTick_;
};

}  // namespace arena

#endif  // QUOLNARIS_NET_ARENASERVER_H_
