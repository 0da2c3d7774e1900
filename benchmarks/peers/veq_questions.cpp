#include "veq/questions.hpp"

#include "veq_tasks.hpp"

namespace bench {
namespace {

veq::Network networkAsked(const Edges& edges) { return veq::Network(networkOf(edges)); }

// All from each of some vertices; the sum of those that are finite.
bool measureDistances(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  const veq::Network network = networkAsked(edges);
  const std::vector<std::uint64_t> sources = startsOf(edges, arguments.count("sources", 100));
  measurement.time(
      [&] {
        std::vector<std::vector<std::uint64_t>> distances;
        for (const std::uint64_t source : sources) {
          distances.push_back(veq::distancesFrom(network, source));
        }
        return distances;
      },
      [](const auto& distances) {
        double sum = 0;
        for (const auto& row : distances) {
          for (const std::uint64_t d : row)
            sum += d == veq::kUnreachable ? 0 : static_cast<double>(d);
        }
        return sum;
      });
  return true;
}

bool measureRanks(const Arguments& arguments, Measurement& measurement) {
  const veq::Network network = networkAsked(edgesOf(arguments));
  double sweeps = 0;
  measurement.time([&] { return veq::pageRank(network, {.tolerance = 1e-10}).value(); },
                   [&](const veq::PageRank& found) {
                     sweeps = static_cast<double>(found.sweeps);
                     return found.ranks[0] * 1e12;
                   });
  measurement.add("sweeps", sweeps);
  return true;
}

bool measureTransitivity(const Arguments& arguments, Measurement& measurement) {
  const veq::Network network = networkAsked(edgesOf(arguments));
  measurement.time([&] { return veq::transitivity(network); },
                   [](double value) { return value * 1e9; });
  return true;
}

bool measureCores(const Arguments& arguments, Measurement& measurement) {
  const veq::Network network = networkAsked(edgesOf(arguments));
  measurement.time([&] { return veq::coreNumbers(network); },
                   [](const auto& cores) { return *std::max_element(cores.begin(), cores.end()); });
  return true;
}

bool measureLabels(const Arguments& arguments, Measurement& measurement) {
  const veq::Network network = networkAsked(edgesOf(arguments));
  measurement.time([&] { return veq::components(network); },
                   [](const auto& components) { return components.sizes.size(); });
  return true;
}

}  // namespace

std::vector<Task> questionTasks() {
  return {{"distances", measureDistances},
          {"pagerank", measureRanks},
          {"transitivity", measureTransitivity},
          {"cores", measureCores},
          {"labels", measureLabels}};
}

}  // namespace bench
