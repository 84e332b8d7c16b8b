#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Match/Match.h"
#include "Net/ArenaServer.h"
#include "Recording/MatchReport.h"
#include "Recording/PerceptRecord.h"
#include "Recording/RecordingWriter.h"

namespace {

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
  // Empty names: nothing is written. Throws std::runtime_error if the recording cannot be made.
  Chronicle(const std::string& recording, const std::string& report, const std::string& percepts)
      : reportFile_(report) {
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

  // Throws std::runtime_error if something could not be written.
  void finish() {
    if (writer_ && !writer_->close()) throw std::runtime_error("the recording is incomplete");
    if (percepts_ && !percepts_->close()) {
      throw std::runtime_error("the record of the percepts is incomplete");
    }
    if (!reportFile_.empty() && !report_.write(reportFile_)) {
      throw std::runtime_error("cannot write the report " + reportFile_);
    }
  }

 private:
  std::optional<arena::RecordingWriter> writer_;
  std::optional<arena::PerceptRecord> percepts_;
  arena::MatchReport report_;
  std::string reportFile_;
};

}  // namespace

int main(int argc, char** argv) {
  arena::MatchOptions matchOptions;
  arena::ServerOptions serverOptions;
  bool noNoise = false;
  bool quiet = false;
  std::string recording;
  std::string report;
  std::string percepts;

  CLI::App app{
      "A practice pitch for robot soccer players, on simulated physics. Speaks the protocol of the "
      "league's simulation server: agents connect at one port, trainers and monitors at another."};
  app.add_option("--agent-port", serverOptions.agentPort, "TCP port for agents; 0: any free one")
      ->capture_default_str();
  app.add_option("--monitor-port", serverOptions.monitorPort,
                 "TCP port for trainers and monitors; 0: any free one")
      ->capture_default_str();
  app.add_option("--bind", serverOptions.bind, "address to listen at")->capture_default_str();
  app.add_flag("--real-time", serverOptions.realTime,
               "50 cycles a second by the wall clock; default: lockstep, each cycle as soon as all "
               "agents have answered");
  app.add_option("--agent-timeout", serverOptions.agentTimeout,
                 "lockstep: seconds of silence after which an agent is no longer waited for")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  app.add_option("--seed", matchOptions.seed, "seed of all random numbers")->capture_default_str();
  app.add_option("--duration", serverOptions.duration,
                 "end after so many seconds of game time; 0: never")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  app.add_option("--half-time", matchOptions.halfTime, "seconds of game time in one half")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  app.add_flag("--auto-kick-off", matchOptions.autoKickOff,
               "kick off without a trainer after a while");
  app.add_flag("--coin-toss", matchOptions.coinToss,
               "draw who kicks off first unless a trainer names a side; default: left");
  app.add_flag("--change-sides", matchOptions.changeSides,
               "the teams change sides at half time, with their scores; agents are not told");
  app.add_option("--wait-agents", serverOptions.waitAgents,
                 "hold the first cycle until so many agents have loaded their scene")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  app.add_flag("--no-noise", noNoise, "exact vision, camera position and beams");
  app.add_flag("--ground-truth", matchOptions.groundTruth,
               "add the terms mypos, myorien and ballpos to what agents see");
  app.add_option("--record", recording,
                 "write every cycle to this file, for viewer and match-picture");
  app.add_option("--record-percepts", percepts,
                 "write what each agent is sent and answers to this directory, for recall");
  app.add_option("--report", report,
                 "at the end write score, goals and sums to this file, as JSON");
  app.add_flag("--quiet", quiet, "no progress line, no messages but errors");
  CLI11_PARSE(app, argc, argv);

  try {
    ProgressLine progress(quiet);
    const auto log = [&progress](const std::string& text) { progress.log(text); };
    matchOptions.noise = !noNoise;
    matchOptions.realTime = serverOptions.realTime;
    matchOptions.log = log;
    serverOptions.handleSignals = true;
    Chronicle chronicle(recording, report, percepts);
    arena::Match match(matchOptions);
    arena::ArenaServer server(match, serverOptions, log);
    log("agents at port " + std::to_string(server.agentPort()) + ", monitors at port " +
        std::to_string(server.monitorPort()));
    server.setWiretap(chronicle.wiretap());
    server.setObserver([&](const arena::ArenaServer::CycleReport& cycle) {
      chronicle.cycle(match, cycle);
      progress.cycle(match);
    });
    server.run();
    progress.finish();
    chronicle.finish();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "arena: %s\n", error.what());
    return 1;
  }
}
