#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/network_dump.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network.hpp"

namespace veq::test::changes_test {
namespace {

using testing::ElementsAre;

// The edges as text, "0-1 2-2", with their weights where they have some: "0-1:2.5".
std::string edgesOf(const Network& network) {
  std::string text;
  for (std::uint64_t e = 0; e < network.countEdges(); ++e) {
    const auto ends = network.endsOf(e);
    if (e > 0) text += ' ';
    text += std::to_string(ends.first) + "-" + std::to_string(ends.second);
    if (network.isEdgeWeighted()) text += ":" + Number(network.edgeWeights()[e]).text();
  }
  return text;
}

// Everything about it.
std::string dumped(const Network& network) { return dump(network.published().get()); }

// Four vertices and the edges 0-1 2-1 3-3 with weights of both kinds, names, ages, integers that a
// double does not hold, and an edge column that ends too soon.
Network sample(bool directed) {
  const std::vector<float> vertexWeights{1.5f, 2.5f, 3.5f, 4.5f};
  const std::vector<float> edgeWeights{2, 3, 4};
  BuildOptions options{
      .directed = directed, .vertexWeights = vertexWeights, .edgeWeights = edgeWeights};
  options.vertexColumns.set("Name", std::make_shared<GenericArray>(std::vector<PropertyValue>{
                                        "a", "b", PropertyValue(), "d"}));
  options.vertexColumns.set("Id", std::make_shared<VEQNumberArray>(
                                      VEQNumberArray::ofIntegers({9007199254740993, 2, 3, 4})));
  const Network network = Network::build({0, 2, 3}, {1, 1, 3}, options).value();
  network.published()->setPropertiesOfEdges_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({0.5, 0.25})), "Length");
  return network;
}

TEST(ChangesTest, AddsEdgesToTheNetworkItself) {
  Network network = Network::build({0}, {1}, {.vertices = 3}).value();
  const Network same = network;
  const AddedEdges added = network.addEdges({1, 2}, {2, 2}).value();
  EXPECT_EQ(added.first, 1U);
  EXPECT_EQ(added.count, 2U);
  EXPECT_EQ(network.addEdge(2, 0), 3U);
  EXPECT_EQ(edgesOf(same), "0-1 1-2 2-2 2-0");
}

TEST(ChangesTest, TheFirstWeightGivesAllEdgesOne) {
  Network network = Network::build({0}, {1}).value();
  const std::vector<double> weights{0.5, 0.1};
  EXPECT_EQ(network.addEdges({1, 1}, {0, 1}, weights).value().roundedWeights, 1U);
  EXPECT_EQ(edgesOf(network), "0-1:1 1-0:0.5 1-1:0.1");
  ASSERT_TRUE(network.addEdges({0}, {0}));
  const std::vector<float> more{7};
  ASSERT_TRUE(network.addEdges({1}, {1}, more));
  EXPECT_EQ(edgesOf(network), "0-1:1 1-0:0.5 1-1:0.1 0-0:1 1-1:7");
}

TEST(ChangesTest, BadEdgesChangeNothing) {
  Network network = Network::build({0}, {1}).value();
  const std::vector<double> weights{0.5};
  EXPECT_EQ(network.addEdges({0, 1}, {1, 2}).error().text(), "edge 1: target 2 of 2 vertices");
  EXPECT_EQ(network.addEdges({0, 1}, {1}).error().text(), "2 sources for 1 targets");
  EXPECT_EQ(network.addEdges({0, 1}, {1, -1}).error().text(), "edge 1: target -1");
  EXPECT_EQ(network.addEdges({0, 1}, {1, 1}, weights).error().text(), "1 weight for 2 edges");
  EXPECT_EQ(thrownText<std::out_of_range>([&] { network.addEdge(0, 2); }), "vertex 2 of 2");
  network.published()->blockEditing();
  EXPECT_EQ(network.addEdges({0}, {1}, weights).error().text(),
            "the weights of this network are fixed");
  EXPECT_EQ(edgesOf(network), "0-1");
}

TEST(ChangesTest, ACopyIsTheSameAndItsOwn) {
  for (const bool directed : {false, true}) {
    Network network = sample(directed);
    const Network copy = network.copy().value();
    // The column of edges is as long as the network in the copy: a 0 for what was not set.
    EXPECT_EQ(dumped(copy), dumped(network).substr(0, dumped(network).size() - 1) + " n12:0\n");
    const std::string before = dumped(copy);
    network.addEdge(0, 0);
    network.published()->setPropertyValue_forKey_atVertexIndex("new", "Name", 0);
    network.published()->setWeightValue_atVertexIndex(9, 0);
    EXPECT_EQ(dumped(copy), before);
  }
}

TEST(ChangesTest, AnUnweightedCopyIsUnweighted) {
  const Network copy = Network::build({0}, {1}).value().copy().value();
  EXPECT_FALSE(copy.isEdgeWeighted());
  EXPECT_FALSE(copy.isVertexWeighted());
}

TEST(ChangesTest, MoreVerticesStandBehindTheOthers) {
  const Network more = sample(true).withMoreVertices(2).value();
  EXPECT_EQ(more.countVertices(), 6U);
  EXPECT_EQ(edgesOf(more), "0-1:2 2-1:3 3-3:4");
  EXPECT_THAT(more.names(), ElementsAre("a", "b", "", "d", "", ""));
  EXPECT_THAT(more.vertexWeights(), ElementsAre(1.5, 2.5, 3.5, 4.5, 1, 1));
  EXPECT_THAT(more.vertexTexts("Id").value(),
              ElementsAre("9007199254740993", "2", "3", "4", "0", "0"));
  EXPECT_THROW(static_cast<void>(more.withMoreVertices(UINT64_MAX)), std::bad_alloc);
}

TEST(ChangesTest, TurnsDirectedEdgesRound) {
  const Network reversed = sample(true).reversed().value();
  EXPECT_EQ(edgesOf(reversed), "1-0:2 1-2:3 3-3:4");
  EXPECT_TRUE(reversed.isDirected());
  EXPECT_THAT(reversed.edgeNumbers("Length").value(), ElementsAre(0.5, 0.25, 0));
  EXPECT_EQ(edgesOf(sample(false).reversed().value()), "0-1:2 2-1:3 3-3:4");
}

TEST(ChangesTest, AnUndirectedEdgeBecomesTwo) {
  const Network network = sample(false);
  const Network directed = network.asDirected().value();
  EXPECT_TRUE(directed.isDirected());
  EXPECT_EQ(edgesOf(directed), "0-1:2 1-0:2 2-1:3 1-2:3 3-3:4 3-3:4");
  EXPECT_THAT(directed.edgeNumbers("Length").value(), ElementsAre(0.5, 0.5, 0.25, 0.25, 0, 0));
  for (std::uint64_t v = 0; v < 4; ++v) EXPECT_EQ(directed.neighbours(v), network.neighbours(v));
  EXPECT_EQ(directed.strengths(), network.strengths());
  EXPECT_EQ(edgesOf(sample(true).asDirected().value()), "0-1:2 2-1:3 3-3:4");
}

TEST(ChangesTest, ADirectedEdgeBecomesOne) {
  const Network network = sample(true).asUndirected().value();
  EXPECT_FALSE(network.isDirected());
  EXPECT_EQ(edgesOf(network), "0-1:2 2-1:3 3-3:4");
  EXPECT_FALSE(sample(false).asUndirected().value().isDirected());
}

// Edges 0 to 5; 0, 2 and 4 are parallel, 5 too where edges have no direction.
Network withParallels(bool directed) {
  const std::vector<float> weights{3, 1, 2, 8, 5, 0.5f};
  BuildOptions options{.directed = directed, .edgeWeights = weights};
  options.edgeColumns.set(
      "Id", std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({10, 11, 12, 13, 14, 15})));
  return Network::build({0, 1, 0, 2, 0, 1}, {1, 1, 1, 0, 1, 0}, options).value();
}

struct Rule {
  ParallelEdges parallels;
  const char* directed;
  std::vector<std::uint64_t> directedEdges;
  const char* undirected;
  std::vector<std::uint64_t> undirectedEdges;
};

TEST(SimplifiedTest, MergesParallelEdgesByTheRule) {
  const Rule rules[] = {
      {ParallelEdges::kSum, "0-1:10 2-0:8 1-0:0.5", {0, 3, 5}, "0-1:10.5 2-0:8", {0, 3}},
      {ParallelEdges::kLeast, "0-1:2 2-0:8 1-0:0.5", {2, 3, 5}, "1-0:0.5 2-0:8", {5, 3}},
      {ParallelEdges::kGreatest, "0-1:5 2-0:8 1-0:0.5", {4, 3, 5}, "0-1:5 2-0:8", {4, 3}},
      {ParallelEdges::kFirst, "0-1:3 2-0:8 1-0:0.5", {0, 3, 5}, "0-1:3 2-0:8", {0, 3}},
  };
  for (const Rule& rule : rules) {
    const DerivedNetwork d = withParallels(true).simplified({.parallels = rule.parallels}).value();
    EXPECT_EQ(edgesOf(d.network), rule.directed);
    EXPECT_EQ(d.edges, rule.directedEdges);
    EXPECT_THAT(d.vertices, ElementsAre(0, 1, 2));
    const DerivedNetwork u = withParallels(false).simplified({.parallels = rule.parallels}).value();
    EXPECT_EQ(edgesOf(u.network), rule.undirected);
    EXPECT_EQ(u.edges, rule.undirectedEdges);
    std::vector<std::string> ids;
    for (const std::uint64_t e : u.edges) ids.push_back(std::to_string(10 + e));
    EXPECT_EQ(u.network.edgeTexts("Id").value(), ids);
  }
}

TEST(SimplifiedTest, KeepsWhatItIsToKeep) {
  const DerivedNetwork loops = withParallels(true).simplified({.dropLoops = false}).value();
  EXPECT_EQ(edgesOf(loops.network), "0-1:10 1-1:1 2-0:8 1-0:0.5");
  const DerivedNetwork parallels =
      withParallels(true).simplified({.parallels = ParallelEdges::kKeep}).value();
  EXPECT_EQ(edgesOf(parallels.network), "0-1:3 0-1:2 2-0:8 0-1:5 1-0:0.5");
}

TEST(SimplifiedTest, MergesLoopsThatStay) {
  for (const bool directed : {false, true}) {
    const Network network = Network::build({0, 0, 1}, {0, 0, 0}, {.directed = directed}).value();
    EXPECT_EQ(edgesOf(network.simplified({.dropLoops = false}).value().network), "0-0:2 1-0:1");
  }
}

TEST(SimplifiedTest, SumsCountUnweightedEdges) {
  const Network network = Network::build({0, 0, 1}, {1, 1, 2}).value();
  EXPECT_EQ(edgesOf(network.simplified().value().network), "0-1:2 1-2:1");
  EXPECT_EQ(edgesOf(network.simplified({.parallels = ParallelEdges::kLeast}).value().network),
            "0-1 1-2");
}

TEST(SubnetworkTest, TakesVerticesInTheirOrder) {
  const DerivedNetwork part = sample(true).subnetwork({3, 1, 2}).value();
  EXPECT_EQ(edgesOf(part.network), "2-1:3 0-0:4");
  EXPECT_TRUE(part.network.isDirected());
  EXPECT_THAT(part.vertices, ElementsAre(3, 1, 2));
  EXPECT_THAT(part.edges, ElementsAre(1, 2));
  EXPECT_THAT(part.network.names(), ElementsAre("d", "b", ""));
  EXPECT_THAT(part.network.vertexWeights(), ElementsAre(4.5, 2.5, 3.5));
  EXPECT_THAT(part.network.vertexTexts("Id").value(), ElementsAre("4", "2", "3"));
  EXPECT_THAT(part.network.edgeNumbers("Length").value(), ElementsAre(0.25, 0));
}

// A vertex of a long path has so few of the edges that its list is looked at instead of all.
TEST(SubnetworkTest, FindsTheEdgesOfFewVerticesByTheirLists) {
  NetworkBuilder builder;
  for (std::uint64_t v = 0; v < 100; ++v) builder.addEdge(v, v + 1);
  builder.addEdge(50, 50);
  for (const bool directed : {false, true}) {
    const DerivedNetwork part =
        builder.build({.directed = directed}).value().subnetwork({51, 50, 10}).value();
    EXPECT_EQ(edgesOf(part.network), "1-0 1-1");
    EXPECT_THAT(part.edges, ElementsAre(50, 100));
  }
}

TEST(SubnetworkTest, OfNothingIsNothing) {
  const DerivedNetwork part = sample(false).subnetwork({}).value();
  EXPECT_EQ(part.network.countVertices(), 0U);
  EXPECT_EQ(part.network.countEdges(), 0U);
  EXPECT_TRUE(part.network.isEdgeWeighted());
}

TEST(SubnetworkTest, SaysWhichChoiceIsWrong) {
  const Network network = sample(false);
  const auto error = [&](const IndexSpan& chosen) {
    return network.subnetwork(chosen).error().text();
  };
  EXPECT_EQ(error({0, 4}), "place 1: vertex 4 of 4");
  EXPECT_EQ(error({0, -1, 9}), "place 1: vertex -1 of 4, and 1 more");
  EXPECT_EQ(error({3, 0, 3}), "place 2: vertex 3 for the second time");
  EXPECT_EQ(network.subnetworkOfEdges({0, 3}).error().text(), "place 1: edge 3 of 3");
  EXPECT_EQ(network.subnetworkOfEdges({1, 1}).error().text(),
            "place 1: edge 1 for the second time");
}

TEST(SubnetworkTest, TakesEdgesWithTheirEnds) {
  const DerivedNetwork part = sample(true).subnetworkOfEdges({2, 1}).value();
  EXPECT_EQ(edgesOf(part.network), "2-2:4 1-0:3");
  EXPECT_THAT(part.vertices, ElementsAre(1, 2, 3));
  EXPECT_THAT(part.edges, ElementsAre(2, 1));
  EXPECT_THAT(part.network.names(), ElementsAre("b", "", "d"));
  const DerivedNetwork all = sample(true).subnetworkOfEdges({1}, {.keepAllVertices = true}).value();
  EXPECT_EQ(edgesOf(all.network), "2-1:3");
  EXPECT_EQ(all.network.countVertices(), 4U);
}

TEST(NeighbourhoodTest, GrowsWithTheDistance) {
  const Network network = Network::build({{0, 1}, {1, 2}, {2, 3}, {4, 0}, {0, 2}}).value();
  const auto around = [&](std::uint64_t distance) {
    return network.neighbourhood(0, {.distance = distance}).value();
  };
  EXPECT_THAT(around(0).vertices, ElementsAre(0));
  EXPECT_THAT(around(1).vertices, ElementsAre(0, 1, 4, 2));
  EXPECT_THAT(around(1).edges, ElementsAre(0, 1, 3, 4));
  EXPECT_EQ(edgesOf(around(1).network), "0-1 1-3 2-0 0-3");
  EXPECT_THAT(around(UINT64_MAX).vertices, ElementsAre(0, 1, 4, 2, 3));
}

TEST(NeighbourhoodTest, FollowsTheDirection) {
  const Network network =
      Network::build({{0, 1}, {1, 2}, {3, 0}, {4, 3}}, {.directed = true}).value();
  const auto vertices = [&](Direction direction) {
    return network.neighbourhood(0, {.distance = 2, .direction = direction}).value().vertices;
  };
  EXPECT_THAT(vertices(Direction::kOut), ElementsAre(0, 1, 2));
  EXPECT_THAT(vertices(Direction::kIn), ElementsAre(0, 3, 4));
  EXPECT_THAT(vertices(Direction::kAll), ElementsAre(0, 1, 3, 2, 4));
  EXPECT_EQ(thrownText<std::out_of_range>([&] { static_cast<void>(network.neighbourhood(5)); }),
            "vertex 5 of 5");
}

TEST(ChangesTest, EveryChangeCanBeStopped) {
  StopSource source;
  source.requestStop();
  Progress progress;
  progress.stop = source.token();
  const Network network = sample(false);
  const auto expectStopped = [](const auto& result) {
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind(), ErrorKind::kStopped);
  };
  expectStopped(network.copy({.progress = progress}));
  expectStopped(network.withMoreVertices(1, {.progress = progress}));
  expectStopped(network.reversed({.progress = progress}));
  expectStopped(network.asDirected({.progress = progress}));
  expectStopped(network.asUndirected({.progress = progress}));
  expectStopped(network.simplified({.progress = progress}));
  expectStopped(network.subnetwork({0}, {.progress = progress}));
  expectStopped(network.subnetworkOfEdges({0}, {.progress = progress}));
  expectStopped(network.neighbourhood(0, {.progress = progress}));
  expectStopped(Network::united({&network, 1}, {.progress = progress}));
}

std::vector<Network> two(bool directed) {
  BuildOptions options{.directed = directed};
  const auto named = [&](std::vector<PropertyValue> names) {
    options.vertexColumns.set("Name", std::make_shared<GenericArray>(std::move(names)));
  };
  named({"a", "b", PropertyValue()});
  options.vertexColumns.set(
      "Age", std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({1, 2, 3})));
  const Network first = Network::build({0, 1}, {1, 2}, options).value();
  const std::vector<float> weights{5};
  options.edgeWeights = weights;
  named({"c", "a"});
  options.vertexColumns.set("Age",
                            std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({8, 9})));
  options.edgeColumns.set("Length",
                          std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({0.5})));
  return {first, Network::build({0}, {1}, options).value()};
}

TEST(UnitedTest, NetworksStandSideBySide) {
  const UnitedNetwork all = Network::united(two(false)).value();
  EXPECT_EQ(edgesOf(all.network), "0-1:1 1-2:1 3-4:5");
  EXPECT_THAT(all.network.names(), ElementsAre("a", "b", "", "c", "a"));
  EXPECT_THAT(all.network.vertexTexts("Age").value(), ElementsAre("1", "2", "3", "8", "9"));
  EXPECT_EQ(all.network.vertexColumn("Age")->kind(), PropertyColumn::Kind::kNumber);
  EXPECT_THAT(all.network.edgeTexts("Length").value(), ElementsAre("0", "0", "0.5"));
  EXPECT_THAT(all.vertices, ElementsAre(ElementsAre(0, 1, 2), ElementsAre(3, 4)));
  EXPECT_THAT(all.firstEdges, ElementsAre(0, 2));
  EXPECT_FALSE(all.network.isVertexWeighted());
}

TEST(UnitedTest, VerticesOfOneIndexAreOne) {
  const UnitedNetwork all = Network::united(two(true), {.by = UnionBy::kIndex}).value();
  EXPECT_EQ(edgesOf(all.network), "0-1:1 1-2:1 0-1:5");
  EXPECT_TRUE(all.network.isDirected());
  EXPECT_THAT(all.network.names(), ElementsAre("a", "b", ""));
  EXPECT_THAT(all.network.vertexTexts("Age").value(), ElementsAre("1", "2", "3"));
  EXPECT_THAT(all.vertices, ElementsAre(ElementsAre(0, 1, 2), ElementsAre(0, 1)));
}

TEST(UnitedTest, VerticesOfOneNameAreOne) {
  const UnitedNetwork all = Network::united(two(false), {.by = UnionBy::kName}).value();
  EXPECT_EQ(edgesOf(all.network), "0-1:1 1-2:1 3-0:5");
  EXPECT_THAT(all.network.names(), ElementsAre("a", "b", "", "c"));
  EXPECT_THAT(all.network.vertexTexts("Age").value(), ElementsAre("1", "2", "3", "8"));
  EXPECT_THAT(all.vertices, ElementsAre(ElementsAre(0, 1, 2), ElementsAre(3, 0)));
}

TEST(UnitedTest, ColumnsOfDifferentKindsHoldAnything) {
  std::vector<Network> networks = two(false);
  ASSERT_TRUE(networks[1].setVertexColumn(
      "Age", std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({0.5, 1}))));
  const UnitedNetwork all = Network::united(networks).value();
  EXPECT_EQ(all.network.vertexColumn("Age")->kind(), PropertyColumn::Kind::kGeneric);
  EXPECT_THAT(all.network.vertexTexts("Age").value(), ElementsAre("1", "2", "3", "0.5", "1"));
}

TEST(UnitedTest, SaysWhatCannotBeUnited) {
  EXPECT_EQ(Network::united({}).error().text(), "no networks");
  const Network directed = sample(true);
  const Network undirected = sample(false);
  EXPECT_EQ(Network::united(std::vector<Network>{undirected, directed}).error().text(),
            "network 1 is directed, network 0 is not");
  EXPECT_EQ(Network::united(std::vector<Network>{directed, directed, undirected}).error().text(),
            "network 2 is not directed, network 0 is");
}

}  // namespace
}  // namespace veq::test::changes_test
