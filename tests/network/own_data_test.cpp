// What a caller hands in may be the network's own: its columns, keys and names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "tests/support/network_drawing.hpp"
#include "veq/network/network.hpp"

namespace veq::test::own_data_test {
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

TEST(OwnData, TargetsAloneMayLieInAnEdgeColumn) {
  const auto network = drawDirected("0-1 1-2 2-3");
  const auto column = std::make_shared<VEQNumberArray>(VEQNumberArray::ofIndices({3, 0, 2}));
  network->setPropertiesOfEdges_forKey(column, "Next");
  const std::uint64_t other[] = {1, 1, 1};

  network->addEdgesFromVerticesIndices_toVerticesIndices_count(
      other, column->values<std::uint64_t>().data(), 3);
  EXPECT_THAT(ends(*network, false), ElementsAre(0, 1, 2, 1, 1, 1));
  EXPECT_THAT(ends(*network, true), ElementsAre(1, 2, 3, 3, 0, 2));
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

// The last key moves when the table grows for the next, which is a part of it: a short one, so that
// its text moves with it. Also where the table is about to have more keys than it searches one by
// one.
TEST(OwnData, AKeyMayBePartOfAnother) {
  const auto network = drawDirected("0-1");
  std::string longest = "abcdefghijklmno";
  network->setPropertyValue_forKey_atVertexIndex(0.0, longest, 0);
  for (std::size_t i = 1; i < longest.size(); ++i) {
    const std::string_view last = std::prev(network->propertiesOfVertices()->end())->first;
    network->setPropertyValue_forKey_atVertexIndex(static_cast<double>(i), last.substr(1), 0);
  }
  for (std::size_t i = 0; i < longest.size(); ++i) {
    const auto* column = network->propertiesOfVertices()->find(longest.substr(i));
    ASSERT_NE(column, nullptr);
    EXPECT_EQ((*column)->objectAtIndex(0), static_cast<double>(i));
  }
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
}  // namespace veq::test::own_data_test
