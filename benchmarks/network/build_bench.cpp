// Building networks, inserting into them, and asking about all of their vertices.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "veq/network/network.hpp"

namespace veq {
namespace {

// Edges between random vertices; four times as many as vertices.
struct RandomEdges {
  explicit RandomEdges(std::uint64_t edges) : from(edges), to(edges), vertices(edges / 4 + 1) {
    std::mt19937_64 random(1);
    for (std::uint64_t& end : from) end = random() % vertices;
    for (std::uint64_t& end : to) end = random() % vertices;
  }

  [[nodiscard]] Owned<VEQNetwork> network(bool directed) const {
    return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
        vertices, VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), directed);
  }
  [[nodiscard]] Owned<VEQNetwork> withoutEdges(bool directed) const {
    const auto nothing = VEQNumberArray::ofIndices({});
    return VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(vertices, nothing,
                                                                                 nothing, directed);
  }

  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  std::uint64_t vertices;
};

std::uint64_t sizeOf(const benchmark::State& state) {
  return static_cast<std::uint64_t>(state.range(0));
}

void countEdges(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BuildFromIndices(benchmark::State& state) {
  const RandomEdges edges(sizeOf(state));
  const auto from = VEQNumberArray::ofIndices(edges.from);
  const auto to = VEQNumberArray::ofIndices(edges.to);
  for (auto _ : state) {
    benchmark::DoNotOptimize(VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
        edges.vertices, from, to, state.range(1) != 0));
  }
  countEdges(state);
}
BENCHMARK(BuildFromIndices)
    ->ArgsProduct({{10000, 100000, 1000000, 10000000}, {0, 1}})
    ->ArgNames({"edges", "directed"})
    ->Unit(benchmark::kMillisecond);

void InsertInBulk(benchmark::State& state) {
  const RandomEdges edges(sizeOf(state));
  for (auto _ : state) {
    const auto network = edges.withoutEdges(false);
    network->addEdgesFromVerticesIndices_toVerticesIndices_count(edges.from.data(), edges.to.data(),
                                                                 edges.from.size());
  }
  countEdges(state);
}
BENCHMARK(InsertInBulk)->RangeMultiplier(10)->Range(10000, 1000000)->Unit(benchmark::kMillisecond);

// Into an empty network, so that every list grows from nothing.
void InsertOneByOne(benchmark::State& state) {
  const RandomEdges edges(sizeOf(state));
  for (auto _ : state) {
    const auto network = edges.withoutEdges(state.range(1) != 0);
    for (std::uint64_t e = 0; e < edges.from.size(); ++e) {
      network->addEdgesFromVerticesIndices_toVerticesIndices_count(&edges.from[e], &edges.to[e], 1);
    }
  }
  countEdges(state);
}
BENCHMARK(InsertOneByOne)
    ->ArgsProduct({{10000, 1000000}, {0, 1}})
    ->ArgNames({"edges", "directed"})
    ->Unit(benchmark::kMillisecond);

void LinkOneByOne(benchmark::State& state) {
  const RandomEdges edges(sizeOf(state));
  for (auto _ : state) {
    const auto network = edges.withoutEdges(false);
    for (std::uint64_t e = 0; e < edges.from.size(); ++e) {
      benchmark::DoNotOptimize(network->linkVertex_to(*network->vertexAtIndex(edges.from[e]),
                                                      *network->vertexAtIndex(edges.to[e])));
    }
  }
  countEdges(state);
}
BENCHMARK(LinkOneByOne)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void Degrees(benchmark::State& state) {
  const auto network = RandomEdges(sizeOf(state)).network(false);
  for (auto _ : state) benchmark::DoNotOptimize(network->calcDegrees());
  countEdges(state);
}
BENCHMARK(Degrees)->Arg(10000)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);

void Strengths(benchmark::State& state) {
  const auto network = RandomEdges(sizeOf(state)).network(false);
  network->setEdgesWeightValues(
      *VEQNumberArray::initWithFloatScalar_count(0.5f, network->countEdges()));
  for (auto _ : state) benchmark::DoNotOptimize(network->calcStrengths());
  countEdges(state);
}
BENCHMARK(Strengths)->Arg(10000)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);

// Into the same buffer again and again: clearing n x n cells is what it costs.
void AdjacencyMatrix(benchmark::State& state) {
  const auto network = RandomEdges(sizeOf(state)).network(true);
  std::vector<float> cells(network->countVertices() * network->countVertices());
  for (auto _ : state) {
    benchmark::DoNotOptimize(network->buildAdjacencyMatrixInPointer(cells.data()));
  }
  countEdges(state);
}
BENCHMARK(AdjacencyMatrix)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// Every handle of a network, once made and once shared.
void AllHandles(benchmark::State& state) {
  const RandomEdges edges(sizeOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    auto network = edges.network(false);
    state.ResumeTiming();
    std::uint64_t sum = 0;
    for (const VEQEdge& edge : network->edges()) sum += edge.identification();
    benchmark::DoNotOptimize(sum);
    state.PauseTiming();
    network.reset();
    state.ResumeTiming();
  }
  countEdges(state);
}
BENCHMARK(AllHandles)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq
