#include "Wire/SExpression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace arena {
namespace {

using Status = SExpression::Status;

// Writes what was read in one way: atoms in <>, lists in ().
std::string shown(SExpression::Node node) {
  if (node.isAtom()) return "<" + std::string(node.text()) + ">";
  std::string text = "(";
  for (const auto child : node) text += shown(child);
  return text + ")";
}

std::string shown(const SExpression& expression) {
  std::string text;
  for (const auto node : expression) text += shown(node);
  return text;
}

std::string readAndShow(std::string_view frame, Status expected = Status::Complete) {
  SExpression expression;
  EXPECT_EQ(expression.read(frame), expected) << frame;
  return shown(expression);
}

TEST(SExpressionTest, ReadsAnyNumberOfTopLevelLists) {
  EXPECT_EQ(readAndShow("(he1 1.2)(rle3 -0.4)(syn)"), "(<he1><1.2>)(<rle3><-0.4>)(<syn>)");
  EXPECT_EQ(readAndShow(""), "");
  EXPECT_EQ(readAndShow("()"), "()");
}

TEST(SExpressionTest, ReadsNestedLists) {
  EXPECT_EQ(readAndShow("(init (unum 3)(teamname A b))"), "(<init>(<unum><3>)(<teamname><A><b>))");
  EXPECT_EQ(readAndShow("(a(b(c)d)e)"), "(<a>(<b>(<c>)<d>)<e>)");
}

TEST(SExpressionTest, BlankTabReturnAndLineFeedSeparate) {
  EXPECT_EQ(readAndShow(" ( a\tb\rc\nd ) "), "(<a><b><c><d>)");
}

TEST(SExpressionTest, IgnoresAtomsAndClosingBracketsOutsideLists) {
  EXPECT_EQ(readAndShow("x (a) y \"z\" (b) w"), "(<a>)(<b>)");
  EXPECT_EQ(readAndShow(")(a))(b)"), "(<a>)(<b>)");
}

TEST(SExpressionTest, AtomsTakeTheLegalCharactersAndNoOthers) {
  std::string legal = "!#$%&";
  for (int c = '*'; c <= '~'; ++c) {
    if (c != ';') legal += static_cast<char>(c);
  }
  for (int c = 128; c < 256; ++c) legal += static_cast<char>(c);
  EXPECT_EQ(readAndShow("(" + legal + ")"), "(<" + legal + ">)");
  for (const char illegal : {'\x01', '\x0b', '\x7f', '\0'}) {
    EXPECT_EQ(readAndShow(std::string("(a)(b ") + illegal + " c)(d)", Status::IllegalByte),
              "(<a>)");
  }
}

TEST(SExpressionTest, SemicolonAtTheStartOfATokenBeginsAComment) {
  EXPECT_EQ(readAndShow("(a ;b) c\n d)"), "(<a><d>)");
  EXPECT_EQ(readAndShow("(a b;c)"), "(<a><b;c>)");
  EXPECT_EQ(readAndShow("(a);the end"), "(<a>)");
}

TEST(SExpressionTest, QuotedTokensHoldSeparatorsAndBrackets) {
  EXPECT_EQ(readAndShow("(say \"a (b) ;c\")"), "(<say><a (b) ;c>)");
  EXPECT_EQ(readAndShow("(say 'a \"b\" c')"), "(<say><a \"b\" c>)");
  EXPECT_EQ(readAndShow("(say \"\")"), "(<say><>)");
  EXPECT_EQ(readAndShow("(say a\"b c\"d)"), "(<say><a><b c><d>)");
}

TEST(SExpressionTest, BackslashEscapesBracketsAndQuotesOnly) {
  EXPECT_EQ(readAndShow(R"((say a\(b\)c\"d\'e))"), "(<say><a(b)c\"d'e>)");
  EXPECT_EQ(readAndShow(R"((say "a\"b"))"), "(<say><a\"b>)");
  EXPECT_EQ(readAndShow(R"((say a\nb\\c))"), R"((<say><a\nb\\c>))");
  EXPECT_EQ(readAndShow(R"((a \(x \)y z))"), "(<a><(x><)y><z>)");
  EXPECT_EQ(readAndShow("(a b\\", Status::Unfinished), "");
}

TEST(SExpressionTest, KeepsFinishedListsWhenTheFrameBreaksOff) {
  EXPECT_EQ(readAndShow("(a 1)(b (c 2)", Status::Unfinished), "(<a><1>)");
  EXPECT_EQ(readAndShow("(a 1)(say \"b)", Status::Unfinished), "(<a><1>)");
}

TEST(SExpressionTest, BoundsTheDepth) {
  const auto nested = [](int depth) {
    return std::string(static_cast<std::size_t>(depth), '(') +
           std::string(static_cast<std::size_t>(depth), ')');
  };
  SExpression expression;
  EXPECT_EQ(expression.read("(a)" + nested(SExpression::kMaxDepth)), Status::Complete);
  EXPECT_EQ(expression.size(), 2u);
  EXPECT_EQ(expression.read("(a)" + nested(SExpression::kMaxDepth + 1)), Status::TooDeep);
  EXPECT_EQ(expression.size(), 1u);
}

TEST(SExpressionTest, BoundsTheNumberOfItems) {
  std::string frame = "(first)(";
  for (std::size_t i = 0; i < SExpression::kMaxNodes; ++i) frame += "a ";
  EXPECT_EQ(readAndShow(frame + ")", Status::TooLarge), "(<first>)");
}

TEST(SExpressionTest, NumbersFollowTheRulesOfAtof) {
  const std::pair<const char*, double> cases[] = {
      {"1.5", 1.5},    {"-0.25", -0.25}, {"+3", 3.0},     {".5", 0.5},     {"1e3", 1000.0},
      {"1.2abc", 1.2}, {"abc", 0.0},     {"-", 0.0},      {"1e", 1.0},     {"0x10", 16.0},
      {"1.5.2", 1.5},  {"--1", 0.0},     {"1e-400", 0.0}, {"-.5e1x", -5.0}};
  SExpression expression;
  for (const auto& [text, value] : cases) {
    const std::string frame = std::string("(n ") + text + ")";
    expression.read(frame);
    EXPECT_EQ((*expression.begin()).child(1).number(), value) << text;
  }
  expression.read("(n nan inf -infinity 1e999)");
  const auto node = *expression.begin();
  EXPECT_TRUE(std::isnan(node.child(1).number()));
  EXPECT_TRUE(std::isinf(node.child(2).number()));
  EXPECT_LT(node.child(3).number(), -1e300);
  EXPECT_TRUE(std::isinf(node.child(4).number()));
}

TEST(SExpressionTest, IntegersFollowTheRulesOfAtoiWithinTheirRange) {
  const std::pair<const char*, int> cases[] = {{"7", 7},
                                               {"-3", -3},
                                               {"+4", 4},
                                               {"5.9", 5},
                                               {"x", 0},
                                               {"12abc", 12},
                                               {"99999999999", 2147483647},
                                               {"-99999999999", -2147483647 - 1}};
  SExpression expression;
  for (const auto& [text, value] : cases) {
    const std::string frame = std::string("(n ") + text + ")";
    expression.read(frame);
    EXPECT_EQ((*expression.begin()).child(1).integer(), value) << text;
  }
}

TEST(SExpressionTest, NodesOfferNamesChildrenAndTerms) {
  SExpression expression;
  expression.read("(agent (unum 3)(team Left)(pos 1 2 3))");
  const auto node = *expression.begin();
  EXPECT_EQ(node.name(), "agent");
  EXPECT_EQ(node.size(), 4u);
  EXPECT_EQ(node.find("team").child(1).text(), "Left");
  EXPECT_FALSE(node.find("move"));
  EXPECT_FALSE(node.child(4));
  EXPECT_EQ(node.child(9).text(), "");
  EXPECT_EQ(node.child(0).size(), 0u);
  EXPECT_EQ(node.number(), 0.0);
  EXPECT_EQ(SExpression::Node().number(), 0.0);
  EXPECT_EQ(SExpression::Node().find("a").size(), 0u);
}

TEST(SExpressionTest, PlainAtomsAreReadBackAsTheyAre) {
  for (const char* text : {"a", "A1!#$%&*~x", "a;b", "\xc3\xa4"}) {
    EXPECT_TRUE(SExpression::isPlainAtom(text)) << text;
    EXPECT_EQ(readAndShow("(" + std::string(text) + ")"), "(<" + std::string(text) + ">)");
  }
  for (const char* text : {"", ";a", "a b", "a(b", "a)", "a\\", "\"a", "a'", "a\n", "\x7f"}) {
    EXPECT_FALSE(SExpression::isPlainAtom(text)) << text;
  }
}

TEST(SExpressionTest, ReadingAgainForgetsTheFrameBefore) {
  SExpression expression;
  expression.read("(a b\\(c)(d)");
  expression.read("(e f\\)g)");
  EXPECT_EQ(shown(expression), "(<e><f)g>)");
}

}  // namespace
}  // namespace arena
