// Recordings written and read again.
#include <gtest/gtest.h>
#include <zlib.h>

#include <unistd.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "Common/Random.h"
#include "Recording/RecordingReader.h"
#include "Recording/RecordingWriter.h"
#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

class RecordingWriterTest : public testing::Test {
 protected:
  RecordingWriterTest()
      : path((std::filesystem::temp_directory_path() /
              ("quolnaris-recording-" + std::to_string(::getpid()) + "-" +
               testing::UnitTest::GetInstance()->current_test_info()->name()))
                 .string()) {}
  ~RecordingWriterTest() override { std::filesystem::remove(path); }

  static SceneRobot robot(int handle, Side side, int number, int type, Random& random) {
    SceneRobot robot;
    robot.handle = handle;
    robot.side = side;
    robot.number = number;
    robot.type = type;
    for (Eigen::Isometry3d& body : robot.bodies) {
      body = Eigen::Isometry3d::Identity();
      for (int i = 0; i < 3; ++i) body.translation()[i] = random.uniform(-15, 15);
      body.linear() = Eigen::Quaterniond(random.uniform(-1, 1), random.uniform(-1, 1),
                                         random.uniform(-1, 1), random.uniform(-1, 1))
                          .normalized()
                          .toRotationMatrix();
    }
    for (float& joint : robot.joints) joint = static_cast<float>(random.uniform(-120, 120));
    return robot;
  }
  static void expectSame(const Eigen::Isometry3d& read, const Eigen::Isometry3d& written) {
    EXPECT_LT((read.translation() - written.translation()).cwiseAbs().maxCoeff(), 0.51e-4);
    EXPECT_LT((read.linear() - written.linear()).cwiseAbs().maxCoeff(), 5e-4);
  }
  std::string readAll() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // Writes a gzip file with this content.
  void writePacked(const std::string& content) const {
    gzFile file = gzopen(path.c_str(), "wb");
    gzwrite(file, content.data(), static_cast<unsigned>(content.size()));
    gzclose(file);
  }
  // The content of a recording of a few cycles, unpacked.
  std::string sample() {
    Random random(3, "sample");
    Scene scene;
    scene.robots = {robot(1, Side::Left, 2, 4, random), robot(2, Side::Right, 3, 0, random)};
    GameState game;
    game.teamNames = {"Alpha", "Beta"};
    RecordingWriter writer(path);
    const GoalEvent goal{Side::Left, 1.0f, Side::Left, 2};
    const FoulEvent foul{1, FoulType::Touching, Side::Right, 3, true};
    for (int i = 0; i < 3; ++i) writer.write(scene, game, {&goal, 1}, {&foul, 1});
    writer.close();
    std::string content(1 << 16, '\0');
    gzFile file = gzopen(path.c_str(), "rb");
    content.resize(static_cast<std::size_t>(gzread(file, content.data(), 1 << 16)));
    gzclose(file);
    return content;
  }
  int cyclesRead() const {
    RecordingReader reader(path);
    RecordedCycle cycle;
    int count = 0;
    while (reader.next(cycle)) ++count;
    return count;
  }

  const std::string path;
};

TEST_F(RecordingWriterTest, EverythingComesBackWithinItsResolution) {
  Random random(1, "test");
  std::vector<Scene> scenes;
  std::vector<GameState> games;
  {
    RecordingWriter writer(path);
    for (int i = 0; i < 50; ++i) {
      Scene scene;
      scene.ball = robot(0, Side::Left, 1, 0, random).bodies[0];
      scene.robots = {robot(1, Side::Left, 2, i % 5, random), robot(2, Side::Right, 11, 4, random),
                      robot(3, Side::None, 0, 0, random)};
      if (i > 20) scene.robots.push_back(robot(4, Side::Right, 5, 1, random));
      if (i > 30) scene.robots.erase(scene.robots.begin());
      GameState game;
      game.time = 0.02f * static_cast<float>(i);
      game.mode = static_cast<PlayMode>(i % 21);
      game.half = 1 + i / 25;
      game.score = {i / 10, i / 3};
      game.teamNames[0] = "Alpha";
      if (i > 5) game.teamNames[1] = "B \xc3\xa4";
      std::vector<GoalEvent> goals;
      std::vector<FoulEvent> fouls;
      if (i == 10) goals.push_back({Side::Right, game.time, Side::None, 0});
      if (i == 11) {
        fouls = {{1, FoulType::Charging, Side::Left, 2, true},
                 {2, FoulType::Charging, Side::Left, 2, false},
                 {3, FoulType::Touching, Side::Right, 11, true}};
      }
      writer.write(scene, game, goals, fouls);
      scenes.push_back(scene);
      games.push_back(game);
    }
    EXPECT_TRUE(writer.close());
  }
  RecordingReader reader(path);
  RecordedCycle cycle;
  for (std::size_t i = 0; i < scenes.size(); ++i) {
    ASSERT_TRUE(reader.next(cycle)) << i;
    EXPECT_EQ(cycle.time, games[i].time);
    EXPECT_EQ(cycle.mode, games[i].mode);
    EXPECT_EQ(cycle.half, games[i].half);
    EXPECT_EQ(cycle.score, games[i].score);
    EXPECT_EQ(reader.teamNames(), games[i].teamNames);
    expectSame(cycle.ball, scenes[i].ball);
    std::vector<SceneRobot> shown;
    for (const SceneRobot& robot : scenes[i].robots) {
      if (robot.side != Side::None) shown.push_back(robot);
    }
    ASSERT_EQ(cycle.robots.size(), shown.size());
    for (std::size_t r = 0; r < shown.size(); ++r) {
      EXPECT_EQ(cycle.robots[r].side, shown[r].side);
      EXPECT_EQ(cycle.robots[r].number, shown[r].number);
      EXPECT_EQ(cycle.robots[r].type, shown[r].type);
      expectSame(cycle.robots[r].torso, shown[r].pose(Body::Torso));
      for (std::size_t j = 0; j < jointCount(shown[r].type); ++j) {
        EXPECT_NEAR(cycle.robots[r].joints[j], shown[r].joints[j], 0.0051);
      }
    }
    EXPECT_EQ(cycle.goals.size(), i == 10 ? 1u : 0u);
    EXPECT_EQ(cycle.fouls.size(), i == 11 ? 2u : 0u);
    if (i == 10) {
      EXPECT_EQ(cycle.goals[0].side, Side::Right);
      EXPECT_EQ(cycle.goals[0].scorerSide, Side::None);
      EXPECT_EQ(cycle.goals[0].time, cycle.time);
    }
    if (i == 11) {
      EXPECT_EQ(cycle.fouls[0].type, FoulType::Charging);
      EXPECT_EQ(cycle.fouls[1].side, Side::Right);
      EXPECT_EQ(cycle.fouls[1].number, 11);
    }
  }
  EXPECT_FALSE(reader.next(cycle));
  EXPECT_TRUE(reader.complete());
  EXPECT_FALSE(reader.next(cycle));
}

TEST_F(RecordingWriterTest, AStandingMatchTakesLittleSpace) {
  Random random(1, "test");
  Scene scene;
  for (int i = 0; i < 22; ++i) {
    scene.robots.push_back(robot(i, i % 2 ? Side::Left : Side::Right, 1 + i / 2, 0, random));
  }
  RecordingWriter writer(path);
  for (int i = 0; i < 1000; ++i) writer.write(scene, GameState(), {}, {});
  writer.close();
  EXPECT_LT(std::filesystem::file_size(path), 20000u);
}

TEST_F(RecordingWriterTest, NumbersThatAreNoneAreWrittenAsZero) {
  Scene scene;
  scene.ball.translation().x() = std::numeric_limits<double>::quiet_NaN();
  scene.ball.translation().y() = std::numeric_limits<double>::infinity();
  scene.ball.translation().z() = 1e300;
  RecordingWriter writer(path);
  writer.write(scene, GameState(), {}, {});
  writer.write(Scene(), GameState(), {}, {});
  writer.close();
  RecordingReader reader(path);
  RecordedCycle cycle;
  ASSERT_TRUE(reader.next(cycle));
  EXPECT_EQ(cycle.ball.translation().x(), 0.0);
  EXPECT_EQ(cycle.ball.translation().y(), 0.0);
  ASSERT_TRUE(reader.next(cycle));
  EXPECT_EQ(cycle.ball.translation().z(), 0.0);
}

TEST_F(RecordingWriterTest, RecordingsCutOffEndWithTheLastWholeCycle) {
  const std::string content = sample();
  int before = 0;
  for (std::size_t size = 9; size < content.size(); size += 5) {
    writePacked(content.substr(0, size));
    const int cycles = cyclesRead();
    EXPECT_GE(cycles, before);
    before = cycles;
  }
  EXPECT_EQ(before, 3);
  writePacked(content.substr(0, content.size() - 2));
  RecordingReader reader(path);
  RecordedCycle cycle;
  while (reader.next(cycle)) {
  }
  EXPECT_FALSE(reader.complete());
}

TEST_F(RecordingWriterTest, FilesCutOffAnywhereAreReadAsFarAsTheyGo) {
  Random random(5, "cut");
  Scene scene;
  scene.robots = {robot(1, Side::Left, 2, 4, random)};
  {
    RecordingWriter writer(path);
    for (int i = 0; i < 400; ++i) {
      scene.robots[0] = robot(1, Side::Left, 2, 4, random);
      writer.write(scene, GameState(), {}, {});
    }
  }
  const std::string file = readAll();
  int before = 0;
  for (std::size_t size = 40; size < file.size(); size += file.size() / 20) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << file.substr(0, size);
    const int cycles = cyclesRead();
    EXPECT_GE(cycles, before);
    before = cycles;
  }
  EXPECT_GT(before, 300);
  EXPECT_LE(before, 400);
}

TEST_F(RecordingWriterTest, TheFileHasItsBeginningAtOnce) {
  RecordingWriter writer(path);
  EXPECT_EQ(cyclesRead(), 0);
}

TEST_F(RecordingWriterTest, TheFileIsFreshWhileItIsWritten) {
  Random random(4, "fresh");
  Scene scene;
  scene.robots = {robot(1, Side::Left, 2, 4, random)};
  RecordingWriter writer(path);
  for (int i = 0; i < 3; ++i) writer.write(scene, GameState(), {}, {});
  writer.keepFresh();
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  writer.keepFresh();
  EXPECT_EQ(cyclesRead(), 3);
  for (int i = 0; i < 3; ++i) writer.write(scene, GameState(), {}, {});
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  writer.write(scene, GameState(), {}, {});
  EXPECT_EQ(cyclesRead(), 7);
}

TEST_F(RecordingWriterTest, DamagedRecordingsAreRefusedOrReadWithoutHarm) {
  const std::string content = sample();
  Random random(7, "damage");
  for (int i = 0; i < 300; ++i) {
    std::string damaged = content;
    for (int k = 0; k < 3; ++k) {
      damaged[random.below(damaged.size())] = static_cast<char>(random.below(256));
    }
    writePacked(damaged);
    try {
      EXPECT_LE(cyclesRead(), 1000);
    } catch (const RecordingError&) {
    }
  }
}

TEST_F(RecordingWriterTest, OtherFilesAreRefused) {
  EXPECT_THROW(RecordingReader("/nonexistent/file"), RecordingError);
  std::ofstream(path) << "something else";
  EXPECT_THROW(RecordingReader{path}, RecordingError);
  writePacked("QNRMATCH\x02");
  EXPECT_THROW(RecordingReader{path}, RecordingError);
  EXPECT_THROW(RecordingWriter("/nonexistent/directory/file"), std::runtime_error);
}

}  // namespace
}  // namespace arena
