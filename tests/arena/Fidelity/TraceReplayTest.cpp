// The arena against recordings of the league's server: the same answers from the same start.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "Common/Robots.h"
#include "Fidelity/TraceReplay.h"

namespace arena {
namespace {

struct RecordedScene {
  const char* name;
  // Rows over which it must stay within the tolerances; 0: until a fall makes its first contact.
  std::size_t rows;
};

constexpr std::size_t kUntilFall = 0;

class TraceReplayTest : public testing::TestWithParam<RecordedScene> {};

TEST_P(TraceReplayTest, IsFollowedWithinTheTolerances) {
  const Trace trace = readTrace(std::string(QUOLNARIS_SOURCE_DIR "/tests/data/traces/") +
                                GetParam().name + ".csv.gz");
  const std::vector<TraceRow> replayed = replayTrace(trace, nudgeOf(trace.type));
  ASSERT_EQ(replayed.size(), trace.rows.size());
  const std::size_t end =
      GetParam().rows == kUntilFall ? firstFallContact(replayed) : GetParam().rows;
  ASSERT_GT(end, 10u);
  const TraceDifference difference = compareTrace(trace, replayed, end);
  EXPECT_LE(difference.angle, 0.1) << "degrees";
  EXPECT_LE(difference.torso, 0.002) << "m";
  EXPECT_LE(difference.gyro, 2.0) << "degrees/s";
  EXPECT_LE(difference.accelerometer, 0.05) << "of the range";
  EXPECT_LE(difference.footForce, 0.05) << "of the range";
  EXPECT_LE(difference.ball, 0.01) << "of the way";
}

// Afterwards the robot ends as the recorded one: lying or standing.
class TraceReplayEndTest : public testing::TestWithParam<RecordedScene> {};

TEST_P(TraceReplayEndTest, IsLikeTheRecordedScenes) {
  const Trace trace = readTrace(std::string(QUOLNARIS_SOURCE_DIR "/tests/data/traces/") +
                                GetParam().name + ".csv.gz");
  const std::vector<TraceRow> replayed = replayTrace(trace, nudgeOf(trace.type));
  const auto last = std::find_if(trace.rows.rbegin(), trace.rows.rend(),
                                 [](const TraceRow& row) { return row.truth.has_value(); });
  ASSERT_NE(last, trace.rows.rend());
  const auto at = static_cast<std::size_t>(trace.rows.rend() - last) - 1;
  const double recorded = last->truth->torso.translation().z();
  const double reached = replayed[at].truth->torso.translation().z();
  EXPECT_NEAR(reached, recorded, 0.03);
}

const std::vector<RecordedScene> kScenes{RecordedScene{"ball_lob", kUntilFall},
                                         RecordedScene{"ball_robot", kUntilFall},
                                         RecordedScene{"ball_roll", kUntilFall},
                                         RecordedScene{"ball_wall", kUntilFall},
                                         RecordedScene{"drop", kUntilFall},
                                         RecordedScene{"fall_back", kUntilFall},
                                         RecordedScene{"fall_front", kUntilFall},
                                         RecordedScene{"fall_side", kUntilFall},
                                         RecordedScene{"flail_type0", kUntilFall},
                                         RecordedScene{"flail_type2", 250},
                                         RecordedScene{"flail_type3", kUntilFall},
                                         RecordedScene{"kick", kUntilFall},
                                         RecordedScene{"one_joint_each", kUntilFall},
                                         RecordedScene{"quiet_type0", kUntilFall},
                                         RecordedScene{"quiet_type1", kUntilFall},
                                         RecordedScene{"quiet_type2", kUntilFall},
                                         RecordedScene{"quiet_type3", kUntilFall},
                                         RecordedScene{"quiet_type4", kUntilFall},
                                         RecordedScene{"squat_type0", kUntilFall},
                                         RecordedScene{"squat_type1", kUntilFall},
                                         RecordedScene{"squat_type2", kUntilFall},
                                         RecordedScene{"squat_type3", kUntilFall},
                                         RecordedScene{"squat_type4", kUntilFall},
                                         RecordedScene{"stops", kUntilFall},
                                         RecordedScene{"stride", kUntilFall},
                                         RecordedScene{"tread_type0", kUntilFall},
                                         RecordedScene{"tread_type1", kUntilFall},
                                         RecordedScene{"tread_type3", 140},
                                         RecordedScene{"tread_type4", 180}};

// Who throws his limbs about on the ground ends anyhow; this one on his other side.
std::vector<RecordedScene> scenesThatEndAlike() {
  std::vector<RecordedScene> scenes = kScenes;
  std::erase_if(
      scenes, [](const RecordedScene& scene) { return scene.name == std::string("flail_type0"); });
  return scenes;
}

std::string nameOfScene(const testing::TestParamInfo<RecordedScene>& scene) {
  return scene.param.name;
}

INSTANTIATE_TEST_SUITE_P(League, TraceReplayTest, testing::ValuesIn(kScenes), nameOfScene);
INSTANTIATE_TEST_SUITE_P(League, TraceReplayEndTest, testing::ValuesIn(scenesThatEndAlike()),
                         nameOfScene);

// Recordings that feel the stance at their start, and are met to the last digit of their places.
class TraceReplayStanceTest : public testing::TestWithParam<const char*> {};

TEST_P(TraceReplayStanceTest, IsMetToTheLastRecordedDigit) {
  const Trace trace =
      readTrace(std::string(QUOLNARIS_SOURCE_DIR "/tests/data/traces/") + GetParam() + ".csv.gz");
  const std::vector<TraceRow> replayed = replayTrace(trace, nudgeOf(trace.type));
  const TraceDifference difference = compareTrace(trace, replayed, trace.rows.size());
  EXPECT_LT(difference.torso, 5.7e-6) << "m";
  EXPECT_LT(difference.torsoMax, 1e-5) << "m";
}

INSTANTIATE_TEST_SUITE_P(League, TraceReplayStanceTest,
                         testing::Values("ball_robot", "fall_back", "stride", "tread_type0",
                                         "tread_type1"),
                         [](const auto& scene) { return std::string(scene.param); });

// Without a nudge this tread is followed for as long as the unrecorded digits allow.
TEST(TraceReplayNudgeTest, TreadIsKeptForSecondsWithoutIt) {
  const Trace trace = readTrace(QUOLNARIS_SOURCE_DIR "/tests/data/traces/tread_type0.csv.gz");
  EXPECT_TRUE(withinTolerance(compareTrace(trace, replayTrace(trace, 0.0), 180)));
}

TEST(TraceReplayNudgeTest, IsFarBelowTheRecordedDigitsAndOfTypeZeroAlone) {
  EXPECT_NE(nudgeOf(0), 0.0);
  EXPECT_LT(std::abs(nudgeOf(0)), 0.5e-7);
  for (const int type : {1, 2, 3, 4}) EXPECT_EQ(nudgeOf(type), 0.0);
  EXPECT_THROW(nudgeOf(kRobotTypeCount), std::out_of_range);
  EXPECT_THROW(nudgeOf(-1), std::out_of_range);
}

}  // namespace
}  // namespace arena
