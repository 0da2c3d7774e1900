#include "veq/base/internal/text_scanner.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace veq::internal::text_scanner_test {
namespace {

using namespace std::string_view_literals;

const std::vector<std::string_view> kNewlines = {"\n",       "\r",           "\v",          "\f",
                                                 "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};

const std::vector<std::string_view> kBlanks = {" ",
                                               "\t",
                                               "\xC2\xA0",
                                               "\xE1\x9A\x80",
                                               "\xE2\x80\x80",
                                               "\xE2\x80\x81",
                                               "\xE2\x80\x82",
                                               "\xE2\x80\x83",
                                               "\xE2\x80\x84",
                                               "\xE2\x80\x85",
                                               "\xE2\x80\x86",
                                               "\xE2\x80\x87",
                                               "\xE2\x80\x88",
                                               "\xE2\x80\x89",
                                               "\xE2\x80\x8A",
                                               "\xE2\x80\xAF",
                                               "\xE2\x81\x9F",
                                               "\xE3\x80\x80"};

// Characters whose bytes come close to those of a blank or a newline, or that are none here.
const std::vector<std::string_view> kOrdinary = {"a",
                                                 "\0"sv,
                                                 "\x1C",
                                                 "\x1F",
                                                 "\x08",
                                                 "\x7F",
                                                 "\x85",
                                                 "\xC2\x84",
                                                 "\xC2\x86",
                                                 "\xC2\xA1",
                                                 "\xC3\x85",
                                                 "\xC3\xA0",
                                                 "\xC2",
                                                 "\xE2",
                                                 "\xE2\x80",
                                                 "\xE2\x85\x85",
                                                 "\xE2\x80\x8B",
                                                 "\xE2\x80\xA7",
                                                 "\xE2\x80\xAA",
                                                 "\xE2\x80\xAE",
                                                 "\xE2\x80\xB0",
                                                 "\xE2\x81\xA0",
                                                 "\xE1\x9A\x81",
                                                 "\xE1\xA0\x8E",
                                                 "\xE3\x80\x81",
                                                 "\xE1\x85\xA0",
                                                 "\xF0\x9F\x98\x85"};

std::string between(std::string_view middle) { return "x" + std::string(middle) + "y"; }

TEST(TextScanner, EveryNewlineEndsALine) {
  for (const std::string_view newline : kNewlines) {
    const std::string text = between(newline);
    TextScanner scanner(text);
    EXPECT_EQ(scanner.takeUntilNewline(), "x");
    EXPECT_EQ(scanner.position(), 1u);
    scanner.skipBlanks();
    EXPECT_EQ(scanner.position(), 1u) << "a newline is no blank";
    scanner.skipNewlines();
    EXPECT_EQ(scanner.rest(), "y");
  }
}

TEST(TextScanner, EveryBlankIsSkippedAndEndsAToken) {
  for (const std::string_view blank : kBlanks) {
    const std::string text = between(blank);
    TextScanner scanner(text);
    EXPECT_EQ(scanner.takeUntilBlankOrNewline(), "x");
    scanner.skipNewlines();
    EXPECT_EQ(scanner.position(), 1u) << "a blank is no newline";
    scanner.skipBlanks();
    EXPECT_EQ(scanner.rest(), "y");
  }
}

TEST(TextScanner, EveryOtherCharacterIsNeither) {
  for (const std::string_view ordinary : kOrdinary) {
    const std::string text = between(ordinary);
    TextScanner line(text);
    EXPECT_EQ(line.takeUntilNewline(), text);
    TextScanner token(text);
    EXPECT_EQ(token.takeUntilBlankOrNewline(), text);
    TextScanner quoted(text);
    EXPECT_EQ(quoted.takeUntilQuoteOrNewline(), text);
    TextScanner skipping(ordinary);
    skipping.skipBlanksAndNewlines();
    EXPECT_EQ(skipping.position(), 0u);
  }
}

TEST(TextScanner, ATruncatedCharacterAtTheEndIsOrdinary) {
  for (const std::string_view text : {"\xC2"sv, "\xE2"sv, "\xE2\x80"sv, "\xE1\x9A"sv, "\xE3"sv}) {
    TextScanner scanner(text);
    scanner.skipBlanksAndNewlines();
    EXPECT_EQ(scanner.position(), 0u);
    EXPECT_EQ(scanner.takeUntilNewline(), text);
    EXPECT_TRUE(scanner.atEnd());
  }
}

TEST(TextScanner, FinishLineSwallowsTheWholeRunOfNewlines) {
  TextScanner scanner("rest of it\r\n\n\v\f\r\xC2\x85\xE2\x80\xA8\xE2\x80\xA9next\n");
  scanner.finishLine();
  EXPECT_EQ(scanner.rest(), "next\n");
  scanner.finishLine();
  EXPECT_TRUE(scanner.atEnd());
  scanner.finishLine();
  EXPECT_TRUE(scanner.atEnd());
}

TEST(TextScanner, ALineOfBlanksIsALine) {
  TextScanner scanner("a\n  \nb");
  scanner.finishLine();
  EXPECT_EQ(scanner.rest(), "  \nb");
  scanner.skipBlanks();
  scanner.finishLine();
  EXPECT_EQ(scanner.rest(), "b");
}

TEST(TextScanner, TakesUpToAQuoteOrTheLineEnd) {
  TextScanner scanner("a b\"c\nd");
  EXPECT_EQ(scanner.takeUntilQuoteOrNewline(), "a b");
  EXPECT_EQ(scanner.takeUntilQuoteOrNewline(), "");
  EXPECT_TRUE(scanner.match('"'));
  EXPECT_EQ(scanner.takeUntilQuoteOrNewline(), "c");
  EXPECT_FALSE(scanner.match('"'));
  EXPECT_TRUE(scanner.startsWith('\n'));
}

TEST(TextScanner, AQuoteDoesNotEndAToken) {
  TextScanner scanner("a\"b c");
  EXPECT_EQ(scanner.takeUntilBlankOrNewline(), "a\"b");
}

TEST(TextScanner, SkipsBlanksAndNewlinesTogether) {
  TextScanner scanner(" \t\r\n\xC2\xA0\xE2\x80\xA9 z");
  scanner.skipBlanksAndNewlines();
  EXPECT_EQ(scanner.rest(), "z");
}

TEST(TextScanner, WordsMatchAsPrefixesInAnyCase) {
  TextScanner scanner("#VerticesX");
  EXPECT_FALSE(scanner.matchPrefix("vertices"));
  EXPECT_TRUE(scanner.match('#'));
  EXPECT_TRUE(scanner.matchPrefix("vertices"));
  EXPECT_EQ(scanner.rest(), "X");
  EXPECT_FALSE(scanner.matchPrefix("xy"));
  EXPECT_EQ(scanner.rest(), "X");
}

TEST(TextScanner, OnlyLettersHaveTwoCases) {
  EXPECT_FALSE(TextScanner("[").matchPrefix("{"));
  EXPECT_FALSE(TextScanner("@").matchPrefix("`"));
  EXPECT_TRUE(TextScanner("v3").matchPrefix("V3"));
  // The Kelvin sign is a k in some case foldings.
  EXPECT_FALSE(TextScanner("\xE2\x84\xAA").matchPrefix("k"));
}

TEST(TextScanner, AnEmptyTextIsAtItsEnd) {
  TextScanner scanner{std::string_view{}};
  EXPECT_TRUE(scanner.atEnd());
  EXPECT_FALSE(scanner.startsWith('\0'));
  EXPECT_FALSE(scanner.matchPrefix("a"));
  EXPECT_TRUE(scanner.matchPrefix(""));
  scanner.skipBlanksAndNewlines();
  scanner.finishLine();
  EXPECT_EQ(scanner.takeUntilNewline(), "");
  EXPECT_EQ(scanner.readInteger(), std::nullopt);
  EXPECT_EQ(scanner.readDouble(), std::nullopt);
  EXPECT_EQ(scanner.rest(), "");
}

struct IntegerCase {
  std::string_view text;
  std::int64_t value;
  std::string_view rest;
};

TEST(TextScanner, ReadsIntegers) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  for (const IntegerCase& one : std::vector<IntegerCase>{
           {"0", 0, ""},
           {"+5", 5, ""},
           {"-7 8", -7, " 8"},
           {"007", 7, ""},
           {"12a", 12, "a"},
           {"1.5", 1, ".5"},
           {"0x10", 0, "x10"},
           {"-0", 0, ""},
           {"9223372036854775807", kMost, ""},
           {"9223372036854775808", kMost, ""},
           {"9223372036854775809x", kMost, "x"},
           {"-9223372036854775807", kLeast + 1, ""},
           {"-9223372036854775808", kLeast, ""},
           {"-9223372036854775809", kLeast, ""},
           {"18446744073709551615", kMost, ""},
           {"18446744073709551616", kMost, ""},
           {"99999999999999999999 1", kMost, " 1"},
           {"-99999999999999999999999999999999", kLeast, ""},
           {"00000000000000000000000000042", 42, ""},
       }) {
    TextScanner scanner(one.text);
    EXPECT_EQ(scanner.readInteger(), one.value) << one.text;
    EXPECT_EQ(scanner.rest(), one.rest) << one.text;
  }
}

TEST(TextScanner, ReadsNoIntegerWhereThereIsNone) {
  for (const std::string_view text : {"", "-", "+", "--1", "+-1", " 1", "a1", ".5", "- 1",
                                      "\xD9\xA1" /* ARABIC-INDIC DIGIT ONE */}) {
    TextScanner scanner(text);
    EXPECT_EQ(scanner.readInteger(), std::nullopt) << text;
    EXPECT_EQ(scanner.rest(), text);
  }
}

}  // namespace
}  // namespace veq::internal::text_scanner_test
