#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/formats/reading_support.hpp"

namespace veq::test::reading_xnet_test {
namespace {

std::string xnetSummary(std::string text, const ReadOptions& options = {}) {
  return summaryOf(readNetworkText(std::move(text), options));
}

TEST(ReadingXnet, SaysTheNumberThatAsksForTooManyVertices) {
  // 64 for each byte and a million.
  EXPECT_EQ(xnetSummary("#vertices 99999999999999999999\n"),
            "error 1:11 99999999999999999999 vertices, more than the 1001984 that a text of 31 "
            "bytes may have");
  EXPECT_EQ(xnetSummary("#vertices 2\n#edges\n0 1\n0 99999999999999999999\n"),
            "error 4:3 an index of 99999999999999999999, more than the 1002944 that a text of 46 "
            "bytes may have");
  ReadOptions options;
  options.mostVertices = 4;
  EXPECT_EQ(xnetSummary("#vertices 2\n#edges\n4 1\n0 5\n", options),
            "error 4:3 an index of 5, more than the 4 that are allowed");
  EXPECT_EQ(xnetSummary("#vertices 2\n#edges\n3 1\n", options), "undirected 4: 3>1");
}

TEST(ReadingXnet, SaysWhichNumberCannotBe) {
  EXPECT_EQ(xnetSummary("#vertices 2\n#edges\n0 1\n1 -1\n0 1\n"),
            "error 4:3 an index that cannot be: \"-1\"");
  EXPECT_EQ(xnetSummary("#vertices -3\n#edges\n0 1\n"),
            "error 1:11 a number of vertices that cannot be: \"-3\"");
}

TEST(ReadingXnet, SaysOfWhichSectionTheWeightsAreTooFew) {
  EXPECT_EQ(xnetSummary("#vertices 3 weighted\n\"a\" 1\n\"b\" 2\n#edges\n0 1\n"),
            "error 1:1 2 weights for 3 vertices");
}

TEST(ReadingXnet, SaysWhereItEndsTooEarly) {
  const std::string error = " no number of vertices, or an empty name or key";
  EXPECT_EQ(xnetSummary("#vertices"), "error 1:10" + error);
  EXPECT_EQ(xnetSummary("#vertices 2\n#edges\n0 1\n#v"), "error 4:3" + error);
}

TEST(ReadingXnet, IsNoTextWithoutAHeader) {
  ReadOptions options;
  options.format = FileFormat::kXnet;
  const std::string error = "error 1:1 no header of xnet, such as #vertices or #edges";
  EXPECT_EQ(xnetSummary("a b\nb c\n", options), error);
  EXPECT_EQ(xnetSummary("# 3\n#\n\n", options), error);
  EXPECT_EQ(xnetSummary("\v#Vertices 2", options), "undirected 2:");
  EXPECT_EQ(xnetSummary("first\n#edges\n0 1\n", options), "undirected 2: 0>1");
}

TEST(ReadingXnet, LeavesOutColumnsThatAreCalledAsWeightsAre) {
  const Reading reading =
      readNetworkText("#vertices 1\n#edges\n0 0\n#e \"Edge Weight\" n\n2\n#v \"Edge To\" n\n7\n");
  EXPECT_THAT(
      notesOf(reading),
      testing::ElementsAre(
          "4:5 left out x1: the column \"Edge Weight\" is left out, because weights and ends have "
          "such names",
          "6:5 left out x1: the column \"Edge To\" is left out, because weights and ends have such "
          "names"));
}

TEST(ReadingXnet, CountsLinesThatEndWithCarriageReturns) {
  EXPECT_EQ(xnetSummary("#vertices 2\r\"a\"\r\"\"\r"),
            "error 3:2 no number of vertices, or an empty name or key");
}

}  // namespace
}  // namespace veq::test::reading_xnet_test
