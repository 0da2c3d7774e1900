// Counts, indices and capacities at the edges of what the types hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <new>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VEQ_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VEQ_TEST_SANITIZED 1
#endif
#endif

namespace veq::test {
namespace {

constexpr std::uint64_t kTwoTo53 = std::uint64_t{1} << 53;
constexpr std::uint64_t kTwoTo63 = std::uint64_t{1} << 63;

Owned<VEQNetwork> withMinimum(std::uint64_t count, bool directed = false) {
  const auto nothing = VEQNumberArray::ofIndices({});
  return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(count, nothing,
                                                                               nothing, directed);
}

Owned<VEQNetwork> withSource(const VEQNumberArray& source) {
  return VEQNetwork::initWithLinksIndexedFrom_toIndices(source, VEQNumberArray::ofIndices({0}));
}

Owned<VEQNetwork> withTarget(const VEQNumberArray& target) {
  return VEQNetwork::initWithLinksIndexedFrom_toIndices(VEQNumberArray::ofIndices({0}), target);
}

TEST(Limits, CountsThatMemoryCannotHoldGiveNoNetwork) {
  for (const bool directed : {false, true}) {
    for (const std::uint64_t count :
         {kTwoTo53 - 1, kTwoTo53, kTwoTo53 + 1, kTwoTo63 - 1, kTwoTo63, kTwoTo63 + 1,
          std::uint64_t{1} << 60, std::uint64_t{1} << 61, UINT64_MAX - 1, UINT64_MAX}) {
      EXPECT_FALSE(withMinimum(count, directed)) << count;
    }
  }
}

TEST(Limits, IndicesThatCannotBeGiveNoNetwork) {
  for (const std::uint64_t index :
       {kTwoTo53, kTwoTo63 - 1, kTwoTo63, kTwoTo63 + 1, UINT64_MAX - 1, UINT64_MAX}) {
    EXPECT_FALSE(withSource(VEQNumberArray::ofIndices({index}))) << index;
    EXPECT_FALSE(withTarget(VEQNumberArray::ofIndices({index}))) << index;
  }
}

TEST(Limits, NegativeIndicesGiveNoNetwork) {
  for (const std::int64_t index : {std::int64_t{-1}, std::int64_t{-5}, INT64_MIN, INT64_MAX}) {
    EXPECT_FALSE(withSource(VEQNumberArray::ofIntegers({index}))) << index;
    EXPECT_FALSE(withTarget(VEQNumberArray::ofIntegers({index}))) << index;
  }
}

TEST(Limits, FloatingIndicesThatCannotBeGiveNoNetwork) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double index :
       {-1.0, -1e300, 9007199254740992.0, 9223372036854775808.0, 18446744073709551616.0, 1e300,
        infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(withSource(VEQNumberArray::ofDoubles({index}))) << index;
    EXPECT_FALSE(withTarget(VEQNumberArray::ofDoubles({index}))) << index;
    EXPECT_FALSE(withSource(VEQNumberArray::ofFloats({static_cast<float>(index)}))) << index;
  }
  EXPECT_EQ(withSource(VEQNumberArray::ofDoubles({-0.0}))->countVertices(), 1U);
  EXPECT_EQ(withSource(VEQNumberArray::ofDoubles({2.999}))->countVertices(), 3U);
}

TEST(Limits, WeightsForAbsurdCountsGiveNoNetwork) {
  const auto nothing = VEQNumberArray::ofIndices({});
  const auto one = VEQNumberArray::ofFloats({1});
  EXPECT_FALSE(
      (VEQNetwork::
           initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
               UINT64_MAX, nothing, nothing, false, &one, nullptr)));
}

TEST(Limits, CapacitiesAreStoredAsTheyAre) {
  for (const std::uint64_t capacity :
       {std::uint64_t{1} << 31, std::uint64_t{1} << 32, kTwoTo53, kTwoTo63, UINT64_MAX}) {
    for (const bool weighted : {false, true}) {
      const auto network =
          VEQNetwork::initWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
              capacity, capacity, true, weighted, weighted);
      ASSERT_TRUE(network);
      EXPECT_EQ(network->countVertices(), 0U);
      EXPECT_EQ(network->isEdgeWeighted(), weighted);
      EXPECT_EQ(internal::CoreAccess::of(*network).vertexCapacity, capacity);
      EXPECT_EQ(internal::CoreAccess::of(*network).edgesCapacity, capacity);
      EXPECT_EQ(invalidArgumentText([&] { insert(*network, "0-0"); }),
                "Edge lists contains indices out of bounds:from 0 to 0 (max vertex inddex:0)");
    }
  }
}

TEST(Limits, VerticesWithoutEdgesCostAddressSpaceOnly) {
#ifdef VEQ_TEST_SANITIZED
  GTEST_SKIP() << "Sanitizers touch the memory that they hand out.";
#endif
  constexpr std::uint64_t kCount = 2000000000;
  const auto network = withMinimum(kCount);
  if (!network) GTEST_SKIP() << "This machine does not promise 16 GB.";
  EXPECT_EQ(network->countVertices(), kCount);
  insert(*network, "1999999999-0 0-0");
  EXPECT_EQ(network->countEdgesOfVertexAtIndex(0), 3U);
  EXPECT_EQ(network->countEdgesOfVertexAtIndex(1999999998), 0U);
  EXPECT_EQ(network->vertexAtIndex(1999999999)->countEdges(), 1U);
  EXPECT_EQ(network->vertexWithName("1999999999")->identification(), 1999999999U);
  EXPECT_EQ(network->vertices()[1234567890]->identification(), 1234567890U);
  // 4e18 cells of four bytes: below 2^64, and more than any machine has.
  EXPECT_THROW(static_cast<void>(network->buildAdjacencyMatrixInPointer(nullptr)), std::bad_alloc);
}

TEST(Limits, AMatrixWhoseSizeOverflowsIsNotBuilt) {
#ifdef VEQ_TEST_SANITIZED
  GTEST_SKIP() << "Sanitizers touch the memory that they hand out.";
#endif
  // n x n floats are 2^64 bytes, and 2^64 + 2^33 + 4: sizes that wrap to 0 and to little.
  for (const std::uint64_t n : {std::uint64_t{1} << 31, (std::uint64_t{1} << 31) + 1}) {
    const auto network = withMinimum(n);
    if (!network) GTEST_SKIP() << "This machine does not promise 17 GB.";
    EXPECT_THROW(static_cast<void>(network->buildAdjacencyMatrixInPointer(nullptr)),
                 std::bad_alloc);
    float cell = 7.0f;
    EXPECT_THROW(static_cast<void>(network->buildAdjacencyMatrixInPointer(&cell)), std::bad_alloc);
    EXPECT_EQ(cell, 7.0f);
  }
}

}  // namespace
}  // namespace veq::test
