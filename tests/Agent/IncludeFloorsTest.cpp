// The floors of the house: which header may include which. Lower floors know nothing of higher
// ones, no header sits in a circle, and player and practice arena meet on the wire alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Floor {
  const char* path;  // of a header, or of a folder with a stroke at its end
  int floor;
};

// The longest path that fits decides.
constexpr Floor kFloors[] = {
    {"Utilities/", 1},
    {"Mathematics/", 1},
    {"Connection/", 2},
    {"Command/", 2},
    {"Kinematics/", 2},
    {"WorldModel/", 3},
    {"Utilities/Say.h", 3},
    {"Agent/JointController.h", 4},
    {"Agent/BodyController.h", 4},
    {"Agent/Robot.h", 4},
    {"Agent/BasicAgent.h", 4},
    {"BasicAction/", 5},
    {"Decision/Actions.h", 5},
    {"Utilities/FastIC.h", 6},
    {"AdvancedAction/", 6},
    {"Agent/Agent.h", 7},
    {"Agent/AdvancedAgent.h", 7},
    {"Decision/Positioning.h", 8},
    {"Decision/Decision.h", 8},
    {"Agent/OurPlayer.h", 9},
};

/// The floor of a header by its path below src/; 0 if it has none.
int floorOf(const std::string& path) {
  int floor = 0;
  std::size_t longest = 0;
  for (const Floor& entry : kFloors) {
    const std::string prefix = entry.path;
    const bool fits = prefix.back() == '/' ? path.starts_with(prefix) : path == prefix;
    if (fits && prefix.size() > longest) {
      longest = prefix.size();
      floor = entry.floor;
    }
  }
  return floor;
}

/// What a source file includes between quotation marks.
std::vector<std::string> includesOf(const fs::path& file) {
  const std::string directive = "#include \"";
  std::vector<std::string> result;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with(directive)) continue;
    line.erase(0, directive.size());
    result.push_back(line.substr(0, line.find('"')));
  }
  return result;
}

using Includes = std::map<std::string, std::vector<std::string>>;

/// The sources of a tree by their paths below it, with what they include.
Includes readTree(const char* tree) {
  const fs::path root = fs::path(QUOLNARIS_SOURCE_DIR) / tree;
  Includes files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string extension = entry.path().extension();
    if (extension != ".h" && extension != ".cpp") continue;
    files[fs::relative(entry.path(), root)] = includesOf(entry.path());
  }
  return files;
}

bool isHeader(const std::string& path) {
  return path.ends_with(".h");
}

/// The circles of headers that can be walked from `header`, as texts.
void findCircles(const Includes& files, const std::string& header, std::vector<std::string>& path,
                 std::set<std::string>& done, std::vector<std::string>& circles) {
  const auto seen = std::find(path.begin(), path.end(), header);
  if (seen != path.end()) {
    std::string circle;
    for (auto it = seen; it != path.end(); ++it) circle += *it + " -> ";
    circles.push_back(circle + header);
    return;
  }
  const auto file = files.find(header);
  if (file == files.end() || done.contains(header)) return;
  path.push_back(header);
  for (const std::string& included : file->second) {
    findCircles(files, included, path, done, circles);
  }
  path.pop_back();
  done.insert(header);
}

std::vector<std::string> circlesIn(const Includes& files) {
  std::vector<std::string> circles;
  std::set<std::string> done;
  std::vector<std::string> path;
  for (const auto& [name, includes] : files) {
    if (isHeader(name)) findCircles(files, name, path, done, circles);
  }
  return circles;
}

TEST(IncludeFloorsTest, EveryHeaderHasAFloor) {
  for (const auto& [name, includes] : readTree("src")) {
    EXPECT_TRUE(!isHeader(name) || floorOf(name) != 0) << name;
  }
}

TEST(IncludeFloorsTest, HeadersIncludeFromTheirFloorOrBelow) {
  const Includes files = readTree("src");
  ASSERT_FALSE(files.empty());
  for (const auto& [name, includes] : files) {
    if (!isHeader(name)) continue;
    for (const std::string& included : includes) {
      EXPECT_LE(floorOf(included), floorOf(name)) << name << " includes " << included;
    }
  }
}

TEST(IncludeFloorsTest, NoHeaderSitsInACircle) {
  EXPECT_EQ(circlesIn(readTree("src")), std::vector<std::string>());
  EXPECT_EQ(circlesIn(readTree("arena")), std::vector<std::string>());
}

TEST(IncludeFloorsTest, CirclesAreFound) {
  const Includes files = {{"a.h", {"b.h", "d.h"}}, {"b.h", {"c.h"}}, {"c.h", {"b.h"}}, {"d.h", {}}};
  EXPECT_EQ(circlesIn(files), std::vector<std::string>({"b.h -> c.h -> b.h"}));
}

TEST(IncludeFloorsTest, PlayerIncludesOnlyItself) {
  const Includes files = readTree("src");
  for (const auto& [name, includes] : files) {
    for (const std::string& included : includes) {
      EXPECT_TRUE(files.contains(included)) << name << " includes " << included;
    }
  }
}

TEST(IncludeFloorsTest, ArenaIncludesOnlyItself) {
  const Includes files = readTree("arena");
  for (const auto& [name, includes] : files) {
    for (const std::string& included : includes) {
      const std::string beside = (fs::path(name).parent_path() / included).lexically_normal();
      EXPECT_TRUE(files.contains(included) || files.contains(beside))
          << name << " includes " << included;
    }
  }
}

}  // namespace
