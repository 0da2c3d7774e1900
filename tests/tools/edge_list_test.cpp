#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test {
namespace {

struct Reading {
  std::string notes;
  std::string xnet;
};

/// Converts an edge list of these bytes to xnet; "FILE" stands for its path in the notes.
Reading read(const std::string& bytes, const std::vector<std::string>& options = {}) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("list.txt", bytes);
  std::vector<std::string> arguments{"convert", file, directory.path("n.xnet")};
  arguments.insert(arguments.end(), options.begin(), options.end());
  std::string notes = runVeq(arguments).errors;
  if (const std::size_t at = notes.find(file); at != std::string::npos) {
    notes.replace(at, file.size(), "FILE");
  }
  return {notes, contentsOf(directory.path("n.xnet"))};
}

TEST(EdgeLists, OfTwoColumnsAreReadWhole) {
  const Reading reading = read("0 1\n1 2\n3 4\n");
  EXPECT_EQ(reading.notes, "");
  EXPECT_EQ(reading.xnet,
            "#vertices 5 nonweighted\n\"0\"\n\"1\"\n\"2\"\n\"3\"\n\"4\"\n"
            "#edges nonweighted undirected\n0 1\n1 2\n3 4\n");
}

TEST(EdgeLists, HaveWeightsInAThirdColumn) {
  const Reading reading = read("b a 0.5\nb c +2e1\n", {"--directed"});
  EXPECT_EQ(reading.notes, "");
  EXPECT_EQ(reading.xnet,
            "#vertices 3 nonweighted\n\"b\"\n\"a\"\n\"c\"\n"
            "#edges weighted directed\n0 1 0.500000\n0 2 20.000000\n");
}

TEST(EdgeLists, MayHaveByteOrderMarksTabsBlankLinesAndAnyLineEnds) {
  const Reading reading = read("\xef\xbb\xbf  a\tb  \r\n\r\n \t\r c d\n\na  c");
  EXPECT_EQ(reading.notes, "");
  EXPECT_EQ(reading.xnet,
            "#vertices 4 nonweighted\n\"a\"\n\"b\"\n\"c\"\n\"d\"\n"
            "#edges nonweighted undirected\n0 1\n2 3\n0 2\n");
}

TEST(EdgeLists, SkipCommentsAndFurtherColumnsAndSaySo) {
  EXPECT_EQ(read("# nodes: 3\n% more\na b\n").notes,
            "veq: FILE: 2 lines that begin with # or % skipped\n");
  EXPECT_EQ(read("a b 1 2001\na c 1\n").notes,
            "veq: FILE: columns after the third ignored in 1 line\n");
}

TEST(EdgeLists, ThatAreNoneSayWhere) {
  const std::string none = "veq: FILE: not a valid edge list: ";
  EXPECT_EQ(read("").notes, none + "it has no edges\n");
  EXPECT_EQ(read(" \n\t\n").notes, none + "it has no edges\n");
  EXPECT_EQ(read("a b\r\nc\r\n").notes,
            none + "line 2 has one column where two vertices are needed\n");
  EXPECT_EQ(read("a b\nc d 1\n").notes, none + "line 2 has a weight, unlike the lines before\n");
  EXPECT_EQ(read("a b 1\n\nc d\n").notes, none + "line 3 has no weight, unlike the lines before\n");
  EXPECT_EQ(read("a b friend\n").notes, none + "line 1 has a weight that is no number: friend\n");
  for (const std::string weight : {"nan", "inf", "1e99", "1,5", "0x1", "+-1"}) {
    EXPECT_EQ(read("a b " + weight).notes,
              none + "line 1 has a weight that is no number: " + weight + "\n");
  }
  EXPECT_EQ(read("a\xff b\n").notes, "veq: FILE: not UTF-8\n");
}

}  // namespace
}  // namespace veq::test
