#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/reading_support.hpp"

namespace veq::test::reading_lists_test {
namespace {

Reading read(std::string text, const ReadOptions& options = {}) {
  return readNetworkText(std::move(text), options);
}

TEST(ReadingLists, TakesIntegersForIdsInAscendingOrder) {
  const Reading reading = read("10 30\n30 20\n");
  EXPECT_EQ(reading.format(), FileFormat::kList);
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>2 2>1");
  EXPECT_THAT(vertexTexts(reading, "Id"), ElementsAre("10", "20", "30"));
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("no column"));
  EXPECT_EQ(vertexKind(*reading.value().published(), "Id"), PropertyColumn::Kind::kNumber);
  EXPECT_THAT(notesOf(reading), IsEmpty());
}

TEST(ReadingLists, FindsIdsThatLieFarApart) {
  const Reading reading = read("-5 900000000000000000\n7 -5\n");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>2 1>0");
  EXPECT_THAT(vertexTexts(reading, "Id"), ElementsAre("-5", "7", "900000000000000000"));
}

TEST(ReadingLists, KeepsEveryIdThatSixtyFourBitsHold) {
  const Reading reading =
      read("9223372036854775807 -9223372036854775808 2\n+7 1234567890123456789 3\n");
  EXPECT_EQ(summaryOf(reading), "undirected 4: 3>0 1>2 w(2, 3)");
  EXPECT_THAT(
      vertexTexts(reading, "Id"),
      ElementsAre("-9223372036854775808", "7", "1234567890123456789", "9223372036854775807"));
  // The same between quotes, which are read otherwise.
  EXPECT_THAT(vertexTexts(read("\"9223372036854775807\",1\n"), "Id"),
              ElementsAre("1", "9223372036854775807"));
  EXPECT_THAT(vertexTexts(read("9223372036854775808 1\n"), "Name"),
              ElementsAre("9223372036854775808", "1"));
}

TEST(ReadingLists, TakesIntegersForIndicesWhereAsked) {
  ReadOptions options;
  options.idsAreIndices = true;
  const Reading reading = read("1 3\n", options);
  EXPECT_EQ(summaryOf(reading), "undirected 4: 1>3");
  EXPECT_THAT(vertexTexts(reading, "Id"), ElementsAre("no column"));
  EXPECT_EQ(summaryOf(read("1 -3\n", options)), "error 1:3 the id -3 is no index");
  EXPECT_EQ(summaryOf(read("# x\n1 3\n2 -7\n", options)), "error 3:3 the id -7 is no index");
}

TEST(ReadingLists, TakesOtherWordsForNamesByFirstAppearance) {
  const Reading reading = read("b a\na 7\n");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1 1>2");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("b", "a", "7"));
  EXPECT_THAT(vertexTexts(reading, "Id"), ElementsAre("no column"));
}

TEST(ReadingLists, TakesAThirdColumnOfNumbersForWeights) {
  EXPECT_EQ(summaryOf(read("1 2 0.5\n2 3 2\n")), "undirected 3: 0>1 1>2 w(0.5, 2)");
  EXPECT_EQ(summaryOf(read("a b 0.5\nb c -2e1\n")), "undirected 3: 0>1 1>2 w(0.5, -20)");
}

TEST(ReadingLists, KeepsFurtherColumnsAsPropertiesOfEdges) {
  const Reading reading = read("1 2 0.5 x 3\n2 3 2 y 4.5\n");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1 1>2 w(0.5, 2)");
  EXPECT_THAT(edgeTexts(reading, "Column 4"), ElementsAre("x", "y"));
  EXPECT_THAT(edgeTexts(reading, "Column 5"), ElementsAre("3", "4.5"));
}

TEST(ReadingLists, KeepsAThirdColumnOfWordsAsAProperty) {
  const Reading reading = read("1 2 red\n2 3 blue\n");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1 1>2");
  EXPECT_THAT(edgeTexts(reading, "Column 3"), ElementsAre("red", "blue"));
}

TEST(ReadingLists, SeparatesByWhatTheFirstLineHas) {
  EXPECT_EQ(summaryOf(read("1,2\n2, 3\n")), "undirected 3: 0>1 1>2");
  EXPECT_EQ(summaryOf(read("1;2;5\n2;3;6\n")), "undirected 3: 0>1 1>2 w(5, 6)");
  EXPECT_EQ(summaryOf(read("1\t2\n2\t3\n")), "undirected 3: 0>1 1>2");
  const Reading tabs = read("New York\tSan Jose\nSan Jose\tReno\n");
  EXPECT_THAT(vertexTexts(tabs, "Name"), ElementsAre("New York", "San Jose", "Reno"));
}

TEST(ReadingLists, SkipsCommentsAndBlankLines) {
  EXPECT_EQ(summaryOf(read("# a\n\n% b\n// c\n1 2\n  # d\n2 3\n")), "undirected 3: 0>1 1>2");
}

TEST(ReadingLists, ReadsEveryKindOfLineEnd) {
  EXPECT_EQ(summaryOf(read("1 2\r\n2 3\r\n")), "undirected 3: 0>1 1>2");
  EXPECT_EQ(summaryOf(read("1 2\r2 3")), "undirected 3: 0>1 1>2");
  EXPECT_EQ(summaryOf(read("1 2\n2 3")), "undirected 3: 0>1 1>2");
  EXPECT_EQ(summaryOf(read("1 2\r2 3\n3 4\r\n4 5\r\r5 6")), "undirected 6: 0>1 1>2 2>3 3>4 4>5");
  EXPECT_THAT(notesOf(read("a b\rb c\n\r\rlonely\r\n")),
              ElementsAre("5:1 taken x1: the one end \"lonely\" is taken for a vertex without this "
                          "edge"));
}

TEST(ReadingLists, NamesColumnsByTheHeader) {
  const Reading reading = read("from to weight colour\na b 2 red\nb c 3 \n");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1 1>2 w(2, 3)");
  EXPECT_THAT(edgeTexts(reading, "colour"), ElementsAre("red", "<null>"));
}

TEST(ReadingLists, KeepsAColumnWithoutANameApartFromOneThatIsCalledLikeIt) {
  const Reading reading = read("source,target,Column 4,\na,b,x,y\n");
  EXPECT_THAT(edgeTexts(reading, "Column 4"), ElementsAre("x"));
  EXPECT_THAT(edgeTexts(reading, "Column 4 2"), ElementsAre("y"));
  EXPECT_THAT(notesOf(reading),
              ElementsAre("1:1 taken x1: a further column \"Column 4\" is called \"Column 4 2\""));
}

TEST(ReadingLists, SaysWhichLineItTakesForAHeader) {
  EXPECT_THAT(notesOf(read("# x\nperson,friend\n1,2\n")),
              ElementsAre("2:1 taken x1: this line is taken for the names of the columns, as the "
                          "next has numbers there"));
  EXPECT_THAT(notesOf(read("source,target\n1,2\n")), IsEmpty());
  // A line that has numbers for its ends names no columns.
  const Reading reading = read("1 2 nan\n2 3 1\n");
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1 1>2");
  EXPECT_THAT(edgeTexts(reading, "Column 3"), ElementsAre("nan", "1"));
}

TEST(ReadingLists, KeepsTypesThatAreNoDirections) {
  const Reading reading = read("source,target,type\na,b,friend\nb,c,\nc,a,Directed\n");
  EXPECT_EQ(summaryOf(reading), "directed 3: 0>1 1>2 2>0");
  EXPECT_THAT(edgeTexts(reading, "type"), ElementsAre("friend", "<null>", "<null>"));
}

TEST(ReadingLists, TakesNumbersInQuotesForTextUnlessAllStandInQuotes) {
  const Reading some = read("source,target,code\na,b,\"1\"\nb,c,\"2\"\n");
  EXPECT_EQ(edgeKind(*some.value().published(), "code"), PropertyColumn::Kind::kGeneric);
  EXPECT_THAT(edgeTexts(some, "code"), ElementsAre("1", "2"));
  const Reading all =
      read("\"source\",\"target\",\"code\"\n\"a\",\"b\",\"1\"\n\"b\",\"c\",\"2\"\n");
  EXPECT_EQ(edgeKind(*all.value().published(), "code"), PropertyColumn::Kind::kNumber);
  const Reading empty =
      read("\"source\",\"target\",\"code\"\n\"a\",\"b\",\"1\"\n\"b\",\"c\",\"\"\n");
  EXPECT_THAT(edgeTexts(empty, "code"), ElementsAre("1", "<null>"));
  EXPECT_THAT(edgeTexts(read("source,target,code\na,b,x\nb,c,\"\"\n"), "code"),
              ElementsAre("x", ""));
}

TEST(ReadingLists, CountsEachWeightThatIsMissingOnce) {
  EXPECT_THAT(notesOf(read("source,target,weight,x\n1,2,0.5,a\n2,3,,b\n3,1\n")),
              ElementsAre("3:1 repaired x2: no weight is taken for 1"));
}

TEST(ReadingLists, SaysThatAWeightIsBeyondAllNumbers) {
  const Reading reading = read("1 2 1e400\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1 w(inf)");
  EXPECT_THAT(notesOf(reading), ElementsAre("1:5 repaired x1: 1 weight is rounded to 32 bits: "
                                            "that of edge 0 from beyond 1.8e308 to inf"));
  EXPECT_THAT(notesOf(read("1 2 1e39\n")),
              ElementsAre("1:5 repaired x1: 1 weight is rounded to "
                          "32 bits: that of edge 0 from 1e+39 to inf"));
}

TEST(ReadingLists, ReadsExportsOfSpreadsheets) {
  const Reading reading = read(
      "Source,Target,Type,Id,Label,Weight\n"
      "\"Smith, J\",\"the \"\"boss\"\"\",Directed,0,,1.5\n"
      "b,a,Directed,1,x,2\n");
  EXPECT_EQ(summaryOf(reading), "directed 4: 0>1 2>3 w(1.5, 2)");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("Smith, J", "the \"boss\"", "b", "a"));
  EXPECT_THAT(edgeTexts(reading, "Id"), ElementsAre("0", "1"));
  EXPECT_THAT(edgeTexts(reading, "Label"), ElementsAre("<null>", "x"));
  EXPECT_THAT(notesOf(reading), IsEmpty());
}

TEST(ReadingLists, AQuotedFieldMayHaveSeveralLines) {
  const Reading reading =
      read("Source,Target,note\n\"a\n b\",c,\"x\r\n\"\"y\"\"\n#z\"\nc,d,\"\ne\"\nd,e,f\n");
  EXPECT_EQ(summaryOf(reading), "undirected 4: 0>1 1>2 2>3");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("a\n b", "c", "d", "e"));
  EXPECT_THAT(edgeTexts(reading, "note"), ElementsAre("x\r\n\"y\"\n#z", "\ne", "f"));
  EXPECT_THAT(notesOf(reading), IsEmpty());
  EXPECT_THAT(edgeTexts(read("Source,Target,\"two\nlines\"\na,b,c\n"), "two\nlines"),
              ElementsAre("c"));
}

TEST(ReadingLists, UndoesQuotesInTheFirstLineAndInComments) {
  // Long enough to lie on the heap, where the address sanitizer sees who keeps it.
  const std::string name = "a \"\"name\"\" that is longer than any that lies in place";
  const Reading reading =
      read("# \"" + name + "\" graph\n% \"" + name + "\" x\n\"" + name + "\" b\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1");
  EXPECT_THAT(vertexTexts(reading, "Name"),
              ElementsAre("a \"name\" that is longer than any that lies in place", "b"));
}

TEST(ReadingLists, AQuoteThatNoLineClosesEndsWithItsOwn) {
  // The next quote begins a field, so that it closes none.
  const Reading reading = read("a,b,\"c\nd,e,\"f\"\ng,\"h\n");
  EXPECT_EQ(summaryOf(reading), "undirected 6: 0>1 2>3 4>5");
  EXPECT_THAT(edgeTexts(reading, "Column 3"), ElementsAre("c", "f", "<null>"));
  EXPECT_THAT(notesOf(reading),
              ElementsAre("1:1 repaired x2: a quote that is not closed ends with its line"));
}

TEST(ReadingLists, LooksForTheEndOfAQuoteNotForEver) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) text += "a\" ,\"\n";
  text += "\",b\n";
  // Each of these lines leaves a quote open wherever it stands; half a MiB is looked through.
  EXPECT_TRUE(read(text));
}

TEST(ReadingLists, RefusesATableOfVertices) {
  const std::string error =
      "error 1:1 a table of vertices, which has no columns of sources and targets; the table of "
      "edges is what can be read";
  EXPECT_EQ(summaryOf(read("Id,Label,timeset\n1,Anna,\n2,Bert,\n")), error);
  EXPECT_EQ(summaryOf(read("Id\tWeight\n1\t2\n")), error);
  EXPECT_EQ(summaryOf(read("Id,Source,Target\n7,a,b\n")), "undirected 2: 0>1");
  EXPECT_EQ(summaryOf(read("id label\n")), "undirected 2: 0>1");
}

TEST(ReadingLists, AnEmptyFieldBetweenTabsIsAField) {
  const Reading reading = read("a\tb\tx\tred\na\tc\t\tblue\n");
  EXPECT_THAT(edgeTexts(reading, "Column 3"), ElementsAre("x", "<null>"));
  EXPECT_THAT(edgeTexts(reading, "Column 4"), ElementsAre("red", "blue"));
}

TEST(ReadingLists, WhatFollowsAQuoteBelongsToNoField) {
  const Reading reading = read("\"a\" x,b\n");
  EXPECT_EQ(summaryOf(reading), "undirected 2: 0>1");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("a", "b"));
}

TEST(ReadingLists, KeepsWhatIsWrittenLikeALabel) {
  for (const std::string label : {"07", "007", "-0", "+1"}) {
    const Reading reading = read("a b x " + label + "\nb c y 1\n");
    EXPECT_THAT(edgeTexts(reading, "Column 4"), ElementsAre(label, "1"));
  }
}

TEST(ReadingLists, AColumnThatEndsEarlyIsNotSetBelow) {
  const Reading reading = read("a b x 3\nb c y\n");
  EXPECT_THAT(edgeTexts(reading, "Column 4"), ElementsAre("3", "<null>"));
}

TEST(ReadingLists, TheTypesOfTheEdgesOverruleAComment) {
  EXPECT_EQ(summaryOf(read("# Directed graph\nsource,target,type\n1,2,Undirected\n")),
            "undirected 2: 0>1");
}

TEST(ReadingLists, ALineOfOneWordDoesNotHideTheList) {
  const Reading reading = read("graph\nhello world\n");
  EXPECT_EQ(reading.format(), FileFormat::kList);
  EXPECT_EQ(summaryOf(reading), "undirected 3: 0>1");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("hello", "world", "graph"));
}

TEST(ReadingLists, AStarBeforeANumberIsAName) {
  const Reading reading = read("*1 2\n");
  EXPECT_EQ(reading.format(), FileFormat::kList);
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("*1", "2"));
}

TEST(ReadingLists, ASlashAloneBeginsNoComment) {
  EXPECT_THAT(vertexTexts(read("/a b\n//a c\n"), "Name"), ElementsAre("/a", "b"));
}

TEST(ReadingLists, ATextWithANulIsNoList) {
  EXPECT_EQ(summaryOf(read(std::string("a b\0\n", 5))), "error 1:1 no format that is known");
}

TEST(ReadingLists, TakesMixedTypesForDirected) {
  const Reading reading = read("source,target,type\n1,2,Directed\n2,3,Undirected\n");
  EXPECT_EQ(summaryOf(reading), "directed 3: 0>1 1>2");
  EXPECT_THAT(notesOf(reading), ElementsAre("3:1 repaired x1: directed and undirected edges: all "
                                            "are taken for directed"));
}

TEST(ReadingLists, HeedsHeadersOfCollections) {
  EXPECT_EQ(summaryOf(read("% asym weighted\n% 2 3 3\n1 2 4\n2 3 5\n")),
            "directed 3: 0>1 1>2 w(4, 5)");
  EXPECT_EQ(summaryOf(read("% sym unweighted\n1 2\n")), "undirected 2: 0>1");
  EXPECT_EQ(summaryOf(read("# Directed graph (each pair once)\n# FromNodeId\tToNodeId\n0\t1\n")),
            "directed 2: 0>1");
}

TEST(ReadingLists, KeepsTheTwoModesOfABipartiteListApart) {
  const Reading reading = read("% bip unweighted\n% 2 2 3\n1 1\n2 3\n");
  EXPECT_EQ(summaryOf(reading), "undirected 5: 0>2 1>4");
  EXPECT_THAT(vertexTexts(reading, "Mode"), ElementsAre("1", "1", "2", "2", "2"));
}

TEST(ReadingLists, NumbersBothModesFromOne) {
  EXPECT_EQ(summaryOf(read("% bip unweighted\n0 1\n")), "error 2:1 the id 0 is below 1");
  // One word is a comment like any other.
  EXPECT_EQ(summaryOf(read("% bip\n0 1\n")), "undirected 2: 0>1");
}

TEST(ReadingLists, CountsBothModesAgainstTheLimit) {
  ReadOptions options;
  options.mostVertices = 5;
  EXPECT_EQ(summaryOf(read("% bip x\n% 1 2 3\n1 1\n", options)), "undirected 5: 0>2");
  EXPECT_EQ(summaryOf(read("% bip x\n% 1 3 3\n1 1\n", options)),
            "error 2:1 6 vertices, more than the 5 that are allowed");
  EXPECT_EQ(summaryOf(read("% bip x\n1 1\n1 7\n", options)),
            "error 3:3 8 vertices, more than the 5 that are allowed");
}

TEST(ReadingLists, IsDirectedWhereAsked) {
  ReadOptions options;
  options.directed = true;
  EXPECT_EQ(summaryOf(read("2 1\n", options)), "directed 2: 1>0");
}

TEST(ReadingLists, TakesASingleNameForAVertexWithoutEdges) {
  const Reading names = read("a b\nc\n");
  EXPECT_EQ(summaryOf(names), "undirected 3: 0>1");
  EXPECT_THAT(notesOf(names), ElementsAre("2:1 taken x1: the one end \"c\" is taken for a vertex "
                                          "without this edge"));
  const Reading ids = read("3 5\n4\n1\n");
  EXPECT_EQ(summaryOf(ids), "undirected 4: 1>3");
  EXPECT_THAT(vertexTexts(ids, "Id"), ElementsAre("1", "3", "4", "5"));
  EXPECT_THAT(notesOf(ids), ElementsAre("2:1 taken x2: the one end \"4\" is taken for a vertex "
                                        "without this edge"));
}

TEST(ReadingLists, TakesAMissingWeightForOne) {
  const Reading reading = read("a b 2\nb c\nc d x\n");
  EXPECT_EQ(summaryOf(reading), "undirected 4: 0>1 1>2 2>3 w(2, 1, 1)");
  EXPECT_THAT(notesOf(reading), ElementsAre("2:1 repaired x2: no weight is taken for 1"));
}

TEST(ReadingLists, TellsOfWeightsThatAFloatDoesNotHold) {
  const Reading rounded = read("1 2 0.1\n2 3 16777217\n");
  EXPECT_EQ(summaryOf(rounded), "undirected 3: 0>1 1>2 w(0.1, 16777216)");
  EXPECT_THAT(notesOf(rounded), ElementsAre("2:5 repaired x1: 1 weight is rounded to 32 bits: that "
                                            "of edge 1 from 16777217 to 16777216"));
  ReadOptions options;
  options.keepWeights = true;
  EXPECT_THAT(edgeTexts(read("1 2 0.5\n2 3 16777217\n", options), "Weight"),
              ElementsAre("0.5", "16777217"));
}

TEST(ReadingLists, KnowsWhichDecimalsAFloatHolds) {
  EXPECT_THAT(notesOf(read("1 2 9.401956\n2 3 15.999999\n3 4 1234.560000\n4 5 0.000001\n")),
              IsEmpty());
  // The longest of eight characters.
  EXPECT_THAT(
      notesOf(read("1 2 1.000001\n2 3 -9.99999\n3 4 10.00001\n4 5 15.99999\n5 6 .9999999\n")),
      IsEmpty());
  // From 16 on floats lie 2^-19, almost 0.000002, apart.
  EXPECT_THAT(notesOf(read("1 2 9.401956\n2 3 16.000001\n")),
              ElementsAre("2:5 repaired x1: 1 weight is rounded to 32 bits: that of edge 1 from "
                          "16.000001 to 16.000002"));
}

TEST(ReadingLists, MakesTheFirstNoteTheErrorWhereStrict) {
  ReadOptions options;
  options.strict = true;
  EXPECT_EQ(summaryOf(read("a b 2\nb c\n", options)), "error 2:1 no weight is taken for 1");
  EXPECT_TRUE(read("a b\nc\n", options));
}

TEST(ReadingLists, KeepsLargeNumbersOfManyDigitsAsNames) {
  const Reading reading = read("1234567890123456789012 1\n");
  EXPECT_THAT(vertexTexts(reading, "Name"), ElementsAre("1234567890123456789012", "1"));
}

TEST(ReadingLists, RefusesWhatHasNoEdge) {
  EXPECT_EQ(summaryOf(read("")), "error 1:1 the file is empty");
  EXPECT_EQ(summaryOf(read("word\n")), "error 1:1 no format that is known");
  EXPECT_EQ(summaryOf(readNetworkText("word\n", {}, "x.veqa")),
            "error 1:1 no format that is known");
  EXPECT_EQ(summaryOf(readNetworkText("word\n", {}, "x.graphml")),
            "error 1:1 no format that is known");
  EXPECT_EQ(summaryOf(read("# only a comment\n")), "error 1:1 no format that is known");
}

TEST(ReadingLists, RefusesMoreIndicesThanATextMayAskFor) {
  ReadOptions options;
  options.idsAreIndices = true;
  EXPECT_EQ(
      summaryOf(read("0 4000000000\n", options)),
      "error 1:3 4000000001 vertices, more than the 1000832 that a text of 13 bytes may have");
  // The line of the vertex that is one too many.
  options.mostVertices = 3;
  options.idsAreIndices = false;
  EXPECT_EQ(summaryOf(read("5 6\n6 7\n7 5\n9 5\n", options)),
            "error 4:1 4 vertices, more than the 3 that are allowed");
  EXPECT_EQ(summaryOf(read("a b\nb c\n\"d\" a\n", options)),
            "error 3:2 4 vertices, more than the 3 that are allowed");
}

TEST(ReadingLists, RefusesMoreUnsetCellsThanATextMayAskFor) {
  // 1700 columns that only the last of 1702 lines has are 2.9 million cells.
  std::string text = "source,target";
  for (int column = 0; column < 1700; ++column) text += ",c" + std::to_string(column);
  for (int row = 0; row < 1700; ++row) text += "\na,b";
  text += "\na,b";
  const std::string shorter = text + ",1\n";
  for (int column = 0; column < 1700; ++column) text += ",1";
  EXPECT_EQ(text.size(), 13U + 10 * 3 + 90 * 4 + 900 * 5 + 700 * 6 + 1701 * 4 + 1700 * 2);
  // 64 * 19307 + 10^6; the cell of column 1316, each of which has 1700 rows above, is one too many.
  EXPECT_EQ(summaryOf(read(text)),
            "error 1702:2635 columns with more than the 2235648 cells without a value that a text "
            "of 19307 bytes may have");
  EXPECT_THAT(edgeTexts(read(shorter), "c0"), testing::Contains("1").Times(1));
}

TEST(ReadingLists, SurvivesDamagedTexts) {
  const std::string text = "source,target,type,weight\n\"a\",b,Directed,1\nb,\"c\",,2.5\n% x\n";
  std::uint64_t networks = 0;
  forMutationsOf(text, {"\"", ",", "\n", "\t", "% bip x", "9999999999", "#"},
                 [&](const std::string& mutated) {
                   const Reading reading = read(mutated);
                   if (reading) networks += reading.value().countVertices() != 0;
                 });
  EXPECT_GT(networks, 1000U);
}

}  // namespace
}  // namespace veq::test::reading_lists_test
