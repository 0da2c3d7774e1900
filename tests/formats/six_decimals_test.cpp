#include "veq/formats/internal/six_decimals.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/rounds.hpp"
#include "veq/base/internal/number_text.hpp"

namespace veq::internal::six_decimals_test {
namespace {

double throughText(double value) {
  std::string text;
  appendSixDecimals(text, value);
  return leadingDouble(text);
}

TEST(SixDecimals, HalvesOfTheExactValueGoToEven) {
  EXPECT_EQ(throughSixDecimals(0.5), 0.5);
  EXPECT_EQ(throughSixDecimals(1e-7), 0.0);
  EXPECT_EQ(throughSixDecimals(6e-7), 1e-6);
  // 2^-7 is 0.0078125, exactly between 0.007812 and 0.007813.
  EXPECT_EQ(throughSixDecimals(0.0078125), 0.007812);
  EXPECT_EQ(throughSixDecimals(3 * 0.0078125), 0.023438);
  EXPECT_EQ(throughSixDecimals(-0.1), -0.1);
  EXPECT_TRUE(std::signbit(throughSixDecimals(-1e-9)));
  EXPECT_TRUE(std::signbit(throughSixDecimals(-0.0)));
}

TEST(SixDecimals, LargeNumbersStayAndInfinitiesVanish) {
  EXPECT_EQ(throughSixDecimals(1e308), 1e308);
  EXPECT_EQ(throughSixDecimals(4294967296.123456), 4294967296.123456);
  EXPECT_EQ(throughSixDecimals(std::numeric_limits<double>::infinity()), 0.0);
  EXPECT_EQ(throughSixDecimals(-std::numeric_limits<double>::infinity()), 0.0);
}

TEST(SixDecimals, AgreesWithTheTextOfRandomNumbers) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> mantissa(-1, 1);
  std::uniform_int_distribution<int> exponent(-40, 40);
  for (int i = 0; i < test::rounds(20000); ++i) {
    const double value = std::ldexp(mantissa(random), exponent(random));
    EXPECT_EQ(throughSixDecimals(value), throughText(value)) << value;
    const double millionths = std::nearbyint(value * 1e6) / 1e6;
    EXPECT_EQ(throughSixDecimals(millionths), throughText(millionths)) << millionths;
    const double half = (std::nearbyint(value * 1e6) + 0.5) / 1e6;
    EXPECT_EQ(throughSixDecimals(half), throughText(half)) << half;
  }
}

TEST(SixDecimals, FloatsAgreeWithTheirTexts) {
  std::mt19937 random(2);
  std::uniform_real_distribution<float> mantissa(-1, 1);
  std::uniform_int_distribution<int> exponent(-30, 10);
  for (int i = 0; i < test::rounds(100000); ++i) {
    const float value = std::ldexp(mantissa(random), exponent(random));
    std::string text;
    appendSixDecimals(text, value);
    EXPECT_EQ(throughSixDecimals(value), leadingFloat(text)) << value;
  }
  EXPECT_EQ(throughSixDecimals(0.1F), 0.1F);
  EXPECT_EQ(throughSixDecimals(1e-7F), 0.0F);
  EXPECT_EQ(throughSixDecimals(0.0078125F), 0.007812F);
  EXPECT_EQ(throughSixDecimals(15.9999999F), 16.0F);
  EXPECT_EQ(throughSixDecimals(3e38F), 3e38F);
  EXPECT_EQ(throughSixDecimals(-std::numeric_limits<float>::infinity()), 0.0F);
}

}  // namespace
}  // namespace veq::internal::six_decimals_test
