#include "FrameRecording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <string>
#include <vector>

#include "FramedLink.h"
#include "support/TempDirectory.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string compressed(const std::string& text, const support::TempDirectory& directory) {
  const std::string path = (directory.path() / "packed.gz").string();
  const gzFile file = gzopen(path.c_str(), "wb9");
  EXPECT_EQ(gzwrite(file, text.data(), static_cast<unsigned>(text.size())),
            static_cast<int>(text.size()));
  gzclose(file);
  return path;
}

template <typename Call>
std::string errorOf(Call call) {
  try {
    call();
  } catch (const RecordingError& error) {
    return error.what();
  }
  return "no error";
}

TEST(FrameRecordingTest, ReadsFramesOfAnyLength) {
  const std::string longest(kLongestFrame, 'x');
  EXPECT_THAT(parseRecording(framed("(a)") + framed("") + framed(longest) + framed("b"), "it"),
              ElementsAre("(a)", "", longest, "b"));
  EXPECT_THAT(parseRecording("", "it"), IsEmpty());
}

TEST(FrameRecordingTest, ReadsPlainAndCompressedFilesAlike) {
  const support::TempDirectory directory;
  const std::string bytes = framed("(time (now 1.00))") + framed(std::string("a\0b", 3));
  const std::string plain = directory.write("plain", bytes).string();
  EXPECT_THAT(readRecording(plain), ElementsAre("(time (now 1.00))", std::string("a\0b", 3)));
  EXPECT_EQ(readRecording(compressed(bytes, directory)), readRecording(plain));
}

TEST(FrameRecordingTest, RefusesWhatIsNoRecording) {
  EXPECT_THAT(errorOf([] { parseRecording("(time (now 1.0))", "it"); }),
              HasSubstr("it: frame 1 is said to be 678717805 bytes long"));
  EXPECT_THAT(errorOf([] { parseRecording(framed("a") + std::string(2, '\0'), "it"); }),
              HasSubstr("it: frame 2 is cut off in its length"));
  EXPECT_THAT(errorOf([] { parseRecording(framed("abcdef").substr(0, 8), "it"); }),
              HasSubstr("it: frame 1 is cut off: 4 of 6 bytes"));
  EXPECT_THAT(errorOf([] { parseRecording(framed(std::string(kLongestFrame + 1, 'x')), "it"); }),
              HasSubstr("16381 bytes long"));
}

TEST(FrameRecordingTest, NamesFilesThatCannotBeRead) {
  const support::TempDirectory directory;
  const std::string absent = (directory.path() / "absent").string();
  EXPECT_THAT(errorOf([&] { readRecording(absent); }),
              HasSubstr("can't open " + absent + ": No such file"));
  EXPECT_THAT(errorOf([&] { readRecording(directory.path().string()); }), HasSubstr("can't read"));
}

TEST(FrameRecordingTest, NoticesDamageInCompressedFiles) {
  const support::TempDirectory directory;
  std::string bytes;
  for (int i = 0; i < 2000; ++i) bytes += framed("(time (now " + std::to_string(i * 7919) + "))");
  compressed(bytes, directory);
  const std::string packed = directory.read("packed.gz");
  const std::string cut = directory.write("cut.gz", packed.substr(0, packed.size() / 2)).string();
  EXPECT_THAT(errorOf([&] { readFile(cut); }), HasSubstr("can't read " + cut));
  std::string damaged = packed;
  for (std::size_t i = packed.size() / 2; i < packed.size() / 2 + 50; ++i) damaged[i] ^= '\x55';
  const std::string broken = directory.write("broken.gz", damaged).string();
  EXPECT_THAT(errorOf([&] { readFile(broken); }), HasSubstr("can't read " + broken));
}

TEST(FrameRecordingTest, ReadsLinesOfTruth) {
  const std::vector<TruthLine> lines = parseTruth(
      "# index time mode score ball | robots\n"
      "\n"
      "1 0.00 BeforeKickOff 0:0 0.0000 0.0000 0.0418\r\n"
      "2 1.50 PlayOn 1:2 3.5 -4.5 0.04 | L8 -5.0 -4.25 0.4 1.44 1.0 | R10 1 2 0.35 -173.5 0.5 | ?0 "
      "0 -1 1.5 90 1\n",
      "it");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_THAT(lines[0].robots, IsEmpty());
  const TruthLine& line = lines[1];
  EXPECT_EQ(line.time, 1.5);
  EXPECT_EQ(line.mode, "PlayOn");
  EXPECT_EQ(line.score, "1:2");
  EXPECT_EQ(line.ballX, 3.5);
  EXPECT_EQ(line.ballY, -4.5);
  EXPECT_EQ(line.ballZ, 0.04);
  ASSERT_EQ(line.robots.size(), 3u);
  const TrueRobot* const robot = line.find('R', 10);
  ASSERT_NE(robot, nullptr);
  EXPECT_EQ(robot->x, 1);
  EXPECT_EQ(robot->y, 2);
  EXPECT_EQ(robot->z, 0.35);
  EXPECT_EQ(robot->heading, -173.5);
  EXPECT_EQ(robot->up, 0.5);
  EXPECT_EQ(line.find('L', 10), nullptr);
  EXPECT_EQ(line.find('R', 8), nullptr);
  EXPECT_NE(line.find('L', 8), nullptr);
}

TEST(FrameRecordingTest, NamesTheLineThatIsNoTruth) {
  for (const char* line :
       {"hello", "1 2.0 PlayOn 0:0 1 2", "1 x PlayOn 0:0 1 2 3", "1 2.0 PlayOn 0:0 1 2 3 L8",
        "1 2.0 PlayOn 0:0 1 2 3 | L8 1 2", "1 2.0 PlayOn 0:0 1 2 3 | X8 1 2 3 4 5",
        "1 2.0 PlayOn 0:0 1 2 3 | Lx 1 2 3 4 5", "1 2.0 PlayOn 0:0 1 2 3 |"}) {
    EXPECT_EQ(errorOf([&] { parseTruth(std::string("# fine\n") + line + "\n", "it"); }),
              "it: line 2 is no line of ground truth")
        << line;
  }
}

TEST(FrameRecordingTest, TheShippedRecordingsAreWhole) {
  const std::string data = std::string(QUOLNARIS_SOURCE_DIR) + "/tests/data/recordings/";
  EXPECT_EQ(readRecording(data + "match-a-left-10.frames.gz").size(), 3783u);
  EXPECT_EQ(readRecording(data + "match-b-right-10.frames.gz").size(), 2564u);
  EXPECT_EQ(readRecording(data + "solo-c-left-9.frames.gz").size(), 2110u);
  for (const char* name : {"match-a", "match-b", "solo-c"}) {
    EXPECT_GT(readTruth(data + name + ".truth.gz").size(), 1900u) << name;
  }
}

}  // namespace
