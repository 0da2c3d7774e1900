#include <gtest/gtest.h>

#include "tests/tools/program.hpp"

namespace veq::test {
namespace {

const std::string kData = VEQ_DATA;

TEST(InfoCommand, KarateClubHas34VerticesAnd78Edges) {
  const ProgramRun run = runVeq({"info", kData + "/karate.xnet"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  // 78 of 34 * 33 / 2 = 561 pairs; the mean degree is 156 / 34.
  EXPECT_EQ(run.output,
            "Network:\n"
            "Number of Vertices:34 \n"
            "Number of Edges:78  \n"
            "Vertices:\n"
            "Vertices Properties:\"Name\" \"Club\" \n"
            "Edges Properties:\n"
            "\n"
            "vertices            34\n"
            "edges               78\n"
            "density             0.139037\n"
            "degree              1 to 17, mean 4.58824\n"
            "vertex properties   Name, Club\n"
            "edge properties     none\n");
}

TEST(InfoCommand, LesMiserablesHas77NamedVerticesAnd254WeightedEdges) {
  const ProgramRun run = runVeq({"info", kData + "/lesmis.xnet"});
  EXPECT_EQ(run.exitCode, 0);
  // 254 of 77 * 76 / 2 = 2926 pairs; the mean degree is 508 / 77.
  EXPECT_EQ(run.output,
            "Network:\n"
            "Number of Vertices:77 \n"
            "Number of Edges:254 (Weighted) \n"
            "Vertices:\n"
            "Vertices Properties:\"Name\" \n"
            "Edges Properties:\n"
            "\n"
            "vertices            77\n"
            "edges               254\n"
            "density             0.0868079\n"
            "degree              1 to 36, mean 6.5974\n"
            "vertex properties   Name\n"
            "edge properties     none\n");
}

TEST(InfoCommand, DirectedNetworksListBothDegreesAndTheMatrixShowsSourcesAsRows) {
  const TemporaryDirectory directory;
  const std::string file =
      directory.write("d.xnet", "#vertices 3\n#edges directed\n0 1\n0 2\n0 0\n");
  const ProgramRun run = runVeq({"info", file, "--matrix"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output,
            "Network:\n"
            "Number of Vertices:3 \n"
            "Number of Edges:3  (Directed)\n"
            "Vertices:\n"
            "Vertices Properties:\n"
            "Edges Properties:\n"
            "\n"
            "vertices            3\n"
            "edges               3\n"
            "density             0.5\n"
            "out-degree          0 to 3, mean 1\n"
            "in-degree           1 to 1, mean 1\n"
            "vertex properties   none\n"
            "edge properties     none\n"
            "\n"
            "1.000000  1.000000  1.000000  \n"
            "0.000000  0.000000  0.000000  \n"
            "0.000000  0.000000  0.000000  \n");
}

TEST(InfoCommand, OneVertexHasNoDensity) {
  const TemporaryDirectory directory;
  const ProgramRun run = runVeq({"info", directory.write("empty.xnet", "")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find("\ndensity             -\n"), std::string::npos);
}

TEST(InfoCommand, MatrixIsRefusedAboveAThousandVertices) {
  const TemporaryDirectory directory;
  const std::string largest = directory.write("largest.xnet", "#vertices 1000\n");
  EXPECT_EQ(runVeq({"info", largest, "--matrix"}).exitCode, 0);
  const std::string file = directory.write("large.xnet", "#vertices 1001\n");
  const ProgramRun run = runVeq({"info", file, "--matrix"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "veq: " + file +
                            ": too large for --matrix: it has 1001 vertices, and 1000 is the "
                            "limit\n");
}

TEST(InfoCommand, KeysCannotSteerTheTerminal) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("keys.xnet", "#vertices 1\n#v \"a\x1b[2J\" n\n1\n");
  const ProgramRun run = runVeq({"info", file});
  EXPECT_NE(run.output.find("\nvertex properties   a?[2J\n"), std::string::npos);
}

}  // namespace
}  // namespace veq::test
