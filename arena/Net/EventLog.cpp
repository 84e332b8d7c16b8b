#include "Net/EventLog.h"

#include "Wire/Printable.h"

namespace arena {
namespace {

// The line without the number of the agent, which is another one after each connecting.
std::string kindOf(const std::string& line) {
  constexpr std::string_view kAgent = "agent ";
  if (!line.starts_with(kAgent)) return line;
  const std::size_t end = line.find_first_not_of("0123456789", kAgent.size());
  if (end == kAgent.size() || end == std::string::npos || line[end] != ':') return line;
  return "agents" + line.substr(end);
}

std::string times(std::size_t count) {
  return " (" + std::to_string(count) + " times)";
}

}  // namespace

void EventLog::note(std::string_view text) {
  const std::string line = printable(text, kMaxLine);
  std::string name = kindOf(line);
  if (kinds_.size() >= kMaxKinds && !kinds_.contains(name)) {
    if (others_++ == 0) sink_("events of too many kinds: further kinds are only counted");
    return;
  }
  Kind& kind = kinds_[std::move(name)];
  if (++kind.count < kind.nextTold) return;
  sink_(kind.count == 1 ? line : line + times(kind.count));
  kind.told = kind.count;
  kind.nextTold *= 10;
}

void EventLog::finish() {
  for (const auto& [name, kind] : kinds_) {
    if (kind.count > kind.told) sink_(name + times(kind.count));
  }
  if (others_ > 0) sink_("events of further kinds" + times(others_));
}

}  // namespace arena
