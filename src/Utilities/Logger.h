#ifndef QUOLNARIS_UTILITIES_LOGGER_H_
#define QUOLNARIS_UTILITIES_LOGGER_H_

#include <fstream>
#include <functional>
#include <ios>
#include <map>
#include <ostream>
#include <string>
#include <string_view>

#include "Utilities/Timer.h"

// Named log streams that write to files under "./Logs/":
//
//   logger["Agent"] << "isingoal = " << value << std::endl;
//
// A log never fails visibly: a name that was never added gives a silent stream, and a file that
// can't be opened swallows what is written to it. Lines have no prefix; floating numbers are
// fixed-point with six decimals.

// One log stream, or the silent one if `out` is null: then every output is a test of a pointer.
class LogStream {
 public:
  // Owns neither; both may be null.
  LogStream(std::ostream* out, const Timer* timer);
  virtual ~LogStream() = default;
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;

  template <typename T>
  LogStream& operator<<(const T& value) {
    if (out == nullptr) return *this;
    if (first) {
      first = false;
      if (timer != nullptr) timer->now();  // asked at the start of a line, and never printed
    }
    *out << value;
    return *this;
  }

  LogStream& operator<<(std::ostream& (*manipulator)(std::ostream&));
  LogStream& operator<<(std::ios_base& (*manipulator)(std::ios_base&));

  // Writes a banner line with the number of the cycle.
  void newCycle();

 protected:
  std::ostream* out;
  const Timer* timer;
  bool first = true;  // at the start of a line
};

// The silent stream.
class LogNull : public LogStream {
 public:
  LogNull() : LogStream(nullptr, nullptr) {}
};

// A stream to a file of its own, which it truncates.
class LogFile : public LogStream {
 public:
  LogFile(const std::string& fileName, const Timer* timer);
  ~LogFile() override;

 private:
  std::string fileName;
};

// A handle to the log streams of the process.
class Logger {
 public:
  // The streams by name.
  class LogStreams {
   public:
    LogStreams() = default;
    ~LogStreams();
    LogStreams(const LogStreams&) = delete;
    LogStreams& operator=(const LogStreams&) = delete;

    // Stores `stream` under `name` and takes it over; a stream of that name goes.
    void add(const std::string& name, LogStream* stream);

    // The stream of that name, or the silent one.
    LogStream& operator[](std::string_view name);

   private:
    std::map<std::string, LogStream*, std::less<>> streams;  // owned
    LogNull logNull;
  };

  // The first handle makes the streams, which live to the end of the process.
  Logger();

  // Opens "./Logs/<name>.log". The timer must outlive the stream; it may be null.
  void add(const std::string& name, const Timer* timer);

  // Opens "./Logs/<name><c>.log" as the stream `name`, where the character c has the code of "0"
  // plus `number`: from 10 on it is no digit ("Agent:.log"), and the files are known by these
  // names.
  void add(const std::string& name, int number, const Timer* timer);

  LogStream& operator[](std::string_view name) const;

  static LogStreams* logStreams;
};

// The logger of this process.
extern Logger logger;

#endif  // QUOLNARIS_UTILITIES_LOGGER_H_
