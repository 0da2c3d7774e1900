#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <variant>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/network/internal/adjacency_lists.hpp"
#include "veq/network/internal/index_list.hpp"

namespace veq::internal {

/// The ends of edges, as two lists of equal length. Passed by reference: a copy is read in larger
/// words than it was written in, so that the processor waits until all it has written before is in
/// the cache, the entries of the last insertion among it.
struct EdgeEnds {
  std::span<const std::uint64_t> from;
  std::span<const std::uint64_t> to;

  [[nodiscard]] std::uint64_t count() const { return from.size(); }
};

/// Edges and lists with indices of one width.
template <class Index>
struct Topology {
  Block<Index> ground;  // Of all blocks of a small network.
  Block<Index> from;
  Block<Index> to;
  AdjacencyLists<Index> out;
  std::unique_ptr<AdjacencyLists<Index>> in;  // Of directed networks.
};

/// All that a network knows of its topology, and the only code that knows how it lies in memory.
/// The interface speaks of 64-bit indices; they lie in 32 bits while the sizes allow it.
class AdjacencyStore {
 public:
  enum class Side { kOut, kIn };

  /// Up to this size, in list entries and vertices, indices lie in 32 bits; all bits set stay free
  /// for whoever needs a mark that is no index.
  static constexpr std::uint64_t kNarrowLimit = UINT32_MAX;

  /// All ends must be below the number of vertices. O(n + m) at most, and without work or memory
  /// for vertices that have no edge. std::bad_alloc where memory cannot hold it. Lists of its own
  /// are released before the adjacency lists are built.
  AdjacencyStore(std::uint64_t vertices, IndexList from, IndexList to, bool directed,
                 std::uint64_t narrowLimit = kNarrowLimit);

  [[nodiscard]] std::uint64_t vertexCount() const { return vertices_; }
  [[nodiscard]] std::uint64_t edgeCount() const { return edges_; }
  [[nodiscard]] bool directed() const { return directed_; }
  [[nodiscard]] bool isNarrow() const {
    return std::holds_alternative<Topology<std::uint32_t>>(topology_);
  }

  /// Calls f with the topology in the width it has: a Topology<std::uint32_t> or <std::uint64_t>.
  template <class F>
  decltype(auto) visit(F&& f) const {
    return std::visit(std::forward<F>(f), topology_);
  }

  [[nodiscard]] std::uint64_t from(std::uint64_t edge) const {
    return visit([edge](const auto& t) -> std::uint64_t { return t.from[edge]; });
  }
  [[nodiscard]] std::uint64_t to(std::uint64_t edge) const {
    return visit([edge](const auto& t) -> std::uint64_t { return t.to[edge]; });
  }

  /// Both sides of an undirected network are its out-lists.
  [[nodiscard]] std::uint64_t count(std::uint64_t vertex, Side side) const;
  /// The two columns of one list.
  [[nodiscard]] std::vector<std::uint64_t> neighbours(std::uint64_t vertex, Side side) const;
  [[nodiscard]] std::vector<std::uint64_t> edges(std::uint64_t vertex, Side side) const;

  /// The lists of a side; in an undirected network always the out-lists.
  template <class Index>
  [[nodiscard]] const AdjacencyLists<Index>& lists(const Topology<Index>& topology,
                                                   Side side) const {
    return side == Side::kIn && topology.in ? *topology.in : topology.out;
  }

  /// Appends edges whose ends are below the number of vertices. Amortised O(count). std::bad_alloc
  /// leaves the store as it was.
  void insert(const EdgeEnds& more);

 private:
  // Whether places or edges up to this number can be told by indices of the width.
  template <class Index>
  [[nodiscard]] bool isWithin(std::uint64_t size) const;
  // These two give up where narrow indices do not reach.
  template <class Index>
  [[nodiscard]] bool loosen(AdjacencyLists<Index>& lists, std::uint64_t vertex);
  template <class Index>
  [[nodiscard]] bool appendInPlace(Topology<Index>& topology, const EdgeEnds& more);
  // Calls f with a zero of the width in which this many edges more are kept.
  template <class F>
  void inWidthFor(std::uint64_t more, F f) const;
  // A topology without lists: the ends of all edges so far and more, on a ground for all.
  template <class Index>
  [[nodiscard]] Topology<Index> copyEnds(const EdgeEnds& more, Ground<Index>& ground) const;
  // Takes the place of what is there.
  template <class Index>
  void buildLists(Topology<Index> next, Ground<Index> ground, std::uint64_t edges);

  std::uint64_t vertices_ = 0;
  std::uint64_t edges_ = 0;
  std::uint64_t narrowLimit_ = kNarrowLimit;
  bool directed_ = false;
  std::variant<Topology<std::uint32_t>, Topology<std::uint64_t>> topology_;
};

}  // namespace veq::internal
