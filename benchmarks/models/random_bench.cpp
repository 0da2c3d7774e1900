// What a draw costs: the engine beside the C library's random(), which gives the same numbers.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "veq/models/internal/random_engine.hpp"
#include "veq/models/internal/random_hits.hpp"
#include "veq/models/random_generator.hpp"

namespace {

using veq::Uint128;
using veq::internal::RandomStream;

// Seconds per draw, shown with a unit prefix: 250p is a quarter of a nanosecond.
void reportDraws(benchmark::State& state, double drawsPerIteration) {
  state.counters["per_draw"] =
      benchmark::Counter(drawsPerIteration, benchmark::Counter::kIsIterationInvariantRate |
                                                benchmark::Counter::kInvert);
}

#ifdef __GLIBC__
void doublesFromTheCLibrary(benchmark::State& state) {
  std::vector<double> values(static_cast<std::size_t>(state.range(0)));
  srandom(7);
  for (auto _ : state) {
    for (double& value : values) value = static_cast<double>(random()) * 0x1p-31;
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  reportDraws(state, static_cast<double>(values.size()));
}
BENCHMARK(doublesFromTheCLibrary)->RangeMultiplier(10)->Range(10000, 10000000);
#endif

// Into memory that is there already.
template <class Value>
void fill(benchmark::State& state) {
  std::vector<Value> values(static_cast<std::size_t>(state.range(0)));
  RandomStream stream = RandomStream::seeded(7);
  for (auto _ : state) {
    stream.fill(values.data(), values.size());
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  reportDraws(state, static_cast<double>(values.size()));
}
BENCHMARK(fill<double>)->RangeMultiplier(10)->Range(1, 10000000);
BENCHMARK(fill<float>)->Arg(10000)->Arg(10000000);
BENCHMARK(fill<std::int64_t>)->Arg(10000)->Arg(10000000);
BENCHMARK(fill<std::uint32_t>)->Arg(256)->Arg(10000)->Arg(10000000);

// The published operation: lock, allocation and, from megabytes on, fresh pages included.
void newRandomDoubleArray(benchmark::State& state) {
  veq::VEQRandomGenerator* const generator = veq::VEQRandomGenerator::sharedRandomGenerator();
  generator->setRandomSeed(7);
  const auto count = static_cast<std::uint64_t>(state.range(0));
  for (auto _ : state) {
    const auto array = generator->newRandomDoubleArrayWithCount(count);
    benchmark::DoNotOptimize(array.get());
  }
  reportDraws(state, static_cast<double>(count));
}
BENCHMARK(newRandomDoubleArray)->RangeMultiplier(10)->Range(1, 10000000);

void newRandomIntegerArrayOfARange(benchmark::State& state) {
  veq::VEQRandomGenerator* const generator = veq::VEQRandomGenerator::sharedRandomGenerator();
  generator->setRandomSeed(7);
  for (auto _ : state) {
    const auto array = generator->newRandomIntegerArrayFrom_to_withCount(0, 999, 10000);
    benchmark::DoNotOptimize(array.get());
  }
  reportDraws(state, 10000);
}
BENCHMARK(newRandomIntegerArrayOfARange);

void drawOneByOne(benchmark::State& state) {
  RandomStream stream = RandomStream::seeded(7);
  for (auto _ : state) benchmark::DoNotOptimize(stream.next());
}
BENCHMARK(drawOneByOne);

// By 10 to the power of the argument.
void jump(benchmark::State& state) {
  RandomStream stream = RandomStream::seeded(7);
  Uint128 count = 1;
  for (std::int64_t power = 0; power < state.range(0); ++power) count *= 10;
  for (auto _ : state) {
    stream.advance(count);
    benchmark::DoNotOptimize(stream);
  }
}
BENCHMARK(jump)->Arg(0)->Arg(2)->Arg(3)->Arg(4)->Arg(6)->Arg(9)->Arg(12)->Arg(18)->Arg(36);

// The pairs of a random network of 20000 vertices and mean degree 10: one hit in 2000 draws.
void rareHits(benchmark::State& state, bool wideVectors) {
  constexpr std::uint64_t kPairs = 20000ULL * 19999 / 2;
  constexpr std::uint32_t kThreshold = 1073742;
  RandomStream stream = RandomStream::seeded(7);
  for (auto _ : state) {
    std::uint64_t hits = 0;
    const auto count = [&](std::span<const std::uint64_t> piece) { hits += piece.size(); };
    veq::internal::hitsBelow(stream, kPairs, kThreshold, count, wideVectors);
    benchmark::DoNotOptimize(hits);
  }
  reportDraws(state, static_cast<double>(kPairs));
}
BENCHMARK_CAPTURE(rareHits, plainVectors, false)->Unit(benchmark::kMillisecond);
void rareHitsWideVectors(benchmark::State& state) {
  if (!veq::internal::wideVectorsRun()) {
    state.SkipWithError("this processor has none");
    return;
  }
  rareHits(state, true);
}
BENCHMARK(rareHitsWideVectors)->Unit(benchmark::kMillisecond);

}  // namespace
