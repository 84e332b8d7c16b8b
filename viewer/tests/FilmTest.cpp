#include "Film.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "Recording/RecordingReader.h"
#include "support/TempDirectory.h"

namespace viewer {
namespace {

using arena::Side;

arena::RecordedRobot robotAt(Side side, int number, int type, double x, double up = 1) {
  arena::RecordedRobot robot;
  robot.side = side;
  robot.number = number;
  robot.type = type;
  robot.torso.translation() << x, -0.5 * x, 0.4;
  robot.torso.linear() =
      Eigen::AngleAxisd(std::acos(up), Eigen::Vector3d::UnitX()).toRotationMatrix();
  robot.joints[3] = static_cast<float>(10 * x);
  return robot;
}

arena::RecordedCycle cycleAt(int number) {
  arena::RecordedCycle cycle;
  cycle.time = 0.02f * static_cast<float>(number);
  cycle.mode = arena::PlayMode::PlayOn;
  cycle.ball.translation() << 0.01 * number, 1, 0.042;
  cycle.robots = {robotAt(Side::Left, 3, 0, 0.1 * number), robotAt(Side::Right, 11, 4, -1)};
  return cycle;
}

std::string unpacked(const std::string& packed) {
  std::string bytes(std::size_t{1} << 20, '\0');
  uLongf size = bytes.size();
  EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(bytes.data()), &size,
                       reinterpret_cast<const Bytef*>(packed.data()), packed.size()),
            Z_OK);
  bytes.resize(size);
  return bytes;
}

// A chunk is a recording without a head: the recording's reader reads it.
std::vector<arena::RecordedCycle> read(const std::string& chunk) {
  const support::TempDirectory directory;
  const std::string path = (directory.path() / "chunk.rec").string();
  std::ofstream(path, std::ios::binary)
      << arena::kRecordingMagic << static_cast<char>(arena::kRecordingVersion) << chunk;
  arena::RecordingReader reader(path);
  std::vector<arena::RecordedCycle> cycles;
  arena::RecordedCycle cycle;
  while (reader.next(cycle)) cycles.push_back(cycle);
  EXPECT_EQ(reader.teamNames()[0], "Alpha");
  return cycles;
}

const arena::RecordingEncoder::TeamNames kTeams = {"Alpha", "Beta"};

Film filmOf(int cycles, std::size_t chunkCycles) {
  Film film("test", 0.02, chunkCycles);
  for (int i = 0; i < cycles; ++i) film.append(cycleAt(i), kTeams);
  film.seal();
  return film;
}

TEST(FilmTest, EveryChunkCanBeReadAlone) {
  const Film film = filmOf(25, 10);
  ASSERT_EQ(film.endChunk(), 3u);
  for (std::size_t chunk = 0; chunk < 3; ++chunk) {
    const auto cycles = read(unpacked(film.chunk(chunk)));
    ASSERT_EQ(cycles.size(), chunk < 2 ? 10u : 5u);
    for (std::size_t i = 0; i < cycles.size(); ++i) {
      const double number = static_cast<double>(10 * chunk + i);
      EXPECT_NEAR(cycles[i].ball.translation().x(), 0.01 * number, 1e-4);
      ASSERT_EQ(cycles[i].robots.size(), 2u);
      EXPECT_NEAR(cycles[i].robots[0].torso.translation().x(), 0.1 * number, 1e-4);
      EXPECT_NEAR(cycles[i].robots[0].joints[3], number, 1e-2);
    }
  }
}

TEST(FilmTest, IndexTellsChunksTeamsAndRobots) {
  const auto index = nlohmann::json::parse(filmOf(25, 10).index({{"live", "true"}}));
  EXPECT_EQ(index["cycles"], 25);
  EXPECT_EQ(index["chunks"].size(), 3u);
  EXPECT_EQ(index["chunks"][2]["first"], 20);
  EXPECT_EQ(index["chunks"][2]["cycles"], 5);
  EXPECT_EQ(index["teams"][1], "Beta");
  EXPECT_EQ(index["live"], true);
  EXPECT_EQ(index["robots"].size(), 5u);
  EXPECT_EQ(index["robots"][4]["joints"].size(), 24u);
  EXPECT_EQ(index["robots"][0]["bodies"][0]["name"], "body");
}

TEST(FilmTest, MarksModesGoalsFoulsAndFallsWhereTheyAre) {
  Film film("test", 0.02, 10);
  for (int i = 0; i < 12; ++i) {
    arena::RecordedCycle cycle = cycleAt(i);
    if (i == 4) cycle.goals.push_back({Side::Left, cycle.time, Side::Right, 2});
    if (i == 5) cycle.fouls.push_back({arena::FoulType::Charging, Side::Right, 11});
    if (i >= 6 && i < 9) cycle.robots[0] = robotAt(Side::Left, 3, 0, 0, 0.1);
    if (i >= 9) cycle.mode = arena::PlayMode::CornerKickRight;
    film.append(cycle, kTeams);
  }
  std::vector<std::string> marks;
  for (const Mark& mark : film.marks()) {
    marks.push_back(std::to_string(mark.cycle) + " " + mark.text + " " +
                    std::to_string(mark.number));
  }
  EXPECT_THAT(marks, testing::ElementsAre("0 PlayOn 0", "4 own goal 2", "5 charging 11", "6 fall 3",
                                          "9 corner_kick_right 0"));
}

TEST(FilmTest, IndexCannotEndTheElementThatHoldsIt) {
  Film film("</script><b>", 0.02, 10);
  film.append(cycleAt(0), {"<!--", "\xff</script>"});
  film.seal();
  const std::string index = film.index();
  EXPECT_EQ(index.find('<'), std::string::npos);
  EXPECT_EQ(nlohmann::json::parse(index)["title"], "</script><b>");
}

TEST(FilmTest, EndlessFilmLosesItsBeginning) {
  Film film("test", 0.02, 1);
  for (std::size_t i = 0; i < Film::kMaxChunks + 7; ++i) film.append(cycleAt(1), kTeams);
  EXPECT_EQ(film.firstChunk(), 7u);
  EXPECT_EQ(film.endChunk(), Film::kMaxChunks + 7);
  EXPECT_EQ(nlohmann::json::parse(film.chunkEntry(7))["first"], 7);
}

}  // namespace
}  // namespace viewer
