// Counts, indices and capacities at the edges of what the types hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/limits.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq::test::numbers_test {
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
  if (kIsSanitized) GTEST_SKIP() << "Sanitizers touch the memory that they hand out.";
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
  if (kIsSanitized) GTEST_SKIP() << "Sanitizers touch the memory that they hand out.";
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

// Of the widths that indices have in memory, on both sides of the limit between them.
TEST(Limits, NetworksAroundThirtyTwoBitsAreWholeOrNone) {
  if (kIsSanitized) GTEST_SKIP() << "Sanitizers touch the memory that they hand out.";
  constexpr std::uint64_t kTwoTo31 = std::uint64_t{1} << 31;
  constexpr std::uint64_t kTwoTo32 = std::uint64_t{1} << 32;
  for (const std::uint64_t n :
       {kTwoTo31 - 1, kTwoTo31, kTwoTo31 + 1, kTwoTo32 - 1, kTwoTo32, kTwoTo32 + 1, kTwoTo32 + 2}) {
    const auto network = withSource(VEQNumberArray::ofIndices({n - 1}));
    if (!network) continue;  // This machine does not promise as much.
    ASSERT_EQ(network->countVertices(), n);
    const std::uint64_t last = n - 1;
    const std::uint64_t first = 0;
    network->addEdgesFromVerticesIndices_toVerticesIndices_count(&last, &last, 1);
    network->addEdgesFromVerticesIndices_toVerticesIndices_count(&first, &last, 1);
    EXPECT_EQ(network->countEdgesOfVertexAtIndex(last), 4U);
    EXPECT_EQ(network->countEdgesOfVertexAtIndex(0), 2U);
    EXPECT_EQ(network->countEdgesOfVertexAtIndex(last - 1), 0U);
    EXPECT_EQ(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(last)),
              (std::vector<std::uint64_t>{0, last, last, 0}));
    EXPECT_EQ(network->edgeAtIndex(2)->toVertex()->identification(), last);
    EXPECT_EQ(network->vertexWithName(std::to_string(last))->identification(), last);
    EXPECT_EQ(
        invalidArgumentText([&] { static_cast<void>(network->countEdgesOfVertexAtIndex(n)); }),
        "VertexIndex must be less than count.");
    EXPECT_EQ(invalidArgumentText([&] {
                network->addEdgesFromVerticesIndices_toVerticesIndices_count(&n, &first, 1);
              }),
              "Edge lists contains indices out of bounds:from " + std::to_string(n) +
                  " to 0 (max vertex inddex:" + std::to_string(n) + ")");
    EXPECT_EQ(network->countEdges(), 3U);
  }
}

// On a network of three vertices and three edges, weighted and with columns.
class IndicesFarBeyond : public testing::Test {
 protected:
  IndicesFarBeyond() {
    network_->setVerticesWeightValues(VEQNumberArray::ofFloats({1, 2, 3}));
    network_->setEdgesWeightValues(VEQNumberArray::ofFloats({1, 2, 3}));
    network_->setPropertyValue_forKey_atVertexIndex("b", "Name", 1);
    network_->setPropertyValue_forKey_atEdgeIndex("e", "Name", 1);
    network_->setPropertyValue_forKey_atVertexIndex(1.5, "Number", 1);
  }

  const Owned<VEQNetwork> network_ = drawDirected("0-1 1-2 2-0");
};

TEST_F(IndicesFarBeyond, AreRefusedByQuestions) {
  using ByIndex = void (*)(const VEQNetwork&, std::uint64_t);
  const ByIndex raising[] = {
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.countEdgesOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.countInEdgesOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.countToVerticesOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.countFromVerticesOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.calcDegreeOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.calcInDegreeOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.calcStrengthOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.calcInStrengthOfVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.edgesLinkedFromVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.edgesLinkedToVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.verticesLinkedFromVertexAtIndex(i));
      },
      [](const VEQNetwork& n, std::uint64_t i) {
        static_cast<void>(n.verticesLinkedToVertexAtIndex(i));
      },
  };
  const VEQNetwork& n = *network_;
  for (const std::uint64_t index : indicesFarBeyond()) {
    SCOPED_TRACE(index);
    for (const ByIndex ask : raising) {
      EXPECT_EQ(invalidArgumentText([&] { ask(n, index); }),
                "VertexIndex must be less than count.");
    }
    EXPECT_EQ(n.indicesOfEdgesLinkedFromVertexAtIndex(index)->count(), 0U);
    EXPECT_EQ(n.indicesOfEdgesLinkedToVertexAtIndex(index)->count(), 0U);
    EXPECT_EQ(n.indicesOfVerticesLinkedFromVertexAtIndex(index)->count(), 0U);
    EXPECT_EQ(n.indicesOfVerticesLinkedToVertexAtIndex(index)->count(), 0U);
    EXPECT_THROW(static_cast<void>(n.vertexAtIndex(index)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.edgeAtIndex(index)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.vertices().objectAtIndex(index)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.propertiesOfVertexAtIndex(index)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.propertiesOfEdgeAtIndex(index)), std::out_of_range);
    const auto where = VEQNumberArray::ofIndices({index});
    EXPECT_THROW(static_cast<void>(n.propertiesOfVerticesAtIndexArray(where)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.propertiesOfInEdgesAtIndexArray(where)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.namesOfVerticesAtIndexArray(where)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.namesOfEdgesAtIndexArray(where)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(n.vertices().subarrayWithIndices(where)), std::out_of_range);
    EXPECT_FALSE(n.vertexWithName(std::to_string(index)));
    EXPECT_FALSE(drawDirected("0-1")->vertexWithName(std::to_string(index)));
  }
}

TEST_F(IndicesFarBeyond, AreRefusedByHandlesMadeByHand) {
  for (const std::uint64_t index : indicesFarBeyond()) {
    SCOPED_TRACE(index);
    const auto vertex = VEQVertex::initAtNetwork_identification(*network_, index);
    const auto edge = VEQEdge::initAtNetwork_identification(*network_, index);
    EXPECT_EQ(vertex->identification(), index);
    EXPECT_EQ(vertex->hash(), reinterpret_cast<std::uintptr_t>(network_.get()) + index);
    EXPECT_THROW(static_cast<void>(vertex->weight()), std::out_of_range);
    EXPECT_THROW(static_cast<void>(vertex->name()), std::out_of_range);
    EXPECT_THROW(static_cast<void>(vertex->properties()), std::out_of_range);
    EXPECT_THROW(vertex->setName("x"), std::out_of_range);
    EXPECT_THROW(vertex->setWeight(1), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(vertex->countEdges()), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(network_->countEdgesOfVertex(*vertex)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(edge->weight()), std::out_of_range);
    EXPECT_THROW(static_cast<void>(edge->name()), std::out_of_range);
    EXPECT_THROW(static_cast<void>(edge->fromVertex()), std::out_of_range);
    EXPECT_THROW(static_cast<void>(edge->toVertex()), std::out_of_range);
    EXPECT_THROW(edge->setWeight(1), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(network_->linkVertex_to(*vertex, *vertex)),
                 std::invalid_argument);
    EXPECT_THROW(
        static_cast<void>(network_->linkVertex_to_weight(*network_->vertexAtIndex(0), *vertex, 2)),
        std::invalid_argument);
  }
  EXPECT_EQ(network_->countEdges(), 3U);
}

TEST_F(IndicesFarBeyond, ChangeNothing) {
  for (const std::uint64_t index : indicesFarBeyond()) {
    SCOPED_TRACE(index);
    const std::uint64_t one = 1;
    EXPECT_EQ(invalidArgumentText([&] {
                network_->addEdgesFromVerticesIndices_toVerticesIndices_count(&one, &index, 1);
              }),
              "Edge lists contains indices out of bounds:from 1 to " + std::to_string(index) +
                  " (max vertex inddex:3)");
    const char* kText = "Index must be less than number of Vertices.";
    EXPECT_EQ(invalidArgumentText([&] { network_->setWeightValue_atVertexIndex(9, index); }),
              kText);
    EXPECT_EQ(invalidArgumentText([&] { network_->setWeightValue_atEdgeIndex(9, index); }), kText);
    for (const char* key : {"Name", "new"}) {
      EXPECT_THROW(network_->setPropertyValue_forKey_atVertexIndex("x", key, index),
                   std::out_of_range);
      EXPECT_THROW(network_->setPropertyValue_forKey_atEdgeIndex("x", key, index),
                   std::out_of_range);
    }
  }
  EXPECT_EQ(network_->countEdges(), 3U);
  EXPECT_EQ(doubles(*network_->verticesWeightValues()), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(doubles(*network_->edgesWeightValues()), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(texts(*columnOf(*network_->propertiesOfVertices(), "Name")),
            (std::vector<std::string>{"<null>", "b", "<null>"}));
  EXPECT_EQ(network_->keysForPropertiesOfEdges(), (std::vector<std::string>{"Name"}));
}

// What is no finite number is a weight like any other: kept, and summed by the rules of doubles.
TEST(Limits, UnusualWeightsAreKeptBitForBit) {
  const float infinity = std::numeric_limits<float>::infinity();
  const float least = std::numeric_limits<float>::denorm_min();
  const float most = std::numeric_limits<float>::max();
  const auto weights = VEQNumberArray::ofFloats({infinity, -infinity, least, -0.0F, most, most});
  const auto network = drawDirected("0-1 1-2 2-3 3-4 4-5 4-0");
  network->setEdgesWeightValues(weights);
  const auto given = network->edgesWeightValues();
  const auto kept = given->values<float>();
  EXPECT_EQ(kept[0], infinity);
  EXPECT_EQ(kept[1], -infinity);
  EXPECT_EQ(kept[2], least);
  EXPECT_TRUE(kept[3] == 0.0F && std::signbit(kept[3]));
  const auto strengths = doubles(*network->calcStrengths());
  EXPECT_EQ(strengths[0], infinity);
  EXPECT_EQ(strengths[2], 1.401298464324817e-45);
  // Sums are formed in double, so that no float overflows.
  EXPECT_EQ(strengths[4], 6.805646932770577e38);
  network->setWeightValue_atEdgeIndex(std::nanf(""), 0);
  EXPECT_TRUE(std::isnan(network->edgeAtIndex(0)->weight()));
  EXPECT_TRUE(std::isnan(doubles(*network->calcStrengths())[0]));
  // From doubles that no float holds.
  network->setEdgesWeightValues(VEQNumberArray::ofDoubles({1e300, -1e300, 1e-300, 1, 1, 1}));
  EXPECT_EQ(doubles(*network->edgesWeightValues()),
            (std::vector<double>{infinity, -infinity, 0, 1, 1, 1}));
}

}  // namespace
}  // namespace veq::test::numbers_test
