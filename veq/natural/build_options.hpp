/// \file
/// What a network is to be built with.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

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
  /// How many threads share the work, 0 being as many as the process may use; without it as many as
  /// parallelism() says. What comes of it does not depend on it.
  std::optional<unsigned> threads{};
  /// Of all that is done with edges and names.
  Progress progress{};
};

/// What goes with a topology in somebody's memory.
/// \ingroup build
struct OverOptions {
  /// In memory of the same owner's, one for each vertex and edge; a network without is not
  /// weighted.
  std::optional<std::span<const float>> vertexWeights{};
  std::optional<std::span<const float>> edgeWeights{};
  /// One value for each vertex or edge; VEQNumberArray::over makes columns in foreign memory.
  PropertyTable vertexColumns{};
  PropertyTable edgeColumns{};
  /// Leaves out the look at every index, for memory that this library has written and nobody can
  /// have changed. Then only lengths are compared, in O(1), and whatever else is wrong is undefined
  /// behaviour.
  bool trusted = false;
  /// Of that look.
  Progress progress{};
};

}  // namespace veq
