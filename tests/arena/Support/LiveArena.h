#ifndef QUOLNARIS_TESTS_ARENA_SUPPORT_LIVEARENA_H_
#define QUOLNARIS_TESTS_ARENA_SUPPORT_LIVEARENA_H_

// An arena in a thread of its own, and clients on real connections to it.

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
#include "Net/ArenaServer.h"

namespace arena {

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
