#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "failure.hpp"
#include "network_files.hpp"
#include "outputs.hpp"
#include "progress_line.hpp"
#include "seed.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct Options {
  std::uint64_t vertices = 0;
  std::uint64_t evenDegree = 0;
  double degree = 0;
  std::optional<std::uint64_t> seed;
  Output output;
};

constexpr auto kExamples =
    R"(  veq generate barabasi --vertices 1000 --degree 6 --seed 1 scale-free.xnet
      A thousand vertices, of which each new one is linked to three older ones,
      those with many edges being preferred.
  veq generate random --vertices 1000 --degree 6 --seed 1 random.xnet
      A thousand vertices, of which each two are linked with the probability
      0.006, so that the mean degree is about 6.
  veq generate random --vertices 1000 --degree 6 random.net
      The same in the Pajek format; the seed that was used is printed.

The same seed gives the same network on every machine.)";

constexpr auto kBarabasiExamples =
    R"(  veq generate barabasi --vertices 1000 --degree 6 --seed 1 scale-free.xnet
      Preferential attachment (Barabasi and Albert, 1999): 3 vertices at first,
      then 997 new ones with 3 edges each. The mean degree is close to 6 then;
      of an odd degree, the half is rounded down.)";

constexpr auto kRandomExamples =
    R"(  veq generate random --vertices 1000 --degree 6 --seed 1 random.xnet
      Each two vertices are linked with the probability 6 / 1000 (Erdos and
      Renyi, 1959; Gilbert, 1959). The time grows with the square of the number
      of vertices. Vertices after the last one with an edge are left out, which
      is said.)";

/// Grows the network of a function, saves it and says what it is.
template <class Grow>
void generate(const Options& options, Grow grow) {
  requireWritable(options.output);
  const std::uint64_t seed = useSeed(options.seed);
  Shared<VEQNetwork> network;
  watch("growing the network", [&] { network = grow(); });
  if (!network) throw std::bad_alloc();
  saveNetwork(network, options.output);
  const std::uint64_t n = network->countVertices();
  std::ostream& report = reportFor({{"OUT", options.output.file}});
  report << sizeText(*network) << ", seed " << seed << '\n';
  if (n < options.vertices) {
    report << "without the last " << options.vertices - n << " of " << options.vertices
           << ", which have no edges\n";
  }
}

void generateBarabasi(const Options& options) {
  if (options.evenDegree / 2 >= options.vertices) {
    throw WrongUsage("--degree needs a number below twice the number of vertices, not " +
                     std::to_string(options.evenDegree));
  }
  generate(options, [&options] {
    return VEQNetwork::barabasiNetworkWitNumberOfVertices_approximateDegree(options.vertices,
                                                                            options.evenDegree);
  });
}

void generateRandom(const Options& options) {
  if (options.degree > static_cast<double>(options.vertices)) {
    throw WrongUsage("--degree needs a number up to the number of vertices, not " +
                     shortNumber(options.degree));
  }
  generate(options, [&options] {
    return VEQNetwork::randomNetworkWithNumberOfVertices_degree(options.vertices, options.degree);
  });
}

void addSeedAndOutput(Command& command, Options& options) {
  command.addWholeNumber("--seed", options.seed, 0, UINT32_MAX,
                         "Choose the random numbers; 0 counts as 1");
  command.addPositional("OUT", options.output.file, "The file to write; - for standard output");
  addOutputFormat(command, options.output);
}

}  // namespace

void addGenerate(CommandLine& commandLine) {
  const auto options = std::make_shared<Options>();
  Command generate = commandLine.addCommand("generate", "Grow a model network", kExamples);

  Command barabasi =
      generate.addCommand("model", "barabasi", "Preferential attachment", kBarabasiExamples);
  barabasi.addWholeNumber("--vertices", options->vertices, 2, UINT64_MAX, "How many vertices");
  barabasi.addWholeNumber("--degree", options->evenDegree, 2, UINT64_MAX, "The mean degree");
  addSeedAndOutput(barabasi, *options);
  barabasi.onRun([options] { generateBarabasi(*options); });

  Command random = generate.addCommand("model", "random", "Every pair linked with one probability",
                                       kRandomExamples);
  random.addWholeNumber("--vertices", options->vertices, 1, UINT64_MAX, "How many vertices");
  random.addNumber("--degree", options->degree, "The mean degree");
  addSeedAndOutput(random, *options);
  random.onRun([options] { generateRandom(*options); });
}

}  // namespace veq::tool
