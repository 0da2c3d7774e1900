/// \file
/// How far vertices are from each other.
///
/// Distances are numbers of edges unless weights are asked for; they follow the direction that is
/// given, kAll being both ways. Loops and parallel edges make no difference.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// The distance to what cannot be reached.
/// \ingroup ask
inline constexpr std::uint64_t kUnreachable = UINT64_MAX;

/// From one vertex to each. std::out_of_range for no vertex. O(n + m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::vector<std::uint64_t> distancesFrom(
    const Network& network, std::uint64_t source, Direction direction = Direction::kOut);

/// The least sums of weights, in double along each path, an edge without weight counting 1.0;
/// infinity for what cannot be reached. The error names the first edge whose weight is negative,
/// infinite or not a number: "edge 7: weight -1, and 2 more". (Dijkstra, 1959.) O(n + m log m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<std::vector<double>> weightedDistancesFrom(
    const Network& network, std::uint64_t source, Direction direction = Direction::kOut);

/// How to look for a path.
/// \ingroup ask
struct PathOptions {
  /// Which way along edges.
  Direction direction = Direction::kOut;
  /// The least sum of weights instead of the fewest edges.
  bool weighted = false;
};

/// A way from one vertex to another: one vertex more than edges, and the sum of the weights or the
/// number of edges.
/// \ingroup ask
struct Path {
  /// From the first to the last.
  std::vector<std::uint64_t> vertices;
  std::vector<std::uint64_t> edges;
  double length = 0;
};

/// One of the shortest paths, always the same one, or nothing where there is none; that to the
/// vertex itself has no edge. Errors as those of weightedDistancesFrom, if weights are asked for.
/// std::out_of_range for no vertex. O(n + m), weighted O(n + m log m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<std::optional<Path>> shortestPath(const Network& network,
                                                                  std::uint64_t from,
                                                                  std::uint64_t to,
                                                                  const PathOptions& options = {});

/// How to measure all distances.
/// \ingroup ask
struct DistanceOptions {
  /// Which way along edges.
  Direction direction = Direction::kOut;
  /// From every vertex while that takes at most so many visits of vertices and list entries, and
  /// from as many vertices as it allows otherwise, but one at least.
  std::uint64_t mostVisits = 10'000'000'000;
  /// Which vertices are taken where not all are.
  std::uint64_t seed = 1;
  /// How many threads share the sources of a histogram, 0 being as many as the process may use;
  /// without it as many as parallelism() says. What comes of it does not depend on it. A diameter
  /// is found by one, since each search follows from those before it.
  std::optional<unsigned> threads{};
  Progress progress{};
};

/// The distances from some vertices to all others.
/// \ingroup ask
struct DistanceHistogram {
  /// Element d: how many pairs of a source and a vertex are at distance d; element 0 counts the
  /// sources themselves.
  std::vector<std::uint64_t> pairs;
  std::uint64_t unreachablePairs = 0;
  /// How many vertices were the sources, and whether these were not all: then they are drawn, all
  /// sets alike, and the counts stand for all pairs only in proportion.
  std::uint64_t sources = 0;
  bool sampled = false;
  /// Of the pairs of different vertices one of which can be reached from the other; NaN of none.
  double meanDistance = 0;
};

/// The only error is a stop. O(sources (n + m)) time, O(n) memory.
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<DistanceHistogram> distanceHistogram(
    const Network& network, const DistanceOptions& options = {});

/// The largest distance between two vertices of which one can be reached from the other.
/// \ingroup ask
struct Diameter {
  /// It lies between these, which are the same unless the visits did not suffice.
  std::uint64_t least = 0;
  std::uint64_t most = 0;
  /// Two vertices at the distance `least`; both 0 in a network without vertices.
  std::uint64_t from = 0;
  std::uint64_t to = 0;
  std::uint64_t searches = 0;
};

/// Searches from vertices that can still be ends of a longer path than the longest one known, by
/// bounds that each search gives for its strongly connected component. The only error is a stop.
/// (Takes and Kosters, 2011.) O(n (n + m)) at most, mostly few times O(n + m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT Result<Diameter> diameter(const Network& network,
                                                   const DistanceOptions& options = {});

}  // namespace veq
