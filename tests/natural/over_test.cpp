#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/network_drawing.hpp"
#include "veq/natural/network.hpp"

namespace veq::test::over_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The arrays of a topology in memory of their own.
template <class Index>
struct Arrays {
  bool directed = false;
  std::vector<Index> from, to;
  std::vector<AdjacencyRow<Index>> outRows, inRows;
  std::vector<Index> outNeighbours, outEdges, inNeighbours, inEdges;

  explicit Arrays(const TopologyView& view) : directed(view.isDirected()) {
    view.visit([&](const auto& arrays) {
      from.assign(arrays.from.begin(), arrays.from.end());
      to.assign(arrays.to.begin(), arrays.to.end());
      copy(arrays.out, view.countVertices(), outRows, outNeighbours, outEdges);
      if (directed) copy(arrays.in, view.countVertices(), inRows, inNeighbours, inEdges);
    });
  }

  [[nodiscard]] TopologyMemory<Index> memory() const {
    return {
        directed, from, to, {outRows, outNeighbours, outEdges}, {inRows, inNeighbours, inEdges}};
  }

 private:
  static void copy(const auto& lists, std::uint64_t vertices,
                   std::vector<AdjacencyRow<Index>>& rows, std::vector<Index>& neighbours,
                   std::vector<Index>& edges) {
    for (std::uint64_t v = 0; v < vertices; ++v) {
      rows.push_back({static_cast<Index>(edges.size()), static_cast<Index>(lists.count(v))});
      for (const auto neighbour : lists.neighbours(v)) {
        neighbours.push_back(static_cast<Index>(neighbour));
      }
      for (const auto edge : lists.edges(v)) edges.push_back(static_cast<Index>(edge));
    }
  }
};

template <class Index = std::uint32_t>
std::shared_ptr<Arrays<Index>> arraysOf(const std::string& edges, bool directed,
                                        std::uint64_t vertices = 0) {
  return std::make_shared<Arrays<Index>>(Network(draw(edges, directed, vertices)).topology());
}

template <class Index>
Network over(const std::shared_ptr<Arrays<Index>>& arrays, const OverOptions& options = {}) {
  return Network::over(arrays->memory(), arrays, options).value();
}

TEST(NetworkOver, IsReadWhereItLies) {
  const auto arrays = arraysOf("0-1 1-2 0-2 2-2", true);
  const Network network = over(arrays);
  EXPECT_EQ(network.countVertices(), 3U);
  EXPECT_EQ(network.countEdges(), 4U);
  EXPECT_TRUE(network.isDirected());
  EXPECT_THAT(network.neighbours(0), ElementsAre(1, 2));
  EXPECT_THAT(network.edgesOf(2, Direction::kIn), ElementsAre(1, 2, 3));
  EXPECT_THAT(doubles(*network.published()->calcInDegrees()), ElementsAre(0, 1, 3));
  network.topology().visit([&](const auto& seen) {
    EXPECT_EQ(static_cast<const void*>(seen.from.data()), arrays->from.data());
    EXPECT_EQ(static_cast<const void*>(seen.in.edgePool()), arrays->inEdges.data());
  });
}

TEST(NetworkOver, MayHaveWideIndices) {
  const auto arrays = arraysOf<std::uint64_t>("0-1 1-1", false, 3);
  const Network network = over(arrays);
  EXPECT_EQ(network.topology().indexBytes(), 8U);
  EXPECT_THAT(network.neighbours(1), ElementsAre(0, 1, 1));
  EXPECT_THAT(network.neighbours(2), IsEmpty());
}

TEST(NetworkOver, MayBeEmpty) {
  for (const bool directed : {false, true}) {
    TopologyMemory<std::uint32_t> memory;
    memory.directed = directed;
    const Network network = Network::over(memory, nullptr).value();
    EXPECT_EQ(network.countVertices(), 0U);
    EXPECT_EQ(network.countEdges(), 0U);
    EXPECT_EQ(network.withMoreVertices(2).value().countVertices(), 2U);
  }
}

TEST(NetworkOver, IsCopiedByTheFirstInsertionAndLetGoOf) {
  for (const bool directed : {false, true}) {
    const auto arrays = arraysOf("0-1 1-2", directed);
    const Arrays<std::uint32_t> before = *arrays;
    Network network = over(arrays);
    EXPECT_EQ(arrays.use_count(), 2);
    insert(*network.published(), "0-2");
    EXPECT_EQ(arrays.use_count(), 1);
    EXPECT_EQ(network.addEdge(0, 0), 3U);
    const std::vector<std::uint64_t> list{1, 2, 0, 0};
    EXPECT_EQ(network.neighbours(0), std::vector(list.begin(), list.end() - (directed ? 1 : 0)));
    EXPECT_EQ(arrays->outNeighbours, before.outNeighbours);
    EXPECT_EQ(arrays->outEdges, before.outEdges);
    EXPECT_EQ(arrays->from, before.from);
  }
}

TEST(NetworkOver, KeepsTheOwnerUntilTheLastViewIsGone) {
  auto arrays = arraysOf("0-1 1-2", true);
  const std::weak_ptr<Arrays<std::uint32_t>> kept = arrays;
  std::optional<Network> network = over(arrays);
  arrays.reset();
  std::optional<TopologyView> view = network->topology();
  insert(*network->published(), "0-2");
  EXPECT_FALSE(kept.expired());
  network.reset();
  EXPECT_FALSE(kept.expired());
  view->visit([](const auto& seen) { EXPECT_EQ(seen.to[1], 2U); });
  view->visitPacked([](const auto& seen) { EXPECT_EQ(seen.in.neighbours[1], 1U); });
  view.reset();
  EXPECT_TRUE(kept.expired());
}

TEST(NetworkOver, HoldsWeightsUntilOneIsSetOrAnEdgeComes) {
  const auto arrays = arraysOf("0-1 1-2", true);
  const std::vector<float> weights{1.5F, 2.5F};
  const std::vector<float> sizes{1, 2, 3};
  OverOptions options;
  options.vertexWeights = sizes;
  options.edgeWeights = weights;
  const Network network = over(arrays, options);
  VEQNetwork& published = *network.published();
  EXPECT_THAT(doubles(*published.edgesWeightValues()), ElementsAre(1.5, 2.5));
  EXPECT_THAT(doubles(*published.verticesWeightValues()), ElementsAre(1, 2, 3));
  EXPECT_THAT(doubles(*published.calcStrengths()), ElementsAre(1.5, 2.5, 0));
  EXPECT_EQ(network.copy().value().edgeWeights(), weights);
  published.setWeightValue_atVertexIndex(9, 0);
  insert(published, "2-0");
  EXPECT_EQ(arrays.use_count(), 1);
  EXPECT_THAT(doubles(*published.edgesWeightValues()), ElementsAre(1.5, 2.5, 1));
  published.setWeightValue_atEdgeIndex(7, 1);
  EXPECT_THAT(doubles(*published.edgesWeightValues()), ElementsAre(1.5, 7, 1));
  EXPECT_THAT(doubles(*published.verticesWeightValues()), ElementsAre(9, 2, 3));
  EXPECT_THAT(weights, ElementsAre(1.5F, 2.5F));
  EXPECT_THAT(sizes, ElementsAre(1, 2, 3));
}

TEST(NetworkOver, LetsAllWeightsBeSet) {
  const std::vector<float> weights{1.5F, 2.5F};
  OverOptions options;
  options.edgeWeights = weights;
  const Network network = over(arraysOf("0-1 1-2", true), options);
  network.published()->setEdgesWeightValues(VEQNumberArray::ofDoubles({4, 5}));
  EXPECT_THAT(network.edgeWeights(), ElementsAre(4, 5));
  Network natural = over(arraysOf("0-1 1-2", true), options);
  const std::vector<float> others{6, 7};
  const std::vector<float> one{8};
  ASSERT_TRUE(natural.setEdgeWeights(others));
  ASSERT_TRUE(natural.addEdges({0}, {0}, one));
  EXPECT_THAT(natural.edgeWeights(), ElementsAre(6, 7, 8));
  EXPECT_THAT(weights, ElementsAre(1.5F, 2.5F));
}

TEST(NetworkOver, HoldsColumnsOfNumbersUntilTheyChange) {
  const auto numbers = std::make_shared<const std::vector<double>>(std::vector<double>{0.5, 1.5});
  OverOptions options;
  options.edgeColumns.set("Length",
                          VEQNumberArray::over(std::span<const double>(*numbers), numbers));
  const Network network = over(arraysOf("0-1 1-0", true), options);
  options = {};
  const auto column = network.edgeColumn("Length");
  EXPECT_EQ(static_cast<const VEQNumberArray&>(*column).VEQ_dataPointer(), numbers->data());
  EXPECT_EQ(numbers.use_count(), 2);
  insert(*network.published(), "0-0");
  EXPECT_EQ(numbers.use_count(), 1);
  EXPECT_THAT(network.edgeNumbers("Length").value(), ElementsAre(0.5, 1.5, 0));
  EXPECT_THAT(*numbers, ElementsAre(0.5, 1.5));
}

// The answers of published operations to two networks that are alike.
void expectAlike(const VEQNetwork& a, const VEQNetwork& b) {
  ASSERT_EQ(a.countVertices(), b.countVertices());
  for (std::uint64_t v = 0; v < a.countVertices(); ++v) {
    EXPECT_EQ(indices(a.verticesLinkedFromVertexAtIndex(v)),
              indices(b.verticesLinkedFromVertexAtIndex(v)));
    EXPECT_EQ(indices(a.verticesLinkedToVertexAtIndex(v)),
              indices(b.verticesLinkedToVertexAtIndex(v)));
    EXPECT_EQ(a.calcStrengthOfVertexAtIndex(v), b.calcStrengthOfVertexAtIndex(v));
  }
  EXPECT_EQ(doubles(*a.calcInStrengths()), doubles(*b.calcInStrengths()));
  EXPECT_EQ(doubles(*a.edgesWeightValues()), doubles(*b.edgesWeightValues()));
  std::vector<float> ofA(a.countVertices() * a.countVertices());
  std::vector<float> ofB(ofA.size());
  a.buildAdjacencyMatrixInPointer(ofA.data());
  b.buildAdjacencyMatrixInPointer(ofB.data());
  EXPECT_EQ(ofA, ofB);
}

TEST(NetworkOver, BehavesLikeANetworkOfItsOwn) {
  const std::string edges = "0-1 1-2 0-2 2-2 4-1 4-4 1-0 5-6 2-2";
  const std::vector<float> weights{1, 2, 3, 4, 5, 6, 7, 8, 9};
  for (const bool directed : {false, true}) {
    const Network own(draw(edges, directed, 9));
    own.published()->setEdgesWeightValues(VEQNumberArray::ofFloats(weights));
    OverOptions options;
    options.edgeWeights = weights;
    const Network foreign = over(arraysOf(edges, directed, 9), options);
    expectAlike(*own.published(), *foreign.published());
    for (const char* more : {"3-7", "0-0 8-1", "7-3 1-2 2-1"}) {
      insert(*own.published(), more);
      insert(*foreign.published(), more);
      expectAlike(*own.published(), *foreign.published());
    }
  }
}

// What complains of the arrays of "0-1 1-2 0-2" after they were spoilt.
std::string complaint(bool directed, const std::function<void(Arrays<std::uint32_t>&)>& spoil,
                      const OverOptions& options = {}) {
  const auto arrays = arraysOf("0-1 1-2 0-2", directed);
  spoil(*arrays);
  const auto made = Network::over(arrays->memory(), arrays, options);
  return made ? "" : made.error().text();
}

// The lists of the directed network: those of vertex 0 are places 0 and 1, that of 1 is place 2.
TEST(NetworkOver, RefusesWhatIsNoNetwork) {
  EXPECT_EQ(complaint(true, [](auto&) {}), "");
  EXPECT_EQ(complaint(true, [](auto& a) { a.to.pop_back(); }), "3 sources for 2 targets");
  EXPECT_EQ(complaint(true, [](auto& a) { a.inRows.pop_back(); }), "2 lists for 3 vertices");
  EXPECT_EQ(complaint(true, [](auto& a) { a.inEdges.pop_back(); }),
            "3 neighbours for 2 edges in lists");
  EXPECT_EQ(complaint(true, [](auto& a) { a.from[1] = 3; }), "edge 1: source 3 of 3 vertices");
  EXPECT_EQ(complaint(true, [](auto& a) { a.to[2] = 12; }), "edge 2: target 12 of 3 vertices");
  EXPECT_EQ(complaint(true, [](auto& a) { a.outRows[1].count = 2; }),
            "list of vertex 1: 2 entries from place 2 of 3");
  EXPECT_EQ(complaint(true, [](auto& a) { a.outRows[1].start = UINT32_MAX; }),
            "list of vertex 1: 1 entries from place 4294967295 of 3");
  EXPECT_EQ(complaint(true, [](auto& a) { a.outRows[1].start = 0; }),
            "list of vertex 1: entry 0 is not its edge");
  EXPECT_EQ(complaint(true, [](auto& a) { a.outEdges[1] = 0; }),
            "list of vertex 0: entry 1 is not its edge");
  EXPECT_EQ(complaint(true, [](auto& a) { a.outEdges[1] = 7; }),
            "list of vertex 0: entry 1 is not its edge");
  EXPECT_EQ(complaint(true, [](auto& a) { a.outNeighbours[0] = 2; }),
            "list of vertex 0: entry 0 is not its edge");
  EXPECT_EQ(complaint(true, [](auto& a) { a.outRows[0].count = 1; }),
            "2 entries in the lists of 3 edges");
  EXPECT_EQ(complaint(true, [](auto& a) { a.inRows[2].count = 1; }),
            "2 entries in the lists of 3 edges");
  EXPECT_EQ(complaint(false, [](auto& a) { a.outRows[0].count = 1; }),
            "5 entries in the lists of 3 edges");
  // The entries of vertex 0 in another order than that of the edges.
  EXPECT_EQ(complaint(true,
                      [](auto& a) {
                        std::swap(a.outEdges[0], a.outEdges[1]);
                        std::swap(a.outNeighbours[0], a.outNeighbours[1]);
                      }),
            "list of vertex 0: entry 1 is not its edge");
}

// An edge that leaves a vertex for the second time stands in the place of the next.
TEST(NetworkOver, RefusesAnEdgeTwiceInAList) {
  const auto arrays = arraysOf("0-1 0-1", true);
  arrays->outEdges[1] = 0;
  EXPECT_EQ(Network::over(arrays->memory(), nullptr).error().text(),
            "list of vertex 0: entry 1 is not its edge");
  // An undirected loop stands there twice, and not three times.
  const auto loops = arraysOf("0-0 0-0", false);
  EXPECT_EQ(over(loops).neighbours(0), std::vector<std::uint64_t>(4, 0));
  loops->outEdges[2] = 0;
  EXPECT_EQ(Network::over(loops->memory(), nullptr).error().text(),
            "list of vertex 0: entry 2 is not its edge");
}

TEST(NetworkOver, RefusesWeightsAndColumnsThatDoNotFit) {
  const std::vector<float> four(4);
  OverOptions options;
  options.vertexWeights = four;
  EXPECT_EQ(complaint(
                true, [](auto&) {}, options),
            "4 weights for 3 vertices");
  options = {};
  options.edgeWeights = four;
  options.trusted = true;
  EXPECT_EQ(complaint(
                true, [](auto&) {}, options),
            "4 weights for 3 edges");
  options = {};
  options.vertexColumns.set("Age", VEQNumberArray::over(std::span<const float>(four), nullptr));
  EXPECT_EQ(complaint(
                true, [](auto&) {}, options),
            "column Age: 4 values for 3 vertices");
}

TEST(NetworkOver, LooksAtNoIndexOfTrustedMemory) {
  OverOptions options;
  options.trusted = true;
  const auto arrays = arraysOf("0-1 1-2 0-2", true);
  arrays->outNeighbours[0] = 2;
  EXPECT_THAT(over(arrays, options).neighbours(0), ElementsAre(2, 2));
  EXPECT_EQ(complaint(
                true, [](auto& a) { a.to.pop_back(); }, options),
            "3 sources for 2 targets");
}

TEST(NetworkOver, EndsByAStop) {
  StopSource source;
  source.requestStop();
  OverOptions options;
  options.progress.stop = source.token();
  const auto arrays = arraysOf("0-1", true);
  EXPECT_EQ(Network::over(arrays->memory(), arrays, options).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(arrays.use_count(), 1);
}

}  // namespace
}  // namespace veq::test::over_test
