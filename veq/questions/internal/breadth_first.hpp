/// \file
/// Breadth-first search.
#pragma once

#include <cstdint>
#include <span>

#include "veq/base/internal/memory.hpp"
#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/adjacency_store.hpp"

namespace veq::internal {

/// Searches from one vertex after the other, in O(n) memory; a search takes no time for what it
/// does not reach. The queue says which vertices come next, so that their lists are fetched ahead.
template <class Index>
class BreadthFirst {
 public:
  BreadthFirst(const AdjacencyStore& store, const Topology<Index>& topology, Direction direction)
      : lists_(store, topology, direction), levels_(store.vertexCount()) {
    reached_.resize(store.vertexCount());
  }

  /// Calls atLevel(distance, vertices) for each distance, the vertices in the order in which they
  /// were reached. Answers the largest distance.
  template <class AtLevel>
  std::uint64_t search(std::uint64_t source, AtLevel atLevel) {
    forget();
    reach(source, 1);
    std::uint64_t distance = 0;
    for (std::uint64_t first = 0;; ++distance) {
      const std::uint64_t last = count_;
      atLevel(distance, std::span<const Index>(reached_.data() + first, last - first));
      expand(first, last, distance + 2);
      if (count_ == last) return distance;
      first = last;
    }
  }
  std::uint64_t search(std::uint64_t source) {
    return search(source, [](std::uint64_t, std::span<const Index>) {});
  }

  /// What the last search reached, in that order, and how far it is.
  [[nodiscard]] std::span<const Index> reached() const {
    return {reached_.data(), reached_.data() + count_};
  }
  [[nodiscard]] bool hasReached(std::uint64_t vertex) const { return levels_[vertex] != 0; }
  [[nodiscard]] std::uint64_t distanceTo(std::uint64_t vertex) const {
    return levels_[vertex] - 1u;
  }

 private:
  void forget() {
    for (const Index vertex : reached()) levels_[vertex] = 0;
    count_ = 0;
  }

  void expand(std::uint64_t first, std::uint64_t last, std::uint64_t level) {
    for (std::uint64_t i = first; i < last; ++i) {
      fetchAhead(i);
      for (const auto* lists : lists_.all()) {
        for (const Index neighbour : lists->neighbours(reached_[i])) reach(neighbour, level);
      }
    }
  }

  void reach(std::uint64_t vertex, std::uint64_t level) {
    if (levels_[vertex] != 0) return;
    levels_[vertex] = static_cast<Index>(level);
    reached_[count_++] = static_cast<Index>(vertex);
  }

  // The row of a vertex; the list of one that comes sooner, whose row was fetched before; and the
  // levels of the neighbours of one that comes still sooner, whose list was.
  void fetchAhead(std::uint64_t i) const {
    constexpr std::uint64_t kAhead = 4;
    if (i + 3 * kAhead >= count_) return;
    for (const auto* lists : lists_.all()) {
      lists->prefetchRow(reached_[i + 3 * kAhead]);
      lists->prefetchNeighbours(reached_[i + 2 * kAhead]);
      for (const Index neighbour : lists->neighbours(reached_[i + kAhead])) {
        prefetch(levels_.data() + neighbour);
      }
    }
  }

  SideLists<Index> lists_;
  Block<Index> levels_;  // One more than the distance, and 0 for what was not reached.
  Block<Index> reached_;
  std::uint64_t count_ = 0;
};

}  // namespace veq::internal
