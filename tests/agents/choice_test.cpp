#include "veq/agents/internal/choice.hpp"

#include <cmath>
#include <cstdint>

#include "gtest/gtest.h"
#include "tests/support/rounds.hpp"

namespace veq::internal::choice_test {
namespace {

constexpr std::uint32_t kLargestDraw = 2147483647;

// round((k - 1) x), as the formula says.
std::uint64_t rounded(std::uint64_t k, std::uint32_t draw) {
  return static_cast<std::uint64_t>(
      std::round(static_cast<double>(k - 1) * (static_cast<double>(draw) * 4.656612873077393e-10)));
}

TEST(EntryChoice, OfTwoEntriesTheSecondBeginsAtOneHalf) {
  EXPECT_EQ(chooseEntry(2, 0), 0U);
  EXPECT_EQ(chooseEntry(2, 1073741823), 0U);
  EXPECT_EQ(chooseEntry(2, 1073741824), 1U);  // x = 0.5, rounded away from zero
  EXPECT_EQ(chooseEntry(2, kLargestDraw), 1U);
}

TEST(EntryChoice, EndsAreHalfAsLikelyAsInnerEntries) {
  // Of three entries: the first below x = 0.25, the last from 0.75 up.
  EXPECT_EQ(chooseEntry(3, 536870911), 0U);
  EXPECT_EQ(chooseEntry(3, 536870912), 1U);
  EXPECT_EQ(chooseEntry(3, 1610612735), 1U);
  EXPECT_EQ(chooseEntry(3, 1610612736), 2U);
}

TEST(EntryChoice, OfOneEntryItIsAlwaysThatOne) {
  EXPECT_EQ(chooseEntry(1, 0), 0U);
  EXPECT_EQ(chooseEntry(1, kLargestDraw), 0U);
}

TEST(EntryChoice, IntegersChooseWhatRoundingDoesAtEveryTieAndBesideIt) {
  const auto most = static_cast<std::uint64_t>(test::rounds(3000));
  for (std::uint64_t k = 2; k <= most; ++k) {
    for (std::uint64_t j = 1; j < k; ++j) {
      // Entry j begins where (k - 1) draw reaches (2 j - 1) 2^30.
      const std::uint64_t border = ((2 * j - 1) * (std::uint64_t{1} << 30) + k - 2) / (k - 1);
      for (std::uint64_t draw = border - 1; draw <= border + 1; ++draw) {
        const auto d = static_cast<std::uint32_t>(draw);
        ASSERT_EQ(chooseEntry(k, d), rounded(k, d)) << k << " " << draw;
      }
      ASSERT_EQ(chooseEntry(k, static_cast<std::uint32_t>(border)), j);
      ASSERT_EQ(chooseEntry(k, static_cast<std::uint32_t>(border - 1)), j - 1);
    }
  }
}

TEST(EntryChoice, AgreesWithRoundingAroundTheLimitOfTheIntegerForm) {
  std::uint64_t state = 1;
  for (const std::uint64_t k : {kExactChoices - 1, kExactChoices, kExactChoices + 1,
                                kExactChoices + 2, std::uint64_t{3} << 40}) {
    for (int i = 0; i < test::rounds(100000); ++i) {
      state = state * 6364136223846793005U + 1442695040888963407U;
      const auto draw = static_cast<std::uint32_t>(state >> 33);
      ASSERT_EQ(chooseEntry(k, draw), rounded(k, draw)) << k << " " << draw;
    }
    ASSERT_EQ(chooseEntry(k, kLargestDraw), rounded(k, kLargestDraw));
  }
}

}  // namespace
}  // namespace veq::internal::choice_test
