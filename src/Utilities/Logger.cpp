#include "Utilities/Logger.h"

#include <cassert>

namespace {

constexpr char kDirectory[] = "./Logs/";
constexpr char kExtension[] = ".log";

using Manipulator = std::ostream& (*)(std::ostream&);

}  // namespace

LogStream::LogStream(std::ostream* out_, const Timer* timer_) : out(out_), timer(timer_) {
  if (out != nullptr) *out << std::fixed;
}

LogStream& LogStream::operator<<(Manipulator manipulator) {
  if (out == nullptr) return *this;
  *out << manipulator;
  if (manipulator == static_cast<Manipulator>(std::endl)) first = true;
  return *this;
}

LogStream& LogStream::operator<<(std::ios_base& (*manipulator)(std::ios_base&)) {
  if (out != nullptr) *out << manipulator;
  return *this;
}

void LogStream::newCycle() {
  if (out == nullptr) return;
  *out << std::endl;
  *out << "------------------------ " << (timer != nullptr ? timer->getCycle() : 0)
       << " ------------------------" << std::endl;
}

LogFile::LogFile(const std::string& name, const Timer* timer_)
    : LogStream(new std::ofstream(name), timer_), fileName(name) {}

LogFile::~LogFile() {
  delete out;
}

Logger::LogStreams::~LogStreams() {
  for (const auto& [name, stream] : streams) delete stream;
}

void Logger::LogStreams::add(const std::string& name, LogStream* stream) {
  LogStream*& place = streams[name];
  if (place != stream) delete place;
  place = stream;
}

LogStream& Logger::LogStreams::operator[](std::string_view name) {
  const auto it = streams.find(name);
  return it == streams.end() ? logNull : *it->second;
}

Logger::LogStreams* Logger::logStreams = nullptr;

Logger logger;

Logger::Logger() {
  if (logStreams == nullptr) logStreams = new LogStreams;
}

void Logger::add(const std::string& name, const Timer* timer) {
  logStreams->add(name, new LogFile(kDirectory + name + kExtension, timer));
}

void Logger::add(const std::string& name, int number, const Timer* timer) {
  const std::string fileName = name + static_cast<char>('0' + number);
  logStreams->add(name, new LogFile(kDirectory + fileName + kExtension, timer));
}

LogStream& Logger::operator[](std::string_view name) const {
  assert(logStreams);
  return (*logStreams)[name];
}
