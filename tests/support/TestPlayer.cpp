#include "support/TestPlayer.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>

#include "AdvancedAction/GoToGoal.h"
#include "AdvancedAction/GoToKick.h"
#include "AdvancedAction/GoToPoint.h"
#include "BasicAction/Kick.h"
#include "BasicAction/Reset.h"
#include "BasicAction/TAB.h"
#include "Decision/Actions.h"
#include "Utilities/Logger.h"

namespace support {

namespace {

// The height at which the player believes its torso to be, always.
constexpr double kTorsoHeight = 0.45;

struct Landmark {
  const char* name;
  double x, y, z;  // frame of the left team
};
constexpr Landmark kLandmarks[] = {
    {"F1L", -15, 10, 0},    {"F2L", -15, -10, 0},    {"F1R", 15, 10, 0},
    {"F2R", 15, -10, 0},    {"G1L", -15, 1.05, 0.8}, {"G2L", -15, -1.05, 0.8},
    {"G1R", 15, 1.05, 0.8}, {"G2R", 15, -1.05, 0.8},
};

const char* const kHingeNames[] = {"lae1", "rae1", "lae2", "rae2", "lae3", "rae3", "lae4", "rae4",
                                   "lle1", "rle1", "lle2", "rle2", "lle3", "rle3", "lle4", "rle4",
                                   "lle5", "rle5", "lle6", "rle6", "lle7", "rle7", "he1",  "he2"};

// Every role is played and the set-play taker kicks, whatever the deployment makes of them.
const TestPlayer::Overrides kFullTeam = {
    {"Agent", "AgentPost", "P", "3 2 2 2 2 1 1 1 0 0 0"},
    {"decision", "time", "t", "0 0 6 6 6 6 0 0 6 6"},
};

// A directory with the deployment's configuration, a full team and the overrides written behind it,
// and a place for the logs.
void furnish(const TempDirectory& directory, const TestPlayer::Overrides& overrides) {
  namespace fs = std::filesystem;
  fs::create_directories(directory.path() / "Logs");
  fs::copy(fs::path(QUOLNARIS_SOURCE_DIR) / "Configs", directory.path() / "Configs");
  for (const TestPlayer::Overrides& entries : {kFullTeam, overrides}) {
    for (const auto& [file, group, key, text] : entries) {
      std::ofstream out(directory.path() / "Configs" / (file + ".conf"), std::ios::app);
      out << "\n[" << group << "]\n" << key << " = " << text << "\n";
    }
  }
}

std::unique_ptr<OurPlayer> makePlayer(int number, int port) {
  std::vector<std::string> arguments = {"quolnaris", "--number", std::to_string(number),
                                        "--player-port", std::to_string(port)};
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  auto player = std::make_unique<OurPlayer>(static_cast<int>(argv.size()), argv.data());
  player->publish();
  return player;
}

}  // namespace

void inFreshProcess(void (*body)()) {
  std::fflush(nullptr);
  const pid_t child = fork();
  ASSERT_GE(child, 0) << "fork";
  if (child == 0) {
    body();
    std::fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 0) << "see the failures above";
}

TestPlayer::TestPlayer(int unum, TeamSide teamSide, const Overrides& overrides)
    : working((furnish(directory, overrides), directory.path())),
      formerOutput(std::cout.rdbuf(output.rdbuf())),
      server(std::make_unique<FakeServer>()),
      side(teamSide),
      number(unum),
      owned(makePlayer(unum, server->port())),
      player(*owned),
      world(*owned->WM) {
  for (const char* name : kHingeNames) hinges[name];
}

TestPlayer::~TestPlayer() {
  std::cout.rdbuf(formerOutput);
}

FakeServer& TestPlayer::connect() {
  player.initConnection();
  server->accept();
  return *server;
}

void TestPlayer::settle() {
  const std::string mode = scene.mode;
  const double heading = scene.heading;
  scene.mode = "BeforeKickOff";
  scene.heading = 0;
  cycles(25);
  scene.mode = mode;
  scene.heading = heading;
}

std::string TestPlayer::cycle() {
  for (int i = 0; i < beamsPerCycle; ++i) server->send(percepts());
  player.msg = percepts();
  scene.heard.clear();
  time += 0.02;
  player.cycle();
  const std::string answer = player.command->getFinal();
  player.command->clear();
  carryOut(answer);
  return answer;
}

void TestPlayer::bodyCycle() {
  player.bControl.makeCommand(player.command);
  player.command->setFinal();
  carryOut(player.command->getFinal());
  player.command->clear();
  for (const auto& [name, hinge] : hinges) {
    std::ostringstream percept;
    percept << "(HJ (n " << name << ") (ax " << hinge.angle << "))";
    world.updateJoint(percept.str());
  }
  player.bControl.adjustJoints();
}

void TestPlayer::me(double x, double y, double heading) {
  world.mySelf->GlobalPosition =
      Vector(static_cast<float>(x), static_cast<float>(y), static_cast<float>(kTorsoHeight));
  world.mySelf->gyro.identityMatrix();
  world.mySelf->gyro.rotationByZ(static_cast<float>(heading));
}

void TestPlayer::ball(double x, double y, double z) {
  world.ball->GlobalPosition =
      Vector(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
  world.ball->setVelocity(Vector(0, 0, 0));
  world.ball->setLastTimeSeen(world.gameTime);
}

void TestPlayer::numberEverybody() {
  for (int row = 0; row < 2; ++row) {
    for (int i = 0; i < 11; ++i) {
      world.player[row][i].setTeamSide(row == 0 ? SIDE_LEFT : SIDE_RIGHT);
      world.player[row][i].setPlayerNumber(i + 1);
    }
  }
}

Player& TestPlayer::see(int row, int unum, double x, double y, Orientation facing) {
  numberEverybody();
  Player& other = world.player[row][unum - 1];
  const Vector pos(static_cast<float>(x), static_cast<float>(y), 0);
  other.leftFootPosition = other.rightFootPosition = pos;
  other.headPosition = Vector(0, 0, 0.6f);
  other.headLastTimeSeen = world.gameTime;
  const Vector arm(facing == NORTH   ? -0.25f
                   : facing == SOUTH ? 0.25f
                                     : 0,
                   facing == WEST   ? -0.25f
                   : facing == EAST ? 0.25f
                                    : 0,
                   0);
  other.leftLowerArmPosition = pos + arm;
  other.rightLowerArmPosition = pos - arm;
  return other;
}

void TestPlayer::arm() {
  player.actions->preAction = true;
  player.actions->endStepIsRequired = false;
  player.actions->NowAction.actionType = kIdle;
  player.reset->State = -1;
  player.walk->type = AT_NONE;
  player.walk->v = Vector(77, 77, 77);
  player.turn->type = AT_NONE;
  player.turn->v = Vector(77, 77, 77);
  player.kick->type = AT_NONE;
  player.kick->stableState = 0;
  player.turnAroundBall->vec = Vector(77, 77, 77);
  player.decide->resetVars();
  player.goToPoint->resetVars();
  player.goToPoint->rokhsat = false;
  player.goToPoint->tashkor = false;
  player.goToGoal->state = 0;
  GTKstate = 1;
}

std::string TestPlayer::percepts() {
  std::ostringstream out;
  out << std::fixed << std::setprecision(4);
  out << "(time (now " << time << "))(GS (unum " << number << ") (team "
      << (side == SIDE_LEFT ? "left" : "right") << ") (sl 0) (sr 0) (t " << time << ") (pm "
      << scene.mode << "))";

  // While play is stopped the player takes itself to look along +x.
  const bool reset = scene.mode == "BeforeKickOff" || scene.mode.rfind("Goal_", 0) == 0;
  const double turned = reset ? 0 : scene.heading - toldHeading;
  toldHeading = reset ? 0 : scene.heading;
  out << "(GYR (n torso) (rt 0 0 " << turned * 50 << "))";

  // The filter of the player takes a tenth of each sample: this one brings it there at once.
  const Vector now = world.mySelf->getAccellerator();
  const double lie = 9.5;
  double want[3] = {0, 0, 9.8};
  if (scene.lying != FALL_NONE) want[2] = 1;
  if (scene.lying == FALL_RIGHT) want[0] = -lie;
  if (scene.lying == FALL_LEFT) want[0] = lie;
  if (scene.lying == FALL_BACK) want[1] = lie;
  if (scene.lying == FALL_FRONT) want[1] = -lie;
  out << "(ACC (n torso) (a " << (want[0] - now.getX() * 0.9) * 10 << " "
      << (want[1] - now.getY() * 0.9) * 10 << " " << (want[2] - now.getZ() * 0.9) * 10 << "))";

  for (const char* name : kHingeNames) {
    out << "(HJ (n " << name << ") (ax " << hinges.at(name).angle << "))";
  }
  if (!scene.heard.empty()) out << scene.heard;
  if (messages++ % seeEvery == 0) out << see();
  return out.str();
}

// The direction of a point of the pitch from the camera: back through the torso's heading and the
// neck, whose pan and tilt are the head's hinges.
std::string TestPlayer::polar(double px, double py, double pz) const {
  const auto rad = [](double degrees) { return degrees * M_PI / 180; };
  const double dx = px - scene.x;
  const double dy = py - scene.y;
  const double z = pz - kTorsoHeight;
  const double pan = rad(toldHeading + hinges.at("he1").angle);
  const double tilt = rad(hinges.at("he2").angle);
  const double ahead = dx * std::cos(pan) + dy * std::sin(pan);
  const double left = -dx * std::sin(pan) + dy * std::cos(pan);
  const double x = ahead * std::cos(tilt) + z * std::sin(tilt);
  const double up = -ahead * std::sin(tilt) + z * std::cos(tilt);
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "(pol %.8f %.8f %.8f)",
                std::sqrt(x * x + left * left + up * up), std::atan2(left, x) * 180 / M_PI,
                std::atan2(up, std::hypot(x, left)) * 180 / M_PI);
  return text.data();
}

std::string TestPlayer::see() const {
  const double turn = side == SIDE_LEFT ? 1 : -1;
  std::ostringstream out;
  out << "(See";
  for (const Landmark& mark : kLandmarks) {
    out << " (" << mark.name << " " << polar(turn * mark.x, turn * mark.y, mark.z) << ")";
  }
  if (scene.ball) out << " (B " << polar(scene.ball->first, scene.ball->second, 0) << ")";
  for (const Scene::Other& other : scene.others) {
    // Arms half a metre apart, along the axis by which the player's model reads the facing.
    double ax = 0, ay = 0;
    if (other.facing == SOUTH) ax = 0.25;
    if (other.facing == NORTH) ax = -0.25;
    if (other.facing == EAST) ay = 0.25;
    if (other.facing == WEST) ay = -0.25;
    out << " (P (team " << (other.mate ? "Quolnaris" : "Rivals") << ") (id " << other.number
        << ") (head " << polar(other.x, other.y, other.fallen ? 0.1 : 0.55) << ") (rlowerarm "
        << polar(other.x - ax, other.y - ay, 0.3) << ") (llowerarm "
        << polar(other.x + ax, other.y + ay, 0.3) << ") (rfoot " << polar(other.x, other.y, 0)
        << ") (lfoot " << polar(other.x, other.y, 0) << "))";
  }
  out << " (L " << polar(15, 10, 0) << " " << polar(-15, 10, 0) << ") (L " << polar(15, 10, 0)
      << " " << polar(15, -10, 0) << "))";
  return out.str();
}

void TestPlayer::carryOut(const std::string& answer) {
  for (auto& [name, hinge] : hinges) {
    hinge.angle += hinge.underWay;
    hinge.underWay = 0;
    const auto at = answer.find("(" + name + " ");
    if (at != std::string::npos) hinge.underWay = std::stod(answer.substr(at + name.size() + 2));
  }
}

std::string TestPlayer::log() const {
  logger["Agent"] << std::flush;
  return directory.read("Logs/Agent" + std::string(1, static_cast<char>('0' + number)) + ".log");
}

std::string TestPlayer::takeOutput() {
  const std::string text = output.str();
  output.str("");
  return text;
}

void expectWholeAnswer(const std::string& answer) {
  for (const char* name : kHingeNames) {
    const auto at = answer.find("(" + std::string(name) + " ");
    ASSERT_NE(at, std::string::npos) << name << " in " << answer;
    const double speed = std::stod(answer.substr(at + std::string(name).size() + 2));
    EXPECT_TRUE(std::isfinite(speed)) << name;
    EXPECT_LE(std::fabs(speed), 6) << name;
  }
}

}  // namespace support
