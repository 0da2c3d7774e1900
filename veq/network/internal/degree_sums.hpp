/// \file
/// Degrees and strengths of all vertices or of one.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Calls f(vertex, degree) for every vertex.
template <class F>
void forEachDegree(const NetworkCore& core, AdjacencyStore::Side side, F f) {
  core.store.visit([&](const auto& topology) {
    const auto& lists = core.store.lists(topology, side);
    const std::uint64_t n = core.store.vertexCount();
    for (std::uint64_t v = 0; v < n; ++v) f(v, lists.count(v));
  });
}

/// Adds to each vertex's sum the weights of its list's edges, in list order; an edge without a
/// weight counts 1.0. Lists are in edge order, so one pass over the edges adds to every vertex what
/// its list holds, and reads the weights in a row instead of fetching them one by one.
inline void addStrengths(const NetworkCore& core, AdjacencyStore::Side side,
                         std::span<double> sums) {
  if (!core.edgesWeights) {
    return forEachDegree(core, side, [sums](std::uint64_t v, std::uint64_t degree) {
      sums[v] += static_cast<double>(degree);
    });
  }
  const std::span<const float> weights = core.edgesWeights->all();
  core.store.visit([&](const auto& topology) {
    const bool bothEnds = !core.store.directed();
    const auto& ends = side == AdjacencyStore::Side::kOut || bothEnds ? topology.from : topology.to;
    for (std::uint64_t e = 0; e < weights.size(); ++e) {
      sums[ends[e]] += static_cast<double>(weights[e]);
      if (bothEnds) sums[topology.to[e]] += static_cast<double>(weights[e]);
    }
  });
}

/// Adds the weights of one list's edges, in list order, to a sum.
template <class Index>
[[nodiscard]] double withWeights(double sum, std::span<const Index> edges,
                                 const std::optional<HeldWeights>& weights) {
  if (!weights) return sum + static_cast<double>(edges.size());
  for (const Index edge : edges) sum += static_cast<double>((*weights)[edge]);
  return sum;
}

}  // namespace veq::internal
