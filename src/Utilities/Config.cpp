#include "Utilities/Config.h"

#include <dirent.h>

#include <algorithm>
#include <cassert>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <utility>

using std::string;

namespace {

constexpr char kBlanks[] = " \t";
constexpr char kDirectory[] = "./Configs/";
constexpr char kExtension[] = ".conf";

// Positions in a line are 32 bits wide. A search without a result gives the largest of them, which
// the comparisons of the reader count on.
string::size_type position(string::size_type found) {
  return static_cast<std::uint32_t>(found);
}

struct Option {
  const char* name;
  const char* group;
  const char* key;
};

constexpr Option kOptions[] = {
    {"--host", "Server", "HostName"},
    {"--player-port", "Server", "PlayerPort"},
    {"--number", "Public", "UniformNumber"},
    {"--team", "Public", "TeamName"},
    {"--penalty", "Public", "Penalty"},
    {"--name", "Public", "TeamName"},
    {"--type", "Public", "Type"},
};

const Option* findOption(const char* name) {
  for (const Option& option : kOptions) {
    if (std::strcmp(option.name, name) == 0) return &option;
  }
  return nullptr;
}

template <typename Groups>
auto& groupOf(Groups& groups, std::string_view group) {
  const auto it = groups.find(group);
  assert(it != groups.end());
  return it->second;
}

template <typename Values>
auto& valueOf(Values& values, std::string_view key) {
  const auto it = values.find(key);
  if (it == values.end()) std::cerr << key;
  assert(it != values.end());
  return it->second;
}

}  // namespace

// ----------------------------------------------------------------------------------------------
// Str

Str::Str(string text) : value(std::move(text)) {
  char* end = nullptr;
  integer = static_cast<int>(std::strtol(value.c_str(), &end, 0));
  integerLength = static_cast<std::size_t>(end - value.c_str());
  real = std::strtof(value.c_str(), &end);
  realLength = static_cast<std::size_t>(end - value.c_str());
}

char Str::asChar() const {
  assert(value.length() == 1);
  return value[0];
}

bool Str::asBool() const {
  string tmp = value;
  for (char& c : tmp) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  assert(tmp == "true" || tmp == "1" || tmp == "false" || tmp == "0");
  return tmp == "true" || tmp == "1";
}

int Str::asInt() const {
  const char* const end = value.c_str() + integerLength;
  assert(end != value.c_str());
  return integer;
}

float Str::asFloat() const {
  const char* const end = value.c_str() + realLength;
  assert(end != value.c_str());
  return real;
}

// --------------------------------------------------------------------------------------
// ConfigValue

ConfigValue::ConfigValue(const string& text) : value(text) {
  string::size_type pos = 0;
  do {
    const string::size_type end = std::min(text.find_first_of(kBlanks, pos), text.length());
    values.emplace_back(text.substr(pos, end - pos));
    pos = position(text.find_first_not_of(kBlanks, end + 1));
  } while (pos <= text.length());
}

char ConfigValue::asChar() const {
  assert(values.size() > 0);
  return values[0].asChar();
}

bool ConfigValue::asBool() const {
  assert(values.size() > 0);
  return values[0].asBool();
}

int ConfigValue::asInt() const {
  assert(values.size() > 0);
  return values[0].asInt();
}

float ConfigValue::asFloat() const {
  assert(values.size() > 0);
  return values[0].asFloat();
}

// --------------------------------------------------------------------------------------
// ConfigGroup

ConfigValue& ConfigGroup::operator[](std::string_view key) {
  return valueOf(values, key);
}

const ConfigValue& ConfigGroup::operator[](std::string_view key) const {
  return valueOf(values, key);
}

void ConfigGroup::add(const string& key, const string& text) {
  values.insert_or_assign(key, ConfigValue(text));
}

// ---------------------------------------------------------------------------------------
// ConfigFile

ConfigFile::ConfigFile() {
  addGroup("");
}

ConfigFile::ConfigFile(const string& path) {
  ConfigFile::readFile(path);
}

ConfigGroup& ConfigFile::operator[](std::string_view group) {
  return groupOf(groups, group);
}

const ConfigGroup& ConfigFile::operator[](std::string_view group) const {
  return groupOf(groups, group);
}

void ConfigFile::addGroup(const string& name) {
  groups.try_emplace(name);
}

void ConfigFile::readFile(const string& path) {
  std::ifstream fin(path);
  assert(fin);

  string group;
  addGroup(group);

  string line;
  while (std::getline(fin, line)) {
    const string::size_type cpos = position(line.find('#'));
    const string::size_type vs = position(line.find_first_not_of(kBlanks));
    const string::size_type ve = position(line.find_last_not_of(kBlanks, cpos == 0 ? 0 : cpos - 1));
    if (vs >= ve) continue;

    if (line[vs] == '[') {
      assert(line[ve] == ']');
      group = line.substr(vs + 1, ve - vs - 1);
      addGroup(group);
      continue;
    }

    const string::size_type qpos = position(line.find('='));
    assert(qpos != string::npos && qpos < cpos);
    string name = line.substr(vs, qpos - vs);
    name.erase(name.find_last_not_of(kBlanks) + 1);
    assert(name != "");

    // Nothing at all behind the equals sign: this substr throws, and so it shall. A comment alone
    // behind it: the value begins after its end and is empty.
    const string::size_type begin = position(line.find_first_not_of(kBlanks, qpos + 1));
    groups[group].add(name, line.substr(begin, begin > ve ? 0 : ve - begin + 1));
  }
}

bool ConfigFile::setByArguments(int argc, char** argv) {
  for (int i = 1; i < argc; i += 2) {
    const Option* const option = findOption(argv[i]);
    if (option == nullptr || i + 1 == argc) {
      argumentsError(argv[0]);
      return false;
    }
    (*this)[option->group].add(option->key, argv[i + 1]);
  }
  return true;
}

void ConfigFile::argumentsError(const string& programName) {
  // "--name" is a second form of "--team" that the text keeps quiet about.
  std::cout << "Usage : " << programName << " [Options]\n"
            << "Options :\n"
            << "  --team teamname           : Set teamname to connect to server\n"
            << "  --host hostname           : Set hostname to connect to server\n"
            << "  --player-port portnum     : Set player port number to connect to server\n"
            << "  --number pnum             : Set player number\n"
            << "  --penalty boolean         : Penalthy Mode\n"
            << "  --type NAO type Number    : Set NAO type\n"
            << std::endl;
}

// -------------------------------------------------------------------------------------------
// Config

Config::ConfigFiles::~ConfigFiles() {
  for (const auto& [name, file] : files) delete file;
}

void Config::ConfigFiles::add(const string& name) {
  const auto [it, isNew] = files.try_emplace(name, nullptr);
  if (isNew) it->second = new ConfigFile;
}

void Config::ConfigFiles::add(const string& name, const string& path) {
  const auto it = files.find(name);
  if (it != files.end()) {
    it->second->readFile(path);
  } else {
    files.emplace(name, new ConfigFile(path));
  }
}

ConfigFile& Config::ConfigFiles::operator[](std::string_view file) const {
  const auto it = files.find(file);
  assert(it != files.end());
  return *it->second;
}

Config::ConfigFiles* Config::configFiles = nullptr;

Config config;

Config::Config() {
  if (configFiles == nullptr) configFiles = new ConfigFiles;
}

void Config::addFiles() {
  // No check: without its configuration the player must not run, and this faults at once.
  DIR* const directory = opendir(kDirectory);
  std::vector<string> entries;
  while (const dirent* const entry = readdir(directory)) entries.emplace_back(entry->d_name);
  closedir(directory);

  for (const string& entry : entries) {
    const string::size_type end = entry.find(kExtension);
    if (end == string::npos) continue;
    const string name = entry.substr(0, end);
    add(name, kDirectory + name + kExtension);
  }
}

void Config::add(const string& name) {
  assert(configFiles);
  configFiles->add(name);
}

void Config::add(const string& name, const string& path) {
  assert(configFiles);
  configFiles->add(name, path);
}
