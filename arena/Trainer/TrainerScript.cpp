#include "Trainer/TrainerScript.h"

#include <sstream>
#include <stdexcept>

namespace arena {

TrainerScript::TrainerScript(std::istream& text) {
  std::string line;
  for (int number = 1; std::getline(text, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    const auto fail = [number](const std::string& what) {
      throw std::runtime_error("trainer script, line " + std::to_string(number) + ": " + what);
    };
    Line entry;
    std::istringstream words(line);
    if (!(words >> entry.cycle) || entry.cycle < 1) fail("begins with no cycle, 1 or more");
    std::getline(words >> std::ws, entry.commands);
    if (entry.commands.empty() || entry.commands[0] != '(') fail("has no command");
    if (!lines_.empty() && entry.cycle < lines_.back().cycle) fail("goes back in time");
    lines_.push_back(std::move(entry));
  }
}

void TrainerScript::beforeCycle(long cyclesBefore, Trainer& trainer) {
  for (; next_ < lines_.size() && lines_[next_].cycle <= cyclesBefore + 1; ++next_) {
    trainer.receive(lines_[next_].commands);
  }
}

}  // namespace arena
