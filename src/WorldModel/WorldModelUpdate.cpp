// The parser of the server's messages: cuts a message into expressions, and each expression into
// words and numbers. It builds no tree, copies no text and looks at no more of it than it needs.

#include <cstddef>
#include <string>
#include <string_view>

#include "Utilities/Config.h"
#include "Utilities/Converter.h"
#include "WorldModel/Game.h"
#include "WorldModel/PerceptReader.h"
#include "WorldModel/WorldModel.h"

namespace {

// The team word of the ball claims that are listened to. Fixed, whatever the configured name is: a
// team of another name hears only teams of this one.
constexpr std::string_view kTeamWord = "Quolnaris";

// Single precision, widened where it meets a double: the rounding is part of the behaviour.
constexpr float kSampleWeight = 0.1f;  // of a new accelerometer sample
constexpr double kMemoryWeight = 0.9;  // of the filtered accelerometer

// A filtered acceleration whose length leaves this range (m/s^2) starts anew from standing upright.
constexpr double kMinAcceleration = 6.0;
constexpr double kMaxAcceleration = 12.0;

constexpr std::size_t kVisionHead = 5;  // the length of "(See "

// The end, behind its ")", of the expression that starts with the "(" at `start`; npos if nothing
// closes it.
std::size_t endOfExpression(std::string_view text, std::size_t start) {
  int depth = 0;
  for (std::size_t i = start; i < text.size(); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')' && --depth == 0) return i + 1;
  }
  return std::string_view::npos;
}

// Three numbers, read in double and narrowed. Leaves the target as it was if one can't be read.
bool readCartesian(PerceptReader& in, Vector& vector) {
  double x, y, z;
  if (!in.read(x, y, z)) return false;
  vector = Vector(x, y, z, CARTESIAN);
  return true;
}

// A polar sighting: distance in metres, azimuth and elevation in degrees. Leaves the target as it
// was if one of the three can't be read, as the server does send them ("nan").
bool readPolar(PerceptReader& in, Vector& vector) {
  double distance, azimuth, elevation;
  if (!in.read(distance, azimuth, elevation)) return false;
  vector = Vector(distance, azimuth, elevation, SPHERICAL);
  return true;
}

// The decimal number that two characters spell. What is no digit gives a meaningless number, which
// stands: the sender is trusted.
int twoDigits(char tens, char units) {
  return (tens - '0') * 10 + (units - '0');
}

// Index of a landmark by its word, as in "(F1L" or "(G2R".
int flagOfWord(std::string_view word) {
  return WorldModel::getFlagNumber(letter(word, 1) == 'F', letter(word, 3) == 'R',
                                   letter(word, 2) == '2' ? 1 : 0);
}

// The body parts of a seen player: the first two letters of the term, and where the part is kept.
struct BodyPart {
  std::string_view key;
  Vector Player::*position;
  float Player::*lastTimeSeen;
};
constexpr BodyPart kBodyParts[] = {
    {"he", &Player::headPosition, &Player::headLastTimeSeen},
    {"rl", &Player::rightLowerArmPosition, &Player::rightLowerArmLastTimeSeen},
    {"ll", &Player::leftLowerArmPosition, &Player::leftLowerArmLastTimeSeen},
    {"rf", &Player::rightFootPosition, &Player::rightFootLastTimeSeen},
    {"lf", &Player::leftFootPosition, &Player::leftFootLastTimeSeen},
};

}  // namespace

bool WorldModel::parse(const std::string& message) {
  visionThisCycle = false;
  fieldLine.clear();

  const std::string_view text(message);
  for (std::size_t i = 0; i < text.size() && text[i] == '(';) {
    const std::size_t end = endOfExpression(text, i);
    if (end == std::string_view::npos) break;
    const std::string_view expression = text.substr(i, end - i);
    i = end;
    // Heads are told apart by their second letter alone.
    switch (letter(expression, 2)) {
      case 'C':
        updateACC(expression);
        break;
      case 'J':
        updateJoint(expression);
        break;
      case 'R':
        updateFRP(expression);
        break;
      case 'S':
        updateGameState(expression);
        break;
      case 'Y':
        updateGYR(expression);
        break;
      case 'i':
        updateTime(expression);
        break;
      case 'e':
        if (letter(expression, 3) == 'a') {
          updateHear(expression);
        } else {
          updateVision(expression);
          visionThisCycle = true;
        }
        break;
      default:
        return isNewCommand;  // whatever follows an unknown head stays unread
    }
  }
  return isNewCommand;
}

// (time (now T)): the server's own clock, which nothing here goes by.
bool WorldModel::updateTime(std::string_view str) {
  PerceptReader in(str);
  double now = 0;
  in.skip(2);
  return in.read(now);
}

// (GS (unum N) (team left) (sl A) (sr B) (t T) (pm MODE)), terms in any order.
void WorldModel::updateGameState(std::string_view expression) {
  PerceptReader in(expression);
  in.skip(1);
  for (std::string_view word; in.read(word);) {
    if (letter(word, 1) == 'u') {
      int number;
      if (in.read(number)) mySelf->setPlayerNumber(number);
      in.skip(1);
      isInit = true;
    } else if (letter(word, 2) == 'e') {
      std::string_view side;
      if (!in.read(side)) return;
      ourSide = side.front() == 'l' ? SIDE_LEFT : SIDE_RIGHT;
      mySelf->setTeamSide(ourSide);
    } else if (letter(word, 1) == 's') {
      // While the own side is unknown both scores are the opponents'.
      const TeamSide scorer = letter(word, 2) == 'r' ? SIDE_RIGHT : SIDE_LEFT;
      in.read(ourSide == scorer ? ourGoals : oppGoals);
      in.skip(1);
    } else if (letter(word, 1) == 'p') {
      std::string_view mode;
      if (!in.read(mode)) return;
      char name[30] = {};  // longer than any name of a mode
      mode.substr(0, mode.find(')')).copy(name, sizeof(name) - 1);
      playMode = getPlayModeFormStr(name);
    } else if (letter(word, 1) == 't') {
      double time;
      if (in.read(time)) gameTime = static_cast<float>(time);
      in.skip(1);
    }
  }
}

// (GYR (n torso) (rt X Y Z)), degrees per second.
void WorldModel::updateGYR(std::string_view str) {
  PerceptReader in(str);
  in.skip(4);
  Vector rate;
  if (readCartesian(in, rate)) mySelf->setGyrVector(rate * kCycle);
}

// (ACC (n torso) (a X Y Z)), m/s^2.
void WorldModel::updateACC(std::string_view expression) {
  PerceptReader in(expression);
  in.skip(4);
  Vector sample;
  if (!readCartesian(in, sample)) return;
  Vector filtered = mySelf->getAccellerator() * kMemoryWeight + sample * kSampleWeight;
  const double length = filtered.getLength();
  if (length > kMaxAcceleration || length < kMinAcceleration) filtered = Vector(0.0f, 0.0f, 9.8f);
  mySelf->setAccellerator(filtered);
}

// (FRP (n rf) (c X Y Z) (f X Y Z)), metres and newtons in the frame of the foot.
void WorldModel::updateFRP(std::string_view expression) {
  PerceptReader in(expression);
  in.skip(2);
  std::string_view foot;
  in.read(foot);
  in.skip(1);
  FRP frp;
  if (!readCartesian(in, frp.center)) return;
  in.skip(2);
  if (!readCartesian(in, frp.force)) return;
  frp.setLastTimeSensed(gameTime);
  if (letter(foot, 0) == 'r') {
    mySelf->setRightFRP(frp);
  } else {
    mySelf->setLeftFRP(frp);
  }
}

// (HJ (n NAME) (ax A)), degrees. The head's joints are named h?1 and h?2; of any other name the
// first letter tells the side, the second arm or leg, and the number behind the third the joint.
void WorldModel::updateJoint(std::string_view expression) {
  PerceptReader in(expression);
  in.skip(2);
  char first = 0, second = 0, skipped;
  in.read(first, second);
  const bool isHead = first == 'h';
  if (!isHead) in.read(skipped);
  int jointNo;
  std::string_view axis;
  double angle;
  if (!in.read(jointNo, skipped, axis, angle)) return;
  if (isHead) {
    updateHeadJoint(jointNo, angle);
  } else {
    updateJoint(first != 'l', second != 'l', jointNo, angle);
  }
}

void WorldModel::updateJoint(bool jointSide, bool isArm, int jointNo, double JointValue) {
  if (isArm) {
    mySelf->setHandJoint(jointNo, jointSide, static_cast<float>(JointValue));
  } else {
    mySelf->setLegJoint(jointNo, jointSide, static_cast<float>(JointValue));
  }
}

void WorldModel::updateHeadJoint(int jointNo, double JointValue) {
  mySelf->setHeadJoint(jointNo, static_cast<float>(JointValue));
}

// (hear TEAM TIME DIRECTION MESSAGE). A claim is "u", two digits of the number of the player who
// goes to the ball, "rc", two digits of the cycles that it needs.
bool WorldModel::updateHear(std::string_view str) {
  heards.clear();
  PerceptReader in(str);
  std::string_view head, team, direction, message;
  float time;
  if (!in.read(head, team, time, direction, message)) return false;
  if (team != kTeamWord) return false;
  // The message is not checked for being a claim, and the own words count like anyone's.
  fastestTeammateUnum = twoDigits(letter(message, 1), letter(message, 2));
  if (letter(message, 3) == 'r' && letter(message, 4) == 'c') {
    fastestReachCycle = twoDigits(letter(message, 5), letter(message, 6));
  } else if (letter(team, 3) == 'f') {
    fastestIsFall = true;  // the team word never has it, so nobody is ever told to have fallen
  }
  lastTimeHeard = gameTime;
  return false;
}

// (See OBJECT OBJECT ...)
void WorldModel::updateVision(std::string_view expression) {
  if (expression.size() <= kVisionHead) return;
  const std::string_view text = expression.substr(kVisionHead);
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == ')') return;
    if (text[i] != '(') {
      setVision(text.substr(i, 1));
      ++i;
      continue;
    }
    const std::size_t end = endOfExpression(text, i);
    if (end == std::string_view::npos) return;
    setVision(text.substr(i, end - i));
    i = end + 1;  // passes over one separator, whatever it is
  }
}

void WorldModel::setVision(std::string_view str) {
  PerceptReader in(str);
  std::string_view word;
  if (!in.read(word)) return;
  switch (letter(word, 1)) {
    // A sighting counts whether or not its numbers can be read: without them the object is seen now
    // where it was seen last, and the end of a line is where a new line has it.
    case 'B': {  // (B (pol D A E))
      Vector seen = ball->getCameraPosition();
      in.skip(1);
      readPolar(in, seen);
      addCameraBall(seen);
      updateBallVelocity();
      return;
    }
    case 'F':    // (F1L (pol D A E))
    case 'G': {  // (G1L (pol D A E))
      const int index = flagOfWord(word);
      Vector seen = flag[index].getCameraPosition();
      in.skip(1);
      readPolar(in, seen);
      updateCameraFlag(seen, index);
      return;
    }
    case 'L': {  // (L (pol D A E) (pol D A E))
      PerceptReader end(in);
      Vector first, second;
      in.skip(1);
      if (readPolar(in, first)) {
        in.skip(2);
      } else {
        in = end;  // an end that can't be read must not hide the other
        in.skip(5);
      }
      readPolar(in, second);
      addCameraLine(first, second);
      return;
    }
    case 'P':
      setPlayer(str);
      return;
    case 'b': {  // (ballpos X Y Z)
      Vector position;
      if (!readCartesian(in, position)) return;
      ball->setServerBallPos(position);
      updateBallVelocity();
      return;
    }
    case 'm': {  // (mypos X Y Z)
      Vector position;
      if (readCartesian(in, position)) mySelf->setServerMypos(position);
      return;
    }
    default:
      return;
  }
}

// (P (team T) (id N) (head (pol D A E)) ...), read twice: each term for the body parts, and the
// head of the expression, up to the first part, for the player as a whole.
void WorldModel::setPlayer(std::string_view expression) {
  int depth = 0;
  std::size_t start = 0;
  for (std::size_t i = 0; i < expression.size(); ++i) {
    if (expression[i] == '(' && ++depth == 2) start = i + 1;
    if (expression[i] == ')' && --depth == 1) setPositions(expression.substr(start, i - start));
  }

  PerceptReader in(expression);
  std::string_view team, closing, part;
  int number;
  in.skip(2);
  in.read(team);
  in.skip(1);
  if (!in.read(number)) return;
  team.remove_suffix(1);  // its ")"
  Player* const seen = seenPlayer(team, number);
  if (seen == nullptr) return;
  Vector position = seen->getCameraPosition();
  in.read(closing, part);
  in.skip(1);
  readPolar(in, position);
  storeSighting(*seen, position);
}

void WorldModel::setCameraPlayer(std::string_view tname, int id, std::string_view /*pbody*/,
                                 double a1, double a2, double a3) {
  Player* const seen = seenPlayer(tname, id);
  if (seen != nullptr) storeSighting(*seen, Vector(a1, a2, a3, SPHERICAL));
}

Player* WorldModel::seenPlayer(std::string_view team, int number) {
  if (number < 1 || number > kPlayers) return nullptr;
  return &player[team == ownTeamName() ? 0 : 1][number - 1];
}

void WorldModel::setPositions(std::string_view strt) {
  static int id = 0;  // of the player whose terms are being read

  // The rows are ours and theirs; these two sides say nothing about where we play. The tactics
  // reads them as they are.
  for (int i = 1; i <= kPlayers; ++i) {
    player[0][i - 1].setTeamSide(SIDE_LEFT);
    player[0][i - 1].setPlayerNumber(i);
    player[1][i - 1].setTeamSide(SIDE_RIGHT);
    player[1][i - 1].setPlayerNumber(i);
  }

  PerceptReader in(strt);
  const std::string_view key = strt.substr(0, 2);
  if (key == "id") {  // id N
    id = 0;
    in.skip(1);
    in.read(id);
    return;
  }
  if (key == "te") {  // team NAME
    std::string_view name;
    in.skip(1);
    in.read(name);
    s = name == ownTeamName() ? 0 : 1;
    return;
  }
  for (const BodyPart& part : kBodyParts) {
    if (key != part.key) continue;
    // head (pol D A E), in single precision unlike all other sightings
    if (id < 1 || id > kPlayers) return;
    Player& seen = player[s][id - 1];
    float distance, azimuth, elevation;
    in.skip(2);
    if (in.read(distance, azimuth, elevation)) {
      seen.*part.position = Vector(distance, azimuth, elevation, SPHERICAL);
    }
    seen.*part.lastTimeSeen = gameTime;
    return;
  }
}

bool WorldModel::addCameraBall(Vector vec) {
  storeSighting(*ball, vec);
  return true;
}

bool WorldModel::addCameraLine(Vector vec1, Vector vec2) {
  Object first, second;
  storeSighting(first, vec1);
  storeSighting(second, vec2);
  FieldLine& line = fieldLine.emplace_back();
  line.setFirstPoint(first);
  line.setSecondPoint(second);
  return true;
}

void WorldModel::updateCameraFlag(Vector vec, int fno) {
  storeSighting(flag[fno], vec);
}

void WorldModel::storeSighting(Object& object, Vector cameraPosition) {
  object.setCameraPosition(cameraPosition);
  object.setLastTimeSeen(gameTime);
}

void WorldModel::updateBallVelocity() {
  // Runs while parsing, so both positions are those of sightings before this one.
  ball->setVelocity((ball->getGlobalPosition() - ball->getPreviousPosition()) / 0.94);
}

const std::string& WorldModel::ownTeamName() {
  if (teamName.empty()) teamName = config["Agent"]["Public"]["TeamName"].asString();
  return teamName;
}
