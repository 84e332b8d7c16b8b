// Ten minutes of a match through the whole player: every play mode for either side, goals with
// their beams, set plays, a goalie's dive, falls of every kind.

#include <malloc.h>

#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "AdvancedAction/Dribble.h"
#include "Agent/JointController.h"
#include "BasicAction/TAB.h"
#include "Decision/Decision.h"
#include "Utilities/FastIC.h"
#include "support/TestPlayer.h"

namespace {

// Joint targets that were not a number, counted before the joint layer turns them into rest.
long targets = 0;
long targetsNotANumber = 0;

}  // namespace

// The linker leads every call of JointController::setAngle here (see tests/CMakeLists.txt).
extern "C" bool __real__ZN15JointController8setAngleEffff(JointController* self, float value,
                                                          float gain, float error, float max);
extern "C" bool __wrap__ZN15JointController8setAngleEffff(JointController* self, float value,
                                                          float gain, float error, float max) {
  ++targets;
  if (std::isnan(value)) ++targetsNotANumber;
  return __real__ZN15JointController8setAngleEffff(self, value, gain, error, max);
}

namespace {

using support::TestPlayer;

struct Act {
  const char* mode;  // for a team on the left; the sides swap for one on the right
  double seconds;
  FallOrientation fall = FALL_NONE;  // after half of the act
  bool shot = false;                 // at our goal, again and again
};

// 60 s, to be played ten times.
constexpr Act kMinute[] = {
    {"BeforeKickOff", 1},
    {"KickOff_Left", 4},
    {"PlayOn", 8, FALL_FRONT},
    {"KickIn_Left", 3},
    {"PlayOn", 4, FALL_LEFT},
    {"KickIn_Right", 1},
    {"corner_kick_left", 2},
    {"PlayOn", 6, FALL_BACK},
    {"corner_kick_right", 1},
    {"goal_kick_left", 3},
    {"PlayOn", 2, FALL_NONE, true},
    {"goal_kick_right", 1},
    {"offside_left", 2},
    {"offside_right", 1},
    {"free_kick_left", 4, FALL_RIGHT},
    {"PlayOn", 5, FALL_NONE, true},
    {"free_kick_right", 1},
    {"Goal_Left", 2},
    {"KickOff_Right", 1},
    {"PlayOn", 3},
    {"Goal_Right", 2},
    {"quit", 1},
    {"no such mode", 2},
};

std::string swapSides(std::string mode) {
  for (const auto& [left, right] : {std::pair("Left", "Right"), std::pair("left", "right")}) {
    if (const auto at = mode.find(left); at != std::string::npos) {
      return mode.replace(at, std::string(left).size(), right);
    }
    if (const auto at = mode.find(right); at != std::string::npos) {
      return mode.replace(at, std::string(right).size(), left);
    }
  }
  return mode;
}

bool isNumber(Vector v) {
  return std::isfinite(v.getX()) && std::isfinite(v.getY()) && std::isfinite(v.getZ());
}

class Match {
 public:
  Match(int number, TeamSide side) : p(number, side), left(side == SIDE_LEFT) {
    server = &p.connect();
    p.scene.x = number == 1 ? -14 : -6;
    p.scene.y = number == 1 ? 0 : 0.5 * number - 3;
    place();
    p.settle();
    p.seeEvery = 3;
  }

  void play(int minutes) {
    for (int minute = 0; minute < minutes; ++minute) {
      for (const Act& act : kMinute) run(act);
      heap.push_back(mallinfo2().uordblks);
    }
  }

  // What was not a number, by where it stood; every one is checked against the rule that allows it.
  std::map<std::string, long> notANumber;
  std::vector<std::size_t> heap;  // bytes in use after each minute
  long cycles = 0;
  long said = 0;
  long beams = 0;
  long dives = 0;
  std::map<int, long> standUps;  // by the motion that they began with

 private:
  // The others drift about the pitch; the ball wanders, so that every part of it is played.
  void place() {
    const double t = p.time;
    p.scene.others.clear();
    for (int i = 1; i <= 11; ++i) {
      const Orientation facings[] = {NORTH, EAST, SOUTH, WEST};
      const double phase = t * 0.11 + i;
      p.scene.others.push_back(
          {true, i, -7 + 5 * std::sin(phase), 6 * std::cos(phase * 0.7), facings[i % 4], i == 3});
      p.scene.others.push_back({false, i, 7 * std::sin(phase * 1.3), 6 * std::cos(phase * 1.1),
                                facings[(i + 1) % 4], i == 4});
    }
    p.scene.ball = {9 * std::sin(t * 0.17), 6 * std::sin(t * 0.23)};
  }

  // The player walks with the ball now and then, so that it dribbles, and loses it again.
  void wander(const Act& act, int cycle) {
    if (act.shot) {
      const double roll = cycle % 50;
      p.scene.ball = {-11 - roll * 0.08, 0.9 * std::sin(cycle / 50 * 2.0)};
    } else if (std::string(act.mode) == "PlayOn" && cycle / 100 % 2 == 0) {
      p.scene.ball = {p.scene.x + 0.15, p.scene.y};
    }
    if (cycle % 400 > 300) p.scene.ball.reset();  // out of sight
  }

  void run(const Act& act) {
    p.scene.mode = left ? act.mode : swapSides(act.mode);
    const int length = static_cast<int>(act.seconds * 50);
    for (int cycle = 0; cycle < length; ++cycle) {
      place();
      wander(act, cycle);
      p.scene.heading = 30 * std::sin(p.time * 0.3);
      p.scene.lying = FALL_NONE;
      if (act.fall != FALL_NONE && cycle > length / 2 && cycle < length / 2 + 40) {
        p.scene.lying = act.fall;
      }
      if (cycle % 40 == 20) p.scene.heard = "(hear Quolnaris 1 30 u08rc05)";
      if (cycle % 40 == 30) p.scene.heard = "(hear Quolnaris 1 self " + own() + "rc02)";
      step();
    }
  }

  std::string own() const {
    const int number = p.world.mySelf->getAgentNum();
    return "u" + std::string(number < 10 ? "0" : "") + std::to_string(number);
  }

  // Messages that the decision will exchange by itself in this cycle.
  int beamsDue() const {
    const bool ours = p.scene.mode == (left ? "Goal_Left" : "Goal_Right");
    if (p.scene.mode.rfind("Goal_", 0) != 0) return 0;
    int count = p.player.de.beamCount + 1;
    int due = 0;
    for (int row = ours ? 0 : 1; row < 2; ++row) {
      if (count <= 9) ++count, ++due;
    }
    return due;
  }

  void step() {
    Decision& de = p.player.de;
    const long before = targetsNotANumber;
    const bool wasUp = de.checkstandup;
    const bool dived = de.diveFreeze;
    p.player.dribble->nextPoint = Vector(0, 0, 0);  // worked out afresh whenever it is used
    p.beamsPerCycle = beamsDue();
    const std::string answer = p.cycle();
    for (int i = 0; i < p.beamsPerCycle; ++i) {
      ASSERT_EQ(server->receive().rfind("(beam ", 0), 0u);
      ++beams;
    }
    ++cycles;
    if (answer.find("(say ") != std::string::npos) ++said;
    if (wasUp && !de.checkstandup) ++standUps[de.standstate];
    if (!dived && de.diveFreeze) ++dives;
    support::expectWholeAnswer(answer);
    p.takeOutput();
    check(targetsNotANumber - before);
  }

  void check(long newTargets) {
    OurPlayer& player = p.player;
    // The belief never loses its numbers in a world that makes sense.
    ASSERT_TRUE(isNumber(p.world.getAgentPosition()));
    ASSERT_TRUE(isNumber(p.world.ball->getGlobalPosition()));
    ASSERT_TRUE(isNumber(player.turn->v));
    ASSERT_TRUE(isNumber(player.turnAroundBall->vec));

    // The rule that allows a point that is not a number: a dribble past an opponent that is first
    // at a point more than 1 m ahead takes the root of a negative number, and with the ball at its
    // feet the player walks to that point.
    if (!isNumber(player.dribble->nextPoint)) {
      ++notANumber["dribble point"];
      EXPECT_GT(firstLookWithOpponent(), 1);
      badDribble = true;
    }
    if (!isNumber(player.walk->v)) {
      ++notANumber["walk target"];
      EXPECT_TRUE(badDribble);
    }
    if (!isNumber(player.decide->lastPos)) ++notANumber["decided point"];
    // It does not reach the joints: a gait only compares the bearing of its target, and every
    // comparison is false.
    notANumber["joint target"] += newTargets;
  }

  // How far ahead of the ball an opponent is first, metres; 0 for nowhere.
  double firstLookWithOpponent() {
    const TeamSide other = left ? SIDE_RIGHT : SIDE_LEFT;
    const Vector ball = p.player.dribble->ballPos;
    for (int i = 0; i < 5; ++i) {
      Vector way = Vector(15, 0, 0) - ball;
      way.setLength(0.5 + 0.2 * i);
      FastIC fc(&p.world);
      fc.setTarget(ball + way, Vector(0, 0, 0), 0);
      fc.setPlayers();
      fc.calculate();
      if (fc.fastest.human.getTeamSide() == other) return 0.5 + 0.2 * i;
    }
    return 0;
  }

  TestPlayer p;
  support::FakeServer* server;
  bool left;
  bool badDribble = false;
};

// Shows the counts in the test's record, and checks what must hold of every match.
void report(const Match& match) {
  std::string counts;
  for (const auto& [where, count] : match.notANumber) {
    counts += " " + where + ": " + std::to_string(count);
  }
  std::printf("%ld cycles, %ld claims, %ld dives, not a number:%s, of %ld joint targets\n",
              match.cycles, match.said, match.dives, counts.c_str(), targets);
  const auto count = [&](const char* where) {
    const auto found = match.notANumber.find(where);
    return found == match.notANumber.end() ? 0 : found->second;
  };
  EXPECT_EQ(count("joint target"), 0);
  EXPECT_EQ(count("decided point"), 0);
  // Messages of the decision's own: two in each of three cycles after our goal. The count of beams
  // that this leaves reaches their goal, which gets none.
  EXPECT_EQ(match.beams, 6 * static_cast<long>(match.heap.size()));
}

void playTenMinutes(Match& match) {
  match.play(10);
  report(match);
  EXPECT_EQ(match.cycles, 10 * 60 * 50);
  // The heap is as large after ten minutes as after two (a sanitizer's heap tells nothing).
  EXPECT_NEAR(static_cast<double>(match.heap.back()), static_cast<double>(match.heap[1]), 4096);
}

PLAYER_TEST(MatchTest, TenMinutesOfASetPlayTakerOnTheLeft) {
  Match match(10, SIDE_LEFT);
  playTenMinutes(match);
  EXPECT_EQ(match.standUps.at(2), 10);  // from the front, the back, and by a flip from each side
  EXPECT_EQ(match.standUps.at(3), 10);
  EXPECT_EQ(match.standUps.at(4), 20);
  EXPECT_GT(match.said, 0);
  EXPECT_EQ(match.dives, 0);
}

// Once in a dive the goalie counts as diving for good: only the short block ever says that it has
// finished, and nobody asks for it. So it falls out of the common stand-up, and gets up by its own.
PLAYER_TEST(MatchTest, TenMinutesOfAGoalieOnTheRight) {
  Match match(1, SIDE_RIGHT);
  playTenMinutes(match);
  EXPECT_EQ(match.said, 0);
  EXPECT_EQ(match.dives, 1);
}

class MatchNumberTest : public testing::TestWithParam<std::tuple<int, TeamSide>> {};

TEST_P(MatchNumberTest, AMinuteOfEveryNumberOnEitherSide) {
  support::inFreshProcess([] {
    const auto [number, side] = GetParam();
    Match match(number, side);
    match.play(1);
    report(match);
    EXPECT_EQ(match.cycles, 60 * 50);
  });
}

std::string nameOf(const testing::TestParamInfo<MatchNumberTest::ParamType>& test) {
  const TeamSide side = std::get<1>(test.param);
  return std::to_string(std::get<0>(test.param)) + (side == SIDE_LEFT ? "Left" : "Right");
}

INSTANTIATE_TEST_SUITE_P(EveryNumber, MatchNumberTest,
                         testing::Combine(testing::Range(1, kPlayers + 1),
                                          testing::Values(SIDE_LEFT, SIDE_RIGHT)),
                         nameOf);

}  // namespace
