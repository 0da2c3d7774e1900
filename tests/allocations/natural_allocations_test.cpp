// Every allocation of a natural operation is made to fail once: std::bad_alloc, nothing is leaked,
// and the network is as it was.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_dump.hpp"
#include "veq/network.hpp"
#include "veq/questions.hpp"

namespace veq::test::natural_allocations_test {
namespace {

constexpr const char* kLongName = "a name that does not fit into the string itself";

// Weights of both kinds and columns of several.
Network sample() {
  static const std::vector<double> edgeWeights{2, 3, 0.1};
  static const std::vector<float> vertexWeights{1, 2, 3};
  BuildOptions options{.vertexWeights = vertexWeights, .edgeWeights = edgeWeights};
  options.vertexColumns.set("Name", std::make_shared<GenericArray>(std::vector<PropertyValue>{
                                        kLongName, "b", PropertyValue()}));
  options.edgeColumns.set(
      "Length", std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({0.5, 0.25, 1})));
  return Network::build({0, 1, 1}, {1, 2, 0}, options).value();
}

// Some network that outlives all failures, and what is asked of it.
void expectThatFailuresChangeNothing(const std::function<void(const Network&)>& operate) {
  const Network network = sample();
  const std::string before = dump(network.published().get());
  const std::uint64_t failures = forEachFailingAllocation([&] { operate(network); }, [](bool) {});
  EXPECT_GT(failures, 0U);
  EXPECT_EQ(dump(network.published().get()), before);
}

TEST(NaturalAllocations, OfAddedEdgesLeaveTheNetworkAsItWas) {
  const std::string before = dump(sample().published().get());
  static const std::vector<double> weights{5, 6};
  const std::uint64_t failures =
      forEachFailingAllocation([] { return sample(); },
                               [](Network& network) {
                                 EXPECT_TRUE(network.addEdges({0, 2}, {0, 2}, weights).hasValue());
                               },
                               [&](const Network& network, bool failed) {
                                 EXPECT_EQ(network.countEdges(), failed ? 3U : 5U);
                                 EXPECT_TRUE(!failed || dump(network.published().get()) == before);
                               });
  EXPECT_GT(failures, 3U);
}

TEST(NaturalAllocations, OfTheFirstWeightsLeaveTheNetworkAsItWas) {
  static const std::vector<double> weights{5};
  forEachFailingAllocation(
      [] { return Network::build({0}, {1}).value(); },
      [](Network& network) { EXPECT_TRUE(network.addEdges({1}, {1}, weights).hasValue()); },
      [](const Network& network, bool failed) {
        EXPECT_EQ(network.countEdges(), failed ? 1U : 2U);
        EXPECT_EQ(network.isEdgeWeighted(), !failed);
      });
}

TEST(NaturalAllocations, OfBuildingLeaveNothing) {
  const std::vector<std::string> from{kLongName, "b"};
  const std::vector<std::string> to{"b", "c"};
  // What is made once for all: the sample's own weights, and the seed of the tables of names.
  static_cast<void>(sample());
  static_cast<void>(Network::fromNames(from, to, {.directed = true}));
  EXPECT_GT(forEachFailingAllocation([] { static_cast<void>(sample()); }, [](bool) {}), 0U);
  EXPECT_GT(forEachFailingAllocation(
                [&] { static_cast<void>(Network::fromNames(from, to, {.directed = true})); },
                [](bool) {}),
            0U);
}

TEST(NaturalAllocations, OfOneMoreEdgeLeaveTheBuilderAsItWas) {
  for (const bool weighted : {false, true}) {
    forEachFailingAllocation(
        [] {
          NetworkBuilder builder;
          builder.addEdge(0, 1);
          return builder;
        },
        [&](NetworkBuilder& builder) {
          weighted ? builder.addEdge(1, 2, 0.5) : builder.addEdge(1, 2);
        },
        [](const NetworkBuilder& builder, bool failed) {
          EXPECT_EQ(builder.countEdges(), failed ? 1U : 2U);
          EXPECT_EQ(builder.countVertices(), failed ? 2U : 3U);
        });
  }
}

TEST(NaturalAllocations, OfOneMoreEdgeByNameLeaveTheBuilderAsItWas) {
  // So long that they lie nowhere but in memory of their own.
  const std::string first(40, 'a');
  const std::string second(40, 'b');
  for (const bool weighted : {false, true}) {
    const std::uint64_t failures = forEachFailingAllocation(
        [&] {
          NetworkBuilder builder;
          builder.addEdge(0, 1);
          return builder;
        },
        [&](NetworkBuilder& builder) {
          weighted ? builder.addEdge(first, second, 0.5) : builder.addEdge(first, second);
        },
        [&](NetworkBuilder& builder, bool failed) {
          EXPECT_EQ(builder.countEdges(), failed ? 1U : 2U);
          EXPECT_EQ(builder.countVertices(), failed ? 2U : 4U);
          // Where they were not added, the other one gets the next place.
          EXPECT_EQ(builder.vertexNamed(second), failed ? 2U : 3U);
        });
    EXPECT_GE(failures, 4U);
  }
}

TEST(NaturalAllocations, OfChangesLeaveNothing) {
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(n.copy()); });
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(n.asDirected()); });
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(n.simplified()); });
  expectThatFailuresChangeNothing([](const Network& n) {
    static_cast<void>(n.subnetwork({1, 0}));
  });
  expectThatFailuresChangeNothing(
      [](const Network& n) { static_cast<void>(n.subnetworkOfEdges({2})); });
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(n.neighbourhood(1)); });
  expectThatFailuresChangeNothing([](const Network& n) {
    const std::vector<Network> twice{n, n};
    static_cast<void>(Network::united(twice, {.by = UnionBy::kName}));
  });
}

TEST(NaturalAllocations, OfQuestionsLeaveNothing) {
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(triangles(n)); });
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(coreNumbers(n)); });
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(diameter(n)); });
  expectThatFailuresChangeNothing([](const Network& n) { static_cast<void>(pageRank(n)); });
  expectThatFailuresChangeNothing(
      [](const Network& n) { static_cast<void>(shortestPath(n, 0, 2, {.weighted = true})); });
  expectThatFailuresChangeNothing(
      [](const Network& n) { static_cast<void>(componentNetworks(n, Connection::kStrong)); });
}

}  // namespace
}  // namespace veq::test::natural_allocations_test
