/// \file
/// Which lists a direction means.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "veq/natural/change_options.hpp"
#include "veq/network/internal/adjacency_store.hpp"

namespace veq::internal {

/// The sides on which the edges of a direction stand, one after the other. Undirected edges stand
/// in the out-lists alone, whichever way is meant.
[[nodiscard]] inline std::span<const AdjacencyStore::Side> sidesOf(const AdjacencyStore& store,
                                                                   Direction direction) {
  using Side = AdjacencyStore::Side;
  static constexpr std::array<Side, 2> kBoth{Side::kOut, Side::kIn};
  const std::span<const Side> both(kBoth);
  if (!store.directed() || direction == Direction::kOut) return both.first(1);
  return direction == Direction::kIn ? both.last(1) : both;
}

/// The other way.
[[nodiscard]] inline Direction turned(Direction direction) {
  if (direction == Direction::kAll) return direction;
  return direction == Direction::kOut ? Direction::kIn : Direction::kOut;
}

/// The lists of these sides.
template <class Index>
class SideLists {
 public:
  SideLists(const AdjacencyStore& store, const Topology<Index>& topology, Direction direction) {
    for (const AdjacencyStore::Side side : sidesOf(store, direction)) {
      lists_[count_++] = &store.lists(topology, side);
    }
  }

  [[nodiscard]] std::span<const AdjacencyLists<Index>* const> all() const {
    return {lists_.data(), count_};
  }

  [[nodiscard]] std::uint64_t count(std::uint64_t vertex) const {
    std::uint64_t sum = 0;
    for (const auto* lists : all()) sum += lists->count(vertex);
    return sum;
  }

  /// Calls f(neighbour) for all entries.
  template <class F>
  void forEachNeighbour(std::uint64_t vertex, F f) const {
    for (const auto* lists : all()) {
      for (const Index neighbour : lists->neighbours(vertex)) f(neighbour);
    }
  }

  /// Calls f(neighbour, edge) for all entries.
  template <class F>
  void forEachEntry(std::uint64_t vertex, F f) const {
    for (const auto* lists : all()) {
      const auto neighbours = lists->neighbours(vertex);
      const auto edges = lists->edges(vertex);
      for (std::size_t i = 0; i < neighbours.size(); ++i) f(neighbours[i], edges[i]);
    }
  }

 private:
  std::array<const AdjacencyLists<Index>*, 2> lists_{};
  std::size_t count_ = 0;
};

}  // namespace veq::internal
