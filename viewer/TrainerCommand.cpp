#include "TrainerCommand.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "Common/Pitch.h"
#include "Common/PlayMode.h"
#include "Common/Units.h"
#include "Referee/Rules.h"

namespace viewer {

namespace {

using nlohmann::json;

// Thrown for a member that is missing or makes no sense; json's own exceptions likewise mean that
// the request is none.
struct NoCommand : std::runtime_error {
  NoCommand() : std::runtime_error("no command of a trainer") {}
};

// Far beyond the walls, m.
constexpr double kFarthest = 100;
constexpr double kLatestTime = 100'000;  // s
constexpr int kHighestScore = 1000;
constexpr int kHighestNumber = 11;

template <typename... Values>
std::string format(const char* pattern, Values... values) {
  char text[256];
  std::snprintf(text, sizeof text, pattern, values...);
  return text;
}

double number(const json& request, const char* name, double low, double high) {
  const double value = request.at(name).get<double>();
  if (!(value >= low && value <= high)) throw NoCommand();
  return value;
}

int integer(const json& request, const char* name, int low, int high) {
  return static_cast<int>(std::lround(number(request, name, low, high)));
}

double place(const json& request, const char* name) {
  return number(request, name, -kFarthest, kFarthest);
}

std::string side(const json& request, bool orNone) {
  auto text = request.at("side").get<std::string>();
  if (text != "Left" && text != "Right" && !(orNone && text == "None")) throw NoCommand();
  return text;
}

std::string player(const json& request) {
  return format("(unum %d)(team %s)", integer(request, "number", 1, kHighestNumber),
                side(request, false).c_str());
}

std::string kickOff(const json& request) {
  return "(kickOff " + side(request, true) + ")";
}

std::string dropBall(const json&) {
  return "(dropBall)";
}

std::string playMode(const json& request) {
  const auto mode = arena::modeByName(request.at("mode").get<std::string>());
  if (!mode) throw NoCommand();
  return "(playMode " + std::string(arena::nameOf(*mode)) + ")";
}

std::string score(const json& request) {
  return format("(score (left %d)(right %d))", integer(request, "left", 0, kHighestScore),
                integer(request, "right", 0, kHighestScore));
}

std::string time(const json& request) {
  return format("(time %.2f)", number(request, "time", 0, kLatestTime));
}

std::string ball(const json& request) {
  return format("(ball (pos %.3f %.3f %.3f)(vel 0 0 0))", place(request, "x"), place(request, "y"),
                arena::kBallRadius);
}

// The port turns a robot that looks along +x by -90 degrees.
std::string movePlayer(const json& request) {
  return format("(agent %s(move %.3f %.3f %.2f %.1f))", player(request).c_str(),
                place(request, "x"), place(request, "y"), arena::kDropHeight,
                number(request, "heading", -360, 360) - 90);
}

std::string kill(const json& request) {
  return "(kill " + player(request) + ")";
}

struct Entry {
  std::string_view name;
  std::string (*command)(const json&);
};
constexpr Entry kCommands[] = {
    {"kickOff", kickOff}, {"dropBall", dropBall}, {"playMode", playMode}, {"score", score},
    {"time", time},       {"ball", ball},         {"player", movePlayer}, {"kill", kill},
};

}  // namespace

std::optional<std::string> trainerCommand(std::string_view text) {
  try {
    const json request = json::parse(text);
    const auto wanted = request.at("trainer").get<std::string>();
    for (const Entry& entry : kCommands) {
      if (entry.name == wanted) return entry.command(request);
    }
  } catch (const std::exception&) {
    // Not understood, like an unknown name.
  }
  return std::nullopt;
}

}  // namespace viewer
