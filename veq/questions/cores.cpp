#include "veq/questions/cores.hpp"

#include <cstdint>

#include "veq/base/internal/memory.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::Pace;
using internal::SideLists;
using internal::SparsePace;
using internal::Topology;

namespace {

// For k = 0, 1, ... takes away the vertices that have k edges left, and those that this leaves with
// as many. Each level looks at all vertices that are left, which together is no more than the sum
// of all core numbers, and so than that of all degrees.
template <class Index>
class CoreDecomposition {
 public:
  CoreDecomposition(const AdjacencyStore& store, const Topology<Index>& topology,
                    Direction direction, Pace& pace)
      : count_(store.vertexCount()),
        dependents_(store, topology, internal::turned(direction)),
        left_(count_),
        pace_(&pace) {
    const SideLists<Index> lists(store, topology, direction);
    for (std::uint64_t v = 0; v < count_; ++v) {
      std::uint64_t degree = lists.count(v);
      lists.forEachNeighbour(v, [&](std::uint64_t other) { degree -= other == v; });
      left_[v] = static_cast<Index>(degree);
    }
    remaining_.resize(count_);
    for (std::uint64_t v = 0; v < count_; ++v) remaining_[v] = static_cast<Index>(v);
    removed_.resize(count_);
  }

  std::vector<std::uint64_t> run() && {
    std::vector<std::uint64_t> cores(count_);
    std::uint64_t done = 0;
    for (std::uint64_t k = 0; done < count_; ++k) {
      removeDegree(k);
      for (; done < removedCount_; ++done) {
        prefetchAhead(done);
        cores[removed_[done]] = k;
        pace_.advance(1);
        removeVertex(removed_[done], k);
      }
    }
    return cores;
  }

 private:
  void removeDegree(std::uint64_t k) {
    std::uint64_t kept = 0;
    for (std::uint64_t i = 0; i < remainingCount_; ++i) {
      const Index v = remaining_[i];
      if (left_[v] == k) removed_[removedCount_++] = v;
      if (left_[v] > k) remaining_[kept++] = v;  // What has fewer was taken before.
    }
    remainingCount_ = kept;
  }

  void removeVertex(std::uint64_t vertex, std::uint64_t k) {
    dependents_.forEachNeighbour(vertex, [&](Index other) {
      if (left_[other] > k && --left_[other] == k) removed_[removedCount_++] = other;
    });
  }

  // The row of a vertex; the list of one that comes sooner, whose row was fetched before; and what
  // the neighbours of one that comes still sooner have left, whose list was.
  void prefetchAhead(std::uint64_t i) const {
    constexpr std::uint64_t kAhead = 4;
    if (i + 3 * kAhead >= removedCount_) return;
    for (const auto* lists : dependents_.all()) {
      lists->prefetchRow(removed_[i + 3 * kAhead]);
      lists->prefetchNeighbours(removed_[i + 2 * kAhead]);
      for (const Index neighbour : lists->neighbours(removed_[i + kAhead])) {
        internal::prefetch(left_.data() + neighbour);
      }
    }
  }

  std::uint64_t count_;
  SideLists<Index> dependents_;  // Who loses an edge when a vertex is taken away.
  Block<Index> left_;            // How many edges each has left, or had when it was taken.
  Block<Index> remaining_;       // Who was left when the level began.
  std::uint64_t remainingCount_ = count_;
  Block<Index> removed_;
  std::uint64_t removedCount_ = 0;
  SparsePace pace_;
};

}  // namespace

std::vector<std::uint64_t> coreNumbers(const Network& network, Direction direction) {
  return coreNumbers(network, direction, Progress()).value();
}

Result<std::vector<std::uint64_t>> coreNumbers(const Network& network, Direction direction,
                                               const Progress& progress) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  return internal::untilStopped([&]() -> Result<std::vector<std::uint64_t>> {
    Pace pace(progress, core.store.vertexCount());
    pace.reach(0);
    return core.store.visit([&](const auto& topology) {
      return CoreDecomposition(core.store, topology, direction, pace).run();
    });
  });
}

}  // namespace veq
