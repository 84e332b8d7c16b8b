// Feeds a recording to the player's world model and reports what the player believes, beside the
// ground truth where it is known.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "BeliefReport.h"
#include "FrameRecording.h"
#include "PitchPicture.h"
#include "Utilities/Config.h"
#include "Utilities/Converter.h"
#include "WorldModel/WorldModel.h"

namespace {

namespace fs = std::filesystem;
using Point = BeliefPoint;
using Pose = BeliefPose;

constexpr double kPi = 3.14159265358979323846;
constexpr double kFarBack = 1e9;
constexpr double kHalfHundredth = 0.005;  // seconds; game times have two decimals

struct Options {
  std::string recording;
  std::string truth;
  std::string configs = "Configs";
  std::string team;
  int number = 0;
  double every = 5;
  std::string picture;
  std::string csv;
  bool quiet = false;
};

// --- Small formatting -------------------------------------------------------------------------

template <typename... Values>
std::string format(const char* pattern, Values... values) {
  char text[512];
  std::snprintf(text, sizeof(text), pattern, values...);
  return text;
}

void printHeading(const std::string& heading) {
  std::cout << '\n' << heading << '\n' << std::string(heading.size(), '-') << '\n';
}

void printFact(const char* name, const std::string& value) {
  std::cout << format("%-13s%s\n", name, value.c_str());
}

double wrapped(double degrees) {
  return std::remainder(degrees, 360.0);
}

// --- What was true ----------------------------------------------------------------------------

// The truth of a recording, in the frame of its own team, found by game time.
class Truth {
 public:
  Truth(std::vector<TruthLine> lines, TeamSide side, int number)
      : lines_(std::move(lines)), side_(side), number_(number) {
    for (std::size_t i = 0; i < lines_.size(); ++i) byTime_.emplace(hundredths(lines_[i].time), i);
  }

  // The line of that game time. None for time 0, at which the clock stands before the kick-off.
  const TruthLine* at(double gameTime) const {
    const auto found = byTime_.find(hundredths(gameTime));
    return found == byTime_.end() || found->first == 0 ? nullptr : &lines_[found->second];
  }

  std::optional<Pose> self(const TruthLine& line) const { return robot(line, true, number_); }
  std::optional<Pose> robot(const TruthLine& line, bool ownTeam, int number) const {
    const bool left = ownTeam == (side_ == SIDE_LEFT);
    const TrueRobot* const found = line.find(left ? 'L' : 'R', number);
    if (found == nullptr) return std::nullopt;
    return Pose{turned(found->x, found->y),
                wrapped(found->heading + (side_ == SIDE_RIGHT ? 180 : 0))};
  }
  Point ball(const TruthLine& line) const { return turned(line.ballX, line.ballY); }

 private:
  static long hundredths(double seconds) { return std::lround(seconds * 100); }

  // From the world frame to that of its own team, whose goal lies at negative x.
  Point turned(double x, double y) const {
    return side_ == SIDE_RIGHT ? Point{-x, -y} : Point{x, y};
  }

  std::vector<TruthLine> lines_;
  std::map<long, std::size_t> byTime_;
  TeamSide side_;
  int number_;
};

// --- Figures ----------------------------------------------------------------------------------

// A belief beside the truth of the same game time.
struct Comparison {
  const Belief* belief;
  const TruthLine* line;
  Pose self;
  double positionError;  // metres on the ground
  double headingError;   // degrees, believed minus true
};

double distance(const Point& a, const Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

std::vector<Comparison> compare(const Story& story, const Truth& truth) {
  std::vector<Comparison> result;
  for (const Belief& belief : story.beliefs) {
    if (!belief.located) continue;
    const TruthLine* const line = truth.at(belief.time);
    if (line == nullptr) continue;
    const std::optional<Pose> self = truth.self(*line);
    if (!self) continue;
    result.push_back({&belief, line, *self, distance(belief.self.position, self->position),
                      wrapped(belief.self.heading - self->heading)});
  }
  return result;
}

// Mean, median, 95th percentile (nearest rank) and maximum of the magnitudes.
void printErrors(const char* name, std::vector<double> errors, const char* unit) {
  if (errors.empty()) {
    std::cout << format("%-26s  no sample\n", name);
    return;
  }
  for (double& error : errors) error = std::fabs(error);
  std::sort(errors.begin(), errors.end());
  const auto rank = [&](double share) {
    const auto position = static_cast<std::size_t>(std::ceil(share * errors.size()));
    return errors[std::max<std::size_t>(position, 1) - 1];
  };
  const double mean =
      std::accumulate(errors.begin(), errors.end(), 0.0) / static_cast<double>(errors.size());
  std::cout << format("%-26s%8.2f%9.2f%9.2f%9.2f  %-4s%8zu\n", name, mean, rank(0.5), rank(0.95),
                      errors.back(), unit, errors.size());
}

std::string sideName(TeamSide side) {
  return side == SIDE_LEFT ? "left" : side == SIDE_RIGHT ? "right" : "unknown";
}

void printStory(const Options& options, const Story& story, std::size_t frames) {
  std::cout << "What the player believed\n========================\n";
  printFact("recording", options.recording);
  printFact("frames", format("%zu, %d of them with vision", frames, story.visions));
  printFact("side", sideName(story.side));
  printFact("number",
            format("%d as configured, %s as told by the server",
                   config["Agent"]["Public"]["UniformNumber"].asInt(),
                   story.toldNumber == 0 ? "none" : std::to_string(story.toldNumber).c_str()));
  printFact("team", config["Agent"]["Public"]["TeamName"].asString());
  printFact("score", format("own %d, opponents %d", story.ourGoals, story.oppGoals));

  printHeading("Play modes");
  const Belief* last = nullptr;
  for (const Belief& belief : story.beliefs) {
    if (last == nullptr || belief.mode != last->mode) {
      std::cout << format("%8.2f s  %s\n", belief.time, getPlayModeStr(belief.mode));
    }
    last = &belief;
  }

  printHeading("Times on the ground");
  float start = -1;
  int falls = 0;
  for (const Belief& belief : story.beliefs) {
    if (belief.fallen && start < 0) start = belief.time;
    const bool isLast = &belief == &story.beliefs.back();
    if (start >= 0 && (!belief.fallen || isLast)) {
      std::cout << format("%8.2f s to %.2f s\n", start, belief.time);
      start = -1;
      ++falls;
    }
  }
  if (falls == 0) std::cout << "    none\n";

  printHeading("Ball claims heard");
  for (const Claim& claim : story.claims) {
    std::cout << format("%8.2f s to %6.2f s  number %d in %d cycles, %d times\n", claim.first,
                        claim.last, claim.number, claim.cycles, claim.times);
  }
  if (story.claims.empty()) std::cout << "    none\n";
}

std::string pointText(const std::optional<Point>& point) {
  return point ? format("%7.2f %7.2f", point->x, point->y) : "      -       -";
}

void printTable(const Options& options, const Story& story, const Truth* truth) {
  printHeading("Over time");
  std::cout << "Metres and degrees in the frame of its own team, its goal at x = -15. The ball and "
               "the players\nas far as seen in the same moment; \"seen\" counts landmarks, "
               "team-mates, opponents.\n\n";
  std::cout << "  time  mode             |  believed        facing |";
  if (truth != nullptr) std::cout << "  true            facing |   off |";
  std::cout << "  ball believed  |";
  if (truth != nullptr) std::cout << "  ball true      |";
  std::cout << "  seen\n";

  double next = -kFarBack;
  const Belief* last = nullptr;
  for (const Belief& belief : story.beliefs) {
    // A row of the table is the first frame with a landmark in sight after each step of time.
    const bool modeChanged = last == nullptr || last->mode != belief.mode;
    if (modeChanged) next = std::min<double>(next, belief.time);
    last = &belief;
    if (belief.time + kHalfHundredth < next || !belief.sawLandmark) continue;
    next = belief.time + options.every;

    const TruthLine* const line = truth != nullptr ? truth->at(belief.time) : nullptr;
    const std::optional<Pose> self = line != nullptr ? truth->self(*line) : std::nullopt;
    const auto mates = std::count_if(belief.players.begin(), belief.players.end(),
                                     [](const SeenPlayer& seen) { return seen.ownTeam; });
    std::cout << format("%6.2f  %-16s | %s %7.1f |", belief.time, getPlayModeStr(belief.mode),
                        pointText(belief.self.position).c_str(), belief.self.heading);
    if (truth != nullptr) {
      if (self) {
        std::cout << format(" %s %7.1f | %5.2f |", pointText(self->position).c_str(), self->heading,
                            distance(belief.self.position, self->position));
      } else {
        std::cout << "       -       -       - |     - |";
      }
    }
    std::cout << ' ' << pointText(belief.ball) << " |";
    if (truth != nullptr) {
      std::cout << ' '
                << pointText(line != nullptr ? std::optional(truth->ball(*line)) : std::nullopt)
                << " |";
    }
    std::cout << format(" %2d %2d %2d\n", belief.landmarks, static_cast<int>(mates),
                        static_cast<int>(belief.players.size() - mates));
  }
}

void printSummary(const std::vector<Comparison>& comparisons, const Truth& truth) {
  printHeading("How far off");
  if (comparisons.empty()) {
    std::cout << "No frame of the recording meets a line of the truth: nothing to compare.\n";
    return;
  }
  std::vector<double> position, heading, ball, ballRange, mates, opponents;
  double sine = 0, cosine = 0;
  for (const Comparison& comparison : comparisons) {
    const Belief& belief = *comparison.belief;
    position.push_back(comparison.positionError);
    heading.push_back(comparison.headingError);
    sine += std::sin(comparison.headingError * kPi / 180);
    cosine += std::cos(comparison.headingError * kPi / 180);
    if (belief.ball) {
      const Point trueBall = truth.ball(*comparison.line);
      ball.push_back(distance(*belief.ball, trueBall));
      ballRange.push_back(distance(*belief.ball, belief.self.position) -
                          distance(trueBall, comparison.self.position));
    }
    for (const SeenPlayer& seen : belief.players) {
      const std::optional<Pose> pose = truth.robot(*comparison.line, seen.ownTeam, seen.number);
      if (!pose) continue;
      (seen.ownTeam ? mates : opponents).push_back(distance(seen.position, pose->position));
    }
  }
  const double headingMean = std::atan2(sine, cosine) * 180 / kPi;
  std::vector<double> headingDrift = heading;
  for (double& error : headingDrift) error = wrapped(error - headingMean);

  std::cout << format("%-26s%8s%9s%9s%9s  %-4s%8s\n", "", "mean", "median", "95%", "max", "",
                      "samples");
  printErrors("own position", position, "m");
  printErrors("own heading", heading, "deg");
  printErrors("  about its mean error", headingDrift, "deg");
  printErrors("ball", ball, "m");
  printErrors("  its distance alone", ballRange, "m");
  printErrors("team-mates", mates, "m");
  printErrors("opponents", opponents, "m");
  std::cout << format(
      "\nFrom the first landmark seen on, where the game clock runs. The mean heading error is "
      "%.1f degrees:\nthe player takes its start heading as 0, while a beam is off by up to 10 "
      "degrees, and keeps that.\n",
      headingMean);
}

// --- Files ------------------------------------------------------------------------------------

void write(const std::string& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary);
  out << content;
  out.close();
  if (!out) throw std::runtime_error("can't write " + path);
}

// Breaks a true path where the referee or the trainer moved something at once.
void interruptJumps(PitchPicture::Path& path) {
  constexpr double kJump = 0.5;  // metres in one cycle; nothing moves that fast by itself
  PitchPicture::Path result;
  for (const Point& point : path) {
    if (!result.empty() && distance(result.back(), point) > kJump) {
      result.push_back({std::nan(""), std::nan("")});
    }
    result.push_back(point);
  }
  path = std::move(result);
}

void writePicture(const Options& options, const Story& story,
                  const std::vector<Comparison>& comparisons, const Truth* truth) {
  const std::string team = config["Agent"]["Public"]["TeamName"].asString();
  PitchPicture picture(
      format("%s %d: %s", team.c_str(), config["Agent"]["Public"]["UniformNumber"].asInt(),
             truth != nullptr ? "where it was and where it believed to be"
                              : "where it believed to be"),
      fs::path(options.recording).filename().string() +
          ", in the frame of its own team: it attacks to the right (side: " + sideName(story.side) +
          ")");

  PitchPicture::Path believed, actual, ballSeen, ballTrue;
  std::vector<std::pair<Point, Point>> links;
  if (truth != nullptr) {
    double next = -kFarBack;
    for (const Comparison& comparison : comparisons) {
      const Belief& belief = *comparison.belief;
      believed.push_back(belief.self.position);
      actual.push_back(comparison.self.position);
      ballTrue.push_back(truth->ball(*comparison.line));
      if (belief.ball) ballSeen.push_back(*belief.ball);
      if (belief.time + kHalfHundredth < next) continue;
      next = belief.time + 1.0;
      links.emplace_back(belief.self.position, comparison.self.position);
    }
  } else {
    for (const Belief& belief : story.beliefs) {
      if (!belief.located) continue;
      believed.push_back(belief.self.position);
      if (belief.ball) ballSeen.push_back(*belief.ball);
    }
  }

  interruptJumps(actual);
  interruptJumps(ballTrue);
  picture.addDots(ballSeen, {"#6a1b9a", 4, 0.3}, "ball, believed");
  if (truth != nullptr) {
    picture.addPath(ballTrue, {"#4a148c", 2, 1, true}, "ball, true");
    picture.addLinks(links, {"#455a64", 1, 0.6}, "every second");
    picture.addPath(actual, {"#0d47a1", 3.5}, "own path, true");
  }
  picture.addPath(believed, {"#e65100", 2.5}, "own path, believed");
  if (!actual.empty()) {
    picture.addMark(actual.front(), "#0d47a1", "start");
    picture.addMark(actual.back(), "#0d47a1", "end", PitchPicture::Label::Below);
  }
  if (!believed.empty()) {
    picture.addMark(believed.front(), "#e65100", truth != nullptr ? "" : "start");
    picture.addMark(believed.back(), "#e65100", truth != nullptr ? "" : "end");
  }
  write(options.picture, picture.svg());
  std::cout << "\nPicture: " << options.picture << '\n';
}

// One line for each frame.
void writeCsv(const Options& options, const Story& story, const Truth* truth) {
  std::string csv =
      "frame,time,mode,landmarks,x,y,heading,ball_x,ball_y,fallen,true_x,true_y,true_heading,"
      "true_ball_x,true_ball_y\n";
  for (std::size_t i = 0; i < story.beliefs.size(); ++i) {
    const Belief& belief = story.beliefs[i];
    csv += format("%zu,%.2f,%s,%d,%.4f,%.4f,%.2f,", i + 1, belief.time, getPlayModeStr(belief.mode),
                  belief.landmarks, belief.self.position.x, belief.self.position.y,
                  belief.self.heading);
    csv += belief.ball ? format("%.4f,%.4f,", belief.ball->x, belief.ball->y) : ",,";
    csv += belief.fallen ? "1," : "0,";
    const TruthLine* const line = truth != nullptr ? truth->at(belief.time) : nullptr;
    const std::optional<Pose> self = line != nullptr ? truth->self(*line) : std::nullopt;
    csv +=
        self ? format("%.4f,%.4f,%.2f,", self->position.x, self->position.y, self->heading) : ",,,";
    if (line != nullptr) {
      csv += format("%.4f,%.4f\n", truth->ball(*line).x, truth->ball(*line).y);
    } else {
      csv += ",\n";
    }
  }
  write(options.csv, csv);
  std::cout << "\nEvery frame: " << options.csv << '\n';
}

// The number that the server told the player in this recording; 0 if it never did.
int numberTold(const std::vector<std::string>& frames) {
  static const std::string kTerm = "(unum ";
  for (const std::string& frame : frames) {
    const std::size_t found = frame.find(kTerm);
    if (found != std::string::npos) return std::atoi(frame.c_str() + found + kTerm.size());
  }
  return 0;
}

void configure(const Options& options, const std::vector<std::string>& frames) {
  // What the world model reads of the deployment.
  for (const char* const name : {"Agent", "Formation", "WorldModel"}) {
    const std::string path = options.configs + "/" + name + ".conf";
    if (!fs::is_regular_file(path)) {
      throw std::runtime_error("no " + path +
                               "; start this where Configs/ is or name it by --configs");
    }
    config.add(name, path);
  }
  ConfigGroup& group = config["Agent"]["Public"];
  if (!options.team.empty()) group.add("TeamName", options.team);
  const int number = options.number != 0 ? options.number : numberTold(frames);
  if (number >= 1 && number <= 11) group.add("UniformNumber", std::to_string(number));
}

void run(const Options& options) {
  const std::vector<std::string> frames = readRecording(options.recording);
  if (frames.empty()) throw std::runtime_error(options.recording + " holds no frame");
  std::vector<TruthLine> lines;
  if (!options.truth.empty()) lines = readTruth(options.truth);
  configure(options, frames);

  const Story story = live(frames);
  std::optional<Truth> truth;
  if (!options.truth.empty()) {
    truth.emplace(std::move(lines), story.side, config["Agent"]["Public"]["UniformNumber"].asInt());
  }
  const Truth* const known = truth ? &*truth : nullptr;
  std::vector<Comparison> comparisons;
  if (known != nullptr) comparisons = compare(story, *known);

  printStory(options, story, frames.size());
  if (!options.quiet) printTable(options, story, known);
  if (known != nullptr) printSummary(comparisons, *known);
  if (!options.picture.empty()) writePicture(options, story, comparisons, known);
  if (!options.csv.empty()) writeCsv(options, story, known);
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{
      "Feeds a recording of the server's frames to the player's world model and reports what the "
      "player\nbelieves: side, number, play modes, own position and heading, ball, players, claims "
      "heard. With the\nground truth of the same game it also tells how far off the belief is."};
  app.add_option("recording", options.recording, "recorded frames, plain or gzip")->required();
  app.add_option("--truth", options.truth, "ground truth of the same game, plain or gzip");
  app.add_option("--svg", options.picture,
                 "draw the believed path, over the true one where known, into this file");
  app.add_option("--csv", options.csv, "write the belief after every frame into this file");
  app.add_option("--every", options.every, "seconds of game time between two rows of the table")
      ->check(CLI::Range(0.02, 3600.0))
      ->capture_default_str();
  app.add_option("--number", options.number,
                 "uniform number of the player; else what the recording tells, else Agent.conf's")
      ->check(CLI::Range(1, 11));
  app.add_option("--team", options.team, "name of its own team; else Agent.conf's");
  app.add_option("--configs", options.configs, "directory of the configuration files")
      ->capture_default_str();
  app.add_flag("--quiet", options.quiet, "leave the table over time out");
  CLI11_PARSE(app, argc, argv);

  try {
    run(options);
  } catch (const std::exception& error) {
    std::cerr << "belief: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
