#include "Film.h"

#include <zlib.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "Common/Pitch.h"
#include "Common/Units.h"
#include "Physics/RobotModel.h"
#include "Referee/Rules.h"

namespace viewer {

namespace {

using arena::Side;
using nlohmann::ordered_json;

// Quick rather than small: a live match is packed while it plays.
constexpr int kPacking = 2;
// Height of the torso's upward axis below which a player is down, and above which he is up again.
constexpr double kDown = 0.5;
constexpr double kUp = 0.9;
// More marks than any match has; a stream that makes marks without end must not fill the memory.
constexpr std::size_t kMaxMarks = 100'000;

constexpr const char* kKinds[] = {"mode", "goal", "foul", "fall", "note"};
constexpr const char* kFouls[] = {"crowding",  "touching", "illegal defence", "illegal attack",
                                  "incapable", "kick-off", "charging",        "self-collision"};
constexpr const char* kShapes[] = {"box", "sphere", "capsule"};

std::string packed(const std::string& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string result(size, '\0');
  const int status = compress2(reinterpret_cast<Bytef*>(result.data()), &size,
                               reinterpret_cast<const Bytef*>(bytes.data()),
                               static_cast<uLong>(bytes.size()), kPacking);
  if (status != Z_OK) throw std::runtime_error("a chunk cannot be packed");
  result.resize(size);
  return result;
}

std::string textOf(const ordered_json& json) {
  return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

ordered_json modelOf(int type) {
  const arena::RobotModel& model = arena::robotModel(type);
  ordered_json bodies = ordered_json::array();
  for (const arena::BodySpec& body : model.bodies) {
    bodies.push_back({{"name", arena::kBodyNames[static_cast<std::size_t>(body.body)]},
                      {"parent", body.parent},
                      {"position", body.position},
                      {"shape", kShapes[static_cast<std::size_t>(body.shape)]},
                      {"size", body.size}});
  }
  ordered_json joints = ordered_json::array();
  for (const arena::JointSpec& joint : model.joints) {
    joints.push_back({{"name", joint.perceptor},
                      {"child", joint.child},
                      {"parent", joint.parent},
                      {"anchor", joint.anchor},
                      {"axis", joint.axis}});
  }
  return {{"bodies", bodies}, {"joints", joints}};
}

ordered_json pitchOf(const PitchMeasures& pitch) {
  return {{"length", pitch.length},
          {"width", pitch.width},
          {"goalWidth", pitch.goalWidth},
          {"goalDepth", pitch.goalDepth},
          {"goalHeight", pitch.goalHeight},
          {"circle", pitch.circle},
          {"penaltyLength", pitch.penaltyLength},
          {"penaltyWidth", pitch.penaltyWidth},
          {"ballRadius", arena::kBallRadius}};
}

ordered_json markOf(const Mark& mark) {
  return {{"kind", kKinds[static_cast<std::size_t>(mark.kind)]},
          {"cycle", mark.cycle},
          {"side", static_cast<int>(mark.side)},
          {"number", mark.number},
          {"text", mark.text}};
}

}  // namespace

const PitchMeasures kLeaguePitch = {
    arena::kFieldLength, arena::kFieldWidth,       arena::kGoalWidth,     arena::kGoalDepth,
    arena::kGoalHeight,  arena::kFreeKickDistance, arena::kPenaltyLength, arena::kPenaltyWidth};

std::string withoutTags(std::string json) {
  // In JSON the sign stands within strings alone, where its number means the same.
  for (std::size_t at = json.find('<'); at != std::string::npos; at = json.find('<', at)) {
    json.replace(at, 1, "\\u003c");
  }
  return json;
}

Film::Film(std::string title, double cycleSeconds, std::size_t chunkCycles)
    : title_(std::move(title)), cycleSeconds_(cycleSeconds), chunkCycles_(chunkCycles) {}

void Film::append(const arena::RecordedCycle& cycle,
                  const arena::RecordingEncoder::TeamNames& teams) {
  if (open_.empty()) {
    encoder_.restart();
    openFirst_ = cycles_;
    openTime_ = cycle.time;
  }
  watch(cycle);
  encoder_.encode(cycle, teams, open_);
  teams_ = teams;
  ++cycles_;
  if (cycles_ - openFirst_ == chunkCycles_) seal();
}

void Film::seal() {
  if (open_.empty()) return;
  chunks_.push_back({openFirst_, cycles_ - openFirst_, openTime_, packed(open_)});
  open_.clear();
  if (chunks_.size() > kMaxChunks) {
    chunks_.pop_front();
    ++dropped_;
  }
}

void Film::note(const std::string& text) {
  mark(Mark::Kind::Note, Side::None, 0, text);
}

void Film::mark(Mark::Kind kind, Side side, int number, std::string text) {
  if (marks_.size() < kMaxMarks) marks_.push_back({kind, cycles_, side, number, std::move(text)});
}

void Film::watch(const arena::RecordedCycle& cycle) {
  if (static_cast<int>(cycle.mode) != lastMode_) {
    lastMode_ = static_cast<int>(cycle.mode);
    mark(Mark::Kind::Mode, arena::sideOf(cycle.mode), 0, std::string(arena::nameOf(cycle.mode)));
  }
  for (const arena::GoalEvent& goal : cycle.goals) {
    mark(Mark::Kind::Goal, goal.side, goal.scorer,
         goal.scorerSide != Side::None && goal.scorerSide != goal.side ? "own goal" : "goal");
  }
  for (const arena::RecordedFoul& foul : cycle.fouls) {
    mark(Mark::Kind::Foul, foul.side, foul.number, kFouls[static_cast<std::size_t>(foul.type)]);
  }
  for (const arena::RecordedRobot& robot : cycle.robots) {
    bool& down = down_[{robot.side, robot.number}];
    const double up = robot.torso.linear()(2, 2);
    if (!down && up < kDown) {
      down = true;
      mark(Mark::Kind::Fall, robot.side, robot.number, "fall");
    } else if (up > kUp) {
      down = false;
    }
  }
}

std::string Film::chunkEntry(std::size_t number) const {
  const Chunk& chunk = chunks_[number - dropped_];
  return textOf(
      {{"number", number}, {"first", chunk.first}, {"cycles", chunk.cycles}, {"time", chunk.time}});
}

std::string Film::markEntry(const Mark& mark) {
  return textOf(markOf(mark));
}

std::string Film::index(const std::vector<std::pair<std::string, std::string>>& extra) const {
  ordered_json json;
  json["version"] = 1;
  json["title"] = title_;
  json["cycleSeconds"] = cycleSeconds_;
  json["chunkCycles"] = chunkCycles_;
  json["cycles"] = cycles_;
  json["teams"] = teams_;
  json["chunks"] = ordered_json::array();
  for (std::size_t i = firstChunk(); i < endChunk(); ++i) {
    json["chunks"].push_back(ordered_json::parse(chunkEntry(i)));
  }
  json["marks"] = ordered_json::array();
  for (const Mark& mark : marks_) json["marks"].push_back(markOf(mark));
  json["playModes"] = ordered_json::array();
  for (const arena::ModeEntry& mode : arena::kPlayModes) json["playModes"].push_back(mode.name);
  json["pitch"] = pitchOf(pitch_);
  json["robots"] = ordered_json::array();
  for (int type = 0; type < arena::kRobotTypeCount; ++type) {
    json["robots"].push_back(modelOf(type));
  }
  for (const auto& [name, value] : extra) json[name] = ordered_json::parse(value);
  return withoutTags(textOf(json));
}

}  // namespace viewer
