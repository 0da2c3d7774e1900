#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq::test::editing_test {
namespace {

using testing::Each;
using testing::ElementsAre;

std::uint64_t edgeCapacity(const VEQNetwork& network) {
  return internal::CoreAccess::of(network).edgesCapacity;
}

std::uint64_t vertexCapacity(const VEQNetwork& network) {
  return internal::CoreAccess::of(network).vertexCapacity;
}

void setNumbers(VEQNetwork& network, const char* key, std::initializer_list<double> values) {
  network.setPropertiesOfEdges_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles(values)), key);
}

TEST(EdgeInsertion, ThreeEdgesIntoCapacityZeroMakeACapacityOfSix) {
  const auto network = drawUndirected("", 4);
  EXPECT_EQ(edgeCapacity(*network), 0U);
  insert(*network, "0-1 1-2 2-3");
  EXPECT_EQ(edgeCapacity(*network), 6U);
}

TEST(EdgeInsertion, ASufficientCapacityStaysAsItIs) {
  const auto network = drawDirected("", 4);
  insert(*network, "0-1 1-2 2-3");
  insert(*network, "0-1 1-2 2-3");
  EXPECT_EQ(edgeCapacity(*network), 6U);
  insert(*network, "0-3");
  EXPECT_EQ(edgeCapacity(*network), 14U);
}

TEST(EdgeInsertion, ConstructionReservesNothingMore) {
  const auto network = drawUndirected("0-1 1-2");
  EXPECT_EQ(edgeCapacity(*network), 2U);
  EXPECT_EQ(vertexCapacity(*network), 3U);
  insert(*network, "0-2");
  EXPECT_EQ(edgeCapacity(*network), 6U);
  EXPECT_EQ(vertexCapacity(*network), 3U);
  EXPECT_EQ(network->countVertices(), 3U);
}

TEST(EdgeInsertion, NoEdgesChangeNothing) {
  const auto network = drawUndirected("0-1");
  setNumbers(*network, "Length", {1.5});
  network->addEdgesFromVerticesIndices_toVerticesIndices_count(nullptr, nullptr, 0);
  EXPECT_EQ(network->countEdges(), 1U);
  EXPECT_EQ(edgeCapacity(*network), 1U);
  EXPECT_EQ(columnOf(*network->propertiesOfEdges(), "Length")->count(), 1U);
  EXPECT_EQ(network->edges().count(), 1U);
}

TEST(EdgeInsertion, ABadPairIsNamedWithTheVertexCountAndRejectsTheWholeCall) {
  const auto network = drawUndirected("0-1", 9);
  network->setPropertyValue_forKey_atEdgeIndex("x", "Kind", 0);
  EXPECT_EQ(invalidArgumentText([&] { insert(*network, "0-1 8-8 2-9 9-9"); }),
            "Edge lists contains indices out of bounds:from 2 to 9 (max vertex inddex:9)");
  EXPECT_EQ(network->countEdges(), 1U);
  EXPECT_EQ(edgeCapacity(*network), 1U);
  EXPECT_EQ(network->countEdgesOfVertexAtIndex(8), 0U);
  EXPECT_EQ(network->countEdgesOfVertexAtIndex(0), 1U);
  EXPECT_THAT(texts(*columnOf(*network->propertiesOfEdges(), "Kind")), ElementsAre("x"));
  EXPECT_EQ(invalidArgumentText([&] { insert(*network, "12-3"); }),
            "Edge lists contains indices out of bounds:from 12 to 3 (max vertex inddex:9)");
  EXPECT_EQ(invalidArgumentText([&] { insert(*network, "18446744073709551615-4294967296"); }),
            "Edge lists contains indices out of bounds:from 18446744073709551615 to 4294967296 "
            "(max vertex inddex:9)");
}

TEST(EdgeInsertion, AnEmptyNetworkRejectsEveryEdge) {
  const auto network = VEQNetwork::initWithVertexCapacity_edgeCapacity(8, 8);
  EXPECT_EQ(invalidArgumentText([&] { insert(*network, "0-0"); }),
            "Edge lists contains indices out of bounds:from 0 to 0 (max vertex inddex:0)");
  EXPECT_EQ(network->countEdges(), 0U);
}

TEST(EdgeInsertion, NewEdgesOfAWeightedNetworkWeighOne) {
  const auto network = drawUndirected("0-1");
  network->setWeightValue_atEdgeIndex(2.5f, 0);
  insert(*network, "0-1 1-1");
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(2.5, 1.0, 1.0));
}

TEST(EdgeInsertion, EdgeColumnsGrowByUnsetValues) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atEdgeIndex("x", "Kind", 0);
  setNumbers(*network, "Length", {1.5});
  network->setPropertiesOfEdges_forKey(VEQVector2dArray::initWithSize_precision(1, 1), "Place");
  insert(*network, "1-0 0-0");
  EXPECT_THAT(texts(*columnOf(*network->propertiesOfEdges(), "Kind")),
              ElementsAre("x", "<null>", "<null>"));
  EXPECT_TRUE(columnOf(*network->propertiesOfEdges(), "Kind")->objectAtIndex(2).isNull());
  EXPECT_THAT(texts(*columnOf(*network->propertiesOfEdges(), "Length")),
              ElementsAre("1.5", "0", "0"));
  EXPECT_THAT(texts(*columnOf(*network->propertiesOfEdges(), "Place")),
              ElementsAre("0 0", "0 0", "0 0"));
}

TEST(EdgeInsertion, AColumnSharedWithTheCallerGrowsAndVertexColumnsDoNot) {
  const auto network = drawUndirected("0-1");
  const auto mine = std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({4}));
  network->setPropertiesOfEdges_forKey(mine, "Length");
  network->setPropertyValue_forKey_atVertexIndex("A", "Name", 0);
  insert(*network, "0-1");
  EXPECT_THAT(doubles(*mine), ElementsAre(4, 0));
  EXPECT_EQ(columnOf(*network->propertiesOfVertices(), "Name")->count(), 2U);
}

TEST(EdgeInsertion, AColumnOfAnotherLengthKeepsItsDifference) {
  const auto network = drawUndirected("0-1 1-2 0-2");
  setNumbers(*network, "Short", {7});
  setNumbers(*network, "Long", {1, 2, 3, 4, 5});
  insert(*network, "0-1 0-2");
  EXPECT_EQ(columnOf(*network->propertiesOfEdges(), "Short")->count(), 3U);
  EXPECT_EQ(columnOf(*network->propertiesOfEdges(), "Long")->count(), 7U);
}

TEST(EdgeInsertion, OneColumnUnderTwoKeysGrowsOnceForEach) {
  const auto network = drawUndirected("0-1");
  const auto column = std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({4}));
  network->setPropertiesOfEdges_forKey(column, "One");
  network->setPropertiesOfEdges_forKey(column, "Two");
  insert(*network, "0-1 0-1 0-1");
  EXPECT_THAT(doubles(*column), ElementsAre(4, 0, 0, 0, 0, 0, 0));
}

TEST(EdgeInsertion, RepeatedEdgesAreKept) {
  const auto network = drawDirected("0-1");
  insert(*network, "0-1");
  EXPECT_EQ(network->countEdges(), 2U);
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedFromVertexAtIndex(0)), ElementsAre(0, 1));
  const auto undirected = drawUndirected("0-1");
  insert(*undirected, "1-0");
  EXPECT_THAT(indices(*undirected->indicesOfEdgesLinkedFromVertexAtIndex(0)), ElementsAre(0, 1));
  EXPECT_EQ(undirected->edgeAtIndex(1)->fromVertex()->identification(), 1U);
  EXPECT_EQ(undirected->edgeAtIndex(1)->toVertex()->identification(), 0U);
}

TEST(EdgeInsertion, SelfLoopsEnterTwiceUndirectedAndOncePerSideDirected) {
  const auto undirected = drawUndirected("0-1");
  insert(*undirected, "1-1");
  EXPECT_THAT(indices(*undirected->indicesOfEdgesLinkedFromVertexAtIndex(1)), ElementsAre(0, 1, 1));
  const auto directed = drawDirected("0-1");
  insert(*directed, "1-1");
  EXPECT_THAT(indices(*directed->indicesOfEdgesLinkedFromVertexAtIndex(1)), ElementsAre(1));
  EXPECT_THAT(indices(*directed->indicesOfEdgesLinkedToVertexAtIndex(1)), ElementsAre(0, 1));
}

TEST(EdgeInsertion, SnapshotsKeepTheirLength) {
  const auto network = drawUndirected("0-1 1-2");
  const VEQEdgeArray edges = network->edges();
  const VEQEdgeArray ofVertex = network->edgesLinkedFromVertexAtIndex(1);
  insert(*network, "0-2 1-1");
  EXPECT_THAT(indices(edges), ElementsAre(0, 1));
  EXPECT_THAT(indices(ofVertex), ElementsAre(0, 1));
  EXPECT_EQ(network->edges().count(), 4U);
}

TEST(Linking, GivesTheNetworksHandleOfTheNewEdge) {
  const auto network = drawDirected("0-1", 3);
  const auto edge = network->linkVertex_to(*network->vertexAtIndex(2), *network->vertexAtIndex(0));
  EXPECT_EQ(edge, network->edgeAtIndex(1));
  EXPECT_EQ(edge->fromVertex()->identification(), 2U);
  EXPECT_EQ(edge->toVertex()->identification(), 0U);
  EXPECT_TRUE(edge->isValid());
}

TEST(Linking, WithAWeightMakesTheNetworkWeightedAndEarlierEdgesZero) {
  const auto network = drawUndirected("0-1 1-2");
  const auto edge =
      network->linkVertex_to_weight(*network->vertexAtIndex(0), *network->vertexAtIndex(2), 2.5f);
  EXPECT_TRUE(network->isEdgeWeighted());
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(0.0, 0.0, 2.5));
  EXPECT_EQ(edge->weight(), 2.5f);
  network->linkVertex_to(*network->vertexAtIndex(0), *network->vertexAtIndex(2));
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(0.0, 0.0, 2.5, 1.0));
}

TEST(Linking, OnABlockedNetworkOnlyTheWeightIsSkipped) {
  const auto unweighted = drawUndirected("0-1");
  unweighted->blockEditing();
  const auto edge = unweighted->linkVertex_to_weight(*unweighted->vertexAtIndex(0),
                                                     *unweighted->vertexAtIndex(1), 2.5f);
  EXPECT_EQ(edge->identification(), 1U);
  EXPECT_FALSE(unweighted->isEdgeWeighted());

  const auto weighted = drawUndirected("0-1");
  weighted->setWeightValue_atEdgeIndex(4.0f, 0);
  weighted->blockEditing();
  static_cast<void>(weighted->linkVertex_to_weight(*weighted->vertexAtIndex(0),
                                                   *weighted->vertexAtIndex(1), 2.5f));
  EXPECT_THAT(doubles(*weighted->edgesWeightValues()), ElementsAre(4.0, 1.0));
}

TEST(Linking, RefusesHandlesOfAnotherNetwork) {
  const auto network = drawUndirected("0-1");
  const auto other = drawUndirected("0-1");
  const auto own = network->vertexAtIndex(0);
  const auto stranger = other->vertexAtIndex(0);
  const auto texts = {
      invalidArgumentText([&] { static_cast<void>(network->linkVertex_to(*own, *stranger)); }),
      invalidArgumentText([&] { static_cast<void>(network->linkVertex_to(*stranger, *own)); }),
      invalidArgumentText(
          [&] { static_cast<void>(network->linkVertex_to_weight(*own, *stranger, 1.0f)); }),
      invalidArgumentText(
          [&] { static_cast<void>(network->linkVertex_to_weight(*stranger, *own, 1.0f)); })};
  EXPECT_THAT(texts, Each("Both vertices must be in this network."));
  EXPECT_EQ(network->countEdges(), 1U);
  EXPECT_FALSE(network->isEdgeWeighted());
}

TEST(Linking, AcceptsAHandleThatWasInvalidatedAlone) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(0);
  vertex->invalidateNetwork();
  EXPECT_EQ(network->linkVertex_to(*vertex, *vertex)->identification(), 1U);
}

TEST(Linking, AHandMadeHandleBeyondTheCountIsOutOfBounds) {
  const auto network = drawUndirected("0-1");
  const auto beyond = VEQVertex::initAtNetwork_identification(*network, 7);
  const auto own = network->vertexAtIndex(1);
  const char* text = "Edge lists contains indices out of bounds:from 1 to 7 (max vertex inddex:2)";
  EXPECT_EQ(invalidArgumentText([&] { static_cast<void>(network->linkVertex_to(*own, *beyond)); }),
            text);
  EXPECT_EQ(invalidArgumentText(
                [&] { static_cast<void>(network->linkVertex_to_weight(*own, *beyond, 2.0f)); }),
            text);
  EXPECT_EQ(invalidArgumentText(
                [&] { static_cast<void>(network->linkVertex_to_weight(*beyond, *own, 2.0f)); }),
            "Edge lists contains indices out of bounds:from 7 to 1 (max vertex inddex:2)");
  EXPECT_EQ(network->countEdges(), 1U);
  EXPECT_FALSE(network->isEdgeWeighted());
}

TEST(ReLinking, ChecksItsVerticesAndDoesNothing) {
  const auto network = drawUndirected("0-1 1-2");
  const auto own = network->vertexAtIndex(0);
  EXPECT_FALSE(network->reLinkVertex_to_atIndex(*own, *network->vertexAtIndex(2), 0));
  EXPECT_FALSE(network->reLinkVertex_to_weight_atIndex(*own, *own, 3.0f, UINT64_MAX));
  EXPECT_EQ(network->countEdges(), 2U);
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_EQ(network->edgeAtIndex(0)->toVertex()->identification(), 1U);

  const auto other = drawUndirected("0-1");
  const auto stranger = other->vertexAtIndex(0);
  const auto texts = {
      invalidArgumentText(
          [&] { static_cast<void>(network->reLinkVertex_to_atIndex(*own, *stranger, 0)); }),
      invalidArgumentText(
          [&] { static_cast<void>(network->reLinkVertex_to_atIndex(*stranger, *own, 0)); }),
      invalidArgumentText([&] {
        static_cast<void>(network->reLinkVertex_to_weight_atIndex(*own, *stranger, 1.0f, 0));
      }),
      invalidArgumentText([&] {
        static_cast<void>(network->reLinkVertex_to_weight_atIndex(*stranger, *own, 1.0f, 0));
      })};
  EXPECT_THAT(texts, Each("Both links must be in this network."));
}

}  // namespace
}  // namespace veq::test::editing_test
