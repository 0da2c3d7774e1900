#include "veq/handles/vertex.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::vertex_test {
namespace {

using testing::ElementsAre;

TEST(Vertex, WithoutAColumnItsNameIsItsIndex) {
  const auto network = drawUndirected("0-3");
  EXPECT_EQ(network->vertexAtIndex(3)->name(), PropertyValue("3"));
  EXPECT_EQ(network->vertexAtIndex(3)->description(), "3");
  EXPECT_EQ(VEQVertex::initAtNetwork_identification(*network, UINT64_MAX)->description(),
            "18446744073709551615");
}

TEST(Vertex, OnceTheColumnExistsAnUnsetNameIsTheNullMarker) {
  const auto network = drawUndirected("0-1");
  network->vertexAtIndex(0)->setName("A");
  EXPECT_EQ(network->vertexAtIndex(0)->name(), PropertyValue("A"));
  EXPECT_EQ(network->vertexAtIndex(0)->description(), "A");
  EXPECT_TRUE(network->vertexAtIndex(1)->name().isNull());
  EXPECT_EQ(network->vertexAtIndex(1)->description(), "<null>");
}

TEST(Vertex, ANameThatIsNoTextComesAsItIsStored) {
  const auto network = drawUndirected("0-1");
  network->setPropertiesOfVertices_forKey(VEQNumberArray::initWithDoubleScalar_count(2.5, 2),
                                          "Name");
  EXPECT_EQ(network->vertexAtIndex(1)->name(), PropertyValue(2.5));
  EXPECT_EQ(network->vertexAtIndex(1)->description(), "2.5");
}

TEST(Vertex, WeighsOneUnweightedAndItsWeightIsTheNetworks) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(1);
  EXPECT_EQ(vertex->weight(), 1.0f);
  EXPECT_FALSE(vertex->isWeighted());
  vertex->setWeight(2.5f);
  EXPECT_EQ(vertex->weight(), 2.5f);
  EXPECT_EQ(network->vertexAtIndex(0)->weight(), 0.0f);
  EXPECT_TRUE(vertex->isWeighted());
  EXPECT_FALSE(network->edgeAtIndex(0)->isWeighted());
  network->blockEditing();
  vertex->setWeight(9.0f);
  EXPECT_EQ(vertex->weight(), 2.5f);
}

TEST(Vertex, PropertyForKeyGivesTheWholeMap) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(1);
  vertex->setProperty_forKey(4, "Age");
  PropertyMap more;
  more.set("Town", PropertyValue("T"));
  more.set("Age", PropertyValue(5));
  vertex->setProperties(more);
  EXPECT_THAT(vertex->properties().keys(), ElementsAre("Age", "Town"));
  EXPECT_EQ(*vertex->properties().find("Age"), PropertyValue(5.0));
  EXPECT_THAT(vertex->propertyForKey("Town").keys(), ElementsAre("Age", "Town"));
  EXPECT_THAT(vertex->propertyForKey("unknown").keys(), ElementsAre("Age", "Town"));
  EXPECT_THAT(vertex->keysForProperties(), ElementsAre("Age", "Town"));
}

TEST(Vertex, SeveralPropertiesAreSetTogetherOrNotAtAll) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(1);
  // The same column twice: it gets its oldest value back.
  const auto ages = std::make_shared<VEQNumberArray>(VEQNumberArray::ofDoubles({1, 2}));
  network->setPropertiesOfVertices_forKey(ages, "Age");
  network->setPropertiesOfVertices_forKey(ages, "Years");
  vertex->setName("old");
  PropertyMap values;
  values.set("Name", "new");
  values.set("Town", "T");
  values.set("Years", 6);
  values.set("Land", "L");
  values.set("Age", "no number");
  EXPECT_THROW(vertex->setProperties(values), std::invalid_argument);
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("Age", "Years", "Name"));
  EXPECT_EQ(vertex->name(), PropertyValue("old"));
  EXPECT_THAT(ages->values<double>(), ElementsAre(1, 2));

  values.set("Age", 5);
  EXPECT_THROW(VEQVertex::initAtNetwork_identification(*network, 2)->setProperties(values),
               std::out_of_range);
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("Age", "Years", "Name"));
  vertex->setProperties(values);
  EXPECT_THAT(network->keysForPropertiesOfVertices(),
              ElementsAre("Age", "Years", "Name", "Town", "Land"));
  EXPECT_THAT(ages->values<double>(), ElementsAre(1, 5));
}

TEST(Vertex, BlockEditingDoesNothing) {
  const auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(0);
  vertex->blockEditing();
  EXPECT_TRUE(vertex->isEditable());
  EXPECT_TRUE(network->isEditable());
  network->blockEditing();
  EXPECT_FALSE(vertex->isEditable());
}

// Two edges out of vertex 0 and three into it.
TEST(Vertex, ForwardsItsNeighbourhood) {
  const auto network = drawDirected("0-1 2-0 0-3 3-0 2-0");
  const auto vertex = network->vertexAtIndex(0);
  EXPECT_TRUE(vertex->isDirected());
  EXPECT_FALSE(drawUndirected("0-1")->vertexAtIndex(0)->isDirected());
  EXPECT_EQ(vertex->countEdges(), 2U);
  EXPECT_EQ(vertex->countInEdges(), 3U);
  EXPECT_EQ(vertex->countNeighborVertices(), 2U);
  EXPECT_EQ(vertex->countInNeighborVertices(), 3U);
  EXPECT_THAT(indices(vertex->edges()), ElementsAre(0, 2));
  EXPECT_THAT(indices(vertex->neighborVertices()), ElementsAre(1, 3));
  EXPECT_THAT(indices(vertex->inNeighborVertices()), ElementsAre(2, 3, 2));
  EXPECT_EQ(vertex->edgeAtIndex(1), network->edgeAtIndex(2));
  EXPECT_EQ(vertex->nextVertexAtIndex(1), network->vertexAtIndex(3));
  EXPECT_EQ(vertex->inEdgeAtIndex(2), network->edgeAtIndex(4));
  EXPECT_EQ(vertex->previousVertexAtIntex(1), network->vertexAtIndex(3));
}

TEST(Vertex, InEdgesGivesVertices) {
  const auto network = drawDirected("0-1 2-0 0-3 3-0 2-0");
  const VEQVertexArray inEdges = network->vertexAtIndex(0)->inEdges();
  EXPECT_THAT(indices(inEdges), ElementsAre(2, 3, 2));
  EXPECT_EQ(inEdges[1], network->vertexAtIndex(0)->inNeighborVertices()[1]);
}

TEST(Vertex, AnElementBeyondTheListIsARangeFailure) {
  const auto network = drawDirected("0-1 2-0 0-3 3-0 2-0");
  const auto vertex = network->vertexAtIndex(0);
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(vertex->edgeAtIndex(2)); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(vertex->nextVertexAtIndex(2)); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(vertex->inEdgeAtIndex(3)); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(vertex->previousVertexAtIntex(3)); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(vertex->edgeAtIndex(UINT64_MAX)); }));
}

TEST(Vertex, MadeByHandBeyondTheCountRaisesWhatTheNetworkRaises) {
  const auto network = drawUndirected("0-1");
  const auto beyond = VEQVertex::initAtNetwork_identification(*network, 2);
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(beyond->weight()); }));
  EXPECT_EQ(invalidArgumentText([&] { beyond->setWeight(1.0f); }),
            "Index must be less than number of Vertices.");
  EXPECT_EQ(invalidArgumentText([&] { static_cast<void>(beyond->countEdges()); }),
            "VertexIndex must be less than count.");
  EXPECT_EQ(invalidArgumentText([&] { static_cast<void>(beyond->neighborVertices()); }),
            "VertexIndex must be less than count.");
  EXPECT_TRUE(throwsOutOfRange([&] { beyond->setName("A"); }));
  EXPECT_FALSE(network->propertiesOfVertices()->contains("Name"));
  network->vertexAtIndex(0)->setName("A");
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(beyond->name()); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(beyond->properties()); }));
}

TEST(Vertex, EveryOperationOfAnInvalidHandleRaises) {
  using Call = std::function<void(VEQVertex&)>;
  const std::vector<std::pair<const char*, Call>> calls = {
      {"name", [](VEQVertex& v) { static_cast<void>(v.name()); }},
      {"description", [](VEQVertex& v) { static_cast<void>(v.description()); }},
      {"setName", [](VEQVertex& v) { v.setName("A"); }},
      {"weight", [](VEQVertex& v) { static_cast<void>(v.weight()); }},
      {"setWeight", [](VEQVertex& v) { v.setWeight(1.0f); }},
      {"properties", [](VEQVertex& v) { static_cast<void>(v.properties()); }},
      {"propertyForKey", [](VEQVertex& v) { static_cast<void>(v.propertyForKey("k")); }},
      {"setProperty", [](VEQVertex& v) { v.setProperty_forKey(1, "k"); }},
      {"setProperties", [](VEQVertex& v) { v.setProperties(PropertyMap()); }},
      {"keys", [](VEQVertex& v) { static_cast<void>(v.keysForProperties()); }},
      {"blockEditing", [](VEQVertex& v) { v.blockEditing(); }},
      {"isEditable", [](VEQVertex& v) { static_cast<void>(v.isEditable()); }},
      {"isDirected", [](VEQVertex& v) { static_cast<void>(v.isDirected()); }},
      {"isWeighted", [](VEQVertex& v) { static_cast<void>(v.isWeighted()); }},
      {"countEdges", [](VEQVertex& v) { static_cast<void>(v.countEdges()); }},
      {"countInEdges", [](VEQVertex& v) { static_cast<void>(v.countInEdges()); }},
      {"countNeighbor", [](VEQVertex& v) { static_cast<void>(v.countNeighborVertices()); }},
      {"countInNeighbor", [](VEQVertex& v) { static_cast<void>(v.countInNeighborVertices()); }},
      {"edges", [](VEQVertex& v) { static_cast<void>(v.edges()); }},
      {"neighborVertices", [](VEQVertex& v) { static_cast<void>(v.neighborVertices()); }},
      {"inEdges", [](VEQVertex& v) { static_cast<void>(v.inEdges()); }},
      {"inNeighborVertices", [](VEQVertex& v) { static_cast<void>(v.inNeighborVertices()); }},
      {"edgeAtIndex", [](VEQVertex& v) { static_cast<void>(v.edgeAtIndex(0)); }},
      {"nextVertex", [](VEQVertex& v) { static_cast<void>(v.nextVertexAtIndex(0)); }},
      {"inEdge", [](VEQVertex& v) { static_cast<void>(v.inEdgeAtIndex(0)); }},
      {"previousVertex", [](VEQVertex& v) { static_cast<void>(v.previousVertexAtIntex(0)); }},
  };
  auto network = drawUndirected("0-1");
  const auto alone = VEQVertex::initAtNetwork_identification(*network, 0);
  alone->invalidateNetwork();
  const auto dying = network->vertexAtIndex(0);
  const auto expectAllRaise = [&](VEQVertex& vertex) {
    for (const auto& [name, call] : calls) {
      const std::string what = name;
      const Call run = call;
      EXPECT_EQ(invalidArgumentText([&] { run(vertex); }),
                "The Related Network of this vertex is not valid.")
          << what;
    }
  };
  expectAllRaise(*alone);
  EXPECT_TRUE(network->propertiesOfVertices()->empty());
  EXPECT_FALSE(network->isVertexWeighted());
  network.reset();
  expectAllRaise(*dying);
}

}  // namespace
}  // namespace veq::test::vertex_test
