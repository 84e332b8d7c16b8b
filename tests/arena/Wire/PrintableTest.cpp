#include "Wire/Printable.h"

#include <gtest/gtest.h>

#include <string>

namespace arena {
namespace {

TEST(PrintableTest, LeavesOrdinaryTextAsItIs) {
  EXPECT_EQ(printable("agent 3: gone (~!)", 80), "agent 3: gone (~!)");
  EXPECT_EQ(printable("", 80), "");
}

TEST(PrintableTest, EscapesWhatATerminalWouldObey) {
  EXPECT_EQ(printable(std::string("\x1b[31m\n\0\x7f\xc3\xa4\\", 11), 80),
            "\\x1b[31m\\x0a\\x00\\x7f\\xc3\\xa4\\\\");
}

TEST(PrintableTest, CutsBetweenWholeCharacters) {
  EXPECT_EQ(printable("abcdef", 6), "abcdef");
  EXPECT_EQ(printable("abcdefg", 6), "abcdef ...");
  EXPECT_EQ(printable("abc\n\n", 6), "abc ...");
}

}  // namespace
}  // namespace arena
