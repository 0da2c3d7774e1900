#include "veq/questions/cores.hpp"

#include <cstdint>

#include "veq/natural/internal/sides.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {

using internal::AdjacencyStore;
using internal::Block;
using internal::CoreAccess;
using internal::NetworkCore;
using internal::SideLists;
using internal::Topology;

namespace {

// For k = 0, 1, ... takes away the vertices that have k edges left, and those that this leaves with
// as many. Each level looks at all vertices that are left, which together is no more than the sum
// of all core numbers, and so than that of all degrees.
template <class Index>
class Peeling {
 public:
  Peeling(const AdjacencyStore& store, const Topology<Index>& topology, Direction direction)
      : count_(store.vertexCount()),
        losers_(store, topology, internal::turned(direction)),
        left_(count_) {
    const SideLists<Index> lists(store, topology, direction);
    for (std::uint64_t v = 0; v < count_; ++v) {
      std::uint64_t degree = lists.count(v);
      lists.forEachNeighbour(v, [&](std::uint64_t other) { degree -= other == v; });
      left_[v] = static_cast<Index>(degree);
    }
    remaining_.resize(count_);
    for (std::uint64_t v = 0; v < count_; ++v) remaining_[v] = static_cast<Index>(v);
    taken_.resize(count_);
  }

  std::vector<std::uint64_t> run() && {
    std::vector<std::uint64_t> cores(count_);
    std::uint64_t done = 0;
    for (std::uint64_t k = 0; done < count_; ++k) {
      takeThoseWith(k);
      for (; done < takenCount_; ++done) {
        fetchAhead(done);
        cores[taken_[done]] = k;
        takeAway(taken_[done], k);
      }
    }
    return cores;
  }

 private:
  void takeThoseWith(std::uint64_t k) {
    std::uint64_t kept = 0;
    for (std::uint64_t i = 0; i < remainingCount_; ++i) {
      const Index v = remaining_[i];
      if (left_[v] == k) taken_[takenCount_++] = v;
      if (left_[v] > k) remaining_[kept++] = v;  // What has fewer was taken before.
    }
    remainingCount_ = kept;
  }

  void takeAway(std::uint64_t vertex, std::uint64_t k) {
    losers_.forEachNeighbour(vertex, [&](Index other) {
      if (left_[other] > k && --left_[other] == k) taken_[takenCount_++] = other;
    });
  }

  // The row of a vertex; the list of one that comes sooner, whose row was fetched before; and what
  // the neighbours of one that comes still sooner have left, whose list was.
  void fetchAhead(std::uint64_t i) const {
    constexpr std::uint64_t kAhead = 4;
    if (i + 3 * kAhead >= takenCount_) return;
    for (const auto* lists : losers_.all()) {
      lists->prefetchRow(taken_[i + 3 * kAhead]);
      lists->prefetchNeighbours(taken_[i + 2 * kAhead]);
      for (const Index neighbour : lists->neighbours(taken_[i + kAhead])) {
        __builtin_prefetch(left_.data() + neighbour);
      }
    }
  }

  std::uint64_t count_;
  SideLists<Index> losers_;  // Who loses an edge when a vertex is taken away.
  Block<Index> left_;        // How many edges each has left, or had when it was taken.
  Block<Index> remaining_;   // Who was left when the level began.
  std::uint64_t remainingCount_ = count_;
  Block<Index> taken_;
  std::uint64_t takenCount_ = 0;
};

}  // namespace

std::vector<std::uint64_t> coreNumbers(const Network& network, Direction direction) {
  const NetworkCore& core = CoreAccess::of(*network.published());
  return core.store.visit(
      [&](const auto& topology) { return Peeling(core.store, topology, direction).run(); });
}

}  // namespace veq
