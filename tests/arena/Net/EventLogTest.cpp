#include "Net/EventLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace arena {
namespace {

using testing::ElementsAre;

class EventLogTest : public testing::Test {
 protected:
  std::vector<std::string> told;
  EventLog log{[this](const std::string& line) { told.push_back(line); }};
};

TEST_F(EventLogTest, TellsWhatIsNew) {
  log.note("agent 1: gone");
  log.note("monitor gone");
  log.finish();
  EXPECT_THAT(told, ElementsAre("agent 1: gone", "monitor gone"));
}

TEST_F(EventLogTest, CountsWhatComesAgainUnderAnotherNumber) {
  for (int i = 1; i <= 123; ++i) log.note("agent " + std::to_string(i) + ": gone");
  EXPECT_THAT(told, ElementsAre("agent 1: gone", "agent 10: gone (10 times)",
                                "agent 100: gone (100 times)"));
  told.clear();
  log.finish();
  EXPECT_THAT(told, ElementsAre("agents: gone (123 times)"));
}

TEST_F(EventLogTest, EscapesAndCutsWhatClientsHaveSent) {
  log.note("agent 3: unknown effector \x1b[2J\n" + std::string(1000, 'x'));
  ASSERT_EQ(told.size(), 1u);
  EXPECT_TRUE(told[0].starts_with("agent 3: unknown effector \\x1b[2J\\x0axxx"));
  EXPECT_TRUE(told[0].ends_with("x ..."));
  EXPECT_LE(told[0].size(), EventLog::kMaxLine + 4);
}

TEST_F(EventLogTest, CannotBeFilledWithEverNewWords) {
  for (int i = 0; i < 5000; ++i) {
    log.note("agent " + std::to_string(i) + ": unknown effector x" + std::to_string(i));
  }
  log.finish();
  EXPECT_EQ(told.size(), EventLog::kMaxKinds + 2);
  EXPECT_EQ(told.back(),
            "events of further kinds (" + std::to_string(5000 - EventLog::kMaxKinds) + " times)");
}

}  // namespace
}  // namespace arena
