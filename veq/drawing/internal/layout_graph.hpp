/// \file
/// What a layout knows of a network.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "veq/base/internal/pace.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq::internal {

/// Simple and undirected: rows of neighbours, ascending, each edge in both.
struct LayoutGraph {
  std::vector<std::uint64_t> rowStarts{0};
  std::vector<std::uint32_t> neighbours;
  /// How strongly each entry pulls.
  std::vector<double> pulls;
  /// How strongly each vertex pushes.
  std::vector<double> masses;

  [[nodiscard]] std::uint32_t count() const {
    return static_cast<std::uint32_t>(rowStarts.size() - 1);
  }
  [[nodiscard]] std::span<const std::uint32_t> neighboursOf(std::uint32_t vertex) const {
    return std::span(neighbours)
        .subspan(rowStarts[vertex], rowStarts[vertex + 1] - rowStarts[vertex]);
  }
  [[nodiscard]] std::span<const double> pullsOf(std::uint32_t vertex) const {
    return std::span(pulls).subspan(rowStarts[vertex], rowStarts[vertex + 1] - rowStarts[vertex]);
  }
};

/// Without loops and parallel edges. Weights pull by their ratio to the mean, where they are used.
/// All that makes graphs asks a pace now and then, if there is one, and throws what that does.
[[nodiscard]] Result<LayoutGraph> layoutGraph(const Network& network, bool useWeights,
                                              Pace* pace = nullptr);

/// A part of a graph, and for each of its vertices the one of the whole.
struct LayoutPart {
  LayoutGraph graph;
  std::vector<std::uint32_t> vertices;
};

/// The components in the order of their lowest vertices; those of one vertex in a list of their
/// own.
struct LayoutParts {
  std::vector<LayoutPart> parts;
  std::vector<std::uint32_t> single;
};
[[nodiscard]] LayoutParts partsOf(const LayoutGraph& graph, Pace* pace = nullptr);

/// A graph of about half as many vertices, each of which stands for one or two, and for each vertex
/// the one that stands for it. Neighbours are matched first, and then vertices that have a
/// neighbour in common, such as the rays of a star.
struct CoarserGraph {
  LayoutGraph graph;
  std::vector<std::uint32_t> coarse;
};
[[nodiscard]] CoarserGraph coarser(const LayoutGraph& graph, Pace* pace = nullptr);

}  // namespace veq::internal
