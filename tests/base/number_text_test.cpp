#include "veq/base/internal/number_text.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "tests/support/rounds.hpp"
#include "veq/base/internal/text_scanner.hpp"

namespace veq::internal::number_text_test {
namespace {

template <class Number>
std::string shortest(Number value) {
  std::string out;
  appendShortest(out, value);
  return out;
}

std::string sixDecimals(double value) {
  std::string out;
  appendSixDecimals(out, value);
  return out;
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(NumberText, AppendsIntegers) {
  std::string out = "x";
  appendInteger(out, std::numeric_limits<std::int64_t>::min());
  out += ' ';
  appendInteger(out, std::numeric_limits<std::uint64_t>::max());
  out += ' ';
  appendInteger(out, std::uint64_t{0});
  EXPECT_EQ(out, "x-9223372036854775808 18446744073709551615 0");
}

TEST(NumberText, ShortestTextOfADouble) {
  EXPECT_EQ(shortest(0.0), "0");
  EXPECT_EQ(shortest(-0.0), "-0");
  EXPECT_EQ(shortest(1.0), "1");
  EXPECT_EQ(shortest(-12.0), "-12");
  EXPECT_EQ(shortest(100000.0), "100000");
  EXPECT_EQ(shortest(9007199254740991.0), "9007199254740991");
  EXPECT_EQ(shortest(1e22), "1e+22");
  EXPECT_EQ(shortest(0.1), "0.1");
  EXPECT_EQ(shortest(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(shortest(2.5), "2.5");
  EXPECT_EQ(shortest(1e-7), "1e-07");
  EXPECT_EQ(shortest(1.7976931348623157e308), "1.7976931348623157e+308");
  EXPECT_EQ(shortest(5e-324), "5e-324");
  EXPECT_EQ(shortest(kInfinity), "inf");
  EXPECT_EQ(shortest(-kInfinity), "-inf");
}

TEST(NumberText, ShortestTextOfAFloat) {
  EXPECT_EQ(shortest(0.1f), "0.1");
  EXPECT_EQ(shortest(16777215.0f), "16777215");
  EXPECT_EQ(shortest(1000000.0f), "1000000");
  EXPECT_EQ(shortest(3.4028235e38f), "3.4028235e+38");
  EXPECT_EQ(shortest(-0.0f), "-0");
  EXPECT_EQ(shortest(-std::numeric_limits<float>::infinity()), "-inf");
}

TEST(NumberText, ShortestTextReadsBackBitForBit) {
  std::mt19937_64 random(3);
  for (int round = 0; round < test::rounds(100000); ++round) {
    const double wide = std::bit_cast<double>(random());
    const float narrow = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (std::isfinite(wide)) {
      const std::string text = shortest(wide);
      ASSERT_EQ(std::bit_cast<std::uint64_t>(TextScanner(text).readDouble().value()),
                std::bit_cast<std::uint64_t>(wide));
    }
    if (std::isfinite(narrow)) {
      const std::string text = shortest(narrow);
      ASSERT_EQ(std::bit_cast<std::uint32_t>(TextScanner(text).readFloat().value()),
                std::bit_cast<std::uint32_t>(narrow));
    }
  }
}

TEST(NumberText, SixDecimals) {
  EXPECT_EQ(sixDecimals(0.0), "0.000000");
  EXPECT_EQ(sixDecimals(-0.0), "-0.000000");
  EXPECT_EQ(sixDecimals(1.0), "1.000000");
  EXPECT_EQ(sixDecimals(2.5), "2.500000");
  EXPECT_EQ(sixDecimals(-0.5), "-0.500000");
  EXPECT_EQ(sixDecimals(double{0.1f}), "0.100000");
  EXPECT_EQ(sixDecimals(1e-7), "0.000000");
  EXPECT_EQ(sixDecimals(-1e-7), "-0.000000");
  EXPECT_EQ(sixDecimals(0.9999999), "1.000000");
  EXPECT_EQ(sixDecimals(9.9999996), "10.000000");
  EXPECT_EQ(sixDecimals(123456.789), "123456.789000");
  EXPECT_EQ(sixDecimals(9007199254740991.0), "9007199254740991.000000");
  EXPECT_EQ(sixDecimals(9007199254740992.0), "9007199254740992.000000");
  EXPECT_EQ(sixDecimals(4503599627370495.5), "4503599627370495.500000");
  EXPECT_EQ(sixDecimals(1e22), "10000000000000000000000.000000");
  EXPECT_EQ(sixDecimals(5e-324), "0.000000");
  EXPECT_EQ(sixDecimals(kInfinity), "inf");
  EXPECT_EQ(sixDecimals(-kInfinity), "-inf");
}

// inf - inf has the sign on x86 and none on ARM.
TEST(NumberText, ANanHasNoSign) {
  for (const double nan : {kNan, std::copysign(kNan, -1.0), std::copysign(kNan, 1.0)}) {
    EXPECT_EQ(shortest(nan), "nan");
    EXPECT_EQ(shortest(static_cast<float>(nan)), "nan");
    EXPECT_EQ(sixDecimals(nan), "nan");
  }
}

TEST(NumberText, SixDecimalsOfExactHalvesGoToTheEvenDigit) {
  EXPECT_EQ(sixDecimals(0.0078125), "0.007812");  // 2^-7
  EXPECT_EQ(sixDecimals(0.0234375), "0.023438");  // 3 x 2^-7
  EXPECT_EQ(sixDecimals(0.0000005), "0.000000");  // below the half in binary
  EXPECT_EQ(sixDecimals(0.00000050000001), "0.000001");
  EXPECT_EQ(sixDecimals(1024.0078125), "1024.007812");
}

TEST(NumberText, TheGreatestDoubleHas309DigitsBeforeThePoint) {
  const std::string text = sixDecimals(1e308);
  EXPECT_EQ(text.size(), 309u + 7u);
  EXPECT_EQ(text.substr(0, 18), "100000000000000001");
  EXPECT_EQ(text.substr(309), ".000000");
  EXPECT_EQ(sixDecimals(-std::numeric_limits<double>::max()).size(), 1u + 309u + 7u);
}

void expectLikePrintf(double value) {
  if (std::isnan(value)) return;
  char text[400];
  std::snprintf(text, sizeof text, "%f", value);
  ASSERT_EQ(sixDecimals(value), text);
}

TEST(NumberText, SixDecimalsAgreeWithPrintf) {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> unit(0, 1);
  for (int round = 0; round < test::rounds(100000); ++round) {
    expectLikePrintf(std::bit_cast<double>(random()));
    expectLikePrintf(double{std::bit_cast<float>(static_cast<std::uint32_t>(random()))});
    expectLikePrintf(unit(random));
    expectLikePrintf(std::ldexp(unit(random), static_cast<int>(random() % 100) - 50));
    // Few bits: whole numbers, halves and ties at the seventh decimal.
    expectLikePrintf(
        std::ldexp(static_cast<double>(random() % 4096), -static_cast<int>(random() % 30)));
    expectLikePrintf(static_cast<double>(random() % 100000000) / 1e7);
  }
}

}  // namespace
}  // namespace veq::internal::number_text_test
