#ifndef QUOLNARIS_NET_EVENTLOG_H_
#define QUOLNARIS_NET_EVENTLOG_H_

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace arena {

// A log that nobody can fill: it tells each kind of event once and then counts it, however often a
// client brings it about by connecting anew. "agent 5: gone" and "agent 6: gone" are of one kind.
//
// Lines may hold what clients have sent; what goes out is printable and of bounded length.
class EventLog {
 public:
  using Sink = std::function<void(const std::string&)>;

  // Longest line, without the number of times.
  static constexpr std::size_t kMaxLine = 200;
  // Events of more kinds are only counted.
  static constexpr std::size_t kMaxKinds = 256;

  explicit EventLog(Sink sink) : sink_(std::move(sink)) {}

  // Tells of an event: the first of its kind, the 10th, 100th and so on.
  void note(std::string_view line);
  // Tells how often those have happened that were not told each time. REQUIRES: called once, at the
  // end.
  void finish();

 private:
  struct Kind {
    std::size_t count = 0;
    std::size_t told = 0;      // the count when it was told last
    std::size_t nextTold = 1;  // at which it is told again
  };

  Sink sink_;
  std::map<std::string, Kind, std::less<>> kinds_;
  std::size_t others_ = 0;  // events of kinds beyond kMaxKinds
};

}  // namespace arena

#endif  // QUOLNARIS_NET_EVENTLOG_H_
