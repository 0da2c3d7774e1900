// A network of a hundred million edges from one end to the other: built, asked, walked on, written
// as xnet and read back. Prints a line for each stage with its time and memory, and fails where
// what is read back is another network or where the memory exceeds its limit.
//
//     veq_large [edges=1e8] [vertices=edges/10] [folder=/tmp] [limit_gib=24]

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/large/stages.hpp"
#include "benchmarks/peers/workload.hpp"
#include "veq/veq.hpp"

namespace bench {
namespace {

using namespace veq;

struct Ends {
  Shared<VEQNumberArray> from;
  Shared<VEQNumberArray> to;
};

Ends drawEnds(std::uint64_t vertices, std::uint64_t edges) {
  const Ends ends{VEQNumberArray::numberArrayWithNumber_count(std::uint64_t{0}, edges),
                  VEQNumberArray::numberArrayWithNumber_count(std::uint64_t{0}, edges)};
  WorkloadRandom random(1);
  const auto from = ends.from->values<std::uint64_t>();
  const auto to = ends.to->values<std::uint64_t>();
  for (std::uint64_t e = 0; e < edges; ++e) {
    from[e] = random.below(vertices);
    to[e] = random.below(vertices);
  }
  return ends;
}

std::uint64_t mixed(std::uint64_t sum, std::uint64_t value) {
  return (sum ^ value) * 0x9e3779b97f4a7c15U;
}

/// A number that follows from all degrees and from the lists of a million vertices, in their order.
std::uint64_t ask(const VEQNetwork& network) {
  std::uint64_t sum = mixed(network.countVertices(), network.countEdges());
  for (const auto& degrees : {network.calcDegrees(), network.calcInDegrees()}) {
    for (const double degree : degrees->values<double>()) {
      sum = mixed(sum, static_cast<std::uint64_t>(degree));
    }
  }
  WorkloadRandom random(2);
  for (int i = 0; i < 1000000; ++i) {
    const std::uint64_t vertex = random.below(network.countVertices());
    for (const auto& list : {network.indicesOfVerticesLinkedFromVertexAtIndex(vertex),
                             network.indicesOfEdgesLinkedToVertexAtIndex(vertex)}) {
      for (const std::uint64_t entry : list->values<std::uint64_t>()) sum = mixed(sum, entry);
    }
  }
  return sum;
}

/// A thousand agents, a thousand steps; the sum of their visits.
std::uint64_t walk(Shared<const VEQNetwork> network) {
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1);
  const auto start = VEQNumberArray::initWithIntegerScalar_count(0, 1000);
  const auto group =
      VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(std::move(network), *start);
  group->walkForSteps_returnPath(1000, false);
  std::uint64_t sum = 0;
  for (const VEQVertex& vertex : group->agentsCurrentVerticesList()) {
    sum = mixed(sum, vertex.identification());
  }
  return sum;
}

/// A file that goes with the program.
struct TemporaryFile {
  explicit TemporaryFile(const std::string& folder)
      : path(folder + "/veq-large-" + std::to_string(::getpid()) + ".xnet") {}
  ~TemporaryFile() { std::filesystem::remove(path); }

  const std::string path;
};

template <class T>
const T& require(const T& made, const char* what) {
  if (!made) throw std::runtime_error(what);
  return made;
}

int goThroughStages(const Arguments& arguments) {
  const std::uint64_t edges = arguments.count("edges", 100000000);
  const std::uint64_t vertices = arguments.count("vertices", edges / 10 + 1);
  const TemporaryFile file(arguments.text("folder", "/tmp"));
  setDiagnosticSink({});
  Stages stages(arguments.real("limit_gib", 24));

  Ends ends = stages.run("ends", [&] { return drawEnds(vertices, edges); });
  Shared<VEQNetwork> network = stages.run("build", [&] {
    return VEQNetwork::networkWithVerticesCount_linksIndexedFrom_toIndices_directed(
        vertices, *ends.from, *ends.to, true);
  });
  require(network, "No network was made.");
  ends = {};
  const std::uint64_t asked = stages.run("query", [&] { return ask(*network); });
  const std::uint64_t walked = stages.run("walk", [&] { return walk(network); });
  require(stages.run("write", [&] { return network->writeToFile_atomically(file.path, true); }),
          "The file was not written.");
  std::printf("%-14s %10.2f GB of text\n", "", bytesOfFile(file.path) * 1e-9);
  network.reset();
  network = stages.run("read", [&] { return VEQNetwork::networkWithContentsOfFile(file.path); });
  require(network, "The file was not read.");
  const bool same =
      stages.run("compare", [&] { return ask(*network) == asked && walk(network) == walked; });
  require(same, "What was read back is another network.");
  return 0;
}

}  // namespace
}  // namespace bench

int main(int count, char** values) {
  return bench::goingThrough(count, values, bench::goThroughStages);
}
