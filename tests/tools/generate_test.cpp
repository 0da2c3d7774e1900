#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/literal_models.hpp"
#include "tests/tools/program.hpp"

namespace veq::test {
namespace {

std::string xnetOf(std::uint64_t vertices, const EdgeList& edges) {
  std::string text =
      "#vertices " + std::to_string(vertices) + " nonweighted\n#edges nonweighted undirected\n";
  for (const auto& [from, to] : edges) {
    text += std::to_string(from) + " " + std::to_string(to) + "\n";
  }
  return text;
}

TEST(GenerateCommand, BarabasiIsTheNetworkThatTheSeedStandsFor) {
  const TemporaryDirectory directory;
  const std::string file = directory.path("n.xnet");
  // A degree of 7 is halved to 3.
  const ProgramRun run =
      runVeq({"generate", "barabasi", "--vertices", "60", "--degree", "7", "--seed", "5", file});
  LiteralGenerator generator(5);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output, "60 vertices, 171 edges, undirected, seed 5\n");
  EXPECT_EQ(contentsOf(file), xnetOf(60, literalPreferentialAttachment(generator, 3, 3, 57)));
}

TEST(GenerateCommand, RandomIsTheNetworkThatTheSeedStandsFor) {
  const TemporaryDirectory directory;
  const std::string file = directory.path("n.xnet");
  LiteralGenerator generator(9);
  const EdgeList edges = literalRandomNetwork(generator, 40, 2.5);
  std::uint64_t n = 1;
  for (const auto& [from, to] : edges) n = std::max(n, to + 1);

  const ProgramRun run =
      runVeq({"generate", "random", "--vertices", "40", "--degree", "2.5", "--seed", "9", file});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(contentsOf(file), xnetOf(n, edges));
}

TEST(GenerateCommand, VerticesWithoutEdgesAtTheEndAreMissingAndThatIsSaid) {
  const TemporaryDirectory directory;
  const ProgramRun run = runVeq({"generate", "random", "--vertices", "3", "--degree", "0", "--seed",
                                 "1", directory.path("n.xnet")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(
      run.output,
      "1 vertex, 0 edges, undirected, seed 1\nwithout the last 2 of 3, which have no edges\n");
}

std::string usageErrorOf(const std::string& model, const std::string& vertices,
                         const std::string& degree) {
  const ProgramRun run =
      runVeq({"generate", model, "--vertices", vertices, "--degree", degree, "never.xnet"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.output, "");
  return run.errors;
}

TEST(GenerateCommand, NumbersThatMakeNoNetworkAreWrongUsage) {
  EXPECT_EQ(usageErrorOf("barabasi", "3", "6"),
            "veq: --degree needs a number below twice the number of vertices, not 6 (see veq "
            "generate barabasi --help)\n");
  EXPECT_EQ(usageErrorOf("barabasi", "9", "1"),
            "veq: --degree needs a whole number from 2 on, not 1 (see veq generate barabasi "
            "--help)\n");
  EXPECT_EQ(usageErrorOf("random", "0", "1"),
            "veq: --vertices needs a whole number from 1 on, not 0 (see veq generate random "
            "--help)\n");
  for (const std::string degree : {"nan", "inf", "-1", "many"}) {
    EXPECT_EQ(usageErrorOf("random", "9", degree), "veq: --degree needs a number from 0 on, not " +
                                                       degree +
                                                       " (see veq generate random --help)\n");
  }
  EXPECT_EQ(usageErrorOf("random", "9", "9.5"),
            "veq: --degree needs a number up to the number of vertices, not 9.5 (see veq generate "
            "random --help)\n");
  const ProgramRun run = runVeq({"generate"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.errors, "veq: a model is missing: barabasi or random (see veq generate --help)\n");
}

TEST(GenerateCommand, WritesToStandardOutputAndSaysTheRestAside) {
  const ProgramRun run = runVeq({"generate", "random", "--vertices", "3", "--degree", "0", "--seed",
                                 "1", "-", "--to", "xnet"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output, "#vertices 1 nonweighted\n#edges nonweighted undirected\n");
  EXPECT_EQ(
      run.errors,
      "1 vertex, 0 edges, undirected, seed 1\nwithout the last 2 of 3, which have no edges\n");
}

TEST(GenerateCommand, OutputIsCheckedBeforehand) {
  const ProgramRun run = runVeq(
      {"generate", "random", "--vertices", "1000000", "--degree", "9", "no/such/directory/n.xnet"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: no/such/directory/n.xnet: No such file or directory\n");
}

}  // namespace
}  // namespace veq::test
