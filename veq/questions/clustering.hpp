/// \file
/// Triangles: how many there are, and how often two neighbours are neighbours.
///
/// All of these ask who is whose neighbour alone: directions are ignored, parallel edges count
/// once, and loops not at all.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// For each vertex the triangles that it is a corner of. O(m^1.5) at most.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::vector<std::uint64_t> triangles(const Network& network);

/// All of them, each once. O(m^1.5) at most.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::uint64_t countTriangles(const Network& network);

/// For each vertex the share of the pairs of its neighbours that are neighbours; 0 for one with
/// fewer than two. (Watts and Strogatz, 1998.) O(m^1.5) at most.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::vector<double> localClustering(const Network& network);

/// What vertices with fewer than two neighbours, which have no pairs, are to a mean.
/// \ingroup ask
enum class WithoutPairs {
  kZero,     ///< They count 0.
  kLeftOut,  ///< They do not count.
};

/// The mean of the local clustering; NaN of no vertices. O(m^1.5) at most.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT double averageClustering(const Network& network,
                                                  WithoutPairs withoutPairs = WithoutPairs::kZero);

/// Three times the number of triangles over that of pairs of neighbours of any vertex; 0 without
/// such pairs. (Newman, Strogatz and Watts, 2001.) O(m^1.5) at most.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT double transitivity(const Network& network);

/// triangles(network) for who follows it or may stop it. The only error is a stop.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<std::vector<std::uint64_t>> triangles(const Network& network,
                                                                      const Progress& progress);
/// countTriangles(network) for who follows it or may stop it. The only error is a stop.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<std::uint64_t> countTriangles(const Network& network,
                                                              const Progress& progress);
/// localClustering(network) for who follows it or may stop it. The only error is a stop.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<std::vector<double>> localClustering(const Network& network,
                                                                     const Progress& progress);
/// averageClustering(network) for who follows it or may stop it. The only error is a stop.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<double> averageClustering(const Network& network,
                                                          WithoutPairs withoutPairs,
                                                          const Progress& progress);
/// transitivity(network) for who follows it or may stop it. The only error is a stop.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<double> transitivity(const Network& network,
                                                     const Progress& progress);

}  // namespace veq
