#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <random>

#include "tests/support/log_capture.hpp"
#include "tests/support/network_dump.hpp"
#include "tests/support/rounds.hpp"

namespace veq::connected_components_test {
namespace {

using Indices = std::vector<std::uint64_t>;
using Lines = std::vector<std::string>;

Owned<VEQNetwork> network(std::uint64_t count, const Indices& from, const Indices& to,
                          bool directed = false) {
  return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
      count, VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), directed);
}

std::string messageOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "nothing thrown";
}

TEST(ConnectedSubNetworks, DirectedEdgesJoinTheirEndsBothWays) {
  const test::LogCapture log;
  const auto parts = network(3, {0, 2}, {1, 1}, true)->connectedSubNetworksArray();
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_EQ(test::dump(parts[0].get()), "3 vertices directed\n0-1 2-1 \nof vertices:\nof edges:\n");
}

TEST(ConnectedSubNetworks, AreOrderedByTheirLowestVertexAndRenumbered) {
  const test::LogCapture log;
  const auto parts = network(4, {0}, {3})->connectedSubNetworksArray();
  ASSERT_EQ(parts.size(), 3u);
  EXPECT_EQ(test::dump(parts[0].get()), "2 vertices undirected\n0-1 \nof vertices:\nof edges:\n");
  EXPECT_EQ(test::dump(parts[1].get()), "1 vertices undirected\n\nof vertices:\nof edges:\n");
  EXPECT_EQ(test::dump(parts[2].get()), "1 vertices undirected\n\nof vertices:\nof edges:\n");
  EXPECT_EQ(log.lines(), (Lines{"Loading Weighted Network? NO", "Loading Weighted Network? NO",
                                "Loading Weighted Network? NO"}));
}

TEST(ConnectedSubNetworks, KeepSelfLoopsAndParallelEdges) {
  const test::LogCapture log;
  const auto parts = network(3, {2, 2, 1, 2}, {2, 1, 2, 2})->connectedSubNetworksArray();
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(test::dump(parts[1].get()),
            "2 vertices undirected\n1-1 1-0 0-1 1-1 \nof vertices:\nof edges:\n");
  EXPECT_EQ(parts[1]->countEdgesOfVertexAtIndex(1), 6u);
}

TEST(ConnectedSubNetworks, OfAnEmptyNetworkThereAreNone) {
  const test::LogCapture log;
  EXPECT_TRUE(
      VEQNetwork::initWithVertexCapacity_edgeCapacity(3, 3)->connectedSubNetworksArray().empty());
  EXPECT_EQ(log.lines(), Lines());
}

TEST(ConnectedSubNetworks, CarryPropertiesButNoWeights) {
  const test::LogCapture log;
  const auto weights = VEQNumberArray::ofFloats({5, 6});
  const auto parent =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({0, 3}), VEQNumberArray::ofIndices({2, 1}), false, nullptr,
          &weights);
  parent->vertexAtIndex(0)->setName("a");
  parent->vertexAtIndex(3)->setName("d");
  parent->edgeAtIndex(1)->setName("d-b");
  const auto parts = parent->connectedSubNetworksArray();
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(test::dump(parts[0].get()),
            "2 vertices undirected\n0-1 \nof vertices:\nName (0): s:a null\n"
            "of edges:\nName (0): null\n");
  EXPECT_EQ(test::dump(parts[1].get()),
            "2 vertices undirected\n1-0 \nof vertices:\nName (0): null s:d\n"
            "of edges:\nName (0): s:d-b\n");
}

TEST(ConnectedSubNetworks, AComponentWithoutEdgesHasNoEdgeProperties) {
  const test::LogCapture log;
  const auto parent = network(3, {0}, {1});
  parent->edgeAtIndex(0)->setName("e");
  const auto parts = parent->connectedSubNetworksArray();
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0]->keysForPropertiesOfEdges(), Lines{"Name"});
  EXPECT_EQ(parts[1]->keysForPropertiesOfEdges(), Lines());
}

TEST(ConnectedSubNetworks, AnInvalidatedHandleThrowsOnceItsComponentIsReached) {
  const auto parent = network(4, {2}, {3});
  parent->vertexAtIndex(1)->invalidateNetwork();
  const test::LogCapture log;
  EXPECT_EQ(messageOf([&] { (void)parent->connectedSubNetworksArray(); }),
            "The Related Network of this vertex is not valid.");
  EXPECT_EQ(log.lines(), (Lines{"Loading Weighted Network? NO", "Loading Weighted Network? NO"}));
  const auto other = network(2, {0}, {1});
  other->edgeAtIndex(0)->invalidateNetwork();
  EXPECT_EQ(messageOf([&] { (void)other->connectedSubNetworksArray(); }),
            "The Related Network of this vertex is not valid.");
}

TEST(ConnectedSubNetworks, OutliveTheirParentAndHoldTheirOwnProperties) {
  const test::LogCapture log;
  auto parent = network(2, {0}, {1});
  parent->vertexAtIndex(1)->setName("b");
  const auto parts = parent->connectedSubNetworksArray();
  parent->vertexAtIndex(1)->setName("changed");
  parent.reset();
  EXPECT_EQ(parts[0]->vertexAtIndex(1)->description(), "b");
}

TEST(ConnectedSubNetworks, AHundredThousandIsolatedVerticesTakeNoSquareOfTheirNumber) {
  const DiagnosticSink before = setDiagnosticSink({});
  const auto parts = network(100'000, {}, {})->connectedSubNetworksArray();
  setDiagnosticSink(before);
  ASSERT_EQ(parts.size(), 100'000u);
  EXPECT_EQ(parts.back()->countVertices(), 1u);
}

TEST(LargestConnectedSubNetwork, OfTwoEqualOnesTheFirstIsTaken) {
  const test::LogCapture log;
  const auto parent = network(6, {0, 2, 1, 3}, {2, 4, 3, 5});
  parent->vertexAtIndex(0)->setName("zero");
  EXPECT_EQ(test::dump(parent->largestConnectedSubNetwork().get()),
            "3 vertices undirected\n0-1 1-2 \nof vertices:\nName (0): s:zero null null\n"
            "of edges:\n");
}

TEST(LargestConnectedSubNetwork, KeepsWeightsAndLogsThoseOfItsEdges) {
  const auto vertexWeights = VEQNumberArray::ofFloats({9, 1, 2, 4});
  const auto edgeWeights = VEQNumberArray::ofFloats({0.5f, 7, 0.25f});
  const auto parent =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({1, 0, 3}), VEQNumberArray::ofIndices({2, 0, 1}), true,
          &vertexWeights, &edgeWeights);
  const test::LogCapture log;
  const auto largest = parent->largestConnectedSubNetwork();
  EXPECT_EQ(test::dump(largest.get()),
            "3 vertices directed\n0-1 2-0 \nvertices (1, 2, 4)\nedges (0.5, 0.25)\n"
            "of vertices:\nof edges:\n");
  EXPECT_EQ(log.lines(), (Lines{"verticesWeights count:2", "verticesWeights:{\n(0.5, 0.25)\n",
                                "Loading Weighted Network? YES",
                                "The Network: {\n" + largest->description() + "\n"}));
}

TEST(LargestConnectedSubNetwork, WithoutEdgeWeightsTheLogNamesNone) {
  const auto parent = network(2, {0}, {1});
  parent->setWeightValue_atVertexIndex(3, 1);
  const test::LogCapture log;
  const auto largest = parent->largestConnectedSubNetwork();
  EXPECT_EQ(largest->verticesWeightValues()->description(), "(0, 3)");
  EXPECT_FALSE(largest->isEdgeWeighted());
  EXPECT_EQ(log.lines(), (Lines{"verticesWeights count:0", "verticesWeights:{\n(null)\n",
                                "Loading Weighted Network? NO",
                                "The Network: {\n" + largest->description() + "\n"}));
}

TEST(LargestConnectedSubNetwork, OfAnEmptyNetworkIsEmpty) {
  const test::LogCapture log;
  const auto parent =
      VEQNetwork::initWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
          5, 5, true, true, true);
  const auto largest = parent->largestConnectedSubNetwork();
  ASSERT_TRUE(largest);
  EXPECT_EQ(largest->countVertices(), 0u);
  EXPECT_TRUE(largest->isDirected());
  EXPECT_TRUE(largest->isEdgeWeighted());
  EXPECT_EQ(log.lines()[1], "verticesWeights:{\n()\n");
}

TEST(LargestConnectedSubNetwork, AnInvalidatedHandleOfAWeightedEdgeThrowsBeforeItLogs) {
  const auto parent = network(2, {0}, {1});
  parent->setWeightValue_atEdgeIndex(2, 0);
  parent->edgeAtIndex(0)->invalidateNetwork();
  const test::LogCapture log;
  EXPECT_EQ(messageOf([&] { (void)parent->largestConnectedSubNetwork(); }),
            "The Related Network of this edge is not valid.");
  EXPECT_EQ(log.lines(), Lines());
}

// The same components by other means: sets merged edge by edge, handles gathered by vertex, and
// the public constructor.
class Oracle {
 public:
  explicit Oracle(const VEQNetwork& parent) : parent_(parent), root_(parent.countVertices()) {
    std::iota(root_.begin(), root_.end(), 0);
    for (const VEQEdge& edge : parent.edges()) {
      const std::uint64_t a = find(edge.fromVertex()->identification());
      const std::uint64_t b = find(edge.toVertex()->identification());
      root_[std::max(a, b)] = std::min(a, b);
    }
  }

  std::vector<std::string> parts() const {
    std::vector<std::string> result;
    for (std::uint64_t v = 0; v < root_.size(); ++v) {
      if (root_[v] == v)
        result.push_back(test::dump(
            VEQNetwork::initWithVertices_edges_directed(vertices(v), edges(v), parent_.isDirected())
                .get()));
    }
    return result;
  }

  std::string largest() const {
    std::uint64_t best = 0;
    for (std::uint64_t v = 0; v < root_.size(); ++v) {
      if (root_[v] == v && vertices(v).size() > vertices(best).size()) best = v;
    }
    const VEQNumberArray vertexWeights = weights(vertices(best));
    const VEQNumberArray edgeWeights = weights(edges(best));
    return test::dump(VEQNetwork::initWithVertices_edges_directed_verticesWeights_edgesWeights(
                          vertices(best), edges(best), parent_.isDirected(),
                          parent_.isVertexWeighted() ? &vertexWeights : nullptr,
                          parent_.isEdgeWeighted() ? &edgeWeights : nullptr)
                          .get());
  }

 private:
  std::uint64_t find(std::uint64_t v) const {
    while (root_[v] != v) v = root_[v];
    return v;
  }
  std::vector<Shared<VEQVertex>> vertices(std::uint64_t root) const {
    std::vector<Shared<VEQVertex>> result;
    for (std::uint64_t v = 0; v < root_.size(); ++v) {
      if (find(v) == root) result.push_back(parent_.vertexAtIndex(v));
    }
    return result;
  }
  std::vector<Shared<VEQEdge>> edges(std::uint64_t root) const {
    std::vector<Shared<VEQEdge>> result;
    for (std::uint64_t e = 0; e < parent_.countEdges(); ++e) {
      const auto edge = parent_.edgeAtIndex(e);
      if (find(edge->fromVertex()->identification()) == root) result.push_back(edge);
    }
    return result;
  }
  template <class Handles>
  static VEQNumberArray weights(const Handles& handles) {
    VEQNumberArray result = VEQNumberArray::ofFloats({});
    for (const auto& handle : handles) result.addObject(handle->weight());
    return result;
  }

  const VEQNetwork& parent_;
  Indices root_;
};

TEST(ConnectedComponents, EqualThoseFoundByMergingSetsOnRandomNetworks) {
  const test::LogCapture log;
  std::mt19937 random(5);
  for (int round = 0; round < test::rounds(1500); ++round) {
    const std::uint64_t n = 1 + random() % 12;
    Indices from(random() % 12);
    Indices to(from.size());
    for (auto& end : from) end = random() % n;
    for (auto& end : to) end = random() % n;
    const auto parent = network(n, from, to, random() % 2 == 0);
    if (random() % 2 == 0) parent->vertexAtIndex(random() % n)->setName("named");
    if (random() % 2 == 0) parent->setPropertyValue_forKey_atVertexIndex(2.5, "number", 0);
    if (random() % 3 == 0) parent->setWeightValue_atVertexIndex(2, random() % n);
    if (!from.empty() && random() % 2 == 0) {
      parent->setPropertyValue_forKey_atEdgeIndex("e", "label", random() % from.size());
      parent->setWeightValue_atEdgeIndex(0.5f, random() % from.size());
    }
    const Oracle oracle(*parent);
    std::vector<std::string> parts;
    for (const auto& part : parent->connectedSubNetworksArray()) {
      parts.push_back(test::dump(part.get()));
    }
    EXPECT_EQ(parts, oracle.parts());
    EXPECT_EQ(test::dump(parent->largestConnectedSubNetwork().get()), oracle.largest());
  }
}

}  // namespace
}  // namespace veq::connected_components_test
