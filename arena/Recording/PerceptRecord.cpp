#include "Recording/PerceptRecord.h"

#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "Wire/Frame.h"

namespace arena {

namespace {

namespace fs = std::filesystem;

// Many streams at once: each is packed quickly.
constexpr const char* kMode = "wb1";
constexpr const char* kAgents = "agents.json";

std::string nameOf(int agent, const char* kind) {
  return "agent-" + std::to_string(agent) + "." + kind + ".gz";
}

bool isOfRecord(const fs::path& path) {
  const std::string name = path.filename().string();
  return name == kAgents || (name.starts_with("agent-") && name.ends_with(".gz"));
}

}  // namespace

// A stream of frames.
struct PerceptRecord::File {
  explicit File(const fs::path& path) : file(gzopen(path.c_str(), kMode)) {
    if (!file) throw std::runtime_error("cannot write " + path.string());
  }
  ~File() { close(); }

  void write(std::string_view text) {
    const auto prefix = framePrefix(text.size());
    const auto size = static_cast<unsigned>(text.size());
    good = good && gzwrite(file, prefix.data(), prefix.size()) == static_cast<int>(prefix.size()) &&
           (size == 0 || gzwrite(file, text.data(), size) == static_cast<int>(size));
    ++frames;
  }
  bool close() {
    if (file) good = gzclose(file) == Z_OK && good;
    file = nullptr;
    return good;
  }

  gzFile file;
  bool good = true;
  long frames = 0;
};

struct PerceptRecord::Agent {
  Agent(const fs::path& directory, int id)
      : frames(directory / nameOf(id, "frames")), answers(directory / nameOf(id, "answers")) {}

  File frames;
  File answers;
  long firstCycle = -1;
  Side side = Side::None;
  int number = 0;
  int type = 0;
};

PerceptRecord::PerceptRecord(const std::string& directory) : directory_(directory) {
  std::error_code error;
  fs::create_directories(directory, error);
  if (error) throw std::runtime_error("cannot make the directory " + directory);
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    if (isOfRecord(entry.path())) fs::remove(entry.path());
  }
}

PerceptRecord::~PerceptRecord() {
  close();
}

PerceptRecord::Agent& PerceptRecord::agent(int id) {
  std::unique_ptr<Agent>& found = agents_[id];
  if (!found) found = std::make_unique<Agent>(directory_, id);
  return *found;
}

void PerceptRecord::frame(int id, std::string_view text) {
  Agent& given = agent(id);
  if (given.firstCycle < 0) given.firstCycle = cycle_;
  given.frames.write(text);
}

void PerceptRecord::answer(int id, std::string_view text) {
  agent(id).answers.write(text);
}

void PerceptRecord::endCycle(const Scene& scene) {
  ++cycle_;
  for (const SceneRobot& robot : scene.robots) {
    const auto found = agents_.find(robot.handle);
    if (found == agents_.end() || robot.side == Side::None) continue;
    found->second->side = robot.side;
    found->second->number = robot.number;
    found->second->type = robot.type;
  }
}

bool PerceptRecord::writeAgents() const {
  constexpr const char* kSides[] = {"left", "right", "none"};
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const auto& [id, agent] : agents_) {
    list.push_back({{"agent", id},
                    {"side", kSides[index(agent->side)]},
                    {"number", agent->number},
                    {"type", agent->type},
                    {"firstCycle", agent->firstCycle},
                    {"frames", agent->frames.frames},
                    {"answers", agent->answers.frames}});
  }
  std::ofstream file(fs::path(directory_) / kAgents);
  file << nlohmann::ordered_json{{"version", 1}, {"agents", list}}.dump(2) << '\n';
  return static_cast<bool>(file.flush());
}

bool PerceptRecord::close() {
  if (closed_) return good_;
  closed_ = true;
  for (const auto& [id, agent] : agents_) {
    good_ = agent->frames.close() && good_;
    good_ = agent->answers.close() && good_;
  }
  good_ = writeAgents() && good_;
  return good_;
}

}  // namespace arena
