#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "data.hpp"
#include "failure.hpp"
#include "network_facts.hpp"
#include "network_files.hpp"
#include "progress_line.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct InfoArguments {
  Input input;
  bool raw = false;
  bool matrix = false;
  bool all = false;
  std::optional<std::size_t> format;
};

/// Beyond this the matrix is neither read nor looked at by anybody.
constexpr std::uint64_t kLargestMatrix = 1000;

constexpr auto kInfoExamples = R"(  veq info data/karate.xnet
      What the network is: its direction and weights, its size and components,
      its density (the share of all possible edges that exist), the least, mean
      and greatest degree, and what is known about its vertices and edges.
  veq info karate
      The same: where no such file is there, a plain name stands for a network
      that comes with the program.
  veq info --matrix small.xnet
      Also the adjacency matrix, rows being sources. Up to 1000 vertices.
  veq info --format json data/lesmis.xnet
      For other programs; --format csv has lines "key,value".
  veq info --all data/lesmis.xnet
      Nothing is sampled and nothing left out: in large networks, triangles are
      not counted and distances are those from vertices drawn at random.

In directed networks out-degrees and in-degrees are listed separately, and
reciprocity is the share of arcs between two vertices whose reverse exists. A
self-loop counts twice in the degree of an undirected network's vertex. The
clustering is the mean share of the pairs of a vertex's neighbours that are
neighbours, the transitivity that of all such pairs, and the assortativity how
much vertices are linked to those of like degree. Distances are numbers of edges
between vertices of which one can be reached from the other. A strength is the sum of the weights of a vertex's edges. Parallel edges are those
that link what an edge before them links already, in the same direction.)";

void printLine(std::string_view name, std::string_view value) {
  std::cout << name << std::string(20 - name.size(), ' ') << value << '\n';
}

std::string spreadText(const Spread& spread) {
  return shortNumber(spread.least) + " to " + shortNumber(spread.most) + ", mean " +
         shortNumber(spread.mean);
}

void printSpread(std::string_view name, const std::optional<Spread>& spread) {
  if (spread) printLine(name, spreadText(*spread));
}

std::string weightsText(const NetworkFacts& facts) {
  if (facts.vertexWeight && facts.edgeWeight) return "of vertices and edges";
  if (facts.vertexWeight) return "of vertices";
  return facts.edgeWeight ? "of edges" : "none";
}

std::string densityText(const NetworkFacts& facts) {
  if (!facts.density) return "-";
  const std::string number = shortNumber(*facts.density);
  return *facts.density > 1 ? number + ", above 1 as parallel edges and self-loops count" : number;
}

std::string diameterText(const DistanceFacts& distances) {
  std::string text = std::to_string(distances.leastDiameter);
  if (distances.mostDiameter == distances.leastDiameter) return text;
  return text + " to " + std::to_string(distances.mostDiameter) + "; --all finds it";
}

std::string meanDistanceText(const DistanceFacts& distances) {
  const std::string text = shortNumber(distances.mean);
  if (!distances.sampled) return text;
  return text + ", from " + counted(distances.sources, "vertex", "vertices") +
         " drawn at random; --all takes all";
}

/// What a network has beyond counts, as far as it was asked for.
void printStructure(const NetworkFacts& facts) {
  if (facts.assortativity) printLine("assortativity", shortNumber(*facts.assortativity));
  if (facts.withoutTriangles) printLine("clustering", "not counted; --all does");
  if (facts.averageClustering) printLine("clustering", shortNumber(*facts.averageClustering));
  if (facts.transitivity) printLine("transitivity", shortNumber(*facts.transitivity));
  if (!facts.distances) return;
  printLine("mean distance", meanDistanceText(*facts.distances));
  printLine("diameter", diameterText(*facts.distances));
}

void printColumns(std::string_view name, const std::vector<ColumnFact>& columns) {
  for (const ColumnFact& column : columns) {
    std::string text = printable(column.key) + ": " + column.kind;
    if (!column.example.empty()) text += ", as " + shortened(printable(column.example), 40);
    printLine(name, text);
  }
}

void printFacts(const NetworkFacts& facts) {
  printLine("direction", facts.directed ? "directed" : "undirected");
  printLine("weights", weightsText(facts));
  printLine("vertices", std::to_string(facts.vertices));
  printLine("edges", std::to_string(facts.edges));
  printLine("components", std::to_string(facts.components));
  if (facts.directed) printLine("strong components", std::to_string(*facts.strongComponents));
  printLine("self-loops", std::to_string(facts.selfLoops));
  printLine("parallel edges", std::to_string(facts.parallelEdges));
  printLine("density", densityText(facts));
  printSpread(facts.directed ? "out-degree" : "degree", facts.outDegree);
  printSpread("in-degree", facts.inDegree);
  printSpread(facts.directed ? "out-strength" : "strength", facts.outStrength);
  printSpread("in-strength", facts.inStrength);
  printSpread("edge weight", facts.edgeWeight);
  printSpread("vertex weight", facts.vertexWeight);
  if (facts.directed) {
    printLine("reciprocity", facts.reciprocity ? shortNumber(*facts.reciprocity) : "-");
  }
  printStructure(facts);
  printColumns("vertex property", facts.vertexColumns);
  printColumns("edge property", facts.edgeColumns);
}

Data dataOf(const std::optional<double>& number) { return number ? Data(*number) : Data(); }

Data dataOf(const std::optional<Spread>& spread) {
  if (!spread) return {};
  return Data::object()
      .set("least", spread->least)
      .set("mean", spread->mean)
      .set("most", spread->most);
}

Data dataOf(const std::vector<ColumnFact>& columns) {
  Data data = Data::object();
  for (const ColumnFact& column : columns) {
    data.set(column.key, Data::object().set("kind", column.kind).set("example", column.example));
  }
  return data;
}

Data dataOf(const DistanceFacts& distances) {
  return Data::object()
      .set("mean", distances.mean)
      .set("sources", distances.sources)
      .set("sampled", distances.sampled)
      .set("leastDiameter", distances.leastDiameter)
      .set("mostDiameter", distances.mostDiameter);
}

Data dataOf(const NetworkFacts& facts, const std::string& file) {
  Data data = Data::object();
  data.set("file", file)
      .set("directed", facts.directed)
      .set("vertices", facts.vertices)
      .set("edges", facts.edges)
      .set("components", facts.components)
      .set("strongComponents", facts.strongComponents ? Data(*facts.strongComponents) : Data())
      .set("selfLoops", facts.selfLoops)
      .set("parallelEdges", facts.parallelEdges)
      .set("density", dataOf(facts.density))
      .set(facts.directed ? "outDegree" : "degree", dataOf(facts.outDegree));
  if (facts.directed) data.set("inDegree", dataOf(facts.inDegree));
  data.set(facts.directed ? "outStrength" : "strength", dataOf(facts.outStrength));
  if (facts.directed) data.set("inStrength", dataOf(facts.inStrength));
  data.set("edgeWeight", dataOf(facts.edgeWeight))
      .set("vertexWeight", dataOf(facts.vertexWeight))
      .set("reciprocity", dataOf(facts.reciprocity))
      .set("assortativity", dataOf(facts.assortativity))
      .set("averageClustering", dataOf(facts.averageClustering))
      .set("transitivity", dataOf(facts.transitivity))
      .set("distances", facts.distances ? dataOf(*facts.distances) : Data())
      .set("vertexProperties", dataOf(facts.vertexColumns))
      .set("edgeProperties", dataOf(facts.edgeColumns));
  return data;
}

void printInfo(const InfoArguments& arguments) {
  const auto answer = static_cast<Answer>(arguments.format.value_or(0));
  if (answer != Answer::kTable && (arguments.raw || arguments.matrix)) {
    throw WrongUsage(std::string(arguments.raw ? "--raw" : "--matrix") + " needs --format table");
  }
  const LoadedNetwork loaded = loadNetwork(arguments.input);
  const VEQNetwork& network = *loaded.network;
  if (arguments.matrix && network.countVertices() > kLargestMatrix) {
    throw Failure(loaded.name, "too large for --matrix: it has " +
                                   std::to_string(network.countVertices()) +
                                   " vertices, and 1000 is the limit");
  }
  NetworkFacts facts;
  watch("counting", [&] {
    facts = factsOf(Network(loaded.network), arguments.all ? kEverything : kAffordable);
  });
  if (answer == Answer::kJson) dataOf(facts, loaded.name).writeJson(std::cout);
  if (answer == Answer::kCsv) dataOf(facts, loaded.name).writeCsv(std::cout);
  if (answer == Answer::kTable) printFacts(facts);
  if (arguments.raw) std::cout << '\n' << network.description();
  if (arguments.matrix) std::cout << '\n' << network.VEQ_MatrixDebug();
}

}  // namespace

void addInfo(CommandLine& commandLine) {
  const auto arguments = std::make_shared<InfoArguments>();
  Command command = commandLine.addCommand("info", "Say what a network is", kInfoExamples);
  addInput(command, "FILE", arguments->input);
  command.addFlag("--all", arguments->all,
                  "Sample nothing and leave nothing out, however long it takes");
  command.addFlag("--raw", arguments->raw, "Print the library's own description, too");
  command.addFlag("--matrix", arguments->matrix, "Print the adjacency matrix, too");
  addAnswer(command, arguments->format);
  command.onRun([arguments] { printInfo(*arguments); });
}

}  // namespace veq::tool
