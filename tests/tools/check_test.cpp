#include <gtest/gtest.h>

#include <string>

#include "tests/tools/program.hpp"

namespace veq::test::check_test {
namespace {

/// A network that xnet keeps whole; Pajek and others do not.
const std::string kXnet =
    "#vertices 3 weighted\n\"a\" 1\n\"b\" 2\n\"c\" 3\n#edges weighted\n0 1 2.5\n#v \"age\" "
    "n\n7\n8\n9\n";

TEST(CheckCommand, SaysWhatEachFormatKeeps) {
  const TemporaryDirectory directory;
  const ProgramRun run = runVeq({"check", directory.write("n.xnet", kXnet)});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "format              xnet\n"
            "network             3 vertices, 1 edge, undirected\n"
            "as xnet             keeps everything\n"
            "as pajek            loses: the weights of vertices are lost\n"
            "                    loses: the vertex property \"age\" is lost\n"
            "as list             loses: 1 vertex without edges is lost\n"
            "                    loses: the weights of vertices are lost\n"
            "                    loses: the vertex property \"Name\" is lost\n"
            "                    loses: the vertex property \"age\" is lost\n"
            "as matrix-market    loses: the weights of vertices are lost\n"
            "                    loses: the vertex property \"Name\" is lost\n"
            "                    loses: the vertex property \"age\" is lost\n"
            "as gml              keeps, but: the vertex property \"Id\" is added\n"
            "as graphml          keeps everything\n"
            "as archive          keeps everything\n"
            "as csv              loses: 1 vertex without edges is lost\n"
            "                    loses: the weights of vertices are lost\n"
            "                    loses: the vertex property \"age\" is lost\n");
}

TEST(CheckCommand, SaysEverythingOddAndEndsWithItsOwnCode) {
  const TemporaryDirectory directory;
  // No count, a label without quotes, a section that no network holds.
  const std::string file =
      directory.write("n.net", "*Vertices\n1 a\n2 \"b\"\n*Edges\n1 2\n*Cluster c\n1\n2\n");
  ProgramRun run = runVeq({"check", file});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output.substr(0, run.output.find("as xnet")),
            "format              pajek\n"
            "network             2 vertices, 1 edge, undirected\n"
            "taken               line 1: no number of vertices: 2 from the lines\n"
            "left out            line 6: the section *Cluster is left out\n");
  run = runVeq({"check", "--quiet", file});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.output, "");
  run = runVeq({"check", "--strict", file});
  EXPECT_EQ(run.exitCode, 1);
}

TEST(CheckCommand, AnswersAsJson) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.el", "# a comment\n1 2 0.5\n1 x\n");
  const ProgramRun run = runVeq({"check", "--format", "json", file});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.output.substr(0, run.output.find("    \"pajek\"")),
            "{\n"
            "  \"file\": \"" +
                file +
                "\",\n"
                "  \"format\": \"list\",\n"
                "  \"title\": \"\",\n"
                "  \"directed\": false,\n"
                "  \"vertices\": 3,\n"
                "  \"edges\": 2,\n"
                "  \"notes\": [\n"
                "    {\n"
                "      \"kind\": \"repaired\",\n"
                "      \"line\": 3,\n"
                "      \"text\": \"no weight is taken for 1\",\n"
                "      \"count\": 1\n"
                "    }\n"
                "  ],\n"
                "  \"formats\": {\n"
                "    \"xnet\": {\n"
                "      \"written\": true,\n"
                "      \"reason\": null,\n"
                "      \"lost\": [],\n"
                "      \"changed\": []\n"
                "    },\n");
  EXPECT_NE(run.output.find("    \"list\": {\n"
                            "      \"written\": true,\n"
                            "      \"reason\": null,\n"
                            "      \"lost\": [\n"
                            "        \"the vertex property \\\"Name\\\" is lost\"\n"
                            "      ],\n"),
            std::string::npos);
}

TEST(CheckCommand, SaysWhyAFileCannotBeRead) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.net", "*Vertices 2\n*Edges\n1 9\n");
  const ProgramRun run = runVeq({"check", file});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "veq: " + file + ":3: vertex 9 of 2\n");
}

}  // namespace
}  // namespace veq::test::check_test
