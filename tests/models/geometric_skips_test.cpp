#include "veq/models/internal/geometric_skips.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/chi_square.hpp"
#include "veq/models/random_state.hpp"

namespace veq::internal::geometric_skips_test {
namespace {

constexpr std::uint64_t kMany = std::uint64_t{1} << 62;
constexpr std::uint64_t kLargest = kMany - 1;

struct Case {
  double p;
  std::uint64_t u;
  std::uint64_t skip;
};

// The greatest k with (1 - p)^k > (2 u + 1) / 2^63, by logarithms of 120 decimal digits.
TEST(GeometricSkips, AreThoseOfExactArithmetic) {
  const Case cases[] = {{0.5, 352650595537449594, 3},
                        {0.5, 3618054486269986514, 0},
                        {0.5, 0, 62},
                        {0.3, 4138435695658138394, 0},
                        {0.3, 1254943291653251164, 3},
                        {0.999, 0, 6},
                        {0.999, 4592221015090062323, 0},
                        {1e-3, 3985031276008529191, 145},
                        {1e-3, 3762785698762485821, 203},
                        {1e-5, 2020306797979952925, 82534},
                        {1e-5, 1523652507191234301, 110747},
                        {1e-9, 2391707181224378805, 656586107},
                        {1e-9, 2555624488118973554, 590296908},
                        {2.5e-12, 2845663569102192888, 193118895993},
                        {2.5e-12, 2654807098370322468, 220888609899},
                        {1e-15, 171096139501855623, 3294123181980228},
                        {1e-15, 3906352457664000450, 165989457503206}};
  for (const Case& c : cases) {
    EXPECT_EQ(GeometricSkips(c.p, kMany)(c.u), c.skip) << c.p << ", " << c.u;
  }
  for (const double p : {0.5, 0.3, 0.999, 1e-3, 1e-9}) {
    EXPECT_EQ(GeometricSkips(p, kMany)(kLargest), 0u);
  }
}

TEST(GeometricSkips, TheLongestAreAsLongAsTheyShould) {
  // ln 2^63 / p, where the products are rounded in their last bits.
  EXPECT_NEAR(static_cast<double>(GeometricSkips(1e-9, kMany)(0)), 43668272353.0, 1e9);
  EXPECT_NEAR(static_cast<double>(GeometricSkips(1e-5, kMany)(0)), 4366805.0, 1e5);
}

TEST(GeometricSkips, CertaintyAndImpossibility) {
  for (const std::uint64_t u : {std::uint64_t{0}, kLargest / 3, kLargest}) {
    EXPECT_EQ(GeometricSkips(1.0, kMany)(u), 0u);
    EXPECT_GE(GeometricSkips(0.0, 1000)(u), 1000u);
    EXPECT_GE(GeometricSkips(0.0, kMany)(u), kMany);
    EXPECT_GE(GeometricSkips(5e-324, kMany)(u), kMany);
  }
  // Nearly certain: 1 - p is 1024 in units of 2^-63, and w = 2 u + 1.
  EXPECT_EQ(GeometricSkips(1.0 - 0x1p-53, kMany)(511), 1u);
  EXPECT_EQ(GeometricSkips(1.0 - 0x1p-53, kMany)(512), 0u);
}

TEST(GeometricSkips, DoNotDependOnHowManyAreAskedAtOnce) {
  const GeometricSkips skips(0.01, 100000);
  RandomState state = RandomState::seeded(8).value();
  std::vector<std::uint64_t> us(37);
  for (std::uint64_t& u : us) u = state.nextBelow(kMany);
  std::vector<std::uint64_t> together(us.size());
  skips.many(us, together.data());
  for (std::size_t i = 0; i < us.size(); ++i) EXPECT_EQ(skips(us[i]), together[i]) << i;
}

// Counts of skips in equally likely classes by the distribution function 1 - (1 - p)^k.
std::vector<std::uint64_t> classes(const GeometricSkips& skips, double lawOfClasses,
                                   std::vector<double>& probabilities) {
  constexpr std::size_t kClasses = 8;
  constexpr int kNumbers = 1'000'000;
  std::vector<std::uint64_t> ends;
  for (std::size_t c = 1; c < kClasses; ++c) {
    ends.push_back(static_cast<std::uint64_t>(
        std::ceil(std::log1p(-static_cast<double>(c) / kClasses) / std::log1p(-lawOfClasses))));
  }
  double before = 0.0;
  probabilities.clear();
  for (const std::uint64_t end : ends) {
    const double upTo = -std::expm1(static_cast<double>(end) * std::log1p(-lawOfClasses));
    probabilities.push_back(upTo - before);
    before = upTo;
  }
  probabilities.push_back(1.0 - before);
  std::vector<std::uint64_t> counts(kClasses);
  RandomState state = RandomState::seeded(2024).value();
  std::vector<std::uint64_t> us(1000);
  std::vector<std::uint64_t> found(us.size());
  for (int i = 0; i < kNumbers; i += 1000) {
    for (std::uint64_t& u : us) u = state.nextBelow(kMany);
    skips.many(us, found.data());
    for (const std::uint64_t skip : found) {
      ++counts[static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), skip) -
                                        ends.begin())];
    }
  }
  return counts;
}

TEST(GeometricSkips, FollowTheirLawAtEveryScale) {
  std::vector<double> probabilities;
  for (const double p : {1e-2, 1e-5, 1e-9, 1e-12}) {
    const auto counts = classes(GeometricSkips(p, kMany), p, probabilities);
    EXPECT_TRUE(test::follows(counts, probabilities)) << p;
  }
}

TEST(GeometricSkips, TheTestNoticesAProbabilityOffByOnePercent) {
  std::vector<double> probabilities;
  for (const double p : {1e-2, 1e-9}) {
    auto counts = classes(GeometricSkips(1.01 * p, kMany), p, probabilities);
    EXPECT_FALSE(test::follows(counts, probabilities)) << p;
    counts = classes(GeometricSkips(0.99 * p, kMany), p, probabilities);
    EXPECT_FALSE(test::follows(counts, probabilities)) << p;
  }
}

}  // namespace
}  // namespace veq::internal::geometric_skips_test
