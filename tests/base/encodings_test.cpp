#include "veq/base/internal/encodings.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace veq::internal::encodings_test {
namespace {

using namespace std::string_view_literals;

TEST(Encodings, ValidUtf8) {
  for (const std::string_view text :
       {""sv, "plain ASCII of more than eight bytes"sv, "\0"sv, "\x7F"sv, "\xC2\x80"sv,
        "\xDF\xBF"sv, "\xE0\xA0\x80"sv, "\xED\x9F\xBF"sv, "\xEE\x80\x80"sv, "\xEF\xBF\xBF"sv,
        "\xF0\x90\x80\x80"sv, "\xF4\x8F\xBF\xBF"sv, "12345678\xC3\xA9"sv, "\xC3\xA9 12345678"sv}) {
    EXPECT_TRUE(isValidUtf8(text)) << text;
  }
}

TEST(Encodings, InvalidUtf8) {
  for (const std::string_view bytes : {
           "\x80"sv,
           "\xBF"sv,
           "\xC0\x80"sv,
           "\xC1\xBF"sv,  // alone, overlong
           "\xE0\x80\x80"sv,
           "\xE0\x9F\xBF"sv,  // overlong
           "\xF0\x80\x80\x80"sv,
           "\xF0\x8F\xBF\xBF"sv,  // overlong
           "\xED\xA0\x80"sv,
           "\xED\xBF\xBF"sv,  // surrogates
           "\xF4\x90\x80\x80"sv,
           "\xF5\x80\x80\x80"sv,  // above U+10FFFF
           "\xFE"sv,
           "\xFF"sv,  // never
           "\xC2"sv,
           "\xE2\x82"sv,
           "\xF0\x9F\x98"sv,
           "12345678\xC3"sv,  // truncated
           "\xC3\x41"sv,
           "\xE2\x41\x80"sv,
           "\xE2\x82\x41"sv,
           "\xF0\x9F\x98\x41"sv,
       }) {
    EXPECT_FALSE(isValidUtf8(bytes)) << testing::PrintToString(std::string(bytes));
  }
}

TEST(Encodings, Latin1ToUtf8) {
  EXPECT_EQ(utf8FromLatin1("caf\xE9"), "caf\xC3\xA9");
  EXPECT_EQ(utf8FromLatin1("\x80\xBF\xC0\xFF"), "\xC2\x80\xC2\xBF\xC3\x80\xC3\xBF");
  EXPECT_EQ(utf8FromLatin1("a\0b"sv), "a\0b"sv);
  EXPECT_EQ(utf8FromLatin1(""), "");
}

TEST(Encodings, Utf8ToLatin1) {
  EXPECT_EQ(latin1FromUtf8("caf\xC3\xA9!"), "caf\xE9!");
  EXPECT_EQ(latin1FromUtf8("\xC2\x80\xC2\xBF\xC3\x80\xC3\xBF"), "\x80\xBF\xC0\xFF");
  EXPECT_EQ(latin1FromUtf8(""), "");
  EXPECT_EQ(latin1FromUtf8("\xC4\x80"), std::nullopt);      // U+0100
  EXPECT_EQ(latin1FromUtf8("\xE2\x82\xAC"), std::nullopt);  // the euro sign
  EXPECT_EQ(latin1FromUtf8("\xF0\x9F\x98\x80"), std::nullopt);
  EXPECT_EQ(latin1FromUtf8("caf\xE9"), std::nullopt);  // not UTF-8
  EXPECT_EQ(latin1FromUtf8("\xC3"), std::nullopt);
}

TEST(Encodings, EveryByteOfLatin1ComesBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(latin1FromUtf8(utf8FromLatin1(all)), all);
}

TEST(Encodings, Utf16InEitherOrder) {
  // a, e acute, the euro sign, U+1F600.
  constexpr auto kText = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"sv;
  EXPECT_EQ(utf8FromUtf16("a\0\xE9\0\xAC\x20\x3D\xD8\x00\xDE"sv, ByteOrder::kLittleEndian), kText);
  EXPECT_EQ(utf8FromUtf16("\0a\0\xE9\x20\xAC\xD8\x3D\xDE\x00"sv, ByteOrder::kBigEndian), kText);
  EXPECT_EQ(utf8FromUtf16("", ByteOrder::kBigEndian), "");
  EXPECT_EQ(utf8FromUtf16("\xDB\xFF\xDF\xFF"sv, ByteOrder::kBigEndian), "\xF4\x8F\xBF\xBF");
}

TEST(Encodings, BrokenUtf16IsNoText) {
  EXPECT_EQ(utf8FromUtf16("a", ByteOrder::kLittleEndian), std::nullopt);
  EXPECT_EQ(utf8FromUtf16("\xD8\x3D"sv, ByteOrder::kBigEndian), std::nullopt);
  EXPECT_EQ(utf8FromUtf16("\xD8\x3D\0a"sv, ByteOrder::kBigEndian), std::nullopt);
  EXPECT_EQ(utf8FromUtf16("\xD8\x3D\xD8\x3D"sv, ByteOrder::kBigEndian), std::nullopt);
  EXPECT_EQ(utf8FromUtf16("\xD8\x3D\xE0\x00"sv, ByteOrder::kBigEndian), std::nullopt);
  EXPECT_EQ(utf8FromUtf16("\xDE\x00\xD8\x3D"sv, ByteOrder::kBigEndian), std::nullopt);
  EXPECT_EQ(utf8FromUtf16("\xDE\x00\xDE\x00"sv, ByteOrder::kBigEndian), std::nullopt);
}

TEST(Encodings, OneByteOrderMarkIsDropped) {
  EXPECT_EQ(withoutByteOrderMark("\xEF\xBB\xBFx"), "x");
  EXPECT_EQ(withoutByteOrderMark("\xEF\xBB\xBF\xEF\xBB\xBFx"), "\xEF\xBB\xBFx");
  EXPECT_EQ(withoutByteOrderMark("\xEF\xBB"), "\xEF\xBB");
  EXPECT_EQ(withoutByteOrderMark("x\xEF\xBB\xBF"), "x\xEF\xBB\xBF");
  EXPECT_EQ(withoutByteOrderMark(""), "");
}

TEST(Encodings, TheMarkDecidesThenUtf8ThenLatin1) {
  EXPECT_EQ(decodeAutomatically("\xEF\xBB\xBF\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(decodeAutomatically(std::string("\xFF\xFE\xE9\0"sv)), "\xC3\xA9");
  EXPECT_EQ(decodeAutomatically(std::string("\xFE\xFF\0\xE9"sv)), "\xC3\xA9");
  EXPECT_EQ(decodeAutomatically("caf\xC3\xA9"), "caf\xC3\xA9");
  EXPECT_EQ(decodeAutomatically("caf\xE9"), "caf\xC3\xA9");
  EXPECT_EQ(decodeAutomatically("\xC3\xA9 and \xE9"), "\xC3\x83\xC2\xA9 and \xC3\xA9");
  EXPECT_EQ(decodeAutomatically(""), "");
  EXPECT_EQ(decodeAutomatically("\xFF\xFE"), "");
}

TEST(Encodings, BytesThatBreakTheirMarkAreNoText) {
  EXPECT_EQ(decodeAutomatically("\xEF\xBB\xBF\xE9"), std::nullopt);
  EXPECT_EQ(decodeAutomatically("\xFF\xFEx"), std::nullopt);
  EXPECT_EQ(decodeAutomatically("\xFE\xFF\xDC\x01"), std::nullopt);
}

}  // namespace
}  // namespace veq::internal::encodings_test
