// What walks by weight keep with a network.
#include "veq/agents/internal/weight_sums.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>

#include "tests/support/agents.hpp"

namespace veq::test::weight_sums_test {
namespace {

using internal::CoreAccess;
using internal::WeightSums;

// 0 -> 1, 0 -> 2, 2 -> 0.
Shared<VEQNetwork> threeLinks(std::initializer_list<float> weights) {
  Shared<VEQNetwork> network = networkOf(3, {{0, 1}, {0, 2}, {2, 0}}, true);
  network->setEdgesWeightValues(VEQNumberArray::ofFloats(weights));
  return network;
}

TEST(WeightSums, AreMadeOnceForANetwork) {
  const Shared<VEQNetwork> network = threeLinks({1, 2.5F, 4});
  const internal::NetworkCore& core = CoreAccess::of(*network);
  const auto sums = WeightSums::of(core);
  ASSERT_NE(sums, nullptr);
  EXPECT_EQ(WeightSums::of(core), sums);
  const auto entries = sums->choice().entries;
  const auto row = core.store.visit(
      [](const auto& topology) -> std::uint64_t { return topology.out.rows()[0].start; });
  EXPECT_EQ(entries[row].sum, 1.0);
  EXPECT_EQ(entries[row + 1].sum, 3.5);
  EXPECT_EQ(entries[row + 1].weight, 2.5);
}

TEST(WeightSums, AreMadeAgainWhenWeightsOrEdgesChange) {
  const Shared<VEQNetwork> network = threeLinks({1, 2.5F, 4});
  const internal::NetworkCore& core = CoreAccess::of(*network);
  const auto first = WeightSums::of(core);
  network->setWeightValue_atEdgeIndex(1.5F, 1);
  const auto second = WeightSums::of(core);
  EXPECT_NE(second, first);
  const std::uint64_t from = 1;
  const std::uint64_t to = 2;
  network->addEdgesFromVerticesIndices_toVerticesIndices_count(&from, &to, 1);
  const auto third = WeightSums::of(core);
  EXPECT_NE(third, second);
  EXPECT_EQ(WeightSums::of(core), third);
  // Who holds them can go on to look them up.
  const auto row = core.store.visit(
      [](const auto& topology) -> std::uint64_t { return topology.out.rows()[0].start; });
  EXPECT_EQ(first->choice().entries[row + 1].sum, 3.5);
  EXPECT_EQ(third->choice().entries[row + 1].sum, 2.5);
}

TEST(WeightSums, AreNotMadeOfAWrongWeight) {
  const Shared<VEQNetwork> network = threeLinks({1, 2.5F, -1});
  const internal::NetworkCore& core = CoreAccess::of(*network);
  EXPECT_EQ(WeightSums::of(core), nullptr);
  EXPECT_EQ(WeightSums::wrongWeight(core), std::optional<std::uint64_t>(2));
  network->setWeightValue_atEdgeIndex(0.0F, 2);
  EXPECT_NE(WeightSums::of(core), nullptr);
  EXPECT_EQ(WeightSums::wrongWeight(core), std::nullopt);
}

}  // namespace
}  // namespace veq::test::weight_sums_test
