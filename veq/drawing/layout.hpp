/// \file
/// Where the vertices of a drawing go.
#pragma once

#include <cstdint>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq {

/// How to place vertices by forces.
/// \ingroup drawing
struct LayoutOptions {
  /// How often all vertices are moved on each level; 0 leaves it to the size.
  std::uint64_t iterations = 0;
  /// Another number gives another drawing of the same kind. The process's sequence is left alone.
  std::uint32_t seed = 1;
  /// Whether edges of more weight draw their ends closer together, by the ratio to the mean; one of
  /// weight 0 does not at all.
  bool useWeights = false;
  /// By how often vertices were moved, in all.
  Progress progress{};
};

/// Positions in which neighbours are near each other and all others apart: edges pull, vertices
/// push each other off (by a quadtree), first those of smaller and smaller networks of matched
/// neighbours, if it is large. Directions do not matter, parallel edges count once (their weights
/// together), loops not at all. Each component is laid out by itself, with its longer direction
/// from left to right, and all are packed into a square.
///
/// One vector for each vertex in [-1, 1] x [-1, 1], which fits the column "Position". The same on
/// every machine, since nothing but + - x / and square roots is used, in a fixed order.
///
/// Errors: "edge 3: weight -1" where weights are used and one is no finite number from 0 up, and a
/// stop. O((n + m) log n) for each iteration.
/// \ingroup drawing
[[nodiscard]] VEQ_EXPORT Result<Shared<VEQVector2dArray>> forceLayout(
    const Network& network, const LayoutOptions& options = {});

/// All vertices at equal distances on the unit circle, counter-clockwise from the right. O(n).
/// \ingroup drawing
[[nodiscard]] VEQ_EXPORT Shared<VEQVector2dArray> circleLayout(const Network& network);

}  // namespace veq
