/// \file
/// Weakly connected components of large networks, by several threads.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "veq/base/internal/atomic_ref.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/tiled_work.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/network/internal/adjacency_store.hpp"
#include "veq/network/internal/components.hpp"

namespace veq::internal {

/// Trees of vertices that are connected, in which everybody's parent is lower. Whoever links two
/// trees puts the root that is higher below the other one, so that in the end the root of each tree
/// is the lowest vertex of its component, in whatever order edges came.
template <class Index>
class ComponentForest {
 public:
  /// A pace is told of vertices.
  ComponentForest(const Topology<Index>& topology, std::uint64_t vertices, std::uint64_t edges,
                  Team& team, Pace* pace)
      : topology_(topology), edges_(edges), team_(team), pace_(pace) {
    parents_.resize(vertices);
  }

  Components<Index> run() && {
    forEachRange(parents_.size(), 0, [this](std::uint64_t begin, std::uint64_t end) {
      for (std::uint64_t v = begin; v < end; ++v) parents_[v] = static_cast<Index>(v);
    });
    forEachRange(edges_, parents_.size(), [this](std::uint64_t begin, std::uint64_t end) {
      for (std::uint64_t e = begin; e < end; ++e) {
        if (e + kAhead < end) {
          prefetch(parents_.data() + topology_.from[e + kAhead]);
          prefetch(parents_.data() + topology_.to[e + kAhead]);
        }
        link(topology_.from[e], topology_.to[e]);
      }
    });
    forEachRange(parents_.size(), 0, [this](std::uint64_t begin, std::uint64_t end) {
      for (std::uint64_t v = begin; v < end; ++v) set(v, rootOf(static_cast<Index>(v)));
    });
    return numbered();
  }

 private:
  static constexpr std::uint64_t kAhead = 16;
  static constexpr std::uint64_t kRange = std::uint64_t{1} << 16;

  // Calls f(begin, end) for ranges of so many things, which count as so many vertices.
  template <class F>
  void forEachRange(std::uint64_t count, std::uint64_t vertices, F f) {
    forEachSharedTile({count, kRange, count, vertices}, team_, pace_, f);
  }

  // A thread may see an older parent than there is: it is a vertex of the same tree, too.
  [[nodiscard]] Index parentOf(std::uint64_t vertex) {
    return AtomicRef<Index>(parents_[vertex]).load(std::memory_order_relaxed);
  }
  void set(std::uint64_t vertex, Index parent) {
    AtomicRef<Index>(parents_[vertex]).store(parent, std::memory_order_relaxed);
  }

  // Leaves those on the way nearer to it.
  Index rootOf(Index vertex) {
    for (;;) {
      const Index parent = parentOf(vertex);
      if (parent == vertex) return vertex;
      const Index above = parentOf(parent);
      if (above != parent) set(vertex, above);
      vertex = above;
    }
  }

  // Climbs from the one whose parent is higher. That one gets the other's parent, since both will
  // be in one tree, and the parent that it had is linked next (Rem's algorithm, in Dijkstra's book
  // of 1976). Whoever replaces a parent links it with the new one, so that what threads do at once
  // to one vertex loses no link.
  void link(Index a, Index b) {
    for (;;) {
      Index above = parentOf(a);
      Index other = parentOf(b);
      if (above == other) return;
      if (above < other) {
        std::swap(a, b);
        std::swap(above, other);
      }
      if (above == a) {
        Index root = a;  // unless another thread has linked it meanwhile
        if (AtomicRef<Index>(parents_[a])
                .compare_exchange_strong(root, other, std::memory_order_relaxed)) {
          return;
        }
        continue;
      }
      set(a, other);
      a = above;
    }
  }

  // Everybody's parent is the root now, which is lower and has its number already.
  Components<Index> numbered() {
    std::vector<std::uint64_t> sizes;
    for (std::uint64_t v = 0; v < parents_.size(); ++v) {
      if (parents_[v] == v) {
        sizes.push_back(0);
        parents_[v] = static_cast<Index>(sizes.size());
      } else {
        parents_[v] = parents_[parents_[v]];
      }
      ++sizes[parents_[v] - 1u];
    }
    return {std::move(parents_), std::move(sizes)};
  }

  const Topology<Index>& topology_;
  std::uint64_t edges_;
  Team& team_;
  Pace* pace_;
  Block<Index> parents_;
};

/// The same as a search gives, by as many threads as parallelism() says. By itself, so that a
/// search is compiled as if it stood alone.
template <class Index>
[[nodiscard, gnu::noinline]] Components<Index> linkedComponents(const AdjacencyStore& store,
                                                                const Topology<Index>& topology,
                                                                Pace* pace) {
  Team team(parallelism());
  return ComponentForest<Index>(topology, store.vertexCount(), store.edgeCount(), team, pace).run();
}

/// By searching, or by linking where that is faster even on one thread: a search waits for lists
/// that lie anywhere, whereas edges are read in their order.
template <class Index>
[[nodiscard]] Components<Index> weakComponents(const AdjacencyStore& store,
                                               const Topology<Index>& topology,
                                               Pace* pace = nullptr) {
  if (store.edgeCount() >= 4 * Team::worthSharing) return linkedComponents(store, topology, pace);
  return ComponentSearch<Index>(topology, store.vertexCount(), pace).run();
}

}  // namespace veq::internal
