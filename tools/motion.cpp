// Drives one motion of the player's own code against a running server and reports what it did.

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "MotionCourse.h"
#include "MotionPicture.h"
#include "MotionPlayer.h"
#include "MotionRecord.h"
#include "MotionRun.h"
#include "Motions.h"

namespace {

constexpr const char* kTeam = "Motion";

void writeFile(const std::string& path, const std::string& content) {
  std::ofstream out(path);
  out << content;
  if (!out) throw std::runtime_error("cannot write " + path);
}

void tell(const MotionOptions& options, bool truth, const MotionSummary& s) {
  std::printf("%s, robot type %d, %.1f s (%s)\n", options.motion.c_str(), options.type, s.seconds,
              truth ? "ground truth" : "as believed");
  std::printf("  way      %.2f m: %+.2f m ahead, %+.2f m to the left\n", s.distance, s.forward,
              s.left);
  std::printf("  speed    %+.2f m/s ahead, %+.2f m/s to the left, %+.1f deg/s\n", s.forwardSpeed,
              s.leftSpeed, s.turnRate);
  std::printf("  turned   %+.1f deg\n", s.turned);
  if (s.cyclesToEnd >= 0) std::printf("  complete after %d cycles\n", s.cyclesToEnd);
  std::printf("  falls    %d", s.falls);
  if (s.firstFall >= 0) std::printf(", the first after %.2f s", s.firstFall * 0.02);
  std::printf("; tilted %.0f deg at the end\n", s.endTilt);
  if (s.ballDistance > 0) {
    std::printf("  ball     %.2f m away, at %+.1f deg\n", s.ballDistance, s.ballDirection);
  }
}

void list(const MotionOptions& options) {
  for (const MotionKind& kind : allMotions(options, MotionPlace())) {
    std::printf("%-16s %s\n", kind.name, kind.help);
  }
  std::printf(
      "%-16s %s\n", kCourse,
      "the long stride at --speed (play on: 0.3) along a row of points drawn by --seed, with "
      "stops and starts; --reach, --no-stops; needs the ground truth");
}

// The command line of the player's own start.
std::unique_ptr<MotionPlayer> makePlayer(const MotionOptions& options, MotionTrainer* trainer) {
  std::vector<std::string> words = {"motion",
                                    "--host",
                                    options.host,
                                    "--player-port",
                                    std::to_string(options.agentPort),
                                    "--team",
                                    kTeam,
                                    "--number",
                                    std::to_string(options.number),
                                    "--type",
                                    std::to_string(options.type)};
  std::vector<char*> argv;
  argv.reserve(words.size());
  for (std::string& word : words) argv.push_back(word.data());
  return std::make_unique<MotionPlayer>(static_cast<int>(argv.size()), argv.data(), trainer,
                                        options.noise, options.seed);
}

void tellCourse(const MotionOptions& options, const CourseSummary& s) {
  if (options.csv) {
    std::cout << courseHeader() << courseLine(options.type, options.seed, s);
    return;
  }
  std::printf("course %u, robot type %d: %d points in %.1f s\n", options.seed, options.type,
              s.points, s.seconds);
  std::printf("  way      %.2f m of the course, %.2f m walked\n", s.metres, s.way);
  std::printf("  falls    %d walking, %d at stops, %d at starts\n", s.fallsWalking, s.fallsStopping,
              s.fallsStarting);
}

void run(const MotionOptions& options) {
  const bool isCourse = options.motion == kCourse;
  if (!isCourse) findMotion(options, MotionPlace());  // before anything is connected
  std::unique_ptr<MotionTrainer> trainer;
  if (options.trainerPort != 0) {
    trainer = std::make_unique<MotionTrainer>(options.host, options.trainerPort);
  }
  const auto player = makePlayer(options, trainer.get());
  // Kicks, stand-ups and dives print their own lines; they must not mix with the report.
  std::cout.setstate(std::ios_base::failbit);
  CourseSummary course;
  MotionRun drive(options, *player, trainer.get());
  const std::vector<MotionSample> samples =
      isCourse ? drive.walkCourse(course) : drive.driveMotion();
  std::cout.clear();

  const bool truth = player->knowsTruth();
  const MotionSummary summary =
      summarize(samples, static_cast<int>(std::lround(options.lead * 50)));
  if (isCourse) {
    if (!truth) throw std::runtime_error("a course needs a server that tells the ground truth");
    tellCourse(options, course);
  } else if (options.csv) {
    std::cout << summaryHeader()
              << summaryLine(options.motion, options.type, options.seed, truth, summary);
  } else {
    tell(options, truth, summary);
  }
  if (!options.trace.empty()) writeFile(options.trace, traceCsv(samples));
  if (!options.svg.empty()) {
    char subtitle[160];
    std::snprintf(subtitle, sizeof(subtitle),
                  "robot type %d, %.1f s, %+.2f m/s ahead, %+.2f m/s to the left, %+.1f deg/s, "
                  "%d falls",
                  options.type, summary.seconds, summary.forwardSpeed, summary.leftSpeed,
                  summary.turnRate, summary.falls);
    writeFile(options.svg, motionPicture(samples, options.motion, subtitle));
  }
}

}  // namespace

int main(int argc, char** argv) {
  MotionOptions options;
  CLI::App app(
      "Drives one motion of the player's own code, as a single robot against a running server, and "
      "reports how far, how fast and how steadily it went. Reads the configuration from "
      "\"./Configs/\", as the player does. With a server that tells the ground truth the report "
      "goes by it, otherwise by what the player believes.");
  app.add_option("motion", options.motion, "What to do; --list names them all");
  app.add_flag("--list", options.list, "List the motions and end");
  app.add_option("--host", options.host, "The server")->capture_default_str();
  app.add_option("--agent-port", options.agentPort, "Its port for players")->capture_default_str();
  app.add_option("--trainer-port", options.trainerPort,
                 "Its port for trainers, which places robot and ball and starts the game; 0: do "
                 "without")
      ->capture_default_str();
  app.add_option("--type", options.type, "Robot type")
      ->check(CLI::Range(0, 4))
      ->capture_default_str();
  app.add_option("--number", options.number, "Uniform number")
      ->check(CLI::Range(1, 11))
      ->capture_default_str();
  app.add_option("--seconds", options.seconds, "How long to go on, seconds of play")
      ->check(CLI::Range(0.02, 600.0))
      ->capture_default_str();
  app.add_option("--lead", options.lead,
                 "Seconds at the start that the speeds leave out: the stance and the ramp")
      ->check(CLI::Range(0.0, 600.0))
      ->capture_default_str();
  app.add_option("--angle", options.angle, "Bearing of the target of turns and curves, degrees")
      ->check(CLI::Range(-180.0, 180.0))
      ->capture_default_str();
  app.add_option("--speed", options.speed, "Where the ramp of the omni gaits stops")
      ->check(CLI::Range(0.0, 2.0))
      ->capture_default_str();
  app.add_option("--ball-ahead", options.ballAhead, "Kicks: the ball ahead of the torso, metres")
      ->capture_default_str();
  app.add_option("--ball-aside", options.ballAside,
                 "Kicks: the ball to the kicking side of the torso, metres")
      ->capture_default_str();
  app.add_option(
         "--reach", options.course.reach,
         "Course: within this of a point it is reached, metres; a robot pushes a ball within "
         "0.15")
      ->check(CLI::Range(0.01, 5.0))
      ->capture_default_str();
  app.add_flag("!--no-stops", options.course.stops, "Course: walk on from point to point");
  app.add_option("--noise", options.noise,
                 "Standard deviation of an error on each joint's speed, rad/s: runs that differ")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
  app.add_option("--seed", options.seed, "Of that error")->capture_default_str();
  app.add_flag("--csv", options.csv, "Report as one line of values under one of names");
  app.add_option("--trace", options.trace, "Write each cycle to this file, as CSV");
  app.add_option("--svg", options.svg, "Draw the motion to this file");
  CLI11_PARSE(app, argc, argv);

  if (options.list) {
    list(options);
    return 0;
  }
  if (options.motion.empty()) {
    std::cerr << "motion: name a motion; --list names them all\n";
    return 1;
  }
  try {
    run(options);
  } catch (const std::exception& error) {
    std::cerr << "motion: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
