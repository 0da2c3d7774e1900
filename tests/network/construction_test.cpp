#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::construction_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const VEQNumberArray kNothing = VEQNumberArray::ofIndices({});
const VEQNumberArray kThreeSources = VEQNumberArray::ofIndices({0, 1, 2});
const VEQNumberArray kThreeTargets = VEQNumberArray::ofIndices({1, 2, 3});

Owned<VEQNetwork> fullForm(const VEQNumberArray* verticesWeights,
                           const VEQNumberArray* edgesWeights) {
  return VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      kThreeSources, kThreeTargets, false, verticesWeights, edgesWeights);
}

TEST(NetworkConstruction, TwoEmptyListsGiveOneVertex) {
  const auto network = VEQNetwork::initWithLinksIndexedFrom_toIndices(kNothing, kNothing);
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 1U);
  EXPECT_EQ(network->countEdges(), 0U);
}

TEST(NetworkConstruction, AMinimumOfZeroStillGivesOneVertex) {
  const auto network =
      VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(0, kNothing, kNothing);
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 1U);
}

TEST(NetworkConstruction, IndicesBeyondTheMinimumEnlargeTheNetwork) {
  const auto network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      3, VEQNumberArray::ofIndices({7}), VEQNumberArray::ofIndices({0}));
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 8U);
  EXPECT_EQ(drawUndirected("0-1", 5)->countVertices(), 5U);
}

TEST(NetworkConstruction, TheLargestIndexMayStandInEitherList) {
  EXPECT_EQ(drawDirected("9-1")->countVertices(), 10U);
  EXPECT_EQ(drawDirected("1-9")->countVertices(), 10U);
}

TEST(NetworkConstruction, AnUndirectedEdgeStandsInBothLists) {
  const auto network = drawUndirected("0-1 2-5");
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(2)), ElementsAre(5));
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedFromVertexAtIndex(2)), ElementsAre(1));
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(5)), ElementsAre(2));
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedFromVertexAtIndex(5)), ElementsAre(1));
}

TEST(NetworkConstruction, ADirectedEdgeStandsInOneOutListAndOneInList) {
  const auto network = drawDirected("0-1 2-5");
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(2)), ElementsAre(5));
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedToVertexAtIndex(2)), IsEmpty());
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(5)), IsEmpty());
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedToVertexAtIndex(5)), ElementsAre(2));
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedToVertexAtIndex(5)), ElementsAre(1));
}

TEST(NetworkConstruction, AnUndirectedSelfLoopStandsTwiceInItsList) {
  const auto network = drawUndirected("4-4");
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(4)), ElementsAre(4, 4));
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedFromVertexAtIndex(4)), ElementsAre(0, 0));
}

TEST(NetworkConstruction, ListsOfDifferentLengthsGiveNoNetwork) {
  EXPECT_FALSE(VEQNetwork::initWithLinksIndexedFrom_toIndices(kThreeSources, kNothing));
  EXPECT_FALSE(
      VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(9, kNothing, kThreeTargets));
  EXPECT_FALSE(VEQNetwork::networkWithLinksIndexedFrom_toIndices(kThreeSources, kNothing));
}

TEST(NetworkConstruction, WeightsThatAreNotOneForEachGiveNoNetwork) {
  const auto three = VEQNumberArray::ofFloats({1, 2, 3});
  const auto four = VEQNumberArray::ofFloats({1, 2, 3, 4});
  const auto five = VEQNumberArray::ofFloats({1, 2, 3, 4, 5});
  EXPECT_TRUE(fullForm(&four, &three));
  EXPECT_FALSE(fullForm(&three, nullptr));
  EXPECT_FALSE(fullForm(&five, nullptr));
  EXPECT_FALSE(fullForm(nullptr, &four));
  EXPECT_FALSE(fullForm(nullptr, &kNothing));
  EXPECT_FALSE(fullForm(&four, &four));
}

TEST(NetworkConstruction, VertexWeightsMustFitTheFinalCountNotTheMinimum) {
  const auto two = VEQNumberArray::ofFloats({1, 2});
  const auto four = VEQNumberArray::ofFloats({1, 2, 3, 4});
  const auto make = [](const VEQNumberArray& weights) {
    return VEQNetwork::
        initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
            2, kThreeSources, kThreeTargets, true, &weights, nullptr);
  };
  EXPECT_FALSE(make(two));
  ASSERT_TRUE(make(four));
  EXPECT_THAT(doubles(*make(four)->verticesWeightValues()), ElementsAre(1, 2, 3, 4));
}

TEST(NetworkConstruction, WeightsAreCopiedFromNumbersOfAnyType) {
  auto integers = VEQNumberArray::ofIntegers({-1, 2, 3, 4});
  const auto wide = VEQNumberArray::ofDoubles({0.5, 16777217.0, -0.25});
  const auto network = fullForm(&integers, &wide);
  ASSERT_TRUE(network);
  EXPECT_TRUE(network->isVertexWeighted());
  EXPECT_TRUE(network->isEdgeWeighted());
  integers.setIntegerValue_atIndex(99, 0);
  EXPECT_THAT(doubles(*network->verticesWeightValues()), ElementsAre(-1, 2, 3, 4));
  // 2^24 + 1 is no 32-bit float; it is halfway and goes to the even neighbour.
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(0.5, 16777216.0, -0.25));
}

TEST(NetworkConstruction, NoWeightsGivenMeansAnUnweightedNetwork) {
  const auto network = fullForm(nullptr, nullptr);
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_TRUE(network->isEditable());
}

TEST(NetworkConstruction, IndicesMayBeNumbersOfAnyType) {
  const auto targets = VEQNumberArray::ofFloats({2.0f, 3.75f});
  const VEQNumberArray sources[] = {
      VEQNumberArray::ofIndices({0, 1}), VEQNumberArray::ofIntegers({0, 1}),
      VEQNumberArray::ofFloats({0.0f, 1.0f}), VEQNumberArray::ofDoubles({-0.5, 1.999})};
  for (const VEQNumberArray& source : sources) {
    const auto network =
        VEQNetwork::initWithLinksIndexedFrom_toIndices_directed(source, targets, true);
    ASSERT_TRUE(network);
    EXPECT_EQ(network->countVertices(), 4U);
    EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(0)), ElementsAre(2));
    EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(1)), ElementsAre(3));
  }
}

TEST(NetworkConstruction, TheConvenienceFormsHaveFixedDefaults) {
  const auto plain = VEQNetwork::initWithLinksIndexedFrom_toIndices(kThreeSources, kThreeTargets);
  EXPECT_FALSE(plain->isDirected());
  EXPECT_FALSE(plain->isVertexWeighted());
  EXPECT_FALSE(plain->isEdgeWeighted());
  for (const bool directed : {false, true}) {
    EXPECT_EQ(VEQNetwork::initWithLinksIndexedFrom_toIndices_directed(kThreeSources, kThreeTargets,
                                                                      directed)
                  ->isDirected(),
              directed);
    EXPECT_EQ(VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
                  6, kThreeSources, kThreeTargets, directed)
                  ->isDirected(),
              directed);
    EXPECT_EQ(
        VEQNetwork::initWithVertexCapacity_edgeCapacity_directed(2, 2, directed)->isDirected(),
        directed);
  }
  const auto counted =
      VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(6, kThreeSources, kThreeTargets);
  EXPECT_FALSE(counted->isDirected());
  EXPECT_EQ(counted->countVertices(), 6U);
  EXPECT_FALSE(VEQNetwork::initWithVertexCapacity_edgeCapacity(2, 2)->isDirected());
}

TEST(NetworkConstruction, EveryFactoryGivesASharedNetworkLikeItsConstructors) {
  const auto four = VEQNumberArray::ofFloats({1, 2, 3, 4});
  const auto three = VEQNumberArray::ofFloats({5, 6, 7});
  const Shared<VEQNetwork> full =
      VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          kThreeSources, kThreeTargets, true, &four, &three);
  ASSERT_TRUE(full);
  EXPECT_TRUE(full->isDirected());
  EXPECT_THAT(doubles(*full->verticesWeightValues()), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(doubles(*full->edgesWeightValues()), ElementsAre(5, 6, 7));
  const Shared<VEQNetwork> counted = VEQNetwork::
      networkWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          1, kThreeSources, kThreeTargets, true, &four, &three);
  EXPECT_EQ(counted->countVertices(), 4U);
  EXPECT_TRUE(counted->isDirected());
  EXPECT_THAT(doubles(*counted->edgesWeightValues()), ElementsAre(5, 6, 7));
  EXPECT_FALSE(VEQNetwork::networkWithLinksIndexedFrom_toIndices(kThreeSources, kThreeTargets)
                   ->isDirected());
  EXPECT_TRUE(
      VEQNetwork::networkWithLinksIndexedFrom_toIndices_directed(kThreeSources, kThreeTargets, true)
          ->isDirected());
  EXPECT_EQ(VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices(9, kThreeSources,
                                                                            kThreeTargets)
                ->countVertices(),
            9U);
  EXPECT_TRUE(VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices_directed(
                  9, kThreeSources, kThreeTargets, true)
                  ->isDirected());
  EXPECT_FALSE(VEQNetwork::networkWithVertexCapacity_edgeCapacity(1, 1)->isDirected());
  EXPECT_TRUE(
      VEQNetwork::networkWithVertexCapacity_edgeCapacity_directed(1, 1, true)->isDirected());
  const auto empty =
      VEQNetwork::networkWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
          1, 1, true, false, true);
  EXPECT_FALSE(empty->isVertexWeighted());
  EXPECT_TRUE(empty->isEdgeWeighted());
}

TEST(NetworkConstruction, CapacitiesMakeAnEmptyNetworkWithTheGivenFlags) {
  for (const bool directed : {false, true}) {
    for (const bool vertexWeighted : {false, true}) {
      for (const bool edgeWeighted : {false, true}) {
        const auto network =
            VEQNetwork::initWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
                5, 7, directed, vertexWeighted, edgeWeighted);
        ASSERT_TRUE(network);
        EXPECT_EQ(network->countVertices(), 0U);
        EXPECT_EQ(network->countEdges(), 0U);
        EXPECT_EQ(network->isDirected(), directed);
        EXPECT_EQ(network->isVertexWeighted(), vertexWeighted);
        EXPECT_EQ(network->isEdgeWeighted(), edgeWeighted);
        EXPECT_TRUE(network->isEditable());
        EXPECT_EQ(network->verticesWeightValues()->count(), 0U);
        EXPECT_EQ(network->calcDegrees()->count(), 0U);
        EXPECT_EQ(network->calcInStrengths()->count(), 0U);
        EXPECT_TRUE(network->vertices().empty());
        EXPECT_FALSE(network->vertexWithName("0"));
        EXPECT_TRUE(network->verticesWithName("0").empty());
      }
    }
  }
}

TEST(NetworkConstruction, PropertiesStartEmpty) {
  const auto network = drawUndirected("0-1");
  EXPECT_TRUE(network->propertiesOfVertices()->empty());
  EXPECT_TRUE(network->propertiesOfEdges()->empty());
  EXPECT_THAT(network->keysForPropertiesOfVertices(), IsEmpty());
  EXPECT_THAT(network->keysForPropertiesOfEdges(), IsEmpty());
}

TEST(NetworkConstruction, AHandleAtOrBeyondTheCountIsARangeFailure) {
  const auto network = drawUndirected("0-1");
  EXPECT_EQ(network->vertexAtIndex(1)->identification(), 1U);
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(network->vertexAtIndex(2)); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(network->vertexAtIndex(UINT64_MAX)); }));
  EXPECT_EQ(network->edgeAtIndex(0)->identification(), 0U);
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(network->edgeAtIndex(1)); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(network->edgeAtIndex(UINT64_MAX)); }));
}

TEST(NetworkConstruction, BlockingStopsWeightsOnlyAndForEver) {
  const auto network = drawUndirected("0-1 1-2");
  network->blockEditing();
  EXPECT_FALSE(network->isEditable());
  insert(*network, "0-2");
  EXPECT_EQ(network->countEdges(), 3U);
  network->setPropertyValue_forKey_atVertexIndex("A", "Name", 0);
  EXPECT_EQ(network->vertexAtIndex(0)->description(), "A");
  network->setWeightValue_atVertexIndex(3.0f, 0);
  EXPECT_FALSE(network->isVertexWeighted());
  network->blockEditing();
  EXPECT_FALSE(network->isEditable());
}

TEST(NetworkConstruction, TheMutableNetworkIsAnEmptyClassOfItsOwn) {
  EXPECT_TRUE(std::is_empty_v<VEQMutableNetwork>);
  EXPECT_FALSE((std::is_base_of_v<VEQNetwork, VEQMutableNetwork>));
}

}  // namespace
}  // namespace veq::test::construction_test
