#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::identity_test {
namespace {

constexpr const char* kVertexText = "The Related Network of this vertex is not valid.";

TEST(HandleIdentity, EqualsAnotherHandleOfTheSameNetworkAndIndex) {
  const auto network = drawUndirected("0-1 1-2");
  const auto other = drawUndirected("0-1 1-2");
  const auto vertex = network->vertexAtIndex(2);
  const auto byHand = VEQVertex::initAtNetwork_identification(*network, 2);
  EXPECT_NE(vertex, byHand);
  EXPECT_TRUE(vertex->isEqual(vertex));
  EXPECT_TRUE(vertex->isEqual(*byHand));
  EXPECT_TRUE(byHand->isEqual(vertex));
  EXPECT_EQ(vertex->hash(), byHand->hash());
  EXPECT_FALSE(vertex->isEqual(network->vertexAtIndex(1)));
  EXPECT_FALSE(vertex->isEqual(other->vertexAtIndex(2)));
  EXPECT_FALSE(vertex->isEqual(Shared<VEQVertex>()));

  const auto edge = network->edgeAtIndex(1);
  const auto edgeByHand = VEQEdge::initAtNetwork_identification(*network, 1);
  EXPECT_TRUE(edge->isEqual(edgeByHand));
  EXPECT_EQ(edge->hash(), edgeByHand->hash());
  EXPECT_FALSE(edge->isEqual(network->edgeAtIndex(0)));
}

TEST(HandleIdentity, AVertexNeverEqualsAnEdge) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(0);
  const auto edge = network->edgeAtIndex(0);
  EXPECT_FALSE(vertex->isEqual(edge));
  EXPECT_FALSE(vertex->isEqual(*edge));
  EXPECT_FALSE(edge->isEqual(vertex));
  EXPECT_FALSE(edge->isEqual(*vertex));
}

TEST(HandleIdentity, InvalidHandlesStayEqual) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(0);
  const auto byHand = VEQVertex::initAtNetwork_identification(*network, 0);
  byHand->invalidateNetwork();
  EXPECT_TRUE(vertex->isEqual(byHand));
}

TEST(HandleIdentity, TheSameIndexIsAlwaysTheSameObject) {
  const auto network = drawUndirected("0-1 1-2");
  const auto vertex = network->vertexAtIndex(1);
  const auto edge = network->edgeAtIndex(1);
  EXPECT_EQ(network->vertexAtIndex(1), vertex);
  EXPECT_EQ(network->vertices()[1], vertex);
  EXPECT_EQ(network->vertices().objectAtIndex(1), vertex);
  EXPECT_EQ(edge->fromVertex(), vertex);
  EXPECT_EQ(vertex->edgeAtIndex(1), edge);
  EXPECT_EQ(vertex->nextVertexAtIndex(0), network->vertexAtIndex(0));
  EXPECT_EQ(network->vertexWithName("1"), vertex);
  for (int i = 0; i < 1000; ++i) insert(*network, "0-2");
  EXPECT_EQ(network->edgeAtIndex(1), edge);
  EXPECT_EQ(network->edgeAtIndex(1001)->identification(), 1001U);
}

TEST(HandleIdentity, HandlesOfAllIndicesAreDistinctObjects) {
  const auto network = drawUndirected("0-1", 1000);
  const VEQVertex* before = nullptr;
  for (std::uint64_t v = 0; v < 1000; ++v) {
    const auto vertex = network->vertexAtIndex(v);
    ASSERT_EQ(vertex->identification(), v);
    ASSERT_NE(vertex.get(), before);
    before = vertex.get();
  }
}

TEST(HandleIdentity, ACopyIsTheHandleItself) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(1);
  EXPECT_EQ(vertex->copy(), vertex);
  EXPECT_EQ(vertex->copyWithZone(nullptr), vertex);
  const auto byHand = VEQEdge::initAtNetwork_identification(*network, 0);
  EXPECT_EQ(byHand->copy(), byHand);
  EXPECT_EQ(byHand->copyWithZone(network.get()), byHand);
}

TEST(HandleIdentity, TheHashIsTheAddressPlusTheIndexWithWrapAround) {
  const auto network = drawUndirected("0-1");
  const auto address = reinterpret_cast<std::uintptr_t>(network.get());
  EXPECT_EQ(network->vertexAtIndex(0)->hash(), address);
  EXPECT_EQ(network->vertexAtIndex(1)->hash(), address + 1);
  EXPECT_EQ(network->edgeAtIndex(0)->hash(), address);
  EXPECT_EQ(VEQVertex::initAtNetwork_identification(*network, UINT64_MAX)->hash(), address - 1);
}

TEST(HandleIdentity, AHandleKnowsItsNetworkAndIndex) {
  const auto network = drawUndirected("0-1");
  EXPECT_EQ(network->vertexAtIndex(1)->relatedNetwork(), network.get());
  EXPECT_EQ(network->edgeAtIndex(0)->relatedNetwork(), network.get());
  const auto byHand = VEQVertex::initAtNetwork_identification(*network, UINT64_MAX);
  EXPECT_EQ(byHand->identification(), UINT64_MAX);
  EXPECT_EQ(byHand->relatedNetwork(), network.get());
  EXPECT_TRUE(byHand->isValid());
}

TEST(HandleValidity, EndsWithTheNetworkAndOnlyIdentityStillAnswers) {
  auto network = drawUndirected("0-1 1-2");
  VEQNetwork* const address = network.get();
  const auto vertex = network->vertexAtIndex(2);
  const auto edge = network->edgeAtIndex(1);
  const auto byHand = VEQVertex::initAtNetwork_identification(*network, 2);
  EXPECT_TRUE(vertex->isValid() && edge->isValid() && byHand->isValid());
  network.reset();
  EXPECT_FALSE(vertex->isValid());
  EXPECT_FALSE(edge->isValid());
  EXPECT_FALSE(byHand->isValid());
  EXPECT_EQ(vertex->identification(), 2U);
  EXPECT_EQ(vertex->relatedNetwork(), address);
  EXPECT_EQ(vertex->hash(), reinterpret_cast<std::uintptr_t>(address) + 2);
  EXPECT_TRUE(vertex->isEqual(byHand));
  EXPECT_EQ(vertex->copy(), vertex);
  EXPECT_EQ(edge->identification(), 1U);
  vertex->invalidateNetwork();
  EXPECT_FALSE(vertex->isValid());
}

TEST(HandleValidity, OfOneHandleEndsAlone) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(0);
  const auto byHand = VEQVertex::initAtNetwork_identification(*network, 0);
  vertex->invalidateNetwork();
  EXPECT_FALSE(vertex->isValid());
  EXPECT_FALSE(network->vertexAtIndex(0)->isValid());
  EXPECT_TRUE(byHand->isValid());
  EXPECT_TRUE(network->vertexAtIndex(1)->isValid());
  EXPECT_TRUE(network->edgeAtIndex(0)->isValid());
  EXPECT_EQ(vertex->relatedNetwork(), network.get());
  EXPECT_EQ(invalidArgumentText([&] { static_cast<void>(vertex->countEdges()); }), kVertexText);
  EXPECT_EQ(byHand->countEdges(), 1U);
}

TEST(HandleValidity, HandlesFirstMadeAfterTheDeathAreInvalid) {
  auto network = drawUndirected("0-1 1-2");
  const VEQVertexArray vertices = network->vertices();
  const VEQEdgeArray edges = network->edgesLinkedFromVertexAtIndex(1);
  network.reset();
  EXPECT_EQ(vertices.count(), 3U);
  EXPECT_EQ(vertices[2]->identification(), 2U);
  EXPECT_FALSE(vertices[2]->isValid());
  EXPECT_FALSE(edges.objectAtIndex(1)->isValid());
  EXPECT_EQ(edges[1]->identification(), 1U);
  EXPECT_EQ(invalidArgumentText([&] { static_cast<void>(vertices[0]->name()); }), kVertexText);
}

// Tells, when its network dies with it, whether the handle was still valid.
class Witness final : public PropertyObject {
 public:
  explicit Witness(bool& wasValid) : wasValid_(wasValid) {}
  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;
  ~Witness() override { wasValid_ = vertex->isValid() || edge->isValid(); }
  std::string description() const override { return "witness"; }

  Shared<VEQVertex> vertex;
  Shared<VEQEdge> edge;

 private:
  bool& wasValid_;
};

TEST(HandleValidity, EndsBeforeThePropertiesAreReleased) {
  bool wasValid = true;
  auto network = drawUndirected("0-1");
  auto witness = std::make_shared<Witness>(wasValid);
  witness->vertex = network->vertexAtIndex(0);
  witness->edge = network->edgeAtIndex(0);
  network->setPropertyValue_forKey_atVertexIndex(witness, "k", 0);
  witness.reset();
  network.reset();
  EXPECT_FALSE(wasValid);
}

// Many networks die, and new ones are made, and kept, until one lies where a dead one lay. A
// sanitizer's quarantine prevents that; there the test ends without a reuse.
TEST(AddressReuse, AStaleHandleDoesNotPassForOneOfTheNewNetwork) {
  constexpr std::size_t kCount = 500;
  std::vector<Owned<VEQNetwork>> networks;
  std::vector<Shared<VEQVertex>> staleVertices;
  std::vector<Shared<VEQEdge>> staleEdges;
  std::vector<VEQVertexArray> snapshots;
  for (std::size_t i = 0; i < kCount; ++i) {
    networks.push_back(drawUndirected("0-1 1-2"));
    staleVertices.push_back(networks[i]->vertexAtIndex(1));
    staleEdges.push_back(networks[i]->edgeAtIndex(1));
    snapshots.push_back(networks[i]->vertices());
  }
  for (auto& dead : networks) dead.reset();

  VEQNetwork* network = nullptr;
  std::size_t found = 0;
  for (std::size_t i = 0; i < kCount && !network; ++i) {
    networks[i] = drawUndirected("0-1 1-2");
    const auto at = std::find_if(
        staleVertices.begin(), staleVertices.end(),
        [&](const auto& vertex) { return vertex->relatedNetwork() == networks[i].get(); });
    if (at == staleVertices.end()) continue;
    network = networks[i].get();
    found = static_cast<std::size_t>(at - staleVertices.begin());
  }
  if (!network) GTEST_SKIP() << "No address came back.";
  const auto stale = staleVertices[found];
  const auto staleEdge = staleEdges[found];
  const VEQVertexArray snapshot = snapshots[found];

  EXPECT_EQ(stale->relatedNetwork(), network);
  for (const auto& vertex : {stale, snapshot[2]}) {
    EXPECT_FALSE(vertex->isValid());
    EXPECT_FALSE(vertex->isEqual(network->vertexAtIndex(vertex->identification())));
    EXPECT_EQ(vertex->hash(), network->vertexAtIndex(vertex->identification())->hash());
    EXPECT_EQ(invalidArgumentText([&] {
                static_cast<void>(network->linkVertex_to(*vertex, *network->vertexAtIndex(0)));
              }),
              "Both vertices must be in this network.");
    EXPECT_EQ(invalidArgumentText([&] {
                static_cast<void>(
                    network->reLinkVertex_to_atIndex(*network->vertexAtIndex(0), *vertex, 0));
              }),
              "Both links must be in this network.");
    EXPECT_EQ(network->countEdgesOfVertex(*vertex), 0U);
    EXPECT_EQ(network->calcDegreeOfVertex(*vertex), 0.0);
    EXPECT_FALSE(network->edgesLinkedToVertex(*vertex).has_value());
    EXPECT_FALSE(network->indicesOfEdgesLinkedFromVertex(*vertex));
    EXPECT_EQ(invalidArgumentText([&] { static_cast<void>(vertex->countEdges()); }), kVertexText);
    // Vertex 1 as a stranger: the from-vertex comes out, as for any stranger.
    EXPECT_EQ(network->edgeAtIndex(1)->vertexFromVertex(*vertex), network->vertexAtIndex(1));
  }
  EXPECT_FALSE(staleEdge->isEqual(network->edgeAtIndex(1)));
  EXPECT_EQ(network->countEdges(), 2U);
}

}  // namespace
}  // namespace veq::test::identity_test
