#include "Match/Match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "Common/Pitch.h"

namespace arena {
namespace {

class MatchTest : public testing::Test {
 protected:
  static MatchOptions exact() {
    MatchOptions options;
    options.noise = false;
    return options;
  }

  Match::AgentId join(Match& game, int number, const std::string& team, int type = 0) {
    const auto agent = game.connect();
    game.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")");
    steps(game, 2);
    game.receive(agent, "(init (unum " + std::to_string(number) + ")(teamname " + team + "))");
    steps(game, 1);
    return agent;
  }
  static void steps(Match& game, int count) {
    for (int i = 0; i < count; ++i) game.step();
  }
  static const RobotView& view(Match& game, Match::AgentId agent) {
    return *game.world().find(agent);
  }
  static bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
  }
  // The names of the expressions, HJ and FRP with the name of joint or foot.
  static std::vector<std::string> expressions(const std::string& text) {
    std::vector<std::string> names;
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == ')') --depth;
      if (text[i] != '(') continue;
      if (depth++ > 0) continue;
      std::string name = text.substr(i + 1, text.find_first_of(" )", i + 1) - i - 1);
      if (name == "HJ" || name == "FRP") {
        const std::size_t n = text.find("(n ", i) + 3;
        name += ' ' + text.substr(n, text.find(')', n) - n);
      }
      names.push_back(name);
    }
    return names;
  }

  Match match{exact()};
};

// ------------------------------------------------------------------------------------ connection

TEST_F(MatchTest, GivesNothingToAnAgentWithoutAScene) {
  const auto agent = match.connect();
  match.receive(agent, "(init (unum 1)(teamname Alpha))(beam 0 0 0)(he1 1)");
  steps(match, 5);
  EXPECT_FALSE(match.hasScene(agent));
  EXPECT_EQ(match.percept(agent), "");
  EXPECT_TRUE(match.world().robots().empty());
}

TEST_F(MatchTest, BuildsTheRobotInTheSceneCycleAndMakesTheFirstPerceptInTheNext) {
  const auto agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 3)");
  EXPECT_TRUE(match.hasScene(agent));
  match.step();
  EXPECT_EQ(match.percept(agent), "");
  ASSERT_EQ(match.world().robots().size(), 1u);
  EXPECT_EQ(match.world().robots()[0].type, 3);
  EXPECT_NEAR(match.world().robots()[0].torso.translation().z(), 1.5 - 9.81 * 4e-4, 1e-5);
  match.step();
  EXPECT_EQ(match.percept(agent).substr(0, 18), "(time (now 0.04))(");
  // What fell for two steps, as the league's own first percept says.
  EXPECT_NEAR(match.world().robots()[0].torso.translation().z(), 1.4882, 5e-5);
}

TEST_F(MatchTest, UnderstandsEffectorsOnceTheFirstPerceptIsMade) {
  const auto agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)(init (unum 1)(teamname Alpha))");
  match.step();
  match.receive(agent, "(init (unum 1)(teamname Alpha))(he1 1.5)");
  match.step();
  EXPECT_EQ(view(match, agent).side, Side::None);
  EXPECT_TRUE(std::regex_search(match.percept(agent), std::regex(R"(hj1\) \(ax -?0\.00)")));
  match.receive(agent, "(init (unum 1)(teamname Alpha))(he1 1.5)");
  match.step();
  EXPECT_EQ(view(match, agent).side, Side::Left);
  EXPECT_TRUE(contains(match.percept(agent), "(HJ (n hj1) (ax 1.7"));
}

TEST_F(MatchTest, TakesTheSceneWithoutATypeForTypeZero) {
  const auto agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao.rsg)");
  match.step();
  ASSERT_EQ(match.world().robots().size(), 1u);
  EXPECT_EQ(match.world().robots()[0].type, 0);
}

TEST_F(MatchTest, IgnoresScenesItDoesNotKnow) {
  const auto agent = match.connect();
  for (const char* frame :
       {"(scene)", "(scene rsg/agent/other.rsg)", "(scene rsg/agent/nao/nao_hetero.rsg 5)",
        "(scene rsg/agent/nao/nao_hetero.rsg -1)", "(scene (rsg) 1)"}) {
    match.receive(agent, frame);
    match.step();
    EXPECT_FALSE(match.hasScene(agent)) << frame;
  }
}

TEST_F(MatchTest, WritesTheAccelerometerOfTheLeaguesFirstFrames) {
  const auto agent = match.connect();
  const auto acceleration = [&] {
    std::smatch found;
    std::regex_search(match.percept(agent), found,
                      std::regex(R"(\(a -?[0-9.]+ -?[0-9.]+ (-?[0-9.]+)\))"));
    return found[1].str();
  };
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  steps(match, 2);
  EXPECT_EQ(acceleration(), "0.00");  // frame 1
  match.step();
  EXPECT_EQ(acceleration(), "0.01");  // frame 2
  match.receive(agent, "(init (unum 1)(teamname Alpha))");
  match.step();
  EXPECT_EQ(acceleration(), "29.42");  // frame 3, put to its start place
  match.receive(agent, "(beam -1 1 0)");
  match.step();
  EXPECT_EQ(std::stod(acceleration()), 0.0);  // frame 4
  match.receive(agent, "(beam -1 1 0)");
  match.step();
  EXPECT_EQ(acceleration(), "9.81");  // frame 5
}

// What the league's server showed the first robot in its first frame, 1.49 m above the pitch.
TEST_F(MatchTest, SeesWhatTheLeaguesFirstFrameShows) {
  const std::string recorded =
      "(See (F1L (pol 18.65 53.56 -4.91)) (F1R (pol 18.66 -53.91 -5.08)) (B (pol 1.89 0.24 "
      "-58.01)) "
      "(L (pol 1.89 0.14 -60.24) (pol 11.11 -0.25 -8.37)) (L (pol 17.40 -60.06 -5.51) (pol 18.67 "
      "-54.11 -4.99)) (L (pol 17.41 59.96 -5.45) (pol 18.68 53.87 -5.14)) (L (pol 18.67 -53.95 "
      "-5.08) "
      "(pol 18.65 53.71 -5.10)) (L (pol 2.79 -59.74 -35.92) (pol 3.17 -36.57 -30.99)) (L (pol 3.17 "
      "-36.48 -31.05) (pol 3.39 -11.94 -29.07)) (L (pol 3.39 -11.99 -28.83) (pol 3.39 12.17 "
      "-28.87)) "
      "(L (pol 3.39 12.21 -28.72) (pol 3.17 36.64 -31.22)) (L (pol 3.18 36.74 -31.20) (pol 2.79 "
      "60.19 "
      "-35.92)))(HJ";
  const auto agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  steps(match, 2);
  const std::string percept = match.percept(agent);
  const std::string seen =
      percept.substr(percept.find("(See"), percept.find("(HJ (n raj1)") + 3 - percept.find("(See"));
  const std::regex number(R"(-?[0-9]+\.[0-9]+)");
  EXPECT_EQ(std::regex_replace(seen, number, "#"), std::regex_replace(recorded, number, "#"));
  auto a = std::sregex_iterator(seen.begin(), seen.end(), number);
  auto b = std::sregex_iterator(recorded.begin(), recorded.end(), number);
  // The recording has noise and a camera offset of up to 5 mm.
  for (; a != std::sregex_iterator() && b != std::sregex_iterator(); ++a, ++b) {
    EXPECT_NEAR(std::stod(a->str()), std::stod(b->str()), 0.75);
  }
}

TEST_F(MatchTest, TellsSideAndNumberOnce) {
  const auto left = join(match, 3, "Alpha");
  EXPECT_TRUE(contains(match.percept(left),
                       "(GS (unum 3) (team left) (sl 0) (sr 0) (t 0.00) (pm BeforeKickOff))"));
  const auto right = join(match, 0, "Beta");
  EXPECT_TRUE(contains(match.percept(right), "(GS (unum 1) (team right) (sl 0)"));
  match.step();
  EXPECT_TRUE(contains(match.percept(left), "(GS (sl 0) (sr 0) (t 0.00) (pm BeforeKickOff))"));
}

TEST_F(MatchTest, PutsNewPlayersToTheirStartPlaces) {
  const auto left = join(match, 1, "Alpha");
  const auto right = join(match, 1, "Beta");
  EXPECT_NEAR(view(match, left).torso.translation().x(), -14.2, 1e-3);
  EXPECT_NEAR(view(match, left).torso.translation().y(), 9.2, 1e-3);
  EXPECT_NEAR(view(match, left).torso.linear()(0, 1), 1.0, 1e-6);  // faces +x
  EXPECT_NEAR(view(match, right).torso.translation().x(), 14.2, 1e-3);
  EXPECT_NEAR(view(match, right).torso.linear()(0, 1), -1.0, 1e-6);
}

TEST_F(MatchTest, DropsTheRefusedAboveTheMiddleAndLetsThemAskAgain) {
  join(match, 3, "Alpha");
  const auto second = join(match, 3, "Alpha");
  EXPECT_EQ(view(match, second).side, Side::None);
  EXPECT_NEAR(view(match, second).torso.translation().z(), 10.0, 0.01);
  EXPECT_FALSE(contains(match.percept(second), "unum"));
  match.receive(second, "(init (unum 4)(teamname Alpha))");
  match.step();
  EXPECT_EQ(view(match, second).number, 4);
}

TEST_F(MatchTest, MovesAPlayerThatAsksAgainAndKeepsItsOldNumberTaken) {
  const auto agent = join(match, 3, "Alpha");
  match.receive(agent, "(init (unum 3)(teamname Alpha))");
  match.step();
  EXPECT_NEAR(view(match, agent).torso.translation().z(), 10.0, 0.01);
  EXPECT_EQ(view(match, agent).number, 3);
  EXPECT_FALSE(contains(match.percept(agent), "unum"));
  match.receive(agent, "(init (unum 5)(teamname Alpha))");
  match.step();
  EXPECT_EQ(view(match, agent).number, 5);
  EXPECT_NEAR(view(match, agent).torso.translation().y(), 8.0, 1e-3);
  EXPECT_TRUE(contains(match.percept(agent), "(GS (unum 5) (team left) "));
  EXPECT_EQ(view(match, join(match, 3, "Alpha")).side, Side::None);
  match.disconnect(agent);
  match.step();
  EXPECT_EQ(view(match, join(match, 5, "Alpha")).side, Side::Left);
}

TEST_F(MatchTest, FreesANumberWhenThePlayerLeaves) {
  const auto first = join(match, 3, "Alpha");
  match.disconnect(first);
  match.step();
  EXPECT_EQ(match.world().find(first), nullptr);
  EXPECT_EQ(view(match, join(match, 3, "Alpha")).number, 3);
}

TEST_F(MatchTest, TakesThoseWhoAskTogetherByTeamAndNumber) {
  std::vector<Match::AgentId> agents;
  for (int i = 0; i < 4; ++i) {
    agents.push_back(match.connect());
    match.receive(agents.back(), "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  }
  steps(match, 2);
  const char* wishes[] = {"(init (unum 2)(teamname Beta))", "(init (unum 2)(teamname Alpha))",
                          "(init (unum 1)(teamname Beta))", "(init (unum 1)(teamname Alpha))"};
  for (int i = 0; i < 4; ++i) match.receive(agents[i], wishes[i]);
  match.step();
  EXPECT_EQ(view(match, agents[0]).side, Side::Right);
  EXPECT_EQ(view(match, agents[3]).side, Side::Left);
  EXPECT_EQ(match.agents(),
            (std::vector<Match::AgentId>{agents[3], agents[1], agents[2], agents[0]}));
  EXPECT_NEAR(view(match, agents[3]).torso.translation().y(), 9.2, 1e-3);
  EXPECT_NEAR(view(match, agents[1]).torso.translation().y(), 8.0, 1e-3);
}

TEST_F(MatchTest, KeepsItsLastPerceptWhenTheTrainerKillsTheRobot) {
  const auto agent = join(match, 5, "Alpha");
  match.trainer().receive("(kill (unum 5)(team Left))");
  match.step();
  const std::string last = match.percept(agent);
  EXPECT_FALSE(last.empty());
  EXPECT_EQ(match.world().find(agent), nullptr);
  match.receive(agent, "(he1 1)(say hello)(beam 0 0 0)(syn)");
  steps(match, 3);
  EXPECT_EQ(match.percept(agent), last);
  EXPECT_EQ(view(match, join(match, 5, "Alpha")).number, 5);
}

// -------------------------------------------------------------------------------------- percepts

TEST_F(MatchTest, WritesTheExpressionsInTheLeaguesOrder) {
  const auto agent = join(match, 1, "Alpha");
  steps(match, 30);
  std::string text = match.percept(agent);
  for (int i = 0; i < 3 && !contains(text, "See"); ++i) {
    match.step();
    text = match.percept(agent);
  }
  const std::vector<std::string> expected{
      "time",    "GS",      "GYR",     "ACC",     "HJ hj1",  "HJ hj2",  "See",     "HJ raj1",
      "HJ raj2", "HJ raj3", "HJ raj4", "HJ laj1", "HJ laj2", "HJ laj3", "HJ laj4", "HJ rlj1",
      "HJ rlj2", "HJ rlj3", "HJ rlj4", "HJ rlj5", "FRP rf",  "HJ rlj6", "HJ llj1", "HJ llj2",
      "HJ llj3", "HJ llj4", "HJ llj5", "FRP lf",  "HJ llj6"};
  EXPECT_EQ(expressions(text), expected);
}

TEST_F(MatchTest, WritesTheToesOfTypeFour) {
  const auto agent = join(match, 1, "Alpha", 4);
  steps(match, 30);
  const std::vector<std::string> names = expressions(match.percept(agent));
  const std::vector<std::string> expected{"FRP rf", "HJ rlj6", "FRP rf1", "HJ rlj7"};
  const auto foot = std::find(names.begin(), names.end(), "FRP rf");
  ASSERT_GE(names.end() - foot, 4);
  EXPECT_EQ(std::vector<std::string>(foot, foot + 4), expected);
  EXPECT_EQ(names.back(), "HJ llj7");
}

TEST_F(MatchTest, SeesInEveryThirdPercept) {
  const auto agent = join(match, 1, "Alpha");
  std::string seen;
  for (int i = 0; i < 9; ++i) {
    match.step();
    seen += contains(match.percept(agent), "(See ") ? '1' : '0';
  }
  EXPECT_TRUE(seen == "100100100" || seen == "010010010" || seen == "001001001") << seen;
}

TEST(MatchPicturesTest, AreCountedFromTheConnectionInRealTimeAndFromTheSceneInLockstep) {
  // In which percept the first picture comes to an agent that sends its scene so many cycles after
  // the first one possible.
  const auto first = [](bool realTime, int delay) {
    MatchOptions options;
    options.realTime = realTime;
    Match match(options);
    const auto agent = match.connect();
    for (int i = 0; i < delay; ++i) match.step();
    match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
    match.step();
    for (int percept = 1; percept <= 3; ++percept) {
      match.step();
      if (match.percept(agent).find("(See ") != std::string::npos) return percept;
    }
    return 0;
  };
  EXPECT_EQ(first(true, 0), 1);
  EXPECT_EQ(first(true, 1), 3);
  EXPECT_EQ(first(true, 2), 2);
  EXPECT_EQ(first(true, 3), 1);
  for (int delay = 0; delay < 4; ++delay) EXPECT_EQ(first(false, delay), 1) << delay;
}

TEST_F(MatchTest, LeavesTheFeetOutInTheAir) {
  const auto agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao_hetero.rsg 0)");
  steps(match, 3);
  EXPECT_FALSE(contains(match.percept(agent), "FRP"));
}

TEST_F(MatchTest, CountsTheGameTimeOnlyWhenItRuns) {
  const auto agent = join(match, 1, "Alpha");
  steps(match, 10);
  EXPECT_TRUE(contains(match.percept(agent), "(t 0.00) (pm BeforeKickOff)"));
  match.trainer().receive("(playMode PlayOn)");
  steps(match, 10);
  EXPECT_TRUE(contains(match.percept(agent), "(t 0.20) (pm PlayOn)")) << match.percept(agent);
}

TEST_F(MatchTest, SeesARepositioningOneCycleLate) {
  const auto agent = join(match, 1, "Alpha");
  match.receive(agent, "(beam -3 0 0)");
  match.trainer().receive("(ball (pos 2 0 0.042)(vel 0 0 0))");
  match.step();
  // Before kick-off the referee puts the ball back after the step; the picture was taken before.
  EXPECT_NEAR(match.world().ball().position.x(), 0.0, 1e-9);
  EXPECT_NEAR(match.scene().ball.translation().x(), 2.0, 1e-6);
  match.step();
  EXPECT_NEAR(match.scene().ball.translation().x(), 0.0, 1e-6);
}

// ------------------------------------------------------------------------------------- effectors

TEST_F(MatchTest, MovesJointsByTheLastTermAndIgnoresTermsWithoutAValue) {
  const auto agent = join(match, 1, "Alpha");
  match.receive(agent, "(he1 -3)(he1 1.5)(he2)(he2 (x))(lle7 1)(unknown 3)(syn)");
  match.step();
  EXPECT_TRUE(contains(match.percept(agent), "(HJ (n hj1) (ax 1.7")) << match.percept(agent);
  EXPECT_TRUE(std::regex_search(match.percept(agent), std::regex(R"(hj2\) \(ax -?0\.00)")));
}

TEST_F(MatchTest, KeepsTheListsBeforeABrokenOne) {
  const auto agent = join(match, 1, "Alpha");
  match.receive(agent, "(he1 1.5)(he2 -1 (((");
  match.step();
  EXPECT_TRUE(contains(match.percept(agent), "(HJ (n hj1) (ax 1.7"));
}

TEST_F(MatchTest, BeamsInTheTeamsOwnCoordinates) {
  const auto left = join(match, 1, "Alpha");
  const auto right = join(match, 1, "Beta");
  match.receive(left, "(beam -4 2 30)");
  match.receive(right, "(beam -4 2 30)");
  match.step();
  EXPECT_NEAR(view(match, left).torso.translation().x(), -4.0, 1e-6);
  EXPECT_NEAR(view(match, left).torso.translation().y(), 2.0, 1e-6);
  EXPECT_NEAR(view(match, right).torso.translation().x(), 4.0, 1e-6);
  EXPECT_NEAR(view(match, right).torso.translation().y(), -2.0, 1e-6);
  // Turned left by 30 degrees from the direction of the opponents' goal.
  EXPECT_NEAR(view(match, left).torso.linear()(0, 1), std::cos(M_PI / 6), 1e-6);
  EXPECT_NEAR(view(match, left).torso.linear()(1, 1), 0.5, 1e-6);
  EXPECT_NEAR(view(match, right).torso.linear()(0, 1), -std::cos(M_PI / 6), 1e-6);
}

TEST_F(MatchTest, KeepsBeamsInTheOwnHalf) {
  const auto agent = join(match, 1, "Alpha");
  match.receive(agent, "(beam -20 -15 0)");
  match.step();
  EXPECT_NEAR(view(match, agent).torso.translation().x(), -15.0, 1e-6);
  EXPECT_NEAR(view(match, agent).torso.translation().y(), -10.0, 1e-6);
}

TEST_F(MatchTest, BeamsOnlyWhileTheGameIsPausedAndToFinitePlaces) {
  const auto agent = join(match, 1, "Alpha");
  const double x = view(match, agent).torso.translation().x();
  match.receive(agent, "(beam nan 0 0)");
  match.step();
  match.receive(agent, "(beam -3 inf 0)");
  match.step();
  match.trainer().receive("(playMode PlayOn)");
  match.step();
  match.receive(agent, "(beam -3 0 0)");
  match.step();
  EXPECT_NEAR(view(match, agent).torso.translation().x(), x, 0.01);
}

TEST(MatchBeamNoiseTest, StaysWithinItsBounds) {
  MatchOptions options;
  options.seed = 4;
  Match match(options);
  const auto agent = match.connect();
  match.receive(agent, "(scene rsg/agent/nao/nao.rsg)");
  match.step();
  match.step();
  match.receive(agent, "(init (unum 1)(teamname Alpha))");
  match.step();
  double widest = 0.0;
  double mostTurned = 0.0;
  for (int i = 0; i < 300; ++i) {
    match.receive(agent, "(beam -5 0 0)");
    match.step();
    const Eigen::Isometry3d torso = match.world().find(agent)->torso;
    const double turned = std::atan2(torso.linear()(1, 1), torso.linear()(0, 1)) * 180.0 / M_PI;
    widest = std::max(
        {widest, std::abs(torso.translation().x() + 5.0), std::abs(torso.translation().y())});
    mostTurned = std::max(mostTurned, std::abs(turned));
  }
  EXPECT_LE(widest, 0.0501);
  EXPECT_GT(widest, 0.045);
  EXPECT_LE(mostTurned, 10.01);
  EXPECT_GT(mostTurned, 9.0);
}

TEST_F(MatchTest, LetsPlayersHearEachOther) {
  const auto a = join(match, 1, "Alpha");
  const auto b = join(match, 2, "Alpha");
  const auto c = join(match, 1, "Beta");
  match.receive(a, "(say hello)(say second)");
  match.receive(b, "(say this_is_longer_than_20_chars)(syn)");
  match.step();
  EXPECT_TRUE(contains(match.percept(a), "(hear Alpha 0.00 self hello)"));
  EXPECT_FALSE(contains(match.percept(a), "second"));
  EXPECT_TRUE(contains(match.percept(b), "hello)"));
  EXPECT_FALSE(contains(match.percept(b), "self"));
  EXPECT_TRUE(contains(match.percept(c), "(hear Alpha 0.00 "));
  EXPECT_TRUE(std::regex_search(match.percept(c),
                                std::regex(R"(\)\(hear Alpha 0\.00 -?[0-9.]+ hello\)\(GYR)")))
      << match.percept(c);
  match.step();
  EXPECT_FALSE(contains(match.percept(a), "hear"));
}

// In recordings of the league's server walking players hear each other in the direction that was
// true before the step, to the last digit.
TEST_F(MatchTest, HearsFromWhereBothStoodWhenItWasSaid) {
  const auto speaker = join(match, 1, "Alpha");
  const auto hearer = join(match, 1, "Beta");
  match.receive(speaker, "(beam -3 0 0)");
  match.receive(hearer, "(beam -3 0 0)");
  match.step();
  match.receive(speaker, "(say hello)(beam -3 5 0)");
  match.receive(hearer, "(beam -3 -7 0)");
  match.step();
  EXPECT_TRUE(
      std::regex_search(match.percept(hearer), std::regex(R"(\(hear Alpha 0\.00 -?0\.00 hello\))")))
      << match.percept(hearer);
  // The agent whose message is read later hears no different.
  match.receive(hearer, "(beam -3 2 0)");
  match.receive(hearer, "(say there)");
  match.step();
  EXPECT_TRUE(std::regex_search(match.percept(speaker),
                                std::regex(R"(\(hear Beta 0\.00 18\.4[0-9] there\))")))
      << match.percept(speaker);
}

TEST_F(MatchTest, SurvivesRubbishFromAgents) {
  std::vector<std::string> log;
  MatchOptions options = exact();
  options.log = [&log](const std::string& line) { log.push_back(line); };
  Match noisy(options);
  const auto agent = join(noisy, 1, "Alpha");
  const std::string frames[] = {"",
                                ")))",
                                "(((((",
                                std::string("\0\1\2\xff", 4),
                                "(he1 1e999)(he2 -inf)(rle3 nan)",
                                "(say)(say (a))(say a b)(init)(init (unum))(beam)(pass 3)",
                                "(lle7 1)",
                                "atoms outside (he1 0)"};
  for (int i = 0; i < 50; ++i) {
    for (const std::string& frame : frames) noisy.receive(agent, frame);
    noisy.step();
  }
  EXPECT_NE(noisy.world().find(agent), nullptr);
  EXPECT_TRUE(noisy.world().find(agent)->torso.translation().allFinite());
  EXPECT_LE(log.size(), 20u);  // each oddity once
  EXPECT_GE(log.size(), 1u);
}

TEST_F(MatchTest, DoesNotKnowTheGone) {
  const auto agent = join(match, 1, "Alpha");
  match.disconnect(agent);
  match.receive(agent, "(he1 1)");
  match.step();
  match.receive(agent, "(he1 1)");
  match.disconnect(agent);
  match.step();
  EXPECT_EQ(match.percept(agent), "");
  EXPECT_TRUE(match.agents().empty());
}

// Agents are not told that the sides have changed; what they see, hear and do is as on the other
// side.
TEST(MatchChangedSidesTest, GoOnAsOnTheOtherSide) {
  MatchOptions options;
  options.noise = false;
  options.halfTime = 1.0f;
  options.changeSides = true;
  Match match(options);
  const auto add = [&match](int number, const std::string& team) {
    const auto agent = match.connect();
    match.receive(agent, "(scene rsg/agent/nao/nao.rsg)");
    for (int i = 0; i < 2; ++i) match.step();
    match.receive(agent, "(init (unum " + std::to_string(number) + ")(teamname " + team + "))");
    match.step();
    return agent;
  };
  const auto has = [&match](Match::AgentId agent, const std::string& part) {
    return match.percept(agent).find(part) != std::string::npos;
  };
  const auto alpha = add(7, "Alpha");
  const auto beta = add(5, "Beta");
  match.trainer().receive("(playMode PlayOn)(score (left 3)(right 1))");
  while (match.game().half == 1) {
    match.receive(alpha, "(say hello)");
    match.step();
    EXPECT_FALSE(has(beta, "(team left)")) << match.percept(beta);
  }
  // In the very cycle of the change:
  EXPECT_TRUE(has(alpha, "(GS (sl 1) (sr 3) (t ")) << match.percept(alpha);
  EXPECT_TRUE(has(alpha, "(hear Alpha ")) << match.percept(alpha);
  EXPECT_EQ(match.world().find(alpha)->side, Side::Right);
  EXPECT_EQ(match.world().find(beta)->side, Side::Left);
  for (const SceneRobot& robot : match.scene().robots) {
    EXPECT_EQ(robot.side, robot.handle == alpha ? Side::Right : Side::Left);
  }
  match.receive(alpha, "(beam -4 2 0)");
  match.step();
  EXPECT_NEAR(match.world().find(alpha)->torso.translation().x(), 4.0, 0.01);
  EXPECT_NEAR(match.world().find(alpha)->torso.translation().y(), -2.0, 0.01);
  bool heard = false;
  for (int i = 0; i < 6; ++i) {
    match.receive(alpha, "(say hello)");
    match.step();
    heard = heard || has(beta, "(hear Alpha ");
    EXPECT_FALSE(has(alpha, "(team right)"));
    if (has(beta, "(See ")) {
      EXPECT_TRUE(has(beta, "(P (team Alpha) (id 7)") || has(beta, "(P (team Beta) (id 5)"))
          << match.percept(beta);
    }
    EXPECT_FALSE(has(beta, "(P (team Alpha) (id 5)"));
  }
  EXPECT_TRUE(heard);
  const auto late = add(8, "Alpha");
  EXPECT_TRUE(has(late, "(unum 8) (team right)"));
  EXPECT_NEAR(match.world().find(late)->torso.translation().x(), 14.2, 0.01);
}

TEST(MatchCoinTossTest, DrawsWhoKicksOffWhereNobodyNamesASide) {
  int left = 0;
  for (std::uint64_t seed = 0; seed < 40; ++seed) {
    MatchOptions options;
    options.seed = seed;
    options.coinToss = true;
    Match match(options);
    match.trainer().receive("(kickOff None)");
    match.step();
    left += match.game().mode == PlayMode::KickOffLeft;
  }
  EXPECT_GT(left, 8);
  EXPECT_LT(left, 32);
}

TEST(MatchRepeatabilityTest, GivesTheSamePerceptsForTheSameSeed) {
  const auto play = [](std::uint64_t seed) {
    MatchOptions options;
    options.seed = seed;
    Match match(options);
    std::vector<Match::AgentId> agents;
    for (int i = 0; i < 4; ++i) {
      agents.push_back(match.connect());
      match.receive(agents[i], "(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(i) + ")");
    }
    match.step();
    match.step();
    for (int i = 0; i < 4; ++i) {
      match.receive(agents[i], "(init (unum " + std::to_string(i + 1) + ")(teamname " +
                                   (i % 2 == 0 ? "Alpha" : "Beta") + "))");
    }
    match.step();
    match.trainer().receive("(playMode PlayOn)");
    std::string stream;
    for (int cycle = 0; cycle < 150; ++cycle) {
      for (int i = 0; i < 4; ++i) {
        match.receive(agents[i], "(beam -1 0 0)(rle3 " + std::to_string(i - 1.5) + ")(lae1 -2)");
      }
      match.step();
      for (const auto agent : agents) stream += match.percept(agent);
    }
    return stream;
  };
  const std::string once = play(1);
  EXPECT_EQ(once, play(1));
  EXPECT_NE(once, play(2));
}

}  // namespace
}  // namespace arena
