#include "veq/handles/edge.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::edge_test {
namespace {

using testing::ElementsAre;

constexpr const char* kEdgeText = "The Related Network of this edge is not valid.";
constexpr const char* kVertexText = "The Related Network of this vertex is not valid.";

TEST(Edge, WithoutAColumnItsNameIsMadeOfItsEnds) {
  EXPECT_EQ(drawDirected("0-1")->edgeAtIndex(0)->name(), PropertyValue("0 -> 1"));
  EXPECT_EQ(drawUndirected("0-1")->edgeAtIndex(0)->name(), PropertyValue("0 <-> 1"));
  EXPECT_EQ(drawUndirected("0-1")->edgeAtIndex(0)->description(), "0 <-> 1");
  const auto network = drawUndirected("0-1");
  network->vertexAtIndex(0)->setName("A");
  EXPECT_EQ(network->edgeAtIndex(0)->description(), "A <-> <null>");
  network->vertexAtIndex(1)->setName("B");
  EXPECT_EQ(network->edgeAtIndex(0)->name(), PropertyValue("A <-> B"));
}

TEST(Edge, OnceTheColumnExistsAnUnsetNameIsTheNullMarker) {
  const auto network = drawDirected("0-1 1-0");
  network->edgeAtIndex(0)->setName("bridge");
  EXPECT_EQ(network->edgeAtIndex(0)->name(), PropertyValue("bridge"));
  EXPECT_EQ(network->edgeAtIndex(0)->description(), "bridge");
  EXPECT_TRUE(network->edgeAtIndex(1)->name().isNull());
  EXPECT_EQ(network->edgeAtIndex(1)->description(), "<null>");
}

TEST(Edge, WeighsOneUnweightedAndItsWeightIsTheNetworks) {
  const auto network = drawUndirected("0-1 1-2");
  const auto edge = network->edgeAtIndex(1);
  EXPECT_EQ(edge->weight(), 1.0f);
  EXPECT_FALSE(edge->isWeighted());
  edge->setWeight(2.5f);
  EXPECT_EQ(edge->weight(), 2.5f);
  EXPECT_EQ(network->edgeAtIndex(0)->weight(), 0.0f);
  EXPECT_TRUE(edge->isWeighted());
  EXPECT_FALSE(network->vertexAtIndex(0)->isWeighted());
  network->blockEditing();
  edge->setWeight(9.0f);
  EXPECT_EQ(edge->weight(), 2.5f);
}

TEST(Edge, PropertyForKeyGivesTheWholeMap) {
  const auto network = drawUndirected("0-1 1-2");
  const auto edge = network->edgeAtIndex(1);
  edge->setProperty_forKey(4, "Age");
  PropertyMap more;
  more.set("Town", PropertyValue("T"));
  edge->setProperties(more);
  EXPECT_EQ(*edge->properties().find("Age"), PropertyValue(4));
  EXPECT_THAT(edge->propertyForKey("unknown").keys(), ElementsAre("Age", "Town"));
  EXPECT_THAT(edge->keysForProperties(), ElementsAre("Age", "Town"));
  EXPECT_TRUE(network->edgeAtIndex(0)->properties().find("Age")->isNull());
  EXPECT_TRUE(network->propertiesOfVertices()->empty());
}

TEST(Edge, SeveralPropertiesAreSetTogetherOrNotAtAll) {
  const auto network = drawUndirected("0-1 1-2");
  const auto edge = network->edgeAtIndex(1);
  network->setPropertiesOfEdges_forKey(VEQNumberArray::initWithDoubleScalar_count(1.5, 2),
                                       "Length");
  edge->setName("old");
  PropertyMap values;
  values.set("Name", "new");
  values.set("Town", "T");
  values.set("Length", VEQVector2d(1, 2));
  EXPECT_THROW(edge->setProperties(values), std::invalid_argument);
  EXPECT_THAT(network->keysForPropertiesOfEdges(), ElementsAre("Length", "Name"));
  EXPECT_EQ(edge->name(), PropertyValue("old"));
}

TEST(Edge, ForwardsTheNetworksFlagsAndBlocksNothing) {
  const auto network = drawDirected("0-1");
  const auto edge = network->edgeAtIndex(0);
  EXPECT_TRUE(edge->isDirected());
  edge->blockEditing();
  EXPECT_TRUE(edge->isEditable());
  network->blockEditing();
  EXPECT_FALSE(edge->isEditable());
  EXPECT_FALSE(drawUndirected("0-1")->edgeAtIndex(0)->isDirected());
}

TEST(Edge, GivesTheOtherEndAndTheFromVertexForAnyStranger) {
  const auto network = drawUndirected("2-0 1-1");
  const auto other = drawUndirected("2-0 1-1");
  const auto edge = network->edgeAtIndex(0);
  EXPECT_EQ(edge->fromVertex(), network->vertexAtIndex(2));
  EXPECT_EQ(edge->toVertex(), network->vertexAtIndex(0));
  EXPECT_EQ(edge->vertexFromVertex(*network->vertexAtIndex(2)), network->vertexAtIndex(0));
  EXPECT_EQ(edge->vertexFromVertex(*network->vertexAtIndex(0)), network->vertexAtIndex(2));
  EXPECT_EQ(edge->vertexFromVertex(*network->vertexAtIndex(1)), network->vertexAtIndex(2));
  EXPECT_EQ(edge->vertexFromVertex(*other->vertexAtIndex(2)), network->vertexAtIndex(2));
  const auto byHand = VEQVertex::initAtNetwork_identification(*network, 2);
  EXPECT_EQ(edge->vertexFromVertex(*byHand), network->vertexAtIndex(0));
  const auto loop = network->edgeAtIndex(1);
  EXPECT_EQ(loop->vertexFromVertex(*network->vertexAtIndex(1)), network->vertexAtIndex(1));
}

TEST(Edge, MadeByHandBeyondTheCountRaises) {
  const auto network = drawUndirected("0-1");
  const auto beyond = VEQEdge::initAtNetwork_identification(*network, 1);
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(beyond->weight()); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(beyond->fromVertex()); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(beyond->toVertex()); }));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(beyond->name()); }));
  EXPECT_EQ(invalidArgumentText([&] { beyond->setWeight(1.0f); }),
            "Index must be less than number of Vertices.");
  EXPECT_TRUE(throwsOutOfRange([&] { beyond->setName("A"); }));
  EXPECT_TRUE(network->propertiesOfEdges()->empty());
  // It becomes right once the edge is there.
  insert(*network, "1-1");
  EXPECT_EQ(beyond->fromVertex(), network->vertexAtIndex(1));
}

TEST(Edge, EveryOperationOfAnInvalidHandleRaisesItsOwnText) {
  using Call = std::function<void(VEQEdge&)>;
  struct Case {
    const char* name;
    const char* text;
    Call call;
  };
  auto network = drawUndirected("0-1");
  const auto vertex = network->vertexAtIndex(0);
  const std::vector<Case> cases = {
      {"name", kEdgeText, [](VEQEdge& e) { static_cast<void>(e.name()); }},
      {"description", kEdgeText, [](VEQEdge& e) { static_cast<void>(e.description()); }},
      {"weight", kEdgeText, [](VEQEdge& e) { static_cast<void>(e.weight()); }},
      {"properties", kEdgeText, [](VEQEdge& e) { static_cast<void>(e.properties()); }},
      {"propertyForKey", kEdgeText, [](VEQEdge& e) { static_cast<void>(e.propertyForKey("")); }},
      {"setName", kEdgeText, [](VEQEdge& e) { e.setName("A"); }},
      {"setWeight", kEdgeText, [](VEQEdge& e) { e.setWeight(1.0f); }},
      {"setProperties", kEdgeText, [](VEQEdge& e) { e.setProperties(PropertyMap()); }},
      {"setProperty", kEdgeText, [](VEQEdge& e) { e.setProperty_forKey(1, "k"); }},
      {"keys", kVertexText, [](VEQEdge& e) { static_cast<void>(e.keysForProperties()); }},
      {"blockEditing", kVertexText, [](VEQEdge& e) { e.blockEditing(); }},
      {"isEditable", kVertexText, [](VEQEdge& e) { static_cast<void>(e.isEditable()); }},
      {"isDirected", kVertexText, [](VEQEdge& e) { static_cast<void>(e.isDirected()); }},
      {"isWeighted", kVertexText, [](VEQEdge& e) { static_cast<void>(e.isWeighted()); }},
      {"fromVertex", kVertexText, [](VEQEdge& e) { static_cast<void>(e.fromVertex()); }},
      {"toVertex", kVertexText, [](VEQEdge& e) { static_cast<void>(e.toVertex()); }},
      {"vertexFromVertex", kVertexText,
       [vertex](VEQEdge& e) { static_cast<void>(e.vertexFromVertex(*vertex)); }},
  };
  const auto alone = VEQEdge::initAtNetwork_identification(*network, 0);
  alone->invalidateNetwork();
  const auto dying = network->edgeAtIndex(0);
  for (const Case& c : cases) {
    EXPECT_EQ(invalidArgumentText([&] { c.call(*alone); }), c.text) << c.name;
  }
  EXPECT_TRUE(network->propertiesOfEdges()->empty());
  EXPECT_FALSE(network->isEdgeWeighted());
  network.reset();
  for (const Case& c : cases) {
    EXPECT_EQ(invalidArgumentText([&] { c.call(*dying); }), c.text) << c.name;
  }
}

}  // namespace
}  // namespace veq::test::edge_test
