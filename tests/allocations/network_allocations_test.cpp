// Every allocation of an operation is made to fail once: the object is as it was, and usable.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_comparison.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq::test::network_allocations_test {
namespace {

// A network with what an operation could spoil: weights, edge columns of three kinds, handles.
struct Fixture {
  Owned<VEQNetwork> network;
  SlowNetwork slow;
  Shared<VEQVertex> first;
  Shared<VEQVertex> last;

  void expectUnchanged() const {
    expectSame(*network, slow);
    EXPECT_EQ(texts(*columnOf(*network->propertiesOfEdges(), "Kind")),
              (std::vector<std::string>{"x", "<null>", "<null>"}));
    EXPECT_EQ(texts(*columnOf(*network->propertiesOfEdges(), "Length")),
              (std::vector<std::string>{"1.5", "1.5", "1.5"}));
    EXPECT_EQ(columnOf(*network->propertiesOfEdges(), "Place")->count(), 3U);
    EXPECT_EQ(network->keysForPropertiesOfEdges().size(), 3U);
    EXPECT_EQ(network->keysForPropertiesOfVertices().size(), 1U);
    EXPECT_EQ(texts(*columnOf(*network->propertiesOfVertices(), "Name")),
              (std::vector<std::string>{"<null>", kLongName, "<null>"}));
    EXPECT_EQ(internal::CoreAccess::of(*network).edgesCapacity, 3U);
  }

  static constexpr const char* kLongName = "a name that does not fit into the string itself";
};

Fixture makeFixture(bool directed, bool weighted) {
  Fixture f;
  f.network = draw("0-1 1-2 2-2", directed);
  f.slow.vertexCount = 3;
  f.slow.directed = directed;
  f.slow.edges = {{0, 1}, {1, 2}, {2, 2}};
  if (weighted) {
    f.network->setEdgesWeightValues(VEQNumberArray::ofFloats({2, 3, 4}));
    f.slow.edgesWeights = {2, 3, 4};
  }
  f.network->setPropertyValue_forKey_atEdgeIndex("x", "Kind", 0);
  f.network->setPropertiesOfEdges_forKey(VEQNumberArray::initWithDoubleScalar_count(1.5, 3),
                                         "Length");
  f.network->setPropertiesOfEdges_forKey(VEQVector3dArray::initWithSize_precision(3, 1), "Place");
  f.network->setPropertyValue_forKey_atVertexIndex(Fixture::kLongName, "Name", 1);
  f.first = f.network->vertexAtIndex(0);
  f.last = f.network->vertexAtIndex(2);
  return f;
}

// For all four kinds of networks; `succeeded` sees what the operation did when it did not fail.
template <class Operate, class Succeeded>
void expectStrongGuarantee(Operate operate, Succeeded succeeded) {
  for (const bool directed : {false, true}) {
    for (const bool weighted : {false, true}) {
      const std::uint64_t failures =
          forEachFailingAllocation([&] { return makeFixture(directed, weighted); }, operate,
                                   [&](Fixture& f, bool failed) {
                                     if (failed) {
                                       f.expectUnchanged();
                                       operate(f);
                                     }
                                     succeeded(f);
                                   });
      EXPECT_GT(failures, 0U);
    }
  }
}

TEST(FailingAllocations, OfASingleInsertionLeaveTheNetworkAsItWas) {
  expectStrongGuarantee([](Fixture& f) { insert(*f.network, "0-2"); },
                        [](Fixture& f) {
                          EXPECT_EQ(f.network->countEdges(), 4U);
                          for (const char* key : {"Kind", "Length", "Place"}) {
                            EXPECT_EQ(columnOf(*f.network->propertiesOfEdges(), key)->count(), 4U);
                          }
                        });
}

TEST(FailingAllocations, OfABulkInsertionLeaveTheNetworkAsItWas) {
  const std::vector<std::uint64_t> from(100, 1);
  const std::vector<std::uint64_t> to(100, 2);
  expectStrongGuarantee(
      [&](Fixture& f) {
        f.network->addEdgesFromVerticesIndices_toVerticesIndices_count(from.data(), to.data(), 100);
      },
      [](Fixture& f) { EXPECT_EQ(f.network->countEdges(), 103U); });
}

// A column under two keys grows twice, and so needs the room of both before the first.
TEST(FailingAllocations, OfAnInsertionLeaveAColumnUnderTwoKeysAsItWas) {
  const auto make = [] {
    Owned<VEQNetwork> network = drawDirected("0-1");
    const Shared<PropertyColumn> column = VEQNumberArray::initWithDoubleScalar_count(1.5, 1);
    network->setPropertiesOfEdges_forKey(column, "Length");
    network->setPropertiesOfEdges_forKey(column, "Width");
    return network;
  };
  const auto operate = [](Owned<VEQNetwork>& network) { insert(*network, "0-1 0-1 0-1 0-1"); };
  const auto counts = [](const VEQNetwork& network) {
    const std::uint64_t values = columnOf(*network.propertiesOfEdges(), "Length")->count();
    return std::vector<std::uint64_t>{network.countEdges(), values};
  };
  const std::uint64_t failures =
      forEachFailingAllocation(make, operate, [&](Owned<VEQNetwork>& network, bool failed) {
        if (failed) {
          EXPECT_EQ(counts(*network), (std::vector<std::uint64_t>{1, 1}));
          operate(network);
        }
        EXPECT_EQ(counts(*network), (std::vector<std::uint64_t>{5, 9}));
      });
  EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, OfLinkingLeaveTheNetworkAsItWas) {
  expectStrongGuarantee(
      [](Fixture& f) { static_cast<void>(f.network->linkVertex_to(*f.first, *f.last)); },
      [](Fixture& f) { EXPECT_EQ(f.network->countEdges(), 4U); });
}

TEST(FailingAllocations, OfLinkingWithAWeightLeaveTheNetworkAsItWas) {
  expectStrongGuarantee(
      [](Fixture& f) {
        static_cast<void>(f.network->linkVertex_to_weight(*f.first, *f.last, 8.0f));
      },
      [](Fixture& f) {
        EXPECT_EQ(f.network->countEdges(), 4U);
        EXPECT_EQ(f.network->edgeAtIndex(3)->weight(), 8.0f);
      });
}

TEST(FailingAllocations, OfSettingAValueLeaveTheNetworkAsItWas) {
  expectStrongGuarantee(
      [](Fixture& f) {
        f.network->setPropertyValue_forKey_atVertexIndex(std::string(50, 'n'), "Name", 1);
      },
      [](Fixture& f) { EXPECT_EQ(f.network->vertexAtIndex(1)->description().size(), 50U); });
}

TEST(FailingAllocations, OfSettingANewKeyLeaveTheNetworkAsItWas) {
  const std::string key(40, 'k');
  for (const PropertyValue& value :
       {PropertyValue(1.0), PropertyValue(Fixture::kLongName), PropertyValue(VEQVector2d(1, 2)),
        PropertyValue(VEQVector3d(1, 2, 3))}) {
    expectStrongGuarantee(
        [&](Fixture& f) { f.network->setPropertyValue_forKey_atVertexIndex(value, key, 2); },
        [&](Fixture& f) {
          EXPECT_EQ(columnOf(*f.network->propertiesOfVertices(), key)->objectAtIndex(2), value);
        });
    expectStrongGuarantee(
        [&](Fixture& f) { f.network->setPropertyValue_forKey_atEdgeIndex(value, key, 2); },
        [&](Fixture& f) {
          EXPECT_EQ(columnOf(*f.network->propertiesOfEdges(), key)->objectAtIndex(2), value);
        });
  }
}

TEST(FailingAllocations, OfSettingSeveralValuesLeaveTheNetworkAsItWas) {
  PropertyMap values;
  values.set("Name", std::string(50, 'n'));
  values.set(std::string(40, 'k'), 1.0);
  values.set("Length", 2.5);
  values.set("Kind", std::string(50, 'v'));
  values.set("Position", VEQVector3d(1, 2, 3));
  expectStrongGuarantee(
      [&](Fixture& f) { f.network->vertexAtIndex(1)->setProperties(values); },
      [](Fixture& f) { EXPECT_EQ(f.network->vertexAtIndex(1)->properties().size(), 5U); });
  values.set("Place", VEQVector3d(1, 2, 3));
  expectStrongGuarantee(
      [&](Fixture& f) { f.network->edgeAtIndex(1)->setProperties(values); },
      [](Fixture& f) { EXPECT_EQ(f.network->edgeAtIndex(1)->properties().size(), 6U); });
}

TEST(FailingAllocations, OfSettingAFixedColumnLeaveTheNetworkAsItWas) {
  const Shared<PropertyColumn> fixed =
      VEQNumberArray::initWithDoubleScalar_count(1.5, 3)->fixedCopy();
  expectStrongGuarantee(
      [&](Fixture& f) { f.network->setPropertiesOfVertices_forKey(fixed, "fixed"); },
      [](Fixture& f) { EXPECT_TRUE(f.network->propertiesOfVertices()->contains("fixed")); });
}

TEST(FailingAllocations, OfWeightSettersLeaveTheNetworkAsItWas) {
  const auto weights = VEQNumberArray::ofFloats({5, 6, 7});
  expectStrongGuarantee([&](Fixture& f) { f.network->setVerticesWeightValues(weights); },
                        [](Fixture& f) { EXPECT_EQ(f.first->weight(), 5.0f); });
  expectStrongGuarantee([](Fixture& f) { f.network->setWeightValue_atVertexIndex(5, 2); },
                        [](Fixture& f) { EXPECT_EQ(f.last->weight(), 5.0f); });
  for (const bool all : {false, true}) {
    const std::uint64_t failures =
        forEachFailingAllocation([] { return makeFixture(true, false); },
                                 [&](Fixture& f) {
                                   if (all) {
                                     f.network->setEdgesWeightValues(weights);
                                   } else {
                                     f.network->setWeightValue_atEdgeIndex(7, 2);
                                   }
                                 },
                                 [](Fixture& f, bool failed) {
                                   if (failed) {
                                     f.expectUnchanged();
                                   } else {
                                     EXPECT_EQ(f.network->edgeAtIndex(2)->weight(), 7.0f);
                                   }
                                 });
    EXPECT_GT(failures, 0U);
  }
}

TEST(FailingAllocations, OfQuestionsLeaveTheNetworkAsItWas) {
  const auto where = VEQNumberArray::ofIndices({0, 2});
  expectStrongGuarantee(
      [&](Fixture& f) {
        const VEQNetwork& n = *f.network;
        static_cast<void>(n.calcDegrees());
        static_cast<void>(n.calcInStrengths());
        static_cast<void>(n.edgesLinkedFromVertexAtIndex(2)[0]);
        static_cast<void>(n.indicesOfVerticesLinkedToVertexAtIndex(2));
        static_cast<void>(n.vertexWithName("x"));
        static_cast<void>(n.verticesWithName(Fixture::kLongName));
        static_cast<void>(n.edgesWeightValues());
        static_cast<void>(n.propertiesOfVertexAtIndex(1));
        static_cast<void>(n.propertiesOfInEdgesAtIndexArray(where));
        static_cast<void>(n.namesOfVerticesAtIndexArray(where));
        static_cast<void>(n.namesOfEdgesAtIndexArray(where));
        static_cast<void>(n.areEditableEdgesAtIndexArray(where));
        static_cast<void>(n.keysForPropertiesOfEdges());
        static_cast<void>(n.edgeAtIndex(1)->description());
        static_cast<void>(VEQEdge::initAtNetwork_identification(n, 1)->fromVertex());
      },
      [](Fixture& f) { f.expectUnchanged(); });
}

TEST(FailingAllocations, OfTheMatrixLeaveTheNetworkAsItWas) {
  // Freed where it was allocated, so that the count of blocks tells.
  expectStrongGuarantee(
      [](Fixture& f) { std::free(f.network->buildAdjacencyMatrixInPointer(nullptr)); },
      [](Fixture& f) { f.expectUnchanged(); });
}

// A constructor and a factory give no network instead of throwing. Answers the least number of
// allocations that were made to fail.
std::uint64_t constructWithFailures(std::uint64_t vertices, std::uint64_t edges) {
  std::vector<std::uint64_t> ends(edges, vertices - 1);
  for (std::uint64_t e = 1; e < edges; ++e) ends[e] = e * 7 % vertices;
  const auto from = VEQNumberArray::ofIndices(ends);
  internal::RawVector<double> targets(edges);
  std::copy(ends.begin(), ends.end(), targets.begin());
  const VEQNumberArray to(std::move(targets));
  const VEQNumberArray verticesWeights(internal::RawVector<float>(vertices, 2.0F));
  const VEQNumberArray edgesWeights(internal::RawVector<float>(edges, 3.0F));
  std::uint64_t least = UINT64_MAX;
  for (const bool directed : {false, true}) {
    for (const bool factory : {false, true}) {
      Shared<VEQNetwork> shared;
      Owned<VEQNetwork> owned;
      const std::uint64_t failures = forEachFailingAllocation(
          [&] {
            if (factory) {
              shared = VEQNetwork::
                  networkWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
                      from, to, directed, &verticesWeights, &edgesWeights);
            } else {
              owned = VEQNetwork::
                  initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
                      from, to, directed, &verticesWeights, &edgesWeights);
            }
          },
          [&](bool failed) {
            EXPECT_FALSE(failed) << "It must not throw.";
            const VEQNetwork* network = factory ? shared.get() : owned.get();
            EXPECT_EQ(network == nullptr, FailingAllocation::happened());
            EXPECT_TRUE(!network || network->countEdges() == edges);
            shared.reset();
            owned.reset();
          });
      least = std::min(least, failures);
    }
  }
  return least;
}

// All lists of a small network lie in one block. Besides it there are the indices that were
// doubles, two lists of weights, the network, what it consists of, and its properties.
TEST(FailingAllocations, OfConstructorsGiveNoNetwork) {
  EXPECT_GE(constructWithFailures(3, 4), 7U);
}

// Here each list is a block by itself, and entries are sorted by ranges of vertices.
TEST(FailingAllocations, OfLargeConstructionsGiveNoNetwork) {
  EXPECT_GE(constructWithFailures(std::uint64_t{1} << 15, std::uint64_t{1} << 17), 12U);
}

TEST(FailingAllocations, OfTheCapacityConstructorGiveNoNetwork) {
  Shared<VEQNetwork> network;
  const std::uint64_t failures = forEachFailingAllocation(
      [&] { network = VEQNetwork::networkWithVertexCapacity_edgeCapacity(5, 5); },
      [&](bool failed) {
        EXPECT_FALSE(failed) << "It must not throw.";
        EXPECT_EQ(!network, FailingAllocation::happened());
        network.reset();
      });
  EXPECT_GT(failures, 3U);
}

}  // namespace
}  // namespace veq::test::network_allocations_test
