/// \file
/// What a network is to be built with.
#pragma once

#include <cstdint>
#include <optional>

#include "veq/base/progress.hpp"
#include "veq/natural/spans.hpp"
#include "veq/numeric/keyed_table.hpp"

namespace veq {

/// What building has to tell although it succeeded. Weights are 32-bit floats: how many of the
/// given ones these do not hold exactly, and the first of them.
/// \ingroup build
struct BuildNotes {
  std::uint64_t roundedVertexWeights = 0;
  std::uint64_t roundedEdgeWeights = 0;
  std::optional<std::uint64_t> firstRoundedVertexWeight;
  std::optional<std::uint64_t> firstRoundedEdgeWeight;
};

/// How to build a network.
/// \ingroup build
struct BuildOptions {
  /// Exactly so many vertices; otherwise as many as the largest end asks for, none without edges.
  std::optional<std::uint64_t> vertices{};
  /// Whether edges lead from source to target alone.
  bool directed = false;
  /// One for each vertex and edge, in their order; a network without is not weighted.
  NumberSpan vertexWeights{};
  NumberSpan edgeWeights{};
  /// One value for each vertex or edge. The columns are kept, not copied, except fixed ones.
  PropertyTable vertexColumns{};
  PropertyTable edgeColumns{};
  /// Keeps the given weights as they are, too, in columns of doubles named "Weight".
  bool keepExactWeights = false;
  /// Filled where given.
  BuildNotes* notes = nullptr;
  /// Taken as 1.
  unsigned threads = 1;
  /// The lists of the network are made in one piece, which nothing interrupts.
  Progress progress{};
};

}  // namespace veq
