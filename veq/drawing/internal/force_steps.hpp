/// \file
/// Moving the vertices of a connected graph by forces.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/drawing/internal/layout_graph.hpp"
#include "veq/drawing/internal/repulsion.hpp"

namespace veq::internal {

/// How many times the vertices of a graph are moved on each level, the coarsest being the first.
struct StepPlan {
  /// 0 for as many as the size allows.
  std::uint64_t iterations = 0;

  [[nodiscard]] std::uint64_t stepsOf(std::uint64_t vertices, bool coarsest) const;
  /// How many vertices that moves on all levels, if each has half as many as the next.
  [[nodiscard]] std::uint64_t workOf(std::uint64_t vertices) const;
};

/// Where the vertices of a connected graph go, edges being about 1 long. The pace counts how often
/// vertices were moved.
[[nodiscard]] std::vector<Point> placedByForces(const LayoutGraph& graph, const StepPlan& plan,
                                                std::uint64_t seed, Pace& pace);

/// So many points at equal distances on the unit circle, counter-clockwise from (1, 0).
[[nodiscard]] std::vector<Point> circle(std::uint64_t count);

/// Turned so that the longer direction is from left to right.
void turnLevel(std::vector<Point>& points);

}  // namespace veq::internal
