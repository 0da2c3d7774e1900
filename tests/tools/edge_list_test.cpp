#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::edge_list_test {
namespace {

struct ProgramReading {
  std::string notes;
  std::string xnet;
};

/// Converts an edge list of these bytes to xnet; "FILE" stands for its path in the notes.
ProgramReading read(const std::string& bytes, const std::vector<std::string>& options = {}) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("list.txt", bytes);
  std::vector<std::string> arguments{"convert", file, directory.path("n.xnet")};
  arguments.insert(arguments.end(), options.begin(), options.end());
  std::string notes = runVeq(arguments).errors;
  for (std::size_t at = 0; (at = notes.find(file)) != std::string::npos;) {
    notes.replace(at, file.size(), "FILE");
  }
  return {notes, contentsOf(directory.path("n.xnet"))};
}

TEST(EdgeLists, OfTwoColumnsAreReadWhole) {
  const ProgramReading reading = read("0 1\n1 2\n3 4\n");
  EXPECT_EQ(reading.notes, "");
  EXPECT_EQ(reading.xnet,
            "#vertices 5 nonweighted\n#edges nonweighted undirected\n0 1\n1 2\n3 4\n"
            "#v \"Id\" n\n0\n1\n2\n3\n4\n");
}

TEST(EdgeLists, HaveWeightsInAThirdColumn) {
  const ProgramReading reading = read("b a 0.5\nb c +2e1\n", {"--directed"});
  EXPECT_EQ(reading.notes, "");
  EXPECT_EQ(reading.xnet,
            "#vertices 3 nonweighted\n\"b\"\n\"a\"\n\"c\"\n"
            "#edges weighted directed\n0 1 0.500000\n0 2 20.000000\n");
}

TEST(EdgeLists, SayWhatWasMadeOfOddLines) {
  const ProgramReading reading = read("a b 2\nb c\nc d\ne\n");
  EXPECT_EQ(reading.notes,
            "FILE:2: no weight is taken for 1 (2 times)\n"
            "FILE:4: the one end \"e\" is taken for a vertex without this edge\n");
  EXPECT_EQ(reading.xnet,
            "#vertices 5 nonweighted\n\"a\"\n\"b\"\n\"c\"\n\"d\"\n\"e\"\n"
            "#edges weighted undirected\n0 1 2.000000\n1 2 1.000000\n2 3 1.000000\n");
  EXPECT_EQ(read("a b 2\nb c\n", {"--quiet"}).notes, "");
}

TEST(EdgeLists, AreRefusedForTheFirstRepairWhereStrict) {
  const ProgramReading reading = read("a b 2\nb c\n", {"--strict"});
  EXPECT_EQ(reading.notes, "veq: FILE:2: no weight is taken for 1\n");
  EXPECT_EQ(reading.xnet, "");
}

TEST(EdgeLists, ThatAreNoneSayWhy) {
  EXPECT_EQ(read("").notes, "veq: FILE:1: the file is empty\n");
  EXPECT_EQ(read("word\n").notes, "veq: FILE:1: no list of edges: no line has two columns\n");
}

}  // namespace
}  // namespace veq::test::edge_list_test
