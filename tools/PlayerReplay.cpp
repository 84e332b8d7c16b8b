#include "PlayerReplay.h"

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "Wire/Frame.h"
#include "Wire/SExpression.h"
#include "WorldModel/Game.h"

namespace {

namespace asio = boost::asio;
using Tcp = asio::ip::tcp;

// The handshake of OurPlayer::run: scene, init and ten beams.
constexpr int kBeams = 10;
// The types of robots go from 0 to below this.
constexpr int kTypes = 5;
// Frames beyond the record, for a decision that asks for more than was given; it is not watched.
constexpr int kSpareFrames = 16;
constexpr std::uint32_t kLongestAnswer = 1 << 20;
// The answers have been sent when they are asked for; so long at most they are under way.
constexpr std::chrono::milliseconds kSilence{200};

// The server's end of the link: sends the frames as fast as they are taken, and keeps what comes.
class Server {
 public:
  explicit Server(const std::vector<std::string>& frames)
      : acceptor_(io_, Tcp::endpoint(asio::ip::address_v4::loopback(), 0)), socket_(io_) {
    for (const std::string& frame : frames) {
      // An empty one was not sent.
      if (!frame.empty()) append(frame);
    }
    for (int i = 0; i < kSpareFrames && !frames.empty(); ++i) append(frames.back());
  }
  ~Server() {
    boost::system::error_code ignored;
    socket_.shutdown(Tcp::socket::shutdown_both, ignored);
    for (std::thread& thread : threads_) thread.join();
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  int port() const { return acceptor_.local_endpoint().port(); }

  // REQUIRES: the player has connected.
  void start() {
    acceptor_.accept(socket_);
    threads_[0] = std::thread([this] { send(); });
    threads_[1] = std::thread([this] { receive(); });
  }

  // All answers, when no more come.
  std::vector<std::string> answers() {
    std::size_t before = 0;
    for (;;) {
      std::this_thread::sleep_for(kSilence);
      const std::lock_guard lock(mutex_);
      if (answers_.size() == before) return answers_;
      before = answers_.size();
    }
  }

 private:
  void append(const std::string& frame) {
    const auto prefix = arena::framePrefix(frame.size());
    stream_.append(prefix.data(), prefix.size()).append(frame);
  }
  void send() {
    boost::system::error_code ended;
    asio::write(socket_, asio::buffer(stream_), ended);
  }
  void receive() {
    boost::system::error_code ended;
    for (;;) {
      std::array<unsigned char, 4> prefix{};
      asio::read(socket_, asio::buffer(prefix), ended);
      std::uint32_t length = 0;
      for (const unsigned char byte : prefix) length = length << 8 | byte;
      if (ended || length > kLongestAnswer) return;
      std::string text(length, '\0');
      asio::read(socket_, asio::buffer(text), ended);
      if (ended) return;
      const std::lock_guard lock(mutex_);
      answers_.push_back(std::move(text));
    }
  }

  asio::io_context io_;
  Tcp::acceptor acceptor_;
  Tcp::socket socket_;
  std::string stream_;
  std::mutex mutex_;
  std::vector<std::string> answers_;
  std::array<std::thread, 2> threads_;
};

// A player's parts are made for the life of the process, so what holds them stays too.
OurPlayer& makePlayer(const PlayerIdentity& identity, int port) {
  static auto& players = *new std::vector<OurPlayer*>;
  std::vector<std::string> words = {"quolnaris",
                                    "--host",
                                    "127.0.0.1",
                                    "--player-port",
                                    std::to_string(port),
                                    "--team",
                                    identity.team,
                                    "--number",
                                    std::to_string(identity.number),
                                    "--type",
                                    std::to_string(identity.type)};
  std::vector<char*> arguments;
  arguments.reserve(words.size());
  for (std::string& word : words) arguments.push_back(word.data());
  players.push_back(new OurPlayer(static_cast<int>(arguments.size()), arguments.data()));
  players.back()->publish();
  return *players.back();
}

// Tells which frames the player has taken in: each has a text of its own, by its time.
class Progress {
 public:
  Progress(const std::vector<std::string>& frames, const ReplayWatch& watch)
      : frames_(frames), watch_(watch) {}

  // After the player has taken in one frame or several.
  void taken(OurPlayer& player, bool decided) {
    while (next_ < frames_.size() && frames_[next_] != player.msg) {
      watch_(player, {next_++, false});
    }
    if (next_ < frames_.size()) watch_(player, {next_++, decided});
  }
  bool ended() const { return next_ >= frames_.size(); }

 private:
  const std::vector<std::string>& frames_;
  const ReplayWatch& watch_;
  std::size_t next_ = 0;
};

}  // namespace

PlayerIdentity identityOf(const std::vector<std::string>& answers) {
  PlayerIdentity identity;
  bool scene = false;
  for (const std::string& answer : answers) {
    arena::SExpression expression;
    expression.read(answer);
    for (const auto term : expression) {
      if (term.name() == "scene") {
        identity.type = term.child(2).integer();
        scene = true;
      } else if (term.name() == "init") {
        identity.number = term.find("unum").child(1).integer();
        identity.team = std::string(term.find("teamname").child(1).text());
      }
    }
    const bool known = identity.number >= 1 && identity.number <= kPlayers && identity.type >= 0 &&
                       identity.type < kTypes && !identity.team.empty();
    if (scene && known) return identity;
  }
  throw std::runtime_error("the record does not tell who the player was");
}

std::vector<std::string> replayPlayer(const PlayerIdentity& identity,
                                      const std::vector<std::string>& frames,
                                      const ReplayWatch& watch) {
  Server server(frames);
  OurPlayer& player = makePlayer(identity, server.port());
  Progress progress(frames, watch);
  player.initConnection();
  server.start();

  player.sendRsg();
  progress.taken(player, false);
  player.sendInit();
  progress.taken(player, false);
  while (player.beamCounter++ < kBeams) {
    player.sendBeam();
    progress.taken(player, false);
  }
  // As in OurPlayer::run, but for the end.
  while (!progress.ended() && player.connection->getMessage(player.msg)) {
    player.cycle();
    player.connection->sendMessage(player.command->getFinal());
    player.command->clear();
    progress.taken(player, true);
  }
  return server.answers();
}

std::size_t firstDifference(const std::vector<std::string>& recorded,
                            const std::vector<std::string>& replayed) {
  const std::size_t compared = std::min(recorded.size(), replayed.size());
  for (std::size_t i = 0; i < compared; ++i) {
    if (recorded[i] != replayed[i]) return i;
  }
  return compared;
}
