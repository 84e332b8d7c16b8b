// Landmark table, localisation, frames and questions.

#include "WorldModel/WorldModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "WorldModelFixture.h"

// The counters of WorldModel.cpp.
extern int locCount;
extern unsigned c;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

class WorldModelTest : public WorldModelFixture {
 protected:
  // Learns side and number, so that the landmark table is final, and leaves the modes that reset.
  void join(const std::string& side = "left") {
    update("(GS (unum 9) (team " + side + ") (t 0.00) (pm PlayOn))");
  }

  struct Place {
    const char* name;
    int index;
    double x, y, z;
  };

  static const std::vector<Place>& landmarks() {
    static const std::vector<Place> kKnownPlaces = {
        {"F1L", 0, -15, 10, 0},    {"F2L", 1, -15, -10, 0},    {"F1R", 2, 15, 10, 0},
        {"F2R", 3, 15, -10, 0},    {"G1L", 4, -15, 1.05, 0.8}, {"G2L", 5, -15, -1.05, 0.8},
        {"G1R", 6, 15, 1.05, 0.8}, {"G2R", 7, 15, -1.05, 0.8},
    };
    return kKnownPlaces;
  }

  // Sightings of these landmarks by a camera at (x, y, z) with the pitch's own axes.
  static std::string sightings(const std::vector<int>& which, double x, double y, double z) {
    std::string text;
    for (const int i : which) {
      const Place& place = landmarks()[static_cast<std::size_t>(i)];
      text += std::string(text.empty() ? "" : " ") + "(" + place.name + " " +
              polar(place.x - x, place.y - y, place.z - z) + ")";
    }
    return text;
  }
};

TEST_F(WorldModelTest, CountsItsLocalisations) {
  const unsigned before = c;
  locCount = 7;
  update("(time (now 1.0))");
  EXPECT_EQ(locCount, 7);
  EXPECT_EQ(c, before);
  update(see(""));
  EXPECT_EQ(locCount, 1);
  EXPECT_EQ(c, before + 1);
  model->localize();
  EXPECT_EQ(locCount, 2);
  EXPECT_EQ(c, before + 2);
}

// --- Landmark table -----------------------------------------------------------------------------

TEST_F(WorldModelTest, TheTableIsFilledByTheFirstMessage) {
  update("(time (now 1.0))");
  EXPECT_FALSE(model->setFlagCheck);
  for (const Place& place : landmarks()) {
    EXPECT_EQ(model->flag[place.index].getRealPosition(),
              Vector(static_cast<float>(place.x), static_cast<float>(place.y),
                     static_cast<float>(place.z)))
        << place.name;
  }
}

TEST_F(WorldModelTest, ATeamOnTheRightTurnsTheTable) {
  update("(GS (unum 5) (team right))");
  EXPECT_TRUE(model->setFlagCheck);
  for (const Place& place : landmarks()) {
    EXPECT_EQ(model->flag[place.index].getRealPosition(),
              Vector(static_cast<float>(-place.x), static_cast<float>(-place.y),
                     static_cast<float>(place.z)))
        << place.name;
  }
}

TEST_F(WorldModelTest, TurningFlipsTheSignOfZeroToo) {
  sandbox.set("WorldModel", "FlagPosition", "f100", "0 0 0");
  update("(GS (unum 5) (team right))");
  EXPECT_TRUE(std::signbit(model->flag[0].getRealPosition().x));
  EXPECT_TRUE(std::signbit(model->flag[0].getRealPosition().y));
  EXPECT_FALSE(std::signbit(model->flag[0].getRealPosition().z));
}

TEST_F(WorldModelTest, TheTableIsFinalOnceTheNumberWasHeard) {
  update("(GS (team left))");
  EXPECT_FALSE(model->setFlagCheck);
  update("(GS (unum 9))");
  EXPECT_TRUE(model->setFlagCheck);
  update("(GS (unum 9) (team right))");
  EXPECT_EQ(model->flag[0].getRealPosition(), Vector(-15, 10, 0));
}

TEST_F(WorldModelTest, TheSideCountsUntilTheNumberWasHeard) {
  update("(GS (team right))");
  EXPECT_EQ(model->flag[0].getRealPosition(), Vector(15, -10, 0));
  update("(GS (unum 9) (team left))");
  EXPECT_EQ(model->flag[0].getRealPosition(), Vector(-15, 10, 0));
}

TEST_F(WorldModelTest, ALandmarkNeedsThreeNumbers) {
  sandbox.set("WorldModel", "FlagPosition", "f011", "15 -1.05");
  EXPECT_DEATH(model->update(""), "position.size\\(\\) > 2");
}

// --- Localisation -------------------------------------------------------------------------------

TEST_F(WorldModelTest, AgreeingLandmarksMoveTheEstimateHalfWay) {
  join();
  update(see(sightings({2, 3}, 4, -2, 0.5)));
  EXPECT_EQ(model->flagCounted, 2);
  EXPECT_EQ(model->isValidPosition, 0);
  expectNear(model->getAgentPosition(), 2, -1, 0.45);
  update(see(sightings({2, 3}, 4, -2, 0.5), "10.06"));
  expectNear(model->getAgentPosition(), 3, -1.5, 0.45);
  EXPECT_EQ(model->getAgentPosition().z, 0.45f);
  expectNear(model->mySelf->getPreviousPosition(), 2, -1, 0.45);
}

TEST_F(WorldModelTest, ARightSideTeamFindsItselfInTheTurnedFrame) {
  join("right");
  // Straight ahead of a right-side player lies the left goal, at +15 of its own frame.
  update(see("(G1L " + polar(11, -1.05 + 2, 0.3) + ") (G2L " + polar(11, 1.05 + 2, 0.3) + ")"));
  expectNear(model->getAgentPosition(), 2, -1, 0.45);
}

TEST_F(WorldModelTest, ConvergesToTheTruth) {
  join();
  for (int i = 0; i < 30; ++i) {
    update(see(sightings({0, 2, 5, 7}, -7.5, 3.25, 0.5), std::to_string(10 + i * 0.06)));
  }
  expectNear(model->getAgentPosition(), -7.5, 3.25, 0.45, 1e-4);
}

TEST_F(WorldModelTest, NearerLandmarksWeighMore) {
  join();
  // From 0, 0: G1R is nearer than F1R, and F1R nearer than F1L would be. Each is reported as if the
  // player stood somewhere else; weights 3, 2, 1 by distance.
  const auto lying = [&](int index, double x, double y) { return sightings({index}, x, y, 0.5); };
  update(see(lying(0, 0.6, 0) + " " + lying(6, 0.3, 0.3) + " " + lying(2, 0, 0.6)));
  // Distances on the ground: G1R 14.7 (weight 3), F1L 18.5 and F1R 17.7 (2).
  const double x = (3 * 0.3 + 2 * 0.0 + 1 * 0.6) / 6;
  const double y = (3 * 0.3 + 2 * 0.6 + 1 * 0.0) / 6;
  // Of three landmarks only numbers 0 to 2 are checked: F1L and F1R, not G1R.
  const double error = std::hypot(x - 0.6, y) + std::hypot(x, y - 0.6);
  expectNear(model->getAgentPosition(), x / (2 + 2 * error), y / (2 + 2 * error), 0.45);
}

TEST_F(WorldModelTest, TheErrorLooksAtLandmarkNumbersNotAtLandmarksInSight) {
  join();
  // Numbers 6 and 7 disagree by 2 metres, but with two in sight only numbers 0 and 1 are checked.
  update(see(sightings({6}, 1, 0, 0.5) + " " + sightings({7}, 3, 0, 0.5)));
  // G2R is reported nearer (12 m against 14 m): weight 2.
  const double x = (2 * 3.0 + 1 * 1.0) / 3;
  expectNear(model->getAgentPosition(), x / 2, 0, 0.45);
  EXPECT_EQ(model->isValidPosition, 0);
}

TEST_F(WorldModelTest, TheErrorIgnoresHeight) {
  join();
  update(see(sightings({0}, 1, 0, 0.5) + " " + sightings({1}, 1, 0, 5)));
  expectNear(model->getAgentPosition(), 0.5, 0, 0.45);
}

TEST_F(WorldModelTest, WithDisagreementTheOldPositionCountsMore) {
  join();
  model->mySelf->setGlobalPosition(Vector(5, 5, 0.45f));
  // F1L and F2L, both looked at, say x = 0 and x = 2. F2L is the farther: 17 against 15.
  update(see(sightings({0}, 0, 0, 0.5) + " " + sightings({1}, 2, 0, 0.5)));
  const double x = 2.0 / 3;
  const double error = x + (2 - x);
  expectNear(model->getAgentPosition(), (x + 5 * (1 + 2 * error)) / (2 + 2 * error),
             5 * (1 + 2 * error) / (2 + 2 * error), 0.45);
}

TEST_F(WorldModelTest, ALargeErrorCountsTwiceAndStillBlends) {
  join();
  model->mySelf->setGlobalPosition(Vector(5, 5, 0.45f));
  const std::string apart = sightings({0}, 0, 0, 0.5) + " " + sightings({1}, 6, 0, 0.5);
  update(see(apart));
  EXPECT_EQ(model->isValidPosition, 2);  // once in each pass
  const double x = 2;                    // weights 2 and 1
  const double error = 6;
  expectNear(model->getAgentPosition(), (x + 5 * (1 + 2 * error)) / (2 + 2 * error),
             5 * (1 + 2 * error) / (2 + 2 * error), 0.45);
  update(see(apart, "10.06"));
  EXPECT_EQ(model->isValidPosition, 4);
  update(see(sightings({0, 1}, 1, 1, 0.5), "10.12"));
  EXPECT_EQ(model->isValidPosition, 0);
}

TEST_F(WorldModelTest, AnErrorOfExactlyTheLimitIsNotLarge) {
  join();
  model->gameTime = 10.0f;
  const auto sighted = [&](int index, float real, float camera) {
    model->flag[index].setRealPosition(Vector(real, 0, 0));
    model->flag[index].setCameraPosition(Vector(camera, 0, 0));
    model->flag[index].setLastTimeSeen(10.0f);
  };
  // Estimates 5, 4 and 1 with the weights 3, 2 and 1: mean 4, error 1 + 0 + 3, all exact in binary.
  sighted(0, 4, -1);
  sighted(1, 2.5f, -1.5f);
  sighted(2, -1, -2);
  model->localize();
  EXPECT_EQ(model->isValidPosition, 0);
  sighted(2, -1.25f, -2);
  model->localize();
  EXPECT_EQ(model->isValidPosition, 2);
}

// The estimates differ by a hair more than the limit; a sum in single precision would lose it.
TEST_F(WorldModelTest, TheErrorIsSummedInDoublePrecision) {
  join();
  model->gameTime = 10.0f;
  const auto sighted = [&](int index, float estimate, float distance) {
    model->flag[index].setRealPosition(Vector(estimate, distance, 0));
    model->flag[index].setCameraPosition(Vector(0, distance, 0));
    model->flag[index].setLastTimeSeen(10.0f);
  };
  const float near = -0x1.33331p+0f, far = 0x1.66667ap+1f;  // weights 2 and 1
  const float mean = (2 * near + far) / 3;
  ASSERT_GT(static_cast<double>(mean - near) + static_cast<double>(far - mean), 4.0);
  ASSERT_EQ((mean - near) + (far - mean), 4.0f);
  sighted(0, near, 1);
  sighted(1, far, 2);
  model->localize();
  EXPECT_EQ(model->isValidPosition, 2);
}

// Of two landmarks whose squared distances are one number in single precision neither is nearer,
// and the lower number weighs more.
TEST_F(WorldModelTest, DistancesAreComparedInSinglePrecision) {
  join();
  model->gameTime = 10.0f;
  const auto sighted = [&](int index, const Vector& camera, float estimate) {
    model->flag[index].setRealPosition(camera + Vector(estimate, 0, 0));
    model->flag[index].setCameraPosition(camera);
    model->flag[index].setLastTimeSeen(10.0f);
  };
  sighted(0, Vector(1, 4097, 0), 3);
  sighted(1, Vector(0, 4097, 0), 6);
  model->localize();
  // Mean (2 * 3 + 6) / 3 = 4, error 1 + 2: an eighth of the way.
  EXPECT_EQ(model->getAgentPosition().x, 0.5f);
}

TEST_F(WorldModelTest, MoreThanFortyBadEstimatesAreReported) {
  join();
  model->isValidPosition = 40;
  EXPECT_FALSE(model->isValidVision());
  model->isValidPosition = 41;
  EXPECT_TRUE(model->isValidVision());
}

TEST_F(WorldModelTest, WithoutALandmarkNothingMoves) {
  join();
  update(see(sightings({2, 3}, 4, -2, 0.5) + " (B " + polar(1, 0, 0) + ")"));
  const Vector me = model->getAgentPosition();
  const Vector ball = model->ball->getGlobalPosition();
  model->isValidPosition = 7;
  update(
      see("(B " + polar(3, 0, 0) + ") (L " + polar(1, 0, 0) + " " + polar(2, 0, 0) + ")", "10.06"));
  EXPECT_EQ(model->flagCounted, 0);
  EXPECT_EQ(model->getAgentPosition(), me);
  EXPECT_EQ(model->ball->getGlobalPosition(), ball);
  EXPECT_EQ(model->isValidPosition, 7);
  expectNear(model->ball->getBodyPosition(), 3, 0, 0);  // the first step was made
}

TEST_F(WorldModelTest, AnEstimateOfExactlyThePitchCentreIsPassedOver) {
  join();
  model->gameTime = 10.0f;
  const auto sighted = [&](int index, const Vector& real, const Vector& camera) {
    model->flag[index].setRealPosition(real);
    model->flag[index].setCameraPosition(camera);
    model->flag[index].setLastTimeSeen(10.0f);
  };
  sighted(5, Vector(1, 0, 0), Vector(1, 0, 0));  // estimate (0, 0, 0), the nearest
  sighted(6, Vector(6, 0, 0), Vector(2, 0, 0));  // estimate 4: weight 3
  sighted(7, Vector(9, 0, 0), Vector(4, 0, 0));  // estimate 5: weight 2
  model->localize();
  EXPECT_EQ(model->flagCounted, 3);
  expectNear(model->getAgentPosition(), (4.0 * 3 + 5.0 * 2) / 5 / 2, 0, 0.45);
}

TEST_F(WorldModelTest, ASingleLandmarkAtAnEstimateOfTheCentreDividesByNothing) {
  join();
  model->gameTime = 10.0f;
  model->flag[5].setRealPosition(Vector(1, 0, 0));
  model->flag[5].setCameraPosition(Vector(1, 0, 0));
  model->flag[5].setLastTimeSeen(10.0f);
  model->localize();
  EXPECT_EQ(model->getAgentPosition(), Vector(0, 0, 0.45f));
}

TEST_F(WorldModelTest, TheIntegratorFollowsTheOrientationInUse) {
  join();
  const std::string turning = "(GS (t 10.00) (pm PlayOn))(GYR (n torso) (rt 0 0 500))";
  const std::string line = "(L " + polar(1, 0, 0) + " " + polar(2, 0, 0) + ")";
  update(turning);  // 10 degrees
  // A landmark and no line: body is still identity, and the turn is forgotten.
  update(turning + "(See " + sightings({6}, 0, 0, 0.5) + ")");
  expectIdentity(model->mySelf->getGyroRotation());
  // With a line in sight body follows the gyro first.
  update(turning + "(See " + sightings({6}, 0, 0, 0.5) + " " + line + ")");
  EXPECT_NEAR(model->mySelf->getGyroRotation().get(1, 0), std::sin(10 * M_PI / 180), 1e-6);
  // A line alone: body follows, the integrator goes on by itself.
  update(turning + "(See " + line + ")");
  EXPECT_NEAR(model->mySelf->getBodyRotation().get(1, 0), std::sin(20 * M_PI / 180), 1e-6);
  EXPECT_NEAR(model->mySelf->getGyroRotation().get(1, 0), std::sin(20 * M_PI / 180), 1e-6);
}

// The orientation that vision will use is not chosen yet when lines are carried.
TEST_F(WorldModelTest, LinesAreCarriedByTheGyroNotByTheBody) {
  join();
  model->parse(see("(L " + polar(2, 0, 0) + " " + polar(0, 3, 0) + ")"));
  Matrix<4, 4> quarter, half;
  quarter.rotationByZ(90);
  half.rotationByZ(180);
  model->mySelf->setNeckRotation(quarter);
  model->mySelf->setGyroRotation(half);
  model->setBodyAllObjects();
  const FieldLine& line = model->fieldLine[0];
  expectNear(line.getFirstPoint().getBodyPosition(), 0, 2, 0);
  expectNear(line.getFirstPoint().getRelativePosition(), 0, -2, 0);
  expectNear(line.getSecondPoint().getBodyPosition(), -3, 0, 0);
  expectNear(line.getSecondPoint().getRelativePosition(), 3, 0, 0);
  EXPECT_EQ(line.getFirstPoint().getGlobalPosition(), Vector(0, 0, 0));
}

TEST_F(WorldModelTest, SightingsPassThroughNeckAndTorso) {
  join();
  // Torso turned left by 90 degrees, head turned right by 90: the camera looks along +x again.
  update("(GS (t 10.00) (pm PlayOn))(GYR (n torso) (rt 0 0 4500))(HJ (n hj1) (ax -90))(See " +
         sightings({2, 3}, 4, -2, 0.5) + " (L " + polar(1, 0, 0) + " " + polar(2, 0, 0) + ") (B " +
         polar(1, 2, 0) + "))");
  expectNear(model->getAgentPosition(), 2, -1, 0.45, 1e-4);
  expectNear(model->ball->getBodyPosition(), 2, -1, 0, 1e-4);
  expectNear(model->ball->getRelativePosition(), 1, 2, 0, 1e-4);
  expectNear(model->ball->getGlobalPosition(), 3, 1, 0.45, 1e-4);
}

TEST_F(WorldModelTest, AnErrorThatIsNoNumberRebuildsTheOrientation) {
  join();
  model->gameTime = 10.0f;
  // The torso is turned left by 90 degrees; the landmarks are where they would be seen then. One
  // estimate is no number, so that the error is none either.
  Matrix<4, 4> turned;
  turned.rotationByZ(90);
  for (const Place& place : landmarks()) {
    Flag& flag = model->flag[place.index];
    flag.setCameraPosition(Vector(static_cast<float>(place.y), static_cast<float>(-place.x),
                                  static_cast<float>(place.z)));
    flag.setLastTimeSeen(10.0f);
  }
  model->flag[0].setRealPosition(Vector(kNaN, 0, 0));
  model->localize();
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      EXPECT_NEAR(model->mySelf->getBodyRotation().get(i, j), turned.get(i, j), 1e-6);
      EXPECT_NEAR(model->mySelf->getGyroRotation().get(i, j), turned.get(i, j), 1e-6);
    }
  }
  // The second pass blends, no number or not, and there is no way back by itself.
  EXPECT_EQ(model->isValidPosition, 2);
  EXPECT_TRUE(std::isnan(model->getAgentPosition().x));
  EXPECT_EQ(model->getAgentPosition().z, 0.45f);
  update(see(sightings({2, 3}, 4, -2, 0.5), "10.06"));
  EXPECT_TRUE(std::isnan(model->getAgentPosition().x));
}

TEST_F(WorldModelTest, ALargeErrorDoesNotRebuildTheOrientation) {
  join();
  model->gameTime = 10.0f;
  for (const Place& place : landmarks()) {
    Flag& flag = model->flag[place.index];
    flag.setCameraPosition(Vector(static_cast<float>(place.y), static_cast<float>(-place.x),
                                  static_cast<float>(place.z)));
    flag.setLastTimeSeen(10.0f);
  }
  model->localize();
  EXPECT_EQ(model->isValidPosition, 2);
  expectIdentity(model->mySelf->getBodyRotation());
}

TEST_F(WorldModelTest, UseFlagsTakesAnyPastSighting) {
  join();
  model->gameTime = 10.0f;
  model->flag[2].setBodyPosition(Vector(3, 4, 0));
  model->flag[2].setLastTimeSeen(1.0f);
  int count = 0;
  // Number 0 was never seen: its time is -1000 and its position zero.
  expectNear(model->useFlags(2, 0, count), 0.6, 0.8, 0);
  EXPECT_EQ(count, 1);
  model->flag[2].setLastTimeSeen(10.99f);
  model->useFlags(2, 0, count);
  EXPECT_EQ(count, 2);
  for (const float future : {11.0f, 12.0f}) {
    model->flag[2].setLastTimeSeen(future);
    EXPECT_EQ(model->useFlags(2, 0, count), Vector(0, 0, 0));
    EXPECT_EQ(model->useFlags(0, 2, count), Vector(0, 0, 0));
  }
  EXPECT_EQ(count, 2);
}

TEST_F(WorldModelTest, UseFlagsOfOnePlaceIsNoNumber) {
  join();
  int count = 0;
  EXPECT_TRUE(std::isnan(model->useFlags(0, 1, count).x));
  EXPECT_EQ(count, 1);
}

TEST_F(WorldModelTest, CorrectRotationNeedsBothAxes) {
  join();
  model->gameTime = 10.0f;
  model->mySelf->gyro(0, 1) = 0.25;
  // Each pair along x holds a landmark of the future; so does each pair along y but one.
  for (const int i : {0, 1, 4, 5}) model->flag[i].setLastTimeSeen(20.0f);
  EXPECT_FALSE(model->correctRotation());
  EXPECT_EQ(model->mySelf->gyro(0, 1), 0.25);
}

TEST_F(WorldModelTest, CorrectRotationTakesThePitchAxesAsSeenFromTheTorso) {
  join();
  model->gameTime = 10.0f;
  // Seen from a torso turned left by 30 degrees.
  const double c = std::cos(M_PI / 6), s = std::sin(M_PI / 6);
  for (const Place& place : landmarks()) {
    model->flag[place.index].setBodyPosition(
        Vector(c * place.x + s * place.y, -s * place.x + c * place.y, place.z, CARTESIAN));
  }
  EXPECT_TRUE(model->correctRotation());
  const double expected[3][3] = {{c, -s, 0}, {s, c, 0}, {0, 0, 1}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      EXPECT_NEAR(model->mySelf->getBodyRotation().get(i, j), expected[i][j], 1e-6);
      EXPECT_NEAR(model->mySelf->getGyroRotation().get(i, j), expected[i][j], 1e-6);
    }
  }
  EXPECT_EQ(model->mySelf->getBodyRotation().get(3, 3), 1.0);
}

TEST_F(WorldModelTest, BeforeTheTableIsThereLandmarksStandAtTheCentre) {
  update(see(sightings({2}, 4, -2, 0.5)));  // the very first message
  expectNear(model->getAgentPosition(), -11.0 / 2, -12.0 / 2, 0.45);
}

// --- Players in the frames ----------------------------------------------------------------------

TEST_F(WorldModelTest, PlayersArriveOnThePitch) {
  join();
  update(see(sightings({2, 3}, 4, -2, 0.5) + " (P (team Rivals) (id 4) (head " + polar(3, 1, 0.1) +
             "))"));
  const Player& opponent = model->player[1][3];
  expectNear(opponent.getGlobalPosition(), 2 + 3, -1 + 1, 0.45 + 0.1);
  expectNear(opponent.headPosition, 2 + 3, -1 + 1, 0.45 + 0.1);
  EXPECT_EQ(opponent.getPreviousPosition(), Vector(0, 0, 0));
}

// Each limb in sight turns all the parts of its player once more; the head alone does not.
TEST_F(WorldModelTest, PartsTurnOnceMoreForEachLimbInSight) {
  const struct {
    const char* parts;
    int turns;
  } kRows[] = {{"(head %)", 1},
               {"(head %) (rlowerarm %)", 2},
               {"(head %) (rlowerarm %) (llowerarm %)", 3},
               {"(head %) (rlowerarm %) (llowerarm %) (rfoot %)", 4},
               {"(head %) (rlowerarm %) (llowerarm %) (rfoot %) (lfoot %)", 5},
               {"(lfoot %)", 2}};
  for (const auto& row : kRows) {
    restart();
    join();
    std::string parts;
    for (const char* c = row.parts; *c != '\0'; ++c) {
      parts += *c == '%' ? polar(2, 0, 0) : std::string(1, *c);
    }
    // The torso is turned left by 10 degrees.
    update("(GS (t 10.00) (pm PlayOn))(GYR (n torso) (rt 0 0 500))(See (L " + polar(1, 0, 0) + " " +
           polar(2, 0, 0) + ") " + sightings({6}, 0, 0, 0.5) + " (P (team Rivals) (id 4) " + parts +
           "))");
    const Player& opponent = model->player[1][3];
    const Vector me = model->getAgentPosition();
    const Vector part = std::string(row.parts).find("head") != std::string::npos
                            ? opponent.headPosition
                            : opponent.leftFootPosition;
    const double angle = row.turns * 10 * M_PI / 180;
    expectNear(part - me, 2 * std::cos(angle), 2 * std::sin(angle), 0, 1e-4);
    // The player itself turns once.
    expectNear(opponent.getRelativePosition(), 2 * std::cos(M_PI / 18), 2 * std::sin(M_PI / 18), 0,
               1e-4);
  }
}

TEST_F(WorldModelTest, WithoutVisionPositionsStayFrozen) {
  join();
  update(see(sightings({2, 3}, 4, -2, 0.5) + " (B " + polar(1, 1, 0) + ")"));
  const Vector me = model->getAgentPosition();
  const Vector ball = model->ball->getGlobalPosition();
  const Vector velocity = model->ball->getVelocity();
  update("(GS (t 10.02) (pm PlayOn))(GYR (n torso) (rt 0 0 500))");
  EXPECT_EQ(model->getAgentPosition(), me);
  EXPECT_EQ(model->ball->getGlobalPosition(), ball);
  EXPECT_EQ(model->ball->getVelocity(), velocity);
  EXPECT_EQ(model->ball->getLastTimeSeen(), 10.0f);
  EXPECT_NEAR(model->mySelf->getGyroRotation().get(1, 0), std::sin(M_PI / 18), 1e-6);
}

TEST_F(WorldModelTest, TheBallsVelocityLagsOneVisionBehind) {
  join();
  model->mySelf->setGlobalPosition(Vector(4, -2, 0.45f));  // so that the estimate stands still
  const auto ballAt = [&](double x, const char* time) {
    update(see(sightings({2, 3}, 4, -2, 0.5) + " (B " + polar(x, 0, 0) + ")", time));
  };
  ballAt(1, "10.00");
  ballAt(2, "10.06");
  expectNear(model->ball->getVelocity(), 5 / 0.94, -2 / 0.94, 0.45 / 0.94, 1e-4);
  ballAt(4, "10.12");
  expectNear(model->ball->getVelocity(), 1 / 0.94, 0, 0, 1e-4);
  ballAt(4, "10.18");
  expectNear(model->ball->getVelocity(), 2 / 0.94, 0, 0, 1e-4);
}

// --- Questions
// ------------------------------------------------------------------------------------

TEST_F(WorldModelTest, FallsAreToldByTheAccelerometer) {
  const struct {
    float x, y, z;
    FallOrientation fall;
  } kRows[] = {
      {0, 0, 9.8f, FALL_NONE}, {-9, 0, 0, FALL_RIGHT}, {9, 0, 0, FALL_LEFT},
      {0, 9, 0, FALL_BACK},    {0, -9, 0, FALL_FRONT}, {0, 0, -9.8f, FALL_NONE},
      {-9, 0, 9, FALL_NONE},   // an upright z wins
      {-9, 0, 8, FALL_RIGHT},  // exactly 8 is not upright
      {-8, 0, 0, FALL_NONE},   {8, 0, 0, FALL_NONE},   {0, 8, 0, FALL_NONE},
      {0, -8, 0, FALL_NONE},   {-9, 9, 0, FALL_RIGHT},  // x comes before y
      {9, -9, 0, FALL_LEFT},   {7, 7, 7, FALL_NONE},   {kNaN, 9, 0, FALL_BACK},
  };
  for (const auto& row : kRows) {
    model->mySelf->setAccellerator(Vector(row.x, row.y, row.z));
    model->fall = FALL_LEFT;
    EXPECT_EQ(model->isFall(), row.fall != FALL_NONE) << row.x << ' ' << row.y << ' ' << row.z;
    EXPECT_EQ(model->fall, row.fall) << row.x << ' ' << row.y << ' ' << row.z;
  }
}

TEST_F(WorldModelTest, TheBeamLocationReachesHalfAMetre) {
  model->mySelf->setGlobalPosition(Vector(-2, 3, 0.45f));
  EXPECT_TRUE(model->isInBeamLocation(Vector(-2.49f, 3.49f, 99)));
  EXPECT_FALSE(model->isInBeamLocation(Vector(-2.5f, 3, 0)));
  EXPECT_FALSE(model->isInBeamLocation(Vector(-2, 2.5f, 0)));
  EXPECT_FALSE(model->isInBeamLocation(Vector(-1.4f, 3, 0)));
  EXPECT_TRUE(model->isInBeamLocation(Vector(-1.51f, 2.51f, 0)));
  EXPECT_FALSE(model->isInBeamLocation(Vector(kNaN, 3, 0)));
}

TEST_F(WorldModelTest, TheBeamLocationIsComparedInSinglePrecision) {
  // A difference of 0.49999999, which rounds to a half.
  model->mySelf->setGlobalPosition(Vector(-2e-8f, 0, 0.45f));
  EXPECT_FALSE(model->isInBeamLocation(Vector(0.49999997f, 0, 0)));
  model->mySelf->setGlobalPosition(Vector(0, -2e-8f, 0.45f));
  EXPECT_FALSE(model->isInBeamLocation(Vector(0, 0.49999997f, 0)));
  model->mySelf->setGlobalPosition(Vector(0, 0, 0.45f));
  EXPECT_TRUE(model->isInBeamLocation(Vector(0.49999997f, 0.49999997f, 0)));
}

TEST_F(WorldModelTest, AngleToIsSignedFromTheTorsosForwardAxis) {
  model->mySelf->setGlobalPosition(Vector(1, 2, 0.45f));
  EXPECT_NEAR(model->getAngleTo(Vector(5, 2, 0)), 0, 1e-4);
  EXPECT_NEAR(model->getAngleTo(Vector(1, 5, 0)), 90, 1e-4);
  EXPECT_NEAR(model->getAngleTo(Vector(1, -5, 0)), -90, 1e-4);
  EXPECT_NEAR(model->getAngleTo(Vector(2, 3, 7)), 45, 1e-4);
  model->mySelf->gyro = Matrix<4, 4>();
  model->mySelf->gyro.rotationByZ(60);
  EXPECT_NEAR(model->getAngleTo(Vector(5, 2, 0)), -60, 1e-4);
  EXPECT_NEAR(model->getAngleTo(Vector(1, 5, 0)), 30, 1e-4);
  EXPECT_NEAR(model->getAngleTo(Vector(-5, 1, 0)), -170.5377 - 60 + 360, 1e-3);
}

TEST_F(WorldModelTest, AngleToUsesTheShortPi) {
  model->mySelf->setGlobalPosition(Vector(0, 0, 0));
  // atan2 of (1, 0) by 180 / 3.1415926, narrowed to float.
  const float quarter = static_cast<float>(std::atan2(1.0, 0.0) * 180.0 / 3.1415926);
  EXPECT_EQ(model->getAngleTo(Vector(0, 1, 0)), static_cast<double>(quarter));
}

TEST_F(WorldModelTest, AgentPositionIsTheOwnGlobalPosition) {
  const Vector& position = model->getAgentPosition();
  model->mySelf->setGlobalPosition(Vector(1, 2, 3));
  EXPECT_EQ(position, Vector(1, 2, 3));
}

}  // namespace
