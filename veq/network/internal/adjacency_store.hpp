#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/network/internal/adjacency_lists.hpp"
#include "veq/network/internal/index_list.hpp"
#include "veq/network/internal/shared_topology.hpp"

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
struct Topology : SharedTopology {
  /// With an arena of so many indices behind it, for all blocks of a small network.
  [[nodiscard]] static Topology* make(std::uint64_t arenaSize) {
    return new (TrailingBytes{static_cast<std::size_t>(arenaSize) * sizeof(Index)}) Topology;
  }
  [[nodiscard]] Arena<Index> arena(std::uint64_t arenaSize) {
    return Arena<Index>({reinterpret_cast<Index*>(this + 1), static_cast<std::size_t>(arenaSize)});
  }

  Block<Index> from;
  Block<Index> to;
  AdjacencyLists<Index> out;
  std::unique_ptr<AdjacencyLists<Index>> in;  // Of directed networks.

 protected:
  explicit Topology(bool foreign = false) : SharedTopology(foreign) {}
};

/// A topology in memory of the owner's, for reading alone.
template <class Index>
struct ForeignTopology final : Topology<Index> {
  [[nodiscard]] static ForeignTopology* make(const TopologyMemory<Index>& memory,
                                             Shared<const void> owner) {
    return new (SharedTopology::TrailingBytes{0}) ForeignTopology(memory, std::move(owner));
  }

  Shared<const void> owner;

 private:
  ForeignTopology(const TopologyMemory<Index>& memory, Shared<const void> keeper)
      : Topology<Index>(true), owner(std::move(keeper)) {
    this->from = Block<Index>::readOnly(memory.from);
    this->to = Block<Index>::readOnly(memory.to);
    this->out.readIn(memory.out);
    if (!memory.directed) return;
    this->in = std::make_unique<AdjacencyLists<Index>>();
    this->in->readIn(memory.in);
  }
};

/// A topology as it was when it was asked for.
struct HeldTopology {
  TopologyShare share;
  std::uint64_t vertices;
  std::uint64_t edges;
  bool directed;
  bool narrow;
};

/// A lock that is held for a few instructions or for an insertion; whoever finds it taken looks
/// again until it is free.
class SpinLock {
 public:
  void lock() {
    while (taken_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  void unlock() { taken_.clear(std::memory_order_release); }

 private:
  std::atomic_flag taken_;
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
  /// are released before the adjacency lists are built. Whoever gives a pace may stop it.
  AdjacencyStore(std::uint64_t vertices, IndexList from, IndexList to, bool directed,
                 std::uint64_t narrowLimit = kNarrowLimit, Pace* pace = nullptr);
  /// Of a topology that is whole, and that others may hold, too.
  explicit AdjacencyStore(HeldTopology held);

  [[nodiscard]] std::uint64_t vertexCount() const { return vertices_; }
  [[nodiscard]] std::uint64_t edgeCount() const { return edges_; }
  [[nodiscard]] bool directed() const { return directed_; }
  [[nodiscard]] bool isNarrow() const { return narrow_; }

  /// Calls f with the topology in the width it has: a Topology<std::uint32_t> or <std::uint64_t>.
  template <class F>
  decltype(auto) visit(F&& f) const {
    if (narrow_) return f(std::as_const(topology<std::uint32_t>()));
    return f(std::as_const(topology<std::uint64_t>()));
  }

  /// The topology as it is now: an insertion copies first what somebody holds. Any thread may ask
  /// for it, read it and let go of it while another inserts. O(1), but waits for an insertion.
  [[nodiscard]] HeldTopology hold() const;

  [[nodiscard]] std::uint64_t from(std::uint64_t edge) const {
    return visit([edge](const auto& t) -> std::uint64_t { return t.from[edge]; });
  }
  [[nodiscard]] std::uint64_t to(std::uint64_t edge) const {
    return visit([edge](const auto& t) -> std::uint64_t { return t.to[edge]; });
  }

  /// Both sides of an undirected network are its out-lists.
  [[nodiscard]] std::uint64_t count(std::uint64_t vertex, Side side) const;
  /// Entry k of a list, which it must have. O(1).
  [[nodiscard]] std::uint64_t neighbour(std::uint64_t vertex, std::uint64_t k, Side side) const;
  [[nodiscard]] std::uint64_t edge(std::uint64_t vertex, std::uint64_t k, Side side) const;
  /// The two columns of one list, in a vector of any kind.
  template <class Indices = std::vector<std::uint64_t>>
  [[nodiscard]] Indices neighbours(std::uint64_t vertex, Side side) const {
    return visit([&](const auto& topology) {
      const auto column = lists(topology, side).neighbours(vertex);
      return Indices(column.begin(), column.end());
    });
  }
  template <class Indices = std::vector<std::uint64_t>>
  [[nodiscard]] Indices edges(std::uint64_t vertex, Side side) const {
    return visit([&](const auto& topology) {
      const auto column = lists(topology, side).edges(vertex);
      return Indices(column.begin(), column.end());
    });
  }

  /// The lists of a side; in an undirected network always the out-lists.
  template <class Index>
  [[nodiscard]] const AdjacencyLists<Index>& lists(const Topology<Index>& topology,
                                                   Side side) const {
    return side == Side::kIn && topology.in ? *topology.in : topology.out;
  }

  /// Appends edges whose ends are below the number of vertices. Amortised O(count). std::bad_alloc
  /// leaves the store as it was, and so does a stop, which only an insertion obeys that is not
  /// small against what is there; that one builds all lists anew.
  void insert(const EdgeEnds& more, Pace* pace = nullptr);

 private:
  template <class Index>
  [[nodiscard]] Topology<Index>& topology() const {
    return static_cast<Topology<Index>&>(*topology_.get());
  }

  // Whether places or edges up to this number can be told by indices of the width.
  template <class Index>
  [[nodiscard]] bool isWithin(std::uint64_t size) const;
  // These two give up where narrow indices do not reach.
  template <class Index>
  [[nodiscard]] bool relocate(AdjacencyLists<Index>& lists, std::uint64_t vertex);
  template <class Index>
  [[nodiscard]] bool appendInPlace(Topology<Index>& topology, const EdgeEnds& more);
  // Gives up where the topology may not change.
  [[nodiscard]] bool insertInPlace(const EdgeEnds& more);

  // Puts a copy of its own in the place of a topology that may not change.
  void copyTopology();
  template <class Index>
  [[nodiscard]] TopologyShare topologyCopy() const;
  // Puts a topology of all edges so far and more in the place of what is there.
  void rebuildWith(IndexList from, IndexList to, Pace* pace);
  template <class Index>
  [[nodiscard]] TopologyShare topologyWith(IndexList from, IndexList to, Pace* pace) const;

  std::uint64_t vertices_ = 0;
  std::uint64_t edges_ = 0;
  std::uint64_t narrowLimit_ = kNarrowLimit;
  bool directed_ = false;
  bool narrow_ = true;
  // Guards the topology's place and the number of edges against those who take a share of it.
  mutable SpinLock lock_;
  TopologyShare topology_;
};

}  // namespace veq::internal
