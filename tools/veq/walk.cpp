#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "data.hpp"
#include "failure.hpp"
#include "network_files.hpp"
#include "outputs.hpp"
#include "progress_line.hpp"
#include "seed.hpp"
#include "starts.hpp"
#include "streams.hpp"
#include "text.hpp"
#include "walk_paths.hpp"
#include "walk_report.hpp"

namespace veq::tool {
namespace {

struct Options {
  Input input;
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
  Output output;
  bool force = false;
  std::optional<std::size_t> format;
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
      and again at vertex 0 after the last. A name (or an "Id") is looked for
      first, then an index, which counts from 0. A name with commas stands in
      double quotes inside a list. What is no vertex may be a file with one
      vertex a line.
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
      If it has such a property already, that is kept, and --force is needed.
  veq walk data/karate.xnet --agents 3 --steps 50 --format csv
      The table for other programs, with all vertices; what else is said goes to
      standard error. --format json has everything.

The table: a visit is an arrival, so that starts do not count; the share is
that of all visits. In an undirected network, degree/2m is the share that a
vertex would get in the long run if agents chose evenly among the edge ends of
each vertex of a connected network. They do not quite: this walk takes the
first and the last entry of a vertex's list half as often as each other one.
Directed networks have no such simple share, and list both degrees instead.

Edge weights play no part. An agent at a vertex without outgoing edges stays.)";

/// The key under which visits are written.
constexpr std::string_view kVisits = "Visits";

std::vector<NamedFile> outputsOf(const Options& options) {
  return {{"--paths", options.pathsFile}, {"--output", options.output.file}};
}

void checkOptions(const Options& options) {
  const auto requireOption = [](bool given, std::string_view option, bool neededGiven,
                                std::string_view needed) {
    if (!given || neededGiven) return;
    throw WrongUsage(std::string(option) + " needs " + std::string(needed));
  };
  requireOption(options.errors.has_value(), "--errors", options.memory.has_value(), "--memory");
  requireOption(!options.agentsFile.empty(), "--agents-network", options.memory.has_value(),
                "--memory");
  requireOption(options.output.to.has_value(), "--to", !options.output.file.empty(), "--output");
  requireOption(options.force, "--force", !options.output.file.empty(), "--output");
  requireDistinct({options.input.file, options.agentsFile, options.starts}, outputsOf(options));
  if (isStandardStream(options.input.file) && isStandardStream(options.starts)) {
    throw WrongUsage("--start and FILE are both standard input");
  }
  if (!options.pathsFile.empty()) requireWritable(options.pathsFile);
  if (!options.output.file.empty()) requireWritable(options.output);
}

/// A property of the user's is worth more than the visits of a walk.
void requireNoVisits(const LoadedNetwork& loaded, const Options& options) {
  if (options.output.file.empty() || options.force) return;
  if (!loaded.network->propertiesOfVertices()->contains(kVisits)) return;
  throw Failure(loaded.name,
                "has a vertex property \"Visits\", which --output would replace; --force does so");
}

/// The network that links the agents, if there is one.
Shared<VEQNetwork> loadAgentsNetwork(const Options& options) {
  if (options.agentsFile.empty()) return nullptr;
  const LoadedNetwork loaded = loadNetwork({options.agentsFile, std::nullopt, false});
  if (loaded.network->countVertices() < options.agents) {
    // The library would leave it out of account.
    throw Failure(loaded.name, "has " +
                                   counted(loaded.network->countVertices(), "vertex", "vertices") +
                                   " for " + counted(options.agents, "agent", "agents"));
  }
  return loaded.network;
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

std::optional<VEQVertexPaths> walk(VEQNetworkAgentsGroup& group, const Options& options) {
  std::optional<VEQVertexPaths> paths;
  const auto text = [&group](Elapsed elapsed, std::size_t width) {
    return stepsText(static_cast<std::uint64_t>(group.currentProgress()),
                     static_cast<std::uint64_t>(group.currentWork()), elapsed, width);
  };
  watch(text, [&] {
    paths = group.walkForSteps_returnPath_untilReach(options.steps, !options.pathsFile.empty(),
                                                     options.target.value_or(-1.0f));
  });
  return paths;
}

WalkReport reportOf(const LoadedNetwork& loaded, const VEQNetworkAgentsGroup& group,
                    const Options& options, std::uint64_t seed) {
  WalkReport report;
  report.network = loaded.network;
  report.networkFile = loaded.name;
  report.agents = options.agents;
  report.starts = options.starts;
  report.memory = options.memory;
  report.errors = options.errors.value_or(0);
  report.agentsFile = options.agentsFile;
  report.seed = seed;
  report.stepsAsked = options.steps;
  report.steps = static_cast<std::uint64_t>(group.currentProgress());
  report.target = options.target;
  // One walk of a fresh group: its totals are the visits.
  const auto totals = group.globalVisitFrequencyOfVertices();
  const auto visits = totals->values<std::int64_t>();
  report.visits.assign(visits.begin(), visits.end());
  return report;
}

void runWalk(const Options& options) {
  checkOptions(options);
  const LoadedNetwork loaded = loadNetwork(options.input);
  requireNoVisits(loaded, options);
  const std::vector<std::uint64_t> starts =
      startVertices(*loaded.network, loaded.name, options.starts, options.agents);
  const Shared<VEQNetwork> agentsNetwork = loadAgentsNetwork(options);
  const std::uint64_t seed = useSeed(options.seed);
  const auto group = makeGroup(loaded.network, starts, agentsNetwork, options);
  const auto paths = walk(*group, options);

  std::ostream& out = reportFor(outputsOf(options));
  writeReport(reportOf(loaded, *group, options, seed),
              static_cast<Answer>(options.format.value_or(0)), options.top, out, std::cerr);
  out.flush();
  if (paths) {
    watch("writing " + printable(outputName(options.pathsFile)),
          [&] { writePaths(options.pathsFile, *loaded.network, starts, *paths); });
  }
  if (options.output.file.empty()) return;
  loaded.network->setPropertiesOfVertices_forKey(
      group->globalVisitFrequencyOfVertices()->editableCopy(), kVisits);
  saveNetwork(loaded.network, options.output);
}

}  // namespace

void addWalk(CommandLine& commandLine) {
  const auto options = std::make_shared<Options>();
  Command command =
      commandLine.addCommand("walk", "Let agents walk at random over a network", kExamples);
  addInput(command, "FILE", options->input);
  command.addWholeNumber("--agents", options->agents, 1, UINT64_MAX, "How many agents walk");
  command.addWholeNumber("--steps", options->steps, 1, kMostSteps, "How many steps each takes");
  command.addShare("--until-reach", true, options->target,
                   "Stop once this share of the vertices was reached, above 0 and up to 1");
  command.addWholeNumber("--seed", options->seed, 0, UINT32_MAX,
                         "Choose the random numbers; 0 counts as 1");
  command.addText("--start", "V,V,...|FILE", "vertices or a file", options->starts,
                  "Where agents start, by name or index, or a file with one vertex a line");
  command.addWholeNumber("--top", options->top, 0, UINT64_MAX,
                         "How many vertices to list, by default 10, or all as CSV or JSON");
  command.addWholeNumber("--memory", options->memory, 1, kMostSteps,
                         "How many visits each agent remembers and avoids");
  command.addShare("--errors", false, options->errors,
                   "The probability of remembering a wrong vertex, by default 0");
  command.addText("--agents-network", "FILE", "a file", options->agentsFile,
                  "The network in which agents tell each other what they remember");
  command.addText("--paths", "OUT.csv", "a file", options->pathsFile,
                  "Write every agent's path, as CSV; - for standard output");
  command.addText("--output", "OUT", "a file", options->output.file,
                  "Write the network with its visits; - for standard output");
  addOutputFormat(command, options->output);
  command.addFlag("--force", options->force, "Let --output replace a property \"Visits\"");
  addAnswer(command, options->format);
  command.onRun([options] { runWalk(*options); });
}

}  // namespace veq::tool
