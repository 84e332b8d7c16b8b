#include "PlayerReplay.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

const std::string kScene = "(scene rsg/agent/nao/nao_hetero.rsg 2)(syn)";

TEST(PlayerReplayTest, IdentityStandsInTheFirstAnswers) {
  const PlayerIdentity identity =
      identityOf({kScene, "(init (unum 9)(teamname Quolnaris))(syn)", "(he1 0)(syn)"});
  EXPECT_EQ(identity.team, "Quolnaris");
  EXPECT_EQ(identity.number, 9);
  EXPECT_EQ(identity.type, 2);
}

TEST(PlayerReplayTest, NobodyHasANumberOrATypeThatDoesNotExist) {
  for (const char* const init :
       {"(init (unum 12)(teamname Quolnaris))", "(init (unum 0)(teamname Quolnaris))",
        "(init (unum -3)(teamname Quolnaris))", "(init (unum 9))", "(init", "", "nonsense"}) {
    EXPECT_THROW(identityOf({kScene, init}), std::runtime_error) << init;
  }
  EXPECT_THROW(
      identityOf({"(scene rsg/agent/nao/nao_hetero.rsg 5)", "(init (unum 9)(teamname A))"}),
      std::runtime_error);
  EXPECT_THROW(identityOf({"(init (unum 9)(teamname A))"}), std::runtime_error);
  EXPECT_THROW(identityOf({}), std::runtime_error);
}

TEST(PlayerReplayTest, AnswersAreComparedAsFarAsBothGo) {
  EXPECT_EQ(firstDifference({"a", "b", "c"}, {"a", "b"}), 2u);
  EXPECT_EQ(firstDifference({"a", "b"}, {"a", "x"}), 1u);
  EXPECT_EQ(firstDifference({}, {"a"}), 0u);
}

}  // namespace
