#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "veq/numeric/number_array.hpp"

namespace veq {
namespace {

constexpr std::uint64_t kCount = 1000000;

/// Numbers of all lengths: 0, 1/7, 2/7 and so on.
VEQNumberArray sevenths() {
  internal::RawVector<double> values(kCount);
  for (std::uint64_t i = 0; i < kCount; ++i) values[i] = static_cast<double>(i) / 7.0;
  return VEQNumberArray(std::move(values));
}

VEQNumberArray wholeNumbers() {
  internal::RawVector<std::uint64_t> values(kCount);
  for (std::uint64_t i = 0; i < kCount; ++i) values[i] = i;
  return VEQNumberArray(std::move(values));
}

void parse(benchmark::State& state, const VEQNumberArray& numbers) {
  const std::string text = numbers.stringValueWithSeparator("\n");
  for (auto _ : state) benchmark::DoNotOptimize(VEQNumberArray::initWithString(text));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void parseFloats(benchmark::State& state, const VEQNumberArray& numbers) {
  const std::string text = numbers.stringValueWithSeparator("\n");
  for (auto _ : state) {
    benchmark::DoNotOptimize(VEQNumberArray::initWithString_separator_type(text, "\n", 14));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void write(benchmark::State& state, const VEQNumberArray& numbers) {
  std::size_t bytes = 0;
  for (auto _ : state) bytes += numbers.stringValueWithSeparator("\n").size();
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void subarray(benchmark::State& state, const VEQNumberArray& numbers) {
  const VEQNumberArray indices = wholeNumbers();
  for (auto _ : state) benchmark::DoNotOptimize(numbers.subarrayWithIndices(indices));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}

BENCHMARK_CAPTURE(parse, sevenths, sevenths())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, whole, wholeNumbers())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseFloats, sevenths, sevenths())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseFloats, whole, wholeNumbers())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write, sevenths, sevenths())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write, whole, wholeNumbers())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(subarray, doubles, sevenths())->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq
