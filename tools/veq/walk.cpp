#include <algorithm>
#include <chrono>
#include <future>
#include <iostream>
#include <memory>
#include <new>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "failure.hpp"
#include "network_files.hpp"
#include "progress_line.hpp"
#include "seed.hpp"
#include "starts.hpp"
#include "table.hpp"
#include "terminal.hpp"
#include "text.hpp"
#include "walk_paths.hpp"

namespace veq::tool {
namespace {

struct Options {
  std::string file;
  std::uint64_t agents = 0;
  std::uint64_t steps = 0;
  std::optional<float> target;
  std::optional<std::uint64_t> seed;
  std::string starts;
  std::optional<std::uint64_t> top;
  std::optional<std::uint64_t> memory;
  std::optional<float> errors;
  std::string agentsFile;
  std::string pathsFile;
  std::string outputFile;
};

/// Steps and progress are signed 64-bit numbers in the library.
constexpr std::uint64_t kMostSteps = 9223372036854775807u;

constexpr auto kExamples = R"(  veq walk data/lesmis.xnet --agents 5 --steps 1000 --seed 1
      Five agents walk a thousand steps each; then the ten most visited
      vertices are listed. The same seed gives the same walk on every machine;
      without one, the seed that was used is printed.
  veq walk data/lesmis.xnet --agents 5 --steps 1000000 --until-reach 0.99
      They stop once 99 % of the vertices have been stepped onto.
  veq walk data/lesmis.xnet --agents 2 --steps 100 --start Valjean,Javert
      Agent 0 starts at Valjean and agent 1 at Javert. With more agents than
      starts the list begins again; without a list agent i starts at vertex i,
      and again at vertex 0 after the last. A name is looked for first, then
      an index, which counts from 0.
  veq walk data/lesmis.xnet --agents 5 --steps 1000 --memory 10
      They remember their last ten visits and avoid them where they can.
  veq walk data/lesmis.xnet --agents 34 --steps 1000 --memory 10 \
      --errors 0.05 --agents-network data/karate.xnet
      One time in twenty an agent remembers a random vertex instead of the one
      it reached. Agents are linked as the vertices of a second network are,
      agent i being its vertex i, and tell each other what they remember.
  veq walk data/karate.xnet --agents 3 --steps 50 --paths paths.csv
      Also writes where every agent stood after every step.
  veq walk data/karate.xnet --agents 3 --steps 50 --output walked.xnet
      Also writes the network with the visits as the vertex property "Visits".

The table: a visit is an arrival, so that starts do not count; the share is
that of all visits. In an undirected network, degree/2m is the share that a
vertex would get in the long run if agents chose evenly among the edge ends of
each vertex of a connected network. They do not quite: this walk takes the
first and the last entry of a vertex's list half as often as each other one.
Directed networks have no such simple share, and list both degrees instead.

Edge weights play no part. An agent at a vertex without outgoing edges stays.)";

void checkOptions(const Options& options) {
  if (options.target && !(*options.target > 0)) {
    throw WrongUsage("--until-reach", "must be above 0");
  }
  if (!options.memory && options.errors) throw WrongUsage("--errors", "needs --memory");
  if (!options.memory && !options.agentsFile.empty()) {
    throw WrongUsage("--agents-network", "needs --memory");
  }
}

/// The network that links the agents, if there is one.
Shared<VEQNetwork> loadAgentsNetwork(const Options& options) {
  if (options.agentsFile.empty()) return nullptr;
  Shared<VEQNetwork> network = loadNetwork(options.agentsFile);
  if (network->countVertices() < options.agents) {
    // The library would leave it out of account.
    throw Failure(options.agentsFile, "has " +
                                          counted(network->countVertices(), "vertex", "vertices") +
                                          " for " + counted(options.agents, "agent", "agents"));
  }
  return network;
}

Owned<VEQNetworkAgentsGroup> makeGroup(const Shared<VEQNetwork>& network,
                                       const std::vector<std::uint64_t>& starts,
                                       const Shared<VEQNetwork>& agentsNetwork,
                                       const Options& options) {
  const VEQNumberArray indices = VEQNumberArray::ofIndices(starts);
  Owned<VEQNetworkAgentsGroup> group;
  if (options.memory) {
    const auto errors =
        VEQNumberArray::initWithFloatScalar_count(options.errors.value_or(0), options.agents);
    const auto sizes = VEQNumberArray::initWithIntegerScalar_count(
        static_cast<std::int64_t>(*options.memory), options.agents);
    group = VEQNetworkDynamicAgentsGroup::
        initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
            network, indices, agentsNetwork, *errors, *sizes);
  } else {
    group = VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(network, indices);
  }
  if (!group) throw std::bad_alloc();
  return group;
}

/// Walks on another thread, so that this one can draw the progress.
std::optional<VEQVertexPaths> walk(VEQNetworkAgentsGroup& group, const Options& options) {
  const auto work = [&group, &options] {
    return group.walkForSteps_returnPath_untilReach(options.steps, !options.pathsFile.empty(),
                                                    options.target.value_or(-1.0f));
  };
  auto result = std::async(std::launch::async, work);
  ProgressLine line;
  if (!line.isVisible()) return result.get();

  const InterruptWatch watch;
  while (result.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
    if (watch.interrupted()) {
      line.erase();
      InterruptWatch::endProgram();
    }
    if (group.currentWork() > 0) {
      line.draw(static_cast<std::uint64_t>(group.currentProgress()),
                static_cast<std::uint64_t>(group.currentWork()));
    }
  }
  return result.get();
}

void printSummary(const VEQNetwork& network, const VEQNetworkAgentsGroup& group,
                  const Options& options) {
  const auto visits = group.globalVisitFrequencyOfVertices()->values<std::int64_t>();
  const std::uint64_t n = network.countVertices();
  const auto missed = static_cast<std::uint64_t>(std::count(visits.begin(), visits.end(), 0));
  std::cout << sizeText(network) << '\n'
            << counted(options.agents, "agent", "agents") << ", "
            << counted(static_cast<std::uint64_t>(group.currentProgress()), "step", "steps")
            << " each, seed " << *options.seed << '\n'
            << n - missed << " of " << counted(n, "vertex", "vertices") << " reached ("
            << percentage(static_cast<double>(n - missed), static_cast<double>(n)) << ")";
  if (options.target && !group.reachedWalkPercentage()) {
    std::cout << ", less than the " << percentage(static_cast<double>(*options.target), 1)
              << " asked for";
  }
  std::cout << '\n';
}

std::vector<std::string> tableHeader(bool directed) {
  if (directed) return {"vertex", "out-degree", "in-degree", "visits", "share"};
  return {"vertex", "degree", "visits", "share", "degree/2m"};
}

void printMostVisited(const VEQNetwork& network, const VEQNumberArray& totals, std::uint64_t top) {
  const auto visits = totals.values<std::int64_t>();
  std::vector<std::uint64_t> order(visits.size());
  std::iota(order.begin(), order.end(), std::uint64_t{0});
  const auto rows = static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(top, order.size()));
  std::partial_sort(order.begin(), order.begin() + rows, order.end(),
                    [&visits](std::uint64_t a, std::uint64_t b) {
                      return std::pair(-visits[a], a) < std::pair(-visits[b], b);
                    });
  const double all = std::accumulate(visits.begin(), visits.end(), 0.0);
  const double ends = 2 * static_cast<double>(network.countEdges());

  Table table(tableHeader(network.isDirected()));
  for (std::ptrdiff_t i = 0; i < rows; ++i) {
    const std::uint64_t vertex = order[static_cast<std::size_t>(i)];
    const std::uint64_t degree = network.countEdgesOfVertexAtIndex(vertex);
    std::vector<std::string> row{printable(vertexName(network, vertex)), std::to_string(degree)};
    if (network.isDirected()) {
      row.push_back(std::to_string(network.countInEdgesOfVertexAtIndex(vertex)));
    }
    row.push_back(std::to_string(visits[vertex]));
    row.push_back(percentage(static_cast<double>(visits[vertex]), all));
    if (!network.isDirected()) row.push_back(percentage(static_cast<double>(degree), ends));
    table.addRow(std::move(row));
  }
  std::cout << '\n' << table;
}

void runWalk(Options options) {
  checkOptions(options);
  const Shared<VEQNetwork> network = loadNetwork(options.file);
  const std::vector<std::uint64_t> starts =
      startVertices(*network, options.file, options.starts, options.agents);
  const Shared<VEQNetwork> agentsNetwork = loadAgentsNetwork(options);
  for (const std::string& file : {options.pathsFile, options.outputFile}) {
    if (!file.empty()) requireWritable(file);
  }
  options.seed = useSeed(options.seed);
  const auto group = makeGroup(network, starts, agentsNetwork, options);
  const auto paths = walk(*group, options);

  // One walk of a fresh group: its totals are the visits.
  const Shared<const VEQNumberArray> visits = group->globalVisitFrequencyOfVertices();
  printSummary(*network, *group, options);
  if (options.top != 0) printMostVisited(*network, *visits, options.top.value_or(10));
  std::cout.flush();
  if (paths) writePaths(options.pathsFile, *network, starts, *paths);
  if (!options.outputFile.empty()) {
    network->setPropertiesOfVertices_forKey(visits->editableCopy(), "Visits");
    saveNetwork(*network, options.outputFile);
  }
}

}  // namespace

void addWalk(CommandLine& commandLine) {
  const auto options = std::make_shared<Options>();
  Command command =
      commandLine.addCommand("walk", "Let agents walk at random over a network", kExamples);
  command.addPositional("FILE", options->file, "The network");
  command.addWholeNumber("--agents", options->agents, 1, UINT64_MAX, "How many agents walk");
  command.addWholeNumber("--steps", options->steps, 1, kMostSteps, "How many steps each takes");
  command.addFraction("--until-reach", options->target,
                      "Stop once this share of the vertices was reached, above 0 and up to 1");
  command.addWholeNumber("--seed", options->seed, 0, UINT32_MAX,
                         "Choose the random numbers; 0 counts as 1");
  command.addText("--start", "V,V,...", options->starts, "Where agents start, by name or index");
  command.addWholeNumber("--top", options->top, 0, UINT64_MAX,
                         "How many vertices to list, by default 10");
  command.addWholeNumber("--memory", options->memory, 1, kMostSteps,
                         "How many visits each agent remembers and avoids");
  command.addFraction("--errors", options->errors,
                      "The probability of remembering a wrong vertex, by default 0");
  command.addText("--agents-network", "FILE", options->agentsFile,
                  "The network in which agents tell each other what they remember");
  command.addText("--paths", "OUT.csv", options->pathsFile, "Write every agent's path, as CSV");
  command.addText("--output", "OUT.xnet", options->outputFile, "Write the network with its visits");
  command.onRun([options] { runWalk(*options); });
}

}  // namespace veq::tool
