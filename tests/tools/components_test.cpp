#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::components_test {
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

TEST(ComponentsCommand, SplitsIntoFilesWithTheirWeights) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  const std::string parts = directory.path("deep/parts");
  const ProgramRun run = runVeq({"components", file, "--split", parts, "--top", "0"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "veq: " + parts + ": 3 files written\n");
  EXPECT_EQ(contentsOf(parts + "/component-0.xnet"),
            "#vertices 3 nonweighted\n\"a\"\n\"c\"\n\"f\"\n#edges weighted directed\n"
            "1 0 1.500000\n1 2 3.500000\n");
  EXPECT_EQ(contentsOf(parts + "/component-1.xnet"),
            "#vertices 2 nonweighted\n\"b\"\n\"e\"\n#edges weighted directed\n1 0 2.500000\n");
  EXPECT_EQ(contentsOf(parts + "/component-2.xnet"),
            "#vertices 1 nonweighted\n\"d\"\n#edges weighted directed\n");
}

TEST(ComponentsCommand, ADirectoryThatCannotBeMadeIsAFailure) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  const ProgramRun run = runVeq({"components", file, "--split", file + "/parts"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: " + file + "/parts: Not a directory\n");
}

TEST(ComponentsCommand, OldPartsAreToldApartFromNewOnes) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  const std::string parts = directory.path("parts");
  std::filesystem::create_directory(parts);
  // Three components are written: 0 to 2. The last two names are not those of parts.
  for (const std::string name : {"component-1.xnet", "component-3.xnet", "component-10.xnet",
                                 "component-x.xnet", "component-4.net"}) {
    directory.write("parts/" + name, "old");
  }
  const ProgramRun run = runVeq({"components", file, "--split", parts, "--top", "0"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "veq: " + parts +
                            ": has parts of an earlier split: 1 is replaced, 2 stay\nveq: " +
                            parts + ": 3 files written\n");
  EXPECT_EQ(contentsOf(parts + "/component-3.xnet"), "old");
}

TEST(ComponentsCommand, APartNeverReplacesTheNetworkThatIsRead) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("component-1.xnet", kNetwork);
  const ProgramRun run = runVeq({"components", file, "--split", directory.path(""), "--top", "0"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.errors, "veq: --split would overwrite " + file + " (see veq components --help)\n");
  EXPECT_EQ(contentsOf(file), kNetwork);
  EXPECT_EQ(directory.names(), std::vector<std::string>{"component-1.xnet"});
}

TEST(ComponentsCommand, PartsMayHaveAnotherFormat) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", "#vertices 2\n#edges\n0 1\n");
  const ProgramRun run =
      runVeq({"components", file, "--split", directory.path("p"), "--to", "list", "--top", "0"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(contentsOf(directory.path("p/component-0.edges")), "0 1\r\n");
  EXPECT_EQ(runVeq({"components", file, "--to", "list"}).errors,
            "veq: --to needs --largest or --split (see veq components --help)\n");
}

TEST(ComponentsCommand, AnswersOtherPrograms) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", kNetwork);
  EXPECT_EQ(runVeq({"components", file, "--format", "csv", "--top", "2"}).output,
            "vertices,components,share\n3,1,0.5\n2,1,0.3333333333333333\n");
  EXPECT_EQ(runVeq({"components", file, "--format", "json", "--top", "1"}).output,
            "{\n"
            "  \"file\": \"" +
                file +
                "\",\n"
                "  \"vertices\": 6,\n"
                "  \"edges\": 3,\n"
                "  \"directed\": true,\n"
                "  \"components\": 3,\n"
                "  \"sizes\": [\n"
                "    {\n"
                "      \"vertices\": 3,\n"
                "      \"components\": 1,\n"
                "      \"share\": 0.5\n"
                "    }\n"
                "  ]\n"
                "}\n");
}

TEST(ComponentsCommand, TheLargestToStandardOutputPutsTheTableAside) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", "#vertices 3\n#edges\n0 1\n");
  const ProgramRun run =
      runVeq({"components", file, "--largest", "-", "--to", "xnet", "--top", "0"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output, "#vertices 2 nonweighted\n#edges nonweighted undirected\n0 1\n");
  EXPECT_EQ(run.errors, "3 vertices, 1 edge, undirected\n2 components\n");
}

}  // namespace
}  // namespace veq::test::components_test
