#include "MindRecord.h"

#include <zlib.h>

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "BasicAction/Dive.h"
#include "BasicAction/Kick.h"
#include "BasicAction/OmniBackWalk.h"
#include "BasicAction/OmniSideWalk.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/StandUp.h"
#include "BasicAction/TAB.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Decision/Actions.h"
#include "Recording/RecordingEncoder.h"
#include "Wire/SExpression.h"

namespace {

constexpr double kMillimetre = 0.001;
constexpr double kHundredth = 0.01;
constexpr double kQuaternion = 1e-4;
// Who has not been seen for so long is no longer shown, s.
constexpr double kForgotten = 3;
// A claim that was heard longer ago is no news, s.
constexpr double kClaimAge = 0.5;
constexpr int kTeamSize = 11;

// By Decision::modestate.
constexpr const char* kSituations[] = {"",
                                       "",
                                       "before kick-off",
                                       "our kick-off",
                                       "play on",
                                       "our kick-in",
                                       "our corner",
                                       "our goal kick",
                                       "our offside",
                                       "quit",
                                       "our goal",
                                       "their goal",
                                       "our free kick",
                                       "unknown mode"};
constexpr const char* kRoles[] = {"attack", "half back", "defence", "goalie"};

struct Motion {
  ActionType type;
  const char* name;
};
constexpr Motion kMotions[] = {
    {AT_FORWALK, "forward walk"},
    {AT_BACKWALK, "backward walk"},
    {AT_SIDEWALK_RIGHT, "side walk right"},
    {AT_SIDEWALK_LEFT, "side walk left"},
    {AT_ENDSTEP, "ending the step"},
    {AT_OMNIWALK, "walk"},
    {AT_OMNIBACKWALK, "walk backward"},
    {AT_OMNISIDEWALK, "walk sideward"},
    {AT_TURN, "turn"},
    {AT_STABLE_KICK, "stable kick"},
    {AT_KICK, "kick"},
    {AT_UNSTABLE_KICK, "quick kick"},
    {AT_UNSTABLE1_KICK, "long kick"},
    {AT_SIDE_KICK, "side kick"},
    {AT_TURN_AROUND_BALL, "turn around the ball"},
    {AT_RESET, "stance"},
    {AT_STANDUP_RESET, "stand up"},
    {AT_STANDUP_FRONT, "stand up from the front"},
    {AT_STANDUP_BACK, "stand up from the back"},
    {AT_FLIP, "flip to the back"},
    {AT_DIVE, "dive"},
};

const char* nameOf(ActionType type) {
  for (const Motion& motion : kMotions) {
    if (motion.type == type) return motion.name;
  }
  return "none";
}

// The step of the running motion within its sequence.
int stepOf(const OurPlayer& player, ActionType type) {
  switch (type) {
    case AT_OMNIWALK:
      return player.walk->_omniWalk->basicWalkState;
    case AT_OMNIBACKWALK:
      return player.walk->_omniBackWalk->basicWalkState;
    case AT_OMNISIDEWALK:
      return player.walk->_omniSideWalk->basicWalkState;
    case AT_TURN:
      return player.turn->basicTurnState;
    case AT_TURN_AROUND_BALL:
      return player.turnAroundBall->basicWalkState;
    case AT_STANDUP_FRONT:
      return player.standUp->standUpFState;
    case AT_STANDUP_BACK:
      return player.standUp->standUpBState;
    case AT_FLIP:
      return player.standUp->flipState;
    case AT_UNSTABLE_KICK:
      return player.kick->stableState;
    case AT_UNSTABLE1_KICK:
      return player.kick->unStableState1;
    case AT_DIVE:
      return player.dive->diveState;
    default:
      return 0;
  }
}

// Where the running motion leads, in the frame of its own team; null if to no place.
const Vector* targetOf(const OurPlayer& player, ActionType type) {
  switch (type) {
    case AT_OMNIWALK:
      return &player.walk->v;
    case AT_OMNIBACKWALK:
    case AT_OMNISIDEWALK:
      return &player.walk->point;
    case AT_TURN:
      return &player.turn->v;
    case AT_TURN_AROUND_BALL:
      return &player.turnAroundBall->vec;
    default:
      return nullptr;
  }
}

// w x y z of the rotation from the robot's body frame into the world's. The player's own frame has
// x to the front and y to the left.
std::array<double, 4> quaternionOf(const Matrix<4, 4>& torso, double side) {
  double r[3][3];
  for (int row = 0; row < 3; ++row) {
    const double sign = row < 2 ? side : 1;
    r[row][0] = -sign * torso.get(row, 1);
    r[row][1] = sign * torso.get(row, 0);
    r[row][2] = sign * torso.get(row, 2);
  }
  const auto root = [](double value) { return std::sqrt(std::max(value, 0.0)) / 2; };
  std::array<double, 4> q = {
      root(1 + r[0][0] + r[1][1] + r[2][2]), root(1 + r[0][0] - r[1][1] - r[2][2]),
      root(1 - r[0][0] + r[1][1] - r[2][2]), root(1 - r[0][0] - r[1][1] + r[2][2])};
  q[1] = std::copysign(q[1], r[2][1] - r[1][2]);
  q[2] = std::copysign(q[2], r[0][2] - r[2][0]);
  q[3] = std::copysign(q[3], r[1][0] - r[0][1]);
  return q;
}

std::string upper(const std::string& text) {
  std::string result = text;
  if (!result.empty()) result[0] = static_cast<char>(std::toupper(result[0]));
  return result;
}

std::string zlibPacked(const std::string& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string result(size, '\0');
  if (compress2(reinterpret_cast<Bytef*>(result.data()), &size,
                reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()),
                Z_DEFAULT_COMPRESSION) != Z_OK) {
    throw std::runtime_error("the mind cannot be packed");
  }
  result.resize(size);
  return result;
}

}  // namespace

// The column of that name; a new one was absent so far.
MindRecord::Column& MindRecord::column(const char* group, const std::string& name,
                                       const std::string& label, const char* unit, double scale) {
  const auto [found, isNew] = index_.try_emplace(name, columns_.size());
  if (isNew) columns_.push_back({name, label, unit, group, scale, {}, {}, {}});
  Column& column = columns_[found->second];
  column.values.resize(rows_ + 1, kAbsent);
  return column;
}

void MindRecord::number(const char* group, const std::string& name, const std::string& label,
                        const char* unit, double scale, double value) {
  constexpr double kLargest = 2e9;
  const double stored = value / scale;
  column(group, name, label, unit, scale).values[rows_] =
      std::fabs(stored) < kLargest ? std::llround(stored) : kAbsent;
}

void MindRecord::word(const char* group, const std::string& name, const std::string& label,
                      const std::string& text) {
  Column& words = column(group, name, label, "", 1);
  const auto [found, isNew] =
      words.words.try_emplace(text, static_cast<std::int64_t>(words.texts.size()));
  if (isNew) words.texts.push_back(text);
  words.values[rows_] = found->second;
}

void MindRecord::addPlace(const char* group, const std::string& name, const std::string& label,
                          const Vector* place) {
  const double none = std::nan("");
  const double x = place ? side_ * static_cast<double>(place->getX()) : none;
  const double y = place ? side_ * static_cast<double>(place->getY()) : none;
  number(group, name + ".x", label + " x", "m", kMillimetre, x);
  number(group, name + ".y", label + " y", "m", kMillimetre, y);
}

void MindRecord::addSelf(const OurPlayer& player) {
  const Belief belief = beliefOf(*player.WM, located_);
  located_ = belief.located;
  const Vector place = player.WM->getAgentPosition();
  addPlace("Self", "self", "Own", located_ ? &place : nullptr);
  number("Heading", "self.heading", "Facing", "°", kHundredth,
         std::remainder(belief.self.heading + (side_ < 0 ? 180 : 0), 360));
  const auto turn = quaternionOf(player.WM->mySelf->getGyroRotation(), side_);
  const char* const names[] = {"qw", "qx", "qy", "qz"};
  for (std::size_t i = 0; i < turn.size(); ++i) {
    number("Rotation", std::string("self.") + names[i], std::string("Rotation ") + names[i], "",
           kQuaternion, turn[i]);
  }
  number("Sight", "landmarks", "Landmarks used", "", 1, belief.landmarks);
  number("Sight", "fallen", "Believes to lie", "", 1, belief.fallen ? 1 : 0);
}

void MindRecord::addBall(const OurPlayer& player) {
  const Ball& ball = *player.WM->ball;
  const bool known = located_ && ball.getLastTimeSeen() > 0;
  const Vector place = ball.getGlobalPosition();
  addPlace("Ball", "ball", "Ball", known ? &place : nullptr);
}

void MindRecord::addOthers(const OurPlayer& player) {
  const WorldModel& world = *player.WM;
  for (int row = 0; row < 2; ++row) {
    const bool left = (row == 0) == (side_ > 0);
    for (int i = 0; i < kTeamSize; ++i) {
      const Player& other = world.player[row][i];
      const bool self = row == 0 && i + 1 == world.mySelf->getAgentNum();
      const double age = static_cast<double>(world.gameTime) - other.getLastTimeSeen();
      const bool seen = !self && located_ && other.getLastTimeSeen() > 0 && age < kForgotten;
      const std::string name = (left ? "left" : "right") + std::to_string(i + 1);
      const Vector place = other.getGlobalPosition();
      addPlace("Others", name, upper(name), seen ? &place : nullptr);
    }
  }
}

void MindRecord::addDecision(const OurPlayer& player, bool decided) {
  const auto situation = static_cast<std::size_t>(player.de.modestate);
  word("Decision", "situation", "Situation",
       situation < std::size(kSituations) ? kSituations[situation] : "");
  const auto role = static_cast<std::size_t>(player.WM->mySelf->getAgentPost());
  word("Decision", "role", "Role", role < std::size(kRoles) ? kRoles[role] : "");
  const WorldModel& world = *player.WM;
  const bool claimed = world.lastTimeHeard >= 0 &&
                       static_cast<double>(world.gameTime) - world.lastTimeHeard < kClaimAge;
  word("Decision", "claim", "Claim heard",
       claimed ? "number " + std::to_string(world.fastestTeammateUnum) + " in " +
                     std::to_string(world.fastestReachCycle) + " cycles"
               : "");
  const ActionType type = decided ? player.actions->getNowAction().actionType : AT_NONE;
  word("Motion", "motion", "Motion", nameOf(type));
  number("Motion", "step", "Step of the motion", "", 1, stepOf(player, type));
  addPlace("Target", "target", "Target", decided ? targetOf(player, type) : nullptr);
  word("Speech", "said", "Says", "");
}

void MindRecord::addSenses(const std::string& frame) {
  arena::SExpression expression;
  expression.read(frame);
  std::string heard;
  const auto vector = [this](const char* group, const std::string& name, const std::string& label,
                             const char* unit, double scale, auto list) {
    const char* const axes[] = {"x", "y", "z"};
    for (std::size_t i = 0; i < 3; ++i) {
      number(group, name + "." + axes[i], label + " " + axes[i], unit, scale,
             list.child(i + 1).number());
    }
  };
  for (const auto term : expression) {
    const std::string name(term.find("n").child(1).text());
    if (term.name() == "GYR") {
      vector("Gyro", "gyro", "Turn", "°/s", kHundredth, term.find("rt"));
    } else if (term.name() == "ACC") {
      vector("Accelerometer", "acc", "Acceleration", "m/s²", kHundredth, term.find("a"));
    } else if (term.name() == "FRP") {
      vector("Feet", name + ".force", upper(name) + " force", "N", kHundredth, term.find("f"));
      vector("Feet (points)", name + ".point", upper(name) + " point", "m", kHundredth,
             term.find("c"));
    } else if (term.name() == "HJ") {
      number("Hinges", name, name, "°", kHundredth, term.find("ax").child(1).number());
    } else if (term.name() == "hear" && term.child(3).text() != "self") {
      const std::string text(term.child(4).text().empty() ? term.child(3).text()
                                                          : term.child(4).text());
      heard += (heard.empty() ? "" : ", ") + std::string(term.child(1).text()) + ": " + text;
    }
  }
  word("Speech", "heard", "Hears", heard);
}

void MindRecord::add(OurPlayer& player, const std::string& frame, bool decided) {
  side_ = player.WM->ourSide == SIDE_RIGHT ? -1 : 1;
  addSelf(player);
  addBall(player);
  addDecision(player, decided);
  addSenses(frame);
  addOthers(player);
  ++rows_;
  for (Column& column : columns_) column.values.resize(rows_, kAbsent);
}

void MindRecord::setAnswer(std::size_t row, const std::string& answer) {
  const auto found = index_.find("said");
  if (found == index_.end() || row >= rows_) return;
  arena::SExpression expression;
  expression.read(answer);
  std::string said;
  for (const auto term : expression) {
    if (term.name() == "say") said = std::string(term.child(1).text());
  }
  if (said.empty()) return;
  Column& words = columns_[found->second];
  const auto [word, isNew] =
      words.words.try_emplace(said, static_cast<std::int64_t>(words.texts.size()));
  if (isNew) words.texts.push_back(said);
  words.values[row] = word->second;
}

std::string MindRecord::packed(const Summary& summary) const {
  using nlohmann::ordered_json;
  ordered_json header = {{"version", 1},
                         {"player", summary.player},
                         {"frames", rows_},
                         {"firstCycle", summary.firstCycle},
                         {"same", summary.same},
                         {"verdict", summary.verdict},
                         {"columns", ordered_json::array()}};
  for (const Column& column : columns_) {
    ordered_json entry = {{"name", column.name},
                          {"label", column.label},
                          {"unit", column.unit},
                          {"group", column.group},
                          {"scale", column.scale}};
    if (!column.texts.empty()) entry["texts"] = column.texts;
    header["columns"].push_back(entry);
  }
  const std::string head = header.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
  std::string bytes;
  arena::RecordingEncoder::appendUnsigned(bytes, head.size());
  bytes += head;
  for (const Column& column : columns_) {
    std::int64_t last = 0;
    for (const std::int64_t value : column.values) {
      arena::RecordingEncoder::appendSigned(bytes, value - last);
      last = value;
    }
  }
  return zlibPacked(bytes);
}

std::string MindRecord::csv() const {
  std::string text;
  for (const Column& column : columns_) text += (text.empty() ? "" : ",") + column.name;
  text += '\n';
  for (std::size_t row = 0; row < rows_; ++row) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const Column& column = columns_[i];
      const std::int64_t value = column.values[row];
      if (i > 0) text += ',';
      if (value == kAbsent) continue;
      if (!column.texts.empty()) {
        std::string quoted;
        for (const char c : column.texts[static_cast<std::size_t>(value)]) {
          quoted += c == '"' ? "\"\"" : std::string(1, c);
        }
        text += '"' + quoted + '"';
      } else {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%.6g", static_cast<double>(value) * column.scale);
        text += digits;
      }
    }
    text += '\n';
  }
  return text;
}
