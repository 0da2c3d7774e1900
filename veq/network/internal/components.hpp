/// \file
/// Which component each vertex is in, and what each component consists of.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/network/internal/adjacency_store.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// Components are numbered in the order of their lowest vertex.
template <class Index>
struct Components {
  /// One more than the number of each vertex's component.
  Block<Index> labels;
  /// How many vertices each has.
  std::vector<std::uint64_t> sizes;

  [[nodiscard]] std::uint64_t of(std::uint64_t vertex) const { return labels[vertex] - 1u; }
};

/// Finds one weakly connected component after the other by breadth-first search, whose queue says
/// which vertices come next, so that their lists are fetched ahead.
template <class Index>
class ComponentSearch {
 public:
  /// A pace is told of vertices.
  ComponentSearch(const Topology<Index>& topology, std::uint64_t vertices, Pace* pace = nullptr)
      : topology_(topology), labels_(vertices), pace_(pace) {
    reached_.resize(vertices);
  }

  // Compiled by itself, as it needs all registers.
  [[gnu::noinline]] Components<Index> run() && {
    std::vector<std::uint64_t> sizes;
    for (std::uint64_t start = 0; start < labels_.size(); ++start) {
      if (labels_[start] == 0) sizes.push_back(labelFrom(start, sizes.size() + 1));
    }
    return {std::move(labels_), std::move(sizes)};
  }

 private:
  // Labels the component of a vertex, and answers its size.
  std::uint64_t labelFrom(std::uint64_t start, std::uint64_t label) {
    count_ = 0;
    reach(start, label);
    constexpr std::uint64_t kVerticesAtOnce = 1024;
    for (std::uint64_t i = 0; i < count_;) {
      const std::uint64_t end = std::min(count_, i + kVerticesAtOnce);
      pace_.advance(end - i);
      for (; i < end; ++i) reachNeighbours(i, label);
    }
    return count_;
  }

  void reachNeighbours(std::uint64_t i, std::uint64_t label) {
    fetchAhead(topology_.out, i);
    for (const Index neighbour : topology_.out.neighbours(reached_[i])) reach(neighbour, label);
    if (!topology_.in) return;
    fetchAhead(*topology_.in, i);
    for (const Index neighbour : topology_.in->neighbours(reached_[i])) reach(neighbour, label);
  }

  void reach(std::uint64_t vertex, std::uint64_t label) {
    if (labels_[vertex] != 0) return;
    labels_[vertex] = static_cast<Index>(label);
    reached_[count_++] = static_cast<Index>(vertex);
  }

  // The row of a vertex; the list of one that comes sooner, whose row was fetched before; and the
  // labels of the neighbours of one that comes still sooner, whose list was.
  void fetchAhead(const AdjacencyLists<Index>& lists, std::uint64_t i) const {
    constexpr std::uint64_t kAhead = 4;
    if (i + 3 * kAhead >= count_) return;
    lists.prefetchRow(reached_[i + 3 * kAhead]);
    lists.prefetchNeighbours(reached_[i + 2 * kAhead]);
    for (const Index neighbour : lists.neighbours(reached_[i + kAhead])) {
      prefetch(labels_.data() + neighbour);
    }
  }

  const Topology<Index>& topology_;
  Block<Index> labels_;
  Block<Index> reached_;  // The vertices of the component, in the order in which they were reached.
  std::uint64_t count_ = 0;
  SparsePace pace_;
};

/// Vertices and edges of one component, in the order of their indices, which stand in the first
/// two; the ends of its edges are positions among its vertices.
struct Part {
  std::span<const std::uint64_t> vertices;
  std::span<const std::uint64_t> edges;
  std::span<const std::uint64_t> from;
  std::span<const std::uint64_t> to;
};

/// Positions where the items of each group start when items are sorted by group, and the end.
[[nodiscard]] inline std::vector<std::uint64_t> startsOf(std::vector<std::uint64_t> sizes) {
  std::uint64_t start = 0;
  for (std::uint64_t& size : sizes) start += std::exchange(size, start);
  sizes.push_back(start);
  return sizes;
}

/// All vertices, and the edges within components, sorted by component.
class Partition {
 public:
  /// Whether edges can lead from one component to another; weakly connected ones have none.
  enum class CrossEdges { kNone, kPossible };

  template <class Index>
  Partition(const Components<Index>& components, const Topology<Index>& topology,
            std::uint64_t edgeCount, CrossEdges crossEdges = CrossEdges::kNone)
      : vertexStarts_(startsOf(components.sizes)),
        edgeStarts_(startsOf(edgeCounts(components, topology, edgeCount, crossEdges))) {
    const std::uint64_t n = vertexStarts_.back();
    vertices_.resize(n);
    Block<Index> positions;
    positions.resize(n);
    std::vector<std::uint64_t> next = vertexStarts_;
    for (std::uint64_t v = 0; v < n; ++v) {
      const std::uint64_t c = components.of(v);
      positions[v] = static_cast<Index>(next[c] - vertexStarts_[c]);
      vertices_[next[c]++] = v;
    }
    for (auto* column : {&edges_, &from_, &to_}) column->resize(edgeStarts_.back());
    next = edgeStarts_;
    for (std::uint64_t e = 0; e < edgeCount; ++e) {
      if (crosses(e, components, topology, crossEdges)) continue;
      const std::uint64_t place = next[components.of(topology.from[e])]++;
      edges_[place] = e;
      from_[place] = positions[topology.from[e]];
      to_[place] = positions[topology.to[e]];
    }
  }

  [[nodiscard]] std::uint64_t count() const { return vertexStarts_.size() - 1; }
  [[nodiscard]] Part operator[](std::uint64_t c) const {
    return {slice(vertices_, vertexStarts_, c), slice(edges_, edgeStarts_, c),
            slice(from_, edgeStarts_, c), slice(to_, edgeStarts_, c)};
  }

 private:
  using Indices = RawVector<std::uint64_t>;

  // Whether the edge leads from one component to another.
  template <class Index>
  static bool crosses(std::uint64_t edge, const Components<Index>& components,
                      const Topology<Index>& topology, CrossEdges crossEdges) {
    return crossEdges == CrossEdges::kPossible &&
           components.of(topology.from[edge]) != components.of(topology.to[edge]);
  }
  template <class Index>
  static std::vector<std::uint64_t> edgeCounts(const Components<Index>& components,
                                               const Topology<Index>& topology,
                                               std::uint64_t edgeCount, CrossEdges crossEdges) {
    std::vector<std::uint64_t> counts(components.sizes.size());
    for (std::uint64_t e = 0; e < edgeCount; ++e) {
      if (!crosses(e, components, topology, crossEdges)) ++counts[components.of(topology.from[e])];
    }
    return counts;
  }
  static std::span<const std::uint64_t> slice(const Indices& items,
                                              const std::vector<std::uint64_t>& starts,
                                              std::uint64_t c) {
    return {items.data() + starts[c], items.data() + starts[c + 1]};
  }

  std::vector<std::uint64_t> vertexStarts_;
  std::vector<std::uint64_t> edgeStarts_;
  Indices vertices_;
  Indices edges_;
  Indices from_;
  Indices to_;
};

}  // namespace veq::internal
