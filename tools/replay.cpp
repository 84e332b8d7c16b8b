// Plays recorded percept frames to a player that connects, and measures how fast it answers.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/asio.hpp>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "FrameRecording.h"
#include "FramedLink.h"

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using Clock = std::chrono::steady_clock;

// A player sends twelve messages (scene, init, ten beams) and takes twelve frames before its cycle
// starts: the twelfth frame gets no message of its own, and from the thirteenth on each gets one.
constexpr std::size_t kHandshakeFrames = 12;

struct Options {
  std::string recording;
  std::string bind = "127.0.0.1";
  std::uint16_t port = 3100;
  std::string answers;
  std::size_t frames = 0;
  std::size_t passes = 1;
  double rate = 0;
  double patience = 60;
  bool quiet = false;
};

struct Result {
  std::size_t sent = 0;
  std::size_t received = 0;
  std::vector<double> latencies;  // microseconds, from the thirteenth frame on
  double seconds = 0;             // from the first frame to the last answer
};

// Frame k goes out as soon as k - 1 messages have come in, the first one after the scene message.
void play(FramedLink& player, const std::vector<std::string>& frames, const Options& options,
          std::ofstream* answers, Result& result) {
  const std::size_t total = frames.size() * options.passes;
  const auto period = std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double>(options.rate > 0 ? 1 / options.rate : 0));
  result.latencies.reserve(total);

  const auto take = [&] {
    const std::string message = player.receive();
    ++result.received;
    if (answers != nullptr) *answers << framed(message);
  };

  take();  // the scene message
  const Clock::time_point start = Clock::now();
  Clock::time_point due = start;
  for (std::size_t k = 1; k <= total; ++k) {
    while (result.received + 1 < k) take();
    if (options.rate > 0) {
      std::this_thread::sleep_until(due);
      due = std::max(due + period, Clock::now());
    }
    const Clock::time_point sent = Clock::now();
    player.send(frames[(k - 1) % frames.size()]);
    ++result.sent;
    if (k > kHandshakeFrames) {
      take();
      result.latencies.push_back(
          std::chrono::duration<double, std::micro>(Clock::now() - sent).count());
    }
    if (!options.quiet && k % 1000 == 0) {
      std::cerr << "\rreplay: frame " << k << " of " << total << std::flush;
    }
  }
  while (result.received < std::min(total, kHandshakeFrames)) take();
  result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  if (!options.quiet && total >= 1000) std::cerr << "\n";
}

double percentile(const std::vector<double>& sorted, double p) {
  const auto last = static_cast<double>(sorted.size() - 1);
  return sorted[static_cast<std::size_t>(std::lround(p * last))];
}

void report(Result& result) {
  std::printf("frames sent        %zu\n", result.sent);
  std::printf("answers received   %zu\n", result.received);
  if (!result.latencies.empty()) {
    std::sort(result.latencies.begin(), result.latencies.end());
    std::printf("latency, frame %zu on (microseconds)\n", kHandshakeFrames + 1);
    std::printf("  median           %.1f\n", percentile(result.latencies, 0.5));
    std::printf("  99th percentile  %.1f\n", percentile(result.latencies, 0.99));
    std::printf("  maximum          %.1f\n", result.latencies.back());
  }
  std::printf("time               %.2f s\n", result.seconds);
}

int run(const Options& options) {
  std::vector<std::string> frames = readRecording(options.recording);
  if (options.frames > 0 && options.frames < frames.size()) frames.resize(options.frames);
  if (frames.empty()) throw std::runtime_error(options.recording + " holds no frame");

  std::ofstream answers;
  if (!options.answers.empty()) {
    answers.open(options.answers, std::ios::binary | std::ios::trunc);
    if (!answers) throw std::runtime_error("cannot write " + options.answers);
  }

  asio::io_context io;
  tcp::acceptor acceptor(io, {asio::ip::make_address(options.bind), options.port});
  std::cerr << "replay: " << frames.size() << " frames, waiting for a player on " << options.bind
            << " port " << acceptor.local_endpoint().port() << std::endl;
  tcp::socket socket(io);
  bool connected = false;
  boost::system::error_code error;
  acceptor.async_accept(socket, [&](const boost::system::error_code& e) {
    error = e;
    connected = true;
  });
  io.run_for(std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::duration<double>(options.patience)));
  if (!connected) {
    acceptor.close();
    io.restart();
    io.run();
    throw std::runtime_error("no player connected");
  }
  if (error) throw std::runtime_error("cannot accept a player: " + error.message());

  FramedLink player(socket.release(), "the player", options.patience);
  Result result;
  try {
    play(player, frames, options, answers.is_open() ? &answers : nullptr, result);
  } catch (const std::exception& failure) {
    std::cerr << "replay: " << failure.what() << std::endl;
    report(result);
    return 1;
  }
  report(result);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{
      "Listens on a port, plays a recording of percept frames to the player that connects, "
      "records\n"
      "its answers and reports how fast they came. The frames do not depend on the answers.\n"
      "Frame k goes out as soon as k - 1 messages have come in, the first after the scene "
      "message."};
  app.add_option("recording", options.recording, "recorded frames, plain or gzip")
      ->required()
      ->check(CLI::ExistingFile);
  app.add_option("--port", options.port, "TCP port to listen on, 0 for any free one")
      ->capture_default_str();
  app.add_option("--bind", options.bind, "address to listen on")->capture_default_str();
  app.add_option("--answers", options.answers,
                 "write the player's messages here, framed as on the wire");
  app.add_option("--frames", options.frames, "play only the first so many frames of the recording");
  app.add_option("--passes", options.passes, "play the recording so many times over, on one link")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  app.add_option("--rate", options.rate,
                 "frames a second at most; 0 for as fast as the player answers")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  app.add_option("--patience", options.patience,
                 "seconds to wait for a player and for each message")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  app.add_flag("--quiet", options.quiet, "no progress line");
  CLI11_PARSE(app, argc, argv);

  try {
    return run(options);
  } catch (const std::exception& failure) {
    std::cerr << "replay: " << failure.what() << std::endl;
    return 1;
  }
}
