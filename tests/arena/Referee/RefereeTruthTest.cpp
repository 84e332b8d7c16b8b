// The referee against recordings of the league's server: given the league's poses after each
// physics step and the trainer's mode changes, it must move and place what the league moved.
#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "arena/Support/FakeWorld.h"

namespace arena {
namespace {

struct TruthRobot {
  Eigen::Vector3d place;
  double heading = 0;  // degrees
  double up = 1;       // z of the torso's upward axis
};

struct TruthRow {
  int index = 0;
  double time = 0;
  PlayMode mode = PlayMode::BeforeKickOff;
  Eigen::Vector3d ball;
  std::map<std::string, TruthRobot> robots;  // by side and number, L10
};

std::vector<TruthRow> readTruth(const std::string& name) {
  const std::string path = QUOLNARIS_SOURCE_DIR "/tests/data/recordings/" + name + ".truth.gz";
  gzFile file = gzopen(path.c_str(), "rb");
  std::string text;
  char part[65536];
  int size = 0;
  while (file && (size = gzread(file, part, sizeof part)) > 0) {
    text.append(part, static_cast<std::size_t>(size));
  }
  if (file) gzclose(file);
  std::vector<TruthRow> rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    TruthRow row;
    std::string mode;
    std::string score;
    words >> row.index >> row.time >> mode >> score >> row.ball[0] >> row.ball[1] >> row.ball[2];
    row.mode = modeByName(mode).value_or(PlayMode::BeforeKickOff);
    std::string bar;
    while (words >> bar) {
      std::string who;
      TruthRobot robot;
      words >> who >> robot.place[0] >> robot.place[1] >> robot.place[2] >> robot.heading >>
          robot.up;
      if (who[0] != '?') row.robots[who] = robot;
    }
    rows.push_back(row);
  }
  return rows;
}

class RefereeTruthTest : public testing::TestWithParam<const char*> {
 protected:
  // Puts the scripted robots to where the row has them.
  void show(const TruthRow& row) {
    for (const auto& [name, truth] : row.robots) {
      if (handles.count(name) == 0) {
        const Side side = name[0] == 'L' ? Side::Left : Side::Right;
        handles[name] = world.add(side, std::stoi(name.substr(1)), 0, 0);
        world.addCollider(handles[name], Body::RightFoot, {0.05, 0.02, -0.34}, {0.04, 0.08, 0.01});
      }
      Eigen::Isometry3d& torso = world.view(handles[name]).torso;
      torso = poseAt(truth.place.x(), truth.place.y(), truth.place.z(), truth.heading - 90);
      // How it leans is not recorded, only how far: take forwards.
      torso.rotate(
          Eigen::AngleAxisd(-std::acos(std::min(truth.up, 1.0)), Eigen::Vector3d::UnitX()));
    }
    world.ballView.position = row.ball;
    world.ballView.velocity.setZero();
  }

  FakeWorld world;
  Referee referee{world, {}};
  std::map<std::string, RobotHandle> handles;
};

TEST_P(RefereeTruthTest, MovesWhatTheLeagueMoved) {
  const std::vector<TruthRow> rows = readTruth(GetParam());
  ASSERT_GT(rows.size(), 1000u);
  int moves = 0;
  int placements = 0;
  for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
    const TruthRow& row = rows[i];
    const TruthRow& next = rows[i + 1];
    // Between kick-offs the trainer sets the modes; what follows a goal is the referee's affair.
    const bool afterGoal = kindOf(referee.game().mode) == ModeKind::Goal;
    if (row.mode != referee.game().mode && !afterGoal) referee.setMode(row.mode);
    show(row);
    world.moves.clear();
    world.ballSettings = 0;
    referee.step();
    ASSERT_EQ(nameOf(referee.game().mode), nameOf(row.mode)) << row.index;
    ASSERT_NEAR(referee.game().time, row.time, 0.0051) << row.index;
    if (world.ballSettings > 0) {
      ++placements;
      EXPECT_LT((world.ballView.position - next.ball).norm(), 0.001) << row.index;
    }

    std::set<RobotHandle> moved;
    for (const FakeWorld::Move& move : world.moves) moved.insert(move.robot);
    moves += static_cast<int>(moved.size());
    for (const auto& [name, handle] : handles) {
      if (row.robots.count(name) == 0 || next.robots.count(name) == 0) continue;
      const Eigen::Vector3d shown = next.robots.at(name).place;
      // While beams are allowed a player may be anywhere in the next row.
      if (isPaused(next.mode) && moved.count(handle) == 0) continue;
      const double way = (shown - row.robots.at(name).place).norm();
      if (moved.count(handle) > 0) {
        EXPECT_LT((shown - world.place(handle)).norm(), 0.02) << row.index << " " << name;
      } else if (way > 0.15) {
        EXPECT_NEAR(shown.z(), 1.4, 0.01) << row.index << " " << name;  // thrown by the trainer
      }
    }
  }
  EXPECT_GT(placements, 200);
  EXPECT_EQ(moves, std::string(GetParam()) == "match-b" ? 3 : 0);
}

INSTANTIATE_TEST_SUITE_P(Recordings, RefereeTruthTest, testing::Values("match-a", "match-b"));

}  // namespace
}  // namespace arena
