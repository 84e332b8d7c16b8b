#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "Match/Match.h"
#include "Net/ArenaServer.h"
#include "Net/EventLog.h"
#include "Recording/MatchReport.h"
#include "Recording/PerceptRecord.h"
#include "Recording/RecordingWriter.h"
#include "Trainer/TrainerScript.h"
#include "Wire/Printable.h"

namespace {

// Of a wrong option, how much is repeated.
constexpr std::size_t kShownInput = 60;

// One line on standard error that is rewritten about once a second.
class ProgressLine {
 public:
  explicit ProgressLine(bool quiet) : quiet_(quiet) {}

  void cycle(const arena::Match& match) {
    if (quiet_) return;
    const auto now = Clock::now();
    const double wall = std::chrono::duration<double>(now - last_).count();
    if (wall < 1.0) return;
    const arena::GameState& game = match.game();
    const double speed = first_ ? 0.0 : (match.time() - lastTime_) / wall;
    std::fprintf(stderr, "\r%8.2f s  %d:%d  %-22s %6.1f x real time ", game.time, game.score[0],
                 game.score[1], std::string(nameOf(game.mode)).c_str(), speed);
    std::fflush(stderr);
    shown_ = true;
    first_ = false;
    last_ = now;
    lastTime_ = match.time();
  }

  // A line of its own, without damage to the progress line.
  void log(const std::string& text) {
    if (quiet_) return;
    std::fprintf(stderr, "%s%s\n", shown_ ? "\n" : "", text.c_str());
    shown_ = false;
  }

  void finish() {
    if (shown_) std::fputc('\n', stderr);
  }

 private:
  using Clock = std::chrono::steady_clock;

  bool quiet_;
  bool shown_ = false;
  bool first_ = true;
  Clock::time_point last_ = Clock::now();
  double lastTime_ = 0.0;
};

// Writes down what happens, as far as it is wanted.
class Chronicle {
 public:
  // Empty names: nothing is written. Throws std::runtime_error if one of the files cannot be made.
  Chronicle(const std::string& recording, const std::string& report, const std::string& percepts)
      : reportFile_(report) {
    // Found out now and not after the match. What is there stays until there is a new report.
    if (!report.empty() && !std::ofstream(report, std::ios::app)) refuseReport();
    if (!recording.empty()) writer_.emplace(recording);
    if (!percepts.empty()) percepts_.emplace(percepts);
  }

  // What the server has to tell for it, beside the cycles.
  arena::ArenaServer::Wiretap wiretap() {
    if (!percepts_) return {};
    return {[this](int agent, std::string_view text) { percepts_->frame(agent, text); },
            [this](int agent, std::string_view text) { percepts_->answer(agent, text); }};
  }

  void cycle(const arena::Match& match, const arena::ArenaServer::CycleReport& cycle) {
    const arena::Referee& referee = match.referee();
    if (writer_) writer_->write(match.scene(), match.game(), referee.goals(), referee.fouls());
    if (percepts_) percepts_->endCycle(match.scene());
    if (reportFile_.empty()) return;
    report_.observe(match.scene(), match.game(), referee.goals(), referee.fouls(),
                    referee.lastTouch());
    for (const arena::SceneRobot& robot : match.scene().robots) {
      if (robot.side == arena::Side::None) continue;
      const arena::Match::Calls calls = match.calls(robot.handle);
      report_.noteCalls(robot.side, robot.number, calls.said, calls.heard);
    }
    for (const arena::Match::AgentId agent : cycle.late) {
      for (const arena::SceneRobot& robot : match.scene().robots) {
        if (robot.handle == agent && robot.side != arena::Side::None) {
          report_.noteLateAnswer(robot.side, robot.number);
        }
      }
    }
  }

  // While nothing happens.
  void idle() {
    if (writer_) writer_->keepFresh();
  }

  // Throws std::runtime_error if something could not be written.
  void finish() {
    const bool recorded = !writer_ || writer_->close();
    const bool perceived = !percepts_ || percepts_->close();
    if (!reportFile_.empty() && !report_.write(reportFile_)) refuseReport();
    if (!recorded) throw std::runtime_error("the recording is incomplete");
    if (!perceived) throw std::runtime_error("the record of the percepts is incomplete");
  }

 private:
  [[noreturn]] void refuseReport() const {
    throw std::runtime_error("cannot write the report " + reportFile_ + ": " +
                             std::strerror(errno));
  }

  std::optional<arena::RecordingWriter> writer_;
  std::optional<arena::PerceptRecord> percepts_;
  arena::MatchReport report_;
  std::string reportFile_;
};

// Throws std::runtime_error if the file cannot be read or understood.
arena::TrainerScript readTrainerScript(const std::string& path) {
  if (path.empty()) return {};
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read the trainer script " + path);
  return arena::TrainerScript(file);
}

// More than thirty years, in seconds.
constexpr double kLongest = 1e9;

constexpr int kMostThreads = 64;

int threadsOfThisMachine() {
  return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kMostThreads);
}

// Nothing if there is anything but one number.
std::optional<double> numberIn(const std::string& input) {
  double value = 0;
  const char* end = input.data() + input.size();
  const auto [rest, error] = std::from_chars(input.data(), end, value);
  if (error != std::errc() || rest != end) return std::nullopt;
  return value;
}

// A number of seconds, of which there can be only so many.
CLI::Validator seconds(bool orNone) {
  return {[orNone](std::string& input) {
            const std::optional<double> value = numberIn(input);
            if (value && *value <= kLongest && (orNone ? *value >= 0 : *value > 0)) {
              return std::string();
            }
            return "'" + arena::printable(input, kShownInput) + "' is no number of seconds " +
                   (orNone ? "from 0" : "above 0") + " up to 1000000000";
          },
          ""};
}

CLI::Validator percentage() {
  return {[](std::string& input) {
            const std::optional<double> value = numberIn(input);
            if (value && *value >= 0 && *value <= 100) return std::string();
            return "'" + arena::printable(input, kShownInput) + "' is no number from 0 to 100";
          },
          ""};
}

CLI::Validator wholeNumber(std::uint64_t largest, std::uint64_t smallest = 0) {
  return {[smallest, largest](std::string& input) {
            std::uint64_t value = 0;
            const char* end = input.data() + input.size();
            const auto [rest, error] = std::from_chars(input.data(), end, value);
            if (error == std::errc() && rest == end && value >= smallest && value <= largest) {
              input = std::to_string(value);  // with zeros before it, it would be read as octal
              return std::string();
            }
            return "'" + arena::printable(input, kShownInput) + "' is no whole number from " +
                   std::to_string(smallest) + " to " + std::to_string(largest);
          },
          ""};
}

}  // namespace

int main(int argc, char** argv) {
  arena::MatchOptions matchOptions;
  matchOptions.threads = threadsOfThisMachine();
  arena::ServerOptions serverOptions;
  bool noNoise = false;
  bool quiet = false;
  std::string recording;
  std::string report;
  std::string percepts;
  std::string scriptFile;

  CLI::App app{
      "A practice pitch for robot soccer players, on simulated physics. Speaks the protocol of the "
      "league's simulation server: agents connect at one port, trainers and monitors at another."};
  constexpr auto kLastPort = std::numeric_limits<std::uint16_t>::max();
  app.add_option("--agent-port", serverOptions.agentPort, "TCP port for agents; 0: any free one")
      ->capture_default_str()
      ->check(wholeNumber(kLastPort));
  app.add_option("--monitor-port", serverOptions.monitorPort,
                 "TCP port for trainers and monitors; 0: any free one")
      ->capture_default_str()
      ->check(wholeNumber(kLastPort));
  app.add_option("--bind", serverOptions.bind, "IP address to listen at")->capture_default_str();
  CLI::Option* const realTime =
      app.add_flag("--real-time", serverOptions.realTime,
                   "50 cycles a second by the wall clock; default: lockstep, each cycle as soon as "
                   "all agents have answered");
  double lostPercent = 0.0;
  app.add_option("--lose", lostPercent,
                 "of a hundred frames to an agent, and of a hundred messages of it, so many get "
                 "lost after its first second; with --real-time alone")
      ->capture_default_str()
      ->check(percentage())
      ->needs(realTime);
  app.add_option("--agent-timeout", serverOptions.agentTimeout,
                 "lockstep: seconds of silence after which an agent is no longer waited for")
      ->capture_default_str()
      ->check(seconds(false));
  app.add_option("--seed", matchOptions.seed, "seed of all random numbers")
      ->capture_default_str()
      ->check(wholeNumber(std::numeric_limits<std::uint64_t>::max()));
  app.add_option("--duration", serverOptions.duration,
                 "end after so many seconds of game time; 0: never")
      ->capture_default_str()
      ->check(seconds(true));
  app.add_option("--half-time", matchOptions.halfTime, "seconds of game time in one half")
      ->capture_default_str()
      ->check(seconds(false));
  app.add_flag("--auto-kick-off", matchOptions.autoKickOff,
               "kick off without a trainer after a while");
  app.add_flag("--coin-toss", matchOptions.coinToss,
               "draw who kicks off first unless a trainer names a side; default: left");
  app.add_flag("--change-sides", matchOptions.changeSides,
               "the teams change sides at half time, with their scores; agents are not told");
  app.add_option("--wait-agents", serverOptions.waitAgents,
                 "hold the first cycle until so many agents have loaded their scene")
      ->capture_default_str()
      ->check(wholeNumber(arena::ArenaServer::kMaxAgents));
  app.add_option(
         "--threads", matchOptions.threads,
         "that work on a cycle side by side; percepts and recordings do not depend on them. "
         "Default: one for each core")
      ->check(wholeNumber(kMostThreads, 1));
  app.add_flag("--no-noise", noNoise, "exact vision, camera position and beams");
  app.add_flag("--ground-truth", matchOptions.groundTruth,
               "add the terms mypos, myorien and ballpos to what agents see");
  app.add_option("--record", recording,
                 "write every cycle to this file, for viewer and match-picture; what is there can "
                 "be read at any time, and after a crash");
  app.add_option("--record-percepts", percepts,
                 "write what each agent is sent and answers to this directory, for recall");
  app.add_option("--report", report,
                 "at the end write score, goals and sums to this file, as JSON");
  app.add_option("--trainer-script", scriptFile,
                 "trainer commands for given cycles: lines CYCLE COMMANDS, counted from 1");
  app.add_flag("--quiet", quiet, "no progress line, no messages but errors");
  app.footer(
      "Interrupt, terminate and hang-up (SIGINT, SIGTERM, SIGHUP) end the match in order: "
      "recording and\nreport are complete. What clients do over and over is told once and then "
      "counted.");
  CLI11_PARSE(app, argc, argv);

  // Whoever reads the messages may go before the match ends.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    ProgressLine progress(quiet);
    arena::EventLog events([&progress](const std::string& line) { progress.log(line); });
    const auto log = [&events](const std::string& line) { events.note(line); };
    matchOptions.noise = !noNoise;
    matchOptions.realTime = serverOptions.realTime;
    serverOptions.seed = matchOptions.seed;
    serverOptions.lose = lostPercent / 100.0;
    matchOptions.log = log;
    serverOptions.handleSignals = true;
    arena::TrainerScript script = readTrainerScript(scriptFile);
    long cycles = 0;
    arena::Match match(matchOptions);
    // Before any file is touched: a second arena at the same ports must not harm the first one's.
    arena::ArenaServer server(match, serverOptions, log);
    Chronicle chronicle(recording, report, percepts);
    log("agents at port " + std::to_string(server.agentPort()) + ", monitors at port " +
        std::to_string(server.monitorPort()));
    server.setWiretap(chronicle.wiretap());
    script.beforeCycle(cycles, match.trainer());
    server.setObserver([&](const arena::ArenaServer::CycleReport& cycle) {
      chronicle.cycle(match, cycle);
      script.beforeCycle(++cycles, match.trainer());
      progress.cycle(match);
    });
    server.setIdler([&chronicle] { chronicle.idle(); });
    server.run();
    progress.finish();
    events.finish();
    chronicle.finish();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "arena: %s\n", error.what());
    return 1;
  }
}
