#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "tests/support/comma_locale.hpp"
#include "tests/support/rounds.hpp"
#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/text_scanner.hpp"

namespace veq::internal::number_reading_test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();

std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }
std::uint32_t bitsOf(float value) { return std::bit_cast<std::uint32_t>(value); }

double readWhole(const std::string& text) {
  TextScanner scanner(text);
  const std::optional<double> value = scanner.readDouble();
  EXPECT_TRUE(value.has_value()) << text;
  EXPECT_TRUE(scanner.atEnd()) << text;
  return value.value_or(std::numeric_limits<double>::quiet_NaN());
}

float readWholeFloat(const std::string& text) {
  TextScanner scanner(text);
  const std::optional<float> value = scanner.readFloat();
  EXPECT_TRUE(value.has_value()) << text;
  EXPECT_TRUE(scanner.atEnd()) << text;
  return value.value_or(std::numeric_limits<float>::quiet_NaN());
}

/// A text too long to write down: `before`, `count` times `digit`, `after`.
std::string longText(std::string_view before, std::size_t count, char digit,
                     std::string_view after) {
  std::string text(before);
  text.append(count, digit);
  text.append(after);
  return text;
}

struct NumberCase {
  std::string_view text;
  double value;
  std::string_view rest;
};

TEST(NumberReading, TakesSignDigitsPointAndExponentOnly) {
  for (const NumberCase& one : std::vector<NumberCase>{
           {"+5", 5, ""},           {"-5", -5, ""},        {".5", 0.5, ""},
           {"5.", 5, ""},           {"-.5x", -0.5, "x"},   {"1.2.3", 1.2, ".3"},
           {"1e5", 100000, ""},     {"1E+5", 100000, ""},  {"1e-2", 0.01, ""},
           {"1e", 1, "e"},          {"1e+", 1, "e+"},      {"1e-x", 1, "e-x"},
           {"5.e1", 50, ""},        {".5e1", 5, ""},       {"0x10", 0, "x10"},
           {"1e5.5", 100000, ".5"}, {"1,5", 1, ",5"},      {"2 3", 2, " 3"},
           {"1d5", 1, "d5"},        {"00012.5", 12.5, ""}, {"1e0000000000000000000005", 1e5, ""},
           {"0.000", 0, ""},        {"7\n", 7, "\n"},
       }) {
    TextScanner scanner(one.text);
    EXPECT_EQ(scanner.readDouble(), one.value) << one.text;
    EXPECT_EQ(scanner.rest(), one.rest) << one.text;
    TextScanner again(one.text);
    EXPECT_EQ(again.readFloat(), static_cast<float>(one.value)) << one.text;
    EXPECT_EQ(again.rest(), one.rest) << one.text;
  }
}

TEST(NumberReading, FindsNoNumberInWordsAndSigns) {
  for (const std::string_view text :
       {"",    ".",     "-",   "+",    "-.", "e5",  ".e5", "+e1", "inf", "-inf", "infinity",
        "nan", "Nancy", "NaN", "Info", " 1", "\n1", "--1", "+-1", "x",   ",5"}) {
    TextScanner scanner(text);
    EXPECT_EQ(scanner.readDouble(), std::nullopt) << text;
    EXPECT_EQ(scanner.readFloat(), std::nullopt) << text;
    EXPECT_EQ(scanner.rest(), text);
  }
}

TEST(NumberReading, KeepsTheSignOfZero) {
  EXPECT_EQ(bitsOf(readWhole("-0.0")), 0x8000000000000000u);
  EXPECT_EQ(bitsOf(readWhole("0")), 0u);
  EXPECT_EQ(bitsOf(readWhole("-0e999999999999999999999")), 0x8000000000000000u);
  EXPECT_EQ(bitsOf(readWholeFloat("-0")), 0x80000000u);
  EXPECT_EQ(bitsOf(readWholeFloat("-1e-60")), 0x80000000u);
}

TEST(NumberReading, OverflowsToInfinityAndUnderflowsToZero) {
  EXPECT_EQ(bitsOf(readWhole("1e308")), 0x7FE1CCF385EBC8A0u);
  EXPECT_EQ(readWhole("1e309"), kInfinity);
  EXPECT_EQ(readWhole("-1e309"), -kInfinity);
  EXPECT_EQ(readWhole("1e99999999999999999999999"), kInfinity);
  EXPECT_EQ(bitsOf(readWhole("1.7976931348623157e308")), 0x7FEFFFFFFFFFFFFFu);
  // Around 2^1024 - 2^970, half a unit above the greatest double.
  EXPECT_EQ(readWhole("1.7976931348623158079372897140530341508e308"), kInfinity);
  EXPECT_EQ(bitsOf(readWhole("1.7976931348623158079372897140530341507e308")), 0x7FEFFFFFFFFFFFFFu);
  EXPECT_EQ(bitsOf(readWhole("4.9e-324")), 1u);
  EXPECT_EQ(bitsOf(readWhole("2.5e-324")), 1u);
  EXPECT_EQ(bitsOf(readWhole("2.4e-324")), 0u);
  EXPECT_EQ(bitsOf(readWhole("2.2250738585072014e-308")), 0x0010000000000000u);
  EXPECT_EQ(bitsOf(readWhole("2.2250738585072011e-308")), 0x000FFFFFFFFFFFFFu);
  EXPECT_EQ(bitsOf(readWhole("1e-400")), 0u);
  EXPECT_EQ(bitsOf(readWhole("-1e-400")), 0x8000000000000000u);
  EXPECT_EQ(bitsOf(readWhole("-1e-99999999999999999999999")), 0x8000000000000000u);
}

TEST(NumberReading, FloatsHaveTheirOwnRange) {
  EXPECT_EQ(bitsOf(readWholeFloat("3.4028235e38")), 0x7F7FFFFFu);
  EXPECT_EQ(bitsOf(readWholeFloat("3.40282356e38")), 0x7F7FFFFFu);
  EXPECT_EQ(readWholeFloat("3.40282357e38"), kFloatInfinity);
  EXPECT_EQ(readWholeFloat("1e39"), kFloatInfinity);
  EXPECT_EQ(readWholeFloat("-1e309"), -kFloatInfinity);
  EXPECT_EQ(bitsOf(readWholeFloat("1.4e-45")), 1u);
  EXPECT_EQ(bitsOf(readWholeFloat("7.1e-46")), 1u);
  EXPECT_EQ(bitsOf(readWholeFloat("7.0e-46")), 0u);
  EXPECT_EQ(bitsOf(readWholeFloat("1.17549435e-38")), 0x00800000u);
}

TEST(NumberReading, RoundsTiesToEvenAndEveryFurtherDigitCounts) {
  // 2^53 + 1 lies half-way between two doubles.
  EXPECT_EQ(readWhole("9007199254740993"), 9007199254740992.0);
  EXPECT_EQ(readWhole("9007199254740993.0000000000000000"), 9007199254740992.0);
  EXPECT_EQ(readWhole("9007199254740993.0000000000000001"), 9007199254740994.0);
  EXPECT_EQ(readWhole("9007199254740995"), 9007199254740996.0);
  EXPECT_EQ(readWhole(longText("9007199254740993.", 2000, '0', "")), 9007199254740992.0);
  EXPECT_EQ(readWhole(longText("9007199254740993.", 2000, '0', "1")), 9007199254740994.0);
  EXPECT_EQ(readWhole(longText("9007199254740993", 2000, '0', "e-2000")), 9007199254740992.0);
}

/// The digits of n x 5^power, which are those of n x 2^-power: multiplied on paper.
std::string timesPowerOfFive(std::uint64_t n, int power) {
  std::string digits = std::to_string(n);  // the last first
  std::reverse(digits.begin(), digits.end());
  for (; power > 0; --power) {
    int carry = 0;
    for (char& digit : digits) {
      carry += 5 * (digit - '0');
      digit = static_cast<char>('0' + carry % 10);
      carry /= 10;
    }
    if (carry > 0) digits += static_cast<char>('0' + carry);
  }
  std::reverse(digits.begin(), digits.end());
  return digits;
}

// The longest decimals that lie half-way between two doubles: odd multiples of 2^-1075. Their last
// digit decides, and so does one behind it.
TEST(NumberReading, EveryDigitOfATieBetweenTheLeastDoublesCounts) {
  const std::string three = timesPowerOfFive(3, 1075);
  ASSERT_EQ(three.size(), 752U);
  EXPECT_EQ(three.substr(0, 8), "74109846");  // 3 x 2.4703282292062327e-324, the half of the least
  EXPECT_EQ(bitsOf(readWhole(three + "e-1075")), 2U);
  EXPECT_EQ(bitsOf(readWhole(three + "1e-1076")), 2U);
  EXPECT_EQ(bitsOf(readWhole(three.substr(0, 751) + "4e-1075")), 1U);
  EXPECT_EQ(bitsOf(readWhole("0." + three.substr(0, 400) + "e-323")), 1U);
  const std::string five = timesPowerOfFive(5, 1075);
  EXPECT_EQ(bitsOf(readWhole(five + "e-1075")), 2U);
  EXPECT_EQ(bitsOf(readWhole(five + "00000000000000000000000001e-1101")), 3U);
  // Half a unit below 2^-1021: no tie has more digits.
  const std::string most = timesPowerOfFive(18014398509481983, 1075);
  ASSERT_EQ(most.size(), 768U);
  EXPECT_EQ(bitsOf(readWhole(most + "e-1075")), 0x0020000000000000U);
  EXPECT_EQ(bitsOf(readWhole(most.substr(0, 767) + "4e-1075")), 0x001FFFFFFFFFFFFFU);
}

TEST(NumberReading, RoundsOnceToAFloat) {
  // 2^24 + 1 lies half-way between two floats.
  EXPECT_EQ(readWholeFloat("16777217"), 16777216.0f);
  EXPECT_EQ(readWholeFloat("16777219"), 16777220.0f);
  // As a double both are the tie itself; only the float's own rounding sees the last digit.
  EXPECT_EQ(readWholeFloat("16777217.0000000000001"), 16777218.0f);
  EXPECT_EQ(readWholeFloat("16777218.9999999999999"), 16777218.0f);
  // 1 + 2^-24 is the tie above 1.
  EXPECT_EQ(bitsOf(readWholeFloat("1.000000059604644775390625")), 0x3F800000u);
  EXPECT_EQ(bitsOf(readWholeFloat("1.000000059604644775390626")), 0x3F800001u);
  EXPECT_EQ(bitsOf(readWholeFloat("1.000000059604644775390624")), 0x3F800000u);
}

TEST(NumberReading, ADoubleThatIsATieBetweenFloatsIsNotTrusted) {
  // Found with exact fractions: the nearest double of each lies half-way between two floats, the
  // number itself on the side that rounding that double to even would miss.
  EXPECT_EQ(bitsOf(readWholeFloat("4543410483393018e-22")), 0x34F3EC29u);
  EXPECT_EQ(bitsOf(readWholeFloat("6493754369785165e-22")), 0x352E50BDu);
  EXPECT_EQ(bitsOf(readWholeFloat("7797453508828767e-20")), 0x38A38643u);
  EXPECT_EQ(bitsOf(readWholeFloat("7920752614154480e-20")), 0x38A61C37u);
  EXPECT_EQ(bitsOf(readWholeFloat("5821939138924196e9")), 0x689A1AFFu);
  EXPECT_EQ(bitsOf(readWholeFloat("-9000557072873032e22")), 0xFE876CE3u);
  EXPECT_EQ(bitsOf(readWholeFloat("5667169675175484e22")), 0x7E2A8A49u);
}

TEST(NumberReading, LongTextsMoveTheExponentExactly) {
  EXPECT_EQ(readWhole(longText("0.", 5000, '0', "25e5001")), 2.5);
  EXPECT_EQ(readWhole(longText("25", 5000, '0', "e-5001")), 2.5);
  EXPECT_EQ(readWhole(longText("", 5000, '0', "25")), 25.0);
  EXPECT_EQ(readWhole(longText("1", 5000, '0', "")), kInfinity);
  EXPECT_EQ(readWhole(longText("0.", 5000, '0', "1")), 0.0);
  EXPECT_EQ(readWhole(longText("", 5000, '3', "e-4999")), 3.3333333333333335);
}

TEST(NumberReading, LeadingNumbersReadAsFarAsTheyGo) {
  EXPECT_EQ(leadingDouble(" \n2.5kg"), 2.5);
  EXPECT_EQ(leadingDouble("kg"), 0.0);
  EXPECT_EQ(leadingDouble(""), 0.0);
  EXPECT_EQ(leadingDouble("nan"), 0.0);
  EXPECT_EQ(leadingFloat("\t-1e3 2"), -1000.0f);
  EXPECT_EQ(leadingFloat("Info"), 0.0f);
  EXPECT_EQ(leadingInteger(" 12.9"), 12);
  EXPECT_EQ(leadingInteger("-"), 0);
  EXPECT_EQ(leadingInteger("-3"), -3);
}

void expectLikeTheCLibrary(const std::string& text) {
  ASSERT_EQ(bitsOf(readWhole(text)), bitsOf(std::strtod(text.c_str(), nullptr))) << text;
  ASSERT_EQ(bitsOf(readWholeFloat(text)), bitsOf(std::strtof(text.c_str(), nullptr))) << text;
}

TEST(NumberReading, AgreesWithTheCLibraryOnRandomNumbers) {
  std::mt19937_64 random(20240611);
  for (int round = 0; round < test::rounds(20000); ++round) {
    const double wide = std::bit_cast<double>(random());
    const float narrow = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    char text[400];
    for (const char* format : {"%.17g", "%.16g", "%.9g", "%.6e", "%.25e"}) {
      if (std::isfinite(wide)) {
        std::snprintf(text, sizeof text, format, wide);
        expectLikeTheCLibrary(text);
      }
      if (std::isfinite(narrow)) {
        std::snprintf(text, sizeof text, format, static_cast<double>(narrow));
        expectLikeTheCLibrary(text);
      }
    }
  }
}

TEST(NumberReading, AgreesWithTheCLibraryOnRandomDecimals) {
  std::mt19937_64 random(7);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  for (int round = 0; round < test::rounds(100000); ++round) {
    std::string text = below(2) ? "-" : "";
    const unsigned digits = 1 + below(below(8) == 0 ? 60 : 20);
    const unsigned point = below(digits + 1);
    for (unsigned i = 0; i < digits; ++i) {
      if (i == point) text += '.';
      text += static_cast<char>('0' + below(10));
    }
    if (below(2)) text += "e" + std::to_string(static_cast<int>(below(100)) - 50);
    expectLikeTheCLibrary(text);
  }
}

TEST(NumberReading, AgreesWithTheCLibraryHalfWayBetweenNeighbours) {
  std::mt19937_64 random(99);
  for (int round = 0; round < test::rounds(20000); ++round) {
    const auto bits = static_cast<std::uint32_t>(random()) & 0x7F7FFFFFu;
    const double low = std::bit_cast<float>(bits);
    const double high = std::bit_cast<float>(bits + 1);
    if (!std::isfinite(high)) continue;
    char text[400];
    std::snprintf(text, sizeof text, "%.160f", low + (high - low) / 2);
    expectLikeTheCLibrary(text);
    expectLikeTheCLibrary(std::string(text) + "1");
  }
}

TEST(NumberReading, ACommaLocaleChangesNothing) {
  const test::CommaLocale comma;
  if (!comma) GTEST_SKIP() << "no localedef on this machine";
  EXPECT_EQ(std::localeconv()->decimal_point, std::string(","));
  EXPECT_EQ(readWhole("2.5"), 2.5);
  EXPECT_EQ(readWhole("0.1234567890123456789012345"), 0.12345678901234568);
  EXPECT_EQ(TextScanner("2,5").readDouble(), 2.0);
  std::string out;
  appendSixDecimals(out, 2.5);
  appendSixDecimals(out, 1e17);
  appendShortest(out, 0.1);
  EXPECT_EQ(out, "2.500000100000000000000000.0000000.1");
}

}  // namespace
}  // namespace veq::internal::number_reading_test
