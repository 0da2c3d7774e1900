#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

#include "tests/formats/format_support.hpp"

namespace veq::test::edge_list_test {
namespace {

Owned<VEQNetwork> read(std::string_view text, bool directed = false) {
  return VEQNetwork::initWithEdgesListString_directed(text, directed);
}

TEST(EdgeList, WeightedLinesAreEdgesBetweenNames) {
  const auto network = read("0 1 0.5\n1 2 2.0\n");
  ASSERT_TRUE(network);
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("0", "1", "2"));
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(0.5F, 2.0F));
  EXPECT_TRUE(network->isEdgeWeighted());
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isDirected());
}

TEST(EdgeList, NamesAreNumberedByFirstAppearanceSourceBeforeTarget) {
  const auto network = read("3 1 1\n1 a 1\nb 3 1\n", true);
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("3", "1", "a", "b"));
  EXPECT_EQ(edgesOf(*network), "0>1 1>2 3>0");
  EXPECT_TRUE(network->isDirected());
}

TEST(EdgeList, TheLineAfterAnUnweightedOneIsTakenForItsWeight) {
  const auto network = read("0 1\n1 2\n3 4\n");
  EXPECT_EQ(edgesOf(*network), "0>1 2>3");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("0", "1", "3", "4"));
  EXPECT_TRUE(network->isEdgeWeighted());
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(1.0F, 1.0F));
}

TEST(EdgeList, OneUnweightedLineIsAnUnweightedNetwork) {
  for (const std::string_view text : {"a b", "a b\n", "a\nb\n", "  a\t b \r\n \n"}) {
    const auto network = read(text);
    ASSERT_TRUE(network);
    EXPECT_EQ(edgesOf(*network), "0>1");
    EXPECT_FALSE(network->isEdgeWeighted());
  }
}

TEST(EdgeList, TextsWithoutAnEdgeThrow) {
  for (const std::string_view text : {"", " ", "\n", " \t\r\n\n ", "\xC2\xA0", "a", " a \n"}) {
    EXPECT_THROW(std::ignore = read(text), std::out_of_range) << text;
    EXPECT_THROW(std::ignore = VEQNetwork::networkWithEdgesListString_directed(text, true),
                 std::out_of_range);
  }
}

TEST(EdgeList, NoTextAndTextThatIsNotUtf8AreNoNetwork) {
  EXPECT_FALSE(VEQNetwork::initWithEdgesListString_directed(std::nullopt, false));
  EXPECT_FALSE(VEQNetwork::networkWithEdgesListString_directed(std::nullopt, false));
  EXPECT_FALSE(read("a \xFF 1\n"));
}

TEST(EdgeList, ALastTokenAloneIsIgnored) {
  const auto network = read("a b 1\nc");
  EXPECT_EQ(edgesOf(*network), "0>1");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "b"));
}

TEST(EdgeList, TokensEndAtBlanksAndNewlines) {
  const auto network = read(
      "\n\na\t\tb   7 rest of the line\r\n\r\nc\xC2\xA0"
      "d\xE2\x80\xA8"
      "9\v");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "b", "c", "d"));
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(7.0F, 9.0F));
}

TEST(EdgeList, WeightsAreTheLeadingNumberWithSixDecimals) {
  const auto network = read(
      "a b 0.1234565\na b 3x\na b x3\na b nan\na b 1e-7\na b -2.5\na b 1e99\na b 16777217\n"
      "a b 0.00000051");
  EXPECT_THAT(edgeWeightsOf(*network),
              ElementsAre(0.123457F, 3.0F, 0.0F, 0.0F, 0.0F, -2.5F, 0.0F, 16777216.0F, 0.000001F));
}

TEST(EdgeList, FactoryReadsTheSame) {
  EXPECT_EQ(edgesOf(*VEQNetwork::networkWithEdgesListString_directed("x y 1\ny x 2", true)),
            "0>1 1>0");
}

TEST(EdgeList, WritesIndicesAndWeights) {
  const auto from = VEQNumberArray::ofIndices({0, 2});
  const auto to = VEQNumberArray::ofIndices({1, 2});
  const auto weights = VEQNumberArray::ofFloats({0.1F, -3.0F});
  EXPECT_EQ(
      VEQNetwork::initWithLinksIndexedFrom_toIndices(from, to)->edgesListFormattedStringValue(),
      "0 1\r\n2 2\r\n");
  EXPECT_EQ(VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
                from, to, true, nullptr, &weights)
                ->edgesListFormattedStringValue(),
            "0 1 0.100000\r\n2 2 -3.000000\r\n");
}

TEST(EdgeList, ANetworkWithoutEdgesIsAnEmptyText) {
  const VEQNumberArray none = VEQNumberArray::ofIndices({});
  EXPECT_EQ(VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(5, none, none)
                ->edgesListFormattedStringValue(),
            "");
}

TEST(EdgeList, WritesFilesAndUrls) {
  const TemporaryFolder folder;
  const auto network = VEQNetwork::initWithVerticesString_edgesString("\xE2\x82\xAC", "a b");
  for (const bool atomically : {false, true}) {
    const std::string path = folder.path(atomically ? "a" : "b");
    EXPECT_TRUE(network->writeToEdgesFile_atomically(path, atomically));
    EXPECT_EQ(bytesOf(path), "0 0\r\n");
    EXPECT_TRUE(network->writeToEdgesURL_atomically("file://" + path + "%20", atomically));
    EXPECT_EQ(bytesOf(path + " "), "0 0\r\n");
    EXPECT_FALSE(network->writeToEdgesURL_atomically("ftp://host/a", atomically));
    EXPECT_FALSE(network->writeToEdgesFile_atomically(folder.path("no/file"), atomically));
  }
}

TEST(EdgeList, WeightedNetworksComeBackWithTheirIndicesAsNames) {
  const auto weights = VEQNumberArray::ofFloats({0.5F, 2.0F, 0.25F});
  const auto network =
      VEQNetwork::initWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
          VEQNumberArray::ofIndices({4, 0, 4}), VEQNumberArray::ofIndices({0, 2, 4}), true, nullptr,
          &weights);
  const auto back = read(network->edgesListFormattedStringValue(), true);
  EXPECT_THAT(vertexTexts(*back, "Name"), ElementsAre("4", "0", "2"));
  EXPECT_EQ(edgesOf(*back), "0>1 1>2 0>0");
  EXPECT_THAT(edgeWeightsOf(*back), ElementsAre(0.5F, 2.0F, 0.25F));
}

TEST(EdgeList, DamagedTextsEnd) {
  int networks = 0;
  forMutationsOf("0 1 0.5\n1 2 2.0\r\na b\nc \xC3\xA4 1e3\n", {" ", "\n", "\xC2", "-", "x y", "\t"},
                 [&networks](const std::string& text) {
                   try {
                     const auto network = read(text);
                     if (!network) return;
                     ++networks;
                     EXPECT_GE(network->countEdges(), 1U);
                   } catch (const std::out_of_range&) {
                     SUCCEED();
                   }
                 });
  // Most damage is small, so that the readers get far.
  EXPECT_GT(networks, 300);
}

}  // namespace
}  // namespace veq::test::edge_list_test
