#include <benchmark/benchmark.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "veq/agents/agents_group.hpp"
#include "veq/models/random_generator.hpp"

namespace veq::bench {
namespace {

constexpr std::int64_t kMoves = 4'000'000;

/// Edges between random vertices, five for each, made once for each size.
Shared<const VEQNetwork> network(std::int64_t edges) {
  static std::pair<std::int64_t, Shared<const VEQNetwork>> last;
  if (last.first != edges) {
    auto& random = *VEQRandomGenerator::sharedRandomGenerator();
    random.setRandomSeed(1);
    const auto m = static_cast<std::uint64_t>(edges);
    const auto from = random.randomIntegerArrayFrom_to_withCount(0, edges / 5 - 1, m);
    const auto to = random.randomIntegerArrayFrom_to_withCount(0, edges / 5 - 1, m);
    last = {edges, VEQNetwork::networkWithLinksIndexedFrom_toIndices(*from, *to)};
  }
  return last.second;
}

Owned<VEQNetworkAgentsGroup> group(std::int64_t agents, std::int64_t edges) {
  auto on = network(edges);
  const auto start =
      VEQRandomGenerator::sharedRandomGenerator()->randomIntegerArrayFrom_to_withCount(
          0, static_cast<std::int64_t>(on->countVertices()) - 1,
          static_cast<std::uint64_t>(agents));
  return VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(std::move(on), *start);
}

void countMoves(benchmark::State& state, std::int64_t movesPerIteration) {
  state.SetItemsProcessed(movesPerIteration * state.iterations());
}

/// A new group each time, so that no earlier history is folded.
template <bool kPaths>
void walk(benchmark::State& state, float untilReach) {
  const std::int64_t steps = kMoves / state.range(0);
  for (auto _ : state) {
    state.PauseTiming();
    const auto walkers = group(state.range(0), state.range(1));
    state.ResumeTiming();
    benchmark::DoNotOptimize(walkers->walkForSteps_returnPath_untilReach(
        static_cast<std::uint64_t>(steps), kPaths, untilReach));
  }
  countMoves(state, steps * state.range(0));
}

const std::vector<std::int64_t> kAgents = {1, 16, 256, 1024};
const std::vector<std::int64_t> kEdges = {10'000, 100'000, 1'000'000, 10'000'000};

void walkFreely(benchmark::State& state) { walk<false>(state, -1.0F); }
BENCHMARK(walkFreely)->ArgsProduct({kAgents, kEdges})->Unit(benchmark::kMillisecond);

void walkWithReachTarget(benchmark::State& state) { walk<false>(state, 2.0F); }
BENCHMARK(walkWithReachTarget)->ArgsProduct({kAgents, {1'000'000}})->Unit(benchmark::kMillisecond);

void walkWithPaths(benchmark::State& state) { walk<true>(state, -1.0F); }
BENCHMARK(walkWithPaths)->ArgsProduct({kAgents, {1'000'000}})->Unit(benchmark::kMillisecond);

/// One group that walks on and on, so that its log is folded all the time.
void walkAndFold(benchmark::State& state) {
  const auto walkers = group(state.range(0), state.range(1));
  const std::int64_t steps = kMoves / state.range(0);
  for (auto _ : state) walkers->walkForSteps_returnPath(static_cast<std::uint64_t>(steps), false);
  countMoves(state, steps * state.range(0));
}
BENCHMARK(walkAndFold)
    ->ArgsProduct({{1, 16, 1024}, {10'000, 1'000'000}})
    ->Unit(benchmark::kMillisecond);

void walkOneStep(benchmark::State& state) {
  const auto walkers = group(state.range(0), 500'000);
  for (auto _ : state) benchmark::DoNotOptimize(walkers->tellAgentsToWalkToNextVertices());
  countMoves(state, state.range(0));
}
BENCHMARK(walkOneStep)->Arg(1)->Arg(1000)->Unit(benchmark::kMicrosecond);

void askForTotals(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    const auto walkers = group(256, state.range(0));
    walkers->walkForSteps_returnPath(kMoves / 256, false);
    state.ResumeTiming();
    benchmark::DoNotOptimize(walkers->globalVisitFrequencyOfVertices());
  }
  countMoves(state, kMoves);
}
BENCHMARK(askForTotals)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq::bench
