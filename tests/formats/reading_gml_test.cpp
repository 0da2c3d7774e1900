#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/reading_support.hpp"

namespace veq::test::reading_gml_test {
namespace {

Reading read(std::string text) { return readNetworkText(std::move(text)); }

constexpr std::string_view kTriangle =
    "Creator \"somebody\"\n"
    "graph\n[\n"
    "  directed 1\n  label \"A triangle\"\n"
    "  node [ id 7 label \"a &amp; b\" size 2 ]\n"
    "  node [ id 3 label \"c\" size 3.5 ]\n"
    "  node [ id 9 size 4 ]\n"
    "  edge [ source 7 target 3 weight 0.5 kind \"x\" ]\n"
    "  edge [ source 3 target 9 weight 2 ]\n"
    "]\n";

TEST(ReadingGml, ReadsNodesAndEdgesWithAllTheirValues) {
  const Reading reading = read(std::string(kTriangle));
  EXPECT_EQ(reading.format(), FileFormat::kGml);
  EXPECT_EQ(reading.title(), "A triangle");
  EXPECT_EQ(summaryOf(reading), "directed 3: 0>1 1>2 w(0.5, 2)");
  EXPECT_THAT(vertexTexts(reading, "Id"), ElementsAre("7", "3", "9"));
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("a & b", "c", "<null>"));
  EXPECT_THAT(vertexTexts(reading, "size"), ElementsAre("2", "3.5", "4"));
  EXPECT_THAT(edgeTexts(reading, "kind"), ElementsAre("x", "<null>"));
  EXPECT_THAT(notesOf(reading), IsEmpty());
}

TEST(ReadingGml, IsUndirectedWithoutAWord) {
  EXPECT_EQ(summaryOf(read("graph [ node [ id 1 ] node [ id 2 ] edge [ source 2 target 1 ] ]")),
            "undirected 2: 1>0");
}

TEST(ReadingGml, MayNameEdgesBeforeNodes) {
  EXPECT_EQ(summaryOf(read("graph [ edge [ source 5 target 6 ] node [ id 5 ] node [ id 6 ] ]")),
            "undirected 2: 0>1");
}

TEST(ReadingGml, ReadsEntitiesAndTheCharactersOfItsEncoding) {
  const Reading reading = read(
      "graph [ node [ id 1 label \"&#233;&#x20AC;&quot;&none;&\" ]\n"
      "node [ id 2 label \"\xE9\" ] ]");
  EXPECT_THAT(vertexTexts(reading, "Name"),
              ElementsAre("\xC3\xA9\xE2\x82\xAC\"&none;&", "\xC3\xA9"));
}

TEST(ReadingGml, KnowsTheNamesOfLatinLetters) {
  // The first and the last of them, and one between.
  const Reading reading = read("graph [ node [ id 1 label \"&nbsp;&szlig;&yuml;&Szlig;\" ] ]");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("\xC2\xA0\xC3\x9F\xC3\xBF&Szlig;"));
}

TEST(ReadingGml, LeavesTextInQuotesText) {
  const Reading reading = read(
      "graph [ node [ id 1 label \"1\" age \"7\" far 1 ]\n"
      "node [ id 2 label \"2\" age 8 far 2.5 ] ]");
  const VEQNetwork& network = *reading.value().published();
  EXPECT_EQ(vertexKind(network, "Name"), PropertyColumn::Kind::kGeneric);
  EXPECT_EQ(vertexKind(network, "age"), PropertyColumn::Kind::kGeneric);
  EXPECT_EQ(*network.propertiesOfVertexAtIndex(1).find("age"), PropertyValue("8"));
  EXPECT_EQ(vertexKind(network, "far"), PropertyColumn::Kind::kNumber);
}

TEST(ReadingGml, TakesAWeightOfEveryNodeForItsWeight) {
  const Reading all = read("graph [ node [ id 1 weight 2 ] node [ id 2 weight 0.1 ] ]");
  EXPECT_EQ(vertexWeightsOf(*all.value().published()), (std::vector<float>{2.0F, 0.1F}));
  EXPECT_THAT(vertexTexts(all, "weight"), ElementsAre("no column"));
  // One without a weight, and one that no float holds: 2^24 + 1.
  for (const char* second : {"", "weight 16777217"}) {
    const Reading some =
        read(std::string("graph [ node [ id 1 weight 2 ] node [ id 2 ") + second + " ] ]");
    EXPECT_FALSE(some.value().published()->isVertexWeighted());
    EXPECT_NE(vertexTexts(some, "weight"), Texts{"no column"});
  }
}

TEST(ReadingGml, LeavesOutListsInsideNodesAndEdges) {
  const Reading reading = read("graph [\nnode [ id 1\ngraphics [ x 1 deeper [ y 2 ] ] ]\n]");
  EXPECT_EQ(summaryOf(reading), "undirected 1:");
  EXPECT_THAT(notesOf(reading), ElementsAre("3:1 left out x1: the list \"graphics\" is left out"));
}

TEST(ReadingGml, LeavesOutWhatIsSaidOfTheGraph) {
  const Reading reading = read(
      "Creator \"me\"\nVersion 1\ngraph [\n directed 1\n multigraph 1\n label \"all\"\n year 1998\n"
      " place \"here\"\n node [ id 1 ]\n]\n");
  EXPECT_EQ(reading.title(), "all");
  EXPECT_THAT(notesOf(reading), ElementsAre("7:2 left out x2: what is said of the graph as a whole "
                                            "is left out: \"year\""));
}

TEST(ReadingGml, KeepsTheFirstOfValuesUnderOneKey) {
  const Reading reading = read(
      "graph [\n node [ id 1 colour \"red\" colour \"blue\" colour 3 ]\n node [ id 2 colour 4 "
      "]\n]\n");
  EXPECT_THAT(vertexTexts(reading, "colour"), ElementsAre("red", "4"));
  EXPECT_THAT(notesOf(reading),
              ElementsAre("2:27 left out x2: the key \"colour\" stands more than once in a node or "
                          "edge: all but its first value are left out"));
}

TEST(ReadingGml, IsKnownBehindAnyNumberOfComments) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "# a b\n";
  EXPECT_EQ(readNetworkText(text + "graph [ node [ id 1 ] ]\n").format(), FileFormat::kGml);
}

TEST(ReadingGml, MayStandInOneLineBehindItsCreator) {
  EXPECT_EQ(summaryOf(read("Creator \"me\" Version 1 graph [ node [ id 1 ] ]")), "undirected 1:");
  EXPECT_EQ(readNetworkText("Creator \"graph [\" b\nc d\n").format(), FileFormat::kList);
}

TEST(ReadingGml, SkipsComments) {
  EXPECT_EQ(summaryOf(read("# a [\ngraph [ # b ]\nnode [ id 1 ]\n]")), "undirected 1:");
}

TEST(ReadingGml, TakesMissingWeightsForOne) {
  const Reading reading = read(
      "graph [ node [ id 1 ] node [ id 2 ]\nedge [ source 1 target 2 ]\n"
      "edge [ source 2 target 1 weight 3 ]\nedge [ source 1 target 1 ] ]");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1 1>0 0>0 w(1, 3, 1)");
  EXPECT_THAT(notesOf(reading), ElementsAre("2:1 repaired x2: no weight is taken for 1"));
}

TEST(ReadingGml, RefusesWhatIsNoGraphWithThePlace) {
  EXPECT_EQ(summaryOf(read("graph [ node [ id 1 ]\n")), "error 2:1 a \"[\" without its \"]\"");
  EXPECT_EQ(summaryOf(read("graph [ node [ id 1 ] ] ]\n")), "error 1:25 a \"]\" without its \"[\"");
  EXPECT_EQ(summaryOf(read("graph [\n node [ label \"x\" ] ]\n")),
            "error 2:9 a node without an id");
  EXPECT_EQ(summaryOf(read("graph [ node [ id 1 ]\nnode [ id 1 ] ]")), "error 2:8 a second node 1");
  EXPECT_EQ(summaryOf(read("graph [ node [ id 1 ]\nedge [ source 1 target 2 ] ]")),
            "error 2:1 an edge of node 2, which is not there");
  EXPECT_EQ(summaryOf(read("graph [ node [ id 1 ]\nedge [ source 1 ] ]")),
            "error 2:1 an edge without a source or a target");
  EXPECT_EQ(summaryOf(read("graph [ node [ id \"a ] ]")), "error 1:19 a quote that is not closed");
  EXPECT_EQ(summaryOf(read("graph [ node [ id 1.5 ] ]")), "error 1:19 no integer: \"1.5\"");
  EXPECT_EQ(summaryOf(read("graph [ 5 6 ]")), "error 1:9 no key: \"5\"");
  EXPECT_EQ(summaryOf(read("graph [ node ]")), "error 1:14 a key without a value");
}

TEST(ReadingGml, TellsWhereANodeWithoutAnythingStands) {
  EXPECT_EQ(summaryOf(read("graph [\n  node [ ]\n]")), "error 2:3 a node without an id");
}

TEST(ReadingGml, FindsThePlaceOfAnEdgeAmongAllThatLooksLikeOne) {
  ReadOptions options;
  options.format = FileFormat::kGml;
  const std::string text =
      "other [ edge [ source 1 ] ]\ngraph [ edge 5 node [ id 1 graphics [ edge [ x 1 ] ] ]\n"
      "edge [ source 1 target 1 a [ edge [ ] ] ] note \"edge [\"\n# edge [\n"
      " Edge [ target 1 source 3 ] edge [ source 4 target 4 ] ]\ngraph [ edge [ a 1 ] ]\n";
  EXPECT_EQ(summaryOf(readNetworkText(text, options)),
            "error 5:2 an edge of node 3, which is not there");
}

TEST(ReadingGml, SurvivesListsOfAnyDepth) {
  const std::string deep = "graph [ x " + std::string(1'000'000, '[');
  EXPECT_EQ(summaryOf(read(deep)), "error 1:1000011 a \"[\" without its \"]\"");
}

TEST(ReadingGml, RefusesMoreUnsetCellsThanATextMayAskFor) {
  // 2000 keys that the last of 2000 nodes has.
  std::string text = "graph [\n";
  for (int id = 1; id < 2000; ++id) text += "node[id " + std::to_string(id) + "]\n";
  text += "node[id 0";
  for (int key = 0; key < 2000; ++key) text += " k" + std::to_string(key) + " 1";
  text += "]]";
  EXPECT_EQ(text.size(), 8U + 1999 * 10 + (9 + 90 * 2 + 900 * 3 + 1000 * 4) + 9 + 2000 * 4 +
                             (10 + 90 * 2 + 900 * 3 + 1000 * 4) + 2);
  // 64 * 41788 + 10^6; the key 1838, as each before it with 1999 rows above, is one too many.
  EXPECT_EQ(summaryOf(read(text)),
            "error 2001:13605 columns with more than the 3674432 cells without a value that a text "
            "of 41788 bytes may have");
}

TEST(ReadingGml, SurvivesDamagedTexts) {
  std::uint64_t networks = 0;
  forMutationsOf(std::string(kTriangle), {"[", "]", "\"", "node [", "#", "-9999999999999999999999"},
                 [&](const std::string& mutated) {
                   const Reading reading = read(mutated);
                   if (reading) networks += reading.value().countVertices() != 0;
                 });
  EXPECT_GT(networks, 100U);
}

}  // namespace
}  // namespace veq::test::reading_gml_test
