#include "Utilities/Config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <stdexcept>
#include <type_traits>

#include "support/ConfigSandbox.h"
#include "support/TempDirectory.h"

namespace {

using support::ConfigSandbox;
using support::TempDirectory;
using support::WorkingDirectory;

// What a failed assertion writes, as a pattern; `expression` is literal text.
std::string assertionText(const std::string& expression) {
  std::string pattern = "Assertion `";
  for (const char c : expression) {
    if (std::strchr("\\^$.|?*+()[]{}", c) != nullptr) pattern += '\\';
    pattern += c;
  }
  return pattern + "' failed";
}

#define EXPECT_ASSERTION(statement, expression) EXPECT_DEATH(statement, assertionText(expression))

ConfigFile fileOf(const std::string& text) {
  const TempDirectory directory;
  return ConfigFile(directory.write("a.conf", text));
}

// The value of key "a" in the group without a name.
std::string valueOfA(const std::string& text) {
  return fileOf(text)[""]["a"].asString();
}

constexpr char kNoEqualsSign[] = "qpos != string::npos && qpos < cpos";

// ------------------------------------------------------------------------------------- grammar

TEST(ConfigFileTest, ReadsKeyAndValue) {
  EXPECT_EQ(valueOfA("a = 1"), "1");
  EXPECT_EQ(valueOfA("a=1"), "1");
  EXPECT_EQ(valueOfA("a=1\n"), "1");
  EXPECT_EQ(valueOfA("\t a \t=\t 1 \t\n"), "1");
  EXPECT_EQ(valueOfA("a = 1 2\t3"), "1 2\t3");
}

TEST(ConfigFileTest, CommentEndsTheValue) {
  EXPECT_EQ(valueOfA("a = 1 # note"), "1");
  EXPECT_EQ(valueOfA("a = 1# note # another"), "1");
  EXPECT_EQ(valueOfA("a = 1 # b = 2"), "1");
}

TEST(ConfigFileTest, ValueIsEmptyIfOnlyACommentFollows) {
  ConfigFile file = fileOf("a = # note");
  EXPECT_EQ(file[""]["a"].asString(), "");
  EXPECT_EQ(file[""]["a"].size(), 1);
  EXPECT_EQ(valueOfA("a =# note"), "");
}

TEST(ConfigFileTest, SecondEqualsSignBelongsToTheValue) {
  EXPECT_EQ(valueOfA("a = b=c"), "b=c");
}

TEST(ConfigFileTest, KeyKeepsItsInnerBlanks) {
  EXPECT_EQ(fileOf("a key  = 1")[""]["a key"].asInt(), 1);
}

TEST(ConfigFileTest, QuotationMarksAreOrdinaryCharacters) {
  ConfigFile file = fileOf("a = \"x y\"");
  EXPECT_EQ(file[""]["a"].asString(), "\"x y\"");
  EXPECT_EQ(file[""]["a"].size(), 2);
  EXPECT_EQ(file[""]["a"][0].asString(), "\"x");
}

TEST(ConfigFileTest, CarriageReturnIsNoBlank) {
  EXPECT_EQ(valueOfA("a = 1\r\n"), "1\r");
  EXPECT_ASSERTION(fileOf("[x]\r\n"), "line[ve] == ']'");
  EXPECT_ASSERTION(fileOf("a = 1\n\r \r\n"), kNoEqualsSign);
}

TEST(ConfigFileTest, SkipsLinesWithoutTwoSignificantCharacters) {
  EXPECT_EQ(valueOfA("\n   \n\t\n# comment\n#\n#[x\na\n  b  \n=\n[\nx # comment\na=1\n"), "1");
}

TEST(ConfigFileTest, CommentInTheFirstColumnMayHoldAnything) {
  EXPECT_EQ(valueOfA("# a = 2\n#= [\n#\ta = 3\na = 1"), "1");
}

TEST(ConfigFileTest, IndentedCommentFails) {
  EXPECT_ASSERTION(fileOf(" # note"), kNoEqualsSign);
  EXPECT_ASSERTION(fileOf("\t#"), kNoEqualsSign);
  EXPECT_ASSERTION(fileOf(" # a = 1"), kNoEqualsSign);
}

TEST(ConfigFileTest, LineWithoutEqualsSignFails) {
  EXPECT_ASSERTION(fileOf("ab"), kNoEqualsSign);
  EXPECT_ASSERTION(fileOf("ab # c = 1"), kNoEqualsSign);
}

TEST(ConfigFileTest, LineWithoutKeyFails) {
  EXPECT_ASSERTION(fileOf("= 1"), "name != \"\"");
  EXPECT_ASSERTION(fileOf("  =1"), "name != \"\"");
}

TEST(ConfigFileTest, UnclosedSectionHeaderFails) {
  EXPECT_ASSERTION(fileOf("[x"), "line[ve] == ']'");
  EXPECT_ASSERTION(fileOf("[x] y"), "line[ve] == ']'");
  EXPECT_ASSERTION(fileOf("[x # ]"), "line[ve] == ']'");
}

TEST(ConfigFileTest, KeyWithNothingBehindItThrows) {
  for (const char* text : {"a =", "a =  ", "ab=\n"}) {
    try {
      fileOf(text);
      ADD_FAILURE() << text;
    } catch (const std::out_of_range& error) {
      EXPECT_THAT(error.what(), testing::StartsWith("basic_string::substr")) << text;
    }
  }
}

TEST(ConfigFileTest, ReadsALastLineWithoutALineEnd) {
  ConfigFile file = fileOf("a=1\nb=2");
  EXPECT_EQ(file[""]["b"].asInt(), 2);
}

TEST(ConfigFileTest, LaterLineWins) {
  EXPECT_EQ(valueOfA("a = 1\na = 2 3\n"), "2 3");
  EXPECT_EQ(fileOf("a = 1 2\na = 3\n")[""]["a"].size(), 1);
}

TEST(ConfigFileTest, SectionHeaderStartsAGroup) {
  ConfigFile file =
      fileOf("a = 0\n[x]\na = 1\n[y] # note\na = 2\n  [ inner blanks ]\na = 3\n[]\na = 4");
  EXPECT_EQ(file["x"]["a"].asInt(), 1);
  EXPECT_EQ(file["y"]["a"].asInt(), 2);
  EXPECT_EQ(file[" inner blanks "]["a"].asInt(), 3);
  EXPECT_EQ(file[""]["a"].asInt(), 4);  // "[]" is the group without a name, where the file began
}

TEST(ConfigFileTest, RepeatedSectionHeaderAddsToTheGroup) {
  ConfigFile file = fileOf("[x]\na = 1\nb = 1\n[y]\n[x]\nb = 2\n");
  EXPECT_EQ(file["x"]["a"].asInt(), 1);
  EXPECT_EQ(file["x"]["b"].asInt(), 2);
}

TEST(ConfigFileTest, ReadingAnotherFileStartsInTheGroupWithoutAName) {
  const TempDirectory directory;
  ConfigFile file(directory.write("a.conf", "[x]\na = 1\nb = 1\n"));
  file.setByFile(directory.write("b.conf", "c = 3\n[x]\nb = 2\n"));
  EXPECT_EQ(file["x"]["a"].asInt(), 1);
  EXPECT_EQ(file["x"]["b"].asInt(), 2);
  EXPECT_EQ(file[""]["c"].asInt(), 3);
}

TEST(ConfigFileTest, ByteZeroIsAnOrdinaryCharacter) {
  using namespace std::string_literals;
  EXPECT_EQ(valueOfA("a = 1\0002"s), "1\0002"s);
  EXPECT_EQ(fileOf("a = 1\0002"s)[""]["a"].asInt(), 1);
}

TEST(ConfigFileTest, FileThatCantBeOpenedFails) {
  EXPECT_ASSERTION(ConfigFile("/nonexistent/a.conf"), "fin");
}

TEST(ConfigFileTest, EveryFileHasTheGroupWithoutAName) {
  ConfigFile empty;
  EXPECT_ASSERTION(empty[""]["a"], "it != values.end()");
  EXPECT_ASSERTION(fileOf("[x]\n")[""]["a"], "it != values.end()");
}

TEST(ConfigFileTest, AddGroupKeepsTheKeysOfAnExistingOne) {
  ConfigFile file = fileOf("[x]\na = 1\n");
  file.addGroup("x");
  file.addGroup("y");
  EXPECT_EQ(file["x"]["a"].asInt(), 1);
  EXPECT_ASSERTION(file["y"]["a"], "it != values.end()");
}

TEST(ConfigFileTest, OperationsAreVirtualWhereTheyMayBeReplaced) {
  EXPECT_TRUE(std::has_virtual_destructor_v<Str>);
  EXPECT_TRUE(std::has_virtual_destructor_v<ConfigValue>);
  EXPECT_TRUE(std::has_virtual_destructor_v<ConfigFile>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Config::ConfigFiles>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Config>);
  struct Recorder : ConfigFile {
    std::string seen;
    void readFile(const std::string& path) override { seen = path; }
  } recorder;
  recorder.setByFile("a path");
  EXPECT_EQ(recorder.seen, "a path");
}

// ------------------------------------------------------------------------------------- values

TEST(ConfigValueTest, SplitsAtBlanks) {
  const ConfigValue value("-3.5 2.0\t \t0");
  ASSERT_EQ(value.size(), 3);
  EXPECT_EQ(value[0].asFloat(), -3.5f);
  EXPECT_EQ(value[1].asFloat(), 2.0f);
  EXPECT_EQ(value[2].asInt(), 0);
}

TEST(ConfigValueTest, AlwaysHasAnAtom) {
  const ConfigValue empty("");
  ASSERT_EQ(empty.size(), 1);
  EXPECT_EQ(empty[0].asString(), "");
  const ConfigValue blank(" ");
  ASSERT_EQ(blank.size(), 1);
  EXPECT_EQ(blank[0].asString(), "");
}

TEST(ConfigValueTest, LeadingBlankMakesAnEmptyFirstAtom) {
  const ConfigValue value(" 1 2");
  ASSERT_EQ(value.size(), 3);
  EXPECT_EQ(value[0].asString(), "");
  EXPECT_EQ(value[1].asString(), "1");
  EXPECT_EQ(value[2].asString(), "2");
}

TEST(ConfigValueTest, TrailingBlankMakesNoAtom) {
  EXPECT_EQ(ConfigValue("1 ").size(), 1);
  EXPECT_EQ(ConfigValue("1 2 \t ").size(), 2);
}

TEST(ConfigValueTest, StringIsTheWholeTextOtherReadingsTheFirstAtom) {
  const ConfigValue value("12 34");
  EXPECT_EQ(value.asString(), "12 34");
  EXPECT_EQ(value.asInt(), 12);
  EXPECT_EQ(value.asFloat(), 12.0f);
  EXPECT_EQ(ConfigValue("1 0").asBool(), true);
  EXPECT_EQ(ConfigValue("x yz").asChar(), 'x');
}

TEST(ConfigValueTest, IntTakesTheNotationOfC) {
  EXPECT_EQ(ConfigValue("0x10").asInt(), 16);
  EXPECT_EQ(ConfigValue("010").asInt(), 8);
  EXPECT_EQ(ConfigValue("-12").asInt(), -12);
  EXPECT_EQ(ConfigValue("+7").asInt(), 7);
  EXPECT_EQ(ConfigValue("08").asInt(), 0);  // no octal digit
}

TEST(ConfigValueTest, TrailingTextIsIgnored) {
  EXPECT_EQ(ConfigValue("12abc").asInt(), 12);
  EXPECT_EQ(ConfigValue("3.9").asInt(), 3);
  EXPECT_EQ(ConfigValue("1.5abc").asFloat(), 1.5f);
}

TEST(ConfigValueTest, LongIsCutToInt) {
  EXPECT_EQ(ConfigValue("4294967303").asInt(), 7);
  EXPECT_EQ(ConfigValue("2147483648").asInt(), std::numeric_limits<int>::min());
  EXPECT_EQ(ConfigValue("99999999999999999999").asInt(), -1);  // the largest long
}

TEST(ConfigValueTest, FloatTakesWhatTheLibraryTakes) {
  EXPECT_EQ(ConfigValue("-3.5").asFloat(), -3.5f);
  EXPECT_EQ(ConfigValue("1e3").asFloat(), 1000.0f);
  EXPECT_EQ(ConfigValue(".5").asFloat(), 0.5f);
  EXPECT_EQ(ConfigValue("0x10").asFloat(), 16.0f);
  EXPECT_EQ(ConfigValue("0.1").asFloat(), 0.1f);
  EXPECT_EQ(ConfigValue("inf").asFloat(), std::numeric_limits<float>::infinity());
}

TEST(ConfigValueTest, NumberWithoutADigitFails) {
  for (const char* text : {"", "abc", "-", "."}) {
    EXPECT_ASSERTION(ConfigValue(text).asInt(), "end != value.c_str()") << text;
    EXPECT_ASSERTION(ConfigValue(text).asFloat(), "end != value.c_str()") << text;
  }
}

TEST(ConfigValueTest, IntMayFailWhereFloatDoesNot) {
  EXPECT_EQ(ConfigValue(".5").asFloat(), 0.5f);
  EXPECT_ASSERTION(ConfigValue(".5").asInt(), "end != value.c_str()");
}

TEST(ConfigValueTest, BoolIsOneOfFourWordsInAnyCase) {
  for (const char* text : {"true", "1", "TRUE", "True", "tRuE"}) {
    EXPECT_TRUE(ConfigValue(text).asBool()) << text;
  }
  for (const char* text : {"false", "0", "FALSE", "False"}) {
    EXPECT_FALSE(ConfigValue(text).asBool()) << text;
  }
}

TEST(ConfigValueTest, OtherWordsForABoolFail) {
  for (const char* text : {"yes", "2", "", "01", "true1"}) {
    EXPECT_ASSERTION(ConfigValue(text).asBool(),
                     "tmp == \"true\" || tmp == \"1\" || tmp == \"false\" || tmp == \"0\"")
        << text;
  }
}

TEST(ConfigValueTest, CharIsASingleCharacter) {
  EXPECT_EQ(ConfigValue("x").asChar(), 'x');
  EXPECT_ASSERTION(ConfigValue("xy").asChar(), "value.length() == 1");
  EXPECT_ASSERTION(ConfigValue("").asChar(), "value.length() == 1");
}

TEST(ConfigValueTest, AtomsHaveTheSameReadings) {
  const ConfigValue value("x true 7 1.5 word");
  EXPECT_EQ(value[0].asChar(), 'x');
  EXPECT_TRUE(value[1].asBool());
  EXPECT_EQ(value[2].asInt(), 7);
  EXPECT_EQ(value[3].asFloat(), 1.5f);
  EXPECT_EQ(value[4].asString(), "word");
  EXPECT_ASSERTION(value[4].asInt(), "end != value.c_str()");
}

TEST(ConfigValueTest, CopiesReadTheSame) {
  const ConfigValue value("1.5 2");
  ConfigValue copy("x");
  copy = value;
  EXPECT_EQ(copy.asFloat(), 1.5f);
  EXPECT_EQ(copy.size(), 2);
  const Str atom = copy[1];
  EXPECT_EQ(atom.asInt(), 2);
}

TEST(ConfigValueTest, ValueWithoutAtomsFails) {
  ConfigValue value("1");
  const ConfigValue emptied = std::move(value);
  EXPECT_EQ(emptied.asInt(), 1);
  // NOLINTNEXTLINE(bugprone-use-after-move): the one way to a value without atoms
  EXPECT_ASSERTION(value.asInt(), "values.size() > 0");
  EXPECT_ASSERTION(value.asFloat(), "values.size() > 0");
  EXPECT_ASSERTION(value.asBool(), "values.size() > 0");
  EXPECT_ASSERTION(value.asChar(), "values.size() > 0");
}

TEST(ConfigGroupTest, AddReplacesTextAndAtoms) {
  ConfigGroup group;
  group.add("a", "1 2 3");
  group.add("a", "4");
  EXPECT_EQ(group["a"].asString(), "4");
  EXPECT_EQ(group["a"].size(), 1);
  EXPECT_EQ(group["a"].asInt(), 4);
}

// ------------------------------------------------------------------------------------- command
// line

// argc and argv of a command line.
class Arguments {
 public:
  explicit Arguments(std::vector<std::string> words_) : words(std::move(words_)) {
    for (std::string& word : words) pointers.push_back(word.data());
  }
  int argc() const { return static_cast<int>(pointers.size()); }
  char** argv() { return pointers.data(); }

 private:
  std::vector<std::string> words;
  std::vector<char*> pointers;
};

constexpr char kAgentFile[] =
    "[Public]\nUniformNumber = 1\nTeamName = Us\nPenalty = false\nType = 0\n"
    "[Server]\nHostName = there\nPlayerPort = 1\n";

constexpr char kUsage[] =
    "Usage : ./player [Options]\n"
    "Options :\n"
    "  --team teamname           : Set teamname to connect to server\n"
    "  --host hostname           : Set hostname to connect to server\n"
    "  --player-port portnum     : Set player port number to connect to server\n"
    "  --number pnum             : Set player number\n"
    "  --penalty boolean         : Penalthy Mode\n"
    "  --type NAO type Number    : Set NAO type\n"
    "\n";

struct Outcome {
  bool accepted;
  std::string printed;
};

Outcome apply(ConfigFile& file, const std::vector<std::string>& words) {
  Arguments arguments(words);
  testing::internal::CaptureStdout();
  const bool accepted = file.setByArguments(arguments.argc(), arguments.argv());
  return {accepted, testing::internal::GetCapturedStdout()};
}

struct OptionCase {
  const char* option;
  const char* group;
  const char* key;
};

class ConfigCommandLineOptionTest : public testing::TestWithParam<OptionCase> {};

TEST_P(ConfigCommandLineOptionTest, OverridesItsKey) {
  ConfigFile file = fileOf(kAgentFile);
  const Outcome outcome = apply(file, {"./player", GetParam().option, "new value"});
  EXPECT_TRUE(outcome.accepted);
  EXPECT_EQ(outcome.printed, "");
  EXPECT_EQ(file[GetParam().group][GetParam().key].asString(), "new value");
}

TEST_P(ConfigCommandLineOptionTest, NeedsAValue) {
  ConfigFile file = fileOf(kAgentFile);
  const Outcome outcome = apply(file, {"./player", GetParam().option});
  EXPECT_FALSE(outcome.accepted);
  EXPECT_EQ(outcome.printed, kUsage);
}

INSTANTIATE_TEST_SUITE_P(EveryOption, ConfigCommandLineOptionTest,
                         testing::Values(OptionCase{"--host", "Server", "HostName"},
                                         OptionCase{"--player-port", "Server", "PlayerPort"},
                                         OptionCase{"--number", "Public", "UniformNumber"},
                                         OptionCase{"--team", "Public", "TeamName"},
                                         OptionCase{"--penalty", "Public", "Penalty"},
                                         OptionCase{"--name", "Public", "TeamName"},
                                         OptionCase{"--type", "Public", "Type"}));

TEST(ConfigCommandLineTest, WithoutArgumentsNothingChanges) {
  ConfigFile file = fileOf(kAgentFile);
  EXPECT_TRUE(apply(file, {"./player"}).accepted);
  EXPECT_TRUE(apply(file, {}).accepted);
  EXPECT_EQ(file["Public"]["UniformNumber"].asInt(), 1);
}

TEST(ConfigCommandLineTest, TakesPairsInTurnAndTheLastOneWins) {
  ConfigFile file = fileOf(kAgentFile);
  EXPECT_TRUE(
      apply(file, {"./player", "--number", "7", "--team", "A", "--name", "B", "--penalty", "1"})
          .accepted);
  EXPECT_EQ(file["Public"]["UniformNumber"].asInt(), 7);
  EXPECT_EQ(file["Public"]["TeamName"].asString(), "B");
  EXPECT_TRUE(file["Public"]["Penalty"].asBool());
  EXPECT_EQ(file["Server"]["HostName"].asString(), "there");
}

TEST(ConfigCommandLineTest, ValueMayLookLikeAnOption) {
  ConfigFile file = fileOf(kAgentFile);
  EXPECT_TRUE(apply(file, {"./player", "--team", "--host"}).accepted);
  EXPECT_EQ(file["Public"]["TeamName"].asString(), "--host");
}

TEST(ConfigCommandLineTest, ValueMayBeEmpty) {
  ConfigFile file = fileOf(kAgentFile);
  EXPECT_TRUE(apply(file, {"./player", "--team", ""}).accepted);
  EXPECT_EQ(file["Public"]["TeamName"].asString(), "");
}

TEST(ConfigCommandLineTest, TrailingOptionStopsTheWalk) {
  ConfigFile file = fileOf(kAgentFile);
  const Outcome outcome = apply(file, {"./player", "--number", "7", "--team"});
  EXPECT_FALSE(outcome.accepted);
  EXPECT_EQ(outcome.printed, kUsage);
  EXPECT_EQ(file["Public"]["UniformNumber"].asInt(), 7);
}

TEST(ConfigCommandLineTest, UnknownOptionStopsTheWalk) {
  for (const char* option : {"--help", "--hos", "--hostx", "-host", "Host", ""}) {
    ConfigFile file = fileOf(kAgentFile);
    const Outcome outcome = apply(file, {"./player", option, "x", "--number", "7"});
    EXPECT_FALSE(outcome.accepted) << option;
    EXPECT_EQ(outcome.printed, kUsage) << option;
    EXPECT_EQ(file["Public"]["UniformNumber"].asInt(), 1) << option;
  }
}

TEST(ConfigCommandLineTest, MissingGroupFails) {
  ConfigFile file = fileOf("[Public]\n");
  EXPECT_ASSERTION(apply(file, {"./player", "--host", "x"}), "it != groups.end()");
}

// ------------------------------------------------------------------------------------- the store

TEST(ConfigTest, AddsEveryFileOfTheDirectory) {
  const ConfigSandbox sandbox{{"one", "[g]\na = 1\n"}, {"two", "[g]\na = 2\n"}};
  EXPECT_EQ(config["one"]["g"]["a"].asInt(), 1);
  EXPECT_EQ(config["two"]["g"]["a"].asInt(), 2);
}

TEST(ConfigTest, NamesMayBeLiteralsOrStrings) {
  const ConfigSandbox sandbox{{"one", "[g]\np7 = 1 2\n"}};
  const std::string key = "p" + std::to_string(7);
  EXPECT_EQ(config[std::string("one")][std::string("g")][key][1].asInt(), 2);
  const Config& constant = config;
  EXPECT_EQ(constant["one"]["g"]["p7"].asInt(), 1);
}

TEST(ConfigTest, EntryNeedOnlyContainTheExtension) {
  const ConfigSandbox sandbox;
  const TempDirectory directory;
  directory.write("Configs/a.conf", "a = 1\n");
  directory.write("Configs/a.conf.bak", "a = 2\n");    // stands for a.conf, read twice
  directory.write("Configs/b.confuse", "not read\n");  // stands for b.conf
  directory.write("Configs/b.conf", "b = 3\n");
  directory.write("Configs/readme.txt", "not read\n");
  directory.write("Configs/.conf", "c = 4\n");
  const WorkingDirectory inside(directory.path());
  config.addFiles();
  EXPECT_EQ(config["a"][""]["a"].asInt(), 1);
  EXPECT_EQ(config["b"][""]["b"].asInt(), 3);
  EXPECT_EQ(config[""][""]["c"].asInt(), 4);
  EXPECT_ASSERTION(config["readme.txt"], "it != files.end()");
}

TEST(ConfigTest, BackupWithoutItsFileFails) {
  const ConfigSandbox sandbox;
  const TempDirectory directory;
  directory.write("Configs/a.conf.bak", "a = 2\n");
  const WorkingDirectory inside(directory.path());
  EXPECT_ASSERTION(config.addFiles(), "fin");
}

TEST(ConfigTest, MissingDirectoryIsFatal) {
  const ConfigSandbox sandbox;
  const TempDirectory directory;
  const WorkingDirectory inside(directory.path());
  EXPECT_DEATH(config.addFiles(), "");
}

TEST(ConfigTest, LaterFileOfTheSameNameAddsToTheFirst) {
  ConfigSandbox sandbox{{"one", "[g]\na = 1\nb = 1\n"}};
  sandbox.load({{"one", "[g]\nb = 2\n"}});
  EXPECT_EQ(config["one"]["g"]["a"].asInt(), 1);
  EXPECT_EQ(config["one"]["g"]["b"].asInt(), 2);
}

TEST(ConfigTest, AddMakesAnEmptyFileUnlessThereIsOne) {
  const ConfigSandbox sandbox{{"one", "[g]\na = 1\n"}};
  config.add("one");
  config.add("two");
  EXPECT_EQ(config["one"]["g"]["a"].asInt(), 1);
  EXPECT_ASSERTION(config["two"]["g"], "it != groups.end()");
}

TEST(ConfigTest, MissingNamesFail) {
  const ConfigSandbox sandbox{{"one", "[g]\na = 1\n"}};
  EXPECT_ASSERTION(config["two"], "it != files.end()");
  EXPECT_ASSERTION(config["one"]["h"], "it != groups.end()");
  EXPECT_ASSERTION(config["one"]["g"]["b"], "it != values.end()");
}

TEST(ConfigTest, MissingKeyIsPrintedInFrontOfTheReport) {
  const ConfigSandbox sandbox{{"one", "[g]\na = 1\n"}};
  EXPECT_DEATH(config["one"]["g"]["lost key"], "^lost key[^\n]*Assertion `it != values.end\\(\\)'");
  const Config& constant = config;
  EXPECT_DEATH(constant["one"]["g"]["lost key"], "^lost key[^\n]*Assertion");
}

TEST(ConfigTest, LookingUpCreatesNothing) {
  const ConfigSandbox sandbox{{"one", "[g]\na = 1\n"}};
  EXPECT_ASSERTION(config["two"], "it != files.end()");
  EXPECT_ASSERTION(config["two"], "it != files.end()");
}

TEST(ConfigTest, NeedsItsStore) {
  const ConfigSandbox sandbox;
  EXPECT_ASSERTION(
      {
        Config::configFiles = nullptr;
        config.add("one");
      },
      "configFiles");
  EXPECT_ASSERTION(
      {
        Config::configFiles = nullptr;
        config.add("one", "path");
      },
      "configFiles");
}

TEST(ConfigTest, FirstHandleMakesTheStore) {
  Config::ConfigFiles* const store = Config::configFiles;
  ASSERT_NE(store, nullptr);  // made by the global `config`
  const Config another;
  EXPECT_EQ(Config::configFiles, store);
}

TEST(ConfigTest, DeploymentHasEveryFileOfTheLookUps) {
  ConfigSandbox sandbox;
  sandbox.loadDeployment();
  for (const char* file : {"Agent", "Formation", "WorldModel", "decision", "forWalk", "backWalk",
                           "sideWalk", "omniWalk", "omniBackWalk", "omniSideWalk", "Turn", "TAB"}) {
    config[file];
  }
}

struct KeyOfDeployment {
  const char* file;
  const char* group;
  std::vector<std::string> keys;
  int leastValues;
};

std::vector<std::string> numbered(const char* prefix) {
  std::vector<std::string> keys;
  for (int i = 1; i <= 11; ++i) keys.push_back(prefix + std::to_string(i));
  return keys;
}

TEST(ConfigTest, DeploymentHasEveryNumber) {
  const std::vector<std::string> torso = {"Xtorso", "Ytorso", "Ztorso", "speed"};
  const std::vector<KeyOfDeployment> table = {
      {"Agent", "Public", {"UniformNumber", "Type"}, 1},
      {"Agent", "Server", {"PlayerPort"}, 1},
      {"Agent", "AgentPost", {"P"}, 11},
      {"Formation", "Beam", numbered("p"), 3},
      {"Formation", "Penalty", numbered("p"), 3},
      {"WorldModel",
       "FlagPosition",
       {"f100", "f101", "f110", "f111", "f000", "f001", "f010", "f011"},
       3},
      {"decision", "time", {"t"}, 10},  // the last set play has the index 9
      {"forWalk", "forwalk", torso, 1},
      {"forWalk", "forwalk", {"Xankle", "Zankle"}, 4},
      {"backWalk", "backwalk", torso, 1},
      {"backWalk", "backwalk", {"Xankle", "Zankle"}, 4},
      {"sideWalk", "sidewalk", torso, 1},
      {"sideWalk", "sidewalk", {"Yankle", "Zankle"}, 4},
      {"omniWalk", "omniwalk", torso, 1},
      {"omniWalk", "omniwalk", {"Xankle", "Zankle", "RotZ"}, 4},
      {"omniBackWalk", "omnibackwalk", {"Xankle", "Zankle", "RotZ"}, 4},
      {"omniSideWalk", "omnisidewalk", {"Yankle", "Zankle", "RotZ"}, 4},
      {"Turn", "turn", torso, 1},
      {"Turn", "turn", {"Yankle", "Zankle", "RotZ"}, 4},
      {"TAB", "TAB", torso, 1},
      {"TAB", "TAB", {"Yankle", "Zankle", "RotZ"}, 4},
  };
  ConfigSandbox sandbox;
  sandbox.loadDeployment();
  for (const KeyOfDeployment& row : table) {
    for (const std::string& key : row.keys) {
      const ConfigValue& value = config[row.file][row.group][key];
      EXPECT_GE(value.size(), row.leastValues) << row.file << " " << key;
      for (int i = 0; i < value.size(); ++i) value[i].asFloat();  // asserts on what is no number
    }
  }
  EXPECT_FALSE(config["Agent"]["Public"]["Penalty"].asBool());
  // The one name under which team talk is understood.
  EXPECT_EQ(config["Agent"]["Public"]["TeamName"].asString(), "Quolnaris");
  EXPECT_NE(config["Agent"]["Server"]["HostName"].asString(), "");
  EXPECT_THAT(config["Agent"]["NAO"]["Rsg"].asString(), testing::StartsWith("scene "));
}

}  // namespace
