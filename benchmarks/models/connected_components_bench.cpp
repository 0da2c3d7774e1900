#include <benchmark/benchmark.h>

#include <random>

#include "veq/base/diagnostic_log.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

// Uniform edges; with 0.6 for each vertex the network has a giant component and many small ones.
Owned<VEQNetwork> uniformNetwork(std::uint64_t n, std::uint64_t m) {
  std::mt19937_64 random(1);
  internal::RawVector<std::uint64_t> from(m);
  internal::RawVector<std::uint64_t> to(m);
  for (auto& end : from) end = random() % n;
  for (auto& end : to) end = random() % n;
  return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      n, VEQNumberArray(std::move(from)), VEQNumberArray(std::move(to)));
}

Owned<VEQNetwork> networkOf(const benchmark::State& state) {
  setDiagnosticSink({});
  const auto n = static_cast<std::uint64_t>(state.range(0));
  return uniformNetwork(n, n * static_cast<std::uint64_t>(state.range(1)) / 10);
}

void splitIntoComponents(benchmark::State& state) {
  const auto network = networkOf(state);
  for (auto _ : state) {
    auto parts = network->connectedSubNetworksArray();
    benchmark::DoNotOptimize(parts);
    state.PauseTiming();
    parts.clear();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(splitIntoComponents)
    ->ArgsProduct({{10'000, 100'000, 1'000'000}, {0, 6, 50}})
    ->Unit(benchmark::kMillisecond);

void largestComponent(benchmark::State& state) {
  const auto network = networkOf(state);
  for (auto _ : state) {
    auto largest = network->largestConnectedSubNetwork();
    benchmark::DoNotOptimize(largest);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(largestComponent)
    ->ArgsProduct({{100'000, 1'000'000}, {6, 50}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq
