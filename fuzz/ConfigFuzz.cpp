// Reads arbitrary bytes as a configuration file, and compares what the store holds afterwards with
// an independent reading of the grammar. A line that fails an assertion by that reading is left out
// of the file, since an abort is what it shall bring; an assertion that fails all the same is a
// finding.

#include <sys/mman.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "Utilities/Config.h"

namespace {

#define CHECK(condition)                                                    \
  do {                                                                      \
    if (!(condition)) {                                                     \
      std::fprintf(stderr, "%d: %s does not hold\n", __LINE__, #condition); \
      std::abort();                                                         \
    }                                                                       \
  } while (false)

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string withoutBlanksAround(std::string text) {
  while (!text.empty() && isBlank(text.back())) text.pop_back();
  std::size_t begin = 0;
  while (begin < text.size() && isBlank(text[begin])) ++begin;
  return text.substr(begin);
}

// What a line is, by the grammar.
struct Line {
  enum Kind { SKIPPED, GROUP, VALUE, FAILS, THROWS } kind;
  std::string name = {};
  std::string value = {};
};

Line read(const std::string& line) {
  const bool hasComment = line.find('#') != std::string::npos;
  if (line.starts_with('#')) return {Line::SKIPPED};
  const std::string text = withoutBlanksAround(line.substr(0, line.find('#')));
  if (text.empty()) return {hasComment ? Line::FAILS : Line::SKIPPED};
  if (text.size() == 1) return {Line::SKIPPED};
  if (text.front() == '[') {
    if (text.back() != ']') return {Line::FAILS};
    return {Line::GROUP, text.substr(1, text.size() - 2)};
  }
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) return {Line::FAILS};
  const std::string key = withoutBlanksAround(text.substr(0, equals));
  if (key.empty()) return {Line::FAILS};
  const std::string value = withoutBlanksAround(text.substr(equals + 1));
  if (value.empty() && !hasComment) return {Line::THROWS};
  return {Line::VALUE, key, value};
}

using Groups = std::map<std::string, std::map<std::string, std::string>>;

// A file without failing lines, and what it holds.
struct Expectation {
  std::string file;
  Groups groups;
  bool throws = false;
};

Expectation expect(const std::string& bytes) {
  Expectation result;
  std::string group;
  result.groups[group];
  for (std::size_t begin = 0; begin < bytes.size();) {
    std::size_t end = bytes.find('\n', begin);
    const bool isLast = end == std::string::npos;
    if (isLast) end = bytes.size();
    const std::string text = bytes.substr(begin, end - begin);
    begin = end + 1;

    const Line line = read(text);
    if (line.kind == Line::FAILS) continue;
    result.file += text;
    if (!isLast) result.file += '\n';
    if (result.throws) continue;  // nothing is read behind the line that throws
    if (line.kind == Line::THROWS) result.throws = true;
    if (line.kind == Line::GROUP) result.groups[group = line.name];
    if (line.kind == Line::VALUE) result.groups[group][line.name] = line.value;
  }
  return result;
}

std::vector<std::string> atomsOf(const std::string& text) {
  std::vector<std::string> atoms;
  std::string atom;
  for (const char c : text) {
    if (!isBlank(c)) {
      atom += c;
    } else if (!atom.empty()) {
      atoms.push_back(atom);
      atom.clear();
    }
  }
  if (!atom.empty() || atoms.empty()) atoms.push_back(atom);
  return atoms;
}

// Whether the text begins with a number, without the words for infinity and its like.
bool startsWithDigit(const std::string& text) {
  const std::size_t sign = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
  return text.size() > sign && std::isdigit(static_cast<unsigned char>(text[sign]));
}

void checkAtom(const Str& atom, const std::string& text) {
  CHECK(atom.asString() == text);
  if (text.size() == 1) CHECK(atom.asChar() == text[0]);
  if (text == "1" || text == "true" || text == "TRUE") CHECK(atom.asBool());
  if (text == "0" || text == "false" || text == "FALSE") CHECK(!atom.asBool());
  if (!startsWithDigit(text)) return;
  CHECK(atom.asInt() == static_cast<int>(std::strtol(text.c_str(), nullptr, 0)));
  const float number = std::strtof(text.c_str(), nullptr);
  CHECK(atom.asFloat() == number || number != number);
}

void checkValue(const ConfigValue& value, const std::string& text) {
  CHECK(value.asString() == text);
  const std::vector<std::string> atoms = atomsOf(text);
  CHECK(value.size() == static_cast<int>(atoms.size()));
  for (int i = 0; i < value.size(); ++i) checkAtom(value[i], atoms[static_cast<std::size_t>(i)]);
  if (startsWithDigit(text)) CHECK(value.asInt() == value[0].asInt());
}

// A file in memory with a path.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& contents) : fd(memfd_create("config", 0)) {
    CHECK(write(fd, contents.data(), contents.size()) == static_cast<ssize_t>(contents.size()));
  }
  ~MemoryFile() { close(fd); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::string path() const { return "/proc/self/fd/" + std::to_string(fd); }

 private:
  int fd;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const Expectation expected = expect(bytes);
  const MemoryFile memory(expected.file);

  ConfigFile file;
  bool hasThrown = false;
  try {
    file.setByFile(memory.path());
  } catch (const std::out_of_range&) {
    hasThrown = true;
  }
  CHECK(hasThrown == expected.throws);
  for (const auto& [group, keys] : expected.groups) {
    for (const auto& [key, text] : keys) checkValue(file[group][key], text);
  }
  return 0;
}
