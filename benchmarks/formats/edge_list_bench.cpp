#include "benchmarks/formats/bench_network.hpp"

namespace veq::bench {
namespace {

void readEdgeList(benchmark::State& state) {
  const std::string text =
      namedNetwork(static_cast<std::uint64_t>(state.range(0)))->edgesListFormattedStringValue();
  for (auto _ : state) {
    benchmark::DoNotOptimize(VEQNetwork::initWithEdgesListString_directed(text, true));
  }
  countText(state, text.size());
}
BENCHMARK(readEdgeList)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void writeEdgeList(benchmark::State& state) {
  const auto network = namedNetwork(static_cast<std::uint64_t>(state.range(0)));
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = network->edgesListFormattedStringValue();
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  countText(state, bytes);
}
BENCHMARK(writeEdgeList)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

/// Links between as many vertices as edges, every name of them new.
void resolveDistinctNames(benchmark::State& state) {
  std::string from, to;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    if (i > 0) {
      from += '\n';
      to += '\n';
    }
    from += "vertex " + std::to_string(i);
    to += "vertex " + std::to_string(i * 7919 % state.range(0));
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        VEQNetwork::initWithVerticesString_fromLinksString_toLinksString(std::nullopt, from, to));
  }
  countText(state, from.size() + to.size());
}
BENCHMARK(resolveDistinctNames)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq::bench
