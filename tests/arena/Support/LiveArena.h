#ifndef QUOLNARIS_TESTS_ARENA_SUPPORT_LIVEARENA_H_
#define QUOLNARIS_TESTS_ARENA_SUPPORT_LIVEARENA_H_

// An arena in a thread of its own, and clients on real connections to it.

#include <atomic>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "FramedLink.h"
#include "Net/ArenaServer.h"

namespace arena {

// A client of either port. What it sends to nobody is lost; a receive that gets nothing for ten
// seconds gives nullopt.
class Client {
 public:
  // `receiveBuffer`: bytes that the system keeps for it until it reads; 0: as many as usual.
  explicit Client(unsigned short port, int receiveBuffer = 0)
      : link_("127.0.0.1", port, receiveBuffer) {}

  // Returns whether it could be sent.
  bool sendRaw(std::string_view bytes) {
    try {
      link_.sendRaw(bytes);
      return true;
    } catch (const LinkError&) {
      return false;
    }
  }
  bool send(std::string_view text) { return sendRaw(framed(text)); }
  std::optional<std::string> receive() {
    try {
      return link_.receive();
    } catch (const LinkError&) {
      return std::nullopt;
    }
  }
  bool hasData() const { return link_.hasData(); }
  void close() { link_.close(); }
  // Closes so that the other side sees an error instead of an end.
  void reset() { link_.reset(); }
  // From any thread: whoever waits in a call goes on.
  void shutDown() { link_.shutDown(); }

 private:
  FramedLink link_;
};

// Sends the same frame for as long as it lives, as fast as the other side takes it, in a thread of
// its own.
class Flood {
 public:
  Flood(unsigned short port, std::string_view text) : client_(port) {
    std::string many;
    for (int i = 0; i < 1000; ++i) many += framed(text);
    thread_ = std::thread([this, many] {
      while (client_.sendRaw(many)) {
      }
    });
  }
  ~Flood() {
    client_.shutDown();
    thread_.join();
  }

 private:
  Client client_;
  std::thread thread_;
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

inline bool contains(const std::optional<std::string>& text, const std::string& part) {
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

}  // namespace arena

#endif  // QUOLNARIS_TESTS_ARENA_SUPPORT_LIVEARENA_H_
