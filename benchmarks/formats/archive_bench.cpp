#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "veq/formats/keyed_archiver.hpp"
#include "veq/network/network.hpp"

namespace veq::bench {
namespace {

Owned<VEQNumberArray> ascending(std::int64_t count) {
  auto array = VEQNumberArray::initWithIntegerScalar_count(0, static_cast<std::uint64_t>(count));
  std::int64_t next = 0;
  for (std::int64_t& value : array->values<std::int64_t>()) value = next++;
  return array;
}

void countBytes(benchmark::State& state, std::int64_t perIteration) {
  state.SetBytesProcessed(state.iterations() * perIteration);
}

/// What both directions of an array are measured against: one copy into new memory.
void copyArray(benchmark::State& state) {
  const auto array = ascending(state.range(0));
  const std::size_t bytes = array->count() * sizeof(std::int64_t);
  for (auto _ : state) {
    const std::unique_ptr<void, decltype(&std::free)> copy(std::malloc(bytes), &std::free);
    std::memcpy(copy.get(), array->VEQ_dataPointer(), bytes);
    benchmark::DoNotOptimize(copy.get());
    benchmark::ClobberMemory();
  }
  countBytes(state, static_cast<std::int64_t>(bytes));
}
BENCHMARK(copyArray)->RangeMultiplier(100)->Range(1'000, 10'000'000);

/// The same with memory that has been touched before.
void copyArrayIntoWarmMemory(benchmark::State& state) {
  const auto array = ascending(state.range(0));
  const std::size_t bytes = array->count() * sizeof(std::int64_t);
  const std::unique_ptr<void, decltype(&std::free)> copy(std::malloc(bytes), &std::free);
  for (auto _ : state) {
    std::memcpy(copy.get(), array->VEQ_dataPointer(), bytes);
    benchmark::DoNotOptimize(copy.get());
    benchmark::ClobberMemory();
  }
  countBytes(state, static_cast<std::int64_t>(bytes));
}
BENCHMARK(copyArrayIntoWarmMemory)->RangeMultiplier(100)->Range(1'000, 10'000'000);

void encodeArray(benchmark::State& state) {
  const auto array = ascending(state.range(0));
  for (auto _ : state) {
    VEQKeyedArchiver archiver;
    archiver.encodeNumberArray(*array, "array");
    benchmark::DoNotOptimize(archiver.bytes().data());
  }
  countBytes(state, state.range(0) * 8);
}
BENCHMARK(encodeArray)->RangeMultiplier(100)->Range(1'000, 10'000'000);

void decodeArray(benchmark::State& state) {
  VEQKeyedArchiver archiver;
  archiver.encodeNumberArray(*ascending(state.range(0)), "array");
  for (auto _ : state) {
    VEQKeyedUnarchiver unarchiver(archiver.bytes());
    benchmark::DoNotOptimize(unarchiver.decodeNumberArray("array"));
  }
  countBytes(state, state.range(0) * 8);
}
BENCHMARK(decodeArray)->RangeMultiplier(100)->Range(1'000, 10'000'000);

struct Lists {
  VEQNumberArray from;
  VEQNumberArray to;
};

/// Edges between a fifth as many vertices, in no order.
Lists edges(std::int64_t count) {
  const auto m = static_cast<std::uint64_t>(count);
  internal::RawVector<std::uint64_t> from(m);
  internal::RawVector<std::uint64_t> to(m);
  std::uint64_t random = 1;
  const auto next = [&random, m] {
    random = random * 6364136223846793005U + 1442695040888963407U;
    return (random >> 33) % (m / 5);
  };
  for (std::uint64_t e = 0; e < m; ++e) {
    from[e] = next();
    to[e] = next();
  }
  return {VEQNumberArray(std::move(from)), VEQNumberArray(std::move(to))};
}

Owned<VEQNetwork> networkOf(const Lists& lists) {
  return VEQNetwork::initWithLinksIndexedFrom_toIndices(lists.from, lists.to);
}

void buildFromIndices(benchmark::State& state) {
  const Lists lists = edges(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(networkOf(lists));
}
BENCHMARK(buildFromIndices)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void writeArchive(benchmark::State& state) {
  const auto network = networkOf(edges(state.range(0)));
  std::size_t bytes = 0;
  for (auto _ : state) {
    VEQKeyedArchiver archiver;
    network->encodeWithCoder(archiver);
    bytes = archiver.bytes().size();
    benchmark::DoNotOptimize(archiver.bytes().data());
  }
  countBytes(state, static_cast<std::int64_t>(bytes));
}
BENCHMARK(writeArchive)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void readArchive(benchmark::State& state) {
  VEQKeyedArchiver archiver;
  networkOf(edges(state.range(0)))->encodeWithCoder(archiver);
  for (auto _ : state) {
    VEQKeyedUnarchiver unarchiver(archiver.bytes());
    benchmark::DoNotOptimize(VEQNetwork::initWithCoder(unarchiver));
  }
  countBytes(state, static_cast<std::int64_t>(archiver.bytes().size()));
}
BENCHMARK(readArchive)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veq::bench
