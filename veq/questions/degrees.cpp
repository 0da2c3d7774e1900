#include "veq/questions/degrees.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "veq/natural/internal/core_of.hpp"
#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::coreOf;
using internal::NetworkCore;
using internal::SideLists;
using internal::Topology;

namespace {

// Of the edges that are no loops, how many there are and to how many there is one back.
struct ReciprocatedEdges {
  std::uint64_t edges = 0;
  std::uint64_t returned = 0;
};

template <class Index>
ReciprocatedEdges reciprocatedEdgesOf(const AdjacencyStore& store,
                                      const Topology<Index>& topology) {
  const std::uint64_t n = store.vertexCount();
  Block<Index> leadsTo(n);  // One more than the last vertex that an edge from this one leads to.
  ReciprocatedEdges result;
  for (std::uint64_t v = 0; v < n; ++v) {
    for (const Index source : topology.in->neighbours(v)) {
      leadsTo[source] = static_cast<Index>(v + 1);
    }
    for (const Index target : topology.out.neighbours(v)) {
      if (target == v) continue;
      ++result.edges;
      if (leadsTo[target] == v + 1) ++result.returned;
    }
  }
  return result;
}

double meanOver(const NetworkCore& core, std::uint64_t vertex,
                const NeighbourDegreeOptions& options, const std::vector<std::uint64_t>& degrees) {
  double sum = 0;
  double total = 0;
  core.store.visit([&](const auto& topology) {
    const SideLists lists(core.store, topology, options.neighbours);
    lists.forEachEntry(vertex, [&](std::uint64_t neighbour, std::uint64_t edge) {
      const double weight = options.weighted && core.edgesWeights
                                ? static_cast<double>((*core.edgesWeights)[edge])
                                : 1.0;
      sum += weight * static_cast<double>(degrees[neighbour]);
      total += weight;
    });
  });
  return total == 0 ? 0 : sum / total;
}

// Moments of the pairs of degrees about their means, in edge order.
struct Moments {
  double ofSource = 0;
  double ofTarget = 0;
  double ofBoth = 0;

  [[nodiscard]] double correlation() const {
    if (ofSource == 0 || ofTarget == 0) return std::numeric_limits<double>::quiet_NaN();
    return ofBoth / (std::sqrt(ofSource) * std::sqrt(ofTarget));
  }
};

}  // namespace

std::vector<std::uint64_t> degreeDistribution(const Network& network, Direction direction) {
  std::vector<std::uint64_t> counts;
  for (const std::uint64_t degree : network.degrees(direction)) {
    if (degree >= counts.size()) counts.resize(degree + 1);
    ++counts[degree];
  }
  return counts;
}

std::vector<StrengthCount> strengthDistribution(const Network& network, Direction direction) {
  std::vector<double> strengths = network.strengths(direction);
  strengths.erase(
      std::remove_if(strengths.begin(), strengths.end(), [](double s) { return std::isnan(s); }),
      strengths.end());
  std::sort(strengths.begin(), strengths.end());
  std::vector<StrengthCount> counts;
  for (const double strength : strengths) {
    if (counts.empty() || counts.back().strength != strength) counts.push_back({strength, 0});
    ++counts.back().vertices;
  }
  return counts;
}

double density(const Network& network) {
  const auto n = static_cast<double>(network.countVertices());
  if (n < 2) return 0;
  const double both = n * (n - 1);
  return static_cast<double>(network.countEdges()) / (network.isDirected() ? both : both / 2);
}

double reciprocity(const Network& network) {
  const NetworkCore& core = coreOf(network);
  const ReciprocatedEdges returns = core.store.visit([&core](const auto& topology) {
    if (core.store.directed()) return reciprocatedEdgesOf(core.store, topology);
    ReciprocatedEdges all;
    for (std::uint64_t e = 0; e < core.store.edgeCount(); ++e) {
      all.edges += topology.from[e] != topology.to[e];
    }
    all.returned = all.edges;
    return all;
  });
  if (returns.edges == 0) return std::numeric_limits<double>::quiet_NaN();
  return static_cast<double>(returns.returned) / static_cast<double>(returns.edges);
}

std::vector<double> averageNeighbourDegree(const Network& network,
                                           const NeighbourDegreeOptions& options) {
  const std::vector<std::uint64_t> degrees = network.degrees(options.degrees);
  std::vector<double> means(degrees.size());
  for (std::uint64_t v = 0; v < means.size(); ++v) {
    means[v] = meanOver(coreOf(network), v, options, degrees);
  }
  return means;
}

double degreeAssortativity(const Network& network, Direction ofSource, Direction ofTarget) {
  const NetworkCore& core = coreOf(network);
  const std::uint64_t m = core.store.edgeCount();
  if (m == 0) return std::numeric_limits<double>::quiet_NaN();
  const std::vector<std::uint64_t> x = network.degrees(ofSource);
  const std::vector<std::uint64_t> y = network.degrees(ofTarget);
  const bool bothWays = !core.store.directed();
  return core.store.visit([&](const auto& topology) {
    // The sums are whole numbers, so that the means are as good as doubles can be, and the same
    // where all degrees are.
    std::uint64_t sumX = 0;
    std::uint64_t sumY = 0;
    for (std::uint64_t e = 0; e < m; ++e) {
      sumX += x[topology.from[e]] + (bothWays ? x[topology.to[e]] : 0);
      sumY += y[topology.to[e]] + (bothWays ? y[topology.from[e]] : 0);
    }
    const auto count = static_cast<double>(bothWays ? 2 * m : m);
    const double meanX = static_cast<double>(sumX) / count;
    const double meanY = static_cast<double>(sumY) / count;
    Moments moments;
    const auto add = [&](std::uint64_t from, std::uint64_t to) {
      const double dx = static_cast<double>(x[from]) - meanX;
      const double dy = static_cast<double>(y[to]) - meanY;
      moments.ofSource += dx * dx;
      moments.ofTarget += dy * dy;
      moments.ofBoth += dx * dy;
    };
    for (std::uint64_t e = 0; e < m; ++e) {
      add(topology.from[e], topology.to[e]);
      if (bothWays) add(topology.to[e], topology.from[e]);
    }
    return moments.correlation();
  });
}

}  // namespace veq
