#include "veq/models/internal/random_hits.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

#include "gtest/gtest.h"

namespace veq::internal::random_hits_test {
namespace {

std::vector<std::uint64_t> slowHits(RandomStream& stream, std::uint64_t total,
                                    std::uint32_t threshold) {
  std::vector<std::uint64_t> hits;
  for (std::uint64_t i = 0; i < total; ++i) {
    if (stream.next() < threshold) hits.push_back(i);
  }
  return hits;
}

void expectEqualToSlowHits(std::uint64_t total, std::uint32_t threshold, bool wideVectors) {
  SCOPED_TRACE(testing::Message() << total << " draws below " << threshold);
  RandomStream stream = RandomStream::seeded(8);
  stream.advance(5);
  RandomStream slow = stream;
  std::vector<std::uint64_t> hits;
  hitsBelow(
      stream, total, threshold,
      [&](std::span<const std::uint64_t> piece) {
        EXPECT_FALSE(piece.empty());
        hits.insert(hits.end(), piece.begin(), piece.end());
      },
      wideVectors);
  EXPECT_EQ(hits, slowHits(slow, total, threshold));
  EXPECT_EQ(stream, slow);
}

TEST(HitsBelow, EqualsComparingDrawByDraw) {
  constexpr std::uint32_t kOneIn32 = std::uint32_t{1} << 26;
  for (const bool wideVectors : {false, wideVectorsRun()}) {
    for (const std::uint64_t total : {0ULL, 1ULL, 31ULL, 2048ULL, 31743ULL, 31744ULL, 31745ULL,
                                      32240ULL, 63488ULL, 100003ULL, 400000ULL}) {
      for (const std::uint32_t threshold : {0U, 1U, 1000U, 1073742U, kOneIn32 - 1, kOneIn32,
                                            kOneIn32 + 1, 1073741824U, 2147483647U, 2147483648U}) {
        expectEqualToSlowHits(total, threshold, wideVectors);
      }
    }
  }
}

// The words behind some of these draws are odd and those behind others even.
TEST(HitsBelow, ADrawThatEqualsTheThresholdIsNoHit) {
  constexpr std::uint64_t kTotal = 40000;
  RandomStream stream = RandomStream::seeded(8);
  stream.advance(5);
  std::vector<std::uint32_t> draws(kTotal);
  stream.fill(draws.data(), kTotal);
  std::sort(draws.begin(), draws.end());
  for (std::size_t i = 0; i < 8; ++i) {
    for (const bool wideVectors : {false, wideVectorsRun()}) {
      expectEqualToSlowHits(kTotal, draws[i], wideVectors);
    }
  }
}

TEST(HitsBelow, GoesThroughSeveralChunksOfLanes) {
  constexpr std::uint64_t kChunk = 16 * 31 * 8192;
  for (const bool wideVectors : {false, wideVectorsRun()}) {
    expectEqualToSlowHits(2 * kChunk + 123457, 1 << 18, wideVectors);
  }
}

// Rare hits in stretches of 2^23 draws, others in stretches of 2^20.
TEST(HitsBelow, IsTheSameForAnyNumberOfThreads) {
  constexpr std::uint32_t kCommon = (std::uint32_t{1} << 26) + 1;
  for (const auto& [total, threshold] : {std::pair{(std::uint64_t{2} << 23) + 77, 3000U},
                                         {std::uint64_t{1} << 23, 3000U},
                                         {(std::uint64_t{5} << 20) + 1, kCommon},
                                         {std::uint64_t{7} << 20, kCommon}}) {
    RandomStream slow = RandomStream::seeded(8);
    const std::vector<std::uint64_t> expected = slowHits(slow, total, threshold);
    for (const unsigned threads : {1U, 2U, 3U, 16U}) {
      SCOPED_TRACE(testing::Message() << total << " draws, " << threads << " threads");
      Team team(threads);
      RandomStream stream = RandomStream::seeded(8);
      std::vector<std::uint64_t> hits;
      hitsBelow(
          stream, total, threshold,
          [&](std::span<const std::uint64_t> piece) {
            hits.insert(hits.end(), piece.begin(), piece.end());
          },
          team);
      EXPECT_TRUE(hits == expected);
      EXPECT_EQ(stream, slow);
    }
  }
}

TEST(HitsBelow, OfThreadsLeavesTheStreamWhereItWasWhenTheSinkThrows) {
  Team team(2);
  RandomStream stream = RandomStream::seeded(3);
  const RandomStream before = stream;
  const HitSink refuse = [](std::span<const std::uint64_t>) { throw std::runtime_error("full"); };
  EXPECT_THROW(hitsBelow(stream, std::uint64_t{3} << 20, 1 << 30, refuse, team),
               std::runtime_error);
  EXPECT_EQ(stream, before);
}

TEST(HitsBelow, NamesEveryPositionBelowTheUpperEnd) {
  RandomStream stream = RandomStream::seeded(1);
  std::uint64_t next = 0;
  hitsBelow(stream, 5000, 2147483648U, [&](std::span<const std::uint64_t> piece) {
    for (const std::uint64_t position : piece) EXPECT_EQ(position, next++);
  });
  EXPECT_EQ(next, 5000U);
}

TEST(HitsBelow, LeavesTheStreamWhereItWasWhenTheSinkThrows) {
  RandomStream stream = RandomStream::seeded(3);
  const RandomStream before = stream;
  const HitSink refuse = [](std::span<const std::uint64_t>) { throw std::runtime_error("full"); };
  EXPECT_THROW(hitsBelow(stream, 100000, 1 << 20, refuse), std::runtime_error);
  EXPECT_THROW(hitsBelow(stream, 100, 1 << 30, refuse), std::runtime_error);
  EXPECT_EQ(stream, before);
}

}  // namespace
}  // namespace veq::internal::random_hits_test
