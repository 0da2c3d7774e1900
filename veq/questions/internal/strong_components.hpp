/// \file
/// Strongly connected components.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "veq/base/internal/memory.hpp"
#include "veq/network/internal/component_forest.hpp"
#include "veq/network/internal/components.hpp"

namespace veq::internal {

/// One depth-first search over the out-lists, without recursion: a vertex from which no vertex that
/// was met earlier and still waits can be reached closes a component, which consists of all that
/// have waited since.
template <class Index>
class StrongComponentSearch {
 public:
  /// A pace is told of vertices.
  StrongComponentSearch(const Topology<Index>& topology, std::uint64_t vertices,
                        Pace* pace = nullptr)
      : lists_(topology.out), met_(vertices), lowest_(vertices), labels_(vertices), pace_(pace) {}

  Components<Index> run() && {
    for (std::uint64_t v = 0; v < met_.size(); ++v) {
      if (met_[v] == 0) searchFrom(v);
    }
    return renumbered();
  }

 private:
  // A vertex on the way that is searched, and which entry of its list comes next.
  struct Step {
    Index vertex;
    Index next;
  };

  void searchFrom(std::uint64_t start) {
    meet(start);
    while (!way_.empty()) {
      Step& step = way_.back();
      const auto neighbours = lists_.neighbours(step.vertex);
      if (step.next < neighbours.size()) {
        const Index neighbour = neighbours[step.next++];
        if (met_[neighbour] == 0) {
          meet(neighbour);
        } else if (labels_[neighbour] == 0) {
          lower(step.vertex, met_[neighbour]);
        }
      } else {
        leave(step.vertex);
      }
    }
  }

  void meet(std::uint64_t vertex) {
    pace_.advance(1);
    met_[vertex] = lowest_[vertex] = static_cast<Index>(++clock_);
    waiting_.push_back(static_cast<Index>(vertex));
    way_.push_back({static_cast<Index>(vertex), 0});
  }

  void lower(std::uint64_t vertex, Index to) { lowest_[vertex] = std::min(lowest_[vertex], to); }

  void leave(Index vertex) {
    way_.pop_back();
    if (!way_.empty()) lower(way_.back().vertex, lowest_[vertex]);
    if (lowest_[vertex] != met_[vertex]) return;
    ++count_;
    Index last;
    do {
      last = waiting_.back();
      waiting_.pop_back();
      labels_[last] = static_cast<Index>(count_);
    } while (last != vertex);
  }

  // By lowest vertex instead of by the end of the search.
  Components<Index> renumbered() {
    Block<Index> numbers(count_ + 1);
    std::vector<std::uint64_t> sizes;
    for (std::uint64_t v = 0; v < labels_.size(); ++v) {
      Index& number = numbers[labels_[v]];
      if (number == 0) {
        sizes.push_back(0);
        number = static_cast<Index>(sizes.size());
      }
      labels_[v] = number;
      ++sizes[number - 1u];
    }
    return {std::move(labels_), std::move(sizes)};
  }

  const AdjacencyLists<Index>& lists_;
  Block<Index> met_;     // When, from 1 on; 0 for never.
  Block<Index> lowest_;  // The earliest of those that still wait and can be reached.
  Block<Index> labels_;  // One more than the number of the component; 0 while it is not closed.
  std::vector<Index> waiting_;
  std::vector<Step> way_;
  std::uint64_t clock_ = 0;
  std::uint64_t count_ = 0;
  SparsePace pace_;
};

/// Weakly or strongly connected ones; the same in an undirected network.
template <class Index>
[[nodiscard]] Components<Index> componentsOf(const AdjacencyStore& store,
                                             const Topology<Index>& topology, bool strong,
                                             Pace* pace = nullptr) {
  if (strong && store.directed()) {
    return StrongComponentSearch<Index>(topology, store.vertexCount(), pace).run();
  }
  return weakComponents(store, topology, pace);
}

}  // namespace veq::internal
