/// \file
/// The lists of a network, as they lie in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "veq/base/requirements.hpp"

namespace veq {

/// Where a vertex's list lies in the pools: the place of its first entry, and its length. A list
/// that has never held an entry starts at 0, where no list is.
/// \ingroup bulk
template <class Index>
struct AdjacencyRow {
  Index start;
  Index count;
};

/// The lists of one direction, in edge order. They lie in two pools, one of neighbours and one of
/// edges, at the same places, in no particular order and with gaps. Indices are not checked.
/// \ingroup bulk
template <class Index>
class AdjacencyRows {
 public:
  /// Over memory that outlives it.
  AdjacencyRows(const AdjacencyRow<Index>* rows, const Index* neighbourPool, const Index* edgePool)
      : rows_(rows), neighbours_(neighbourPool), edges_(edgePool) {}

  /// The length of a list, the neighbours in it, and the edges that lead there. O(1).
  [[nodiscard]] std::uint64_t count(std::uint64_t vertex) const { return rows_[vertex].count; }
  [[nodiscard]] std::span<const Index> neighbours(std::uint64_t vertex) const {
    return {neighbours_ + rows_[vertex].start, static_cast<std::size_t>(rows_[vertex].count)};
  }
  [[nodiscard]] std::span<const Index> edges(std::uint64_t vertex) const {
    return {edges_ + rows_[vertex].start, static_cast<std::size_t>(rows_[vertex].count)};
  }

  /// For loops that read rows and pools themselves.
  [[nodiscard]] const AdjacencyRow<Index>* rows() const { return rows_; }
  [[nodiscard]] const Index* neighbourPool() const { return neighbours_; }
  [[nodiscard]] const Index* edgePool() const { return edges_; }

 private:
  const AdjacencyRow<Index>* rows_;
  const Index* neighbours_;
  const Index* edges_;
};

/// The lists of one direction in somebody's memory: a row for each vertex, and the pools with all
/// places that rows name.
/// \ingroup build
template <class Index>
struct ListMemory {
  /// One for each vertex.
  std::span<const AdjacencyRow<Index>> rows;
  /// Of equal length.
  std::span<const Index> neighbours;
  std::span<const Index> edges;
};

/// A topology in somebody's memory, as TopologyArrays show it: the ends of the edges, and for each
/// vertex the edges that leave it, and those that arrive, each list in edge order. In an undirected
/// network the first lists have all edges at a vertex, a self-loop twice, and the others are not
/// read.
/// \ingroup build
template <class Index>
struct TopologyMemory {
  /// Whether edges lead from source to target alone.
  bool directed = false;
  /// Edge e runs from from[e] to to[e].
  std::span<const Index> from;
  std::span<const Index> to;
  /// The lists.
  ListMemory<Index> out;
  ListMemory<Index> in;
};

/// The lists of one direction one behind the other in the order of the vertices: those of vertex v
/// are the entries offsets[v] to offsets[v + 1] - 1 (compressed sparse rows).
/// \ingroup bulk
template <class Index>
struct PackedRows {
  /// One more than there are vertices.
  std::span<const Index> offsets;
  /// The neighbours and edges of all lists.
  std::span<const Index> neighbours;
  std::span<const Index> edges;
};

}  // namespace veq
