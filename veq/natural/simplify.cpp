// Merging parallel edges and dropping loops.

#include <algorithm>
#include <utility>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/network.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::Pace;
using internal::Topology;

namespace {

// For each edge the first one that is parallel to it, which may be itself. Lists are in edge order,
// so that of several edges to one neighbour the first is met first.
template <class Index>
Block<Index> firstParallels(const Topology<Index>& topology, const AdjacencyStore& store) {
  const std::uint64_t n = store.vertexCount();
  Block<Index> result(store.edgeCount());
  Block<Index> first(n);     // The first edge to each neighbour
  Block<Index> seenFrom(n);  // of the vertex of which this is one more than the index.
  for (std::uint64_t v = 0; v < n; ++v) {
    const auto neighbours = topology.out.neighbours(v);
    const auto edges = topology.out.edges(v);
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      const Index neighbour = neighbours[i];
      // Undirected, an edge is looked at from its lower end.
      if (!store.directed() && neighbour < v) continue;
      if (seenFrom[neighbour] != v + 1) {
        seenFrom[neighbour] = static_cast<Index>(v + 1);
        first[neighbour] = edges[i];
      }
      result[edges[i]] = first[neighbour];
    }
  }
  return result;
}

// The edges that stay, in the order of the first one that each stands for.
struct Merged {
  std::vector<std::uint64_t> edges;
  std::vector<double> sums;  // Of the weights of all for which each stands.
};

bool takesThePlace(ParallelEdges rule, double weight, double of) {
  return (rule == ParallelEdges::kLeast && weight < of) ||
         (rule == ParallelEdges::kGreatest && weight > of);
}

template <class Index>
Merged merged(const NetworkCore& core, const Topology<Index>& topology,
              const SimplifyOptions& options, Pace& pace) {
  const std::uint64_t m = core.store.edgeCount();
  const bool keepsAll = options.parallels == ParallelEdges::kKeep;
  const auto weightOf = [&core](std::uint64_t edge) {
    return core.edgesWeights ? static_cast<double>((*core.edgesWeights)[edge]) : 1.0;
  };
  Block<Index> firsts;
  if (!keepsAll) firsts = firstParallels(topology, core.store);
  pace.reach(m / 2);
  Block<Index> places(m);
  Merged result;
  for (std::uint64_t e = 0; e < m; ++e) {
    if (options.dropLoops && topology.from[e] == topology.to[e]) continue;
    if (keepsAll || firsts[e] == e) {
      places[e] = static_cast<Index>(result.edges.size());
      result.edges.push_back(e);
      result.sums.push_back(weightOf(e));
      continue;
    }
    const std::uint64_t place = places[firsts[e]];
    result.sums[place] += weightOf(e);
    std::uint64_t& chosen = result.edges[place];
    if (takesThePlace(options.parallels, weightOf(e), weightOf(chosen))) chosen = e;
  }
  return result;
}

internal::OwnEnds endsAt(const AdjacencyStore& store, const std::vector<std::uint64_t>& edges) {
  internal::OwnEnds ends;
  ends.from.resize(edges.size());
  ends.to.resize(edges.size());
  store.visit([&](const auto& topology) {
    for (std::uint64_t i = 0; i < edges.size(); ++i) {
      ends.from[i] = topology.from[edges[i]];
      ends.to[i] = topology.to[edges[i]];
    }
  });
  return ends;
}

}  // namespace

Result<DerivedNetwork> Network::simplified(const SimplifyOptions& options) const {
  const internal::OwnParallelism own(options.threads);
  return internal::untilStopped([&]() -> Result<DerivedNetwork> {
    Pace pace(options.progress, internal::kBuildingPasses * countEdges());
    pace.reach(0);
    const NetworkCore& core = CoreAccess::of(*published_);
    Merged result = core.store.visit(
        [&](const auto& topology) { return merged(core, topology, options, pace); });
    internal::Derivation derivation;
    derivation.ends = endsAt(core.store, result.edges);
    derivation.directed = isDirected();
    derivation.edges = &result.edges;
    if (options.parallels == ParallelEdges::kSum) {
      derivation.edgesWeights = internal::roundedWeights(result.sums).values;
    }
    Network network = internal::derived(core, std::move(derivation), pace);
    std::vector<std::uint64_t> vertices(countVertices());
    for (std::uint64_t v = 0; v < vertices.size(); ++v) vertices[v] = v;
    return DerivedNetwork{std::move(network), std::move(vertices), std::move(result.edges)};
  });
}

}  // namespace veq
