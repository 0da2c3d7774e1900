// Copies and networks made from handles, each of whose allocations is made to fail once.
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_drawing.hpp"
#include "veq/base/diagnostic_log.hpp"
#include "veq/network/network.hpp"

namespace veq::test::copies_allocations_test {
namespace {

Shared<VEQNetwork> source() {
  Shared<VEQNetwork> network = drawDirected("0-1 1-2 2-2 0-1");
  network->setPropertyValue_forKey_atVertexIndex("a name that is too long for the string itself",
                                                 "Name", 1);
  network->setPropertyValue_forKey_atVertexIndex(4.5, "Age", 2);
  network->setPropertyValue_forKey_atEdgeIndex("x", "Kind", 0);
  network->setWeightValue_atEdgeIndex(2.0f, 1);
  return network;
}

// The network that `make` gives, or none where an allocation failed; nothing is thrown.
template <class Make>
void expectNetworkOrNone(Make make) {
  setDiagnosticSink(nullptr);
  const Shared<VEQNetwork> original = source();
  // What a network keeps for its handles is made by the first that asks, and is no leak.
  static_cast<void>(original->vertices());
  Shared<VEQNetwork> made;
  const std::uint64_t failures =
      forEachFailingAllocation([&] { made = make(*original); },
                               [&](bool failed) {
                                 EXPECT_FALSE(failed) << "It must not throw.";
                                 EXPECT_EQ(!made, FailingAllocation::happened());
                                 if (made) {
                                   EXPECT_EQ(made->countEdges(), 4U);
                                   EXPECT_TRUE(made->propertiesOfVertices()->contains("Age"));
                                 }
                                 made.reset();
                               });
  EXPECT_GT(failures, 10U);
  EXPECT_EQ(original->countEdges(), 4U);
}

TEST(FailingAllocations, OfACopyGiveNoNetwork) {
  expectNetworkOrNone([](const VEQNetwork& n) { return VEQNetwork::networkWithNetwork(n); });
}

// Then also what the original keeps for its handles cannot be made.
TEST(FailingAllocations, OfTheFirstCopyGiveNoNetwork) {
  setDiagnosticSink(nullptr);
  for (std::uint64_t failing = 0; failing < 5; ++failing) {
    const Shared<VEQNetwork> original = source();
    Shared<VEQNetwork> made;
    {
      const FailingAllocation failure(failing, FailingAllocation::Mode::kOne);
      made = VEQNetwork::networkWithNetwork(*original);
    }
    EXPECT_TRUE(FailingAllocation::happened());
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(original->vertices().count(), 3U);
  }
}

TEST(FailingAllocations, OfANetworkOfHandlesGiveNoNetwork) {
  const Shared<VEQNetwork> given = source();
  const VEQVertexArray vertices = given->vertices();
  const VEQEdgeArray edges = given->edges();
  expectNetworkOrNone(
      [&](const VEQNetwork&) { return VEQNetwork::networkWithVertices_edges(vertices, edges); });
}

TEST(FailingAllocations, OfANetworkOfEndsGiveNoNetwork) {
  std::vector<Shared<VEQVertex>> from;
  std::vector<Shared<VEQVertex>> to;
  const Shared<VEQNetwork> ends = source();
  for (const VEQEdge& edge : ends->edges()) {
    from.push_back(edge.fromVertex());
    to.push_back(edge.toVertex());
  }
  const VEQVertexArray fromArray(from);
  const VEQVertexArray toArray(to);
  expectNetworkOrNone([&](const VEQNetwork&) {
    return VEQNetwork::networkWithVertices_linkFromVertices_toVertices(std::nullopt, fromArray,
                                                                       toArray);
  });
}

}  // namespace
}  // namespace veq::test::copies_allocations_test
