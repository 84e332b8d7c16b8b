#ifndef QUOLNARIS_TESTS_SUPPORT_TESTPLAYER_H_
#define QUOLNARIS_TESTS_SUPPORT_TESTPLAYER_H_

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "AdvancedAction/Decide.h"
#include "Agent/OurPlayer.h"
#include "BasicAction/Turn.h"
#include "BasicAction/Walk.h"
#include "Mathematics/Vector.h"
#include "Utilities/Types.h"
#include "support/FakeServer.h"
#include "support/TempDirectory.h"

// Tests of the whole player in this process.
//
// The player keeps state in statics of functions and files, one player per process. A test that
// drives it therefore runs in a process of its own, forked from one that never did:
//
//   PLAYER_TEST(DribbleTest, WalksToTheBall) {
//     support::TestPlayer player(9);
//     ...
//   }

namespace support {

// Runs `body` in a forked process; its failed expectations fail the running test.
void inFreshProcess(void (*body)());

// What is on the pitch, in the frame of its own team (own goal at negative x), metres and degrees.
struct Scene {
  struct Other {
    bool mate;
    int number;
    double x;
    double y;
    Orientation facing = NORTH;  // as the player's model reads it off the arms
    bool fallen = false;
  };

  double x = -5;
  double y = 0;
  double heading = 0;  // 0 looks along +x, positive to the left
  std::optional<std::pair<double, double>> ball{{0, 0}};
  std::vector<Other> others;
  std::string mode = "PlayOn";  // as on the wire
  FallOrientation lying = FALL_NONE;
  std::string heard;  // a hear expression, whole
};

// The player of the deployment's configuration in a world made of percept messages: every cycle
// it gets a whole message (game state, gyro, accelerometer, hinges, vision with landmarks, lines,
// ball and players) and its 24 hinges move as its answer says.
//
// As on the wire, a command is carried out in the cycle after it was sent and sensed in the next.
class TestPlayer {
 public:
  // Overrides of configuration keys: file, group, key, text.
  using Overrides = std::vector<std::array<std::string, 4>>;

  explicit TestPlayer(int number, TeamSide side = SIDE_LEFT, const Overrides& overrides = {});
  ~TestPlayer();
  TestPlayer(const TestPlayer&) = delete;
  TestPlayer& operator=(const TestPlayer&) = delete;

  // Lets the player find its place: enough cycles before kick-off at the scene's position, looking
  // along +x, until belief and scene agree to a tenth of a millimetre.
  void settle();

  // One cycle of 20 ms; the effector message. The scene's heard text is said once.
  std::string cycle();

  // As many cycles.
  void cycles(int count) {
    for (int i = 0; i < count; ++i) cycle();
  }

  // Moves the hinges as commanded since the last call, and lets the player sense it: a cycle
  // without percepts and without a decision, for tests of single actions.
  void bodyCycle();

  // Calls `step` once per body cycle until it returns true; how many calls that took, or `limit`.
  template <typename Step>
  int until(Step step, int limit = 3000) {
    for (int i = 1; i <= limit; ++i) {
      const bool done = step();
      bodyCycle();
      if (done) return i;
    }
    ADD_FAILURE() << "not done within " << limit << " cycles";
    return limit;
  }

  // @name The belief, written directly.
  // @{
  void me(double x, double y, double heading = 0);
  void ball(double x, double y, double z = 0);  // seen now, at rest
  // Row 0 is vision's own team. Seen now, standing, both feet at (x, y).
  Player& see(int row, int unum, double x, double y, Orientation facing = NORTH);
  // Gives every entry its number and side, as the first sighting of any player does.
  void numberEverybody();
  // @}

  // Counts as running while nothing does: a turn that is asked for keeps its parameters, which a
  // change of action would clear.
  static constexpr ActionType kIdle = AT_TURN;

  // Makes the next call show what it asks for: nothing runs, nothing has been asked for yet, and
  // no reset is owed before a walk.
  void arm();

  // What has been asked for since arm().
  bool askedToWalk() const { return player.walk->type == AT_OMNIWALK; }
  bool askedToTurn() const { return player.turn->type == AT_TURN; }
  bool askedForDecide() const { return player.decide->lastPos != Vector(20, 20, 0); }

  // The message that cycle() would give to the player.
  std::string percepts();

  // Connects the player to a server in this process, for decisions that exchange messages.
  FakeServer& connect();

  // Written to the log so far.
  std::string log() const;

  // Written to the standard output since the last call.
  std::string takeOutput();

  // The angle of a hinge by its name on the wire, degrees.
  double& hinge(const std::string& name) { return hinges.at(name).angle; }

  Scene scene;
  double time = 0;
  int beamsPerCycle = 0;  // frames to hold ready for beams of the decision
  int seeEvery = 1;       // every how many messages hold vision; the league's server takes 3

 private:
  struct Hinge {
    double angle = 0;
    double underWay = 0;
  };

  std::string see() const;
  std::string polar(double px, double py, double pz) const;
  void carryOut(const std::string& answer);

  TempDirectory directory;
  WorkingDirectory working;
  std::ostringstream output;
  std::streambuf* formerOutput;
  std::unique_ptr<FakeServer> server;
  std::map<std::string, Hinge> hinges;
  int messages = 0;
  double toldHeading = 0;  // what the gyro messages so far add up to
  TeamSide side;
  int number;
  std::unique_ptr<OurPlayer> owned;

 public:
  OurPlayer& player;
  WorldModel& world;
};

// All numbers of the effector message's hinge terms are finite and none is missing.
void expectWholeAnswer(const std::string& answer);

}  // namespace support

#define PLAYER_TEST(suite, name)                    \
  static void suite##_##name##_Body();              \
  TEST(suite, name) {                               \
    support::inFreshProcess(suite##_##name##_Body); \
  }                                                 \
  static void suite##_##name##_Body()

#endif  // QUOLNARIS_TESTS_SUPPORT_TESTPLAYER_H_
