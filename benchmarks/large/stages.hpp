/// \file
/// Programs that go through stages, each of which takes long and much memory.
#pragma once

#include <malloc.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "benchmarks/peers/workload.hpp"

namespace bench {

/// Runs the stages and tells of each.
class Stages {
 public:
  explicit Stages(double limitGib) : limitGib_(limitGib) {
    std::printf("%-14s %10s %10s %10s %10s %12s\n", "stage", "seconds", "processor", "GiB after",
                "GiB peak", "ns a step");
  }

  /// A stage of so many steps, if it has any.
  template <class Work>
  auto run(const char* name, std::uint64_t steps, Work work) {
    malloc_trim(0);
    forgetPeak();
    const auto begin = std::chrono::steady_clock::now();
    const double processor = processorSeconds();
    auto result = work();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    const double peak = gib(peakKilobytes());
    std::printf("%-14s %10.2f %10.2f %10.2f %10.2f", name, seconds.count(),
                processorSeconds() - processor, gib(residentKilobytes()), peak);
    if (steps != 0) std::printf(" %12.2f", seconds.count() * 1e9 / static_cast<double>(steps));
    std::printf("\n");
    std::fflush(stdout);
    if (peak > limitGib_) throw std::runtime_error("The memory exceeds its limit.");
    return result;
  }
  template <class Work>
  auto run(const char* name, Work work) {
    return run(name, 0, work);
  }

 private:
  /// Lets the kernel's account of the largest memory begin anew.
  static void forgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }
  static double gib(std::uint64_t kilobytes) { return static_cast<double>(kilobytes) * 0x1p-20; }

  double limitGib_;
};

/// What a main() that goes through stages returns.
template <class Go>
int goingThrough(int count, char** values, Go goThroughStages) {
  try {
    // As if behind the name of a task, which these programs have none of.
    std::vector<char*> arguments(values, values + count);
    arguments.insert(arguments.begin(), values[0]);
    return goThroughStages(Arguments(count + 1, arguments.data()));
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}

}  // namespace bench
