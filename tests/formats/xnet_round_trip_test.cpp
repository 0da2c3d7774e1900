#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "tests/formats/format_support.hpp"
#include "tests/support/log_capture.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::xnet_round_trip_test {
namespace {

Owned<VEQNetwork> throughText(const VEQNetwork& network) {
  return VEQNetwork::initWithNetworkFormattedString(network.formattedStringValue());
}

Owned<VEQNetwork> example() {
  return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      3, VEQNumberArray::ofIndices({0, 1}), VEQNumberArray::ofIndices({1, 2}));
}

TEST(XnetRoundTrip, NamesWithQuotesAndLineFeedsSurvive) {
  const auto network = example();
  network->setPropertiesOfVertices_forKey(generic({"a\nb\"c\"", "\n", "<new\nline>"}), "Name");
  EXPECT_THAT(vertexTexts(*throughText(*network), "Name"),
              ElementsAre("a\nb\"c\"", "\n", "<new\nline>"));
}

TEST(XnetRoundTrip, TheTextsOfEscapesDoNotSurvive) {
  const auto network = example();
  network->setPropertiesOfVertices_forKey(generic({"<quote>", "<newline>", PropertyValue()}),
                                          "Name");
  EXPECT_THAT(vertexTexts(*throughText(*network), "Name"), ElementsAre("\"", "\n", "<null>"));
  EXPECT_FALSE(
      (*throughText(*network)->propertiesOfVertices()->find("Name"))->objectAtIndex(2).isNull());
}

TEST(XnetRoundTrip, ACarriageReturnBreaksItsName) {
  const auto network = example();
  network->setPropertiesOfVertices_forKey(generic({"a\rb", "c", "d"}), "Name");
  EXPECT_THAT(vertexTexts(*throughText(*network), "Name"), ElementsAre("a", "c", "d"));
}

TEST(XnetRoundTrip, AnEmptyNameIsWrittenButNotRead) {
  const auto network = example();
  network->setPropertiesOfVertices_forKey(generic({"a", "", "c"}), "Name");
  EXPECT_FALSE(throughText(*network));
}

TEST(XnetRoundTrip, EdgeColumnsBecomeVertexColumns) {
  const auto network = example();
  network->setPropertiesOfEdges_forKey(generic({"x", "y"}), "w");
  const auto read = throughText(*network);
  EXPECT_TRUE(read->propertiesOfEdges()->empty());
  EXPECT_THAT(vertexTexts(*read, "w"), ElementsAre("x", "y"));
  // The column ends before the third vertex.
  EXPECT_TRUE(read->propertiesOfVertexAtIndex(2).find("w")->isNull());
  EXPECT_THAT(vertexTexts(*throughText(*read), "w"), ElementsAre("x", "y"));
}

TEST(XnetRoundTrip, NamesOfEdgesReplaceThoseOfVertices) {
  const auto network = example();
  network->setPropertiesOfVertices_forKey(generic({"a", "b", "c"}), "Name");
  network->setPropertiesOfEdges_forKey(generic({"x", "y"}), "Name");
  EXPECT_THAT(vertexTexts(*throughText(*network), "Name"), ElementsAre("x", "y"));
}

TEST(XnetRoundTrip, VectorsOfThePlaneComeBackInSpace) {
  const auto network = example();
  network->setPropertyValue_forKey_atVertexIndex(VEQVector2d(1.5, -2), "p", 1);
  const auto read = throughText(*network);
  EXPECT_EQ(vertexKind(*read, "p"), PropertyColumn::Kind::kVector3d);
  EXPECT_THAT(vertexTexts(*read, "p"), ElementsAre("0 0 0", "1.5 -2 0", "0 0 0"));
}

TEST(XnetRoundTrip, KeysWithQuotesAndLineBreaksDoNotSurvive) {
  const auto network = example();
  network->setPropertiesOfVertices_forKey(generic({"v"}), "a\"b");
  EXPECT_THAT(throughText(*network)->keysForPropertiesOfVertices(), ElementsAre("a"));
  const auto broken = example();
  broken->setPropertiesOfVertices_forKey(generic({"v"}), "a\nb");
  const auto read = throughText(*broken);
  EXPECT_THAT(vertexTexts(*read, "a"), ElementsAre("b\"", "v"));
}

TEST(XnetRoundTrip, ANetworkWithoutVerticesComesBackWithOne) {
  const auto network = VEQNetwork::initWithVertexCapacity_edgeCapacity(2, 2);
  EXPECT_EQ(throughText(*network)->countVertices(), 1U);
}

TEST(XnetRoundTrip, WhatIsNoFiniteNumberIsLost) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const auto network = example();
  network->setEdgesWeightValues(VEQNumberArray::ofDoubles({kInfinity, 2.0}));
  network->setPropertyValue_forKey_atVertexIndex(-kInfinity, "k", 0);
  network->setPropertyValue_forKey_atVertexIndex(std::nan(""), "k", 1);
  const auto read = throughText(*network);
  EXPECT_THAT(edgeWeightsOf(*read), ElementsAre(1.0F, 2.0F));
  EXPECT_THAT(vertexTexts(*read, "k"), ElementsAre("0", "0", "0"));
}

TEST(XnetRoundTrip, AnInfinityInAVectorTakesAlongWhatFollows) {
  const LogCapture quiet;
  const auto network = example();
  const double infinity = std::numeric_limits<double>::infinity();
  network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(infinity, 2, 3), "p", 0);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(1, std::nan(""), 3), "p", 1);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(1, 2, -infinity), "p", 2);
  EXPECT_THAT(vertexTexts(*throughText(*network), "p"), ElementsAre("0 0 0", "1 0 0", "1 2 0"));
}

TEST(XnetRoundTrip, EmptyColumnsSurvive) {
  const LogCapture quiet;
  const auto network = example();
  network->setPropertiesOfVertices_forKey(std::make_shared<VEQNumberArray>(), "n");
  network->setPropertiesOfVertices_forKey(std::make_shared<VEQVector3dArray>(), "v");
  const auto read = throughText(*network);
  EXPECT_THAT(vertexTexts(*read, "n"), IsEmpty());
  EXPECT_THAT(vertexTexts(*read, "v"), IsEmpty());
}

// Weights and numbers are drawn with few binary digits, which six decimals hold.
TEST(XnetRoundTrip, RandomNetworksSurvive) {
  const LogCapture quiet;
  std::mt19937_64 random(7);
  const auto draw = [&random](std::uint64_t below) { return random() % below; };
  for (int round = 0; round < 200; ++round) {
    const std::uint64_t n = 1 + draw(12);
    const std::uint64_t m = draw(25);
    std::vector<std::uint64_t> from(m), to(m);
    for (auto& end : from) end = draw(n);
    for (auto& end : to) end = draw(n);
    std::vector<double> vertexWeights(n), edgeWeights(m), sizes(n);
    for (auto* const values : {&vertexWeights, &edgeWeights, &sizes}) {
      for (double& value : *values) value = (static_cast<double>(draw(4096)) - 2048.0) / 64.0;
    }
    const auto ofDoubles = [](const std::vector<double>& values) {
      return VEQNumberArray::numberArrayWithDoubleArray_count(values.data(), values.size());
    };
    const auto vw = draw(2) ? ofDoubles(vertexWeights) : nullptr;
    const auto ew = draw(2) ? ofDoubles(edgeWeights) : nullptr;
    const auto network = VEQNetwork::
        initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
            n, VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), draw(2) == 1,
            vw.get(), ew.get());
    ASSERT_TRUE(network);
    for (std::uint64_t i = 0; i < n; ++i) {
      std::string name = "\"v\n";
      name += std::to_string(draw(100));
      network->setPropertyValue_forKey_atVertexIndex(name, "Name", i);
      network->setPropertyValue_forKey_atVertexIndex(sizes[i], "size", i);
      network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(sizes[i], -sizes[i], 1), "at", i);
    }
    const auto read = throughText(*network);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->countVertices(), n);
    EXPECT_EQ(edgesOf(*read), edgesOf(*network));
    EXPECT_EQ(read->isDirected(), network->isDirected());
    EXPECT_EQ(read->isVertexWeighted(), network->isVertexWeighted());
    EXPECT_EQ(read->isEdgeWeighted(), network->isEdgeWeighted());
    EXPECT_EQ(vertexWeightsOf(*read), vertexWeightsOf(*network));
    EXPECT_EQ(edgeWeightsOf(*read), edgeWeightsOf(*network));
    for (const std::string key : {"Name", "size", "at"}) {
      EXPECT_EQ(vertexTexts(*read, key), vertexTexts(*network, key));
    }
    EXPECT_EQ(read->formattedStringValue(), network->formattedStringValue());
  }
}

}  // namespace
}  // namespace veq::test::xnet_round_trip_test
