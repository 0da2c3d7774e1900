#include <malloc.h>

#include <limits>

#include "veq/models.hpp"
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

/// One of the models with exactly so many vertices.
template <class Make>
bool measureModel(Measurement& measurement, Make make) {
  veq::ModelOptions options;
  options.seed = 7;
  measurement.time([&] { return make(options).value(); },
                   [](const veq::Network& network) { return network.countEdges(); });
  return true;
}

bool measureGnp(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 100'000);
  const double p = arguments.real("k", 10) / static_cast<double>(n);
  return measureModel(measurement, [&](const auto& options) { return gnpNetwork(n, p, options); });
}

bool measureGnm(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 100'000);
  const std::uint64_t m = n * arguments.count("k", 10) / 2;
  return measureModel(measurement, [&](const auto& options) { return gnmNetwork(n, m, options); });
}

bool measureBarabasiAlbert(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 100'000);
  const std::uint64_t m = arguments.count("m", 4);
  return measureModel(measurement,
                      [&](const auto& options) { return barabasiAlbertNetwork(n, m, options); });
}

bool measureConfiguration(const Arguments& arguments, Measurement& measurement) {
  const auto degrees = degreesAround(arguments.count("n", 100'000), arguments.count("k", 10));
  const auto law = arguments.has("simple") ? veq::DegreeLaw::kSimple : veq::DegreeLaw::kPairing;
  return measureModel(measurement, [&](const auto& options) {
    return configurationNetwork(degrees, law, options);
  });
}

bool measureWattsStrogatz(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 100'000);
  const std::uint64_t k = arguments.count("k", 10) / 2;
  const double p = arguments.real("p", 0.1);
  return measureModel(measurement,
                      [&](const auto& options) { return wattsStrogatzNetwork(n, k, p, options); });
}

}  // namespace

std::vector<Task> modelTasks() {
  return {{"model_gnp", measureGnp},
          {"model_gnm", measureGnm},
          {"model_ba", measureBarabasiAlbert},
          {"model_configuration", measureConfiguration},
          {"model_ws", measureWattsStrogatz},
          {"doubles", measureDoubles},
          {"ba", measurePreferentialAttachment},
          {"gnp", measureUniformNetwork}};
}

}  // namespace bench
