#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/reading_support.hpp"

namespace veq::test::reading_pajek_test {
namespace {

Reading read(std::string text, const ReadOptions& options = {}) {
  return readNetworkText(std::move(text), options);
}

TEST(ReadingPajek, ReadsNamesPositionsAndWeights) {
  const Reading reading = read(
      "*Network Village\n*Vertices 3\n1 \"Ada\" 0.1 0.2 0.5\n2 Bob 3\n3 \"C D\"\n"
      "*Edges\n1 2 2.5\n3 1\n");
  EXPECT_EQ(reading.format(), FileFormat::kPajek);
  EXPECT_EQ(reading.title(), "Village");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1 2>0 w(2.5, 1)");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("Ada", "Bob", "C D"));
  EXPECT_THAT(vertexTexts(reading, "Position"), ElementsAre("0.1 0.2 0.5", "3 0 0", "0 0 0"));
  EXPECT_THAT(notesOf(reading),
              ElementsAre("5:1 taken x1: 1 vertex without a position is taken to be at the "
                          "origin"));
}

TEST(ReadingPajek, IsUnweightedWhereAllWeightsAreOne) {
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Arcs\n1 2 1\n2 1 1.0\n")), "directed 2: 0>1 1>0");
}

TEST(ReadingPajek, ReadsSectionsInAnyOrderAndSeveralTimes) {
  const Reading reading = read("*Edges\n1 2 2\n*vertices 3\n3 \"c\"\n*edges\n2 3 4\n");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1 1>2 w(2, 4)");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("<null>", "<null>", "c"));
}

TEST(ReadingPajek, TakesEdgesBesideArcsForTwoArcsAndALoopForOne) {
  const Reading reading = read("*Vertices 3\n*Edges\n1 2 5\n3 3\n*Arcs\n2 3\n");
  EXPECT_EQ(summaryOf(reading), "directed 3: 0>1 1>0 2>2 1>2 w(5, 5, 1, 1)");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("5:1 taken x1: arcs and undirected edges: each edge is taken for two "
                          "arcs, and a loop for one"));
}

TEST(ReadingPajek, LetsAnEmptySectionOfArcsDecideNothing) {
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Arcs\n*Edges\n1 2\n")), "undirected 2: 0>1");
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Arcs\n")), "directed 2:");
}

TEST(ReadingPajek, CountsVerticesWhereTheHeaderDoesNot) {
  const Reading reading = read("*Vertices\n1 \"a\"\n2 \"b\"\n*Arcs\n1 4\n");
  EXPECT_EQ(summaryOf(reading), "directed 4: 0>3");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("1:1 taken x1: no number of vertices: 4 from the lines"));
  EXPECT_EQ(summaryOf(read("*Arcs\n2 1\n")), "directed 2: 1>0");
}

TEST(ReadingPajek, SectionsOfProjectFilesMayHaveANumberOfVerticesOfTheirOwn) {
  const Reading reading = read("*Vertices 2\n*Cluster c\n*Vertices 1\n2\n*Edges\n1 2\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1");
  EXPECT_THAT(notesOf(reading), ElementsAre("2:1 left out x1: the section *Cluster is left out"));
}

TEST(ReadingPajek, ReadsListsOfNeighbours) {
  EXPECT_EQ(summaryOf(read("*Vertices 4\n*Arcslist\n1 2 3\n4 1\n")), "directed 4: 0>1 0>2 3>0");
  EXPECT_EQ(summaryOf(read("*Vertices 3\n*Edgeslist\n1 2 -3\n")), "undirected 3: 0>1 0>2 w(1, -1)");
}

TEST(ReadingPajek, ReadsMatricesWhereverTheirLinesEnd) {
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Matrix\n0 1\n2 3\n")),
            "directed 2: 0>1 1>0 1>1 w(1, 2, 3)");
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Matrix\n0 1 2\n3\n")),
            "directed 2: 0>1 1>0 1>1 w(1, 2, 3)");
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Matrix\n0 1 2\n")),
            "error 3:1 a matrix of 2 times 2 numbers ends in row 2");
  EXPECT_EQ(summaryOf(read("*Vertices 1\n*Matrix\n0 1\n")),
            "error 3:3 a matrix of more than 1 times 1 numbers");
}

TEST(ReadingPajek, AMatrixMayTellHowManyVerticesThereAre) {
  const Reading reading = read("*Matrix\n0 1 0\n0 0 2\n0 0 0\n");
  EXPECT_EQ(summaryOf(reading), "directed 3: 0>1 1>2 w(1, 2)");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("1:1 taken x1: no number of vertices: 3 from the lines"));
  EXPECT_EQ(summaryOf(read("*Matrix\n0 1\n1 0\n*Vertices 3\n")), "directed 3: 0>1 1>0");
  EXPECT_EQ(summaryOf(read("*Matrix\n0 1\n1 0\n*Vertices 1\n")), "error 2:1 vertex 2 of 1");
  EXPECT_EQ(summaryOf(read("*Matrix\n0 1\n1\n")),
            "error 3:1 a matrix of 2 times 2 numbers ends in row 2");
}

TEST(ReadingPajek, TakesLinksOfStatesForThoseOfTheirVertices) {
  const Reading reading = read(
      "*Vertices 2\n1 \"a\"\n2 \"b\"\n*States\n1 1 \"a in b\"\n2 2\n3 2\n*Links\n1 2 0.5\n3 1 2\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1 1>0 w(0.5, 2)");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("4:1 left out x1: the section *States is left out",
                          "8:1 taken x1: the lines of *Links are taken for edges of the vertices "
                          "that the states are of"));
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*States\n1 1\n*Links\n1 2\n")),
            "error 5:3 state 2, which is not there");
}

TEST(ReadingPajek, SaysThatAVertexHasTwoLabels) {
  const Reading reading = read("*Vertices 3\n2 \"a\"\n2 b\n1 c\n3 \"d\"\n1 \"e\"\n");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("e", "b", "d"));
  EXPECT_THAT(notesOf(reading), ElementsAre("3:1 repaired x2: a second label of vertex 2 takes the "
                                            "place of the first"));
}

TEST(ReadingPajek, IsKnownBehindOtherWords) {
  const Reading reading = read("My network\nof 2002\n*Vertices 2\n*Edges\n1 2\n");
  EXPECT_EQ(reading.format(), FileFormat::kPajek);
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1");
  EXPECT_THAT(notesOf(reading),
              ElementsAre("1:1 left out x2: what stands before the first section is left out: "
                          "\"My network\""));
  EXPECT_EQ(read("*\n*Edges:2 \"x\"\n1 2\n").format(), FileFormat::kPajek);
}

TEST(ReadingPajek, RefusesATextWithoutSections) {
  ReadOptions options;
  options.format = FileFormat::kPajek;
  const std::string error = "error 1:1 no section of Pajek, such as *Vertices or *Edges";
  EXPECT_EQ(summaryOf(readNetworkText("1 2\n2 3\n", options)), error);
  EXPECT_EQ(summaryOf(readNetworkText("*Nonsense\n1 2\n", options)), error);
  EXPECT_EQ(summaryOf(readNetworkText("hello\n", {}, "x.net")), error);
}

TEST(ReadingPajek, KeepsTheTwoModes) {
  const Reading reading = read("*Vertices 5 2\n*Edges\n1 3\n2 5\n");
  EXPECT_EQ(summaryOf(reading), "undirected 5: 0>2 1>4");
  EXPECT_THAT(vertexTexts(reading, "Mode"), ElementsAre("1", "1", "2", "2", "2"));
  EXPECT_EQ(summaryOf(read("*Vertices 3 1\n*Matrix\n0 7\n")), "undirected 3: 0>2 w(7)");
  EXPECT_EQ(summaryOf(read("*Vertices 3 4\n")), "error 1:13 a first mode of 4 of 3 vertices");
}

TEST(ReadingPajek, KeepsRelationsAsPropertiesOfEdges) {
  const Reading reading =
      read("*Vertices 2\n*Arcs :1 \"likes\"\n1 2\n*Arcs :2 \"fears\"\n2 1\n1 1\n");
  EXPECT_EQ(summaryOf(reading), "directed 2: 0>1 1>0 0>0");
  EXPECT_THAT(edgeTexts(reading, "Relation"), ElementsAre("1", "2", "2"));
  EXPECT_THAT(edgeTexts(reading, "Relation Name"), ElementsAre("likes", "fears", "fears"));
}

TEST(ReadingPajek, TakesLayersForEdges) {
  const Reading reading = read("*Vertices 2\n*Intra\n1 1 2\n2 2 1 3\n*Inter\n1 1 2\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1 1>0 w(1, 3)");
  EXPECT_THAT(edgeTexts(reading, "Layer"), ElementsAre("1", "2"));
  EXPECT_THAT(notesOf(reading), ElementsAre("2:1 taken x1: the lines of *Intra are taken for edges",
                                            "5:1 left out x1: the section *Inter is left out"));
}

TEST(ReadingPajek, TakesPartitionsAndVectorsForColumns) {
  const Reading reading =
      read("*Vertices 2\n*Edges\n1 2\n*Partition club\n*Vertices 2\n7\n8\n*Vector\n1.5\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1");
  EXPECT_THAT(vertexTexts(reading, "club"), ElementsAre("7", "8"));
  EXPECT_THAT(vertexTexts(reading, "Vector"), ElementsAre("no column"));
  EXPECT_THAT(
      notesOf(reading),
      ElementsAre("4:1 taken x1: \"club\" is taken for a property of the vertices",
                  "8:1 left out x1: \"Vector\" has 1 values for 2 vertices and is left out"));
}

TEST(ReadingPajek, KeepsColumnsOfOneNameApart) {
  const Reading reading = read(
      "*Vertices 2\n1 \"a\"\n2 \"b\"\n*Partition\n*Vertices 2\n1\n2\n*Partition\n*Vertices 2\n"
      "3\n4\n*Vector Name\n*Vertices 2\n5\n6\n");
  EXPECT_THAT(vertexTexts(reading, "Partition"), ElementsAre("1", "2"));
  EXPECT_THAT(vertexTexts(reading, "Partition 2"), ElementsAre("3", "4"));
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("a", "b"));
  EXPECT_THAT(vertexTexts(reading, "Name 2"), ElementsAre("5", "6"));
  EXPECT_THAT(notesOf(reading),
              ElementsAre("4:1 taken x1: \"Partition\" is taken for a property of the vertices",
                          "8:1 taken x1: \"Partition\" is taken for a property of the vertices",
                          "8:1 taken x1: a further column \"Partition\" is called \"Partition 2\"",
                          "12:1 taken x1: \"Name\" is taken for a property of the vertices",
                          "12:1 taken x1: a further column \"Name\" is called \"Name 2\""));
}

TEST(ReadingPajek, TellsOfVerticesWithoutALineAtTheirNumber) {
  const std::string rest = " 0.5 0.25\n*Edges\n1 3\n";
  EXPECT_THAT(notesOf(read("\n*Vertices 3\n1 \"a\"" + rest)),
              ElementsAre("2:1 taken x1: 2 vertices without a position are taken to be at the "
                          "origin"));
  EXPECT_THAT(notesOf(read("*Vertices\n1 a" + rest)),
              ElementsAre("1:1 taken x1: no number of vertices: 3 from the lines",
                          "1:1 taken x1: 2 vertices without a position are taken to be at the "
                          "origin"));
}

TEST(ReadingPajek, SkipsCommentsAndBlankLinesAnywhere) {
  EXPECT_EQ(summaryOf(read("% a\n\n*Vertices 2\n# b\n1 \"x\"\n\n/* c */\n*Edges\n% d\n1 2\n")),
            "undirected 2: 0>1");
}

TEST(ReadingPajek, RefusesEndsOutsideTheNetworkWithTheirPlace) {
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Edges\n1 2\n1 3\n")), "error 4:3 vertex 3 of 2");
  EXPECT_EQ(summaryOf(read("*Vertices 2\n*Edges\n0 2\n")),
            "error 3:1 vertex 0: vertices are numbered from 1");
  EXPECT_EQ(summaryOf(read("*Edges\n1 3\n*Vertices 2\n")), "error 2:3 vertex 3 of 2");
}

TEST(ReadingPajek, RefusesNumbersThatNoVertexHas) {
  const std::string number = "99999999999999999999";
  for (const std::string& text : {"1 " + number, "1 -" + number}) {
    EXPECT_EQ(summaryOf(read("*Vertices 3\n*Edges\n" + text + "\n")),
              "error 3:3 vertex " + text.substr(2) + ", and no network has so many");
    EXPECT_EQ(summaryOf(read("*Vertices 3\n*Edgeslist\n" + text + "\n")),
              "error 3:3 vertex " + text.substr(2) + ", and no network has so many");
  }
  EXPECT_EQ(summaryOf(read("*Vertices\n" + number + " \"a\"\n")),
            "error 2:1 vertex " + number + ", and no network has so many");
  EXPECT_EQ(
      summaryOf(read("*Vertices " + number + "\n")),
      "error 1:11 " + number + " vertices, more than the 1001984 that a text of 31 bytes may have");
  EXPECT_EQ(summaryOf(read("*Vertices -" + number + "\n")),
            "error 1:11 a negative number of vertices");
}

TEST(ReadingPajek, RefusesMoreVerticesThanATextMayAskFor) {
  EXPECT_EQ(
      summaryOf(read("*Vertices 2000000000\n1 \"a\"\n")),
      "error 1:1 2000000000 vertices, more than the 1001728 that a text of 27 bytes may have");
  ReadOptions options;
  options.mostVertices = 3;
  EXPECT_EQ(summaryOf(read("*Vertices 4\n", options)),
            "error 1:1 4 vertices, more than the 3 that are allowed");
}

TEST(ReadingPajek, LeavesOutHowThingsAreDrawn) {
  const Reading reading = read(
      "*Vertices 2\n1 \"a\" 0 0 0 ellipse ic Red\n2 \"b\" 1 1 1\n*Edges\n1 2 1 c Blue\n2 1 3\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1 1>0 w(1, 3)");
  EXPECT_THAT(
      notesOf(reading),
      ElementsAre("2:13 left out x1: how a vertex is drawn, or when it is there, is left "
                  "out: \"ellipse ic Red\"",
                  "5:7 left out x1: how an edge is drawn, or when it is there, is left out: "
                  "\"c Blue\""));
}

TEST(ReadingPajek, ReadsTheEncodingsOfFiles) {
  EXPECT_THAT(vertexTexts(read("\xEF\xBB\xBF*Vertices 1\n1 \"\xC3\xA9\"\n"), "Name"),
              ElementsAre("\xC3\xA9"));
  const Reading latin1 = read("*Vertices 1\n1 \"\xE9\"\n");
  EXPECT_THAT(vertexTexts(latin1, "Name"), ElementsAre("\xC3\xA9"));
  EXPECT_THAT(notesOf(latin1),
              ElementsAre("1:1 taken x1: not UTF-8: the text is taken for ISO-8859-1"));
  const Reading broken = read("\xEF\xBB\xBF*Vertices 1\n1 \"\xE9\"\n");
  EXPECT_THAT(notesOf(broken),
              ElementsAre("1:1 repaired x1: what follows the byte-order mark is not what the mark "
                          "says: the text is taken for ISO-8859-1"));
  EXPECT_THAT(vertexTexts(broken, "Name"), ElementsAre("\xC3\xA9"));
  std::string utf16 = "\xFF\xFE";
  for (const char byte : std::string_view("*Vertices 1\n1 \"a\"\n")) {
    utf16 += byte;
    utf16 += '\0';
  }
  EXPECT_THAT(vertexTexts(read(utf16), "Name"), ElementsAre("a"));
}

TEST(ReadingPajek, ReadsEveryKindOfLineEnd) {
  EXPECT_EQ(summaryOf(read("*Vertices 2\r*Edges\r1 2\r")), "undirected 2: 0>1");
  EXPECT_EQ(summaryOf(read("*Vertices 2\r\n*Edges\r\n1 2\r\n")), "undirected 2: 0>1");
  EXPECT_EQ(summaryOf(read("*Vertices 3\n*Edges\r1 2\r\n2 3\n1 4\r")), "error 5:3 vertex 4 of 3");
}

TEST(ReadingPajek, StopsBeforeASecondNetwork) {
  const Reading reading = read("*Network a\n*Vertices 2\n*Edges\n1 2\n*Network b\n*Vertices 9\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1");
  EXPECT_THAT(notesOf(reading), ElementsAre("5:1 left out x1: a second network begins here; the "
                                            "rest of the file is left out"));
}

TEST(ReadingPajek, SurvivesDamagedTexts) {
  const std::string text =
      "*Network x\n*Vertices 4 2\n1 \"a\" 0.5 1\n2 b\n*Arcs :1 \"r\"\n1 2 3\n*Edgeslist\n1 3 4\n"
      "*Matrix\n0 1 2 3\n*Partition p\n1\n2\n3\n4\n";
  std::uint64_t networks = 0;
  forMutationsOf(text,
                 {"*", "\"", "\n", "*Vertices 99999999999", "-", "*Intra\n", "*Bipartite 2\n"},
                 [&](const std::string& mutated) {
                   const Reading reading = read(mutated);
                   if (reading) networks += reading.value().countVertices() != 0;
                 });
  EXPECT_GT(networks, 100U);
}

}  // namespace
}  // namespace veq::test::reading_pajek_test
