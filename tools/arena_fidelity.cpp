// How far the practice arena is from recordings of the league's server, as a table.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "Fidelity/TraceReplay.h"

namespace {

void printHead() {
  std::printf(
      "| scene | compared | rows | joints deg | torso mm | gyro deg/s | acc %% | foot force %% | "
      "ball %% | within |\n"
      "|---|---|---|---|---|---|---|---|---|---|\n");
}

void printRow(const std::string& name, const char* part, const arena::TraceDifference& d) {
  std::printf("| %s | %s | %zu | %.4f | %.3f | %.3f | %.2f | %.2f | %.3f | %s |\n", name.c_str(),
              part, d.rows, d.angle, d.torso * 1000.0, d.gyro, d.accelerometer * 100.0,
              d.footForce * 100.0, d.ball * 100.0, arena::withinTolerance(d) ? "yes" : "no");
}

void printScene(const std::string& path) {
  const arena::Trace trace = arena::readTrace(path);
  const double nudge = arena::nudgeOf(trace.type);
  const std::vector<arena::TraceRow> rows = arena::replayTrace(trace, nudge);
  const std::size_t fall = arena::firstFallContact(rows);
  if (fall < rows.size()) {
    printRow(trace.name, "until a fall's contact", arena::compareTrace(trace, rows, fall));
  }
  const arena::TraceDifference whole = arena::compareTrace(trace, rows, rows.size());
  printRow(trace.name, "whole scene", whole);
  if (nudge == 0.0) return;
  // Without the nudge as well, where that makes or breaks the agreement.
  const std::vector<arena::TraceRow> plain = arena::replayTrace(trace, 0.0);
  const arena::TraceDifference without = arena::compareTrace(trace, plain, plain.size());
  if (arena::withinTolerance(without) == arena::withinTolerance(whole)) return;
  printRow(trace.name, "whole scene, not nudged", without);
}

}  // namespace

int main(int argc, char** argv) {
  std::string directory;
  CLI::App app{
      "Plays recordings of the league's server in the practice arena and prints how far the arena "
      "is from them: root mean squares of the worst channel, accelerometer and foot force as parts "
      "of their recorded range, the ball by the distance it travelled."};
  app.add_option("directory", directory, "directory with recordings, *.csv or *.csv.gz")
      ->required()
      ->check(CLI::ExistingDirectory);
  CLI11_PARSE(app, argc, argv);

  try {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
      if (entry.path().string().find(".csv") != std::string::npos) paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    printHead();
    for (const std::string& path : paths) printScene(path);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "arena_fidelity: %s\n", error.what());
    return 1;
  }
}
