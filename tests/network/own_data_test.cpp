// What a caller hands in may be the network's own: its columns, keys and names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

#include "tests/support/network_drawing.hpp"
#include "veq/network/network.hpp"

namespace veq::test {
namespace {

using testing::ElementsAre;

std::vector<std::uint64_t> ends(const VEQNetwork& network, bool targets) {
  std::vector<std::uint64_t> result;
  for (const VEQEdge& edge : network.edges()) {
    result.push_back((targets ? edge.toVertex() : edge.fromVertex())->identification());
  }
  return result;
}

// The column has no space left, so that it moves when the edges are inserted.
TEST(OwnData, IndicesOfNewEdgesMayLieInAnEdgeColumn) {
  const auto network = drawDirected("0-1 1-2 2-3");
  const auto column = std::make_shared<VEQNumberArray>(VEQNumberArray::ofIndices({3, 0, 2}));
  network->setPropertiesOfEdges_forKey(column, "Next");
  const std::uint64_t* const indices = column->values<std::uint64_t>().data();
  const std::uint64_t other[] = {1, 1, 1};

  network->addEdgesFromVerticesIndices_toVerticesIndices_count(indices, other, 3);
  EXPECT_THAT(ends(*network, false), ElementsAre(0, 1, 2, 3, 0, 2));
  EXPECT_THAT(ends(*network, true), ElementsAre(1, 2, 3, 1, 1, 1));
  EXPECT_THAT(doubles(*column), ElementsAre(3, 0, 2, 0, 0, 0));
}

TEST(OwnData, BothEndsOfNewEdgesMayLieInAnEdgeColumn) {
  const auto network = drawDirected("0-1 1-2 2-3");
  // Integers are unsigned indices in the same bits.
  const auto column = std::make_shared<VEQNumberArray>(VEQNumberArray::ofIntegers({3, 0, 2}));
  network->setPropertiesOfEdges_forKey(column, "Next");
  const auto* const indices = static_cast<const std::uint64_t*>(column->VEQ_dataPointer());

  network->addEdgesFromVerticesIndices_toVerticesIndices_count(indices, indices + 1, 2);
  EXPECT_THAT(ends(*network, false), ElementsAre(0, 1, 2, 3, 0));
  EXPECT_THAT(ends(*network, true), ElementsAre(1, 2, 3, 0, 2));
}

// Many edges, so that the lists are built anew.
TEST(OwnData, ManyNewEdgesMayComeFromAnEdgeColumn) {
  std::string text;
  for (int i = 0; i < 100; ++i) text += "0-1 ";
  const auto network = drawUndirected(text, 3);
  const auto column = VEQNumberArray::numberArrayWithNumber_count(std::uint64_t{2}, 100);
  network->setPropertiesOfEdges_forKey(column, "End");
  const std::uint64_t* const indices = column->values<std::uint64_t>().data();

  network->addEdgesFromVerticesIndices_toVerticesIndices_count(indices, indices, 100);
  EXPECT_EQ(network->countEdges(), 200U);
  EXPECT_EQ(network->calcDegreeOfVertexAtIndex(2), 200.0);
}

TEST(OwnData, AColumnMayBecomeTheWeights) {
  const auto network = drawDirected("0-1 1-2");
  const auto lengths = std::make_shared<VEQNumberArray>(VEQNumberArray::ofFloats({1.5F, 2.5F}));
  network->setPropertiesOfEdges_forKey(lengths, "Length");
  network->setEdgesWeightValues(*lengths);
  insert(*network, "0-2");
  network->setEdgesWeightValues(*lengths);
  EXPECT_THAT(doubles(*network->edgesWeightValues()), ElementsAre(1.5, 2.5, 0));

  network->setPropertiesOfVertices_forKey(lengths, "Size");
  network->setVerticesWeightValues(*lengths);
  EXPECT_THAT(doubles(*network->verticesWeightValues()), ElementsAre(1.5, 2.5, 0));
}

TEST(OwnData, AColumnMayBeSetInItsOwnPlaceAndUnderItsOwnKey) {
  const auto network = drawDirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex("a name that is too long for a small string",
                                                 "a key that is too long for a small string", 0);
  const auto& [key, column] = *network->propertiesOfVertices()->begin();
  network->setPropertiesOfVertices_forKey(column, key);
  EXPECT_EQ(column->objectAtIndex(0), "a name that is too long for a small string");

  // The key dies with its entry.
  network->setPropertiesOfVertices_forKey(nullptr, key);
  EXPECT_TRUE(network->propertiesOfVertices()->empty());
}

// The first key moves when the table grows for the second, which is a part of it.
TEST(OwnData, AKeyMayBePartOfAnother) {
  const auto network = drawDirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex(1.0, "the length of a longer one", 0);
  const std::string_view key = network->propertiesOfVertices()->begin()->first;
  network->setPropertyValue_forKey_atVertexIndex(2.0, key.substr(4), 0);
  network->setPropertyValue_forKey_atVertexIndex(3.0, "length", 0);
  EXPECT_THAT(network->keysForPropertiesOfVertices(),
              ElementsAre("the length of a longer one", "length of a longer one", "length"));
  EXPECT_EQ(
      network->propertiesOfVertices()->find("length of a longer one")->get()->objectAtIndex(0),
      2.0);
}

TEST(OwnData, AValueMayComeFromItsOwnColumnAndNameTheKey) {
  const auto network = drawDirected("0-1 1-2");
  network->setPropertyValue_forKey_atVertexIndex("Name", "Name", 0);
  const auto& names =
      static_cast<const GenericArray&>(**network->propertiesOfVertices()->find("Name"));
  network->setPropertyValue_forKey_atVertexIndex(names.values()[0], *names.values()[0].string(), 2);
  EXPECT_EQ(names.values()[2], "Name");
  network->setPropertyValue_forKey_atVertexIndex("other", *names.values()[0].string(), 0);
  EXPECT_EQ(names.values()[0], "other");
  EXPECT_EQ(network->vertexWithName(*names.values()[2].string())->identification(), 2U);
}

}  // namespace
}  // namespace veq::test
