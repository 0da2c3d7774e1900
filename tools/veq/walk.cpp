#include <algorithm>
#include <atomic>
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
#include "page_options.hpp"
#include "progress_line.hpp"
#include "seed.hpp"
#include "starts.hpp"
#include "streams.hpp"
#include "suggestions.hpp"
#include "terminal.hpp"
#include "text.hpp"
#include "walk_paths.hpp"
#include "walk_report.hpp"

namespace veq::tool {
namespace {

struct WalkArguments {
  Input input;
  std::uint64_t agents = 0;
  std::optional<std::uint64_t> steps;
  std::optional<double> target;
  std::optional<std::uint64_t> seed;
  std::optional<std::uint64_t> substream;
  std::string starts;
  std::optional<std::size_t> choice;
  std::optional<double> restart;
  std::optional<std::uint64_t> top;
  std::optional<std::uint64_t> memory;
  std::optional<double> errors;
  std::string agentsFile;
  std::string pathsFile;
  std::string coverageFile;
  std::string pageFile;
  Showing showing;
  Output output;
  bool force = false;
  bool walkOnly = false;
  std::optional<std::size_t> format;
};

/// In the order of Choice.
const std::vector<std::string>& choiceWords() {
  static const std::vector<std::string> words{"published", "even", "weighted"};
  return words;
}

/// Steps and progress are signed 64-bit numbers in the library.
constexpr std::uint64_t kMostSteps = 9223372036854775807u;

constexpr auto kWalkExamples = R"(  veq walk data/lesmis.xnet --agents 5 --steps 1000 --seed 1
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
  veq walk data/lesmis.xnet --agents 5 --until-reach 1 --choice weighted \
      --start degree --coverage coverage.csv
      They start at vertices drawn by degree, choose edges by their weights, and
      stop when every vertex was reached; the file tells how many were by when.
  veq walk data/lesmis.xnet --agents 5 --steps 1000 --choice even --restart 0.1
      They choose each edge alike, and one step in ten leads back to the start.
  veq walk data/lesmis.xnet --agents 5 --steps 1000 --memory 10
      They remember their last ten visits and avoid them where they can.
  veq walk data/lesmis.xnet --agents 34 --steps 1000 --memory 10 \
      --errors 0.05 --agents-network data/karate.xnet
      One time in twenty an agent remembers a random vertex instead of the one
      it reached. Agents are linked as the vertices of a second network are,
      agent i being its vertex i, and tell each other what they remember.
  veq walk data/karate.xnet --agents 3 --steps 50 --paths paths.csv
      Also writes where every agent stood after every step.
  veq walk data/karate.xnet --agents 3 --steps 50 --page walked.html
      Also writes a page on which any browser walks the same walk again, step by
      step, and compares where it leads. --title, --layout, --columns, --color
      and --size are those of veq page.
  veq walk data/karate.xnet --agents 3 --steps 50 --output walked.xnet
      Also writes the network with the visits as the vertex property "Visits".
      If it has such a property already, that is kept, and --force is needed.
  veq walk links.txt --walk-only --agents 1000 --steps 1000
      Keeps no more of the network than walks read, 4 bytes for each entry of a
      list and 8 for each vertex, and of the agents where they stand and how
      often they arrived at each vertex. The file is a list of edges between
      integers, which are the indices, a matrix or an archive. It is read twice
      and never held, what comes through a pipe going to a temporary file, and
      the memory is told before it is taken.
  veq walk data/karate.xnet --agents 3 --steps 50 --format csv
      The table for other programs, with all vertices; what else is said goes to
      standard error. --format json has everything.

The table: a visit is an arrival, so that starts do not count; the share is
that of all visits. In an undirected network, degree/2m is the share that a
vertex would get in the long run if agents chose evenly among the edge ends of
each vertex of a connected network, as with --choice even. The choice that is
published and the default takes the first and the last entry of a vertex's list
half as often as each other one. Directed networks have no such simple share,
and list both degrees instead.

Edge weights play a part with --choice weighted alone. An agent at a vertex
without outgoing edges stays. An interrupt ends the walk after a whole step and
shows what was walked; files are not written then.)";

/// The key under which visits are written.
constexpr std::string_view kVisits = "Visits";

std::vector<NamedFile> outputsOf(const WalkArguments& arguments) {
  return {{"--paths", arguments.pathsFile},
          {"--coverage", arguments.coverageFile},
          {"--page", arguments.pageFile},
          {"--output", arguments.output.file}};
}

/// What needs more than rows and neighbours.
void requireEnoughToWalkOnly(const WalkArguments& arguments) {
  const std::pair<std::string_view, bool> needing[] = {
      {"--choice weighted", arguments.choice == static_cast<std::size_t>(Choice::kWeighted)},
      {"--memory", arguments.memory.has_value()},
      {"--paths", !arguments.pathsFile.empty()},
      {"--page", !arguments.pageFile.empty()},
      {"--output", !arguments.output.file.empty()}};
  for (const auto& [option, given] : needing) {
    if (!given) continue;
    throw WrongUsage(std::string(option) +
                     " needs a whole network, and --walk-only keeps rows and neighbours alone");
  }
}

void checkOptions(const WalkArguments& arguments) {
  const auto requireOption = [](bool given, std::string_view option, bool neededGiven,
                                std::string_view needed) {
    if (!given || neededGiven) return;
    throw WrongUsage(std::string(option) + " needs " + std::string(needed));
  };
  requireOption(arguments.errors.has_value(), "--errors", arguments.memory.has_value(), "--memory");
  requireOption(!arguments.agentsFile.empty(), "--agents-network", arguments.memory.has_value(),
                "--memory");
  requireOption(arguments.output.to.has_value(), "--to", !arguments.output.file.empty(),
                "--output");
  requireOption(arguments.force, "--force", !arguments.output.file.empty(), "--output");
  requireShown(arguments.showing, !arguments.pageFile.empty(), "--page");
  if (arguments.walkOnly) requireEnoughToWalkOnly(arguments);
  requireDistinct({arguments.input.file, arguments.agentsFile, arguments.starts},
                  outputsOf(arguments));
  if (isStandardStream(arguments.input.file) && isStandardStream(arguments.starts)) {
    throw WrongUsage("--start and FILE are both standard input");
  }
  for (const std::string& file :
       {arguments.pathsFile, arguments.coverageFile, arguments.pageFile}) {
    if (!file.empty()) requireWritable(file);
  }
  if (!arguments.output.file.empty()) requireWritable(arguments.output);
}

/// A property of the user's is worth more than the visits of a walk.
void requireNoVisits(const LoadedNetwork& loaded, const WalkArguments& arguments) {
  if (arguments.output.file.empty() || arguments.force) return;
  if (!loaded.network->propertiesOfVertices()->contains(kVisits)) return;
  throw Failure(loaded.name,
                "has a vertex property \"Visits\", which --output would replace; --force does so");
}

/// The network that links the agents, if there is one.
std::optional<Network> loadAgentsNetwork(const WalkArguments& arguments) {
  if (arguments.agentsFile.empty()) return std::nullopt;
  Input input;
  input.file = arguments.agentsFile;
  input.quiet = arguments.input.quiet;
  const LoadedNetwork loaded = loadNetwork(input);
  const std::uint64_t n = loaded.network->countVertices();
  if (n < arguments.agents) {
    throw Failure(loaded.name, "has " + counted(n, "vertex", "vertices") + " for " +
                                   counted(arguments.agents, "agent", "agents"));
  }
  return Network(loaded.network);
}

/// What a walk gives; where its input forbids it, a Failure that names the network's file.
template <class T>
T given(Result<T> result, const std::string& file) {
  if (result) return std::move(result).value();
  if (result.error().kind() == ErrorKind::kMemory) throw std::bad_alloc();
  throw Failure(file, result.error().text());
}

Walkers makeWalkers(const Network& network, const std::vector<std::uint64_t>& starts,
                    const WalkArguments& arguments, const std::string& file) {
  std::optional<Network> listeners = loadAgentsNetwork(arguments);
  if (!arguments.memory) return given(Walkers::at(network, starts), file);
  MemoryOptions memory;
  memory.sizes = {*arguments.memory};
  memory.errors = {static_cast<float>(arguments.errors.value_or(0))};
  memory.listeners = std::move(listeners);
  return given(Walkers::withMemory(network, starts, memory), file);
}

/// How far a walk has come, for the thread that draws it.
struct WalkMeter {
  std::atomic<std::uint64_t> steps = 0;
  std::atomic<double> reached = 0;
};

double shareReached(const Walkers& walkers) {
  const std::vector<std::uint64_t> visits = walkers.visits();
  const auto missed = std::count(visits.begin(), visits.end(), std::uint64_t{0});
  return 1 - static_cast<double>(missed) / static_cast<double>(visits.size());
}

/// A walk, with what it takes to walk it again where a page is to do so.
struct Walked {
  WalkOutcome outcome;
  std::optional<WalkRecord> record;
};

Walked walk(Walkers& walkers, const WalkArguments& arguments, RandomState* random,
            const std::string& file) {
  WalkMeter meter;
  StopSource interrupt;
  WalkOptions how;
  how.steps = arguments.steps;
  how.target = arguments.target;
  how.paths = !arguments.pathsFile.empty();
  how.firstArrivals = !arguments.coverageFile.empty();
  how.choice = static_cast<Choice>(arguments.choice.value_or(0));
  how.restart = arguments.restart.value_or(0);
  how.random = random;
  how.progress.stop = interrupt.token();
  how.progress.observer = [&](std::uint64_t done, std::uint64_t) {
    meter.steps = done;
    if (arguments.target && terminalWidth() > 0) meter.reached = shareReached(walkers);
  };
  const auto text = [&](Elapsed elapsed, std::size_t width) {
    return arguments.target
               ? reachText(meter.reached, *arguments.target, meter.steps, elapsed, width)
               : stepsText(meter.steps, *arguments.steps, elapsed, width);
  };
  std::optional<Result<WalkOutcome>> outcome;
  std::optional<Result<WalkRecord>> record;
  const bool isRecorded = !arguments.pageFile.empty();
  watch(
      text,
      [&] {
        if (isRecorded) {
          record = walkers.record(how);
        } else {
          outcome = walkers.walk(how);
        }
      },
      [&] { interrupt.requestStop(); });
  if (!isRecorded) return {given(std::move(*outcome), file), std::nullopt};
  WalkRecord recorded = given(std::move(*record), file);
  return {recorded.outcome(), std::move(recorded)};
}

WalkReport reportOf(WalkedOn network, const std::string& file, const Walkers& walkers,
                    const WalkOutcome& outcome, const WalkArguments& arguments,
                    std::uint64_t seed) {
  WalkReport report(std::move(network), file);
  report.agents = arguments.agents;
  report.starts = arguments.starts;
  report.choice = choiceWords()[arguments.choice.value_or(0)];
  report.restart = arguments.restart.value_or(0);
  report.memory = arguments.memory;
  report.errors = arguments.errors.value_or(0);
  report.agentsFile = arguments.agentsFile;
  report.seed = seed;
  report.substream = arguments.substream;
  report.stepsAsked = arguments.steps;
  report.target = arguments.target;
  report.end = outcome.end;
  report.steps = outcome.steps;
  report.visits = walkers.visits();
  return report;
}

PageOptions pageOptions(const LoadedNetwork& loaded, const WalkArguments& arguments) {
  PageOptions options = pageOptions(arguments.showing, loaded.name);
  options.substream = arguments.substream;
  options.starts = arguments.starts;
  return options;
}

void writeWalkPage(const LoadedNetwork& loaded, const WalkRecord& record, std::uint64_t seed,
                   const WalkArguments& arguments) {
  PageOptions options = pageOptions(loaded, arguments);
  options.seed = seed;
  savePage(Network(loaded.network), options, &record, loaded.name, arguments.pageFile);
}

void writeFiles(const LoadedNetwork& loaded, const WalkOutcome& outcome,
                const std::vector<std::uint64_t>& visits, const WalkArguments& arguments) {
  if (!arguments.pathsFile.empty()) {
    watch("writing " + printable(outputName(arguments.pathsFile)),
          [&] { writePaths(arguments.pathsFile, *loaded.network, *outcome.paths); });
  }
  if (!arguments.coverageFile.empty()) writeCoverage(arguments.coverageFile, outcome.coverage());
  if (arguments.output.file.empty()) return;
  loaded.network->setPropertiesOfVertices_forKey(
      std::make_shared<VEQNumberArray>(VEQNumberArray::ofIndices(visits)), kVisits);
  saveNetwork(loaded.network, arguments.output);
}

/// What was asked for in files is not there, since it would look like a whole walk.
[[noreturn]] void endInterrupted(const WalkArguments& arguments) {
  for (const NamedFile& output : outputsOf(arguments)) {
    if (!output.file.empty())
      note(outputName(output.file), "not written, as the walk was interrupted");
  }
  flushStandardOutput();
  endByInterrupt();
}

/// Answers, and ends there where the walk was interrupted.
void tell(const WalkReport& report, const WalkArguments& arguments) {
  std::ostream& out = reportFor(outputsOf(arguments));
  writeReport(report, static_cast<Answer>(arguments.format.value_or(0)), arguments.top, out,
              std::cerr);
  out.flush();
  if (report.end == WalkEnd::kStopped) endInterrupted(arguments);
}

/// What a walk and its report take for each vertex: totals, a copy of them and their order, and
/// what only some ask for.
std::uint64_t walkBytes(const WalkArguments& arguments) {
  const std::uint64_t coverage = arguments.coverageFile.empty() ? 0 : 8 + sizeof(Coverage);
  return 3 * sizeof(std::uint64_t) + coverage + (arguments.target ? 1 : 0);
}

void runWalkOnly(const WalkArguments& arguments) {
  const LoadedWalkNetwork loaded = loadWalkNetwork(arguments.input, walkBytes(arguments));
  const std::uint64_t seed = useSeed(arguments.seed);
  std::optional<RandomState> state;
  if (arguments.substream) state = stateOf(seed, arguments.substream);
  RandomState* const random = state ? &*state : nullptr;
  Walkers walkers =
      given(Walkers::at(loaded.network, startVertices(loaded.network, loaded.name, arguments.starts,
                                                      arguments.agents, random)),
            loaded.name);
  const Walked walked = walk(walkers, arguments, random, loaded.name);
  tell(reportOf(WalkedOn(loaded.network), loaded.name, walkers, walked.outcome, arguments, seed),
       arguments);
  if (!arguments.coverageFile.empty()) {
    writeCoverage(arguments.coverageFile, walked.outcome.coverage());
  }
}

void runWalk(const WalkArguments& arguments) {
  checkOptions(arguments);
  if (arguments.walkOnly) return runWalkOnly(arguments);
  const LoadedNetwork loaded = loadNetwork(arguments.input);
  requireNoVisits(loaded, arguments);
  const Network network(loaded.network);
  const std::uint64_t seed = useSeed(arguments.seed);
  std::optional<RandomState> state;
  if (arguments.substream) state = stateOf(seed, arguments.substream);
  RandomState* const random = state ? &*state : nullptr;
  const std::vector<std::uint64_t> starts =
      startVertices(network, loaded.name, arguments.starts, arguments.agents, random);
  Walkers walkers = makeWalkers(network, starts, arguments, loaded.name);
  if (!arguments.pageFile.empty()) {
    requireShowable(network, pageOptions(loaded, arguments), loaded.name);
  }
  const Walked walked = walk(walkers, arguments, random, loaded.name);
  const WalkOutcome& outcome = walked.outcome;

  const WalkReport report =
      reportOf(WalkedOn(network), loaded.name, walkers, outcome, arguments, seed);
  tell(report, arguments);
  if (walked.record) writeWalkPage(loaded, *walked.record, seed, arguments);
  writeFiles(loaded, outcome, report.visits, arguments);
}

}  // namespace

void addWalk(CommandLine& commandLine) {
  const auto arguments = std::make_shared<WalkArguments>();
  Command command =
      commandLine.addCommand("walk", "Let agents walk at random over a network", kWalkExamples);
  addInput(command, "FILE", arguments->input);
  command.addWholeNumber("--agents", arguments->agents, 1, UINT64_MAX, "How many agents walk");
  command.addWholeNumber("--steps", arguments->steps, 1, kMostSteps,
                         "How many steps each takes; with --until-reach at most", "--until-reach");
  command.addShare("--until-reach", true, arguments->target,
                   "Stop once this share of the vertices was reached, above 0 and up to 1");
  command.addWholeNumber("--seed", arguments->seed, 0, UINT32_MAX,
                         "Choose the random numbers; 0 counts as 1");
  command.addWholeNumber("--substream", arguments->substream, 0, RandomState::kSubstreams - 1,
                         "Take the numbers of this task, which are its own for each seed");
  command.addText("--start", "V,V,...|FILE|uniform|degree", "vertices or a file", arguments->starts,
                  "Where agents start: by name or index, a file with one vertex a line, or drawn, "
                  "each alike or by degree");
  command.addChoice("--choice", "CHOICE", choiceWords(), arguments->choice,
                    "How to choose among the edges of a vertex: " + wordList(choiceWords(), "or"));
  command.addShare("--restart", false, arguments->restart,
                   "The probability of going back to the start in a step, by default 0");
  command.addWholeNumber("--top", arguments->top, 0, UINT64_MAX,
                         "How many vertices to list, by default 10, or all as CSV or JSON");
  command.addWholeNumber("--memory", arguments->memory, 1, kMostSteps,
                         "How many visits each agent remembers and avoids");
  command.addShare("--errors", false, arguments->errors,
                   "The probability of remembering a wrong vertex, by default 0");
  command.addText("--agents-network", "FILE", "a file", arguments->agentsFile,
                  "The network in which agents tell each other what they remember");
  command.addText("--paths", "OUT.csv", "a file", arguments->pathsFile,
                  "Write every agent's path, as CSV; - for standard output");
  command.addText("--coverage", "OUT.csv", "a file", arguments->coverageFile,
                  "Write how many vertices were reached by which step, as CSV");
  command.addText("--page", "OUT.html", "a file", arguments->pageFile,
                  "Write a page that walks again in any browser; - for standard output");
  addShowing(command, arguments->showing);
  command.addText("--output", "OUT", "a file", arguments->output.file,
                  "Write the network with its visits; - for standard output");
  addOutputFormat(command, arguments->output);
  command.addThreads();
  command.addFlag("--force", arguments->force, "Let --output replace a property \"Visits\"");
  command.addFlag("--walk-only", arguments->walkOnly,
                  "Keep no more of the network than walks read, for very large ones");
  addAnswer(command, arguments->format);
  command.onRun([arguments] { runWalk(*arguments); });
}

}  // namespace veq::tool
