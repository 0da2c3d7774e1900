#include "benchmarks/formats/bench_network.hpp"

namespace veq::bench {
namespace {

void readPajek(benchmark::State& state) {
  const std::string text =
      namedNetwork(static_cast<std::uint64_t>(state.range(0)))->pajekFormattedStringValue();
  for (auto _ : state) {
    benchmark::DoNotOptimize(VEQNetwork::initWithNetworkPajekFormattedString(text));
  }
  countText(state, text.size());
}
BENCHMARK(readPajek)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void writePajek(benchmark::State& state) {
  const auto network = namedNetwork(static_cast<std::uint64_t>(state.range(0)));
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = network->pajekFormattedStringValue();
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  countText(state, bytes);
}
BENCHMARK(writePajek)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq::bench
