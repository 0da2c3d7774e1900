#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "tests/tools/program.hpp"

namespace veq::test::info_test {
namespace {

const std::string kData = VEQ_DATA;

TEST(InfoCommand, KarateClubHas34VerticesAnd78Edges) {
  const ProgramRun run = runVeq({"info", kData + "/karate.xnet"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  // 78 of 34 * 33 / 2 = 561 pairs; the mean degree is 156 / 34. NetworkX counts the assortativity,
  // -0.475613097685, the clustering, 0.570638478208, the transitivity, 0.255681818182, and the
  // distances, on average 2.408199643494 and 5 at most.
  EXPECT_EQ(run.output,
            "direction           undirected\n"
            "weights             none\n"
            "vertices            34\n"
            "edges               78\n"
            "components          1\n"
            "self-loops          0\n"
            "parallel edges      0\n"
            "density             0.139037\n"
            "degree              1 to 17, mean 4.58824\n"
            "assortativity       -0.475613\n"
            "clustering          0.570638\n"
            "transitivity        0.255682\n"
            "mean distance       2.4082\n"
            "diameter            5\n"
            "vertex property     Name: text, as 1\n"
            "vertex property     Club: text, as Mr. Hi\n");
}

TEST(InfoCommand, LesMiserablesHas77NamedVerticesAnd254WeightedEdges) {
  const ProgramRun run = runVeq({"info", kData + "/lesmis.xnet"});
  EXPECT_EQ(run.exitCode, 0);
  // 254 of 77 * 76 / 2 = 2926 pairs; the mean degree is 508 / 77. NetworkX counts the strengths:
  // 1 to 158, mean 21.2987012987; the weights: 1 to 31, mean 3.22834645669; and what does not
  // depend on weights: -0.165225134422, 0.573136749932, 0.498931623932, 2.641148325359 and 5.
  EXPECT_EQ(run.output,
            "direction           undirected\n"
            "weights             of edges\n"
            "vertices            77\n"
            "edges               254\n"
            "components          1\n"
            "self-loops          0\n"
            "parallel edges      0\n"
            "density             0.0868079\n"
            "degree              1 to 36, mean 6.5974\n"
            "strength            1 to 158, mean 21.2987\n"
            "edge weight         1 to 31, mean 3.22835\n"
            "assortativity       -0.165225\n"
            "clustering          0.573137\n"
            "transitivity        0.498932\n"
            "mean distance       2.64115\n"
            "diameter            5\n"
            "vertex property     Name: text, as Napoleon\n");
}

TEST(InfoCommand, DirectedNetworksListBothDegreesAndTheMatrixShowsSourcesAsRows) {
  const TemporaryDirectory directory;
  const std::string file =
      directory.write("d.xnet", "#vertices 3\n#edges directed\n0 1\n0 2\n0 0\n");
  const ProgramRun run = runVeq({"info", file, "--raw", "--matrix"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output,
            "direction           directed\n"
            "weights             none\n"
            "vertices            3\n"
            "edges               3\n"
            "components          1\n"
            "strong components   3\n"
            "self-loops          1\n"
            "parallel edges      0\n"
            "density             0.5\n"
            "out-degree          0 to 3, mean 1\n"
            "in-degree           1 to 1, mean 1\n"
            "reciprocity         0\n"
            "clustering          0\n"
            "transitivity        0\n"
            "mean distance       1\n"
            "diameter            1\n"
            "\n"
            "Network:\n"
            "Number of Vertices:3 \n"
            "Number of Edges:3  (Directed)\n"
            "Vertices:\n"
            "Vertices Properties:\n"
            "Edges Properties:\n"
            "\n"
            "1.000000  1.000000  1.000000  \n"
            "0.000000  0.000000  0.000000  \n"
            "0.000000  0.000000  0.000000  \n");
}

TEST(InfoCommand, CountsWhatANetworkHasMoreThanOnce) {
  const TemporaryDirectory directory;
  // 0-1 three times, also from its other end, a self-loop twice, and 3 alone: 5 edges between 4
  // vertices, so that the density is 5 / 6.
  const ProgramRun run =
      runVeq({"info", directory.write("u.xnet", "#vertices 4\n#edges\n0 1\n1 0\n0 1\n2 2\n2 2\n")});
  EXPECT_EQ(run.output,
            "direction           undirected\n"
            "weights             none\n"
            "vertices            4\n"
            "edges               5\n"
            "components          3\n"
            "self-loops          2\n"
            "parallel edges      3\n"
            "density             0.833333\n"
            "degree              0 to 4, mean 2.5\n"
            "assortativity       1\n"
            "clustering          0\n"
            "transitivity        0\n"
            "mean distance       1\n"
            "diameter            1\n");
}

TEST(InfoCommand, ReciprocityLeavesSelfLoopsOut) {
  const TemporaryDirectory directory;
  // Of six arcs 2 -> 2 is a self-loop; 0 -> 1 twice and 1 -> 0 have a reverse, 1 -> 2 and 2 -> 3
  // have none: 3 of 5. Only the second 0 -> 1 repeats another.
  const std::string file =
      directory.write("d.xnet", "#vertices 4\n#edges directed\n0 1\n1 0\n0 1\n1 2\n2 3\n2 2\n");
  const std::string output = runVeq({"info", file}).output;
  EXPECT_NE(output.find("\nreciprocity         0.6\n"), std::string::npos) << output;
  EXPECT_NE(output.find("\nparallel edges      1\n"), std::string::npos);
  EXPECT_NE(output.find("\nself-loops          1\n"), std::string::npos);
  EXPECT_NE(output.find("\ncomponents          1\n"), std::string::npos);
}

TEST(InfoCommand, ADensityAbove1SaysWhy) {
  const TemporaryDirectory directory;
  const ProgramRun run =
      runVeq({"info", directory.write("n.xnet", "#vertices 2\n#edges\n0 1\n0 1\n1 1\n")});
  EXPECT_NE(
      run.output.find("\ndensity             3, above 1 as parallel edges and self-loops count\n"),
      std::string::npos);
}

TEST(InfoCommand, OneVertexHasNoDensity) {
  const TemporaryDirectory directory;
  const ProgramRun run = runVeq({"info", directory.write("one.xnet", "#vertices 1\n")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find("\ndensity             -\n"), std::string::npos);
}

TEST(InfoCommand, ColumnsSayTheirKindAndGiveAnExample) {
  const TemporaryDirectory directory;
  const std::string text(50, 'x');
  const std::string file = directory.write(
      "n.xnet", "#vertices 2 weighted\n2\n3\n#edges weighted directed\n0 1 4\n#v \"text\" s\n\"" +
                    text + "\"\n\"b\"\n#v \"size\" n\n0.5\n2\n#v \"place\" v3\n1 2 3\n4 5 6\n");
  const std::string output = runVeq({"info", file}).output;
  EXPECT_EQ(output.substr(output.find("density")),
            "density             0.5\n"
            "out-degree          0 to 1, mean 0.5\n"
            "in-degree           0 to 1, mean 0.5\n"
            "out-strength        0 to 4, mean 2\n"
            "in-strength         0 to 4, mean 2\n"
            "edge weight         4 to 4, mean 4\n"
            "vertex weight       2 to 3, mean 2.5\n"
            "reciprocity         0\n"
            "clustering          0\n"
            "transitivity        0\n"
            "mean distance       1\n"
            "diameter            1\n"
            "vertex property     text: text, as " +
                std::string(40, 'x') +
                "...\n"
                "vertex property     size: numbers, as 0.5\n"
                "vertex property     place: 3D vectors, as 1 2 3\n");
  EXPECT_NE(output.find("\nweights             of vertices and edges\n"), std::string::npos);
}

TEST(InfoCommand, APlainNameStandsForANetworkThatComesWithTheProgram) {
  const TemporaryDirectory directory;
  const std::string veq = "cd '" + directory.path("") + "' && '" VEQ_PROGRAM "' info ";
  const ProgramRun run = runShell(veq + "karate");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output, runVeq({"info", kData + "/karate.xnet"}).output);
  EXPECT_TRUE(std::regex_match(run.errors,
                               std::regex("veq: karate: no such file; reading the example [^\n]*"
                                          "/share/veq/data/karate\\.xnet\n")))
      << run.errors;

  directory.write("karate", "#vertices 2\n");
  EXPECT_NE(runShell(veq + "karate").output.find("\nvertices            2\n"), std::string::npos);
  EXPECT_EQ(runShell(veq + "nobody").errors, "veq: nobody: No such file or directory\n");
  EXPECT_EQ(runShell(veq + "../data/karate").exitCode, 1);
}

TEST(InfoCommand, AnswersOtherPrograms) {
  const TemporaryDirectory directory;
  const std::string file = directory.write(
      "n.xnet",
      "#vertices 3\n\"say <quote>a, b<quote>\"\n\"b\"\n\"c\"\n#edges weighted\n0 1 0.5\n");
  // One of three pairs; the degrees are 1, 1 and 0.
  const ProgramRun json = runVeq({"info", "--format", "json", file});
  EXPECT_EQ(json.exitCode, 0);
  EXPECT_EQ(json.output,
            "{\n"
            "  \"file\": \"" +
                file +
                "\",\n"
                "  \"directed\": false,\n"
                "  \"vertices\": 3,\n"
                "  \"edges\": 1,\n"
                "  \"components\": 2,\n"
                "  \"strongComponents\": null,\n"
                "  \"selfLoops\": 0,\n"
                "  \"parallelEdges\": 0,\n"
                "  \"density\": 0.3333333333333333,\n"
                "  \"degree\": {\n"
                "    \"least\": 0,\n"
                "    \"mean\": 0.6666666666666666,\n"
                "    \"most\": 1\n"
                "  },\n"
                "  \"strength\": {\n"
                "    \"least\": 0,\n"
                "    \"mean\": 0.3333333333333333,\n"
                "    \"most\": 0.5\n"
                "  },\n"
                "  \"edgeWeight\": {\n"
                "    \"least\": 0.5,\n"
                "    \"mean\": 0.5,\n"
                "    \"most\": 0.5\n"
                "  },\n"
                "  \"vertexWeight\": null,\n"
                "  \"reciprocity\": null,\n"
                "  \"assortativity\": null,\n"
                "  \"averageClustering\": 0,\n"
                "  \"transitivity\": 0,\n"
                "  \"distances\": {\n"
                "    \"mean\": 1,\n"
                "    \"sources\": 3,\n"
                "    \"sampled\": false,\n"
                "    \"leastDiameter\": 1,\n"
                "    \"mostDiameter\": 1\n"
                "  },\n"
                "  \"vertexProperties\": {\n"
                "    \"Name\": {\n"
                "      \"kind\": \"text\",\n"
                "      \"example\": \"say \\\"a, b\\\"\"\n"
                "    }\n"
                "  },\n"
                "  \"edgeProperties\": {}\n"
                "}\n");
  EXPECT_EQ(runVeq({"info", "--format", "csv", file}).output,
            "key,value\n"
            "file," +
                file +
                "\n"
                "directed,false\n"
                "vertices,3\n"
                "edges,1\n"
                "components,2\n"
                "strongComponents,\n"
                "selfLoops,0\n"
                "parallelEdges,0\n"
                "density,0.3333333333333333\n"
                "degree.least,0\n"
                "degree.mean,0.6666666666666666\n"
                "degree.most,1\n"
                "strength.least,0\n"
                "strength.mean,0.3333333333333333\n"
                "strength.most,0.5\n"
                "edgeWeight.least,0.5\n"
                "edgeWeight.mean,0.5\n"
                "edgeWeight.most,0.5\n"
                "vertexWeight,\n"
                "reciprocity,\n"
                "assortativity,\n"
                "averageClustering,0\n"
                "transitivity,0\n"
                "distances.mean,1\n"
                "distances.sources,3\n"
                "distances.sampled,false\n"
                "distances.leastDiameter,1\n"
                "distances.mostDiameter,1\n"
                "vertexProperties.Name.kind,text\n"
                "vertexProperties.Name.example,\"say \"\"a, b\"\"\"\n");
  EXPECT_EQ(runVeq({"info", "--format", "csv", "--raw", file}).errors,
            "veq: --raw needs --format table (see veq info --help)\n");
}

TEST(InfoCommand, SamplesWhatWouldTakeLongUnlessAllIsAskedFor) {
  const TemporaryDirectory directory;
  // A star: its centre is 1 away from 19,999 others, which are 2 from each other. All sources take
  // some 20,000 x 60,000 visits. From any k leaves the mean is (1 + 2 x 19,998) / 19,999.
  const std::string file = directory.path("star.edges");
  std::string text;
  for (int leaf = 1; leaf < 20000; ++leaf) text += "0 " + std::to_string(leaf) + "\n";
  directory.write("star.edges", text);
  const std::string some = runVeq({"info", file}).output;
  EXPECT_TRUE(std::regex_search(some, std::regex("\nmean distance       1\\.99[0-9]*, from [0-9]+ "
                                                 "vertices drawn at random; --all takes all\n")))
      << some;
  EXPECT_NE(some.find("\ndiameter            2\n"), std::string::npos) << some;
  // 2 x (19,999 + 19,999 x 19,998) / (20,000 x 19,999) = 1.9999.
  const std::string all = runVeq({"info", "--all", file}).output;
  EXPECT_NE(all.find("\nmean distance       1.9999\n"), std::string::npos) << all;
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
  EXPECT_NE(run.output.find("\nvertex property     a?[2J: numbers, as 1\n"), std::string::npos);
}

}  // namespace
}  // namespace veq::test::info_test
