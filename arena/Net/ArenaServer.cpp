#include "Net/ArenaServer.h"

#include <algorithm>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/post.hpp>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace arena {
namespace {

constexpr std::chrono::milliseconds kTick{20};
// How often time-outs are looked at while nothing arrives.
constexpr std::chrono::milliseconds kPatience{20};
// Of events on the network, how many are dealt with before the match goes on, at most.
constexpr int kMaxEvents = 256;
// How long nobody is let in after that has failed, by a lack of descriptors say.
constexpr std::chrono::milliseconds kAcceptPause{100};
// What a step of the match takes grows with the cube of what lies in one heap. From here on, it is
// worth a word.
constexpr std::chrono::seconds kSlowStep{1};

// As in the league's server: while a part of an agent's frame is not sent, those after it are
// dropped.
constexpr FramedConnection::Limits kAgentLimits{.frameLength = std::size_t{64} << 10,
                                                .queue = 64,
                                                .queueBytes = std::size_t{64} << 10,
                                                .unsent = 0};
constexpr FramedConnection::Limits kMonitorLimits{.frameLength = std::size_t{64} << 10,
                                                  .queue = 256,
                                                  .queueBytes = std::size_t{64} << 10,
                                                  .unsent = std::size_t{1} << 20};
// A monitor that has not taken so much is passed over. A full message of 22 robots has some 100 kB,
// so that there is always room for the one that follows.
constexpr std::size_t kMonitorBacklog = std::size_t{512} << 10;

// With fewer threads the players keep the other core busy, and for fewer agents waking a thread
// that reads what they send takes longer than reading it afterwards.
constexpr int kThreadsWorthEvents = 3;
constexpr std::size_t kAgentsWorthEvents = 4;

// A share lasts until its frames or its bytes are used up; the frame with which that happens may go
// beyond. Of an agent without a robot only its scene matters.
constexpr std::size_t kSceneFrames = 8;
constexpr std::size_t kSceneBytes = std::size_t{4} << 10;
// All monitors together get three quarters of what the trainer can take in a cycle, so that there
// is always room for a script's commands.
constexpr std::size_t kTrainerFrames = Trainer::kMaxFrames / ArenaServer::kMaxMonitors * 3 / 4;
constexpr std::size_t kTrainerBytes =
    Trainer::kMaxBytes / ArenaServer::kMaxMonitors * 3 / 4 - kMonitorLimits.frameLength;

std::string inBrackets(std::string_view reason) {
  return reason.empty() ? std::string() : " (" + std::string(reason) + ")";
}

// Whether a hang-up was to be ignored when the program was started, as nohup has it.
bool hangUpIgnored() {
  struct sigaction action {};
  return sigaction(SIGHUP, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

ArenaServer::ArenaServer(Match& match, const ServerOptions& options,
                         std::function<void(const std::string&)> log)
    : match_(match),
      options_(options),
      losses_(options.seed, "losses"),
      log_(std::move(log)),
      signals_(io_) {
  open(agentDoor_, options_.agentPort);
  open(monitorDoor_, options_.monitorPort);
  if (options_.handleSignals) {
    signals_.add(SIGINT);
    signals_.add(SIGTERM);
    if (!hangUpIgnored()) signals_.add(SIGHUP);
    signals_.async_wait([this](const boost::system::error_code& error, int) {
      if (!error) stopping_ = true;
    });
  }
  agentDoor_.enter = [this](Tcp::socket socket) { addAgent(std::move(socket)); };
  monitorDoor_.enter = [this](Tcp::socket socket) { addMonitor(std::move(socket)); };
  accept(agentDoor_);
  accept(monitorDoor_);
  if (match_.workers().threads() >= kThreadsWorthEvents) eventThread_.emplace(io_);
}

ArenaServer::~ArenaServer() {
  closeAll();
}

void ArenaServer::closeAll() {
  for (AgentSession& session : agents_) session.connection->close();
  for (MonitorSession& session : monitors_) session.connection->close();
}

void ArenaServer::open(Door& door, unsigned short port) {
  boost::system::error_code error;
  const auto address = boost::asio::ip::make_address(options_.bind, error);
  if (error) {
    throw std::runtime_error("cannot listen at '" + options_.bind + "': that is no IP address");
  }
  const Tcp::endpoint place(address, port);
  door.acceptor.open(place.protocol(), error);
  if (!error) door.acceptor.set_option(Tcp::acceptor::reuse_address(true), error);
  if (!error) door.acceptor.bind(place, error);
  if (!error) door.acceptor.listen(Tcp::acceptor::max_listen_connections, error);
  if (error) {
    throw std::runtime_error("cannot listen for " + std::string(door.who) + "s at " +
                             options_.bind + " port " + std::to_string(port) + ": " +
                             error.message());
  }
}

unsigned short ArenaServer::agentPort() const {
  return agentDoor_.acceptor.local_endpoint().port();
}

unsigned short ArenaServer::monitorPort() const {
  return monitorDoor_.acceptor.local_endpoint().port();
}

void ArenaServer::stop() {
  boost::asio::post(io_, [this] { stopping_ = true; });
}

void ArenaServer::accept(Door& door) {
  door.acceptor.async_accept(
      [this, &door](const boost::system::error_code& error, Tcp::socket socket) {
        if (error == boost::asio::error::operation_aborted) return;
        if (!error) {
          const auto guest = std::make_shared<Tcp::socket>(std::move(socket));
          onceStill([this, &door, guest] {
            door.enter(std::move(*guest));
            accept(door);
          });
          return;
        }
        // The one who waits at the door would make the next try fail as well.
        onceStill([this, &door, error] {
          log_(std::string(door.who) + " cannot be let in: " + error.message());
        });
        door.pause.expires_after(kAcceptPause);
        door.pause.async_wait([this, &door](const boost::system::error_code& cancelled) {
          if (!cancelled) accept(door);
        });
      });
}

void ArenaServer::addAgent(Tcp::socket socket) {
  if (agents_.size() >= kMaxAgents) removeEnded();
  if (agents_.size() >= kMaxAgents) {
    log_("agent turned away: too many connections");
    return;
  }
  AgentSession& session = agents_.emplace_back();
  session.id = match_.connect();
  session.connection = std::make_shared<FramedConnection>(std::move(socket), kAgentLimits);
  session.waitingSince = Clock::now();
  session.connection->start([this, &session] {
    session.heard = true;
    if (!calculating_) dealWith(session);
  });
}

void ArenaServer::addMonitor(Tcp::socket socket) {
  if (monitors_.size() >= kMaxMonitors) removeEnded();
  if (monitors_.size() >= kMaxMonitors) {
    log_("monitor turned away: too many connections");
    return;
  }
  MonitorSession& session = monitors_.emplace_back();
  session.stream = MonitorStream(match_.halfTime());
  session.connection = std::make_shared<FramedConnection>(std::move(socket), kMonitorLimits);
  session.connection->start([this, &session] {
    session.heard = true;
    if (!calculating_) dealWith(session);
  });
  session.connection->send(session.stream.next(match_.scene(), match_.game(), passWait()));
}

bool ArenaServer::within(const Share& used, const Share& limit) {
  return used.frames < limit.frames && used.bytes < limit.bytes;
}

std::string ArenaServer::take(FramedConnection& connection, Share& used) {
  std::string frame = connection.take();
  ++used.frames;
  used.bytes += frame.size();
  return frame;
}

void ArenaServer::dealWith(AgentSession& session) {
  if (!std::exchange(session.heard, false)) return;
  readForScene(session);
  if (!options_.realTime) catchUp(session);
  session.waitingSince = Clock::now();
  session.silent = false;
}

void ArenaServer::apply(const AgentSession& session, const std::string& message) {
  if (wiretap_.applied) wiretap_.applied(session.id, message);
  match_.receive(session.id, message);
}

void ArenaServer::catchUp(AgentSession& session) {
  FramedConnection& connection = *session.connection;
  while (connection.waiting() > 0 && session.applied + session.forgiven + 1 < session.given) {
    apply(session, connection.take());
    ++session.applied;
  }
}

void ArenaServer::readForScene(AgentSession& session) {
  FramedConnection& connection = *session.connection;
  while (!match_.hasScene(session.id) && connection.waiting() > 0 &&
         within(session.used, {kSceneFrames, kSceneBytes})) {
    apply(session, take(connection, session.used));
    session.applied = 1;
  }
}

void ArenaServer::readCommands(MonitorSession& session) {
  FramedConnection& connection = *session.connection;
  while (connection.waiting() > 0 && within(session.used, {kTrainerFrames, kTrainerBytes})) {
    if (match_.trainer().receive(take(connection, session.used)) || session.toldDropping) continue;
    session.toldDropping = true;
    log_("monitor sends more commands than can wait, some are dropped");
  }
}

void ArenaServer::dealWith(MonitorSession& session) {
  if (std::exchange(session.heard, false)) readCommands(session);
}

// With each cycle; while the clock stands there is none, and what comes is read at once.
void ArenaServer::renewShares() {
  for (AgentSession& session : agents_) {
    session.used = {};
    readForScene(session);
  }
  for (MonitorSession& session : monitors_) {
    session.used = {};
    readCommands(session);
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

// Messages that have arrived from the agent.
long ArenaServer::received(const AgentSession& session) {
  return session.applied + static_cast<long>(session.connection->waiting());
}

// Whether nothing is waited for any more before the agent gets its next frame.
bool ArenaServer::answered(const AgentSession& session) {
  return received(session) + session.forgiven >= session.given;
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
    session.silent = session.timedOut = true;
    session.forgiven = session.given - received(session);
    if (!session.toldSilent) {
      log_("agent " + std::to_string(session.id) + ": silent, not waited for until it speaks");
    }
    session.toldSilent = true;
  }
  return ready;
}

// Deals with what has happened on the network.
void ArenaServer::pollEvents() {
  for (int i = 0; i < kMaxEvents && io_.poll_one() > 0; ++i) {
  }
}

// Waits a while for something to happen.
void ArenaServer::listen() {
  io_.run_one_for(kPatience);
  if (idler_) idler_();
  if (clockRuns()) return;
  // No cycle comes that would do this.
  renewShares();
  removeEnded();
  if (match_.trainer().stopReceived()) stopping_ = true;
}

void ArenaServer::waitForAgents() {
  pollEvents();
  while (!stopping_ && !(clockRuns() && everybodyReady())) listen();
}

void ArenaServer::waitForTick() {
  pollEvents();
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
  stepMatch();
  renewShares();
  sendMonitors();
  if (observer_) observer_(report_);
}

void ArenaServer::onceStill(std::function<void()> deed) {
  if (calculating_) {
    deferred_.push_back(std::move(deed));
  } else {
    deed();
  }
}

void ArenaServer::stepBesideSockets() {
  calculating_ = true;
  eventThread_->begin();
  match_.step();
  eventThread_->end();
  calculating_ = false;
  for (AgentSession& session : agents_) dealWith(session);
  for (MonitorSession& session : monitors_) dealWith(session);
  for (const auto& deed : std::exchange(deferred_, {})) deed();
}

void ArenaServer::stepMatch() {
  const Clock::time_point start = Clock::now();
  if (eventThread_ && agents_.size() >= kAgentsWorthEvents) {
    stepBesideSockets();
  } else {
    match_.step();
  }
  const std::chrono::duration<double> taken = Clock::now() - start;
  if (taken < kSlowStep || std::exchange(toldSlowStep_, true)) return;
  char text[100];
  std::snprintf(text, sizeof text, "a cycle took %.1f s: many robots lie in one heap",
                taken.count());
  log_(text);
}

void ArenaServer::removeEnded() {
  agents_.remove_if([this](AgentSession& session) {
    if (!session.connection->ended()) return false;
    log_("agent " + std::to_string(session.id) + ": gone" +
         inBrackets(session.connection->reason()));
    match_.disconnect(session.id);
    session.connection->close();
    return true;
  });
  monitors_.remove_if([](MonitorSession& session) {
    // What a trainer has said before he left counts.
    if (!session.connection->ended() || session.connection->waiting() > 0) return false;
    session.connection->close();
    return true;
  });
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
    const bool late = std::exchange(session.timedOut, false) || !answered(session);
    if (frameDue(session) && late) report_.late.push_back(id);
    // A late answer that has come after all is owed no more.
    session.forgiven = std::clamp(session.given - received(session), 0L, session.forgiven);
    // Frame k, which is given in this cycle, comes after messages 1 to k - 1.
    while (session.connection->waiting() > 0 &&
           (options_.realTime || (frameDue(session) && session.applied < session.given))) {
      const std::string message = session.connection->take();
      if (!getsLost(session)) apply(session, message);
      ++session.applied;
    }
  }
}

bool ArenaServer::getsLost(const AgentSession& session) {
  return options_.lose > 0.0 && session.applied >= kNeverLost && losses_.uniform() < options_.lose;
}

void ArenaServer::sendPercepts() {
  std::vector<AgentSession*> due;
  for (AgentSession& session : agents_) {
    if (!frameDue(session)) continue;
    if (!getsLost(session)) {
      due.push_back(&session);
    } else if (wiretap_.given) {
      wiretap_.given(session.id, "");
    }
  }
  std::vector<char> sent(due.size());
  // Each touches its session alone.
  match_.workers().run(due.size(), [&](std::size_t i) {
    sent[i] = due[i]->connection->send(match_.percept(due[i]->id));
  });
  for (std::size_t i = 0; i < due.size(); ++i) noteSent(*due[i], sent[i] != 0);
}

void ArenaServer::noteSent(AgentSession& session, bool sent) {
  if (wiretap_.given) wiretap_.given(session.id, sent ? match_.percept(session.id) : "");
  if (sent) {
    ++session.given;
  } else if (!std::exchange(session.toldSlow, true)) {
    log_("agent " + std::to_string(session.id) + ": does not read, frames are dropped");
  }
  session.waitingSince = Clock::now();
}

void ArenaServer::sendMonitors() {
  const bool full = match_.trainer().takeFullStateRequest();
  const bool due = cycles_ % MonitorStream::kCyclesPerMessage == 0;
  std::vector<MonitorSession*> served;
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
    served.push_back(&session);
  }
  // Each touches its session alone.
  match_.workers().run(served.size(), [&](std::size_t i) {
    MonitorSession& session = *served[i];
    session.connection->send(session.stream.next(match_.scene(), match_.game(), passWait()));
  });
}

}  // namespace arena
