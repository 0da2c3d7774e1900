#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tests/support/network_drawing.hpp"
#include "tests/support/thrown_text.hpp"
#include "veq/network/network.hpp"

namespace veq::test::properties_test {
namespace {

using Kind = PropertyColumn::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

const PropertyColumn& vertexColumn(const VEQNetwork& network, std::string_view key) {
  return *columnOf(*network.propertiesOfVertices(), key);
}

const PropertyColumn& edgeColumn(const VEQNetwork& network, std::string_view key) {
  return *columnOf(*network.propertiesOfEdges(), key);
}

Shared<GenericArray> generic(std::vector<PropertyValue> values) {
  return std::make_shared<GenericArray>(std::move(values));
}

TEST(VertexProperties, TheFirstNumberMakesANumberColumn) {
  const auto network = drawUndirected("0-1", 4);
  network->setPropertyValue_forKey_atVertexIndex(7, "k", 2);
  EXPECT_EQ(vertexColumn(*network, "k").kind(), Kind::kNumber);
  EXPECT_THAT(texts(vertexColumn(*network, "k")), ElementsAre("0", "0", "7", "0"));
  // Doubles, whatever the first number was.
  network->setPropertyValue_forKey_atVertexIndex(0.5, "k", 0);
  EXPECT_THAT(texts(vertexColumn(*network, "k")), ElementsAre("0.5", "0", "7", "0"));
}

TEST(VertexProperties, TheFirstStringMakesAGenericColumn) {
  const auto network = drawUndirected("0-1", 4);
  network->setPropertyValue_forKey_atVertexIndex("x", "k", 2);
  EXPECT_EQ(vertexColumn(*network, "k").kind(), Kind::kGeneric);
  EXPECT_THAT(texts(vertexColumn(*network, "k")), ElementsAre("<null>", "<null>", "x", "<null>"));
}

TEST(VertexProperties, TheFirstVectorMakesAVectorColumnOfItsPrecision) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex(VEQVector2d(1, 2, kSinglePrecision), "two", 1);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(1, 2, 3), "three", 0);
  EXPECT_EQ(vertexColumn(*network, "two").kind(), Kind::kVector2d);
  EXPECT_EQ(vertexColumn(*network, "two").objectAtIndex(0).vector2d()->precision(),
            kSinglePrecision);
  EXPECT_EQ(vertexColumn(*network, "three").kind(), Kind::kVector3d);
  EXPECT_EQ(vertexColumn(*network, "three").objectAtIndex(1).vector3d()->precision(),
            kDoublePrecision);
  EXPECT_THAT(texts(vertexColumn(*network, "two")), ElementsAre("0 0", "1 2"));
  EXPECT_THAT(texts(vertexColumn(*network, "three")), ElementsAre("1 2 3", "0 0 0"));
}

TEST(VertexProperties, TheNullMarkerMakesAGenericColumnAndUnsetsATypedOne) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex(PropertyValue(), "null", 0);
  EXPECT_EQ(vertexColumn(*network, "null").kind(), Kind::kGeneric);
  network->setPropertyValue_forKey_atVertexIndex(5, "number", 0);
  network->setPropertyValue_forKey_atVertexIndex(PropertyValue(), "number", 0);
  EXPECT_THAT(texts(vertexColumn(*network, "number")), ElementsAre("0", "0"));
}

TEST(VertexProperties, AValueThatATypedColumnCannotHoldIsRefused) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex(5, "number", 0);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector2d(1, 2), "two", 0);
  EXPECT_THROW(network->setPropertyValue_forKey_atVertexIndex("x", "number", 0),
               std::invalid_argument);
  EXPECT_THROW(network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(), "two", 0),
               std::invalid_argument);
  EXPECT_THAT(texts(vertexColumn(*network, "number")), ElementsAre("5", "0"));
  EXPECT_THAT(texts(vertexColumn(*network, "two")), ElementsAre("1 2", "0 0"));
}

TEST(VertexProperties, AVectorReplacesTheElementOfAGenericColumn) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex("x", "k", 0);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(1, 2, 3), "k", 1);
  EXPECT_THAT(texts(vertexColumn(*network, "k")), ElementsAre("x", "1 2 3"));
}

TEST(VertexProperties, ARangeFailureLeavesNoColumnBehind) {
  const auto network = drawUndirected("0-1");
  EXPECT_TRUE(throwsOutOfRange([&] { network->setPropertyValue_forKey_atVertexIndex(1, "k", 2); }));
  EXPECT_TRUE(
      throwsOutOfRange([&] { network->setPropertyValue_forKey_atEdgeIndex(1, "k", UINT64_MAX); }));
  EXPECT_THAT(network->keysForPropertiesOfVertices(), IsEmpty());
  EXPECT_THAT(network->keysForPropertiesOfEdges(), IsEmpty());
}

TEST(EdgeProperties, ASingleValueAlwaysMakesAGenericColumn) {
  const auto network = drawUndirected("0-1 1-2 0-2");
  network->setPropertyValue_forKey_atEdgeIndex(7, "number", 1);
  network->setPropertyValue_forKey_atEdgeIndex(VEQVector2d(1, 2), "vector", 2);
  EXPECT_EQ(edgeColumn(*network, "number").kind(), Kind::kGeneric);
  EXPECT_EQ(edgeColumn(*network, "vector").kind(), Kind::kGeneric);
  EXPECT_THAT(texts(edgeColumn(*network, "number")), ElementsAre("<null>", "7", "<null>"));
  EXPECT_EQ(edgeColumn(*network, "number").objectAtIndex(1).number()->type(),
            ElementType::kInteger);
}

TEST(EdgeProperties, AnExistingTypedColumnTakesTheValue) {
  const auto network = drawUndirected("0-1 1-2");
  network->setPropertiesOfEdges_forKey(VEQNumberArray::initWithDoubleScalar_count(1.5, 2), "k");
  network->setPropertyValue_forKey_atEdgeIndex(3, "k", 0);
  EXPECT_THAT(texts(edgeColumn(*network, "k")), ElementsAre("3", "1.5"));
  EXPECT_THROW(network->setPropertyValue_forKey_atEdgeIndex("x", "k", 0), std::invalid_argument);
}

TEST(WholeColumns, ReservedKeysAreIgnored) {
  const auto network = drawUndirected("0-1");
  for (const char* key : {"Edge Weight", "Vertex Weight", "Edge From", "Edge To"}) {
    network->setPropertiesOfVertices_forKey(GenericArray::nullFilled(2), key);
    network->setPropertiesOfEdges_forKey(GenericArray::nullFilled(1), key);
  }
  EXPECT_TRUE(network->propertiesOfVertices()->empty());
  EXPECT_TRUE(network->propertiesOfEdges()->empty());
  network->setPropertiesOfVertices_forKey(GenericArray::nullFilled(2), "edge weight");
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("edge weight"));
}

TEST(WholeColumns, ASingleValueIsStoredUnderAReservedKeyAndStays) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex("x", "Edge To", 0);
  EXPECT_THAT(texts(vertexColumn(*network, "Edge To")), ElementsAre("x", "<null>"));
  network->setPropertiesOfVertices_forKey(nullptr, "Edge To");
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("Edge To"));
}

TEST(WholeColumns, AnAbsentColumnRemovesTheKey) {
  const auto network = drawUndirected("0-1");
  network->setPropertiesOfVertices_forKey(GenericArray::nullFilled(2), "a");
  network->setPropertiesOfVertices_forKey(GenericArray::nullFilled(2), "b");
  network->setPropertiesOfVertices_forKey(nullptr, "a");
  network->setPropertiesOfVertices_forKey(nullptr, "unknown");
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("b"));
}

TEST(WholeColumns, AnEditableColumnIsSharedAndAFixedOneCopied) {
  const auto network = drawUndirected("0-1");
  const Shared<VEQNumberArray> mine = VEQNumberArray::initWithDoubleScalar_count(1, 2);
  const Shared<VEQNumberArray> fixed = mine->fixedCopy();
  network->setPropertiesOfVertices_forKey(mine, "mine");
  network->setPropertiesOfVertices_forKey(fixed, "fixed");
  network->setPropertyValue_forKey_atVertexIndex(5, "mine", 0);
  network->setPropertyValue_forKey_atVertexIndex(5, "fixed", 0);
  EXPECT_THAT(doubles(*mine), ElementsAre(5, 1));
  EXPECT_THAT(doubles(*fixed), ElementsAre(1, 1));
  EXPECT_THAT(texts(vertexColumn(*network, "fixed")), ElementsAre("5", "1"));
  EXPECT_EQ(&vertexColumn(*network, "mine"), mine.get());
}

TEST(WholeColumns, KeepTheirLengthAndReadAsNullBeyondIt) {
  const auto network = drawUndirected("0-1 1-2");
  network->setPropertiesOfVertices_forKey(generic({"A"}), "Name");
  network->setPropertiesOfVertices_forKey(VEQNumberArray::initWithDoubleScalar_count(4, 5), "long");
  EXPECT_EQ(vertexColumn(*network, "Name").count(), 1U);
  EXPECT_TRUE(network->propertiesOfVertexAtIndex(2).find("Name")->isNull());
  EXPECT_TRUE(network->vertexAtIndex(2)->name().isNull());
  EXPECT_TRUE(
      throwsOutOfRange([&] { network->setPropertyValue_forKey_atVertexIndex("C", "Name", 2); }));
  network->setPropertyValue_forKey_atVertexIndex(9, "long", 4);
  EXPECT_THAT(texts(vertexColumn(*network, "long")), ElementsAre("4", "4", "4", "4", "9"));
}

TEST(ReadingProperties, OfOneVertexGivesEveryKeyInOrder) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex("A", "Name", 0);
  network->setPropertyValue_forKey_atVertexIndex(3, "Age", 1);
  const PropertyMap first = network->propertiesOfVertexAtIndex(0);
  EXPECT_THAT(first.keys(), ElementsAre("Name", "Age"));
  EXPECT_EQ(*first.find("Name"), PropertyValue("A"));
  EXPECT_EQ(*first.find("Age"), PropertyValue(0.0));
  EXPECT_TRUE(network->propertiesOfVertexAtIndex(1).find("Name")->isNull());
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(network->propertiesOfVertexAtIndex(2)); }));
  network->setPropertyValue_forKey_atEdgeIndex("x", "Kind", 0);
  EXPECT_EQ(*network->propertiesOfEdgeAtIndex(0).find("Kind"), PropertyValue("x"));
  EXPECT_TRUE(throwsOutOfRange([&] { static_cast<void>(network->propertiesOfEdgeAtIndex(1)); }));
}

TEST(ReadingProperties, AtIndicesGivesSubColumnsInTheirOrder) {
  const auto network = drawUndirected("0-1 1-2 0-2");
  network->setPropertiesOfVertices_forKey(generic({"A", "B", "C"}), "Name");
  network->setPropertiesOfEdges_forKey(generic({"x", "y", "z"}), "Kind");
  const auto where = VEQNumberArray::ofIndices({2, 0, 2});
  EXPECT_THAT(texts(*columnOf(network->propertiesOfVerticesAtIndexArray(where), "Name")),
              ElementsAre("C", "A", "C"));
  EXPECT_THAT(texts(*columnOf(network->propertiesOfInEdgesAtIndexArray(where), "Kind")),
              ElementsAre("z", "x", "z"));
  EXPECT_THAT(texts(*network->propertiesOfVerticesAtIndexArray_forKey(where, "Name")),
              ElementsAre("C", "A", "C"));
  EXPECT_THAT(texts(*network->propertiesOfEdgesAtIndexArray_forKey(where, "Kind")),
              ElementsAre("z", "x", "z"));
  EXPECT_FALSE(network->propertiesOfVerticesAtIndexArray_forKey(where, "Kind"));
  EXPECT_FALSE(network->propertiesOfEdgesAtIndexArray_forKey(where, "Name"));
  EXPECT_TRUE(throwsOutOfRange([&] {
    static_cast<void>(network->propertiesOfVerticesAtIndexArray(VEQNumberArray::ofIndices({0, 3})));
  }));
}

TEST(ReadingProperties, NamesFallBackToTheGivenNumbers) {
  const auto network = drawUndirected("0-1", 6);
  const auto where = VEQNumberArray::ofIndices({3, 5});
  EXPECT_THAT(texts(*network->namesOfVerticesAtIndexArray(where)), ElementsAre("3", "5"));
  EXPECT_THAT(texts(*network->namesOfEdgesAtIndexArray(where)), ElementsAre("3", "5"));
  network->setPropertyValue_forKey_atVertexIndex("A", "Name", 5);
  EXPECT_THAT(texts(*network->namesOfVerticesAtIndexArray(where)), ElementsAre("<null>", "A"));
  network->setPropertyValue_forKey_atEdgeIndex("x", "Name", 0);
  EXPECT_THAT(texts(*network->namesOfEdgesAtIndexArray(VEQNumberArray::ofIndices({0, 0}))),
              ElementsAre("x", "x"));
}

TEST(ReadingProperties, AreEditableIgnoresItsIndices) {
  const auto network = drawUndirected("0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1", 3);
  const auto two = VEQNumberArray::ofIndices({0, 1});
  EXPECT_EQ(network->areEditableEdgesAtIndexArray(two)->count(), 10U);
  EXPECT_THAT(doubles(*network->areEditableVerticesAtIndexArray(two)), ElementsAre(1, 1, 1));
  EXPECT_EQ(network->areEditableVerticesAtIndexArray(two)->elementType(), ElementType::kInteger);
  network->blockEditing();
  EXPECT_THAT(doubles(*network->areEditableVerticesAtIndexArray(VEQNumberArray::ofIndices({99}))),
              ElementsAre(0, 0, 0));
  EXPECT_THAT(doubles(*network->areEditableEdgesAtIndexArray(two)), testing::Each(0.0));
}

TEST(ReadingProperties, TablesAreLive) {
  const auto network = drawUndirected("0-1");
  const auto vertices = network->propertiesOfVertices();
  const auto edges = network->propertiesOfEdges();
  EXPECT_EQ(vertices, network->propertiesOfVertices());
  network->setPropertyValue_forKey_atVertexIndex(1, "a", 0);
  network->setPropertyValue_forKey_atEdgeIndex(1, "b", 0);
  EXPECT_TRUE(vertices->contains("a"));
  EXPECT_TRUE(edges->contains("b"));
  EXPECT_FALSE(vertices->contains("b"));
}

TEST(ReadingProperties, KeysKeepTheOrderOfTheirFirstSetting) {
  const auto network = drawUndirected("0-1");
  for (const char* key : {"z", "a", "m", "z"}) {
    network->setPropertyValue_forKey_atVertexIndex(1, key, 0);
    network->setPropertyValue_forKey_atEdgeIndex(1, key, 0);
  }
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("z", "a", "m"));
  EXPECT_THAT(network->keysForPropertiesOfEdges(), ElementsAre("z", "a", "m"));
}

TEST(ReadingProperties, BlockingDoesNotStopProperties) {
  const auto network = drawUndirected("0-1");
  network->blockEditing();
  network->setPropertyValue_forKey_atVertexIndex(1, "a", 0);
  network->setPropertyValue_forKey_atEdgeIndex(1, "a", 0);
  network->setPropertiesOfVertices_forKey(GenericArray::nullFilled(2), "b");
  EXPECT_THAT(network->keysForPropertiesOfVertices(), ElementsAre("a", "b"));
  EXPECT_THAT(network->keysForPropertiesOfEdges(), ElementsAre("a"));
}

TEST(VertexNames, WithoutAColumnVerticesGoByTheirIndex) {
  const auto network = drawUndirected("0-1", 12);
  EXPECT_EQ(network->vertexWithName("3"), network->vertexAtIndex(3));
  EXPECT_EQ(network->vertexWithName("0"), network->vertexAtIndex(0));
  EXPECT_THAT(indices(network->verticesWithName("11")), ElementsAre(11));
  for (const char* name : {"x", "", "12", "03", "+3", "-3", " 3", "3 ", "3x", "00", "1e0",
                           "18446744073709551616", "18446744073709551619"}) {
    EXPECT_FALSE(network->vertexWithName(name)) << name;
    EXPECT_TRUE(network->verticesWithName(name).empty()) << name;
  }
}

TEST(VertexNames, OfSeveralTheLowestIndexWinsAndAllAreListed) {
  const auto network = drawUndirected("0-1", 4);
  network->setPropertiesOfVertices_forKey(generic({"b", "a", "B", "a"}), "Name");
  EXPECT_EQ(network->vertexWithName("a"), network->vertexAtIndex(1));
  EXPECT_THAT(indices(network->verticesWithName("a")), ElementsAre(1, 3));
  EXPECT_THAT(indices(network->verticesWithName("b")), ElementsAre(0));
  EXPECT_FALSE(network->vertexWithName("0"));
}

TEST(VertexNames, AnUnsetNameMatchesNothingAndStopsNothing) {
  const auto network = drawUndirected("0-1", 3);
  network->setPropertyValue_forKey_atVertexIndex("A", "Name", 2);
  EXPECT_EQ(network->vertexWithName("A"), network->vertexAtIndex(2));
  EXPECT_FALSE(network->vertexWithName("0"));
  EXPECT_FALSE(network->vertexWithName("<null>"));
  EXPECT_FALSE(network->vertexWithName(""));
}

TEST(VertexNames, BeyondTheNetworkOrInAShortColumnAreNotFound) {
  const auto network = drawUndirected("0-1");
  network->setPropertiesOfVertices_forKey(generic({"a", "b", "c"}), "Name");
  EXPECT_FALSE(network->vertexWithName("c"));
  network->setPropertiesOfVertices_forKey(generic({"a"}), "Name");
  EXPECT_EQ(network->vertexWithName("a"), network->vertexAtIndex(0));
  EXPECT_FALSE(network->vertexWithName("1"));
}

TEST(VertexNames, ThatAreNumbersAreNoText) {
  const auto network = drawUndirected("0-1");
  network->setPropertyValue_forKey_atVertexIndex(7, "Name", 0);
  EXPECT_FALSE(network->vertexWithName("7"));
  EXPECT_FALSE(network->vertexWithName("0"));
}

}  // namespace
}  // namespace veq::test::properties_test
