#include "veq/models/internal/random_engine.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <thread>
#include <vector>

#include "gtest/gtest.h"
#include "veq/base/internal/wide_vectors.hpp"
#include "veq/models/internal/random_blocks.hpp"

namespace veq::internal::random_engine_test {
namespace {

constexpr std::uint32_t kSeeds[] = {0,          1,          2,           42,         123456789,
                                    2147483646, 2147483647, 2147483648U, 4294967295U};

template <class Value>
std::vector<Value> filled(RandomStream stream, std::uint64_t count) {
  std::vector<Value> values(count);
  stream.fill(values.data(), count);
  return values;
}

std::vector<std::uint32_t> stepped(RandomStream stream, std::uint64_t count) {
  std::vector<std::uint32_t> draws(count);
  for (std::uint32_t& draw : draws) draw = stream.next();
  return draws;
}

RandomStream advanced(RandomStream stream, Uint128 count) {
  stream.advance(count);
  return stream;
}

// Recorded from srandom() and random() of the GNU C library: the first eight draws after each seed
// and the one at position 1000000.
struct GoldenVector {
  std::uint32_t seed;
  std::uint32_t first[8];
  std::uint32_t millionth;
};
constexpr GoldenVector kGolden[] = {
    {0U,
     {1804289383, 846930886, 1681692777, 1714636915, 1957747793, 424238335, 719885386, 1649760492},
     771126689},
    {1U,
     {1804289383, 846930886, 1681692777, 1714636915, 1957747793, 424238335, 719885386, 1649760492},
     771126689},
    {2U,
     {1505335290, 1738766719, 190686788, 260874575, 747983061, 906156498, 1502820864, 142559277},
     1435462063},
    {42U,
     {71876166, 708592740, 1483128881, 907283241, 442951012, 537146758, 1366999021, 1854614940},
     1717420429},
    {123456789U,
     {1965102536, 1639725855, 706684578, 1926601937, 71238646, 1147998030, 1038816544, 940714160},
     1897967680},
    {2147483646U,
     {1320593690, 1199968952, 1432693999, 317934276, 69604050, 522196235, 1290561954, 354237423},
     2027002272},
    {2147483647U,
     {1065668062, 2142264300, 1066566375, 1064012770, 2141034222, 1065509725, 2135810236,
      2139491828},
     1604477187},
    {2147483648U,
     {1336741213, 1210407648, 1447044896, 337392383, 82502902, 538660432, 1313908778, 370221063},
     965531546},
    {4294967295U,
     {254925627, 1205188300, 366127624, 1401405153, 76053476, 1604170158, 1302235366, 362229243},
     422525085},
};

TEST(RandomStream, GivesTheRecordedDrawsOfEverySeed) {
  for (const GoldenVector& golden : kGolden) {
    SCOPED_TRACE(golden.seed);
    RandomStream stream = RandomStream::seeded(golden.seed);
    for (const std::uint32_t expected : golden.first) EXPECT_EQ(stream.next(), expected);
    for (int i = 8; i < 1000000; ++i) (void)stream.next();
    EXPECT_EQ(stream.next(), golden.millionth);
    RandomStream jumped = RandomStream::seeded(golden.seed);
    jumped.advance(1000000);
    EXPECT_EQ(jumped.next(), golden.millionth);
  }
}

#ifdef __GLIBC__
TEST(RandomStream, AgreesWithTheCLibraryForManySeeds) {
  std::uint32_t seed = 0;
  for (int i = 0; i < 150; ++i, seed = seed * 2654435761U + 40503U) {
    SCOPED_TRACE(seed);
    RandomStream stream = RandomStream::seeded(seed);
    srandom(seed);
    for (int draw = 0; draw < 4000; ++draw) {
      ASSERT_EQ(stream.next(), static_cast<std::uint32_t>(random())) << draw;
    }
  }
}
#endif

TEST(RandomStream, SeedZeroCountsAsOne) {
  EXPECT_EQ(RandomStream::seeded(0), RandomStream::seeded(1));
  EXPECT_NE(RandomStream::seeded(1), RandomStream::seeded(2));
}

TEST(RandomStream, IsEqualWhereverTheRoundStands) {
  RandomStream stream = RandomStream::seeded(7);
  for (int i = 0; i < 70; ++i) {
    RandomStream same = RandomStream::seeded(1);
    same.setRecent(stream.recent());
    EXPECT_EQ(same, stream) << i;
    EXPECT_EQ(stepped(same, 100), stepped(stream, 100)) << i;
    const RandomStream before = stream;
    (void)stream.next();
    EXPECT_NE(before, stream) << i;
  }
}

TEST(RandomStream, AdvancingEqualsStepping) {
  constexpr std::uint64_t kCounts[] = {0,    1,     2,     30,    31,    32,     61,
                                       62,   309,   310,   311,   992,   4095,   4096,
                                       4097, 10000, 65535, 65536, 99999, 131071, 1000000};
  for (const std::uint64_t offset : {0U, 1U, 17U, 30U, 31U}) {
    RandomStream stream = RandomStream::seeded(42);
    for (std::uint64_t i = 0; i < offset; ++i) (void)stream.next();
    for (const std::uint64_t count : kCounts) {
      RandomStream walked = stream;
      for (std::uint64_t i = 0; i < count; ++i) (void)walked.next();
      EXPECT_EQ(advanced(stream, count), walked) << offset << " then " << count;
      EXPECT_EQ(stepped(advanced(stream, count), 64), stepped(walked, 64));
    }
  }
}

TEST(RandomStream, AdvancesAddUpBeyondSixtyFourBits) {
  const Uint128 one = 1;
  const Uint128 counts[] = {1,
                            4096,
                            (one << 32) + 5,
                            (one << 63) - 1,
                            one << 63,
                            (one << 64) - 1,
                            one << 64,
                            (one << 64) + 1,
                            (one << 100) + 12345,
                            (one << 126) + 999};
  const RandomStream stream = RandomStream::seeded(2026);
  for (const Uint128 a : counts) {
    for (const Uint128 b : counts) {
      EXPECT_EQ(advanced(advanced(stream, a), b), advanced(stream, a + b));
    }
  }
  // 3 x 2^64 draws in three equal jumps.
  const RandomStream third = advanced(stream, one << 64);
  EXPECT_EQ(advanced(advanced(third, one << 64), one << 64), advanced(stream, (one << 64) * 3));
  EXPECT_NE(advanced(stream, one << 64), stream);
  EXPECT_NE(advanced(stream, ~Uint128{0}), stream);
}

TEST(RandomStream, ComesBackAfterAWholePeriodOfTheLowestBits) {
  // x^31 + x^28 + 1 is primitive, so the lowest bit of the words has the period 2^31 - 1.
  const RandomStream stream = RandomStream::seeded(5);
  const RandomStream::Words before = stream.recent();
  const RandomStream::Words after = advanced(stream, (Uint128{1} << 31) - 1).recent();
  EXPECT_NE(before, after);
  for (std::size_t i = 0; i < before.size(); ++i) EXPECT_EQ(before[i] & 1, after[i] & 1) << i;
}

TEST(RandomStream, FillsEqualSteppingAroundAllBorders) {
  std::vector<std::uint64_t> counts(70);
  std::iota(counts.begin(), counts.end(), 0);
  for (const std::uint64_t border : {248ULL, 279ULL, 496ULL, 496ULL + 31, 248ULL + 2048,
                                     248ULL + 2048 + 31, 248ULL + 4096, 12345ULL}) {
    for (std::uint64_t count = border - 9; count <= border + 9; ++count) counts.push_back(count);
  }
  for (const std::uint64_t offset : {0U, 1U, 13U, 30U}) {
    RandomStream start = RandomStream::seeded(99);
    start.advance(offset);
    for (const std::uint64_t count : counts) {
      SCOPED_TRACE(testing::Message() << offset << " then " << count);
      const std::vector<std::uint32_t> expected = stepped(start, count + 40);
      RandomStream stream = start;
      std::vector<std::uint32_t> draws(count + 1, 7);
      stream.fill(draws.data(), count);
      ASSERT_TRUE(std::equal(draws.begin(), draws.end() - 1, expected.begin()));
      EXPECT_EQ(draws[count], 7U);  // nothing is written beyond the count
      EXPECT_EQ(stepped(stream, 40),
                std::vector<std::uint32_t>(expected.end() - 40, expected.end()));
    }
  }
}

TEST(RandomStream, FillsEveryTypeFromTheSameDraws) {
  const RandomStream stream = RandomStream::seeded(31);
  for (const std::uint64_t count : {10ULL, 5000ULL}) {
    const std::vector<std::uint32_t> draws = stepped(stream, count);
    const auto doubles = filled<double>(stream, count);
    const auto floats = filled<float>(stream, count);
    const auto integers = filled<std::int64_t>(stream, count);
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(doubles[i], static_cast<double>(draws[i]) * 4.656612873077393e-10) << i;
      ASSERT_EQ(floats[i], static_cast<float>(draws[i]) * 4.656612873077393e-10F) << i;
      ASSERT_EQ(integers[i], static_cast<std::int64_t>(draws[i])) << i;
    }
  }
}

TEST(RandomStream, ScalesTheLargestDraws) {
  EXPECT_EQ(fromDraw<double>(0), 0.0);
  EXPECT_EQ(fromDraw<double>(2147483647), 1.0 - 0x1p-31);
  EXPECT_EQ(fromDraw<float>(2147483647), 1.0F);
  EXPECT_EQ(fromDraw<float>(2147483584), 1.0F);
  EXPECT_EQ(fromDraw<float>(2147483583), 1.0F - 0x1p-24F);
  EXPECT_EQ(fromDraw<std::int64_t>(2147483647), 2147483647);
}

TEST(RandomBlocks, BothFormsGiveThePlainSequence) {
  for (const std::uint32_t seed : kSeeds) {
    for (const std::uint64_t count : {1ULL, 7ULL, 8ULL, 9ULL, 2047ULL, 2048ULL, 2049ULL, 9000ULL}) {
      SCOPED_TRACE(testing::Message() << seed << ", " << count);
      RandomStream stream = RandomStream::seeded(seed);
      WordBlock plain;
      for (std::uint32_t* words = plain.words; words != plain.words + kHistory; words += 31) {
        stream.advance(31);
        const RandomStream::Words recent = stream.recent();
        std::copy(recent.begin(), recent.end(), words);
      }
      WordBlock wide = plain;
      const std::vector<std::uint32_t> expected = stepped(stream, count);
      std::vector<std::uint32_t> draws(count);
      const std::uint32_t* const end = fillBlocksPlain(plain, draws.data(), count);
      EXPECT_EQ(draws, expected);
      EXPECT_EQ(end[-1] >> 1, expected.back());
      if (!wideVectorsRun()) continue;
      std::fill(draws.begin(), draws.end(), 0);
      fillBlocksWide(wide, draws.data(), count);
      EXPECT_EQ(draws, expected);
    }
  }
}

}  // namespace
}  // namespace veq::internal::random_engine_test
