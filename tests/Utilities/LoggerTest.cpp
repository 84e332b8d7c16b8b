#include "Utilities/Logger.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <type_traits>

#include "support/TempDirectory.h"

namespace {

using support::TempDirectory;
using support::WorkingDirectory;

// A directory with "Logs/" as the working directory, and a set of log streams of its own.
class LoggerTest : public testing::Test {
 protected:
  LoggerTest() : inside(directory.path()), previous(Logger::logStreams) {
    std::filesystem::create_directory("Logs");
    Logger::logStreams = new Logger::LogStreams;
  }
  ~LoggerTest() override {
    delete Logger::logStreams;
    Logger::logStreams = previous;
  }

  TempDirectory directory;
  WorkingDirectory inside;
  Logger::LogStreams* previous;
  Timer timer;
};

TEST_F(LoggerTest, WritesToAFileOfTheName) {
  logger.add("Trace", &timer);
  logger["Trace"] << "isingoal = " << 1 << std::endl;
  EXPECT_EQ(directory.read("Logs/Trace.log"), "isingoal = 1\n");
}

TEST_F(LoggerTest, NumberIsAddedToTheCharacterZero) {
  logger.add("Agent", 1, &timer);
  logger.add("Agent", 7, &timer);
  logger.add("Agent", 9, &timer);
  logger.add("Agent", 10, &timer);
  logger.add("Agent", 11, &timer);
  for (const char* name : {"Agent1", "Agent7", "Agent9", "Agent:", "Agent;"}) {
    EXPECT_TRUE(directory.has(std::string("Logs/") + name + ".log")) << name;
  }
}

TEST_F(LoggerTest, NumberedStreamIsKnownByThePlainName) {
  logger.add("Agent", 7, &timer);
  logger["Agent"] << "a" << std::endl;
  logger["Agent7"] << "b" << std::endl;
  EXPECT_EQ(directory.read("Logs/Agent7.log"), "a\n");
}

TEST_F(LoggerTest, TruncatesAnOldFile) {
  directory.write("Logs/Agent7.log", "old\n");
  logger.add("Agent", 7, &timer);
  EXPECT_EQ(directory.read("Logs/Agent7.log"), "");
}

TEST_F(LoggerTest, FloatsHaveSixDecimals) {
  logger.add("Agent", nullptr);
  logger["Agent"] << 1.5 << " " << 0.1f << " " << 1e7 << " " << 3 << std::endl;
  EXPECT_EQ(directory.read("Logs/Agent.log"), "1.500000 0.100000 10000000.000000 3\n");
}

TEST_F(LoggerTest, LinesHaveNoPrefix) {
  timer.resetCycle(5);
  logger.add("Agent", &timer);
  logger["Agent"] << "one" << std::endl << "two" << std::endl;
  EXPECT_EQ(directory.read("Logs/Agent.log"), "one\ntwo\n");
}

TEST_F(LoggerTest, UnknownNameIsSilent) {
  logger["Unknown"] << "text" << 1.5 << std::endl << std::hex << std::flush;
  logger["Unknown"].newCycle();
  EXPECT_TRUE(std::filesystem::is_empty("Logs"));
}

TEST_F(LoggerTest, MissingDirectoryIsSilent) {
  std::filesystem::remove("Logs");
  logger.add("Agent", 7, &timer);
  logger["Agent"] << "text" << std::endl;
  EXPECT_FALSE(directory.has("Logs"));
}

TEST_F(LoggerTest, StreamAddedAgainReplacesTheFormer) {
  logger.add("Agent", 1, &timer);
  logger["Agent"] << "first" << std::endl;
  logger.add("Agent", 2, &timer);
  logger["Agent"] << "second" << std::endl;
  EXPECT_EQ(directory.read("Logs/Agent1.log"), "first\n");
  EXPECT_EQ(directory.read("Logs/Agent2.log"), "second\n");
}

TEST_F(LoggerTest, NeedsItsStreams) {
  EXPECT_DEATH(
      {
        Logger::logStreams = nullptr;
        logger["Agent"];
      },
      "Assertion `logStreams' failed");
}

TEST_F(LoggerTest, FirstHandleMakesTheStreams) {
  ASSERT_NE(previous, nullptr);  // made by the global `logger`
  Logger::LogStreams* const streams = Logger::logStreams;
  const Logger another;
  EXPECT_EQ(Logger::logStreams, streams);
}

TEST(LogStreamTest, HasVirtualDestructor) {
  EXPECT_TRUE(std::has_virtual_destructor_v<LogStream>);
}

TEST(LogStreamTest, AppliesManipulators) {
  std::ostringstream out;
  LogStream stream(&out, nullptr);
  stream << std::hex << 255 << std::dec << " " << std::scientific << 1.5 << std::flush << std::endl;
  EXPECT_EQ(out.str(), "ff 1.500000e+00\n");
}

TEST(LogStreamTest, SilentStreamTakesEverything) {
  LogNull stream;
  stream << "text" << 1 << 1.5 << std::endl << std::hex;
  stream.newCycle();
}

TEST(LogStreamTest, BannerHoldsTheCycle) {
  Timer timer;
  timer.resetCycle(17);
  std::ostringstream out;
  LogStream stream(&out, &timer);
  stream.newCycle();
  EXPECT_NE(out.str().find(" 17 "), std::string::npos);
  EXPECT_EQ(out.str().front(), '\n');
  EXPECT_EQ(out.str().back(), '\n');
}

TEST(LogStreamTest, BannerWithoutATimerHoldsZero) {
  std::ostringstream out;
  LogStream stream(&out, nullptr);
  stream.newCycle();
  EXPECT_NE(out.str().find(" 0 "), std::string::npos);
}

}  // namespace
