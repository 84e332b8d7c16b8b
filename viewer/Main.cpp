// Shows a match in the browser: a recorded one, or one that is running.

#include <CLI/CLI.hpp>
#include <boost/asio/signal_set.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "Minds.h"
#include "Page.h"
#include "Sources.h"
#include "Viewer.h"

namespace {

namespace fs = std::filesystem;

struct Options {
  std::string recording;
  std::string monitor;
  std::string output;
  bool readOnly = false;
  viewer::WebServer::Options server;
  viewer::Minds::Options minds;
};

struct Address {
  std::string host;
  std::string port;
};

// "host:port", "[v6]:port", or a host alone, which then is asked at the league's port.
Address addressOf(const std::string& text) {
  constexpr const char* kMonitorPort = "3200";
  const std::size_t colon = text.rfind(':');
  const bool bracket = text.starts_with("[");
  const bool hasPort = colon != std::string::npos && (!bracket || text[colon - 1] == ']');
  Address address{hasPort ? text.substr(0, colon) : text,
                  hasPort ? text.substr(colon + 1) : kMonitorPort};
  if (bracket && address.host.ends_with("]")) {
    address.host = address.host.substr(1, address.host.size() - 2);
  }
  if (address.host.empty() || address.port.empty() ||
      address.port.find_first_not_of("0123456789") != std::string::npos) {
    throw std::runtime_error("'" + text + "' is no HOST:PORT");
  }
  return address;
}

void requirePage() {
  if (viewer::builtPage().empty()) {
    throw std::runtime_error(
        "this program was built without its page: install node and npm, and build it again");
  }
}

void exportPage(const Options& options, const viewer::Film& film, viewer::Minds& minds) {
  std::vector<viewer::NamedMind> known;
  for (const std::string& player : minds.players()) {
    std::fprintf(stderr, "viewer: bringing back what %s believed\n", player.c_str());
    const viewer::Minds::State state = minds.wait(player);
    if (state.kind != viewer::Minds::State::Kind::Ready) {
      throw std::runtime_error(player + ": " + state.content);
    }
    known.emplace_back(player, state.content);
  }
  const std::string page = viewer::pageWithFilm(film, known);
  std::ofstream file(options.output, std::ios::binary);
  file << page;
  if (!file.flush()) throw std::runtime_error("cannot write " + options.output);
  std::printf("%s: %zu cycles, %.1f MB\n", options.output.c_str(), film.cycles(),
              static_cast<double>(page.size()) / 1e6);
}

// Serves until it is interrupted.
void serve(boost::asio::io_context& io, const Options& options, unsigned short port) {
  const std::string& bind = options.server.bind;
  const bool everywhere = bind == "0.0.0.0" || bind == "::";
  const std::string host = everywhere                            ? "localhost"
                           : bind.find(':') != std::string::npos ? "[" + bind + "]"
                                                                 : bind;
  std::printf("viewer: http://%s:%u/\n", host.c_str(), port);
  std::fflush(stdout);
  boost::asio::signal_set signals(io, SIGINT, SIGTERM);
  signals.async_wait([&io](const boost::system::error_code& error, int) {
    if (!error) io.stop();
  });
  io.run();
}

void run(Options& options) {
  boost::asio::io_context io;
  requirePage();
  if (!options.monitor.empty()) {
    const Address address = addressOf(options.monitor);
    viewer::Viewer shown(io, options.server, address.host, address.port, options.readOnly);
    return serve(io, options, shown.port());
  }
  viewer::Minds minds(options.minds);
  const viewer::Film film = viewer::filmOfRecording(options.recording);
  for (const viewer::Mark& mark : film.marks()) {
    if (mark.kind == viewer::Mark::Kind::Note) {
      std::fprintf(stderr, "viewer: %s: %s (after %zu cycles)\n", options.recording.c_str(),
                   mark.text.c_str(), mark.cycle);
    }
  }
  if (!options.output.empty()) return exportPage(options, film, minds);
  viewer::Viewer shown(io, options.server, film, minds);
  serve(io, options, shown.port());
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{
      "Shows a match in the browser, live or recorded: opens a port at this machine and prints the "
      "address.\n\n"
      "  viewer --monitor localhost:3200          a running match, at the monitor port of its "
      "server\n"
      "  viewer match.rec                         a recording that arena --record has written\n"
      "  viewer --export match.html match.rec     one file that opens without a server"};
  auto* const recording =
      app.add_option("recording", options.recording, "recording of a match, by arena --record");
  auto* const monitor =
      app.add_option("--monitor", options.monitor, "HOST:PORT of a running server's monitor port");
  app.add_option("--export", options.output, "write one file with page and match, and end")
      ->needs(recording)
      ->excludes(monitor);
  app.add_option(
         "--percepts", options.minds.record,
         "directory of arena --record-percepts of the same match: shows what players believe")
      ->needs(recording)
      ->excludes(monitor);
  app.add_option("--configs", options.minds.configs,
                 "configuration that the players had, for --percepts")
      ->capture_default_str();
  app.add_flag("--read-only", options.readOnly, "live: nobody can command the match");
  app.add_option("--port", options.server.port, "port to listen at; 0: any free one")
      ->capture_default_str();
  app.add_option("--bind", options.server.bind,
                 "address to listen at; 0.0.0.0: every address of this machine")
      ->capture_default_str();
  app.add_option("--host-name", options.server.hostNames,
                 "a further name by which browsers may ask for this machine");
  monitor->excludes(recording);
  options.minds.configs = "Configs";
  CLI11_PARSE(app, argc, argv);

  try {
    if (options.recording.empty() == options.monitor.empty()) {
      throw std::runtime_error("name a recording, or a server by --monitor; see --help");
    }
    options.minds.program = (fs::read_symlink("/proc/self/exe").parent_path() / "recall").string();
    run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "viewer: %s\n", error.what());
    return 1;
  }
  return 0;
}
