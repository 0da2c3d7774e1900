#include <gtest/gtest.h>

#include <limits>

#include "tests/formats/format_support.hpp"
#include "tests/support/log_capture.hpp"

namespace veq::test::xnet_reader_test {
namespace {

using testing::FloatEq;

Owned<VEQNetwork> read(std::string_view text) {
  return VEQNetwork::initWithNetworkFormattedString(text);
}

TEST(XnetReader, ReadsAllSections) {
  const auto network = read(
      "#vertices 3 weighted\n"
      "\"a\" 1.000000\n"
      "\"say <quote>hi<quote>\" 2.500000\n"
      "\"two<newline>lines\" 0.5\n"
      "#edges weighted directed\n"
      "0 1 0.25\n"
      "1 2 4\n"
      "#v \"color\" s\n"
      "\"red\"\n\"green\"\n\"blue\"\n"
      "#v \"size\" n\n"
      "1\n2.5\n-3\n"
      "#e \"kind\" s\n"
      "\"road\"\n\"rail\"\n");
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 3U);
  EXPECT_EQ(edgesOf(*network), "0>1 1>2");
  EXPECT_TRUE(network->isDirected());
  EXPECT_TRUE(network->isVertexWeighted());
  EXPECT_TRUE(network->isEdgeWeighted());
  EXPECT_THAT(vertexWeightsOf(*network), ElementsAre(1.0F, 2.5F, 0.5F));
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(0.25F, 4.0F));
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "say \"hi\"", "two\nlines"));
  EXPECT_THAT(vertexTexts(*network, "color"), ElementsAre("red", "green", "blue"));
  EXPECT_THAT(vertexTexts(*network, "size"), ElementsAre("1", "2.5", "-3"));
  EXPECT_EQ(vertexKind(*network, "size"), PropertyColumn::Kind::kNumber);
  EXPECT_THAT(edgeTexts(*network, "kind"), ElementsAre("road", "rail"));
  EXPECT_TRUE(network->isEditable());
}

TEST(XnetReader, AnEmptyTextIsOneVertex) {
  for (const std::string_view text : {"", "\n\n", "hello\n", "# nothing\n"}) {
    const auto network = read(text);
    ASSERT_TRUE(network);
    EXPECT_EQ(network->countVertices(), 1U);
    EXPECT_EQ(network->countEdges(), 0U);
    EXPECT_FALSE(network->isDirected());
    EXPECT_FALSE(network->isVertexWeighted());
    EXPECT_FALSE(network->isEdgeWeighted());
    EXPECT_TRUE(network->propertiesOfVertices()->empty());
  }
}

TEST(XnetReader, AVerticesHeaderWithoutACountIsNoNetwork) {
  EXPECT_FALSE(read("#vertices x"));
  EXPECT_FALSE(read("#vertices"));
  EXPECT_FALSE(read("#vertices weighted 3\n"));
  EXPECT_FALSE(read("#verticesX 3\n"));
  EXPECT_FALSE(read("#vertices 3\n#edges\n0 1\n#vertices\n"));
}

TEST(XnetReader, ACountAloneGivesIsolatedVertices) {
  const auto network = read("#vertices 5");
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 5U);
  EXPECT_EQ(network->countEdges(), 0U);
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isDirected());
  EXPECT_EQ(read("#vertices +7")->countVertices(), 7U);
  EXPECT_EQ(read("#vertices7")->countVertices(), 7U);
}

TEST(XnetReader, CountsThatCannotBeAreNoNetwork) {
  EXPECT_FALSE(read("#vertices -1"));
  EXPECT_FALSE(read("#vertices -9999999999999999999999"));
  EXPECT_FALSE(read("#vertices 9223372036854775807"));
  EXPECT_FALSE(read("#vertices 18446744073709551615"));
  EXPECT_FALSE(read("#vertices 99999999999999999999999999"));
}

TEST(XnetReader, IndicesThatCannotBeAreNoNetwork) {
  EXPECT_FALSE(read("#edges\n0 -1\n"));
  EXPECT_FALSE(read("#edges\n-1 0\n"));
  EXPECT_FALSE(read("#edges\n-9223372036854775808 0\n"));
  EXPECT_FALSE(read("#edges\n0 18446744073709551615\n"));
  EXPECT_FALSE(read("#edges\n0 99999999999999999999999999\n"));
}

TEST(XnetReader, ACountWithoutItsWeightsReservesNothing) {
  EXPECT_FALSE(read("#vertices 99999999999 weighted"));
  EXPECT_FALSE(read("#vertices 99999999999 weighted\n\"a\" 1\n"));
}

TEST(XnetReader, MatchesWordsInAnyCase) {
  const auto network =
      read("#VERTICES 2 wEIGHTED\n1\n2\n#Edges Weighted Directed\n0 1 3\n#V k N\n8");
  ASSERT_TRUE(network);
  EXPECT_TRUE(network->isDirected());
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(3.0F));
  EXPECT_THAT(vertexWeightsOf(*network), ElementsAre(1.0F, 2.0F));
  EXPECT_EQ(vertexKind(*network, "k"), PropertyColumn::Kind::kNumber);
}

TEST(XnetReader, EdgeWordsAreOptional) {
  const auto directed = read("#edges directed\n0 1 5\n");
  EXPECT_TRUE(directed->isDirected());
  EXPECT_FALSE(directed->isEdgeWeighted());
  const auto bare = read("#edges\n0 1\n");
  EXPECT_FALSE(bare->isDirected());
  EXPECT_FALSE(bare->isEdgeWeighted());
  // Out of order the second word is not seen.
  EXPECT_FALSE(read("#edges directed weighted\n0 1 5\n")->isEdgeWeighted());
}

TEST(XnetReader, WordsStayInForceUntilTheirOpposites) {
  const auto kept = read(
      "#vertices 1 weighted\n5\n#vertices 2\n6\n7\n"
      "#edges weighted directed\n0 1 9\n#edges\n1 0 8\n0 0 7\n");
  // The second edges header renewed the weights: two of them for three edges.
  EXPECT_FALSE(kept);
  const auto renewed = read(
      "#vertices 1 weighted\n5\n#vertices 2\n6\n7\n"
      "#edges weighted directed\n#edges\n1 0 8\n0 0 7\n");
  ASSERT_TRUE(renewed);
  EXPECT_THAT(vertexWeightsOf(*renewed), ElementsAre(6.0F, 7.0F));
  EXPECT_THAT(edgeWeightsOf(*renewed), ElementsAre(8.0F, 7.0F));
  EXPECT_TRUE(renewed->isDirected());
  const auto lifted = read(
      "#vertices 1 weighted\n5\n#vertices 1 nonweighted\n"
      "#edges weighted directed\n0 0 9\n#edges nonweighted undirected\n");
  ASSERT_TRUE(lifted);
  EXPECT_FALSE(lifted->isVertexWeighted());
  EXPECT_FALSE(lifted->isEdgeWeighted());
  EXPECT_FALSE(lifted->isDirected());
  EXPECT_EQ(lifted->countEdges(), 1U);
}

TEST(XnetReader, GluedOppositesCancelEachOther) {
  const auto network = read(
      "#vertices 1 weightednonweighted\n#edges weightednonweighted "
      "directedundirected\n0 0\n");
  ASSERT_TRUE(network);
  EXPECT_FALSE(network->isVertexWeighted());
  EXPECT_FALSE(network->isEdgeWeighted());
  EXPECT_FALSE(network->isDirected());
}

TEST(XnetReader, IndexListsNeverRestart) {
  EXPECT_EQ(edgesOf(*read("#edges\n0 1\n#edges\n2 3\n")), "0>1 2>3");
}

TEST(XnetReader, AnIndexBeyondTheCountEnlargesTheNetwork) {
  EXPECT_EQ(read("#vertices 3\n#edges\n0 7\n")->countVertices(), 8U);
}

TEST(XnetReader, CommentsEndTheSection) {
  EXPECT_EQ(edgesOf(*read("#edges\n0 1\n# a comment\n1 2\n")), "0>1");
  EXPECT_EQ(edgesOf(*read("#edges\n0 1\n#foo\n1 2\n#edges\n3 0\n")), "0>1 3>0");
  EXPECT_EQ(edgesOf(*read("#edges\n0 1\n#\n1 2\n")), "0>1");
}

TEST(XnetReader, EveryNewlineEndsALine) {
  const std::string expected = "0>1 1>2";
  for (const std::string newline :
       {"\n", "\r\n", "\r", "\v", "\f", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9", "\n\n\r\n"}) {
    const auto network = read("#vertices 3" + newline + "#edges" + newline + "0 1" + newline +
                              "1 2" + newline + "#v \"k\" s" + newline + "\"x\"");
    ASSERT_TRUE(network);
    EXPECT_EQ(edgesOf(*network), expected);
    EXPECT_THAT(vertexTexts(*network, "k"), ElementsAre("x"));
  }
}

TEST(XnetReader, AByteThatEndsOtherCharactersIsNoNewline) {
  // U+0105 is C4 85, U+0145 is C5 85.
  const auto network = read("#vertices 2\n\"\xC4\x85\"\n\"\xC5\x85x\"\n");
  ASSERT_TRUE(network);
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("\xC4\x85", "\xC5\x85x"));
}

TEST(XnetReader, WideBlanksAreBlanks) {
  EXPECT_EQ(edgesOf(*read("#edges\xC2\xA0"
                          "directed\n\t0\xE3\x80\x80"
                          "2\n")),
            "0>2");
}

TEST(XnetReader, ALineOfBlanksIsADataLine) {
  const LogCapture quiet;
  EXPECT_EQ(edgesOf(*read("#edges\n0 1\n \n2 3\n")), "0>1 0>1 2>3");
  EXPECT_THAT(vertexWeightsOf(*read("#vertices 3 weighted\n5\n\t\n6\n")),
              ElementsAre(5.0F, 1.0F, 6.0F));
  EXPECT_THAT(vertexTexts(*read("#v k n\n1\n \n2\n"), "k"), ElementsAre("1", "0", "2"));
  EXPECT_THAT(vertexTexts(*read("#v k s\n\"a\"\n  \n\"b\"\n"), "k"), ElementsAre("a", "", "b"));
  EXPECT_THAT(vertexTexts(*read("#v k v3\n \n"), "k"), ElementsAre("0 0 0"));
  EXPECT_THAT(edgeTexts(*read("#e k n\n \n4\n"), "k"), ElementsAre("0", "4"));
}

TEST(XnetReader, UnreadableIntegersKeepThePreviousOnes) {
  EXPECT_EQ(edgesOf(*read("#edges\nx y\n3 4\nx 5\n6\n#edges\nnothing\n")), "0>0 3>4 3>4 6>4 6>4");
}

TEST(XnetReader, UnreadableWeightsAreOne) {
  EXPECT_THAT(edgeWeightsOf(*read("#edges weighted\n0 1\n0 1 x\n0 1 nan\n0 1 inf\n0 1 +2\n0 1 .5")),
              ElementsAre(1.0F, 1.0F, 1.0F, 1.0F, 2.0F, 0.5F));
  EXPECT_THAT(vertexWeightsOf(*read("#vertices 3 weighted\n\"a\"\nb 7\n\"c\" Infos\n")),
              ElementsAre(1.0F, 1.0F, 1.0F));
}

TEST(XnetReader, WeightsAreReadAsFloats) {
  const auto weights = edgeWeightsOf(*read("#edges weighted\n0 1 0.1\n0 1 1e99\n0 1 -1e-99\n"));
  EXPECT_EQ(weights[0], 0.1F);
  EXPECT_EQ(weights[1], std::numeric_limits<float>::infinity());
  EXPECT_EQ(weights[2], 0.0F);
}

TEST(XnetReader, ANumberNeverContinuesOnTheNextLine) {
  const auto network = read("#edges weighted\n0 1\n5 2 3\n");
  EXPECT_EQ(edgesOf(*network), "0>1 5>2");
  EXPECT_THAT(edgeWeightsOf(*network), ElementsAre(1.0F, 3.0F));
  EXPECT_EQ(edgesOf(*read("#edges\n4\n5 2\n")), "4>0 5>2");
}

TEST(XnetReader, AWeightCountThatDoesNotMatchIsNoNetwork) {
  EXPECT_FALSE(read("#vertices 3 weighted\n1\n2\n"));
  EXPECT_FALSE(read("#vertices 1 weighted\n1\n2\n"));
  EXPECT_FALSE(read("#vertices 1 weighted\n1\n#edges\n0 1\n"));
  EXPECT_FALSE(read("#edges\n0 1\n#edges weighted\n0 1 2\n"));
}

TEST(XnetReader, OnlyQuotedNamesAreNames) {
  const auto network = read("#vertices 3\n\"a\"\nb\n \"c d\" trailing\n");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("a", "c d"));
  EXPECT_FALSE(read("#vertices 2\na\nb\n")->propertiesOfVertices()->contains("Name"));
}

TEST(XnetReader, AnUnclosedQuoteEndsWithItsLine) {
  EXPECT_THAT(vertexTexts(*read("#vertices 2\n\"a\n\"b"), "Name"), ElementsAre("a", "b"));
  EXPECT_THAT(vertexTexts(*read("#v \"k s\n\"x"), "k s"), ElementsAre("x"));
}

TEST(XnetReader, UnescapesNamesAndValuesButNotKeys) {
  const auto network = read(
      "#vertices 1\n\"<newline><quote>\"\n#v \"a<quote>\" s\n\"1<newline>2<quote>\"\n"
      "#e k s\n<quote>\n");
  EXPECT_THAT(vertexTexts(*network, "Name"), ElementsAre("\n\""));
  EXPECT_THAT(vertexTexts(*network, "a<quote>"), ElementsAre("1\n2\""));
  EXPECT_THAT(edgeTexts(*network, "k"), ElementsAre("\""));
}

TEST(XnetReader, UnescapesOnce) {
  EXPECT_THAT(vertexTexts(*read("#vertices 1\n\"<<quote>quote>\"\n"), "Name"),
              ElementsAre("<\"quote>"));
}

TEST(XnetReader, AnEmptyNameOrKeyIsNoNetwork) {
  EXPECT_FALSE(read("#vertices 1\n\"\"\n"));
  EXPECT_FALSE(read("#vertices 2\n\"a\"\n\""));
  EXPECT_FALSE(read("#vertices 1\n\"\n"));
  EXPECT_FALSE(read("#v \"\" s\n"));
  EXPECT_FALSE(read("#v \""));
  EXPECT_FALSE(read("#v"));
  EXPECT_FALSE(read("#v \nk\n"));
  EXPECT_FALSE(read("#e\n"));
  EXPECT_FALSE(read("#e \"\" n\n1\n"));
}

TEST(XnetReader, TextsThatBreakOffAreReadAsFarAsTheyGo) {
  EXPECT_TRUE(read("#"));
  EXPECT_TRUE(read("#edges"));
  EXPECT_TRUE(read("#edges weighted\n"));
  EXPECT_EQ(edgesOf(*read("#edges\n3")), "3>0");
  EXPECT_THAT(vertexTexts(*read("#v \"k"), "k"), IsEmpty());
  EXPECT_THAT(vertexTexts(*read("#v \"k\" s\n\""), "k"), ElementsAre(""));
}

TEST(XnetReader, HeadersAreMatchedByTheirBeginnings) {
  EXPECT_THAT(vertexTexts(*read("#value n\n5\n"), "alue"), ElementsAre("5"));
  EXPECT_THAT(edgeTexts(*read("#edge n\n5\n"), "dge"), ElementsAre("5"));
  EXPECT_EQ(edgesOf(*read("#edgesList\n0 1\n")), "0>1");
  EXPECT_THAT(vertexTexts(*read("#vk n\n5\n"), "k"), ElementsAre("5"));
}

TEST(XnetReader, TypesAreMatchedByTheirBeginnings) {
  EXPECT_EQ(vertexKind(*read("#v k nonsense\n"), "k"), PropertyColumn::Kind::kNumber);
  EXPECT_EQ(vertexKind(*read("#v k V2d\n"), "k"), PropertyColumn::Kind::kVector3d);
  EXPECT_EQ(vertexKind(*read("#v k v\n"), "k"), PropertyColumn::Kind::kGeneric);
  EXPECT_EQ(vertexKind(*read("#v k\n"), "k"), PropertyColumn::Kind::kGeneric);
  EXPECT_EQ(vertexKind(*read("#v \"k\"n\n"), "k"), PropertyColumn::Kind::kNumber);
}

TEST(XnetReader, UnquotedKeysAndValuesEndAtABlank) {
  const auto network = read("#v key s\nred car\n  green\t\n\"blue\" x\n");
  EXPECT_THAT(vertexTexts(*network, "key"), ElementsAre("red", "green", "blue"));
}

TEST(XnetReader, DataLinesOutsideSectionsAreIgnored) {
  EXPECT_EQ(edgesOf(*read("1 2\n3 4\n#edges\n0 1\n")), "0>1");
}

TEST(XnetReader, NulAndVeryLongLinesAreOrdinaryText) {
  const std::string name = "a" + std::string(1, '\0') + std::string(1 << 20, 'x');
  const auto network = read("#vertices 1\n\"" + name + "\"\n#edges\n0 0" + std::string(1, '\0'));
  ASSERT_TRUE(network);
  EXPECT_EQ(vertexTexts(*network, "Name"), Texts{name});
  EXPECT_EQ(edgesOf(*network), "0>0");
}

TEST(XnetReader, TextThatIsNotUtf8IsNoNetwork) {
  EXPECT_FALSE(read("#vertices 1\n\"\xFF\"\n"));
  EXPECT_FALSE(read("#vertices 1\n\"\xC3\"\n"));
}

TEST(XnetReader, FactoriesReadTheSame) {
  const std::string text = "#vertices 2\n#edges\n0 1\n";
  EXPECT_EQ(edgesOf(*VEQNetwork::networkWithNetworkFormattedString(text)), "0>1");
  EXPECT_FALSE(VEQNetwork::networkWithNetworkFormattedString("#vertices"));
}

TEST(XnetReader, DamagedTextsEndInANetworkOrNone) {
  int networks = 0;
  const LogCapture quiet;
  forMutationsOf(
      "#vertices 3 weighted\n\"a\" 1.5\n\"b<quote>\" 2\n\"c\"\n#edges weighted directed\n0 1 2.5\n"
      "1 2 3\n#v \"k\" n\n1e-7\n#v l v2\n1 2\n#v m v3\n1 2 3\n#e \"n\" s\n\"\"\n#e o v2\n-1 2\n3 4",
      {"#", "\"", "#v ", "#e \"", " v2\n", "\n", "\r", "-", "1e308", "99", "weighted", "non",
       "\xC2\x85", "\xE2\x80", std::string(1, '\0'), "<newline>", "#edges ", "#vertices "},
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
}  // namespace veq::test::xnet_reader_test
