#include <gtest/gtest.h>

#include <limits>

#include "tests/formats/format_support.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::pajek_reader_test {
namespace {

Owned<VEQNetwork> read(std::string_view text) {
  return VEQNetwork::initWithNetworkPajekFormattedString(text);
}

TEST(PajekReader, ArcsAreADirectedNetwork) {
  const auto network = read("*vertices 3\n*arcs\n1 2\n");
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 3U);
  EXPECT_EQ(edgesOf(*network), "0>1");
  EXPECT_TRUE(network->isDirected());
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_TRUE(network->propertiesOfVertices()->empty());
}

TEST(PajekReader, EdgesAreAnUndirectedNetworkWithWeights) {
  const auto network = read("*vertices 3\n*edges\n1 2 2.5\n");
  ASSERT_TRUE(network);
  EXPECT_EQ(edgesOf(*network), "0>1");
  EXPECT_FALSE(network->isDirected());
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(2.5F));
  EXPECT_TRUE(network->isEdgeWeighted());
}

TEST(PajekReader, ListsJoinOneVertexToMany) {
  const auto edges = read("*Edgeslist\n1 2 3\n");
  EXPECT_EQ(edgesOf(*edges), "0>1 0>2");
  EXPECT_FALSE(edges->isDirected());
  EXPECT_FALSE(edges->isEdgeWeighted());
  EXPECT_EQ(edgesOf(*read("*EdgesList\n 3 1\t2 x 4\n4\n2 2\n")), "2>0 2>1 1>1");
}

TEST(PajekReader, ArcListDoesNotMakeADirectedNetwork) {
  const auto network = read("*ArcList\n1 2 3\n");
  EXPECT_EQ(edgesOf(*network), "0>1 0>2");
  EXPECT_FALSE(network->isDirected());
}

TEST(PajekReader, ArcslistIsTakenForArcs) {
  const auto network = read("*Arcslist\n1 2 3\n2 3 4 5\n");
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
  EXPECT_TRUE(network->isDirected());
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(3.0F, 4.0F));
}

TEST(PajekReader, EdgelistIsNothing) {
  EXPECT_EQ(edgesOf(*read("*Vertices 3\n*Edgelist\n1 2 3\n")), "");
}

TEST(PajekReader, CommentsCloseNothing) {
  EXPECT_EQ(edgesOf(*read("*Edges\n1 2\n% comment\n%1 3\n2 3\n")), "0>1 1>2");
}

TEST(PajekReader, OtherHeadersAreIgnoredWithTheirLines) {
  EXPECT_EQ(
      edgesOf(*read("*Network test\n*Vertices 3\n*Edges\n1 2\n*Vector v\n2 3\n*Edges\n3 1\n")),
      "0>1 2>0");
  EXPECT_EQ(edgesOf(*read("1 2\n*Edges\n2 3\n")), "1>2");
  EXPECT_EQ(edgesOf(*read("*\n1 2\n")), "");
}

TEST(PajekReader, AHeaderStandsAtTheBeginningOfItsLine) {
  EXPECT_EQ(edgesOf(*read("*Edges\n1 2\n *Arcs\n")), "0>1 0>1");
}

TEST(PajekReader, AVerticesHeaderWithoutACountIsNoNetwork) {
  EXPECT_FALSE(read("*Vertices"));
  EXPECT_FALSE(read("*Vertices x\n*Edges\n1 2\n"));
  EXPECT_FALSE(read("*Edges\n1 2\n*Vertices\n"));
}

TEST(PajekReader, CountsThatCannotBeAreNoNetwork) {
  EXPECT_FALSE(read("*Vertices -1"));
  EXPECT_FALSE(read("*Vertices 9223372036854775807"));
  EXPECT_FALSE(read("*Vertices 99999999999999999999999"));
}

TEST(PajekReader, CountsThatNoFileCouldBackAreNoNetworkAtOnce) {
  EXPECT_FALSE(read("*Vertices 99999999999\n1 \"a\"\n2 \"b\" 0.5 0.5\n*Edges\n1 2\n"));
  EXPECT_FALSE(read("*Vertices 99999999999\n99999999999 \"a\"\n"));
  EXPECT_FALSE(read("*Vertices 99999999999\n1 \"a\"\n*Edges\n0 1\n"));
}

TEST(PajekReader, WithoutVerticesTheEdgesTellTheirNumber) {
  EXPECT_EQ(read("*Edges\n2 5\n")->countVertices(), 5U);
  EXPECT_EQ(read("*Vertices 3\n*Edges\n2 5\n")->countVertices(), 5U);
  EXPECT_EQ(read("*Vertices 7 4\n")->countVertices(), 7U);
  EXPECT_EQ(read("*Vertices 0\n")->countVertices(), 1U);
  EXPECT_EQ(read("")->countVertices(), 1U);
}

TEST(PajekReader, NumbersThatNameNoVertexAreNoNetwork) {
  EXPECT_FALSE(read("*Edges\n0 1\n"));
  EXPECT_FALSE(read("*Edges\n1 0\n"));
  EXPECT_FALSE(read("*Edges\n1 -2\n"));
  EXPECT_FALSE(read("*Edges\n-9223372036854775808 1\n"));
  EXPECT_FALSE(read("*Edges\n1 99999999999999999999999\n"));
  EXPECT_FALSE(read("*Edges\nx y\n"));
  EXPECT_FALSE(read("*ArcList\nx\n0 1\n"));
}

TEST(PajekReader, UnreadableEndsAreThoseOfTheLineBefore) {
  EXPECT_EQ(edgesOf(*read("*Edges\n1 2\nx\n3\n \n*Arcs\ny 4\n")), "0>1 0>1 2>1 2>1 2>1");
  EXPECT_EQ(edgesOf(*read("*ArcList\n1 2 3\n*Edges\nx\n")), "0>1 0>2 0>2");
}

TEST(PajekReader, UnreadableWeightsAreOne) {
  EXPECT_THAT(edgeWeightsOf(*read("*Edges\n1 2 x\n1 2\n1 2 c Blue\n1 2 nan\n1 2 3 c Red\n")),
              ElementsAre(1.0F, 1.0F, 1.0F, 1.0F, 3.0F));
}

TEST(PajekReader, WeightsOfOneAreNoWeights) {
  EXPECT_FALSE(read("*Edges\n1 2 1\n2 3 1.0\n1 3 1e0\n")->isEdgeWeighted());
  // The test is made on the 32-bit value.
  EXPECT_FALSE(read("*Edges\n1 2 1.00000000001\n")->isEdgeWeighted());
  EXPECT_TRUE(read("*Edges\n1 2 1\n2 3 1.0001\n")->isEdgeWeighted());
  EXPECT_TRUE(read("*Edges\n1 2 0\n")->isEdgeWeighted());
}

TEST(PajekReader, ASecondHeaderLosesTheWeightsOfTheFirst) {
  EXPECT_FALSE(read("*Edges\n1 2 2\n*Edges\n2 3 1\n"));
  EXPECT_FALSE(read("*Edges\n1 2 1\n*Arcs\n2 3 4\n"));
  EXPECT_FALSE(read("*Edges\n1 2 2\n*ArcList\n"));
  EXPECT_EQ(edgesOf(*read("*Edges\n1 2 1\n*Edges\n2 3 1\n")), "0>1 1>2");
  // A header before any edge loses none, and neither does one that begins no edges.
  EXPECT_THAT(edgeWeightsOf(*read("*Arcs\n*Edges\n1 2 2\n")), ElementsAre(2.0F, 2.0F));
  EXPECT_THAT(edgeWeightsOf(*read("*Edges\n1 2 2\n*Partition\n")), ElementsAre(2.0F));
}

TEST(PajekReader, EdgesBehindArcsAreTwoArcs) {
  const auto network = read("*Arcs\n1 2\n*Edges\n2 3\n3 3\n");
  EXPECT_EQ(edgesOf(*network), "0>1 1>2 2>1 2>2 2>2");
  EXPECT_TRUE(network->isDirected());
  EXPECT_EQ(edgesOf(*read("*Arcs\n*Edges\n1 2\n")), "0>1 1>0");
  EXPECT_EQ(edgesOf(*read("*Arcs\n*EdgesList\n1 2 3\n")), "0>1 1>0 0>2 2>0");
  EXPECT_EQ(edgesOf(*read("*Arcs\n*ArcList\n1 2 3\n")), "0>1 0>2");
}

TEST(PajekReader, EdgesBeforeArcsAreStoredOnce) {
  const auto network = read("*Edges\n1 2\n*Arcs\n2 3\n");
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
  EXPECT_TRUE(network->isDirected());
}

TEST(PajekReader, RelationNumbersAreIgnored) {
  const auto network = read("*Vertices 3\n*Arcs :2 \"likes\"\n1 2 1\n2 3 1\n");
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
}

TEST(PajekReader, NamesStandInQuotes) {
  const auto network = read("*Vertices 4\n2 \"b c\"\n1 \"<quote>a<newline>\"\n4\n");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("\"a\n", "b c", "", ""));
}

TEST(PajekReader, ANumberAloneMakesEmptyNames) {
  EXPECT_THAT(vertexTexts(*read("*Vertices 2\n1\n"), "Name"), ElementsAre("", ""));
  EXPECT_THAT(vertexTexts(*read("*Vertices 2\n1 label\n"), "Name"), ElementsAre("", ""));
  EXPECT_FALSE(read("*Vertices 2\nlabel\n")->propertiesOfVertices()->contains("Name"));
  EXPECT_THAT(vertexTexts(*read("*Vertices 1\n1 \"\"\n"), "Name"), ElementsAre(""));
}

TEST(PajekReader, NamesReachAsFarAsTheCount) {
  const auto network = read("*Vertices 2\n1 \"a\"\n2 \"b\"\n*Edges\n1 4\n");
  EXPECT_EQ(network->countVertices(), 4U);
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "b"));
}

TEST(PajekReader, TheLastNameOfAVertexIsItsName) {
  EXPECT_THAT(vertexTexts(*read("*Vertices 1\n1 \"a\"\n1 \"b\"\n1\n"), "Name"), ElementsAre("b"));
}

TEST(PajekReader, NamesAndPositionsOfNoVertexAreNoNetwork) {
  EXPECT_FALSE(read("*Vertices 2\n0 \"a\"\n"));
  EXPECT_FALSE(read("*Vertices 2\n3 \"a\"\n"));
  EXPECT_FALSE(read("*Vertices 2\n-1 0.5 0.5\n"));
  EXPECT_FALSE(read("*Vertices 2\n3 0.5\n"));
  EXPECT_FALSE(read("*Vertices 2\n\"a\"\n"));
  EXPECT_FALSE(read("*Vertices 2\n-9223372036854775808 \"a\"\n"));
  EXPECT_FALSE(read("*Vertices 0\n1 \"a\"\n"));
  EXPECT_FALSE(read("*Vertices 2\n.5 .5\n"));
}

TEST(PajekReader, LinesWithoutNameAndPositionStoreNothingElsewhere) {
  const auto network = read("*Vertices 2\n0\n3\nlabel\n1 \"a\" 1 2 3\n\t\nlabel\n0\n2\n");
  ASSERT_TRUE(network);
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", ""));
  // Vertex 2 is at the origin, since a position was seen before it.
  EXPECT_THAT(vertexTexts(*network, "Position"), ElementsAre("0.5 0.5 0.5", "-0.5 -0.5 -0.5"));
}

TEST(PajekReader, PositionsAreTenTimesAsWideBeforeAHeader) {
  const std::string vertices = "*Vertices 2\n1 0 0 0\n2 2 4 6\n";
  EXPECT_THAT(vertexTexts(*read(vertices + "*Edges\n"), "Position"),
              ElementsAre("-5 -5 -5", "5 5 5"));
  EXPECT_THAT(vertexTexts(*read(vertices), "Position"),
              ElementsAre("-0.5 -0.5 -0.5", "0.5 0.5 0.5"));
  EXPECT_THAT(vertexTexts(*read(vertices + "*unknown"), "Position"),
              ElementsAre("-5 -5 -5", "5 5 5"));
  EXPECT_THAT(vertexTexts(*read(vertices + "% comment"), "Position"),
              ElementsAre("-0.5 -0.5 -0.5", "0.5 0.5 0.5"));
}

TEST(PajekReader, AnAxisWithoutExtentIsZero) {
  EXPECT_THAT(vertexTexts(*read("*Vertices 2\n1 7 1\n2 7 2\n*Edges\n"), "Position"),
              ElementsAre("0 -5 0", "0 5 0"));
  EXPECT_THAT(vertexTexts(*read("*Vertices 1\n1 7 7 7\n"), "Position"), ElementsAre("0 0 0"));
}

TEST(PajekReader, VerticesThatAreNotMentionedCountAsTheOrigin) {
  EXPECT_THAT(vertexTexts(*read("*Vertices 3\n1 1 2\n2 2 4\n"), "Position"),
              ElementsAre("0 0 0", "0.5 0.5 0", "-0.5 -0.5 0"));
}

TEST(PajekReader, LinesBeforeTheFirstPositionStoreNone) {
  // The first line stands for vertex 2, which stays at the origin as if it were not mentioned.
  EXPECT_THAT(vertexTexts(*read("*Vertices 2\n2 \"b\"\n1 4\n"), "Position"),
              ElementsAre("0.5 0 0", "-0.5 0 0"));
}

// At 0, 8 and 2, for the last line puts vertex 1 there; from 4 it would come to lie at -1/6.
TEST(PajekReader, LinesWithoutPositionBehindOneStoreTheOrigin) {
  EXPECT_THAT(vertexTexts(*read("*Vertices 3\n1 4\n2 8\n3 2\n1 \"a\"\n"), "Position"),
              ElementsAre("-0.5 0 0", "0.5 0 0", "-0.25 0 0"));
}

TEST(PajekReader, PositionsPassThroughFloats) {
  // 0.1 is not a float, and 16777217 lies between two of them.
  const auto network = read("*Vertices 3\n1 0\n2 16777217\n3 33554432\n");
  EXPECT_THAT(vertexTexts(*network, "Position"), ElementsAre("-0.5 0 0", "0 0 0", "0.5 0 0"));
  const auto tenth = read("*Vertices 3\n1 0\n2 0.1\n3 1\n");
  const auto& column =
      static_cast<const VEQVector3dArray&>(**tenth->propertiesOfVertices()->find("Position"));
  EXPECT_EQ(column.vectorAtIndex(1).x(), static_cast<double>(0.1F) - 0.5);
  EXPECT_EQ(column.precision(), kDoublePrecision);
}

TEST(PajekReader, NumericLabelsAreCoordinates) {
  const auto network = read("*Vertices 2\n1 1990\n2 2000\n");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("", ""));
  EXPECT_THAT(vertexTexts(*network, "Position"), ElementsAre("-0.5 0 0", "0.5 0 0"));
}

TEST(PajekReader, ShapesAndColoursAreIgnored) {
  const auto network =
      read("*Vertices 2\n1 \"a\" 0.2 0.4 ellipse x_fact 3 ic Red\n2 \"b\" box 0.9 0.9\n*Edges\n");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "b"));
  EXPECT_THAT(vertexTexts(*network, "Position"), ElementsAre("5 5 0", "-5 -5 0"));
}

TEST(PajekReader, ASecondVerticesHeaderStartsAfresh) {
  const auto network = read("*Vertices 2\n1 \"a\" 1 1 1\n2 \"b\"\n*Edges\n1 2\n*Vertices 3\n");
  EXPECT_EQ(network->countVertices(), 3U);
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("", "", ""));
  EXPECT_THAT(vertexTexts(*network, "Position"), ElementsAre("0 0 0", "0 0 0", "0 0 0"));
  EXPECT_EQ(edgesOf(*network), "0>1");
}

TEST(PajekReader, EveryNewlineEndsALine) {
  for (const std::string newline : {"\n", "\r\n", "\r", "\n\n\n", "\xE2\x80\xA8"}) {
    EXPECT_EQ(edgesOf(*read("*Vertices 3" + newline + "*Arcs" + newline + "1 2" + newline + "2 3")),
              "0>1 1>2");
  }
}

TEST(PajekReader, AnUnclosedNameEndsWithItsLine) {
  const auto network = read("*Vertices 2\n1 \"a\n2 \"b");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "b"));
}

TEST(PajekReader, TextThatIsNotUtf8IsNoNetwork) { EXPECT_FALSE(read("*Vertices 1\n1 \"\xE4\"\n")); }

TEST(PajekReader, ManyNamedVerticesAreRead) {
  std::string text = "*Vertices 200000\n";
  for (int i = 1; i <= 200000; ++i) text += std::to_string(i) + " \"v" + std::to_string(i) + "\"\n";
  const auto network = read(text);
  ASSERT_TRUE(network);
  const Texts names = vertexTexts(*network, "Name");
  ASSERT_EQ(names.size(), 200000U);
  EXPECT_EQ(names[0], "v1");
  EXPECT_EQ(names[199999], "v200000");
}

TEST(PajekReader, FactoriesReadTheSame) {
  EXPECT_EQ(edgesOf(*VEQNetwork::networkWithNetworkPajekFormattedString("*Arcs\n1 2")), "0>1");
  EXPECT_FALSE(VEQNetwork::networkWithNetworkPajekFormattedString("*Vertices"));
}

TEST(PajekReader, DamagedTextsEndInANetworkOrNone) {
  int networks = 0;
  forMutationsOf(
      "*Network x\r\n*Vertices 3\r\n1 \"a\" 0.1 0.2 0.3\r\n2 \"b c\"\r\n% note\r\n3\r\n*Arcs\r\n"
      "1 2 1\r\n*Edges\r\n2 3\r\n*EdgesList\r\n1 2 3\r\n*ArcList\r\n3 2 1\r\n",
      {"*", "\"", "*Vertices 2\n", "*Arcs", "*Edges", "\n", "0", "-1", "1e99", "%", "\xC2\x85",
       " "},
      [&networks](const std::string& text) {
        const auto network = read(text);
        if (!network) return;
        ++networks;
        EXPECT_GE(network->countVertices(), 1U);
      });
  // Most damage is small, so that the readers get far.
  EXPECT_GT(networks, 300);
}

}  // namespace
}  // namespace veq::test::pajek_reader_test
