#include "veq/handles/handle_array.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::handle_array_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(HandleArray, IsEmptyByDefault) {
  const VEQVertexArray array;
  EXPECT_EQ(array.count(), 0U);
  EXPECT_TRUE(array.empty());
  EXPECT_TRUE(array.begin() == array.end());
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(array.objectAtIndex(0)); }));
  EXPECT_TRUE(array.subarrayWithIndices(VEQNumberArray::ofIndices({})).empty());
}

TEST(HandleArray, HoldsHandlesOfSeveralNetworks) {
  const auto one = drawUndirected("0-1");
  const auto two = drawUndirected("0-1 1-2");
  const VEQVertexArray array{two->vertexAtIndex(2), one->vertexAtIndex(0), two->vertexAtIndex(2)};
  EXPECT_EQ(array.count(), 3U);
  EXPECT_EQ(array[0], two->vertexAtIndex(2));
  EXPECT_EQ(array.objectAtIndex(1), one->vertexAtIndex(0));
  EXPECT_EQ(array.identificationAtIndex(2), 2U);
  EXPECT_THAT(indices(array), ElementsAre(2, 0, 2));
}

TEST(HandleArray, RefusesNullHandles) {
  const auto network = drawUndirected("0-1");
  EXPECT_EQ(invalidArgumentText([&] {
              static_cast<void>(VEQVertexArray{network->vertexAtIndex(0), nullptr});
            }),
            "An array of handles cannot hold a null handle.");
}

TEST(HandleArray, GivesSubarraysInTheGivenOrder) {
  const auto network = drawUndirected("0-1 1-2 2-3");
  const auto where = VEQNumberArray::ofIndices({2, 0, 2});
  EXPECT_THAT(indices(network->vertices().subarrayWithIndices(where)), ElementsAre(2, 0, 2));
  EXPECT_THAT(indices(network->verticesWithName("3").subarrayWithIndices(
                  VEQNumberArray::ofIndices({0, 0}))),
              ElementsAre(3, 3));
  const VEQVertexArray mixed{network->vertexAtIndex(3), network->vertexAtIndex(1),
                             network->vertexAtIndex(0)};
  EXPECT_THAT(indices(mixed.subarrayWithIndices(where)), ElementsAre(0, 3, 0));
  for (const VEQVertexArray& array : {network->vertices(), mixed}) {
    EXPECT_TRUE(throwsOutOfRange([&] {
      static_cast<void>(array.subarrayWithIndices(VEQNumberArray::ofIndices({0, 4})));
    }));
    EXPECT_TRUE(throwsOutOfRange(
        [&] { static_cast<void>(array.subarrayWithIndices(VEQNumberArray::ofIntegers({-1}))); }));
  }
}

TEST(HandleArray, PastItsEndIsARangeFailure) {
  const auto network = drawUndirected("0-1");
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(network->vertices().objectAtIndex(2)); }));
  EXPECT_TRUE(
      throwsOutOfRange([&] { static_cast<void>(network->edges().objectAtIndex(UINT64_MAX)); }));
}

TEST(HandleArray, IteratesByReferenceToTheNetworksOwnHandles) {
  const auto network = drawUndirected("0-1 1-2");
  std::vector<const VEQEdge*> seen;
  for (VEQEdge& edge : network->edges()) seen.push_back(&edge);
  EXPECT_THAT(seen, ElementsAre(network->edgeAtIndex(0).get(), network->edgeAtIndex(1).get()));
}

TEST(HandleArray, ReadsStridedEntriesAndAMarkAsZero) {
  const auto network = drawUndirected("0-1 1-2");
  const auto entries = std::make_shared<std::vector<std::uint32_t>>(
      std::vector<std::uint32_t>{2, 9, 1, 9, UINT32_MAX, 9});
  const VEQVertexArray array(network->vertices().table(),
                             VEQVertexArray::Strided<std::uint32_t>{entries, entries->data(), 2},
                             3);
  EXPECT_THAT(indices(array), ElementsAre(2, 1, 0));
}

}  // namespace
}  // namespace veq::test::handle_array_test
