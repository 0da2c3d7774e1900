#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/reading_support.hpp"

namespace veq::test::reading_matrix_market_test {
namespace {

Reading read(const std::string& banner, const std::string& rest) {
  return readNetworkText("%%MatrixMarket matrix " + banner + "\n" + rest);
}

TEST(ReadingMatrixMarket, ReadsGeneralMatricesAsDirected) {
  const Reading reading =
      read("coordinate real general", "% comment\n\n3 3 2\n1 2 0.5\n3 3 -1e2\n");
  EXPECT_EQ(reading.format(), FileFormat::kMatrixMarket);
  EXPECT_EQ(summaryOf(reading), "directed 3: 0>1 2>2 w(0.5, -100)");
}

TEST(ReadingMatrixMarket, ReadsSymmetricMatricesAsUndirected) {
  EXPECT_EQ(summaryOf(read("coordinate pattern symmetric", "3 3 2\n2 1\n3 3\n")),
            "undirected 3: 1>0 2>2");
  const Reading above = read("coordinate pattern symmetric", "3 3 1\n1 2\n");
  EXPECT_EQ(summaryOf(above), "undirected 3: 0>1");
  EXPECT_THAT(notesOf(above), ElementsAre("3:1 repaired x1: an entry above the diagonal of a "
                                          "symmetric matrix is taken for one more edge"));
}

TEST(ReadingMatrixMarket, ReadsSkewMatricesAsPairsOfArcs) {
  EXPECT_EQ(summaryOf(read("coordinate integer skew-symmetric", "2 2 1\n2 1 7\n")),
            "directed 2: 1>0 0>1 w(7, -7)");
  EXPECT_EQ(summaryOf(read("array real skew-symmetric", "3 3\n4\n0\n5\n")),
            "directed 3: 1>0 0>1 2>1 1>2 w(4, -4, 5, -5)");
}

TEST(ReadingMatrixMarket, AnEntryOnTheDiagonalIsItsOwnImage) {
  EXPECT_EQ(summaryOf(read("coordinate integer skew-symmetric", "2 2 1\n1 1 3\n")),
            "directed 2: 0>0 w(3)");
  // Below the diagonal of one cell there is nothing; a matrix of numbers has weights all the same.
  EXPECT_EQ(summaryOf(read("array real skew-symmetric", "1 1\n")), "directed 1: w()");
}

TEST(ReadingMatrixMarket, ReadsRectanglesWithTwoModes) {
  const Reading reading = read("coordinate pattern general", "2 3 2\n1 1\n2 3\n");
  EXPECT_EQ(summaryOf(reading), "undirected 5: 0>2 1>4");
  EXPECT_THAT(vertexTexts(reading, "Mode"), ElementsAre("1", "1", "2", "2", "2"));
}

TEST(ReadingMatrixMarket, ReadsArraysColumnByColumn) {
  EXPECT_EQ(summaryOf(read("array real general", "2 2\n1\n2\n0\n4\n")),
            "directed 2: 0>0 1>0 1>1 w(1, 2, 4)");
  EXPECT_EQ(summaryOf(read("array integer symmetric", "2 2\n1\n2\n3\n")),
            "undirected 2: 0>0 1>0 1>1 w(1, 2, 3)");
}

TEST(ReadingMatrixMarket, RefusesWhatItCannotHold) {
  EXPECT_EQ(summaryOf(read("coordinate complex general", "1 1 1\n1 1 0 1\n")),
            "error 1:1 a matrix that is complex is not read");
  EXPECT_EQ(summaryOf(read("coordinate real hermitian", "1 1 0\n")),
            "error 1:1 a matrix that is hermitian is not read");
  EXPECT_EQ(summaryOf(read("array pattern general", "1 1\n")),
            "error 1:1 an array cannot be a pattern");
}

TEST(ReadingMatrixMarket, RefusesWhatDoesNotFitItsSize) {
  EXPECT_EQ(summaryOf(read("coordinate pattern general", "2 2 1\n1 3\n")),
            "error 3:3 3 in a matrix of 2 rows and 2 columns");
  EXPECT_EQ(summaryOf(read("coordinate pattern general", "2 2 1\n0 1\n")),
            "error 3:1 0 in a matrix of 2 rows and 2 columns");
  EXPECT_EQ(summaryOf(read("coordinate pattern general", "2 2 2\n1 1\n")),
            "error 2:1 1 entries instead of 2");
  EXPECT_EQ(summaryOf(read("coordinate pattern general", "2 2 1\n1 1\n1 2\n")),
            "error 4:1 more than the 1 entries of line 2");
  EXPECT_EQ(summaryOf(read("array real general", "1 2\n1\n")),
            "error 2:1 fewer numbers than those of 1 rows and 2 columns");
  EXPECT_EQ(summaryOf(read("array real general", "1 1\n1\n2\n")),
            "error 4:1 more numbers than those of 1 rows and 1 columns");
  EXPECT_EQ(summaryOf(read("coordinate pattern symmetric", "2 3 0\n")),
            "error 2:1 a matrix of 2 rows and 3 columns cannot be symmetric");
  EXPECT_EQ(summaryOf(read("coordinate pattern general", "")),
            "error 1:1 no line with the size of the matrix");
}

TEST(ReadingMatrixMarket, RefusesMoreVerticesThanATextMayAskFor) {
  EXPECT_EQ(
      summaryOf(read("coordinate pattern general", "3000000000 3000000000 0\n")),
      "error 2:1 3000000000 vertices, more than the 1004672 that a text of 73 bytes may have");
}

TEST(ReadingMatrixMarket, CountsRowsAndColumnsOfARectangle) {
  ReadOptions options;
  options.mostVertices = 4;
  const std::string banner = "%%MatrixMarket matrix coordinate pattern general\n";
  EXPECT_EQ(summaryOf(readNetworkText(banner + "1 3 0\n", options)), "undirected 4:");
  EXPECT_EQ(summaryOf(readNetworkText(banner + "2 3 0\n", options)),
            "error 2:1 5 vertices, more than the 4 that are allowed");
}

TEST(ReadingMatrixMarket, SurvivesDamagedTexts) {
  std::uint64_t networks = 0;
  for (const std::string kind : {"coordinate real symmetric\n3 3 2\n2 1 0.5\n3 2 1\n",
                                 "array real skew-symmetric\n3 3\n4\n0\n5\n"}) {
    forMutationsOf("%%MatrixMarket matrix " + kind, {"array", "-", "99999999999", "\n", " "},
                   [&](const std::string& mutated) {
                     const Reading reading = readNetworkText(mutated);
                     if (reading) networks += reading.value().countVertices() != 0;
                   });
  }
  EXPECT_GT(networks, 100U);
}

}  // namespace
}  // namespace veq::test::reading_matrix_market_test
