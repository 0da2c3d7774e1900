#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "veq/base/diagnostic_log.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

Owned<VEQNetwork> networkOf(const benchmark::State& state) {
  setDiagnosticSink({});
  const auto m = static_cast<std::uint64_t>(state.range(0));
  const std::uint64_t n = m / 5;
  std::mt19937_64 random(1);
  internal::RawVector<std::uint64_t> from(m);
  internal::RawVector<std::uint64_t> to(m);
  for (auto& end : from) end = random() % n;
  for (auto& end : to) end = random() % n;
  auto network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices(
      n, VEQNumberArray(std::move(from)), VEQNumberArray(std::move(to)));
  if (state.range(1) != 0) {
    network->setPropertiesOfVertices_forKey(VEQNumberArray::initWithDoubleScalar_count(1.5, n),
                                            "number");
    std::vector<PropertyValue> names(n);
    for (std::uint64_t v = 0; v < n; ++v) names[v] = std::to_string(v);
    network->setPropertiesOfVertices_forKey(std::make_shared<GenericArray>(std::move(names)),
                                            "Name");
  }
  return network;
}

// Edges, and whether there are properties.
void copyOfAll(benchmark::State& state) {
  const auto network = networkOf(state);
  for (auto _ : state) {
    auto copy = VEQNetwork::initWithNetwork(*network);
    benchmark::DoNotOptimize(copy);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(copyOfAll)->ArgsProduct({{10'000, 1'000'000}, {0, 1}})->Unit(benchmark::kMillisecond);

// The same through handles in another order, which have to be looked up.
void copyOfVerticesInReverse(benchmark::State& state) {
  const auto network = networkOf(state);
  internal::RawVector<std::uint64_t> order(network->countVertices());
  for (std::uint64_t i = 0; i < order.size(); ++i) order[i] = order.size() - 1 - i;
  const auto vertices = network->vertices().subarrayWithIndices(VEQNumberArray(std::move(order)));
  for (auto _ : state) {
    auto copy = VEQNetwork::initWithVertices_edges(vertices, network->edges());
    benchmark::DoNotOptimize(copy);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(copyOfVerticesInReverse)
    ->ArgsProduct({{10'000, 1'000'000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq
