#include "veq/agents/walkers.hpp"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "veq/agents/dynamic_agents_group.hpp"
#include "veq/agents/internal/group_state.hpp"
#include "veq/agents/internal/walk_only_group.hpp"
#include "veq/agents/internal/walks.hpp"
#include "veq/agents/internal/weight_sums.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/number_text.hpp"
#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/models/internal/random_source.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {
namespace {

using internal::AgentsState;
using internal::GroupAccess;
using internal::GroupState;
using internal::RandomSource;
using internal::WalkOnlyGroup;
using internal::WalkRowsAccess;

Error wrong(std::string text) { return {ErrorKind::kArgument, std::move(text)}; }

template <class Number>
std::string text(Number value) {
  std::string digits;
  internal::appendShortest(digits, value);
  return digits;
}

std::string text(Uint128 value) {
  std::string digits;
  do {
    digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(value % 10)));
    value /= 10;
  } while (value != 0);
  return digits;
}

Error lacking(std::string text) { return {ErrorKind::kUnsupported, std::move(text)}; }

std::uint64_t requireAgent(const AgentsState& group, std::uint64_t agent) {
  if (agent >= group.agents) throw std::out_of_range("The group has no agent of this number.");
  return agent;
}

// "start 2: vertex 7 of 5"
std::optional<Error> placeError(const char* what, std::span<const std::uint64_t> places,
                                std::uint64_t vertices) {
  const auto outside = std::find_if(places.begin(), places.end(),
                                    [=](std::uint64_t place) { return place >= vertices; });
  if (outside == places.end()) return std::nullopt;
  return wrong(std::string(what) + " " + std::to_string(outside - places.begin()) + ": vertex " +
               std::to_string(*outside) + " of " + std::to_string(vertices));
}

std::optional<Error> drawsError(RandomState* random, Uint128 draws) {
  if (RandomSource(random).has(draws)) return std::nullopt;
  return wrong("the substream has " + std::to_string(*random->drawsLeft()) + " draws left, not " +
               text(draws));
}

Error noMemory() { return {ErrorKind::kMemory, "memory cannot hold the agents"}; }

// One value for all is as good as one for each; none is `byDefault` for all.
template <class T>
std::optional<std::vector<T>> forEachAgent(const std::vector<T>& values, std::uint64_t agents,
                                           std::optional<T> byDefault) {
  if (values.empty() && byDefault) return std::vector<T>(agents, *byDefault);
  if (values.size() == 1) return std::vector<T>(agents, values[0]);
  if (values.size() != agents) return std::nullopt;
  return values;
}

std::optional<Error> optionsError(const AgentsState& group, std::uint64_t vertices,
                                  const WalkOptions& options) {
  if (!options.steps && !options.target) return wrong("neither steps nor target");
  if (options.target && !(*options.target > 0.0 && *options.target <= 1.0)) {
    return wrong("target " + text(*options.target) + ": give more than 0, up to 1");
  }
  if (!(options.restart >= 0.0 && options.restart <= 1.0)) {
    return wrong("restart " + text(options.restart) + ": give 0 to 1");
  }
  if (options.paths && options.steps && group.agents != 0 &&
      *options.steps > UINT64_MAX / group.agents) {
    return wrong("paths of 2^64 entries or more");
  }
  return placeError("agent", std::span(group.positions->data(), group.agents), vertices);
}

// Calls walk(choice) with the choice that is asked for; the sums are those of a weighted one.
template <class Walk>
auto withChoice(Choice choice, const internal::WeightSums* sums, Walk walk) {
  if (choice == Choice::kEven) return walk(internal::EvenChoice());
  if (choice == Choice::kWeighted) return walk(sums->choice());
  return walk(internal::PublishedChoice());
}

template <class StartOf>
Result<std::vector<std::uint64_t>> drawStarts(std::uint64_t agents, RandomState* random,
                                              StartOf startOf) {
  const Uint128 draws = Uint128{agents} * 2;
  if (auto error = drawsError(random, draws)) return *error;
  // Where sizes have 32 bits, a vector would take what is left of a larger number.
  internal::requireMemory(agents, sizeof(std::uint64_t));
  std::vector<std::uint64_t> starts(agents);
  RandomState state = internal::StateAccess::make(RandomSource(random).take(draws));
  for (std::uint64_t& start : starts) start = startOf(state);
  return starts;
}

Result<std::vector<std::uint64_t>> drawUniformStarts(std::uint64_t vertices, std::uint64_t agents,
                                                     RandomState* random) {
  if (vertices == 0) return wrong("the network has no vertices");
  return drawStarts(agents, random,
                    [vertices](RandomState& state) { return state.nextBelow(vertices); });
}

// Of agents that take so many for a step, and one more where they restart.
Uint128 drawsOf(std::uint64_t agents, std::uint64_t purposes, const WalkOptions& options) {
  if (options.restart > 0.0) ++purposes;
  return Uint128{agents} * options.steps.value_or(1) * purposes;
}
constexpr std::uint64_t kPlainPurposes = 1;
constexpr std::uint64_t kMemoryPurposes = 3;

// Has walk(request) make the walk that the options describe, which takes so many draws, and tells
// what it led to; `starts` are those of paths.
template <class Walk>
Result<WalkOutcome> outcomeOf(const WalkOptions& options, std::uint64_t vertices, Uint128 draws,
                              std::span<const std::uint64_t> homes,
                              std::vector<std::uint64_t> starts, Walk walk) {
  const internal::OwnParallelism own(options.threads);
  internal::WalkRequest request;
  request.returnPath = options.paths;
  request.untilReach = options.target.value_or(0.0);
  request.source = RandomSource(options.random);
  request.restarts = {static_cast<std::uint32_t>(std::ceil(options.restart * 0x1p31)), homes};
  request.progress = &options.progress;
  request.threads = parallelism();
  request.endless = !options.steps;
  if (options.steps) {
    request.steps = *options.steps;
    if (auto error = drawsError(options.random, draws)) return *error;
  } else {
    const auto left = options.random ? options.random->drawsLeft() : std::nullopt;
    request.steps = left && draws != 0 ? static_cast<std::uint64_t>(*left / draws) : UINT64_MAX;
  }
  std::optional<internal::ArrivalRecord> arrivals;
  if (options.firstArrivals) request.arrivals = &arrivals.emplace(vertices);

  internal::WalkResult walked = walk(request);
  WalkOutcome outcome;
  const bool allSteps = walked.end == WalkEnd::kSteps;
  outcome.end = allSteps && request.endless ? WalkEnd::kDraws : walked.end;
  outcome.steps = walked.steps;
  if (walked.paths) outcome.paths.emplace(std::move(*walked.paths), std::move(starts));
  if (arrivals) outcome.firstArrivals = arrivals->takeSteps();
  return outcome;
}

}  // namespace

Walkers::Walkers(Shared<VEQNetworkAgentsGroup> published) {
  if (!published) throw std::invalid_argument("There is no group of agents.");
  auto starts = GroupAccess::of(*published).positions;
  state_ = std::make_shared<const State>(State{std::move(published), std::move(starts), nullptr});
}

Walkers::Walkers(State state) : state_(std::make_shared<const State>(std::move(state))) {}

Result<Walkers> Walkers::at(const Network& network, std::span<const std::uint64_t> starts) {
  if (auto error = placeError("start", starts, network.countVertices())) return *error;
  Shared<VEQNetworkAgentsGroup> group = VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(
      network.published(), VEQNumberArray::ofIndices(starts));
  if (!group) return noMemory();
  return Walkers(std::move(group));
}

Result<Walkers> Walkers::at(const WalkNetwork& network, std::span<const std::uint64_t> starts) {
  if (auto error = placeError("start", starts, network.countVertices())) return *error;
  try {
    auto group = std::make_shared<WalkOnlyGroup>(
        network, AgentsState::Positions(starts.begin(), starts.end()));
    Shared<const std::vector<std::uint64_t>> positions = group->positions;
    return Walkers(State{nullptr, std::move(positions), std::move(group)});
  } catch (const std::bad_alloc&) {
    return noMemory();
  }
}

Result<Walkers> Walkers::withMemory(const Network& network, std::span<const std::uint64_t> starts,
                                    const MemoryOptions& memory) {
  if (auto error = placeError("start", starts, network.countVertices())) return *error;
  const std::string forAgents = " for " + std::to_string(starts.size()) + " agents";
  const auto sizes = forEachAgent<std::uint64_t>(memory.sizes, starts.size(), std::nullopt);
  if (!sizes) return wrong(std::to_string(memory.sizes.size()) + " memory sizes" + forAgents);
  const auto errors = forEachAgent<float>(memory.errors, starts.size(), 0.0F);
  if (!errors) return wrong(std::to_string(memory.errors.size()) + " errors" + forAgents);
  for (std::size_t a = 0; a < starts.size(); ++a) {
    if ((*sizes)[a] == 0) return wrong("agent " + std::to_string(a) + ": memory size 0");
    const float error = (*errors)[a];
    if (error >= 0.0F && error <= 1.0F) continue;
    return wrong("agent " + std::to_string(a) + ": error " + text(error) + ", not 0 to 1");
  }
  if (memory.listeners && memory.listeners->countVertices() < starts.size()) {
    return wrong(std::to_string(memory.listeners->countVertices()) + " listeners" + forAgents);
  }
  Shared<VEQNetworkAgentsGroup> group = VEQNetworkDynamicAgentsGroup::
      initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
          network.published(), VEQNumberArray::ofIndices(starts),
          memory.listeners ? memory.listeners->published() : nullptr,
          *VEQNumberArray::initWithFloatArray_count(errors->data(), errors->size()),
          VEQNumberArray::ofIndices(*sizes));
  if (!group) return noMemory();
  return Walkers(std::move(group));
}

Result<std::vector<std::uint64_t>> Walkers::uniformStarts(const Network& network,
                                                          std::uint64_t agents,
                                                          RandomState* random) {
  return drawUniformStarts(network.countVertices(), agents, random);
}

Result<std::vector<std::uint64_t>> Walkers::uniformStarts(const WalkNetwork& network,
                                                          std::uint64_t agents,
                                                          RandomState* random) {
  return drawUniformStarts(network.countVertices(), agents, random);
}

Result<std::vector<std::uint64_t>> Walkers::startsByDegree(const Network& network,
                                                           std::uint64_t agents,
                                                           RandomState* random) {
  const std::uint64_t n = network.countVertices();
  // For each vertex the entries of all lists up to and with its own.
  std::vector<std::uint64_t> entries(n);
  std::uint64_t all = 0;
  internal::CoreAccess::of(*network.published()).store.visit([&](const auto& topology) {
    for (std::uint64_t v = 0; v < n; ++v) entries[v] = all += topology.out.count(v);
  });
  if (all == 0) return wrong("the network has no edges");
  return drawStarts(agents, random, [&](RandomState& state) {
    const auto vertex = std::upper_bound(entries.begin(), entries.end(), state.nextBelow(all));
    return static_cast<std::uint64_t>(vertex - entries.begin());
  });
}

Result<std::vector<std::uint64_t>> Walkers::startsByDegree(const WalkNetwork& network,
                                                           std::uint64_t agents,
                                                           RandomState* random) {
  if (network.size().entries == 0) return wrong("the network has no edges");
  const auto* const rows = WalkRowsAccess::of(network).rows();
  return drawStarts(agents, random, [&](RandomState& state) {
    // Lists lie one behind the other, so that the next one begins where all entries so far end.
    const auto* const next = std::upper_bound(
        rows + 1, rows + network.countVertices(), state.nextBelow(network.size().entries),
        [](std::uint64_t entry, const auto& row) { return entry < row.start; });
    return static_cast<std::uint64_t>(next - rows - 1);
  });
}

Result<WalkOutcome> Walkers::walk(const WalkOptions& options) {
  if (state_->walkOnly) return walkOnWalkNetwork(options);
  VEQNetworkAgentsGroup& published = *state_->published;
  GroupState& group = GroupAccess::of(published);
  const std::uint64_t vertices = group.network->countVertices();
  if (auto error = optionsError(group, vertices, options)) return *error;
  const internal::NetworkCore& core = internal::CoreAccess::of(*group.network);
  Shared<const internal::WeightSums> sums;
  if (options.choice == Choice::kWeighted && !(sums = internal::WeightSums::of(core))) {
    const std::uint64_t edge = *internal::WeightSums::wrongWeight(core);
    return wrong("edge " + std::to_string(edge) + ": weight " + text((*core.edgesWeights)[edge]));
  }
  std::vector<std::uint64_t> starts;
  if (options.paths) starts = positions();
  internal::DynamicState* const memories = GroupAccess::memoriesOf(published);
  const Uint128 draws = drawsOf(group.agents, memories ? kMemoryPurposes : kPlainPurposes, options);
  return outcomeOf(options, vertices, draws, *state_->starts, std::move(starts),
                   [&](const internal::WalkRequest& request) {
                     return withChoice(options.choice, sums.get(), [&](auto choice) {
                       return memories ? internal::walkWithMemory(group, *memories, request, choice)
                                       : internal::walkPlainly(group, request, choice);
                     });
                   });
}

Result<WalkOutcome> Walkers::walkOnWalkNetwork(const WalkOptions& options) {
  WalkOnlyGroup& group = *state_->walkOnly;
  const std::uint64_t vertices = group.network.countVertices();
  if (auto error = optionsError(group, vertices, options)) return *error;
  if (options.paths) {
    return lacking(
        "paths are histories of single agents, which are not kept on a walk-only network");
  }
  if (options.choice == Choice::kWeighted) {
    return lacking("a walk-only network has no weights to choose by");
  }
  return outcomeOf(options, vertices, drawsOf(group.agents, kPlainPurposes, options),
                   *state_->starts, {}, [&](const internal::WalkRequest& request) {
                     return options.choice == Choice::kEven
                                ? internal::walkOnRows(group, request, internal::EvenChoice())
                                : internal::walkOnRows(group, request, internal::PublishedChoice());
                   });
}

DrawCount Walkers::drawsOfWalk(const WalkOptions& options) const {
  const bool haveMemory = state_->published && GroupAccess::memoriesOf(*state_->published);
  return DrawCount::of(
      drawsOf(countAgents(), haveMemory ? kMemoryPurposes : kPlainPurposes, options));
}

AgentsState& Walkers::agents() const {
  if (state_->walkOnly) return *state_->walkOnly;
  return GroupAccess::of(*state_->published);
}

const Shared<VEQNetworkAgentsGroup>& Walkers::published() const {
  if (state_->walkOnly) throw lacking("agents on a walk-only network are no published group");
  return state_->published;
}

std::uint64_t Walkers::countAgents() const { return agents().agents; }

std::vector<std::uint64_t> Walkers::positions() const {
  const AgentsState& group = agents();
  return {group.positions->data(), group.positions->data() + group.agents};
}

bool Walkers::forget() {
  return state_->walkOnly ? state_->walkOnly->forget() : state_->published->flushWalkHistory();
}

std::vector<std::uint64_t> Walkers::visits() const {
  if (state_->walkOnly) return state_->walkOnly->visits();
  GroupState& group = GroupAccess::of(*state_->published);
  const std::lock_guard guard(group.historyLock);
  internal::Team team(parallelism());
  return std::visit([&](auto& history) { return history.visits(team); }, group.history);
}

std::vector<std::uint64_t> Walkers::visits(std::uint64_t agent) const {
  requireAgent(agents(), agent);
  requireHistories();
  GroupState& group = GroupAccess::of(*state_->published);
  const std::lock_guard guard(group.historyLock);
  return std::visit([agent](auto& history) { return history.visitsOf(agent); }, group.history);
}

Shared<const VEQNumberArray> Walkers::liveVisits(std::uint64_t agent) const {
  requireAgent(agents(), agent);
  requireHistories();
  return state_->published->visitFrequencyOfVerticesForAgent(static_cast<std::int64_t>(agent));
}

void Walkers::requireHistories() const {
  if (!state_->walkOnly) return;
  throw lacking("visits of single agents are not kept on a walk-only network, only those of all");
}

std::vector<std::uint64_t> Walkers::remembered(std::uint64_t agent) const {
  requireAgent(agents(), agent);
  std::vector<std::uint64_t> vertices;
  if (state_->walkOnly) return vertices;
  if (const internal::DynamicState* dynamic = GroupAccess::memoriesOf(*state_->published)) {
    std::visit(
        [&](const auto& memories) {
          memories.forEachRemembered(agent, [&](std::uint64_t v) { vertices.push_back(v); });
        },
        dynamic->memories);
  }
  return vertices;
}

}  // namespace veq
