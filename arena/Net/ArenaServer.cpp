#include "Net/ArenaServer.h"

#include <algorithm>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/post.hpp>
#include <csignal>

namespace arena {
namespace {

constexpr std::chrono::milliseconds kTick{20};
// How often time-outs are looked at while nothing arrives.
constexpr std::chrono::milliseconds kPatience{20};
// Far more than two teams with their substitutes; keeps memory bounded.
constexpr std::size_t kMaxAgents = 64;
constexpr std::size_t kMaxMonitors = 32;

// As in the league's server: while a part of an agent's frame is not sent, those after it are
// dropped.
constexpr FramedConnection::Limits kAgentLimits{
    .frame_length = std::size_t{64} << 10, .queue = 64, .unsent = 0};
constexpr FramedConnection::Limits kMonitorLimits{
    .frame_length = std::size_t{64} << 10, .queue = 256, .unsent = std::size_t{1} << 20};
// A monitor that has not taken so much is passed over. A full message of 22 robots has some 100 kB,
// so that there is always room for the one that follows.
constexpr std::size_t kMonitorBacklog = std::size_t{512} << 10;

std::string quoted(std::string_view reason) {
  return reason.empty() ? std::string() : " (" + std::string(reason) + ")";
}

}  // namespace

ArenaServer::ArenaServer(Match& match, const ServerOptions& options,
                         std::function<void(const std::string&)> log)
    : match_(match),
      options_(options),
      log_(std::move(log)),
      agentAcceptor_(open(options.agentPort)),
      monitorAcceptor_(open(options.monitorPort)),
      signals_(io_) {
  if (options_.handleSignals) {
    signals_.add(SIGINT);
    signals_.add(SIGTERM);
    signals_.async_wait([this](const boost::system::error_code& error, int) {
      if (!error) stopping_ = true;
    });
  }
  acceptAgent();
  acceptMonitor();
}

ArenaServer::~ArenaServer() {
  closeAll();
}

void ArenaServer::closeAll() {
  for (AgentSession& session : agents_) session.connection->close();
  for (MonitorSession& session : monitors_) session.connection->close();
}

ArenaServer::Tcp::acceptor ArenaServer::open(unsigned short port) {
  return {io_, Tcp::endpoint(boost::asio::ip::make_address(options_.bind), port)};
}

unsigned short ArenaServer::agentPort() const {
  return agentAcceptor_.local_endpoint().port();
}

unsigned short ArenaServer::monitorPort() const {
  return monitorAcceptor_.local_endpoint().port();
}

void ArenaServer::stop() {
  boost::asio::post(io_, [this] { stopping_ = true; });
}

void ArenaServer::acceptAgent() {
  agentAcceptor_.async_accept([this](const boost::system::error_code& error, Tcp::socket socket) {
    if (error == boost::asio::error::operation_aborted) return;
    if (!error && agents_.size() >= kMaxAgents) {
      log_("agent turned away: too many connections");
    } else if (!error) {
      AgentSession& session = agents_.emplace_back();
      session.id = match_.connect();
      session.connection = std::make_shared<FramedConnection>(std::move(socket), kAgentLimits);
      session.waitingSince = Clock::now();
      session.connection->start([this, &session] { onAgentEvent(session); });
    }
    acceptAgent();
  });
}

void ArenaServer::acceptMonitor() {
  monitorAcceptor_.async_accept([this](const boost::system::error_code& error, Tcp::socket socket) {
    if (error == boost::asio::error::operation_aborted) return;
    if (!error && monitors_.size() >= kMaxMonitors) {
      log_("monitor turned away: too many connections");
    } else if (!error) {
      MonitorSession& session = monitors_.emplace_back();
      session.stream = MonitorStream(match_.halfTime());
      session.connection = std::make_shared<FramedConnection>(std::move(socket), kMonitorLimits);
      session.connection->start([this, &session] { onMonitorEvent(session); });
      session.connection->send(session.stream.next(match_.scene(), match_.game(), passWait()));
    }
    acceptMonitor();
  });
}

void ArenaServer::onAgentEvent(AgentSession& session) {
  FramedConnection& connection = *session.connection;
  while (!match_.hasScene(session.id) && connection.waiting() > 0) {
    apply(session);
    session.applied = 1;
  }
  session.waitingSince = Clock::now();
  session.silent = false;
}

void ArenaServer::onMonitorEvent(MonitorSession& session) {
  FramedConnection& connection = *session.connection;
  while (connection.waiting() > 0) {
    match_.trainer().receive(connection.take());
  }
}

std::array<float, 2> ArenaServer::passWait() const {
  const Referee& referee = match_.referee();
  return {referee.passScoreWait(Side::Left), referee.passScoreWait(Side::Right)};
}

bool ArenaServer::clockRuns() const {
  const auto loaded = std::count_if(agents_.begin(), agents_.end(), [this](const auto& session) {
    return !session.connection->ended() && match_.hasScene(session.id);
  });
  return loaded > 0 && (begun_ || loaded >= options_.waitAgents);
}

// Whether the next cycle has a frame for the agent.
bool ArenaServer::frameDue(const AgentSession& session) const {
  return !match_.percept(session.id).empty();
}

// Whether the agent has sent what must be applied before it gets its next frame.
bool ArenaServer::answered(const AgentSession& session) const {
  const long nextFrame = session.given + 1;
  return session.applied + static_cast<long>(session.connection->waiting()) >= nextFrame - 1;
}

bool ArenaServer::everybodyReady() {
  const Clock::time_point now = Clock::now();
  const auto timeout = std::chrono::duration<double>(options_.agentTimeout);
  bool ready = true;
  for (AgentSession& session : agents_) {
    if (session.connection->ended() || session.silent || !frameDue(session)) continue;
    if (answered(session)) continue;
    if (now - session.waitingSince < timeout) {
      ready = false;
      continue;
    }
    session.silent = true;
    if (!session.toldSilent) {
      log_("agent " + std::to_string(session.id) + ": silent, not waited for until it speaks");
    }
    session.toldSilent = true;
  }
  return ready;
}

// Waits a while for something to happen.
void ArenaServer::listen() {
  io_.run_one_for(kPatience);
  // While the clock stands no cycle comes that would carry the end out.
  if (!clockRuns() && match_.trainer().stopReceived()) stopping_ = true;
}

void ArenaServer::waitForAgents() {
  io_.poll();
  while (!stopping_ && !(clockRuns() && everybodyReady())) listen();
}

void ArenaServer::waitForTick() {
  io_.poll();
  while (!stopping_ && !clockRuns()) listen();
  while (!stopping_ && io_.run_one_until(lastTick_ + kTick) > 0) {
  }
  lastTick_ = std::max(Clock::now(), lastTick_ + kTick);
}

void ArenaServer::run() {
  lastTick_ = Clock::now();
  while (!stopping_) {
    options_.realTime ? waitForTick() : waitForAgents();
    if (!stopping_) cycle();
    if (match_.trainer().stopRequested()) stopping_ = true;
    if (options_.duration > 0.0 && match_.game().time >= options_.duration) stopping_ = true;
  }
  closeAll();
}

void ArenaServer::cycle() {
  begun_ = true;
  ++cycles_;
  removeEnded();
  handOver();
  sendPercepts();
  match_.step();
  sendMonitors();
  if (observer_) observer_(report_);
}

void ArenaServer::removeEnded() {
  agents_.remove_if([this](AgentSession& session) {
    if (!session.connection->ended()) return false;
    log_("agent " + std::to_string(session.id) + ": gone" + quoted(session.connection->reason()));
    match_.disconnect(session.id);
    session.connection->close();
    return true;
  });
  monitors_.remove_if([](MonitorSession& session) {
    if (!session.connection->ended()) return false;
    session.connection->close();
    return true;
  });
}

// Hands the message that has waited longest to the match.
void ArenaServer::apply(AgentSession& session) {
  const std::string message = session.connection->take();
  if (wiretap_.applied) wiretap_.applied(session.id, message);
  match_.receive(session.id, message);
}

// In the order of the match, so that it does not matter who was faster.
void ArenaServer::handOver() {
  report_.late.clear();
  for (const Match::AgentId id : match_.agents()) {
    const auto found = std::find_if(agents_.begin(), agents_.end(),
                                    [id](const AgentSession& session) { return session.id == id; });
    if (found == agents_.end()) continue;
    AgentSession& session = *found;
    if (!match_.hasScene(id)) continue;
    if (frameDue(session) && !answered(session)) report_.late.push_back(id);
    // Frame k, which is given in this cycle, comes after messages 1 to k - 1.
    while (session.connection->waiting() > 0 &&
           (options_.realTime || (frameDue(session) && session.applied < session.given))) {
      apply(session);
      ++session.applied;
    }
  }
}

void ArenaServer::sendPercepts() {
  for (AgentSession& session : agents_) {
    if (!frameDue(session)) continue;
    if (!session.connection->send(match_.percept(session.id)) && !session.toldSlow) {
      session.toldSlow = true;
      log_("agent " + std::to_string(session.id) + ": does not read, frames are dropped");
    }
    if (wiretap_.given) wiretap_.given(session.id, match_.percept(session.id));
    ++session.given;
    session.waitingSince = Clock::now();
  }
}

void ArenaServer::sendMonitors() {
  const bool full = match_.trainer().takeFullStateRequest();
  const bool due = cycles_ % MonitorStream::kCyclesPerMessage == 0;
  for (MonitorSession& session : monitors_) {
    if (full) session.stream.requestFull();
    session.stream.noteFouls(match_.referee().fouls());
    if (!due) continue;
    // Who is passed over misses nothing but moments: his stream goes on from what he was sent.
    if (session.connection->unsent() > kMonitorBacklog) {
      if (!session.toldSlow) log_("monitor does not read, messages are dropped");
      session.toldSlow = true;
      continue;
    }
    session.connection->send(session.stream.next(match_.scene(), match_.game(), passWait()));
  }
}

}  // namespace arena
