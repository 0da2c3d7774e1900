#include "models.hpp"

#include <algorithm>
#include <new>

#include "failure.hpp"
#include "option_values.hpp"
#include "streams.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

constexpr auto kBarabasi =
    R"(  veq generate barabasi --vertices 1000 --degree 6 --seed 1 scale-free.xnet
      Preferential attachment (Barabasi and Albert, 1999): 3 vertices at first,
      then 997 new ones with 3 edges each. The mean degree is close to 6 then;
      of an odd degree, the half is rounded down. A vertex can be linked to
      another more than once.)";

constexpr auto kRandom =
    R"(  veq generate random --vertices 1000 --degree 6 --seed 1 random.xnet
      Each two vertices are linked with the probability 6 / 1000 (Erdos and
      Renyi, 1959; Gilbert, 1959). The time grows with the square of the number
      of vertices. Vertices after the last one with an edge are left out, which
      is said; gnp keeps them, and takes less time.)";

constexpr auto kGnp =
    R"(  veq generate gnp --vertices 1000 --probability 0.006 --seed 1 gnp.xnet
      Each two of the thousand vertices are linked with the probability 0.006,
      independently of all others (Gilbert, 1959). The time grows with the
      number of edges.
  veq generate gnp --vertices 1000 --probability 0.003 --directed arcs.xnet
      The same with each ordered pair.)";

constexpr auto kGnm =
    R"(  veq generate gnm --vertices 1000 --edges 3000 --seed 1 gnm.xnet
      Exactly 3000 edges between different pairs of vertices, every such set
      alike (Erdos and Renyi, 1959).)";

constexpr auto kBarabasiAlbert =
    R"(  veq generate barabasi-albert --vertices 1000 --links 3 --seed 1 ba.xnet
      Each vertex from the fourth on is linked to 3 different older ones, chosen
      with probabilities in proportion to their degrees (Barabasi and Albert,
      1999); the fourth to all three before it.)";

constexpr auto kConfiguration =
    R"(  veq generate configuration --degrees degrees.txt --seed 1 paired.xnet
      The configuration model: a vertex for each line of degrees.txt, with as
      many edges as the line says. All pairings of their ends are alike, those
      that make loops and parallel edges included.
  veq generate configuration --degrees degrees.txt --simple --seed 1 simple.xnet
      Without loops and parallel edges: one such network, rewired at random with
      ten tries for each edge.)";

constexpr auto kWattsStrogatz =
    R"(  veq generate watts-strogatz --vertices 1000 --neighbours 3 \
      --probability 0.1 --seed 1 ws.xnet
      A ring in which each vertex is linked to the 3 next ones on both sides; each
      edge then gets another end with the probability 0.1 (Watts and Strogatz,
      1998).)";

constexpr auto kLattice =
    R"(  veq generate lattice --sizes 30,40 grid.xnet
      A grid of 30 times 40 vertices, of which vertex x + 30 y is at (x, y).
  veq generate lattice --sizes 10,10,10 --periodic torus.xnet
      In three dimensions, the last vertex of each row being linked to its first.
Nothing is drawn.)";

constexpr auto kGeometric =
    R"(  veq generate geometric --vertices 1000 --radius 0.05 --seed 1 geometric.xnet
      A thousand places anywhere in the unit square, which the property Position
      keeps; those that are no farther than 0.05 apart are linked.
  veq generate geometric --vertices 1000 --radius 0.1 --dimensions 3 cube.xnet
      In the unit cube.)";

constexpr auto kBlocks =
    R"(  veq generate blocks --sizes 100,50 --probabilities 0.1,0.01,0.01,0.2 \
      --seed 1 blocks.xnet
      The stochastic block model: vertices 0 to 99 are linked with each other with
      the probability 0.1, with vertices 100 to 149 with 0.01, and those among
      each other with 0.2. The probabilities are those of a matrix, row by row.)";

constexpr auto kRewired =
    R"(  veq generate rewired --network data/karate.xnet --tries 10000 --seed 1 rewired.xnet
      The network of the karate club, in which 10000 times two edges exchange
      their ends, unless that would make a loop or a parallel edge. All degrees
      stay as they are.)";

/// The numbers of "10,20,30"; wrong usage where one is none.
template <class T, class Read>
std::vector<T> listOf(const std::string& option, const std::string& text, const std::string& needs,
                      Read read) {
  std::vector<T> values;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    const std::string field = text.substr(begin, end - begin);
    const auto value = read(field);
    if (!value) throw WrongUsage(option + " needs " + needs + ", not \"" + field + "\"");
    values.push_back(*value);
    begin = end + 1;
  }
  return values;
}

std::vector<std::uint64_t> sizesOf(const ModelArguments& arguments) {
  constexpr WholeNumbers kSizes{1, UINT64_MAX};
  return listOf<std::uint64_t>(
      "--sizes", arguments.sizes, "whole numbers from 1 on with commas between them",
      [&](const std::string& field) { return readWholeNumber(field, kSizes); });
}

std::vector<double> probabilitiesOf(const ModelArguments& arguments) {
  return listOf<double>("--probabilities", arguments.probabilities,
                        "numbers from 0 to 1 with commas between them", readShare);
}

/// The degrees in a file, one a line.
std::vector<std::uint64_t> degreesOf(const ModelArguments& arguments) {
  std::vector<std::uint64_t> degrees;
  for (const std::string& line : linesIn(arguments.degrees)) {
    const auto degree = readWholeNumber(line, {0, UINT64_MAX});
    if (!degree) {
      throw Failure(inputName(arguments.degrees),
                    "line " + std::to_string(degrees.size() + 1) +
                        " is no degree: " + shortened(printable(line), 40));
    }
    degrees.push_back(*degree);
  }
  return degrees;
}

Result<Network> barabasi(const ModelArguments& arguments, const ModelOptions&) {
  if (arguments.evenDegree / 2 >= arguments.vertices) {
    throw WrongUsage("--degree needs a number below twice the number of vertices, not " +
                     std::to_string(arguments.evenDegree));
  }
  auto network = VEQNetwork::barabasiNetworkWitNumberOfVertices_approximateDegree(
      arguments.vertices, arguments.evenDegree);
  if (!network) throw std::bad_alloc();
  return Network(std::move(network));
}

Result<Network> random(const ModelArguments& arguments, const ModelOptions&) {
  if (arguments.degree > static_cast<double>(arguments.vertices)) {
    throw WrongUsage("--degree needs a number up to the number of vertices, not " +
                     shortNumber(arguments.degree));
  }
  auto network =
      VEQNetwork::randomNetworkWithNumberOfVertices_degree(arguments.vertices, arguments.degree);
  if (!network) throw std::bad_alloc();
  return Network(std::move(network));
}

Result<Network> gnp(const ModelArguments& arguments, const ModelOptions& options) {
  return gnpNetwork(arguments.vertices, arguments.probability, options, arguments.directed);
}

Result<Network> gnm(const ModelArguments& arguments, const ModelOptions& options) {
  return gnmNetwork(arguments.vertices, arguments.edges, options, arguments.directed);
}

Result<Network> barabasiAlbert(const ModelArguments& arguments, const ModelOptions& options) {
  return barabasiAlbertNetwork(arguments.vertices, arguments.links, options);
}

Result<Network> configuration(const ModelArguments& arguments, const ModelOptions& options) {
  const DegreeLaw law = arguments.simple ? DegreeLaw::kSimple : DegreeLaw::kPairing;
  Result<Network> network = configurationNetwork(degreesOf(arguments), law, options);
  if (!network && network.error().kind() == ErrorKind::kArgument) {
    throw Failure(inputName(arguments.degrees), network.error().text());
  }
  return network;
}

Result<Network> wattsStrogatz(const ModelArguments& arguments, const ModelOptions& options) {
  return wattsStrogatzNetwork(arguments.vertices, arguments.neighbours, arguments.probability,
                              options);
}

Result<Network> lattice(const ModelArguments& arguments, const ModelOptions& options) {
  return latticeNetwork(sizesOf(arguments), arguments.periodic, options);
}

Result<Network> geometric(const ModelArguments& arguments, const ModelOptions& options) {
  return geometricNetwork(arguments.vertices, arguments.radius, options,
                          static_cast<unsigned>(arguments.dimensions.value_or(2)));
}

Result<Network> blocks(const ModelArguments& arguments, const ModelOptions& options) {
  return blockNetwork(sizesOf(arguments), probabilitiesOf(arguments), options, arguments.directed);
}

Result<Network> rewired(const ModelArguments& arguments, const ModelOptions& options) {
  return rewiredNetwork(arguments.loaded.value(), arguments.tries, options);
}

void addVertices(Command& command, ModelArguments& arguments, std::uint64_t least) {
  command.addWholeNumber("--vertices", arguments.vertices, least, UINT64_MAX, "How many vertices");
}

void addDirected(Command& command, ModelArguments& arguments) {
  command.addFlag("--directed", arguments.directed, "Draw for each ordered pair");
}

void addProbability(Command& command, ModelArguments& arguments, const std::string& description) {
  command.addNumber("--probability", arguments.probability, description);
}

void addSizes(Command& command, ModelArguments& arguments, const std::string& description) {
  command.addRequiredText("--sizes", "N,N,...", "sizes", arguments.sizes, description);
}

}  // namespace

std::span<const Model> models() {
  static const std::vector<Model> kModels = {
      {"barabasi",
       "Preferential attachment, of an approximate degree",
       kBarabasi,
       {},
       [](Command& command, ModelArguments& arguments) {
         addVertices(command, arguments, 2);
         command.addWholeNumber("--degree", arguments.evenDegree, 2, UINT64_MAX, "The mean degree");
       },
       barabasi},
      {"random",
       "Every pair linked with one probability, by degree",
       kRandom,
       {},
       [](Command& command, ModelArguments& arguments) {
         addVertices(command, arguments, 1);
         command.addNumber("--degree", arguments.degree, "The mean degree");
       },
       random},
      {"gnp",
       "Every pair linked with one probability",
       kGnp,
       {{"n", "--vertices"}, {"p", "--probability"}},
       [](Command& command, ModelArguments& arguments) {
         addVertices(command, arguments, 1);
         addProbability(command, arguments, "That of an edge between two vertices");
         addDirected(command, arguments);
       },
       gnp},
      {"gnm",
       "So many edges between any pairs",
       kGnm,
       {{"n", "--vertices"}, {"m", "--edges"}},
       [](Command& command, ModelArguments& arguments) {
         addVertices(command, arguments, 1);
         command.addWholeNumber("--edges", arguments.edges, 0, UINT64_MAX, "How many edges");
         addDirected(command, arguments);
       },
       gnm},
      {"barabasi-albert",
       "Preferential attachment, of an exact number of links",
       kBarabasiAlbert,
       {{"n", "--vertices"}, {"m", "--links"}},
       [](Command& command, ModelArguments& arguments) {
         addVertices(command, arguments, 1);
         command.addWholeNumber("--links", arguments.links, 1, UINT64_MAX,
                                "To how many older vertices a new one is linked");
       },
       barabasiAlbert},
      {"configuration",
       "Given degrees",
       kConfiguration,
       {},
       [](Command& command, ModelArguments& arguments) {
         command.addRequiredText("--degrees", "FILE", "a file", arguments.degrees,
                                 "The degrees, one a line; - for standard input");
         command.addFlag("--simple", arguments.simple, "Without loops and parallel edges");
       },
       configuration},
      {"watts-strogatz",
       "A ring, some of whose edges lead elsewhere",
       kWattsStrogatz,
       {{"n", "--vertices"}, {"k", "--neighbours"}, {"p", "--probability"}},
       [](Command& command, ModelArguments& arguments) {
         addVertices(command, arguments, 1);
         command.addWholeNumber("--neighbours", arguments.neighbours, 0, UINT64_MAX,
                                "To how many vertices on each side one is linked");
         addProbability(command, arguments, "That of an edge getting another end");
       },
       wattsStrogatz},
      {"lattice",
       "A grid",
       kLattice,
       {},
       [](Command& command, ModelArguments& arguments) {
         addSizes(command, arguments, "The size of each dimension");
         command.addFlag("--periodic", arguments.periodic, "Link the last to the first");
       },
       lattice},
      {"geometric",
       "What is near each other linked",
       kGeometric,
       {{"n", "--vertices"}, {"radius", "--radius"}},
       [](Command& command, ModelArguments& arguments) {
         addVertices(command, arguments, 1);
         command.addNumber("--radius", arguments.radius, "How far apart linked vertices may be");
         command.addWholeNumber("--dimensions", arguments.dimensions, 2, 3,
                                "2 for a square, the default, or 3 for a cube");
       },
       geometric},
      {"blocks",
       "Blocks with probabilities of their own",
       kBlocks,
       {{"probabilities", "--probabilities"}},
       [](Command& command, ModelArguments& arguments) {
         addSizes(command, arguments, "How many vertices each block has");
         command.addRequiredText("--probabilities", "P,P,...", "probabilities",
                                 arguments.probabilities,
                                 "Those of edges within and between blocks, row by row");
         addDirected(command, arguments);
       },
       blocks},
      {"rewired",
       "The degrees of another network",
       kRewired,
       {},
       [](Command& command, ModelArguments& arguments) {
         command.addRequiredText("--network", "FILE", "a file", arguments.network.file,
                                 "The network; - for standard input");
         command.addWholeNumber("--tries", arguments.tries, 0, UINT64_MAX,
                                "How often two edges may exchange their ends");
       },
       rewired},
  };
  return kModels;
}

std::string inOptions(const Model& model, const std::string& reason) {
  for (const auto& [name, option] : model.arguments) {
    const std::string begin = name + " = ";
    const std::size_t give = reason.find(": give ");
    if (reason.compare(0, begin.size(), begin) == 0 && give != std::string::npos) {
      return option + " needs " + reason.substr(give + 7) + ", not " +
             reason.substr(begin.size(), give - begin.size());
    }
    if (reason.compare(0, name.size() + 1, name + ":") == 0 ||
        reason.compare(0, name.size() + 1, name + "[") == 0) {
      return option + reason.substr(name.size());
    }
  }
  return reason;
}

}  // namespace veq::tool
