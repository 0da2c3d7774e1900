#include "veq/drawing/internal/page_texts.hpp"

#include <gtest/gtest.h>

#include <string>

#include "veq/base/encodings.hpp"

namespace veq::test::page_texts_test {
namespace {

using internal::appendJsonText;
using internal::asUtf8;
using internal::base64;
using internal::markupText;

TEST(PageTexts, EachByteThatBelongsToNoCharacterIsASign) {
  EXPECT_EQ(asUtf8("Stra\xC3\x9F"
                   "e"),
            "Stra\xC3\x9F"
            "e");
  EXPECT_EQ(asUtf8("a\xFFz"), "a\xEF\xBF\xBDz");
  // The beginning of a character of three bytes, at the end and before another.
  EXPECT_EQ(asUtf8("\xE2\x82"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(asUtf8("\xE2z\xC3\xA9"), "\xEF\xBF\xBDz\xC3\xA9");
  EXPECT_EQ(asUtf8(""), "");
}

TEST(PageTexts, MarkupIsText) {
  EXPECT_EQ(markupText("<b a=\"1\" c='2'>&amp;"),
            "&lt;b a=&quot;1&quot; c=&#39;2&#39;&gt;&amp;amp;");
  // Tab, NUL, DEL and the C1 control U+0085.
  EXPECT_EQ(markupText(std::string("\t\0\x7F\xC2\x85", 5)),
            "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(markupText("\xC2\xA0\xE2\x80\xAE"), "\xC2\xA0\xE2\x80\xAE");
}

TEST(PageTexts, NoByteOfAllBecomesMarkup) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const std::string text = markupText(all);
  EXPECT_TRUE(isUtf8(text));
  EXPECT_EQ(text.find_first_of("<>\"'"), std::string::npos);
  // & stands for itself and in the five names alone.
  for (std::size_t at = text.find('&'); at != std::string::npos; at = text.find('&', at + 1)) {
    EXPECT_LE(text.find(';', at), at + 5);
  }
}

std::string json(std::string_view bytes) {
  std::string text;
  appendJsonText(text, bytes);
  return text;
}

TEST(PageTexts, JsonEscapesWhatItMust) {
  EXPECT_EQ(json("a \"b\" \\ c"), R"("a \"b\" \\ c")");
  EXPECT_EQ(json(std::string("\0\n\x1F\x7F\xC2\x9F", 6)), R"("\u0000\u000a\u001f\u007f\u009f")");
  EXPECT_EQ(json("\xFF</script>"), "\"\xEF\xBF\xBD</script>\"");
}

TEST(PageTexts, Base64IsThatOfTheStandard) {  // RFC 4648, section 10
  EXPECT_EQ(base64(""), "");
  EXPECT_EQ(base64("f"), "Zg==");
  EXPECT_EQ(base64("fo"), "Zm8=");
  EXPECT_EQ(base64("foo"), "Zm9v");
  EXPECT_EQ(base64("foob"), "Zm9vYg==");
  EXPECT_EQ(base64("fooba"), "Zm9vYmE=");
  EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
  EXPECT_EQ(base64("\xFB\xFF\xBF"), "+/+/");
}

}  // namespace
}  // namespace veq::test::page_texts_test
