#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "failure.hpp"
#include "network_files.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct Options {
  std::string file;
  bool matrix = false;
};

/// Beyond this the matrix is neither read nor looked at by anybody.
constexpr std::uint64_t kLargestMatrix = 1000;

constexpr auto kExamples = R"(  veq info data/karate.xnet
      What the network is: its size, its density (the share of all possible
      edges that exist), its degrees and what is known about its vertices.
  veq info --matrix small.xnet
      Also the adjacency matrix, rows being sources. Up to 1000 vertices.

In directed networks out-degrees and in-degrees are listed separately. A
self-loop counts twice in the degree of an undirected network's vertex.)";

void printLine(std::string_view name, std::string_view value) {
  std::cout << name << std::string(20 - name.size(), ' ') << value << '\n';
}

std::string keyList(const std::vector<std::string>& keys) {
  std::string list;
  for (const std::string& key : keys) list += (list.empty() ? "" : ", ") + printable(key);
  return list.empty() ? "none" : list;
}

/// Edges over the pairs that they could link; parallel edges and self-loops count as well.
std::string density(const VEQNetwork& network) {
  const auto n = static_cast<double>(network.countVertices());
  const double pairs = network.isDirected() ? n * (n - 1) : n * (n - 1) / 2;
  return pairs > 0 ? shortNumber(static_cast<double>(network.countEdges()) / pairs) : "-";
}

std::string range(const VEQNumberArray& degrees) {
  const auto values = degrees.values<double>();
  if (values.empty()) return "-";
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  double sum = 0;
  for (const double value : values) sum += value;
  return fixedNumber(*least, 0) + " to " + fixedNumber(*most, 0) + ", mean " +
         shortNumber(sum / static_cast<double>(values.size()));
}

void printInfo(const Options& options) {
  const Shared<VEQNetwork> network = loadNetwork(options.file);
  if (options.matrix && network->countVertices() > kLargestMatrix) {
    throw Failure(options.file, "too large for --matrix: it has " +
                                    std::to_string(network->countVertices()) +
                                    " vertices, and 1000 is the limit");
  }
  std::cout << network->description() << '\n';
  printLine("vertices", std::to_string(network->countVertices()));
  printLine("edges", std::to_string(network->countEdges()));
  printLine("density", density(*network));
  if (network->isDirected()) {
    printLine("out-degree", range(*network->calcDegrees()));
    printLine("in-degree", range(*network->calcInDegrees()));
  } else {
    printLine("degree", range(*network->calcDegrees()));
  }
  printLine("vertex properties", keyList(network->keysForPropertiesOfVertices()));
  printLine("edge properties", keyList(network->keysForPropertiesOfEdges()));
  if (options.matrix) std::cout << '\n' << network->VEQ_MatrixDebug();
}

}  // namespace

void addInfo(CommandLine& commandLine) {
  const auto options = std::make_shared<Options>();
  Command command = commandLine.addCommand("info", "Say what a network is", kExamples);
  command.addPositional("FILE", options->file, "The network");
  command.addFlag("--matrix", options->matrix, "Print the adjacency matrix, too");
  command.onRun([options] { printInfo(*options); });
}

}  // namespace veq::tool
