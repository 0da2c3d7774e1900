/// \file
/// Degrees: how they are distributed, and how those of neighbours depend on each other.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// How many vertices have degree 0, 1, 2, ... up to the largest; nothing without vertices. Loops
/// and parallel edges count as in Network::degrees. O(n).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::vector<std::uint64_t> degreeDistribution(
    const Network& network, Direction direction = Direction::kOut);

/// How many vertices have one strength.
/// \ingroup ask
struct StrengthCount {
  double strength = 0;
  std::uint64_t vertices = 0;

  friend bool operator==(const StrengthCount&, const StrengthCount&) = default;
};

/// All strengths that occur, the least first; vertices whose strength is not a number are left out.
/// O(m + n log n).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::vector<StrengthCount> strengthDistribution(
    const Network& network, Direction direction = Direction::kOut);

/// The number of edges over that of pairs of different vertices, n (n - 1), or half of it where
/// edges have no direction. Loops and parallel edges count, so that it can exceed 1. 0 for fewer
/// than two vertices. O(1).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT double density(const Network& network);

/// Of the edges that are no loops, the share of those to which some edge the other way exists;
/// parallel edges count one by one. 1 in an undirected network, NaN where all edges are loops.
/// (Garlaschelli and Loffredo, 2004, call it r.) O(n + m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT double reciprocity(const Network& network);

/// Whose degrees are averaged, and how.
/// \ingroup ask
struct NeighbourDegreeOptions {
  /// Which neighbours of a vertex, and which of their degrees.
  Direction neighbours = Direction::kOut;
  Direction degrees = Direction::kOut;
  /// Each neighbour's degree counts by the weight of the edge to it.
  bool weighted = false;
};

/// For each vertex the mean degree of the entries of its list: a neighbour counts once for each
/// parallel edge, and an undirected loop makes a vertex its own neighbour twice. 0 where the list
/// is empty or its weights sum to 0. (Pastor-Satorras and others, 2001; weighted: Barrat and
/// others, 2004.) O(n + m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT std::vector<double> averageNeighbourDegree(
    const Network& network, const NeighbourDegreeOptions& options = {});

/// The correlation coefficient of the degrees at both ends of an edge, over all edges, from -1 to
/// 1. Directed: the source's degree as the first argument says, the target's as the second.
/// Undirected: the degrees, each edge both ways round. Loops and parallel edges count. NaN where
/// all degrees at one end are the same, and without edges. (Newman, 2002 and 2003.) O(n + m).
/// \ingroup ask
[[nodiscard]] VEQ_EXPORT double degreeAssortativity(const Network& network,
                                                    Direction ofSource = Direction::kOut,
                                                    Direction ofTarget = Direction::kIn);

}  // namespace veq
