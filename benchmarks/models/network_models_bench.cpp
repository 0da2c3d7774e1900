#include <benchmark/benchmark.h>

#include "veq/models/random_generator.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

void preferentialAttachment(benchmark::State& state) {
  const auto n = static_cast<std::uint64_t>(state.range(0));
  const auto m = static_cast<std::uint64_t>(state.range(1));
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(7);
  for (auto _ : state) {
    auto network =
        VEQNetwork::initBarabasiNetworkWithInitialVertices_degreeGrowth_iterations(m, m, n - m);
    benchmark::DoNotOptimize(network);
    state.PauseTiming();
    network.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(m * (n - m)));
}
BENCHMARK(preferentialAttachment)
    ->ArgsProduct({{100'000, 1'000'000}, {2, 4, 8}})
    ->Unit(benchmark::kMillisecond);

void randomNetwork(benchmark::State& state) {
  const auto n = static_cast<std::uint64_t>(state.range(0));
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(7);
  for (auto _ : state) {
    auto network = VEQNetwork::initRandomNetworkWithNumberOfVertices_degree(n, 10);
    benchmark::DoNotOptimize(network);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n * (n - 1) / 2));
}
BENCHMARK(randomNetwork)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq
