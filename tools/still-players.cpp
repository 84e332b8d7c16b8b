// A team that only stands: opponents that are in the way and do nothing.

#include <CLI/CLI.hpp>
#include <array>
#include <boost/asio.hpp>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iostream>
#include <list>
#include <string>
#include <vector>

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

// Answers that ask for the place. The first ones may come before the number has been accepted.
constexpr int kBeams = 20;
constexpr std::uint32_t kLongestFrame = 1U << 20U;

// Where the numbers 1 to 11 stand: metres in the frame of a team that plays towards +x.
struct Place {
  double x;
  double y;
};
constexpr std::array<Place, 11> kPlaces = {{{-14.2, 0.0},
                                            {-12.4, -1.8},
                                            {-12.4, 1.8},
                                            {-9.0, -3.4},
                                            {-9.0, 3.4},
                                            {-5.6, 0.0},
                                            {-4.6, 3.6},
                                            {-4.6, -3.6},
                                            {-2.4, 2.6},
                                            {-2.4, -2.6},
                                            {-2.6, 0.0}}};

// One robot: its link, and the answers that it still has to give apart from empty ones.
class StillPlayer {
 public:
  StillPlayer(asio::io_context& io, const tcp::resolver::results_type& server, std::string team,
              int number, int type)
      : socket_(io), team_(std::move(team)), number_(number) {
    asio::connect(socket_, server);
    socket_.set_option(tcp::no_delay(true));
    send("(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")");
    awaitPrefix();
  }

 private:
  void awaitPrefix() {
    asio::async_read(socket_, asio::buffer(prefix_), [this](const auto& error, std::size_t) {
      if (error) return;  // the server has gone, and so does this robot
      std::uint32_t length = 0;
      for (const unsigned char byte : prefix_) length = length << 8U | byte;
      if (length > kLongestFrame) return;
      frame_.resize(length);
      asio::async_read(socket_, asio::buffer(frame_), [this](const auto& failure, std::size_t) {
        if (failure) return;
        answer();
        awaitPrefix();
      });
    });
  }

  void answer() {
    if (answers_ == 0) {
      send("(init (unum " + std::to_string(number_) + ")(teamname " + team_ + "))");
    } else if (answers_ <= kBeams) {
      const Place& place = kPlaces[static_cast<std::size_t>(number_ - 1)];
      char text[64];
      std::snprintf(text, sizeof text, "(beam %.2f %.2f 0)", place.x, place.y);
      send(text);
    } else {
      send("(syn)");
    }
    ++answers_;
  }

  void send(const std::string& text) {
    const auto size = static_cast<std::uint32_t>(text.size());
    std::string frame;
    for (int shift = 24; shift >= 0; shift -= 8) {
      frame.push_back(static_cast<char>(size >> static_cast<unsigned>(shift)));
    }
    frame += text;
    boost::system::error_code gone;  // shows at the next read
    asio::write(socket_, asio::buffer(frame), gone);
  }

  tcp::socket socket_;
  std::string team_;
  int number_;
  int answers_ = 0;
  std::array<unsigned char, 4> prefix_{};
  std::string frame_;
};

}  // namespace

int main(int argc, char** argv) {
  std::string host = "127.0.0.1";
  std::uint16_t port = 3100;
  std::string team = "Still";
  int players = 11;
  std::vector<int> types = {0, 2, 4, 0, 2, 4, 0, 2, 4, 0, 2};

  CLI::App app{
      "Connects a team of robots that are put to their places and then only stand, until the "
      "server "
      "closes their links. The connections are made one after the other."};
  app.add_option("--host", host, "The server")->capture_default_str();
  app.add_option("--port", port, "Its port for players")->capture_default_str();
  app.add_option("--team", team, "The team's name")->capture_default_str();
  app.add_option("--players", players, "How many, from number 1 on")
      ->check(CLI::Range(1, 11))
      ->capture_default_str();
  app.add_option("--types", types, "The robot types of the numbers 1 to 11")
      ->check(CLI::Range(0, 4))
      ->expected(11)
      ->capture_default_str();
  CLI11_PARSE(app, argc, argv);

  try {
    asio::io_context io;
    tcp::resolver resolver(io);
    const auto server = resolver.resolve(host, std::to_string(port));
    std::list<StillPlayer> robots;
    for (int number = 1; number <= players; ++number) {
      robots.emplace_back(io, server, team, number, types[static_cast<std::size_t>(number - 1)]);
    }
    io.run();
  } catch (const std::exception& error) {
    std::cerr << "still-players: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
