#include "veq/numeric/number.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace veq::number_test {
namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

static_assert(!std::is_constructible_v<Number, const char*>, "a pointer is no bool");
static_assert(!std::is_constructible_v<Number, std::nullptr_t>);

TEST(Number, RemembersItsKind) {
  EXPECT_EQ(Number(1).type(), ElementType::kInteger);
  EXPECT_EQ(Number(1U).type(), ElementType::kUnsignedInteger);
  EXPECT_EQ(Number(1.0F).type(), ElementType::kFloat);
  EXPECT_EQ(Number(1.0).type(), ElementType::kDouble);
}

TEST(Number, KindsHaveThePublishedCodes) {
  EXPECT_EQ(static_cast<int>(Number(1.0).type()), 12);
  EXPECT_EQ(static_cast<int>(Number(1).type()), 13);
  EXPECT_EQ(static_cast<int>(Number(1.0F).type()), 14);
  EXPECT_EQ(static_cast<int>(Number(1U).type()), 15);
}

TEST(Number, ABoolIsTheIntegerZeroOrOne) {
  EXPECT_EQ(Number(true), Number(1));
  EXPECT_EQ(Number(false), Number(0));
  EXPECT_EQ(Number(true).type(), ElementType::kInteger);
}

TEST(Number, NumbersOfDifferentKindsDiffer) { EXPECT_NE(Number(1), Number(1.0)); }

TEST(Number, TextIsTheShortestOfItsOwnKind) {
  EXPECT_EQ(Number(-7).text(), "-7");
  EXPECT_EQ(Number(std::numeric_limits<std::uint64_t>::max()).text(), "18446744073709551615");
  EXPECT_EQ(Number(std::numeric_limits<std::int64_t>::min()).text(), "-9223372036854775808");
  EXPECT_EQ(Number(0.1).text(), "0.1");
  EXPECT_EQ(Number(0.1F).text(), "0.1");
  EXPECT_EQ(Number(static_cast<double>(0.1F)).text(), "0.10000000149011612");
  EXPECT_EQ(Number(2.0).text(), "2");
}

TEST(NumberConversion, FloatsToIntegersAreTruncated) {
  EXPECT_EQ(convertNumber<std::int64_t>(2.9), 2);
  EXPECT_EQ(convertNumber<std::int64_t>(-2.9), -2);
  EXPECT_EQ(convertNumber<std::int64_t>(-0.5F), 0);
  EXPECT_EQ(convertNumber<std::uint64_t>(2.9F), 2U);
}

TEST(NumberConversion, FloatsBeyondTheIntegersSaturate) {
  EXPECT_EQ(convertNumber<std::int64_t>(kTwoTo63), 9223372036854775807);
  EXPECT_EQ(convertNumber<std::int64_t>(-kTwoTo63), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(convertNumber<std::int64_t>(-1e300), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(convertNumber<std::int64_t>(kInfinity), 9223372036854775807);
  EXPECT_EQ(convertNumber<std::int64_t>(-kInfinity), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(convertNumber<std::uint64_t>(2 * kTwoTo63), 18446744073709551615U);
  EXPECT_EQ(convertNumber<std::uint64_t>(kInfinity), 18446744073709551615U);
}

TEST(NumberConversion, UnsignedIntegersReachBeyondTheSignedOnes) {
  EXPECT_EQ(convertNumber<std::uint64_t>(kTwoTo63), 9223372036854775808U);
  // The largest double below 2^64 is 2^64 - 2^11.
  EXPECT_EQ(convertNumber<std::uint64_t>(18446744073709549568.0), 18446744073709549568U);
}

TEST(NumberConversion, NegativeNumbersWrapWhenTheyBecomeUnsigned) {
  EXPECT_EQ(convertNumber<std::uint64_t>(-1.0), 18446744073709551615U);
  EXPECT_EQ(convertNumber<std::uint64_t>(-1.0F), 18446744073709551615U);
  EXPECT_EQ(convertNumber<std::uint64_t>(std::int64_t{-1}), 18446744073709551615U);
  EXPECT_EQ(convertNumber<std::int64_t>(std::uint64_t{18446744073709551615U}), -1);
}

TEST(NumberConversion, NotANumberBecomesTheSmallestInteger) {
  EXPECT_EQ(convertNumber<std::int64_t>(kNaN), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(convertNumber<std::uint64_t>(kNaN), 9223372036854775808U);
  EXPECT_EQ(convertNumber<std::int64_t>(static_cast<float>(kNaN)),
            std::numeric_limits<std::int64_t>::min());
}

TEST(NumberConversion, DoublesTooLargeForAFloatBecomeInfinite) {
  EXPECT_EQ(convertNumber<float>(1e300), std::numeric_limits<float>::infinity());
  EXPECT_TRUE(std::isnan(convertNumber<float>(kNaN)));
  EXPECT_TRUE(std::signbit(convertNumber<float>(-0.0)));
}

TEST(NumberConversion, LargeIntegersRoundToTheNearestFloat) {
  EXPECT_EQ(convertNumber<float>(std::int64_t{16777217}), 16777216.0F);
  EXPECT_EQ(convertNumber<double>(std::uint64_t{18446744073709551615U}), 18446744073709551616.0);
}

}  // namespace
}  // namespace veq::number_test
