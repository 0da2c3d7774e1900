#include <benchmark/benchmark.h>

#include "benchmarks/formats/bench_network.hpp"
#include "veq/formats/internal/xnet.hpp"

namespace veq::bench {
namespace {

void readXnet(benchmark::State& state) {
  const std::string text =
      namedNetwork(static_cast<std::uint64_t>(state.range(0)))->formattedStringValue();
  for (auto _ : state) {
    benchmark::DoNotOptimize(VEQNetwork::initWithNetworkFormattedString(text));
  }
  countText(state, text.size());
}
BENCHMARK(readXnet)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

/// The text alone, without the network.
void readXnetDraft(benchmark::State& state) {
  const std::string text =
      namedNetwork(static_cast<std::uint64_t>(state.range(0)))->formattedStringValue();
  for (auto _ : state) benchmark::DoNotOptimize(internal::readXnet(text));
  countText(state, text.size());
}
BENCHMARK(readXnetDraft)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void writeXnet(benchmark::State& state) {
  const auto network = namedNetwork(static_cast<std::uint64_t>(state.range(0)));
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = network->formattedStringValue();
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  countText(state, bytes);
}
BENCHMARK(writeXnet)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq::bench
