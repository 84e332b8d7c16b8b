#include "Wire/Frame.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "FramedLink.h"

namespace arena {
namespace {

std::vector<std::string> drain(FrameSplitter& splitter) {
  std::vector<std::string> frames;
  std::string frame;
  while (splitter.next(frame)) frames.push_back(frame);
  return frames;
}

TEST(FrameTest, ThePrefixIsBigEndian) {
  EXPECT_EQ(framePrefix(0x01020304), (std::array<char, 4>{1, 2, 3, 4}));
  EXPECT_EQ(framePrefix(5), (std::array<char, 4>{0, 0, 0, 5}));
}

TEST(FrameSplitterTest, CutsSeveralFramesOfOnePiece) {
  FrameSplitter splitter(100);
  EXPECT_TRUE(splitter.append(framed("(syn)") + framed("") + framed("(he1 1)")));
  EXPECT_EQ(drain(splitter), (std::vector<std::string>{"(syn)", "", "(he1 1)"}));
}

TEST(FrameSplitterTest, JoinsPiecesOfAnySize) {
  std::mt19937 engine(3);
  std::string stream;
  std::vector<std::string> sent;
  for (int i = 0; i < 200; ++i) {
    sent.emplace_back(engine() % 90, static_cast<char>('a' + i % 26));
    stream += framed(sent.back());
  }
  FrameSplitter splitter(100);
  std::vector<std::string> received;
  for (std::size_t at = 0; at < stream.size();) {
    const std::size_t count = std::min<std::size_t>(1 + engine() % 40, stream.size() - at);
    ASSERT_TRUE(splitter.append(std::string_view(stream).substr(at, count)));
    for (std::string& frame : drain(splitter)) received.push_back(std::move(frame));
    at += count;
  }
  EXPECT_EQ(received, sent);
}

TEST(FrameSplitterTest, WaitsForTheRestOfAFrame) {
  FrameSplitter splitter(100);
  const std::string whole = framed("(syn)");
  for (std::size_t i = 0; i + 1 < whole.size(); ++i) {
    EXPECT_TRUE(splitter.append(whole.substr(i, 1)));
    EXPECT_TRUE(drain(splitter).empty());
  }
  EXPECT_TRUE(splitter.append(whole.substr(whole.size() - 1)));
  EXPECT_EQ(drain(splitter), std::vector<std::string>{"(syn)"});
}

TEST(FrameSplitterTest, RefusesALengthBeyondTheLimitAsSoonAsItIsRead) {
  FrameSplitter splitter(100);
  EXPECT_TRUE(splitter.append(framed(std::string(100, 'x'))));
  EXPECT_EQ(drain(splitter).size(), 1u);
  EXPECT_FALSE(splitter.append(framed(std::string(101, 'x')).substr(0, 4)));
  EXPECT_TRUE(drain(splitter).empty());
}

TEST(FrameSplitterTest, FindsALengthBeyondTheLimitBehindGoodFrames) {
  FrameSplitter splitter(100);
  splitter.append(framed("(syn)") + std::string("\xff\xff\xff\xff", 4));
  EXPECT_EQ(drain(splitter), std::vector<std::string>{"(syn)"});
  EXPECT_FALSE(splitter.append({}));
}

}  // namespace
}  // namespace arena
