#include "veq/base/internal/digit_text.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace veq::internal::digit_text_test {
namespace {

class DigitText : public testing::Test {
 protected:
  void SetUp() override {
    if (!kEightDigitsAtOnce) GTEST_SKIP() << "This processor's words begin with the other end.";
  }
};

void expectLeading(const char* eight, std::uint64_t value, unsigned count) {
  const Digits digits = leadingDigits(eight);
  EXPECT_EQ(digits.value, value) << eight;
  EXPECT_EQ(digits.count, count) << eight;
}

TEST_F(DigitText, ReadsFromNoneToEightDigits) {
  expectLeading("x2345678", 0, 0);
  expectLeading("1x345678", 1, 1);
  expectLeading("12x45678", 12, 2);
  expectLeading("123x5678", 123, 3);
  expectLeading("1234x678", 1234, 4);
  expectLeading("12345x78", 12345, 5);
  expectLeading("123456x8", 123456, 6);
  expectLeading("1234567x", 1234567, 7);
  expectLeading("12345678", 12345678, 8);
  expectLeading("00000000", 0, 8);
  expectLeading("00090000", 90000, 8);
  expectLeading("99999999", 99999999, 8);
  expectLeading("0 999999", 0, 1);
}

TEST_F(DigitText, StopsAtEveryByteThatIsNoDigit) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    if (byte >= '0' && byte <= '9') continue;
    for (unsigned place = 0; place < 8; ++place) {
      std::string eight = "99999999";
      eight[place] = static_cast<char>(byte);
      std::uint64_t value = 0;
      for (unsigned digit = 0; digit < place; ++digit) value = 10 * value + 9;
      expectLeading(eight.c_str(), value, place);
    }
  }
}

std::string written(std::uint64_t value) {
  char text[] = "........";
  return {text, writeUpToEightDigits(text, value)};
}

TEST_F(DigitText, WritesNoLeadingZeros) {
  EXPECT_EQ(written(0), "0");
  EXPECT_EQ(written(9), "9");
  EXPECT_EQ(written(10), "10");
  EXPECT_EQ(written(99), "99");
  EXPECT_EQ(written(100), "100");
  EXPECT_EQ(written(9999), "9999");
  EXPECT_EQ(written(10000), "10000");
  EXPECT_EQ(written(1000000), "1000000");
  EXPECT_EQ(written(20406080), "20406080");
  EXPECT_EQ(written(99999999), "99999999");
}

// Each half of a number meets all four digits that it can have.
TEST_F(DigitText, WritesEveryFourDigits) {
  for (std::uint64_t four = 0; four < 10000; ++four) {
    ASSERT_EQ(written(four), std::to_string(four));
    ASSERT_EQ(written(12340000 + four), std::to_string(12340000 + four));
    ASSERT_EQ(written(four * 10000 + 5), std::to_string(four * 10000 + 5));
  }
}

}  // namespace
}  // namespace veq::internal::digit_text_test
