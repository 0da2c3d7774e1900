#include "veq/base/internal/uint128.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

#include "veq/base/internal/portable_uint128.hpp"

namespace veq::internal::uint128_test {
namespace {

using Wide = PortableUint128;

Wide wide(std::uint64_t high, std::uint64_t low) { return Wide{high} << 64 | low; }

std::uint64_t high(Wide value) { return static_cast<std::uint64_t>(value >> 64); }
std::uint64_t low(Wide value) { return static_cast<std::uint64_t>(value); }

void expectWords(Wide value, std::uint64_t expectedHigh, std::uint64_t expectedLow) {
  EXPECT_EQ(high(value), expectedHigh);
  EXPECT_EQ(low(value), expectedLow);
}

TEST(PortableUint128, CarriesAndBorrowsBetweenItsWords) {
  expectWords(Wide{UINT64_MAX} + 1, 1, 0);
  expectWords(wide(1, 0) - 1, 0, UINT64_MAX);
  expectWords(Wide{0} - 1, UINT64_MAX, UINT64_MAX);
  expectWords(Wide{-1}, UINT64_MAX, UINT64_MAX);
  expectWords(~Wide{0} + 2, 0, 1);
  Wide counter = UINT64_MAX;
  expectWords(++counter, 1, 0);
  expectWords(counter += UINT64_MAX, 1, UINT64_MAX);
}

// (2^64 - 1)^2 is 2^128 - 2^65 + 1; (2^64 + 1)^2 is 2^128 + 2^65 + 1.
TEST(PortableUint128, Multiplies) {
  expectWords(Wide{UINT64_MAX} * UINT64_MAX, UINT64_MAX - 1, 1);
  expectWords(wide(1, 1) * wide(1, 1), 2, 1);
  expectWords(Wide{std::uint64_t{1} << 32} * (std::uint64_t{1} << 32), 1, 0);
}

// 2^128 - 1 is 3 x 5 x 17 x 257 x 65537 x ..., and 2^64 + 1 times 2^64 - 1.
TEST(PortableUint128, Divides) {
  expectWords(~Wide{0} / wide(1, 1), 0, UINT64_MAX);
  expectWords(~Wide{0} / UINT64_MAX, 1, 1);
  expectWords(~Wide{0} / 1, UINT64_MAX, UINT64_MAX);
  expectWords(~Wide{0} / ~Wide{0}, 0, 1);
  expectWords((~Wide{0} - 1) / ~Wide{0}, 0, 0);
  expectWords(wide(7, 0) / 2, 3, std::uint64_t{1} << 63);
  expectWords(wide(7, 9) % wide(2, 1), 1, 6);  // 3 (2^65 + 1) + 2^64 + 6
  Wide halved = 9;
  expectWords(halved /= 2, 0, 4);
}

TEST(PortableUint128, ComparesTheHigherWordFirst) {
  EXPECT_LT(wide(1, 5), wide(2, 0));
  EXPECT_LT(wide(1, 4), wide(1, 5));
  EXPECT_GE(wide(1, 0), Wide{UINT64_MAX});
  EXPECT_NE(wide(1, 1), Wide{1});
}

TEST(PortableUint128, BecomesTheNearestDouble) {
  EXPECT_EQ(static_cast<double>(Wide{5}), 5.0);
  EXPECT_EQ(static_cast<double>(wide(1, 0)), 0x1p64);
  EXPECT_EQ(static_cast<double>(~Wide{0}), 0x1p128);
  // Between 2^64 and 2^65 doubles lie 2^12 apart: 2^11 is half of that, and goes to the even one.
  EXPECT_EQ(static_cast<double>(wide(1, 0x800)), 0x1p64);
  EXPECT_EQ(static_cast<double>(wide(1, 0x801)), 0x1p64 + 0x1p12);
  EXPECT_EQ(static_cast<double>(wide(1, 0x1800)), 0x1p64 + 0x1p13);
  // A single bit far below decides, too.
  EXPECT_EQ(static_cast<double>((Wide{1} << 127) + (Wide{1} << 74)), 0x1p127);
  EXPECT_EQ(static_cast<double>((Wide{1} << 127) + (Wide{1} << 74) + 1), 0x1p127 + 0x1p75);
}

TEST(PortableUint128, TakesADoubleWithoutItsFraction) {
  expectWords(Wide(0.0), 0, 0);
  expectWords(Wide(7.875), 0, 7);
  expectWords(Wide(0x1p64), 1, 0);
  expectWords(Wide(0x1.8p63), 0, std::uint64_t{3} << 62);
  // 53 bits around the middle: 2^90 + 2^38.
  expectWords(Wide(0x1p90 + 0x1p38), std::uint64_t{1} << 26, std::uint64_t{1} << 38);
  expectWords(Wide(0x1.fffffffffffffp127), 0xFFFFFFFFFFFFF800U, 0);
}

#if defined(__SIZEOF_INT128__)
TEST(PortableUint128, AgreesWithTheTypeOfTheCompiler) {
  std::mt19937_64 random(12);
  // Of any length, so that words without bits and full ones occur.
  const auto draw = [&random] { return random() >> (random() % 65 % 64); };
  for (int round = 0; round < 20000; ++round) {
    const std::uint64_t words[] = {random() % 2 ? draw() : 0, draw(), random() % 2 ? draw() : 0,
                                   draw()};
    const Wide a = wide(words[0], words[1]);
    const Wide b = wide(words[2], words[3]);
    const Uint128 x = Uint128{words[0]} << 64 | words[1];
    const Uint128 y = Uint128{words[2]} << 64 | words[3];
    const auto expectSame = [&](Wide value, Uint128 expected) {
      ASSERT_EQ(high(value), static_cast<std::uint64_t>(expected >> 64));
      ASSERT_EQ(low(value), static_cast<std::uint64_t>(expected));
    };
    const int shift = static_cast<int>(random() % 128);
    expectSame(a + b, x + y);
    expectSame(a - b, x - y);
    expectSame(a * b, x * y);
    if (y != 0) {
      expectSame(a / b, x / y);
      expectSame(a % b, x % y);
    }
    expectSame(a & b, x & y);
    expectSame(a | b, x | y);
    expectSame(~a, ~x);
    expectSame(a << shift, x << shift);
    expectSame(a >> shift, x >> shift);
    ASSERT_EQ(a < b, x < y);
    ASSERT_EQ(a == b, x == y);
    ASSERT_EQ(static_cast<double>(a), static_cast<double>(x));
    if (const auto value = static_cast<double>(x); value < 0x1p128) {
      expectSame(Wide(value), static_cast<Uint128>(value));
    }
  }
}
#endif

}  // namespace
}  // namespace veq::internal::uint128_test
