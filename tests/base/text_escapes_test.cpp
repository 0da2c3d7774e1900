#include "veq/base/internal/text_escapes.hpp"

#include <gtest/gtest.h>

namespace veq::internal::text_escapes_test {
namespace {

std::string escaped(std::string_view text) {
  std::string out;
  appendEscaped(out, text);
  return out;
}

TEST(TextEscapes, OnlyLineFeedsAndQuotesAreReplaced) {
  EXPECT_EQ(escaped("two\nlines"), "two<newline>lines");
  EXPECT_EQ(escaped("say \"hi\""), "say <quote>hi<quote>");
  EXPECT_EQ(escaped("\n\""), "<newline><quote>");
  EXPECT_EQ(escaped("a\rb\tc<d>"), "a\rb\tc<d>");
  EXPECT_EQ(escaped(""), "");
}

TEST(TextEscapes, AppendsBehindWhatIsThere) {
  std::string out = "\"";
  appendEscaped(out, "x\"y");
  EXPECT_EQ(out, "\"x<quote>y");
}

TEST(TextEscapes, UnescapingUndoesBoth) {
  EXPECT_EQ(unescaped("two<newline>lines"), "two\nlines");
  EXPECT_EQ(unescaped("say <quote>hi<quote>"), "say \"hi\"");
  EXPECT_EQ(unescaped("<newline><quote>"), "\n\"");
  EXPECT_EQ(unescaped(""), "");
  EXPECT_EQ(unescaped("plain"), "plain");
}

TEST(TextEscapes, WhatLooksAlmostLikeAMarkStays) {
  EXPECT_EQ(unescaped("<Quote> <NEWLINE> <newline <quote"), "<Quote> <NEWLINE> <newline <quote");
  EXPECT_EQ(unescaped("<<quote>>"), "<\">");
  EXPECT_EQ(unescaped("<quo<newline>te>"), "<quo\nte>");
  EXPECT_EQ(unescaped("<new<quote>line>"), "<new\"line>");
  EXPECT_EQ(unescaped("<"), "<");
}

TEST(TextEscapes, AQuoteMarkInTheTextItselfBecomesAQuote) {
  EXPECT_EQ(unescaped(escaped("a<quote>b\n\"")), "a\"b\n\"");
}

}  // namespace
}  // namespace veq::internal::text_escapes_test
