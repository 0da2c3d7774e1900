#include <benchmark/benchmark.h>

#include <cstdint>
#include <utility>

#include "veq/agents/dynamic_agents_group.hpp"
#include "veq/models/random_generator.hpp"

namespace veq {
namespace {

constexpr std::uint64_t kMoves = 1'000'000;

// Edges between random vertices, five for each.
Shared<const VEQNetwork> network(std::int64_t vertices) {
  auto& random = *VEQRandomGenerator::sharedRandomGenerator();
  random.setRandomSeed(1);
  const auto m = static_cast<std::uint64_t>(5 * vertices);
  const auto from = random.randomIntegerArrayFrom_to_withCount(0, vertices - 1, m);
  const auto to = random.randomIntegerArrayFrom_to_withCount(0, vertices - 1, m);
  return VEQNetwork::networkWithLinksIndexedFrom_toIndices(*from, *to);
}

// Agents in a circle, each linked to two on either side.
Shared<const VEQNetwork> circle(std::uint64_t agents) {
  const auto from = VEQNumberArray::initWithIntegerScalar_count(0, 2 * agents);
  const auto to = VEQNumberArray::initWithIntegerScalar_count(0, 2 * agents);
  for (std::uint64_t i = 0; i < 2 * agents; ++i) {
    from->setIntegerValue_atIndex(static_cast<std::int64_t>(i / 2), i);
    to->setIntegerValue_atIndex(static_cast<std::int64_t>((i / 2 + 1 + i % 2) % agents), i);
  }
  return VEQNetwork::networkWithLinksIndexedFrom_toIndices(*from, *to);
}

// Agents, vertices, slots of each memory.
void walkWithMemory(benchmark::State& state, bool sharing) {
  const auto agents = static_cast<std::uint64_t>(state.range(0));
  const auto on = network(state.range(1));
  const auto start =
      VEQRandomGenerator::sharedRandomGenerator()->randomIntegerArrayFrom_to_withCount(
          0, static_cast<std::int64_t>(on->countVertices()) - 1, agents);
  const auto errors = VEQNumberArray::initWithDoubleScalar_count(0.1, agents);
  const auto sizes = VEQNumberArray::initWithIntegerScalar_count(state.range(2), agents);
  const auto group = VEQNetworkDynamicAgentsGroup::
      initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
          on, *start, sharing ? circle(agents) : nullptr, *errors, *sizes);
  for (auto _ : state) {
    group->walkForSteps_returnPath(kMoves / agents, false);
    state.PauseTiming();
    group->flushWalkHistory();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kMoves / agents * agents));
}
void walkWithMemoryAlone(benchmark::State& state) { walkWithMemory(state, false); }
void walkWithMemorySharing(benchmark::State& state) { walkWithMemory(state, true); }
BENCHMARK(walkWithMemoryAlone)
    ->ArgsProduct({{1, 1000}, {10'000, 1'000'000}, {1, 10, 100}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(walkWithMemorySharing)
    ->ArgsProduct({{1000}, {10'000, 1'000'000}, {1, 10, 100}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq
