/// \file
/// The topology of a network in bulk.
#pragma once

#include <cstdint>
#include <span>

#include "veq/base/export.hpp"
#include "veq/network/adjacency_rows.hpp"
#include "veq/network/internal/shared_topology.hpp"

namespace veq {

namespace internal {
struct HeldTopology;
}  // namespace internal

/// Vertices and edges as arrays of 32-bit or 64-bit indices.
/// \ingroup bulk
template <class Index>
struct TopologyArrays {
  /// Edge e runs from from[e] to to[e].
  std::span<const Index> from;
  std::span<const Index> to;
  /// The list of each vertex: of the edges that leave it, and of those that arrive. In an
  /// undirected network both are the list of all edges at the vertex, in which a self-loop stands
  /// twice.
  AdjacencyRows<Index> out;
  AdjacencyRows<Index> in;
};

/// Both directions of a topology as compressed sparse rows.
/// \ingroup bulk
template <class Index>
struct PackedTopology {
  /// As in TopologyArrays.
  PackedRows<Index> out;
  PackedRows<Index> in;
};

/// The topology of a network as it was when the view was taken, for as long as somebody holds the
/// view or a copy of it, and longer than the network if need be. What it gives out lives as long as
/// it does.
///
/// A view is taken and copied in O(1). An insertion into a network of which somebody holds a view
/// copies the topology first, in O(n + m), and so once for each view; one that has been let go of
/// costs nothing. Weights and properties are no part of it.
///
/// Threads: any thread may take views, read them and let go of them, also while another inserts
/// edges; taking one waits for an insertion that is under way. One view object at a time belongs to
/// one thread, its copies to any.
/// \ingroup bulk
class VEQ_EXPORT TopologyView {
 public:
  /// Views are copied where they could be moved, so that none is ever empty.
  TopologyView(const TopologyView&) = default;
  TopologyView& operator=(const TopologyView&) = default;

  /// The numbers of vertices and of edges, and whether these have a direction.
  [[nodiscard]] std::uint64_t countVertices() const { return vertices_; }
  [[nodiscard]] std::uint64_t countEdges() const { return edges_; }
  [[nodiscard]] bool isDirected() const { return directed_; }
  /// The bytes of an index: 4 while the network is small enough for it, otherwise 8.
  [[nodiscard]] unsigned indexBytes() const { return narrow_ ? 4 : 8; }

  /// What f makes of the arrays: it is called with TopologyArrays<std::uint32_t> or
  /// <std::uint64_t>, so that loops run over the indices that are there. O(1) by itself.
  template <class F>
  decltype(auto) visit(F&& f) const {
    if (narrow_) return f(arrays<std::uint32_t>());
    return f(arrays<std::uint64_t>());
  }

  /// The same with PackedTopology. It is made by the first call in O(n + m), memory included, and
  /// kept for all views until the network changes. std::bad_alloc.
  template <class F>
  decltype(auto) visitPacked(F&& f) const {
    if (narrow_) return f(packed<std::uint32_t>());
    return f(packed<std::uint64_t>());
  }

 private:
  friend class Network;
  explicit TopologyView(const internal::HeldTopology& held);

  template <class Index>
  [[nodiscard]] TopologyArrays<Index> arrays() const;
  template <class Index>
  [[nodiscard]] PackedTopology<Index> packed() const;

  std::uint64_t vertices_;
  std::uint64_t edges_;
  bool directed_;
  bool narrow_;
  internal::TopologyShare share_;
};

extern template VEQ_EXPORT TopologyArrays<std::uint32_t> TopologyView::arrays() const;
extern template VEQ_EXPORT TopologyArrays<std::uint64_t> TopologyView::arrays() const;
extern template VEQ_EXPORT PackedTopology<std::uint32_t> TopologyView::packed() const;
extern template VEQ_EXPORT PackedTopology<std::uint64_t> TopologyView::packed() const;

}  // namespace veq
