#ifndef QUOLNARIS_UTILITIES_CONFIG_H_
#define QUOLNARIS_UTILITIES_CONFIG_H_

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// The configuration of the player: every file "./Configs/*.conf", read once at start into one
// process-wide store, then overridden by the command line, then only read. A value is addressed by
// file, group and key, and read in one of five types:
//
//   config["Agent"]["Public"]["UniformNumber"].asInt()
//   config["forWalk"]["forwalk"]["Xankle"][2].asFloat()
//
// Nothing has a default: a look-up of something that does not exist, or a reading that the text
// does not bear, is a fault of the deployment and fails an assertion. A missing key is first
// written to standard error, without a line end. Look-ups are three map searches without
// allocation; numbers are read once, when the value is stored. The names may be given as literals
// or strings.

/// One atom of a list of values, with its typed readings.
class Str {
 public:
  explicit Str(std::string text);
  virtual ~Str() = default;
  Str(const Str&) = default;
  Str(Str&&) = default;
  Str& operator=(const Str&) = default;
  Str& operator=(Str&&) = default;

  const std::string& asString() const { return value; }

  /// The single character. Asserts that there is exactly one.
  char asChar() const;

  /// True for "true" and "1", false for "false" and "0", in upper or lower case. Asserts on others.
  bool asBool() const;

  /// The leading number, in C notation: "0x10" is 16 and "010" is 8. What follows it is ignored,
  /// and a number beyond int is cut to its low bits. Asserts that there is a number.
  int asInt() const;

  /// The leading number; what follows it is ignored. Asserts that there is a number.
  float asFloat() const;

 private:
  std::string value;

  // The readings of `value` as a number, and how many characters each took: 0 if there is none.
  int integer;
  std::size_t integerLength;
  float real;
  std::size_t realLength;
};

/// The text behind an equals sign, whole and as a list of its blank-separated atoms. The list is
/// never empty: an empty text has one empty atom. Quotation marks are ordinary characters.
class ConfigValue {
 public:
  explicit ConfigValue(const std::string& text);
  virtual ~ConfigValue() = default;
  ConfigValue(const ConfigValue&) = default;
  ConfigValue(ConfigValue&&) = default;
  ConfigValue& operator=(const ConfigValue&) = default;
  ConfigValue& operator=(ConfigValue&&) = default;

  /// The whole text with its inner blanks, not the first atom.
  const std::string& asString() const { return value; }

  // The readings of the first atom.
  char asChar() const;
  bool asBool() const;
  int asInt() const;
  float asFloat() const;

  /// Atom `i`, counted from 0. REQUIRES 0 <= i < size(), which the standard library's assertions
  /// check: a deployment with too short a list stops the player.
  const Str& operator[](int i) const { return values[static_cast<std::size_t>(i)]; }

  int size() const { return static_cast<int>(values.size()); }

 private:
  std::string value;
  std::vector<Str> values;
};

/// The keys of one section of a file.
class ConfigGroup {
 public:
  /// Asserts that the key exists.
  ConfigValue& operator[](std::string_view key);
  const ConfigValue& operator[](std::string_view key) const;

  /// Stores `text` under `key`; a later text replaces an earlier one.
  void add(const std::string& key, const std::string& text);

 private:
  std::map<std::string, ConfigValue, std::less<>> values;
};

/// One configuration file: groups of keys. Keys above the first section header are in the group
/// with the empty name, which every file has.
class ConfigFile {
 public:
  ConfigFile();

  /// Reads the file at `path`.
  explicit ConfigFile(const std::string& path);

  /// Adds the contents of the file at `path`. Asserts that it can be opened. A line is
  ///   [group]             the section that the keys below belong to; it may come again
  ///   key = value ...     "#" and what follows it on the line is a comment
  ///   # comment           in the first column only: an indented one fails an assertion, since it
  ///                       is taken for a line without an equals sign
  /// Blanks are spaces and tabs; a carriage return is none. Lines of at most one significant
  /// character are skipped. Any other line fails an assertion; a key with nothing behind its equals
  /// sign to the end of the line throws std::out_of_range.
  virtual void readFile(const std::string& path);

  virtual ~ConfigFile() = default;
  ConfigFile(const ConfigFile&) = default;
  ConfigFile(ConfigFile&&) = default;
  ConfigFile& operator=(const ConfigFile&) = default;
  ConfigFile& operator=(ConfigFile&&) = default;

  /// Asserts that the group exists.
  ConfigGroup& operator[](std::string_view group);
  const ConfigGroup& operator[](std::string_view group) const;

  /// Adds an empty group unless there is one of that name.
  void addGroup(const std::string& name);

  void setByFile(const std::string& path) { readFile(path); }

  /// Overrides keys by command line options, in pairs of option and value from argv[1] on. At an
  /// unknown option or one without a value, prints the usage text and returns false; the pairs
  /// before it stay stored. REQUIRES that the groups `Public` and `Server` exist (asserted when
  /// needed).
  bool setByArguments(int argc, char** argv);

  /// Prints the usage text to standard output.
  void argumentsError(const std::string& programName);

 private:
  std::map<std::string, ConfigGroup, std::less<>> groups;
};

/// A handle to the one configuration store of the process.
class Config {
 public:
  /// The files of the store, by name.
  class ConfigFiles {
   public:
    ConfigFiles() = default;
    virtual ~ConfigFiles();
    ConfigFiles(const ConfigFiles&) = delete;
    ConfigFiles& operator=(const ConfigFiles&) = delete;

    /// Adds an empty file unless there is one of that name.
    void add(const std::string& name);

    /// Reads the file at `path` into the entry `name`, which is made if absent.
    void add(const std::string& name, const std::string& path);

    /// Asserts that the file exists.
    ConfigFile& operator[](std::string_view file) const;

   private:
    std::map<std::string, ConfigFile*, std::less<>> files;  // owned
  };

  /// The first handle makes the store, which lives to the end of the process.
  Config();
  virtual ~Config() = default;

  /// Reads every entry of "./Configs/" whose name contains ".conf", wherever in the name: the part
  /// before it names the file "./Configs/<part>.conf" that is read. The directory must exist.
  void addFiles();

  void add(const std::string& name);
  void add(const std::string& name, const std::string& path);

  /// Asserts that the file exists.
  ConfigFile& operator[](std::string_view file) { return (*configFiles)[file]; }
  const ConfigFile& operator[](std::string_view file) const { return (*configFiles)[file]; }

  static ConfigFiles* configFiles;
};

/// The configuration of this process.
extern Config config;

#endif  // QUOLNARIS_UTILITIES_CONFIG_H_
