#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/literal_models.hpp"
#include "tests/tools/program.hpp"
#include "veq/veq.hpp"

namespace veq::test::generate_test {
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
  EXPECT_EQ(run.errors,
            "veq: a model is missing: barabasi, random, gnp, gnm, barabasi-albert, configuration, "
            "watts-strogatz, lattice, geometric, blocks or rewired (see veq generate --help)\n");
}

/// What the program writes for a model must be what the library makes with the same seed.
struct Grown {
  std::vector<std::string> arguments;
  Result<Network> (*make)(const ModelOptions& options);
};

TEST(GenerateCommand, EveryModelIsTheLibrarysOfTheSameSeed) {
  const TemporaryDirectory directory;
  directory.write("degrees.txt", "3\r\n3\n2\n2\n2\n");
  directory.write("ring.xnet", "#vertices 5\n#edges\n0 1\n1 2\n2 3\n3 4\n4 0\n");
  const std::vector<Grown> models = {
      {{"gnp", "--vertices", "50", "--probability", "0.1", "--directed"},
       [](const ModelOptions& options) { return gnpNetwork(50, 0.1, options, true); }},
      {{"gnm", "--vertices", "50", "--edges", "70"},
       [](const ModelOptions& options) { return gnmNetwork(50, 70, options); }},
      {{"barabasi-albert", "--vertices", "50", "--links", "2"},
       [](const ModelOptions& options) { return barabasiAlbertNetwork(50, 2, options); }},
      {{"configuration", "--degrees", directory.path("degrees.txt")},
       [](const ModelOptions& options) {
         return configurationNetwork(std::vector<std::uint64_t>{3, 3, 2, 2, 2}, DegreeLaw::kPairing,
                                     options);
       }},
      {{"configuration", "--degrees", directory.path("degrees.txt"), "--simple"},
       [](const ModelOptions& options) {
         return configurationNetwork(std::vector<std::uint64_t>{3, 3, 2, 2, 2}, DegreeLaw::kSimple,
                                     options);
       }},
      {{"watts-strogatz", "--vertices", "30", "--neighbours", "2", "--probability", "0.5"},
       [](const ModelOptions& options) { return wattsStrogatzNetwork(30, 2, 0.5, options); }},
      {{"geometric", "--vertices", "30", "--radius", "0.3", "--dimensions", "3"},
       [](const ModelOptions& options) { return geometricNetwork(30, 0.3, options, 3); }},
      {{"blocks", "--sizes", "9,7", "--probabilities", "0.5,0.1,0.1,0.4"},
       [](const ModelOptions& options) {
         return blockNetwork(std::vector<std::uint64_t>{9, 7},
                             std::vector<double>{0.5, 0.1, 0.1, 0.4}, options);
       }},
      {{"rewired", "--network", directory.path("ring.xnet"), "--tries", "20"},
       [](const ModelOptions& options) {
         return rewiredNetwork(Network::build({{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 0}}).value(), 20,
                               options);
       }}};
  for (const Grown& model : models) {
    for (const bool substream : {false, true}) {
      RandomState state = RandomState::seeded(5).value();
      if (substream) state = state.substream(3);
      ModelOptions options;
      options.random = &state;
      const std::string text = networkText(model.make(options).value(), FileFormat::kXnet).value();

      std::vector<std::string> arguments = {"generate"};
      arguments.insert(arguments.end(), model.arguments.begin(), model.arguments.end());
      arguments.insert(arguments.end(), {"--seed", "5", "-", "--to", "xnet"});
      if (substream) arguments.insert(arguments.end(), {"--substream", "3"});
      const ProgramRun run = runVeq(arguments);
      EXPECT_EQ(run.exitCode, 0) << run.errors;
      EXPECT_EQ(run.output, text) << model.arguments[0];
      EXPECT_NE(run.errors.find(substream ? "seed 5, substream 3\n" : "seed 5\n"),
                std::string::npos)
          << run.errors;
    }
  }
}

TEST(GenerateCommand, PublishedModelsTakeASubstreamAsWell) {
  RandomState state = RandomState::seeded(5).value().substream(3);
  VEQRandomGenerator::sharedRandomGenerator()->setState(state);
  const Network network(VEQNetwork::randomNetworkWithNumberOfVertices_degree(40, 3));
  const ProgramRun run = runVeq({"generate", "random", "--vertices", "40", "--degree", "3",
                                 "--seed", "5", "--substream", "3", "-", "--to", "xnet"});
  EXPECT_EQ(run.output, networkText(network, FileFormat::kXnet).value());
}

TEST(GenerateCommand, ALatticeIsLinkedInEachDimension) {
  const ProgramRun run =
      runVeq({"generate", "lattice", "--sizes", "3,2", "--seed", "1", "-", "--to", "xnet"});
  // 0 1 2
  // 3 4 5
  EXPECT_EQ(run.output,
            "#vertices 6 nonweighted\n#edges nonweighted undirected\n"
            "0 1\n0 3\n1 2\n1 4\n2 5\n3 4\n4 5\n");
  EXPECT_EQ(run.errors, "6 vertices, 7 edges, undirected, seed 1\n");
}

std::string refusalOf(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "generate");
  arguments.emplace_back("never.xnet");
  const ProgramRun run = runVeq(arguments);
  EXPECT_NE(run.exitCode, 0);
  EXPECT_EQ(run.output, "");
  return run.errors.substr(0, run.errors.find(" (see"));
}

TEST(GenerateCommand, WhatAModelRefusesIsToldByItsOption) {
  EXPECT_EQ(refusalOf({"gnp", "--vertices", "5", "--probability", "1.5"}),
            "veq: --probability needs 0 to 1, not 1.5");
  EXPECT_EQ(refusalOf({"gnm", "--vertices", "4", "--edges", "7"}),
            "veq: --edges needs at most 6, the pairs of 4 vertices, not 7");
  EXPECT_EQ(refusalOf({"barabasi-albert", "--vertices", "4", "--links", "4"}),
            "veq: --links needs at most n - 1 = 3, not 4");
  EXPECT_EQ(
      refusalOf({"watts-strogatz", "--vertices", "9", "--neighbours", "5", "--probability", "0"}),
      "veq: --neighbours needs at most (n - 1) / 2 = 4, not 5");
  EXPECT_EQ(refusalOf({"geometric", "--vertices", "9", "--radius", "3"}),
            "veq: --radius needs 0 to 2, not 3");
  EXPECT_EQ(refusalOf({"blocks", "--sizes", "2,3", "--probabilities", "1"}),
            "veq: --probabilities: 1 for 2 blocks, give 4");
  EXPECT_EQ(refusalOf({"blocks", "--sizes", "2,3", "--probabilities", "1,0,1,1"}),
            "veq: --probabilities[1] and probabilities[2] differ");
  EXPECT_EQ(refusalOf({"lattice", "--sizes", "2,,3"}),
            "veq: --sizes needs whole numbers from 1 on with commas between them, not \"\"");
  EXPECT_EQ(refusalOf({"lattice", "--sizes", "2,x"}),
            "veq: --sizes needs whole numbers from 1 on with commas between them, not \"x\"");
  EXPECT_EQ(refusalOf({"lattice"}), "veq: --sizes needs sizes");
  EXPECT_EQ(refusalOf({"gnp", "--vertices", "4000000000", "--probability", "0.5"}),
            "veq: --vertices needs at most 2147483648, not 4000000000");
}

TEST(GenerateCommand, DegreesThatNobodyCanHaveAreTheFilesFault) {
  const TemporaryDirectory directory;
  const std::string odd = directory.write("odd.txt", "3\n2\n2\n");
  EXPECT_EQ(refusalOf({"configuration", "--degrees", odd}),
            "veq: " + odd + ": degrees: their sum 7 is odd\n");
  const std::string text = directory.write("text.txt", "3\ntwo\n");
  EXPECT_EQ(refusalOf({"configuration", "--degrees", text}),
            "veq: " + text + ": line 2 is no degree: two\n");
}

TEST(GenerateCommand, NetworksBeyondMemoryAreRefused) {
  EXPECT_EQ(refusalOf({"gnp", "--vertices", "4000000", "--probability", "1"}).substr(0, 40),
            "veq: not grown: n = 4000000, p = 1: abou");
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
}  // namespace veq::test::generate_test
