#include "PitchPicture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::Not;

// An attribute of the document itself.
std::string attribute(const std::string& svg, const std::string& name) {
  const std::string start = " " + name + "=\"";
  const std::size_t at = svg.find(start) + start.size();
  return svg.substr(at, svg.find('"', at) - at);
}

// Every element that is opened is closed, in order.
void expectWellFormed(const std::string& svg) {
  std::vector<std::string> open;
  for (std::size_t at = svg.find('<'); at != std::string::npos; at = svg.find('<', at + 1)) {
    const std::size_t end = svg.find('>', at);
    ASSERT_NE(end, std::string::npos);
    const std::string tag = svg.substr(at + 1, end - at - 1);
    const std::string name = tag.substr(0, tag.find(' '));
    if (tag[0] == '/') {
      ASSERT_FALSE(open.empty());
      EXPECT_EQ("/" + open.back(), name);
      open.pop_back();
    } else if (tag.back() != '/') {
      open.push_back(name);
    }
  }
  EXPECT_TRUE(open.empty());
}

TEST(PitchPictureTest, ShowsThePitchAlone) {
  const std::string svg = PitchPicture("A title", "and more").svg();
  expectWellFormed(svg);
  EXPECT_THAT(svg, HasSubstr("A title"));
  EXPECT_THAT(svg, HasSubstr("and more"));
  EXPECT_THAT(svg, HasSubstr("5 m"));
  // 40 pixels to the metre and 1.3 metres around the pitch.
  EXPECT_EQ(attribute(svg, "width"), "1304.0");
  // The outline of the pitch, 1200 by 800 pixels.
  EXPECT_THAT(svg, HasSubstr("x=\"52.0\" y=\"136.0\" width=\"1200.0\" height=\"800.0\""));
}

TEST(PitchPictureTest, PutsMetresWhereTheyBelong) {
  PitchPicture picture("t", "s");
  picture.addPath({{0, 0}, {1, 2}, {-15, -10}}, {"#123456", 3}, "a path");
  const std::string svg = picture.svg();
  // The centre is at (16.3 * 40, 84 + 11.3 * 40); y points up on the pitch and down in the picture.
  EXPECT_THAT(svg, HasSubstr("d=\"M652.0 536.0L692.0 456.0L52.0 936.0\""));
  EXPECT_THAT(svg, HasSubstr("stroke=\"#123456\" stroke-width=\"3.0\""));
  EXPECT_THAT(svg, HasSubstr(">a path</text>"));
}

TEST(PitchPictureTest, InterruptsAPathAtPositionsThatAreNoNumbers) {
  PitchPicture picture("t", "s");
  picture.addPath({{0, 0}, {1, 0}, {std::nan(""), 0}, {2, 0}, {3, std::nan("")}, {0, 1}, {0, 2}},
                  {"red"});
  EXPECT_THAT(picture.svg(), HasSubstr("d=\"M652.0 536.0L692.0 536.0M732.0 536.0M652.0 496.0L652.0 "
                                       "456.0\""));
}

TEST(PitchPictureTest, GrowsToWhatLiesOutsideUpToTheWalls) {
  PitchPicture picture("t", "s");
  picture.addDots({{20, 0}, {0, 12}}, {"red", 4});
  const std::string svg = picture.svg();
  // From -16.3 to 20.7 and from -11.3 to 12.7 metres, and 156 pixels of words.
  EXPECT_EQ(attribute(svg, "width"), "1480.0");
  EXPECT_EQ(attribute(svg, "height"), "1116.0");
  PitchPicture far("t", "s");
  far.addDots({{1e9, -1e9}}, {"red", 4});
  EXPECT_EQ(attribute(far.svg(), "width"), "1612.0");
  EXPECT_EQ(attribute(far.svg(), "height"), "1568.0");
}

TEST(PitchPictureTest, LeavesOutMarksAndLinksThatAreNoPositions) {
  PitchPicture picture("t", "s");
  picture.addMark({std::nan(""), 0}, "red", "nowhere");
  picture.addMark({0, 0}, "red", "somewhere");
  picture.addLinks({{{0, 0}, {std::nan(""), 0}}, {{1, 0}, {2, 0}}}, {"blue", 1.5}, "pairs");
  const std::string svg = picture.svg();
  expectWellFormed(svg);
  EXPECT_THAT(svg, Not(HasSubstr("nowhere")));
  EXPECT_THAT(svg, HasSubstr("somewhere"));
  EXPECT_THAT(svg, HasSubstr("x1=\"692.0\" y1=\"536.0\" x2=\"732.0\" y2=\"536.0\" "
                             "stroke=\"blue\""));
  EXPECT_THAT(svg, Not(HasSubstr("nan")));
}

TEST(PitchPictureTest, EscapesWords) {
  const std::string svg = PitchPicture("<b> & \"c\"\n", "a<>").svg();
  expectWellFormed(svg);
  EXPECT_THAT(svg, HasSubstr("&lt;b&gt; &amp; &quot;c&quot; "));
}

}  // namespace
