#include "WorldModel/PerceptReader.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

namespace {

TEST(PerceptReaderTest, WordsEndAtWhiteSpace) {
  PerceptReader in(" (GS\t(t\n0.02)  ");
  std::string_view word;
  EXPECT_TRUE(in.read(word));
  EXPECT_EQ(word, "(GS");
  EXPECT_TRUE(in.read(word));
  EXPECT_EQ(word, "(t");
  EXPECT_TRUE(in.read(word));
  EXPECT_EQ(word, "0.02)");
  EXPECT_FALSE(in.read(word));
  EXPECT_EQ(word, "0.02)");
  EXPECT_FALSE(in.ok());
}

TEST(PerceptReaderTest, NumbersStopAtTheParenthesis) {
  PerceptReader in("-1.25) 12)");
  double real = 0;
  int whole = 0;
  std::string_view word;
  EXPECT_TRUE(in.read(real, word, whole));
  EXPECT_EQ(real, -1.25);
  EXPECT_EQ(word, ")");
  EXPECT_EQ(whole, 12);
}

TEST(PerceptReaderTest, CharactersSkipWhiteSpace) {
  PerceptReader in("  h j1)");
  char first = 0, second = 0, third = 0;
  int number = 0;
  EXPECT_TRUE(in.read(first, second, number, third));
  EXPECT_EQ(first, 'h');
  EXPECT_EQ(second, 'j');
  EXPECT_EQ(number, 1);
  EXPECT_EQ(third, ')');
}

TEST(PerceptReaderTest, AFailureLeavesTheTargetAndFailsWhatFollows) {
  PerceptReader in("abc 7");
  double number = 42;
  EXPECT_FALSE(in.read(number));
  EXPECT_EQ(number, 42);
  int whole = 43;
  char character = 'c';
  std::string_view word = "w";
  EXPECT_FALSE(in.read(whole));
  EXPECT_FALSE(in.read(character));
  EXPECT_FALSE(in.read(word));
  EXPECT_FALSE(in.skip(1));
  EXPECT_EQ(whole, 43);
  EXPECT_EQ(character, 'c');
  EXPECT_EQ(word, "w");
}

TEST(PerceptReaderTest, SkippingBeyondTheEndFails) {
  PerceptReader in("a b");
  EXPECT_TRUE(in.skip(2));
  EXPECT_FALSE(in.skip(1));
}

TEST(PerceptReaderTest, NumbersThatATypeCannotHoldAreNone) {
  int whole = 1;
  EXPECT_FALSE(PerceptReader("99999999999").read(whole));
  float single = 2;
  EXPECT_FALSE(PerceptReader("1e39").read(single));
  double real = 3;
  EXPECT_FALSE(PerceptReader("-1e999").read(real));
  EXPECT_EQ(whole, 1);
  EXPECT_EQ(single, 2.0f);
  EXPECT_EQ(real, 3.0);
}

TEST(PerceptReaderTest, NumbersTooSmallForATypeAreNearlyZero) {
  float single = 2;
  EXPECT_TRUE(PerceptReader("1e-60").read(single));
  EXPECT_EQ(single, 0.0f);
  double real = 3;
  EXPECT_TRUE(PerceptReader("1e-400").read(real));
  EXPECT_EQ(real, 0.0);
}

TEST(PerceptReaderTest, NamesOfInfinityAndHexadecimalFormsAreNoNumbers) {
  for (const char* text :
       {"inf", "-inf", "nan", "NaN", "infinity", ".", "-", "+", "e5", "-e5", ""}) {
    double number = 5;
    EXPECT_FALSE(PerceptReader(text).read(number)) << text;
    EXPECT_EQ(number, 5.0) << text;
  }
  double number = 5;
  PerceptReader in("0x1A");
  EXPECT_TRUE(in.read(number));
  EXPECT_EQ(number, 0.0);
  std::string_view rest;
  EXPECT_TRUE(in.read(rest));
  EXPECT_EQ(rest, "x1A");
}

// What a standard stream makes of a text: whether it reads a number, which, and the word after it.
template <typename Number>
void expectAsAStream(const std::string& text) {
  std::istringstream stream(text);
  Number expected{};
  std::string expectedRest;
  const bool expectedRead = static_cast<bool>(stream >> expected);
  stream >> expectedRest;

  PerceptReader in(text);
  Number actual{};
  std::string_view rest;
  ASSERT_EQ(in.read(actual), expectedRead) << text;
  if (!expectedRead) return;
  ASSERT_EQ(actual, expected) << text;
  in.read(rest);
  ASSERT_EQ(rest, expectedRest) << text;
}

TEST(PerceptReaderTest, ReadsAnyTextAsAStandardStreamDoes) {
  const std::string letters = "0123456789..--++eE) x";
  std::mt19937 random(20240817);
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (unsigned length = random() % 9; length > 0; --length) {
      text += letters[random() % letters.size()];
    }
    ASSERT_NO_FATAL_FAILURE(expectAsAStream<double>(text));
    ASSERT_NO_FATAL_FAILURE(expectAsAStream<float>(text));
    ASSERT_NO_FATAL_FAILURE(expectAsAStream<int>(text));
  }
}

TEST(PerceptReaderTest, LettersBeyondAWordAreNul) {
  EXPECT_EQ(letter("(GS", 2), 'S');
  EXPECT_EQ(letter("(GS", 3), '\0');
  EXPECT_EQ(letter("", 0), '\0');
}

}  // namespace
