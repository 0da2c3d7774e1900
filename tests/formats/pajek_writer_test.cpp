#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <utility>

#include "tests/formats/format_support.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::pajek_writer_test {
namespace {

Shared<PropertyColumn> vectors(std::string_view text) {
  return VEQVector3dArray::initWithString(text);
}

TEST(PajekWriter, WritesTheNumberOfVerticesAndTheEdges) {
  EXPECT_EQ(path3()->pajekFormattedStringValue(),
            "*Vertices 3\r\n*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
  EXPECT_EQ(path3(true)->pajekFormattedStringValue(),
            "*Vertices 3\r\n*Arcs\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(PajekWriter, WritesWeightsWithSixDecimals) {
  const auto weights = VEQNumberArray::ofFloats({0.1F, -3.0F});
  EXPECT_EQ(path3(true, nullptr, &weights)->pajekFormattedStringValue(),
            "*Vertices 3\r\n*Arcs\r\n1 2 0.100000\r\n2 3 -3.000000\r\n");
}

TEST(PajekWriter, WritesNames) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(generic({"a\"", "b\nc", PropertyValue(), "d"}), "Name");
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n1 \"a<quote>\"\r\n2 \"b<newline>c\"\r\n3 \"<null>\"\r\n"
            "*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
  network->setPropertiesOfVertices_forKey(generic({"a"}), "Name");
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n1 \"a\"\r\n2 \"<null>\"\r\n3 \"<null>\"\r\n"
            "*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(PajekWriter, WritesPositionsBetweenZeroAndOne) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(vectors("1 -4 7; 2 0 7; 5 4 7"), "Position");
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n1 0 0 0\r\n2 0.25 0.5 0\r\n3 1 1 0\r\n"
            "*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
  // The network keeps its own.
  EXPECT_THAT(vertexTexts(*network, "Position"), ElementsAre("1 -4 7", "2 0 7", "5 4 7"));
}

TEST(PajekWriter, WritesNamesAndPositions) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(vectors("0 0 0; 1 1 1; 4 2 1"), "Position");
  network->setPropertiesOfVertices_forKey(generic({"a", "b", "c"}), "Name");
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n1 \"a\" 0 0 0\r\n2 \"b\" 0.25 0.5 1\r\n3 \"c\" 1 1 1\r\n"
            "*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(PajekWriter, PositionsMustReachAllVertices) {
  const std::string bare = "*Vertices 3\r\n*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n";
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(vectors("0 0 0; 1 1 1"), "Position");
  EXPECT_EQ(network->pajekFormattedStringValue(), bare);
  // A position beyond the last vertex does not widen the range.
  network->setPropertiesOfVertices_forKey(vectors("0 0 0; 1 1 1; 2 2 2; 99 99 99"), "Position");
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n1 0 0 0\r\n2 0.5 0.5 0.5\r\n3 1 1 1\r\n"
            "*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(PajekWriter, WithoutVerticesThereIsNothingToSpread) {
  const auto network = VEQNetwork::initWithVertexCapacity_edgeCapacity(0, 0);
  network->setPropertiesOfVertices_forKey(vectors("1 2 3"), "Position");
  EXPECT_EQ(network->pajekFormattedStringValue(), "*Vertices 0\r\n*Edges\r\n");
}

TEST(PajekWriter, PositionsMayStandInAnyColumnOfVectors) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(
      generic({VEQVector3d(2, 0, 0), PropertyValue(), VEQVector3d(4, 0, 0)}), "Position");
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n1 0.5 0 0\r\n2 0 0 0\r\n3 1 0 0\r\n"
            "*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(PajekWriter, WhatIsNoPositionIsNotWritten) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(generic({"here", "there", "nowhere"}), "Position");
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(PajekWriter, WritesNothingElse) {
  const auto network = path3();
  network->setWeightValue_atVertexIndex(2.0F, 0);
  network->setPropertyValue_forKey_atVertexIndex("x", "colour", 0);
  network->setPropertyValue_forKey_atEdgeIndex("x", "Name", 0);
  EXPECT_EQ(network->pajekFormattedStringValue(),
            "*Vertices 3\r\n*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
  EXPECT_EQ(VEQNetwork::initWithVertexCapacity_edgeCapacity(2, 2)->pajekFormattedStringValue(),
            "*Vertices 0\r\n*Edges\r\n");
}

TEST(PajekWriter, FilesAreLatin1) {
  const TemporaryFolder folder;
  const auto network = path3();
  // U+00E4 and U+00FF, the last character of ISO-8859-1.
  network->setPropertiesOfVertices_forKey(generic({"\xC3\xA4", "\xC3\xBF", "a"}), "Name");
  for (const bool atomically : {false, true}) {
    const std::string path = folder.path(atomically ? "a.net" : "b.net");
    const std::string bytes =
        "*Vertices 3\r\n1 \"\xE4\"\r\n2 \"\xFF\"\r\n3 \"a\"\r\n*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n";
    EXPECT_TRUE(network->writeToPajekFile_atomically(path, atomically));
    EXPECT_EQ(bytesOf(path), bytes);
    EXPECT_TRUE(network->writeToPajekURL_atomically("file://" + path + "%31", atomically));
    EXPECT_EQ(bytesOf(path + "1"), bytes);
    EXPECT_FALSE(network->writeToPajekURL_atomically("http://host/" + path, atomically));
  }
}

TEST(PajekWriter, TextThatLatin1CannotHoldIsNotWritten) {
  const TemporaryFolder folder;
  const auto network = path3();
  const std::string path = folder.write("old.net", "old");
  for (const std::string name : {"\xC4\x80", "\xE2\x82\xAC", "\xFF"}) {
    network->setPropertyValue_forKey_atVertexIndex(name, "Name", 0);
    for (const bool atomically : {false, true}) {
      EXPECT_FALSE(network->writeToPajekFile_atomically(path, atomically));
      EXPECT_EQ(bytesOf(path), "old");
      EXPECT_FALSE(network->writeToPajekFile_atomically(folder.path("new.net"), atomically));
    }
  }
  EXPECT_EQ(folder.countFiles(), 1U);
}

Owned<VEQNetwork> throughText(const VEQNetwork& network) {
  return VEQNetwork::initWithNetworkPajekFormattedString(network.pajekFormattedStringValue());
}

TEST(PajekRoundTrip, WeightsOfOneAreLost) {
  const auto ones = VEQNumberArray::ofFloats({1.0F, 1.0F});
  EXPECT_FALSE(throughText(*path3(false, nullptr, &ones))->isEdgeWeighted());
  EXPECT_FALSE(throughText(*path3())->isEdgeWeighted());
}

TEST(PajekRoundTrip, PositionsComeBackAroundTheOrigin) {
  const auto network = path3();
  network->setPropertiesOfVertices_forKey(vectors("1 0 7; 2 0 7; 5 0 7"), "Position");
  const auto back = throughText(*network);
  EXPECT_THAT(vertexTexts(*back, "Position"), ElementsAre("-5 0 0", "-2.5 0 0", "5 0 0"));
  // Numbered lines without names make empty names.
  EXPECT_THAT(vertexTexts(*back, "Name"), ElementsAre("", "", ""));
}

TEST(PajekRoundTrip, OtherPropertiesAreLost) {
  const auto network = path3();
  network->setWeightValue_atVertexIndex(2.0F, 0);
  network->setPropertyValue_forKey_atVertexIndex("x", "colour", 0);
  const auto back = throughText(*network);
  EXPECT_FALSE(back->isVertexWeighted());
  EXPECT_TRUE(back->propertiesOfVertices()->empty());
}

TEST(PajekRoundTrip, RandomNetworksSurvive) {
  std::mt19937_64 random(11);
  const auto draw = [&random](std::uint64_t below) { return random() % below; };
  for (int round = 0; round < 200; ++round) {
    const std::uint64_t n = 1 + draw(12);
    const std::uint64_t m = 1 + draw(25);
    std::vector<std::uint64_t> from(m), to(m);
    for (auto& end : from) end = draw(n);
    for (auto& end : to) end = draw(n);
    std::vector<float> weights(m, 2.0F);
    for (float& weight : weights) weight += static_cast<float>(draw(4096)) / 64.0F;
    const auto weightArray =
        VEQNumberArray::numberArrayWithFloatArray_count(weights.data(), weights.size());
    const auto network = VEQNetwork::
        initWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
            n, VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), draw(2) == 1,
            nullptr, draw(2) ? weightArray.get() : nullptr);
    for (std::uint64_t i = 0; i < n; ++i) {
      std::string name = "v\n\"";
      name += std::to_string(draw(100));
      network->setPropertyValue_forKey_atVertexIndex(name, "Name", i);
    }
    const auto back = throughText(*network);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->countVertices(), n);
    EXPECT_EQ(edgesOf(*back), edgesOf(*network));
    EXPECT_EQ(back->isDirected(), network->isDirected());
    EXPECT_EQ(back->isEdgeWeighted(), network->isEdgeWeighted());
    EXPECT_EQ(edgeWeightsOf(*back), edgeWeightsOf(*network));
    EXPECT_EQ(vertexTexts(*back, "Name"), vertexTexts(*network, "Name"));
  }
}

}  // namespace
}  // namespace veq::test::pajek_writer_test
