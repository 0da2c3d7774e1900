/// \file
/// How networks are changed, and what comes of it.
#pragma once

#include <cstdint>
#include <optional>

#include "veq/base/progress.hpp"

namespace veq {

/// Which of a vertex's edges are meant: those that lead away, those that lead to it, or both. All
/// are the same in an undirected network.
/// \ingroup ask
enum class Direction { kOut, kIn, kAll };

/// What a change that makes a new network may be given.
/// \ingroup edit
struct ChangeOptions {
  /// As in BuildOptions.
  std::optional<unsigned> threads{};
  /// How to follow it, and to stop it.
  Progress progress{};
};

/// What becomes of parallel edges. Undirected edges are parallel whichever end comes first.
/// \ingroup edit
enum class ParallelEdges {
  kKeep,      ///< They stay.
  kSum,       ///< One edge, the first of them, with the sum of their weights (1 where unweighted).
  kLeast,     ///< The one that weighs least, the first of equals.
  kGreatest,  ///< The one that weighs most, the first of equals.
  kFirst,     ///< The first one.
};

/// How to simplify.
/// \ingroup edit
struct SimplifyOptions {
  /// With kSum the result is always weighted, also where no edge has a parallel: an edge of an
  /// unweighted network then weighs as many as it stands for.
  ParallelEdges parallels = ParallelEdges::kSum;
  bool dropLoops = true;
  /// As in BuildOptions.
  std::optional<unsigned> threads{};
  /// How to follow it, and to stop it.
  Progress progress{};
};

/// Which vertices the subnetwork of some edges has.
/// \ingroup edit
struct EdgeSubnetworkOptions {
  /// All of them instead of the ends of the chosen edges.
  bool keepAllVertices = false;
  /// As in BuildOptions.
  std::optional<unsigned> threads{};
  /// How to follow it, and to stop it.
  Progress progress{};
};

/// How far from a vertex its neighbourhood reaches.
/// \ingroup edit
struct NeighbourhoodOptions {
  /// How many edges away at most, and along which edges.
  std::uint64_t distance = 1;
  Direction direction = Direction::kAll;
  /// As in BuildOptions.
  std::optional<unsigned> threads{};
  /// How to follow it, and to stop it.
  Progress progress{};
};

/// Which vertices of several networks become one.
/// \ingroup edit
enum class UnionBy {
  kNothing,  ///< None: the networks stand side by side.
  kIndex,    ///< Those of one index.
  kName,     ///< Those of one name, within a network, too.
};

/// How to unite networks.
/// \ingroup edit
struct UnionOptions {
  /// Which vertices become one.
  UnionBy by = UnionBy::kNothing;
  /// As in BuildOptions.
  std::optional<unsigned> threads{};
  /// How to follow it, and to stop it.
  Progress progress{};
};

}  // namespace veq
