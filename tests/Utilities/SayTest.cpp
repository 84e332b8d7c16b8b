#include "Utilities/Say.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(SayTest, PlacesStartAtTwo) {
  const Say say;
  for (int i = 0; i < 10; ++i) EXPECT_EQ(say.place[i], i + 2);
}

TEST(SayTest, ReadsFiveDigitsOfTime) {
  Say say;
  EXPECT_EQ(say.changeCharToTime("x01234"), 1234);
  EXPECT_EQ(say.time, 1234);
  EXPECT_EQ(say.changeCharToTime("x98765rest"), 98765);
}

TEST(SayTest, TellsAFallByTheSeventhCharacter) {
  Say say;
  EXPECT_STREQ(say.talk("012345F"), "F");
  EXPECT_STREQ(say.talk("012345x"), "S");
  EXPECT_STREQ(say.talk("FFFFFF"), "S");
  EXPECT_TRUE(say.isFall("012345F"));
  EXPECT_TRUE(say.fall);
  EXPECT_FALSE(say.isFall("012345S"));
  EXPECT_FALSE(say.fall);
}

TEST(SayTest, PlacesAreCharacterCodesFromTheSeventhOn) {
  Say say;
  say.place[10] = 77;
  say.calculatePlace("......ABCDEFGHIJ");
  for (int i = 0; i < 10; ++i) EXPECT_EQ(say.place[i], 'A' + i);
  EXPECT_EQ(say.place[10], 77);
}

TEST(SayTest, ShortTextsReadAsNul) {
  Say say;
  EXPECT_EQ(say.changeCharToTime(""), -48 * 11111);
  say.calculatePlace("......A");
  EXPECT_EQ(say.place[0], 'A');
  EXPECT_EQ(say.place[1], 0);
  EXPECT_EQ(say.place[9], 0);
}

TEST(SayTest, SetPlaceCopiesElevenNumbers) {
  const int places[11] = {11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1};
  Say say;
  say.setPlace(places);
  EXPECT_EQ(std::memcmp(say.place, places, sizeof(places)), 0);
}

TEST(SayTest, KeepsWhatItHeard) {
  Say say;
  say.setHear("u07rc04");
  EXPECT_EQ(say.heard, "u07rc04");
}

}  // namespace
