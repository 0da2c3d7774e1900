#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test {
namespace {

// Three components: 0-2-5 in a row, 1-4, and 3 alone.
const std::string kNetwork =
    "#vertices 6\n\"a\"\n\"b\"\n\"c\"\n\"d\"\n\"e\"\n\"f\"\n#edges weighted directed\n"
    "2 0 1.5\n4 1 2.5\n2 5 3.5\n";

TEST(ComponentsCommand, ListsSizes) {
  const TemporaryDirectory directory;
  const ProgramRun run = runVeq({"components", directory.write("n.xnet", kNetwork)});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "6 vertices, 3 edges, directed\n"
            "3 components\n"
            "\n"
            "vertices  components  share of all vertices\n"
            "3                  1                50.00 %\n"
            "2                  1                33.33 %\n"
            "1                  1                16.67 %\n");
}

TEST(ComponentsCommand, ListsAsManySizesAsAskedFor) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  EXPECT_EQ(runVeq({"components", file, "--top", "0"}).output,
            "6 vertices, 3 edges, directed\n3 components\n");
  EXPECT_EQ(runVeq({"components", file, "--top", "1"}).output,
            "6 vertices, 3 edges, directed\n"
            "3 components\n"
            "\n"
            "vertices  components  share of all vertices\n"
            "3                  1                50.00 %\n"
            "and 2 smaller sizes\n");
}

TEST(ComponentsCommand, WritesTheLargestWithItsWeights) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  const std::string largest = directory.path("largest.xnet");
  const ProgramRun run = runVeq({"components", file, "--largest", largest});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(contentsOf(largest),
            "#vertices 3 nonweighted\n\"a\"\n\"c\"\n\"f\"\n#edges weighted directed\n"
            "1 0 1.500000\n1 2 3.500000\n");
}

TEST(ComponentsCommand, SplitsIntoFilesWithoutWeightsAndSaysSo) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  const std::string parts = directory.path("deep/parts");
  const ProgramRun run = runVeq({"components", file, "--split", parts, "--top", "0"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "veq: " + parts + ": the weights are lost in these files\n");
  EXPECT_EQ(
      contentsOf(parts + "/component-0.xnet"),
      "#vertices 3 nonweighted\n\"a\"\n\"c\"\n\"f\"\n#edges nonweighted directed\n1 0\n1 2\n");
  EXPECT_EQ(contentsOf(parts + "/component-1.xnet"),
            "#vertices 2 nonweighted\n\"b\"\n\"e\"\n#edges nonweighted directed\n1 0\n");
  EXPECT_EQ(contentsOf(parts + "/component-2.xnet"),
            "#vertices 1 nonweighted\n\"d\"\n#edges nonweighted directed\n");
}

TEST(ComponentsCommand, ADirectoryThatCannotBeMadeIsAFailure) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  const ProgramRun run = runVeq({"components", file, "--split", file + "/parts"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: " + file + "/parts: cannot be made a directory\n");
}

}  // namespace
}  // namespace veq::test
