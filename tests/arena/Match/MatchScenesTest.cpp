// The match against scenes that the league's server played: the same commands, the same modes,
// scores and places.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "arena/Support/SceneMatch.h"

namespace arena {
namespace {

using Json = nlohmann::json;

// How well the recorded values are known.
constexpr double kTime = 0.1;    // s
constexpr double kPlace = 0.02;  // m

void play(SceneMatch& match, const Json& deeds) {
  for (const Json& deed : deeds) {
    const std::string what = deed[0];
    if (what == "cycles") {
      match.cycles(deed[1]);
    } else if (what == "agent") {
      match.say(deed[1], deed[2].get<std::string>());
    } else if (what == "hit") {
      match.hit(deed[1]);
    } else {
      ASSERT_EQ(what, "trainer");
      for (std::size_t i = 1; i < deed.size(); ++i) match.command(deed[i].get<std::string>());
    }
  }
}

// What precedes the first whistle is recorded only if there is no whistle.
std::vector<SceneMatch::Stretch> recorded(std::vector<SceneMatch::Stretch> stretches) {
  if (stretches.size() > 1 && stretches.front().mode == PlayMode::BeforeKickOff) {
    stretches.erase(stretches.begin());
  }
  return stretches;
}

void expectPlayers(const SceneMatch::Stretch& here, const Json& there) {
  EXPECT_EQ(here.players.size(), there.size());
  for (const auto& [name, place] : here.players) {
    ASSERT_TRUE(there.contains(name)) << name;
    const Eigen::Vector2d expected(there[name][0], there[name][1]);
    EXPECT_LT((place.head<2>() - expected).norm(), kPlace)
        << name << " at " << place.transpose() << " instead of " << expected.transpose();
  }
}

void expectStretch(const SceneMatch::Stretch& here, const Json& there) {
  EXPECT_EQ(nameOf(here.mode), there["mode"].get<std::string>());
  EXPECT_EQ(Json(here.score), there["score"]);
  EXPECT_NEAR(here.since, there["since"].get<double>(), kTime);
  expectPlayers(here, there["players"]);
  if (there["ball"].is_null()) return;  // still moving
  const Eigen::Vector3d ball(there["ball"][0], there["ball"][1], there["ball"][2]);
  EXPECT_LT((here.ball - ball).norm(), kPlace)
      << here.ball.transpose() << " instead of " << ball.transpose();
}

class MatchScenesTest : public testing::TestWithParam<std::string> {};

TEST_P(MatchScenesTest, GoesAsInTheLeague) {
  const Json scene = readScenes("scenes.json").at(GetParam());
  SceneMatch match;
  play(match, scene["do"]);
  const std::vector<SceneMatch::Stretch> stretches = recorded(match.takeStretches());
  const Json& league = scene["league"];
  EXPECT_EQ(stretches.size(), league.size());
  for (std::size_t i = 0; i < std::min(stretches.size(), league.size()); ++i) {
    SCOPED_TRACE("stretch " + std::to_string(i));
    expectStretch(stretches[i], league[i]);
  }
}

std::vector<std::string> namesOfScenes() {
  std::vector<std::string> names;
  const Json scenes = readScenes("scenes.json");
  for (const auto& scene : scenes.items()) names.push_back(scene.key());
  return names;
}

INSTANTIATE_TEST_SUITE_P(League, MatchScenesTest, testing::ValuesIn(namesOfScenes()),
                         [](const auto& scene) { return scene.param; });

// Every place that the league's server found for a player whom it moved back into his own half
// while a team-mate stood near.
TEST(MatchScenesHalfLineTest, FindsTheLeaguesFreePlaces) {
  SceneMatch match;
  const auto put = [&match](const std::string& number, const std::string& team, double x,
                            double y) {
    match.command("(agent (unum " + number + ")(team " + team + ")(pos " + std::to_string(x) + " " +
                  std::to_string(y) + " 0.4))");
  };
  const Json rows = readScenes("half-line.json");
  ASSERT_EQ(rows.size(), 133u);
  for (const Json& row : rows) {
    const std::string team = row[0];
    const double sign = team == "Left" ? -1.0 : 1.0;
    const double y = row[1];
    const Eigen::Vector2d wanted(2.5 * sign, y);
    put("3", team, -3.0 * sign, y);
    put("2", team, wanted.x() + row[2].get<double>(), wanted.y() + row[3].get<double>());
    match.cycles(3);
    const Eigen::Vector2d shift(row[4][0], row[4][1]);
    const auto place = match.place(team.substr(0, 1) + "3");
    ASSERT_TRUE(place);
    EXPECT_LT((place->head<2>() - wanted - 0.4 * shift).norm(), 1e-6)
        << row << ": " << place->transpose();
  }
}

}  // namespace
}  // namespace arena
