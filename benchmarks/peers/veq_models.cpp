#include <malloc.h>

#include <limits>

#include "veq/models/random_generator.hpp"
#include "veq_tasks.hpp"

namespace bench {
namespace {

using veq::VEQNetwork;
using veq::VEQRandomGenerator;

VEQRandomGenerator& seededGenerator() {
  VEQRandomGenerator* generator = VEQRandomGenerator::sharedRandomGenerator();
  generator->setRandomSeed(7);
  return *generator;
}

/// touched=1: the C library keeps released memory, so that all arrays but the first lie in pages
/// that are there already.
bool measureDoubles(const Arguments& arguments, Measurement& measurement) {
  if (arguments.count("touched") != 0) {
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  }
  const std::uint64_t count = arguments.count("n", 10'000);
  VEQRandomGenerator& generator = seededGenerator();
  // Small requests many times, so that the clock's grain does not matter.
  const std::uint64_t times = arguments.count("times", 1);
  measurement.time(
      [&] {
        auto array = generator.newRandomDoubleArrayWithCount(count);
        for (std::uint64_t i = 1; i < times; ++i) {
          array = nullptr;
          array = generator.newRandomDoubleArrayWithCount(count);
        }
        return array;
      },
      [](const auto& array) { return array->count(); });
  measurement.addNanoseconds("ns_per_number", static_cast<double>(count * times));
  return true;
}

bool measurePreferentialAttachment(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 100'000);
  const std::uint64_t m = arguments.count("m", 4);
  measurement.time(
      [&] {
        seededGenerator();
        return VEQNetwork::initBarabasiNetworkWithInitialVertices_degreeGrowth_iterations(m, m,
                                                                                          n - m);
      },
      [](const auto& network) {
        const std::uint64_t edges = network->countEdges();
        const auto target = [&](std::uint64_t edge) {
          return network->edgeAtIndex(edge)->toVertex()->identification();
        };
        return target(edges - 1) * 1'000'003 + target(edges / 2);
      });
  return true;
}

bool measureUniformNetwork(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 10'000);
  const double degree = arguments.real("k", 10);
  measurement.time(
      [&] {
        seededGenerator();
        return VEQNetwork::initRandomNetworkWithNumberOfVertices_degree(n, degree);
      },
      [](const auto& network) { return network->countEdges(); });
  return true;
}

}  // namespace

std::vector<Task> modelTasks() {
  return {{"doubles", measureDoubles},
          {"ba", measurePreferentialAttachment},
          {"gnp", measureUniformNetwork}};
}

}  // namespace bench
