#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::queries_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void weigh(VEQNetwork& network, std::initializer_list<float> weights) {
  network.setEdgesWeightValues(VEQNumberArray::ofFloats(weights));
}

void weighVertices(VEQNetwork& network) {
  network.setVerticesWeightValues(
      *VEQNumberArray::initWithFloatScalar_count(9.0f, network.countVertices()));
}

TEST(TopologyQueries, AVertexWithoutEdgesHasNothing) {
  for (const bool directed : {false, true}) {
    const auto network = draw("0-1", directed, 3);
    EXPECT_EQ(network->countEdgesOfVertexAtIndex(2), 0U);
    EXPECT_EQ(network->countInEdgesOfVertexAtIndex(2), 0U);
    EXPECT_EQ(network->countToVerticesOfVertexAtIndex(2), 0U);
    EXPECT_EQ(network->countFromVerticesOfVertexAtIndex(2), 0U);
    EXPECT_EQ(network->calcDegreeOfVertexAtIndex(2), 0.0);
    EXPECT_EQ(network->calcInDegreeOfVertexAtIndex(2), 0.0);
    EXPECT_EQ(network->calcStrengthOfVertexAtIndex(2), 0.0);
    EXPECT_EQ(network->calcInStrengthOfVertexAtIndex(2), 0.0);
    EXPECT_TRUE(network->edgesLinkedFromVertexAtIndex(2).empty());
    EXPECT_TRUE(network->edgesLinkedToVertexAtIndex(2).empty());
    EXPECT_TRUE(network->verticesLinkedFromVertexAtIndex(2).empty());
    EXPECT_TRUE(network->verticesLinkedToVertexAtIndex(2).empty());
    EXPECT_EQ(network->indicesOfEdgesLinkedFromVertexAtIndex(2)->count(), 0U);
    EXPECT_EQ(network->indicesOfVerticesLinkedToVertexAtIndex(2)->count(), 0U);
    weigh(*network, {5.0f});
    weighVertices(*network);
    EXPECT_EQ(network->calcStrengthOfVertexAtIndex(2), 0.0);
    EXPECT_EQ(network->calcInStrengthOfVertexAtIndex(2), 0.0);
  }
}

TEST(TopologyQueries, UndirectedSelfLoopCountsTwice) {
  const auto network = drawUndirected("0-1 2-2");
  weigh(*network, {1.0f, 2.5f});
  EXPECT_EQ(network->countEdgesOfVertexAtIndex(2), 2U);
  EXPECT_EQ(network->calcDegreeOfVertexAtIndex(2), 2.0);
  EXPECT_THAT(doubles(*network->calcDegrees()), ElementsAre(1, 1, 2));
  EXPECT_THAT(doubles(*network->calcStrengths()), ElementsAre(1.0, 1.0, 5.0));
  const VEQEdgeArray edges = network->edgesLinkedFromVertexAtIndex(2);
  EXPECT_THAT(indices(edges), ElementsAre(1, 1));
  EXPECT_EQ(edges[0], edges[1]);
  EXPECT_THAT(indices(network->verticesLinkedToVertexAtIndex(2)), ElementsAre(2, 2));
}

TEST(TopologyQueries, DirectedSelfLoopCountsOncePerSide) {
  const auto network = drawDirected("1-1");
  EXPECT_EQ(network->countEdgesOfVertexAtIndex(1), 1U);
  EXPECT_EQ(network->countInEdgesOfVertexAtIndex(1), 1U);
  EXPECT_THAT(indices(network->edgesLinkedToVertexAtIndex(1)), ElementsAre(0));
}

TEST(TopologyQueries, ParallelEdgesRepeatTheirNeighbour) {
  const auto network = drawDirected("0-1 0-1");
  EXPECT_THAT(indices(network->verticesLinkedFromVertexAtIndex(0)), ElementsAre(1, 1));
  EXPECT_THAT(indices(network->verticesLinkedToVertexAtIndex(1)), ElementsAre(0, 0));
  EXPECT_THAT(indices(network->edgesLinkedFromVertexAtIndex(0)), ElementsAre(0, 1));
}

TEST(TopologyQueries, ListsFollowTheOrderOfInsertion) {
  const auto network = drawUndirected("3-0 0-2 1-0 0-2");
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFromVertexAtIndex(0)),
              ElementsAre(3, 2, 1, 2));
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedFromVertexAtIndex(0)), ElementsAre(0, 1, 2, 3));
  EXPECT_EQ(network->indicesOfVerticesLinkedFromVertexAtIndex(0)->elementType(),
            ElementType::kUnsignedInteger);
}

// Three edges out of vertex 0 and one into it: what is asked for tells in- from out-lists.
TEST(TopologyQueries, InDegreeOfOneVertexIsItsOutLengthButNotInDegrees) {
  const auto network = drawDirected("0-1 0-2 0-3 1-0");
  EXPECT_EQ(network->countInEdgesOfVertexAtIndex(0), 1U);
  EXPECT_EQ(network->countFromVerticesOfVertexAtIndex(0), 1U);
  EXPECT_THAT(doubles(*network->calcInDegrees()), ElementsAre(1, 1, 1, 1));
  EXPECT_EQ(network->calcInDegreeOfVertexAtIndex(0), 3.0);
  EXPECT_THAT(doubles(*network->calcDegrees()), ElementsAre(3, 1, 0, 0));
  EXPECT_EQ(network->calcDegrees()->elementType(), ElementType::kDouble);
}

TEST(TopologyQueries, CountFromVerticesOfAHandleIsTheOutCount) {
  const auto network = drawDirected("0-1 0-2 0-3 1-0");
  const auto vertex = network->vertexAtIndex(0);
  EXPECT_EQ(network->countFromVerticesOfVertex(*vertex), 3U);
  EXPECT_EQ(network->countToVerticesOfVertex(*vertex), 3U);
  EXPECT_EQ(network->countEdgesOfVertex(*vertex), 3U);
  EXPECT_EQ(network->countInEdgesOfVertex(*vertex), 1U);
}

TEST(TopologyQueries, EveryOtherHandleFormAnswersAsItsIndexForm) {
  const auto network = drawDirected("0-1 0-2 0-3 1-0");
  weigh(*network, {1.0f, 2.0f, 4.0f, 8.0f});
  weighVertices(*network);
  const auto vertex = network->vertexAtIndex(0);
  EXPECT_EQ(network->calcDegreeOfVertex(*vertex), 3.0);
  EXPECT_EQ(network->calcInDegreeOfVertex(*vertex), 3.0);
  EXPECT_EQ(network->calcStrengthOfVertex(*vertex), 7.0);
  EXPECT_EQ(network->calcInStrengthOfVertex(*vertex), 8.0);
  EXPECT_THAT(indices(*network->edgesLinkedToVertex(*vertex)), ElementsAre(3));
  EXPECT_THAT(indices(*network->edgesLinkedFromVertex(*vertex)), ElementsAre(0, 1, 2));
  EXPECT_THAT(indices(*network->verticesLinkedToVertex(*vertex)), ElementsAre(1));
  EXPECT_THAT(indices(*network->verticesLinkedFromVertex(*vertex)), ElementsAre(1, 2, 3));
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedTo(*vertex)), ElementsAre(1));
  EXPECT_THAT(indices(*network->indicesOfVerticesLinkedFrom(*vertex)), ElementsAre(1, 2, 3));
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedToVertex(*vertex)), ElementsAre(3));
  EXPECT_THAT(indices(*network->indicesOfEdgesLinkedFromVertex(*vertex)), ElementsAre(0, 1, 2));
}

TEST(TopologyQueries, AHandleOfAnotherNetworkGivesNothing) {
  const auto network = drawUndirected("0-1");
  const auto other = drawUndirected("0-1");
  const auto stranger = other->vertexAtIndex(0);
  EXPECT_EQ(network->countEdgesOfVertex(*stranger), 0U);
  EXPECT_EQ(network->countInEdgesOfVertex(*stranger), 0U);
  EXPECT_EQ(network->countToVerticesOfVertex(*stranger), 0U);
  EXPECT_EQ(network->countFromVerticesOfVertex(*stranger), 0U);
  EXPECT_EQ(network->calcDegreeOfVertex(*stranger), 0.0);
  EXPECT_EQ(network->calcInDegreeOfVertex(*stranger), 0.0);
  EXPECT_EQ(network->calcStrengthOfVertex(*stranger), 0.0);
  EXPECT_EQ(network->calcInStrengthOfVertex(*stranger), 0.0);
  EXPECT_FALSE(network->edgesLinkedToVertex(*stranger).has_value());
  EXPECT_FALSE(network->edgesLinkedFromVertex(*stranger).has_value());
  EXPECT_FALSE(network->verticesLinkedToVertex(*stranger).has_value());
  EXPECT_FALSE(network->verticesLinkedFromVertex(*stranger).has_value());
  EXPECT_FALSE(network->indicesOfVerticesLinkedTo(*stranger));
  EXPECT_FALSE(network->indicesOfVerticesLinkedFrom(*stranger));
  EXPECT_FALSE(network->indicesOfEdgesLinkedToVertex(*stranger));
  EXPECT_FALSE(network->indicesOfEdgesLinkedFromVertex(*stranger));
}

TEST(TopologyQueries, AHandleThatWasInvalidatedAloneIsStillAnswered) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(0);
  vertex->invalidateNetwork();
  EXPECT_EQ(network->countEdgesOfVertex(*vertex), 1U);
  EXPECT_TRUE(network->edgesLinkedToVertex(*vertex).has_value());
}

TEST(TopologyQueries, AHandMadeHandleBeyondTheCountRaisesWhatItsIndexRaises) {
  const auto network = drawUndirected("0-1");
  const auto beyond = VEQVertex::initAtNetwork_identification(*network, 2);
  EXPECT_EQ(invalidArgumentText([&] { static_cast<void>(network->calcDegreeOfVertex(*beyond)); }),
            "VertexIndex must be less than count.");
  EXPECT_EQ(network->indicesOfVerticesLinkedTo(*beyond)->count(), 0U);
}

TEST(TopologyQueries, AnIndexAtTheCountRaisesInTwelveForms) {
  const auto network = drawUndirected("0-1");
  const VEQNetwork& n = *network;
  const std::vector<std::function<void(std::uint64_t)>> forms = {
      [&](auto i) { static_cast<void>(n.countEdgesOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.countInEdgesOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.countToVerticesOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.countFromVerticesOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.calcDegreeOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.calcInDegreeOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.calcStrengthOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.calcInStrengthOfVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.edgesLinkedToVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.edgesLinkedFromVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.verticesLinkedToVertexAtIndex(i)); },
      [&](auto i) { static_cast<void>(n.verticesLinkedFromVertexAtIndex(i)); }};
  for (const auto& form : forms) {
    for (const std::uint64_t index : {std::uint64_t{2}, UINT64_MAX}) {
      EXPECT_EQ(invalidArgumentText([&] { form(index); }), "VertexIndex must be less than count.");
    }
  }
}

TEST(TopologyQueries, AnIndexAtTheCountGivesEmptyIndexArrays) {
  const auto network = drawDirected("0-1");
  for (const std::uint64_t index : {std::uint64_t{2}, UINT64_MAX}) {
    EXPECT_EQ(network->indicesOfVerticesLinkedToVertexAtIndex(index)->count(), 0U);
    EXPECT_EQ(network->indicesOfVerticesLinkedFromVertexAtIndex(index)->count(), 0U);
    EXPECT_EQ(network->indicesOfEdgesLinkedToVertexAtIndex(index)->count(), 0U);
    EXPECT_EQ(network->indicesOfEdgesLinkedFromVertexAtIndex(index)->count(), 0U);
  }
}

TEST(TopologyQueries, TheHandlesInArraysAreTheNetworksOwn) {
  const auto network = drawDirected("0-1 0-2");
  EXPECT_EQ(network->edgesLinkedFromVertexAtIndex(0)[1], network->edgeAtIndex(1));
  EXPECT_EQ(network->verticesLinkedFromVertexAtIndex(0)[1], network->vertexAtIndex(2));
  EXPECT_EQ(network->vertices()[2], network->vertexAtIndex(2));
  EXPECT_EQ(network->edges()[1], network->edgeAtIndex(1));
}

// Vertex 0 sends 2 + 4 and receives 16; its out-list has two entries and its in-list one.
struct Strengths : testing::Test {
  static Owned<VEQNetwork> make(bool directed, bool edgeWeighted, bool vertexWeighted) {
    auto network = draw("0-1 0-2 1-0", directed);
    if (edgeWeighted) weigh(*network, {2.0f, 4.0f, 16.0f});
    if (vertexWeighted) weighVertices(*network);
    return network;
  }
};

TEST_F(Strengths, OfOneVertexOfADirectedNetworkTestTheVertexWeights) {
  EXPECT_EQ(make(true, false, false)->calcStrengthOfVertexAtIndex(0), 2.0);
  EXPECT_EQ(make(true, true, false)->calcStrengthOfVertexAtIndex(0), 2.0);
  EXPECT_EQ(make(true, true, true)->calcStrengthOfVertexAtIndex(0), 6.0);
  EXPECT_EQ(make(true, false, true)->calcStrengthOfVertexAtIndex(0), 2.0);
  EXPECT_EQ(make(true, false, false)->calcInStrengthOfVertexAtIndex(0), 2.0);
  EXPECT_EQ(make(true, true, false)->calcInStrengthOfVertexAtIndex(0), 2.0);
  EXPECT_EQ(make(true, true, true)->calcInStrengthOfVertexAtIndex(0), 16.0);
  EXPECT_EQ(make(true, false, true)->calcInStrengthOfVertexAtIndex(0), 1.0);
}

TEST_F(Strengths, OfOneVertexOfAnUndirectedNetworkTestTheVertexWeights) {
  EXPECT_EQ(make(false, true, false)->calcStrengthOfVertexAtIndex(0), 3.0);
  EXPECT_EQ(make(false, true, true)->calcStrengthOfVertexAtIndex(0), 22.0);
  EXPECT_EQ(make(false, true, false)->calcInStrengthOfVertexAtIndex(0), 3.0);
  EXPECT_EQ(make(false, true, true)->calcInStrengthOfVertexAtIndex(0), 22.0);
  EXPECT_EQ(make(false, false, true)->calcInStrengthOfVertexAtIndex(0), 3.0);
  EXPECT_EQ(make(false, true, true)->calcInDegreeOfVertexAtIndex(0), 3.0);
}

TEST_F(Strengths, OfAllVerticesTestTheEdgeWeights) {
  EXPECT_THAT(doubles(*make(true, true, false)->calcStrengths()), ElementsAre(6, 16, 0));
  EXPECT_THAT(doubles(*make(true, false, true)->calcStrengths()), ElementsAre(2, 1, 0));
  EXPECT_THAT(doubles(*make(true, true, false)->calcInStrengths()), ElementsAre(16, 2, 4));
  EXPECT_THAT(doubles(*make(true, false, true)->calcInStrengths()), ElementsAre(1, 1, 1));
  EXPECT_THAT(doubles(*make(false, true, false)->calcStrengths()), ElementsAre(22, 18, 4));
  EXPECT_THAT(doubles(*make(false, false, false)->calcStrengths()), ElementsAre(3, 2, 1));
}

TEST_F(Strengths, ComingInUndirectedAreCountsWithoutVertexWeights) {
  EXPECT_THAT(doubles(*make(false, true, false)->calcInStrengths()), ElementsAre(3, 2, 1));
  EXPECT_THAT(doubles(*make(false, true, true)->calcInStrengths()), ElementsAre(22, 18, 4));
  EXPECT_THAT(doubles(*make(false, false, true)->calcInStrengths()), ElementsAre(3, 2, 1));
  EXPECT_THAT(doubles(*make(false, true, false)->calcInDegrees()), ElementsAre(3, 2, 1));
}

// 2^53 + 1 + 1 loses both ones in that order; the other way round none is lost.
TEST_F(Strengths, AreAddedInDoubleAndInListOrder) {
  const auto network = drawDirected("0-1 0-1 0-1 1-0 1-0 1-0");
  weigh(*network, {9007199254740992.0f, 1.0f, 1.0f, 1.0f, 1.0f, 9007199254740992.0f});
  EXPECT_THAT(doubles(*network->calcStrengths()),
              ElementsAre(9007199254740992.0, 9007199254740994.0));
  weigh(*network, {16777216.0f, 1.0f, 1.0f, 0.0f, 0.0f, 0.0f});
  EXPECT_THAT(doubles(*network->calcStrengths()), ElementsAre(16777218.0, 0.0));
}

}  // namespace
}  // namespace veq::test::queries_test
